#include "tools/Address.h"

#include <gtest/gtest.h>

using tool::ParseAddress;

namespace {

std::string Parsed(std::string_view text) {
    const auto address = ParseAddress(text);
    return address ? address->host + " " + std::to_string(address->port) : "none";
}

} // namespace

TEST(Address, IsAHostWithOrWithoutAPort) {
    EXPECT_EQ(Parsed("printer.local"), "printer.local 9100");
    EXPECT_EQ(Parsed("printer.local:9101"), "printer.local 9101");
    EXPECT_EQ(Parsed("192.168.1.50:1"), "192.168.1.50 1");
    EXPECT_EQ(Parsed("192.168.1.50:65535"), "192.168.1.50 65535");
}

TEST(Address, HasAnIpv6AddressInBracketsBeforeAPort) {
    EXPECT_EQ(Parsed("[::1]:9101"), "::1 9101");
    EXPECT_EQ(Parsed("[::1]"), "::1 9100");
    EXPECT_EQ(Parsed("::1"), "::1 9100");
    EXPECT_EQ(Parsed("fe80::1%eth0"), "fe80::1%eth0 9100");
}

TEST(Address, IsNothingElse) {
    for (const char *text : {"", ":9100", "a:", "a:0", "a:65536", "a:-1", "a:+1", "a:9100x", "a: 9100", "[]",
                             "[]:1", "[::1", "[::1]9100", "[::1]:"})
        EXPECT_EQ(Parsed(text), "none") << text;
}

TEST(AddressTrouble, IsTheSystemsReason) {
    EXPECT_EQ(tool::AddressTrouble({"127.0.0.1", 1}), "Connection refused");
    EXPECT_EQ(tool::AddressTrouble({"a..b", 9100}), "Name or service not known");
}
