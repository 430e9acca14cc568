"""Plays the real game the way a player does, for the end-to-end flows
(test_<flow>.py, the CTest test e2e.<flow>): `Game` starts it on an X server
of its own, presses keys and takes screenshots (`Screen`); `Recording` is what
it played; `run_program` runs what ends before a game begins. Every wait is
on a condition, with a generous bound: the machine may be busy. CTest sets
QV_GAME, QV_SNAPSHOT_GAME, QV_GAME_DIR, QV_BUILD_DIR and QV_ASSETGEN."""

import array
import ctypes
import ctypes.util
import itertools
import math
import os
import pathlib
import pwd
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

# The game's own picture, letterboxed into whatever screen it runs on.
GAME_WIDTH, GAME_HEIGHT = 1024, 768
# A screen of another shape than the game's, so the letterbox shows.
SCREEN_WIDTH, SCREEN_HEIGHT = 1280, 1024
TITLE_PAUSE_S = 6
SETTINGS_FILE = "quelvarion.ini"
LAST_GAME = "last-game.qvr"
# What a game played in a folder leaves there. The installation flow puts them
# in the build's game data for a while: a flow beside it must not link them,
# or its game saves through the link into the build's data, for good.
PLAYER_FILES = (SETTINGS_FILE, LAST_GAME, ".quelvarion.lock", f"{SETTINGS_FILE}.4242.tmp", "trace.log")
MAIN_MENU = ["New Game", "Help", "About", "Options", "High Scores", "Exit Game"]
OPTIONS = ["Start Level", "Music", "Sound FX", "Background Stars", "Ship/Turrent Stats"]
NO_STARS = {"Background Stars": "Off"}

# SDL's disk driver writes what the game plays as 16-bit stereo at 44.1 kHz.
AUDIO_RATE = 44100
FULL_SCALE = 32767
# A hundredth of a second whose loudest sample stays under this (-60 dB) is silent.
SILENT_PEAK = 33

TITLE_COLOUR = (180, 90, 225)
TEXT_COLOUR = (60, 120, 120)
HIGHLIGHT_COLOUR = (250, 250, 100)
BOX_FRAME_COLOUR = (50, 50, 50)


def fail(message):
    raise AssertionError(message)


def wait_until(condition, what, timeout=20, every=0.2):
    """The first true value of condition(), asked every so often for timeout seconds."""
    deadline = time.monotonic() + timeout
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            fail(f"never: {what} (in {timeout} s)")
        time.sleep(every)


def settings_text(options=None, scores=()):
    """The settings file as the game writes it: the options, then ten places for (name, score)."""
    values = {"Start Level": "1", "Music": "On", "Sound FX": "On",
              "Background Stars": "On", "Ship/Turrent Stats": "On"}
    values.update(options or {})
    lines = [f"{name} = {values[name]}" for name in OPTIONS] + ["High Scores"]
    lines += [f"{name} = {score}" for name, score in scores]
    lines += [""] * (10 - len(scores))
    return "".join(line + "\r\n" for line in lines).encode("latin-1")


class Screen:
    """One screenshot: 8-bit RGB pixels, row by row."""

    def __init__(self, width, height, pixels):
        self.width, self.height, self.pixels = width, height, pixels

    def crop(self, x, y, width, height):
        rows = [self.pixels[3 * ((y + r) * self.width + x):3 * ((y + r) * self.width + x + width)]
                for r in range(height)]
        return Screen(width, height, b"".join(rows))

    def game_area(self):
        """Where the game's 1024 x 768 picture lies on the screen: x, y, width, height."""
        scale = min(self.width / GAME_WIDTH, self.height / GAME_HEIGHT)
        w, h = round(GAME_WIDTH * scale), round(GAME_HEIGHT * scale)
        return (self.width - w) // 2, (self.height - h) // 2, w, h

    def at_game(self, x, y, width, height):
        """The part of the screen that shows the game's rectangle (x, y, width, height)."""
        ax, ay, aw, _ = self.game_area()
        scale = aw / GAME_WIDTH
        return self.crop(ax + int(x * scale), ay + int(y * scale), int(width * scale), int(height * scale))

    def game_picture(self):
        return self.crop(*self.game_area())

    def convert(self, *args):
        """What ImageMagick's convert makes of this picture."""
        return subprocess.run(["convert", "-size", f"{self.width}x{self.height}", "-depth", "8", "rgb:-", *args],
                              input=self.pixels, capture_output=True, check=True).stdout

    def drawn_box(self):
        """x, y, width and height of the smallest rectangle holding every pixel that is not black."""
        found = self.convert("-format", "%@", "info:")
        width, height, x, y = map(int, re.match(rb"(\d+)x(\d+)\+(\d+)\+(\d+)", found).groups())
        return x, y, width, height

    def lit_pixels(self, threshold=40):
        """How many pixels have a channel above threshold: what is drawn over black."""
        p = self.pixels
        return sum(1 for i in range(0, len(p), 3) if max(p[i], p[i + 1], p[i + 2]) > threshold)

    def pixels_near(self, colour, tolerance=24):
        """How many pixels are within tolerance of colour in every channel."""
        p, (r, g, b) = self.pixels, colour
        return sum(1 for i in range(0, len(p), 3)
                   if abs(p[i] - r) <= tolerance and abs(p[i + 1] - g) <= tolerance and abs(p[i + 2] - b) <= tolerance)

    def lit_cells(self, columns, rows, threshold=6):
        """The (column, row) cells of a grid over the screen in which something is drawn."""
        raw = self.convert("-colorspace", "gray", "-filter", "box", "-resize", f"{columns}x{rows}!",
                           "-depth", "8", "gray:-")
        return {(i % columns, i // columns) for i, level in enumerate(raw) if level > threshold}

    def mean_difference(self, other, step=1):
        """The mean absolute difference per channel, 0 to 255, sampling every step-th pixel."""
        if (self.width, self.height) != (other.width, other.height):
            fail(f"cannot compare {self.width}x{self.height} with {other.width}x{other.height}")
        a, b = self.pixels, other.pixels
        indices = range(0, len(a), 3 * step)
        total = sum(abs(a[i] - b[i]) + abs(a[i + 1] - b[i + 1]) + abs(a[i + 2] - b[i + 2]) for i in indices)
        return total / (3 * len(indices))

    def save(self, path):
        self.convert(path)


def picture_file(path, width, height):
    """A picture file scaled to width x height, as a Screen."""
    raw = subprocess.run(["convert", path, "-resize", f"{width}x{height}!", "-depth", "8", "rgb:-"],
                         capture_output=True, check=True).stdout
    return Screen(width, height, raw)


class Recording:
    """What the game played (interleaved 16-bit stereo), in hundredths of a second."""

    STEP = AUDIO_RATE // 100

    def __init__(self, path):
        self.samples = array.array("h", pathlib.Path(path).read_bytes())
        if self.samples.itemsize != 2 or sys.byteorder != "little":
            fail("the recording is not read as it was written")
        step = 2 * self.STEP
        self.peaks = [max(max(self.samples[i:i + step]), -min(self.samples[i:i + step]))
                      for i in range(0, len(self.samples) - step + 1, step)]

    def seconds(self):
        return len(self.peaks) / 100

    def silences(self, start=0.0, end=None):
        """Every run of silent hundredths between start and end seconds, as (start, length) in seconds."""
        first, last = int(start * 100), min(int((end if end is not None else self.seconds()) * 100), len(self.peaks))
        silent = lambda i: self.peaks[i] < SILENT_PEAK
        runs = [list(run) for quiet, run in itertools.groupby(range(first, last), silent) if quiet]
        return [(run[0] / 100, len(run) / 100) for run in runs]

    def sound_after_silence(self, at_least):
        """When sound starts again after the first silence of at least that many seconds."""
        for begun, length in self.silences():
            if length >= at_least:
                return begun + length
        fail(f"no silence of {at_least} s in the recording")

    def level(self, start, seconds):
        """The RMS of the quietest tenth of the twentieths of a second in that span:
        what sounds all the time."""
        rms = []
        for i in range(int(start * 20), int((start + seconds) * 20)):
            part = self.samples[2 * i * (AUDIO_RATE // 20):2 * (i + 1) * (AUDIO_RATE // 20)]
            if len(part):
                rms.append(math.sqrt(sum(v * v for v in part) / len(part)))
        rms.sort()
        return rms[len(rms) // 10] if rms else 0


def newly_lit_cells(game, cell=8):
    """How many cells of the game's picture are lit a second after nothing near them was: things moving."""
    grid = GAME_WIDTH // cell, GAME_HEIGHT // cell
    before = game.screenshot().game_picture().lit_cells(*grid)
    time.sleep(1.0)  # the span over which things move, not a wait
    after = game.screenshot().game_picture().lit_cells(*grid)
    near_before = {(x + dx, y + dy) for x, y in before for dx in (-1, 0, 1) for dy in (-1, 0, 1)}
    return len(after - near_before)


class _ClientMessage(ctypes.Structure):
    """Xlib's XClientMessageEvent, padded to the size of any X event."""
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("pad", ctypes.c_long * 12)]


def wait_for_screen(screenshot, accept, what="the screen showed what was expected", timeout=20, every=0.2):
    """The first screenshot() that `accept` takes, within timeout seconds."""
    def accepted():
        shot = screenshot()
        return shot if accept(shot) else None
    return wait_until(accepted, what, timeout, every)


def showing_title(screen):
    return max(screen.game_picture().pixels) > 100


def menu_entry(screen):
    """The highlighted entry of the main menu (its index in MAIN_MENU), or None."""
    for entry in range(len(MAIN_MENU)):
        # The entries' text starts at y 185, one every 50 pixels.
        if screen.at_game(300, 175 + 50 * entry, 424, 35).pixels_near(HIGHLIGHT_COLOUR) > 10:
            return entry
    return None


def showing_main_menu(screen):
    # "Main Menu" in the title font at y 100 and one entry highlighted below it.
    return screen.at_game(300, 95, 424, 60).pixels_near(TITLE_COLOUR) > 50 and menu_entry(screen) is not None


def showing_framed_screen(screen):
    # The panels' one-pixel frames of the design screen or of a box screen.
    return screen.at_game(40, 90, 944, 600).pixels_near(BOX_FRAME_COLOUR, tolerance=12) > 300


def showing_design_screen(screen):
    # "Your Ship" over the left panel, and the panels' frames.
    return screen.at_game(60, 100, 280, 40).pixels_near(TITLE_COLOUR) > 30 and showing_framed_screen(screen)


def showing_box_screen_title(screen):
    # The title of a box screen (help, about, high scores) at y 120.
    return screen.at_game(200, 115, 624, 60).pixels_near(TITLE_COLOUR) > 50


# A frame that comes more than a second late pauses the level, as the loss of
# the window's focus does: on a starved machine the game may pause itself. The
# tests wait on what the game shows, not on the time gone by.

def pause(game, tries=3):
    """Brings up the menu over the level, whoever paused it (Escape, or a late
    frame); returns the highlighted entry."""
    for _ in range(tries):
        entry = menu_entry(game.screenshot())
        if entry is not None:
            return entry
        game.keys("Escape")
        try:
            return menu_entry(game.wait_for_screen(showing_main_menu, timeout=5))
        except AssertionError:
            pass
    fail("the level would not pause")


def play_on(game, timeout=30):
    """Waits until things move in the level; a level a late frame paused is resumed."""
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        if showing_main_menu(game.screenshot()):
            game.keys("Escape")
        elif newly_lit_cells(game) >= 3:
            return
    fail("nothing moves during play")


class Game:
    """The game on an X server of its own, in a `with` block. settings: the
    player's settings file; installed: the prefix whose launcher starts the
    game; ordinary_user: run as a user whom file permissions bind; prepare:
    called with the game's folder; record: play into a file; tune: a MIDI file
    for the background tune."""

    def __init__(self, settings=None, screen=(SCREEN_WIDTH, SCREEN_HEIGHT), installed=None, args=(),
                 ordinary_user=False, prepare=None, config_home=None, record=False, tune=None):
        self.data, self.screen_size, self.args = os.environ["QV_GAME_DIR"], screen, list(args)
        self.scratch = self.folder = tempfile.mkdtemp(prefix="qv-e2e-")
        self.program, self.ordinary_user, self.record = os.environ["QV_GAME"], ordinary_user, record
        self.config_home = config_home or os.path.join(self.scratch, "config")
        self.xvfb = self.game = None
        if installed:
            self.program = os.path.join(installed, "bin", "quelvarion")
            self.folder = os.path.join(self.scratch, "quelvarion")  # inside XDG_DATA_HOME
            if settings is not None:
                os.makedirs(self.folder)  # a player coming back; the launcher makes it otherwise
        elif ordinary_user and unprivileged_user():
            # The build may lie where that user cannot reach (a checkout in root's home, mode 700).
            for name in game_data(self.data):
                source = os.path.join(self.data, name)
                (shutil.copytree if os.path.isdir(source) else shutil.copy)(source, os.path.join(self.folder, name))
            self.program = shutil.copy(self.program, os.path.join(self.folder, ".quelvarion-program"))
        else:
            link_game_data(self.folder, tune=tune)
        if settings is not None:
            pathlib.Path(self.settings_path()).write_bytes(settings)
        if ordinary_user:
            os.chmod(self.scratch, 0o777)  # the player's folder is theirs
        self.log = open(self.log_path(), "wb")  # before prepare, which may close the folder to its owner too
        if prepare:
            prepare(self.folder)

    def __enter__(self):
        self.xvfb, self.display = start_xvfb(self.screen_size)
        self.game = self.start([self.program] + self.args, stderr=self.log)
        try:
            self.wait_for_window()
        except BaseException as problem:
            # A `with` block whose start fails never reaches __exit__: end the game and its server here.
            self.__exit__(type(problem), problem, problem.__traceback__)
            raise
        return self

    def start(self, command, **streams):
        """Starts a program in the game's folder, on its display, as its player."""
        if self.ordinary_user:
            command = as_ordinary_user(command)
        audio = {"SDL_AUDIODRIVER": "disk", "SDL_DISKAUDIOFILE": self.recording_path()} if self.record else {}
        env = game_env(self.display, self.config_home, XDG_DATA_HOME=self.scratch, **audio)
        return subprocess.Popen(command, cwd=self.scratch, env=env, stdout=subprocess.DEVNULL, **streams)

    def __exit__(self, kind, value, trace):
        if kind is not None:
            self.keep_evidence()
        for process in (self.game, self.xvfb):
            if process and process.poll() is None:
                process.kill()
                process.wait()
        shutil.rmtree(self.scratch, ignore_errors=True)
        return False

    def x(self, *command):
        return on_display(self.display, *command, check=True)

    def current_window(self):
        """The game's newest visible window: the first one SDL makes may be replaced by another."""
        found = on_display(self.display, "xdotool", "search", "--onlyvisible", "--name", "^Quelvarion$").split()
        return found[-1] if found else None

    def wait_for_window(self, timeout=20):
        def shown():
            if self.game.poll() is not None:
                fail(f"the game ended before its window showed (status {self.game.returncode})")
            return self.current_window()
        wait_until(shown, "the game's window showed", timeout, every=0.1)

    def wait_exit(self, timeout=30):
        """The game's exit status, once it has ended."""
        try:
            return self.game.wait(timeout)
        except subprocess.TimeoutExpired:
            fail(f"the game did not end within {timeout} s")

    # What a player does.

    def wait_title_pause(self):
        """Waits until the title screen has given way: keys pressed before then come after it."""
        title = self.wait_for_screen(showing_title, timeout=30).game_picture()
        self.wait_for_screen(lambda s: s.game_picture().mean_difference(title, step=17) > 20,
                             timeout=TITLE_PAUSE_S + 30)

    def keys(self, *names, pause=0.15):
        window = self.current_window()
        if not window:
            fail("the game's window is gone")
        self.x("xdotool", "windowfocus", "--sync", window)
        for name in names:
            self.x("xdotool", "key", name)
            time.sleep(pause)

    def start_new_game(self):
        """From the main menu: "New Game", and on to the design screen."""
        self.choose("New Game")
        self.wait_for_screen(showing_design_screen, timeout=30)

    def fly(self, *fitted):
        """From the title pause's end: a new game, the offers at these places fitted, and the level begun."""
        self.start_new_game()
        for place in fitted:  # each place counted from the last one fitted
            self.keys(*["Down"] * place, "Return")
        self.keys("Escape")

    def choose(self, entry, chosen=0):
        """Picks a main-menu entry, going down from the one chosen now (its index)."""
        self.keys(*(["Down"] * (MAIN_MENU.index(entry) - chosen)), "Return")

    def close_window(self):
        """Asks the window to close as a window manager does (WM_DELETE_WINDOW)."""
        x11 = ctypes.CDLL(ctypes.util.find_library("X11"))
        x11.XOpenDisplay.restype = ctypes.c_void_p
        x11.XInternAtom.restype = ctypes.c_ulong
        x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
        x11.XSendEvent.argtypes = [ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int, ctypes.c_long, ctypes.c_void_p]
        x11.XCloseDisplay.argtypes = [ctypes.c_void_p]
        connection = x11.XOpenDisplay(self.display.encode())
        if not connection:
            fail("cannot reach the X server")
        event = _ClientMessage(type=33, send_event=1, display=connection,  # ClientMessage
                               window=int(self.current_window()),
                               message_type=x11.XInternAtom(connection, b"WM_PROTOCOLS", 0), format=32)
        event.data[0] = x11.XInternAtom(connection, b"WM_DELETE_WINDOW", 0)
        x11.XSendEvent(connection, event.window, 0, 0, ctypes.byref(event))
        x11.XCloseDisplay(connection)  # which sends the event on

    def window_size(self):
        shell = self.x("xdotool", "getwindowgeometry", "--shell", self.current_window())
        values = dict(line.split("=", 1) for line in shell.split())
        return int(values["WIDTH"]), int(values["HEIGHT"])

    def wait_window_size(self, size):
        wait_until(lambda: self.window_size() == size, f"the window is {size} (it is {self.window_size()})")

    def unfocus(self):
        """Gives the keyboard to the desktop, as clicking another window would."""
        root = re.search(r"Window id: (0x[0-9a-fA-F]+)", self.x("xwininfo", "-root")).group(1)
        self.x("xdotool", "windowfocus", root)

    def terminate(self):
        self.game.send_signal(signal.SIGTERM)

    # What a player sees.

    def screenshot(self):
        raw = on_display(self.display, "import", "-window", "root", "-depth", "8", "rgb:-", check=True, text=False)
        width, height = self.screen_size
        if len(raw) != 3 * width * height:
            fail(f"a screenshot of {len(raw)} bytes for a {width}x{height} screen")
        return Screen(width, height, raw)

    def wait_for_screen(self, accept, timeout=20, every=0.2):
        return wait_for_screen(self.screenshot, accept, timeout=timeout, every=every)

    def art(self, name, width, height):
        return picture_file(os.path.join(self.data, "art", name), width, height)

    # What the game leaves behind.

    def settings_path(self):
        return os.path.join(self.folder, SETTINGS_FILE)

    def settings_saved(self):
        return pathlib.Path(self.settings_path()).read_bytes()

    def recording_path(self):
        return os.path.join(self.scratch, "output.raw")

    def recording(self):
        return Recording(self.recording_path())

    def recorded(self):
        """How many seconds the game has played so far."""
        path = self.recording_path()
        return os.path.getsize(path) / (4 * AUDIO_RATE) if os.path.exists(path) else 0

    def wait_recorded(self, seconds):
        """Waits until the game has played that many seconds in all, however slowly it goes."""
        wait_until(lambda: self.recorded() >= seconds, f"{seconds:.1f} s played", timeout=2 * seconds + 30, every=0.05)

    def log_path(self):
        return os.path.join(self.scratch, "game.log")

    def said(self):
        """What the game has written on stderr so far."""
        return pathlib.Path(self.log_path()).read_text(encoding="utf-8", errors="replace")

    def wait_said(self, words, timeout=10):
        wait_until(lambda: words in self.said(), f"the game said {words!r} (it said {self.said()!r})", timeout, 0.1)

    def keep_evidence(self):
        """After a failure: the last screen and what the game wrote and played."""
        stem = os.path.join(os.environ.get("QV_E2E_EVIDENCE", tempfile.gettempdir()),
                            f"qv-e2e-{os.path.basename(sys.argv[0])[:-3]}")
        try:
            self.screenshot().save(stem + ".png")
            print(f"last screen: {stem}.png", file=sys.stderr)
        except Exception:
            pass
        for path, suffix in ((self.log_path(), ".log"), (self.recording_path(), ".raw")):
            if os.path.exists(path):
                shutil.copy(path, stem + suffix)
                print(f"kept: {stem}{suffix}", file=sys.stderr)


def start_xvfb(size=(SCREEN_WIDTH, SCREEN_HEIGHT)):
    """An X server of its own: the process and its display name."""
    # -displayfd picks a free display number, so tests can run side by side.
    # -noreset: a server that resets whenever its last client leaves hangs up
    # on a program that connects in that moment, as the game does between
    # two polls of the window tree.
    read_end, write_end = os.pipe()
    width, height = size
    xvfb = subprocess.Popen(["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{width}x{height}x24",
                             "-nolisten", "tcp", "-noreset"], pass_fds=(write_end,),
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write_end)
    with os.fdopen(read_end) as f:
        number = f.readline().strip()
    if not number:
        fail("Xvfb did not start")
    return xvfb, ":" + number


class XServer:

    def __enter__(self):
        self.process, self.display = start_xvfb()
        return self

    def __exit__(self, *failure):
        self.process.kill()
        self.process.wait()
        return False


def on_display(display, *command, timeout=10, check=False, text=True):
    """What an X tool run on display prints."""
    return subprocess.run(command, env=dict(os.environ, DISPLAY=display), capture_output=True, text=text,
                          check=check, timeout=timeout).stdout


def find_error_box(display):
    # The box's title is typed UTF-8, which xdotool's search by name does not read.
    found = [line.split()[0] for line in on_display(display, "xwininfo", "-root", "-tree").splitlines()
             if '"ERROR"' in line]
    return found[-1] if found else None


def wait_error_box(display, process):
    """The error box a failed start shows; fails if the program ends without one."""
    def shown():
        if process.poll() is not None:
            fail(f"the program ended (status {process.returncode}) without showing its error box")
        return find_error_box(display)
    return wait_until(shown, "an error box showed", every=0.1)


def dismiss_error_box(display, process):
    """Presses Enter on the error box a failed start shows until the program has
    ended and its box is gone, so that no later program is taken for it."""
    def answered():
        box = find_error_box(display)
        try:  # a key that reached the box before it could take it is pressed again
            if box:
                on_display(display, "xdotool", "windowfocus", "--sync", box, "key", "Return", timeout=2)
        except subprocess.TimeoutExpired:
            pass
        return not box and process.poll() is not None
    wait_error_box(display, process)
    wait_until(answered, "the error box closed", every=0.1)


def unprivileged_user():
    """Where the tests run as root, the user other programs run as (nobody)."""
    return pwd.getpwnam("nobody") if os.geteuid() == 0 else None


def as_ordinary_user(command):
    user = unprivileged_user()
    if not user:
        return command
    return ["setpriv", f"--reuid={user.pw_uid}", f"--regid={user.pw_gid}", "--clear-groups", "--"] + command


def game_data(data):
    """The names of the game's own files in data, the player's left out."""
    return [name for name in os.listdir(data) if name not in PLAYER_FILES and not name.startswith(".")]


def link_game_data(folder, tune=None):
    """Links to every file of the built game data; tune, when given, stands for the background tune."""
    data = os.environ["QV_GAME_DIR"]
    for name in game_data(data):
        os.symlink(tune if name == "background.mid" and tune else os.path.join(data, name), os.path.join(folder, name))


def replace_art(folder, blank=None):
    """The art folder as real files: links to every picture but the blank, and the blank as given."""
    art = os.path.join(folder, "art")
    source = os.path.realpath(art)
    os.remove(art)
    os.mkdir(art)
    for name in os.listdir(source):
        if name != "blank.bmp":
            os.symlink(os.path.join(source, name), os.path.join(art, name))
    if blank is not None:
        pathlib.Path(art, "blank.bmp").write_bytes(blank)


def game_env(display, config_home, **extra):
    """The environment of a game on display (or on none at all), with no sound unless extra says otherwise."""
    env = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER")}
    if display:
        env["DISPLAY"] = display
    # In a sanitizer build, leaks are the unit tests' business: the system libraries SDL
    # loads keep memory the leak checker cannot tell from the game's.
    env.update(SDL_AUDIODRIVER="dummy", XDG_CONFIG_HOME=config_home,
               ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0")
    return dict(env, **extra)


def start_program(args, folder, display=None, **streams):
    """The game started in folder, on display (or with none at all), with no sound."""
    return subprocess.Popen([os.environ["QV_GAME"]] + list(args), cwd=folder,
                            env=game_env(display, os.path.join(folder, ".config-test")), **streams)


def run_program(args, folder, display=None, answer_box=False, timeout=30):
    """Runs the game to its end: (status, stdout, stderr); answer_box presses Enter on its error box."""
    process = start_program(args, folder, display, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    if answer_box:
        dismiss_error_box(display, process)
    try:
        out, err = process.communicate(timeout=timeout)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        fail(f"{args} still running after {timeout} s")
    return process.returncode, out, err


def expect_equal(actual, expected, what):
    if actual != expected:
        fail(f"{what}: expected {expected!r}, got {actual!r}")


def expect_close(difference, limit, what):
    if difference > limit:
        fail(f"{what}: differs by {difference:.1f} (at most {limit} expected)")


def expect_normal_end(game, settings, what="the game"):
    expect_equal(game.wait_exit(), 0, f"{what}: exit status")
    expect_equal(game.settings_saved(), settings, f"{what}: quelvarion.ini")


def run(*tests):
    try:
        for test in tests:
            test()
    except AssertionError as problem:
        print(f"FAILED: {problem}", file=sys.stderr)
        sys.exit(1)
    print("passed")
