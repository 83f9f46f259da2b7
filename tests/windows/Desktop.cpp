// Keeps the desktop while tests run. Wine ends it with the last window and starts it for the next, which now
// and then takes longer than a test waits.

#include "tests/hosts/CallingHost.h"

#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <optional>

namespace hosts {
namespace {

class Desktop : public testing::Environment {
  public:
    void SetUp() override {
        if (IsOnWindows())
            host.emplace(folder.Path()).Ask("open a window");
    }
    void TearDown() override { host.reset(); }

  private:
    TemporaryFolder folder;
    std::optional<CallingHost> host;
};

const testing::Environment *const desktop = testing::AddGlobalTestEnvironment(new Desktop);

} // namespace
} // namespace hosts
