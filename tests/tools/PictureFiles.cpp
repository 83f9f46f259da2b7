#include "PictureFiles.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>

void WritePicture(const std::string &file, const std::string &type, int width, int height,
                  const ColourAt &colour) {
    const std::unique_ptr<GdkPixbuf, decltype(&g_object_unref)> pixels(
        gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, width, height), &g_object_unref);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const Colour dot = colour(x, y);
            guchar *const pixel = gdk_pixbuf_get_pixels(pixels.get()) +
                                  static_cast<ptrdiff_t>(y) * gdk_pixbuf_get_rowstride(pixels.get()) + 4 * x;
            pixel[0] = dot.red;
            pixel[1] = dot.green;
            pixel[2] = dot.blue;
            pixel[3] = dot.opacity;
        }
    ASSERT_TRUE(gdk_pixbuf_save(pixels.get(), file.c_str(), type.c_str(), nullptr, nullptr));
}

void WriteTurnedJpeg(const std::string &file, int width, int height, uint8_t orientation,
                     const ColourAt &colour) {
    WritePicture(file, "jpeg", width, height, colour);
    std::ifstream in(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    // A marker FF E1 of 34 bytes: "Exif", a big-endian header, one directory of one entry, the orientation.
    std::string camera("\xFF\xE1\0\x22"
                       "Exif\0\0MM\0\x2A\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x01\0\0\0\0\0\0",
                       36);
    camera[29] = static_cast<char>(orientation);
    bytes.insert(2, camera);
    std::ofstream(file, std::ios::binary) << bytes;
}
