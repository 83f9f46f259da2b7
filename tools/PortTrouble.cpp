#include "tools/PortTrouble.h"

#include "tools/Descriptor.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tool {
namespace {

constexpr mode_t kGroupMayUse = S_IRGRP | S_IWGRP;
constexpr gid_t kRootsGroup = 0;

std::string GroupName(gid_t group) {
    const struct group *entry = getgrgid(group);
    return entry == nullptr ? std::to_string(group) : entry->gr_name;
}

std::string WhoMayUse(const std::string &path) {
    struct stat file {};
    if (stat(path.c_str(), &file) != 0)
        return {};
    if ((file.st_mode & kGroupMayUse) != kGroupMayUse)
        return "; only its owner may use it";
    if (file.st_gid == kRootsGroup)
        return "; only its owner and the group root may use it";
    const std::string group = GroupName(file.st_gid);
    return "; it belongs to group " + group + ", which \"sudo usermod -aG " + group +
           " $USER\" adds you to from the next login";
}

} // namespace

int TryPort(const std::string &path) {
    const Descriptor port(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (port.Get() == -1)
        return errno == EISDIR ? ENOTTY : errno;
    return isatty(port.Get()) == 1 ? 0 : ENOTTY;
}

std::string PortTrouble(const std::string &path, int reason) {
    switch (reason) {
    case 0:
    case EBUSY:
        return "another program has it open";
    case ENOTTY:
        return "it is not a serial port";
    case EACCES:
    case EPERM:
        return std::strerror(reason) + WhoMayUse(path);
    default:
        return std::strerror(reason);
    }
}

} // namespace tool
