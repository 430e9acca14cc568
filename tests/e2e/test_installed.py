"""An installation into a fresh prefix, made from a build a game was played
in: it holds the game's data and none of the player's files; its desktop
entry and metainfo are valid (where the validators are installed); its icons,
manual page and licence are in place; its launcher starts the game in the
player's own folder, with links to the installed data, and the player's
settings stay in that folder. The launcher keeps to the XDG rules."""
import fcntl
import os
import pathlib
import shutil
import subprocess
import tempfile

from quelvarion_e2e import (PLAYER_FILES, SETTINGS_FILE, Game, as_ordinary_user, expect_equal, expect_normal_end, fail,
                            run, settings_text, unprivileged_user)

SETTINGS = settings_text({"Start Level": "2", "Sound FX": "Off"}, [("IDA", 1700)])
VALIDATORS = [["desktop-file-validate", "share/applications/quelvarion.desktop"],
              ["appstreamcli", "validate", "--no-net", "share/metainfo/io.github.quelvarion.Quelvarion.metainfo.xml"]]


def tree(folder):
    return sorted(os.path.relpath(os.path.join(d, n), folder) for d, _, names in os.walk(folder) for n in names)


def install_after_play(prefix):
    """Installs with a player's files in the build's game folder, as a game
    played there leaves them; the ones made here are removed again. Another
    run of the tests on the same build waits its turn."""
    data = os.environ["QV_GAME_DIR"]
    with open(os.path.join(os.environ["QV_BUILD_DIR"], ".e2e-install.lock"), "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        made = [os.path.join(data, n) for n in PLAYER_FILES if not os.path.exists(os.path.join(data, n))]
        try:
            for path in made:
                pathlib.Path(path).write_text("the player's\n")
            subprocess.run(["cmake", "--install", os.environ["QV_BUILD_DIR"], "--prefix", prefix],
                           check=True, capture_output=True)
        finally:
            for path in made:
                os.remove(path)


def check_installation(prefix):
    """The data is exactly what the generator makes; the desktop parts are in place."""
    with tempfile.TemporaryDirectory(prefix="qv-data-") as fresh:
        subprocess.run([os.environ["QV_ASSETGEN"], fresh], check=True, capture_output=True)
        expect_equal(tree(os.path.join(prefix, "share/quelvarion")), tree(fresh), "the installed data")
    for command in VALIDATORS:
        if shutil.which(command[0]):
            subprocess.run(command[:-1] + [os.path.join(prefix, command[-1])], check=True, capture_output=True)
    for size in (16, 32, 48, 64, 128, 256):
        path = os.path.join(prefix, f"share/icons/hicolor/{size}x{size}/apps/quelvarion.png")
        found = subprocess.run(["identify", "-format", "%m %wx%h", path], capture_output=True, text=True).stdout
        expect_equal(found, f"PNG {size}x{size}", f"the {size} px icon")
    if "<svg" not in pathlib.Path(prefix, "share/icons/hicolor/scalable/apps/quelvarion.svg").read_text():
        fail("the scalable icon is no SVG picture")
    if shutil.which("man"):
        manual = subprocess.run(["man", "-l", os.path.join(prefix, "share/man/man6/quelvarion.6")],
                                capture_output=True, text=True, env=dict(os.environ, MANWIDTH="80"))
        if manual.returncode != 0 or "--windowed" not in manual.stdout.replace("\u2010", "-"):
            fail(f"the manual page does not read: {manual.stderr!r}")
    if not pathlib.Path(prefix, "share/doc/quelvarion/LICENSE").read_text().startswith("MIT License"):
        fail("the licence is not the MIT licence the metainfo names")


def check_launcher_folders(prefix):
    """A relative or empty XDG_DATA_HOME is ignored for ~/.local/share; without
    any home the launcher says so instead of writing to /.local. A replay named
    from where the launcher was started is found there."""
    launcher = os.path.join(prefix, "bin/quelvarion")
    launch = lambda command, env, cwd="/": subprocess.run(command, env=env, capture_output=True, text=True,
                                                          timeout=30, cwd=cwd)
    with tempfile.TemporaryDirectory(prefix="qv-home-") as home:
        pathlib.Path(home, "bad.qvr").write_bytes(b"QVREPLAY")
        result = launch([launcher, "--verify", "bad.qvr"], dict(os.environ, HOME=home), cwd=home)
        if result.returncode != 3 or os.path.join(home, "bad.qvr") not in result.stderr:
            fail(f"a replay named from the launcher's folder: status {result.returncode}, {result.stderr!r}")
        for data_home in ("relative/share", ""):
            result = launch([launcher, "--version"], dict(os.environ, HOME=home, XDG_DATA_HOME=data_home))
            expect_equal(result.returncode, 0, f"launcher status with XDG_DATA_HOME={data_home!r}")
            if not os.path.isdir(os.path.join(home, ".local/share/quelvarion")):
                fail(f"XDG_DATA_HOME={data_home!r} did not fall back to ~/.local/share")
    if unprivileged_user():  # nobody's home does not exist
        env = {k: v for k, v in os.environ.items() if k not in ("HOME", "XDG_DATA_HOME")}
        result = launch(as_ordinary_user([launcher, "--version"]), env)
        if result.returncode != 1 or not result.stderr.startswith("quelvarion: "):
            fail(f"launcher without a home: status {result.returncode}, {result.stderr!r}")
        if os.path.exists("/.local"):
            fail("the launcher wrote to /.local")


def installed():
    with tempfile.TemporaryDirectory(prefix="qv-prefix-") as prefix:
        os.chmod(prefix, 0o755)  # an installation everyone may run
        install_after_play(prefix)
        check_installation(prefix)
        check_launcher_folders(prefix)
        with Game(settings=SETTINGS, installed=prefix) as game:
            game.wait_title_pause()
            game.terminate()
            expect_normal_end(game, SETTINGS)
            expect_equal(os.path.realpath(os.path.join(game.folder, "sprite.ini")),
                         os.path.join(os.path.realpath(prefix), "share/quelvarion/sprite.ini"), "the catalogue link")
        if os.path.exists(os.path.join(prefix, "share/quelvarion", SETTINGS_FILE)):
            fail("settings written beside the installed data")


run(installed)
