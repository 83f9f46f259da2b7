#include "tools/BitmapFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace tool {
namespace {

constexpr char kBitmapExpected[] = "a bitmap file (BMP) of 1 or 24 bits a pixel";

// The file header and the info header behind it, numbers low byte first.
class Headers {
  public:
    explicit Headers(std::istream &in) {
        in.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        isWhole = in.gcount() == static_cast<std::streamsize>(bytes.size());
    }

    bool BeginABitmap() const { return isWhole && bytes[0] == 'B' && bytes[1] == 'M'; }

    uint32_t FileBytes() const { return Number(2); }
    uint32_t PixelsBegin() const { return Number(10); }
    uint32_t InfoBytes() const { return Number(14); }
    int32_t Width() const { return static_cast<int32_t>(Number(18)); }
    int32_t Height() const { return static_cast<int32_t>(Number(22)); }
    uint32_t Bits() const { return bytes[28] | uint32_t{bytes[29]} << 8; }
    uint32_t Compression() const { return Number(30); }
    uint32_t PixelBytes() const { return Number(34); }

  private:
    uint32_t Number(size_t place) const {
        return bytes[place] | uint32_t{bytes[place + 1]} << 8 | uint32_t{bytes[place + 2]} << 16 |
               uint32_t{bytes[place + 3]} << 24;
    }

    std::array<uint8_t, 54> bytes{};
    bool isWhole = false;
};

// Where the library reads the pixels: behind the colour table.
uint64_t PixelsExpected(const Headers &headers) {
    return 14 + uint64_t{headers.InfoBytes()} + (headers.Bits() == 1 ? 8 : 0);
}

uint64_t PixelBytesExpected(const Headers &headers) {
    const uint64_t stride = (static_cast<uint64_t>(headers.Width()) * headers.Bits() + 31) / 32 * 4;
    return stride * static_cast<uint64_t>(headers.Height());
}

void RequireForm(const Headers &headers, const std::string &name) {
    if (headers.Bits() != 1 && headers.Bits() != 24)
        throw LineFault(name + " has " + std::to_string(headers.Bits()) + " bits a pixel", kBitmapExpected);
    if (headers.Compression() != 0)
        throw LineFault(name + " is compressed", "a bitmap file (BMP) whose pixels are not compressed");
    if (headers.Width() < 1 || headers.Width() > kWidestPicture)
        throw LineFault(name + " is " + std::to_string(headers.Width()) + " pixels wide",
                        "1 to " + std::to_string(kWidestPicture));
    if (headers.Height() < 0)
        throw LineFault(name + " is stored from the top row down",
                        "a bitmap file (BMP) stored from the bottom row up");
    if (headers.Height() == 0)
        throw LineFault(name + " has no rows", "1 at least");
}

void RequirePixels(const Headers &headers, uint64_t held, const std::string &name) {
    const uint64_t begin = PixelsExpected(headers);
    const uint64_t count = PixelBytesExpected(headers);
    if (held < begin + count || held < headers.FileBytes())
        throw LineFault(name + " is cut off after " + std::to_string(held) + " bytes",
                        std::to_string(std::max<uint64_t>(begin + count, headers.FileBytes())));
    if (headers.PixelsBegin() != begin)
        throw LineFault(name + " has its pixels at byte " + std::to_string(headers.PixelsBegin()),
                        "them at byte " + std::to_string(begin) + ", behind the headers and colours");
    if (headers.PixelBytes() < count || headers.FileBytes() < begin + count)
        throw LineFault("the header of " + name + " counts " + std::to_string(headers.PixelBytes()) +
                            " bytes of pixels and " + std::to_string(headers.FileBytes()) + " in all",
                        std::to_string(count) + " and " + std::to_string(begin + count));
}

} // namespace

bool IsCutOffBitmap(const std::filesystem::path &file) {
    std::ifstream in(file, std::ios::binary);
    const Headers headers(in);
    return headers.BeginABitmap() && headers.FileBytes() > std::filesystem::file_size(file);
}

void RequireBitmap(const std::filesystem::path &file, const std::string &name) {
    std::error_code trouble;
    const auto status = std::filesystem::status(file, trouble);
    if (trouble)
        throw LineFault(name + " cannot be read (" + trouble.message() + ')', kBitmapExpected);
    if (!std::filesystem::is_regular_file(status))
        throw LineFault(name + " is no file", kBitmapExpected);
    errno = 0;
    std::ifstream in(file, std::ios::binary);
    if (!in)
        throw LineFault(name + " cannot be read (" + std::strerror(errno) + ')', kBitmapExpected);
    const Headers headers(in);
    if (!headers.BeginABitmap() || headers.InfoBytes() < 40)
        throw LineFault(name + " is no bitmap", kBitmapExpected);
    RequireForm(headers, name);
    RequirePixels(headers, std::filesystem::file_size(file), name);
}

} // namespace tool
