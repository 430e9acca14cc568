#include "platform/Synthesiser.h"

#include "platform/FileBytes.h"

#include <fluidsynth.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace {

// The game's own font, made with the tune for its instruments and read from
// the game's folder like the tune; should it be missing, Debian's General
// MIDI fonts, the smallest first.
constexpr const char* DefaultFonts[] = {
    "background.sf2",
    "/usr/share/sounds/sf2/TimGM6mb.sf2",
    "/usr/share/sounds/sf2/default-GM.sf2",
    "/usr/share/sounds/sf2/FluidR3_GM.sf2",
};
constexpr const char* FontSeparators = ":;";

// The music's loudness. With the game's own font the tune peaks at about
// 0.34 of full scale at this gain (0.1 at FluidSynth's own 0.2), which
// leaves the loudest effect (see CAudioDevice::EffectVolume) room over it
// under the limiter's ceiling.
constexpr double SynthGain = 0.6;
// Voices at once: the tune needs about thirty; each costs memory whether it
// sounds or not.
constexpr int Polyphony = 64;
constexpr int Channels = 16;
constexpr int AllNotesOff = 123;
constexpr int ResetAllControllers = 121;

// FluidSynth talks on stderr about every oddity of a font; only its errors
// are worth a player's terminal.
void QuietenLog()
{
    static const bool quietened = [] {
        for (int level : {FLUID_WARN, FLUID_INFO, FLUID_DBG})
            fluid_set_log_function(level, nullptr, nullptr);
        return true;
    }();
    (void)quietened;
}

bool IsFile(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::exists(path, ignored) && Platform::IsReadableFile(path, Platform::MaxSoundFontBytes);
}

} // namespace

std::vector<std::string> CSynthesiser::FontCandidates(const char* playerList)
{
    std::vector<std::string> fonts;
    const std::string list = playerList ? playerList : "";
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find_first_of(FontSeparators, start), list.size());
        if (end > start)
            fonts.push_back(list.substr(start, end - start));
        start = end + 1;
    }
    fonts.insert(fonts.end(), std::begin(DefaultFonts), std::end(DefaultFonts));
    return fonts;
}

std::unique_ptr<CSynthesiser> CSynthesiser::Create(int sampleRate)
{
    QuietenLog();
    std::unique_ptr<CSynthesiser> self(new CSynthesiser);
    self->settings = new_fluid_settings();
    if (!self->settings)
        return nullptr;
    fluid_settings_setnum(self->settings, "synth.sample-rate", sampleRate);
    fluid_settings_setnum(self->settings, "synth.gain", SynthGain);
    fluid_settings_setint(self->settings, "synth.polyphony", Polyphony);
    // The sequencer's own lock guards every call.
    fluid_settings_setint(self->settings, "synth.threadsafe-api", 0);
    self->synth = new_fluid_synth(self->settings);
    if (!self->synth || !self->LoadFonts())
        return nullptr;
    return self;
}

CSynthesiser::~CSynthesiser()
{
    if (synth)
        delete_fluid_synth(synth);
    if (settings)
        delete_fluid_settings(settings);
}

// The player's fonts are loaded together, later ones over earlier ones, as
// SDL_mixer would; when none of them loads, the first default that does.
bool CSynthesiser::LoadFonts()
{
    const char* playerList = std::getenv("SDL_SOUNDFONTS");
    const std::vector<std::string> candidates = FontCandidates(playerList);
    const std::size_t playerFonts = candidates.size() - std::size(DefaultFonts);
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (i == playerFonts && !loadedFonts.empty())
            break;
        if (IsFile(candidates[i]) && fluid_synth_sfload(synth, candidates[i].c_str(), 1) != FLUID_FAILED) {
            loadedFonts.push_back(candidates[i]);
            if (i >= playerFonts)
                break;
        }
    }
    return !loadedFonts.empty();
}

void CSynthesiser::Send(const MidiMessage& message)
{
    const int channel = message.status & 0x0F;
    const int key = message.data1;
    const int value = message.data2;
    switch (message.status & 0xF0) {
    case 0x80: fluid_synth_noteoff(synth, channel, key); break;
    case 0x90: fluid_synth_noteon(synth, channel, key, value); break; // velocity 0 is a note off
    case 0xA0: fluid_synth_key_pressure(synth, channel, key, value); break;
    case 0xB0: fluid_synth_cc(synth, channel, key, value); break;
    case 0xC0: fluid_synth_program_change(synth, channel, key); break;
    case 0xD0: fluid_synth_channel_pressure(synth, channel, key); break;
    case 0xE0: fluid_synth_pitch_bend(synth, channel, key | (value << 7)); break;
    default: break;
    }
}

void CSynthesiser::Render(float* out, std::size_t frames)
{
    fluid_synth_write_float(synth, static_cast<int>(frames), out, 0, 2, out, 1, 2);
}

bool CSynthesiser::IsSounding() const
{
    return fluid_synth_get_active_voice_count(synth) > 0;
}

void CSynthesiser::ReleaseAllNotes()
{
    for (int channel = 0; channel < Channels; ++channel)
        fluid_synth_cc(synth, channel, AllNotesOff, 0);
}

void CSynthesiser::ResetControllers()
{
    for (int channel = 0; channel < Channels; ++channel)
        fluid_synth_cc(synth, channel, ResetAllControllers, 0);
}

void CSynthesiser::Reset()
{
    fluid_synth_system_reset(synth);
}
