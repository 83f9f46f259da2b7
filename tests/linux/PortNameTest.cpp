#include "platform/linux/PortName.h"

#include <gtest/gtest.h>

namespace {

using platform::DevicePath;

TEST(PortName, ADevicePathStandsForItself) {
    EXPECT_EQ(DevicePath(u"/dev/ttyUSB0"), "/dev/ttyUSB0");
    EXPECT_EQ(DevicePath(u"/dev/serial/by-id/Caf\u00E9"), "/dev/serial/by-id/Caf\xC3\xA9");
    EXPECT_EQ(DevicePath(u"ttyUSB0"), "ttyUSB0");
}

TEST(PortName, ALeadingDevicePrefixIsIgnored) {
    EXPECT_EQ(DevicePath(u"\\\\.\\/dev/ttyUSB0"), "/dev/ttyUSB0");
    EXPECT_EQ(DevicePath(u"\\\\.\\COM12"), "/dev/ttyS11");
}

TEST(PortName, OnlyOneLeadingPrefixIsIgnored) {
    EXPECT_EQ(DevicePath(u"\\\\.\\\\\\.\\COM1"), "\\\\.\\COM1");
    EXPECT_EQ(DevicePath(u"/dev/\\\\.\\COM1"), "/dev/\\\\.\\COM1");
}

TEST(PortName, ComPortsAreTheSystemsSerialPortsCountedFromOne) {
    EXPECT_EQ(DevicePath(u"COM1"), "/dev/ttyS0");
    EXPECT_EQ(DevicePath(u"com2"), "/dev/ttyS1");
    EXPECT_EQ(DevicePath(u"Com10"), "/dev/ttyS9");
    EXPECT_EQ(DevicePath(u"COM256"), "/dev/ttyS255");
}

TEST(PortName, WhatOnlyLooksLikeAComPortStandsForItself) {
    for (const char16_t *name : {u"COM", u"COM0", u"COM01", u"COM257", u"COM99999999999999999999", u"COM1:",
                                 u"COM1 ", u"COM-1", u"COM+1", u"COMX", u" COM1", u"CO", u"C"}) {
        const std::u16string_view text = name;
        EXPECT_EQ(DevicePath(name), std::string(text.begin(), text.end()));
    }
}

TEST(PortName, NoNameIsAnEmptyPath) {
    EXPECT_EQ(DevicePath(nullptr), "");
    EXPECT_EQ(DevicePath(u""), "");
    EXPECT_EQ(DevicePath(u"\\\\.\\"), "");
}

} // namespace
