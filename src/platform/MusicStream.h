#pragma once
#include "platform/MidiTune.h"
#include "platform/Synthesiser.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// Sounds one tune at a time through the synthesiser, for the output's mixer.
//
// The stream renders a quarter of a second ahead of what the output has
// taken, so a tune's end is known, and reported, that long before it is
// heard. A tune started again straight after its end (the game's loop)
// therefore joins its end on the very frame, and the notes still ringing
// from the end sound on over its start; only an answer later than the lead
// lets the listener hear a pause.
//
// Not thread-safe: its owner guards every call with one lock.
class CMusicStream {
public:
    static constexpr std::uint32_t LeadMs = 250;

    CMusicStream(std::unique_ptr<CSynthesiser> synthesiser, int sampleRate);

    // Starts the tune from its beginning, where the stream stands: straight
    // after an end, on its last frame; after a stop, at once.
    void Start(std::shared_ptr<const CMidiTune> tune);
    // Cuts the tune, and whatever still rings or waits to be heard, at once.
    void Stop();
    // Adds the next frames of music to the interleaved stereo in out. True
    // when the tune playing reached its end in them.
    bool Render(float* out, std::size_t frames);

    bool IsPlaying() const { return state == State::Playing; }
    // Frames of music rendered but not yet taken by the output.
    std::size_t FramesAhead() const { return (ahead.size() - readAt) / 2; }

private:
    enum class State { Stopped, Playing, Ended };
    static constexpr std::size_t MaxPiece = 4096; // frames rendered at one go

    bool RenderPiece(float* out, std::size_t frames);
    bool RenderTune(std::size_t frames);
    void RenderFree(std::size_t frames);
    float* Reserve(std::size_t frames);
    std::uint64_t FrameOf(std::uint64_t micros) const;

    std::unique_ptr<CSynthesiser> synthesiser;
    const std::uint64_t rate;
    const std::size_t leadFrames;
    State state = State::Stopped;
    std::shared_ptr<const CMidiTune> tune;
    std::size_t next = 0;        // the tune's next message
    std::uint64_t position = 0;  // frames of the tune rendered
    std::vector<float> ahead;    // rendered, not yet taken, from readAt on
    std::size_t readAt = 0;
};
