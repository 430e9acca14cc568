#include "platform/Sequencer.h"

#include "platform/AudioDevice.h"
#include "platform/MessageQueue.h"

#include <SDL.h>
#include <SDL_mixer.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <utility>

namespace {

constexpr const char* SequencerType = "sequencer";
constexpr char MidiSignature[] = {'M', 'T', 'h', 'd'};

bool SameName(const std::string& a, const std::string& b)
{
    const auto sameLetter = [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); };
    return std::ranges::equal(a, b, sameLetter);
}

bool IsMidiFile(const std::vector<std::uint8_t>& bytes)
{
    return bytes.size() >= sizeof MidiSignature &&
           std::equal(std::begin(MidiSignature), std::end(MidiSignature), bytes.begin());
}

// Safe from any thread: the message queue is the only thing it touches.
void PostNotice(HWND window, WPARAM code, MCIDEVICEID device)
{
    if (window)
        CMessageQueue::Instance().Post({window, MM_MCINOTIFY, code, static_cast<LPARAM>(device)});
}

// What a command with MCI_NOTIFY owes its window once it has succeeded. A
// play reports later, when it ends.
MCIERROR NotifyDone(MCIERROR result, std::uint32_t flags, HWND window, MCIDEVICEID device)
{
    if (result == 0 && (flags & MCI_NOTIFY))
        PostNotice(window, MCI_NOTIFY_SUCCESSFUL, device);
    return result;
}

} // namespace

namespace Platform {

MCIERROR MciSendCommand(MCIDEVICEID /*device*/, UINT command, std::uint32_t flags, MCI_OPEN_PARMS& parms)
{
    if (command != MCI_OPEN)
        return MCIERR_UNRECOGNIZED_COMMAND;
    return NotifyDone(CSequencer::Instance().Open(flags, parms), flags, parms.dwCallback, parms.wDeviceID);
}

MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, MCI_STATUS_PARMS& parms)
{
    if (command != MCI_STATUS)
        return MCIERR_UNRECOGNIZED_COMMAND;
    return NotifyDone(CSequencer::Instance().Status(device, flags, parms), flags, parms.dwCallback, device);
}

MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, const MCI_PLAY_PARMS& parms)
{
    if (command != MCI_PLAY)
        return MCIERR_UNRECOGNIZED_COMMAND;
    return CSequencer::Instance().Play(device, flags, parms.dwCallback);
}

MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, const MCI_SEEK_PARMS& parms)
{
    if (command != MCI_SEEK)
        return MCIERR_UNRECOGNIZED_COMMAND;
    return NotifyDone(CSequencer::Instance().Seek(device, flags), flags, parms.dwCallback, device);
}

MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, const MCI_GENERIC_PARMS& parms)
{
    if (command != MCI_CLOSE)
        return MCIERR_UNRECOGNIZED_COMMAND;
    return NotifyDone(CSequencer::Instance().Close(device), flags, parms.dwCallback, device);
}

} // namespace Platform

void CSequencer::Notice::Post(WPARAM code) const
{
    PostNotice(window, code, device);
}

CSequencer& CSequencer::Instance()
{
    // Never destroyed, like the output it plays on.
    static CSequencer& sequencer = *new CSequencer;
    return sequencer;
}

MCIERROR CSequencer::Open(std::uint32_t flags, MCI_OPEN_PARMS& parms)
{
    if (!(flags & MCI_OPEN_TYPE) || !SameName(parms.lpstrDeviceType, SequencerType))
        return MCIERR_INVALID_DEVICE_NAME;
    if (!(flags & MCI_OPEN_ELEMENT))
        return MCIERR_MISSING_PARAMETER;
    std::ifstream file(parms.lpstrElementName, std::ios::binary);
    if (!file)
        return MCIERR_FILE_NOT_FOUND;
    Device device;
    device.tune.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    if (!IsMidiFile(device.tune))
        return MCIERR_INVALID_FILE;
    parms.wDeviceID = ++lastId;
    std::lock_guard<std::mutex> guard(lock);
    devices.emplace(parms.wDeviceID, std::move(device));
    return 0;
}

MCIERROR CSequencer::Status(MCIDEVICEID id, std::uint32_t flags, MCI_STATUS_PARMS& parms)
{
    Device* device = Find(id);
    if (!device)
        return MCIERR_INVALID_DEVICE_ID;
    if (!(flags & MCI_STATUS_ITEM))
        return MCIERR_MISSING_PARAMETER;
    switch (parms.dwItem) {
    case MCI_SEQ_STATUS_PORT:
        // The device has an output once its tune is in the synthesiser.
        if (MCIERROR error = LoadIntoSynthesiser(*device))
            return error;
        parms.dwReturn = MCI_SEQ_MAPPER;
        return 0;
    case MCI_STATUS_MODE:
        parms.dwReturn = PlayingDevice() == id ? MCI_MODE_PLAY : MCI_MODE_STOP;
        return 0;
    default:
        return MCIERR_UNSUPPORTED_FUNCTION;
    }
}

MCIERROR CSequencer::Play(MCIDEVICEID id, std::uint32_t flags, HWND callback)
{
    Device* device = Find(id);
    if (!device)
        return MCIERR_INVALID_DEVICE_ID;
    if (MCIERROR error = LoadIntoSynthesiser(*device))
        return error;
    const HWND notify = (flags & MCI_NOTIFY) ? callback : nullptr;

    bool alreadyPlaying = false;
    bool atEnd = false;
    Notice replaced;
    {
        std::lock_guard<std::mutex> guard(lock);
        alreadyPlaying = playing == id;
        atEnd = device->atEnd;
        if (alreadyPlaying && notify)
            replaced = {std::exchange(device->notify, notify), id};
    }
    if (alreadyPlaying || atEnd) {
        replaced.Post(MCI_NOTIFY_SUPERSEDED);
        if (atEnd) // nothing is left to play: the play is over at once
            Notice{notify, id}.Post(MCI_NOTIFY_SUCCESSFUL);
        return 0;
    }

    const Notice cut = StopPlaying(PlayingDevice());
    // Booked before it starts, so that however soon the tune ends, its end is heard.
    Book(id, notify);
    const bool started = Mix_PlayMusic(device->music, 0) == 0;
    if (!started)
        Book(NoDevice, nullptr);
    cut.Post(MCI_NOTIFY_ABORTED);
    return started ? 0 : MCIERR_HARDWARE;
}

MCIERROR CSequencer::Seek(MCIDEVICEID id, std::uint32_t flags)
{
    Device* device = Find(id);
    if (!device)
        return MCIERR_INVALID_DEVICE_ID;
    if (!(flags & (MCI_SEEK_TO_START | MCI_SEEK_TO_END)))
        return MCIERR_MISSING_PARAMETER;
    const Notice cut = StopPlaying(id);
    {
        std::lock_guard<std::mutex> guard(lock);
        device->atEnd = (flags & MCI_SEEK_TO_END) != 0;
    }
    cut.Post(MCI_NOTIFY_ABORTED);
    return 0;
}

MCIERROR CSequencer::Close(MCIDEVICEID id)
{
    Device* device = Find(id);
    if (!device)
        return MCIERR_INVALID_DEVICE_ID;
    const Notice cut = StopPlaying(id);
    Retire(*device);
    {
        std::lock_guard<std::mutex> guard(lock);
        devices.erase(id);
    }
    cut.Post(MCI_NOTIFY_ABORTED);
    return 0;
}

void CSequencer::Attach()
{
    Mix_HookMusicFinished(&CSequencer::OnMusicFinished);
}

void CSequencer::CloseAll()
{
    while (!devices.empty())
        Close(devices.begin()->first);
    FreeSpare();
}

void CSequencer::ForgetWindow(HWND window)
{
    std::lock_guard<std::mutex> guard(lock);
    for (auto& [id, device] : devices)
        if (device.notify == window)
            device.notify = nullptr;
}

std::size_t CSequencer::OpenDeviceCount() const
{
    std::lock_guard<std::mutex> guard(lock);
    return devices.size();
}

CSequencer::Device* CSequencer::Find(MCIDEVICEID id)
{
    auto found = devices.find(id);
    return found == devices.end() ? nullptr : &found->second;
}

MCIERROR CSequencer::LoadIntoSynthesiser(Device& device)
{
    if (device.music)
        return 0;
    if (!CAudioDevice::Instance().Open())
        return MCIERR_HARDWARE;
    if (spare.music && spare.tune == device.tune) {
        device.music = std::exchange(spare.music, nullptr);
        spare.tune.clear();
        return 0;
    }
    SDL_RWops* source = SDL_RWFromConstMem(device.tune.data(), static_cast<int>(device.tune.size()));
    device.music = Mix_LoadMUSType_RW(source, MUS_MID, 1);
    return device.music ? 0 : MCIERR_SEQ_NOMIDIPRESENT;
}

void CSequencer::Book(MCIDEVICEID id, HWND notify)
{
    std::lock_guard<std::mutex> guard(lock);
    if (Device* device = Find(id))
        device->notify = notify;
    playing = id;
}

MCIDEVICEID CSequencer::PlayingDevice() const
{
    std::lock_guard<std::mutex> guard(lock);
    return playing;
}

// Stops the device if it is the one playing and hands back the notice its
// play was owed, for the caller to report as cut short.
CSequencer::Notice CSequencer::StopPlaying(MCIDEVICEID id)
{
    Notice cut;
    {
        std::lock_guard<std::mutex> guard(lock);
        if (id == NoDevice || playing != id)
            return cut;
        cut = {std::exchange(devices.at(id).notify, nullptr), id};
        playing = NoDevice;
    }
    // The mixer calls the end-of-tune hook from inside the halt; with nothing
    // booked as playing any more, the hook reports nothing.
    Mix_HaltMusic();
    return cut;
}

void CSequencer::Retire(Device& device)
{
    if (!device.music)
        return;
    FreeSpare();
    spare.tune = std::move(device.tune);
    spare.music = std::exchange(device.music, nullptr);
}

void CSequencer::FreeSpare()
{
    if (spare.music)
        Mix_FreeMusic(spare.music);
    spare = {};
}

// Runs on the audio thread, under the audio lock, when a tune has ended by
// itself or been halted. It only books the end and posts the notice.
void CSequencer::OnMusicFinished()
{
    CSequencer& self = Instance();
    std::lock_guard<std::mutex> guard(self.lock);
    if (self.playing == NoDevice)
        return;
    Device& device = self.devices.at(self.playing);
    device.atEnd = true;
    Notice{std::exchange(device.notify, nullptr), self.playing}.Post(MCI_NOTIFY_SUCCESSFUL);
    self.playing = NoDevice;
}
