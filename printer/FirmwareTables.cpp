#include "printer/FirmwareTables.h"

#include <algorithm>

namespace printer {
namespace {

constexpr std::array CodeTables = {
    CodeTable{DefaultCodeTable, "CP1252", "Windows-1252"},
    CodeTable{0, "CP437", "code page 437"},
    CodeTable{1, "CP932", "code page 932 (Katakana)"},
    CodeTable{2, "CP850", "code page 850"},
    CodeTable{3, "CP860", "code page 860"},
    CodeTable{4, "CP863", "code page 863"},
    CodeTable{5, "CP865", "code page 865"},
    CodeTable{13, "CP857", "code page 857"},
    CodeTable{14, "CP737", "code page 737"},
    CodeTable{15, "ISO-8859-7", "ISO 8859-7"},
    CodeTable{16, "CP1252", "Windows-1252"},
    CodeTable{17, "CP866", "code page 866"},
    CodeTable{18, "CP852", "code page 852"},
    CodeTable{19, "CP858", "code page 858"},
    CodeTable{20, "CP874", "code page 874"},
    CodeTable{21, "CP932", "code page 932"},
    CodeTable{22, "CP936", "code page 936"},
    CodeTable{23, "CP949", "code page 949"},
    CodeTable{24, "CP950", "code page 950"},
    CodeTable{25, "UTF-8", "UTF-8"},
    CodeTable{33, "CP775", "code page 775"},
    CodeTable{34, "CP855", "code page 855"},
    CodeTable{35, "CP861", "code page 861"},
    CodeTable{36, "CP862", "code page 862"},
    CodeTable{37, "CP864", "code page 864"},
    CodeTable{38, "CP869", "code page 869"},
    CodeTable{39, "ISO-8859-2", "ISO 8859-2"},
    CodeTable{40, "ISO-8859-15", "ISO 8859-15"},
    CodeTable{44, "CP1125", "code page 1125"},
    CodeTable{45, "CP1250", "Windows-1250"},
    CodeTable{46, "CP1251", "Windows-1251"},
    CodeTable{47, "CP1253", "Windows-1253"},
    CodeTable{48, "CP1254", "Windows-1254"},
    CodeTable{49, "CP1255", "Windows-1255"},
    CodeTable{50, "CP1256", "Windows-1256"},
    CodeTable{51, "CP1257", "Windows-1257"},
    CodeTable{52, "CP1258", "Windows-1258"},
};

} // namespace

const CodeTable &FindCodeTable(uint8_t number) {
    const auto found = std::find_if(CodeTables.begin(), CodeTables.end(),
                                    [number](const CodeTable &table) { return table.number == number; });
    return found != CodeTables.end() ? *found : CodeTables.front();
}

} // namespace printer
