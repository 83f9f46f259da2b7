#pragma once

#include <atomic>

// The output queue of a device's driver, which pseudo-terminals lack: while it exists, `descriptor` answers
// that so many bytes have not been taken, and counts the times it was told to drop them.
class OutputQueue {
  public:
    OutputQueue(int descriptor, int bytes);
    ~OutputQueue();
    OutputQueue(const OutputQueue &) = delete;
    OutputQueue &operator=(const OutputQueue &) = delete;

    void Set(int bytes);
    // The driver does not say how many.
    void Hide();
    int Asked() const;
    int Dropped() const;
};
