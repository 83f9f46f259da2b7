#pragma once

#include "image/Luminance.h"

#include <cstdint>
#include <memory>

namespace nadrel {

// Reduces a picture, row by row from its top, to the eight colours whose channels are all or nothing, or to
// black and white; what a pixel's colour misses is handed on to its neighbours. It defines what is printed
// and works in any mode; pictures are printed by a BandDither, which gives the same dots many times faster.
class Dither {
  public:
    static constexpr int32_t kDefaultKernel = 1;
    static constexpr double kDefaultGamma = 0.5;

    Dither();
    virtual ~Dither() = default;
    Dither(const Dither &) = delete;
    Dither &operator=(const Dither &) = delete;

    // For rows of so many pixels. 1; 0 when there is no memory for them. A kernel index outside 0..7 keeps
    // the kernel of before; no kernel has a say in what is printed.
    int32_t Begin(int32_t pixels, int32_t kernelIndex, double gamma);

    // Forgets what earlier rows have left to hand on.
    void Reset();

    // Reduces `width` pixels of blue, green, red in place; to black and white in grey mode.
    void DitherRow(uint8_t *row, bool grey);

    // Gives the memory back; then there is nothing to reduce until Begin.
    void Release();

    int32_t Width() const { return width; }
    int32_t KernelIndex() const { return kernelIndex; }
    const int32_t (&Kernel() const)[13] { return *kernel; }
    double Gamma() const { return gamma; }
    const GammaTable &Gammas() const { return gammaTable; }

    // What is handed on to the next row, three channels a pixel: red, green, blue. Null before Begin.
    const int32_t *ErrorsForNextRow() const { return next; }

  private:
    struct Values {
        int32_t red;
        int32_t green;
        int32_t blue;
    };

    bool IsPureRow(const uint8_t *row, bool grey) const;
    bool NothingReaches(int32_t x, const Values &carry) const;
    Values InputOf(const uint8_t *pixel, bool grey) const;
    void DitherPixel(uint8_t *pixel, int32_t x, bool grey, Values &carry);
    int32_t HandOn(int32_t x, int32_t channel, int32_t error);

    std::unique_ptr<int32_t[]> errorRowA; // width x 3
    std::unique_ptr<int32_t[]> errorRowB;
    int32_t *current = nullptr;
    int32_t *next = nullptr;
    int32_t width = 0;
    int32_t kernelIndex = kDefaultKernel;
    const int32_t (*kernel)[13];
    bool cleared = false; // both error rows are known to be zero
    double gamma = kDefaultGamma;
    GammaTable gammaTable;
};

} // namespace nadrel
