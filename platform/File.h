#pragma once

#include <cstdint>

namespace platform {

// `read` takes a file that exists and is shared with nobody where the system has such a thing; `rewrite`
// makes it anew, empty.
enum class FileUse { read, rewrite };

// A file on a disk. Nothing else opens, and nothing else is waited for: a directory, a device or a pipe under
// the name is a failure at once. Calls on a file that is not open fail. Calls that fail return false and
// leave the reason in LastError.
class File {
  public:
    File() = default;
    // Closes what is open.
    ~File();
    File(const File &) = delete;
    File &operator=(const File &) = delete;

    // A file that was open is closed first. A null name opens nothing.
    bool Open(const char16_t *name, FileUse use);

    // The bytes the file holds now.
    bool Size(uint64_t &bytes) const;

    // `got` is less than `count` only where the file ends.
    bool Read(uint64_t place, uint8_t *bytes, uint32_t count, uint32_t &got) const;

    // Writes all bytes behind what was written before, or fails.
    bool Write(const uint8_t *bytes, uint32_t count);

    void Close();

  private:
    intptr_t handle = -1;
};

} // namespace platform
