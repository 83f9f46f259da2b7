// From a bitmap file to commands in the spool.
#include "api/NadrelPrinter.h"
#include "bench/PseudoTerminalLink.h"
#include "bench/compare/Rounds.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>

int main(int count, char **arguments) {
    if (count != 3 ||
        (std::strcmp(arguments[2], "normal") != 0 && std::strcmp(arguments[2], "compressed") != 0)) {
        std::fprintf(stderr, "usage: compare_printed FILE.bmp normal|compressed\n");
        return 2;
    }
    const auto print = arguments[2][0] == 'n' ? NormalBmpSaveSpool : CompressedBmpSaveSpool;
    const std::u16string name = std::filesystem::path(arguments[1]).u16string();
    const bench::PseudoTerminalLink link;
    bench::PrintMedianSeconds([&] {
        ClearSpool();
        print(name.c_str());
    });
}
