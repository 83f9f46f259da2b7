#include "printer/PngFile.h"

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <png.h>
#include <stdexcept>
#include <unistd.h>

namespace printer {
namespace {

constexpr png_uint_32 DotsPerMetre = 7992; // 203 an inch

struct CloseFile {
    void operator()(FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, CloseFile>;

class PngWriter {
  public:
    PngWriter() : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, IgnoreWarning)) {
        if (png_)
            info_ = png_create_info_struct(png_);
    }
    ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
    PngWriter(const PngWriter &) = delete;
    PngWriter &operator=(const PngWriter &) = delete;

    // libpng leaves by longjmp on an error: nothing in here has a destructor.
    bool Write(FILE *file, const Bitmap &picture) {
        if (!png_ || !info_ || setjmp(png_jmpbuf(png_)) != 0)
            return false;
        png_init_io(png_, file);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(picture.Width()),
                     static_cast<png_uint_32>(picture.Height()), 1, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_set_pHYs(png_, info_, DotsPerMetre, DotsPerMetre, PNG_RESOLUTION_METER);
        png_write_info(png_, info_);
        png_set_invert_mono(png_);
        for (int y = 0; y < picture.Height(); ++y)
            png_write_row(png_, picture.Row(y).data());
        png_write_end(png_, info_);
        return true;
    }

  private:
    static void IgnoreWarning(png_structp, png_const_charp) {}

    png_structp png_;
    png_infop info_ = nullptr;
};

Bitmap WithMargin(const Bitmap &picture, int margin) {
    Bitmap framed(picture.Width() + 2 * margin, std::max(picture.Height() + 2 * margin, 1));
    framed.Draw(picture, margin, margin);
    return framed;
}

[[noreturn]] void Fail(const std::string &path, const std::string &reason) {
    throw std::runtime_error("The picture " + path + " cannot be written: " + reason + ".");
}

} // namespace

void WritePng(const std::string &path, const Bitmap &picture, int margin) {
    const std::string temporary = path + "." + std::to_string(getpid()) + ".tmp";
    File file(std::fopen(temporary.c_str(), "wb"));
    if (!file)
        Fail(path, std::strerror(errno));
    const bool encoded = PngWriter().Write(file.get(), WithMargin(picture, margin));
    const bool written = encoded && std::fflush(file.get()) == 0;
    const int reason = errno;
    file.reset();
    if (!written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        const int error = written ? errno : reason;
        std::remove(temporary.c_str());
        Fail(path, std::strerror(error));
    }
}

} // namespace printer
