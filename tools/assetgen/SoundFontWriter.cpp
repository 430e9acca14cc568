#include "SoundFontWriter.h"

#include <algorithm>
#include <cmath>

namespace assetgen {

namespace {

constexpr size_t kNameLength = 20;
// Every sample is followed by at least 46 zero points, for interpolators that read past its end.
constexpr size_t kSampleGap = 46;
constexpr uint16_t kMonoSample = 1;
constexpr double kLowestFrequency = 8.176;  // absolute cent 0: MIDI key 0
constexpr int16_t kShortestTime = -12000;   // about a millisecond

using Bytes = std::vector<uint8_t>;

void Put16(Bytes& out, uint16_t v) {
    out.push_back(static_cast<uint8_t>(v));
    out.push_back(static_cast<uint8_t>(v >> 8));
}

void Put32(Bytes& out, uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<uint8_t>(v >> shift));
}

void PutTag(Bytes& out, const char* tag) { out.insert(out.end(), tag, tag + 4); }

void PutName(Bytes& out, const std::string& name) {
    for (size_t i = 0; i < kNameLength; ++i) out.push_back(i < name.size() ? static_cast<uint8_t>(name[i]) : 0);
}

// A RIFF chunk, padded to an even size.
Bytes Chunk(const char* tag, const Bytes& body) {
    Bytes out;
    PutTag(out, tag);
    Put32(out, static_cast<uint32_t>(body.size()));
    out.insert(out.end(), body.begin(), body.end());
    if (body.size() % 2) out.push_back(0);
    return out;
}

Bytes List(const char* type, const std::vector<Bytes>& chunks) {
    Bytes body;
    PutTag(body, type);
    for (const Bytes& c : chunks) body.insert(body.end(), c.begin(), c.end());
    return Chunk("LIST", body);
}

void PutGenerator(Bytes& out, uint16_t generator, int16_t amount) {
    Put16(out, generator);
    Put16(out, static_cast<uint16_t>(amount));
}

int16_t KeyRange(uint8_t low, uint8_t high) { return static_cast<int16_t>(low | (high << 8)); }

}  // namespace

int SoundFontWriter::AddSample(Sample sample) {
    samples.push_back(std::move(sample));
    return static_cast<int>(samples.size()) - 1;
}

int SoundFontWriter::AddInstrument(const std::string& name, std::vector<Zone> zones) {
    instruments.push_back({name, std::move(zones)});
    return static_cast<int>(instruments.size()) - 1;
}

void SoundFontWriter::AddPreset(const std::string& name, uint16_t bank, uint16_t program, int instrument) {
    presets.push_back({name, bank, program, instrument});
}

int16_t SoundFontWriter::Timecents(double seconds) {
    if (seconds <= 0.001) return kShortestTime;
    return static_cast<int16_t>(std::lround(1200.0 * std::log2(seconds)));
}

int16_t SoundFontWriter::AbsoluteCents(double hz) {
    return static_cast<int16_t>(std::lround(1200.0 * std::log2(hz / kLowestFrequency)));
}

std::vector<uint8_t> SoundFontWriter::Encode(const std::string& fontName) const {
    // Version 2.01, for the EMU8000 engine every reader knows.
    Bytes version, engine(std::begin("EMU8000"), std::end("EMU8000")), name(fontName.begin(), fontName.end());
    Put16(version, 2);
    Put16(version, 1);
    name.resize(name.size() / 2 * 2 + 2, 0);  // ended by a zero, and of an even size, as readers insist
    const Bytes info = List("INFO", {Chunk("ifil", version), Chunk("isng", engine), Chunk("INAM", name)});

    Bytes points, headers;
    for (const Sample& s : samples) {
        const auto start = static_cast<uint32_t>(points.size() / 2);
        for (int16_t v : s.data) Put16(points, static_cast<uint16_t>(v));
        points.insert(points.end(), 2 * kSampleGap, 0);
        PutName(headers, s.name);
        Put32(headers, start);
        Put32(headers, start + static_cast<uint32_t>(s.data.size()));
        Put32(headers, start + s.loopStart);
        Put32(headers, start + s.loopEnd);
        Put32(headers, s.rate);
        headers.push_back(s.rootKey);
        headers.push_back(static_cast<uint8_t>(s.correctionCents));
        Put16(headers, 0);
        Put16(headers, kMonoSample);
    }
    PutName(headers, "EOS");
    headers.insert(headers.end(), 46 - kNameLength, 0);
    const Bytes sampleData = List("sdta", {Chunk("smpl", points)});

    // Instrument zones: the key range first, the sample last, as the format asks.
    Bytes inst, ibag, igen;
    uint16_t zoneCount = 0, generatorCount = 0;
    for (const Instrument& instrument : instruments) {
        PutName(inst, instrument.name);
        Put16(inst, zoneCount);
        for (const Zone& zone : instrument.zones) {
            Put16(ibag, generatorCount);
            Put16(ibag, 0);
            PutGenerator(igen, kKeyRange, KeyRange(zone.lowKey, zone.highKey));
            for (const auto& [generator, amount] : zone.generators) PutGenerator(igen, generator, amount);
            PutGenerator(igen, kSampleId, static_cast<int16_t>(zone.sample));
            generatorCount = static_cast<uint16_t>(generatorCount + zone.generators.size() + 2);
            ++zoneCount;
        }
    }
    PutName(inst, "EOI");
    Put16(inst, zoneCount);
    Put16(ibag, generatorCount);
    Put16(ibag, 0);
    PutGenerator(igen, 0, 0);

    // Each preset: one zone that plays its instrument.
    Bytes phdr, pbag, pgen;
    uint16_t presetZone = 0;
    for (const Preset& preset : presets) {
        PutName(phdr, preset.name);
        Put16(phdr, preset.program);
        Put16(phdr, preset.bank);
        Put16(phdr, presetZone);
        phdr.insert(phdr.end(), 12, 0);  // library, genre and morphology: reserved
        Put16(pbag, presetZone);
        Put16(pbag, 0);
        PutGenerator(pgen, kInstrument, static_cast<int16_t>(preset.instrument));
        ++presetZone;
    }
    PutName(phdr, "EOP");
    Put16(phdr, 0);
    Put16(phdr, 0);
    Put16(phdr, presetZone);
    phdr.insert(phdr.end(), 12, 0);
    Put16(pbag, presetZone);
    Put16(pbag, 0);
    PutGenerator(pgen, 0, 0);
    const Bytes noModulators(10, 0);

    const Bytes presetData =
        List("pdta", {Chunk("phdr", phdr), Chunk("pbag", pbag), Chunk("pmod", noModulators), Chunk("pgen", pgen),
                      Chunk("inst", inst), Chunk("ibag", ibag), Chunk("imod", noModulators), Chunk("igen", igen),
                      Chunk("shdr", headers)});
    Bytes body;
    PutTag(body, "sfbk");
    for (const Bytes* part : {&info, &sampleData, &presetData}) body.insert(body.end(), part->begin(), part->end());
    return Chunk("RIFF", body);
}

}  // namespace assetgen
