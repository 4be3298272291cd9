// What must be in place when, where the order of the calls alone does not show it.

#include "app/Program.h"
#include "fakes/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class LaunchOrderTest : public testing::Test {
protected:
    void launch() {
        program.delegate().applicationDidFinishLaunching();
        on.drain();
    }
    /// Does `step` in the middle of the launch, when `entry` is noted.
    void at(const std::string& entry, std::function<void()> step) {
        on.journal.onNote = [entry, step = std::move(step)](const std::string& noted) {
            if (noted == entry) {
                step();
            }
        };
    }

    FakePlatform on;
    Program program{on.platform(), [] {}};
};

TEST_F(LaunchOrderTest, TheCallObserversAreSetOnlyOnceTheServerHasStarted) {
    at("listener start",
       [&] { program.notifications().post(AppNotification::prepareActiveCall, std::string("123")); });
    launch();
    EXPECT_THAT(on.windows.panels, IsEmpty()) << "nobody observed it yet";
    program.notifications().post(AppNotification::prepareActiveCall, std::string("123"));
    on.drain();
    EXPECT_THAT(on.windows.panels, SizeIs(1));
}

TEST_F(LaunchOrderTest, TheCallObserversAreSetAfterTheServicesProvider) {
    at("services provider",
       [&] { program.notifications().post(AppNotification::prepareActiveCall, std::string("123")); });
    launch();
    EXPECT_THAT(on.windows.panels, IsEmpty());
}

TEST_F(LaunchOrderTest, TheRingingCallIsObservedOnlyAfterTheServicesProvider) {
    at("services provider",
       [&] { program.historyStore().incomingCallInfo.set(IncomingCallInfo{.number = "123"}); });
    launch();
    EXPECT_THAT(on.log.take(), ElementsAre("[AppDelegate] Incoming call detected: 123"));
}

TEST_F(LaunchOrderTest, ACallThatComesWhileTheServerStartsIsNotLost) {
    at("listener start",
       [&] { program.historyStore().incomingCallInfo.set(IncomingCallInfo{.number = "123"}); });
    launch();
    EXPECT_THAT(on.windows.panels, SizeIs(1));
}

TEST_F(LaunchOrderTest, TheCallObserversAreSetBeforeTheApplicationHidesItself) {
    at("policy accessory",
       [&] { program.notifications().post(AppNotification::prepareActiveCall, std::string("123")); });
    launch();
    EXPECT_THAT(on.windows.panels, SizeIs(1));
}

TEST_F(LaunchOrderTest, AFileOfTheServiceIsLoggedBeforeItIsSent) {
    launch();
    std::vector<std::size_t> jobsAtLine;
    on.log.onLine = [&](const std::string&) { jobsAtLine.push_back(on.server.pending()); };
    program.delegate().handleSendToAndroidService(
        {.hasTypes = true, .hasFileUrls = true, .urls = {{"/tmp/no such/a.txt", "/tmp/no such/b.txt"}}});
    on.log.onLine = nullptr;
    EXPECT_THAT(jobsAtLine, ElementsAre(0u, 1u));
}

TEST_F(LaunchOrderTest, TheAnswersAboutThePermissionTakeEffectOnTheMainQueue) {
    launch();
    launch();
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    EXPECT_THAT(on.application.alerts, IsEmpty());
    on.drain();
    EXPECT_THAT(on.application.alerts, SizeIs(1));

    on.notificationCenter.answerStatus(AuthorizationStatus::notDetermined);
    EXPECT_THAT(on.notificationCenter.authorizationQueries, IsEmpty());
    on.drain();
    on.notificationCenter.answerAuthorization(false, "not now");
    EXPECT_THAT(on.application.alerts, SizeIs(1));
    on.drain();
    EXPECT_THAT(on.application.alerts, SizeIs(2));
}

TEST_F(LaunchOrderTest, NothingButTheLaunchPromptsForAccessibility) {
    launch();
    EXPECT_EQ(on.accessibility.prompts, 1);
    program.delegate().showSettings(7);
    program.delegate().applicationDidBecomeActive();
    on.drain();
    EXPECT_GT(on.accessibility.checks, 0);
    EXPECT_EQ(on.accessibility.prompts, 1);
}

} // namespace
} // namespace velloway::test
