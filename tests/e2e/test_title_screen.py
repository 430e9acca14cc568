"""The title screen fills the game's picture during the start-up pause, scaled
into the letterbox between black bars."""
from quelvarion_e2e import Game, expect_close, fail, run, showing_title


def title_screen():
    with Game() as game:
        shot = game.wait_for_screen(showing_title)
        picture = shot.game_picture()
        title = game.art("title_screen.bmp", picture.width, picture.height)
        # Scaled twice by different filters and shown in 16-bit colour: close, not equal.
        expect_close(picture.mean_difference(title, step=7), 8, "the title screen")
        if any(bar.brightest() > 0 for bar in shot.bars()):
            fail("the letterbox bars are not black")


run(title_screen)
