"""A second copy started in the folder of a running game says so, on stderr
and in its error box, and ends with status 1 having touched nothing; the first
game plays on and saves as usual when it ends."""
import os
import tempfile

from quelvarion_e2e import Game, dismiss_error_box, expect_equal, expect_normal_end, fail, run, settings_text

SETTINGS = settings_text({"Music": "Off"}, [("ADA", 300)])


def folder_state(folder):
    return {name: os.lstat(os.path.join(folder, name)).st_mtime_ns for name in os.listdir(folder)}


def one_per_folder():
    with Game(settings=SETTINGS) as game:
        game.wait_title_pause()
        before = folder_state(game.folder)
        said = tempfile.TemporaryFile()
        second = game.start([game.program], stderr=said)
        try:
            dismiss_error_box(game.display, second)
            expect_equal(second.wait(20), 1, "the second copy's exit status")
        finally:
            if second.poll() is None:
                second.kill()
        said.seek(0)
        said = said.read().decode()
        if "the game is already running in" not in said:
            fail(f"the second copy said {said!r}")
        expect_equal(folder_state(game.folder), before, "the folder after the second copy")
        game.choose("Options")
        game.keys("Right", "Right")                  # "Start Level" 1 -> 3
        game.keys("Escape", "Down", "Down", "Return")  # "Exit Game"
        expect_normal_end(game, settings_text({"Music": "Off", "Start Level": "3"}, [("ADA", 300)]))


run(one_per_folder)
