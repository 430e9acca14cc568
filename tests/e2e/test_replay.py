"""A game played with --record is checked with --verify (it plays as
recorded), a damaged copy is refused, and --replay shows the same pictures:
the frames kept from the game and from its replay are the same pixel for
pixel, but for the REPLAY marker in the bottom left corner. A recording takes
its recorded time to watch, at any pace it was recorded in, and --export
writes it as a video. (How a changed replay goes its own way is the unit
tests' business.)"""
import array
import math
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

from quelvarion_e2e import (GAME_HEIGHT, GAME_WIDTH, LAST_GAME, SETTINGS_FILE, Game, expect_equal, fail,
                            link_game_data, pause, picture_file, run, run_program, settings_text,
                            showing_box_screen_title, showing_design_screen, showing_main_menu)

# Those of them played in the level are compared. Frames in a run of idle ones
# (the menus, the design screen, a paused level) are replayed at the run's mean
# length, so what animates by time (sprites in place) may be a frame apart
# there: frames that show a menu, a box screen or the design screen are left
# out (on a slow machine a late frame pauses the level, and the later frames
# show the menu over it).
SNAPSHOT_FRAMES = [20, 150, 250, 400, 600, 900]
PLAY_SECONDS = float(os.environ.get("QV_REPLAY_PLAY_SECONDS", "12"))
# The corner the marker is written in: it must differ there and nowhere else.
MARKER_WIDTH, MARKER_HEIGHT = 80, 24
END_HOLD_S = 3
FORMAT_1_END_BYTES = 19
GOLDEN = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "replay", "golden")
FAST = os.path.join(GOLDEN, "scripted-level9.qvr")  # 6000 frames of 4 ms (a 240 Hz screen): 24 s
SANITIZED = os.environ.get("QV_SANITIZED")
# The game built to keep the pictures of the frames QV_SNAPSHOT_FRAMES names in
# QV_SNAPSHOT_DIR; it plays as the shipped game does.
os.environ["QV_GAME"] = os.environ.get("QV_SNAPSHOT_GAME", os.environ["QV_GAME"])


def in_level(picture):
    """Whether a kept frame shows the level played with nothing over it."""
    return not (showing_main_menu(picture) or showing_design_screen(picture) or showing_box_screen_title(picture))


def record(replay_file, snapshots):
    os.environ["QV_SNAPSHOT_DIR"] = snapshots
    with Game(settings=settings_text(), args=["--record", replay_file]) as game:
        game.wait_title_pause()
        game.fly(0, 1, 1)  # the first offers fitted
        deadline = time.monotonic() + PLAY_SECONDS
        while time.monotonic() < deadline:
            for key, seconds in (("Up", 0.8), ("Left", 0.5), ("Up", 0.4), ("Right", 0.7), ("Down", 0.3)):
                game.x("xdotool", "keydown", key)
                time.sleep(seconds)  # how long the key is held, not a wait
                game.x("xdotool", "keyup", key)
        game.choose("Exit Game", pause(game))
        expect_equal(game.wait_exit(), 0, "exit status of the recorded game")


def compare_pictures(recorded, replayed, frame):
    ours, theirs = (picture_file(path, GAME_WIDTH, GAME_HEIGHT) for path in (recorded, replayed))
    top = GAME_HEIGHT - MARKER_HEIGHT
    # (where, the part of the picture, whether the game's and the replay's are the same there)
    for where, box, same in (("above the marker", (0, 0, GAME_WIDTH, top), True),
                             ("beside the marker", (MARKER_WIDTH, top, GAME_WIDTH - MARKER_WIDTH, MARKER_HEIGHT), True),
                             ("in the marker's corner", (0, top, MARKER_WIDTH, MARKER_HEIGHT), False)):
        if (ours.crop(*box).pixels == theirs.crop(*box).pixels) != same:
            fail(f"frame {frame}: the replay's picture {'differs from' if same else 'is'} the game's {where}")


def replay_flow():
    with tempfile.TemporaryDirectory(prefix="qv-replay-") as work:
        replay_file = os.path.join(work, "game.qvr")
        recorded, replayed, folder = (os.path.join(work, name) for name in ("recorded", "replayed", "verify"))
        for path in (recorded, replayed, folder):
            os.makedirs(path)
        os.environ["QV_SNAPSHOT_FRAMES"] = ",".join(map(str, SNAPSHOT_FRAMES))
        record(replay_file, recorded)
        kept = lambda f: os.path.join(recorded, f"frame-{f}.bmp")
        frames = [f for f in SNAPSHOT_FRAMES if os.path.exists(kept(f))
                  and in_level(picture_file(kept(f), GAME_WIDTH, GAME_HEIGHT))]
        if len(frames) < 2:
            fail(f"too few frames recorded to compare: {frames}")

        status, out, err = run_program(["--verify", replay_file], folder, timeout=60)
        expect_equal((status, "plays as recorded" in out), (0, True), f"--verify of the recorded game: {out!r} {err!r}")
        expect_equal(os.listdir(folder), [], "files --verify left in its folder")
        damaged_replay_changes_nothing(replay_file, work)

        os.environ["QV_SNAPSHOT_DIR"] = replayed
        with Game(args=["--replay", replay_file]) as game:
            expect_equal(game.wait_exit(timeout=PLAY_SECONDS + 60), 0, "exit status of the replay")
            if os.path.exists(game.settings_path()) and os.path.getsize(game.settings_path()) > 0:
                fail("the replay saved the settings")
            if os.path.exists(os.path.join(game.folder, LAST_GAME)):
                fail("the replay was kept as the last game")
        try:
            for f in frames:
                compare_pictures(kept(f), os.path.join(replayed, f"frame-{f}.bmp"), f)
        except AssertionError:
            keep = os.path.join(os.environ.get("QV_E2E_EVIDENCE", tempfile.gettempdir()), "qv-e2e-replay-frames")
            shutil.rmtree(keep, ignore_errors=True)
            shutil.copytree(work, keep)
            print(f"the recorded and replayed frames: {keep}", file=sys.stderr)
            raise


def damaged_replay_changes_nothing(replay_file, work):
    """--replay of a damaged file says so (status 3) and leaves the settings as the player wrote them."""
    data = bytearray(pathlib.Path(replay_file).read_bytes())
    data[len(data) // 2] ^= 0x40
    damaged, folder = os.path.join(work, "damaged.qvr"), os.path.join(work, "damaged")
    pathlib.Path(damaged).write_bytes(data)
    os.makedirs(folder)
    link_game_data(folder)
    kept = b"; the player's own note\r\n" + settings_text({"Start Level": "3"})
    settings = pathlib.Path(folder, SETTINGS_FILE)
    settings.write_bytes(kept)
    status, _, err = run_program(["--replay", damaged], folder)
    expect_equal((status, "damaged" in err), (3, True), f"--replay of a damaged file: {err!r}")
    expect_equal(settings.read_bytes(), kept, "the settings after --replay")


# Watching FAST: (keys pressed once its window is up, arguments, the fewest and most seconds it may
# take, its last picture's hold left out: Escape ends it without one).
# Faster shows fewer of the same frames; slower holds them (stopped after a
# while); a start further on skips to it. Every frame made is checked against
# the recording as it is made: status 0 says every one stood as recorded.
WATCHING = [
    ((), (), 24.0 * 0.95, 24.0 * 1.05),
    (("6",), (), -END_HOLD_S, 8.0),
    (("1", "period", "comma", "Left", "Next", "Prior", "space", "space", "Escape"), (), -END_HOLD_S, 30.0),
    ((), ("--from", "20"), -END_HOLD_S, 8.0),
    (("7",), ("--level", "9"), -END_HOLD_S, 30.0),
]


def watched_seconds(replay_file, keys=(), args=()):
    """How long --replay shows the recording, the hold on its last picture left out."""
    with Game(args=["--replay", replay_file, *args]) as game:
        start = time.monotonic()
        if keys:
            game.keys(*keys)
        expect_equal(game.wait_exit(timeout=120), 0, f"exit status of --replay {replay_file} {args} {keys}")
        return time.monotonic() - start - END_HOLD_S


def recorded_pace_flow():
    """A game recorded in 4 ms frames takes its recorded time on this screen; a
    recording that ended with the window unfocused still closes. A sanitizer's
    build draws too slowly to keep any pace: there it only has to play through."""
    for keys, args, least, most in WATCHING:
        seconds = watched_seconds(FAST, keys, args)
        if not SANITIZED and (seconds > most or seconds < least):
            fail(f"--replay {' '.join(args)} with keys {keys} took {seconds:.1f} s")
    # A recording of format 1 (no checksum) with focus lost after its last frame.
    with tempfile.TemporaryDirectory(prefix="qv-replay-pace-") as work:
        data = pathlib.Path(GOLDEN, "hand-level6.qvr").read_bytes()
        unfocused = os.path.join(work, "unfocused.qvr")
        pathlib.Path(unfocused).write_bytes(data[:-FORMAT_1_END_BYTES] + bytes([0x10, 0x1C, 0x00]) +
                                    data[-FORMAT_1_END_BYTES:])
        watched_seconds(unfocused)


# Stands in for ffmpeg on the PATH: hands everything on to the real one and
# keeps, of the raw pictures the game sends, the one numbered in QV_KEEP_PICTURE.
PICTURE_KEEPER = """#!/usr/bin/env python3
import os, shutil, subprocess, sys
real = os.environ["QV_REAL_FFMPEG"]
if "rawvideo" not in sys.argv:
    os.execv(real, [real] + sys.argv[1:])
size = 1024 * 768 * 3
keep = int(os.environ["QV_KEEP_PICTURE"]) * size
encoder = subprocess.Popen([real] + sys.argv[1:], stdin=subprocess.PIPE)
taken = 0
with open(os.environ["QV_KEPT_PICTURE"], "wb") as kept:
    while chunk := sys.stdin.buffer.read(1 << 20):
        lo, hi = max(keep - taken, 0), min(keep + size - taken, len(chunk))
        if lo < hi:
            kept.write(chunk[lo:hi])
        taken += len(chunk)
        encoder.stdin.write(chunk)
encoder.stdin.close()
sys.exit(encoder.wait())
"""
PICTURE_AT = 700


def probe(video, entries):
    out = subprocess.run(["ffprobe", "-v", "error", "-show_entries", entries, "-of", "csv=p=0", video],
                         capture_output=True, text=True, check=True).stdout
    return [line for line in out.splitlines() if line]


def decoded(video, *args):
    return subprocess.run(["ffmpeg", "-v", "error", "-i", video, *args, "-"], capture_output=True, check=True).stdout


def export_flow():
    """--export writes the recording as a video of its length, with a sound
    stream, whose pictures are the game's own; without ffmpeg, or with no
    folder for the video, it says so with its own status."""
    path = os.environ["PATH"]
    with tempfile.TemporaryDirectory(prefix="qv-export-") as work:
        link_game_data(work)
        tools, kept, video = (os.path.join(work, name) for name in ("tools", "kept.rgb", "game.mp4"))
        os.makedirs(tools)
        pathlib.Path(tools, "ffmpeg").write_text(PICTURE_KEEPER)
        os.chmod(os.path.join(tools, "ffmpeg"), 0o755)
        os.environ.update(PATH=tools + os.pathsep + path, QV_REAL_FFMPEG=shutil.which("ffmpeg"),
                          QV_KEEP_PICTURE=str(PICTURE_AT), QV_KEPT_PICTURE=kept)
        status, _, err = run_program(["--export", video, FAST], work, timeout=300)
        os.environ["PATH"] = path
        expect_equal(status, 0, f"exit status of --export ({err.strip()[-300:]})")
        seconds = float(probe(video, "format=duration")[0])
        if abs(seconds - 24.0) > 1 / 60:
            fail(f"the video lasts {seconds} s, not the recording's 24 s")
        expect_equal(probe(video, "stream=codec_type"), ["video", "audio"], "the video's streams")
        if max(array.array("h", decoded(video, "-f", "s16le", "-ac", "1")), default=0) < 1000:
            fail("the video's sound is silent")
        picture = decoded(video, "-vf", f"select=eq(n\\,{PICTURE_AT})", "-vsync", "0", "-frames:v", "1",
                          "-f", "rawvideo", "-pix_fmt", "rgb24")
        ours = pathlib.Path(kept).read_bytes()
        if len(picture) != len(ours) or len(ours) != GAME_WIDTH * GAME_HEIGHT * 3:
            fail(f"pictures of {len(picture)} and {len(ours)} bytes")
        mse = sum((x - y) ** 2 for x, y in zip(picture, ours)) / len(ours)
        quality = float("inf") if mse == 0 else 10 * math.log10(255 * 255 / mse)
        print(f"picture {PICTURE_AT}: {quality:.1f} dB PSNR against the game's own")
        if quality <= 40:
            fail(f"picture {PICTURE_AT} of the video is {quality:.1f} dB from the game's own")

        for tools_on_path, target, expected, said in ((os.path.join(work, "none"), video, 5, "install"),
                                                      (path, os.path.join(work, "missing", "x.mp4"), 6, "folder")):
            os.environ["PATH"] = tools_on_path
            status, _, err = run_program(["--export", target, os.path.join(GOLDEN, "hand-level1.qvr")], work)
            os.environ["PATH"] = path
            expect_equal((status, said in err), (expected, True), f"--export to {target}, PATH {tools_on_path}: {err}")


run(replay_flow, recorded_pace_flow, export_flow)
