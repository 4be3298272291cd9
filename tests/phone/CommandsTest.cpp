#include "phone/Commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/json.hpp>

#include <stdexcept>

namespace velloway::phone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

std::vector<std::string> sentBy(std::string_view line, const World& world = {}) {
    std::vector<std::string> texts;
    for (const Action& action : parseCommand(line, world)) {
        texts.push_back(std::get<SendText>(action).text);
    }
    return texts;
}

struct OneMessage {
    const char* line;
    const char* message;
};

class Command : public testing::TestWithParam<OneMessage> {};

TEST_P(Command, SendsExactlyThisMessage) {
    EXPECT_THAT(sentBy(GetParam().line), ElementsAre(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    EachMessage, Command,
    testing::Values(
        OneMessage{"connected 'Paper Phone'", R"({"action":"connected","deviceName":"Paper Phone"})"},
        OneMessage{"device_info Home", R"({"action":"device_info","wifiName":"Home"})"},
        OneMessage{"device_info '' Tab", R"({"action":"device_info","wifiName":"","deviceName":"Tab"})"},
        OneMessage{"notification Chat Ada 'see you'", R"({"app":"Chat","title":"Ada","body":"see you"})"},
        OneMessage{"notification Chat Ada hi k1", R"({"app":"Chat","title":"Ada","body":"hi","key":"k1"})"},
        OneMessage{"notification Chat Ada hi k1 1700000000",
                   R"({"app":"Chat","title":"Ada","body":"hi","time":1.7E9,"key":"k1"})"},
        OneMessage{"sim_info Blue,Nord",
                   R"({"action":"sim_info","sims":[{"slot":0,"carrier":"Blue"},{"slot":1,"carrier":"Nord"}]})"},
        OneMessage{"sim_info", R"({"action":"sim_info","sims":[]})"},
        OneMessage{"ringing 5551 Ada",
                   R"({"action":"call_state_changed","state":"RINGING","number":"5551","name":"Ada"})"},
        OneMessage{"offhook", R"({"action":"call_state_changed","state":"OFFHOOK"})"},
        OneMessage{"call_update -1", R"({"action":"call_update","duration":-1})"},
        OneMessage{"call_ended", R"({"action":"call_ended","state":"IDLE"})"},
        OneMessage{R"(clipboard "a/b \"c\"")", R"({"action":"clipboard","text":"a/b \"c\""})"},
        OneMessage{"battery 15", R"({"action":"battery_status","level":15,"isCharging":false})"},
        OneMessage{"battery 15 charging", R"({"action":"battery_status","level":15,"isCharging":true})"},
        OneMessage{"remote cmd+shift_key_left",
                   R"({"action":"remote_control","command":"cmd+shift_key_left"})"},
        OneMessage{"remote next media", R"({"action":"remote_control","command":"next","type":"media"})"},
        OneMessage{"move 3 -0.5",
                   R"({"action":"remote_control","type":"mouse_move","command":"move","dx":3E0,"dy":-5E-1})"},
        OneMessage{"click",
                   R"({"action":"remote_control","type":"mouse_click","command":"click","button":"left"})"},
        OneMessage{"click right",
                   R"({"action":"remote_control","type":"mouse_click","command":"click","button":"right"})"},
        OneMessage{"type 'a b'",
                   R"({"action":"remote_control","type":"keyboard_text","command":"text","text":"a b"})"},
        OneMessage{"open_url https://a.example/",
                   R"({"action":"remote_control","command":"open_url","url":"https://a.example/"})"},
        OneMessage{"raw  {\"a\": 'x y' ", "{\"a\": 'x y' "}));

TEST(Commands, HelloIntroducesThePhoneItsNetworkAndItsSims) {
    EXPECT_THAT(sentBy("hello Tab Attic"),
                ElementsAre(R"({"action":"connected","deviceName":"Tab"})",
                            R"({"action":"device_info","wifiName":"Attic","deviceName":"Tab"})",
                            HasSubstr(R"("action":"sim_info")")));
}

TEST(Commands, ThatLeaveTheirWordsOutAskARealPhone) {
    World world;
    world.isDevice = true;
    for (const auto& [line, what] :
         {std::pair{"hello", Ask::What::introduction}, std::pair{"sms_history", Ask::What::smsHistory},
          std::pair{"call_history", Ask::What::callHistory}, std::pair{"battery", Ask::What::battery},
          std::pair{"clipboard", Ask::What::clipboard}}) {
        const auto actions = parseCommand(line, world);
        ASSERT_EQ(actions.size(), 1u) << line;
        ASSERT_TRUE(std::holds_alternative<Ask>(actions[0])) << line;
        EXPECT_EQ(std::get<Ask>(actions[0]).what, what) << line;
    }
    EXPECT_THAT(sentBy("battery 12", world), ElementsAre(HasSubstr("\"level\":12")));
    EXPECT_THROW(parseCommand("battery", {}), std::invalid_argument);
}

TEST(Commands, ABinaryFrameCarriesTheRestOfTheLine) {
    const auto actions = parseCommand("binary {\"app\": \"x\"}", {});
    ASSERT_EQ(actions.size(), 1u);
    EXPECT_EQ(std::get<SendBinary>(actions[0]).bytes, "{\"app\": \"x\"}");
}

TEST(Commands, AFallingBatteryPausesBetweenItsSteps) {
    const auto actions = parseCommand("battery_fall 27 21 3 0.5", {});
    ASSERT_EQ(actions.size(), 5u);
    EXPECT_THAT(std::get<SendText>(actions[0]).text, HasSubstr("\"level\":27"));
    EXPECT_EQ(std::get<Sleep>(actions[1]).seconds, 0.5);
    EXPECT_THAT(std::get<SendText>(actions[2]).text, HasSubstr("\"level\":24"));
    EXPECT_EQ(std::get<Sleep>(actions[3]).seconds, 0.5);
    EXPECT_THAT(std::get<SendText>(actions[4]).text, HasSubstr("\"level\":21"));
}

TEST(Commands, GeneratedMessageLogsHaveTheCountsAskedForAndEndNow) {
    World world;
    world.now = 1'700'000'000'000;
    const auto texts = sentBy("sms_history 3 10", world);
    ASSERT_EQ(texts.size(), 1u);
    const auto message = boost::json::parse(texts[0]).as_object();
    EXPECT_EQ(message.at("action"), "sms_history");
    const auto& list = message.at("messages").as_array();
    ASSERT_EQ(list.size(), 10u);
    std::set<std::string> addresses;
    double last = 0;
    for (const auto& entry : list) {
        addresses.insert(std::string(entry.at("address").as_string()));
        const double date = entry.at("date").to_number<double>();
        EXPECT_GT(date, last);
        last = date;
    }
    EXPECT_EQ(addresses.size(), 3u);
    EXPECT_LT(last, world.now);
    EXPECT_GT(last, world.now - 3'600'000);
}

TEST(Commands, GeneratedCallLogsHaveEveryRequiredKey) {
    const auto message = boost::json::parse(sentBy("call_history 4")[0]).as_object();
    const auto& calls = message.at("calls").as_array();
    ASSERT_EQ(calls.size(), 4u);
    for (const auto& call : calls) {
        EXPECT_TRUE(call.at("number").is_string());
        EXPECT_TRUE(call.at("date").is_number());
        EXPECT_TRUE(call.at("duration").is_int64());
        EXPECT_TRUE(call.at("type").is_int64());
    }
}

TEST(Commands, AFileTakesItsOptionsInAnyOrder) {
    const auto actions = parseCommand("file '/tmp/a b' --unescaped --chunk 4096 --name x.bin --no-start "
                                      "--first-chunk 2 --kill-after-chunks 3",
                                      {});
    const auto& options = std::get<SendFile>(actions.at(0)).options;
    EXPECT_EQ(options.path, "/tmp/a b");
    EXPECT_EQ(options.name, "x.bin");
    EXPECT_EQ(options.chunkSize, 4096u);
    EXPECT_FALSE(options.escaped);
    EXPECT_FALSE(options.withStart);
    EXPECT_EQ(options.firstChunk, 2u);
    EXPECT_EQ(options.cutAfterChunks, 3u);
}

TEST(Commands, AnExpectationMayNameItsTime) {
    const auto withTime = std::get<Expect>(parseCommand(R"(expect {"action": "reply"} 12)", {}).at(0));
    EXPECT_EQ(withTime.pattern, R"({"action":"reply"})");
    EXPECT_EQ(withTime.within, 12);
    EXPECT_EQ(std::get<Expect>(parseCommand(R"(expect {"a":1})", {}).at(0)).within, 5);
}

TEST(Commands, AnEmptyLineDoesNothing) {
    EXPECT_TRUE(parseCommand("   ", {}).empty());
}

class BadCommand : public testing::TestWithParam<const char*> {};

TEST_P(BadCommand, IsRefused) {
    EXPECT_THROW(parseCommand(GetParam(), {}), std::invalid_argument);
}

INSTANTIATE_TEST_SUITE_P(Each, BadCommand,
                         testing::Values("dance", "battery", "battery full", "battery 15.5",
                                         "battery 15 plugged", "battery 1 charging 2", "call_update",
                                         "sleep soon", "move 1", "file", "file x --fast", "file x --chunk 0",
                                         "file x --chunk -1", "expect", "expect reply", "expect {\"a\":1} soon",
                                         "battery_fall 5 10", "battery_fall 10 5 0", "sms_history 3",
                                         "clipboard \"open"));

TEST(Commands, ARefusalShowsHowTheCommandIsWritten) {
    EXPECT_THAT([] { parseCommand("battery full", {}); },
                ThrowsMessage<std::invalid_argument>(HasSubstr("battery LEVEL [charging]")));
}

TEST(Commands, HelpNamesEveryMessageOfAPhone) {
    for (const char* name :
         {"connected", "device_info", "sim_info", "notification", "sms_history", "call_history",
          "incoming_call", "call_update", "call_ended", "clipboard", "battery", "remote", "file"}) {
        EXPECT_THAT(commandHelp(), HasSubstr(std::string("  ") + name + " "));
    }
}

} // namespace
} // namespace velloway::phone
