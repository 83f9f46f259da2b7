#include "tests/SpoolFixture.h"
#include "tests/SpoolModel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <list>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace nadrel {

namespace {

constexpr uint32_t kSeeds = 40;
constexpr int kCallsPerSeed = 500;

// Arguments as hosts would not pass them: limits, and what lies right beside them, more often than anything
// else.
class Arguments {
  public:
    explicit Arguments(uint32_t seed) : engine(seed) {}

    uint32_t Below(uint32_t count) { return std::uniform_int_distribution<uint32_t>(0, count - 1)(engine); }

    int32_t Number() {
        static constexpr int32_t edges[] = {-1,        -2,  -21, -256, -257,  -300,  INT32_MIN,
                                            INT32_MAX, 255, 256, 257,  65535, 65536, 0x10000 + 'L'};
        switch (Below(4)) {
        case 0:
            return edges[Below(std::size(edges))];
        case 1:
            return static_cast<int32_t>(Below(300));
        case 2:
            return "LMQHX"[Below(5)];
        default:
            return static_cast<int32_t>(Below(9));
        }
    }

    // Null now and then. It stands as long as this object.
    const char16_t *Text() {
        static constexpr uint32_t lengths[] = {0,   1,   2,   44,   255,  256,  257,
                                               300, 511, 512, 9986, 9993, 9994, 10000};
        if (Below(20) == 0)
            return nullptr;
        uint32_t length = Below(3) == 0 ? lengths[Below(std::size(lengths))] : Below(40);
        if (Below(200) == 0)
            length = 204790 + Below(10);
        std::u16string &text = texts.emplace_back(length, u' ');
        for (char16_t &unit : text)
            unit = SpoolModel::kCharacters[Below(static_cast<uint32_t>(SpoolModel::kCharacters.size()))];
        return text.c_str();
    }

    int32_t Position() {
        static constexpr int32_t edges[] = {
            -4096 - 1,  -4096,  -4090,  -11,    -12,    -16,    0,      9980,   9994,   204790,    409590,
            409600 - 8, 409600, 409601, 413683, 413689, 413690, 413695, 413696, 413697, INT32_MIN, INT32_MAX};
        return edges[Below(std::size(edges))];
    }

    SpoolModel::Bytes Bytes() {
        SpoolModel::Bytes bytes(Below(50) == 0 ? 409590 + Below(30) : Below(60));
        std::generate(bytes.begin(), bytes.end(), [this] { return static_cast<uint8_t>(Below(256)); });
        return bytes;
    }

    template <typename Type>
    Type Draw() {
        if constexpr (std::is_pointer_v<Type>)
            return Text();
        else
            return static_cast<Type>(Number());
    }

  private:
    std::mt19937 engine;
    std::list<std::u16string> texts;
};

std::string Shown(const char16_t *text) {
    return text == nullptr ? "null" : std::to_string(std::u16string_view(text).size()) + " characters";
}

template <typename Number>
std::string Shown(Number number) {
    return std::to_string(number);
}

// Makes one call on both sides and tells it, with both results.
struct Outcome {
    std::string call;
    int64_t result = 0;
    int64_t expected = 0;
};
using Operation = std::function<Outcome(Arguments &, SpoolModel &)>;

template <typename Result, typename... Types>
Operation Both(const char *name, Result (*library)(Types...), Result (SpoolModel::*model)(Types...)) {
    return [=](Arguments &arguments, SpoolModel &spool) {
        const std::tuple<Types...> drawn{arguments.Draw<Types>()...};
        Outcome outcome;
        outcome.call = std::string(name) + "(";
        std::apply([&](auto... values) { ((outcome.call += Shown(values) + ", "), ...); }, drawn);
        const auto onModel = [&](auto... values) { return (spool.*model)(values...); };
        if constexpr (std::is_void_v<Result>) {
            std::apply(library, drawn);
            std::apply(onModel, drawn);
        } else {
            outcome.result = std::apply(library, drawn);
            outcome.expected = std::apply(onModel, drawn);
        }
        return outcome;
    };
}

Outcome CallControlCommand(Arguments &arguments, SpoolModel &spool) {
    const SpoolModel::Bytes bytes = arguments.Bytes();
    const int32_t count = static_cast<int32_t>(bytes.size());
    const uint8_t *const given = bytes.empty() ? bytes.data() : bytes.data();
    if (given == nullptr)
        return {"ControlCommand(null, 0", ControlCommand(nullptr, 0), spool.link ? 0 : -11};
    return {"ControlCommand(" + std::to_string(count), ControlCommand(given, count),
            spool.ControlCommand(bytes)};
}

Outcome Open(Arguments &, SpoolModel &spool) {
    InitPrinter(u"COM1", 9600, 0);
    spool.Open();
    return {"InitPrinter(", 0, 0};
}

Outcome Close(Arguments &, SpoolModel &spool) {
    ClosePrinter();
    spool.Close();
    return {"ClosePrinter(", 0, 0};
}

Outcome Place(Arguments &arguments, SpoolModel &spool) {
    const int32_t position = arguments.Position();
    SpoolLength = position;
    spool.length = position;
    return {"SpoolLength = (" + std::to_string(position), 0, 0};
}

#define BOTH(function) Both(#function, &::function, &SpoolModel::function)

std::vector<Operation> AllOperations() {
    return {
        CallControlCommand,
        CallControlCommand,
        BOTH(SaveSpool),
        BOTH(SaveSpool),
        BOTH(ClearSpool),
        BOTH(ClearSpool),
        Open,
        Open,
        Open,
        Close,
        Place,
        Place,
        BOTH(SetPrintPosition),
        BOTH(PrintData),
        BOTH(PrintDotFeed),
        BOTH(PrintLineFeed),
        BOTH(InitPrinterStatus),
        BOTH(SetLineSpace),
        BOTH(SetCharSpace),
        BOTH(SetCharCodeTable),
        BOTH(SetCharCodeTableEX),
        BOTH(SetFontSize),
        BOTH(SetTextStyle),
        BOTH(SetUpsideDown),
        BOTH(SetAbsPosition),
        BOTH(SetTextAlignment),
        BOTH(TextSaveSpool),
        BOTH(CutPaper),
        BOTH(FeedToMark),
        BOTH(SetPositionFromMark),
        BOTH(SetMarkUseMode),
        BOTH(SetPageMode),
        BOTH(Page_SetStandardMode),
        BOTH(Page_ClearCurrentData),
        BOTH(Page_Print),
        BOTH(Page_Print_StandardMode),
        BOTH(Page_SetArea),
        BOTH(Page_SetDirection),
        BOTH(Page_SetPosition),
        BOTH(Page_Newline),
        BOTH(Page_DotFeed),
        BOTH(Page_LineFeed),
        BOTH(Page_DrawBox),
        BOTH(Page_DrawLine),
        BOTH(Page_DrawEllipse),
        BOTH(InitPageMode),
        BOTH(OneDimensionBarcodeSaveSpool),
        BOTH(BarcodeSaveSpool),
        BOTH(PDF417SaveSpool),
        BOTH(TruncatedPDF417SaveSpool),
        BOTH(MicroPDF417SaveSpool),
        BOTH(QRCodeSaveSpool),
        BOTH(DataMatrixSaveSpool),
        BOTH(MaxicodeSaveSpool),
        BOTH(GS1DatabarSaveSpool),
        BOTH(SetMarco_Start),
        BOTH(SetMarco_Start),
        BOTH(SetMacro_End),
        BOTH(SetMacro_End),
        BOTH(SetMacro_FontSize_FontTable),
        BOTH(Initialize_Macro),
        BOTH(SelectForTTF),
        BOTH(SetFontForTTF),
        BOTH(PrintSpoolForTTF),
    };
}

std::vector<uint32_t> Seeds() {
    if (const char *const given = std::getenv("NADREL_SEED"))
        return {static_cast<uint32_t>(std::strtoul(given, nullptr, 10))};
    std::vector<uint32_t> seeds;
    for (uint32_t seed = 1; seed <= kSeeds; ++seed)
        seeds.push_back(seed);
    return seeds;
}

class SpoolRandom : public SpoolFixture {
  protected:
    void Compare(const SpoolModel &model, const Outcome &outcome) const {
        ASSERT_EQ(outcome.result, outcome.expected);
        ASSERT_EQ(SpoolLength, model.length);
        ASSERT_EQ(PageModeFlag, model.page ? 1 : 0);
        ASSERT_EQ(MacroStartMark, model.mark);
        const uint8_t *const first = SpoolBuffer.At(kStorageFirst);
        if (std::memcmp(first, model.storage.data(), model.storage.size()) == 0)
            return;
        const auto [found, expected] =
            std::mismatch(first, SpoolBuffer.At(kStorageEnd), model.storage.data());
        FAIL() << "at " << found - SpoolBuffer.At(0) << " stands " << int{*found} << " instead of "
               << int{*expected};
    }

    void Play(uint32_t seed) {
        Arguments arguments(seed);
        SpoolModel model;
        ClosePrinter();
        ResetLinkState();
        for (int call = 0; call < kCallsPerSeed; ++call) {
            const Outcome outcome =
                operations[arguments.Below(static_cast<uint32_t>(operations.size()))](arguments, model);
            SCOPED_TRACE("call " + std::to_string(call) + ": " + outcome.call + ")");
            ASSERT_NO_FATAL_FAILURE(Compare(model, outcome));
        }
    }

    const std::vector<Operation> operations = AllOperations();
};

} // namespace

TEST_F(SpoolRandom, CallsGiveWhatAPlainModelOfTheSpoolGives) {
    os.StopRecording();
    for (const uint32_t seed : Seeds()) {
        SCOPED_TRACE("repeat with: NADREL_SEED=" + std::to_string(seed) +
                     " ./library_tests --gtest_filter=SpoolRandom.*");
        ASSERT_NO_FATAL_FAILURE(Play(seed));
    }
}

} // namespace nadrel
