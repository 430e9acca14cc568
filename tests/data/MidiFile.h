#pragma once
// A strict reader for Standard MIDI Files, as a sequencer reads them: header,
// tracks, running status, meta and system-exclusive events.
#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "GameDataFiles.h"

namespace qvdata {

struct MidiEvent {
    uint32_t tick = 0;
    uint8_t status = 0;  // 0xFF for meta events
    uint8_t metaType = 0;
    std::vector<uint8_t> data;

    uint8_t Channel() const { return status & 0x0F; }
    bool IsNoteOn() const { return (status & 0xF0) == 0x90 && data[1] > 0; }
    bool IsNoteOff() const { return (status & 0xF0) == 0x80 || ((status & 0xF0) == 0x90 && data[1] == 0); }
};

struct MidiFile {
    std::string error;  // empty when the file parsed
    uint16_t format = 0, division = 0;
    std::vector<std::vector<MidiEvent>> tracks;

    static MidiFile Parse(const std::vector<uint8_t>& b) {
        MidiFile m;
        try {
            m.Read(b);
        } catch (const std::exception& e) {  // a failed check, or a read past the end
            m = MidiFile{};
            m.error = e.what();
        }
        return m;
    }

    uint32_t EndTick() const {
        uint32_t end = 0;
        for (const auto& track : tracks) end = std::max(end, track.back().tick);
        return end;
    }

    // Seconds from the start to a tick at the file's tempo (the game's tune keeps one).
    double SecondsAt(uint32_t tick) const {
        uint32_t tempo = 500000;
        for (const auto& track : tracks)
            for (const MidiEvent& e : track)
                if (e.status == 0xFF && e.metaType == 0x51) tempo = (e.data.at(0) << 16) | (e.data.at(1) << 8) | e.data.at(2);
        return tick * (tempo / 1e6) / division;
    }

private:
    static void Require(bool ok, const char* why) {
        if (!ok) throw std::runtime_error(why);
    }

    static uint32_t VarLen(const std::vector<uint8_t>& b, size_t& at) {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) {
            const uint8_t byte = b.at(at++);
            v = (v << 7) | (byte & 0x7F);
            if (!(byte & 0x80)) break;
        }
        return v;
    }

    void Read(const std::vector<uint8_t>& b) {
        Require(Tag(b, 0) == "MThd" && Be32(b, 4) == 6, "no MThd header");
        format = static_cast<uint16_t>(Be16(b, 8));
        division = static_cast<uint16_t>(Be16(b, 12));
        size_t at = 14;
        for (uint32_t t = Be16(b, 10); t > 0; --t, at += 8 + Be32(b, at + 4)) {
            Require(Tag(b, at) == "MTrk" && at + 8 + Be32(b, at + 4) <= b.size(), "missing or overlong MTrk");
            tracks.push_back(ReadTrack(b, at + 8, at + 8 + Be32(b, at + 4)));
        }
        Require(at == b.size(), "bytes after the last track");
    }

    static std::vector<MidiEvent> ReadTrack(const std::vector<uint8_t>& b, size_t at, size_t end) {
        std::vector<MidiEvent> events;
        uint8_t running = 0;
        for (uint32_t tick = 0; at < end;) {
            MidiEvent e;
            e.tick = tick += VarLen(b, at);
            e.status = (b.at(at) & 0x80) ? b.at(at++) : running;
            Require(e.status != 0, "data byte without a status");
            if (e.status == 0xFF) e.metaType = b.at(at++);
            // Meta and system exclusive events give their length; program and pressure take one byte, the rest two.
            const uint32_t length = e.status >= 0xF0 ? VarLen(b, at) : (e.status & 0xE0) == 0xC0 ? 1 : 2;
            Require(at + length <= end, "event overruns its track");
            e.data.assign(b.begin() + at, b.begin() + at + length);
            at += length;
            if (e.status < 0xF0) running = e.status;
            events.push_back(e);
        }
        Require(at == end, "event overruns its track");
        Require(!events.empty() && events.back().status == 0xFF && events.back().metaType == 0x2F,
                "track does not end with end-of-track");
        return events;
    }
};

}  // namespace qvdata
