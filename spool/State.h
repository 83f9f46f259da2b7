#pragma once

#include "platform/SerialPort.h"
#include "platform/Socket.h"
#include "platform/Threads.h"
#include "spool/TrackedBuffer.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

// Every variable that is one for the process, with its initial value and who writes it. What two threads
// touch while a link is open is a word-sized atomic, read and written relaxed: the threads and the host may
// see each other's flags late, which the pauses of both allow for. Nothing is destroyed at exit: a host may
// exit with the link open and the threads running.
namespace nadrel {

inline constexpr int32_t kSpoolCapacity = 409600;
inline constexpr int32_t kSpoolMargin = 4096;

inline constexpr int32_t kResponseCapacity = 1024;
inline constexpr int32_t kCardDataCapacity = 2048;

using SpoolStorage = TrackedBuffer<kSpoolCapacity, kSpoolMargin>;

// A zero stands behind the last of the capacity, whatever a conversion fills. The storage itself stays, so
// that a notification handler that closes the link takes nothing away under a call that is converting text.
using ConversionStorage = TrackedBuffer<kSpoolCapacity, 1>;

class ReceiveRing;
class MySocket;

template <typename T>
class SharedWord {
  public:
    constexpr SharedWord(T initial) : value(initial) {}
    operator T() const { return value.load(std::memory_order_relaxed); }
    void operator=(T next) { value.store(next, std::memory_order_relaxed); }
    // Sets the value and tells the one before; of two threads that ask, one sees it.
    T Exchange(T next) { return value.exchange(next); }
    void Add(T amount) { value.fetch_add(amount); }
    // In one order with Exchange and Add: of a call that announces itself and then looks whether the link is
    // open, and a close that takes the flag and then looks for calls, one sees the other.
    T Acquire() const { return value.load(); }

  private:
    std::atomic<T> value;
    static_assert(std::atomic<T>::is_always_lock_free);
};

using SharedFlag = SharedWord<int32_t>;

// The large ones, defined in State.cpp: on Windows, what a header defines takes room in the library's file,
// zeros too. Hidden, so that the library reaches them without asking a table where they are.
struct [[gnu::visibility("hidden")]] LargeBuffers {
    static SpoolStorage spool;
    static SpoolStorage frame;
    static ConversionStorage conversion;
};

// Spool: the host thread alone.

// Commands waiting to be sent, all zero.
inline constexpr SpoolStorage &SpoolBuffer = LargeBuffers::spool;
// Where the next command goes.
inline constinit int32_t SpoolLength = 0;
// What PrintSpool assembles for one transmission, all zero.
inline constexpr SpoolStorage &FrameBuffer = LargeBuffers::frame;
// What ConversionBuffer points to while there is one.
inline constexpr ConversionStorage &ConversionStore = LargeBuffers::conversion;
// The output of U2A, while a link is open.
inline constinit SharedWord<ConversionStorage *> ConversionBuffer = nullptr;
// 1 between SetPageMode and the return to standard mode.
inline constinit int32_t PageModeFlag = 0;
// The spool length that SetMarco_Start found.
inline constinit int32_t MacroStartMark = 0;

// Link: written by the host thread, read by the receive and parser threads too.

inline constinit SharedFlag SerialLinkOpen = 0;
inline constinit SharedWord<platform::PortHandle> SerialPortHandle = platform::kInvalidPort;
inline constinit SharedFlag WirelessLinkOpen = 0;
inline constinit SharedWord<platform::SocketHandle> LinkSocket = 0;
inline constinit SharedFlag FramedMode = 0;
inline constinit SharedWord<uint32_t> NotifyMessageId = 0;
// Set before the parser thread starts.
inline constinit SharedWord<platform::Thread *> ReceiveThreadObject = nullptr;
inline constinit SharedWord<platform::Thread *> ParserThreadObject = nullptr;
// Set before both threads start, taken away after both have ended.
inline constinit ReceiveRing *ReceiveQueue = nullptr;

// Link: the host thread, or a notification handler that calls in its place.

// From a wireless connect to the close.
inline constinit SharedWord<MySocket *> WirelessSocket = nullptr;
// Of the last operation on the link that the system refused.
inline constinit SharedWord<uint32_t> LastLinkError = 0;
// Calls that hold the spool or the link while they send.
inline constinit SharedFlag SendingCalls = 0;
// While a link is being closed, by whichever thread: no link is opened then.
inline constinit SharedFlag LinkClosing = 0;

// Receive side.

// Host and receive thread; the parser thread ends at 0.
inline constinit SharedFlag ReceiveThreadRunning = 1;
// Parser sets; host clears at connect and close.
inline constinit SharedFlag FramedStatusSeen = 0;
// Host sets, parser clears.
inline constinit SharedFlag ModelNamePending = 0;
inline constinit SharedFlag StatusPending = 0;
inline constinit SharedFlag FirmwarePending = 0;
// Host sets and clears, parser clears.
inline constinit SharedFlag PrintOutStatusArmed = 0;
// Parser; host clears at connect and close.
inline constinit SharedFlag ResponseLength = 0;
// Host arms it; receive thread: the first byte since. A byte FF leaves it armed.
inline constexpr uint8_t kCaptureArmed = 0xFF;
inline constinit SharedWord<uint8_t> StatusCaptureByte = 0;
// Receive thread: its one byte from a serial port.
inline constinit uint8_t ReadByte = 0;
// Parser; hosts read them when told.
inline constinit std::atomic<uint8_t> ResponseBuffer[kResponseCapacity] = {};
inline constinit std::atomic<uint8_t> CardDataBuffer[kCardDataCapacity] = {};

// What became of the bytes since the last connect; what the link report tells. A host that sends, the receive
// thread and the parser thread each count their own.
struct LinkCounters {
    SharedWord<size_t> bytesAsked = 0;
    SharedWord<size_t> bytesTaken = 0;
    SharedWord<uint32_t> lastError = 0;
    SharedWord<uint32_t> errorCount = 0;
    SharedWord<size_t> bytesReceived = 0;
    SharedWord<size_t> bytesDropped = 0;
    SharedWord<uint32_t> notificationsPosted = 0;
};
inline constinit LinkCounters Counters;

// Whether either link is open.
inline bool LinkIsOpen() {
    return SerialLinkOpen.Acquire() != 0 || WirelessLinkOpen.Acquire() != 0;
}

// Whether a connect has to be refused: a link is open, or is still being closed by another thread.
inline bool LinkIsTaken() {
    return LinkIsOpen() || LinkClosing.Acquire() != 0;
}

// Puts the link, the spool and the receive side back to their initial values. FramedMode, LastLinkError,
// ConversionBuffer, the ring and the thread objects are left as they are.
void ResetLinkState();

// Starts the counters anew; at each connect.
void ResetCounters();

} // namespace nadrel
