#pragma once

#include "tests/endtoend/Host.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace endtoend {

// Stands where a printer would and keeps every byte that comes, as it comes. Answers each query frame with C0
// 'S' 40, and nothing else.
class RawPeer {
  public:
    explicit RawPeer(Medium medium);
    RawPeer(const RawPeer &) = delete;
    RawPeer &operator=(const RawPeer &) = delete;
    ~RawPeer();

    // Connects the library to it, and forgets what the connect sent.
    int32_t Connect(Form form);

    // Everything since the connect, once so many bytes have come; fewer when they do not.
    Bytes Await(size_t count);

    // Sends bytes to the library.
    void Send(const Bytes &bytes);

    // Forgets what came so far.
    void Forget();

    const std::string &SerialPath() const { return serialPath; }
    uint32_t TcpPort() const { return tcpPort; }

  private:
    void ListenOnTerminal();
    void ListenOnSocket();
    bool Accept();
    void Serve();
    bool ServeOnce();
    void Keep(const Bytes &bytes);
    void Write(const Bytes &bytes);

    Medium medium;
    std::string serialPath;
    uint32_t tcpPort = 0;
    tool::Descriptor listener; // TCP only
    tool::Descriptor end;
    tool::Descriptor hostEnd; // keeps a pseudo-terminal from hanging up
    tool::Descriptor stop;
    std::mutex mutex;
    std::condition_variable came;
    Bytes received;
    std::thread thread;
};

} // namespace endtoend
