#include "tools/Picture.h"

#include "tools/BitmapFile.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace tool {
namespace {

constexpr char kPictureExpected[] = ", expected a PNG, JPEG or BMP file";

constexpr int kBitsPerChannel = 8;
constexpr int kOpaque = 255;
constexpr guint32 kWhite = 0xFFFFFFFF;

struct FreeError {
    void operator()(GError *error) const { g_error_free(error); }
};
using Error = std::unique_ptr<GError, FreeError>;

[[noreturn]] void Refuse(const std::string &file, const std::string &why) {
    throw Fault(file + ": " + why);
}

void RequireFile(const std::string &file) {
    std::error_code trouble;
    const auto status = std::filesystem::status(file, trouble);
    if (trouble)
        Refuse(file, "cannot be read (" + trouble.message() + ')' + kPictureExpected);
    if (!std::filesystem::is_regular_file(status))
        Refuse(file, std::string("is no file") + kPictureExpected);
    if (!std::ifstream(file))
        Refuse(file, "cannot be read (" + std::generic_category().message(errno) + ')' + kPictureExpected);
}

bool IsKnown(GdkPixbufFormat *format) {
    if (format == nullptr)
        return false;
    const std::unique_ptr<gchar, decltype(&g_free)> name(gdk_pixbuf_format_get_name(format), &g_free);
    const std::string_view known(name.get());
    return known == "png" || known == "jpeg" || known == "bmp";
}

std::string Size(int64_t width, int64_t height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

// Looks at the file's header, so that nothing large is made of a small file that lies.
void RequireKnownForm(const std::string &file) {
    int width = 0;
    int height = 0;
    if (!IsKnown(gdk_pixbuf_get_file_info(file.c_str(), &width, &height)))
        Refuse(file, std::string("is no picture that can be read") + kPictureExpected);
    if (IsCutOffBitmap(file))
        Refuse(file, std::string("is shorter than its own header says") + kPictureExpected);
    if (int64_t{width} * height > kMostPixels)
        Refuse(file, "has " + Size(width, height) + " pixels, expected " + std::to_string(kMostPixels) +
                         " at most");
}

int WidthOf(const std::string &file, int own, std::optional<int> asked) {
    if (own < 1)
        Refuse(file, std::string("has no pixels") + kPictureExpected);
    return asked.value_or(std::min(own, kPaperWidth));
}

int HeightOf(const std::string &file, int width, int ownWidth, int ownHeight) {
    const double height = std::round(double{1} * ownHeight * width / ownWidth);
    if (height > kLongestPicture)
        Refuse(file, "would be " + Size(width, static_cast<int64_t>(height)) + " dots, expected " +
                         std::to_string(kLongestPicture) + " lines at most");
    return std::max(1, static_cast<int>(height));
}

gboolean Deliver(const gchar *bytes, gsize count, GError **error, gpointer sink) {
    if ((*static_cast<const Picture::Sink *>(sink))({bytes, count}))
        return TRUE;
    g_set_error_literal(error, GDK_PIXBUF_ERROR, GDK_PIXBUF_ERROR_FAILED, "not taken");
    return FALSE;
}

} // namespace

void Picture::Unreference::operator()(_GdkPixbuf *object) const {
    g_object_unref(object);
}

Picture::Picture(const std::string &file, std::optional<int> width)
    : pixels(LayOnWhite(file, Load(file), width)) {}

Picture::Pixels Picture::Load(const std::string &file) {
    RequireFile(file);
    RequireKnownForm(file);
    GError *failure = nullptr;
    const Pixels stored(gdk_pixbuf_new_from_file(file.c_str(), &failure));
    const Error error(failure);
    if (!stored)
        Refuse(file, "cannot be read (" + std::string(error->message) + ')' + kPictureExpected);
    Pixels upright(gdk_pixbuf_apply_embedded_orientation(stored.get()));
    if (!upright)
        throw std::bad_alloc();
    return upright;
}

Picture::Pixels Picture::LayOnWhite(const std::string &file, const Pixels &loaded, std::optional<int> asked) {
    const int ownWidth = gdk_pixbuf_get_width(loaded.get());
    const int width = WidthOf(file, ownWidth, asked);
    const int ownHeight = gdk_pixbuf_get_height(loaded.get());
    const int height = HeightOf(file, width, ownWidth, ownHeight);
    Pixels printed(gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, kBitsPerChannel, width, height));
    if (!printed)
        throw std::bad_alloc();
    gdk_pixbuf_fill(printed.get(), kWhite);
    gdk_pixbuf_composite(loaded.get(), printed.get(), 0, 0, width, height, 0, 0, double{1} * width / ownWidth,
                         double{1} * height / ownHeight, GDK_INTERP_BILINEAR, kOpaque);
    return printed;
}

int Picture::Width() const {
    return gdk_pixbuf_get_width(pixels.get());
}

int Picture::Height() const {
    return gdk_pixbuf_get_height(pixels.get());
}

bool Picture::IsBlackAndWhite(int row) const {
    const guint8 *pixel = gdk_pixbuf_read_pixels(pixels.get()) +
                          static_cast<ptrdiff_t>(row) * gdk_pixbuf_get_rowstride(pixels.get());
    for (int x = 0; x < Width(); ++x, pixel += 3)
        if ((pixel[0] != 0 && pixel[0] != 255) || pixel[1] != pixel[0] || pixel[2] != pixel[0])
            return false;
    return true;
}

bool Picture::WriteBitmap(int firstRow, int rows, const Sink &sink) const {
    const Pixels part(gdk_pixbuf_new_subpixbuf(pixels.get(), 0, firstRow, Width(), rows));
    GError *failure = nullptr;
    const bool written = part && gdk_pixbuf_save_to_callback(part.get(), &Deliver, const_cast<Sink *>(&sink),
                                                             "bmp", &failure, nullptr);
    const Error error(failure);
    return written;
}

} // namespace tool
