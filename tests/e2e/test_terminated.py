"""SIGTERM (logging out, a system shutting down) ends the game normally and
keeps the player's settings and scores."""
from quelvarion_e2e import Game, expect_normal_end, run, settings_text

SETTINGS = settings_text({"Background Stars": "Off"}, [("ZOE", 990)])


def terminated():
    with Game(settings=SETTINGS) as game:
        game.wait_title_pause()
        game.terminate()
        expect_normal_end(game, SETTINGS)


run(terminated)
