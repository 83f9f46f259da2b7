#pragma once

#include "platform/SerialPort.h"
#include "platform/Socket.h"
#include "platform/Threads.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

// An operating system of tests: it records what is asked of it, answers as a test has scripted, and its clock
// moves only when somebody pauses, so that no test waits. One for the process; any thread may call it.
namespace scripted {

using Bytes = std::vector<uint8_t>;
using Hook = std::function<void()>;

// Leaves a thread body where a terminated thread leaves.
struct ThreadTerminated {};

// A notification as it was posted, with what stood in the buffer at that moment. A value up to 255 is no
// address.
struct Notification {
    uint32_t message = 0;
    uint32_t wParam = 0;
    intptr_t lParam = 0;
    Bytes bytes;

    uint32_t Kind() const { return wParam >> 16; }
    uint32_t Length() const { return wParam & 0xFFFF; }
};

// What a call is to answer instead of success.
struct Outcome {
    bool failed = false;
    uint32_t error = 0;                 // for LastError
    std::optional<int32_t> result = {}; // of an operation with a number for a result
    std::optional<uint32_t> taken = {}; // of a write: as many bytes and no more
    std::optional<bool> writable = {};  // of SelectWritable
};

class Platform {
  public:
    // Back to a system in which nothing has happened.
    void Reset();

    // What was asked for, in order: OpenPort("COM1", 0x80), Sleep(400), WritePort(3, 00 C0 51 C1).
    std::vector<std::string> Calls() const;
    std::vector<std::string> CallsOf(const std::vector<std::string> &operations) const;
    size_t CountOf(const std::string &operation) const;
    void ForgetCalls();
    void StopRecording(); // for threads that pause without end

    // Scripts the nth call from now of an operation, without its arguments: Fail("OpenPort", 5).
    void Fail(const std::string &operation, uint32_t error, int nth = 1);
    void FailAlways(const std::string &operation, uint32_t error);
    void FailCall(int nth, uint32_t error);     // the nth from now of all calls that can fail
    void FailFromCall(int nth, uint32_t error); // and all behind it
    // The calls that have failed by script, each with its number among those of its name: OpenPort 2.
    std::vector<std::string> Failed() const;
    void Answer(const std::string &operation, const Outcome &outcome, int nth = 1);
    void ForgetScript();
    // What was scripted, hooks and times to come included, and has not happened.
    std::vector<std::string> UnusedScript() const;

    // Runs at the nth call from now, after it is recorded and before it does anything: a pause has not begun,
    // a write has not gone out.
    void OnCall(const std::string &operation, Hook hook, int nth = 1);
    void OnEveryCall(const std::string &operation, Hook hook);

    // The virtual clock, in milliseconds since Reset.
    uint64_t Now() const;
    void After(uint64_t milliseconds, Hook hook); // from now; runs within the pause that reaches it

    // What the printer does. Over TCP each call is one segment.
    void PrinterSends(const Bytes &bytes, uint64_t afterMs = 0);
    void PrinterHangsUp(uint64_t afterMs = 0);

    // Runs a thread's body on the calling thread until it returns or so much virtual time has passed: its
    // exit code, or none when it was still running.
    std::optional<uint32_t> RunThread(platform::ThreadBody body, uint64_t milliseconds);

    // What was posted, and what was written to port or socket, one entry a call.
    std::vector<Notification> Notifications() const;
    std::vector<Bytes> Written() const;
    std::vector<std::string> Messages() const; // shown to the user

    std::vector<platform::ThreadBody> StartedThreads() const;
    void EndThread(size_t started, uint32_t exitCode); // the body has returned; 0 is the thread started first

    // What is not given back.
    int OpenPorts() const;
    int OpenSockets() const;
    int LiveThreads() const;
    int SocketSupport() const; // starts less stops

    // What the library has been given of what the printer sent, in bytes.
    size_t Delivered() const;

    // What IOCtl gives when it fails: -1 or 0.
    int32_t failedIOCtl = -1;

    // The number of the next port or socket handle; from 3 on after Reset.
    void SetNextHandle(intptr_t handle);
    // What the next port opened has before it is configured.
    platform::LineSettings lineSettings;
    platform::PortTimeouts portTimeouts;
    platform::LineSettings LineSettingsOf(platform::PortHandle port) const;

    // For the implementations of the contracts.
    struct Port {
        std::string name = {};
        bool open = true;
        platform::PortEvents events = platform::PortEvents::none;
        platform::LineSettings settings = {};
        platform::PortTimeouts timeouts = {};
    };
    void Note(const std::string &operation, const std::string &arguments);     // cannot fail
    Outcome Enter(const std::string &operation, const std::string &arguments); // can
    void Pause(uint64_t milliseconds);
    Outcome EnterPort(const std::string &operation, platform::PortHandle port,
                      const std::string &arguments = "");
    platform::PortHandle AddPort(const std::string &name);
    void ChangePort(platform::PortHandle port, const std::function<void(Port &)> &change);
    Port PortAt(platform::PortHandle port) const;
    bool WaitForPort(platform::PortHandle port); // until input or release; whether there is input
    bool TakeByte(uint8_t &byte);
    platform::SocketHandle AddSocket(); // -1 while there is no socket support
    bool SocketIsOpen(platform::SocketHandle socket) const;
    void RefuseSocket(platform::SocketHandle socket, bool refused); // by the printer, until the next connect
    bool SocketIsRefused(platform::SocketHandle socket) const;
    void RemoveSocket(platform::SocketHandle socket);
    Bytes WaitForSegment(platform::SocketHandle socket, size_t atMost); // empty when hung up
    void StartSupport(bool fails);
    void StopSupport();
    void AddWritten(const Bytes &bytes);
    void AddNotification(const Notification &notification);
    void AddMessage(const std::string &text);
    platform::Thread *AddThread(platform::ThreadBody body);

  private:
    // When something scripted happens.
    struct Occasion {
        std::string operation = {}; // empty: any
        int nth = 1;                // counted down at each call; -1: at every call
        bool onward = false;        // once it has come, it comes at every call
        bool used = false;
        bool Comes(const std::string &called);
    };
    struct Rule {
        Occasion occasion = {};
        Outcome outcome = {};
    };
    struct CallHook {
        Occasion occasion = {};
        Hook hook = {};
    };

    struct Socket {
        bool open = false;
        bool refused = false;
    };

    using Lock = std::lock_guard<std::mutex>;

    std::vector<Hook> HooksFor(const std::string &operation);
    size_t RecordedOf(const std::string &operation) const; // under the lock
    bool NextActionBy(uint64_t time, Hook &hook);
    bool AdvanceToNextAction();
    void RunActionsUntil(uint64_t time);

    mutable std::mutex mutex;
    bool recording = true;
    std::vector<std::pair<std::string, std::string>> calls; // operation, whole call
    std::vector<std::string> failed;
    std::vector<Rule> rules;
    std::vector<CallHook> hooks;
    std::multimap<uint64_t, Hook> actions;
    uint64_t now = 0;
    intptr_t nextHandle = 3;
    std::map<platform::PortHandle, Port> ports;
    std::map<platform::SocketHandle, Socket> sockets;
    int socketSupport = 0;
    int failedSupport = 0; // of those
    std::deque<Bytes> input;
    size_t delivered = 0;
    bool hungUp = false;
    std::vector<Bytes> written;
    std::vector<Notification> notifications;
    std::vector<std::string> messages;
    std::deque<platform::Thread *> threads;
};

// While one exists, the thread that made it is in a notification handler.
class WithinHandler {
  public:
    WithinHandler();
    ~WithinHandler();
    WithinHandler(const WithinHandler &) = delete;
    WithinHandler &operator=(const WithinHandler &) = delete;
};

// The one that the library runs on.
Platform &TheSystem();

// The error of every call on a handle that is not open.
inline constexpr uint32_t kBadHandle = 9;

std::string ToHex(const uint8_t *bytes, size_t count);             // 00 C0 51 C1
std::string Quoted(const char16_t *text);                          // "COM1", or null
std::string Joined(intptr_t handle, const std::string &arguments); // 3, COM1; or 3

} // namespace scripted
