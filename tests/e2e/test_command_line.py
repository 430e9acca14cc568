"""Runs that end before a game begins. --help and --version answer on stdout
with status 0 and need no display; the README's table and the manual page
name the options --help names, with the same arguments. A mistake on the
command line prints the usage on stderr and ends with status 2. A start that
cannot become a game ends with status 1 and one line on stderr that says what
failed and what to do; where there is a display, the error box shows as well,
and without any display the game ends instead of playing unseen. No run leaves
a file in a folder without the game's data."""
import os
import pathlib
import re
import tempfile

from quelvarion_e2e import XServer, expect_equal, fail, link_game_data, replace_art, run, run_program

SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")


def options_in(lines, pattern):
    """{option: ARGUMENT} of each line the pattern matches (groups: name, argument)."""
    found = (re.match(pattern, line) for line in lines)
    return {m.group(1): m.group(2).upper() for m in found if m}


def expect_documented(help_text):
    listed = options_in(help_text.splitlines(), r"  (--[a-z-]+) ?([A-Z]*)")
    expect_equal(len(listed) >= 5, True, f"options --help lists: {help_text!r}")
    readme = pathlib.Path(SOURCE, "README.md").read_text()
    table = readme[readme.index("## Command line"):].split("\n\n")[1].splitlines()
    expect_equal(options_in(table, r"\| `(--[a-z-]+)[ =]?([A-Z]*)"), listed, "the README's options against --help")
    manual = pathlib.Path(SOURCE, "packaging", "quelvarion.6").read_text().replace("\\-", "-")
    items = manual[manual.index(".SH OPTIONS"):].split(".SH")[1].split(".TP\n")[1:]
    expect_equal(options_in(items, r"\.BI? (--[a-z-]+)=? ?\"? ?([a-zA-Z]*)"), listed,
                 "the manual page's options against --help")


# (what, arguments, folder set-up (none: empty), on a display, exit status, what stdout starts with,
#  what the one "quelvarion: " line on stderr says). Which mistakes are refused,
#  and the line for each failure of the display, are the unit tests' business.
RUNS = [
    ("--help", ["--help"], None, False, 0, "Usage: quelvarion", None),
    ("--version", ["--version"], None, False, 0, "quelvarion ", None),
    ("an unknown option", ["--bogus"], None, False, 2, "", "unknown option '--bogus'"),
    ("no display", [], link_game_data, False, 1, "", "cannot open the game's window"),
    ("a folder without data", [], None, True, 1, "", "no game data in"),
    ("no blank bitmap", [], lambda folder: (link_game_data(folder), replace_art(folder)), True, 1, "",
     "cannot start the display: Direct Draw Init Failed (00000002)"),
]


def command_line():
    with tempfile.TemporaryDirectory(prefix="qv-e2e-") as scratch, XServer() as x:
        for number, (what, args, prepare, on_display, status, out_start, words) in enumerate(RUNS):
            folder = os.path.join(scratch, str(number))
            os.mkdir(folder)
            if prepare:
                prepare(folder)
            got, out, err = run_program(args, folder, x.display if on_display else None, answer_box=on_display)
            expect_equal(got, status, f"{what}: exit status")
            if not out.startswith(out_start) or (status and out):
                fail(f"{what}: stdout was {out!r}")
            said = [line for line in err.splitlines() if line.startswith("quelvarion: ")]
            if words is None and err or words and (len(said) != 1 or words not in said[0]):
                fail(f"{what}: stderr was {err!r}")
            if status == 2 and "Usage: quelvarion" not in err:
                fail(f"{what}: no usage on stderr: {err!r}")
            if not prepare:
                expect_equal(os.listdir(folder), [], f"{what}: files left behind")
            if what == "--help":
                expect_documented(out)


run(command_line)
