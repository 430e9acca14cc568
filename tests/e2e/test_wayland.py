"""The game as a native Wayland client, on SDL's wayland video driver, under
Debian's weston: its window carries the desktop file's application id and
the game's title, keys reach the menus, Alt+Enter asks the compositor for
full screen and back (and the choice is remembered), the frame pacer keeps
no more than 60 pictures a second, and a signal still ends the game in order.

Weston runs nested in an X server of its own, as it would in a window on a
desktop: its headless backend offers no seat (no keyboard at all), and SDL
2.26 crashes starting its video on a compositor without one. What the game
asks of the compositor and what it answers is read from the Wayland
protocol log (WAYLAND_DEBUG)."""
import os
import re
import shutil
import signal
import statistics
import subprocess
import tempfile
import time

from quelvarion_e2e import expect_equal, fail, link_game_data, run, start_xvfb

OUTPUT = (1280, 1024)
SOCKET = "qv-wayland"
MENU_STEP = 50  # pixels between two entries of the main menu, whose chosen entry is yellow
# The median time between two pictures: never faster than the output's 60 Hz,
# and drawing on. How near 60 a second it comes on a busy machine, where the
# compositor draws in software too, is printed, not held to.
FRAME_MS = (14.0, 100.0)


def wait_until(condition, what, timeout=20):
    deadline = time.monotonic() + timeout
    while not condition():
        if time.monotonic() > deadline:
            fail(f"never: {what}")
        time.sleep(0.2)


class Wayland:
    """Weston in an X server of its own, and the game on it."""

    def __init__(self):
        self.scratch = tempfile.mkdtemp(prefix="qv-e2e-wayland-")
        self.runtime = os.path.join(self.scratch, "run")
        self.folder = os.path.join(self.scratch, "game")
        self.config = os.path.join(self.scratch, "config")
        self.log = os.path.join(self.scratch, "game.log")
        self.processes = []

    def __enter__(self):
        os.makedirs(self.runtime, mode=0o700)
        os.makedirs(self.folder)
        link_game_data(self.folder)
        xvfb, self.display = start_xvfb(OUTPUT)
        self.processes.append(xvfb)
        width, height = OUTPUT
        self.processes.append(subprocess.Popen(
            ["weston", "--backend=x11-backend.so", "--use-pixman", f"--socket={SOCKET}", f"--width={width}",
             f"--height={height}", "--idle-time=0"],
            env=dict(os.environ, DISPLAY=self.display, XDG_RUNTIME_DIR=self.runtime),
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL))
        wait_until(lambda: os.path.exists(os.path.join(self.runtime, SOCKET)), "weston listens")
        env = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "SDL_VIDEODRIVER")}
        env.update(WAYLAND_DISPLAY=SOCKET, XDG_RUNTIME_DIR=self.runtime, SDL_VIDEODRIVER="wayland",
                   WAYLAND_DEBUG="client", SDL_AUDIODRIVER="dummy", XDG_CONFIG_HOME=self.config,
                   XDG_DATA_HOME=self.scratch)
        with open(self.log, "wb") as log:
            self.game = subprocess.Popen([os.environ["QV_GAME"], "--windowed"], cwd=self.folder, env=env,
                                         stdout=subprocess.DEVNULL, stderr=log)
        self.processes.insert(0, self.game)
        return self

    def __exit__(self, kind, value, trace):
        if kind is not None:
            keep = os.environ.get("QV_E2E_EVIDENCE", tempfile.gettempdir())
            subprocess.run(["import", "-window", "root", os.path.join(keep, "qv-e2e-test_wayland.png")],
                           env=dict(os.environ, DISPLAY=self.display), check=False)
            print(self.protocol()[-3000:])
        for process in self.processes:
            if process.poll() is None:
                process.kill()
                process.wait()
        shutil.rmtree(self.scratch, ignore_errors=True)
        return False

    def protocol(self):
        with open(self.log, errors="replace") as f:
            return f.read()

    def x(self, *command):
        return subprocess.run(list(command), env=dict(os.environ, DISPLAY=self.display), capture_output=True,
                              check=True, timeout=10).stdout

    def chosen_entry(self):
        """The height of the yellow on the screen (the menu's chosen entry), or None: the
        compositor places the window where it likes."""
        width, height = OUTPUT
        band = 300  # wide, about the middle, where the entries' names are
        raw = self.x("import", "-window", "root", "-crop", f"{band}x{height}+{(width - band) // 2}+0", "-depth", "8",
                     "rgb:-")
        rows = [i // 3 // band for i in range(0, len(raw) - 2, 3)
                if raw[i] > 200 and raw[i + 1] > 200 and raw[i + 2] < 100]
        return statistics.mean(rows) if len(rows) > 50 else None

    def frame_intervals(self, seconds):
        """The milliseconds between the game window's pictures over a while."""
        surface = re.findall(r"get_xdg_surface\(new id xdg_surface@\d+, (wl_surface@\d+)\)", self.protocol())
        if not surface:
            fail("the game made no window of its own")
        start = len(self.protocol())
        time.sleep(seconds)
        times = [float(t) for t in re.findall(r"\[ *(\d+\.\d+)\]  -> " + surface[0] + r"\.commit\(\)",
                                               self.protocol()[start:])]
        return [b - a for a, b in zip(times, times[1:])]


def wayland():
    if not shutil.which("weston"):
        print("skipped: weston is not installed")
        return
    with Wayland() as w:
        wait_until(lambda: 'set_app_id("quelvarion")' in w.protocol(), "the desktop file's application id")
        if 'set_title("Quelvarion")' not in w.protocol():
            fail("no title")
        # Weston's own window takes the X keyboard, and gives it to the game's window.
        weston = re.findall(r"(0x[0-9a-f]+) \"Weston Compositor", w.x("xwininfo", "-root", "-children").decode())
        if not weston:
            fail("weston has no window")
        w.x("xdotool", "windowfocus", "--sync", weston[0])
        for offset in (0, 10):  # the pointer starts in the middle: it must move to be seen
            w.x("xdotool", "mousemove", str(OUTPUT[0] // 2 + offset), str(OUTPUT[1] // 2))
        wait_until(lambda: re.search(r"wl_keyboard@\d+\.enter", w.protocol()), "the keyboard given to the game")
        wait_until(lambda: w.chosen_entry() is not None, "the main menu", timeout=30)
        first = w.chosen_entry()
        w.x("xdotool", "key", "Down")
        wait_until(lambda: (w.chosen_entry() or 0) > first + MENU_STEP / 2, "Down reached the menu", timeout=5)

        intervals = w.frame_intervals(3)
        median = statistics.median(intervals) if intervals else 0
        if not FRAME_MS[0] <= median <= FRAME_MS[1]:
            fail(f"a picture every {median:.1f} ms")
        print(f"{len(intervals)} pictures in 3 s; median {median:.2f} ms, longest {max(intervals):.1f} ms")

        w.x("xdotool", "key", "alt+Return")
        width, height = OUTPUT
        wait_until(lambda: re.search(rf"configure\({width}, {height}, ", w.protocol()), "full screen", timeout=5)
        if ".set_fullscreen(" not in w.protocol():
            fail("full screen was not asked for")
        w.x("xdotool", "key", "alt+Return")
        wait_until(lambda: ".unset_fullscreen()" in w.protocol(), "back to a window", timeout=5)
        w.x("xdotool", "key", "alt+Return")
        wait_until(lambda: w.protocol().count(".set_fullscreen(") == 2,
                   "full screen again", timeout=5)

        w.game.send_signal(signal.SIGTERM)
        expect_equal(w.game.wait(timeout=10), 0, "the game's exit status after SIGTERM")
        with open(os.path.join(w.config, "quelvarion", "window-mode")) as f:
            expect_equal(f.read(), "fullscreen\n", "the window mode remembered")


run(wayland)
