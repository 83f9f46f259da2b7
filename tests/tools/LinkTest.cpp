#include "Program.h"
#include "Support.h"

#include "tools/Descriptor.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

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

} // namespace

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
