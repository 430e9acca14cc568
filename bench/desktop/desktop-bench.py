#!/usr/bin/env python3
"""Measures the real game on a real X server (Xvfb), as a player's desktop
without a GPU driver runs it, and prints one small table.

For every game given (a program and its game data folder) and every way of
presenting asked for, each run starts the game on an X server of its own,
in a scratch folder whose data files are links to the game data, and reports:

  title_ms   from starting the program to the title picture being on the
             screen (polled from the X server's own picture every 2 ms)
  menu_cpu   the game's CPU time in the idle main menu, % of one core
  menu_fps   pictures presented per second there
  level_cpu  the same in level 1 (a ship fitted from the first offer,
  level_fps  standing in the middle while the asteroids come)
  menu_ms,   the game's CPU time per picture presented, in ms, in the menu and
  level_ms   in the level: on a busy machine, where the frame rate sags, what
             60 pictures a second would cost (cpu at 60 fps = ms x 6)
  x_cpu      the X server's CPU time in the level, % of one core: the other
             half of presenting a picture
  peak_mb    the game's peak resident memory over the whole run (VmHWM)

The frames are counted by a small library preloaded into the game that
counts SDL's presenting calls, so any build of the game can be measured
without its help. Runs are interleaved (every game in every way, then the
next run) so that a busy machine slows them all alike; the table shows the
median of the runs with the lowest and highest value in brackets.

Usage:
  desktop-bench.py [--runs N] [--seconds S] [--ways W,...] [--music on|off|both] \
                   [--screens WxH,...] [--windows full,windowed] [--scales MODE,...] \
                   [NAME=]PROGRAM DATA [[NAME=]PROGRAM DATA ...]
--screens gives the X server's sizes (1024x768 by default: the picture lands
on the screen unscaled; 1920x1080 and 3840x2160 show what scaling costs).
--windows starts the game over the whole screen, in its window, or both.
--scales passes --scale=MODE to the game ("-" passes nothing, for builds
that know no such option). Only on a 1024x768 screen is the title found in
the screen's picture; elsewhere title_ms is left out.
PROGRAM and DATA default to $QV_GAME and $QV_GAME_DIR. The ways:
  default    the game's own choice, nothing set
  software   SDL_RENDER_DRIVER=software: SDL's software renderer
  novsync    SDL_RENDER_DRIVER=software and SDL_FRAMEBUFFER_ACCELERATION=0: a
             renderer that claims to wait for the display and does not
  opengl     SDL_RENDER_DRIVER=opengl: OpenGL, here drawn by Mesa's software
             rasteriser (llvmpipe), as on a desktop without a GPU driver
"""

import argparse
import ctypes
import ctypes.util
import os
import shutil
import signal
import statistics
import struct
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
SCREEN = (1024, 768)  # the game's own size: the picture lands on the screen unscaled
WINDOW_FLAGS = {"full": "--fullscreen", "windowed": "--windowed"}
TITLE_PAUSE_S = 6
SETTINGS_FILE = "quelvarion.ini"

WAYS = {
    "default": {},
    "software": {"SDL_RENDER_DRIVER": "software"},
    "novsync": {"SDL_RENDER_DRIVER": "software", "SDL_FRAMEBUFFER_ACCELERATION": "0"},
    "opengl": {"SDL_RENDER_DRIVER": "opengl"},
}

COLUMNS = ["title_ms", "menu_cpu", "menu_fps", "menu_ms", "level_cpu", "level_fps", "level_ms", "x_cpu", "peak_mb"]


def settings(music):
    lines = ["Start Level = 1", f"Music = {'On' if music else 'Off'}", "Sound FX = On",
             "Background Stars = On", "Ship/Turrent Stats = On", "High Scores"] + [""] * 10
    return "".join(line + "\r\n" for line in lines).encode("latin-1")


def build_counter(folder):
    """The preloaded frame counter, built from its source for this machine."""
    library = os.path.join(folder, "present_counter.so")
    subprocess.run(["cc", "-shared", "-fPIC", "-O2", "-o", library, os.path.join(HERE, "present_counter.c"),
                    "-ldl"], check=True)
    return library


def read_title(data):
    """Rows of the title picture (y -> list of (r, g, b)) with the most drawn on them."""
    with open(os.path.join(data, "art", "title_screen.bmp"), "rb") as f:
        raw = f.read()
    offset, = struct.unpack_from("<I", raw, 10)
    width, height, _, bits = struct.unpack_from("<iiHH", raw, 18)
    if bits != 24 or (width, height) != SCREEN:
        sys.exit(f"title_screen.bmp: expected a {SCREEN[0]}x{SCREEN[1]} 24-bit picture")
    stride = (width * 3 + 3) & ~3
    rows = {}
    for y in range(8, height, 16):
        start = offset + (height - 1 - y) * stride  # stored bottom-up
        row = [(raw[start + 3 * x + 2], raw[start + 3 * x + 1], raw[start + 3 * x]) for x in range(width)]
        rows[y] = row
    lit = sorted(rows, key=lambda y: -sum(1 for p in rows[y] if max(p) > 40))
    return {y: rows[y] for y in lit[:6]}


class XScreen:
    """Reads rows of the X server's picture of the whole screen."""

    def __init__(self, display):
        self.x11 = ctypes.CDLL(ctypes.util.find_library("X11"))
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XOpenDisplay.argtypes = [ctypes.c_char_p]
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
        self.x11.XGetImage.restype = ctypes.c_void_p
        self.x11.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_int, ctypes.c_uint,
                                       ctypes.c_uint, ctypes.c_ulong, ctypes.c_int]
        self.x11.XFree.argtypes = [ctypes.c_void_p]
        self.x11.XCloseDisplay.argtypes = [ctypes.c_void_p]
        self.connection = self.x11.XOpenDisplay(display.encode())
        if not self.connection:
            sys.exit("cannot reach the X server")
        self.root = self.x11.XDefaultRootWindow(self.connection)

    def row(self, y):
        """Row y's first 1024 pixels as bytes, four a pixel: blue, green, red, unused."""
        z_pixmap, all_planes = 2, 0xFFFFFFFF
        image = self.x11.XGetImage(self.connection, self.root, 0, y, SCREEN[0], 1, all_planes, z_pixmap)
        if not image:
            return b""
        data = ctypes.c_void_p.from_address(image + 16).value  # XImage.data
        row = ctypes.string_at(data, 4 * SCREEN[0])
        self.x11.XFree(data)
        self.x11.XFree(image)
        return row

    def close(self):
        self.x11.XCloseDisplay(self.connection)


def shows_title(screen, title):
    matching = drawn = 0
    for y, expected in title.items():
        row = screen.row(y)
        if len(row) < 4 * len(expected):
            return False
        for x, (r, g, b) in enumerate(expected):
            if max(r, g, b) <= 40:
                continue
            drawn += 1
            i = 4 * x
            if abs(row[i + 2] - r) <= 12 and abs(row[i + 1] - g) <= 12 and abs(row[i] - b) <= 12:
                matching += 1
    return drawn > 0 and matching >= 0.9 * drawn


def cpu_seconds(pid):
    with open(f"/proc/{pid}/stat") as f:
        fields = f.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")  # utime + stime


def peak_mb(pid):
    with open(f"/proc/{pid}/status") as f:
        for line in f:
            if line.startswith("VmHWM:"):
                return int(line.split()[1]) / 1024
    return float("nan")


class Run:
    """One start of one game in one way, on an X server of its own."""

    def __init__(self, program, data, way, music, counter_library, screen=SCREEN, window="full", scale="-"):
        self.program, self.data, self.way, self.music = program, data, way, music
        self.screen_size, self.window, self.scale = screen, window, scale
        self.counter_library = counter_library
        self.scratch = tempfile.mkdtemp(prefix="qv-desktop-")
        self.counter_path = os.path.join(self.scratch, "presents")
        self.xvfb = self.game = self.screen = None

    def __enter__(self):
        for name in os.listdir(self.data):
            if name not in (SETTINGS_FILE, "last-game.qvr") and not name.startswith("."):
                os.symlink(os.path.join(self.data, name), os.path.join(self.scratch, name))
        with open(os.path.join(self.scratch, SETTINGS_FILE), "wb") as f:
            f.write(settings(self.music))
        with open(self.counter_path, "wb") as f:
            f.write(bytes(4096))
        read_end, write_end = os.pipe()
        self.xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0",
                                      f"{self.screen_size[0]}x{self.screen_size[1]}x24", "-nolisten", "tcp"], pass_fds=(write_end,),
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as f:
            self.display = ":" + f.readline().strip()
        self.screen = XScreen(self.display)
        return self

    def __exit__(self, *problem):
        if self.screen:
            self.screen.close()
        for process in (self.game, self.xvfb):
            if process and process.poll() is None:
                process.kill()
                process.wait()
        shutil.rmtree(self.scratch, ignore_errors=True)
        return False

    def env(self, **extra):
        env = {name: value for name, value in os.environ.items()
               if name not in ("SDL_VIDEODRIVER", "SDL_RENDER_DRIVER", "SDL_FRAMEBUFFER_ACCELERATION")}
        # The player's remembered window mode and scaling stay out of it.
        env.update(DISPLAY=self.display, XDG_CONFIG_HOME=os.path.join(self.scratch, "config"), **extra)
        return env

    def presents(self):
        with open(self.counter_path, "rb") as f:
            return struct.unpack("<Q", f.read(8))[0]

    def keys(self, *names):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Quelvarion$"], env=self.env(),
                               capture_output=True, text=True).stdout.split()
        if not found:
            raise RuntimeError("the game's window is gone")
        subprocess.run(["xdotool", "windowfocus", "--sync", found[-1]], env=self.env(), capture_output=True)
        for name in names:
            subprocess.run(["xdotool", "key", name], env=self.env(), capture_output=True)
            time.sleep(0.15)

    def measure(self, seconds):
        """CPU of the game and of the X server, % of a core, and presents per second."""
        start = time.monotonic()
        game0, x0, shown0 = cpu_seconds(self.game.pid), cpu_seconds(self.xvfb.pid), self.presents()
        time.sleep(seconds)
        span = time.monotonic() - start
        game1, x1, shown1 = cpu_seconds(self.game.pid), cpu_seconds(self.xvfb.pid), self.presents()
        return 100 * (game1 - game0) / span, 100 * (x1 - x0) / span, (shown1 - shown0) / span

    def play(self, title, seconds):
        env = self.env(SDL_AUDIODRIVER="dummy", LD_PRELOAD=self.counter_library,
                       QV_PRESENT_COUNTER=self.counter_path, **WAYS[self.way])
        command = [self.program, WINDOW_FLAGS[self.window]] + ([f"--scale={self.scale}"] if self.scale != "-" else [])
        started = time.monotonic()
        self.game = subprocess.Popen(command, cwd=self.scratch, env=env,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        title_ms = None
        unscaled = tuple(self.screen_size) == SCREEN
        while time.monotonic() - started < 30 and self.game.poll() is None:
            if unscaled and shows_title(self.screen, title):
                title_ms = 1000 * (time.monotonic() - started)
                break
            if not unscaled and self.presents() > 0:
                break
            time.sleep(0.002)
        if self.game.poll() is not None or (unscaled and title_ms is None):
            raise RuntimeError("the title never showed")
        time.sleep(TITLE_PAUSE_S + 1.5)  # the title pause, then the menu settles
        menu_cpu, _, menu_fps = self.measure(seconds)
        # "New Game"; after the short empty level, the design screen: an
        # engine, a jet and a sail from the offer, and Escape starts level 1.
        self.keys("Return")
        time.sleep(1.5)
        self.keys("Return", "Down", "Return", "Down", "Return", "Escape")
        time.sleep(1.0)
        level_cpu, x_cpu, level_fps = self.measure(seconds)
        peak = peak_mb(self.game.pid)
        self.game.send_signal(signal.SIGTERM)
        try:
            self.game.wait(15)
        except subprocess.TimeoutExpired:
            pass
        return {"title_ms": title_ms, "menu_cpu": menu_cpu, "menu_fps": menu_fps,
                "menu_ms": 10 * menu_cpu / max(menu_fps, 1e-9), "level_cpu": level_cpu, "level_fps": level_fps,
                "level_ms": 10 * level_cpu / max(level_fps, 1e-9), "x_cpu": x_cpu, "peak_mb": peak}


def summary(values):
    values = [v for v in values if v is not None]
    if not values:
        return "-"
    median = statistics.median(values)
    digits = 0 if median >= 100 else 1 if median >= 1 else 2
    if len(values) == 1:
        return f"{median:.{digits}f}"
    return f"{median:.{digits}f} [{min(values):.{digits}f}-{max(values):.{digits}f}]"


def parse_games(words):
    if not words:
        words = [os.environ.get("QV_GAME", ""), os.environ.get("QV_GAME_DIR", "")]
    if len(words) % 2 or not all(words):
        sys.exit("give a program and its game data folder for each game (or set QV_GAME and QV_GAME_DIR)")
    games = []
    for i in range(0, len(words), 2):
        name, _, program = words[i].rpartition("=")
        program = os.path.abspath(program)
        games.append((name or os.path.basename(os.path.dirname(program)) or program, program,
                      os.path.abspath(words[i + 1])))
    return games


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--seconds", type=float, default=5.0, help="how long the menu and the level are measured")
    parser.add_argument("--ways", default="default,software,novsync")
    parser.add_argument("--music", choices=["on", "off", "both"], default="on")
    parser.add_argument("--screens", default="1024x768", help="X server sizes, WxH,...")
    parser.add_argument("--windows", default="full", help="full, windowed or both (comma between)")
    parser.add_argument("--scales", default="-", help="--scale= values for the game; - for none")
    parser.add_argument("games", nargs="*", help="[NAME=]PROGRAM DATA pairs")
    options = parser.parse_args()
    games = parse_games(options.games)
    ways = options.ways.split(",")
    musics = {"on": [True], "off": [False], "both": [True, False]}[options.music]
    screens = [tuple(int(n) for n in size.split("x")) for size in options.screens.split(",")]
    windows = options.windows.split(",")
    scales = options.scales.split(",")
    setups = [(screen, window, scale) for screen in screens for window in windows
              for scale in (scales if window == "full" else scales[:1])]
    for tool in ("Xvfb", "xdotool", "cc"):
        if not shutil.which(tool):
            sys.exit(f"desktop measurements left out: {tool} is not installed")

    work = tempfile.mkdtemp(prefix="qv-desktop-bench-")
    try:
        counter = build_counter(work)
        titles = {data: read_title(data) for _, _, data in games}
        results = {}
        for run in range(options.runs):
            for (screen, window, scale), way, music in [(s, w, m) for s in setups for w in ways for m in musics]:
                for name, program, data in games:
                    where = f"{screen[0]}x{screen[1]} {window} {scale}"
                    key = (name, where, way, music)
                    try:
                        with Run(program, data, way, music, counter, screen, window, scale) as r:
                            figures = r.play(titles[data], options.seconds)
                    except RuntimeError as problem:
                        print(f"run {run + 1}, {name} {where} {way}: {problem}", file=sys.stderr)
                        continue
                    results.setdefault(key, []).append(figures)
                    print(f"run {run + 1}/{options.runs} {name:>10} {where} {way:>8} music {'on' if music else 'off'}: "
                          + " ".join(f"{c}={figures[c] or 0:.1f}" for c in COLUMNS), file=sys.stderr, flush=True)
    finally:
        shutil.rmtree(work, ignore_errors=True)

    print(f"Median [lowest-highest] of {options.runs} runs under Xvfb (screen, window, --scale); "
          "cpu in % of one core, fps in pictures presented per second.")
    header = ["game", "screen window scale", "way", "music"] + COLUMNS
    rows = [[name, where, way, "on" if music else "off"] + [summary([f[c] for f in figures]) for c in COLUMNS]
            for (name, where, way, music), figures in results.items()]
    widths = [max(len(str(r[i])) for r in rows + [header]) for i in range(len(header))]
    for row in [header] + rows:
        print("  ".join(str(cell).ljust(width) for cell, width in zip(row, widths)).rstrip())


if __name__ == "__main__":
    main()
