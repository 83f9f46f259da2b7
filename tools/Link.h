#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tool {

// One of the two ways to the printer.
struct LinkOptions {
    std::string serial{}; // the port's path in UTF-8
    uint32_t baudRate = 115200;
    std::string tcp{}; // HOST:PORT as ParseAddress takes it
    bool framed = false;

    const std::string &Name() const { return serial.empty() ? tcp : serial; }
};

// A link that could not be opened or did not take everything: which, what was tried and why it failed.
class LinkFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The library's link, open from here on; closed with its owner.
class Link {
  public:
    // Throws a LinkFailure.
    explicit Link(const LinkOptions &options);
    Link(const Link &) = delete;
    ~Link();

    // Throws a LinkFailure unless the system took every byte that was to be sent.
    void RequireEverythingTaken() const;

  private:
    std::string name;
};

} // namespace tool
