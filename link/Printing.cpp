#include "api/NadrelPrinter.h"

#include "link/Frame.h"
#include "link/Write.h"
#include "spool/Spool.h"

using namespace nadrel;

namespace {

// Puts the spool into FrameBuffer as the link wants it; the length to send, or ERR_FRAME_LIMIT. The copy is
// what is sent, so that a host which appends from a notification handler meanwhile does not change a job on
// its way.
int32_t AssembleTransmission() {
    const Bytes spool(SpoolBuffer.At(0), static_cast<size_t>(SpoolLength));
    if (FramedMode == 0) {
        FrameBuffer.Write(0, spool.data(), SpoolLength);
        return SpoolLength;
    }
    if (SpoolLength > kSpoolCapacity)
        return ERR_FRAME_LIMIT;
    // One pair further than the data where the length is even, and the byte behind the data where it is odd.
    // The spool is zero there but for what a refused SaveSpool left, which counts.
    const CheckValue check = CheckPairs(spool.data(), SpoolLength / 2 + 1);
    const int32_t length = FramedLength(spool, check);
    if (length > kSpoolCapacity)
        return ERR_FRAME_LIMIT;
    EncodeFrame(spool, check, FrameBuffer.Write(0, length));
    return length;
}

} // namespace

int32_t PrintSpool(int32_t clear) {
    const Sending sending;
    if (!LinkIsOpen())
        return ERR_NOT_CONNECTED;
    if (SpoolLength < 0)
        return 0;
    const int32_t length = AssembleTransmission();
    if (length < 0)
        return length;
    WriteToLink(FrameBuffer.At(0), length);
    if (clear != 0)
        ClearSpool();
    return NADREL_SUCCESS;
}
