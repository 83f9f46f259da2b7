#include "tests/SpoolFixture.h"

#include "platform/linux/AnsiCodePage.h"

#include <functional>
#include <string>

namespace nadrel {

INSTANTIATE_TEST_SUITE_P(
    OneDimension, LinkAppender,
    testing::Values(LinkRow{SPOOL_RESULT(OneDimensionBarcodeSaveSpool(73, 0, 300, 1, u"12")),
                            "1D 77 00 1D 68 00 1D 48 01 1D 6B 49 02 31 32", false},
                    LinkRow{SPOOL_RESULT(OneDimensionBarcodeSaveSpool(67, 1, 1, 0, u"4")),
                            "1D 77 01 1D 68 01 1D 48 00 1D 6B 43 01 34", false},
                    LinkRow{SPOOL_RESULT(OneDimensionBarcodeSaveSpool(0, 8, 255, -1, u"")),
                            "1D 77 08 1D 68 FF 1D 48 01 1D 6B 00 00", false},
                    LinkRow{SPOOL_RESULT(OneDimensionBarcodeSaveSpool(255, 9, 256, 2, nullptr)),
                            "1D 77 00 1D 68 00 1D 48 01 1D 6B FF 00", false},
                    LinkRow{SPOOL_RESULT(OneDimensionBarcodeSaveSpool(0x149, -1, 0, 256, u"A")),
                            "1D 77 00 1D 68 00 1D 48 01 1D 6B 49 01 41", false},
                    LinkRow{SPOOL_RESULT(OneDimensionBarcodeSaveSpool(UINT32_MAX, INT32_MIN, INT32_MAX, 0,
                                                                      u"\u00E9\u4E2D")),
                            "1D 77 00 1D 68 00 1D 48 00 1D 6B FF 02 E9 3F", false}),
    RowName<LinkRow>);

INSTANTIATE_TEST_SUITE_P(Pdf417, TextCommand,
                         testing::Values(TextRow{SPOOL_CALL(PDF417SaveSpool(3, 31, 2, 3, u"A", 1)),
                                                 "1D 5A 00 1D 77 03 1B 5A 00 00 03 01 00 41 1D 48 01",
                                                 "1D 5A 00 1D 77 03 1B 5A 00 00 03 00 00 1D 48 01"},
                                         TextRow{SPOOL_CALL(PDF417SaveSpool(1, 1, 0, 2, u"AB", 0)),
                                                 "1D 5A 00 1D 77 01 1B 5A 01 00 02 02 00 41 42 1D 48 00",
                                                 "1D 5A 00 1D 77 01 1B 5A 01 00 02 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(PDF417SaveSpool(8, 30, 8, 5, u"A", 2)),
                                                 "1D 5A 00 1D 77 08 1B 5A 1E 08 05 01 00 41 1D 48 00",
                                                 "1D 5A 00 1D 77 08 1B 5A 1E 08 05 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(PDF417SaveSpool(9, 0, 4, 6, u"A", -1)),
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 01 00 41 1D 48 00",
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(PDF417SaveSpool(0, 5, 9, 1, u"A", 257)),
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 01 00 41 1D 48 00",
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(PDF417SaveSpool(-1, 5, -1, -1, nullptr, 1)),
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 00 00 1D 48 01",
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 00 00 1D 48 01"}),
                         RowName<TextRow>);

INSTANTIATE_TEST_SUITE_P(TruncatedPdf417, TextCommand,
                         testing::Values(TextRow{SPOOL_CALL(TruncatedPDF417SaveSpool(2, 5, 10, 2, u"A", 0)),
                                                 "1D 5A 00 1D 77 02 1B 5A 00 00 02 01 00 41 1D 48 00",
                                                 "1D 5A 00 1D 77 02 1B 5A 00 00 02 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(TruncatedPDF417SaveSpool(2, 0, 10, 2, u"A", 0)),
                                                 "1D 5A 00 1D 77 02 1B 5A 00 00 02 01 00 41 1D 48 00",
                                                 "1D 5A 00 1D 77 02 1B 5A 00 00 02 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(TruncatedPDF417SaveSpool(8, 1, 4, 5, u"A", 1)),
                                                 "1D 5A 03 1D 77 08 1B 5A 01 04 05 01 00 41 1D 48 01",
                                                 "1D 5A 03 1D 77 08 1B 5A 01 04 05 00 00 1D 48 01"},
                                         TextRow{SPOOL_CALL(TruncatedPDF417SaveSpool(1, 4, 44, 2, u"A", 2)),
                                                 "1D 5A 03 1D 77 01 1B 5A 04 2C 02 01 00 41 1D 48 00",
                                                 "1D 5A 03 1D 77 01 1B 5A 04 2C 02 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(TruncatedPDF417SaveSpool(9, 2, 3, 6, u"", 1)),
                                                 "1D 5A 03 1D 77 00 1B 5A 02 00 00 00 00 1D 48 01",
                                                 "1D 5A 03 1D 77 00 1B 5A 02 00 00 00 00 1D 48 01"},
                                         TextRow{SPOOL_CALL(TruncatedPDF417SaveSpool(0, 3, 45, 1, u"A", 1)),
                                                 "1D 5A 03 1D 77 00 1B 5A 03 00 00 01 00 41 1D 48 01",
                                                 "1D 5A 03 1D 77 00 1B 5A 03 00 00 00 00 1D 48 01"}),
                         RowName<TextRow>);

INSTANTIATE_TEST_SUITE_P(MicroPdf417, TextCommand,
                         testing::Values(TextRow{SPOOL_CALL(MicroPDF417SaveSpool(2, 1, 0, 2, u"A", 1)),
                                                 "1D 5A 04 1D 77 02 1B 5A 01 00 02 01 00 41 1D 48 01",
                                                 "1D 5A 04 1D 77 02 1B 5A 01 00 02 00 00 1D 48 01"},
                                         TextRow{SPOOL_CALL(MicroPDF417SaveSpool(8, 4, 8, 5, u"A", 0)),
                                                 "1D 5A 04 1D 77 08 1B 5A 04 08 05 01 00 41 1D 48 00",
                                                 "1D 5A 04 1D 77 08 1B 5A 04 08 05 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(MicroPDF417SaveSpool(9, 5, 8, 6, u"A", 3)),
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 01 00 41 1D 48 00",
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 00 00 1D 48 00"},
                                         TextRow{SPOOL_CALL(MicroPDF417SaveSpool(0, 4, 9, 1, u"A", 1)),
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 01 00 41 1D 48 01",
                                                 "1D 5A 00 1D 77 00 1B 5A 00 00 00 00 00 1D 48 01"},
                                         TextRow{SPOOL_CALL(MicroPDF417SaveSpool(3, 0, -1, 3, nullptr, 1)),
                                                 "1D 5A 00 1D 77 03 1B 5A 00 00 03 00 00 1D 48 01",
                                                 "1D 5A 00 1D 77 03 1B 5A 00 00 03 00 00 1D 48 01"}),
                         RowName<TextRow>);

INSTANTIATE_TEST_SUITE_P(
    QrCode, TextCommand,
    testing::Values(TextRow{SPOOL_CALL(QRCodeSaveSpool(41, 'M', 3, u"ABC")),
                            "1D 5A 02 1B 5A 00 4D 03 03 00 41 42 43", "1D 5A 02 1B 5A 00 4D 03 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(5, 'X', 9, u"A")), "1D 5A 02 1B 5A 05 00 00 01 00 41",
                            "1D 5A 02 1B 5A 05 00 00 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(1, 'L', 1, u"A")), "1D 5A 02 1B 5A 01 4C 01 01 00 41",
                            "1D 5A 02 1B 5A 01 4C 01 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(40, 'Q', 8, u"A")), "1D 5A 02 1B 5A 28 51 08 01 00 41",
                            "1D 5A 02 1B 5A 28 51 08 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(0, 'H', 0, u"A")), "1D 5A 02 1B 5A 00 48 00 01 00 41",
                            "1D 5A 02 1B 5A 00 48 00 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(-1, 0x10048, -1, u"A")),
                            "1D 5A 02 1B 5A 00 48 00 01 00 41", "1D 5A 02 1B 5A 00 48 00 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(257, 0x148, 257, u"A")),
                            "1D 5A 02 1B 5A 00 00 00 01 00 41", "1D 5A 02 1B 5A 00 00 00 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(2, 'l', 2, u"")), "1D 5A 02 1B 5A 02 00 02 00 00",
                            "1D 5A 02 1B 5A 02 00 02 00 00"},
                    TextRow{SPOOL_CALL(QRCodeSaveSpool(2, 0, 2, nullptr)), "1D 5A 02 1B 5A 02 00 02 00 00",
                            "1D 5A 02 1B 5A 02 00 02 00 00"}),
    RowName<TextRow>);

INSTANTIATE_TEST_SUITE_P(
    DataMatrixAndMaxicode, TextCommand,
    testing::Values(TextRow{SPOOL_CALL(DataMatrixSaveSpool(0, 0, 4, u"AB")),
                            "1D 5A 01 1B 5A 00 00 04 02 00 41 42", "1D 5A 01 1B 5A 00 00 04 00 00"},
                    TextRow{SPOOL_CALL(DataMatrixSaveSpool(255, 144, 8, u"A")),
                            "1D 5A 01 1B 5A FF 90 08 01 00 41", "1D 5A 01 1B 5A FF 90 08 00 00"},
                    TextRow{SPOOL_CALL(DataMatrixSaveSpool(0x1234, UINT32_MAX, 9, u"A")),
                            "1D 5A 01 1B 5A 34 FF 00 01 00 41", "1D 5A 01 1B 5A 34 FF 00 00 00"},
                    TextRow{SPOOL_CALL(DataMatrixSaveSpool(1, 2, 0, nullptr)),
                            "1D 5A 01 1B 5A 01 02 00 00 00", "1D 5A 01 1B 5A 01 02 00 00 00"},
                    TextRow{SPOOL_CALL(MaxicodeSaveSpool(2, u"A")), "1D 5A 05 1B 5A 02 00 00 01 00 41",
                            "1D 5A 05 1B 5A 02 00 00 00 00"},
                    TextRow{SPOOL_CALL(MaxicodeSaveSpool(6, u"AB")), "1D 5A 05 1B 5A 06 00 00 02 00 41 42",
                            "1D 5A 05 1B 5A 06 00 00 00 00"},
                    TextRow{SPOOL_CALL(MaxicodeSaveSpool(1, u"A")), "1D 5A 05 1B 5A 00 00 00 01 00 41",
                            "1D 5A 05 1B 5A 00 00 00 00 00"},
                    TextRow{SPOOL_CALL(MaxicodeSaveSpool(7, u"")), "1D 5A 05 1B 5A 00 00 00 00 00",
                            "1D 5A 05 1B 5A 00 00 00 00 00"},
                    TextRow{SPOOL_CALL(MaxicodeSaveSpool(258, nullptr)), "1D 5A 05 1B 5A 00 00 00 00 00",
                            "1D 5A 05 1B 5A 00 00 00 00 00"}),
    RowName<TextRow>);

INSTANTIATE_TEST_SUITE_P(
    Gs1Databar, TextCommand,
    testing::Values(
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 44, u"1")), "1D 31 06 2C 31 00", "1D 31 06 2C 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 23, u"1")), "1D 31 06 00 31 00", "1D 31 06 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(9, 4, u"1")), "1D 31 00 00 31 00", "1D 31 00 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(0, 4, u"1")), "1D 31 00 00 31 00", "1D 31 00 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(5, 4, u"12")), "1D 31 05 00 31 32 00", "1D 31 05 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 2, u"1")), "1D 31 06 02 31 00", "1D 31 06 02 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 20, u"1")), "1D 31 06 14 31 00", "1D 31 06 14 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 3, u"1")), "1D 31 06 00 31 00", "1D 31 06 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 0, u"1")), "1D 31 06 00 31 00", "1D 31 06 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 22, u"1")), "1D 31 06 00 31 00", "1D 31 06 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 24, u"1")), "1D 31 06 18 31 00", "1D 31 06 18 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 42, u"1")), "1D 31 06 00 31 00", "1D 31 06 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, 300, u"1")), "1D 31 06 2C 31 00", "1D 31 06 2C 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, -2, u"1")), "1D 31 06 00 31 00", "1D 31 06 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(6, INT32_MIN, u"1")), "1D 31 06 00 31 00", "1D 31 06 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(7, 4, u"")), "1D 31 00 00 00", "1D 31 00 00 00"},
        TextRow{SPOOL_CALL(GS1DatabarSaveSpool(-1, 4, nullptr)), "1D 31 00 00 00", "1D 31 00 00 00"}),
    RowName<TextRow>);

namespace {

class BarcodesTest : public SpoolFixture {
  protected:
    void TearDown() override { platform::SetAnsiCodePage(1252); }
};

struct BarcodeRow {
    uint8_t width;
    const char *sent;
};

void PrintTo(const BarcodeRow &row, std::ostream *out) {
    *out << "width " << int{row.width};
}

class BarcodeSaveSpoolWidth : public SpoolFixture, public testing::WithParamInterface<BarcodeRow> {};

struct LengthRow {
    size_t length;
    size_t counted;
    const char *countedHex;
};

void PrintTo(const LengthRow &row, std::ostream *out) {
    *out << row.length << " bytes of data";
}

class BarcodeDataLength : public SpoolFixture, public testing::WithParamInterface<LengthRow> {
  protected:
    // Appends a barcode with data of so many bytes and compares it with the command around the counted data.
    void Expect(const std::function<void(const char16_t *)> &append, const std::string &before,
                const std::string &after) {
        OpenSerialLink();
        append(std::u16string(GetParam().length, u'1').c_str());
        const std::string data = Repeated("31", GetParam().counted);
        EXPECT_EQ(SpoolHex(), Joined(Joined(Joined(before, GetParam().countedHex), data), after));
    }

    void ExpectWide(const std::function<void(const char16_t *)> &append, const std::string &before,
                    const std::string &after) {
        OpenSerialLink();
        append(std::u16string(GetParam().length, u'1').c_str());
        const std::string data = Joined("00", Repeated("31", GetParam().counted));
        EXPECT_EQ(SpoolHex(), Joined(Joined(Joined(before, GetParam().countedHex), data), after));
    }
};

} // namespace

TEST_P(BarcodeSaveSpoolWidth, IsTwoToSixElseTwo) {
    OpenSerialLink();
    EXPECT_EQ(BarcodeSaveSpool(73, GetParam().width, 80, 0, u"12", 384, 100, 300), 1);
    EXPECT_EQ(SpoolHex(), std::string("1B 4C 1B 57 00 00 00 00 80 01 64 00 18 1B 4F 2C 01 00 00 1D 77 ") +
                              GetParam().sent + " 1D 68 50 1D 48 00 1D 6B 49 02 31 32 0C");
}

INSTANTIATE_TEST_SUITE_P(Widths, BarcodeSaveSpoolWidth,
                         testing::Values(BarcodeRow{0, "02"}, BarcodeRow{1, "02"}, BarcodeRow{2, "02"},
                                         BarcodeRow{3, "03"}, BarcodeRow{6, "06"}, BarcodeRow{7, "02"},
                                         BarcodeRow{255, "02"}));

TEST_F(BarcodesTest, BarcodeSaveSpoolSendsHeightSymbologyAndFieldsUnchecked) {
    OpenSerialLink();
    EXPECT_EQ(BarcodeSaveSpool(255, 2, 0, 7, u"A", 65536, -1, -300), 1);
    EXPECT_EQ(SpoolHex(),
              "1B 4C 1B 57 00 00 00 00 00 00 FF 00 18 1B 4F D4 FF 00 00 1D 77 02 1D 68 00 1D 48 01 "
              "1D 6B FF 01 41 0C");
    ClearSpool();
    EXPECT_EQ(BarcodeSaveSpool(0, 2, 255, INT32_MIN, u"", 65535, 258, 1), 1);
    EXPECT_EQ(SpoolHex(),
              "1B 4C 1B 57 00 00 00 00 FF FF 02 01 18 1B 4F 01 00 00 00 1D 77 02 1D 68 FF 1D 48 01 "
              "1D 6B 00 00 0C");
}

TEST_F(BarcodesTest, BarcodeSaveSpoolGivesOneWithoutALinkAndAppendsNothing) {
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(BarcodeSaveSpool(73, 2, 80, 1, u"12", 384, 100, 0), 1); }));
}

TEST_F(BarcodesTest, BarcodeSaveSpoolGivesZeroForNullDataAndChangesNothing) {
    OpenSerialLink();
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(BarcodeSaveSpool(73, 2, 80, 1, nullptr, 384, 100, 0), 0); }));
}

TEST_F(BarcodesTest, BarcodeSaveSpoolLeavesThePageModeFlag) {
    OpenSerialLink();
    BarcodeSaveSpool(73, 2, 80, 1, u"12", 384, 100, 0);
    EXPECT_EQ(PageModeFlag, 0);
    PageModeFlag = 1;
    BarcodeSaveSpool(73, 2, 80, 1, u"12", 384, 100, 0);
    EXPECT_EQ(PageModeFlag, 1);
}

TEST_F(BarcodesTest, BarcodeSaveSpoolFillsTheSpoolToItsLastByteAndIsElseRefusedWholeWithOne) {
    OpenSerialLink();
    SpoolLength = kFull - 35;
    EXPECT_EQ(BarcodeSaveSpool(73, 2, 80, 1, u"12", 384, 100, 0), 1);
    EXPECT_EQ(SpoolLength, kFull);
    EXPECT_EQ(HexAt(kFull - 3, 4), "31 32 0C 00");
    for (const int32_t position :
         {kFull - 34, kFull, kFull + 1, kStorageEnd, INT32_MAX, kStorageFirst - 1, INT32_MIN}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(BarcodeSaveSpool(73, 2, 80, 1, u"12", 384, 100, 0), 1); }))
            << position;
    }
}

TEST_F(BarcodesTest, OneDimensionBarcodeAboveTheCapacityGivesMinusTwelveAlsoWithoutALink) {
    SpoolLength = kFull + 1;
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(OneDimensionBarcodeSaveSpool(73, 2, 80, 1, u"12"), -12); }));
    SpoolLength = kFull;
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(OneDimensionBarcodeSaveSpool(73, 2, 80, 1, u"12"), -11); }));
}

TEST_F(BarcodesTest, DataIsConvertedAndCountedInBytes) {
    OpenSerialLink();
    platform::SetAnsiCodePage(932);
    QRCodeSaveSpool(5, 'L', 3, u"\u3042A");
    EXPECT_EQ(SpoolHex(), "1D 5A 02 1B 5A 05 4C 03 03 00 82 A0 41");
    ClearSpool();
    MaxicodeSaveSpool(2, std::u16string(128, u'\u3042').c_str());
    EXPECT_EQ(SpoolHex(), "1D 5A 05 1B 5A 02 00 00 00 00");
    ClearSpool();
    GS1DatabarSaveSpool(0, 0, (std::u16string(128, u'\u3042') + u"A").c_str());
    EXPECT_EQ(SpoolHex(), "1D 31 00 00 82 00");
}

TEST_P(BarcodeDataLength, OfOneDimensionBarcodes) {
    Expect([](const char16_t *data) { OneDimensionBarcodeSaveSpool(73, 2, 80, 1, data); },
           "1D 77 02 1D 68 50 1D 48 01 1D 6B 49", "");
}

TEST_P(BarcodeDataLength, OfBarcodesOnAPageOfTheirOwn) {
    Expect([](const char16_t *data) { BarcodeSaveSpool(73, 3, 80, 1, data, 384, 100, 0); },
           "1B 4C 1B 57 00 00 00 00 80 01 64 00 18 1B 4F 00 00 00 00 1D 77 03 1D 68 50 1D 48 01 1D 6B 49",
           "0C");
}

TEST_P(BarcodeDataLength, OfPdf417) {
    ExpectWide([](const char16_t *data) { PDF417SaveSpool(3, 4, 5, 2, data, 1); },
               "1D 5A 00 1D 77 03 1B 5A 04 05 02", "1D 48 01");
}

TEST_P(BarcodeDataLength, OfTruncatedPdf417) {
    ExpectWide([](const char16_t *data) { TruncatedPDF417SaveSpool(3, 4, 5, 2, data, 1); },
               "1D 5A 03 1D 77 03 1B 5A 04 05 02", "1D 48 01");
}

TEST_P(BarcodeDataLength, OfMicroPdf417) {
    ExpectWide([](const char16_t *data) { MicroPDF417SaveSpool(3, 4, 5, 2, data, 1); },
               "1D 5A 04 1D 77 03 1B 5A 04 05 02", "1D 48 01");
}

TEST_P(BarcodeDataLength, OfQrCodes) {
    ExpectWide([](const char16_t *data) { QRCodeSaveSpool(5, 'M', 3, data); }, "1D 5A 02 1B 5A 05 4D 03", "");
}

TEST_P(BarcodeDataLength, OfDataMatrix) {
    ExpectWide([](const char16_t *data) { DataMatrixSaveSpool(1, 2, 3, data); }, "1D 5A 01 1B 5A 01 02 03",
               "");
}

TEST_P(BarcodeDataLength, OfMaxicode) {
    ExpectWide([](const char16_t *data) { MaxicodeSaveSpool(4, data); }, "1D 5A 05 1B 5A 04 00 00", "");
}

TEST_P(BarcodeDataLength, OfGs1DatabarWhichSendsNoLength) {
    OpenSerialLink();
    GS1DatabarSaveSpool(6, 4, std::u16string(GetParam().length, u'1').c_str());
    EXPECT_EQ(SpoolHex(), Joined(Joined("1D 31 06 04", Repeated("31", GetParam().counted)), "00"));
}

INSTANTIATE_TEST_SUITE_P(Lengths, BarcodeDataLength,
                         testing::Values(LengthRow{0, 0, "00"}, LengthRow{1, 1, "01"},
                                         LengthRow{255, 255, "FF"}, LengthRow{256, 0, "00"},
                                         LengthRow{257, 1, "01"}, LengthRow{260, 4, "04"},
                                         LengthRow{300, 44, "2C"}, LengthRow{511, 255, "FF"},
                                         LengthRow{512, 0, "00"}, LengthRow{409700, 0, "00"}));

} // namespace nadrel
