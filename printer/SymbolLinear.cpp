#include "printer/SymbolKinds.h"
#include "printer/SymbolZint.h"

#include <algorithm>
#include <initializer_list>

namespace printer {
namespace {

constexpr size_t LongestData = 255; // the length of GS 'k' is one byte
constexpr char Code39Characters[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";

// The reason why the data is not one of these counts of digits, empty when it is.
std::string CheckDigits(const std::string &data, std::initializer_list<size_t> counts, const char *expected) {
    if (!HasOnly(data, Digits))
        return std::string("it takes ") + expected + " and nothing else";
    const bool fits = std::find(counts.begin(), counts.end(), data.size()) != counts.end();
    return fits ? "" : std::string("it takes ") + expected + ", not " + std::to_string(data.size());
}

std::string CheckUpcE(const std::string &data) {
    const std::string reason = CheckDigits(data, {6, 7, 8, 11, 12}, "6, 7, 8, 11 or 12 digits");
    if (!reason.empty())
        return reason;
    if (data.size() > 6 && data[0] != '0' && data[0] != '1')
        return "its number system is 0 or 1";
    return data.size() < 11 ? "" : "this UPC-A number has no short form";
}

std::string CheckItf(const std::string &data) {
    if (!HasOnly(data, Digits))
        return "it takes digits and nothing else";
    return data.size() % 2 == 0 ? ""
                                : "it takes an even number of digits, not " + std::to_string(data.size());
}

std::string CheckCode39(const std::string &data) {
    return HasOnly(data, Code39Characters) ? "" : "it takes 0-9, A-Z, space and -.$/+% only";
}

// The reason to refuse data that libzint would change, pad or take for something else. Where this is silent,
// libzint judges.
std::string CheckData(LinearKind kind, const std::string &data) {
    switch (kind) {
    case LinearKind::UpcA:
        return CheckDigits(data, {11, 12}, "11 or 12 digits");
    case LinearKind::UpcE:
        return CheckUpcE(data);
    case LinearKind::Ean13:
        return CheckDigits(data, {12, 13}, "12 or 13 digits");
    case LinearKind::Ean8:
        return CheckDigits(data, {7, 8}, "7 or 8 digits");
    case LinearKind::Code39:
        return CheckCode39(data);
    case LinearKind::Itf:
        return CheckItf(data);
    default:
        return "";
    }
}

// The six digits of the short form of UPC-A digits N MMMMM PPPPP, empty when they have none.
std::string ShortUpcDigits(const std::string &upcA) {
    const std::string maker = upcA.substr(1, 5), product = upcA.substr(6, 5);
    if (maker[2] <= '2' && maker.substr(3) == "00" && product.substr(0, 2) == "00")
        return maker.substr(0, 2) + product.substr(2) + maker[2];
    if (maker.substr(3) == "00" && product.substr(0, 3) == "000")
        return maker.substr(0, 3) + product.substr(3) + '3';
    if (maker[4] == '0' && product.substr(0, 4) == "0000")
        return maker.substr(0, 4) + product[4] + '4';
    if (product.substr(0, 4) == "0000" && product[4] >= '5')
        return maker + product[4];
    return "";
}

// Shortens UPC-A digits to number system, six digits, and the check digit when it was given. Leaves other
// data and numbers without a short form as they are.
std::string ShortenUpc(const std::string &data) {
    const std::string digits = data.size() == 11 || data.size() == 12 ? ShortUpcDigits(data) : "";
    return digits.empty() ? data : data[0] + digits + data.substr(11);
}

// Start and stop characters are drawn anyway, so those in the data are left out.
std::string WithoutStartAndStop(const std::string &data) {
    const bool carries = data.size() >= 2 && data.front() == '*' && data.back() == '*';
    return carries ? data.substr(1, data.size() - 2) : data;
}

// The data in the form that libzint takes.
std::string Prepare(LinearKind kind, const std::string &data) {
    if (kind == LinearKind::UpcE)
        return ShortenUpc(data);
    return kind == LinearKind::Code39 ? WithoutStartAndStop(data) : data;
}

// libzint takes EAN digits that carry their check digit under a symbology of their own.
int ZintSymbologyOf(const Symbology &symbology, LinearKind kind, const std::string &data) {
    const bool carriesCheckDigit =
        (kind == LinearKind::Ean13 && data.size() == 13) || (kind == LinearKind::Ean8 && data.size() == 8);
    return carriesCheckDigit ? BARCODE_EANX_CHK : symbology.zintSymbology;
}

} // namespace

Symbol DrawLinear(const Symbology &symbology, const LinearBarcode &barcode) {
    const auto kind = static_cast<LinearKind>(symbology.number);
    const int moduleWidth = ModuleWidthOrDefault(barcode.moduleWidth);
    const int height = BarHeightOrDefault(barcode.height);
    if (barcode.data.empty())
        return RefuseSymbol(symbology.name, "there is no data");
    if (barcode.data.size() > LongestData)
        return RefuseSymbol(symbology.name, "the data is longer than 255 bytes");
    if (kind == LinearKind::Code128 && HasCode128Functions(barcode.data))
        return DrawCode128(barcode.data, moduleWidth, height);
    const std::string data = Prepare(kind, barcode.data);
    if (const std::string reason = CheckData(kind, data); !reason.empty())
        return RefuseSymbol(symbology.name, reason);
    ZintSymbol symbol(ZintSymbologyOf(symbology, kind, data));
    const std::string reason = symbol.Encode(data);
    return reason.empty() ? symbol.Draw(moduleWidth, height) : RefuseSymbol(symbology.name, reason);
}

} // namespace printer
