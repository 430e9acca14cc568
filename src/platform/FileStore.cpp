#include "platform/FileStore.h"

#include <cerrno>
#include <filesystem>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {

namespace {

// The game reads its small text files a short piece at a time.
constexpr std::size_t ReadChunk = 99;

FileWriteHandler& writeHandler()
{
    static FileWriteHandler handler;
    return handler;
}

long WriteSome(int fd, const void* data, std::size_t size)
{
    if (auto& handler = writeHandler())
        return handler(fd, data, size);
    return ::write(fd, data, size);
}

Result ResultFromErrno(int error, Result otherwise)
{
    switch (error) {
    case ENOENT: return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS: return ERROR_ACCESS_DENIED;
    case ENOSPC:
    case EDQUOT: return ERROR_DISK_FULL;
    default: return otherwise;
    }
}

// Closes a descriptor when it goes out of scope.
class CFileHandle {
public:
    explicit CFileHandle(int descriptor) : fd(descriptor) {}
    CFileHandle(const CFileHandle&) = delete;
    CFileHandle& operator=(const CFileHandle&) = delete;
    ~CFileHandle() { Close(); }
    int Get() const { return fd; }
    bool IsOpen() const { return fd >= 0; }
    // Closing can report a write the system had delayed, so its result counts.
    bool Close()
    {
        if (fd < 0)
            return true;
        const bool closed = ::close(fd) == 0;
        fd = -1;
        return closed;
    }

private:
    int fd;
};

bool WriteAll(int fd, std::string_view contents)
{
    while (!contents.empty()) {
        const long written = WriteSome(fd, contents.data(), contents.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        contents.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string FolderOf(const std::string& path)
{
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

// Gives up a replacement: the old file stays as it was.
Result Abandon(const std::string& temporary, int error)
{
    ::unlink(temporary.c_str());
    return ResultFromErrno(error, ERROR_WRITE_FAULT);
}

// Makes the rename itself last through a power cut.
void SyncFolder(const std::string& folder)
{
    CFileHandle dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.IsOpen())
        ::fsync(dir.Get());
}

} // namespace

Result ReadFileCreating(const std::string& path, std::string& text)
{
    text.clear();
    CFileHandle file(::open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC, 0666));
    if (!file.IsOpen())
        return ResultFromErrno(errno, ERROR_FILE_NOT_FOUND);
    char chunk[ReadChunk];
    for (;;) {
        const ssize_t got = ::read(file.Get(), chunk, sizeof chunk);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            text.clear();
            return ERROR_READ_FAULT;
        }
        text.append(chunk, static_cast<std::size_t>(got));
        if (static_cast<std::size_t>(got) < sizeof chunk)
            return S_OK;
    }
}

Result ReplaceFile(const std::string& path, std::string_view contents)
{
    const std::string temporary = path + "." + std::to_string(::getpid()) + ".tmp";
    CFileHandle file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!file.IsOpen())
        return ResultFromErrno(errno, ERROR_WRITE_FAULT);

    // The new file keeps the permissions the player gave the old one.
    struct stat old;
    if (::stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode))
        ::fchmod(file.Get(), old.st_mode & 07777);

    if (!WriteAll(file.Get(), contents) || ::fsync(file.Get()) != 0 || !file.Close() ||
        ::rename(temporary.c_str(), path.c_str()) != 0)
        return Abandon(temporary, errno);
    SyncFolder(FolderOf(path));
    return S_OK;
}

void SetFileWriteHandler(FileWriteHandler handler)
{
    writeHandler() = std::move(handler);
}

} // namespace Platform
