#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace qvtest {

// A wave file holding a tone of the given length.
void WriteWave(const std::string& file, std::uint32_t lengthMs);
// A one-track MIDI file: a few piano notes, each noteMs long.
void WriteTune(const std::string& file, std::uint32_t noteMs);

// Polls until the condition holds or the time is up; true if it held.
bool WaitUntil(const std::function<bool()>& condition, std::uint32_t timeoutMs = 10000);

// Sets an environment variable for the life of the object.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const std::string& value);
    ~ScopedEnv();

private:
    std::string name;
    std::optional<std::string> previous;
};

// Audio tests start and end with the output closed, on SDL's silent dummy
// driver unless the environment names another.
class AudioScope {
public:
    AudioScope();
    ~AudioScope();
};

} // namespace qvtest
