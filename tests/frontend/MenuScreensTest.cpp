#include "support/DisplayApp.h"
#include "support/TextLog.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

class MenuScreens : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(d.Start()); }
    CMenuSystem& Menus() { return d->menus; }
    // Draws the current screen over a white picture.
    void Draw()
    {
        log.texts.clear();
        d.Back().ColourFill(nullptr, 0xFFFF);
        ScopedDC dc(d.Back());
        Menus().DrawScreen(*dc.dc);
    }
    // "x,y highlighted?" of a text, or "absent".
    std::string Written(const std::string& text) const
    {
        const WrittenText* w = log.Find(text);
        if (!w)
            return "absent";
        return std::to_string(w->x) + "," + std::to_string(w->y) + (w->colour == RGB(250, 250, 100) ? " lit" : "");
    }

    DisplayApp d;
    TextLog log;
};

TEST_F(MenuScreens, MenuAndOptionsLeaveTheGameVisibleAndHighlightTheSelection)
{
    Menus().OnKey(VK_UP, true);
    Draw();
    EXPECT_EQ(Written("Main Menu"), "422,100");
    EXPECT_EQ(log.Find("Main Menu")->colour, RGB(180, 90, 225));
    EXPECT_EQ(Written("New Game"), "464,180");
    EXPECT_EQ(Written("Exit Game"), "458,430 lit");
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 60, 110), 0xFFFF);

    Menus().DoAction(ActionShowOptions);
    Menus().OnKey(VK_DOWN, true);
    Menus().OnKey(VK_RIGHT, true); // music off
    Draw();
    EXPECT_EQ(Written("1"), "768,180");
    EXPECT_EQ(Written("Off"), "768,230 lit");
    EXPECT_EQ(Written("Ship/Turrent Stats"), "256,380");
}

TEST_F(MenuScreens, BoxedPagesCoverTheGameAndTheScoresAskForANameWhileOneIsTyped)
{
    const std::string entering = "Enter your name then press enter or escape.";
    const std::string back = "Press escape to return to the main menu.";
    Menus().AddHighScore(300);
    Draw();
    EXPECT_EQ(log.At(240), std::vector<std::string>{"300"}); // the empty name shows nothing
    EXPECT_EQ(Written(entering), "50,728");
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 200, 100), Platform::PackRgb565(RGB(50, 50, 50)));
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 199, 110), 0xFFFF);
    for (UINT key : {UINT('A'), UINT('B'), VK_RETURN})
        Menus().OnKey(key, true);
    Draw();
    EXPECT_EQ(Written("AB"), "362,240");
    EXPECT_EQ(Written("300"), "662,240");
    EXPECT_EQ(Written(entering), "absent");
    EXPECT_EQ(Written(back), "50,728");

    Menus().OnKey(VK_ESCAPE, true);
    Menus().DoAction(ActionShowAbout);
    Draw();
    EXPECT_EQ(DisplayApp::PixelAt(d.Back(), 60, 110), 0u);
    std::vector<std::int32_t> lines;
    for (const WrittenText& w : log.texts)
        if (w.x == 100)
            lines.push_back(w.y);
    EXPECT_EQ(lines, (std::vector<std::int32_t>{183, 217, 234, 251, 285, 302, 336, 353, 387, 404, 438, 455, 489, 506,
                                                540}));
    EXPECT_EQ(Written("Version : 1.11"), "100,217");
}

} // namespace
