#include "api/NadrelPrinter.h"

#include "devices/Request.h"
#include "spool/Spool.h"

#include <cstring>

using namespace nadrel;

namespace {

constexpr uint8_t kEot = 0x04;
constexpr uint8_t kStx = 0x02;
constexpr uint8_t kEtx = 0x03;

// Track selections 0 to 4; any other is sent as 00.
constexpr uint8_t TrackLetter(int32_t track) {
    return InRange(track, 0, 4) ? static_cast<uint8_t>('C' + track) : uint8_t{0};
}

// The position of the last byte appended.
int32_t AppendAndGivePosition(Bytes command) {
    return AppendDirect(command) ? SpoolLength - 1 : static_cast<int32_t>(ERR_SPOOL_LIMIT);
}

} // namespace

int32_t EnterMSRMode(int32_t track) {
    if (!LinkIsOpen())
        return ERR_NOT_CONNECTED;
    return SendRequest(Request(kEsc, 'M', TrackLetter(track)));
}

int32_t CancelMSRMode() {
    return SendRequest(Request(kEot));
}

int32_t CardCancel() {
    return CancelMSRMode();
}

int32_t CardRead(int32_t flag) {
    return SendRequest(Request(kEot, kEsc, 'M', flag != 0 ? 'D' : 'C'));
}

// The letters have the reverse sense of CardRead's.
int32_t CardRead_M(int32_t flag) {
    return SendRequest(Request(kStx, flag != 0 ? 'C' : 'D', '1', '1', 0x00, 0x00, kEtx));
}

// Never framed.
int32_t SecuredCardCancel() {
    if (SpoolIsPastCapacity())
        return ERR_SPOOL_LIMIT;
    return WriteWhole(Request(kEsc, 'M', 'X'));
}

int32_t EnterSCRMode() {
    return AppendAndGivePosition(Command(kEsc, 'N'));
}

int32_t CancelSCRMode() {
    return AppendAndGivePosition(Command('~', kEot, '~'));
}

// The length field splits the low byte of the length by 255, while the text goes out whole.
int32_t SecuredCardCommend(const char *text) {
    const Bytes command(reinterpret_cast<const uint8_t *>(text), text == nullptr ? 0 : std::strlen(text));
    const uint32_t low = command.size() & 0xFF;
    const bool appended = AppendDirect({Command(kEsc, 'M', 'S', low / 255, low % 255), command});
    return appended ? SpoolLength - static_cast<int32_t>(command.size())
                    : static_cast<int32_t>(ERR_SPOOL_LIMIT);
}
