"""An option changed on the options screen by keys, then "Exit Game": the game
ends normally and leaves the settings file with the new value."""
from quelvarion_e2e import Game, expect_normal_end, run, settings_text


def options_saved():
    with Game() as game:
        game.wait_title_pause()
        game.choose("Options")
        game.keys("Down", "Down", "Left")          # "Sound FX" off
        game.keys("Up", "Up", "Right", "Right")     # "Start Level" 1 -> 3
        game.keys("Escape")                          # back to the main menu, "Options" still selected
        game.keys("Down", "Down", "Return")          # "Exit Game"
        expect_normal_end(game, settings_text({"Start Level": "3", "Sound FX": "Off"}))


run(options_saved)
