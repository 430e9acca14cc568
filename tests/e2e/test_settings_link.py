"""A settings file that is a symbolic link to a file elsewhere stays a link
after a game; its target holds the new values. A temporary file that a save
cut short left beside the target is gone after the next start."""
import os

from quelvarion_e2e import SETTINGS_FILE, Game, expect_equal, expect_normal_end, fail, run, settings_text

SETTINGS = settings_text({"Background Stars": "Off"}, [("KIM", 4400)])
KEPT = os.path.join("..", "kept", "quelvarion-settings.ini")
# As a save killed before its rename leaves it; no process has this number.
LEFTOVER = "quelvarion-settings.ini.4194305.tmp"


def link_settings(folder):
    kept = os.path.join(folder, "kept")
    os.mkdir(kept)
    os.rename(os.path.join(folder, SETTINGS_FILE), os.path.join(kept, "quelvarion-settings.ini"))
    with open(os.path.join(kept, LEFTOVER), "wb") as f:
        f.write(b"Start Level = 7\r\n")
    os.symlink(os.path.join("kept", "quelvarion-settings.ini"), os.path.join(folder, SETTINGS_FILE))


def settings_link():
    with Game(settings=SETTINGS, prepare=link_settings) as game:
        game.wait_title_pause()
        game.choose("Options")
        game.keys("Down", "Down", "Down", "Right")     # "Background Stars" back on
        game.keys("Escape", "Down", "Down", "Return")  # "Exit Game"
        expect_normal_end(game, settings_text({}, [("KIM", 4400)]))
        path = game.settings_path()
        if not os.path.islink(path):
            fail("the settings file is no longer a link")
        expect_equal(os.listdir(os.path.join(game.folder, "kept")), ["quelvarion-settings.ini"], "beside the target")


run(settings_link)
