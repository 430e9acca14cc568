"""Closing the window as a window manager does ends the game normally and
keeps the player's settings and scores."""
from quelvarion_e2e import Game, expect_normal_end, run, settings_text

SETTINGS = settings_text({"Music": "Off", "Start Level": "4"}, [("ANN", 5200), ("BOB", 120)])


def window_closed():
    with Game(settings=SETTINGS) as game:
        game.wait_title_pause()
        game.close_window()
        expect_normal_end(game, SETTINGS)


run(window_closed)
