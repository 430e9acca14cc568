"""The game as a native Wayland client, on SDL's wayland video driver, under
Debian's weston: its window carries the desktop file's application id and
the game's title, it fills the output, keys reach the menus and Alt+Enter
the game's window mode (remembered each time), the frame pacer keeps no more
than 60 pictures a second, and a signal still ends the game in order.

Weston runs nested in an X server of its own: its headless backend offers no
seat (no keyboard at all), and SDL 2.26 crashes starting its video on a
compositor without one. Its kiosk shell keeps every window over the whole
output, so Alt+Enter changes what the game asks, not what the compositor
shows. Weston hands the keyboard on to the game only while its own X window
holds the X keyboard, and only at the moment it gets it: the hand-over is
repeated until the game is told it has the keyboard. What the game asks
of the compositor and what it answers is read from the Wayland protocol log
(WAYLAND_DEBUG)."""
import itertools
import os
import pathlib
import re
import shutil
import signal
import statistics
import subprocess
import tempfile
import time

from quelvarion_e2e import (Screen, expect_equal, fail, game_env, link_game_data, menu_entry, on_display, run,
                            showing_main_menu, start_xvfb, wait_for_screen, wait_until)

OUTPUT = (1280, 1024)
SOCKET = "qv-wayland"
# The median time between two pictures: never faster than the output's 60 Hz,
# and drawing on. How near 60 a second it comes on a busy machine, where the
# compositor draws in software too and every message is logged, is printed,
# not held to: two test runs at once here gave a picture every 174 ms.
FRAME_MS = (14.0, 500.0)
PICTURES = 120
# An object in the protocol log: wl_surface@22 (libwayland 1.21, Debian 12) or
# wl_surface#22 (1.23, Debian 13, which also names the queue before each
# request: "{mesa egl surface queue}  -> wl_surface#26.commit()").
ID = r"[@#]\d+"


class Wayland:
    """Weston in an X server of its own, and the game on it."""

    def __enter__(self):
        self.scratch = tempfile.mkdtemp(prefix="qv-e2e-wayland-")
        self.runtime, self.folder, self.config, self.log = (
            os.path.join(self.scratch, name) for name in ("run", "game", "config", "game.log"))
        os.makedirs(self.runtime, mode=0o700)
        os.makedirs(self.folder)
        link_game_data(self.folder)
        xvfb, self.display = start_xvfb(OUTPUT)
        self.processes = [xvfb, subprocess.Popen(
            ["weston", "--backend=x11-backend.so", "--use-pixman", f"--socket={SOCKET}", f"--width={OUTPUT[0]}",
             f"--height={OUTPUT[1]}", "--idle-time=0", "--shell=kiosk-shell.so"],
            env=dict(os.environ, DISPLAY=self.display, XDG_RUNTIME_DIR=self.runtime),
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)]
        wait_until(lambda: os.path.exists(os.path.join(self.runtime, SOCKET)), "weston listens")
        env = game_env(None, self.config, WAYLAND_DISPLAY=SOCKET, XDG_RUNTIME_DIR=self.runtime,
                       SDL_VIDEODRIVER="wayland", WAYLAND_DEBUG="client", XDG_DATA_HOME=self.scratch)
        with open(self.log, "wb") as log:
            self.game = subprocess.Popen([os.environ["QV_GAME"], "--windowed"], cwd=self.folder, env=env,
                                         stdout=subprocess.DEVNULL, stderr=log)
        self.processes.insert(0, self.game)
        return self

    def __exit__(self, kind, value, trace):
        if kind is not None:
            keep = os.environ.get("QV_E2E_EVIDENCE", tempfile.gettempdir())
            self.screenshot().save(os.path.join(keep, "qv-e2e-test_wayland.png"))
            shutil.copy(self.log, os.path.join(keep, "qv-e2e-test_wayland.log"))
            print(self.protocol()[-3000:])
        for process in self.processes:
            if process.poll() is None:
                process.kill()
                process.wait()
        shutil.rmtree(self.scratch, ignore_errors=True)
        return False

    def protocol(self):
        return pathlib.Path(self.log).read_text(errors="replace")

    def x(self, *command):
        return on_display(self.display, *command, check=True, text=False)

    def has_keyboard(self):
        focus = re.findall(r"wl_keyboard" + ID + r"\.(enter|leave)\(", self.protocol())
        return bool(focus) and focus[-1] == "enter"

    def weston_window(self):
        """Weston's own X window, once it is mapped (focus cannot go to it before)."""
        found = re.findall(rb"(0x[0-9a-f]+) \"Weston Compositor", self.x("xwininfo", "-root", "-children"))
        return found and b"IsViewable" in self.x("xwininfo", "-id", found[0]) and found[0].decode()

    def give_keyboard(self, timeout=60):
        """Gives the game the keyboard, once its window is drawn: weston's own X window takes
        the X keyboard and hands it on. A hand-over can be lost, and focusing a window that
        has the keyboard already changes nothing: a try after the first takes it away first.
        A click on the game's window, which the game does not heed, has the kiosk shell
        make it the active one."""
        wait_until(lambda: ".get_xdg_surface(" in self.protocol() and self.weston_window(), "the game's window")
        deadline = time.monotonic() + timeout
        root = re.search(rb"Window id: (0x[0-9a-f]+)", self.x("xwininfo", "-root")).group(1).decode()
        for tries in itertools.count():
            if self.has_keyboard():
                return
            if time.monotonic() > deadline:
                fail(f"never: the game had the keyboard (in {timeout} s, {tries} tries)")
            if tries:
                print("the keyboard was not handed over: again")
                self.x("xdotool", "windowfocus", "--sync", root)
            self.x("xdotool", "windowfocus", "--sync", self.weston_window(), "mousemove",
                   str(OUTPUT[0] // 2 + 10 * (tries % 2 + 1)), str(OUTPUT[1] // 2), "click", "1")
            try:
                wait_until(self.has_keyboard, "wl_keyboard.enter", timeout=5)
            except AssertionError:
                pass

    def screenshot(self):
        return Screen(*OUTPUT, self.x("import", "-window", "root", "-depth", "8", "rgb:-"))

    def frame_intervals(self):
        """The milliseconds between the game window's next PICTURES pictures."""
        surface = re.findall(r"get_xdg_surface\(new id xdg_surface" + ID + r", (wl_surface" + ID + r")\)",
                             self.protocol())
        if not surface:
            fail("the game made no window of its own")
        start = len(self.protocol())
        commit = re.compile(r"\[ *(\d+\.\d+)\] (?:\{[^}]*\} )? -> " + re.escape(surface[0]) + r"\.commit\(\)")
        commits = lambda: [float(t) for t in commit.findall(self.protocol()[start:])]
        times = wait_until(lambda: len(commits()) > PICTURES and commits(), f"{PICTURES} pictures drawn", timeout=60)
        return [b - a for a, b in zip(times, times[1:])]


def wayland():
    if not shutil.which("weston"):
        print("skipped: weston is not installed")
        return
    with Wayland() as w:
        wait_until(lambda: 'set_app_id("quelvarion")' in w.protocol(), "the desktop file's application id")
        if 'set_title("Quelvarion")' not in w.protocol():
            fail("no title")
        # The title gives way to the menu once the window has the keyboard.
        w.give_keyboard()
        first = menu_entry(wait_for_screen(w.screenshot, showing_main_menu, "the main menu", timeout=60))
        w.x("xdotool", "key", "Down")
        wait_for_screen(w.screenshot, lambda shot: menu_entry(shot) == first + 1, "Down reached the menu", timeout=10)

        intervals = w.frame_intervals()
        median = statistics.median(intervals)
        if not FRAME_MS[0] <= median <= FRAME_MS[1]:
            fail(f"a picture every {median:.1f} ms")
        print(f"{len(intervals)} intervals; median {median:.2f} ms, longest {max(intervals):.1f} ms")

        if not re.search(r"xdg_toplevel" + ID + rf"\.configure\({OUTPUT[0]}, {OUTPUT[1]}, ", w.protocol()):
            fail("the window never filled the output")
        mode_file = pathlib.Path(w.config, "quelvarion", "window-mode")
        remembered = lambda: mode_file.read_text() if mode_file.exists() else ""
        modes = []
        for _ in range(3):  # each press the other mode from what the window is now
            before = remembered()
            w.x("xdotool", "key", "alt+Return")
            wait_until(lambda: remembered() not in ("", before), "Alt+Enter reached the game", timeout=10)
            modes.append(remembered().strip())
        if set(modes) != {"fullscreen", "windowed"}:
            fail(f"Alt+Enter went {modes}")
        print(f"full screen asked of the compositor {w.protocol().count('.set_fullscreen(')} times")

        w.game.send_signal(signal.SIGTERM)
        expect_equal(w.game.wait(timeout=10), 0, "the game's exit status after SIGTERM")


run(wayland)
