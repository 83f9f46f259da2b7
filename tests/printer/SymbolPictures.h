#pragma once

#include "printer/Symbols.h"

#include <functional>
#include <string>
#include <vector>
#include <zint.h>

// What the tests of the barcodes share.
namespace printer {

// "width x height" in dots, followed by the problem if there is one.
std::string Sized(const Symbol &symbol);

std::string LinearProblem(uint8_t symbology, const std::string &data);
std::string MatrixProblem(uint8_t selector, uint8_t a1, uint8_t a2, const std::string &data);
std::string DatabarProblem(uint8_t type, const std::string &data);

// The dots of libzint's own picture of the data, where a module is moduleWidth dots wide.
std::vector<uint8_t> ZintPicture(const std::string &data, int moduleWidth,
                                 const std::function<void(zint_symbol &)> &configure);

// The same of one row of bars, whose height is given in dots.
std::vector<uint8_t> ZintBars(int symbology, const std::string &data, int moduleWidth, float height);

} // namespace printer
