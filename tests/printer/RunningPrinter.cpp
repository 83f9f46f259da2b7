#include "tests/printer/RunningPrinter.h"

#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace printer::testing {
namespace {

constexpr int Generous = 10000; // milliseconds

using Clock = std::chrono::steady_clock;

int Left(Clock::time_point until) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

// False when nothing happened in time.
bool WaitFor(int descriptor, short events, int milliseconds) {
    pollfd entry{descriptor, events, 0};
    return poll(&entry, 1, milliseconds) > 0;
}

struct Pipe {
    Descriptor from, to;
};

Pipe MakePipe() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Descriptor ConnectTo(const std::string &host, const std::string &port) {
    addrinfo hints{}, *address = nullptr;
    hints.ai_socktype = SOCK_STREAM;
    if (getaddrinfo(host.c_str(), port.c_str(), &hints, &address) != 0)
        return Descriptor();
    Descriptor link(socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const bool connected = connect(link.Get(), address->ai_addr, address->ai_addrlen) == 0;
    freeaddrinfo(address);
    return connected ? std::move(link) : Descriptor();
}

} // namespace

HostLink::HostLink(const std::string &announcement) {
    const std::string name = announcement.substr(announcement.find(' ') + 1);
    if (announcement.starts_with("serial "))
        link_ = Descriptor(open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    else
        link_ = ConnectTo(name.substr(0, name.rfind(':')), name.substr(name.rfind(':') + 1));
    EXPECT_TRUE(link_.IsOpen()) << announcement << ": " << std::strerror(errno);
}

void HostLink::Send(const std::string &bytes) const {
    EXPECT_EQ(write(link_.Get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

std::string HostLink::Receive(size_t count) const {
    const auto until = Clock::now() + std::chrono::milliseconds(Generous);
    std::string received;
    std::array<char, 4096> buffer;
    while (received.size() < count && WaitFor(link_.Get(), POLLIN, Left(until))) {
        const ssize_t got =
            read(link_.Get(), buffer.data(), std::min(buffer.size(), count - received.size()));
        if (got <= 0)
            break;
        received.append(buffer.data(), static_cast<size_t>(got));
    }
    return received;
}

bool HostLink::HasBytes() const {
    return WaitFor(link_.Get(), POLLIN, 0);
}

bool HostLink::IsHungUp() const {
    char byte = 0;
    return WaitFor(link_.Get(), POLLIN, Generous) && read(link_.Get(), &byte, 1) <= 0;
}

RunningPrinter::RunningPrinter(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), NADREL_PRINTER_PROGRAM);
    std::vector<char *> words;
    for (std::string &argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    Pipe input = MakePipe(), output = MakePipe(), errors = MakePipe();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.from.Get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.to.Get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors.to.Get(), STDERR_FILENO);
    EXPECT_EQ(posix_spawn(&process_, words[0], &actions, nullptr, words.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    input_ = std::move(input.to);
    output_ = std::move(output.from);
    errors_ = std::move(errors.from);
}

RunningPrinter::~RunningPrinter() {
    if (process_ < 0)
        return;
    Signal(SIGKILL);
    waitpid(process_, nullptr, 0);
}

std::string RunningPrinter::NextLine() {
    const auto until = Clock::now() + std::chrono::milliseconds(Generous);
    std::array<char, 4096> buffer;
    while (text_.find('\n') == text_.npos) {
        const ssize_t got = WaitFor(output_.Get(), POLLIN, Left(until))
                                ? read(output_.Get(), buffer.data(), buffer.size())
                                : 0;
        if (got <= 0) {
            ADD_FAILURE() << "the printer said no further line";
            return "";
        }
        text_.append(buffer.data(), static_cast<size_t>(got));
    }
    const std::string line = text_.substr(0, text_.find('\n'));
    text_.erase(0, line.size() + 1);
    return line;
}

void RunningPrinter::Type(const std::string &line) const {
    const std::string text = line + "\n";
    EXPECT_EQ(write(input_.Get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void RunningPrinter::Signal(int number) const {
    kill(process_, number);
}

std::optional<int> RunningPrinter::Wait() {
    // Its output ends when it does.
    const auto until = Clock::now() + std::chrono::milliseconds(Generous);
    std::array<char, 4096> buffer;
    while (WaitFor(output_.Get(), POLLIN, Left(until)) &&
           read(output_.Get(), buffer.data(), buffer.size()) > 0)
        continue;
    if (Left(until) == 0) {
        ADD_FAILURE() << "the printer did not end";
        Signal(SIGKILL);
    }
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

std::string RunningPrinter::Errors() const {
    std::string text;
    std::array<char, 4096> buffer;
    for (ssize_t got = 0; (got = read(errors_.Get(), buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<size_t>(got));
    return text;
}

} // namespace printer::testing
