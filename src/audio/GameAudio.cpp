#include "app/GameApp.h"

void CGameApp::PlayStartupSound() {}
void CGameApp::PlaySoundEffect(std::int16_t /*priority*/, const std::string& /*file*/) {}
Result CGameApp::PlayMusic(bool /*restart*/) { return 0; }
void CGameApp::ApplyMusicOption() {}
Result CGameApp::OpenMusic(HWND /*window*/, const std::string& /*file*/) { return 0; }
void CGameApp::CloseMusic() { musicDevice = NoMusicDevice; }
