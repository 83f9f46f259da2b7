#include "api/NadrelPrinter.h"
#include "bench/CoreClock.h"
#include "bench/PseudoTerminalLink.h"

#include <benchmark/benchmark.h>

#include <cstdint>

namespace {

// Calls before the spool is emptied, which is part of what a call costs.
constexpr int kCalls = 32;

struct Encoder {
    const char *call;
    void (*run)();
    void (*prepare)();
};

void Measure(benchmark::State &state, const Encoder &encoder) {
    const bench::PseudoTerminalLink link;
    encoder.prepare();
    while (state.KeepRunningBatch(kCalls)) {
        for (int i = 0; i < kCalls; ++i)
            encoder.run();
        ClearSpool();
    }
    bench::ReportAt4GHz(state);
}

#define ENCODER(...) #__VA_ARGS__, [] { __VA_ARGS__; }, [] {}
#define ON_A_PAGE(...) #__VA_ARGS__, [] { __VA_ARGS__; }, SetPageMode

constexpr uint8_t kBytes[] = {0x1B, 0x2D, 0x01, 0x1B, 0x40};
constexpr const char16_t *kLine = u"2 x Coffee, 1 x Tea        12.50"; // 32 characters
constexpr const char16_t *kNumber = u"400638133393";                   // 12 digits

constexpr Encoder kEncoders[] = {
    {ENCODER(ControlCommand(kBytes, 5))},
    {ENCODER(SaveSpool(kLine, 0, 1))},
    {ENCODER(U2A(kLine))},
    {ENCODER(SetPrintPosition(100, 200))},
    {ENCODER(PrintData())},
    {ENCODER(PrintDotFeed(8))},
    {ENCODER(PrintLineFeed(2))},
    {ENCODER(InitPrinterStatus())},
    {ENCODER(SetLineSpace(30))},
    {ENCODER(SetCharSpace(1))},
    {ENCODER(SetCharCodeTable(2, 1))},
    {ENCODER(SetCharCodeTableEX(19))},
    {ENCODER(SetFontSize(1))},
    {ENCODER(SetTextStyle(1, 1, 0, 1, 0))},
    {ENCODER(SetUpsideDown(1))},
    {ENCODER(SetAbsPosition(300))},
    {ENCODER(SetTextAlignment(1))},
    {ENCODER(TextSaveSpool(kLine))},
    {ENCODER(CutPaper(1))},
    {ENCODER(FeedToMark())},
    {ENCODER(SetPositionFromMark(40))},
    {ENCODER(SetMarkUseMode(1))},
    {ENCODER(SetPageMode())},
    {ENCODER(Page_SetStandardMode())},
    {ON_A_PAGE(Page_ClearCurrentData())},
    {ON_A_PAGE(Page_Print())},
    {ENCODER(SetPageMode(), Page_Print_StandardMode())},
    {ON_A_PAGE(Page_SetArea(0, 0, 384, 800))},
    {ON_A_PAGE(Page_SetDirection(1))},
    {ON_A_PAGE(Page_SetPosition(10, 300))},
    {ON_A_PAGE(Page_Newline())},
    {ON_A_PAGE(Page_DotFeed(8))},
    {ON_A_PAGE(Page_LineFeed(2))},
    {ON_A_PAGE(Page_DrawBox(10, 20, 300, 50, 2))},
    {ENCODER(Page_DrawLine(0, 0, 384, 0, 1))},
    {ENCODER(Page_DrawEllipse(0, 0, 300, 100, 1))},
    {ENCODER(InitPageMode(0, 0, 384, 800))},
    {ENCODER(OneDimensionBarcodeSaveSpool(67, 2, 80, 1, kNumber))},
    {ENCODER(BarcodeSaveSpool(67, 2, 80, 1, kNumber, 384, 120, 0))},
    {ENCODER(PDF417SaveSpool(2, 5, 2, 3, kLine, 0))},
    {ENCODER(TruncatedPDF417SaveSpool(2, 2, 10, 3, kLine, 0))},
    {ENCODER(MicroPDF417SaveSpool(2, 2, 4, 3, kLine, 0))},
    {ENCODER(QRCodeSaveSpool(0, 'M', 4, kLine))},
    {ENCODER(DataMatrixSaveSpool(0, 0, 4, kLine))},
    {ENCODER(MaxicodeSaveSpool(4, kLine))},
    {ENCODER(GS1DatabarSaveSpool(0, 0, kNumber))},
    {ENCODER(SetMarco_Start(), SetFontSize(1), SetMacro_End())},
    {ENCODER(SetMacro_FontSize_FontTable(1, 2))},
    {ENCODER(Initialize_Macro())},
    {ENCODER(SelectForTTF(u"DejaVuSans.ttf"))},
    {ENCODER(SetFontForTTF(u"DejaVuSans.ttf"))},
    {ENCODER(PrintSpoolForTTF(kLine, 24, 24))},
};

void ComposeHead() {
    InitPrinterStatus();
    SetCharCodeTable(2, 1);
    SetTextAlignment(1);
    SetTextStyle(0, 1, 1, 1, 0);
    TextSaveSpool(u"The Corner Cafe");
    PrintData();
    SetTextStyle(0, 0, 0, 0, 0);
    TextSaveSpool(u"12 Harbour Street, 80331 Munich");
    PrintLineFeed(2);
    SetTextAlignment(0);
}

void ComposeItems() {
    static constexpr const char16_t *items[] = {
        u"2 x Espresso                4.40", u"1 x Cappuccino              3.20",
        u"1 x Apple tart, cream       4.80", u"3 x Mineral water 0.5 l     8.70",
        u"1 x Soup of the day         6.50", u"2 x Caf\u00E9 au lait            7.20"};
    for (int round = 0; round < 8; ++round)
        for (const char16_t *const item : items) {
            TextSaveSpool(item);
            PrintData();
        }
}

void ComposeFoot() {
    TextSaveSpool(u"--------------------------------");
    PrintData();
    SetTextStyle(0, 1, 0, 1, 0);
    TextSaveSpool(u"Total EUR                 278.40");
    PrintData();
    SetTextStyle(0, 0, 0, 0, 0);
    TextSaveSpool(u"incl. 19% VAT              44.45");
    PrintData();
    TextSaveSpool(u"Card payment              278.40");
    PrintLineFeed(2);
    SetTextAlignment(1);
    OneDimensionBarcodeSaveSpool(67, 2, 60, 1, kNumber);
    QRCodeSaveSpool(0, 'M', 4, u"https://receipts.example/t/4f8a21c09b7e");
    TextSaveSpool(u"Thank you, see you soon!");
    PrintLineFeed(4);
    CutPaper(1);
}

// The result counts the emptying, too; the counter `bytes` is the receipt's length.
void WholeSalesReceipt(benchmark::State &state) {
    const bench::PseudoTerminalLink link;
    double bytes = 0;
    for (auto _ : state) {
        ComposeHead();
        ComposeItems();
        ComposeFoot();
        ClearSpool();
    }
    ComposeHead();
    ComposeItems();
    ComposeFoot();
    bytes = ControlCommand(kBytes, 5) - 5;
    state.counters["bytes"] = bytes;
    bench::ReportAt4GHz(state);
}

BENCHMARK(WholeSalesReceipt);

[[maybe_unused]] const bool registered = [] {
    for (const Encoder &encoder : kEncoders)
        benchmark::RegisterBenchmark(encoder.call,
                                     [&encoder](benchmark::State &state) { Measure(state, encoder); });
    return true;
}();

} // namespace
