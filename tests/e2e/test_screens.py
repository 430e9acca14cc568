"""The screens as a player meets them: the title fills the game's picture
during the start-up pause, scaled into the letterbox between black bars; then
the main menu, and the help, about and high-score screens, each opened from
the menu and closed with Escape. "New Game", an engine, a jet and a sail
fitted on the design screen, and Escape: level 1 starts with the player's ship
in the middle of the screen and the heads-up texts over it. Escape pauses the
game and the world stands still; Escape on the menu over it resumes it.

Sprites keep animating in place while the game is paused, so "moving" means
something drawn where, a second before, nothing was near."""
from quelvarion_e2e import (MAIN_MENU, NO_STARS, TEXT_COLOUR, Game, expect_close, fail, newly_lit_cells, pause,
                            play_on, run, settings_text, showing_box_screen_title, showing_framed_screen,
                            showing_main_menu, showing_title)

SHIP_SIZE = 28  # "ship1" in sprite.ini


def expect_colour(region, colour, what, least=20):
    if region.pixels_near(colour) < least:
        fail(f"{what}: no {colour} drawn there")


def screens():
    # No stars, so that nothing but the world is drawn behind the ship.
    with Game(settings=settings_text(NO_STARS, [("ACE", 9000), ("BEA", 700)])) as game:
        shot = game.wait_for_screen(showing_title)
        picture = shot.game_picture()
        title = game.art("title_screen.bmp", picture.width, picture.height)
        # Scaled twice by different filters and shown in 16-bit colour: close, not equal.
        expect_close(picture.mean_difference(title, step=7), 8, "the title screen")

        game.wait_title_pause()
        game.wait_for_screen(showing_main_menu)
        for entry in ("Help", "About", "High Scores"):
            game.choose(entry)
            shot = game.wait_for_screen(lambda s: showing_box_screen_title(s) and showing_framed_screen(s))
            expect_colour(shot.at_game(40, 720, 500, 30), TEXT_COLOUR, f"{entry}: the line about Escape")
            game.keys("Escape")
            game.wait_for_screen(showing_main_menu)
            game.keys(*["Up"] * MAIN_MENU.index(entry))  # the menu keeps the entry chosen

        game.fly(0, 1, 1)  # the offer at level 1 is an engine, a jet and a sail, in that order
        centre = (1024 - SHIP_SIZE) // 2, (768 - SHIP_SIZE) // 2
        shot = game.wait_for_screen(lambda s: s.at_game(*centre, SHIP_SIZE, SHIP_SIZE).lit_pixels() > 50)
        ship = shot.at_game(*centre, SHIP_SIZE, SHIP_SIZE)
        expect_close(ship.mean_difference(game.art("ship1_0.bmp", ship.width, ship.height)), 25,
                     "the player's ship facing up")
        # Level, time left and score in the top right corner, energy and hull in the top left.
        shot = game.wait_for_screen(lambda s: s.at_game(900, 20, 124, 60).pixels_near(TEXT_COLOUR) > 40)
        expect_colour(shot.at_game(10, 20, 120, 40), TEXT_COLOUR, "the ship's energy and hull")

        play_on(game)  # asteroids come in from the edges
        pause(game)    # Escape, unless a late frame has paused the level already
        if newly_lit_cells(game) > 0:
            fail("the world moves while the game is paused")
        game.keys("Escape")
        game.wait_for_screen(lambda shot: not showing_main_menu(shot))
        play_on(game)


run(screens)
