#include "tests/hosts/CallingHost.h"

#include "tests/endtoend/Waiting.h"

#include <sstream>
#include <stdexcept>

namespace hosts {
namespace {

namespace fs = std::filesystem;

std::string Variable(const char *name) {
    const char *const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

Environment Everything(const Environment &additions) {
    Environment all = additions;
    if (!IsOnWindows())
        return all;
    const fs::path folder = WindowsFolder() / "wine";
    all.emplace("WINEPREFIX", folder / "prefix");
    all.emplace("WINEDEBUG", "-all");
    all.emplace("LOCPATH", folder / "languages");
    all.emplace("LC_ALL", "C");
    all.emplace("LD_PRELOAD", NADREL_MODEM_LINES);
    return all;
}

// For the program env: no display, then the additions, then the program.
std::vector<std::string> Words(const fs::path &program, const std::vector<std::string> &arguments,
                               const Environment &environment) {
    std::vector<std::string> words{"-u", "DISPLAY", "-u", "WAYLAND_DISPLAY"};
    for (const auto &[name, value] : Everything(environment))
        words.push_back(name + "=" + value);
    if (IsOnWindows())
        words.push_back(Variable("NADREL_WINE"));
    words.push_back(program);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

fs::path CallerProgram() {
    return IsOnWindows() ? WindowsFolder() / "caller.exe" : fs::path(NADREL_CALLER_PROGRAM);
}

std::string LibraryFile() {
    return IsOnWindows() ? "NADRELPRINTER.dll" : NADREL_LIBRARY;
}

} // namespace

bool IsOnWindows() {
    return !WindowsFolder().empty();
}

fs::path WindowsFolder() {
    return Variable("NADREL_WINDOWS_BUILD");
}

endtoend::Process Start(const fs::path &program, const std::vector<std::string> &arguments,
                        const fs::path &log, const Environment &environment) {
    return endtoend::Process("/usr/bin/env", Words(program, arguments, environment), log);
}

std::string PortName(const std::string &path, const std::string &port) {
    if (!IsOnWindows())
        return path;
    std::string name = port;
    for (char &letter : name)
        letter = static_cast<char>(std::tolower(letter));
    const fs::path link = WindowsFolder() / "wine" / name;
    fs::remove(link);
    fs::create_symlink(path, link);
    return port;
}

CallingHost::CallingHost(const fs::path &program, const fs::path &folder, const Environment &environment)
    : process(Start(program, {}, folder / "caller", environment)) {}

CallingHost::CallingHost(const fs::path &folder, const Environment &environment)
    : CallingHost(CallerProgram(), folder, environment) {
    if (Ask("load " + LibraryFile()) != "loaded")
        throw std::runtime_error("the library is not loaded: " + Answers().back());
}

std::string CallingHost::Ask(const std::string &line) {
    Say(line);
    return Answer();
}

void CallingHost::Say(const std::string &line) {
    process.Say(line);
    question = line;
    ++asked;
}

std::string CallingHost::Answer() {
    endtoend::Eventually([this] { return Answers().size() >= asked || !IsRunning(); });
    const std::vector<std::string> answers = Answers();
    if (answers.size() < asked || answers.back().front() == '!')
        throw std::runtime_error(question + ": " + (answers.size() < asked ? "no answer" : answers.back()));
    return answers.back().substr(2);
}

int CallingHost::End() {
    process.Say("exit");
    return process.Wait();
}

void CallingHost::Connect(const std::string &line) {
    const int32_t result = Call(line);
    if (result != 1)
        throw std::runtime_error(line + " gave " + std::to_string(result));
}

std::vector<std::string> CallingHost::Told(size_t count) const {
    endtoend::Eventually([&] { return LinesBehind("told ").size() >= count; });
    return LinesBehind("told ");
}

// Whole lines only; what runs on Windows may end them with a carriage return.
std::vector<std::string> CallingHost::Lines() const {
    std::vector<std::string> lines;
    std::istringstream output(process.Output());
    for (std::string line; std::getline(output, line) && !output.eof();) {
        if (line.ends_with('\r'))
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> CallingHost::LinesBehind(const std::string &mark) const {
    std::vector<std::string> found;
    for (const std::string &line : Lines())
        if (line.starts_with(mark))
            found.push_back(line.substr(mark.size()));
    return found;
}

std::vector<std::string> CallingHost::Answers() const {
    std::vector<std::string> found;
    for (const std::string &line : Lines())
        if (line.starts_with("= ") || line.starts_with("! "))
            found.push_back(line);
    return found;
}

} // namespace hosts
