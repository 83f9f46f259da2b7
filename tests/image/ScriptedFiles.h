#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Files of tests, in memory: what is asked of them is recorded, and a call fails when a test wants it to.
namespace scripted {

using FileBytes = std::vector<uint8_t>;

class Files {
  public:
    // No files, nothing open, nothing recorded, nothing to fail.
    void Reset();

    void Put(const std::u16string &name, const FileBytes &bytes) { contents[name] = bytes; }
    // The bytes that a file of that name holds; none when there is no such file.
    FileBytes Held(const std::u16string &name) const;

    // Open("a.bmp", read), Size, Read(54, 100), Write(14), Close.
    const std::vector<std::string> &Calls() const { return calls; }
    int StillOpen() const { return stillOpen; }

    // The nth call from now that can fail does.
    void Fail(int nth) { FailNth(nth, false); }
    // The same, and all behind it where `onward`.
    void FailNth(int nth, bool onward);
    int Failures() const { return failures; } // since then
    // The nth Read from now gives so many bytes less than it could.
    void ShortRead(int nth, uint32_t missing);
    // Files of any name cannot be made.
    void RefuseToMake() { makes = false; }

    // For the implementation of the contract.
    bool Enter(const std::string &call);
    intptr_t Open(const std::u16string &name, bool anew);
    FileBytes *OpenFile(intptr_t handle);
    void Close(intptr_t handle);
    uint32_t Missing();

  private:
    std::map<std::u16string, FileBytes> contents;
    std::map<intptr_t, std::u16string> open;
    std::vector<std::string> calls;
    intptr_t nextHandle = 3;
    int stillOpen = 0;
    int failIn = 0;
    bool failsOnward = false;
    int failures = 0;
    int shortIn = 0;
    uint32_t shortBy = 0;
    bool makes = true;
};

Files &TheFiles();

} // namespace scripted
