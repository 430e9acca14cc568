"""Escape during play pauses the game: the world stands still. Escape on the
menu over the paused game resumes it: the world moves again.

Sprites keep animating in place while the game is paused, so "moving" means
something drawn where, a second before, nothing was near."""
import time

from quelvarion_e2e import Game, fail, newly_lit_cells, run, settings_text


def pause_resume():
    with Game(settings=settings_text({"Background Stars": "Off"})) as game:
        game.wait_title_pause()
        game.start_new_game()
        game.keys("Escape")   # leave the design screen: level 1 begins
        time.sleep(3)         # asteroids come in from the edges
        if newly_lit_cells(game) < 3:
            fail("nothing moves during play")
        game.keys("Escape")
        if newly_lit_cells(game) > 0:
            fail("the world moves while the game is paused")
        game.keys("Escape")
        if newly_lit_cells(game) < 3:
            fail("the world does not move again after the pause")


run(pause_resume)
