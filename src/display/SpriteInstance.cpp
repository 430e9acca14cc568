#include "display/SpriteInstance.h"

#include "core/Trace.h"
#include "display/Display.h"
#include "display/Screen.h"
#include "display/SpriteSet.h"
#include "platform/DC.h"

namespace {

constexpr std::int32_t FullTurn = 360;

} // namespace

void CSpriteInstance::Bind(std::int32_t index)
{
    const CSprite* entry = TheSprites().GetEntry(index);
    if (!entry)
        return;
    frameCount = entry->frameCount;
    frameTime = entry->frameTime;
    rotationStep = entry->directions >= 1 ? FullTurn / entry->directions : 0;
    spriteIndex = index;
    if (!entry->frames.empty())
        radius = entry->frames.front().source.Width() / 2;
    angle = 0;
}

void CSpriteInstance::SetRotation(std::int32_t degrees)
{
    // Half a step more, so that dividing by the step later picks the nearest direction.
    angle = static_cast<std::int32_t>(rotationStep * 0.5 + degrees);
    while (angle > FullTurn - 1)
        angle -= FullTurn;
    while (angle < 0)
        angle += FullTurn;
}

void CSpriteInstance::Animate(double elapsedMs)
{
    if (frameCount <= 0)
        return;
    // At most one frame a draw, however long the frame took.
    frameClock += elapsedMs;
    if (frameClock > frameTime) {
        frameClock = 0.0;
        if (++frame >= frameCount)
            frame = 0;
    }
}

std::int32_t CSpriteInstance::ChosenFrameIndex() const
{
    const CSprite* entry = TheSprites().GetEntry(spriteIndex);
    if (!entry)
        return -1;
    const std::int32_t perDirection = frameCount > 0 ? frameCount : 1;
    const std::int32_t base = rotationStep > 0 && angle > 0 ? angle / rotationStep * perDirection : 0;
    const std::int32_t n = base + frame;
    return n >= 0 && static_cast<std::size_t>(n) < entry->frames.size() ? n : -1;
}

void CSpriteInstance::Draw(double elapsedMs)
{
    Animate(elapsedMs);
    CSurface* back = TheDisplay().GetBack();
    const std::int32_t n = ChosenFrameIndex();
    if (n >= 0 && back) {
        const CSpriteFrame& chosen = TheSprites().GetEntry(spriteIndex)->frames[static_cast<std::size_t>(n)];
        if (chosen.surface && CopyFrame(chosen, *back))
            return;
    }
    DrawPlaceholder(back);
}

bool CSpriteInstance::CopyFrame(const CSpriteFrame& chosen, CSurface& back) const
{
    const RECT screen{0, 0, ScreenWidth(), ScreenHeight()};
    const RECT dest{x - radius, y - radius, x - radius + chosen.source.Width(), y - radius + chosen.source.Height()};
    const RECT clip = IntersectRect(dest, screen);
    if (clip.IsEmpty())
        return true; // wholly off the screen: nothing to draw
    // The copy never clips, so the part off the screen is cut from the source first.
    RECT source = chosen.source;
    source.left += clip.left - dest.left;
    source.top += clip.top - dest.top;
    source.right -= dest.right - clip.right;
    source.bottom -= dest.bottom - clip.bottom;
    const Result r = back.BltFast(clip.left, clip.top, chosen.surface, &source, DDBLTFAST_SRCCOLORKEY);
    if (r != DD_OK) {
        CTrace::TraceCode(r, "Failed to draw sprite.", 0);
        return false;
    }
    return true;
}

void CSpriteInstance::DrawPlaceholder(CSurface* back) const
{
    CDC* dc = nullptr;
    if (!back || back->GetDC(dc) != DD_OK)
        return;
    dc->Ellipse(x - radius, y - radius, x + radius, y + radius);
    back->ReleaseDC(dc);
}
