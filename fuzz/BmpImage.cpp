#include "fuzz/BmpImage.h"

#include "image/BaseImage.h"
#include "tests/image/ScriptedDisplay.h"
#include "tests/platform/ScriptedAllocation.h"

#include <memory>

namespace fuzz {

namespace {

using nadrel::BaseImage;

constexpr size_t kMostMemory = 256 * 1024; // bytes that an image gets

// What a header of that size and that many colours says, and whether there is one.
struct Header {
    int64_t width, height;
    uint32_t colours;

    bool Exists() const {
        const bool fits = (colours == 256) || (colours == 16 && width >= 2) ||
                          (colours == 2 && height >= 8) || colours == 0;
        return fits && width >= 0 && height >= 0 && width * 3 <= (colours == 0 ? 0x7FFFFFFF : INT64_MAX) &&
               ImageBytes() + 54 + 4 * int64_t{colours} <= 0xFFFFFFFF;
    }
    int64_t RowBytes() const {
        return colours == 256 ? width : colours == 16 ? width / 2 : colours == 2 ? width / 8 : width * 3;
    }
    int64_t ImageBytes() const { return (RowBytes() + 3) / 4 * 4 * height; }
};

class Images {
  public:
    Images(Library &loaded, Input &bytes) : library(loaded), input(bytes) {}
    ~Images() { platform::DeleteBitmap(image->DisplayBitmap()); }
    Images(const Images &) = delete;
    Images &operator=(const Images &) = delete;

    void Run() {
        while (!input.IsUsedUp()) {
            Next();
            Require(image->ColourTable().size() == image->ColourCount(), "the colour table has another size");
        }
    }

  private:
    void Next() {
        switch (input.Byte() % 12) {
        case 0:
        case 1:
            return Load();
        case 2:
        case 3:
            return Save();
        case 4:
            return CreateBlank();
        case 5:
            return SetUpHeader();
        case 6:
            image->BuildPalette(input.Flag());
            break;
        case 7:
            Require(image->FindColourIndex(input.Number<uint32_t>()) < 256, "there is no such entry");
            break;
        case 8:
            return Realize();
        case 9:
            image->PrepareDisplayBitmap();
            break;
        case 10:
            return CreateFromTable();
        default:
            return ChangeSystem();
        }
    }

    std::optional<std::u16string> Name() {
        static const std::optional<std::u16string> names[] = {kPicture, kCopy, std::nullopt,
                                                              std::u16string(600, 'n')};
        return names[input.Below(4)];
    }

    static const char16_t *Passed(const std::optional<std::u16string> &name) {
        return name ? name->c_str() : nullptr;
    }

    void Load() {
        const auto name = Name();
        const bool loaded = image->LoadBmp(Passed(name)) == 1;
        Require(!loaded || (name && name->size() < 512), "a file of no name is loaded");
    }

    void Save() {
        const bool saved = image->SaveBmp(Passed(Name())) == 1;
        if (!saved)
            return;
        const auto *info = image->GetInfo();
        Require(info != nullptr, "an image without a header is saved");
        Require(library.Files().Held(image->FileName()).size() ==
                    54 + 4 * image->ColourCount() + info->biSizeImage,
                "a file has another size");
    }

    Header AnyHeader() {
        static constexpr uint32_t kColours[] = {0, 2, 16, 256};
        const uint8_t choice = input.Byte();
        Header header{};
        header.width = choice < 200 ? input.Byte() : input.Number<int32_t>();
        header.height = choice < 200 ? input.Byte() : input.Number<int32_t>();
        header.colours = choice % 16 == 15 ? input.Number<uint32_t>() : kColours[choice % 4];
        return header;
    }

    void CheckHeader(const Header &header) const {
        const auto *info = image->GetInfo();
        Require(info != nullptr && info->biWidth == header.width && info->biHeight == header.height,
                "an image has another size");
        Require(info->biSizeImage == header.ImageBytes(), "an image has another number of bytes");
        Require(image->ColourCount() == header.colours, "an image has another number of colours");
    }

    void CreateBlank() {
        const Header header = AnyHeader();
        const bool withPalette = input.Flag();
        const auto fill = input.Number<uint32_t>();
        const bool made =
            image->CreateBlank(static_cast<int32_t>(header.width), static_cast<int32_t>(header.height),
                               header.colours, withPalette, fill) == 1;
        Require(header.Exists() || !made, "a blank image is made of a size that there is not");
        if (!made)
            return;
        CheckHeader(header);
        Require(static_cast<size_t>(header.ImageBytes()) < kMostMemory, "a blank image has no bytes");
        const int index = std::max(image->FindColourIndex(fill), 0);
        for (int64_t i = 0; i < header.ImageBytes(); ++i)
            Require(image->GetBits()[i] == FilledWith(header.colours, fill, index, i),
                    "a blank image is not blank");
    }

    static uint8_t FilledWith(uint32_t colours, uint32_t fill, int index, int64_t place) {
        if (colours == 0)
            return static_cast<uint8_t>(fill >> (2 - place % 3) * 8);
        return static_cast<uint8_t>(colours == 256 ? index : colours == 16 ? index * 17 : 0);
    }

    void SetUpHeader() {
        const Header header = AnyHeader();
        const bool set = image->SetupHeader(static_cast<int32_t>(header.width),
                                            static_cast<int32_t>(header.height), header.colours) == 1;
        Require(set == header.Exists(), "a header is set up, or not, against the rules");
        if (set)
            CheckHeader(header);
    }

    void Realize() {
        platform::DeviceContext *const context = platform::CreateDisplayContext();
        const uint8_t choice = input.Byte();
        if (choice % 2 != 0)
            image->RealizeInto(choice, -choice, context);
        if (choice % 4 >= 2)
            image->UseSystemPalette(context);
        if (choice % 8 >= 4)
            image->RealizeInto(choice, choice, context);
        platform::DeleteContext(context);
    }

    void CreateFromTable() {
        const Header header = AnyHeader();
        std::array<nadrel::COLORREF, 256> table{};
        for (nadrel::COLORREF &colour : table)
            colour = input.Number<uint32_t>();
        auto made = BaseImage::CreateFromColourTable(static_cast<int32_t>(header.width),
                                                     static_cast<int32_t>(header.height), table);
        if (made == nullptr)
            return;
        Require(made->FindColourIndex(table[0]) == 0, "a colour of the table is not found");
        platform::DeleteBitmap(image->DisplayBitmap());
        image = std::move(made);
        CheckHeader({header.width, header.height, 256});
    }

    // A display with a palette of so many colours or without, a file system that fails once.
    void ChangeSystem() {
        scripted::Display &display = scripted::TheDisplay();
        display.isPaletteDevice = input.Flag();
        display.systemPalette.resize(input.Byte());
        display.refusesPalettes = input.Byte() % 8 == 7;
        library.Files().Fail(input.Byte() % 8);
    }

    Library &library;
    Input &input;
    std::unique_ptr<BaseImage> image = std::make_unique<BaseImage>();
};

} // namespace

void UseImages(Library &library, Input &input) {
    Images images(library, input);
    nadrel::allocation::FailNth(1, kMostMemory, std::numeric_limits<size_t>::max(), true);
    images.Run();
    nadrel::allocation::Allow();
    library.Files().Fail(0);
}

} // namespace fuzz
