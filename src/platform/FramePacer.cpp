#include "platform/FramePacer.h"

#include <algorithm>

void CFramePacer::WaitForTurn(double newPeriod)
{
    period = newPeriod;
    double t = now();
    if (scheduled) {
        // Never more than a period ahead: the clock or the refresh rate changed.
        nextTurn = std::min(nextTurn, t + period);
        if (t < nextTurn) {
            wait(nextTurn - t);
            t = now();
        }
    }
    presentStart = t;
}

void CFramePacer::Presented()
{
    const double end = now();
    if (end - presentStart > WaitedShare * period) {
        // The present waited for the display: aim the next turn a little
        // before the display's next refresh, where this one ended.
        nextTurn = end + period - WaitedShare * period;
    } else {
        const double onSchedule = scheduled ? nextTurn + period : presentStart + period;
        nextTurn = std::max(onSchedule, presentStart + period - CatchUpSeconds);
    }
    scheduled = true;
}
