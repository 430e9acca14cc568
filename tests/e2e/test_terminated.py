"""SIGTERM (logging out, a system shutting down) ends the game normally and
keeps the player's settings and scores."""
from quelvarion_e2e import Game, expect_equal, run, settings_text

SETTINGS = settings_text({"Background Stars": "Off"}, [("ZOE", 990)])


def terminated():
    with Game(settings=SETTINGS) as game:
        game.wait_title_pause()
        game.terminate()
        expect_equal(game.wait_exit(), 0, "exit status")
        expect_equal(game.settings_saved(), SETTINGS, "quelvarion.ini")


run(terminated)
