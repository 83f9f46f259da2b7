/*
 * What a host on Linux needs besides the printer functions, for what another system has of its own: messages
 * to windows and the ANSI code page. Exported on Linux only.
 */
#ifndef NADREL_HOST_H
#define NADREL_HOST_H

#include "NadrelPrinter.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Told what the printer says. message is the number of NADREL_PRT_OK; wParam is (kind << 16) | length; lParam
 * is the address of the library's buffer with the reply, a value, or 0, by kind.
 */
typedef void (*NadrelNotificationHandler)(uint32_t message, uint32_t wParam, intptr_t lParam, void *context);

/*
 * Sets who is told, with a value that is handed back as it is; NULL: nobody, and notifications are dropped.
 * It may be set before or after connecting and stays set. Handlers are called one at a time, in order, on one
 * thread of the library's own; a slow handler delays later calls, never the receiving. When the function
 * returns, the handler set before is not running any more, unless it is itself the caller: hold no lock that
 * the handler waits for. The handler's code stays loaded while it is set. 10000 notifications wait at most;
 * what comes while so many do is dropped. An exception that leaves a handler is swallowed.
 */
NADREL_API void SetNotificationHandler(NadrelNotificationHandler handler, void *context);

/*
 * Sets the code page that text is converted to: 437, 737, 775, 850, 852, 855, 857, 858, 860 to 866, 874, 932,
 * 936, 949, 950, 1250 to 1258 or 65001 (UTF-8); 1252 until set. 1 when the number is known; 0, and nothing
 * changes, when not. With 65001, too, a text gets at most 2 bytes for each of its UTF-16 units (see U2A).
 */
NADREL_API int32_t SetAnsiCodePage(uint32_t codePage);

/* What became of the bytes since the last connect. */
typedef struct NadrelLinkReport {
    uint32_t size;                /* sizeof(NadrelLinkReport), set by the host before the call */
    uint32_t lastError;           /* errno of the last write that failed, 0 when none has */
    uint32_t errorCount;          /* writes that failed */
    uint32_t notificationsPosted; /* also those that no handler was set for */
    uint64_t bytesAsked;          /* bytes the library was asked to write to the link */
    uint64_t bytesTaken;          /* bytes of those that the system took */
    uint64_t bytesReceived;       /* bytes the printer sent */
    uint64_t bytesDropped;        /* bytes of those that found the receive queue full */
} NadrelLinkReport;

/*
 * Fills the report; the counters stand until the next connect, also after a close. On 32-bit machines they
 * count modulo 2^32. 1; or 0, and nothing is written, for a null pointer or a size that the library does not
 * know.
 */
NADREL_API int32_t GetLinkReport(NadrelLinkReport *report);

/*
 * Limits how long a send over TCP may go without any progress, in milliseconds; 0, the default, is no limit,
 * because a printer that is out of paper stops reading and waiting for it is right. A send that ends so
 * leaves the rest unsent, and the report says how much was taken. Stands until set again. 1; 0, and nothing
 * changes, when negative.
 */
NADREL_API int32_t SetSendTimeout(int32_t milliseconds);

#ifdef __cplusplus
}
#endif

#endif
