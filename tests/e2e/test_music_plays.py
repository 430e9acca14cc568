"""The music goes round without a pause: while the options screen sits idle
over a paused game, with the window focused and then without the keyboard,
and over a level flown with a laser firing now and then. Each time the
tune ends it starts again with no silence at the seam, it never falls silent
for long, it is heard in every few seconds, and nothing, shots over it
included, reaches full scale.

The game's tune takes 77 s to come round, so the game plays four of its bars
(9.6 s) as a tune of their own. What is played is timed by the recording
itself, so a busy machine only makes a flow slower."""
import os
import subprocess
import tempfile

from quelvarion_e2e import FULL_SCALE, NO_STARS, Game, fail, pause, run, settings_text, showing_main_menu

# Bars 20 to 23 of the tune, which take 9.6 s.
FIRST_BAR, BARS, TUNE_SECONDS = 20, 4, 9.6
LONGEST_SILENCE_S = 0.5
WINDOW_S = 5
# The quiet tenth of the music in every window stays above this RMS (-50 dB).
MUSIC_LEVEL = 100
# Effects peak above anything the tune plays alone.
EFFECT_PEAK = 15000


def play(game):
    """The options screen idle over a level paused at once, with the window
    focused and then without the keyboard; then the level flown with bursts of
    fire (the laser, fitted after an energy system, fires on F) and pauses
    between, so that the music is heard alone too."""
    game.fly(3, 1)
    game.choose("Options", pause(game))
    game.wait_recorded(game.recorded() + 12)
    game.unfocus()
    game.wait_recorded(game.recorded() + 12)
    game.keys("Escape", "Escape")  # back to the menu over the level, and on with the level
    end = game.recorded() + 25
    while game.recorded() < end:
        if showing_main_menu(game.screenshot()):
            game.keys("Escape")  # a late frame paused the level
        game.x("xdotool", "keydown", "f")
        game.wait_recorded(game.recorded() + 1.0)
        game.x("xdotool", "keyup", "f")
        game.wait_recorded(game.recorded() + 1.5)


def expect_music_plays_on(recording):
    """From where the music starts, after the first silence of a second."""
    start = recording.sound_after_silence(1.0)
    end = recording.seconds() - 0.2  # the game was stopped mid-chunk
    seams = [start + k * TUNE_SECONDS for k in range(1, int((end - start) / TUNE_SECONDS) + 1)]
    if len(seams) < 2:
        fail(f"the recording ended before the tune came round twice ({end - start:.1f} s of music)")
    silences = recording.silences(start, end)
    longest = max((length for _, length in silences), default=0.0)
    if longest > LONGEST_SILENCE_S:
        fail(f"{longest:.2f} s of silence in the music: {silences}")
    at_seams = [(s, length) for s, length in silences for seam in seams if abs(s - seam) < 0.5]
    if at_seams:
        fail(f"silence where the tune starts again (seams at {seams}): {at_seams}")
    if max(recording.peaks) >= FULL_SCALE:
        fail("the sound reaches full scale")
    levels = [recording.level(start + k * WINDOW_S, WINDOW_S) for k in range(int((end - start) / WINDOW_S))]
    if min(levels) < MUSIC_LEVEL:
        fail(f"the music is hardly heard in a window of {WINDOW_S} s: levels {[round(v) for v in levels]}")
    if max(recording.peaks) < EFFECT_PEAK:
        fail(f"no shot was heard over the music (loudest {max(recording.peaks)})")
    print(f"{len(seams)} seams, longest silence {longest:.2f} s, loudest {max(recording.peaks)}")


def music_plays():
    with tempfile.TemporaryDirectory() as folder:
        tune = os.path.join(folder, "excerpt.mid")
        subprocess.run([os.environ["QV_ASSETGEN"], "--tune-excerpt", tune, str(FIRST_BAR), str(BARS)], check=True)
        with Game(settings=settings_text({"Start Level": "3", **NO_STARS}), record=True, tune=tune) as game:
            game.wait_title_pause()
            play(game)
            expect_music_plays_on(game.recording())


run(music_plays)
