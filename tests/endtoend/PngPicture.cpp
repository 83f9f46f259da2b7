#include "tests/endtoend/PngPicture.h"

#include <png.h>

#include <algorithm>
#include <stdexcept>

namespace endtoend {

Picture ReadPng(const std::filesystem::path &file) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, file.c_str()) == 0)
        throw std::runtime_error(file.string() + ": " + image.message);
    image.format = PNG_FORMAT_GRAY;
    Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.grey.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.grey.data(), 0, nullptr) == 0)
        throw std::runtime_error(file.string() + ": " + image.message);
    return picture;
}

void WritePng(const std::filesystem::path &file, const Picture &picture) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_GRAY;
    if (png_image_write_to_file(&image, file.c_str(), 0, picture.grey.data(), 0, nullptr) == 0)
        throw std::runtime_error(file.string() + ": " + image.message);
}

int64_t BlackDots(const Picture &picture) {
    return std::count(picture.grey.begin(), picture.grey.end(), uint8_t{0});
}

} // namespace endtoend
