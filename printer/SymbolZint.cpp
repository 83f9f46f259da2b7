#include "printer/SymbolZint.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <new>

namespace printer {
namespace {

bool IsUpper(char letter) {
    return std::isupper(static_cast<unsigned char>(letter)) != 0;
}

// Turns "Error 275: Invalid check digit '2'" into "invalid check digit '2'", and leaves abbreviations as they
// are.
std::string ReasonOf(std::string errorText) {
    const size_t colon = errorText.find(": ");
    std::string reason = colon == std::string::npos ? std::move(errorText) : errorText.substr(colon + 2);
    if (reason.size() > 1 && IsUpper(reason[0]) && !IsUpper(reason[1]))
        reason[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(reason[0])));
    return reason;
}

} // namespace

Symbol RefuseSymbol(const std::string &name, const std::string &reason) {
    Symbol symbol;
    symbol.problem = name + " was not drawn: " + reason + ".";
    return symbol;
}

Symbol BlankSymbol(int width, int height) {
    Symbol symbol;
    symbol.width = width;
    symbol.height = height;
    symbol.dots.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    return symbol;
}

void FillSymbol(Symbol &symbol, int x, int y, int width, int height) {
    for (int row = y; row < y + height; ++row) {
        const auto first = symbol.dots.begin() + static_cast<ptrdiff_t>(row) * symbol.width + x;
        std::fill(first, first + width, uint8_t{1});
    }
}

ZintSymbol::ZintSymbol(int zintSymbology) : symbol_(ZBarcode_Create()) {
    if (!symbol_)
        throw std::bad_alloc();
    symbol_->symbology = zintSymbology;
    symbol_->input_mode = DATA_MODE;
    symbol_->warn_level = WARN_FAIL_ALL;
}

std::string ZintSymbol::Encode(std::string_view data) {
    if (data.empty())
        return "there is no data";
    if (data.size() > ZINT_MAX_DATA_LEN)
        return "the data is longer than " + std::to_string(ZINT_MAX_DATA_LEN) + " bytes";
    const auto *bytes = reinterpret_cast<const unsigned char *>(data.data());
    const int result = ZBarcode_Encode(symbol_.get(), bytes, static_cast<int>(data.size()));
    if (result == ZINT_ERROR_INVALID_OPTION)
        return "the data does not fit the size asked for";
    return result == 0 ? "" : ReasonOf(symbol_->errtxt);
}

int ZintSymbol::RowHeight(int row, int moduleWidth, int freeRowHeight) const {
    const float modules = symbol_->row_height[row];
    return modules > 0 ? static_cast<int>(std::lround(modules * static_cast<float>(moduleWidth)))
                       : freeRowHeight;
}

void ZintSymbol::DrawRow(Symbol &picture, int row, int moduleWidth, int top, int height) const {
    for (int column = 0; column < symbol_->width; ++column) {
        const bool black = (symbol_->encoded_data[row][column / 8] >> (column % 8)) & 1;
        if (black)
            FillSymbol(picture, column * moduleWidth, top, moduleWidth, height);
    }
}

Symbol ZintSymbol::Draw(int moduleWidth, int freeRowHeight) const {
    int height = 0;
    for (int row = 0; row < symbol_->rows; ++row)
        height += RowHeight(row, moduleWidth, freeRowHeight);
    Symbol picture = BlankSymbol(symbol_->width * moduleWidth, height);
    int top = 0;
    for (int row = 0; row < symbol_->rows; ++row) {
        const int rowHeight = RowHeight(row, moduleWidth, freeRowHeight);
        DrawRow(picture, row, moduleWidth, top, rowHeight);
        top += rowHeight;
    }
    picture.text = reinterpret_cast<const char *>(symbol_->text);
    return picture;
}

} // namespace printer
