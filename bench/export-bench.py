#!/usr/bin/env python3
"""How fast a replay is exported as a video: seconds of video written per
second of wall time (above 1: faster than the game played), the median of
several runs with the lowest and highest in brackets. Each run exports the
recorded games in tests/replay/golden in a scratch folder whose data files
are links to the game data.

Usage: export-bench.py [--runs N] PROGRAM DATA
"""

import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
GOLDEN = os.path.join(HERE, "..", "tests", "replay", "golden")
REPLAYS = ["scripted-level9.qvr", "hand-level1.qvr"]


def video_seconds(path):
    out = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path],
                         capture_output=True, text=True, check=True).stdout
    return float(out.strip())


def export_once(program, folder, replay):
    video = os.path.join(folder, "bench.mp4")
    start = time.monotonic()
    subprocess.run([program, "--export", video, os.path.join(GOLDEN, replay)], cwd=folder, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    wall = time.monotonic() - start
    return video_seconds(video) / wall


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("program")
    parser.add_argument("data")
    options = parser.parse_args()
    if not shutil.which("ffmpeg"):
        print("export speed left out: it needs ffmpeg")
        return 0
    program = os.path.abspath(options.program)
    folder = tempfile.mkdtemp(prefix="qv-export-bench-")
    try:
        for name in os.listdir(options.data):
            if not name.startswith(".") and name not in ("quelvarion.ini", "last-game.qvr"):
                os.symlink(os.path.abspath(os.path.join(options.data, name)), os.path.join(folder, name))
        speeds = {replay: [] for replay in REPLAYS}
        for _ in range(options.runs):
            for replay in REPLAYS:  # interleaved, so a busy machine slows them alike
                speeds[replay].append(export_once(program, folder, replay))
        print(f"Export speed, video seconds per wall second, median [lowest-highest] of {options.runs} runs:")
        for replay, values in speeds.items():
            print(f"  {replay:24} {statistics.median(values):.2f} [{min(values):.2f}-{max(values):.2f}]")
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
