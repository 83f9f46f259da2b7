#include "tests/endtoend/EndToEnd.h"

#include "tests/endtoend/Limits.h"

namespace endtoend {
namespace {

std::string TailOf(const std::string &text) {
    constexpr size_t kShown = 2000;
    return text.size() <= kShown ? text : "..." + text.substr(text.size() - kShown);
}

} // namespace

EndToEnd::EndToEnd() {
    std::thread([] {}).join(); // a sanitizer starts a thread of its own with the first one
    atStart = UsedNow();
    heard.Listen();
}

EndToEnd::~EndToEnd() {
    ClosePrinter();
    ClearSpool();
    heard.StopListening();
    SetSendTimeout(0);
    SetAnsiCodePage(1252);
    StopPrinter();
    if (printer && HasFailure())
        std::cerr << "the printer listed:\n"
                  << TailOf(printer->Listing()) << "and said:\n"
                  << printer->Complaints();
    printer.reset();
    const Resources expected{atStart.threads, atStart.descriptors + keptOpen};
    EXPECT_TRUE(Eventually([&] { return UsesOnly(expected); }))
        << "left: " << UsedNow() << "; at the start: " << atStart;
}

bool EndToEnd::UsesOnly(const Resources &expected) {
    if (!kEmulated)
        return UsedNow() == expected;
    return Eventually([&] {
        const Resources used = UsedNow();
        return used.threads <= expected.threads && used.descriptors == expected.descriptors;
    });
}

VirtualPrinter &EndToEnd::StartPrinter(std::vector<std::string> options) {
    return printer.emplace(NADREL_PRINTER_PROGRAM, folder.Path() / "printer", std::move(options));
}

void EndToEnd::StopPrinter() {
    if (!printer || !printer->IsRunning())
        return;
    EXPECT_EQ(printer->Stop(), 0) << printer->Complaints();
}

testing::AssertionResult EndToEnd::Open(Link link, std::vector<std::string> options) {
    StartPrinter(std::move(options));
    const int32_t result = Connect(*printer, link);
    if (result != NADREL_SUCCESS)
        return testing::AssertionFailure() << "the connect gave " << result;
    constexpr uint64_t kQueryLength = 4;
    for (uint64_t queries = Report().bytesAsked / kQueryLength; queries > 0; --queries)
        EXPECT_EQ(heard.Next().kind, uint32_t{'S'});
    return testing::AssertionSuccess();
}

void EndToEnd::Settle() {
    printer->Say("send 30");
    for (Notification next = heard.Next(); next != Reply('T', "0"); next = heard.Next())
        ASSERT_NE(next.kind, 0u) << "the printer's '0' was not told";
}

void EndToEnd::Meet(Link link, std::vector<std::string> options) {
    ASSERT_TRUE(Open(link, std::move(options)));
    InitPrinterStatus();
    ASSERT_EQ(PrintSpool(1), 1);
    ASSERT_TRUE(HasListed("ESC @"));
    Settle();
}

testing::AssertionResult EndToEnd::HasListed(const std::string &text, size_t count) {
    if (printer->AwaitListed(text, count))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "the listing holds \"" << text << "\" only " << printer->Listed(text) << " times";
}

} // namespace endtoend
