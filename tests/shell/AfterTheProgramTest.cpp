// What the desktop still has to say once the program's objects have gone.

#include "app/Program.h"
#include "fakes/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::IsEmpty;
using namespace std::chrono_literals;

class AfterTheProgramTest : public testing::Test {
protected:
    AfterTheProgramTest() { launch(); }

    void launch() {
        program->delegate().applicationDidFinishLaunching();
        on.drain();
    }
    /// Nothing but what the desktop holds is left of the program; what that does then is noted.
    void endProgram() {
        const std::weak_ptr<AppDelegate> delegate = program->sharedDelegate();
        const std::weak_ptr<WebSocketServer> server = program->sharedServer();
        program.reset();
        EXPECT_TRUE(delegate.expired());
        EXPECT_TRUE(server.expired());
        on.journal.take();
    }

    FakePlatform on;
    std::unique_ptr<Program> program = std::make_unique<Program>(on.platform(), [] {});
};

TEST_F(AfterTheProgramTest, AnswersAboutThePermissionShowNoAlert) {
    on.notificationCenter.answerStatus(AuthorizationStatus::notDetermined);
    launch();
    launch();
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    endProgram();
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    on.notificationCenter.answerAuthorization(false);
    on.drain();
    EXPECT_THAT(on.journal.entries(), IsEmpty());
}

TEST_F(AfterTheProgramTest, TheEndOfAnAlertHidesNothing) {
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    on.drain();
    endProgram();
    on.main.advance(1s);
    EXPECT_EQ(on.application.policy, ActivationPolicy::regular);
}

TEST_F(AfterTheProgramTest, TheMenuTheWindowAndTheServiceOpenNothing) {
    program->delegate().showSettings(0);
    program->delegate().handleSendToAndroidService({.hasTypes = true, .hasFileUrls = true, .urls = {{"/a"}}});
    endProgram();
    on.drain();
    on.statusItem.choose("Call…");
    on.windows.closeMainWindow();
    EXPECT_THAT(on.journal.entries(), IsEmpty());
}

TEST_F(AfterTheProgramTest, TheListenerChangesNoStatusLineAndStartsNothing) {
    on.network.listener().report(ListenerState::ready);
    const std::string status = on.statusItem.menu.at(2).title;
    endProgram();
    on.drain();
    on.network.listener().report(ListenerState::failed, NetworkError{.localizedDescription = "gone"});
    on.main.advance(10s);
    EXPECT_EQ(on.statusItem.menu.at(2).title, status);
    EXPECT_THAT(on.journal.entries(), IsEmpty());
}

TEST_F(AfterTheProgramTest, CallsOpenNoPanel) {
    program->historyStore().incomingCallInfo.set(IncomingCallInfo{.number = "1"});
    program->notifications().post(AppNotification::prepareActiveCall, std::string("1"));
    endProgram();
    on.log.take();
    on.drain();
    EXPECT_THAT(on.windows.panels, IsEmpty());
    EXPECT_THAT(on.log.lines(), IsEmpty());
}

} // namespace
} // namespace velloway::test
