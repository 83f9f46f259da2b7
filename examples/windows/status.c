/*
 * Prints a line on Windows, asks the printer for its status and shows the answer, which comes to a window as a message.
 *
 *     status COM3              at 115200 baud
 *     status 192.0.2.7 9100
 */
#define WIN32_LEAN_AND_MEAN 1 /* windows.h without its own ClosePrinter */

#include <NadrelPrinter.h>

#include <stdio.h>
#include <stdlib.h>
#include <windows.h>

#define PATIENCE 10000 /* milliseconds */

static UINT printerSays; /* the number of the library's message */

/* The buffer is the library's and the next reply overwrites it: what is needed is taken here. */
static void ShowReply(WPARAM wParam, LPARAM lParam) {
    const unsigned length = wParam & 0xFFFF;
    const unsigned char *reply = (const unsigned char *)lParam;
    printf("reply %c:", (int)(wParam >> 16 & 0xFF));
    for (unsigned i = 0; i < length; ++i)
        printf(" %02X", reply[i]);
    printf("\n");
}

static LRESULT CALLBACK Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == printerSays || message == WM_TIMER) {
        if (message == printerSays)
            ShowReply(wParam, lParam);
        PostQuitMessage(message == printerSays ? 0 : 1);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

/* Top-level, because the library tells those; it need not be shown. */
static HWND MakeWindow(void) {
    WNDCLASSW kind = {0};
    kind.lpfnWndProc = Handle;
    kind.hInstance = GetModuleHandleW(NULL);
    kind.lpszClassName = L"NadrelStatus";
    RegisterClassW(&kind);
    return CreateWindowExW(0, kind.lpszClassName, L"Status", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, NULL, NULL,
                           kind.hInstance, NULL);
}

/* Addresses in the library's UTF-16; those of this example are ASCII. */
static const wchar_t *Wide(const char *address) {
    static wchar_t wide[256];
    size_t length = 0;
    for (; address[length] != 0 && length < 255; ++length)
        wide[length] = (unsigned char)address[length];
    wide[length] = 0;
    return wide;
}

static int32_t Connect(int count, char **words) {
    if (count == 2)
        return ConnectSerialPrinterEx(words[1], 115200, 8, 0, 0, 2000, 0);
    return ConnectWirelessPrinter(Wide(words[1]), (uint32_t)strtoul(words[2], NULL, 10), 5000, 0);
}

static void Print(void) {
    SetTextAlignment(1);
    TextSaveSpool(L"Printed from Windows");
    PrintData();
    PrintSpool(1);
}

static int AwaitReply(HWND window) {
    MSG message = {0};
    SetTimer(window, 1, PATIENCE, NULL);
    while (GetMessageW(&message, NULL, 0, 0) > 0)
        DispatchMessageW(&message);
    return (int)message.wParam;
}

int main(int count, char **words) {
    if (count != 2 && count != 3) {
        fprintf(stderr, "usage: %s PORT | ADDRESS PORT\n", words[0]);
        return 2;
    }
    printerSays = RegisterWindowMessageW(L"NADREL_PRT_OK");
    const HWND window = MakeWindow();
    if (window == NULL) {
        fprintf(stderr, "%s: the window for the printer's answer could not be made\n", words[0]);
        return 1;
    }
    const int32_t connected = Connect(count, words);
    if (connected != NADREL_SUCCESS) {
        fprintf(stderr, "%s: no connection: result %d\n", words[1], (int)connected);
        return 1;
    }
    Print();
    const int32_t answered = GetPrinterStatus(PATIENCE);
    const int result = answered == NADREL_SUCCESS ? AwaitReply(window) : 1;
    ClosePrinter();
    return result;
}
