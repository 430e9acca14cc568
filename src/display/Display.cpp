#include "display/Display.h"

#include "platform/Clock.h"

namespace {
constexpr std::uint32_t FrameMs = 16;
}

Result CDisplay::Init(HWND /*window*/) { return DD_OK; }

Result CDisplay::Flip()
{
    Platform::Sleep(FrameMs);
    return DD_OK;
}

Result CDisplay::Restore() { return DD_OK; }
void CDisplay::Release() {}
Result CDisplay::DrawTitleScreen() { return DD_OK; }
