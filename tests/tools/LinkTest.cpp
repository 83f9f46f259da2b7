#include "FakePrinter.h"
#include "Program.h"
#include "Support.h"

#include "tools/Descriptor.h"
#include "tools/Link.h"

#include <arpa/inet.h>
#include <grp.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

namespace {

// Takes one connection, reads a little and resets it.
class ResettingPrinter {
  public:
    ResettingPrinter() : listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in own{};
        own.sin_family = AF_INET;
        own.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof own;
        EXPECT_EQ(bind(listener.Get(), reinterpret_cast<sockaddr *>(&own), length), 0);
        EXPECT_EQ(listen(listener.Get(), 1), 0);
        EXPECT_EQ(getsockname(listener.Get(), reinterpret_cast<sockaddr *>(&own), &length), 0);
        address = "127.0.0.1:" + std::to_string(ntohs(own.sin_port));
        thread = std::thread([this] { Serve(); });
    }
    ~ResettingPrinter() { thread.join(); }

    std::string address;

  private:
    void Serve() const {
        const tool::Descriptor connection(accept(listener.Get(), nullptr, nullptr));
        char byte = 0;
        EXPECT_EQ(read(connection.Get(), &byte, 1), 1);
        const linger reset{1, 0};
        EXPECT_EQ(setsockopt(connection.Get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset), 0);
    }

    tool::Descriptor listener;
    std::thread thread;
};

constexpr uid_t kNobody = 65534;

// Root may open everything; somebody else does the test then.
class NotRoot {
  public:
    NotRoot() { EXPECT_TRUE(own != 0 || seteuid(kNobody) == 0); }
    NotRoot(const NotRoot &) = delete;
    ~NotRoot() { EXPECT_EQ(seteuid(own), 0); }

  private:
    const uid_t own = geteuid();
};

std::string FailureOf(const tool::LinkOptions &options) {
    try {
        const tool::Link link(options);
    } catch (const tool::LinkFailure &failure) {
        return failure.what();
    }
    return "none";
}

} // namespace

TEST(Link, NamesThePortThatMayNotBeOpenedAndItsGroup) {
    const SerialPrinter printer;
    constexpr gid_t kDialout = 20;
    ASSERT_TRUE(geteuid() != 0 || chown(printer.path.c_str(), kNobody, kDialout) == 0);
    ASSERT_EQ(chmod(printer.path.c_str(), 0060), 0);
    struct stat port {};
    ASSERT_EQ(stat(printer.path.c_str(), &port), 0);
    const struct group *entry = getgrgid(port.st_gid);
    const std::string group = entry == nullptr ? std::to_string(port.st_gid) : entry->gr_name;
    const NotRoot user;
    EXPECT_EQ(FailureOf({.serial = printer.path}),
              printer.path +
                  ": the serial port did not open in 5 attempts: Permission denied; it belongs to group " +
                  group + ", which \"sudo usermod -aG " + group + " $USER\" adds you to from the next login");
}

TEST(Link, SaysHowManyBytesWereTakenWhenNotAllWere) {
    std::string text("ControlCommand(\"" + std::string(400000, 'A') + "\", 400000)\n");
    for (int i = 0; i < 50; ++i)
        text += "PrintSpool(0)\n";
    const TemporaryFile job(text);
    const ResettingPrinter printer;
    const Outcome outcome = RunProgram({"run", job.path, "--tcp", printer.address});
    EXPECT_EQ(outcome.status, 1);
    const std::string start = printer.address + ": only ";
    ASSERT_TRUE(outcome.errors.starts_with(start)) << outcome.errors;
    const std::string taken = outcome.errors.substr(start.size(), outcome.errors.find(" of ") - start.size());
    EXPECT_LT(std::stoi(taken), 20000000);
    const std::string rest = outcome.errors.substr(start.size() + taken.size());
    EXPECT_TRUE(rest == " of 20000000 bytes were sent: Connection reset by peer\n" ||
                rest == " of 20000000 bytes were sent: Broken pipe\n")
        << outcome.errors;
}
