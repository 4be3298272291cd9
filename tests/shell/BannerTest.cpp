#include "fakes/ServerHarness.h"
#include "shell/ActiveCallBanner.h"
#include "shell/IncomingCallBanner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace velloway::test {
namespace {

struct RingingCase {
    std::optional<std::string> name;
    std::string number;
    std::string firstLine;
    std::optional<std::string> secondLine;
};

class RingingTextTest : public testing::TestWithParam<RingingCase> {};

TEST_P(RingingTextTest, ShowsWhoIsCalling) {
    const IncomingCallBanner banner(
        std::make_shared<const IncomingCallInfo>(
            IncomingCallInfo{.number = GetParam().number, .name = GetParam().name}),
        [] {}, [] {});
    EXPECT_EQ(banner.text(), (BannerText{GetParam().firstLine, GetParam().secondLine, "Incoming Call"}));
}

INSTANTIATE_TEST_SUITE_P(
    Callers, RingingTextTest,
    testing::Values(RingingCase{{}, "unknown", "Unknown Caller", {}},
                    RingingCase{{}, "UnKnown", "Unknown Caller", {}}, RingingCase{{}, "", "Unknown Caller", {}},
                    RingingCase{" Bob ", "123", "Bob", "123"}, RingingCase{"Bob", "\n 123\t", "Bob", "123"},
                    RingingCase{"123", "123", "123", {}}, RingingCase{"123", " 123 ", "123", {}},
                    RingingCase{"Unknown", "123", "123", {}},
                    RingingCase{" unknown ", "", "Unknown Caller", {}}, RingingCase{" \n", "123", "123", {}},
                    RingingCase{"Bob", "Unknown", "Bob", {}},
                    RingingCase{"Unknown person", "1", "Unknown person", "1"}));

TEST(IncomingCallBannerTest, TheLeftButtonDeclinesAndTheRightOneAccepts) {
    std::string pressed;
    IncomingCallBanner banner(
        std::make_shared<const IncomingCallInfo>(IncomingCallInfo{.number = "1"}),
        [&] { pressed += "answer "; }, [&] { pressed += "hangup "; });
    CallPanelContent& content = banner;
    content.pressLeft();
    content.pressRight();
    EXPECT_EQ(pressed, "hangup answer ");
}

class ActiveCallBannerTest : public testing::Test, protected ServerHarness {
protected:
    void post(AppNotificationObject object) {
        notifications.post(AppNotification::callDurationUpdated, object);
    }
    ActiveCallBanner banner{"Bob", "123", *server, notifications};
};

TEST_F(ActiveCallBannerTest, ShowsTheNameAboveANumberThatDiffers) {
    EXPECT_EQ(banner.text(), (BannerText{"Bob", "123", "00:00"}));
    EXPECT_EQ(ActiveCallBanner("", "123", *server, notifications).text(), (BannerText{"123", {}, "00:00"}));
    EXPECT_EQ(ActiveCallBanner("123", "123", *server, notifications).text(), (BannerText{"123", {}, "00:00"}));
}

TEST_F(ActiveCallBannerTest, TakesEveryNameAsItIs) {
    for (const char* name : {"Unknown", " ", " Bob "}) {
        EXPECT_EQ(ActiveCallBanner(name, "123", *server, notifications).text(),
                  (BannerText{name, "123", "00:00"}));
    }
}

TEST_F(ActiveCallBannerTest, TheLeftButtonMutesAndTheRightOneHangsUp) {
    listen();
    const auto phone = connect();
    CallPanelContent& content = banner;
    content.pressLeft();
    on.drain();
    EXPECT_TRUE(banner.isMuted.get());
    content.pressRight();
    on.drain();
    ASSERT_EQ(phone->sent.size(), 2u);
    EXPECT_EQ(phone->sent[0].text, R"({"action":"toggle_mute","enabled":true})");
    EXPECT_EQ(phone->sent[1].text, R"({"action":"hangup_call"})");
}

TEST_F(ActiveCallBannerTest, FollowsTheTimeThatThePhoneTells) {
    const std::vector<std::pair<std::int64_t, std::string>> cases{
        {59, "00:59"}, {60, "01:00"}, {3600, "60:00"}, {3725, "62:05"}, {0, "00:00"}};
    for (const auto& [seconds, text] : cases) {
        post(seconds);
        EXPECT_EQ(banner.text().lastLine, text);
    }
}

TEST_F(ActiveCallBannerTest, IgnoresWhatIsNoTime) {
    post(std::int64_t{5});
    post(std::int64_t{-1});
    post(std::int64_t{-2});
    post(std::string("9"));
    post(std::monostate());
    EXPECT_EQ(banner.duration.get(), 5);
}

TEST_F(ActiveCallBannerTest, KeepsAWordForANegativeTime) {
    banner.duration.set(-1);
    EXPECT_EQ(banner.text().lastLine, "Connecting...");
}

TEST_F(ActiveCallBannerTest, MuteFlipsAndThenTellsThePhone) {
    listen();
    const auto phone = connect();
    EXPECT_EQ(banner.muteSymbol(), "mic.fill");
    banner.toggleMute();
    on.drain();
    EXPECT_TRUE(banner.isMuted.get());
    EXPECT_EQ(banner.muteSymbol(), "mic.slash.fill");
    banner.toggleMute();
    banner.hangup();
    on.drain();
    ASSERT_EQ(phone->sent.size(), 3u);
    EXPECT_EQ(phone->sent[0].text, R"({"action":"toggle_mute","enabled":true})");
    EXPECT_EQ(phone->sent[1].text, R"({"action":"toggle_mute","enabled":false})");
    EXPECT_EQ(phone->sent[2].text, R"({"action":"hangup_call"})");
}

} // namespace
} // namespace velloway::test
