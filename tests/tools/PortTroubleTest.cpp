#include "tools/PortTrouble.h"

#include "tools/Descriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

using tool::PortTrouble;
using tool::TryPort;

namespace {

constexpr gid_t kOrdinaryGroup = 20;

// A file with the given mode, and a group other than root's, that is gone with its owner.
struct DeviceFile {
    explicit DeviceFile(mode_t mode) {
        const int fd = open(path.c_str(), O_CREAT | O_RDWR | O_TRUNC, 0600);
        EXPECT_NE(fd, -1);
        if (getegid() == 0) {
            EXPECT_EQ(fchown(fd, static_cast<uid_t>(-1), kOrdinaryGroup), 0);
        }
        EXPECT_EQ(fchmod(fd, mode), 0);
        close(fd);
    }
    ~DeviceFile() { unlink(path.c_str()); }

    std::string path =
        testing::TempDir() + "tools_tests_" + testing::UnitTest::GetInstance()->current_test_info()->name();
};

} // namespace

TEST(PortTrouble, NamesTheGroupThatMayUseADevice) {
    const DeviceFile file(0660);
    struct stat status {};
    ASSERT_EQ(stat(file.path.c_str(), &status), 0);
    const struct group *owner = getgrgid(status.st_gid);
    const std::string group = owner == nullptr ? std::to_string(status.st_gid) : owner->gr_name;
    EXPECT_EQ(PortTrouble(file.path, EACCES), "Permission denied; it belongs to group " + group +
                                                  ", which \"sudo usermod -aG " + group +
                                                  " $USER\" adds you to from the next login");
}

TEST(PortTrouble, NamesNoGroupThatMayNotUseTheDeviceEither) {
    const DeviceFile file(0600);
    EXPECT_EQ(PortTrouble(file.path, EACCES), "Permission denied; only its owner may use it");
}

TEST(PortTrouble, AdvisesNobodyToJoinTheGroupOfRoot) {
    struct stat status {};
    ASSERT_EQ(stat("/dev/null", &status), 0);
    ASSERT_EQ(status.st_gid, 0u);
    ASSERT_EQ(status.st_mode & (S_IRGRP | S_IWGRP), mode_t{S_IRGRP | S_IWGRP});
    EXPECT_EQ(PortTrouble("/dev/null", EACCES),
              "Permission denied; only its owner and the group root may use it");
}

TEST(PortTrouble, IsTheSystemsReason) {
    EXPECT_EQ(PortTrouble("/dev/nowhere", ENOENT), "No such file or directory");
    EXPECT_EQ(PortTrouble("/dev/nowhere", EACCES), "Permission denied");
}

TEST(PortTrouble, IsAnotherProgramWhereThePortOpensOtherwise) {
    EXPECT_EQ(PortTrouble("/dev/ttyS0", EBUSY), "another program has it open");
    EXPECT_EQ(PortTrouble("/dev/ttyS0", 0), "another program has it open");
}

TEST(PortTrouble, IsAFileThatIsNoSerialPort) {
    EXPECT_EQ(PortTrouble("/etc/passwd", ENOTTY), "it is not a serial port");
}

TEST(TryPort, FindsWhatKeepsAPortFromOpening) {
    const DeviceFile file(0600);
    EXPECT_EQ(TryPort("/dev/nowhere"), ENOENT);
    EXPECT_EQ(TryPort("/tmp"), ENOTTY);
    EXPECT_EQ(TryPort(file.path), ENOTTY);
    EXPECT_EQ(TryPort("/dev/null"), ENOTTY);
}

TEST(TryPort, OpensASerialPort) {
    const tool::Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY));
    ASSERT_EQ(grantpt(terminal.Get()), 0);
    ASSERT_EQ(unlockpt(terminal.Get()), 0);
    EXPECT_EQ(TryPort(ptsname(terminal.Get())), 0);
}
