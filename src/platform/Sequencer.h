#pragma once
#include "platform/MusicStream.h"
#include "platform/Types.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <memory>
#include <string>

// The media control interface of the MIDI sequencer, with the Windows values.
using MCIDEVICEID = std::uint32_t;
using MCIERROR = Result;

// Commands.
constexpr UINT MCI_OPEN = 0x0803;
constexpr UINT MCI_CLOSE = 0x0804;
constexpr UINT MCI_PLAY = 0x0806;
constexpr UINT MCI_SEEK = 0x0807;
constexpr UINT MCI_STATUS = 0x0814;

// Command flags.
constexpr std::uint32_t MCI_NOTIFY = 0x0001;
constexpr std::uint32_t MCI_OPEN_ELEMENT = 0x0200;
constexpr std::uint32_t MCI_OPEN_TYPE = 0x2000;
constexpr std::uint32_t MCI_STATUS_ITEM = 0x0100;
constexpr std::uint32_t MCI_SEEK_TO_START = 0x0100;
constexpr std::uint32_t MCI_SEEK_TO_END = 0x0200;

// Status items and their answers.
constexpr std::uint32_t MCI_STATUS_MODE = 0x0004;
constexpr std::uint32_t MCI_SEQ_STATUS_PORT = 0x4003;
constexpr std::uint32_t MCI_MODE_STOP = 525;
constexpr std::uint32_t MCI_MODE_PLAY = 526;
constexpr std::uint32_t MCI_SEQ_MAPPER = 65535;

// Errors.
constexpr MCIERROR MCIERR_INVALID_DEVICE_ID = 257;
constexpr MCIERROR MCIERR_UNRECOGNIZED_COMMAND = 261;
constexpr MCIERROR MCIERR_HARDWARE = 262;
constexpr MCIERROR MCIERR_INVALID_DEVICE_NAME = 263;
constexpr MCIERROR MCIERR_MISSING_PARAMETER = 273;
constexpr MCIERROR MCIERR_UNSUPPORTED_FUNCTION = 274;
constexpr MCIERROR MCIERR_FILE_NOT_FOUND = 275;
constexpr MCIERROR MCIERR_INVALID_FILE = 296;
constexpr MCIERROR MCIERR_SEQ_NOMIDIPRESENT = 343;

// Command parameters. dwCallback is the window that receives MM_MCINOTIFY
// when the command was given MCI_NOTIFY.
struct MCI_OPEN_PARMS {
    HWND dwCallback = nullptr;
    MCIDEVICEID wDeviceID = 0; // filled in by a successful open
    std::string lpstrDeviceType;
    std::string lpstrElementName;
};

struct MCI_STATUS_PARMS {
    HWND dwCallback = nullptr;
    std::uint32_t dwReturn = 0; // the answer
    std::uint32_t dwItem = 0;
};

struct MCI_PLAY_PARMS {
    HWND dwCallback = nullptr;
};

struct MCI_SEEK_PARMS {
    HWND dwCallback = nullptr;
};

struct MCI_GENERIC_PARMS {
    HWND dwCallback = nullptr;
};

namespace Platform {
// Each command with the parameters that belong to it: MCI_OPEN, MCI_STATUS,
// MCI_PLAY, MCI_SEEK, and MCI_CLOSE with the generic ones. 0 on success,
// otherwise an MCIERR_ code.
MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, MCI_OPEN_PARMS& parms);
MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, MCI_STATUS_PARMS& parms);
MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, const MCI_PLAY_PARMS& parms);
MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, const MCI_SEEK_PARMS& parms);
MCIERROR MciSendCommand(MCIDEVICEID device, UINT command, std::uint32_t flags, const MCI_GENERIC_PARMS& parms);
} // namespace Platform

// The MIDI sequencer: devices opened on MIDI files, played one at a time
// through the General MIDI synthesiser into the output's mix.
//
// A device stands at its start, plays, or stands at its end. The end of a
// play is reported to the window the play named, as MM_MCINOTIFY with
// MCI_NOTIFY_SUCCESSFUL and the device in lParam, as soon as the tune's last
// event has been played; a play cut short by a seek, a close or another
// device's play is reported MCI_NOTIFY_ABORTED, one replaced by a newer play
// of the same device MCI_NOTIFY_SUPERSEDED. The end is played on the audio
// thread, which only posts the message.
//
// Sought back to its start and played again straight after its end, a device
// goes on from the frame its tune ended on: that is how a tune loops without
// a seam (see CMusicStream).
class CSequencer {
public:
    static CSequencer& Instance();

    MCIERROR Open(std::uint32_t flags, MCI_OPEN_PARMS& parms);
    MCIERROR Status(MCIDEVICEID id, std::uint32_t flags, MCI_STATUS_PARMS& parms);
    MCIERROR Play(MCIDEVICEID id, std::uint32_t flags, HWND callback);
    MCIERROR Seek(MCIDEVICEID id, std::uint32_t flags);
    MCIERROR Close(MCIDEVICEID id);

    // On the audio thread: adds the next frames of music to the output's
    // interleaved stereo.
    void Render(float* stereo, std::size_t frames);
    // Closes every device and lets go of the synthesiser; called when the output closes.
    void CloseAll();
    // A window that goes away receives no more notices.
    void ForgetWindow(HWND window);
    std::size_t OpenDeviceCount() const;

private:
    struct Device {
        std::shared_ptr<const CMidiTune> tune;
        bool atEnd = false;
        HWND notify = nullptr; // who hears the end of the current play
    };
    // A notice still owed to a window for a device's play.
    struct Notice {
        HWND window = nullptr;
        MCIDEVICEID device = 0;
        void Post(WPARAM code) const;
    };
    static constexpr MCIDEVICEID NoDevice = 0;

    Device* Find(MCIDEVICEID id);
    MCIERROR PrepareOutput();
    Notice StopPlaying(MCIDEVICEID id);
    void OnTuneEnded();

    // Guards everything the audio thread touches: the devices' ends and
    // notices, what plays, and the stream, which renders under it.
    mutable std::mutex lock;
    std::map<MCIDEVICEID, Device> devices;
    MCIDEVICEID playing = NoDevice;
    MCIDEVICEID lastId = 0;
    std::unique_ptr<CMusicStream> stream;
    MCIDEVICEID streamed = NoDevice; // whose tune the stream sounds, or last sounded
};
