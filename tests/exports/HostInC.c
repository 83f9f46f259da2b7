#include "tests/exports/AllFunctions.h"

#include "api/NadrelHost.h"

#include <stddef.h>
#include <stdio.h>

static int failures = 0;

static void expect(const char *what, long result, long expected) {
    if (result == expected)
        return;
    printf("%s gave %ld, expected %ld\n", what, result, expected);
    ++failures;
}

#define EXPECT(call, expected) expect(#call, (long)(call), (long)(expected))

static void everyFunctionIsThere(void) {
    int count = 0;
    for (const struct NamedFunction *entry = allFunctions; entry->name != NULL; ++entry) {
        if (entry->function == NULL) {
            printf("%s is missing\n", entry->name);
            ++failures;
        }
        ++count;
    }
    if (count < 80) {
        printf("%d functions listed, expected more than 80\n", count);
        ++failures;
    }
}

static void appendersWithoutALink(void) {
    const uint8_t bytes[] = {0x1B, 0x40};
    EXPECT(ControlCommand(bytes, 2), ERR_NOT_CONNECTED);
    EXPECT(SaveSpool(u"text", 0, 0), -11);
    EXPECT(OneDimensionBarcodeSaveSpool(73, 2, 80, 1, u"12"), -11);
    EXPECT(BarcodeSaveSpool(73, 2, 80, 1, u"12", 384, 100, 0), 1);
    EXPECT(BarcodeSaveSpool(73, 2, 80, 1, NULL, 384, 100, 0), 0);
    EXPECT(EnterSCRMode(), 1); /* two bytes at 0: the last stands at 1 */
    EXPECT(SetPrintPosition(1, 2), -11);
    EXPECT(SelectForTTF(u"font"), -11);
    EXPECT(PrintSpoolForTTF(u"text", 1, 2), -11);
    EXPECT(EnterSCRMode(), -10); /* in front of the spool */
    ClearSpool();
    TextSaveSpool(u"text");
    EXPECT(EnterSCRMode(), 1);
    EXPECT(U2A(u"text") == NULL, 1);
}

static void requestsWithoutALink(void) {
    EXPECT(PrintSpool(1), -11);
    EXPECT(GetPrinterStatus(0), -1);
    EXPECT(GetPrinterStatusEX(0), -1);
    EXPECT(EnterMSRMode(1), -11);
    EXPECT(CancelMSRMode(), 0);
    EXPECT(SetTermialID(u"1234567"), 7);
    EXPECT(SetPaymentReq(1, u"1234567890123", u"", u""), -1);
}

static void connections(void) {
    EXPECT(GetPortHandle(), NADREL_INVALID_HANDLE);
    EXPECT(InitPrinter(u"/dev/no-such-port", 9600, 0), ERR_OPEN_PORT);
    EXPECT(InitPrinter(NULL, 9600, 0), 0);
    EXPECT(ConnectSerialPrinterEx("/dev/no-such-port", 9600, 8, 0, 0, 0, 0), -2);
    EXPECT(GetPortHandle(), NADREL_INVALID_HANDLE);
    EXPECT(ClosePrinter(), 0);
    EXPECT(ClosePrinterConnection(), 0);
}

static void hostFunctions(void) {
    NadrelLinkReport report;
    report.size = sizeof report;
    EXPECT(GetLinkReport(&report), 1);
    EXPECT(report.bytesAsked, 0);
    report.size = 0;
    EXPECT(GetLinkReport(&report), 0);
    EXPECT(GetLinkReport(NULL), 0);
    EXPECT(SetAnsiCodePage(932), 1);
    EXPECT(SetAnsiCodePage(1), 0);
    EXPECT(SetSendTimeout(-1), 0);
    EXPECT(SetSendTimeout(0), 1);
    SetNotificationHandler(NULL, NULL);
}

int main(void) {
    everyFunctionIsThere();
    appendersWithoutALink();
    requestsWithoutALink();
    connections();
    hostFunctions();
    return failures == 0 ? 0 : 1;
}
