#pragma once
// A reader for Standard MIDI Files: header, tracks, running status, meta and
// system-exclusive events, and the tempo map needed to time the tune.
#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "GameDataFiles.h"

namespace qvdata {

struct MidiEvent {
    uint32_t tick = 0;
    uint8_t status = 0;  // 0xFF for meta events
    uint8_t metaType = 0;
    std::vector<uint8_t> data;

    uint8_t Kind() const { return status & 0xF0; }
    uint8_t Channel() const { return status & 0x0F; }
    bool IsNoteOn() const { return Kind() == 0x90 && data.size() == 2 && data[1] > 0; }
    bool IsNoteOff() const { return Kind() == 0x80 || (Kind() == 0x90 && data.size() == 2 && data[1] == 0); }
};

struct MidiFile {
    std::string error;
    uint16_t format = 0, trackCount = 0, division = 0;
    std::vector<std::vector<MidiEvent>> tracks;

    static MidiFile Parse(const std::vector<uint8_t>& b) {
        MidiFile m;
        if (Tag(b, 0) != "MThd" || Be32(b, 4) != 6) return Fail("no MThd header");
        m.format = static_cast<uint16_t>(Be16(b, 8));
        m.trackCount = static_cast<uint16_t>(Be16(b, 10));
        m.division = static_cast<uint16_t>(Be16(b, 12));
        size_t at = 14;
        for (int t = 0; t < m.trackCount; ++t) {
            if (Tag(b, at) != "MTrk") return Fail("missing MTrk");
            const size_t end = at + 8 + Be32(b, at + 4);
            if (end > b.size()) return Fail("track overruns the file");
            std::string why;
            m.tracks.push_back(ReadTrack(b, at + 8, end, why));
            if (!why.empty()) return Fail(why);
            at = end;
        }
        if (at != b.size()) return Fail("bytes after the last track");
        return m;
    }

    uint32_t EndTick() const {
        uint32_t end = 0;
        for (const auto& track : tracks)
            if (!track.empty()) end = std::max(end, track.back().tick);
        return end;
    }

    // Seconds from the start to a tick, following every tempo change.
    double SecondsAt(uint32_t tick) const {
        std::map<uint32_t, uint32_t> tempo{{0, 500000}};
        for (const auto& track : tracks)
            for (const MidiEvent& e : track)
                if (e.status == 0xFF && e.metaType == 0x51 && e.data.size() == 3)
                    tempo[e.tick] = (e.data[0] << 16) | (e.data[1] << 8) | e.data[2];
        double seconds = 0.0;
        for (auto it = tempo.begin(); it != tempo.end() && it->first < tick; ++it) {
            const auto next = std::next(it);
            const uint32_t until = (next == tempo.end() || next->first > tick) ? tick : next->first;
            seconds += (until - it->first) * (it->second / 1e6) / division;
        }
        return seconds;
    }

private:
    static MidiFile Fail(const std::string& why) {
        MidiFile m;
        m.error = why;
        return m;
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

    static std::vector<MidiEvent> ReadTrack(const std::vector<uint8_t>& b, size_t at, size_t end, std::string& why) {
        std::vector<MidiEvent> events;
        uint32_t tick = 0;
        uint8_t running = 0;
        while (at < end) {
            MidiEvent e;
            tick += VarLen(b, at);
            e.tick = tick;
            uint8_t status = b.at(at);
            if (status & 0x80) {
                ++at;
            } else if (running == 0) {
                why = "data byte without a status";
                return events;
            } else {
                status = running;
            }
            e.status = status;
            if (status == 0xFF) {
                e.metaType = b.at(at++);
                const uint32_t length = VarLen(b, at);
                e.data.assign(b.begin() + at, b.begin() + at + length);
                at += length;
            } else if (status == 0xF0 || status == 0xF7) {
                at += VarLen(b, at);
            } else {
                running = status;
                const int count = ((status & 0xF0) == 0xC0 || (status & 0xF0) == 0xD0) ? 1 : 2;
                for (int i = 0; i < count; ++i) e.data.push_back(b.at(at++));
            }
            events.push_back(e);
        }
        if (events.empty() || events.back().status != 0xFF || events.back().metaType != 0x2F)
            why = "track does not end with end-of-track";
        return events;
    }
};

}  // namespace qvdata
