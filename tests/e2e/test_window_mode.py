"""--windowed starts the game in a 1024 x 768 window that carries the game's
icon, and --trace writes the trace calls to stderr in their order, each with
its time since the start. Alt+Enter's choice is remembered for the next start;
--fullscreen and --windowed overrule it for one run. On large screens the
picture fills the screen as --scale or F10 says, and F10's choice is
remembered too, as are the volume keys' steps. F12 keeps the game's frame as
a PNG, and keys of the player's own stand for the game's."""
import os
import pathlib
import re
import tempfile

from quelvarion_e2e import (NO_STARS, SCREEN_HEIGHT, SCREEN_WIDTH, TITLE_PAUSE_S, Game, expect_equal, fail,
                            picture_file, run, settings_text, wait_until)

WINDOW = (1024, 768)
NOTICE_GREY = (150, 150, 150)
SCREEN = (SCREEN_WIDTH, SCREEN_HEIGHT)
TRACE_LINE = re.compile(r"^\[ *(\d+\.\d{3})\] (.*)$")
# Lines the trace holds in this order, among others.
TRACED = ["Application Constructor", "Screen Width 1024", "********* Initialisation Complete ********"]


def check_trace(log_path):
    traced = [m for m in map(TRACE_LINE.match, pathlib.Path(log_path).read_text().splitlines()) if m]
    texts, times = [m.group(2) for m in traced], [float(m.group(1)) for m in traced]
    found = [texts.index(line) if line in texts else None for line in TRACED]
    if None in found or found != sorted(found):
        fail(f"the trace lines {TRACED} are not all there in their order: {texts}")
    if times != sorted(times) or times[-1] < TITLE_PAUSE_S:
        fail(f"trace times {times} do not rise through the title pause")


def icon_size(game):
    icon = game.x("xprop", "-id", game.current_window(), "_NET_WM_ICON")
    # Newer xprop draws the icon, older ones list its numbers, width and height first.
    found = re.search(r"Icon \((\d+) x (\d+)\)", icon) or re.search(r"= (\d+), (\d+),", icon)
    return (int(found.group(1)), int(found.group(2))) if found else None


def window_mode():
    with tempfile.TemporaryDirectory(prefix="qv-e2e-config-") as config:
        # (arguments, the window's size at the start, after Alt+Enter)
        for args, first, switched in ((["--windowed", "--trace"], WINDOW, SCREEN), ([], SCREEN, WINDOW),
                                      ([], WINDOW, None), (["--fullscreen"], SCREEN, None)):
            with Game(args=args, config_home=config) as game:
                game.wait_window_size(first)
                if "--trace" in args:
                    expect_equal(icon_size(game), (64, 64), "the window's icon")
                if switched:
                    game.wait_title_pause()
                    game.keys("alt+Return")
                    game.wait_window_size(switched)
                    game.close_window()
                    expect_equal(game.wait_exit(), 0, f"{args}: exit status")
                if "--trace" in args:
                    check_trace(game.log_path())


def expect_picture_in(game, box, what):
    """Waits until all that is drawn lies in box and reaches across most of it."""
    x, y, w, h = box

    def fits(shot):
        dx, dy, dw, dh = shot.drawn_box()
        return dx >= x and dy >= y and dx + dw <= x + w and dy + dh <= y + h and dw > 0.9 * w and dh > 0.9 * h
    try:
        game.wait_for_screen(fits, timeout=20, every=0.5)
    except AssertionError:
        fail(f"{what}: the picture is not in {box} but in {game.screenshot().drawn_box()}")


def scaling():
    with tempfile.TemporaryDirectory(prefix="qv-e2e-config-") as config:
        with Game(args=["--scale=integer"], screen=(1920, 1080), config_home=config) as game:
            expect_picture_in(game, (448, 156, 1024, 768), "integer at 1920x1080: once, centred")
            game.keys("F10")
            # "Scaling: smooth" shows for two seconds from when the key is taken
            # (after the title pause): looked for first, before the slower look at
            # the whole picture.
            notice = lambda shot: shot.at_game(860, 740, 164, 28).pixels_near(NOTICE_GREY, 30)
            game.wait_for_screen(lambda shot: notice(shot) > 40, timeout=TITLE_PAUSE_S + 20, every=0.1)
            expect_picture_in(game, (240, 0, 1440, 1080), "smooth at 1920x1080: fitted")
            game.wait_for_screen(lambda shot: notice(shot) < 10, timeout=20)  # for a moment only
            game.keys("F10")
            expect_picture_in(game, (240, 0, 1440, 1080), "sharp at 1920x1080: fitted")
        expect_equal(pathlib.Path(config, "quelvarion", "comforts").read_text(), "scale = sharp\n", "the comforts file")
        # Fitted as the first start's default, smooth, is; F10 goes on from sharp to integer.
        with Game(screen=(1920, 1080), config_home=config) as game:
            expect_picture_in(game, (240, 0, 1440, 1080), "sharp, remembered, at 1920x1080")
            game.keys("F10")
            expect_picture_in(game, (448, 156, 1024, 768), "integer after sharp, remembered")


def comforts_keys():
    with tempfile.TemporaryDirectory(prefix="qv-e2e-config-") as config:
        pictures = os.path.join(config, "pictures", "Quelvarion")
        os.makedirs(os.path.join(config, "quelvarion"))
        comforts = pathlib.Path(config, "quelvarion", "comforts")
        comforts.write_text("key-down = K\nkey-up = A\nvolume-music = 3\n")
        os.environ["XDG_PICTURES_DIR"] = os.path.dirname(pictures)
        with Game(args=["--windowed"], screen=WINDOW, config_home=config,
                  settings=settings_text(NO_STARS)) as game:
            game.wait_title_pause()
            menu = game.screenshot()
            game.keys("K")  # Down, so the next entry is chosen
            game.wait_for_screen(lambda shot: shot.mean_difference(menu) > 0, timeout=20)
            game.keys("F8", "F5", "F12")
            # A picture is written under a hidden name and then renamed: only then is it whole.
            kept = lambda: os.path.isdir(pictures) and [n for n in os.listdir(pictures) if not n.startswith(".")]
            name = wait_until(kept, "F12 kept the frame")[0]
            # The frame as the game made it; on the screen the notice lies over its foot.
            taken = picture_file(os.path.join(pictures, name), *WINDOW)
            top = (0, 0, WINDOW[0], 700)
            expect_equal(taken.crop(*top).pixels == game.screenshot().crop(*top).pixels, True,
                         "the screenshot's pixels against the screen's")
            if "key-up: A is a key a laser fires on; the line is left out" not in game.said():
                fail("no word about the key line left out")
        expect_equal(comforts.read_text(), "key-down = K\nkey-up = A\nvolume-music = 4\nvolume-effects = 9\n",
                     "the comforts file")


run(window_mode, scaling, comforts_keys)
