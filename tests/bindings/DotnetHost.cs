// Calls the library through its declarations for .NET and says what came back: DotnetHost ADDRESS PORT
using System;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Threading;
using Nadrel;

static class DotnetHost
{
    const int PatienceMs = 30000;

    static readonly AutoResetEvent Told = new AutoResetEvent(false);

    // Kept for as long as it is set.
    static readonly NotificationHandler Handler = Tell;

    static void Tell(uint message, uint wParam, IntPtr lParam, IntPtr context)
    {
        byte[] reply = new byte[wParam & 0xFFFF];
        Marshal.Copy(lParam, reply, 0, reply.Length);
        Say("told " + (char)(wParam >> 16) + " " + BitConverter.ToString(reply) + " " + context);
        Told.Set();
    }

    static void Say(string line)
    {
        Console.WriteLine(line);
        Console.Out.Flush();
    }

    static int Main(string[] arguments)
    {
        Prelink();
        NadrelPrinter.SetNotificationHandler(Handler, new IntPtr(7));
        Say("absent " + NadrelPrinter.ConnectSerialPrinterEx("/dev/no-such-port", 9600, 8, 0, 0, 0, 0));
        uint port = uint.Parse(arguments[1]);
        Say("connect " + NadrelPrinter.ConnectWirelessPrinter(arguments[0], port, PatienceMs, 0));
        Say("port " + (NadrelPrinter.GetPortHandle() == NadrelPrinter.NADREL_INVALID_HANDLE));
        Compose();
        Say("print " + NadrelPrinter.PrintSpool(1));
        NadrelPrinter.GetPrinterModelName();
        Say("answer " + Told.WaitOne(PatienceMs));
        Report();
        Say("close " + NadrelPrinter.ClosePrinter());
        return 0;
    }

    // Finds every function by its name and makes the code that converts its arguments.
    static void Prelink()
    {
        int count = 0;
        const BindingFlags Functions = BindingFlags.Public | BindingFlags.Static;
        foreach (MethodInfo method in typeof(NadrelPrinter).GetMethods(Functions))
        {
            Marshal.Prelink(method);
            ++count;
        }
        Say("functions " + count);
    }

    static void Compose()
    {
        Say("converted " + Marshal.PtrToStringAnsi(NadrelPrinter.U2A("plain")));
        NadrelPrinter.TextSaveSpool("Café 3 €");
        Say("bytes " + NadrelPrinter.ControlCommand(new byte[] { 0x1B, 0x00, 0xFF }, 3));
        NadrelPrinter.QRCodeSaveSpool(4, 'M', 5, "ab");
        Say("barcode " + NadrelPrinter.BarcodeSaveSpool(73, 2, 80, 0, "{B12", 384, 100, 8));
        Say("card " + NadrelPrinter.SecuredCardCommend(new byte[] { 0x78, 0x79, 0x7A, 0x00 }));
        Say("font " + NadrelPrinter.PrintSpoolForTTF("A€", 24, 255));
    }

    static void Report()
    {
        LinkReport report = new LinkReport();
        Say("refused " + NadrelPrinter.GetLinkReport(ref report));
        report.Size = (uint)Marshal.SizeOf(typeof(LinkReport));
        Say("report " + NadrelPrinter.GetLinkReport(ref report) + " asked " + report.BytesAsked + " taken " +
            report.BytesTaken + " received " + report.BytesReceived + " told " + report.NotificationsPosted +
            " errors " + report.ErrorCount);
    }
}
