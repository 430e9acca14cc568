#include "support/DisplayApp.h"
#include "support/TestApp.h"

#include "display/Bitmaps.h"
#include "display/SpriteInstance.h"
#include "display/SpriteList.h"
#include "display/SpriteSet.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using qvtest::DisplayApp;

SpriteLine Line(std::string name, int w, int h, int directions = 0, int count = 0, int time = 0)
{
    return SpriteLine{std::move(name), w, h, directions, count, time};
}

TEST(SpriteCatalogueFile, ReadsFieldsBlanksNumbersCommentsAndCarriageReturns)
{
    const std::string text = "! a comment 1 2 3\n"
                             "\n"
                             "two 5\n"                  // too few fields
                             "three 10 20\r\n"          // the CR ends the last number
                             "five 10 20 4 8\n"         // field 5 alone gives no animation
                             "six 10 20 0 8 60\n"
                             "seven 10 20 2 3 40 99\n"  // the seventh is ignored
                             "gap 10  20\n"             // an empty field reads 0: height 0
                             "last 1 1 1";
    const auto lines = CSpriteSet::ParseCatalogue(text);
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0], Line("three", 10, 20));
    EXPECT_EQ(lines[1], Line("five", 10, 20, 4));
    EXPECT_EQ(lines[2], Line("six", 10, 20, 0, 8, 60));
    EXPECT_EQ(lines[3], Line("seven", 10, 20, 2, 3, 40));
    EXPECT_EQ(lines[4], Line("last", 1, 1, 1)); // no line feed after the last line
}

TEST(SpriteCatalogueFile, FrameFilesForEachDirectionAndFrameCount)
{
    using Files = std::vector<std::string>;
    EXPECT_EQ(CSpriteSet::FrameFiles("gold", 0, 0), Files{"art/gold.bmp"});
    EXPECT_EQ(CSpriteSet::FrameFiles("boom", 0, 3), (Files{"art/boom_0_0.bmp", "art/boom_0_1.bmp", "art/boom_0_2.bmp"}));
    EXPECT_EQ(CSpriteSet::FrameFiles("ship", 2, 0), (Files{"art/ship_0.bmp", "art/ship_1.bmp"}));
    EXPECT_EQ(CSpriteSet::FrameFiles("mine", 2, 2),
              (Files{"art/mine_0_0.bmp", "art/mine_0_1.bmp", "art/mine_1_0.bmp", "art/mine_1_1.bmp"}));
}

constexpr std::uint16_t Backdrop = 0x0010; // a dark blue no sprite pixel uses
constexpr std::uint16_t White = 0xFFFF;

// A started game, its sprite set and its back buffer.
class SpriteTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(t.Start()); }
    static void Art(const std::string& file, COLORREF colour = RGB(255, 255, 255))
    {
        qvtest::WriteBitmap("art/" + file + ".bmp", 2, 2, [colour](int, int) { return colour; });
    }
    CSpriteSet& Sprites() { return t->sprites; }
    const CSprite& Entry(std::size_t i) { return Sprites().GetEntries().at(i); }

    CSpriteInstance Bound(const SpriteLine& line)
    {
        Sprites().AddSprite(line);
        CSpriteInstance instance;
        instance.Bind(static_cast<std::int32_t>(Sprites().GetEntries().size() - 1));
        return instance;
    }
    // An 8 x 8 sprite whose every pixel tells its column and row, black in the corner.
    CSpriteInstance Gradient()
    {
        qvtest::WriteBitmap("art/grad.bmp", 8, 8, [](int x, int y) { return Colour(x, y); });
        return Bound(Line("grad", 8, 8));
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
using SpriteSetTest = SpriteTest;
using SpriteInstanceTest = SpriteTest;

TEST_F(SpriteSetTest, ShelvesFillRowsLeftToRightAndPagesTopToBottom)
{
    for (const char* f : {"a", "wide_0", "wide_2", "small", "tall", "rest", "fits", "over"})
        Art(f);
    Sprites().AddSprite(Line("a", 100, 50));       // opens the first row, at y 0
    Sprites().AddSprite(Line("wide", 462, 40, 3)); // a missing frame takes no room: the third ends at x 1024
    Sprites().AddSprite(Line("small", 10, 40));    // reuses a row as tall as it, with room
    Sprites().AddSprite(Line("tall", 10, 60));     // never goes into a shorter row
    Sprites().AddSprite(Line("rest", 1014, 60));   // fills its row to x 1024
    Sprites().AddSprite(Line("fits", 10, 617));    // its bottom at 767
    Sprites().AddSprite(Line("over", 1020, 1));    // would reach the bottom: a new page

    EXPECT_EQ(Entry(0).frames[0].source, (RECT{0, 0, 100, 50}));
    EXPECT_EQ(Entry(1).frames[1].surface, nullptr);
    EXPECT_EQ(Entry(1).frames[2].source, (RECT{562, 0, 1024, 40}));
    EXPECT_EQ(Entry(2).frames[0].source, (RECT{0, 50, 10, 90}));  // the row "wide" opened below the first
    EXPECT_EQ(Entry(3).frames[0].source, (RECT{0, 90, 10, 150}));
    EXPECT_EQ(Entry(4).frames[0].source, (RECT{10, 90, 1024, 150}));
    EXPECT_EQ(Entry(5).frames[0].source, (RECT{0, 150, 10, 767}));
    ASSERT_EQ(Sprites().GetPages().size(), 2u);
    EXPECT_EQ(Entry(6).frames[0].source, (RECT{0, 0, 1020, 1}));
    EXPECT_EQ(Entry(6).frames[0].surface, Sprites().GetPages()[1].surface.get());
}

// A line may name 65,536 frame files, and its pages may take 256 MiB: 170
// frames of 1000 × 700, one to a 1.5 MiB page, fit with their table; 171 do not.
TEST_F(SpriteSetTest, ALineIsRefusedOnlyWhenItsFramesOrItsPagesPassTheBudget)
{
    const std::string tooMany = "Sprite line refused, it names more frame files than a line may: ";
    const std::string tooBig = "Sprite line refused, its frames would take more memory than the pages may: ";
    const struct {
        SpriteLine line;
        std::string refusal;
    } cases[] = {
        {Line("placeholders", 2000, 4, 1000), ""},
        {Line("files", 4, 4, 4096, 16, 1), ""},
        {Line("more-files", 4, 4, 4096, 17, 1), tooMany},
        {Line("no-turns", 4, 4, 0, 65537, 1), tooMany},
        {Line("pages", 1000, 700, 170), ""},
        {Line("more-pages", 1000, 700, 171), tooBig},
    };
    for (const auto& c : cases) {
        qvtest::TraceRecorder trace;
        EXPECT_EQ(CSpriteSet::FitsBudget(c.line), c.refusal.empty()) << c.line.name;
        EXPECT_EQ(trace.Texts(), c.refusal.empty() ? std::vector<std::string>{}
                                                   : std::vector<std::string>{c.refusal + c.line.name});
    }
}

// A flip that finds the display lost reloads every name behind the first
// set, laying frames where they were, from the pictures kept since the first
// load and reading no file. Kept pictures stand for their files only while
// the files are unchanged: a frame rewritten on disk is drawn anew, a removed
// one is missing.
TEST_F(SpriteSetTest, ALostDisplayIsRestoredFromMemoryUnlessTheFilesChanged)
{
    qvtest::WriteFile("sprite.ini", std::string("big 1000 700\n! second page\nbig2 1000 700\nsmall 8 8 2 0 0\n"));
    for (const char* f : {"big", "big2", "small_0", "small_1"})
        Art(f, RGB(0, 0, 255));
    Sprites().Load();
    ASSERT_EQ(Sprites().GetPages().size(), 2u);
    CSpriteInstance instance; // names are matched exactly
    EXPECT_FALSE(Sprites().Find("Big2", instance));
    EXPECT_EQ(instance.GetSpriteIndex(), CSpriteInstance::Unbound);
    ASSERT_TRUE(Sprites().Find("big2", instance));
    auto pixel = [&](std::size_t entry, std::size_t f, int dx = 0, int dy = 0) {
        const CSpriteFrame& frame = Entry(entry).frames[f];
        return DisplayApp::PixelAt(*frame.surface, frame.source.left + dx, frame.source.top + dy);
    };

    const std::size_t decoded = BitmapFilesDecoded();
    Platform::NotifySurfacesLost(); // as when the window is minimised
    EXPECT_EQ(t->display.Flip(), 0u);
    EXPECT_EQ(t->display.GetBack()->IsLost(), DD_OK);
    EXPECT_EQ(BitmapFilesDecoded(), decoded);
    ASSERT_EQ(Sprites().GetEntries().size(), 6u);
    EXPECT_EQ(Sprites().GetPages().size(), 2u);
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t f = 0; f < Entry(i).frames.size(); ++f)
            EXPECT_TRUE(Entry(i + 3).name == Entry(i).name && Entry(i + 3).frames[f].surface == Entry(i).frames[f].surface &&
                        Entry(i + 3).frames[f].source == Entry(i).frames[f].source) << Entry(i).name << " " << f;
    // The instance bound before still finds its image on the restored second page.
    EXPECT_TRUE(Sprites().Find("big2", instance));
    EXPECT_EQ(instance.GetSpriteIndex(), 1);
    EXPECT_EQ(pixel(1, 0, 500, 300), 0x001F);
    EXPECT_EQ(pixel(5, 1), 0x001F);

    Art("small_0", RGB(255, 0, 0));
    std::filesystem::remove("art/small_1.bmp");
    t->display.Restore();
    ASSERT_EQ(Sprites().GetEntries().size(), 9u);
    EXPECT_EQ(pixel(8, 0), 0xF800);
    EXPECT_EQ(Entry(8).frames[1].surface, nullptr);
}

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
    boom.Draw(1); // what the long frame took beyond 60 ms is not carried over
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
