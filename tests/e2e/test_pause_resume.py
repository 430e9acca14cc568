"""Escape during play pauses the game: the world stands still. Escape on the
menu over the paused game resumes it: the world moves again.

Sprites keep animating in place while the game is paused, so "moving" means
something drawn where, a second before, nothing was near."""
from quelvarion_e2e import Game, fail, newly_lit_cells, pause, play_on, run, settings_text, showing_main_menu


def pause_resume():
    with Game(settings=settings_text({"Background Stars": "Off"})) as game:
        game.wait_title_pause()
        game.start_new_game()
        game.keys("Escape")   # leave the design screen: level 1 begins
        play_on(game)         # asteroids come in from the edges
        pause(game)           # Escape, unless a late frame has paused the level already
        if newly_lit_cells(game) > 0:
            fail("the world moves while the game is paused")
        game.keys("Escape")
        game.wait_for_screen(lambda shot: not showing_main_menu(shot))
        play_on(game)


run(pause_resume)
