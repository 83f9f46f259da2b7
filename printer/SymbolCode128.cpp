#include "printer/SymbolKinds.h"
#include "printer/SymbolZint.h"

#include <algorithm>
#include <cstring>

namespace printer {
namespace {

// Widths of bar, space, bar, ... in modules, for the values 0..102 and the starts of code sets A, B and C.
constexpr char Patterns[106][7] = {
    "212222", "222122", "222221", "121223", "121322", "131222", "122213", "122312", "132212", "221213",
    "221312", "231212", "112232", "122132", "122231", "113222", "123122", "123221", "223211", "221132",
    "221231", "213212", "223112", "312131", "311222", "321122", "321221", "312212", "322112", "322211",
    "212123", "212321", "232121", "111323", "131123", "131321", "112313", "132113", "132311", "211313",
    "231113", "231311", "112133", "112331", "132131", "113123", "113321", "133121", "313121", "211331",
    "231131", "213113", "213311", "213131", "311123", "311321", "331121", "312113", "312311", "332111",
    "314111", "221411", "431111", "111224", "111422", "121124", "121421", "141122", "141221", "112214",
    "112412", "122114", "122411", "142112", "142211", "241211", "221114", "413111", "241112", "134111",
    "111242", "121142", "121241", "114212", "124112", "124211", "411212", "421112", "421211", "212141",
    "214121", "412121", "111143", "111341", "131141", "114113", "114311", "411113", "411311", "113141",
    "114131", "311141", "411131", "211412", "211214", "211232",
};
constexpr char StopPattern[] = "2331112";
constexpr int StartA = 103;             // B and C follow
constexpr int FirstSelectionValue = 99; // code set C; B is 100, A is 101
constexpr int ShiftValue = 98;
constexpr char Functions[] = "ABCS1234{";

// Reads the data of GS 'k' 73 byte by byte and collects the values of the symbol characters.
class Code128Reader {
  public:
    explicit Code128Reader(const std::string &data) : data_(data) {
        codeSet_ = data[1] >= 'A' && data[1] <= 'C' ? data[1] : 'B';
        values_.push_back(StartA + (codeSet_ - 'A'));
    }

    // Returns the reason why the data cannot be encoded, empty when it can.
    std::string Read() {
        while (reason_.empty() && at_ < data_.size()) {
            if (data_[at_] == '{')
                ReadFunction(at_ + 1 < data_.size() ? data_[at_ + 1] : '\0');
            else if (codeSet_ == 'C')
                ReadPairs();
            else
                AddCharacter(data_[at_++]);
        }
        if (shifted_)
            Refuse("the shift has no character after it");
        if (values_.size() == 1)
            Refuse("there is no data");
        return reason_;
    }

    const std::vector<int> &Values() const { return values_; }
    const std::string &Text() const { return text_; }

  private:
    // Keeps the first reason.
    void Refuse(const std::string &reason) {
        if (reason_.empty())
            reason_ = reason;
    }

    void ReadFunction(char function) {
        at_ += 2;
        if (function == '{' && codeSet_ != 'C')
            return AddCharacter('{');
        if (shifted_)
            return Refuse("the shift has no character after it");
        if (function >= 'A' && function <= 'C')
            return SelectCodeSet(function);
        const int value = FunctionValue(function);
        if (value < 0)
            return Refuse(std::string("code set ") + codeSet_ + " has no such function after '{'");
        values_.push_back(value);
        shifted_ = function == 'S';
    }

    // The value of FNC1..FNC4 and of the shift in the current code set, -1 where it has none.
    int FunctionValue(char function) const {
        if (function == '1')
            return 102;
        if (codeSet_ == 'C')
            return -1;
        switch (function) {
        case '2':
            return 97;
        case '3':
            return 96;
        case '4':
            return codeSet_ == 'A' ? 101 : 100;
        case 'S':
            return ShiftValue;
        default:
            return -1;
        }
    }

    void SelectCodeSet(char codeSet) {
        if (codeSet != codeSet_)
            values_.push_back(FirstSelectionValue + ('C' - codeSet));
        codeSet_ = codeSet;
    }

    void AddCharacter(char character) {
        const char codeSet = shifted_ ? static_cast<char>('A' + 'B' - codeSet_) : codeSet_;
        const int byte = static_cast<unsigned char>(character);
        const bool fits = codeSet == 'A' ? byte < 96 : byte >= 32 && byte < 128;
        if (!fits)
            Refuse(std::string("code set ") + codeSet + " has no character " + std::to_string(byte));
        values_.push_back(byte >= 32 ? byte - 32 : byte + 64);
        text_ += byte >= 32 && byte < 127 ? character : ' ';
        shifted_ = false;
    }

    // Code set C up to the next function: pairs of digits, or values 0..99 as they are.
    void ReadPairs() {
        const size_t end = std::min(data_.find('{', at_), data_.size());
        const std::string run = data_.substr(at_, end - at_);
        at_ = end;
        const bool digits = run.size() % 2 == 0 && run.find_first_not_of("0123456789") == std::string::npos;
        for (size_t i = 0; i < run.size(); i += digits ? 2 : 1)
            AddPair(digits ? (run[i] - '0') * 10 + (run[i + 1] - '0') : static_cast<unsigned char>(run[i]));
    }

    void AddPair(int value) {
        if (value > 99)
            Refuse("code set C has no value " + std::to_string(value));
        values_.push_back(value);
        text_ += static_cast<char>('0' + value / 10 % 10);
        text_ += static_cast<char>('0' + value % 10);
    }

    const std::string &data_;
    size_t at_ = 0;
    char codeSet_;
    bool shifted_ = false;
    std::vector<int> values_;
    std::string text_;
    std::string reason_;
};

int CheckValue(const std::vector<int> &values) {
    size_t sum = static_cast<size_t>(values[0]);
    for (size_t i = 1; i < values.size(); ++i)
        sum += i * static_cast<size_t>(values[i]);
    return static_cast<int>(sum % 103);
}

std::string WidthsOf(const std::vector<int> &values) {
    std::string widths;
    for (const int value : values)
        widths += Patterns[value];
    return widths + Patterns[CheckValue(values)] + StopPattern;
}

Symbol DrawBars(const std::string &widths, int moduleWidth, int height) {
    int modules = 0;
    for (const char width : widths)
        modules += width - '0';
    Symbol picture = BlankSymbol(modules * moduleWidth, height);
    int x = 0;
    for (size_t i = 0; i < widths.size(); ++i) {
        const int width = (widths[i] - '0') * moduleWidth;
        if (i % 2 == 0)
            FillSymbol(picture, x, 0, width, height);
        x += width;
    }
    return picture;
}

} // namespace

bool HasCode128Functions(const std::string &data) {
    return data.size() >= 2 && data[0] == '{' && data[1] != '\0' &&
           std::strchr(Functions, data[1]) != nullptr;
}

Symbol DrawCode128(const std::string &data, int moduleWidth, int height) {
    Code128Reader reader(data);
    const std::string reason = reader.Read();
    if (!reason.empty())
        return RefuseSymbol("Code 128", reason);
    Symbol picture = DrawBars(WidthsOf(reader.Values()), moduleWidth, height);
    picture.text = reader.Text();
    return picture;
}

} // namespace printer
