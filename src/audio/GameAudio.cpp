#include "app/GameApp.h"

#include "platform/Sequencer.h"
#include "platform/WavePlayer.h"

namespace {

constexpr const char* StartupSound = "startup.wav";
constexpr const char* BackgroundTune = "background.mid";
constexpr const char* SequencerType = "sequencer";

// The start-up sound and an effect that must not cut off the one playing
// return at once and are dropped if the voice is busy; an effect that cuts in
// simply replaces what plays.
constexpr UINT StartupSoundFlags = SND_FILENAME | SND_NOWAIT | SND_ASYNC;
constexpr UINT YieldingEffectFlags = SND_FILENAME | SND_NOWAIT | SND_NOSTOP | SND_ASYNC;
constexpr UINT CuttingEffectFlags = SND_FILENAME | SND_ASYNC;

// Plays the tune from where the device stands; its end comes back to window.
Result PlayWithNotice(MCIDEVICEID device, HWND window)
{
    MCI_PLAY_PARMS play;
    play.dwCallback = window;
    return Platform::MciSendCommand(device, MCI_PLAY, MCI_NOTIFY, play);
}

} // namespace

void CGameApp::PlayStartupSound()
{
    // The start-up sound plays whatever the "Sound FX" option says.
    Platform::PlaySound(StartupSound, StartupSoundFlags);
}

// One voice serves every effect, so a smaller priority number (the more
// important sound) cuts off what plays, and a larger one waits its turn: it is
// dropped while anything still plays.
void CGameApp::PlaySoundEffect(std::int16_t priority, const std::string& file)
{
    if (!menus.IsSoundOn())
        return;
    if (priority > lastSoundPriority) {
        if (Platform::PlaySound(file.c_str(), YieldingEffectFlags))
            lastSoundPriority = priority;
        return;
    }
    Platform::PlaySound(nullptr, 0);
    Platform::PlaySound(file.c_str(), CuttingEffectFlags);
    lastSoundPriority = priority;
}

Result CGameApp::PlayMusic(bool restart)
{
    if (!menus.IsMusicOn())
        return 0;
    if (restart && musicDevice != NoMusicDevice) {
        MCI_SEEK_PARMS seek;
        seek.dwCallback = GetMainWindowHandle();
        Platform::MciSendCommand(musicDevice, MCI_SEEK, MCI_SEEK_TO_START, seek);
        return PlayWithNotice(musicDevice, GetMainWindowHandle());
    }
    if (musicDevice != NoMusicDevice)
        CloseMusic();
    const Result result = OpenMusic(GetMainWindowHandle(), BackgroundTune);
    if (result != 0)
        musicDevice = NoMusicDevice;
    return result;
}

void CGameApp::ApplyMusicOption()
{
    if (!menus.IsMusicOn()) {
        if (musicDevice != NoMusicDevice)
            CloseMusic();
        return;
    }
    if (musicDevice == NoMusicDevice)
        PlayMusic(false);
}

// Opens the sequencer on the tune and starts it. A device that opened but has
// no output, or cannot play, is closed again.
Result CGameApp::OpenMusic(HWND window, const std::string& file)
{
    MCI_OPEN_PARMS open;
    open.lpstrDeviceType = SequencerType;
    open.lpstrElementName = file;
    if (const Result result = Platform::MciSendCommand(0, MCI_OPEN, MCI_OPEN_TYPE | MCI_OPEN_ELEMENT, open))
        return result;
    musicDevice = open.wDeviceID;

    MCI_STATUS_PARMS status;
    status.dwItem = MCI_SEQ_STATUS_PORT;
    Result result = Platform::MciSendCommand(musicDevice, MCI_STATUS, MCI_STATUS_ITEM, status);
    if (result == 0)
        result = PlayWithNotice(musicDevice, window);
    if (result != 0)
        CloseMusic();
    return result;
}

void CGameApp::CloseMusic()
{
    Platform::MciSendCommand(musicDevice, MCI_CLOSE, 0, MCI_GENERIC_PARMS{});
    musicDevice = NoMusicDevice;
}
