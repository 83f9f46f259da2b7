#pragma once

#include <cstddef>

// Memory that runs out when a test wants it to.
namespace scripted::allocation {

// False where the sanitizer's runtime insists on its own operator new; no allocation can be made to fail
// then.
bool CanFail();

// The next allocation of a size within the range, by the calling thread, fails.
void FailNext(size_t atLeast, size_t atMost);
// The nth one does, counted from 1, and all behind it where `onward`.
void FailNth(int nth, size_t atLeast, size_t atMost, bool onward = false);

// How many have failed since, and the bytes that the first of them was to have; 0 while none has.
int Failures();
size_t FirstFailure();

// No allocation fails. True when none has that was to.
bool Allow();

// While one exists, the calling thread's allocations are not the library's: none counts and none fails.
class Exempt {
  public:
    Exempt();
    ~Exempt();
    Exempt(const Exempt &) = delete;
    Exempt &operator=(const Exempt &) = delete;
};

// While one exists, they are the library's again: the system runs a thread of it.
class Counted {
  public:
    Counted();
    ~Counted();
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;

  private:
    int exempted;
};

} // namespace scripted::allocation

namespace nadrel {
namespace allocation = scripted::allocation;
}
