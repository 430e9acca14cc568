#pragma once
#include "platform/Types.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace Platform {

// Reads the whole file into text. A missing file is created empty (and reads
// as nothing); an existing one is never changed. Other programs may read and
// write the file meanwhile.
Result ReadFileCreating(const std::string& path, std::string& text);

// Replaces the file's contents as one step: the new contents go to a temporary
// file in the same folder, reach the disk, and are then renamed over the old
// file. A crash or a failure at any point leaves either the old file or the
// new one, never a mixture; a failure also removes the temporary file.
Result ReplaceFile(const std::string& path, std::string_view contents);

// What writes bytes to an open file; tests replace it to make a write fail
// part-way. Returns the bytes written, or -1 with errno set. Null restores
// the system's write.
using FileWriteHandler = std::function<long(int fd, const void* data, std::size_t size)>;
void SetFileWriteHandler(FileWriteHandler handler);

} // namespace Platform
