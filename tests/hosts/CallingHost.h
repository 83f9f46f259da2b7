#pragma once

#include "tests/endtoend/Process.h"

#include <cstdint>
#include <map>

namespace hosts {

// Whether the tests run the library on Windows: its build folder is in NADREL_WINDOWS_BUILD then.
bool IsOnWindows();
std::filesystem::path WindowsFolder();

// A program started as on the system that is tested, with additions to its environment.
using Environment = std::map<std::string, std::string>;
endtoend::Process Start(const std::filesystem::path &program, const std::vector<std::string> &arguments,
                        const std::filesystem::path &log, const Environment &environment = {});

// The name under which a host opens the pseudo-terminal. On Windows that is a port, COM1 unless another is
// given.
std::string PortName(const std::string &path, const std::string &port = "COM1");

// A host program that calls what it is told, with the library loaded. It is killed with its owner.
class CallingHost {
  public:
    // Its files are kept in the folder. Throws when the library cannot be loaded.
    explicit CallingHost(const std::filesystem::path &folder, const Environment &environment = {});
    // Another copy of the program, which has not loaded it.
    CallingHost(const std::filesystem::path &program, const std::filesystem::path &folder,
                const Environment &environment);

    // What it answers. Throws when it complains or is gone.
    std::string Ask(const std::string &line);
    // The same in two steps.
    void Say(const std::string &line);
    std::string Answer();
    // The result of a function, as in PrintDotFeed(12).
    int32_t Call(const std::string &line) { return std::stoi(Ask(line)); }
    // Calls that succeed.
    void Connect(const std::string &line);

    // The notifications so far, once there are so many: "kind length data", kind and data in hexadecimal.
    std::vector<std::string> Told(size_t count) const;

    // Has it leave its main function; the exit status.
    int End();
    bool IsRunning() const { return process.IsRunning(); }
    // Every line it has written.
    std::vector<std::string> Lines() const;

  private:
    std::vector<std::string> LinesBehind(const std::string &mark) const;
    std::vector<std::string> Answers() const;

    endtoend::Process process;
    std::string question; // the last one
    size_t asked = 0;
};

} // namespace hosts
