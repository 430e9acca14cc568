#pragma once
// What the audio tests look at: the loudest sample of a stretch of output,
// and whether a tune's device is playing.
#include "platform/Sequencer.h"

#include <algorithm>
#include <cmath>

namespace qvtest {

template <class Iterator>
double Peak(Iterator from, Iterator to)
{
    double peak = 0.0;
    for (; from != to; ++from)
        peak = std::max(peak, std::fabs(static_cast<double>(*from)));
    return peak;
}

inline bool TunePlays(MCIDEVICEID id)
{
    MCI_STATUS_PARMS status{.dwItem = MCI_STATUS_MODE};
    return Platform::MciSendCommand(id, MCI_STATUS, MCI_STATUS_ITEM, status) == 0 && status.dwReturn == MCI_MODE_PLAY;
}

} // namespace qvtest
