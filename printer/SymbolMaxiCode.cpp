#include "printer/SymbolKinds.h"
#include "printer/SymbolZint.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace printer {
namespace {

// A hexagon is 2 of libzint's units wide: 7 dots, 0.88 mm at 203 dots per inch.
constexpr float DotsPerUnit = 3.5F;
constexpr float InkedPart = 0.85F; // of a hexagon's width, so that neighbours stay apart
constexpr char FieldEnd = '\x1D';
constexpr char PostcodeCharacters[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ ";

// What modes 2 and 3 need: the primary message goes apart from the rest.
struct CarrierMessage {
    std::string postcode, country, service;
    std::string secondary;
};

// "[)>", RS, "01", GS and a year of two digits, or nothing.
std::string_view HeaderOf(std::string_view data) {
    constexpr std::string_view start = "[)>\x1E"
                                       "01\x1D";
    constexpr size_t length = start.size() + 2;
    const bool present = data.size() >= length && data.substr(0, start.size()) == start;
    const bool hasYear = present && HasOnly(data.substr(start.size(), 2), Digits);
    return data.substr(0, hasYear ? length : 0);
}

// Takes a field from the front: up to a GS when the fields are so delimited, else of the given length.
std::string TakeField(std::string_view &data, bool delimited, size_t length) {
    const std::string_view field = data.substr(0, delimited ? data.find(FieldEnd) : length);
    data.remove_prefix(std::min(data.size(), field.size() + (delimited ? 1 : 0)));
    return std::string(field);
}

CarrierMessage SplitCarrierMessage(int mode, std::string_view data) {
    const std::string_view header = HeaderOf(data);
    data.remove_prefix(header.size());
    const size_t postcodeLength = mode == 2 ? 9 : 6;
    const bool delimited = data.substr(0, postcodeLength + 1).find(FieldEnd) != std::string_view::npos;
    CarrierMessage message;
    message.postcode = TakeField(data, delimited, postcodeLength);
    message.country = TakeField(data, delimited, 3);
    message.service = TakeField(data, delimited, 3);
    message.secondary = std::string(header) + std::string(data);
    return message;
}

bool IsThreeDigits(const std::string &field) {
    return field.size() == 3 && HasOnly(field, Digits);
}

std::string CheckCarrierMessage(int mode, const CarrierMessage &message) {
    const size_t longest = mode == 2 ? 9 : 6;
    const bool fits = !message.postcode.empty() && message.postcode.size() <= longest;
    if (!fits || !HasOnly(message.postcode, mode == 2 ? Digits : PostcodeCharacters))
        return mode == 2
                   ? "the data of mode 2 begins with a postcode of 1 to 9 digits"
                   : "the data of mode 3 begins with a postcode of 1 to 6 capital letters, digits or spaces";
    if (!IsThreeDigits(message.country) || !IsThreeDigits(message.service))
        return "the postcode is followed by a country and a service of 3 digits each";
    return message.secondary.empty() ? "there is no message after postcode, country and service" : "";
}

// Encodes a message of mode 2 or 3. Returns the reason why it cannot be, empty when it can.
std::string EncodeCarrierMessage(ZintSymbol &symbol, int mode, const std::string &data) {
    const CarrierMessage message = SplitCarrierMessage(mode, data);
    const std::string reason = CheckCarrierMessage(mode, message);
    if (!reason.empty())
        return reason;
    const std::string primary = message.postcode + message.country + message.service;
    std::strncpy(symbol->primary, primary.c_str(), sizeof symbol->primary - 1);
    return symbol.Encode(message.secondary);
}

// Blackens the dots around x, y that pass the test, which is given their distance to the right and down.
template <typename Inside>
void FillShape(Symbol &picture, float x, float y, float radius, Inside inside) {
    const int left = std::max(0, static_cast<int>(x - radius));
    const int top = std::max(0, static_cast<int>(y - radius));
    const int right = std::min(picture.width - 1, static_cast<int>(x + radius));
    const int bottom = std::min(picture.height - 1, static_cast<int>(y + radius));
    for (int row = top; row <= bottom; ++row)
        for (int column = left; column <= right; ++column)
            if (inside(static_cast<float>(column) + 0.5F - x, static_cast<float>(row) + 0.5F - y))
                FillSymbol(picture, column, row, 1, 1);
}

// A hexagon that stands on a corner.
void FillHexagon(Symbol &picture, const zint_vector_hexagon &hexagon) {
    const float half = hexagon.diameter / 2 * DotsPerUnit * InkedPart;
    const auto inside = [half](float dx, float dy) {
        return std::abs(dx) <= half && std::abs(dx) * 0.5F + std::abs(dy) * 0.866F <= half;
    };
    FillShape(picture, hexagon.x * DotsPerUnit, hexagon.y * DotsPerUnit, half * 1.2F, inside);
}

void FillRing(Symbol &picture, const zint_vector_circle &circle) {
    const float outer = (circle.diameter + circle.width) / 2 * DotsPerUnit;
    const float inner = (circle.diameter - circle.width) / 2 * DotsPerUnit;
    const auto inside = [=](float dx, float dy) {
        const float distance = std::hypot(dx, dy);
        return distance >= inner && distance <= outer;
    };
    FillShape(picture, circle.x * DotsPerUnit, circle.y * DotsPerUnit, outer, inside);
}

Symbol DrawVector(const zint_vector &vector) {
    const auto dots = [](float units) { return static_cast<int>(std::ceil(units * DotsPerUnit)); };
    Symbol picture = BlankSymbol(dots(vector.width), dots(vector.height));
    for (const auto *hexagon = vector.hexagons; hexagon; hexagon = hexagon->next)
        FillHexagon(picture, *hexagon);
    for (const auto *circle = vector.circles; circle; circle = circle->next)
        FillRing(picture, *circle);
    return picture;
}

} // namespace

Symbol DrawMaxiCode(const Symbology &symbology, const MatrixBarcode &barcode) {
    const int mode = barcode.a1 >= 2 && barcode.a1 <= 6 ? barcode.a1 : DefaultMaxiCodeMode;
    ZintSymbol symbol(symbology.zintSymbology);
    symbol->option_1 = mode;
    const bool carrier = mode == 2 || mode == 3;
    const std::string reason =
        carrier ? EncodeCarrierMessage(symbol, mode, barcode.data) : symbol.Encode(barcode.data);
    if (!reason.empty())
        return RefuseSymbol(symbology.name, reason);
    if (ZBarcode_Buffer_Vector(&*symbol, 0) != 0)
        return RefuseSymbol(symbology.name, "libzint could not place its hexagons");
    return DrawVector(*symbol->vector);
}

} // namespace printer
