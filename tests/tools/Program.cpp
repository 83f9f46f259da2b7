#include "Program.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>

using tool::Descriptor;

namespace {

constexpr int kGenerousMs = 10000;

struct Pipe {
    Pipe() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        from = Descriptor(ends[0]);
        to = Descriptor(ends[1]);
    }

    Descriptor from;
    Descriptor to;
};

pid_t Spawn(const std::vector<std::string> &arguments, const Pipe &out, const Pipe &errors) {
    std::vector<char *> words{const_cast<char *>(NADREL_PROGRAM)};
    for (const std::string &argument : arguments)
        words.push_back(const_cast<char *>(argument.c_str()));
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out.to.Get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.to.Get(), STDERR_FILENO);
    pid_t process = -1;
    EXPECT_EQ(posix_spawn(&process, NADREL_PROGRAM, &actions, nullptr, words.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

// Appends what has come; false at the end.
bool ReadSome(const Descriptor &from, std::string &into) {
    std::array<char, 4096> buffer;
    const ssize_t got = read(from.Get(), buffer.data(), buffer.size());
    if (got > 0)
        into.append(buffer.data(), static_cast<size_t>(got));
    return got > 0;
}

} // namespace

Program::Program(const std::vector<std::string> &arguments) {
    Pipe outPipe;
    Pipe errorPipe;
    process = Spawn(arguments, outPipe, errorPipe);
    out = std::move(outPipe.from);
    errors = std::move(errorPipe.from);
}

Program::~Program() {
    if (process == -1)
        return;
    Signal(SIGKILL);
    Finish();
}

void Program::Await(const Descriptor &from, std::string &into, const std::string &text) {
    pollfd wait{from.Get(), POLLIN, 0};
    while (into.find(text) == std::string::npos) {
        ASSERT_EQ(poll(&wait, 1, kGenerousMs), 1) << "waiting for " << text << ", got " << into;
        ASSERT_TRUE(ReadSome(from, into)) << "waiting for " << text << ", got " << into;
    }
}

void Program::Signal(int number) const {
    ASSERT_EQ(kill(process, number), 0);
}

Outcome Program::Finish() {
    pollfd waits[] = {{out.Get(), POLLIN, 0}, {errors.Get(), POLLIN, 0}};
    while (waits[0].fd != -1 || waits[1].fd != -1) {
        if (poll(waits, 2, -1) < 0 && errno == EINTR)
            continue;
        if (waits[0].revents != 0 && !ReadSome(out, outcome.out))
            waits[0].fd = -1;
        if (waits[1].revents != 0 && !ReadSome(errors, outcome.errors))
            waits[1].fd = -1;
    }
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    process = -1;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}
