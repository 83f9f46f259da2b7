#pragma once

#include "platform/Error.h"
#include "platform/Socket.h"

#include <gtest/gtest.h>

inline int Error() {
    return static_cast<int>(platform::LastError());
}

inline bool Create(platform::CAsyncSocket &socket) {
    return socket.Create(0, platform::kStreamSocket, platform::kAllSocketEvents, nullptr) != 0;
}

// A socket that connects without blocking.
class Connecting {
  public:
    Connecting() {
        EXPECT_TRUE(Create(socket));
        EXPECT_NE(socket.IOCtl(platform::SocketCommand::nonBlocking, 1), 0);
    }

    int32_t Connect(uint32_t port, const char16_t *host = u"127.0.0.1") { return socket.Connect(host, port); }

    int32_t Select(int32_t seconds, int32_t microseconds = 0) {
        writable = true;
        return platform::SelectWritable(socket.Handle() + 1, socket.Handle(), seconds, microseconds,
                                        writable);
    }

    platform::CAsyncSocket socket;
    bool writable = false;
};
