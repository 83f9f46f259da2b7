#pragma once

#include "platform/Socket.h"

namespace nadrel {

// The socket of the TCP link: one exists from a connect to the close.
class MySocket : public platform::CAsyncSocket {
  public:
    ~MySocket() override = default;
    int32_t Receive(void *bytes, int32_t count, int32_t flags) override {
        return CAsyncSocket::Receive(bytes, count, flags);
    }
    void OnConnect(int32_t error) override { CAsyncSocket::OnConnect(error); }
};

} // namespace nadrel
