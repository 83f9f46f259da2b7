#include "fuzz/BmpImage.h"

#include "image/BaseImage.h"

// A file that claims to be a bitmap, printed in all three ways, loaded and saved. In front of it two bytes say how
// the spool stands before, and then a count and so many bytes what is done with images besides.

namespace {

using namespace fuzz;
using nadrel::BaseImage;

constexpr char16_t kCopyOfCopy[] = u"copy of copy";

// What a picture may do: append whole or change nothing.
template <typename Print>
void PrintPicture(Print print) {
    const int32_t before = nadrel::SpoolLength;
    const auto storage = nadrel::SpoolBytes();
    print();
    const int32_t after = nadrel::SpoolLength;
    Require(after >= before && after <= std::max(before, nadrel::kSpoolCapacity),
            "the spool's length is wrong");
    Require(std::equal(storage.begin(), storage.end(), nadrel::SpoolBuffer.At(0)),
            "a picture changed what stood before it");
    Require(nadrel::SpoolBuffer.At(after)[0] == 0, "a picture left something behind the spool's end");
}

void PrintInAllWays() {
    PrintPicture([] {
        const int32_t before = nadrel::SpoolLength;
        const int32_t result = BmpSaveSpool(kPicture, -1, 70000);
        Require(result == nadrel::SpoolLength ||
                    (nadrel::SpoolLength == before && (result == -1 || result == -12)),
                "a result that is not documented");
    });
    PrintPicture([] { NormalBmpSaveSpool(kPicture); });
    PrintPicture([] { CompressedBmpSaveSpool(kPicture); });
}

// A copy that can be loaded is copied byte by byte. An image keeps what its file said of the header's size, also
// where that is not the truth, and is saved with it: such a copy's rows are found elsewhere.
void Copy(Library &library) {
    BaseImage image;
    if (image.LoadBmp(kPicture) == 0 || image.SaveBmp(kCopy) == 0)
        return;
    if (image.GetInfo()->biSize != nadrel::kInfoHeaderBytes)
        return;
    image.BuildPalette(true);
    image.FindColourIndex(0xFFFFFF);
    BaseImage copy;
    if (copy.LoadBmp(kCopy) == 0)
        return;
    Require(copy.GetSize() == image.GetSize(), "a copy has another size");
    Require(copy.SaveBmp(kCopyOfCopy) == 1, "a copy cannot be saved again");
    Require(library.Files().Held(kCopy) == library.Files().Held(kCopyOfCopy), "a copy's copy is another");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    Library library;
    Input input({bytes, count});
    InitPrinter(u"COM1", 9600, 0);
    const Bytes text(input.Below(1024) * 400U, 'x');
    ControlCommand(text.data(), static_cast<int32_t>(std::min<size_t>(text.size(), 409600)));
    const Bytes operations = input.ShortBytes();
    library.Files().Put(kPicture, input.Rest());
    PrintInAllWays();
    Copy(library);
    Input forImages(operations);
    UseImages(library, forImages);
    return 0;
}
