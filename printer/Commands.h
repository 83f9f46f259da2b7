#pragma once

#include "printer/Bytes.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The printer's command language: one table of everything it understands.
namespace printer {

enum class Kind : uint8_t {
    // What is no command of its own.
    Text,       // bytes from 20 on, in the current code table
    Padding,    // a run of 00 between commands; means nothing
    Unknown,    // bytes that begin no command
    Incomplete, // a command whose end is missing
    Frame,      // a good framed command; the commands inside it follow
    BadFrame,   // a framed command that was skipped; the note says why
    Query,      // the query frame

    // Line and feed.
    Tab,
    LineFeed,
    CarriageReturn,
    FeedDots,
    FeedLines,
    FormFeed,
    Cut,
    FeedToMark,
    StartAtMark,
    OffsetFromMark,
    MarkSensing,

    // Style and position.
    Initialize,
    DefaultLineSpacing,
    LineSpacing,
    CharacterSpacing,
    CodeTable,
    FontSize,
    Magnification,
    Underline,
    Bold,
    Reverse,
    UpsideDown,
    Alignment,
    Position,
    HorizontalPosition,
    MotionUnits,

    // Page mode and drawing.
    PageMode,
    StandardMode,
    ClearPage,
    PrintPage,
    PageArea,
    PageDirection,
    Box,
    LineFigure,
    Ellipse,

    // Barcodes.
    ModuleWidth,
    BarHeight,
    HumanReadable,
    Barcode,
    MatrixKind,
    MatrixBarcode,
    Databar,

    // Pictures.
    Raster,
    CompressedRaster,
    EndOfCompressedRaster,
    Logo,

    // Macro and TrueType.
    Macro,
    TrueTypeFont,
    TrueTypeText,

    // Requests that are answered or concern a device inside the printer.
    Status,
    ModelName,
    FirmwareVersion,
    PrintOutReports,
    CancelReading,
    EnterReader,
    CancelSecuredCard,
    SecuredCard,
    CardRead,
    EnterSmartCard,
    LeaveSmartCard,
    TerminalIdentifier,
    PaymentRequest,
};

// What follows a command's prefix.
enum class Length : uint8_t {
    Fixed,          // the fixed parameter bytes and no more
    Count8,         // the last fixed byte counts the data bytes
    Count16,        // the last two fixed bytes count the data bytes, low byte first
    UntilZero,      // data up to and with a 00
    UntilZeroPair,  // 16-bit units up to and with one of 00 00
    RasterBand,     // the first fixed byte counts the bytes of a line; 24 lines
    CompressedBand, // the same band as run-length tokens
    SecuredText,    // two fixed bytes q r: q * 255 + r data bytes
};

struct CommandForm {
    std::string_view prefix;
    Kind kind;
    Length length;
    uint8_t fixed;            // parameter bytes of every such command
    std::string_view name;    // as a manual writes it
    std::string_view meaning; // see Listing.cpp for what stands in braces
};

constexpr int BandLines = 24; // of every raster band

struct Command {
    const CommandForm *form = nullptr;
    bool framed = false; // came inside a framed command
    uint64_t offset = 0; // of the first byte in the stream
    Bytes bytes;         // the command without the escapes of the framed form
    std::string note;    // why it is incomplete or bad

    Kind GetKind() const { return form->kind; }
    uint8_t Byte(size_t index) const; // a parameter; 00 when it is not there
    int Word(size_t index) const;     // two parameter bytes, low byte first
    ByteView Parameters() const;      // what follows the prefix
    ByteView Data() const;            // what follows the fixed parameters
    ByteView Content() const;         // the data without the zeros that end it
};

// The form of what is no command in the table: Text up to Query.
const CommandForm &FormOf(Kind kind);

// What the first bytes of a command tell. Neither a form nor possible: they begin no command.
struct FormMatch {
    const CommandForm *form = nullptr;
    bool undecided = false; // more bytes could make a longer prefix match
};
FormMatch MatchForm(ByteView bytes);

// True for requests, which need no paper.
bool IsRequest(Kind kind);

} // namespace printer
