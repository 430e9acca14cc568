#include "platform/MessageBox.h"

#include "platform/Window.h"

#include <SDL.h>

namespace Platform {
namespace {

MessageBoxHandler& handler()
{
    static MessageBoxHandler h;
    return h;
}

} // namespace

int MessageBox(HWND owner, const std::string& text, const std::string& caption, UINT flags)
{
    if (handler())
        return handler()(owner, text, caption, flags);
    SDL_Window* parent = owner ? owner->GetSdlWindow() : nullptr;
    SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_ERROR, caption.c_str(), text.c_str(), parent);
    return IDOK;
}

void SetMessageBoxHandler(MessageBoxHandler h) { handler() = std::move(h); }

} // namespace Platform
