#include "app/GameMain.h"

#include "app/GameApp.h"
#include "app/Launch.h"
#include "platform/CommandLine.h"
#include "platform/Window.h"

#include <cstdint>

// The window's icon, drawn by the asset generator when the program is built.
extern const int QvWindowIconSize;
extern const std::uint8_t QvWindowIconPixels[];

namespace {

// Settled before the application object exists, which reads the settings
// file as it is built: a run that is to be no game (--help, --version, a
// mistake on the command line, a folder without the game's data, a second
// copy in the same folder, a replay checked) ends here, having touched nothing. A game's launch
// holds the folder's lock until the program has ended and saved.
CLaunch launch(Platform::ProcessArguments());

// The one application object of the program. It exists before main runs and
// is destroyed after the message loop has ended, saving the player's settings.
CGameApp theApp;

} // namespace

int RunGame(CFrameObserver* frameObserver)
{
    Platform::SetApplicationIcon(QvWindowIconSize, QvWindowIconPixels);
    theApp.frameObserver = frameObserver;
    launch.Prepare(theApp);
    return theApp.Run();
}
