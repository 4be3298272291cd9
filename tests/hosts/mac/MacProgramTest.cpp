#include "app/Program.h"
#include "fakes/FakeDispatchQueue.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeLog.h"
#include "hosts/mac/FakeCoreFoundation.h"
#include "hosts/mac/FakeDispatch.h"
#include "hosts/mac/FakeMac.h"
#include "hosts/mac/FakeNetworkFramework.h"
#include "hosts/mac/FakeSurface.h"
#include "hosts/mac/MacAccessibility.h"
#include "hosts/mac/MacActivity.h"
#include "hosts/mac/MacApplication.h"
#include "hosts/mac/MacDispatchQueue.h"
#include "hosts/mac/MacHost.h"
#include "hosts/mac/MacInputEvents.h"
#include "hosts/mac/MacLoginItem.h"
#include "hosts/mac/MacMemory.h"
#include "hosts/mac/MacNetwork.h"
#include "hosts/mac/MacPasteboard.h"
#include "hosts/mac/MacScripts.h"
#include "hosts/mac/MacStatusItem.h"
#include "hosts/mac/MacUserDefaults.h"
#include "hosts/mac/MacUserNotificationCenter.h"
#include "hosts/mac/MacWindows.h"
#include "hosts/mac/MacWorkspace.h"
#include "runtime/ObjectiveC.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace velloway::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// The whole program on the macOS adapters. Only the main queue, the log and the views are stand-ins of ours:
/// on a Mac they come from Qt.
class MacProgramTest : public testing::Test {
public:
    MacProgramTest() {
        resetFakeMac();
        fakeNetworkFramework = {};
        fakeAccessibility = {};
        fakeNetworkFramework.onCall = [](const std::string& call) {
            if (call == "listener start") {
                fakeMac.note("the server listens");
            }
        };
        fakeAccessibility.onPrompt = [] { fakeMac.note("trust prompt"); };
        delegate.application = &program->delegate();
    }
    ~MacProgramTest() override {
        // The program closes nothing when it ends, so the phone does.
        if (phone) {
            phone->fails(ECONNRESET);
        }
        runAll();
        phone.reset();
        delegate.application = nullptr;
        program.reset();
        runAll();
        fakeNetworkFramework = {};
        fakeAccessibility = {};
        objc_autoreleasePoolPop(pool);
    }

    void runAll() {
        for (int round = 0; round < 10; ++round) {
            fakeDispatch::runAll();
            mainQueue.runAll();
            fakeMac.runLater();
        }
    }
    std::vector<std::string> calls() { return std::exchange(fakeMac.calls, {}); }

    void* pool = objc_autoreleasePoolPush();
    FakeDispatchQueue mainQueue;
    FakeLog log;
    MacDelegate delegate;
    MacApplication application{delegate};
    MacHost host;
    FakeFiles files;
    MacMemory memory;
    MacUserDefaults userDefaults;
    MacUserNotificationCenter notificationCenter{delegate};
    MacPasteboard pasteboard;
    MacInputEvents inputEvents;
    MacScripts scripts;
    MacAccessibility accessibility;
    MacLoginItem loginItem;
    MacStatusItem statusItem{delegate};
    MacWindows windows{delegate, makeFakeSurface};
    MacWorkspace workspace;
    MacDispatchQueue fileQueue{"ws.files"};
    MacDispatchQueue serverQueue{"ws.server"};
    MacDispatchQueue readingQueue{"ws.reading"};
    MacNetwork network{beginConnectedActivity};
    std::unique_ptr<Program> program = std::make_unique<Program>(platformOf(*this), [] {});
    std::shared_ptr<FakePhone> phone;
};

TEST_F(MacProgramTest, TheLaunchGoesThroughItsStepsInOrder) {
    fakeLaunch();
    runAll();
    EXPECT_THAT(calls(),
                ElementsAre("notification delegate", "notification settings",
                            StartsWith("category REPLY_CATEGORY"), "trust prompt", "status item of length -1",
                            "the server listens", "services provider", "activation policy 1"));
    EXPECT_EQ(fakeMac.buttonImage, "StatusIcon 0");
    EXPECT_TRUE(fakeMac.isButtonImageTemplate);
    ASSERT_EQ(fakeMenu().size(), 15u);
    EXPECT_EQ(fakeMenu()[2].title, "Server: listening on :8765");
}

TEST_F(MacProgramTest, ANotificationComesFromThePhoneAndItsAnswerGoesBack) {
    fakeLaunch();
    runAll();
    phone = dialFake(8765);
    ASSERT_TRUE(phone);
    runAll();
    phone->shakeHands();
    runAll();
    calls();
    phone->farEnd->frames.clear();

    phone->sends(R"({"app":"Chat","title":"Anna","body":"Hi","key":"key-1"})");
    runAll();
    EXPECT_THAT(calls(), Contains(StartsWith("add key-1|")));

    EXPECT_EQ(fakeAnswerNotification("REPLY_ACTION", "key-1", "on my way"), 1);
    runAll();
    ASSERT_EQ(phone->farEnd->frames.size(), 1u);
    const FakePhone::Frame& frame = phone->farEnd->frames.front();
    EXPECT_EQ(frame.identifier, "send");
    EXPECT_EQ(frame.opcode, 1);
    EXPECT_THAT(frame.text, HasSubstr(R"("key":"key-1")"));
    EXPECT_THAT(frame.text, HasSubstr(R"("message":"on my way")"));
}

TEST_F(MacProgramTest, TheSystemDoesNotSlowTheProgramDownWhileAPhoneIsConnected) {
    fakeLaunch();
    runAll();
    phone = dialFake(8765);
    ASSERT_TRUE(phone);
    runAll();
    EXPECT_EQ(fakeMac.activities, 0) << "begun before the phone is there";
    phone->shakeHands();
    runAll();
    EXPECT_EQ(fakeMac.activities, 1);
    // Initiated by the user, with the sleep of an idle computer allowed.
    EXPECT_EQ(fakeMac.activityOptions, 0x00EFFFFFul);
    EXPECT_FALSE(fakeMac.activityReason.empty());
    phone->closes(1000, "bye");
    runAll();
    EXPECT_EQ(fakeMac.activities, 0);
}

TEST_F(MacProgramTest, APhoneThatClosesIsNoLongerConnectedAlthoughThePlatformReportsNoFailure) {
    fakeLaunch();
    runAll();
    phone = dialFake(8765);
    ASSERT_TRUE(phone);
    runAll();
    phone->shakeHands();
    runAll();
    EXPECT_TRUE(program->historyStore().connectedRemoteIP.get());
    phone->closes(1000, "");
    runAll();
    EXPECT_FALSE(program->historyStore().connectedRemoteIP.get());
}

TEST_F(MacProgramTest, AFileOfThePhoneIsWrittenByAQueueOfItsOwn) {
    fakeLaunch();
    runAll();
    phone = dialFake(8765);
    ASSERT_TRUE(phone);
    runAll();
    phone->shakeHands();
    runAll();
    int calls = 0;
    files.onWriterCall = [&] {
        ++calls;
        EXPECT_TRUE(fileQueue.isCurrent());
    };
    phone->sends(R"({"action":"file_transfer_start","fileName":"a","fileSize":3})");
    phone->sends(R"({"action":"file_chunk","fileName":"a","fileData":"YWJj","isLast":true})");
    runAll();
    EXPECT_EQ(calls, 3);
    EXPECT_THAT(log.lines(), Contains("[WebSocketServer] File handle closed for a"));
}

TEST_F(MacProgramTest, AClickInTheMenuOpensTheMainWindowAndClosingItLeavesTheDock) {
    fakeLaunch();
    runAll();
    calls();
    ASSERT_TRUE(clickFakeMenuItem(11));
    runAll();
    const auto opened = calls();
    EXPECT_THAT(opened, Contains("activation policy 0"));
    EXPECT_THAT(opened, Contains("make key and order front"));
    EXPECT_EQ(opened.back(), "activate, ignoring others");
    fakeCloseMainWindow();
    EXPECT_EQ(calls().back(), "activation policy 1");
}

} // namespace
} // namespace velloway::test
