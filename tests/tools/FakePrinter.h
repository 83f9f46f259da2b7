#pragma once

#include "tools/Descriptor.h"

#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using Bytes = std::vector<uint8_t>;

// What stands where a printer would: keeps every byte it is sent and, when it has been sent a certain
// request, sends a certain answer, once for each line of its script and in their order.
class FakePrinter {
  public:
    using Script = std::vector<std::pair<Bytes, Bytes>>;

    explicit FakePrinter(Script lines) : script(std::move(lines)) {}
    virtual ~FakePrinter() = default;

    // Every byte that was sent. The sender has closed its side, or never opened it.
    Bytes Finish();

  protected:
    void Start(tool::Descriptor own);
    virtual tool::Descriptor Accept() = 0;

    tool::Descriptor end; // what is read from and written to; a listening socket first

  private:
    void Serve();
    bool Wait(int descriptor) const;
    void Answer();

    Script script;
    size_t line = 0;
    size_t searched = 0;
    Bytes received;
    tool::Descriptor stop;
    std::thread thread;
};

// On a pseudo-terminal.
class SerialPrinter : public FakePrinter {
  public:
    explicit SerialPrinter(Script lines = {});
    ~SerialPrinter() override { Finish(); }

    std::string path;

  protected:
    tool::Descriptor Accept() override { return std::move(end); }
};

// On a free port of the local host; takes one connection.
class TcpPrinter : public FakePrinter {
  public:
    enum class Ip { v4, v6 };

    explicit TcpPrinter(Script lines = {}, Ip version = Ip::v4);
    ~TcpPrinter() override { Finish(); }

    std::string address; // HOST:PORT

  protected:
    tool::Descriptor Accept() override;
};
