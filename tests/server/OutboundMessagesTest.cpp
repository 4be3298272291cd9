#include "server/OutboundMessages.h"

#include "json/JsonReader.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace velloway::test {

namespace {

TEST(OutboundMessages, HaveTheirFixedTexts) {
    EXPECT_EQ(outbound::connectedFallback(), R"({"action":"connected"})");
    EXPECT_EQ(outbound::findDevice(), R"({"action":"find_device"})");
    EXPECT_EQ(outbound::getSmsHistory(), R"({"action":"get_sms_history"})");
    EXPECT_EQ(outbound::getCallHistory(), R"({"action":"get_call_history"})");
    EXPECT_EQ(outbound::answerCall(), R"({"action":"answer_call"})");
    EXPECT_EQ(outbound::hangupCall(), R"({"action":"hangup_call"})");
}

TEST(OutboundMessages, WriteBooleansAsBareWords) {
    EXPECT_EQ(outbound::toggleSpeaker(true), R"({"action":"toggle_speaker","enabled":true})");
    EXPECT_EQ(outbound::toggleSpeaker(false), R"({"action":"toggle_speaker","enabled":false})");
    EXPECT_EQ(outbound::toggleMute(true), R"({"action":"toggle_mute","enabled":true})");
    EXPECT_EQ(outbound::toggleMute(false), R"({"action":"toggle_mute","enabled":false})");
}

TEST(OutboundMessages, CarryOneText) {
    EXPECT_EQ(outbound::connected("Anna's Desk"), R"({"action":"connected","deviceName":"Anna's Desk"})");
    EXPECT_EQ(outbound::mediaCommand("play_pause"), R"({"action":"media_command","command":"play_pause"})");
    EXPECT_EQ(outbound::navCommand("home"), R"({"action":"nav_command","command":"home"})");
    EXPECT_EQ(outbound::clipboard(""), R"({"action":"clipboard","text":""})");
}

TEST(OutboundMessages, EscapeTheClipboardASlashIncluded) {
    const std::string text = "say \"hi\"\\\r\nhttp://x/\t\x01 é😀";
    const auto message = outbound::clipboard(text);
    EXPECT_EQ(message, "{\"action\":\"clipboard\",\"text\":"
                       "\"say \\\"hi\\\"\\\\\\r\\nhttp:\\/\\/x\\/\\t\\u0001 é😀\"}");
    JsonReader reader;
    std::string error;
    const auto root = reader.parse(*message, 0, error);
    ASSERT_TRUE(root) << error;
    EXPECT_EQ(root->member("text")->text(), text);
}

TEST(OutboundMessages, PutACalledNumberInAsItStands) {
    EXPECT_EQ(outbound::makeCall("+44 7700/1", 1),
              R"({"action":"make_call","number":"+44 7700/1","simSlot":1})");
    const std::string broken = outbound::makeCall("5\"5\\", -2);
    EXPECT_EQ(broken, R"({"action":"make_call","number":"5"5\","simSlot":-2})");
    JsonReader reader;
    std::string error;
    EXPECT_FALSE(reader.parse(broken, 0, error));
}

TEST(OutboundMessages, WriteARepliesKeyAndText) {
    EXPECT_EQ(outbound::reply({.key = "0|chat/1", .message = "on \"my\" way\n"}),
              R"({"action":"reply","key":"0|chat\/1","message":"on \"my\" way\n"})");
}

TEST(OutboundMessages, WriteTheSimSlotOfAnSmsAsAnInteger) {
    EXPECT_EQ(outbound::sendSms({.number = "5551", .body = "a/b", .simSlot = 0}),
              R"({"action":"send_sms","number":"5551","body":"a\/b","simSlot":0})");
    EXPECT_EQ(outbound::sendSms({.number = "\"5\"", .body = "say \"hi\"\n\\", .simSlot = -1}),
              R"({"action":"send_sms","number":"\"5\"","body":"say \"hi\"\n\\","simSlot":-1})");
}

TEST(OutboundMessages, AreAbsentWhenATextIsNotUtf8) {
    constexpr std::string_view bad = "\xFF";
    EXPECT_FALSE(outbound::connected(bad));
    EXPECT_FALSE(outbound::mediaCommand(bad));
    EXPECT_FALSE(outbound::navCommand(bad));
    EXPECT_FALSE(outbound::clipboard(bad));
    EXPECT_FALSE(outbound::reply({.key = "k", .message = std::string(bad)}));
    EXPECT_FALSE(outbound::reply({.key = std::string(bad), .message = "m"}));
    EXPECT_FALSE(outbound::sendSms({.number = std::string(bad), .body = "b"}));
    EXPECT_FALSE(outbound::sendSms({.number = "1", .body = std::string(bad)}));
}

} // namespace

} // namespace velloway::test
