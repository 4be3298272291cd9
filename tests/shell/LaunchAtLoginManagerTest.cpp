#include "shell/LaunchAtLoginManager.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakeLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LaunchAtLoginManagerTest : public testing::Test {
protected:
    FakeLoginItem item;
    FakeLog log;
    LaunchAtLoginManager manager{item, log};
};

TEST_F(LaunchAtLoginManagerTest, IsEnabledInThatOneStatusOnly) {
    for (const auto status : {LoginItemStatus::notRegistered, LoginItemStatus::enabled,
                              LoginItemStatus::requiresApproval, LoginItemStatus::notFound}) {
        item.current = status;
        EXPECT_EQ(manager.isEnabled(), status == LoginItemStatus::enabled);
    }
}

TEST_F(LaunchAtLoginManagerTest, RegistersAndUnregisters) {
    manager.setEnabled(true);
    EXPECT_TRUE(manager.isEnabled());
    manager.setEnabled(false);
    EXPECT_FALSE(manager.isEnabled());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(LaunchAtLoginManagerTest, AFailureIsLoggedAndNothingElse) {
    item.error = "no such folder";
    manager.setEnabled(true);
    EXPECT_FALSE(manager.isEnabled());
    EXPECT_THAT(log.lines(), ElementsAre("LaunchAtLogin error: no such folder"));
}

} // namespace
} // namespace velloway::test
