/*
 * The NADREL printer library: print on portable thermal receipt printers.
 *
 * A host composes a job in the library's spool, sends it over a serial port or a TCP connection, and hears
 * what the printer says by notification.
 *
 *     ConnectSerialPrinterEx("/dev/ttyUSB0", 115200, 8, 0, 0, 2000, 0);
 *     SetTextAlignment(1);
 *     SetTextStyle(0, 1, 1, 1, 0);
 *     TextSaveSpool(u"Thank you");
 *     PrintData();
 *     PrintSpool(1);
 *     ClosePrinter();
 *
 * CONVENTIONS
 *
 * Strings. Text and names are zero-terminated UTF-16. The library converts text to the ANSI code page (1252
 * unless the system or SetAnsiCodePage says otherwise); what the page lacks becomes a near character where
 * Windows has one (U+0100, an A with a macron, an A in 1252), else a '?'. Strings belong to the host and are
 * not kept after the call. A null text or font name is an empty one; a null port or address is one that
 * cannot be opened.
 *
 * Units. Positions, areas, sizes and feeds are printer dots, line feeds are lines, times are milliseconds,
 * lengths are bytes. Nothing is converted. 16-bit fields go out low byte first: nL = n mod 256, nH = n / 256,
 * both of the signed value, each cut to a byte (-1 goes out as FF 00).
 *
 * Bytes. Each function says what it appends or sends, in hexadecimal.
 *
 * The spool. 409600 bytes that commands are appended to and PrintSpool sends. One signed number, the spool
 * length, says where the next command goes. Three kinds of functions append:
 *   - Direct ones (most): append whether or not a link is open, and append nothing when the spool length is
 *     above 409600. No result. A command that begins at 409600 or below is still written and may end past it.
 *   - Through the link: append only while a link is open; result: the new spool length, ERR_NOT_CONNECTED, or
 *     ERR_SPOOL_LIMIT when the command would end past 409600. Those marked "stores its result" also set the
 *     spool length to ERR_NOT_CONNECTED when no link is open; the next connect (but for InitWlanPrinter) or
 *     ClearSpool puts it back to 0.
 *   - SaveSpool: needs a link and keeps the spool at or below 9999 bytes.
 * The library never writes outside its storage: it keeps 4096 bytes before and behind the 409600, and a
 * command that would leave even those is refused whole: nothing is written, the spool length stays, the
 * result is ERR_SPOOL_LIMIT where there is one.
 *
 * Arguments out of range are never reported: the function says whether the command is then left out ("else
 * nothing") or which byte is sent instead.
 *
 * Results are signed 32-bit numbers, read per function: the same number means different things in different
 * functions. No exception leaves the library. Where it runs out of memory, a function with a result gives 0.
 *
 * Ownership. What the library returns a pointer to is the library's own. The buffers of notifications are
 * overwritten by the next reply of the same kind: copy what you need when you are told.
 *
 * Threads. Call the library from one thread at a time; a notification handler may call while no other thread
 * does. ClosePrinter may also come from a handler while another thread waits in a sending call, which then
 * ends, in a status query or connect, which ends with its next pause, or in ClosePrinter. Threads of the
 * library's own run while a link is open: they take what the printer sends, classify it and tell the handler.
 * They never touch the spool.
 *
 * Loading and unloading. Nothing happens at load but the start of socket support. An open link is not closed
 * at unload: call ClosePrinter.
 */
#ifndef NADREL_PRINTER_H
#define NADREL_PRINTER_H

#include <stdint.h>

/*
 * On Windows: <windows.h> declares a ClosePrinter of another library unless WIN32_LEAN_AND_MEAN is defined
 * before it; link this library before winspool.lib.
 */
#ifdef _WIN32
#ifdef NADREL_BUILDING
typedef char16_t NadrelChar; /* the library's own name for the same 16 bits */
#else
#include <wchar.h>
typedef wchar_t NadrelChar;
#endif
#define NADREL_CALL __cdecl
#ifdef NADREL_BUILDING
#define NADREL_API /* exported by the list of names */
#else
#define NADREL_API __declspec(dllimport)
#endif
#else
#ifdef __cplusplus
typedef char16_t NadrelChar;
#else
#include <uchar.h>
typedef char16_t NadrelChar;
#endif
#define NADREL_CALL
#define NADREL_API __attribute__((visibility("default")))
#endif

/* The operating system's handle of a serial port: the file descriptor on Linux, the HANDLE on Windows. */
typedef intptr_t NadrelHandle;
#define NADREL_INVALID_HANDLE ((NadrelHandle)-1)

/*
 * RESULTS
 *
 * InitPrinter, ConnectSerialPrinter and ConnectSerialPrinterEx use these for -1 to -5; the wireless connects,
 * the status queries and the payment functions have meanings of their own, told there.
 */
enum {
    NADREL_SUCCESS = 1,
    ERR_ALREADY_CONNECTED = -1, /* a serial or TCP link is already open */
    ERR_OPEN_PORT = -2,         /* the port could not be opened */
    ERR_SET_COMM_STATE = -3,    /* the port did not take the line settings */
    ERR_SET_TIMEOUTS = -4,      /* the port did not take the time-outs */
    ERR_NO_ANSWER = -5,         /* framed mode: no answer to four query frames; the link is closed again */
    ERR_NOT_CONNECTED = -11,    /* no link is open */
    ERR_SPOOL_LIMIT = -12,      /* the spool has no room for it */
    ERR_FRAME_LIMIT = -13       /* the framed form is longer than 409600 bytes; the spool is kept */
};

#ifdef __cplusplus
extern "C" {
#endif

/*
 * SPOOL
 */

/*
 * Appends raw bytes through the link. Result: the new spool length; ERR_NOT_CONNECTED; ERR_SPOOL_LIMIT when
 * they would end past 409600; 0 for a null pointer, a negative count, or bytes that the process may not read.
 * Nothing is appended unless all are.
 */
NADREL_API int32_t NADREL_CALL ControlCommand(const uint8_t *bytes, int32_t count);

/*
 * Appends a run of text with its font and emphasis: 1D 21 s 1B 45 b, then the text; no line feed.
 * font: 0, 1, 2, 3 send s = 00, 10, 01, 11; any other font sends no s at all. bold: non-zero sends b = 01,
 * else 00.
 * Result: the new spool length; ERR_NOT_CONNECTED; 0 for a null text; ERR_SPOOL_LIMIT, with the spool length
 * as it was, when the text would take the spool past 9999 bytes or the storage has no room. Past 9999 bytes
 * the spool length is in fact set back by six: where the font was none of the four, only five bytes went in,
 * and it ends one lower than before the call. The bytes set back over stay behind the spool length and count
 * in the next frame's check value.
 */
NADREL_API int32_t NADREL_CALL SaveSpool(const NadrelChar *text, int32_t font, int32_t bold);

/*
 * Converts text to the ANSI code page, into a buffer of the library's own that stands until the next function
 * that takes text, or ClosePrinter. At most 2 bytes for each UTF-16 unit and 409600 in all: what does not fit
 * is left out, never half a character: with code page 65001 most texts outside Latin, Greek and Cyrillic.
 * Every function that takes text converts it so. NULL while no link is open.
 */
NADREL_API const char *NADREL_CALL U2A(const NadrelChar *text);

/* Empties the spool: its length is 0, its bytes are 00. */
NADREL_API void NADREL_CALL ClearSpool(void);

/*
 * The open serial port, NADREL_INVALID_HANDLE when there is none; after ERR_SET_COMM_STATE and
 * ERR_SET_TIMEOUTS the port that stays open, until the next connect. It stays the library's: do not close it.
 */
NADREL_API NadrelHandle NADREL_CALL GetPortHandle(void);

/*
 * TEXT
 *
 * All direct, but for SetPrintPosition.
 */

/* 1B 4F xL xH yL yH: print position in dots. Through the link, stores its result. */
NADREL_API int32_t NADREL_CALL SetPrintPosition(int32_t x, int32_t y);

/* 0A: prints the line and feeds one line. */
NADREL_API void NADREL_CALL PrintData(void);

/* 1B 4A n: prints and feeds n dots. 0 <= n <= 255, else nothing. */
NADREL_API void NADREL_CALL PrintDotFeed(int32_t n);

/* 1B 64 n: prints and feeds n lines. 0 <= n <= 255, else nothing. */
NADREL_API void NADREL_CALL PrintLineFeed(int32_t n);

/* 1B 40: puts the printer back to its defaults and, where it was appended, the library to standard mode. */
NADREL_API void NADREL_CALL InitPrinterStatus(void);

/* 1B 33 n: line spacing in dots. 0 <= n <= 255, else nothing. */
NADREL_API void NADREL_CALL SetLineSpace(int32_t n);

/* 1B 20 n: space to the right of each character in dots. 0 <= n <= 255, else nothing. */
NADREL_API void NADREL_CALL SetCharSpace(int32_t n);

/*
 * 1B 74 table: the printer's character code table. kind says which tables may be asked for and is not sent:
 * kind 0 or 1: 0 <= table <= 5 or 255; kind 2: 0 <= table <= 50 or 255; else nothing.
 */
NADREL_API void NADREL_CALL SetCharCodeTable(int32_t table, uint32_t kind);

/* 1B 74 table: as above, the low byte of any table. */
NADREL_API void NADREL_CALL SetCharCodeTableEX(uint32_t table);

/* 1B 21 n: one of the printer's three font sizes. 0 <= n <= 2, else nothing. */
NADREL_API void NADREL_CALL SetFontSize(int32_t n);

/*
 * 1B 2D u 1B 45 b 1D 21 s 1D 42 r: the whole style at once.
 * underline: 1 and 2 (dots thick) are sent as u, anything else as 00. bold: non-zero sends b = 01, else 00.
 * width, height: 0 to 7, magnification minus one, anything else counts as 0; s = width x 16 + height.
 * reverse (white on black): non-zero sends r = 01, else 00.
 */
NADREL_API void NADREL_CALL SetTextStyle(uint32_t underline, uint32_t bold, int32_t width, int32_t height,
                                         uint32_t reverse);

/* 1B 7B n: upside-down printing, n = 01 for non-zero, else 00. In page mode only 1B 7B, without n. */
NADREL_API void NADREL_CALL SetUpsideDown(uint32_t on);

/* 1B 24 nL nH: horizontal print position in dots from the left edge. */
NADREL_API void NADREL_CALL SetAbsPosition(int32_t pos);

/* 1B 61 n: alignment, 0 left, 1 centre, 2 right; 3 is passed on. 0 <= n <= 3, else nothing. */
NADREL_API void NADREL_CALL SetTextAlignment(int32_t n);

/*
 * Appends converted text as it is. Only the low 8 bits of its length count: 256 bytes append nothing, 300
 * append their first 44, which may end within a two-byte character. Nothing is appended while no link is
 * open, because there is no conversion then.
 */
NADREL_API void NADREL_CALL TextSaveSpool(const NadrelChar *text);

/* 1D 56 m: cuts the paper, m = 01 (partly) when mode is 1, else 00 (fully). */
NADREL_API void NADREL_CALL CutPaper(uint32_t mode);

/* 1B 7A 1B 79: feeds to the black mark. */
NADREL_API void NADREL_CALL FeedToMark(void);

/* 1B 50 nL nH: where printing starts, in dots from the black mark. */
NADREL_API void NADREL_CALL SetPositionFromMark(int32_t dots);

/* 1D 73 m: black-mark sensing, m = 01 for non-zero, else 00. */
NADREL_API void NADREL_CALL SetMarkUseMode(uint32_t on);

/*
 * PAGE MODE
 *
 * In page mode the printer composes a page within an area and prints it on command. The library keeps a flag
 * of what it has appended: set by SetPageMode and InitPageMode; cleared by Page_SetStandardMode,
 * Page_Print_StandardMode, InitPrinterStatus, a connect (but for InitWlanPrinter) and a close; sending and
 * clearing the spool leave it. "Page only" functions append nothing while it is clear. All are direct.
 * Coordinates are dots in 16-bit fields, not checked.
 */

/* 1B 4C: enters page mode. */
NADREL_API void NADREL_CALL SetPageMode(void);

/* 1B 53: back to standard mode; the page is not printed. */
NADREL_API void NADREL_CALL Page_SetStandardMode(void);

/* 18: clears the page within the area. Page only. */
NADREL_API void NADREL_CALL Page_ClearCurrentData(void);

/* 1B 0C: prints the page and stays in page mode, so that it can be added to and printed again. Page only. */
NADREL_API void NADREL_CALL Page_Print(void);

/* 0C: prints the page and returns to standard mode. Page only. */
NADREL_API void NADREL_CALL Page_Print_StandardMode(void);

/* 1B 57 xL xH yL yH wL wH hL hH: the area that is composed. Page only. */
NADREL_API void NADREL_CALL Page_SetArea(int32_t x, int32_t y, int32_t width, int32_t height);

/* 1B 54 n: print direction. 0 <= n <= 3, else nothing. Page only. */
NADREL_API void NADREL_CALL Page_SetDirection(int32_t n);

/* 1B 4F xL xH yL yH: position within the area. Page only. */
NADREL_API void NADREL_CALL Page_SetPosition(int32_t x, int32_t y);

/* 0A: next line. Page only. */
NADREL_API void NADREL_CALL Page_Newline(void);

/* 1B 4A n: feeds n dots. 0 <= n <= 255, else nothing. Page only. */
NADREL_API void NADREL_CALL Page_DotFeed(int32_t n);

/* 1B 64 n: feeds n lines. 0 <= n <= 255, else nothing. Page only. */
NADREL_API void NADREL_CALL Page_LineFeed(int32_t n);

/*
 * 1B 4F xL xH yL yH 1D 69 wL wH hL hH t: a box with its corner at x, y. A thickness outside 0 to 255 is sent
 * as t = 00. Page only.
 */
NADREL_API void NADREL_CALL Page_DrawBox(int32_t x, int32_t y, int32_t width, int32_t height,
                                         int32_t thickness);

/*
 * 1B 67 31 x1L x1H y1L y1H x2L x2H y2L y2H t: a line, in either mode. 0 <= thickness <= 255, else nothing.
 */
NADREL_API void NADREL_CALL Page_DrawLine(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t thickness);

/*
 * 1B 67 32 and the same bytes: an ellipse within the rectangle of the two corners, in either mode. 0 <=
 * thickness <= 255, else nothing.
 */
NADREL_API void NADREL_CALL Page_DrawEllipse(int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                                             int32_t thickness);

/*
 * InitPrinterStatus, SetPageMode, Page_SetArea, Page_ClearCurrentData, in this order: 1B 40 1B 4C 1B 57 and
 * eight bytes, 18.
 */
NADREL_API void NADREL_CALL InitPageMode(int32_t x, int32_t y, int32_t width, int32_t height);

/*
 * BARCODES
 *
 * Data is converted as text is; only the low 8 bits of its length count, and as many bytes are sent (n; in
 * 16-bit fields n 00): 260 bytes send their first 4. A parameter out of range is replaced as told and the
 * barcode is sent all the same. Direct, but for the first two. Without a link the direct ones send their
 * commands with no data.
 */

/*
 * 1D 77 w 1D 68 h 1D 48 p 1D 6B m n data: a one-dimensional barcode. w = width of the narrow module, 1 to 8
 * dots, else 00; h = height, 1 to 255 dots, else 00; p = text below, 01 for non-zero hri, else 00; m = low
 * byte of symbology. Through the link. Result: the new spool length, ERR_NOT_CONNECTED, ERR_SPOOL_LIMIT; this
 * also, link or no link, when the spool length is above 409600 before.
 */
NADREL_API int32_t NADREL_CALL OneDimensionBarcodeSaveSpool(uint32_t symbology, int32_t width, int32_t height,
                                                            int32_t hri, const NadrelChar *data);

/*
 * A one-dimensional barcode on a page of its own, whatever the page-mode flag is, which stays: 1B 4C, 1B 57
 * 00 00 00 00 wL wH hL hH (areaWidth, areaHeight), 18, 1B 4F xL xH 00 00, 1D 77 w (2 to 6 dots, else 02), 1D
 * 68 height, 1D 48 p (01 for non-zero hri, else 00), 1D 6B symbology n data, 0C. Through the link. Result: 1,
 * also when nothing was appended; 0 for null data.
 */
NADREL_API int32_t NADREL_CALL BarcodeSaveSpool(uint8_t symbology, uint8_t width, uint8_t height, int32_t hri,
                                                const NadrelChar *data, int32_t areaWidth, int32_t areaHeight,
                                                int32_t x);

/*
 * 1D 5A k 1D 77 mw 1B 5A a1 a2 a3 n 00 data 1D 48 h, for all three PDF417 forms. mw = moduleWidth, 1 to 8,
 * else 00; a3 = p3, 2 to 5, else 00; h = 01 when hri is 1, else 00.
 * Standard, k = 00: a1 = p1 and a2 = p2 when 1 <= p1 <= 30 and 0 <= p2 <= 8, else both 00.
 */
NADREL_API void NADREL_CALL PDF417SaveSpool(int32_t moduleWidth, int32_t p1, int32_t p2, int32_t p3,
                                            const NadrelChar *data, int32_t hri);

/*
 * k = 03: a1 = p1 when 1 <= p1 <= 4, and a2 = p2 when 4 <= p2 <= 44, else 00. With p1 out of range k, a1 and
 * a2 are 00: the symbol goes out as a standard one.
 */
NADREL_API void NADREL_CALL TruncatedPDF417SaveSpool(int32_t moduleWidth, int32_t p1, int32_t p2, int32_t p3,
                                                     const NadrelChar *data, int32_t hri);

/* k = 04: a1 = p1 and a2 = p2 when 1 <= p1 <= 4 and 0 <= p2 <= 8, else k, a1 and a2 are 00. */
NADREL_API void NADREL_CALL MicroPDF417SaveSpool(int32_t moduleWidth, int32_t p1, int32_t p2, int32_t p3,
                                                 const NadrelChar *data, int32_t hri);

/*
 * 1D 5A 02 1B 5A v e s n 00 data. v = version, 1 to 40, else 00; e = the letter 'L', 'M', 'Q' or 'H' that the
 * low 16 bits of eccLevel are, else 00; s = moduleSize, 1 to 8 dots, else 00.
 */
NADREL_API void NADREL_CALL QRCodeSaveSpool(int32_t version, uint32_t eccLevel, int32_t moduleSize,
                                            const NadrelChar *data);

/* 1D 5A 01 1B 5A p1 p2 s n 00 data. The low bytes of p1 and p2; s = moduleSize, 1 to 8 dots, else 00. */
NADREL_API void NADREL_CALL DataMatrixSaveSpool(uint32_t p1, uint32_t p2, int32_t moduleSize,
                                                const NadrelChar *data);

/* 1D 5A 05 1B 5A m 00 00 n 00 data. m = mode, 2 to 6, else 00. */
NADREL_API void NADREL_CALL MaxicodeSaveSpool(int32_t mode, const NadrelChar *data);

/*
 * 1D 31 t s data 00. t = type, 0 to 6, else 00; s = the low byte of segments for type 6 when segments is even
 * and segments mod 21 is 2 to 20, else 00, as for any negative number.
 */
NADREL_API void NADREL_CALL GS1DatabarSaveSpool(int32_t type, int32_t segments, const NadrelChar *data);

/*
 * MACROS
 *
 * Appended whether or not a link is open, and also when the spool length is above 409600, as long as the
 * storage has room.
 */

/* Appends nothing: marks where the macro's commands begin. */
NADREL_API void NADREL_CALL SetMarco_Start(void);

/*
 * Makes the n bytes since the mark a macro: they are replaced by n bytes 00, then 1B 1C 2B 01 00 nL nH and
 * the n bytes are appended. The mark is 0 until set, so that the whole spool is the macro, and again after a
 * connect (but for InitWlanPrinter) or close; nothing else takes it back, ClearSpool and PrintSpool neither.
 * Nothing changes when the mark lies behind the spool's end or the result has no room. Of n, 16 bits are
 * sent.
 */
NADREL_API void NADREL_CALL SetMacro_End(void);

/*
 * 1B 1C 2B 01 00 06 00 1B 21 size 1B 74 table: a macro that sets font size and code table. 0 <= size <= 3 and
 * 0 <= table <= 50 or 255, else nothing.
 */
NADREL_API void NADREL_CALL SetMacro_FontSize_FontTable(int32_t size, int32_t table);

/* 1B 1C 2B 01 00 00 00: an empty macro, which clears the printer's. */
NADREL_API void NADREL_CALL Initialize_Macro(void);

/*
 * TRUETYPE
 */

/*
 * 1B 67 46 name 00: selects a TrueType font that the printer holds by its file name, converted as text is and
 * cut to the low 8 bits of its length. Through the link, stores its result.
 */
NADREL_API int32_t NADREL_CALL SelectForTTF(const NadrelChar *name);

/* The same bytes. Direct; without a link the name is empty. */
NADREL_API void NADREL_CALL SetFontForTTF(const NadrelChar *name);

/*
 * 1B 67 55 p1 p2 text 00 00 0A: prints text with the selected font, in UTF-16 high byte first, of any length.
 * p1 and p2 are the printer's. Through the link, stores its result.
 */
NADREL_API int32_t NADREL_CALL PrintSpoolForTTF(const NadrelChar *text, uint8_t p1, uint8_t p2);

/*
 * RASTER
 *
 * Pictures from uncompressed Windows bitmap files (BMP) of 1 or 24 bits a pixel, printed from their top row
 * down in bands of 24 lines, a dot for a pixel. Files of other depths append nothing; pictures stored from
 * the top down (a negative height) count as pictures without lines. 24-bit pictures are reduced to black
 * and white: lightened (gamma 0.5), then dithered. The palette of a 1-bit file is not looked at.
 *
 * W and H are the picture's width and height, b = 4 x ceil(W / 32) the bytes of a line of dots. The highest
 * bit is the leftmost dot; a set bit prints. b and n go out as their low bytes, without a test.
 *
 * File names are UTF-16, on Linux turned into UTF-8. Only regular files are opened. A file cannot be loaded
 * when it is shorter than its own header says, when the picture's width is negative, or when a band of it
 * takes more than 256 KB and more than the file holds. Pixel bytes that the file does not hold, or that the
 * header's biSizeImage does not count, are 0.
 *
 * Through the link; each stores its result. A picture is appended whole or not at all.
 */

/*
 * 1D 50 B4 B4 1B 33 18, then for each band of n lines
 *     1B 4F xL xH yL yH 1B 58 34 b n, the dots of 24 lines, 1B 33 n where n is less than 24, 0A
 * and 1B 32. The first band is at x, y; y grows by the lines of each. In a 1-bit file set bits print, in
 * whole bytes: the last W mod 8 columns are dropped.
 * Result: the new spool length; -1 when the file cannot be loaded or read to its end, and nothing changes;
 * ERR_NOT_CONNECTED; ERR_SPOOL_LIMIT.
 */
NADREL_API int32_t NADREL_CALL BmpSaveSpool(const NadrelChar *path, int32_t x, int32_t y);

/* The same at the present position, without 1B 4F. In a 1-bit file clear bits print, in all columns. */
NADREL_API void NADREL_CALL NormalBmpSaveSpool(const NadrelChar *path);

/*
 * 1D 50 B4 B4, then for each band, and once more for an empty one when H is a multiple of 24,
 *     1B 58 33 b 18, the dots of the band's lines as tokens, 1B 58 32 18
 * A token is 80 + n and n bytes (1 <= n <= 58), or C0 + n and a byte that stands for n of it (4 <= n <= 58).
 * The dots are those of NormalBmpSaveSpool. Nothing happens when the spool length is above 409600.
 */
NADREL_API void NADREL_CALL CompressedBmpSaveSpool(const NadrelChar *path);

/* 1B 66 n: prints a picture that the printer holds. Direct. 0 <= n <= 255, else 00. */
NADREL_API void NADREL_CALL LoadLogoSaveSpool(int32_t n);

/*
 * SERIAL CONNECTION
 *
 * One link at a time; a link that another thread is closing counts as open. Connecting puts the spool, page
 * mode and the macro mark back to their initial state, unless it is refused because a link is open; so does
 * closing. Port names on Linux are device paths; a leading \\.\ is ignored and
 * COM1 is /dev/ttyS0.
 *
 * The port is opened for this process alone, without flow control, DTR and RTS raised. Writing takes at most
 * 100 ms a byte. baudRate: any that the driver takes, to within 3 percent; 0 gives ERR_SET_COMM_STATE.
 *
 * framed: non-zero sends everything in the framed form (see PrintSpool) and has the connect ask the printer
 * with the query frame 00 C0 51 C1, up to four times, 400 ms apart; a printer that gives no framed status
 * ends it with ERR_NO_ANSWER.
 *
 * Results: 1, or ERR_ALREADY_CONNECTED to ERR_NO_ANSWER. After ERR_SET_COMM_STATE and ERR_SET_TIMEOUTS the
 * port stays open until the process ends: it cannot be opened again.
 */

/*
 * 8 bits, no parity, one stop bit; one attempt. framed is stored even when a link is already open. 0 for a
 * null port, and nothing changes.
 */
NADREL_API int32_t NADREL_CALL InitPrinter(const NadrelChar *port, uint32_t baudRate, int32_t framed);

/*
 * 8 bits, no parity, one stop bit. Makes openTimeout / 200 attempts to open the port, at least one, each
 * after a pause of 200 ms.
 */
NADREL_API int32_t NADREL_CALL ConnectSerialPrinter(const NadrelChar *port, uint32_t baudRate,
                                                    int32_t openTimeout, int32_t framed);

/*
 * As ConnectSerialPrinter, with a port name in the ANSI code page and all line settings. A colon at the
 * name's end is removed; then a name of more than four characters gets \\.\ in front (COM3: opens COM3,
 * COM12: opens \\.\COM12).
 * byteSize: 5 to 8. stopBits: 0 one, 1 one and a half (with 5 bits only), 2 two (with 6 bits and more).
 * parity: 0 none, 1 odd, 2 even, 3 mark, 4 space. What the driver does not take gives ERR_SET_COMM_STATE.
 */
NADREL_API int32_t NADREL_CALL ConnectSerialPrinterEx(const char *port, uint32_t baudRate, uint8_t byteSize,
                                                      uint8_t stopBits, uint8_t parity, int32_t openTimeout,
                                                      int32_t framed);

/*
 * Closes whichever link is open. 1 when it did; 0 when none was open, another thread was closing it, or the
 * port would not close. Over TCP it waits up to 100 ms for what was sent to arrive. When it returns,
 * no thread of the connection runs, and no notification handler is called for it any more (one that is itself
 * the caller finishes its call, and does not wait for another thread's close). It waits for a handler that is
 * running on another thread: hold no lock that the handler waits for. A notification handler may call it; a
 * sending call that waits on another thread then ends. Messages that Windows has queued already stay queued.
 */
NADREL_API int32_t NADREL_CALL ClosePrinter(void);

/* ClosePrinter by another name. */
NADREL_API int32_t NADREL_CALL ClosePrinterConnection(void);

/*
 * WIRELESS CONNECTION
 *
 * One TCP connection. The address is an IPv4 or IPv6 address or a host name. framed: as for a serial
 * connection. Resolving a host name takes as long as the system's resolver takes.
 */

/*
 * One attempt of timeout / 1000 whole seconds: anything under 1000 polls once. The library's state is not put
 * back: spool, page mode and macro mark survive.
 * Result: 1; -1 the socket could not be made or waited for; -2 no connection in time, or refused; -3 a link
 * is already open; -5 (ERR_NO_ANSWER).
 */
NADREL_API int32_t NADREL_CALL InitWlanPrinter(const NadrelChar *address, uint32_t port, int32_t timeout,
                                               int32_t framed);

/*
 * Makes timeout / 200 attempts, at least one, each after a pause of 200 ms. Spool, page mode and macro mark
 * are put back to their initial state.
 * Result: 1; -1 a link is already open; -2 the socket failed; -3 attempts ran out before the connection was
 * found to stand; -7 the last attempt timed out, or was refused; -5 (ERR_NO_ANSWER).
 */
NADREL_API int32_t NADREL_CALL ConnectWirelessPrinter(const NadrelChar *address, uint32_t port,
                                                      int32_t timeout, int32_t framed);

/*
 * PRINTING
 */

/*
 * Sends the whole spool in one write and, with clear non-zero, empties it. Plain links get the bytes as they
 * are. Framed links get
 *
 *     00 C0 44 31 <length, four ASCII digits> <payload> <c0> <c1> C1
 *
 * where c0 and c1 are the XOR of the payload's bytes at even and at odd places, and a byte C0, C1 or 7D of
 * payload and check value goes out as 7D and the byte XOR 20. Of a length above 9999 only the first four
 * digits are sent.
 *
 * Result: 1 when the bytes were handed to the link, whatever became of them there (GetLinkReport knows on
 * Linux); ERR_NOT_CONNECTED; ERR_FRAME_LIMIT, nothing sent and the spool kept; 0, nothing sent and nothing
 * changed, when the spool length is below zero.
 */
NADREL_API int32_t NADREL_CALL PrintSpool(int32_t clear);

/*
 * NOTIFICATIONS
 *
 * What the printer sends comes as the message whose registered name is NADREL_PRT_OK: on Windows posted to
 * all top-level windows, on Linux told to the handler of SetNotificationHandler. wParam = (kind << 16) |
 * length, lParam by kind:
 *
 *     'D'  a reply to GetPrinterModelName or GetFirmwareVersion, zero bytes left out: the reply's address
 *     'D'  a reply that begins with 1B or 02 and is no card data; a framed reply that begins with 1B or 'D':
 *          the reply's address
 *     'S'  a plain reply to a status query, zero bytes left out: the reply's address
 *     'S'  a framed status: the status itself
 *     'T'  a print-out status report, or a plain reply that begins with '0' while no status query is
 *          outstanding, zero bytes left out: the reply's address
 *     'N'  card data on a plain link, which begins with 1B or 02 and a byte 00 to 03: the reply's address
 *     06 (ACK), 15 (NAK), 18 (CAN), 03, 04
 *          the framed replies of these numbers: 0
 *
 * length is the bytes at the address: at most 1024, card data at most 2048, what is longer is cut. Where
 * lParam is no address, length is that of the last text or pair reply. The buffer is overwritten by the next
 * reply: copy it in the handler.
 *
 * A reply ends where nothing more has arrived when the library has read up to it: a byte that comes later
 * begins the next one. Replies are looked at about every 200 ms, card data 500 ms later. Outstanding requests
 * claim a plain reply in the order model name, status, firmware version, print-out report, whatever the reply
 * says; what none claims is dropped, but for the kinds above. A status byte 00 is never told, and one of 1B
 * or 02 comes as 'N' or 'D'.
 */

/*
 * STATUS
 *
 * Sent straight to the link: the spool is not used. On a framed link the requests go out framed.
 */

/*
 * 1B 76, framed 00 C0 51 C1. Asks timeout / 200 times, at least once, each time waiting 200 ms, and
 * sees whether a byte other than FF has come; the status comes by notification, also one that comes later.
 * Result: 1 one came; -1 no link is open; -7 none came.
 */
NADREL_API int32_t NADREL_CALL GetPrinterStatus(int32_t timeout);

/* 1B 56, framed 00 C0 51 C1; else as GetPrinterStatus. */
NADREL_API int32_t NADREL_CALL GetPrinterStatusEX(int32_t timeout);

/* 1B 59 FF. The name comes as 'D'. Nothing is sent when the spool length is above 409600. */
NADREL_API void NADREL_CALL GetPrinterModelName(void);

/* 1B 00 01. The version comes as 'D'. Nothing is sent when the spool length is above 409600. */
NADREL_API void NADREL_CALL GetFirmwareVersion(void);

/*
 * 1D 76 01 for mode 1, else 1D 76 00: has the printer report each print-out, or not. The first report comes
 * as 'T'; later ones do when they begin with '0' and no status query is outstanding, or when asked for again.
 * Result: 0; ERR_SPOOL_LIMIT, and nothing is sent, when the spool length is above 409600.
 */
NADREL_API int32_t NADREL_CALL Set_PrintOutStatus(uint32_t mode);

/*
 * CARD READERS
 *
 * What the readers answer comes by notification. The first six are sent straight to the link, framed where it
 * is, with the result 0 whether or not a link is open, unless told otherwise.
 */

/*
 * 1B 4D x: magnetic-stripe reading, x = 'C', 'D', 'E', 'F', 'G' for track 0 to 4, else 00. ERR_NOT_CONNECTED
 * without a link.
 */
NADREL_API int32_t NADREL_CALL EnterMSRMode(int32_t track);

/* 04: ends it. */
NADREL_API int32_t NADREL_CALL CancelMSRMode(void);

/* 04: ends a card read. */
NADREL_API int32_t NADREL_CALL CardCancel(void);

/* 04 1B 4D 44 for a non-zero flag, else 04 1B 4D 43. */
NADREL_API int32_t NADREL_CALL CardRead(int32_t flag);

/* 02 43 31 31 00 00 03 for a non-zero flag, else 02 44 31 31 00 00 03: CardRead's letters, reversed. */
NADREL_API int32_t NADREL_CALL CardRead_M(int32_t flag);

/* 1B 4D 58, never framed. ERR_SPOOL_LIMIT, and nothing is sent, when the spool length is above 409600. */
NADREL_API int32_t NADREL_CALL SecuredCardCancel(void);

/*
 * 1B 4E: smart-card reading. Direct. Result: the position of the last byte appended (spool length - 1), or
 * ERR_SPOOL_LIMIT when nothing was.
 */
NADREL_API int32_t NADREL_CALL EnterSCRMode(void);

/* 7E 04 7E: ends it. As EnterSCRMode. */
NADREL_API int32_t NADREL_CALL CancelSCRMode(void);

/*
 * 1B 4D 53 q r text: a command for the secured card module, 8-bit and whole; q and r are quotient and rest by
 * 255 of the low byte of its length. Direct. Result: the position where the text begins, or ERR_SPOOL_LIMIT
 * when nothing was appended.
 */
NADREL_API int32_t NADREL_CALL SecuredCardCommend(const char *text);

/*
 * PAYMENT
 *
 * Sent straight to the link, never framed. The results say what was built, not whether a link took it.
 */

/*
 * 1B 6D and the low bytes of the eight characters. Result: 1; any other length is the result itself, and
 * nothing is sent: a length of one gives 1 too.
 */
NADREL_API int32_t NADREL_CALL SetTermialID(const NadrelChar *id);

/*
 * 1B 6E t, then first as 12, second as 8 and third as 6 digits, two a byte. t = 01 when the low byte of type
 * is not zero, else 00. first: 0 to 12 digits, filled with zeros from the left; second: 8; third: 6. What is
 * not a digit counts with the low four bits of its distance from '0'. Checked in this order, and nothing is
 * sent but with the result 1: -1 first is longer than 12; the length of second when it is not 8; -4 third is
 * not 6.
 */
NADREL_API int32_t NADREL_CALL SetPaymentReq(uint32_t type, const NadrelChar *first, const NadrelChar *second,
                                             const NadrelChar *third);

#ifdef __cplusplus
}
#endif

#endif
