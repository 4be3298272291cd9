#include "phone/Show.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::phone {
namespace {

TEST(AShownMessage, IsOneLineWithTheActionFirst) {
    EXPECT_EQ(pretty(R"({"key":"k","action":"reply","message":"a\nb"})"), R"(reply  key="k"  message="a\nb")");
    EXPECT_EQ(pretty(R"({"app":"Chat"})"), R"(app="Chat")");
}

TEST(AShownMessage, CutsLongTextsAndTellsHowLongTheyWere) {
    const std::string line = pretty(R"({"action":"file_chunk","fileData":")" + std::string(1000, 'A') + "\"}");
    EXPECT_THAT(line, testing::HasSubstr("(1000 bytes)"));
    EXPECT_LT(line.size(), 120u);
}

TEST(AShownMessage, WritesNumbersAsPeopleDo) {
    EXPECT_EQ(pretty(R"({"dx":1.2E1,"dy":-5E-1,"n":7})"), "dx=12  dy=-0.5  n=7");
}

TEST(AShownMessage, CountsLongLists) {
    EXPECT_EQ(pretty(R"({"action":"sms_history","messages":[{"body":")" + std::string(200, 'x') + "\"},{}]}"),
              "sms_history  messages=[2 entries]");
}

TEST(AShownMessage, SaysSoWhenItIsNoJson) {
    EXPECT_EQ(pretty("{\"a\":"), "no JSON object: {\"a\":");
}

TEST(AKeptMessage, KeepsItsMembersWithLongTextsCutBetweenCharacters) {
    EXPECT_EQ(shortened(R"({"a":"x","b":"éééééééé"})", 5), R"({"a":"x","b":"éé…"})");
    EXPECT_EQ(shortened("{}", 5), "{}");
}

} // namespace
} // namespace velloway::phone
