// From a bitmap file to black and white rows by libswscale's error diffusion.
#include "bench/compare/Rounds.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>

extern "C" {
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace {

constexpr size_t kHeaderBytes = 54;

struct FreeContext {
    void operator()(SwsContext *context) const { sws_freeContext(context); }
};
using Context = std::unique_ptr<SwsContext, FreeContext>;

[[noreturn]] void Fail(const char *what) {
    std::fprintf(stderr, "compare_swscale: %s\n", what);
    std::exit(1);
}

// A number of four bytes in the file's headers.
int32_t HeaderNumber(const std::vector<uint8_t> &file, size_t place) {
    int32_t number;
    std::memcpy(&number, &file[place], sizeof number);
    return number;
}

Context MakeContext(int32_t width, int32_t height) {
    Context context(sws_alloc_context());
    if (context == nullptr)
        Fail("no context");
    av_opt_set_int(context.get(), "srcw", width, 0);
    av_opt_set_int(context.get(), "srch", height, 0);
    av_opt_set_int(context.get(), "src_format", AV_PIX_FMT_BGR24, 0);
    av_opt_set_int(context.get(), "dstw", width, 0);
    av_opt_set_int(context.get(), "dsth", height, 0);
    av_opt_set_int(context.get(), "dst_format", AV_PIX_FMT_MONOWHITE, 0);
    av_opt_set_int(context.get(), "sws_flags", SWS_POINT, 0);
    if (av_opt_set(context.get(), "sws_dither", "ed", 0) < 0 ||
        sws_init_context(context.get(), nullptr, nullptr) < 0)
        Fail("no conversion from BGR24 to MONOWHITE by error diffusion");
    return context;
}

} // namespace

int main(int count, char **arguments) {
    if (count != 2) {
        std::fprintf(stderr, "usage: compare_swscale FILE.bmp\n");
        return 2;
    }
    std::ifstream in(arguments[1], std::ios::binary | std::ios::ate);
    std::vector<uint8_t> file(static_cast<size_t>(in.tellg()));
    const auto read = [&] {
        in.seekg(0);
        if (file.size() < kHeaderBytes ||
            !in.read(reinterpret_cast<char *>(file.data()), static_cast<std::streamsize>(file.size())))
            Fail("the file is not a bitmap file");
    };
    read();
    const int32_t width = HeaderNumber(file, 18), height = HeaderNumber(file, 22);
    const int stride = 3 * width + width % 4;
    const int lineBytes = (width + 7) / 8;
    const Context context = MakeContext(width, height);
    std::vector<uint8_t> dots(static_cast<size_t>(lineBytes) * static_cast<size_t>(height) + 64);
    bench::PrintMedianSeconds([&] {
        read();
        const uint8_t *const top = &file[kHeaderBytes] + static_cast<ptrdiff_t>(height - 1) * stride;
        const uint8_t *const source[] = {top, nullptr, nullptr, nullptr};
        const int sourceStride[] = {-stride, 0, 0, 0};
        uint8_t *const target[] = {dots.data(), nullptr, nullptr, nullptr};
        const int targetStride[] = {lineBytes, 0, 0, 0};
        sws_scale(context.get(), source, sourceStride, 0, height, target, targetStride);
    });
}
