"""--help and --version answer on stdout with status 0 and start no game: they
need no display and leave the folder as they found it. A mistake on the command
line prints the usage on stderr and ends with status 2. The README's table
and the manual page name the options --help names, with the same arguments."""
import os
import re
import shutil
import tempfile

from quelvarion_e2e import expect_equal, fail, run, run_program

SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")


def options_in(lines, pattern):
    """{option: ARGUMENT} of each line the pattern matches (groups: name, argument)."""
    found = (re.match(pattern, line) for line in lines)
    return {m.group(1): m.group(2).upper() for m in found if m}


def documented_options():
    readme = open(os.path.join(SOURCE, "README.md")).read()
    table = readme[readme.index("## Command line"):].split("\n\n")[1].splitlines()
    manual = open(os.path.join(SOURCE, "packaging", "quelvarion.6")).read().replace("\\-", "-")
    items = manual[manual.index(".SH OPTIONS"):].split(".SH")[1].split(".TP\n")[1:]
    return (options_in(table, r"\| `(--[a-z-]+)[ =]?([A-Z]*)"),
            options_in(items, r"\.BI? (--[a-z-]+)=? ?\"? ?([a-zA-Z]*)"))


def command_line():
    folder = tempfile.mkdtemp(prefix="qv-e2e-")
    try:
        status, out, err = run_program(["--help"], folder)
        expect_equal((status, err), (0, ""), "--help status and stderr")
        listed = options_in(out.splitlines(), r"  (--[a-z-]+) ?([A-Z]*)")
        expect_equal(len(listed) >= 5, True, f"options --help lists: {out!r}")
        readme, manual = documented_options()
        expect_equal(readme, listed, "the README's options against --help")
        expect_equal(manual, listed, "the manual page's options against --help")
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
