#pragma once
#include "frontend/HighScoreTable.h"
#include "frontend/MenuOption.h"
#include "frontend/MenuPage.h"
#include "platform/FileStore.h"
#include "platform/Types.h"

#include <cstdint>
#include <string>
#include <vector>

class CDC;
class CTextPen;

// Which screen the menus show.
enum MenuScreen : std::int32_t {
    ScreenMainMenu = 0,
    ScreenHelp = 1,
    ScreenAbout = 2,
    ScreenOptions = 3,
    ScreenHighScores = 4,
};

// The game outside play: the main menu and its screens, the options the rest
// of the game consults, and the high scores. The options and scores are read
// from the settings file when the menus are made and written back when they go.
class CMenuSystem {
public:
    static constexpr const char* SettingsFile = "quelvarion.ini";

    CMenuSystem();
    ~CMenuSystem();
    CMenuSystem(const CMenuSystem&) = delete;
    CMenuSystem& operator=(const CMenuSystem&) = delete;

    // A key event while the menus are up; key-ups only matter to name entry.
    void OnKey(UINT key, bool pressed);
    void DoAction(std::int32_t action);
    // Draws the current screen over the frame.
    void DrawScreen(CDC& dc);

    bool IsMusicOn() const { return IsOptionOn(OptionMusic); }
    bool IsSoundOn() const { return IsOptionOn(OptionSound); }
    bool IsStarsOn() const { return IsOptionOn(OptionStars); }
    bool IsStatsOn() const { return IsOptionOn(OptionStats); }
    std::int32_t GetStartLevel() const;

    // Offers a finished game's score to the table and shows the high scores.
    void AddHighScore(std::int32_t score);

    // The options file: every option and score, as the game keeps them.
    void LoadSettings();
    void SaveSettings();
    // Leaves the file as it is when the menus go: for runs that are not the
    // player's own game, such as a replay.
    void KeepFileAsIs() { saveOnExit = false; }
    // Saves the settings now, unless the file is to be kept as it is.
    void SaveIfAsked()
    {
        if (saveOnExit)
            SaveSettings();
    }
    // The file's text for the current options and scores, and the reading of one.
    std::string SettingsText();
    void ApplySettingsText(const std::string& text);
    // The settings file's full name, for telling the player where it is.
    static std::string SettingsPath();

    // The option with this identity, or null.
    CMenuOption* FindOption(OptionId id);
    const CMenuOption* FindOption(OptionId id) const;
    // Sets an on/off option directly, as the options screen would.
    void SetOptionOn(OptionId id, bool on);
    // Puts the menus and the table as a replay found them.
    void ShowScreen(std::int32_t newScreen, std::int16_t cursor);
    void SetHighScore(int index, std::string name, std::int32_t score);

    // What a game can change of the menus: the screen, the selections, the
    // options and the table. A checkpoint of the game keeps it; the file's
    // bookkeeping stays with the menus.
    struct Standing {
        std::vector<CMenuPage> pages;
        std::int32_t currentPage;
        std::int32_t screen;
        std::int16_t optionsCursor;
        std::vector<CMenuOption> options;
        CHighScoreTable highScores;
    };
    Standing GetStanding() const { return {pages, currentPage, screen, optionsCursor, options, highScores}; }
    void Restore(const Standing& standing)
    {
        pages = standing.pages;
        currentPage = standing.currentPage;
        screen = standing.screen;
        optionsCursor = standing.optionsCursor;
        options = standing.options;
        highScores = standing.highScores;
    }

    std::int32_t GetScreen() const { return screen; }
    // A new high score's name is being typed: every key goes to it.
    bool IsEnteringName() const { return screen == ScreenHighScores && highScores.IsEditing(); }
    std::int16_t GetOptionsCursor() const { return optionsCursor; }
    const CMenuPage& GetCurrentPage() const { return pages[static_cast<std::size_t>(currentPage)]; }
    const std::vector<CMenuOption>& GetOptions() const { return options; }
    const CHighScoreTable& GetHighScores() const { return highScores; }

private:
    CMenuPage& CurrentPage() { return pages[static_cast<std::size_t>(currentPage)]; }
    bool IsOptionOn(OptionId id) const;
    void OnEscape();
    void OnArrow(std::uint8_t key);
    void MoveOptionsCursor(int step);

    // The screens, one drawer each (MenuScreens.cpp).
    void DrawMainMenu(CTextPen& pen);
    void DrawOptions(CTextPen& pen);
    void DrawHighScores(CTextPen& pen);
    void DrawHelp(CTextPen& pen);
    void DrawAbout(CTextPen& pen);

    std::vector<CMenuPage> pages;
    std::int32_t currentPage = 0;
    std::int32_t screen = ScreenMainMenu;
    std::int16_t optionsCursor = 0;
    std::vector<CMenuOption> options;
    CHighScoreTable highScores;
    bool saveOnExit = true;
    // The settings file as read: a save that would drop what the game did not
    // take from it, or overwrite another program's change, keeps a copy first.
    Platform::FileStamp readStamp;
    bool readMoreThanKept = false;
    bool KeepCopyBeforeSave();
};
