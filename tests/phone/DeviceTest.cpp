#include "phone/device/DeviceHandset.h"
#include "phone/device/FindTone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include <cstdlib>
#include <ctime>
#include <deque>
#include <map>

namespace velloway::phone::device {
namespace {

namespace json = boost::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// Answers at once what has been laid ready for a command; everything else succeeds and says nothing.
class FakeRunner : public CommandRunner {
public:
    void run(CommandLine line, std::function<void(CommandResult)> done) override {
        std::string text;
        for (const std::string& word : line.words) {
            text += (text.empty() ? "" : " ") + word;
        }
        ran.push_back(text);
        inputs[line.words[0]] = line.input;
        done(answers.count(line.words[0]) != 0 ? answers[line.words[0]] : CommandResult{});
    }
    void answer(const std::string& command, std::string output) { answers[command].output = std::move(output); }

    std::map<std::string, CommandResult> answers;
    std::vector<std::string> ran;
    std::map<std::string, std::string> inputs;
};

class Device : public testing::Test {
protected:
    Device() {
        for (const char* command :
             {"termux-sms-list", "termux-call-log", "termux-notification-list", "termux-contact-list"}) {
            runner.answer(command, "[]");
        }
        runner.answer("termux-battery-status", R"({"percentage":80,"status":"FULL"})");
        runner.answer("termux-wifi-connectioninfo", R"({"ssid":"<unknown ssid>"})");
        runner.answer("termux-telephony-deviceinfo", "{}");
        runner.answer("termux-volume", R"([{"stream":"ring","volume":1,"max_volume":7},
                                           {"stream":"music","volume":15,"max_volume":15}])");
    }

    void order(const char* message) { obey(handset, json::parse(message).get_object()); }
    /// Lets the time that has been asked for pass, once.
    void wait() {
        auto work = std::move(timers);
        timers.clear();
        for (const auto& each : work) {
            each();
        }
    }

    FakeRunner runner;
    std::vector<std::string> said;
    std::vector<std::string> notes;
    std::vector<std::function<void()>> timers;
    DeviceHandset handset{{[this](std::string message) { said.push_back(std::move(message)); },
                           [this](const std::string& line) { notes.push_back(line); },
                           [this](double, std::function<void()> work) {
                               timers.push_back(std::move(work));
                               return std::make_shared<int>();
                           }},
                          runner,
                          {.name = "Tab"}};
};

TEST(DeviceTimes, AreReadWithAndWithoutSeconds) {
    const auto whole = readTime("2024-05-01 18:30:07");
    ASSERT_TRUE(whole);
    EXPECT_EQ(*whole - *readTime("2024-05-01 18:30"), 7000);
    const std::time_t seconds = *whole / 1000;
    const std::tm parts = *std::localtime(&seconds);
    EXPECT_EQ(parts.tm_year, 124);
    EXPECT_EQ(parts.tm_hour, 18);
    for (const char* text : {"", "yesterday", "2024-05-01", "2024-05-01 18:30:07Z"}) {
        EXPECT_FALSE(readTime(text)) << text;
    }
}

TEST(DeviceNumbers, HoldNothingThatACommandCouldTakeForSomethingElse) {
    EXPECT_EQ(plainNumber("+49 (151) 555-10.00"), "+491515551000");
    EXPECT_EQ(plainNumber("*#06#"), "*#06#");
    for (const char* text : {"", "+", "Bank", "12,13", "-n 5 --es x", "5;reboot", "5\n6"}) {
        EXPECT_EQ(plainNumber(text), "") << text;
    }
}

TEST_F(Device, EachMessageOfTheComputerCallsItsCommand) {
    struct {
        const char* message;
        const char* command;
    } const orders[] = {
        {R"({"action":"clipboard","text":"a"})", "termux-clipboard-set"},
        {R"({"action":"send_sms","number":"+49 5","body":"hi","simSlot":1})", "termux-sms-send -n +495 -s 1"},
        {R"({"action":"make_call","number":"5551","simSlot":0})", "termux-telephony-call 5551"},
        {R"({"action":"media_command","command":"vol_down"})", "termux-volume music 14"},
        {R"({"action":"media_command","command":"play_pause"})", "termux-media-player play"},
        {R"({"action":"reply","key":"sms:+49 5/17","message":"yes"})", "termux-sms-send -n +495"},
        {R"({"action":"find_device"})", "termux-vibrate -f -d 5000"},
        {R"({"action":"get_sms_history"})", "termux-sms-list -t all -l 500"},
        {R"({"action":"get_call_history"})", "termux-call-log -l 500"},
    };
    for (const auto& each : orders) {
        runner.ran.clear();
        order(each.message);
        EXPECT_THAT(runner.ran, Contains(each.command)) << each.message;
    }
}

TEST_F(Device, WhatNoCommandDoesIsReportedOnce) {
    for (const char* message :
         {R"({"action":"answer_call"})", R"({"action":"hangup_call"})",
          R"({"action":"toggle_mute","enabled":true})", R"({"action":"toggle_speaker","enabled":true})",
          R"({"action":"nav_command","command":"home"})", R"({"action":"media_command","command":"next"})"}) {
        notes.clear();
        order(message);
        order(message);
        EXPECT_EQ(notes.size(), 1u) << message;
        EXPECT_THAT(runner.ran, IsEmpty()) << message;
    }
}

TEST_F(Device, TextThatIsNotANumberReachesNoCommand) {
    order(R"({"action":"make_call","number":"-h"})");
    order(R"({"action":"send_sms","number":"Bank","body":"x","simSlot":0})");
    EXPECT_THAT(runner.ran, IsEmpty());
    EXPECT_EQ(notes.size(), 2u);
}

TEST_F(Device, APhoneToBeFoundIsLoudAndBrightAndThenAsBefore) {
    runner.answer("termux-volume", R"([{"stream":"music","volume":3,"max_volume":15}])");
    order(R"({"action":"find_device"})");
    EXPECT_THAT(runner.ran, Contains("termux-volume music 15"));
    EXPECT_THAT(runner.ran, Contains("termux-torch on"));
    EXPECT_THAT(runner.ran, Contains(StartsWith("termux-media-player play /")));
    const std::size_t count = runner.ran.size();
    order(R"({"action":"find_device"})");
    EXPECT_EQ(runner.ran.size(), count);
    wait();
    EXPECT_THAT(runner.ran, Contains("termux-torch off"));
    EXPECT_THAT(runner.ran, Contains("termux-media-player stop"));
    EXPECT_EQ(runner.ran.back(), "termux-volume music 3");
}

TEST_F(Device, NothingIsAskedOfThePhoneWhileThereIsNoLink) {
    handset.linkIsUp();
    handset.linkIsDown();
    runner.ran.clear();
    said.clear();
    wait();
    wait();
    EXPECT_THAT(runner.ran, IsEmpty());
    EXPECT_THAT(said, IsEmpty());
}

TEST_F(Device, WhatComesWhileTheLinkIsDownIsShownAfterwards) {
    handset.linkIsUp();
    handset.linkIsDown();
    runner.answer(
        "termux-notification-list",
        R"([{"key":"k","packageName":"org.a.mail.android","title":"Ada","content":"hi","when":"2024-05-01 10:00:00"}])");
    wait();
    said.clear();
    handset.linkIsUp();
    wait();
    EXPECT_THAT(said, Contains(HasSubstr(R"("app":"Mail","title":"Ada","body":"hi")")));
}

TEST_F(Device, AnUnchangedBatteryIsReportedOncePerLink) {
    const auto reports = [&] {
        return std::count_if(said.begin(), said.end(),
                             [](const auto& each) { return each.find("battery") != each.npos; });
    };
    handset.linkIsUp();
    for (int round = 0; round < 14; ++round) {
        wait();
    }
    EXPECT_EQ(reports(), 1);
    EXPECT_THAT(said, Contains(HasSubstr(R"("level":80,"isCharging":true)")));
    handset.linkIsDown();
    handset.linkIsUp();
    wait();
    EXPECT_EQ(reports(), 2);
}

TEST_F(Device, MessagesOfOneSecondKeepApartAndTheirOrder) {
    runner.answer("termux-contact-list", R"([{"name":"Bruno","number":"0049 151-5552000"}])");
    runner.answer("termux-sms-list", R"([
        {"type":"inbox","sender":"Ada","address":"+49 1","received":"2024-05-01 10:00:00","body":"a","_id":1007},
        {"type":"sent","sender":"You","number":"+49 151 5552000","received":"2024-05-01 10:00:00","body":"b","_id":1008},
        {"type":"failed","address":"1","received":"2024-05-01 10:00:00","body":"c","_id":1009},
        {"type":"inbox","address":"1","received":"long ago","body":"d","_id":1010}])");
    handset.linkIsUp();
    said.clear();
    order(R"({"action":"get_sms_history"})");
    ASSERT_EQ(said.size(), 1u);
    const json::value log = json::parse(said[0]);
    const auto& list = log.at("messages").get_array();
    const std::int64_t date = *readTime("2024-05-01 10:00:00");
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].at("date").get_int64(), date + 7);
    EXPECT_EQ(list[0].at("type").get_int64(), 1);
    EXPECT_EQ(list[1].at("date").get_int64(), date + 8);
    EXPECT_EQ(list[1].at("type").get_int64(), 2);
    EXPECT_EQ(list[1].at("name").get_string(), "Bruno");
}

TEST_F(Device, ARefusedPollRestsButAQuestionOfTheComputerIsPut) {
    runner.answer("termux-sms-list", R"({"error":"Please grant"})");
    handset.linkIsUp();
    wait();
    wait();
    EXPECT_EQ(std::count(runner.ran.begin(), runner.ran.end(), "termux-sms-list -t all -l 20"), 1);
    runner.ran.clear();
    order(R"({"action":"get_sms_history"})");
    EXPECT_THAT(runner.ran, Contains("termux-sms-list -t all -l 500"));
    EXPECT_THAT(notes, ElementsAre("termux-sms-list was refused: Please grant"));
}

TEST_F(Device, AReceivedFileIsAnnouncedWithItsPathQuotedForAShell) {
    handset.fileIsReceived("/home/o'hara/a b.txt");
    EXPECT_THAT(runner.ran, Contains("termux-media-scan /home/o'hara/a b.txt"));
    EXPECT_THAT(runner.ran, Contains(HasSubstr(
                                R"(--action bash -l -c 'termux-share -a view '\''/home/o'\''\'\'''\''hara)")));
}

TEST(FindTone, IsAWholeRecording) {
    const std::string wav = findTone();
    EXPECT_EQ(wav.substr(0, 4), "RIFF");
    EXPECT_EQ(wav.size(), 44u + 16000 * 5 * 2);
    EXPECT_NE(wav.substr(44, 2000), std::string(2000, '\0'));
}

TEST(Limits, NameEachCommandThatIsMissing) {
    const auto lines = limits([](const std::string& command) { return command != "termux-torch"; }, {});
    EXPECT_THAT(lines, Contains("termux-torch is not installed: no light to find the phone by"));
    EXPECT_THAT(lines, Not(Contains(StartsWith("termux-vibrate"))));
    EXPECT_THAT(lines, Contains(HasSubstr("every 10 s; the battery and the call log every 60 s")));
    EXPECT_THAT(limits([](const std::string&) { return false; }, {}).back(),
                HasSubstr("pkg install termux-api"));
}

} // namespace
} // namespace velloway::phone::device
