#include "api/NadrelPrinter.h"

#include "devices/Request.h"
#include "link/Pacing.h"
#include "spool/Guarded.h"
#include "spool/Spool.h"

using namespace nadrel;

namespace {

constexpr int32_t kNoLink = -1; // not ERR_NOT_CONNECTED: the status queries have a code of their own
constexpr int32_t kNoAnswer = -7;

void SendStatusQuery(uint8_t letter) {
    if (FramedMode != 0)
        WriteToLink(kQueryFrame, sizeof kQueryFrame);
    else
        WriteWhole(Request(kEsc, letter));
}

// Asks again at every attempt and learns only that some byte has come; what it says comes by notification.
int32_t QueryStatus(uint8_t letter, int32_t timeout) {
    AttemptPause pause;
    if (!LinkIsOpen())
        return kNoLink;
    StatusPending = 1;
    StatusCaptureByte = kCaptureArmed;
    for (int32_t attempts = AttemptsWithin(timeout); attempts > 0; --attempts) {
        SendStatusQuery(letter);
        pause.Wait();
        if (StatusCaptureByte < kCaptureArmed)
            return NADREL_SUCCESS;
        if (!LinkIsOpen()) // closed by another thread meanwhile
            break;
    }
    return kNoAnswer;
}

} // namespace

int32_t GetPrinterStatus(int32_t timeout) {
    return Guarded([=] { return QueryStatus('v', timeout); });
}

int32_t GetPrinterStatusEX(int32_t timeout) {
    return Guarded([=] { return QueryStatus('V', timeout); });
}

// The flag is set behind the write: the parser's pauses keep the answer from being classified before.
void GetPrinterModelName() {
    if (SpoolIsPastCapacity())
        return;
    SendRequest(Request(kEsc, 'Y', 0xFF));
    ModelNamePending = 1;
}

void GetFirmwareVersion() {
    if (SpoolIsPastCapacity())
        return;
    SendRequest(Request(kEsc, 0x00, 0x01));
    FirmwarePending = 1;
}

int32_t Set_PrintOutStatus(uint32_t mode) {
    if (SpoolIsPastCapacity())
        return ERR_SPOOL_LIMIT;
    const bool on = mode == 1;
    PrintOutStatusArmed = on ? 1 : 0;
    return SendRequest(Request(kGs, 'v', on));
}
