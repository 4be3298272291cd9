#include "text/Graphemes.h"

#include <gtest/gtest.h>

#include <string>

namespace velloway::test {

namespace {

constexpr std::string_view family = "👩‍👩‍👧‍👦";
constexpr std::string_view accented = "e\xCC\x81";
constexpr std::string_view flag = "🇬🇧";

TEST(Graphemes, CountsWhatUsersSeeAsOneCharacter) {
    EXPECT_EQ(graphemes("").size(), 0U);
    EXPECT_EQ(graphemes("abc").size(), 3U);
    EXPECT_EQ(graphemes("a\nb").size(), 3U);
    EXPECT_EQ(graphemes("a\r\nb").size(), 3U);
    EXPECT_EQ(graphemes(family).size(), 1U);
    EXPECT_EQ(graphemes(std::string(accented) + std::string(flag) + "x").size(), 3U);
}

TEST(Graphemes, GivesTheFirstOne) {
    EXPECT_EQ(firstGrapheme(""), "");
    EXPECT_EQ(firstGrapheme("anna"), "a");
    EXPECT_EQ(firstGrapheme(std::string(accented) + "x"), accented);
    EXPECT_EQ(firstGrapheme(family), family);
    EXPECT_EQ(firstGrapheme("\r\nx"), "\r\n");
}

TEST(Graphemes, SplitsAText) {
    const std::string text = "a" + std::string(flag) + std::string(accented);
    EXPECT_EQ(graphemes(text), (std::vector<std::string_view>{"a", flag, accented}));
    EXPECT_TRUE(graphemes("").empty());
}

TEST(Graphemes, RemovesTheLastOne) {
    EXPECT_EQ(withoutLastGrapheme(""), "");
    EXPECT_EQ(withoutLastGrapheme("1"), "");
    EXPECT_EQ(withoutLastGrapheme("123"), "12");
    EXPECT_EQ(withoutLastGrapheme("1" + std::string(family)), "1");
    EXPECT_EQ(withoutLastGrapheme("1" + std::string(accented)), "1");
}

TEST(Graphemes, SurvivesBytesThatAreNoUtf8) {
    for (const std::string_view broken :
         {"\xFF", "a\xE2\x82", "\x80\x80\x80", "\xF0\x9F\x98", "\xED\xA0\x80z"}) {
        const auto pieces = graphemes(broken);
        std::string joined;
        for (const auto piece : pieces) {
            joined += piece;
        }
        EXPECT_EQ(joined, broken);
        EXPECT_EQ(firstGrapheme(broken), pieces.front());
        EXPECT_EQ(withoutLastGrapheme(broken).size(), broken.size() - pieces.back().size());
    }
}

} // namespace

} // namespace velloway::test
