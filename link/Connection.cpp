#include "link/Connection.h"

#include "api/NadrelPrinter.h"
#include "link/Frame.h"
#include "link/MySocket.h"
#include "link/ReceiveRing.h"
#include "link/ReceiveThread.h"
#include "link/ResponseParser.h"
#include "link/Write.h"
#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/Notification.h"
#include "spool/State.h"

#include <new>

namespace nadrel {

namespace {

constexpr int kProbes = 4;
constexpr uint32_t kProbePauseMs = 400;
constexpr uint32_t kReleasePauseMs = 10;

// Both threads are ended for certain, also where the receive thread has left by itself and the parser is
// still in one of its pauses: what they use is freed next.
void StopThreads() {
    if (ReceiveThreadObject != nullptr) {
        const uint32_t exitCode = platform::ThreadExitCode(ReceiveThreadObject);
        ReceiveThreadRunning = 0;
        if (exitCode == platform::kStillActive) {
            platform::TerminateThread(ReceiveThreadObject, 0);
            platform::TerminateThread(ParserThreadObject, 0);
        }
    }
    platform::DeleteThread(ParserThreadObject);
    platform::DeleteThread(ReceiveThreadObject);
    ParserThreadObject = nullptr;
    ReceiveThreadObject = nullptr;
}

// A call that was sending when a notification handler closed the link has been released by the closing; it
// leaves before what it uses is put back.
void AwaitSendingCalls() {
    while (SendingCalls.Acquire() != 0)
        platform::Sleep(1);
}

void ReleaseBuffers() {
    ConversionBuffer = nullptr;
    ConversionStore.Clear();
    if (ReceiveQueue != nullptr)
        ReceiveQueue->Reset(); // card data does not stay behind in freed memory
    delete ReceiveQueue;
    ReceiveQueue = nullptr;
}

int32_t FinishClose() {
    AwaitSendingCalls();
    ResetLinkState();
    ReleaseBuffers();
    return NADREL_SUCCESS;
}

int32_t CloseSerialLink() {
    const platform::PortHandle port = SerialPortHandle;
    platform::SetPortEvents(port, platform::PortEvents::none);
    platform::Sleep(kReleasePauseMs);
    StopThreads();
    const bool closed = platform::ClosePort(port);
    if (!closed)
        LastLinkError = platform::LastError();
    platform::CloseNotifications();
    if (!closed)
        return 0;
    // On a handle that is closed these do nothing to the line; hosts that trace the port see them so.
    platform::SignalPort(port, platform::PortSignal::clearDtr);
    platform::SignalPort(port, platform::PortSignal::clearRts);
    platform::PurgePort(port, platform::kPurgeAll);
    return FinishClose();
}

int32_t CloseWirelessLink() {
    StopThreads();
    platform::CloseSocket(LinkSocket);
    LinkSocket = 0;
    DisposeOfSocket();
    platform::CloseNotifications();
    return FinishClose();
}

int32_t CloseOpenLink() {
    if (SerialPortHandle != platform::kInvalidPort && SerialLinkOpen.Exchange(0) != 0)
        return CloseSerialLink();
    if (WirelessLinkOpen.Exchange(0) != 0)
        return CloseWirelessLink();
    return 0;
}

// Another thread is closing the link: nothing of it runs any more when this returns. A notification handler
// does not wait, because that thread waits for the handler.
void AwaitOtherClose() {
    while (!platform::WithinNotification() && LinkClosing.Acquire() != 0)
        platform::Sleep(1);
}

} // namespace

void CreateConversionBuffer() {
    ConversionStore.Clear();
    ConversionBuffer = &ConversionStore;
}

void DisposeOfSocket() {
    const MySocket *const socket = WirelessSocket.Exchange(nullptr);
    if (socket == nullptr)
        return;
    delete socket;
    platform::StopSocketSupport();
}

void StartReceiveSide() {
    if (ReceiveQueue != nullptr)
        ReceiveQueue->Reset(); // left by a close whose port would not close
    else
        ReceiveQueue = new (std::nothrow) ReceiveRing;
    NotifyMessageId = platform::RegisterNotification(u"NADREL_PRT_OK");
    platform::OpenNotifications();
    ReceiveThreadObject = platform::StartThread(ReceiveThreadBody, platform::ThreadPriority::highest);
    ParserThreadObject = platform::StartThread(ParserThreadBody, platform::ThreadPriority::normal);
}

int32_t FailConnect(int32_t result) {
    LastLinkError = platform::LastError();
    ClosePrinter();
    return result;
}

int32_t ProbePrinter() {
    if (FramedMode == 0)
        return NADREL_SUCCESS;
    for (int probe = 0; probe < kProbes; ++probe) {
        WriteToLink(kQueryFrame, sizeof kQueryFrame);
        platform::Sleep(kProbePauseMs);
        if (FramedStatusSeen != 0)
            return NADREL_SUCCESS;
        if (!LinkIsOpen()) // closed by a notification handler
            return ERR_NO_ANSWER;
    }
    ClosePrinter();
    return ERR_NO_ANSWER;
}

} // namespace nadrel

using namespace nadrel;

int32_t ClosePrinter() {
    if (!LinkIsTaken())
        return 0;
    if (LinkClosing.Exchange(1) != 0) {
        AwaitOtherClose();
        return 0;
    }
    const int32_t result = CloseOpenLink();
    LinkClosing.Exchange(0);
    return result;
}

int32_t ClosePrinterConnection() {
    return ClosePrinter();
}
