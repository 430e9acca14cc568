#pragma once
#include "platform/Types.h"

#include <deque>
#include <mutex>
#include <optional>

// The program's message queue. Any thread may post (the music device posts
// its completion notice from the audio thread); only the main loop takes.
struct PlatformMessage {
    HWND window = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

class CMessageQueue {
public:
    static CMessageQueue& Instance();

    void Post(const PlatformMessage& msg);
    std::optional<PlatformMessage> Take();
    bool Empty() const;
    // Drops every message meant for a window that is going away.
    void ForgetWindow(HWND window);
    void Clear();

private:
    mutable std::mutex lock;
    std::deque<PlatformMessage> messages;
};

namespace Platform {
// Posts the quit message; the message loop ends when it takes it.
void PostQuitMessage(int exitCode);
} // namespace Platform
