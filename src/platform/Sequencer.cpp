#include "platform/Sequencer.h"

#include "platform/AudioDevice.h"
#include "platform/FileBytes.h"
#include "platform/MessageQueue.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

namespace {

constexpr const char* SequencerType = "sequencer";

bool SameName(const std::string& a, const std::string& b)
{
    const auto sameLetter = [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); };
    return std::ranges::equal(a, b, sameLetter);
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
    Result why = S_OK;
    const auto bytes = Platform::ReadFileAtMost(parms.lpstrElementName, CMidiTune::MaxFileBytes, &why);
    Platform::SayNotRead(parms.lpstrElementName, why);
    if (!bytes)
        return MCIERR_FILE_NOT_FOUND;
    std::optional<CMidiTune> tune = CMidiTune::Parse(bytes->data(), bytes->size());
    if (!tune)
        return MCIERR_INVALID_FILE;
    Device device;
    device.tune = std::make_shared<const CMidiTune>(std::move(*tune));
    parms.wDeviceID = ++lastId;
    std::lock_guard<std::mutex> guard(lock);
    devices.emplace(parms.wDeviceID, std::move(device));
    return 0;
}

MCIERROR CSequencer::Status(MCIDEVICEID id, std::uint32_t flags, MCI_STATUS_PARMS& parms)
{
    if (!Find(id))
        return MCIERR_INVALID_DEVICE_ID;
    if (!(flags & MCI_STATUS_ITEM))
        return MCIERR_MISSING_PARAMETER;
    switch (parms.dwItem) {
    case MCI_SEQ_STATUS_PORT:
        // The device has an output once the synthesiser is ready to sound it.
        if (MCIERROR error = PrepareOutput())
            return error;
        parms.dwReturn = MCI_SEQ_MAPPER;
        return 0;
    case MCI_STATUS_MODE: {
        std::lock_guard<std::mutex> guard(lock);
        parms.dwReturn = playing == id ? MCI_MODE_PLAY : MCI_MODE_STOP;
        return 0;
    }
    default:
        return MCIERR_UNSUPPORTED_FUNCTION;
    }
}

MCIERROR CSequencer::Play(MCIDEVICEID id, std::uint32_t flags, HWND callback)
{
    Device* device = Find(id);
    if (!device)
        return MCIERR_INVALID_DEVICE_ID;
    if (MCIERROR error = PrepareOutput())
        return error;
    const HWND notify = (flags & MCI_NOTIFY) ? callback : nullptr;

    Notice replaced;
    Notice cut;
    bool atEnd = false;
    {
        std::lock_guard<std::mutex> guard(lock);
        atEnd = device->atEnd;
        if (playing == id || atEnd) {
            if (playing == id && notify)
                replaced = {std::exchange(device->notify, notify), id};
        } else {
            if (playing != NoDevice)
                cut = {std::exchange(devices.at(playing).notify, nullptr), playing};
            // Only the same tune straight after its own end goes on from where it stands.
            if (playing != NoDevice || streamed != id)
                stream->Stop();
            stream->Start(device->tune);
            streamed = playing = id;
            device->notify = notify;
        }
    }
    replaced.Post(MCI_NOTIFY_SUPERSEDED);
    cut.Post(MCI_NOTIFY_ABORTED);
    if (atEnd) // nothing is left to play: the play is over at once
        Notice{notify, id}.Post(MCI_NOTIFY_SUCCESSFUL);
    return 0;
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
    if (!Find(id))
        return MCIERR_INVALID_DEVICE_ID;
    const Notice cut = StopPlaying(id);
    {
        std::lock_guard<std::mutex> guard(lock);
        if (streamed == id) {
            stream->Stop();
            streamed = NoDevice;
        }
        devices.erase(id);
    }
    cut.Post(MCI_NOTIFY_ABORTED);
    return 0;
}

void CSequencer::Render(float* stereo, std::size_t frames)
{
    std::lock_guard<std::mutex> guard(lock);
    if (stream && stream->Render(stereo, frames))
        OnTuneEnded();
}

void CSequencer::CloseAll()
{
    while (!devices.empty())
        Close(devices.begin()->first);
    std::lock_guard<std::mutex> guard(lock);
    stream.reset();
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

// Opens the output and makes the synthesiser, with its sound font, once for
// the run: the font takes a moment to load, which happens here, on the
// caller's thread, never on the audio thread.
MCIERROR CSequencer::PrepareOutput()
{
    if (!CAudioDevice::Instance().Open())
        return MCIERR_HARDWARE;
    {
        std::lock_guard<std::mutex> guard(lock);
        if (stream)
            return 0;
    }
    const int rate = CAudioDevice::Instance().SampleRate();
    std::unique_ptr<CSynthesiser> synthesiser = CSynthesiser::Create(rate);
    if (!synthesiser)
        return MCIERR_SEQ_NOMIDIPRESENT;
    auto made = std::make_unique<CMusicStream>(std::move(synthesiser), rate);
    std::lock_guard<std::mutex> guard(lock);
    stream = std::move(made);
    return 0;
}

// Stops the device if it is the one playing and hands back the notice its
// play was owed, for the caller to report as cut short.
CSequencer::Notice CSequencer::StopPlaying(MCIDEVICEID id)
{
    std::lock_guard<std::mutex> guard(lock);
    if (id == NoDevice || playing != id)
        return {};
    stream->Stop();
    playing = NoDevice;
    return {std::exchange(devices.at(id).notify, nullptr), id};
}

// On the audio thread, under the lock, when the playing tune has played its
// last event: the device stands at its end and its window hears so.
void CSequencer::OnTuneEnded()
{
    if (playing == NoDevice)
        return;
    Device& device = devices.at(playing);
    device.atEnd = true;
    Notice{std::exchange(device.notify, nullptr), playing}.Post(MCI_NOTIFY_SUCCESSFUL);
    playing = NoDevice;
}
