#include "FuzzTargets.h"

#include "support/BitmapFiles.h"

#include "app/GameApp.h"
#include "app/ReplayPlayer.h"
#include "display/Bitmaps.h"
#include "display/SpriteInstance.h"
#include "frontend/MenuSystem.h"
#include "platform/Bitmap.h"
#include "platform/Clock.h"
#include "platform/AudioDevice.h"
#include "platform/DC.h"
#include "platform/MessageQueue.h"
#include "platform/MidiTune.h"
#include "platform/Sequencer.h"
#include "platform/WavePlayer.h"
#include "platform/Window.h"
#include "replay/Replay.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <system_error>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>
#include <unistd.h>

namespace qvfuzz {
namespace {

namespace fs = std::filesystem;

constexpr int MaxPlayedFrames = 5000;

void Check(bool condition)
{
    if (!condition)
        std::abort();
}

// The targets read and write files relative to the working directory, so
// they run in a scratch folder of their own, removed at exit.
class CScratchFolder {
public:
    CScratchFolder() : path(fs::temp_directory_path() / ("qvfuzz-" + std::to_string(::getpid())))
    {
        fs::create_directories(path);
    }
    ~CScratchFolder()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    void Enter() const { fs::current_path(path); }

private:
    fs::path path;
};

void EnterScratchFolder()
{
    static const CScratchFolder folder;
    folder.Enter();
}

void WriteInput(const char* file, const std::uint8_t* data, std::size_t size)
{
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

// A small surface of the target's own on a device of its own.
CSurface& TestSurface()
{
    static DisplayDevicePtr device;
    static SurfacePtr surface;
    if (!surface) {
        Check(CDisplayDevice::Create(device) == DD_OK);
        const SurfaceDesc desc{DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, 32, 24, 0, DDSCAPS_OFFSCREENPLAIN};
        Check(device->CreateSurface(desc, surface) == DD_OK);
    }
    return *surface;
}

std::uint32_t PixelAt(CSurface& surface, int x, int y)
{
    CDC* dc = nullptr;
    Check(surface.GetDC(dc) == DD_OK);
    const COLORREF colour = dc->GetPixel(x, y);
    surface.ReleaseDC(dc);
    return colour;
}

// Every frame with an image lies wholly on its page, and an instance of each
// entry, turned and animated, picks one of the entry's frames or none.
void CheckCatalogue()
{
    CGameApp& app = TheApp();
    const auto& entries = app.sprites.GetEntries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        for (const CSpriteFrame& frame : entries[i].frames) {
            if (!frame.surface)
                continue;
            const RECT& r = frame.source;
            Check(r.left >= 0 && r.top >= 0 && r.left < r.right && r.top < r.bottom);
            Check(r.right <= app.screenWidth && r.bottom <= app.screenHeight);
        }
        CSpriteInstance instance;
        instance.Bind(static_cast<std::int32_t>(i));
        instance.SetPosition(app.screenWidth / 2, app.screenHeight / 2);
        for (std::int32_t degrees : {0, 95, 181, 359, -1000}) {
            instance.SetRotation(degrees);
            const std::int32_t chosen = instance.ChosenFrameIndex();
            Check(chosen >= -1 && chosen < static_cast<std::int32_t>(entries[i].frames.size()));
            instance.Draw(1000.0);
        }
    }
}

// The tune's notices to window since the last call: how many said it ended.
int SuccessfulEnds(HWND window)
{
    int ends = 0;
    while (auto msg = CMessageQueue::Instance().Take())
        if (msg->window == window && msg->message == MM_MCINOTIFY && msg->wParam == MCI_NOTIFY_SUCCESSFUL)
            ++ends;
    return ends;
}

} // namespace

void WriteSpriteArt()
{
    const auto red = [](int, int) { return RGB(255, 0, 0); };
    for (const char* file : {"art/ship_0.bmp", "art/ship_1.bmp", "art/ship_2.bmp", "art/ship_3.bmp",
                             "art/boom_0_0.bmp", "art/boom_0_1.bmp", "art/boom_0_2.bmp", "art/rock.bmp"})
        qvtest::WriteBitmap(file, 4, 4, red);
}

void StartGame()
{
    EnterScratchFolder();
    WriteSpriteArt();
    qvtest::WriteBlankArt();
    Platform::SetSleepHandler([](std::uint32_t) {});
    static auto app = std::make_unique<CGameApp>();
    Platform::StartSdl();
    Check(app->InitInstance());
    // Without the blank picture, pages stay as they are made: many times
    // faster than clearing each one from a screen-sized bitmap.
    fs::remove("art/blank.bmp");
}

int FuzzSettings(const std::uint8_t* data, std::size_t size)
{
    EnterScratchFolder();
    // Never destroyed: its destructor would save the settings wherever the
    // program happens to stand at exit.
    static CMenuSystem& menus = *new CMenuSystem;
    menus.ApplySettingsText(std::string(reinterpret_cast<const char*>(data), size));
    // Whatever was read, what the game writes reads back to itself.
    const std::string saved = menus.SettingsText();
    menus.ApplySettingsText(saved);
    Check(menus.SettingsText() == saved);
    return 0;
}

int FuzzSpriteCatalogue(const std::uint8_t* data, std::size_t size)
{
    WriteInput(CSpriteSet::CatalogueFile, data, size);
    CSpriteSet& sprites = TheApp().sprites;
    sprites = CSpriteSet();
    sprites.Load();
    CheckCatalogue();
    // A restore empties the pages and loads the catalogue again behind the first set.
    const std::size_t firstLoad = sprites.GetEntries().size();
    TheApp().display.Restore();
    Check(sprites.GetEntries().size() == 2 * firstLoad);
    CheckCatalogue();
    sprites = CSpriteSet();
    return 0;
}

int FuzzPalette(const std::uint8_t* data, std::size_t size)
{
    EnterScratchFolder();
    WriteInput("palette.bmp", data, size);
    static DisplayDevicePtr device;
    if (!device)
        Check(CDisplayDevice::Create(device) == DD_OK);
    // Whatever the file holds, it gives a palette.
    Check(LoadPalette(device.get(), "palette.bmp") != nullptr);
    return 0;
}

int FuzzBitmap(const std::uint8_t* data, std::size_t size)
{
    EnterScratchFolder();
    WriteInput("frame.bmp", data, size);
    // A frame drawn at (3, 2) scaled to 13 x 9 changes nothing outside that rectangle.
    constexpr std::uint32_t Marker = 0x1234;
    CSurface& surface = TestSurface();
    surface.ColourFill(nullptr, Marker);
    const std::uint32_t outside = PixelAt(surface, 0, 0);
    if (DrawBitmapFile(&surface, "frame.bmp", 13, 9, 3, 2) == 0) {
        Check(PixelAt(surface, 2, 2) == outside && PixelAt(surface, 16, 10) == outside);
        Check(PixelAt(surface, 3, 11) == outside && PixelAt(surface, 31, 23) == outside);
    }
    CBitmap own;
    if (Platform::LoadImageFile("frame.bmp", 0, 0, own) == 0)
        Check(own.GetWidth() > 0 && own.GetHeight() > 0);
    return 0;
}

int FuzzReplay(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    CReplay replay;
    std::string error;
    if (!CReplay::Decode(bytes, replay, error)) {
        Check(!error.empty());
        return 0;
    }
    // Written again (in this game's format) it reads back the same.
    const std::string written = replay.Encode();
    if (replay.header.format == CReplay::FormatVersion)
        Check(written == bytes);
    CReplay again;
    Check(CReplay::Decode(written, again, error) && again.Encode() == written);
    // And the rules play whatever the reader lets through: levels, stars and
    // frame lengths of any value. Long games are cut short to keep the pace.
    EnterScratchFolder();
    CGameApp app;
    app.KeepPlayersFiles();
    CReplayPlayer player(app, std::move(replay));
    player.Begin();
    for (int frame = 0; frame < MaxPlayedFrames && player.HasNextFrame(); ++frame)
        player.Step();
    player.Finish();
    return 0;
}

} // namespace qvfuzz

namespace qvfuzz {

int FuzzWave(const std::uint8_t* data, std::size_t size)
{
    EnterScratchFolder();
    WriteInput("effect.wav", data, size);
    // Whatever the file holds, a sound starts: its own or the default tone.
    CWavePlayer& player = CWavePlayer::Instance();
    Check(player.Play("effect.wav", SND_FILENAME | SND_ASYNC));
    player.Release(); // sounds are kept by name: the next input must be read afresh
    return 0;
}

int FuzzTune(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t PieceFrames = 1024;
    constexpr std::size_t MostFrames = 22 * PieceFrames; // about half a second of music
    EnterScratchFolder();
    WriteInput("tune.mid", data, size);
    static CPlatformWnd window; // all a notice needs is a window to be addressed to
    SuccessfulEnds(&window);

    // A file opens exactly when it reads as a tune.
    const auto tune = CMidiTune::Parse(data, size);
    MCI_OPEN_PARMS open{.lpstrDeviceType = "sequencer", .lpstrElementName = "tune.mid"};
    const MCIERROR opened = Platform::MciSendCommand(0, MCI_OPEN, MCI_OPEN_TYPE | MCI_OPEN_ELEMENT, open);
    Check((opened == 0) == tune.has_value());
    if (opened != 0)
        return 0;
    // Without a sound font (SDL_SOUNDFONTS names the game's) there is nothing to render.
    MCI_STATUS_PARMS port{.dwItem = MCI_SEQ_STATUS_PORT};
    if (Platform::MciSendCommand(open.wDeviceID, MCI_STATUS, MCI_STATUS_ITEM, port) != 0) {
        Platform::MciSendCommand(open.wDeviceID, MCI_CLOSE, 0, MCI_GENERIC_PARMS{});
        return 0;
    }
    Check(Platform::MciSendCommand(open.wDeviceID, MCI_PLAY, MCI_NOTIFY, MCI_PLAY_PARMS{&window}) == 0);

    // Rendered here as the output would take it, beside the dummy driver's own
    // thread: the music stays finite, and a tune that ends within what was
    // rendered is reported to have ended, once.
    std::vector<float> piece(2 * PieceFrames);
    std::size_t rendered = 0;
    for (; rendered < MostFrames; rendered += PieceFrames) {
        std::fill(piece.begin(), piece.end(), 0.0f);
        CSequencer::Instance().Render(piece.data(), PieceFrames);
        for (float sample : piece)
            Check(std::isfinite(sample));
    }
    // Counted once the device is closed: the dummy driver's thread may have
    // played the end a moment after the loop above.
    Check(Platform::MciSendCommand(open.wDeviceID, MCI_CLOSE, 0, MCI_GENERIC_PARMS{}) == 0);
    const int ends = SuccessfulEnds(&window);
    Check(ends <= 1);
    const auto rate = static_cast<std::uint64_t>(CAudioDevice::Instance().SampleRate());
    if (tune->EndMicros() * rate / 1'000'000 <= rendered)
        Check(ends == 1);
    return 0;
}

} // namespace qvfuzz
