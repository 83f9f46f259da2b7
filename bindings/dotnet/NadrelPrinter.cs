// The NADREL printer library for .NET: its functions as they are exported, with strings, numbers and the calling
// convention declared. What each function does, takes and answers is told in NadrelPrinter.h and NadrelHost.h.
//
//     NadrelPrinter.ConnectSerialPrinter("/dev/ttyUSB0", 115200, 2000, 0);
//     NadrelPrinter.TextSaveSpool("Thank you");
//     NadrelPrinter.PrintData();
//     NadrelPrinter.PrintSpool(1);
//     NadrelPrinter.ClosePrinter();
//
// Text is UTF-16 on every system. The library is found by its name, libnadrelprinter.so or NADRELPRINTER.dll,
// beside the program or where the system looks for libraries. On Debian libnadrelprinter-dev installs that
// name; where there is libnadrelprinter1 alone, a link beside the program does. A delegate that is set as
// notification handler has to be kept alive by the host for as long as it is set, and the reply's bytes have
// to be copied (Marshal.Copy) within it.

using System;
using System.Runtime.InteropServices;

namespace Nadrel
{
    /// <summary>What became of the bytes since the last connect; Size is set before the call.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct LinkReport
    {
        public uint Size;
        public uint LastError;
        public uint ErrorCount;
        public uint NotificationsPosted;
        public ulong BytesAsked;
        public ulong BytesTaken;
        public ulong BytesReceived;
        public ulong BytesDropped;
    }

    /// <summary>Told what the printer says: wParam is (kind &lt;&lt; 16) | length, lParam an address, a value or
    /// 0.</summary>
    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate void NotificationHandler(uint message, uint wParam, IntPtr lParam, IntPtr context);

    public static class NadrelPrinter
    {
        public const string LibraryName = "nadrelprinter";

        public const int NADREL_SUCCESS = 1;
        public const int ERR_ALREADY_CONNECTED = -1;
        public const int ERR_OPEN_PORT = -2;
        public const int ERR_SET_COMM_STATE = -3;
        public const int ERR_SET_TIMEOUTS = -4;
        public const int ERR_NO_ANSWER = -5;
        public const int ERR_NOT_CONNECTED = -11;
        public const int ERR_SPOOL_LIMIT = -12;
        public const int ERR_FRAME_LIMIT = -13;
        public static readonly IntPtr NADREL_INVALID_HANDLE = new IntPtr(-1);

        // Spool

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int ControlCommand(byte[] bytes, int count);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SaveSpool([MarshalAs(UnmanagedType.LPWStr)] string text, int font, int bold);

        // The result is the library's: copy its bytes up to the zero, do not free it.
        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern IntPtr U2A([MarshalAs(UnmanagedType.LPWStr)] string text);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void ClearSpool();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern IntPtr GetPortHandle();

        // Text

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SetPrintPosition(int x, int y);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void PrintData();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void PrintDotFeed(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void PrintLineFeed(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void InitPrinterStatus();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetLineSpace(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetCharSpace(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetCharCodeTable(int table, uint kind);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetCharCodeTableEX(uint table);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetFontSize(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetTextStyle(uint underline, uint bold, int width, int height, uint reverse);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetUpsideDown(uint on);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetAbsPosition(int pos);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetTextAlignment(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void TextSaveSpool([MarshalAs(UnmanagedType.LPWStr)] string text);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void CutPaper(uint mode);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void FeedToMark();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetPositionFromMark(int dots);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetMarkUseMode(uint on);

        // Page mode

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetPageMode();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_SetStandardMode();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_ClearCurrentData();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_Print();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_Print_StandardMode();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_SetArea(int x, int y, int width, int height);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_SetDirection(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_SetPosition(int x, int y);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_Newline();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_DotFeed(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_LineFeed(int n);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_DrawBox(int x, int y, int width, int height, int thickness);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_DrawLine(int x1, int y1, int x2, int y2, int thickness);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Page_DrawEllipse(int x1, int y1, int x2, int y2, int thickness);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void InitPageMode(int x, int y, int width, int height);

        // Barcodes

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int OneDimensionBarcodeSaveSpool(
            uint symbology, int width, int height, int hri, [MarshalAs(UnmanagedType.LPWStr)] string data);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int BarcodeSaveSpool(
            byte symbology, byte width, byte height, int hri, [MarshalAs(UnmanagedType.LPWStr)] string data,
            int areaWidth, int areaHeight, int x);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void PDF417SaveSpool(
            int moduleWidth, int p1, int p2, int p3, [MarshalAs(UnmanagedType.LPWStr)] string data, int hri);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void TruncatedPDF417SaveSpool(
            int moduleWidth, int p1, int p2, int p3, [MarshalAs(UnmanagedType.LPWStr)] string data, int hri);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void MicroPDF417SaveSpool(
            int moduleWidth, int p1, int p2, int p3, [MarshalAs(UnmanagedType.LPWStr)] string data, int hri);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void QRCodeSaveSpool(
            int version, uint eccLevel, int moduleSize, [MarshalAs(UnmanagedType.LPWStr)] string data);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void DataMatrixSaveSpool(
            uint p1, uint p2, int moduleSize, [MarshalAs(UnmanagedType.LPWStr)] string data);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void MaxicodeSaveSpool(int mode, [MarshalAs(UnmanagedType.LPWStr)] string data);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void GS1DatabarSaveSpool(
            int type, int segments, [MarshalAs(UnmanagedType.LPWStr)] string data);

        // Macros

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetMarco_Start();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetMacro_End();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetMacro_FontSize_FontTable(int size, int table);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void Initialize_Macro();

        // TrueType

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SelectForTTF([MarshalAs(UnmanagedType.LPWStr)] string name);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetFontForTTF([MarshalAs(UnmanagedType.LPWStr)] string name);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int PrintSpoolForTTF([MarshalAs(UnmanagedType.LPWStr)] string text, byte p1, byte p2);

        // Raster

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int BmpSaveSpool([MarshalAs(UnmanagedType.LPWStr)] string path, int x, int y);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void NormalBmpSaveSpool([MarshalAs(UnmanagedType.LPWStr)] string path);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void CompressedBmpSaveSpool([MarshalAs(UnmanagedType.LPWStr)] string path);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void LoadLogoSaveSpool(int n);

        // Serial connection

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int InitPrinter(
            [MarshalAs(UnmanagedType.LPWStr)] string port, uint baudRate, int framed);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int ConnectSerialPrinter(
            [MarshalAs(UnmanagedType.LPWStr)] string port, uint baudRate, int openTimeout, int framed);

        // An ASCII port name: what LPStr makes of other characters differs between systems.
        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int ConnectSerialPrinterEx(
            [MarshalAs(UnmanagedType.LPStr)] string port, uint baudRate, byte byteSize, byte stopBits, byte parity,
            int openTimeout, int framed);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int ClosePrinter();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int ClosePrinterConnection();

        // Wireless connection

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int InitWlanPrinter(
            [MarshalAs(UnmanagedType.LPWStr)] string address, uint port, int timeout, int framed);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int ConnectWirelessPrinter(
            [MarshalAs(UnmanagedType.LPWStr)] string address, uint port, int timeout, int framed);

        // Printing

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int PrintSpool(int clear);

        // Status

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int GetPrinterStatus(int timeout);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int GetPrinterStatusEX(int timeout);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void GetPrinterModelName();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void GetFirmwareVersion();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int Set_PrintOutStatus(uint mode);

        // Card readers

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int EnterMSRMode(int track);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int CancelMSRMode();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int CardCancel();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int CardRead(int flag);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int CardRead_M(int flag);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SecuredCardCancel();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int EnterSCRMode();

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int CancelSCRMode();

        // The last byte must be 0.
        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SecuredCardCommend(byte[] text);

        // Payment

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SetTermialID([MarshalAs(UnmanagedType.LPWStr)] string id);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SetPaymentReq(
            uint type, [MarshalAs(UnmanagedType.LPWStr)] string first,
            [MarshalAs(UnmanagedType.LPWStr)] string second, [MarshalAs(UnmanagedType.LPWStr)] string third);

        // Host: exported on Linux only.

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern void SetNotificationHandler(NotificationHandler handler, IntPtr context);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SetAnsiCodePage(uint codePage);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int GetLinkReport(ref LinkReport report);

        [DllImport(LibraryName, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
        public static extern int SetSendTimeout(int milliseconds);
    }
}
