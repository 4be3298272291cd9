#include "app/Program.h"
#include "fakes/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What crosses several parts of the program, on a whole host of fakes.
class WholeProgramTest : public testing::Test {
protected:
    void SetUp() override {
        on.host.downloads = "/home/me/Downloads";
        program.delegate().applicationDidFinishLaunching();
        on.drain();
    }

    std::shared_ptr<FakeConnection> connectPhone() {
        auto phone =
            std::make_shared<FakeConnection>(Endpoint{.host = "10.0.0.1", .description = "10.0.0.1:1"});
        phones.push_back(phone);
        on.network.listener().connect(phone);
        phone->report(ConnectionState::ready);
        on.drain();
        phone->sent.clear();
        return phone;
    }

    void deliver(const std::string& message) {
        phones.front()->deliver(message);
        on.drain();
    }

    void TearDown() override {
        for (const auto& phone : phones) {
            phone->report(ConnectionState::cancelled);
        }
    }

    FakePlatform on;
    Program program{on.platform(), [] {}};
    std::vector<std::shared_ptr<FakeConnection>> phones;
};

TEST_F(WholeProgramTest, AFileGoesOnArrivingWhenTheWindowCloses) {
    connectPhone();
    program.delegate().showSettings(5);
    deliver(R"({"action":"file_transfer_start","fileName":"a.txt","fileSize":6})");
    deliver(R"({"action":"file_chunk","fileName":"a.txt","fileData":"YWJj"})");
    on.windows.closeMainWindow();
    EXPECT_EQ(on.application.policy, ActivationPolicy::accessory);
    deliver(R"({"action":"file_chunk","fileName":"a.txt","fileData":"ZGVm","isLast":true})");
    EXPECT_EQ(on.files.content("/home/me/Downloads/a.txt"), "abcdef");
    EXPECT_TRUE(program.historyStore().fileTransfers.get().front().isCompleted);
}

TEST_F(WholeProgramTest, AFileGoesOnLeavingWhenTheWindowCloses) {
    const auto phone = connectPhone();
    program.delegate().showSettings(5);
    on.files.put("/home/me/b.txt", "abc");
    program.server().sendFile("/home/me/b.txt");
    on.windows.closeMainWindow();
    EXPECT_THAT(phone->sent, IsEmpty()) << "the file waits for its queue";
    on.drain();
    ASSERT_EQ(phone->sent.size(), 2u);
    EXPECT_TRUE(program.historyStore().fileTransfers.get().front().isCompleted);
}

TEST_F(WholeProgramTest, SendClipboardWithNothingThereSaysNothingWithOrWithoutAPhone) {
    on.log.take();
    on.pasteboard.content = "";
    program.delegate().onMenuSendClipboard();
    on.pasteboard.content.reset();
    program.delegate().onMenuSendClipboard();
    on.drain();
    const auto phone = connectPhone();
    EXPECT_THAT(phone->sent, IsEmpty()) << "nothing waited for the phone";
    on.log.take();
    program.delegate().onMenuSendClipboard();
    on.drain();
    EXPECT_THAT(phone->sent, IsEmpty());
    EXPECT_THAT(on.log.lines(), IsEmpty());
    EXPECT_THAT(on.notificationCenter.requests, IsEmpty());
    EXPECT_THAT(program.historyStore().clipboardHistory.get(), IsEmpty());
}

TEST_F(WholeProgramTest, SendClipboardWithoutAPhoneKeepsNothingForTheNextOne) {
    on.pasteboard.content = "text";
    program.delegate().onMenuSendClipboard();
    on.drain();
    EXPECT_THAT(connectPhone()->sent, IsEmpty());
    EXPECT_THAT(on.notificationCenter.requests, IsEmpty());
}

TEST_F(WholeProgramTest, AnSmsKeepsQuotesAndLineBreaksOnItsWayInAndOut) {
    const auto phone = connectPhone();
    std::vector<std::string> bodies;
    const auto observer = program.notifications().observe(
        AppNotification::smsHistoryUpdated, [&](const AppNotificationObject& object) {
            for (const SmsRecord& record : std::get<std::vector<SmsRecord>>(object)) {
                bodies.push_back(record.body);
            }
        });
    deliver(R"({"action":"sms_history","messages":[{"address":"5","body":"say \"hi\"\n\\ 'x'"}]})");
    EXPECT_THAT(bodies, ElementsAre("say \"hi\"\n\\ 'x'"));
    program.server().sendSms("5", bodies.front(), 0);
    on.drain();
    ASSERT_EQ(phone->sent.size(), 1u);
    EXPECT_EQ(phone->sent[0].text,
              R"({"action":"send_sms","number":"5","body":"say \"hi\"\n\\ 'x'","simSlot":0})");
}

} // namespace
} // namespace velloway::test
