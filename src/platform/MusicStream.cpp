#include "platform/MusicStream.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr std::uint64_t MicrosPerSecond = 1'000'000;
constexpr std::uint64_t MsPerSecond = 1000;

} // namespace

CMusicStream::CMusicStream(std::unique_ptr<CSynthesiser> synth, int sampleRate)
    : synthesiser(std::move(synth)), rate(static_cast<std::uint64_t>(sampleRate)),
      leadFrames(static_cast<std::size_t>(rate * LeadMs / MsPerSecond))
{
    // Never more than the lead and one piece wait: this is all the stream
    // ever holds, so the audio thread never allocates.
    ahead.reserve(2 * (leadFrames + 2 * MaxPiece));
}

void CMusicStream::Start(std::shared_ptr<const CMidiTune> newTune)
{
    if (state == State::Playing)
        Stop();
    if (state == State::Ended)
        synthesiser->ResetControllers(); // what the end left bent or held must not colour the start
    tune = std::move(newTune);
    next = 0;
    position = 0;
    state = State::Playing;
}

void CMusicStream::Stop()
{
    synthesiser->Reset();
    ahead.clear();
    readAt = 0;
    tune.reset();
    state = State::Stopped;
}

bool CMusicStream::Render(float* out, std::size_t frames)
{
    bool ended = false;
    for (std::size_t done = 0; done < frames;) {
        const std::size_t piece = std::min(MaxPiece, frames - done);
        ended |= RenderPiece(out + 2 * done, piece);
        done += piece;
    }
    return ended;
}

bool CMusicStream::RenderPiece(float* out, std::size_t frames)
{
    bool ended = false;
    if (state == State::Playing) {
        // The lead grows by at most a piece each time, so starting a tune
        // costs no more than rendering two pieces.
        const std::size_t target = frames + std::min(leadFrames, FramesAhead() + frames);
        while (state == State::Playing && FramesAhead() < target)
            ended |= RenderTune(target - FramesAhead());
    }
    // After an end that has not been answered yet, time runs on with
    // whatever still rings.
    if (FramesAhead() < frames)
        RenderFree(frames - FramesAhead());
    const float* from = ahead.data() + readAt;
    for (std::size_t i = 0; i < 2 * frames; ++i)
        out[i] += from[i];
    readAt += 2 * frames;
    return ended;
}

// Renders up to the given frames of the tune, each message on its frame. At
// the tune's last event the tune is over: its notes are released, and the
// stream waits there for the next start.
bool CMusicStream::RenderTune(std::size_t frames)
{
    const std::vector<MidiMessage>& messages = tune->Messages();
    const std::uint64_t end = FrameOf(tune->EndMicros());
    for (;;) {
        while (next < messages.size() && FrameOf(messages[next].micros) <= position)
            synthesiser->Send(messages[next++]);
        if (next == messages.size() && position >= end) {
            synthesiser->ReleaseAllNotes();
            tune.reset();
            state = State::Ended;
            return true;
        }
        if (frames == 0)
            return false;
        const std::uint64_t until = next < messages.size() ? FrameOf(messages[next].micros) : end;
        const auto run = static_cast<std::size_t>(std::min<std::uint64_t>(until - position, frames));
        synthesiser->Render(Reserve(run), run);
        position += run;
        frames -= run;
    }
}

void CMusicStream::RenderFree(std::size_t frames)
{
    float* out = Reserve(frames);
    if (state != State::Stopped && synthesiser->IsSounding())
        synthesiser->Render(out, frames);
    else
        std::fill(out, out + 2 * frames, 0.0f);
}

// Room for the frames at the end of what waits, reusing the room of what the
// output has already taken.
float* CMusicStream::Reserve(std::size_t frames)
{
    if (readAt > 0) {
        ahead.erase(ahead.begin(), ahead.begin() + static_cast<std::ptrdiff_t>(readAt));
        readAt = 0;
    }
    const std::size_t at = ahead.size();
    ahead.resize(at + 2 * frames);
    return ahead.data() + at;
}

std::uint64_t CMusicStream::FrameOf(std::uint64_t micros) const
{
    return micros * rate / MicrosPerSecond;
}
