#include "platform/File.h"

#include "platform/windows/FileName.h"
#include "platform/windows/LastError.h"
#include "platform/windows/WideText.h"

#include <utility>

namespace platform {

namespace {

HANDLE Of(intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

// Opening alone can do something to a device, or let go a program that waits at the other end of a pipe.
bool MayOpen(const char16_t *name, FileUse use) {
    if (!NamesAFile(name))
        return Fail(ERROR_BAD_FILE_TYPE);
    const DWORD attributes = GetFileAttributesW(Wide(name));
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return use == FileUse::rewrite && GetLastError() == ERROR_FILE_NOT_FOUND;
    return (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0 ||
           Fail(ERROR_BAD_FILE_TYPE);
}

HANDLE OpenNamed(const char16_t *name, FileUse use) {
    const bool reads = use == FileUse::read;
    const DWORD access = reads ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    return CreateFileW(Wide(name), access, 0, nullptr, reads ? OPEN_EXISTING : CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

File::~File() {
    Close();
}

bool File::Open(const char16_t *name, FileUse use) {
    Close();
    if (!MayOpen(name, use))
        return false;
    const HANDLE opened = OpenNamed(name, use);
    handle = reinterpret_cast<intptr_t>(opened);
    if (opened == INVALID_HANDLE_VALUE)
        return false;
    const bool usable = GetFileType(opened) == FILE_TYPE_DISK;
    if (!usable)
        Close();
    return usable || Fail(ERROR_BAD_FILE_TYPE);
}

bool File::Size(uint64_t &bytes) const {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(Of(handle), &size))
        return false;
    bytes = static_cast<uint64_t>(size.QuadPart);
    return true;
}

bool File::Read(uint64_t place, uint8_t *bytes, uint32_t count, uint32_t &got) const {
    LARGE_INTEGER from;
    from.QuadPart = static_cast<int64_t>(place);
    DWORD came = 0;
    got = 0;
    if (!SetFilePointerEx(Of(handle), from, nullptr, FILE_BEGIN) ||
        !ReadFile(Of(handle), bytes, count, &came, nullptr))
        return false;
    got = came;
    return true;
}

bool File::Write(const uint8_t *bytes, uint32_t count) {
    DWORD went = 0;
    return WriteFile(Of(handle), bytes, count, &went, nullptr) && (went == count || Fail(ERROR_DISK_FULL));
}

void File::Close() {
    if (handle != -1)
        CloseHandle(Of(std::exchange(handle, -1)));
}

} // namespace platform
