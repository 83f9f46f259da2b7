#include "platform/File.h"

#include "platform/linux/Descriptor.h"
#include "platform/linux/LastError.h"
#include "platform/linux/SystemText.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

// Without O_NONBLOCK a pipe under the name would hold the caller.
constexpr int kReadFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr int kRewriteFlags = O_RDWR | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

bool IsRegular(int descriptor) {
    struct stat status;
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

// Calls `transfer(done)`, which moves what it can of the rest and tells how much, until all is moved or
// nothing more comes. Gives what was moved, or -1.
template <typename Transfer>
ssize_t TransferAll(uint32_t count, Transfer transfer) {
    uint32_t done = 0;
    while (done < count) {
        const ssize_t moved = Uninterrupted([&] { return transfer(done); });
        if (moved < 0)
            return -1;
        if (moved == 0)
            break;
        done += static_cast<uint32_t>(moved);
    }
    return done;
}

// Opening alone can do something to a device, or let go a program that waits at the other end of a pipe.
bool MayOpen(const std::string &path, FileUse use) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return use == FileUse::rewrite && errno == ENOENT;
    errno = EINVAL;
    return S_ISREG(status.st_mode);
}

} // namespace

File::~File() {
    Close();
}

bool File::Open(const char16_t *name, FileUse use) {
    Close();
    const std::string path = ToSystemText(name);
    if (!MayOpen(path, use))
        return Fail(errno);
    const int flags = use == FileUse::read ? kReadFlags : kRewriteFlags;
    const int descriptor = Uninterrupted([&] { return open(path.c_str(), flags, 0666); });
    if (descriptor < 0)
        return Fail(errno);
    handle = descriptor;
    const bool usable = IsRegular(descriptor) && (use == FileUse::read || ftruncate(descriptor, 0) == 0);
    if (!usable)
        Close();
    return usable || Fail(EINVAL);
}

bool File::Size(uint64_t &bytes) const {
    struct stat status;
    if (fstat(static_cast<int>(handle), &status) != 0)
        return Fail(errno);
    bytes = static_cast<uint64_t>(status.st_size);
    return true;
}

bool File::Read(uint64_t place, uint8_t *bytes, uint32_t count, uint32_t &got) const {
    const ssize_t taken = TransferAll(count, [&](uint32_t done) {
        return pread(static_cast<int>(handle), bytes + done, count - done, static_cast<off_t>(place + done));
    });
    got = taken < 0 ? 0 : static_cast<uint32_t>(taken);
    return taken >= 0 || Fail(errno);
}

bool File::Write(const uint8_t *bytes, uint32_t count) {
    const ssize_t written = TransferAll(
        count, [&](uint32_t done) { return write(static_cast<int>(handle), bytes + done, count - done); });
    return written == static_cast<ssize_t>(count) || Fail(written < 0 ? errno : ENOSPC);
}

void File::Close() {
    if (handle >= 0)
        close(static_cast<int>(std::exchange(handle, -1)));
}

} // namespace platform
