#include "frontend/MenuSystem.h"

#include "app/GameControl.h"

#include <algorithm>
#include <utility>

namespace {

// The options and their values before the settings file is read, in the
// order the options screen and the file list them.
std::vector<CMenuOption> DefaultOptions()
{
    return {
        CMenuOption::Number(OptionStartLevel, "Start Level", 1, 1, 10),
        CMenuOption::Switch(OptionMusic, "Music", true),
        CMenuOption::Switch(OptionSound, "Sound FX", true),
        CMenuOption::Switch(OptionStars, "Background Stars", true),
        CMenuOption::Switch(OptionStats, "Ship/Turrent Stats", true),
    };
}

CMenuPage MainMenuPage()
{
    CMenuPage page("Main Menu");
    page.AddItem("New Game", ActionNewGame);
    page.AddItem("Help", ActionShowHelp);
    page.AddItem("About", ActionShowAbout);
    page.AddItem("Options", ActionShowOptions);
    page.AddItem("High Scores", ActionShowHighScores);
    page.AddItem("Exit Game", ActionExitGame);
    return page;
}

} // namespace

CMenuSystem::CMenuSystem() : pages{MainMenuPage()}, options(DefaultOptions())
{
    LoadSettings();
}

CMenuSystem::~CMenuSystem()
{
    SaveIfAsked();
}

void CMenuSystem::ShowScreen(std::int32_t newScreen, std::int16_t cursor)
{
    screen = newScreen;
    if (cursor >= 0 && cursor < static_cast<std::int16_t>(options.size()))
        optionsCursor = cursor;
}

void CMenuSystem::SetHighScore(int index, std::string name, std::int32_t score)
{
    highScores.SetEntry(index, std::move(name), score);
}

void CMenuSystem::OnKey(UINT key, bool pressed)
{
    const auto code = static_cast<std::uint8_t>(key & 0xFF);
    if (IsEnteringName()) {
        highScores.EnterNameKey(code, pressed);
        return;
    }
    if (!pressed)
        return;
    switch (code) {
    case VK_RETURN:
    case VK_SPACE:
        // On every screen: the information screens repeat the selected entry.
        DoAction(CurrentPage().GetSelectedItem().action);
        break;
    case VK_ESCAPE:
        OnEscape();
        break;
    case VK_UP:
    case VK_DOWN:
    case VK_LEFT:
    case VK_RIGHT:
        OnArrow(code);
        break;
    default:
        break;
    }
}

void CMenuSystem::OnEscape()
{
    if (screen == ScreenMainMenu && Game::GetGameState() == StatePaused) {
        Game::SetPause(false);
        Game::ApplyMusicOption();
        return;
    }
    screen = ScreenMainMenu;
}

void CMenuSystem::OnArrow(std::uint8_t key)
{
    if (screen == ScreenMainMenu) {
        if (key == VK_UP)
            CurrentPage().SelectPrevious();
        else if (key == VK_DOWN)
            CurrentPage().SelectNext();
        return;
    }
    if (screen != ScreenOptions || options.empty())
        return;
    CMenuOption& option = options[static_cast<std::size_t>(optionsCursor)];
    switch (key) {
    case VK_UP: MoveOptionsCursor(-1); break;
    case VK_DOWN: MoveOptionsCursor(+1); break;
    case VK_LEFT: option.Decrease(); break;
    case VK_RIGHT: option.Increase(); break;
    default: break;
    }
}

// The options cursor stops at the first and last option.
void CMenuSystem::MoveOptionsCursor(int step)
{
    const int moved = optionsCursor + step;
    if (moved >= 0 && moved < static_cast<int>(options.size()))
        optionsCursor = static_cast<std::int16_t>(moved);
}

void CMenuSystem::DoAction(std::int32_t action)
{
    switch (action) {
    case ActionExitGame:
        // Closing the main window shuts the program down and saves the settings.
        Game::CloseMainWindow();
        break;
    case ActionNewGame:
        Game::ApplyMusicOption();
        Game::NewGame();
        break;
    case ActionShowOptions: screen = ScreenOptions; break;
    case ActionShowHighScores: screen = ScreenHighScores; break;
    case ActionShowHelp: screen = ScreenHelp; break;
    case ActionShowAbout: screen = ScreenAbout; break;
    default: break;
    }
}

void CMenuSystem::AddHighScore(std::int32_t score)
{
    screen = ScreenHighScores;
    highScores.Insert(score);
}

// The first option with this identity answers for it.
const CMenuOption* CMenuSystem::FindOption(OptionId id) const
{
    const auto found = std::find_if(options.begin(), options.end(),
                                    [id](const CMenuOption& option) { return option.GetId() == id; });
    return found == options.end() ? nullptr : &*found;
}

CMenuOption* CMenuSystem::FindOption(OptionId id)
{
    return const_cast<CMenuOption*>(std::as_const(*this).FindOption(id));
}

void CMenuSystem::SetOptionOn(OptionId id, bool on)
{
    if (CMenuOption* option = FindOption(id))
        option->SetOn(on);
}

// An option the list does not hold answers on, and the start level 1.
bool CMenuSystem::IsOptionOn(OptionId id) const
{
    const CMenuOption* option = FindOption(id);
    return option ? option->IsOn() : true;
}

std::int32_t CMenuSystem::GetStartLevel() const
{
    const CMenuOption* option = FindOption(OptionStartLevel);
    return option ? option->GetValue() : 1;
}
