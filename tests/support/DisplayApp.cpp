#include "support/DisplayApp.h"

#include "app/GameWnd.h"
#include "platform/Window.h"

namespace qvtest {

bool DisplayApp::Start()
{
    if (!std::filesystem::exists("art/blank.bmp"))
        WriteBlankArt();
    Platform::StartSdl();
    return app->InitInstance();
}

HWND DisplayApp::OpenWindow()
{
    Platform::StartSdl();
    Platform::RegisterClass("QVclientWinType", CS_HREDRAW | CS_VREDRAW);
    app->mainWnd = std::make_unique<CGameWnd>();
    app->mainWnd->CreateEx(WS_EX_TOPMOST, "QVclientWinType", "Quelvarion", WS_POPUP, 0, 0, 1024, 768);
    return app->GetMainWindowHandle();
}

std::uint16_t DisplayApp::PixelAt(CSurface& surface, int x, int y)
{
    ScopedDC dc(surface);
    return dc.dc ? Platform::PackRgb565(dc->GetPixel(x, y)) : 0xDEAD;
}

} // namespace qvtest
