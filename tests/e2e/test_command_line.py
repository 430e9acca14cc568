"""--help and --version answer on stdout with status 0 and start no game: they
need no display and leave the folder as they found it. A mistake on the command
line prints the usage on stderr and ends with status 2."""
import os
import shutil
import tempfile

from quelvarion_e2e import expect_equal, fail, run, run_program


def command_line():
    folder = tempfile.mkdtemp(prefix="qv-e2e-")
    try:
        status, out, err = run_program(["--help"], folder)
        expect_equal((status, err), (0, ""), "--help status and stderr")
        for option in ("--help", "--version", "--windowed", "--fullscreen", "--trace"):
            if option not in out:
                fail(f"--help does not mention {option}: {out!r}")
        status, out, err = run_program(["--version"], folder)
        expect_equal((status, out.split()[0], err), (0, "quelvarion", ""), "--version")
        for mistake in (["--bogus"], ["level3"], ["--trace=yes"], ["--windowed", "--fullscreen"]):
            status, out, err = run_program(mistake, folder)
            expect_equal((status, out), (2, ""), f"{mistake} status and stdout")
            if not err.startswith("quelvarion: ") or "Usage: quelvarion" not in err:
                fail(f"{mistake}: stderr was {err!r}")
        expect_equal(os.listdir(folder), [], "files left behind")
    finally:
        shutil.rmtree(folder, ignore_errors=True)


run(command_line)
