#pragma once

#include "tools/Fault.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

struct _GdkPixbuf;

namespace tool {

// Wider pictures are made smaller unless a width is asked for: in dots, the widest usual paper.
inline constexpr int kPaperWidth = 576;

// Longer pictures are refused, in dots: some eight metres.
inline constexpr int kLongestPicture = 65535;

// A picture file of more is refused, in pixels.
inline constexpr int64_t kMostPixels = 100'000'000;

// A picture as it is to be printed: upright, without transparency, scaled.
class Picture {
  public:
    using Sink = std::function<bool(std::span<const char>)>;

    // Reads a PNG, JPEG or BMP file and makes it `width` dots wide. Throws a Fault.
    Picture(const std::string &file, std::optional<int> width);

    int Width() const;
    int Height() const;

    // Whether all of a row is black or white, so that none of it has to be made of dots.
    bool IsBlackAndWhite(int row) const;

    // Writes some of the rows, which there are, as a bitmap file of 24 bits a pixel. False when the sink,
    // which takes the bytes in pieces, once did not.
    bool WriteBitmap(int firstRow, int rows, const Sink &sink) const;

  private:
    struct Unreference {
        void operator()(_GdkPixbuf *object) const;
    };
    using Pixels = std::unique_ptr<_GdkPixbuf, Unreference>;

    static Pixels Load(const std::string &file);
    static Pixels LayOnWhite(const std::string &file, const Pixels &loaded, std::optional<int> width);

    Pixels pixels;
};

} // namespace tool
