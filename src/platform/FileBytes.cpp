#include "platform/FileBytes.h"

#include "platform/Console.h"
#include "platform/FileStore.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {

namespace {

constexpr std::size_t ReadChunkBytes = 16384;

Result WhyNotOrdinary(const struct stat& info, std::size_t cap)
{
    if (S_ISDIR(info.st_mode))
        return ERROR_DIRECTORY;
    if (!S_ISREG(info.st_mode))
        return ERROR_BAD_FILE_TYPE;
    if (static_cast<std::uintmax_t>(info.st_size) > cap)
        return ERROR_FILE_TOO_LARGE;
    return S_OK;
}

bool IsRefusal(Result why)
{
    return why == ERROR_DIRECTORY || why == ERROR_BAD_FILE_TYPE || why == ERROR_FILE_TOO_LARGE;
}

} // namespace

int OpenOrdinaryFile(const std::string& path, std::size_t cap, Result& why)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        why = errno == ENOENT ? ERROR_FILE_NOT_FOUND : (errno == EISDIR ? ERROR_DIRECTORY : ERROR_READ_FAULT);
        return -1;
    }
    struct stat info {};
    why = ::fstat(fd, &info) == 0 ? WhyNotOrdinary(info, cap) : ERROR_READ_FAULT;
    if (why != S_OK) {
        ::close(fd);
        return -1;
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return fd;
}

bool IsReadableFile(const std::string& path, std::size_t cap)
{
    Result why = S_OK;
    const int fd = OpenOrdinaryFile(path, cap, why);
    if (fd < 0) {
        SayNotRead(path, why);
        return false;
    }
    ::close(fd);
    return true;
}

void SayNotRead(const std::string& path, Result why)
{
    if (IsRefusal(why))
        PrintError("not reading " + path + ": " + FileProblemText(why));
}

std::optional<std::vector<std::uint8_t>> ReadFileAtMost(const std::string& path, std::size_t limit, Result* why)
{
    Result refused = S_OK;
    const int fd = OpenOrdinaryFile(path, limit, refused);
    if (why)
        *why = refused;
    if (fd < 0)
        return std::nullopt;
    // The file may still grow while it is read: the limit holds all the same.
    std::vector<std::uint8_t> bytes;
    std::uint8_t chunk[ReadChunkBytes];
    while (bytes.size() < limit) {
        const ssize_t got = ::read(fd, chunk, std::min(sizeof chunk, limit - bytes.size()));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        bytes.insert(bytes.end(), chunk, chunk + got);
    }
    ::close(fd);
    return bytes;
}

} // namespace Platform
