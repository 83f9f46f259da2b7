#include "api/NadrelHost.h"

#include "spool/State.h"

using namespace nadrel;

int32_t GetLinkReport(NadrelLinkReport *report) {
    if (report == nullptr || report->size != sizeof *report)
        return 0;
    report->lastError = Counters.lastError;
    report->errorCount = Counters.errorCount;
    report->notificationsPosted = Counters.notificationsPosted;
    report->bytesAsked = Counters.bytesAsked;
    report->bytesTaken = Counters.bytesTaken;
    report->bytesReceived = Counters.bytesReceived;
    report->bytesDropped = Counters.bytesDropped;
    return 1;
}
