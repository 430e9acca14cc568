"""Starts that cannot become a game end at once with status 1 and one line on
stderr that says what failed and what to do; where there is a display, the
error box shows as well. A folder without the game's data is left as it was,
and without any display the game ends instead of playing unseen."""
import os
import shutil
import tempfile

from quelvarion_e2e import XServer, expect_equal, fail, link_game_data, replace_art, run, run_program


def expect_failure(result, words, what):
    status, _, err = result
    expect_equal(status, 1, f"{what}: exit status")
    lines = [line for line in err.splitlines() if line.startswith("quelvarion: ")]
    if len(lines) != 1 or words not in lines[0]:
        fail(f"{what}: stderr was {err!r}")


BROKEN_FOLDERS = [
    ("no blank bitmap", lambda folder: replace_art(folder, None), "Direct Draw Init Failed (00000002)"),
    ("a broken blank bitmap", lambda folder: replace_art(folder, b"BM not a picture"),
     "Direct Draw Init Failed (0000000d)"),
    ("no art folder", lambda folder: os.remove(os.path.join(folder, "art")), "Direct Draw Init Failed (00000003)"),
]


def start_failures():
    scratch = tempfile.mkdtemp(prefix="qv-e2e-")
    try:
        def folder(name):
            path = os.path.join(scratch, name)
            os.mkdir(path)
            return path

        playable = folder("playable")
        link_game_data(playable)
        expect_failure(run_program([], playable), "cannot open the game's window", "no display")
        with XServer() as x:
            empty = folder("empty")
            expect_failure(run_program([], empty, x.display, answer_box=True), "no game data in", "a folder without data")
            expect_equal(os.listdir(empty), [], "files left in a folder without game data")
            for what, breaks, words in BROKEN_FOLDERS:
                broken = folder(what.replace(" ", "-"))
                link_game_data(broken)
                breaks(broken)
                expect_failure(run_program([], broken, x.display, answer_box=True),
                               "cannot start the display: " + words, what)
    finally:
        shutil.rmtree(scratch, ignore_errors=True)


run(start_failures)
