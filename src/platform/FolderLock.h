#pragma once
#include <string>

// Keeps a second copy of the game out of a folder while the first runs there:
// an advisory lock on a small file in the folder, which the system lets go of
// however the holder ends, a crash or a kill included.
class CFolderLock {
public:
    static constexpr const char* LockFile = ".quelvarion.lock";

    enum Outcome {
        Held,          // this program holds the folder
        HeldElsewhere, // another program holds it
        Unavailable,   // the folder can be neither written nor opened: nothing to guard
    };

    CFolderLock() = default;
    CFolderLock(const CFolderLock&) = delete;
    CFolderLock& operator=(const CFolderLock&) = delete;
    ~CFolderLock();

    Outcome Take(const std::string& folder);
    void Release();

private:
    int fd = -1;
};
