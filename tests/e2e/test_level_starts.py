""""New Game", an engine, a jet and a sail fitted on the design screen, and
Escape: level 1 starts with the player's ship in the middle of the screen."""
from quelvarion_e2e import Game, expect_close, run, settings_text

SHIP_SIZE = 28  # "ship1" in sprite.ini


def level_starts():
    # No stars, so that nothing but the world is drawn behind the ship.
    with Game(settings=settings_text({"Background Stars": "Off"})) as game:
        game.wait_title_pause()
        game.start_new_game()
        # The offer at level 1 is an engine, a jet and a sail, in that order.
        game.keys("Return", "Down", "Return", "Down", "Return")
        game.keys("Escape")
        centre = (1024 - SHIP_SIZE) // 2, (768 - SHIP_SIZE) // 2
        shot = game.wait_for_screen(lambda s: s.at_game(*centre, SHIP_SIZE, SHIP_SIZE).lit_pixels() > 50)
        ship = shot.at_game(*centre, SHIP_SIZE, SHIP_SIZE)
        expect_close(ship.mean_difference(game.art("ship1_0.bmp", ship.width, ship.height)), 25,
                     "the player's ship facing up")


run(level_starts)
