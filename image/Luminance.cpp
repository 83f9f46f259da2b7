#include "image/Luminance.h"

#include <cmath>

namespace nadrel {

GammaTable MakeGammaTable(double gamma) {
    GammaTable table;
    for (size_t level = 0; level < 256; ++level) {
        const double corrected = 255.0 * std::pow(static_cast<double>(level) / 255.0, gamma) + 0.5;
        table[level] = static_cast<int32_t>(std::fmin(corrected, 255.0));
    }
    table[0] = 0;
    table[255] = 255;
    return table;
}

Luminance::Luminance(const GammaTable &gamma) {
    for (size_t level = 0; level < 256; ++level) {
        red[level] = kRedShare * gamma[level];
        green[level] = kGreenShare * gamma[level];
        blue[level] = kBlueShare * gamma[level];
    }
}

const Luminance &PrintedLuminance() {
    static const Luminance luminance(MakeGammaTable(kPrintedGamma));
    return luminance;
}

} // namespace nadrel
