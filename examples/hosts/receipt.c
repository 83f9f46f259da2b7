/*
 * Prints a receipt and asks the printer how it is.
 *
 *     receipt /dev/ttyUSB0        at 115200 baud
 *     receipt 192.0.2.7 9100
 */
#include <NadrelPrinter.h>

#include <stdio.h>
#include <stdlib.h>

enum { LINE = 48 };

/* ASCII as the library takes text; stands until the next call. */
static const NadrelChar *Wide(const char *ascii) {
    static NadrelChar wide[LINE + 1];
    int length = 0;
    while (length < LINE && ascii[length] != 0) {
        wide[length] = (NadrelChar)(ascii[length] & 0x7F);
        ++length;
    }
    wide[length] = 0;
    return wide;
}

static void PrintLine(const char *text) {
    TextSaveSpool(Wide(text));
    PrintData();
}

static void ComposeReceipt(void) {
    InitPrinterStatus();
    SetTextAlignment(1);
    SetTextStyle(0, 1, 1, 1, 0);
    PrintLine("Corner shop");
    SetTextStyle(0, 0, 0, 0, 0);
    SetTextAlignment(0);
    PrintLine("Tea                         2.40");
    PrintLine("Biscuits                    1.90");
    SetTextStyle(0, 1, 0, 1, 0);
    PrintLine("TOTAL                       4.30");
    PrintLineFeed(3);
    CutPaper(1);
}

int main(int count, char **words) {
    if (count != 2 && count != 3) {
        fprintf(stderr, "usage: %s PORT | ADDRESS PORT\n", words[0]);
        return 2;
    }
    const int32_t connected =
        count == 2 ? ConnectSerialPrinterEx(words[1], 115200, 8, 0, 0, 2000, 0)
                   : ConnectWirelessPrinter(Wide(words[1]), (uint32_t)strtoul(words[2], NULL, 10), 5000, 0);
    if (connected != NADREL_SUCCESS) {
        fprintf(stderr, "%s: no connection: result %d\n", words[1], (int)connected);
        return 1;
    }
    ComposeReceipt();
    const int printed = PrintSpool(1) == 1 && GetPrinterStatus(5000) == 1;
    if (!printed)
        fprintf(stderr, "%s: the printer does not answer\n", words[1]);
    return ClosePrinter() == 1 && printed ? 0 : 1;
}
