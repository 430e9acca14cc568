#pragma once
// A strict reader for the plain mono 16-bit PCM wave files the game plays.
#include <cstdint>
#include <string>
#include <vector>

#include "GameDataFiles.h"

namespace qvdata {

struct WaveFile {
    std::string error;  // empty when the file parsed
    uint16_t format = 0, channels = 0, bitsPerSample = 0, blockAlign = 0;
    uint32_t sampleRate = 0, byteRate = 0;
    std::vector<int16_t> samples;

    double Seconds() const { return sampleRate ? static_cast<double>(samples.size()) / sampleRate : 0.0; }

    static WaveFile Parse(const std::vector<uint8_t>& b) {
        WaveFile w;
        if (Tag(b, 0) != "RIFF" || Tag(b, 8) != "WAVE") return Fail("not RIFF/WAVE");
        if (Le32(b, 4) + 8 != b.size()) return Fail("RIFF size does not match the file");
        for (size_t at = 12; at + 8 <= b.size();) {
            const std::string id = Tag(b, at);
            const uint32_t size = Le32(b, at + 4);
            if (at + 8 + size > b.size()) return Fail("chunk " + id + " overruns the file");
            if (id == "fmt ") w.ReadFormat(b, at + 8);
            if (id == "data") w.ReadSamples(b, at + 8, size);
            at += 8 + size + (size & 1);
        }
        if (w.sampleRate == 0) return Fail("no fmt chunk");
        return w;
    }

private:
    static WaveFile Fail(const std::string& why) {
        WaveFile w;
        w.error = why;
        return w;
    }
    void ReadFormat(const std::vector<uint8_t>& b, size_t at) {
        format = static_cast<uint16_t>(Le16(b, at));
        channels = static_cast<uint16_t>(Le16(b, at + 2));
        sampleRate = Le32(b, at + 4);
        byteRate = Le32(b, at + 8);
        blockAlign = static_cast<uint16_t>(Le16(b, at + 12));
        bitsPerSample = static_cast<uint16_t>(Le16(b, at + 14));
    }
    void ReadSamples(const std::vector<uint8_t>& b, size_t at, uint32_t size) {
        for (uint32_t i = 0; i + 1 < size; i += 2) samples.push_back(static_cast<int16_t>(Le16(b, at + i)));
    }
};

}  // namespace qvdata
