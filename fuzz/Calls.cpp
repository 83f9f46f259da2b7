#include "fuzz/Calls.h"
#include "fuzz/Library.h"

#include "platform/linux/AnsiCodePage.h"

// Calls of all functions in any order with any arguments, on a system that refuses now and then.

namespace {

using namespace fuzz;

using Call = void (*)(Input &);

// Every exported name, from the list of them.
constexpr Call kCalls[] = {
#define NADREL_FUNCTION(name) [](Input &input) { CallWith(&name, input); },
#include "Functions.inc"
#undef NADREL_FUNCTION
};

// A byte chooses what is done next: below this it is a call, or a refusal where there is no such call.
constexpr uint8_t kRefusals = 100;
static_assert(std::size(kCalls) < kRefusals);

class Calls {
  public:
    explicit Calls(Input &bytes) : input(bytes) {
        static constexpr std::array<uint32_t, 6> kCodePages = {1252, 437, 932, 936, 874, 65001};
        platform::SetAnsiCodePage(kCodePages[input.Below(kCodePages.size())]);
        answers = input.Flag();
        library.Files().Put(u"a", nadrel::BmpBuilder::OneBit(33, 30, Dot).Bytes());
        library.Files().Put(u"b", nadrel::BmpBuilder::Colour(9, 49, Colour).Bytes());
    }

    void Run() {
        while (!input.IsUsedUp()) {
            Next();
            Require(nadrel::SpoolStorage::Holds(nadrel::SpoolLength, 0),
                    "the spool ends outside its storage");
        }
        library.System().ForgetScript();
        ClosePrinter();
        library.ExpectOpenPorts(refused ? library.System().OpenPorts() : 0);
    }

  private:
    static int Dot(int32_t x, int32_t y) { return (x + y) % 2; }
    static nadrel::Pixel Colour(int32_t x, int32_t y) {
        return {static_cast<uint8_t>(x * 20), static_cast<uint8_t>(y * 5), 99};
    }

    void Next() {
        const uint8_t choice = input.Byte();
        if (choice < std::size(kCalls))
            Answered(kCalls[choice]);
        else if (choice < kRefusals)
            Refuse();
        else if (choice < 120)
            ReceiveReply();
        else
            Connect(choice);
    }

    void Answered(Call call) {
        if (answers)
            library.AnswerProbes();
        call(input);
        library.System().ForgetScript();
    }

    // One of the next operations of the next call fails.
    void Refuse() {
        refused = true;
        library.System().FailCall(1 + input.Byte() % 32, 5);
        kCalls[input.Below(std::size(kCalls))](input);
        library.System().ForgetScript();
    }

    void ReceiveReply() {
        library.System().PrinterSends(Filled(input.ShortBytes()));
        library.RunThreads(input.Byte() * 8U);
    }

    // No segment is empty.
    static Bytes Filled(Bytes bytes) { return bytes.empty() ? Bytes{'S'} : bytes; }

    void Connect(uint8_t choice) {
        if (answers)
            library.AnswerProbes();
        if (choice % 2 == 0)
            InitPrinter(u"COM1", 9600, choice % 4 / 2);
        else
            InitWlanPrinter(u"printer", 9100, 0, choice % 4 / 2);
        library.System().ForgetScript();
    }

    Input &input;
    Library library;
    bool answers = false;
    bool refused = false;
};

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    Input input({bytes, count});
    Calls(input).Run();
    return 0;
}
