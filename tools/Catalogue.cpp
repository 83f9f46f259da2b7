#include "tools/Catalogue.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <ostream>
#include <stdexcept>

namespace tool {
namespace {

constexpr size_t kLongestName = 64;
constexpr size_t kMuchAlike = 4;

bool SameLetter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// The Levenshtein distance: how many letters must be changed, put in or left out; upper and lower case count
// as one.
size_t Distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); ++j) {
            const size_t changed = diagonal + (SameLetter(a[i], b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row[b.size()];
}

} // namespace

std::optional<std::string_view> ResultRule::Failure(int32_t result) const {
    if (onlyOneIsFine ? result == 1 : result >= 0)
        return std::nullopt;
    for (const ResultCode &failure : failures)
        if (failure.code == result)
            return failure.meaning;
    return otherFailures;
}

std::optional<Entry> Catalogue::Find(std::string_view name) const {
    for (const Group &group : groups)
        for (const Function &function : group.functions)
            if (function.name == name)
                return Entry{&group, &function};
    return std::nullopt;
}

Entry Catalogue::Printing() const {
    for (const Group &group : groups)
        if (group.effect == Effect::prints)
            return Entry{&group, &group.functions.front()};
    throw std::logic_error("the catalogue has no function that prints the spool");
}

const NotForJobs *Catalogue::FindNotForJobs(std::string_view name) const {
    const auto found = std::find_if(notForJobs.begin(), notForJobs.end(),
                                    [&](const NotForJobs &other) { return other.name == name; });
    return found == notForJobs.end() ? nullptr : &*found;
}

std::string_view Catalogue::Nearest(std::string_view name) const {
    std::string_view nearest;
    size_t least = std::min(kMuchAlike, name.size());
    if (name.size() > kLongestName)
        return nearest;
    for (const Group &group : groups) {
        for (const Function &function : group.functions) {
            const size_t distance = Distance(name, function.name);
            if (distance < least) {
                least = distance;
                nearest = function.name;
            }
        }
    }
    return nearest;
}

void ListFunctions(const Catalogue &catalogue, std::ostream &out) {
    std::string_view title;
    for (const Group &group : catalogue.groups) {
        if (group.title != title)
            out << (title.empty() ? "" : "\n") << group.title << '\n';
        title = group.title;
        for (const Function &function : group.functions)
            out << "  " << Signature(function) << '\n';
    }
    out << "\nint32, uint32, uint8: a number, 10, -1 or 0x1B, or a character, 'M'\n"
           "text, bytes: a string, \"Caf\\u00E9 cr\xC3\xA8me\\n\", \"\\x1B@\"\n"
           "picture: a bitmap file (BMP) of 1 or 24 bits a pixel, \"logo.bmp\", as seen from the job file\n";
}

} // namespace tool
