#pragma once

#include "tests/endtoend/VirtualPrinter.h"

#include "api/NadrelHost.h"

#include <ostream>

// What a host program does, on either kind of link and in either form.
namespace endtoend {

using Bytes = std::vector<uint8_t>;

enum class Medium { serial, tcp };
enum class Form { plain, framed };

struct Link {
    Medium medium;
    Form form;
};

inline constexpr Medium kEveryMedium[] = {Medium::serial, Medium::tcp};
inline constexpr Link kEveryLink[] = {{Medium::serial, Form::plain},
                                      {Medium::serial, Form::framed},
                                      {Medium::tcp, Form::plain},
                                      {Medium::tcp, Form::framed}};
inline constexpr Link kBothForms[] = {{Medium::serial, Form::plain}, {Medium::tcp, Form::framed}};

// As names of tests.
std::string NameOf(Medium medium);
std::string NameOf(Link link);
inline std::ostream &operator<<(std::ostream &out, Link link) {
    return out << NameOf(link);
}
inline std::ostream &operator<<(std::ostream &out, Medium medium) {
    return out << NameOf(medium);
}

std::u16string ToUtf16(const std::string &ascii);

int32_t ConnectSerial(const std::string &path, Form form);
int32_t ConnectTcp(uint32_t port, Form form);
int32_t Connect(const VirtualPrinter &printer, Link link);

// Appends a line of text and its line feed, and prints the spool: PrintSpool's result.
int32_t PrintLine(const std::string &text);

// Prints the spool again and again, until the link report tells of a failed write; not for ever. The last
// result.
int32_t PrintUntilAnError();

NadrelLinkReport Report();

// ClosePrinter and how long it takes.
struct Closing {
    int32_t result;
    double time; // milliseconds
};
Closing TimedClose();

} // namespace endtoend
