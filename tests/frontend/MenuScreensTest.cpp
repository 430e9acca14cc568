#include "support/DisplayApp.h"
#include "support/TextLog.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

constexpr COLORREF Title = RGB(180, 90, 225);
constexpr COLORREF Text = RGB(60, 120, 120);
constexpr COLORREF Highlight = RGB(250, 250, 100);

class MenuScreens : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(d.Start()); }
    CMenuSystem& Menus() { return d->menus; }
    void Draw()
    {
        log.texts.clear();
        ScopedDC dc(d.Back());
        Menus().DrawScreen(*dc.dc);
    }
    // "x,y colour" of a text, or "absent".
    std::string Written(const std::string& text) const
    {
        const WrittenText* w = log.Find(text);
        return w ? std::to_string(w->x) + "," + std::to_string(w->y) + " " + std::to_string(w->colour) : "absent";
    }
    static std::string At(int x, int y, COLORREF colour)
    {
        return std::to_string(x) + "," + std::to_string(y) + " " + std::to_string(colour);
    }

    DisplayApp d;
    TextLog log;
};

TEST_F(MenuScreens, MenuAndOptionsPlaceTheirEntriesAndHighlightTheSelection)
{
    Menus().OnKey(VK_UP, true);
    Draw();
    EXPECT_EQ(Written("Main Menu"), At(422, 100, Title));
    EXPECT_EQ(Written("New Game"), At(464, 180, Text));
    EXPECT_EQ(Written("Exit Game"), At((1024 - 9 * 12) / 2, 430, Highlight));
    EXPECT_EQ(log.At(708).size() + log.At(728).size(), 2u);

    Menus().DoAction(ActionShowOptions);
    Menus().OnKey(VK_DOWN, true);
    Menus().OnKey(VK_RIGHT, true); // music off
    Draw();
    EXPECT_EQ(Written("Start Level"), At(256, 180, Text));
    EXPECT_EQ(Written("1"), At(768, 180, Text));
    EXPECT_EQ(Written("Off"), At(768, 230, Highlight));
    EXPECT_EQ(Written("Ship/Turrent Stats"), At(256, 380, Text));
}

TEST_F(MenuScreens, HighScoresShowTheNameEntryHintExactlyWhileANameIsTyped)
{
    const std::string entering = "Enter your name then press enter or escape.";
    Menus().AddHighScore(300);
    Draw();
    EXPECT_EQ(log.At(240), std::vector<std::string>{"300"}); // the empty name shows nothing
    EXPECT_EQ(Written("300"), At(662, 240, Text));
    EXPECT_EQ(Written(entering), At(50, 728, Text));

    for (UINT key : {UINT('A'), UINT('B'), VK_RETURN})
        Menus().OnKey(key, true);
    Draw();
    EXPECT_EQ(Written("AB"), At(362, 240, Text));
    EXPECT_EQ(Written(entering), "absent");
    EXPECT_EQ(Written("Press escape to return to the main menu."), At(50, 728, Text));
}

TEST_F(MenuScreens, BoxedPagesCoverTheGameAndTheMenusLeaveItVisible)
{
    const std::uint16_t white = 0xFFFF;
    const std::uint16_t frame = Platform::PackRgb565(RGB(50, 50, 50));
    auto drawOver = [&](std::int32_t action) {
        d.Back().ColourFill(nullptr, white);
        Menus().OnKey(VK_ESCAPE, true);
        Menus().DoAction(action);
        Draw();
    };
    drawOver(ActionNone);
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 60, 110), white);
    drawOver(ActionShowHighScores);
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 60, 110), white);
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 200, 100), frame);
    drawOver(ActionShowHelp);
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 973, 667), frame);
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 60, 110), 0u);
    EXPECT_EQ(log.At(608), std::vector<std::string>{"Good luck and most importantly have fun."});

    drawOver(ActionShowAbout);
    std::vector<std::int32_t> lines;
    for (const WrittenText& w : log.texts)
        if (w.x == 100)
            lines.push_back(w.y);
    EXPECT_EQ(lines, (std::vector<std::int32_t>{183, 217, 234, 251, 285, 302, 336, 353, 387, 404, 438, 455, 489, 506,
                                                540}));
    EXPECT_EQ(log.At(217), std::vector<std::string>{"Version : 1.11"});
}

} // namespace
