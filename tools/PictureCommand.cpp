#include "tools/PictureCommand.h"

#include "tools/JobRun.h"
#include "tools/Picture.h"
#include "tools/SpoolLength.h"
#include "tools/TemporaryBitmap.h"

namespace tool {
namespace {

constexpr int kBandLines = 24; // the printer takes these at once, and pieces of so many join on the paper

using PictureFunction = void (*)(const NadrelChar *);

// False when the spool has no room for the rows.
bool Append(const Picture &picture, int firstRow, int rows, PictureFunction append) {
    const TemporaryBitmap bitmap(picture, firstRow, rows);
    const int32_t before = SpoolLength();
    append(bitmap.Name().c_str());
    return SpoolLength() != before;
}

// False, and nothing is sent, when the rows do not fit the spool or its framed form.
bool Print(const Picture &picture, int firstRow, int rows, PictureFunction append) {
    if (!Append(picture, firstRow, rows, append))
        return false;
    const int32_t result = PrintSpool(1);
    if (result == ERR_FRAME_LIMIT)
        ClearSpool();
    else if (result != 1)
        throw CallFailure("PrintSpool(1) answered " + std::to_string(result));
    return result == 1;
}

// At most so many rows from the first on, in whole bands. Behind a row of black and white dithering begins
// anew in any case, so that no one sees a seam there; one is sought in the latter half.
int PieceOf(const Picture &picture, int firstRow, int most) {
    for (int rows = most; rows > most / 2; rows -= kBandLines)
        if (picture.IsBlackAndWhite(firstRow + rows - 1))
            return rows;
    return most;
}

int Halved(int rows) {
    if (rows <= kBandLines)
        throw CallFailure("the library did not take " + std::to_string(rows) + " lines of the picture");
    return std::max(rows / 2 / kBandLines, 1) * kBandLines;
}

void PrintInPieces(const Picture &picture) {
    int most = picture.Height();
    for (int row = 0; row < picture.Height();) {
        const int left = picture.Height() - row;
        const int rows = left <= most ? left : PieceOf(picture, row, most);
        if (Print(picture, row, rows, &NormalBmpSaveSpool))
            row += rows;
        else
            most = Halved(rows);
    }
}

// Pieces are not compressed: the printer feeds whole bands behind compressed rows, and often one more.
void PrintPicture(const Picture &picture, bool compressed) {
    if (!compressed || !Print(picture, 0, picture.Height(), &CompressedBmpSaveSpool))
        PrintInPieces(picture);
}

} // namespace

ExitStatus PictureCommand(const PictureOptions &options) {
    const Picture picture(options.file, options.width);
    SendTo(options.destination, [&] { PrintPicture(picture, options.compressed); });
    return ExitStatus::fine;
}

} // namespace tool
