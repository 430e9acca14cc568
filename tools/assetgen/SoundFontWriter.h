#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace assetgen {

// Builds a SoundFont 2 file (version 2.01): 16-bit mono samples, instruments
// whose zones map key ranges to samples with generators, and presets that
// each play one instrument. No modulators are written: a synthesiser's
// default ones (velocity, volume, pan, reverb and chorus sends, pitch bend)
// are all the game's tune needs.
class SoundFontWriter {
public:
    // SoundFont generator numbers.
    enum Generator : uint16_t {
        kInitialFilterFc = 8, kInitialFilterQ = 9, kModEnvToFilterFc = 11, kChorusSend = 15, kReverbSend = 16,
        kPan = 17, kDelayVibLfo = 23, kFreqVibLfo = 24, kVibLfoToPitch = 6, kAttackModEnv = 26,
        kDecayModEnv = 28, kSustainModEnv = 29, kReleaseModEnv = 30, kAttackVolEnv = 34, kHoldVolEnv = 35,
        kDecayVolEnv = 36, kSustainVolEnv = 37, kReleaseVolEnv = 38, kInstrument = 41, kKeyRange = 43,
        kVelRange = 44, kInitialAttenuation = 48, kCoarseTune = 51, kFineTune = 52, kSampleId = 53,
        kSampleModes = 54, kScaleTuning = 56, kExclusiveClass = 57, kOverridingRootKey = 58,
    };
    enum SampleMode : int16_t { kNoLoop = 0, kLoop = 1 };

    struct Sample {
        std::string name;  // at most 20 characters are kept
        std::vector<int16_t> data;
        uint32_t rate = 44100;
        uint8_t rootKey = 60;
        int8_t correctionCents = 0;
        uint32_t loopStart = 0, loopEnd = 0;  // in the sample's own points
    };
    struct Zone {
        int sample = 0;
        uint8_t lowKey = 0, highKey = 127;
        std::vector<std::pair<Generator, int16_t>> generators;
    };

    int AddSample(Sample sample);
    int AddInstrument(const std::string& name, std::vector<Zone> zones);
    void AddPreset(const std::string& name, uint16_t bank, uint16_t program, int instrument);

    std::vector<uint8_t> Encode(const std::string& fontName) const;

    // Times and frequencies as the format counts them.
    static int16_t Timecents(double seconds);
    static int16_t AbsoluteCents(double hz);

private:
    struct Instrument {
        std::string name;
        std::vector<Zone> zones;
    };
    struct Preset {
        std::string name;
        uint16_t bank, program;
        int instrument;
    };

    std::vector<Sample> samples;
    std::vector<Instrument> instruments;
    std::vector<Preset> presets;
};

}  // namespace assetgen
