#pragma once

#include "fuzz/Input.h"
#include "tests/image/PictureTest.h"

#include "link/ReceiveThread.h"
#include "link/ResponseParser.h"

namespace fuzz {

// The library just loaded, on a scripted system with a virtual clock; what it has taken it must have given
// back at the end.
class Library : public nadrel::PictureTest {
  public:
    enum class Recording { off, on };

    explicit Library(Recording recording = Recording::off) {
        GTEST_FLAG_SET(break_on_failure, true);
        if (recording == Recording::off)
            os.StopRecording();
    }
    ~Library() override { os.ForgetScript(); }

    // The printer answers what a framed link is probed with.
    void AnswerProbes() {
        os.OnEveryCall("Sleep", [] { nadrel::FramedStatusSeen = 1; });
    }

    // Both threads of an open link, one after the other.
    void RunThreads(uint64_t milliseconds) {
        if (nadrel::LinkIsOpen() && nadrel::ReceiveThreadObject != nullptr)
            os.RunThread(nadrel::ReceiveThreadBody, milliseconds);
        if (nadrel::LinkIsOpen() && nadrel::ParserThreadObject != nullptr)
            os.RunThread(nadrel::ParserThreadBody, milliseconds);
    }

    scripted::Platform &System() { return os; }
    scripted::Files &Files() { return files; }

    // Ports that no close gives back: they did not take their settings, or would not close.
    void ExpectOpenPorts(int count) { keptPorts = count; }

  private:
    void TestBody() override {}
};

} // namespace fuzz
