#include "platform/Clock.h"
#include "platform/Notification.h"
#include "platform/SerialPort.h"
#include "platform/Threads.h"
#include "platform/linux/NotificationHandler.h"
#include "tests/linux/Listener.h"
#include "tests/linux/PseudoTerminal.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

namespace {

platform::PortHandle port = platform::kInvalidPort;
platform::SocketHandle connection = -1;

uint32_t WaitForCharacters() {
    for (;;) {
        platform::PortEvents events;
        platform::WaitPortEvent(port, events);
    }
}

uint32_t ReceiveBytes() {
    for (uint8_t byte;;)
        platform::Receive(connection, &byte, 1);
}

uint32_t Post() {
    for (;; platform::Sleep(0))
        platform::PostNotification(1, 2, 3);
}

// A host that ends without closing anything, with every thread of the library at work.
[[noreturn]] void RunHost(const PseudoTerminal &line, const Listener &listener) {
    static platform::CAsyncSocket socket;
    static std::atomic<int> told = 0;
    const bool connected = ConnectTo(listener, socket);
    connection = socket.Handle();
    port = platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain);
    platform::SetPortEvents(port, platform::PortEvents::received);
    platform::SetNotificationHandler([](uint32_t, uint32_t, intptr_t, void *) { ++told; }, nullptr);
    platform::OpenNotifications();
    for (const platform::ThreadBody body : {WaitForCharacters, ReceiveBytes, Post})
        platform::StartThread(body, platform::ThreadPriority::normal);
    const bool working = connected && port != platform::kInvalidPort && Await([] { return told > 10; });
    exit(working ? 0 : 1);
}

TEST(ProcessExit, AHostMayEndWithEverythingOpenAndAtWork) {
    const Listener listener;
    for (int i = 0; i < 5; ++i) {
        const PseudoTerminal line; // a new one: the old stays exclusive, since nobody has given it free
        const pid_t host = fork();
        if (host == 0)
            RunHost(line, listener);
        int status = -1;
        ASSERT_TRUE(Await([&] { return waitpid(host, &status, WNOHANG) == host; })) << "it hangs";
        EXPECT_EQ(status, 0);
    }
}

} // namespace
