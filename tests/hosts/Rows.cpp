#include "tests/hosts/Rows.h"

#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace hosts {
namespace {

namespace fs = std::filesystem;

endtoend::Bytes FromHex(const std::string &text) {
    endtoend::Bytes bytes;
    std::istringstream words(text);
    for (std::string word; words >> word;)
        bytes.push_back(static_cast<uint8_t>(std::stoi(word, nullptr, 16)));
    return bytes;
}

std::vector<RowCall> ReadCalls(const std::string &text) {
    static const std::regex pattern(R"((\w+\([^)]*\))( = (-?\d+))?(; |$))");
    std::vector<RowCall> calls;
    size_t end = 0;
    for (std::sregex_iterator call(text.begin(), text.end(), pattern), none; call != none; ++call) {
        const auto &match = *call;
        calls.push_back({match[1], match[3].matched ? std::optional(std::stoi(match[3])) : std::nullopt});
        end = static_cast<size_t>(match.position() + match.length());
    }
    if (calls.empty() || end != text.size())
        throw std::runtime_error("no calls: " + text);
    return calls;
}

// The forms and kinds under which the rows that follow are run.
struct Heading {
    std::vector<endtoend::Form> forms;
    bool isPrinted = false;
};

Heading ReadHeading(const std::string &line) {
    Heading heading;
    heading.isPrinted = line.find("spool") != line.npos;
    if (line.find("plain") != line.npos)
        heading.forms.push_back(endtoend::Form::plain);
    if (line.find("framed") != line.npos)
        heading.forms.push_back(endtoend::Form::framed);
    return heading;
}

void WriteFile(const std::string &line, const fs::path &folder) {
    const size_t equals = line.find(" = ");
    const endtoend::Bytes bytes = FromHex(line.substr(equals + 3));
    std::ofstream file(folder / line.substr(5, equals - 5), std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

Row ReadRow(const std::string &line, size_t number, const Heading &heading) {
    const size_t arrow = line.find(" =>");
    if (arrow == line.npos)
        throw std::runtime_error("no => in " + line);
    return {number, ReadCalls(line.substr(0, arrow)), FromHex(line.substr(arrow + 3)), heading.isPrinted};
}

} // namespace

std::vector<Row> ReadRows(const fs::path &file, const fs::path &folder) {
    std::vector<Row> rows;
    Heading heading;
    size_t number = 0;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.empty() || line.starts_with('#'))
            continue;
        if (line.starts_with('['))
            heading = ReadHeading(line);
        else if (line.starts_with("file "))
            WriteFile(line, folder);
        else
            for (const endtoend::Form form : heading.forms) {
                rows.push_back(ReadRow(line, number, heading));
                rows.back().form = form;
            }
    }
    return rows;
}

} // namespace hosts
