"""The menus as a player meets them: the main menu after the title, then the
help, about and high-score screens, each opened from the menu and closed with
Escape, and the heads-up texts over a level in play."""
from quelvarion_e2e import (BOX_FRAME_COLOUR, MAIN_MENU, TEXT_COLOUR, Game, fail, run, settings_text,
                            showing_box_screen_title, showing_main_menu)


def expect_colour(region, colour, what, least=20):
    if region.pixels_near(colour) < least:
        fail(f"{what}: no {colour} drawn there")


def showing_box_screen(screen):
    # A box screen's title and its one-pixel frame.
    return (showing_box_screen_title(screen)
            and screen.at_game(40, 90, 944, 600).pixels_near(BOX_FRAME_COLOUR, tolerance=12) > 300)


def open_and_close(game, entry):
    game.choose(entry)
    shot = game.wait_for_screen(showing_box_screen)
    expect_colour(shot.at_game(40, 720, 500, 30), TEXT_COLOUR, f"{entry}: the line about Escape")
    game.keys("Escape")
    game.wait_for_screen(showing_main_menu)
    # The menu keeps the entry chosen; go back up to "New Game".
    game.keys(*["Up"] * MAIN_MENU.index(entry))


def screens():
    scores = [("ACE", 9000), ("BEA", 700)]
    with Game(settings=settings_text({"Background Stars": "Off"}, scores)) as game:
        game.wait_title_pause()
        game.wait_for_screen(showing_main_menu)
        for entry in ("Help", "About", "High Scores"):
            open_and_close(game, entry)

        game.start_new_game()
        game.keys("Return", "Down", "Return", "Down", "Return", "Escape")
        # Level, time left and score in the top right corner, energy and hull in the top left.
        shot = game.wait_for_screen(lambda s: s.at_game(900, 20, 124, 60).pixels_near(TEXT_COLOUR) > 40)
        expect_colour(shot.at_game(10, 20, 120, 40), TEXT_COLOUR, "the ship's energy and hull")
        game.keys("Escape")
        game.wait_for_screen(showing_main_menu)


run(screens)
