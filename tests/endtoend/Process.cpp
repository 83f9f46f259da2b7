#include "tests/endtoend/Process.h"

#include "tests/linux/Support.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

namespace endtoend {
namespace {

void Require(bool isGood, const std::string &what) {
    if (!isGood)
        throw std::system_error(errno, std::generic_category(), what);
}

class SpawnSettings {
  public:
    SpawnSettings() {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawn_file_actions_init(&actions);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    void Redirect(int from, int to) { posix_spawn_file_actions_adddup2(&actions, from, to); }
    void Redirect(const std::string &file, int to) {
        posix_spawn_file_actions_addopen(&actions, to, file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    }

    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
};

std::vector<char *> Words(const std::string &program, const std::vector<std::string> &arguments) {
    std::vector<char *> words{const_cast<char *>(program.c_str())};
    for (const std::string &argument : arguments)
        words.push_back(const_cast<char *>(argument.c_str()));
    words.push_back(nullptr);
    return words;
}

} // namespace

std::string ContentsOf(const std::filesystem::path &file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Process::Process(const std::string &program, const std::vector<std::string> &arguments,
                 std::filesystem::path logPath)
    : log(std::move(logPath)) {
    int ends[2];
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "socketpair");
    input = tool::Descriptor(ends[0]);
    const tool::Descriptor theirs(ends[1]);
    // Emulated, the program may be under way before it has emptied these files: nobody reads an earlier one's.
    std::filesystem::remove(log.string() + ".out");
    std::filesystem::remove(log.string() + ".err");
    SpawnSettings settings;
    settings.Redirect(theirs.Get(), STDIN_FILENO);
    settings.Redirect(log.string() + ".out", STDOUT_FILENO);
    settings.Redirect(log.string() + ".err", STDERR_FILENO);
    errno = posix_spawn(&number, program.c_str(), &settings.actions, &settings.attributes,
                        Words(program, arguments).data(), environ);
    Require(errno == 0, program);
    ended = tool::Descriptor(static_cast<int>(syscall(SYS_pidfd_open, number, 0)));
    Require(ended.Get() >= 0, "pidfd_open");
}

Process::~Process() {
    if (number == -1)
        return;
    kill(number, SIGKILL);
    Reap();
}

void Process::Say(const std::string &line) const {
    const std::string text = line + "\n";
    Require(send(input.Get(), text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size()),
            line);
}

void Process::Signal(int signal) const {
    Require(number != -1 && kill(number, signal) == 0, "kill");
}

bool Process::IsRunning() const {
    pollfd end{ended.Get(), POLLIN, 0};
    return number != -1 && poll(&end, 1, 0) == 0;
}

int Process::Wait() {
    pollfd end{ended.Get(), POLLIN, 0};
    const int limit = static_cast<int>(std::chrono::milliseconds(kGenerous).count());
    while (poll(&end, 1, limit) <= 0) {
        if (errno == EINTR)
            continue;
        kill(number, SIGKILL);
        Reap();
        throw std::runtime_error("a program did not end: " + log.string());
    }
    return Reap();
}

int Process::Reap() {
    int status = 0;
    while (waitpid(number, &status, 0) < 0 && errno == EINTR) {
    }
    number = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace endtoend
