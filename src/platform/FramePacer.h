#pragma once
#include <functional>

// Keeps the pictures shown at most one a refresh period, whatever the
// renderer claims. A present that returns at once (a software renderer, a
// driver that ignores the request, a hidden window) would let the game draw
// as fast as the processor allows, so the pacer waits out the rest of the
// period before each present. Turns follow a schedule one period apart rather
// than "a period after the last present", so sleeping a little long now and
// then does not slow the rate: 60 Hz gives 60 pictures a second.
//
// A present that really waits for the display's refresh is given its turn a
// little before the refresh it waited for, so pictures are not held back a
// whole period. A present that is merely slow (OpenGL drawn in software) looks
// the same once; when it still takes as long after its turn was moved, it was
// not waiting, and the schedule alone keeps the rhythm from then on.
class CFramePacer {
public:
    using Clock = std::function<double()>;     // seconds, never going back
    using Wait = std::function<void(double)>;  // sleeps about this many seconds

    // A present that took longer than this share of the period waited for the display.
    static constexpr double WaitedShare = 0.25;
    // How much of a period a late frame's successor may make up, so that a
    // frame held up now and then (a busy machine, a late wake-up) costs no
    // picture, while a long stall is not followed by a burst.
    static constexpr double CatchUpShare = 0.25;

    CFramePacer(Clock clock, Wait wait) : now(std::move(clock)), wait(std::move(wait)) {}

    // Before a present: waits until this picture's turn, for a display that
    // shows a new picture every `period` seconds.
    void WaitForTurn(double period);
    // Right after the present returned.
    void Presented();

private:
    Clock now;
    Wait wait;
    double period = 0.0;
    double presentStart = 0.0;
    double nextTurn = 0.0;
    bool scheduled = false;
    bool followsRefresh = true; // presents may be waiting for the display
    bool movedLastTurn = false;
};
