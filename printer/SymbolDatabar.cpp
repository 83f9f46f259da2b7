#include "printer/SymbolKinds.h"
#include "printer/SymbolZint.h"

#include <algorithm>
#include <iterator>

namespace printer {
namespace {

// How long an element string is, told by the first two digits of its application identifier.
struct ElementLength {
    int firstPrefix, lastPrefix;
    size_t identifier; // digits
    size_t value;      // characters; 0 = up to a separator or the end
};

constexpr ElementLength ElementLengths[] = {
    {0, 0, 2, 18},  {1, 3, 2, 14},   {4, 4, 2, 16},  {10, 10, 2, 0}, {11, 19, 2, 6}, {20, 20, 2, 2},
    {21, 22, 2, 0}, {23, 25, 3, 0},  {30, 30, 2, 0}, {31, 36, 4, 6}, {37, 37, 2, 0}, {39, 39, 4, 0},
    {40, 40, 3, 0}, {41, 41, 3, 13}, {42, 42, 3, 0}, {43, 43, 4, 0}, {70, 70, 4, 0}, {71, 71, 3, 0},
    {72, 72, 4, 0}, {80, 82, 4, 0},  {90, 99, 2, 0},
};

const ElementLength *FindElementLength(std::string_view data) {
    if (data.size() < 2 || !HasOnly(data.substr(0, 2), Digits))
        return nullptr;
    const int prefix = (data[0] - '0') * 10 + (data[1] - '0');
    const auto found =
        std::find_if(std::begin(ElementLengths), std::end(ElementLengths), [prefix](const auto &entry) {
            return entry.firstPrefix <= prefix && prefix <= entry.lastPrefix;
        });
    return found == std::end(ElementLengths) ? nullptr : &*found;
}

// The length of the separator at the front, 0 when there is none.
size_t SeparatorLength(std::string_view data) {
    if (data.substr(0, 1) == "\x1D")
        return 1;
    return data.substr(0, 2) == "{1" ? 2 : 0;
}

size_t ValueLength(std::string_view data, const ElementLength &element) {
    if (element.value != 0)
        return std::min(element.value, data.size());
    size_t length = 0;
    while (length < data.size() && SeparatorLength(data.substr(length)) == 0)
        ++length;
    return length;
}

// Puts the application identifiers into brackets, as libzint takes them: "0198..10AB" becomes
// "[01]98..[10]AB". Empty when the data is not made of element strings.
std::string BracketIdentifiers(std::string_view data) {
    std::string bracketed;
    while (!data.empty()) {
        const ElementLength *element = FindElementLength(data);
        if (!element || data.size() <= element->identifier)
            return "";
        const std::string_view value = data.substr(element->identifier);
        const size_t length = ValueLength(value, *element);
        bracketed.append("[")
            .append(data.substr(0, element->identifier))
            .append("]")
            .append(value.substr(0, length));
        data = value.substr(length);
        data.remove_prefix(SeparatorLength(data));
    }
    return bracketed;
}

std::string EncodeElements(ZintSymbol &symbol, const std::string &data) {
    symbol->input_mode = GS1_MODE;
    if (data.empty() || data[0] == '(') {
        symbol->input_mode |= GS1PARENS_MODE;
        return symbol.Encode(data);
    }
    if (data.size() > ZINT_MAX_DATA_LEN || data.find_first_of("[]") != std::string::npos)
        return "the data is not made of GS1 element strings";
    const std::string bracketed = BracketIdentifiers(data);
    return bracketed.empty() ? "the data is not made of GS1 element strings" : symbol.Encode(bracketed);
}

std::string EncodeItemNumber(ZintSymbol &symbol, const std::string &data) {
    const std::string digits = data.rfind("(01)", 0) == 0 ? data.substr(4) : data;
    const bool fits = digits.size() == 13 || digits.size() == 14;
    if (!fits || !HasOnly(digits, Digits))
        return "it takes the 13 or 14 digits of an item number";
    return symbol.Encode(digits);
}

bool HasElements(DatabarKind kind) {
    return kind == DatabarKind::Expanded || kind == DatabarKind::ExpandedStacked;
}

// The height in dots of a row that libzint leaves open. Where the symbology sets it, GS 'h' changes nothing.
int RowHeight(DatabarKind kind, int moduleWidth, int barHeight) {
    switch (kind) {
    case DatabarKind::Truncated:
        return 13 * moduleWidth;
    case DatabarKind::StackedOmnidirectional:
        return 33 * moduleWidth;
    case DatabarKind::ExpandedStacked:
        return 34 * moduleWidth;
    default:
        return barHeight;
    }
}

// libzint counts pairs of segments.
int SegmentPairs(const DatabarBarcode &barcode) {
    const bool valid = barcode.segments >= 2 && barcode.segments <= 20 && barcode.segments % 2 == 0;
    return valid ? barcode.segments / 2 : 0;
}

} // namespace

Symbol DrawDatabar(const Symbology &symbology, const DatabarBarcode &barcode) {
    const auto kind = static_cast<DatabarKind>(symbology.number);
    ZintSymbol symbol(symbology.zintSymbology);
    if (kind == DatabarKind::ExpandedStacked)
        symbol->option_2 = SegmentPairs(barcode);
    const std::string reason =
        HasElements(kind) ? EncodeElements(symbol, barcode.data) : EncodeItemNumber(symbol, barcode.data);
    if (!reason.empty())
        return RefuseSymbol(symbology.name, reason);
    const int moduleWidth = ModuleWidthOrDefault(barcode.moduleWidth);
    return symbol.Draw(moduleWidth, RowHeight(kind, moduleWidth, BarHeightOrDefault(barcode.height)));
}

} // namespace printer
