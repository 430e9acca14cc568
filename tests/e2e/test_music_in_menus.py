"""The music goes round while the options screen sits idle over a paused
game, with the window focused and then without the keyboard: each time the
tune ends, the window starts it again with no pause at the seam.

The game's tune takes 77 s to come round, so the game plays four bars of it
as a tune of their own."""
import tempfile
import time

from quelvarion_e2e import Game, expect_music_plays_on, run, tune_excerpt

TUNE_BARS = (28, 4)  # 9.6 s
TUNE_SECONDS = 9.6
IDLE_SECONDS = 12  # each way: focused, then not


def music_in_menus():
    with tempfile.TemporaryDirectory() as folder, \
            Game(record=True, tune=tune_excerpt(*TUNE_BARS, folder)) as game:
        game.wait_title_pause()
        game.start_new_game()
        game.keys("Escape")  # the level begins
        game.keys("Escape")  # and pauses, with the menu over it
        game.choose("Options")
        time.sleep(IDLE_SECONDS)
        game.unfocus()
        time.sleep(IDLE_SECONDS)
        recording = game.recording()
        print(expect_music_plays_on(recording, recording.sound_after_silence(1.0), TUNE_SECONDS))


run(music_in_menus)
