#pragma once
#include <cstddef>

class CSurface;

// Something outside the game that looks at the pictures of a recorded game's
// frames, numbered from 0, as composed: the same frame of a game and of its
// replay can then be compared. The game has none of its own.
class CFrameObserver {
public:
    virtual ~CFrameObserver() = default;
    // A replay catching up draws frames unseen; a wanted one is composed.
    virtual bool IsWanted(std::size_t frame) const = 0;
    virtual void Look(std::size_t frame, CSurface& picture) = 0;
};
