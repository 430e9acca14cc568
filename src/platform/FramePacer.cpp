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
    const bool waited = end - presentStart > WaitedShare * period;
    if (waited && movedLastTurn)
        followsRefresh = false; // as slow after its turn was moved: the present's own cost
    movedLastTurn = waited && followsRefresh;
    if (movedLastTurn) {
        // Aim the next turn a little before the display's next refresh, one
        // period after the refresh this present waited for.
        nextTurn = end + period - WaitedShare * period;
    } else {
        const double onSchedule = scheduled ? nextTurn + period : presentStart + period;
        nextTurn = std::max(onSchedule, presentStart + period - CatchUpShare * period);
    }
    scheduled = true;
}
