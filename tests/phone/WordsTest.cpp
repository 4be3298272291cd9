#include "phone/Words.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace velloway::phone {
namespace {

using testing::ElementsAre;

std::vector<std::string> textsOf(std::string_view line) {
    std::vector<std::string> texts;
    for (const Word& word : splitWords(line)) {
        texts.push_back(word.text);
    }
    return texts;
}

TEST(Words, StandBetweenBlanks) {
    EXPECT_THAT(textsOf("  battery 20\tcharging \r\n"), ElementsAre("battery", "20", "charging"));
    EXPECT_TRUE(textsOf(" \t ").empty());
}

TEST(Words, AreHeldTogetherByQuotes) {
    EXPECT_THAT(textsOf(R"(notification Chat "Ada \"W\"" 'it is "late"')"),
                ElementsAre("notification", "Chat", R"(Ada "W")", R"(it is "late")"));
    EXPECT_THAT(textsOf(R"(clipboard "one\ntwo\tthree\\" '')"),
                ElementsAre("clipboard", "one\ntwo\tthree\\", ""));
    EXPECT_THAT(textsOf(R"(na"m e"s)"), ElementsAre("nam es"));
}

TEST(Words, ThatOpenAQuoteAndDoNotCloseItAreRefused) {
    EXPECT_THROW(splitWords("clipboard \"half"), std::invalid_argument);
    EXPECT_THROW(splitWords(R"(clipboard "half\")"), std::invalid_argument);
    EXPECT_THROW(splitWords("clipboard it's"), std::invalid_argument);
}

TEST(Words, KnowWhereTheyBegin) {
    const auto words = splitWords("raw  {\"a\": 1}");
    ASSERT_EQ(words.size(), 3u);
    EXPECT_EQ(words[1].begin, 5u);
}

TEST(CommandLists, AreSplitAtSemicolonsAndLineEnds) {
    EXPECT_THAT(splitCommands("hello; battery 5 ;\n\nsleep 1;"),
                ElementsAre("hello", " battery 5 ", "sleep 1"));
}

TEST(CommandLists, AreNotSplitInQuotesOrInJson) {
    EXPECT_THAT(splitCommands(R"(clipboard "a;b\";c"; raw {"x":[1;2]} ; type 'a;b')"),
                ElementsAre(R"(clipboard "a;b\";c")", R"( raw {"x":[1;2]} )", " type 'a;b'"));
}

} // namespace
} // namespace velloway::phone
