#include "spool/State.h"

namespace nadrel {

constinit SpoolStorage LargeBuffers::spool;
constinit SpoolStorage LargeBuffers::frame;
constinit ConversionStorage LargeBuffers::conversion;

void ResetLinkState() {
    SerialPortHandle = platform::kInvalidPort;
    SpoolBuffer.Clear();
    FrameBuffer.Clear();
    SpoolLength = 0;
    SerialLinkOpen = 0;
    WirelessLinkOpen = 0;
    ReadByte = 0;
    ResponseLength = 0;
    FramedStatusSeen = 0;
    ModelNamePending = 0;
    PageModeFlag = 0;
    MacroStartMark = 0;
    StatusPending = 0;
    FirmwarePending = 0;
    ReceiveThreadRunning = 1; // set, not cleared: the threads that start next must find it so
    LinkSocket = 0;
    PrintOutStatusArmed = 0;
}

void ResetCounters() {
    Counters.bytesAsked = 0;
    Counters.bytesTaken = 0;
    Counters.lastError = 0;
    Counters.errorCount = 0;
    Counters.bytesReceived = 0;
    Counters.bytesDropped = 0;
    Counters.notificationsPosted = 0;
}

} // namespace nadrel
