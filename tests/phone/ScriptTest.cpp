#include "phone/Script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace velloway::phone {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(Script, ReadsTimedLinesAndPassesOverRemarks) {
    const auto steps = parseScript("# a remark\n"
                                   "\n"
                                   "{\"at\":1.5,\"send\":{\"action\":\"call_ended\"}}\r\n"
                                   "{\"after\":0.5,\"do\":\"battery 5\"}\n"
                                   "{\"expect\":{\"action\":\"reply\"},\"within\":7}",
                                   {});
    ASSERT_EQ(steps.size(), 3u);
    EXPECT_EQ(steps[0].at, 1.5);
    EXPECT_EQ(std::get<SendText>(steps[0].actions.at(0)).text, R"({"action":"call_ended"})");
    EXPECT_EQ(steps[1].after, 0.5);
    EXPECT_EQ(std::get<SendText>(steps[1].actions.at(0)).text,
              R"({"action":"battery_status","level":5,"isCharging":false})");
    const auto& expect = std::get<Expect>(steps[2].actions.at(0));
    EXPECT_EQ(expect.pattern, R"({"action":"reply"})");
    EXPECT_EQ(expect.within, 7);
    EXPECT_FALSE(steps[2].at || steps[2].after);
}

class BadScript : public testing::TestWithParam<const char*> {};

TEST_P(BadScript, IsRefusedWithTheNumberOfTheLine) {
    const std::string text = std::string("# first\n") + GetParam();
    EXPECT_THAT([&] { parseScript(text, {}); }, ThrowsMessage<std::invalid_argument>(HasSubstr("line 2: ")));
}

INSTANTIATE_TEST_SUITE_P(Each, BadScript,
                         testing::Values("send", "[]", "{}", R"({"send":{},"do":"quit"})", R"({"do":"dance"})",
                                         R"({"do":5})", R"({"at":-1,"do":"quit"})", R"({"at":"1","do":"quit"})",
                                         R"({"at":1,"after":1,"do":"quit"})", R"({"do":"quit","within":5})",
                                         R"({"do":"quit","when":5})"));

struct Match {
    const char* pattern;
    const char* message;
    bool fits;
};

class Matching : public testing::TestWithParam<Match> {};

TEST_P(Matching, ComparesWhatThePatternNames) {
    EXPECT_EQ(matches(GetParam().pattern, GetParam().message), GetParam().fits);
}

INSTANTIATE_TEST_SUITE_P(
    Each, Matching,
    testing::Values(Match{R"({"a":1})", R"({"b":2,"a":1})", true}, Match{R"({"a":1})", R"({"a":2})", false},
                    Match{R"({"a":1})", R"({"b":1})", false}, Match{R"({"a":"1"})", R"({"a":1})", false},
                    Match{R"({"a":"*"})", R"({"a":[1]})", true}, Match{R"({"a":"*"})", R"({"b":1})", false},
                    Match{R"({"a":{"b":true}})", R"({"a":{"b":true,"c":0}})", true},
                    Match{R"({"a":{"b":true}})", R"({"a":{"b":false}})", false},
                    Match{R"({"a":[1,"*"]})", R"({"a":[1,2]})", true},
                    Match{R"({"a":[1]})", R"({"a":[1,2]})", false},
                    Match{R"({"a":"x/y"})", R"({"a":"x\/y"})", true}, Match{"{}", "no json", false},
                    Match{"{}", "[]", false}, Match{"{}", "{}", true}));

} // namespace
} // namespace velloway::phone
