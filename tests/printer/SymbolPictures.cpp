#include "tests/printer/SymbolPictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace printer {

std::string Sized(const Symbol &symbol) {
    return std::to_string(symbol.width) + " x " + std::to_string(symbol.height) + symbol.problem;
}

std::string LinearProblem(uint8_t symbology, const std::string &data) {
    return EncodeLinear({symbology, 2, 80, data}).problem;
}

std::string MatrixProblem(uint8_t selector, uint8_t a1, uint8_t a2, const std::string &data) {
    return EncodeMatrix({selector, a1, a2, 3, 2, data}).problem;
}

std::string DatabarProblem(uint8_t type, const std::string &data) {
    return EncodeDatabar({type, 0, 2, 80, data}).problem;
}

std::vector<uint8_t> ZintPicture(const std::string &data, int moduleWidth,
                                 const std::function<void(zint_symbol &)> &configure) {
    const std::unique_ptr<zint_symbol, decltype(&ZBarcode_Delete)> symbol(ZBarcode_Create(),
                                                                          &ZBarcode_Delete);
    symbol->input_mode = DATA_MODE;
    symbol->output_options = BARCODE_NO_QUIET_ZONES | OUT_BUFFER_INTERMEDIATE;
    symbol->show_hrt = 0;
    symbol->scale = static_cast<float>(moduleWidth) / 2;
    configure(*symbol);
    const auto *bytes = reinterpret_cast<const unsigned char *>(data.data());
    EXPECT_EQ(ZBarcode_Encode_and_Buffer(symbol.get(), bytes, static_cast<int>(data.size()), 0), 0)
        << symbol->errtxt;
    const int size = symbol->bitmap_width * symbol->bitmap_height;
    std::vector<uint8_t> dots(symbol->bitmap, symbol->bitmap + size);
    std::transform(dots.begin(), dots.end(), dots.begin(), [](uint8_t dot) { return dot == '1' ? 1 : 0; });
    return dots;
}

std::vector<uint8_t> ZintBars(int symbology, const std::string &data, int moduleWidth, float height) {
    return ZintPicture(data, moduleWidth, [=](zint_symbol &symbol) {
        symbol.symbology = symbology;
        symbol.height = height / static_cast<float>(moduleWidth);
    });
}

} // namespace printer
