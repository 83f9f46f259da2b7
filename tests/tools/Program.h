#pragma once

#include "tools/Descriptor.h"

#include <sys/types.h>

#include <string>
#include <vector>

// The program itself, as a user runs it.
struct Outcome {
    int status = -1; // the exit status; -1 when a signal ended it
    std::string out;
    std::string errors;
};

class Program {
  public:
    explicit Program(const std::vector<std::string> &arguments);
    Program(const Program &) = delete;
    ~Program();

    // Reads on until the text has come on the standard output, or on the other one; fails the test after 10
    // s.
    void AwaitOutput(const std::string &text) { Await(out, outcome.out, text); }
    void AwaitErrors(const std::string &text) { Await(errors, outcome.errors, text); }

    void Signal(int number) const;

    // Nobody reads the standard output any more.
    void CloseOutput() { out = tool::Descriptor(); }

    // Waits for the end.
    Outcome Finish();

  private:
    void Await(const tool::Descriptor &from, std::string &into, const std::string &text);

    Outcome outcome;
    tool::Descriptor out;
    tool::Descriptor errors;
    pid_t process = -1;
};

// Runs the program to its end.
inline Outcome RunProgram(const std::vector<std::string> &arguments) {
    return Program(arguments).Finish();
}
