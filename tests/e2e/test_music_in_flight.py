"""A level flown with the music on and a laser firing over it, long enough
for the tune to start again twice: the music never falls silent, least of
all where it starts again, and no shot over it reaches full scale.

The game's tune takes 77 s to come round, so the game plays four of its
loudest bars as a tune of their own."""
import tempfile
import time

from quelvarion_e2e import Game, expect_music_plays_on, fail, run, settings_text, tune_excerpt

TUNE_BARS = (20, 4)  # 9.6 s
TUNE_SECONDS = 9.6
PLAY_SECONDS = 25
FIRE_S, PAUSE_S = 1.0, 1.5
# Effects peak above anything the tune plays alone.
EFFECT_PEAK = 15000


def music_in_flight():
    # From start level 3 the offer holds an energy system and a laser; the
    # first laser fitted fires on F.
    with tempfile.TemporaryDirectory() as folder, \
            Game(settings=settings_text({"Start Level": "3", "Background Stars": "Off"}), record=True,
                 tune=tune_excerpt(*TUNE_BARS, folder)) as game:
        game.wait_title_pause()
        game.start_new_game()
        game.keys("Down", "Down", "Down", "Return", "Down", "Return")  # the energy system, then the laser
        game.keys("Escape")
        # Bursts of fire with pauses between, so that the music is heard alone too.
        started = time.monotonic()
        while time.monotonic() - started < PLAY_SECONDS:
            game.x("xdotool", "keydown", "f")
            time.sleep(FIRE_S)
            game.x("xdotool", "keyup", "f")
            time.sleep(PAUSE_S)
        recording = game.recording()
        music_start = recording.sound_after_silence(1.0)
        measured = expect_music_plays_on(recording, music_start, TUNE_SECONDS)
        if measured["loudest"] < EFFECT_PEAK:
            fail(f"no shot was heard over the music (loudest {measured['loudest']})")
        print(measured)


run(music_in_flight)
