"""As a player whom file permissions bind: a settings file made read-only is
left as it was, and the game says on stderr that it could not save; a writable
settings file in a folder that allows no new files is saved all the same."""
import os

from quelvarion_e2e import SETTINGS_FILE, Game, expect_equal, expect_normal_end, fail, run, settings_text

SETTINGS = settings_text({"Music": "Off"}, [("LEE", 2100)])


def change_sound_and_exit(game):
    game.wait_title_pause()
    game.choose("Options")
    game.keys("Down", "Down", "Left")             # "Sound FX" off
    game.keys("Escape", "Down", "Down", "Return")  # "Exit Game"


def read_only_file(folder):
    os.chmod(os.path.join(folder, SETTINGS_FILE), 0o444)


def closed_folder(folder):
    os.chmod(os.path.join(folder, SETTINGS_FILE), 0o666)
    os.chmod(folder, 0o555)


def settings_read_only():
    with Game(settings=SETTINGS, ordinary_user=True, prepare=read_only_file) as game:
        change_sound_and_exit(game)
        expect_normal_end(game, SETTINGS)
        with open(game.log_path()) as f:
            said = f.read()
        if "not saved to" not in said or "read-only" not in said:
            fail(f"the game said {said!r}")
    with Game(settings=SETTINGS, ordinary_user=True, prepare=closed_folder) as game:
        try:
            change_sound_and_exit(game)
            expect_normal_end(game, settings_text({"Music": "Off", "Sound FX": "Off"}, [("LEE", 2100)]))
            expect_equal([n for n in os.listdir(game.folder) if n.endswith(".tmp")], [], "temporary files")
        finally:
            os.chmod(game.folder, 0o777)


run(settings_read_only)
