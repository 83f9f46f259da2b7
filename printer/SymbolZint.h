#pragma once

#include "printer/SymbologyTable.h"
#include "printer/Symbols.h"

#include <memory>
#include <string>
#include <string_view>
#include <zint.h>

// What the symbologies share: checking, refusing, encoding with libzint, drawing rows of modules.
namespace printer {

inline constexpr char Digits[] = "0123456789";

inline bool HasOnly(std::string_view text, const char *characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

// A symbol without a picture. The reason begins in lower case and has no full stop.
Symbol RefuseSymbol(const std::string &name, const std::string &reason);

// An empty picture, all white.
Symbol BlankSymbol(int width, int height);

// Blackens a rectangle that lies inside the picture.
void FillSymbol(Symbol &symbol, int x, int y, int width, int height);

// One symbol of libzint, released with its owner.
class ZintSymbol {
  public:
    explicit ZintSymbol(int zintSymbology);

    // The options of zint.h; a caller sets them before Encode.
    zint_symbol *operator->() const { return symbol_.get(); }
    zint_symbol &operator*() const { return *symbol_; }

    // Encodes the bytes as they are and returns why that was not possible; empty when it was. An option that
    // does not fit the data is an error: nothing is silently drawn in another size than the one asked for.
    std::string Encode(std::string_view data);

    // The encoded symbol. Rows whose height the symbology leaves open get freeRowHeight.
    Symbol Draw(int moduleWidth, int freeRowHeight) const; // dots

  private:
    struct Release {
        void operator()(zint_symbol *symbol) const { ZBarcode_Delete(symbol); }
    };
    int RowHeight(int row, int moduleWidth, int freeRowHeight) const;
    void DrawRow(Symbol &picture, int row, int moduleWidth, int top, int height) const;

    std::unique_ptr<zint_symbol, Release> symbol_;
};

inline int ModuleWidthOrDefault(int dots) {
    return dots >= 1 && dots <= 8 ? dots : DefaultModuleWidth;
}
inline int BarHeightOrDefault(int dots) {
    return dots >= 1 && dots <= 255 ? dots : DefaultBarHeight;
}

} // namespace printer
