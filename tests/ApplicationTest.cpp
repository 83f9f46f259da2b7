#include "spool/Application.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ApplicationTest : public LibraryTest {
  protected:
    ~ApplicationTest() override { platform::StopSocketSupport(); }
};

TEST_F(ApplicationTest, StartsSocketSupportAndSaysNothing) {
    Application application;
    EXPECT_TRUE(application.InitInstance());
    EXPECT_EQ((Calls{"StartSocketSupport()"}), os.Calls());
    EXPECT_THAT(os.Messages(), IsEmpty());
}

TEST_F(ApplicationTest, TellsTheUserWhenThereIsNoSocketSupport) {
    os.Fail("StartSocketSupport", 10091);
    Application application;
    EXPECT_FALSE(application.InitInstance());
    EXPECT_THAT(os.Messages(), ElementsAre("\"Windows sockets initialization failed.\""));
}

TEST_F(ApplicationTest, OpensNoLinkAndCreatesNothing) {
    Application application;
    application.InitInstance();
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(nullptr, ConversionBuffer);
    EXPECT_EQ(nullptr, ReceiveQueue);
    EXPECT_EQ(NADREL_INVALID_HANDLE, GetPortHandle());
}

} // namespace
} // namespace nadrel
