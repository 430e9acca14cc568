#include "platform/FolderLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

// The lock file where the folder allows one, else the folder itself (a
// read-only folder may still hold a settings file that can be written).
int OpenLockTarget(const std::string& folder)
{
    const std::string file = folder + "/" + CFolderLock::LockFile;
    int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (fd < 0)
        fd = ::open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return fd;
}

} // namespace

CFolderLock::~CFolderLock()
{
    Release();
}

CFolderLock::Outcome CFolderLock::Take(const std::string& folder)
{
    Release();
    fd = OpenLockTarget(folder);
    if (fd < 0)
        return Unavailable;
    int locked;
    do
        locked = ::flock(fd, LOCK_EX | LOCK_NB);
    while (locked != 0 && errno == EINTR);
    if (locked == 0)
        return Held;
    const bool elsewhere = errno == EWOULDBLOCK;
    Release();
    return elsewhere ? HeldElsewhere : Unavailable;
}

void CFolderLock::Release()
{
    if (fd >= 0)
        ::close(fd);
    fd = -1;
}
