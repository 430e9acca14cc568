#pragma once
#include "platform/MidiTune.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

struct _fluid_hashtable_t;
struct _fluid_synth_t;

// The General MIDI synthesiser that sounds the sequencer's tunes: FluidSynth
// with one sound font loaded once for the whole run.
//
// The font is the player's choice when SDL_SOUNDFONTS names one or more
// (separated by ':' or ';', all loaded together), otherwise the game's own
// "background.sf2", made by the data generator for exactly the tune's
// instruments: about a megabyte in the synthesiser, where Debian's General
// MIDI fonts take 13 to 155 MB. Those are only a fallback should the game's
// font be missing.
class CSynthesiser {
public:
    // A synthesiser for an output at this rate, or nothing when no sound font
    // can be loaded.
    static std::unique_ptr<CSynthesiser> Create(int sampleRate);
    ~CSynthesiser();
    CSynthesiser(const CSynthesiser&) = delete;
    CSynthesiser& operator=(const CSynthesiser&) = delete;

    // The fonts to try, in order: the player's list, then the defaults.
    static std::vector<std::string> FontCandidates(const char* playerList);
    // The fonts it plays with, as named: what the player hears told apart
    // from what was asked for.
    const std::vector<std::string>& LoadedFonts() const { return loadedFonts; }

    void Send(const MidiMessage& message);
    // Renders the next frames into out, as interleaved stereo.
    void Render(float* out, std::size_t frames);
    // True while any voice still sounds, a release or an echo included.
    bool IsSounding() const;
    // Every note released, as at the end of a tune.
    void ReleaseAllNotes();
    // Every controller back to its default, as before a tune starts over.
    void ResetControllers();
    // Every voice silenced at once and every channel reset.
    void Reset();

private:
    CSynthesiser() = default;
    bool LoadFonts();

    _fluid_hashtable_t* settings = nullptr;
    _fluid_synth_t* synth = nullptr;
    std::vector<std::string> loadedFonts;
};
