#pragma once

#include "printer/Descriptor.h"

#include <cstdint>
#include <string>
#include <vector>

namespace printer {

// Waits for TCP connections on one port.
class TcpListener {
  public:
    // An empty address stands for the loopback addresses, IPv4 and, where there is one, IPv6. Port 0: any
    // that is free. A small receive buffer lets the sender feel soon that nobody reads. Throws
    // std::runtime_error.
    TcpListener(const std::string &address, uint16_t port, bool smallBuffer);

    const std::string &Name() const { return name_; } // "127.0.0.1:9100", "[::1]:9100"
    const std::vector<Descriptor> &Sockets() const { return sockets_; }

    // A connection that waits at this socket, not blocking; none open when it has gone again.
    static Descriptor Accept(const Descriptor &socket);

  private:
    std::vector<Descriptor> sockets_;
    std::string name_;
};

} // namespace printer
