#include "tools/Job.h"

#include "tools/CallCheck.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

namespace tool {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// What is wrong so far. The first that is too many ends the check.
class Faults {
  public:
    explicit Faults(std::string fileName) : file(std::move(fileName)) {}

    void Add(size_t line, const LineFault &fault) {
        if (count == kMostFaultsShown)
            throw JobFault(messages + '\n' + file + ": there are more errors");
        messages += (count == 0 ? "" : "\n") + file + ':' + std::to_string(line) + ": " + fault.what();
        ++count;
    }

    void ThrowIfAny() const {
        if (count != 0)
            throw JobFault(messages);
    }

  private:
    std::string file;
    std::string messages;
    size_t count = 0;
};

std::string_view TakeLine(std::string_view &text) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return line;
}

// A job that comes through a pipe lies in no folder: its pictures are sought where the program works.
std::filesystem::path FolderOf(const std::string &file) {
    return file.starts_with("/dev/") ? std::filesystem::path() : std::filesystem::path(file).parent_path();
}

void CheckLine(Job &job, std::string_view text, size_t number, const Catalogue &catalogue, Faults &faults) {
    try {
        const auto line = ReadJobLine(text);
        if (!line)
            return;
        std::vector<LineFault> wrongArguments;
        CheckedCall call = CheckCall(*line, catalogue, FolderOf(job.file), wrongArguments);
        for (const LineFault &fault : wrongArguments)
            faults.Add(number, fault);
        job.calls.push_back({number, call.entry, std::move(call.arguments)});
    } catch (const LineFault &fault) {
        faults.Add(number, fault);
    }
}

bool LeavesNothingUnprinted(const std::vector<Call> &calls) {
    const auto lastOfEffect = std::find_if(calls.rbegin(), calls.rend(), [](const Call &call) {
        return call.entry.group->effect != Effect::neither;
    });
    return lastOfEffect != calls.rend() && lastOfEffect->entry.group->effect == Effect::prints;
}

std::string TooLong() {
    return ": is longer than a job may be, expected " + std::to_string(kLongestFile) + " bytes at most";
}

} // namespace

Job CheckJob(const std::string &file, std::string_view text, const Catalogue &catalogue) {
    Job job{file, {}};
    Faults faults(file);
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    for (size_t number = 1; !text.empty(); ++number)
        CheckLine(job, TakeLine(text), number, catalogue, faults);
    faults.ThrowIfAny();
    if (!LeavesNothingUnprinted(job.calls))
        job.calls.push_back({0, catalogue.Printing(), {Value(int64_t{1})}});
    return job;
}

std::string ReadJobFile(const std::string &file) {
    errno = 0;
    std::ifstream in(file == "-" ? "/dev/stdin" : file, std::ios::binary);
    std::string text(kLongestFile + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (in.bad() || (in.gcount() == 0 && !in.eof()))
        throw JobFault(file + ": cannot be read (" + std::strerror(errno) + "), expected a job file");
    if (static_cast<size_t>(in.gcount()) > kLongestFile)
        throw JobFault(file + TooLong());
    text.resize(static_cast<size_t>(in.gcount()));
    return text;
}

} // namespace tool
