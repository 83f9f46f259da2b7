#include "platform/linux/TerminalSettings.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace platform {

namespace {

constexpr tcflag_t kParityBits[] = {0, PARENB | PARODD, PARENB, PARENB | CMSPAR | PARODD, PARENB | CMSPAR};
constexpr tcflag_t kSizeBits[] = {CS5, CS6, CS7, CS8};
constexpr uint8_t kLeastBits = 5;
constexpr tcflag_t kParityMask = PARENB | PARODD | CMSPAR;
constexpr tcflag_t kRateMask = CBAUD | (static_cast<tcflag_t>(CBAUD) << IBSHIFT);
constexpr tcflag_t kCharacterMask = CSIZE | CSTOPB | kParityMask | CRTSCTS;
constexpr uint32_t kBlockLength = 28;

// Stop bits in the numbers of LineSettings.
constexpr uint8_t kOne = 0;
constexpr uint8_t kOneAndAHalf = 1;
constexpr uint8_t kTwo = 2;

bool IsPlain(const LineSettings &settings) {
    const bool flow = settings.ctsFlow || settings.dsrFlow || settings.xonXoffOut || settings.xonXoffIn ||
                      settings.dtrControl != 0 || settings.rtsControl != 0;
    const bool filter = settings.dsrSensitivity || settings.errorCharacter || settings.dropNull;
    return settings.binary && !flow && !filter && !settings.abortOnError;
}

std::optional<tcflag_t> StopBits(const LineSettings &settings) {
    if (settings.stopBits == kOne)
        return tcflag_t{0};
    // The one flag means 1.5 bits behind characters of 5 and 2 behind all others.
    if (settings.stopBits == (settings.byteSize == kLeastBits ? kOneAndAHalf : kTwo))
        return tcflag_t{CSTOPB};
    return std::nullopt;
}

std::optional<tcflag_t> CharacterBits(const LineSettings &settings) {
    const auto size = static_cast<size_t>(settings.byteSize - kLeastBits);
    const auto stop = StopBits(settings);
    if (size >= std::size(kSizeBits) || settings.parity >= std::size(kParityBits) || !stop)
        return std::nullopt;
    return kSizeBits[size] | kParityBits[settings.parity] | *stop;
}

} // namespace

bool ToTerminal(const LineSettings &settings, termios2 &terminal) {
    const auto character = CharacterBits(settings);
    if (!character || !IsPlain(settings) || settings.baudRate == 0)
        return false;
    terminal.c_iflag = IGNBRK;
    terminal.c_oflag = 0;
    terminal.c_lflag = 0;
    terminal.c_cflag &= ~(kCharacterMask | kRateMask);
    // No rate of its own for input: it is that of output.
    terminal.c_cflag |= *character | BOTHER | CLOCAL | CREAD;
    terminal.c_ospeed = settings.baudRate;
    terminal.c_ispeed = settings.baudRate;
    std::fill(std::begin(terminal.c_cc), std::end(terminal.c_cc), cc_t{0}); // includes VMIN and VTIME
    return true;
}

LineSettings FromTerminal(const termios2 &terminal) {
    const auto size = std::find(std::begin(kSizeBits), std::end(kSizeBits), terminal.c_cflag & CSIZE);
    const tcflag_t parityBits = (terminal.c_cflag & PARENB) != 0 ? terminal.c_cflag & kParityMask : 0;
    const auto parity = std::find(std::begin(kParityBits), std::end(kParityBits), parityBits);
    LineSettings settings;
    settings.length = kBlockLength;
    settings.baudRate = terminal.c_ospeed;
    settings.binary = true;
    settings.parityCheck = (terminal.c_iflag & INPCK) != 0;
    settings.ctsFlow = (terminal.c_cflag & CRTSCTS) != 0;
    settings.xonXoffOut = (terminal.c_iflag & IXON) != 0;
    settings.xonXoffIn = (terminal.c_iflag & IXOFF) != 0;
    settings.byteSize = static_cast<uint8_t>(kLeastBits + (size - std::begin(kSizeBits)));
    settings.parity = static_cast<uint8_t>(parity - std::begin(kParityBits));
    if ((terminal.c_cflag & CSTOPB) != 0)
        settings.stopBits = settings.byteSize == kLeastBits ? kOneAndAHalf : kTwo;
    return settings;
}

bool IsTaken(const termios2 &asked, const termios2 &got) {
    const uint64_t wanted = asked.c_ospeed;
    const uint64_t real = got.c_ospeed;
    const uint64_t difference = wanted > real ? wanted - real : real - wanted;
    return (asked.c_cflag & kCharacterMask) == (got.c_cflag & kCharacterMask) &&
           difference * 100 <= wanted * 3;
}

} // namespace platform
