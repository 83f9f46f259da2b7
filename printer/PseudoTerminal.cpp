#include "printer/PseudoTerminal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <termios.h>

namespace printer {
namespace {

[[noreturn]] void Fail(const std::string &what) {
    throw std::runtime_error(what + ": " + std::strerror(errno) + ".");
}

bool MakeRaw(int port) {
    termios settings{};
    if (tcgetattr(port, &settings) != 0)
        return false;
    settings.c_iflag = settings.c_oflag = settings.c_lflag = 0;
    settings.c_cflag = CS8 | CREAD | CLOCAL;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    cfsetispeed(&settings, B115200);
    cfsetospeed(&settings, B115200);
    return tcsetattr(port, TCSANOW, &settings) == 0;
}

} // namespace

PseudoTerminal::PseudoTerminal() : printerEnd_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    char name[128];
    const int end = printerEnd_.Get();
    if (!printerEnd_.IsOpen() || grantpt(end) != 0 || unlockpt(end) != 0 ||
        ptsname_r(end, name, sizeof name) != 0)
        Fail("There is no pseudo-terminal to be had");
    name_ = name;
    portEnd_ = Descriptor(open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!portEnd_.IsOpen() || !MakeRaw(portEnd_.Get()))
        Fail("The pseudo-terminal " + name_ + " cannot be set up");
}

SymbolicLink::SymbolicLink(std::string path, std::string target)
    : path_(std::move(path)), target_(std::move(target)) {
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(path_, ignored)) &&
        !std::filesystem::is_symlink(path_, ignored))
        throw std::runtime_error("The link " + path_ +
                                 " cannot be made: something that is no link has this name.");
    const std::string temporary = path_ + "." + std::to_string(getpid()) + ".tmp";
    if (symlink(target_.c_str(), temporary.c_str()) != 0)
        Fail("The link " + path_ + " cannot be made");
    if (std::rename(temporary.c_str(), path_.c_str()) != 0) {
        const int error = errno;
        std::remove(temporary.c_str());
        errno = error;
        Fail("The link " + path_ + " cannot be made");
    }
}

SymbolicLink::~SymbolicLink() {
    std::error_code error;
    if (std::filesystem::read_symlink(path_, error) == target_ && !error)
        std::filesystem::remove(path_, error);
}

} // namespace printer
