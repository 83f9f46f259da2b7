#pragma once

#include "printer/Descriptor.h"

#include <string>

namespace printer {

// A serial port without a wire: the host opens the port by its name, the printer reads and writes the other
// end. The port stays when a host closes it, because it is held open here as well.
class PseudoTerminal {
  public:
    // Every byte passes unchanged. Throws std::runtime_error when the system has none.
    PseudoTerminal();

    const std::string &PortName() const { return name_; }
    int PrinterEnd() const { return printerEnd_.Get(); } // does not block

  private:
    Descriptor printerEnd_, portEnd_;
    std::string name_;
};

// A symbolic link that is removed with its owner, unless it points elsewhere by then.
class SymbolicLink {
  public:
    // Takes the place of a symbolic link of this name, not of anything else. Throws std::runtime_error when
    // it cannot.
    SymbolicLink(std::string path, std::string target);
    ~SymbolicLink();
    SymbolicLink(const SymbolicLink &) = delete;
    SymbolicLink &operator=(const SymbolicLink &) = delete;

  private:
    std::string path_, target_;
};

} // namespace printer
