#include "printer/Commands.h"

#include <algorithm>
#include <array>

namespace printer {
namespace {

using namespace std::string_view_literals;

constexpr std::array SpecialForms = {
    CommandForm{""sv, Kind::Text, Length::Fixed, 0, "text", "{text}"},
    CommandForm{""sv, Kind::Padding, Length::Fixed, 0, "padding", "{count}"},
    CommandForm{""sv, Kind::Unknown, Length::Fixed, 0, "unknown", ""},
    CommandForm{""sv, Kind::Incomplete, Length::Fixed, 0, "incomplete", "{note}"},
    CommandForm{""sv, Kind::Frame, Length::Fixed, 0, "frame", "{note}"},
    CommandForm{""sv, Kind::BadFrame, Length::Fixed, 0, "bad frame", "{note}"},
    CommandForm{""sv, Kind::Query, Length::Fixed, 0, "query frame", "printer status"},
};

constexpr std::array Forms = {
    CommandForm{"\x04"sv, Kind::CancelReading, Length::Fixed, 0, "EOT", "cancel card reading"},
    CommandForm{"\x09"sv, Kind::Tab, Length::Fixed, 0, "HT", "next tab stop"},
    CommandForm{"\x0A"sv, Kind::LineFeed, Length::Fixed, 0, "LF", "print the line"},
    CommandForm{"\x0C"sv, Kind::FormFeed, Length::Fixed, 0, "FF", "print the page, standard mode"},
    CommandForm{"\x0D"sv, Kind::CarriageReturn, Length::Fixed, 0, "CR", "carriage return, means nothing"},
    CommandForm{"\x18"sv, Kind::ClearPage, Length::Fixed, 0, "CAN", "clear the page's area"},
    CommandForm{"\002C11\0\0\x03"sv, Kind::CardRead, Length::Fixed, 0, "STX C", "read a card"},
    CommandForm{"\002D11\0\0\x03"sv, Kind::CardRead, Length::Fixed, 0, "STX D", "read a card"},
    CommandForm{"~\x04~"sv, Kind::LeaveSmartCard, Length::Fixed, 0, "~ EOT ~", "leave smart-card mode"},

    CommandForm{"\033\0\x01"sv, Kind::FirmwareVersion, Length::Fixed, 0, "ESC 00 01", "firmware version"},
    CommandForm{"\033\x0C"sv, Kind::PrintPage, Length::Fixed, 0, "ESC FF", "print the page, keep it"},
    CommandForm{"\033\034+\x01\0"sv, Kind::Macro, Length::Count16, 2, "ESC FS +",
                "define the macro, {count}"},
    CommandForm{"\033 "sv, Kind::CharacterSpacing, Length::Fixed, 1, "ESC SP", "character spacing {b0} dots"},
    CommandForm{"\033!"sv, Kind::FontSize, Length::Fixed, 1, "ESC !", "font size {b0}"},
    CommandForm{"\033$"sv, Kind::HorizontalPosition, Length::Fixed, 2, "ESC $", "position x {w0}"},
    CommandForm{"\033-"sv, Kind::Underline, Length::Fixed, 1, "ESC -", "underline {b0:off|1 dot|2 dots}"},
    CommandForm{"\0332"sv, Kind::DefaultLineSpacing, Length::Fixed, 0, "ESC 2", "default line spacing"},
    CommandForm{"\0333"sv, Kind::LineSpacing, Length::Fixed, 1, "ESC 3", "line spacing {b0} dots"},
    CommandForm{"\033@"sv, Kind::Initialize, Length::Fixed, 0, "ESC @", "initialise"},
    CommandForm{"\033E"sv, Kind::Bold, Length::Fixed, 1, "ESC E", "bold {b0:off|on}"},
    CommandForm{"\033J"sv, Kind::FeedDots, Length::Fixed, 1, "ESC J", "print and feed {b0} dots"},
    CommandForm{"\033L"sv, Kind::PageMode, Length::Fixed, 0, "ESC L", "page mode"},
    CommandForm{"\033M"sv, Kind::EnterReader, Length::Fixed, 1, "ESC M", "enter card reader mode {c0}"},
    CommandForm{"\033MS"sv, Kind::SecuredCard, Length::SecuredText, 2, "ESC M S", "secured card {text}"},
    CommandForm{"\033MX"sv, Kind::CancelSecuredCard, Length::Fixed, 0, "ESC M X", "cancel secured card"},
    CommandForm{"\033N"sv, Kind::EnterSmartCard, Length::Fixed, 0, "ESC N", "enter smart-card mode"},
    CommandForm{"\033O"sv, Kind::Position, Length::Fixed, 4, "ESC O", "position x {w0}, y {w2}"},
    CommandForm{"\033P"sv, Kind::OffsetFromMark, Length::Fixed, 2, "ESC P", "start {w0} dots after the mark"},
    CommandForm{"\033S"sv, Kind::StandardMode, Length::Fixed, 0, "ESC S", "standard mode"},
    CommandForm{"\033T"sv, Kind::PageDirection, Length::Fixed, 1, "ESC T",
                "page direction {b0:left to right|bottom to top|right to left|top to bottom}"},
    CommandForm{"\033V"sv, Kind::Status, Length::Fixed, 0, "ESC V", "printer status"},
    CommandForm{"\033W"sv, Kind::PageArea, Length::Fixed, 8, "ESC W",
                "page area x {w0}, y {w2}, width {w4}, height {w6}"},
    CommandForm{"\033X2"sv, Kind::EndOfCompressedRaster, Length::Fixed, 1, "ESC X 2",
                "print {b0} raster lines"},
    CommandForm{"\033X3"sv, Kind::CompressedRaster, Length::CompressedBand, 2, "ESC X 3",
                "compressed raster, {b0} bytes a line, {b1} lines"},
    CommandForm{"\033X4"sv, Kind::Raster, Length::RasterBand, 2, "ESC X 4",
                "raster, {b0} bytes a line, {b1} lines"},
    CommandForm{"\033Y"sv, Kind::ModelName, Length::Fixed, 1, "ESC Y", "model name"},
    CommandForm{"\033Z"sv, Kind::MatrixBarcode, Length::Count16, 5, "ESC Z",
                "matrix barcode {b0}, {b1}, {b2}, data {ascii}"},
    CommandForm{"\033a"sv, Kind::Alignment, Length::Fixed, 1, "ESC a", "alignment {b0:left|centre|right}"},
    CommandForm{"\033d"sv, Kind::FeedLines, Length::Fixed, 1, "ESC d", "print and feed {b0} lines"},
    CommandForm{"\033f"sv, Kind::Logo, Length::Fixed, 1, "ESC f", "stored logo {b0}"},
    CommandForm{"\033g1"sv, Kind::LineFigure, Length::Fixed, 9, "ESC g 1",
                "line from {w0}, {w2} to {w4}, {w6}, thickness {b8}"},
    CommandForm{"\033g2"sv, Kind::Ellipse, Length::Fixed, 9, "ESC g 2",
                "ellipse in {w0}, {w2} to {w4}, {w6}, thickness {b8}"},
    CommandForm{"\033gF"sv, Kind::TrueTypeFont, Length::UntilZero, 0, "ESC g F", "TrueType font {text}"},
    CommandForm{"\033gU"sv, Kind::TrueTypeText, Length::UntilZeroPair, 2, "ESC g U",
                "TrueType text {b0}, {b1}, {utf16}"},
    CommandForm{"\033m"sv, Kind::TerminalIdentifier, Length::Fixed, 8, "ESC m", "terminal identifier {text}"},
    CommandForm{"\033n"sv, Kind::PaymentRequest, Length::Fixed, 14, "ESC n",
                "payment request {b0}: {bcd1-6} {bcd7-10} {bcd11-13}"},
    CommandForm{"\033t"sv, Kind::CodeTable, Length::Fixed, 1, "ESC t", "code table {b0}, {codetable}"},
    CommandForm{"\033v"sv, Kind::Status, Length::Fixed, 0, "ESC v", "printer status"},
    CommandForm{"\033y"sv, Kind::StartAtMark, Length::Fixed, 0, "ESC y",
                "to the print start behind the mark"},
    CommandForm{"\033z"sv, Kind::FeedToMark, Length::Fixed, 0, "ESC z", "feed to the black mark"},
    CommandForm{"\033{"sv, Kind::UpsideDown, Length::Fixed, 1, "ESC {", "upside down {b0:off|on}"},

    CommandForm{"\035!"sv, Kind::Magnification, Length::Fixed, 1, "GS !", "width x{high0}, height x{low0}"},
    CommandForm{"\0351"sv, Kind::Databar, Length::UntilZero, 2, "GS 1",
                "GS1 DataBar type {b0}, segments {b1}, data {ascii}"},
    CommandForm{"\035B"sv, Kind::Reverse, Length::Fixed, 1, "GS B", "reverse {b0:off|on}"},
    CommandForm{"\035H"sv, Kind::HumanReadable, Length::Fixed, 1, "GS H", "text under barcodes {b0:off|on}"},
    CommandForm{"\035P"sv, Kind::MotionUnits, Length::Fixed, 2, "GS P", "motion units {b0} x {b1}"},
    CommandForm{"\035V"sv, Kind::Cut, Length::Fixed, 1, "GS V", "cut the paper, {b0:full|partial}"},
    CommandForm{"\035Z"sv, Kind::MatrixKind, Length::Fixed, 1, "GS Z", "matrix barcode kind {b0}"},
    CommandForm{"\035h"sv, Kind::BarHeight, Length::Fixed, 1, "GS h", "barcode height {b0} dots"},
    CommandForm{"\035i"sv, Kind::Box, Length::Fixed, 5, "GS i", "box {w0} x {w2}, thickness {b4}"},
    CommandForm{"\035k"sv, Kind::Barcode, Length::Count8, 2, "GS k", "barcode {b0}, data {ascii}"},
    CommandForm{"\035s"sv, Kind::MarkSensing, Length::Fixed, 1, "GS s", "black-mark sensing {b0:off|on}"},
    CommandForm{"\035v"sv, Kind::PrintOutReports, Length::Fixed, 1, "GS v", "print-out reports {b0:off|on}"},
    CommandForm{"\035w"sv, Kind::ModuleWidth, Length::Fixed, 1, "GS w", "barcode module width {b0} dots"},
};

bool HasPrefix(ByteView bytes, std::string_view prefix) {
    const size_t common = std::min(bytes.size(), prefix.size());
    return std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(common), prefix.begin(),
                      [](uint8_t byte, char letter) { return byte == static_cast<uint8_t>(letter); });
}

} // namespace

const CommandForm &FormOf(Kind kind) {
    return SpecialForms[static_cast<size_t>(kind)];
}

FormMatch MatchForm(ByteView bytes) {
    FormMatch match;
    for (const CommandForm &form : Forms) {
        if (!HasPrefix(bytes, form.prefix))
            continue;
        if (form.prefix.size() > bytes.size())
            match.undecided = true;
        else if (!match.form || form.prefix.size() > match.form->prefix.size())
            match.form = &form;
    }
    return match;
}

bool IsRequest(Kind kind) {
    return kind >= Kind::Status || kind == Kind::Padding || kind == Kind::Query || kind == Kind::Frame ||
           kind == Kind::BadFrame;
}

uint8_t Command::Byte(size_t index) const {
    const ByteView parameters = Parameters();
    return index < parameters.size() ? parameters[index] : uint8_t{0};
}

int Command::Word(size_t index) const {
    return Byte(index) + 256 * Byte(index + 1);
}

ByteView Command::Parameters() const {
    return ByteView(bytes).subspan(std::min(form->prefix.size(), bytes.size()));
}

ByteView Command::Content() const {
    const ByteView data = Data();
    const size_t zeros = form->length == Length::UntilZero       ? 1
                         : form->length == Length::UntilZeroPair ? 2
                                                                 : 0;
    const bool ends =
        data.size() >= zeros && std::ranges::count(data.last(zeros), 0) == static_cast<std::ptrdiff_t>(zeros);
    return ends ? data.first(data.size() - zeros) : data;
}

ByteView Command::Data() const {
    const ByteView parameters = Parameters();
    return parameters.subspan(std::min<size_t>(form->fixed, parameters.size()));
}

} // namespace printer
