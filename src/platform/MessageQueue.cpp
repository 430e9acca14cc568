#include "platform/MessageQueue.h"

#include <SDL.h>

#include <algorithm>

namespace {

// Wakes a main loop that is blocked waiting for SDL events. Safe from any thread.
void WakeMainLoop()
{
    if (SDL_WasInit(SDL_INIT_EVENTS) == 0)
        return;
    SDL_Event wake{};
    wake.type = SDL_USEREVENT;
    SDL_PushEvent(&wake);
}

} // namespace

CMessageQueue& CMessageQueue::Instance()
{
    // Never destroyed: windows forget their messages from the application
    // object's destructor, and the audio thread may post until the output closes.
    static CMessageQueue& queue = *new CMessageQueue;
    return queue;
}

void CMessageQueue::Post(const PlatformMessage& msg)
{
    {
        std::lock_guard<std::mutex> guard(lock);
        messages.push_back(msg);
    }
    WakeMainLoop();
}

std::optional<PlatformMessage> CMessageQueue::Take()
{
    std::lock_guard<std::mutex> guard(lock);
    if (messages.empty())
        return std::nullopt;
    PlatformMessage msg = messages.front();
    messages.pop_front();
    return msg;
}

bool CMessageQueue::Empty() const
{
    std::lock_guard<std::mutex> guard(lock);
    return messages.empty();
}

void CMessageQueue::ForgetWindow(HWND window)
{
    std::lock_guard<std::mutex> guard(lock);
    std::erase_if(messages, [window](const PlatformMessage& m) { return m.window == window; });
}

void CMessageQueue::Clear()
{
    std::lock_guard<std::mutex> guard(lock);
    messages.clear();
}

namespace Platform {

void PostQuitMessage(int exitCode)
{
    CMessageQueue::Instance().Post({nullptr, WM_QUIT, static_cast<WPARAM>(exitCode), 0});
}

} // namespace Platform
