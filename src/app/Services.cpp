// The one door from the layers below into the application object: each of
// the small headers they include is answered here, and nowhere else.
#include "app/GameApp.h"
#include "app/GameControl.h"
#include "app/GameWnd.h"
#include "audio/SoundCues.h"
#include "core/Random.h"
#include "display/Screen.h"
#include "frontend/GameFonts.h"
#include "ship/Component.h"
#include "world/World.h"

CRandom& SharedRandom() { return TheApp().random; }

std::int16_t ScreenWidth() { return TheApp().screenWidth; }
std::int16_t ScreenHeight() { return TheApp().screenHeight; }
std::int16_t ScreenBitsPerPixel() { return TheApp().bitsPerPixel; }
CDisplay& TheDisplay() { return TheApp().display; }
CSpriteSet& TheSprites() { return TheApp().sprites; }
CSpriteList& LiveSprites() { return TheApp().liveSprites; }

CFont& TitleFont() { return TheApp().titleFont; }
CFont& MenuFont() { return TheApp().menuFont; }
CFont& TextFont() { return TheApp().textFont; }

void SoundCues::Play(std::int16_t priority, const char* file) { TheApp().PlaySoundEffect(priority, file); }

CWorld& TheWorld() { return TheApp().world; }

std::int32_t NextComponentSerial() { return TheApp().NextComponentSerial(); }

namespace Game {
std::int32_t GetGameState() { return TheApp().GetGameState(); }
void SetGameState(std::int32_t state) { TheApp().SetGameState(state); }
void SetPause(bool pause) { TheApp().SetPause(pause); }
void NewGame() { TheApp().NewGame(); }
void GameOver() { TheApp().GameOver(); }
void ApplyMusicOption() { TheApp().ApplyMusicOption(); }
void OnActivate(bool isActive) { TheApp().OnActivateMessage(isActive); }
void OnKey(std::uint32_t key, bool pressed) { TheApp().OnKeyMessage(key, pressed); }
void PlayMusic(bool restart) { TheApp().PlayMusic(restart); }

void CloseMainWindow()
{
    if (TheApp().mainWnd)
        TheApp().mainWnd->PostMessage(WM_CLOSE, 0, 0);
}
} // namespace Game
