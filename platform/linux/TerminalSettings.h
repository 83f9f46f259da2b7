#pragma once

#include "platform/SerialPort.h"

#include <asm/termbits.h> // not together with <termios.h>, which declares the same names

namespace platform {

// The line settings as the terminal driver takes them: raw in both directions, without flow control, every
// special character off; what concerns neither stays as it is in `terminal`. False, and nothing changed, for
// settings that no Linux driver has: any flow control or replacement of characters, 0 baud, other than 5 to 8
// bits, 1.5 stop bits but with 5 bits, 2 but with 6 to 8.
//
// A character with a wrong parity bit is received like any other, as on the systems where checking only
// reports.
bool ToTerminal(const LineSettings &settings, termios2 &terminal);

LineSettings FromTerminal(const termios2 &terminal);

// Whether the driver, which puts what it has in place of what it lacks, took what it was asked for: size,
// parity and stop bits exactly, the rate within 3 percent.
bool IsTaken(const termios2 &asked, const termios2 &got);

} // namespace platform
