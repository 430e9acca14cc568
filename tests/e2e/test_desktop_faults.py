"""What a desktop can do to a running game: its display goes away, a signal
arrives in any phase, the window is closed, a file is replaced with something
hostile, the disk fills up, the program is stopped and continued. Each case
ends promptly, keeps what the player had and frees the folder for the next game."""
import ctypes
import fcntl
import os
import pathlib
import re
import shutil
import signal
import struct
import subprocess
import tempfile
import time

from quelvarion_e2e import (LAST_GAME, NO_STARS, SETTINGS_FILE, Game, XServer, expect_equal, fail, link_game_data,
                            newly_lit_cells, play_on, replace_art, run, settings_text, showing_box_screen_title,
                            showing_main_menu, showing_title, start_program, wait_error_box, wait_until)

SETTINGS = settings_text(NO_STARS, [("ZOE", 990)])
DISPLAY_LOST = 4
ENDED_AT_ONCE = 128  # + the signal
# A prompt end leaves margin for a loaded machine; the game's own promise is a second.
PROMPT_EXIT_S = 1.5
# The game plays in well under this; a hostile file must not add to it.
PEAK_MEMORY_KB = 400 * 1024
SPARSE_BYTES = 2 << 30


def expect_ended(process, statuses, what, prompt=True, memory=False):
    """Waits for a child to end; fails unless its status is one of statuses, it
    ended promptly (prompt) and stayed small (memory). Returns the status."""
    start = time.monotonic()

    def ended():
        pid, status, usage = os.wait4(process.pid, os.WNOHANG)
        return pid and (status, usage)
    status, usage = wait_until(ended, f"{what}: the program ended", timeout=20, every=0.02)
    seconds, process.returncode = time.monotonic() - start, os.waitstatus_to_exitcode(status)
    print(f"{what:40} status {process.returncode:3}  ended in {seconds:5.2f} s  peak {usage.ru_maxrss // 1024:4} MB")
    if process.returncode not in statuses:
        fail(f"{what}: exit status {process.returncode}")
    if prompt and seconds > PROMPT_EXIT_S:
        fail(f"{what}: ended {seconds:.2f} s later")
    if memory and usage.ru_maxrss > PEAK_MEMORY_KB:
        fail(f"{what}: {usage.ru_maxrss // 1024} MB at the peak")
    return process.returncode


def expect_folder_free(folder):
    with open(os.path.join(folder, ".quelvarion.lock"), "a") as lock:
        try:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            fail("the folder's lock is still held")


def task_states(pid):
    """The state letter of each of the process's threads, or none once it is gone."""
    states = []
    try:
        for task in os.listdir(f"/proc/{pid}/task"):
            states.append(pathlib.Path(f"/proc/{pid}/task/{task}/stat").read_text().rsplit(")", 1)[1].split()[0])
    except FileNotFoundError:
        pass
    return states


def all_stopped(pid):
    states = task_states(pid)
    return states and all(state == "T" for state in states)


# A table of losing scores and a level no new ship outlives for long: the
# game ends in the table, asking for a name.
LOSING_OPTIONS = {"Start Level": "99", "Background Stars": "Off"}
OLD_SCORES = [("OLD", -100 - place) for place in range(10)]
LOSING = settings_text(LOSING_OPTIONS, OLD_SCORES)
# The lost game on top of the table, under the two letters typed.
NAMED = settings_text(LOSING_OPTIONS, [("AD", 0)] + OLD_SCORES[:9])


def name_entry(game):
    game.wait_title_pause()
    game.fly()  # and lose
    game.wait_for_screen(showing_box_screen_title, timeout=60)
    game.keys("a", "d")


def stop_and_continue(game):
    """A level stopped for longer than a second comes back paused, not lost to the time it did not run."""
    game.game.send_signal(signal.SIGSTOP)
    wait_until(lambda: all_stopped(game.game.pid), "the game stopped")
    time.sleep(3)  # the length of the stop, not a wait
    game.game.send_signal(signal.SIGCONT)
    game.wait_for_screen(showing_main_menu, timeout=30)
    if newly_lit_cells(game) > 0:
        fail("the level went on after the stop instead of pausing")
    game.terminate()


PHASES = {"the title pause": lambda game: game.wait_for_screen(showing_title),
          "the menus": Game.wait_title_pause,
          "the design screen": lambda game: (game.wait_title_pause(), game.start_new_game()),
          "flight": lambda game: (game.wait_title_pause(), game.fly(), play_on(game)),
          "name entry": name_entry}
LOST = "the display went away"
# Faults in a running game: (how it ends, in which phase, its exit status). A
# game begun is kept as the last game; the settings are kept, a name half typed included.
RUNNING_FAULTS = [
    ("display killed", "the design screen", DISPLAY_LOST),
    ("display killed", "the menus", DISPLAY_LOST),
    ("display killed", "name entry", DISPLAY_LOST),
    ("SIGTERM", "name entry", 0),
    ("SIGTERM", "the title pause", ENDED_AT_ONCE + signal.SIGTERM),
    ("window closed", "the menus", 0),
    ("SIGHUP", "the design screen", 0),
    ("stopped 3 s, then SIGTERM", "flight", 0),
]
ENDS = {"display killed": lambda game: game.xvfb.kill(), "SIGTERM": Game.terminate,
        "window closed": Game.close_window, "SIGHUP": lambda game: game.game.send_signal(signal.SIGHUP),
        "stopped 3 s, then SIGTERM": stop_and_continue}


def running_faults(scratch):
    """Returns the replay the game that lost its display in name entry kept."""
    for end, phase, status in RUNNING_FAULTS:
        what = f"{end} in {phase}"
        with Game(settings=LOSING if phase == "name entry" else SETTINGS) as game:
            PHASES[phase](game)
            ENDS[end](game)
            expect_ended(game.game, (status,), what)
            saved = game.settings_saved()
            if phase == "name entry":
                saved = re.sub(rb"(?m)^AD = \d+", b"AD = 0", saved)  # whatever it scored
            expect_equal(saved, NAMED if phase == "name entry" else SETTINGS, f"{what}: quelvarion.ini")
            expect_folder_free(game.folder)
            if status == DISPLAY_LOST:
                game.wait_said(LOST)
            replay = os.path.join(game.folder, LAST_GAME)
            if phase not in ("the title pause", "the menus") and not os.path.isfile(replay):
                fail(f"{what}: the game's replay was not kept")
            if what == "display killed in name entry":
                kept_replay = shutil.copy(replay, os.path.join(scratch, "name-entry.qvr"))
    return kept_replay


def watch_interrupted(replay, number, what):
    """A replay being watched ends at a signal as a game does, and saves nothing."""
    with Game(settings=SETTINGS, args=["--replay", replay]) as game:
        files = sorted(os.listdir(game.folder))
        game.wait_for_screen(showing_title)  # the recorded game begins
        game.game.send_signal(number)
        expect_ended(game.game, (0,), what)
        expect_equal(game.settings_saved(), SETTINGS, f"{what}: quelvarion.ini")
        expect_equal(sorted(os.listdir(game.folder)), files, f"{what}: the files in its folder")


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


def check_interrupted(replay, number, what):
    """A replay being checked ends at a signal, leaving nothing behind. The
    check is stopped at its opening of the replay, its scratch folder made, so
    that the signal finds it at work (a short check let go may finish first)."""
    beside = sorted(os.listdir(os.path.dirname(replay)))
    temporary = tempfile.mkdtemp(dir=os.path.dirname(replay))
    held = HeldOpen(replay)
    process = subprocess.Popen([os.environ["QV_GAME"], "--verify", replay], cwd=temporary,
                               env=dict(os.environ, TMPDIR=temporary), stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    held.wait_opening()
    if not os.listdir(temporary):
        fail("the check of a replay made no scratch folder")
    process.send_signal(signal.SIGSTOP)
    held.release()
    wait_until(lambda: all_stopped(process.pid), "the check stopped", every=0.01)
    process.send_signal(number)
    process.send_signal(signal.SIGCONT)
    expect_ended(process, (ENDED_AT_ONCE + number, 0), what)
    expect_equal(os.listdir(temporary), [], f"{what}: its scratch folder")
    os.rmdir(temporary)
    expect_equal(sorted(os.listdir(os.path.dirname(replay))), beside, f"{what}: the files beside it")


def replay_signals(replay):
    for interrupted, number, doing in ((watch_interrupted, signal.SIGTERM, "watching"),
                                       (check_interrupted, signal.SIGINT, "checking")):
        what = f"{signal.Signals(number).name} {doing} a replay"
        try:
            interrupted(replay, number, what)
        except PermissionError:
            print(f"skipped {what}: the check cannot be held at work here (fanotify needs root)")


# The error boxes of a start that failed: (what, folder set-up, how it is ended, status).
BOX_FAULTS = [
    ("SIGTERM at a failed start's box", replace_art, "signal", ENDED_AT_ONCE + signal.SIGTERM),
    ("SIGTERM at a refusal's box", None, "signal", ENDED_AT_ONCE + signal.SIGTERM),
    ("display killed at a failed start's box", replace_art, "display", DISPLAY_LOST),
]


def box_faults(scratch):
    for what, breaks, end, status in BOX_FAULTS:
        folder = tempfile.mkdtemp(dir=scratch)
        if breaks:
            link_game_data(folder)
            breaks(folder)
        with XServer() as x:
            game = start_program([], folder, x.display, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            wait_error_box(x.display, game)
            children = pathlib.Path(f"/proc/{game.pid}/task/{game.pid}/children").read_text()
            helpers = [int(child) for child in children.split()]
            if end == "signal":
                game.terminate()
            else:
                x.process.kill()
            expect_ended(game, (status,), what)
            gone = lambda: all(set(task_states(pid)) <= {"Z"} for pid in helpers)
            wait_until(gone, f"{what}: the box's process {helpers} ended with the program", timeout=5)


def sparse(path):
    with open(path, "wb") as f:
        f.truncate(SPARSE_BYTES)


# Hostile files: (what, the file, what stands in its place, the name the line
# gives). The game starts all the same, names the file, stays small, and
# leaves it as it was.
HOSTILE_FILES = [
    ("settings linked to /dev/zero", SETTINGS_FILE, lambda path: os.symlink("/dev/zero", path), SETTINGS_FILE),
    ("settings a folder", SETTINGS_FILE, os.mkdir, "it is a folder"),
    ("sprite list a pipe", "sprite.ini", os.mkfifo, "sprite.ini"),
    ("sprite list of 2 GB", "sprite.ini", sparse, "sprite.ini"),
    ("start-up sound a pipe", "startup.wav", os.mkfifo, "startup.wav"),
]


def in_place_of(name, make):
    def prepare(folder):
        path = os.path.join(folder, name)
        if os.path.lexists(path):
            os.remove(path)
        make(path)
    return prepare


def hostile_files(scratch):
    for what, name, make, words in HOSTILE_FILES:
        with Game(prepare=in_place_of(name, make)) as game:
            game.wait_said(words)
            game.terminate()
            expect_ended(game.game, (0, ENDED_AT_ONCE + signal.SIGTERM), what, prompt=False, memory=True)
            if name == SETTINGS_FILE and os.path.isfile(game.settings_path()):
                fail(f"{what}: replaced by a file")
    for what, make in (("replay a pipe", os.mkfifo), ("replay of 2 GB", sparse), ("replay a folder", os.mkdir)):
        path = os.path.join(scratch, "hostile.qvr")
        make(path)
        process = subprocess.Popen([os.environ["QV_GAME"], "--verify", path], stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        expect_ended(process, (3,), what, prompt=False, memory=True)
        subprocess.run(["rm", "-rf", path], check=True)


def full_disk(scratch):
    """A save onto a full disk fails with that reason and leaves the old file."""
    mount = os.path.join(scratch, "small")
    os.mkdir(mount)
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4m", "tmpfs", mount], capture_output=True).returncode:
        print("skipped a full disk: no tmpfs can be mounted here")
        return
    try:
        def prepare(folder):
            pathlib.Path(mount, SETTINGS_FILE).write_bytes(SETTINGS)
            os.remove(os.path.join(folder, SETTINGS_FILE))
            os.symlink(os.path.join(mount, SETTINGS_FILE), os.path.join(folder, SETTINGS_FILE))

        with Game(settings=settings_text({}, [("ZOE", 990)]), prepare=prepare) as game:
            game.wait_title_pause()
            try:
                with open(os.path.join(mount, "filler"), "wb", buffering=0) as f:
                    while True:
                        f.write(b"\0" * 65536)
            except OSError:
                pass  # full
            game.terminate()
            expect_ended(game.game, (0,), "disk full at the save", prompt=False)
            game.wait_said("the disk is full")
            expect_equal(pathlib.Path(mount, SETTINGS_FILE).read_bytes(), SETTINGS, "full disk: quelvarion.ini")
    finally:
        subprocess.run(["umount", "-l", mount])


def desktop_faults():
    scratch = tempfile.mkdtemp(prefix="qv-e2e-faults-")
    try:
        replay_signals(running_faults(scratch))
        box_faults(scratch)
        hostile_files(scratch)
        full_disk(scratch)
    finally:
        subprocess.run(["rm", "-rf", scratch])


run(desktop_faults)
