#include "platform/FileStore.h"

#include "platform/FileBytes.h"

#include <cerrno>
#include <cstdint>
#include <csignal>
#include <filesystem>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Platform {

namespace {

namespace fs = std::filesystem;

// The game reads its small text files a short piece at a time.
constexpr std::size_t ReadChunk = 99;
// How many links a save follows before it takes the chain for a loop.
constexpr int MaxLinkHops = 40;
constexpr std::string_view TemporarySuffix = ".tmp";

FileWriteHandler& writeHandler()
{
    static FileWriteHandler handler;
    return handler;
}

SaveStepHook& stepHook()
{
    static SaveStepHook hook;
    return hook;
}

void Reached(SaveStep step)
{
    if (auto& hook = stepHook())
        hook(step);
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
    case ENOTDIR: return ERROR_BAD_PATHNAME;
    case EISDIR: return ERROR_DIRECTORY;
    case ENXIO: return ERROR_BAD_FILE_TYPE; // a pipe nobody reads
    case EACCES:
    case EPERM:
    case ELOOP: return ERROR_ACCESS_DENIED;
    case EROFS: return ERROR_WRITE_PROTECT;
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

Result ReadAll(int fd, std::string& text, std::size_t cap = SIZE_MAX)
{
    char chunk[ReadChunk];
    for (;;) {
        if (text.size() > cap) {
            text.clear();
            return ERROR_FILE_TOO_LARGE;
        }
        const ssize_t got = ::read(fd, chunk, sizeof chunk);
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

std::string FolderOf(const std::string& path)
{
    const std::string folder = fs::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

// The file a save changes: path itself, or the end of its chain of links.
std::string SaveTarget(const std::string& path)
{
    fs::path target = path;
    for (int hop = 0; hop < MaxLinkHops; ++hop) {
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(target, error)))
            break;
        const fs::path link = fs::read_symlink(target, error);
        if (error)
            break;
        target = link.is_absolute() ? link : target.parent_path() / link;
    }
    return target.string();
}

std::string TemporaryName(const std::string& target)
{
    return target + "." + std::to_string(::getpid()) + std::string(TemporarySuffix);
}

// Makes the rename itself last through a power cut.
void SyncFolder(const std::string& folder)
{
    CFileHandle dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.IsOpen())
        ::fsync(dir.Get());
}

// The last way to save: write over the file itself. Should the write fail part
// way, the old contents, which fitted before, are put back.
Result OverwriteInPlace(const std::string& target, std::string_view contents)
{
    CFileHandle file(::open(target.c_str(), O_RDWR | O_CLOEXEC));
    if (!file.IsOpen())
        return ResultFromErrno(errno, ERROR_WRITE_FAULT);
    std::string old;
    if (ReadAll(file.Get(), old) != S_OK)
        return ERROR_READ_FAULT;
    const auto rewrite = [&](std::string_view text) {
        return ::lseek(file.Get(), 0, SEEK_SET) == 0 && WriteAll(file.Get(), text) &&
               ::ftruncate(file.Get(), static_cast<off_t>(text.size())) == 0;
    };
    if (!rewrite(contents)) {
        const int error = errno;
        rewrite(old);
        return ResultFromErrno(error, ERROR_WRITE_FAULT);
    }
    if (::fsync(file.Get()) != 0 || !file.Close())
        return ResultFromErrno(errno, ERROR_WRITE_FAULT);
    return S_OK;
}

// Gives up a replacement: the old file stays as it was.
Result Abandon(const std::string& temporary, int error)
{
    ::unlink(temporary.c_str());
    return ResultFromErrno(error, ERROR_WRITE_FAULT);
}

bool IsAlive(pid_t pid)
{
    return ::kill(pid, 0) == 0 || errno != ESRCH;
}

} // namespace

Result ReadFileCreating(const std::string& path, std::string& text)
{
    text.clear();
    // Not blocking: a pipe or a device of that name is refused, never waited on.
    CFileHandle file(::open(path.c_str(), O_RDONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666));
    if (!file.IsOpen())
        return ResultFromErrno(errno, ERROR_FILE_NOT_FOUND);
    struct stat info {};
    if (::fstat(file.Get(), &info) != 0)
        return ERROR_READ_FAULT;
    if (!S_ISREG(info.st_mode))
        return ERROR_BAD_FILE_TYPE;
    if (static_cast<std::uintmax_t>(info.st_size) > MaxTextFileBytes)
        return ERROR_FILE_TOO_LARGE;
    return ReadAll(file.Get(), text, MaxTextFileBytes);
}

Result SaveFile(const std::string& path, std::string_view contents)
{
    const std::string target = SaveTarget(path);

    // Asking to write without changing anything tells whether the file may be
    // written at all; a read-only file keeps its contents. (Not blocking keeps
    // a pipe of that name from holding the game up.)
    struct stat old {};
    bool exists = false;
    {
        CFileHandle probe(::open(target.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
        if (probe.IsOpen())
            exists = ::fstat(probe.Get(), &old) == 0;
        else if (errno == EACCES || errno == EPERM)
            return ERROR_FILE_READ_ONLY;
        else if (errno != ENOENT)
            return ResultFromErrno(errno, ERROR_WRITE_FAULT);
    }
    if (exists && !S_ISREG(old.st_mode))
        return S_ISDIR(old.st_mode) ? ERROR_DIRECTORY : ERROR_BAD_FILE_TYPE;
    // Renaming would part a file from its other names; they all get the contents.
    if (exists && old.st_nlink > 1)
        return OverwriteInPlace(target, contents);

    const std::string temporary = TemporaryName(target);
    CFileHandle file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file.IsOpen()) {
        if (exists)
            return OverwriteInPlace(target, contents);
        return ResultFromErrno(errno, ERROR_WRITE_FAULT);
    }
    Reached(SaveStep::TemporaryMade);

    // The new file keeps the owner and permissions the player gave the old one.
    if (exists) {
        if (::fchown(file.Get(), old.st_uid, old.st_gid) != 0) {
            // Only the owner's own group can be kept by an ordinary player.
        }
        ::fchmod(file.Get(), old.st_mode & 07777);
    }

    if (!WriteAll(file.Get(), contents))
        return Abandon(temporary, errno);
    Reached(SaveStep::Written);
    if (::fsync(file.Get()) != 0)
        return Abandon(temporary, errno);
    Reached(SaveStep::Flushed);
    if (!file.Close())
        return Abandon(temporary, errno);
    Reached(SaveStep::Closed);
    if (::rename(temporary.c_str(), target.c_str()) != 0)
        return Abandon(temporary, errno);
    Reached(SaveStep::Renamed);
    SyncFolder(FolderOf(target));
    return S_OK;
}

int RemoveInterruptedSaves(const std::string& path)
{
    const fs::path target = SaveTarget(path);
    const std::string prefix = target.filename().string() + ".";
    std::error_code error;
    int removed = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(FolderOf(target.string()), error)) {
        const std::string name = entry.path().filename().string();
        if (name.size() <= prefix.size() + TemporarySuffix.size() || !name.starts_with(prefix) ||
            !name.ends_with(TemporarySuffix))
            continue;
        const std::string pid = name.substr(prefix.size(), name.size() - prefix.size() - TemporarySuffix.size());
        if (pid.find_first_not_of("0123456789") != std::string::npos || pid.size() > 9)
            continue;
        // A save still under way, in another folder's game sharing this file, is left to finish.
        if (IsAlive(static_cast<pid_t>(std::stol(pid))))
            continue;
        if (::unlink(entry.path().c_str()) == 0)
            ++removed;
    }
    return removed;
}

FileStamp StampOf(const std::string& path)
{
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return {};
    constexpr std::int64_t NsPerSecond = 1000000000;
    return {true, static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino), info.st_size,
            info.st_mtim.tv_sec * NsPerSecond + info.st_mtim.tv_nsec};
}

std::string FileProblemText(Result code)
{
    switch (code) {
    case ERROR_FILE_READ_ONLY: return "the file is read-only (make it writable to keep your changes)";
    case ERROR_ACCESS_DENIED: return "permission denied (the folder or file must be writable)";
    case ERROR_DIRECTORY: return "it is a folder, not a file";
    case ERROR_BAD_FILE_TYPE: return "it is not an ordinary file (a device, a pipe or a socket)";
    case ERROR_FILE_TOO_LARGE: return "it is far larger than any file of the game's";
    case ERROR_BAD_PATHNAME: return "a part of its path is a file, not a folder";
    case ERROR_WRITE_PROTECT: return "the disk is mounted read-only";
    case ERROR_DISK_FULL: return "the disk is full (free some space)";
    case ERROR_PATH_NOT_FOUND: return "its folder does not exist";
    case ERROR_READ_FAULT: return "it could not be read";
    default: return "the disk refused the write";
    }
}

void SetSaveStepHook(SaveStepHook hook)
{
    stepHook() = std::move(hook);
}

void SetFileWriteHandler(FileWriteHandler handler)
{
    writeHandler() = std::move(handler);
}

bool WriteAll(int fd, std::string_view contents)
{
    while (!contents.empty()) {
        const long written = WriteSome(fd, contents.data(), contents.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            if (written == 0)
                errno = ENOSPC;
            return false;
        }
        contents.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace Platform
