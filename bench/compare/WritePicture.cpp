// Writes the photograph that all are given.
#include "bench/Pictures.h"

#include <cstdio>

int main(int count, char **arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: compare_picture FILE.bmp\n");
        return 2;
    }
    const std::vector<uint8_t> bytes = bench::BmpOf(bench::Photograph);
    std::ofstream out(arguments[1], std::ios::binary);
    out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return out.good() ? 0 : 1;
}
