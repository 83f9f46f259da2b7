#include "tests/image/ScriptedFiles.h"

#include "platform/File.h"
#include "tests/platform/ScriptedAllocation.h"

#include <algorithm>
#include <utility>

namespace scripted {

namespace {

std::string InCalls(const char16_t *name) {
    std::string text;
    for (; name != nullptr && *name != 0; ++name)
        text += *name < 128 ? static_cast<char>(*name) : '?';
    return '"' + text + '"';
}

} // namespace

Files &TheFiles() {
    static Files files;
    return files;
}

void Files::Reset() {
    *this = Files();
}

FileBytes Files::Held(const std::u16string &name) const {
    const auto found = contents.find(name);
    return found == contents.end() ? FileBytes() : found->second;
}

void Files::ShortRead(int nth, uint32_t missing) {
    shortIn = nth;
    shortBy = missing;
}

void Files::FailNth(int nth, bool onward) {
    failIn = nth;
    failsOnward = onward;
    failures = 0;
}

bool Files::Enter(const std::string &call) {
    calls.push_back(call);
    if (failIn == 0)
        return true;
    const bool fails = failIn == 1;
    if (!fails || !failsOnward)
        --failIn;
    failures += fails ? 1 : 0;
    return !fails;
}

intptr_t Files::Open(const std::u16string &name, bool anew) {
    if (anew ? !makes : contents.find(name) == contents.end())
        return -1;
    if (anew)
        contents[name].clear();
    open[nextHandle] = name;
    ++stillOpen;
    return nextHandle++;
}

FileBytes *Files::OpenFile(intptr_t handle) {
    const auto found = open.find(handle);
    return found == open.end() ? nullptr : &contents[found->second];
}

void Files::Close(intptr_t handle) {
    calls.emplace_back("Close");
    open.erase(handle);
    --stillOpen;
}

uint32_t Files::Missing() {
    return shortIn > 0 && --shortIn == 0 ? shortBy : 0;
}

} // namespace scripted

namespace platform {

using scripted::TheFiles;

File::~File() {
    const scripted::allocation::Exempt own;
    Close();
}

bool File::Open(const char16_t *name, FileUse use) {
    const scripted::allocation::Exempt own;
    Close();
    const bool anew = use == FileUse::rewrite;
    if (!TheFiles().Enter("Open(" + scripted::InCalls(name) + (anew ? ", rewrite)" : ", read)")))
        return false;
    handle = name == nullptr ? -1 : TheFiles().Open(name, anew);
    return handle >= 0;
}

bool File::Size(uint64_t &bytes) const {
    const scripted::allocation::Exempt own;
    const scripted::FileBytes *const held = TheFiles().OpenFile(handle);
    if (!TheFiles().Enter("Size") || held == nullptr)
        return false;
    bytes = held->size();
    return true;
}

bool File::Read(uint64_t place, uint8_t *bytes, uint32_t count, uint32_t &got) const {
    const scripted::allocation::Exempt own;
    got = 0;
    const scripted::FileBytes *const held = TheFiles().OpenFile(handle);
    if (!TheFiles().Enter("Read(" + std::to_string(place) + ", " + std::to_string(count) + ")") ||
        held == nullptr)
        return false;
    const uint64_t from = std::min<uint64_t>(place, held->size());
    got = static_cast<uint32_t>(std::min<uint64_t>(count, held->size() - from));
    got -= std::min(got, TheFiles().Missing());
    std::copy_n(held->begin() + static_cast<ptrdiff_t>(from), got, bytes);
    return true;
}

bool File::Write(const uint8_t *bytes, uint32_t count) {
    const scripted::allocation::Exempt own;
    scripted::FileBytes *const held = TheFiles().OpenFile(handle);
    if (!TheFiles().Enter("Write(" + std::to_string(count) + ")") || held == nullptr)
        return false;
    held->insert(held->end(), bytes, bytes + count);
    return true;
}

void File::Close() {
    const scripted::allocation::Exempt own;
    if (handle >= 0)
        TheFiles().Close(std::exchange(handle, -1));
}

} // namespace platform
