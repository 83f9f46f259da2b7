#include "platform/windows/FileName.h"

#include "platform/windows/System.h"
#include "platform/windows/WideText.h"

#include <cwchar>
#include <cwctype>
#include <string>

namespace platform {

namespace {

// From the root on, as the system reads it: COM1 is \\.\COM1. Empty when there is none.
std::wstring FullName(const wchar_t *name) {
    std::wstring full(GetFullPathNameW(name, 0, nullptr, nullptr), L'\0');
    const DWORD length = GetFullPathNameW(name, static_cast<DWORD>(full.size()), full.data(), nullptr);
    full.resize(length < full.size() ? length : 0);
    return full;
}

// Names that the system is to take as they stand have this in front.
std::wstring WithoutMark(const std::wstring &full) {
    const std::wstring mark = L"\\\\?\\";
    const std::wstring remote = mark + L"UNC\\";
    if (full.starts_with(remote))
        return L"\\\\" + full.substr(remote.size());
    return full.starts_with(mark) ? full.substr(mark.size()) : full;
}

bool IsOnADrive(const std::wstring &name) {
    return name.size() >= 3 && std::iswalpha(name[0]) && name[1] == L':' && name[2] == L'\\';
}

// Volume{GUID}\..., how the system names what is on a drive without a letter.
bool IsOnAVolume(const std::wstring &name) {
    const std::wstring mark = L"Volume{";
    const size_t end = mark.size() + 36;
    return name.size() >= end + 2 && _wcsnicmp(name.c_str(), mark.c_str(), mark.size()) == 0 &&
           name.compare(end, 2, L"}\\") == 0;
}

// \\machine\share\...; the machine . or ? is the list of this one's devices.
bool IsOnAShare(const std::wstring &name) {
    const size_t behindMachine = name.starts_with(L"\\\\") ? name.find(L'\\', 2) : std::wstring::npos;
    if (behindMachine == std::wstring::npos)
        return false;
    const std::wstring machine = name.substr(2, behindMachine - 2);
    const std::wstring share =
        name.substr(behindMachine + 1, name.find(L'\\', behindMachine + 1) - behindMachine - 1);
    return machine != L"." && machine != L"?" && _wcsicmp(share.c_str(), L"pipe") != 0 &&
           _wcsicmp(share.c_str(), L"mailslot") != 0;
}

} // namespace

bool NamesAFile(const char16_t *name) {
    if (name == nullptr)
        return false;
    const std::wstring full = WithoutMark(FullName(Wide(name)));
    return IsOnADrive(full) || IsOnAVolume(full) || IsOnAShare(full);
}

} // namespace platform
