#pragma once
#include "platform/Types.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace Platform {

// Reads the whole file into text. A missing file is created empty (and reads
// as nothing); an existing one is never changed. Other programs may read and
// write the file meanwhile.
Result ReadFileCreating(const std::string& path, std::string& text);

// Gives the file at path these contents, as creating it anew would, and
// safely. A symbolic link is followed: its target gets the contents and the
// link stays. A file that cannot be written (read-only, or on a read-only
// disk) is left alone. The new contents go to a temporary file beside the
// file, reach the disk and are renamed over it, so a crash at any point
// leaves the old file or the new one. Only where no temporary file can be made
// but the file itself may be written, or where the file has other names too,
// is it overwritten in place.
Result SaveFile(const std::string& path, std::string_view contents);

// Writes all of contents to an open file or pipe, going on after a write a
// signal interrupted. False, with errno set, when it cannot: ENOSPC where
// the file took nothing more.
bool WriteAll(int fd, std::string_view contents);

// Removes the temporary files that saves of path cut short by a crash or a
// kill left beside it. Returns how many it removed.
int RemoveInterruptedSaves(const std::string& path);

// What tells one version of a file from another, to notice that another
// program replaced or changed it. A link is followed.
struct FileStamp {
    bool exists = false;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t changedNs = 0;
    bool operator==(const FileStamp&) const = default;
};
FileStamp StampOf(const std::string& path);

// A short account of a failed save or read, with what the player can do.
std::string FileProblemText(Result code);

// The points a save passes, in order; tests stop a save at each.
enum class SaveStep { TemporaryMade, Written, Flushed, Closed, Renamed };
using SaveStepHook = std::function<void(SaveStep)>;
void SetSaveStepHook(SaveStepHook hook);

// What writes bytes to an open file; tests replace it to make a write fail
// part-way. Returns the bytes written, or -1 with errno set. Null restores
// the system's write.
using FileWriteHandler = std::function<long(int fd, const void* data, std::size_t size)>;
void SetFileWriteHandler(FileWriteHandler handler);

} // namespace Platform
