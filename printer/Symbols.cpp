#include "printer/Symbols.h"

#include "printer/SymbolKinds.h"
#include "printer/SymbolZint.h"

#include <exception>

namespace printer {
namespace {

template <typename Draw>
Symbol WithoutExceptions(Draw draw) {
    try {
        return draw();
    } catch (const std::exception &) {
        Symbol symbol;
        symbol.problem = "Out of memory."; // short enough to need no memory of its own
        return symbol;
    }
}

Symbol RefuseNumber(const char *command, int number) {
    return RefuseSymbol("The barcode", std::string(command) + " has no symbology " + std::to_string(number));
}

} // namespace

Symbol EncodeLinear(const LinearBarcode &barcode) {
    return WithoutExceptions([&barcode] {
        const Symbology *symbology = FindLinearSymbology(barcode.symbology);
        return symbology ? DrawLinear(*symbology, barcode) : RefuseNumber("GS 'k'", barcode.symbology);
    });
}

Symbol EncodeMatrix(const MatrixBarcode &barcode) {
    return WithoutExceptions([&barcode] {
        const Symbology *symbology = FindMatrixSymbology(barcode.selector);
        return symbology ? DrawMatrix(*symbology, barcode) : RefuseNumber("GS 'Z'", barcode.selector);
    });
}

Symbol EncodeDatabar(const DatabarBarcode &barcode) {
    return WithoutExceptions([&barcode] {
        const Symbology *symbology = FindDatabarSymbology(barcode.type);
        return symbology ? DrawDatabar(*symbology, barcode) : RefuseNumber("GS '1'", barcode.type);
    });
}

} // namespace printer
