"""An installation into a fresh prefix: its desktop entry and metainfo are
valid, its launcher starts the game in the player's own folder, with links to
the installed data, and the player's settings stay in that folder."""
import os
import shutil
import subprocess
import tempfile

from quelvarion_e2e import SETTINGS_FILE, Game, expect_equal, expect_normal_end, fail, run, settings_text, showing_title

SETTINGS = settings_text({"Start Level": "2", "Sound FX": "Off"}, [("IDA", 1700)])


def validate(prefix):
    checks = [["desktop-file-validate", "share/applications/quelvarion.desktop"],
              ["appstreamcli", "validate", "--no-net", "share/metainfo/io.github.quelvarion.Quelvarion.metainfo.xml"]]
    for command in checks:
        if shutil.which(command[0]):
            command[-1] = os.path.join(prefix, command[-1])
            subprocess.run(command, check=True, capture_output=True)


def installed():
    prefix = tempfile.mkdtemp(prefix="qv-prefix-")
    try:
        subprocess.run(["cmake", "--install", os.environ["QV_BUILD_DIR"], "--prefix", prefix],
                       check=True, capture_output=True)
        validate(prefix)
        if not os.path.exists(os.path.join(prefix, "share/icons/hicolor/128x128/apps/quelvarion.png")):
            fail("no icon installed")
        with Game(settings=SETTINGS, installed=prefix) as game:
            game.wait_for_screen(showing_title)
            game.wait_title_pause()
            game.terminate()
            expect_normal_end(game, SETTINGS)
            expect_equal(os.path.realpath(os.path.join(game.folder, "sprite.ini")),
                         os.path.join(os.path.realpath(prefix), "share/quelvarion/sprite.ini"), "the catalogue link")
        if os.path.exists(os.path.join(prefix, "share/quelvarion", SETTINGS_FILE)):
            fail("settings written beside the installed data")
    finally:
        shutil.rmtree(prefix, ignore_errors=True)


run(installed)
