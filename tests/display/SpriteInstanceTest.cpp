#include "support/DisplayApp.h"

#include "display/SpriteInstance.h"
#include "display/SpriteList.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using qvtest::DisplayApp;

constexpr std::uint16_t Backdrop = 0x0010; // a dark blue no sprite pixel uses
constexpr std::uint16_t White = 0xFFFF;

class SpriteInstanceTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(t.Start()); }

    CSpriteInstance Bound(const SpriteLine& line)
    {
        t->sprites.AddSprite(line);
        CSpriteInstance instance;
        instance.Bind(static_cast<std::int32_t>(t->sprites.GetEntries().size() - 1));
        return instance;
    }
    // An 8 x 8 sprite whose every pixel tells its column and row, black in the corner.
    CSpriteInstance Gradient()
    {
        qvtest::WriteBitmap("art/grad.bmp", 8, 8, [](int x, int y) { return Colour(x, y); });
        return Bound({"grad", 8, 8, 0, 0, 0});
    }
    static COLORREF Colour(int x, int y)
    {
        return x == 0 && y == 0 ? RGB(0, 0, 0) : RGB(static_cast<std::uint8_t>(x * 32), static_cast<std::uint8_t>(y * 32), 64);
    }
    static std::uint16_t Value(int x, int y) { return Platform::PackRgb565(Colour(x, y)); }
    std::uint16_t Pixel(int x, int y) { return DisplayApp::PixelAt(t.Back(), x, y); }
    void ClearBack() { t.Back().ColourFill(nullptr, Backdrop); }

    DisplayApp t;
};

TEST_F(SpriteInstanceTest, RotationRoundsToTheNearestOfThirtySixDirections)
{
    // With 7 frames, 51 degrees a step: direction 7 does not exist and shows the placeholder.
    const struct {
        int directions, rotation, angle, frame;
    } cases[] = {{36, 354, 359, 35}, {36, 355, 0, 0}, {7, 334, 359, -1}};
    for (const auto& c : cases) {
        CSpriteInstance sprite = Bound({"turning" + std::to_string(c.directions), 8, 8, c.directions, 0, 0});
        sprite.SetRotation(c.rotation);
        EXPECT_EQ(sprite.GetAngle(), c.angle) << c.directions << " " << c.rotation;
        EXPECT_EQ(sprite.ChosenFrameIndex(), c.frame) << c.directions << " " << c.rotation;
    }
}

TEST_F(SpriteInstanceTest, AnimationAdvancesOneFrameOnceItsTimeIsExceededAndWraps)
{
    CSpriteInstance boom = Bound({"boom", 8, 8, 0, 8, 60});
    boom.Draw(30);
    boom.Draw(30);
    EXPECT_EQ(boom.GetFrame(), 0); // 60 is not above 60
    boom.Draw(1);
    EXPECT_EQ(boom.GetFrame(), 1);
    boom.Draw(10000); // one frame a draw, however long the frame took
    EXPECT_EQ(boom.GetFrame(), 2);
    for (int i = 0; i < 6; ++i)
        boom.Draw(61);
    EXPECT_EQ(boom.GetFrame(), 0);

    CSpriteInstance spinner = Bound({"spin", 8, 8, 4, 3, 10});
    spinner.SetRotation(90);
    spinner.Draw(11);
    EXPECT_EQ(spinner.ChosenFrameIndex(), 1 * 3 + 1); // direction-major
}

TEST_F(SpriteInstanceTest, DrawsCentredWithTheBlackKeyAndClipsAtEachScreenEdge)
{
    CSpriteInstance grad = Gradient();
    EXPECT_EQ(grad.GetRadius(), 4);
    struct Case {
        int x, y;                          // the centre
        int screenX, screenY, column, row; // a screen pixel and the frame pixel it shows; -1: the backdrop
                                           // (the black corner is see-through; wholly off, nothing at all)
    };
    for (Case c : {Case{100, 200, 97, 196, 1, 0}, Case{100, 200, 103, 203, 7, 7}, Case{100, 200, 96, 196, -1, -1},
                   Case{2, 100, 0, 100, 2, 4}, Case{1021, 100, 1023, 100, 6, 4}, Case{100, 1, 100, 0, 4, 3},
                   Case{100, 766, 100, 767, 4, 5}, Case{-4, 100, 0, 100, -1, -1}, Case{100, 772, 100, 767, -1, -1}}) {
        ClearBack();
        grad.SetPosition(c.x, c.y);
        qvtest::TraceRecorder trace;
        grad.Draw(0);
        EXPECT_TRUE(trace.lines.empty()); // the copy was never refused
        EXPECT_EQ(Pixel(c.screenX, c.screenY), c.column < 0 ? Backdrop : Value(c.column, c.row)) << c.x << "," << c.y;
    }
}

TEST_F(SpriteInstanceTest, PlaceholderWhenUnboundWithoutAnImageOrWhenTheCopyFails)
{
    CSpriteInstance unbound;
    unbound.SetPosition(100, 100);
    ClearBack();
    unbound.Draw(16);
    EXPECT_EQ(Pixel(100, 100), White);
    EXPECT_EQ(Pixel(84, 100), 0); // the outline, radius 16

    CSpriteInstance missing = Bound({"missing", 20, 20, 0, 0, 0});
    missing.SetPosition(300, 300);
    missing.Draw(16);
    EXPECT_EQ(Pixel(290, 300), 0); // radius 10, half the frame width

    CSpriteInstance grad = Gradient();
    grad.SetPosition(500, 500);
    Platform::InjectDisplayFault(DisplayOp::BltFast, DDERR_SURFACEBUSY);
    qvtest::TraceRecorder trace;
    grad.Draw(16);
    ASSERT_EQ(trace.lines.size(), 1u);
    EXPECT_EQ(trace.lines[0].text, "Failed to draw sprite.");
    EXPECT_EQ(Pixel(500, 500), White);
    grad.Draw(16); // the next frame tries again
    EXPECT_EQ(Pixel(500, 500), Value(4, 4));
}

std::vector<CSpriteInstance*> Contents(CSpriteList& list)
{
    return {list.begin(), list.end()};
}

// A ticket takes out its own instance, keeping the drawing order, and once
// spent names nothing. A new game deletes every look before the world lets go
// of its objects: their tickets must then name nothing, even once new looks
// are listed.
TEST(SpriteList, ATicketTakesOutItsOwnInstanceOnlyWhileItLasts)
{
    CSpriteList list;
    std::vector<CSpriteInstance*> made;
    std::vector<CSpriteList::Ticket> tickets;
    for (int i = 0; i < 4; ++i) {
        made.push_back(new CSpriteInstance);
        tickets.push_back(list.Add(made.back()));
    }
    list.Remove(tickets[1]);
    list.Remove(tickets[3]);
    EXPECT_EQ(Contents(list), (std::vector<CSpriteInstance*>{made[0], made[2]}));
    list.Remove(tickets[1]); // spent
    made.push_back(new CSpriteInstance);
    list.Add(made.back());
    EXPECT_EQ(Contents(list), (std::vector<CSpriteInstance*>{made[0], made[2], made[4]}));

    list.DeleteAll();
    EXPECT_TRUE(list.empty());
    auto* fresh = new CSpriteInstance;
    CSpriteList::Ticket current = list.Add(fresh);
    list.Remove(tickets[0]);
    EXPECT_EQ(Contents(list), std::vector<CSpriteInstance*>{fresh});
    list.Remove(current);
    EXPECT_TRUE(list.empty());
}

} // namespace
