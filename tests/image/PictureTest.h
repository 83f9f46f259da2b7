#pragma once

#include "image/BaseImage.h"
#include "tests/LibraryTest.h"
#include "tests/image/BmpBuilder.h"
#include "tests/image/ScriptedDisplay.h"
#include "tests/image/ScriptedFiles.h"

#include <cstdint>
#include <string>
#include <vector>

// What the tests of pictures share: files in memory, every one of which must be closed at the end.
namespace nadrel {

inline constexpr int32_t kSpoolEnd = 409600;

class PictureTest : public LibraryTest {
  protected:
    PictureTest() {
        files.Reset();
        display.Reset();
        ClearSpool();
    }

    ~PictureTest() override {
        EXPECT_EQ(0, files.StillOpen()) << "files not closed";
        EXPECT_EQ(0, display.palettes) << "palettes not given back";
        EXPECT_EQ(0, display.contexts) << "device contexts not given back";
        EXPECT_EQ(0, display.bitmaps) << "display bitmaps not given back";
    }

    // Makes the file that pictures are printed from.
    void Give(const BmpBuilder &file) { files.Put(kName, file.Bytes()); }

    std::vector<uint8_t> Storage() const {
        return {SpoolBuffer.At(SpoolStorage::kLowest), SpoolBuffer.At(SpoolStorage::kEnd)};
    }

    static constexpr const char16_t *kName = u"a.bmp";

    scripted::Files &files = scripted::TheFiles();
    scripted::Display &display = scripted::TheDisplay();
};

inline std::vector<uint8_t> BitsOf(BaseImage &image) {
    return {image.GetBits(), image.GetBits() + image.GetInfo()->biSizeImage};
}

inline std::vector<uint8_t> FromHex(const std::string &hex) {
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 3)
        bytes.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

} // namespace nadrel
