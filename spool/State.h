#pragma once

#include "platform/SerialPort.h"
#include "platform/Socket.h"
#include "platform/Threads.h"
#include "spool/TrackedBuffer.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

// Every variable that is one for the process, with its initial value and who writes it. What two threads touch is a
// word-sized atomic, used relaxed: the threads and the host may see each other's flags late, as hosts have always
// had it. What is destroyed at exit is nothing: a host may exit with the link open and the threads running.
namespace nadrel {

inline constexpr int32_t kSpoolCapacity = 409600;
inline constexpr int32_t kSpoolMargin = 4096;

inline constexpr int32_t kResponseCapacity = 1024;
inline constexpr int32_t kCardDataCapacity = 2048;

using SpoolStorage = TrackedBuffer<kSpoolCapacity, kSpoolMargin>;

// A zero stands behind the last of the capacity, whatever a conversion fills.
using ConversionStorage = TrackedBuffer<kSpoolCapacity, 1>;

class ReceiveRing;
class MySocket;

template <typename T> class SharedWord {
  public:
    constexpr SharedWord(T initial) : value(initial) {}
    operator T() const { return value.load(std::memory_order_relaxed); }
    void operator=(T next) { value.store(next, std::memory_order_relaxed); }
    // Sets the value and tells the one before; of two threads that ask, one sees it.
    T Exchange(T next) { return value.exchange(next, std::memory_order_acq_rel); }
    void Add(T amount) { value.fetch_add(amount, std::memory_order_acq_rel); }
    T Acquire() const { return value.load(std::memory_order_acquire); }

  private:
    std::atomic<T> value;
    static_assert(std::atomic<T>::is_always_lock_free);
};

// Spool: the host thread alone.
inline constinit SpoolStorage SpoolBuffer;              // commands waiting to be sent, all zero
inline constinit int32_t SpoolLength = 0;               // where the next command goes
inline constinit SpoolStorage FrameBuffer;              // what PrintSpool assembles for one transmission, all zero
inline constinit ConversionStorage *ConversionBuffer = nullptr; // the output of U2A, while a link is open
inline constinit int32_t PageModeFlag = 0;              // 1 between SetPageMode and the return to standard mode
inline constinit int32_t MacroStartMark = 0;            // the spool length that SetMarco_Start found

// Link: written by the host thread, read by the receive and parser threads.
inline constinit SharedWord<int32_t> SerialLinkOpen = 0;
inline constinit SharedWord<platform::PortHandle> SerialPortHandle = platform::kInvalidPort;
inline constinit SharedWord<int32_t> WirelessLinkOpen = 0;
inline constinit SharedWord<platform::SocketHandle> LinkSocket = 0;
inline constinit SharedWord<int32_t> FramedMode = 0;
inline constinit SharedWord<uint32_t> NotifyMessageId = 0;
inline constinit SharedWord<platform::Thread *> ReceiveThreadObject = nullptr; // set before the parser thread starts
inline constinit SharedWord<platform::Thread *> ParserThreadObject = nullptr;
inline constinit ReceiveRing *ReceiveQueue = nullptr; // set before both threads start, taken away after both ended
inline constinit MySocket *WirelessSocket = nullptr;

// Link: the host thread, or a notification handler that calls in its place.
inline constinit SharedWord<uint32_t> LastLinkError = 0; // of the last link operation that the system refused
inline constinit SharedWord<int32_t> SendingCalls = 0;   // calls that hold the spool or the link while they send

// Receive side.
inline constinit SharedWord<int32_t> ReceiveThreadRunning = 1; // host and receive thread; the parser ends at 0
inline constinit SharedWord<int32_t> FramedStatusSeen = 0;     // host clears, parser sets
inline constinit SharedWord<int32_t> ModelNamePending = 0;     // host sets, parser clears
inline constinit SharedWord<int32_t> StatusPending = 0;        // host sets, parser clears
inline constinit SharedWord<int32_t> FirmwarePending = 0;      // host sets, parser clears
inline constinit SharedWord<int32_t> PrintOutStatusArmed = 0;  // host sets and clears, parser clears
inline constinit SharedWord<int32_t> ResponseLength = 0;       // parser; host clears at connect and close
inline constinit SharedWord<uint8_t> StatusCaptureByte = 0; // host arms with FF; receive thread: the first byte since
inline constinit uint8_t ReadByte = 0;                      // receive thread: its one byte from a serial port
inline constinit std::atomic<uint8_t> ResponseBuffer[kResponseCapacity] = {}; // parser; hosts read it when told
inline constinit std::atomic<uint8_t> CardDataBuffer[kCardDataCapacity] = {}; // parser; hosts read it when told

// What became of the bytes since the last connect; what the link report tells. A host that sends, the receive thread
// and the parser thread each count their own.
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
inline bool LinkIsOpen() { return SerialLinkOpen != 0 || WirelessLinkOpen != 0; }

// Puts the link, the spool and the receive side back to their initial values. FramedMode, LastLinkError,
// ConversionBuffer, the ring and the thread objects are left as they are.
void ResetLinkState();

// Starts the counters anew; at each connect.
void ResetCounters();

} // namespace nadrel
