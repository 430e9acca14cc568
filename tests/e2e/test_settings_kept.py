"""The player's settings after a game ended by "Exit Game": an option changed
on the options screen is saved, and a temporary file a save cut short left
beside it is gone; a writable file in a folder that allows no new files is
saved too. A settings file made read-only is left as it was, and the game
says on stderr that it could not save. A second copy started in the folder
of a running game says so, on stderr and in its error box, ends with status
1 and touches nothing; the first plays on and saves as usual. (Settings that
are a link are the unit tests' business.)"""
import os
import pathlib
import tempfile

from quelvarion_e2e import (MAIN_MENU, NO_STARS, SETTINGS_FILE, Game, dismiss_error_box, expect_equal,
                            expect_normal_end, fail, run, settings_text)

SCORES = [("KIM", 4400)]
BEFORE = settings_text(NO_STARS, SCORES)
# As a save killed before its rename leaves it; no process has this number.
LEFTOVER = f"{SETTINGS_FILE}.4194305.tmp"


def leave_leftover(folder):
    pathlib.Path(folder, LEFTOVER).write_bytes(b"Start Level = 7\r\n")


def read_only_file(folder):
    os.chmod(os.path.join(folder, SETTINGS_FILE), 0o444)


def said_not_saved(game, what):
    if "not saved to" not in game.said() or "read-only" not in game.said():
        fail(f"{what}: the game said {game.said()!r}")


def closed_folder(folder):
    os.chmod(os.path.join(folder, SETTINGS_FILE), 0o666)
    os.chmod(folder, 0o555)


def no_temporary_files(game, what):
    expect_equal([n for n in os.listdir(game.folder) if n.endswith(".tmp")], [], f"{what}: temporary files")


def second_copy(game, what):
    files = lambda: {n: os.lstat(os.path.join(game.folder, n)).st_mtime_ns for n in os.listdir(game.folder)}
    before = files()
    with tempfile.TemporaryFile() as said:
        second = game.start([game.program], stderr=said)
        try:
            dismiss_error_box(game.display, second)  # which waits for its end
        finally:
            if second.poll() is None:
                second.kill()
        said.seek(0)
        expect_equal((second.returncode, b"the game is already running in" in said.read()), (1, True),
                     f"{what}: the second copy's exit status, and its words on why")
    expect_equal(files(), before, f"{what}: the folder after the second copy")


SOUND_OFF = ["Down", "Down", "Left"]
LEVEL_3 = ["Right", "Right"]
# (what, settings before, prepare the folder, as an ordinary user, done first, the options' keys,
#  settings after, checked after)
GAMES = [
    ("a first game", None, None, False, None, SOUND_OFF + ["Up", "Up"] + LEVEL_3,
     settings_text({"Start Level": "3", "Sound FX": "Off"}), None),
    ("settings read-only", BEFORE, read_only_file, True, None, SOUND_OFF, BEFORE, said_not_saved),
    ("a closed folder", BEFORE, closed_folder, True, None, SOUND_OFF,
     settings_text({**NO_STARS, "Sound FX": "Off"}, SCORES), no_temporary_files),
    ("a second copy refused", BEFORE, leave_leftover, False, second_copy, LEVEL_3,
     settings_text({**NO_STARS, "Start Level": "3"}, SCORES), no_temporary_files),
]


def settings_kept():
    for what, before, prepare, ordinary_user, first, keys, after, check in GAMES:
        with Game(settings=before, prepare=prepare, ordinary_user=ordinary_user) as game:
            try:
                game.wait_title_pause()
                if first:
                    first(game, what)
                game.choose("Options")
                game.keys(*keys, "Escape")  # back to the main menu, "Options" still chosen
                game.choose("Exit Game", MAIN_MENU.index("Options"))
                expect_normal_end(game, after, what)
                if check:
                    check(game, what)
            finally:
                os.chmod(game.folder, 0o777)


run(settings_kept)
