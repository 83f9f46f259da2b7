#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// The rules of the spool a second time, as plainly as they can be told and without a line of the library:
// what random sequences of calls are compared with. Every function has the name, arguments and result of the
// library's.
namespace nadrel {

inline std::vector<uint8_t> operator+(std::vector<uint8_t> first, const std::vector<uint8_t> &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class SpoolModel {
  public:
    using Bytes = std::vector<uint8_t>;
    using Text = const char16_t *;

    // Characters that texts of a comparison may have, and their bytes in code page 1252. Each is a text's
    // unit.
    static constexpr std::u16string_view kCharacters = u"A7 ~\x0A\xE9\u20AC\u4E2D\u03A9\xD83D";
    static constexpr std::string_view kCharacterBytes = "A7 ~\x0A\xE9\x80?O?";

    int64_t length = 0;
    int64_t mark = 0;
    bool page = false;
    bool link = false;
    Bytes storage = Bytes(4096 + 409600 + 4096);

    void Open() {
        if (!link)
            Reset();
        link = true;
    }
    void Close() {
        if (link)
            Reset();
        link = false;
    }

    // The frame of the spool.
    int32_t ControlCommand(const Bytes &bytes) { return ThroughLink(bytes); }
    int32_t SaveSpool(Text text, int32_t font, int32_t bold) {
        if (!link)
            return -11;
        if (text == nullptr)
            return 0;
        const Bytes sizes = Of({0x00, 0x10, 0x01, 0x11});
        Bytes command = Of({0x1D, 0x21});
        if (font >= 0 && font <= 3)
            command.push_back(sizes[static_cast<size_t>(font)]);
        if (!Write(command + Of({0x1B, 0x45, bold != 0})))
            return -12;
        const Bytes converted = Converted(text);
        if (length + Size(converted) > 9999) {
            length -= 6;
            return -12;
        }
        Write(converted);
        return static_cast<int32_t>(length);
    }
    void ClearSpool() {
        length = 0;
        std::fill(storage.begin(), storage.end(), uint8_t{0});
    }

    // Text.
    int32_t SetPrintPosition(int32_t x, int32_t y) { return Stored(Of({0x1B, 0x4F}) + Two(x) + Two(y)); }
    void PrintData() { Direct(Of({0x0A})); }
    void PrintDotFeed(int32_t n) { DirectIf(n, 0, 255, {0x1B, 0x4A, n}); }
    void PrintLineFeed(int32_t n) { DirectIf(n, 0, 255, {0x1B, 0x64, n}); }
    void InitPrinterStatus() { page = Direct(Of({0x1B, 0x40})) ? false : page; }
    void SetLineSpace(int32_t n) { DirectIf(n, 0, 255, {0x1B, 0x33, n}); }
    void SetCharSpace(int32_t n) { DirectIf(n, 0, 255, {0x1B, 0x20, n}); }
    void SetCharCodeTable(int32_t table, uint32_t kind) {
        if (kind <= 2 && table == 255)
            Direct(Of({0x1B, 0x74, 0xFF}));
        else if (kind <= 1)
            DirectIf(table, 0, 5, {0x1B, 0x74, table});
        else if (kind == 2)
            DirectIf(table, 0, 50, {0x1B, 0x74, table});
    }
    void SetCharCodeTableEX(uint32_t table) { Direct(Of({0x1B, 0x74, table})); }
    void SetFontSize(int32_t n) { DirectIf(n, 0, 2, {0x1B, 0x21, n}); }
    void SetTextStyle(uint32_t underline, uint32_t bold, int32_t width, int32_t height, uint32_t reverse) {
        const int64_t size = 16 * ZeroUnless(width, 0, 7) + ZeroUnless(height, 0, 7);
        Direct(Of({0x1B, 0x2D, ZeroUnless(underline, 1, 2), 0x1B, 0x45, bold != 0, 0x1D, 0x21, size, 0x1D,
                   0x42, reverse != 0}));
    }
    void SetUpsideDown(uint32_t on) { Direct(page ? Of({0x1B, 0x7B}) : Of({0x1B, 0x7B, on != 0})); }
    void SetAbsPosition(int32_t pos) { Direct(Of({0x1B, 0x24}) + Two(pos)); }
    void SetTextAlignment(int32_t n) { DirectIf(n, 0, 3, {0x1B, 0x61, n}); }
    void TextSaveSpool(Text text) { Direct(Counted(text)); }
    void CutPaper(uint32_t mode) { Direct(Of({0x1D, 0x56, mode == 1})); }
    void FeedToMark() { Direct(Of({0x1B, 0x7A, 0x1B, 0x79})); }
    void SetPositionFromMark(int32_t dots) { Direct(Of({0x1B, 0x50}) + Two(dots)); }
    void SetMarkUseMode(uint32_t on) { Direct(Of({0x1D, 0x73, on != 0})); }

    // Page mode.
    void SetPageMode() { page = Direct(Of({0x1B, 0x4C})) ? true : page; }
    void Page_SetStandardMode() { page = Direct(Of({0x1B, 0x53})) ? false : page; }
    void Page_ClearCurrentData() { OnPage(Of({0x18})); }
    void Page_Print() { OnPage(Of({0x1B, 0x0C})); }
    void Page_Print_StandardMode() { page = OnPage(Of({0x0C})) ? false : page; }
    void Page_SetArea(int32_t x, int32_t y, int32_t width, int32_t height) {
        OnPage(Of({0x1B, 0x57}) + Two(x) + Two(y) + Two(width) + Two(height));
    }
    void Page_SetDirection(int32_t n) {
        if (n >= 0 && n <= 3)
            OnPage(Of({0x1B, 0x54, n}));
    }
    void Page_SetPosition(int32_t x, int32_t y) { OnPage(Of({0x1B, 0x4F}) + Two(x) + Two(y)); }
    void Page_Newline() { OnPage(Of({0x0A})); }
    void Page_DotFeed(int32_t n) {
        if (n >= 0 && n <= 255)
            OnPage(Of({0x1B, 0x4A, n}));
    }
    void Page_LineFeed(int32_t n) {
        if (n >= 0 && n <= 255)
            OnPage(Of({0x1B, 0x64, n}));
    }
    void Page_DrawBox(int32_t x, int32_t y, int32_t width, int32_t height, int32_t thickness) {
        OnPage(Of({0x1B, 0x4F}) + Two(x) + Two(y) + Of({0x1D, 0x69}) + Two(width) + Two(height) +
               Of({ZeroUnless(thickness, 0, 255)}));
    }
    void Page_DrawLine(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t thickness) {
        if (thickness >= 0 && thickness <= 255)
            Direct(Of({0x1B, 0x67, 0x31}) + Two(x1) + Two(y1) + Two(x2) + Two(y2) + Of({thickness}));
    }
    void Page_DrawEllipse(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t thickness) {
        if (thickness >= 0 && thickness <= 255)
            Direct(Of({0x1B, 0x67, 0x32}) + Two(x1) + Two(y1) + Two(x2) + Two(y2) + Of({thickness}));
    }
    void InitPageMode(int32_t x, int32_t y, int32_t width, int32_t height) {
        InitPrinterStatus();
        SetPageMode();
        Page_SetArea(x, y, width, height);
        Page_ClearCurrentData();
    }

    // Barcodes.
    int32_t OneDimensionBarcodeSaveSpool(uint32_t symbology, int32_t width, int32_t height, int32_t hri,
                                         Text data) {
        if (length > 409600)
            return -12;
        const Bytes bars = Counted(data);
        return ThroughLink(Of({0x1D, 0x77, ZeroUnless(width, 1, 8), 0x1D, 0x68, ZeroUnless(height, 1, 255),
                               0x1D, 0x48, hri != 0, 0x1D, 0x6B, symbology, Size(bars)}) +
                           bars);
    }
    int32_t BarcodeSaveSpool(uint8_t symbology, uint8_t width, uint8_t height, int32_t hri, Text data,
                             int32_t areaWidth, int32_t areaHeight, int32_t x) {
        if (data == nullptr)
            return 0;
        const Bytes bars = Counted(data);
        const int64_t module = width < 2 || width > 6 ? 2 : width;
        ThroughLink(Of({0x1B, 0x4C, 0x1B, 0x57, 0, 0, 0, 0}) + Two(areaWidth) + Two(areaHeight) +
                    Of({0x18, 0x1B, 0x4F}) + Two(x) +
                    Of({0, 0, 0x1D, 0x77, module, 0x1D, 0x68, height, 0x1D, 0x48}) +
                    Of({hri != 0, 0x1D, 0x6B, symbology, Size(bars)}) + bars + Of({0x0C}));
        return 1;
    }
    void PDF417SaveSpool(int32_t width, int32_t p1, int32_t p2, int32_t p3, Text data, int32_t hri) {
        const bool valid = p1 >= 1 && p1 <= 30 && p2 >= 0 && p2 <= 8;
        Pdf417(0, valid ? p1 : 0, valid ? p2 : 0, width, p3, data, hri);
    }
    void TruncatedPDF417SaveSpool(int32_t width, int32_t p1, int32_t p2, int32_t p3, Text data, int32_t hri) {
        const bool valid = p1 >= 1 && p1 <= 4;
        Pdf417(valid ? 3 : 0, valid ? p1 : 0, valid ? ZeroUnless(p2, 4, 44) : 0, width, p3, data, hri);
    }
    void MicroPDF417SaveSpool(int32_t width, int32_t p1, int32_t p2, int32_t p3, Text data, int32_t hri) {
        const bool valid = p1 >= 1 && p1 <= 4 && p2 >= 0 && p2 <= 8;
        Pdf417(valid ? 4 : 0, valid ? p1 : 0, valid ? p2 : 0, width, p3, data, hri);
    }
    void QRCodeSaveSpool(int32_t version, uint32_t level, int32_t module, Text data) {
        const std::string_view levels = "LMQH";
        const int64_t letter = level % 65536;
        const bool known = letter < 128 && levels.find(static_cast<char>(letter)) != std::string_view::npos;
        Matrix(2, ZeroUnless(version, 1, 40), known ? letter : 0, ZeroUnless(module, 1, 8), data);
    }
    void DataMatrixSaveSpool(uint32_t p1, uint32_t p2, int32_t module, Text data) {
        Matrix(1, p1, p2, ZeroUnless(module, 1, 8), data);
    }
    void MaxicodeSaveSpool(int32_t mode, Text data) { Matrix(5, ZeroUnless(mode, 2, 6), 0, 0, data); }
    void GS1DatabarSaveSpool(int32_t type, int32_t segments, Text data) {
        const bool stacked = type == 6 && segments % 2 == 0 && segments % 21 >= 2;
        Direct(Of({0x1D, 0x31, ZeroUnless(type, 0, 6), stacked ? segments : 0}) + Counted(data) + Of({0}));
    }

    // Macros.
    void SetMarco_Start() { mark = length; }
    void SetMacro_End() {
        const int64_t n = length - mark;
        if (n < 0 || mark < -4096 || length + 7 + n > 413696)
            return;
        const Bytes body(At(mark), At(length));
        std::fill(At(mark), storage.end(), uint8_t{0});
        Write(Of({0x1B, 0x1C, 0x2B, 1, 0}) + Two(n) + body);
    }
    void SetMacro_FontSize_FontTable(int32_t size, int32_t table) {
        if (size >= 0 && size <= 3 && ((table >= 0 && table <= 50) || table == 255))
            Write(Of({0x1B, 0x1C, 0x2B, 1, 0, 6, 0, 0x1B, 0x21, size, 0x1B, 0x74, table}));
    }
    void Initialize_Macro() { Write(Of({0x1B, 0x1C, 0x2B, 1, 0, 0, 0})); }

    // TrueType.
    int32_t SelectForTTF(Text name) { return Stored(Of({0x1B, 0x67, 0x46}) + Counted(name) + Of({0})); }
    void SetFontForTTF(Text name) { Direct(Of({0x1B, 0x67, 0x46}) + Counted(name) + Of({0})); }
    int32_t PrintSpoolForTTF(Text text, uint8_t p1, uint8_t p2) {
        Bytes bytes = Of({0x1B, 0x67, 0x55, p1, p2});
        for (const char16_t unit : std::u16string_view(text == nullptr ? u"" : text)) {
            bytes.push_back(static_cast<uint8_t>(unit / 256));
            bytes.push_back(static_cast<uint8_t>(unit % 256));
        }
        return Stored(bytes + Of({0, 0, 0x0A}));
    }

  private:
    static Bytes Of(std::initializer_list<int64_t> values) {
        Bytes bytes;
        for (const int64_t value : values)
            bytes.push_back(static_cast<uint8_t>(value & 0xFF));
        return bytes;
    }
    // Low byte, high byte.
    static Bytes Two(int64_t value) { return Of({value - value / 256 * 256, value / 256}); }
    static int64_t ZeroUnless(int64_t value, int64_t lowest, int64_t highest) {
        return value < lowest || value > highest ? 0 : value;
    }
    static int64_t Size(const Bytes &bytes) { return static_cast<int64_t>(bytes.size()); }

    Bytes Converted(Text text) const {
        Bytes bytes;
        for (const char16_t unit : std::u16string_view(text == nullptr || !link ? u"" : text))
            bytes.push_back(static_cast<uint8_t>(kCharacterBytes[kCharacters.find(unit)]));
        bytes.resize(std::min<size_t>(bytes.size(), 409600));
        return bytes;
    }
    Bytes Counted(Text text) const {
        Bytes bytes = Converted(text);
        bytes.resize(bytes.size() % 256);
        return bytes;
    }

    void Reset() {
        ClearSpool();
        mark = 0;
        page = false;
    }
    Bytes::iterator At(int64_t position) { return storage.begin() + static_cast<ptrdiff_t>(position + 4096); }
    // All of it or, where it would leave the storage, nothing.
    bool Write(const Bytes &bytes) {
        if (length < -4096 || length + Size(bytes) > 413696)
            return false;
        std::copy(bytes.begin(), bytes.end(), At(length));
        length += Size(bytes);
        return true;
    }
    bool Direct(const Bytes &bytes) { return length <= 409600 && Write(bytes); }
    void DirectIf(int32_t n, int32_t lowest, int32_t highest, std::initializer_list<int64_t> values) {
        if (n >= lowest && n <= highest)
            Direct(Of(values));
    }
    bool OnPage(const Bytes &bytes) { return page && Direct(bytes); }
    int32_t ThroughLink(const Bytes &bytes) {
        if (!link)
            return -11;
        if (length + Size(bytes) > 409600 || !Write(bytes))
            return -12;
        return static_cast<int32_t>(length);
    }
    int32_t Stored(const Bytes &bytes) {
        const int32_t result = ThroughLink(bytes);
        if (!link)
            length = -11;
        return result;
    }
    void Pdf417(int64_t form, int64_t a1, int64_t a2, int64_t width, int64_t p3, Text text, int32_t hri) {
        const Bytes data = Counted(text);
        Direct(Of({0x1D, 0x5A, form, 0x1D, 0x77, ZeroUnless(width, 1, 8), 0x1B, 0x5A, a1, a2,
                   ZeroUnless(p3, 2, 5), Size(data), 0}) +
               data + Of({0x1D, 0x48, hri == 1}));
    }
    void Matrix(int64_t symbology, int64_t a, int64_t b, int64_t c, Text text) {
        const Bytes data = Counted(text);
        Direct(Of({0x1D, 0x5A, symbology, 0x1B, 0x5A, a, b, c, Size(data), 0}) + data);
    }
};

} // namespace nadrel
