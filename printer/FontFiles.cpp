#include "printer/FontFiles.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fontconfig/fontconfig.h>
#include <memory>

namespace printer {
namespace {

constexpr char Directory[] = "/usr/share/fonts/truetype/dejavu/";
constexpr char Family[] = "DejaVu Sans Mono";

struct Release {
    void operator()(FcConfig *config) const { FcConfigDestroy(config); }
    void operator()(FcPattern *pattern) const { FcPatternDestroy(pattern); }
};
using Config = std::unique_ptr<FcConfig, Release>;
using Pattern = std::unique_ptr<FcPattern, Release>;

std::string Property(FcPattern *font, const char *property, int index = 0) {
    FcChar8 *value = nullptr;
    if (!font || FcPatternGetString(font, property, index, &value) != FcResultMatch)
        return "";
    return reinterpret_cast<const char *>(value);
}

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

std::string BestMatch(FcConfig *config, const std::string &description) {
    const Pattern wanted(FcNameParse(reinterpret_cast<const FcChar8 *>(description.c_str())));
    if (!config || !wanted)
        return "";
    FcConfigSubstitute(config, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(config, wanted.get(), &result));
    return Property(found.get(), FC_FILE);
}

// The file in the usual place; empty when it is not there.
std::string UsualFile(const char *name) {
    const std::string file = std::string(Directory) + name;
    std::error_code ignored;
    return std::filesystem::exists(file, ignored) ? file : "";
}

bool HasName(FcPattern *font, const std::string &lowerName) {
    const std::filesystem::path file = LowerCase(Property(font, FC_FILE));
    if (file.filename() == lowerName || file.stem() == lowerName)
        return true;
    for (int i = 0;; ++i) {
        const std::string family = LowerCase(Property(font, FC_FAMILY, i));
        if (family.empty())
            return false;
        if (family == lowerName)
            return true;
    }
}

// Regular faces of a family come before its bold and slanted ones; then the file's name decides.
bool IsBetter(FcPattern *font, FcPattern *other) {
    const auto distance = [](FcPattern *pattern) {
        int weight = FC_WEIGHT_REGULAR, slant = FC_SLANT_ROMAN;
        FcPatternGetInteger(pattern, FC_WEIGHT, 0, &weight);
        FcPatternGetInteger(pattern, FC_SLANT, 0, &slant);
        return std::abs(weight - FC_WEIGHT_REGULAR) + std::abs(slant - FC_SLANT_ROMAN);
    };
    const int mine = distance(font), theirs = distance(other);
    return mine != theirs ? mine < theirs : Property(font, FC_FILE) < Property(other, FC_FILE);
}

} // namespace

struct FontFiles::Catalogue {
    Config config{FcInitLoadConfigAndFonts()};
};

FontFiles::FontFiles() = default;
FontFiles::~FontFiles() = default;

FontFiles::Catalogue &FontFiles::GetCatalogue() {
    if (!catalogue_)
        catalogue_ = std::make_unique<Catalogue>();
    return *catalogue_;
}

std::string FontFiles::Monospaced() {
    const std::string usual = UsualFile("DejaVuSansMono.ttf");
    return usual.empty() ? BestMatch(GetCatalogue().config.get(), Family) : usual;
}

std::string FontFiles::BoldMonospaced() {
    const std::string usual = UsualFile("DejaVuSansMono-Bold.ttf");
    return usual.empty() ? BestMatch(GetCatalogue().config.get(), std::string(Family) + ":bold") : usual;
}

std::string FontFiles::FindByName(const std::string &name) {
    FcConfig *config = GetCatalogue().config.get();
    const FcFontSet *fonts = config ? FcConfigGetFonts(config, FcSetSystem) : nullptr;
    const std::string lowerName = LowerCase(name);
    FcPattern *best = nullptr;
    for (int i = 0; fonts && i < fonts->nfont; ++i) {
        FcPattern *font = fonts->fonts[i];
        if (HasName(font, lowerName) && (!best || IsBetter(font, best)))
            best = font;
    }
    return Property(best, FC_FILE);
}

} // namespace printer
