// The screens of the menu system: the main menu and options over the game
// picture, and the high scores, help and about pages in their boxes.
#include "frontend/MenuSystem.h"

#include "display/Screen.h"
#include "frontend/GameFonts.h"
#include "frontend/ScreenStyle.h"
#include "frontend/TextPen.h"

#include <string>

namespace {

constexpr std::int32_t OpenTitleY = 100;  // the main menu and options have no box
constexpr std::int32_t BoxedTitleY = 120;
constexpr std::int32_t EntryTop = 180;
constexpr std::int32_t EntryStep = 50;
constexpr std::int32_t FooterX = 50;
constexpr std::int32_t FooterUpperRise = 60; // above the screen's bottom
constexpr std::int32_t FooterLowerRise = 40;
constexpr std::int32_t PageMargin = 50;      // the help and about boxes' sides
constexpr std::int32_t ScoreBoxMargin = 200;
constexpr std::int32_t BoxTopBottom = 100;
constexpr std::int32_t PageTextX = 100;
constexpr std::int32_t ScoreColumnOffset = 150; // names left of the middle, scores right of it
constexpr std::int32_t ScoreTop = 240;
constexpr std::int32_t ScoreStep = 30;

constexpr const char* ReturnHint = "Press escape to return to the main menu.";
constexpr const char* NameEntryHint = "Enter your name then press enter or escape.";

struct PageLine {
    std::int32_t y;
    const char* text;
};

// Lines 17 pixels apart within a paragraph, paragraphs 34 apart.
constexpr PageLine HelpLines[] = {
    {183, "Welcome to Quelvarion. For a more in depth help please read the HTML help that comes with the game. Also In some"},
    {200, "parts of Quelvarion there will be help text on the bottom of the screen."},
    {234, "Your ship needs to be built from a number of components. Each component has a size and a mass. You only have 1000"},
    {251, "units of size available so you are limited in the number of components you can add. Increasing your ships mass too"},
    {268, "much will make it slower and less maneuverable. You will need an Engine to give thrust and Jets to allow turning."},
    {285, "While not vital Subspace Sails increase your ships maximum speed beyond 50 pixels/sec."},
    {319, "Adding an energy generator will allow you to add energy based components. The most important of which is a laser"},
    {336, "weapon. To customize the key used to fire a specific weapon simply select the weapon in your ship list and press the"},
    {353, "desired fire key. These weapons will allow you to destroy your enemies and get to the next level. Add a shield to"},
    {370, "help protect your ship from damage."},
    {404, "Lastly there is armour. This component is added to the outside of your ship and as such has no size. It does however"},
    {421, "have mass and each additional component added adds more mass than the one before it. There is a limit of ten armour"},
    {438, "components."},
    {472, "To play the game use the arrow keys to control your ship and attempt to kill any enemies that appear. Once the time"},
    {489, "has run out on a level and all the enemies are dead you will move on to the next level. Asteroids do not count as"},
    {506, "enemies. Press escape while playing to bring up the menu. This also pauses the game. Pressing escape again while"},
    {523, "the game is paused will let you resume play."},
    {557, "Large and medium asteroids may contain special powerups that will both give you better components in the next level"},
    {574, "and add 200 energy to your ship."},
    {608, "Good luck and most importantly have fun."},
};

constexpr PageLine AboutLines[] = {
    {183, "Quelvarion: build a ship, then fly it through timed levels of asteroids, mines and turrets."},
    {217, "Version : 1.11"},
    {234, "Written in C++20 for Linux desktops, on SDL2, SDL2_ttf and SDL2_mixer."},
    {251, "Made by the Quelvarion development team."},
    {285, "Pictures: every ship, rock, mine, turret, shot, blast and powerup is painted by the"},
    {302, "game's own picture generator when the game is built."},
    {336, "Sound: the effects are synthesised and the background tune is composed by the game's"},
    {353, "own sound and music generators."},
    {387, "Text: drawn in the fonts your system provides."},
    {404, "Stars: six hundred of them, each twinkling in its own time."},
    {438, "Testing: the game's own test suite, run without a screen or a sound card on every change."},
    {455, "Thanks to everyone who plays the game and tells us what goes wrong."},
    {489, "Your options and the ten best scores are kept in quelvarion.ini where the game runs."},
    {506, "Delete that file to start again with the defaults and an empty table."},
    {540, "Have fun, and keep an eye on your energy."},
};

void WriteTitle(CTextPen& pen, std::int32_t y, const std::string& title)
{
    pen.SetFont(TitleFont());
    pen.SetColour(ScreenStyle::TitleColour);
    pen.WriteCentred(0, ScreenWidth(), y, title);
}

// The one or two hint lines at the foot of a screen.
void WriteFooter(CTextPen& pen, const char* upper, const char* lower)
{
    pen.SetFont(TextFont());
    pen.SetColour(ScreenStyle::TextColour);
    if (upper)
        pen.Write(FooterX, ScreenHeight() - FooterUpperRise, upper);
    pen.Write(FooterX, ScreenHeight() - FooterLowerRise, lower);
}

// A box with its title, covering the game picture.
void DrawPage(CTextPen& pen, std::int32_t sideMargin, const std::string& title)
{
    DrawBox(pen.Context(), {sideMargin, BoxTopBottom, ScreenWidth() - sideMargin, ScreenHeight() - BoxTopBottom});
    WriteTitle(pen, BoxedTitleY, title);
}

template <std::size_t N>
void DrawTextPage(CTextPen& pen, const char* title, const PageLine (&lines)[N])
{
    DrawPage(pen, PageMargin, title);
    pen.SetFont(TextFont());
    pen.SetColour(ScreenStyle::TextColour);
    for (const PageLine& line : lines)
        pen.Write(PageTextX, line.y, line.text);
    WriteFooter(pen, nullptr, ReturnHint);
}

COLORREF EntryColour(bool highlighted)
{
    return highlighted ? ScreenStyle::HighlightColour : ScreenStyle::TextColour;
}

std::int32_t EntryY(std::size_t index)
{
    return EntryTop + EntryStep * static_cast<std::int32_t>(index);
}

} // namespace

void CMenuSystem::DrawScreen(CDC& dc)
{
    CTextPen pen(dc, TitleFont(), ScreenStyle::TitleColour);
    switch (screen) {
    case ScreenMainMenu: DrawMainMenu(pen); break;
    case ScreenHelp: DrawHelp(pen); break;
    case ScreenAbout: DrawAbout(pen); break;
    case ScreenOptions: DrawOptions(pen); break;
    case ScreenHighScores: DrawHighScores(pen); break;
    default: break;
    }
}

void CMenuSystem::DrawMainMenu(CTextPen& pen)
{
    const CMenuPage& page = GetCurrentPage();
    WriteTitle(pen, OpenTitleY, page.GetTitle());
    pen.SetFont(MenuFont());
    const std::vector<CMenuItem>& items = page.GetItems();
    for (std::size_t i = 0; i < items.size(); ++i) {
        pen.SetColour(EntryColour(static_cast<std::int32_t>(i) == page.GetSelectedIndex()));
        pen.WriteCentred(0, ScreenWidth(), EntryY(i), items[i].label);
    }
    WriteFooter(pen, "Use the up and down arrow keys to navigate the menu. Press enter or space to choose an option.",
                "Pressing escape will return you to the previous menu or resume a game if you are on the main menu.");
}

void CMenuSystem::DrawOptions(CTextPen& pen)
{
    WriteTitle(pen, OpenTitleY, "Options");
    pen.SetFont(MenuFont());
    const std::int32_t quarter = ScreenWidth() / 4;
    for (std::size_t i = 0; i < options.size(); ++i) {
        pen.SetColour(EntryColour(static_cast<std::int32_t>(i) == optionsCursor));
        pen.Write(quarter, EntryY(i), options[i].GetName());
        pen.Write(3 * quarter, EntryY(i), options[i].GetValueText());
    }
    WriteFooter(pen, "Use the side arrow keys to change options and the up and down to select",
                " the option you wish to change. Press escape to return to the main menu.");
}

void CMenuSystem::DrawHighScores(CTextPen& pen)
{
    DrawPage(pen, ScoreBoxMargin, "High Scores");
    pen.SetFont(TextFont());
    pen.SetColour(ScreenStyle::TextColour);
    const std::int32_t middle = ScreenWidth() / 2;
    for (int i = 0; i < CHighScoreTable::Size; ++i) {
        const std::int32_t y = ScoreTop + ScoreStep * i;
        if (!highScores.GetName(i).empty())
            pen.Write(middle - ScoreColumnOffset, y, highScores.GetName(i));
        pen.Write(middle + ScoreColumnOffset, y, std::to_string(highScores.GetScore(i)));
    }
    WriteFooter(pen, nullptr, highScores.IsEditing() ? NameEntryHint : ReturnHint);
}

void CMenuSystem::DrawHelp(CTextPen& pen)
{
    DrawTextPage(pen, "Game Help", HelpLines);
}

void CMenuSystem::DrawAbout(CTextPen& pen)
{
    DrawTextPage(pen, "About the Game", AboutLines);
}
