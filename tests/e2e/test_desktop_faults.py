"""What a desktop can do to a running game: its display goes away, a signal
arrives in any phase, a file is replaced with something hostile, the disk
fills up, the program is stopped and continued. Each case ends promptly,
keeps what the player had and frees the folder for the next game."""
import ctypes
import fcntl
import os
import re
import shutil
import signal
import struct
import subprocess
import tempfile
import time

from quelvarion_e2e import (SETTINGS_FILE, Game, XServer, expect_equal, fail, find_error_box, link_game_data,
                            newly_lit_cells, replace_art, run, settings_text, showing_box_screen_title)

SETTINGS = settings_text({"Background Stars": "Off"}, [("ZOE", 990)])
DISPLAY_LOST = 4
ENDED_AT_ONCE = 128  # + the signal
# A prompt end leaves margin for a loaded machine; the game's own promise is a second.
PROMPT_EXIT_S = 1.5
# The game plays in well under this; a hostile file must not add to it.
PEAK_MEMORY_KB = 400 * 1024
SPARSE_BYTES = 2 << 30


def wait_ended(process, timeout):
    """(status, seconds taken, peak memory in KB) of a child that should end within timeout."""
    start = time.monotonic()
    while time.monotonic() - start < timeout:
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
        if pid:
            process.returncode = os.waitstatus_to_exitcode(status)
            return process.returncode, time.monotonic() - start, usage.ru_maxrss
        time.sleep(0.02)
    fail(f"still running {timeout} s later")


def expect_folder_free(folder):
    with open(os.path.join(folder, ".quelvarion.lock"), "a") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            fail("the folder's lock is still held")


def expect_line(game, words, timeout=5):
    deadline = time.monotonic() + timeout
    while True:
        with open(game.log_path(), encoding="utf-8", errors="replace") as f:
            log = f.read()
        if words in log:
            return
        if time.monotonic() > deadline:
            fail(f"stderr lacks {words!r}: {log!r}")
        time.sleep(0.1)


def all_stopped(pid):
    states = []
    for task in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{task}/stat") as f:
            states.append(f.read().rsplit(")", 1)[1].split()[0])
    return all(state == "T" for state in states)


def children(pid):
    with open(f"/proc/{pid}/task/{pid}/children") as f:
        return [int(child) for child in f.read().split()]


# Ending faults in a running game: (what, settings, act on the game, status, its line, kept).
def kill_display(game):
    game.xvfb.kill()


def signal_in_level(number):
    def act(game):
        game.start_new_game()
        game.game.send_signal(number)
    return act


# A table of losing scores and a level no new ship outlives for long: the
# game ends in the table, asking for a name.
LOSING_OPTIONS = {"Start Level": "99", "Background Stars": "Off"}
OLD_SCORES = [("OLD", -100 - place) for place in range(10)]
LOSING = settings_text(LOSING_OPTIONS, OLD_SCORES)


def half_named(end):
    def act(game):
        game.start_new_game()
        game.keys("Escape")  # fly, and lose
        game.wait_for_screen(showing_box_screen_title, timeout=60)
        game.keys("a", "d")
        end(game)
    return act


def with_name(name):
    """The losing table with the lost game on top under name, whatever it scored."""
    expected = settings_text(LOSING_OPTIONS, [(name, 0)] + OLD_SCORES[:9])
    return lambda saved: re.sub(rb"(?m)^" + name.encode() + rb" = \d+", name.encode() + b" = 0", saved) == expected


def unchanged(saved):
    return saved == SETTINGS


# The replay of the game played, kept in the folder for every game begun.
LAST_GAME = "last-game.qvr"

RUNNING_FAULTS = [
    ("display killed in a level", SETTINGS, lambda g: (g.start_new_game(), kill_display(g)), DISPLAY_LOST,
     "the display went away", unchanged),
    ("display killed in the menus", SETTINGS, kill_display, DISPLAY_LOST, "the display went away", unchanged),
    ("display killed in name entry", LOSING, half_named(kill_display), DISPLAY_LOST, "the display went away",
     with_name("AD")),
    ("SIGTERM in name entry", LOSING, half_named(lambda g: g.terminate()), 0, None, with_name("AD")),
    ("SIGHUP in a level", SETTINGS, signal_in_level(signal.SIGHUP), 0, None, unchanged),
    ("SIGINT in a level", SETTINGS, signal_in_level(signal.SIGINT), 0, None, unchanged),
]


def running_faults(scratch):
    """The rows, and the replays the games kept, by the row's name."""
    rows, replays = [], {}
    for what, settings, act, status, words, kept in RUNNING_FAULTS:
        with Game(settings=settings) as game:
            game.wait_title_pause()
            act(game)
            got, seconds, peak = wait_ended(game.game, 10)
            expect_equal(got, status, f"{what}: exit status")
            if seconds > PROMPT_EXIT_S:
                fail(f"{what}: ended {seconds:.2f} s later")
            if not kept(game.settings_saved()):
                fail(f"{what}: quelvarion.ini reads {game.settings_saved()!r}")
            expect_folder_free(game.folder)
            if words:
                expect_line(game, words)
            replay = os.path.join(game.folder, LAST_GAME)
            if "menus" not in what:
                if not os.path.isfile(replay):
                    fail(f"{what}: the game's replay was not kept")
                replays[what] = shutil.copy(replay, os.path.join(scratch, f"{len(replays)}.qvr"))
            rows.append((what, got, seconds, peak))
    return rows, replays


def watch_interrupted(replay, number):
    """A replay being watched ends at a signal as a game does, and saves nothing."""
    with Game(settings=SETTINGS, args=["--replay", replay]) as game:
        files = sorted(os.listdir(game.folder))
        time.sleep(1)  # well inside the game it shows
        game.game.send_signal(number)
        got, seconds, peak = wait_ended(game.game, 10)
        expect_equal(game.settings_saved(), SETTINGS, "a replay watched: quelvarion.ini")
        expect_equal(sorted(os.listdir(game.folder)), files, "a replay watched: the files in its folder")
        return got, seconds, peak


class HeldOpen:
    """Holds every opening of a file until released (fanotify, as root): the
    opener waits in the kernel meanwhile."""
    CLASS_CONTENT, MARK_ADD, OPEN_PERM, ALLOW = 0x4, 0x1, 0x10000, 0x1
    EVENT = struct.Struct("IBBHQii")

    def __init__(self, path):
        libc = ctypes.CDLL(None, use_errno=True)
        libc.fanotify_mark.argtypes = [ctypes.c_int, ctypes.c_uint, ctypes.c_uint64, ctypes.c_int, ctypes.c_char_p]
        self.fd = libc.fanotify_init(self.CLASS_CONTENT, os.O_RDONLY | os.O_CLOEXEC)
        if self.fd < 0 or libc.fanotify_mark(self.fd, self.MARK_ADD, self.OPEN_PERM, -100, path.encode()) != 0:
            raise OSError(ctypes.get_errno(), "fanotify")

    def wait_opening(self):
        self.opening = self.EVENT.unpack_from(os.read(self.fd, 4096))[5]

    def release(self):
        os.write(self.fd, struct.pack("iI", self.opening, self.ALLOW))
        os.close(self.opening)
        os.close(self.fd)


def check_interrupted(replay, number):
    """A replay being checked ends at a signal, leaving nothing behind. The
    check is caught at its opening of the replay, its scratch folder made,
    and stopped there, so that the signal finds it at work as it would find
    the check of a replay hours long."""
    beside = sorted(os.listdir(os.path.dirname(replay)))
    temporary = tempfile.mkdtemp(dir=os.path.dirname(replay))
    held = HeldOpen(replay)
    process = subprocess.Popen([os.environ["QV_GAME"], "--verify", replay], cwd=temporary,
                               env=dict(os.environ, TMPDIR=temporary), stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    held.wait_opening()
    if not os.listdir(temporary):
        fail("the check of a replay made no scratch folder")
    # Stopped as it goes on from there: at work, as a long check would be when the signal comes.
    process.send_signal(signal.SIGSTOP)
    held.release()
    while not all_stopped(process.pid):
        time.sleep(0.01)
    process.send_signal(number)
    process.send_signal(signal.SIGCONT)
    got, seconds, peak = wait_ended(process, 10)
    expect_equal(os.listdir(temporary), [], "a replay checked: its scratch folder")
    os.rmdir(temporary)
    expect_equal(sorted(os.listdir(os.path.dirname(replay))), beside, "a replay checked: the files beside it")
    return got, seconds, peak


# A replay watched or checked, ended by a signal: (what, how, signal, statuses).
# The replay at hand is short: a check let go may finish before its signal
# is heard, and leaves nothing behind either way.
REPLAY_SIGNALS = [
    ("SIGTERM watching a replay", watch_interrupted, signal.SIGTERM, (0,)),
    ("SIGINT watching a replay", watch_interrupted, signal.SIGINT, (0,)),
    ("SIGTERM checking a replay", check_interrupted, signal.SIGTERM, (ENDED_AT_ONCE + signal.SIGTERM, 0)),
    ("SIGINT checking a replay", check_interrupted, signal.SIGINT, (ENDED_AT_ONCE + signal.SIGINT, 0)),
]


def replay_signals(replay):
    rows = []
    for what, interrupted, number, statuses in REPLAY_SIGNALS:
        try:
            got, seconds, peak = interrupted(replay, number)
        except PermissionError:
            print(f"skipped {what}: the check cannot be held at work here (fanotify needs root)")
            continue
        if got not in statuses:
            fail(f"{what}: exit status {got}")
        if seconds > PROMPT_EXIT_S:
            fail(f"{what}: ended {seconds:.2f} s later")
        rows.append((what, got, seconds, peak))
    return rows


def title_pause_signal():
    with Game(settings=SETTINGS) as game:
        time.sleep(1)  # the title is up, the pause under way
        game.terminate()
        got, seconds, peak = wait_ended(game.game, 10)
        expect_equal(got, ENDED_AT_ONCE + signal.SIGTERM, "SIGTERM in the title pause: exit status")
        if seconds > PROMPT_EXIT_S:
            fail(f"SIGTERM in the title pause: ended {seconds:.2f} s later")
        expect_equal(game.settings_saved(), SETTINGS, "SIGTERM in the title pause: quelvarion.ini")
        expect_folder_free(game.folder)
        return [("SIGTERM in the title pause", got, seconds, peak)]


def no_blank(folder):
    replace_art(folder, None)


# The error boxes of a start that failed: (what, folder set-up, how it is ended, status).
BOX_FAULTS = [
    ("SIGTERM at a failed start's box", no_blank, "signal", ENDED_AT_ONCE + signal.SIGTERM),
    ("SIGTERM at a refusal's box", None, "signal", ENDED_AT_ONCE + signal.SIGTERM),
    ("display killed at a failed start's box", no_blank, "display", DISPLAY_LOST),
]


def box_faults(scratch):
    rows = []
    for what, breaks, end, status in BOX_FAULTS:
        folder = tempfile.mkdtemp(dir=scratch)
        if breaks:
            link_game_data(folder)
            breaks(folder)
        with XServer() as x:
            env = dict(os.environ, DISPLAY=x.display, SDL_AUDIODRIVER="dummy",
                       XDG_CONFIG_HOME=os.path.join(folder, ".config"))
            env.pop("SDL_VIDEODRIVER", None)
            game = subprocess.Popen([os.environ["QV_GAME"]], cwd=folder, env=env, stdout=subprocess.DEVNULL,
                                    stderr=subprocess.DEVNULL)
            deadline = time.monotonic() + 20
            while not find_error_box(x.display):
                if time.monotonic() > deadline or game.poll() is not None:
                    fail(f"{what}: no error box showed")
                time.sleep(0.1)
            helpers = children(game.pid)
            if end == "signal":
                game.terminate()
            else:
                x.process.kill()
            got, seconds, peak = wait_ended(game, 10)
            expect_equal(got, status, f"{what}: exit status")
            if seconds > PROMPT_EXIT_S:
                fail(f"{what}: ended {seconds:.2f} s later")
            time.sleep(0.2)
            left = [pid for pid in helpers if os.path.exists(f"/proc/{pid}") and
                    open(f"/proc/{pid}/stat").read().split()[2] != "Z"]
            if left:
                fail(f"{what}: the box's process {left} outlived the program")
            rows.append((what, got, seconds, peak))
    return rows


def sparse(path):
    with open(path, "wb") as f:
        f.truncate(SPARSE_BYTES)


def fifo(path):
    os.mkfifo(path)


def to_zero(path):
    os.symlink("/dev/zero", path)


def replace(name, make):
    def prepare(folder):
        path = os.path.join(folder, name)
        if os.path.lexists(path):
            os.remove(path)
        make(path)
    return prepare


# Hostile files: (what, prepare the folder, the name the line gives). The game
# starts all the same, names the file, stays small, and leaves it as it was.
HOSTILE_FILES = [
    ("settings linked to /dev/zero", replace(SETTINGS_FILE, to_zero), SETTINGS_FILE),
    ("settings a pipe", replace(SETTINGS_FILE, fifo), SETTINGS_FILE),
    ("settings a folder", replace(SETTINGS_FILE, os.mkdir), "it is a folder"),
    ("sprite list linked to /dev/zero", replace("sprite.ini", to_zero), "sprite.ini"),
    ("sprite list a pipe", replace("sprite.ini", fifo), "sprite.ini"),
    ("sprite list of 2 GB", replace("sprite.ini", sparse), "sprite.ini"),
    ("start-up sound a pipe", replace("startup.wav", fifo), "startup.wav"),
    ("settings of 2 GB", replace(SETTINGS_FILE, sparse), SETTINGS_FILE),
]


def hostile_files():
    rows = []
    for what, prepare, words in HOSTILE_FILES:
        with Game(prepare=prepare) as game:
            expect_line(game, words)
            game.terminate()
            got, seconds, peak = wait_ended(game.game, 10)
            if got not in (0, ENDED_AT_ONCE + signal.SIGTERM):
                fail(f"{what}: exit status {got}")
            if peak > PEAK_MEMORY_KB:
                fail(f"{what}: {peak // 1024} MB at the peak")
            rows.append((what, got, seconds, peak))
            if SETTINGS_FILE in what and os.path.isfile(game.settings_path()):
                fail(f"{what}: replaced by a file")
    return rows


def verify_hostile(scratch):
    rows = []
    for what, make in (("replay a pipe", fifo), ("replay of 2 GB", sparse), ("replay a folder", os.mkdir)):
        path = os.path.join(scratch, "hostile.qvr")
        make(path)
        process = subprocess.Popen([os.environ["QV_GAME"], "--verify", path], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        got, seconds, peak = wait_ended(process, 10)
        expect_equal(got, 3, f"{what}: exit status")
        if peak > PEAK_MEMORY_KB:
            fail(f"{what}: {peak // 1024} MB at the peak")
        rows.append((what, got, seconds, peak))
        subprocess.run(["rm", "-rf", path], check=True)
    return rows


def stop_and_continue():
    """A level stopped for longer than a second comes back paused, not lost to the time it did not run."""
    with Game(settings=SETTINGS) as game:
        game.wait_title_pause()
        game.start_new_game()
        game.keys("Escape")  # leave the design screen: level 1 begins
        time.sleep(3)
        game.game.send_signal(signal.SIGSTOP)
        time.sleep(3)
        game.game.send_signal(signal.SIGCONT)
        time.sleep(0.5)
        if newly_lit_cells(game) > 0:
            fail("the level went on after the stop instead of pausing")
        game.terminate()
        got, seconds, peak = wait_ended(game.game, 10)
        expect_equal(got, 0, "after a stop: exit status")
        return [("stopped 3 s in a level", got, seconds, peak)]


def full_disk(scratch):
    """A save onto a full disk fails with that reason and leaves the old file."""
    mount = os.path.join(scratch, "small")
    os.mkdir(mount)
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4m", "tmpfs", mount], capture_output=True).returncode:
        print("skipped a full disk: no tmpfs can be mounted here")
        return []
    try:
        changed = settings_text({"Background Stars": "On"}, [("ZOE", 990)])

        def prepare(folder):
            with open(os.path.join(mount, SETTINGS_FILE), "wb") as f:
                f.write(SETTINGS)
            os.remove(os.path.join(folder, SETTINGS_FILE))
            os.symlink(os.path.join(mount, SETTINGS_FILE), os.path.join(folder, SETTINGS_FILE))

        with Game(settings=changed, prepare=prepare) as game:
            game.wait_title_pause()
            try:
                with open(os.path.join(mount, "filler"), "wb", buffering=0) as f:
                    while True:
                        f.write(b"\0" * 65536)
            except OSError:
                pass  # full
            game.terminate()
            got, seconds, peak = wait_ended(game.game, 10)
            expect_equal(got, 0, "full disk: exit status")
            expect_line(game, "the disk is full")
            with open(os.path.join(mount, SETTINGS_FILE), "rb") as f:
                expect_equal(f.read(), SETTINGS, "full disk: quelvarion.ini")
            return [("disk full at the save", got, seconds, peak)]
    finally:
        subprocess.run(["umount", "-l", mount])


def desktop_faults():
    scratch = tempfile.mkdtemp(prefix="qv-e2e-faults-")
    try:
        played, replays = running_faults(scratch)
        rows = (played + replay_signals(replays["display killed in name entry"]) + title_pause_signal() +
                box_faults(scratch) + hostile_files() + verify_hostile(scratch) + stop_and_continue() +
                full_disk(scratch))
    finally:
        subprocess.run(["rm", "-rf", scratch])
    for what, status, seconds, peak in rows:
        print(f"{what:40} status {status:3}  ended in {seconds:5.2f} s  peak {peak // 1024:4} MB")


run(desktop_faults)
