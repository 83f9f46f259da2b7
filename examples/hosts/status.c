/*
 * Prints a line, asks the printer for its status and shows the answer, which comes to a handler.
 *
 *     status /dev/ttyUSB0        at 115200 baud
 *     status 192.0.2.7 9100
 */
#include <NadrelHost.h>
#include <NadrelPrinter.h>

#include <errno.h>
#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#define PATIENCE 10000 /* milliseconds */

static sem_t replied;

/* The buffer is the library's and the next reply overwrites it: what is needed is taken here. */
static void Handle(uint32_t message, uint32_t wParam, intptr_t lParam, void *context) {
    const unsigned length = wParam & 0xFFFF;
    const unsigned char *reply = (const unsigned char *)lParam;
    (void)message, (void)context;
    printf("reply %c:", (int)(wParam >> 16 & 0xFF));
    for (unsigned i = 0; i < length; ++i)
        printf(" %02X", reply[i]);
    printf("\n");
    sem_post(&replied);
}

/* Names of devices and hosts in the library's UTF-16; those of this example are ASCII. */
static const NadrelChar *Wide(const char *name) {
    static NadrelChar wide[256];
    size_t length = 0;
    for (; name[length] != 0 && length < 255; ++length)
        wide[length] = (unsigned char)name[length];
    wide[length] = 0;
    return wide;
}

static int32_t Connect(int count, char **words) {
    if (count == 2)
        return ConnectSerialPrinter(Wide(words[1]), 115200, 2000, 0);
    return ConnectWirelessPrinter(Wide(words[1]), (uint32_t)strtoul(words[2], NULL, 10), 5000, 0);
}

static void Print(void) {
    SetTextAlignment(1);
    TextSaveSpool(u"Printed from Linux");
    PrintData();
    PrintSpool(1);
}

static int AwaitReply(void) {
    struct timespec end;
    clock_gettime(CLOCK_REALTIME, &end);
    end.tv_sec += PATIENCE / 1000;
    while (sem_timedwait(&replied, &end) != 0)
        if (errno != EINTR)
            return 1;
    return 0;
}

int main(int count, char **words) {
    if (count != 2 && count != 3) {
        fprintf(stderr, "usage: status DEVICE | status ADDRESS PORT\n");
        return 2;
    }
    sem_init(&replied, 0, 0);
    SetNotificationHandler(Handle, NULL);
    const int32_t connected = Connect(count, words);
    if (connected != NADREL_SUCCESS) {
        fprintf(stderr, "status: the connection failed with %d\n", (int)connected);
        return 1;
    }
    Print();
    const int32_t answered = GetPrinterStatus(PATIENCE);
    const int result = answered == NADREL_SUCCESS ? AwaitReply() : 1;
    ClosePrinter();
    return result;
}
