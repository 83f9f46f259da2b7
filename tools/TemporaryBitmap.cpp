#include "tools/TemporaryBitmap.h"

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

namespace tool {
namespace {

bool WriteAll(int file, std::span<const char> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return false;
        bytes = bytes.subspan(static_cast<size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

} // namespace

TemporaryBitmap::TemporaryBitmap(const Picture &picture, int firstRow, int rows)
    : file(memfd_create("picture", MFD_CLOEXEC)) {
    const bool isWritten =
        file.Get() != -1 && picture.WriteBitmap(firstRow, rows, [this](std::span<const char> bytes) {
            return WriteAll(file.Get(), bytes);
        });
    if (!isWritten)
        throw std::system_error(errno, std::generic_category(), "no temporary bitmap file");
}

Text TemporaryBitmap::Name() const {
    const std::string name = "/proc/self/fd/" + std::to_string(file.Get());
    return Text(name.begin(), name.end());
}

} // namespace tool
