"""Escape during play pauses the game: the world stands still. Escape on the
menu over the paused game resumes it: the world moves again.

Sprites keep animating in place while the game is paused, so "moving" means
something drawn where, a second before, nothing was near."""
import time

from quelvarion_e2e import GAME_HEIGHT, GAME_WIDTH, Game, fail, run, settings_text

CELL = 8  # game pixels


def newly_lit_cells(game):
    grid = GAME_WIDTH // CELL, GAME_HEIGHT // CELL
    before = game.screenshot().game_picture().lit_cells(*grid)
    time.sleep(1.0)
    after = game.screenshot().game_picture().lit_cells(*grid)
    near_before = {(x + dx, y + dy) for x, y in before for dx in (-1, 0, 1) for dy in (-1, 0, 1)}
    return len(after - near_before)


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
