#include "text/Utf8.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include <utility>
#include <vector>

namespace velloway::test {

namespace {

TEST(Utf8, IsKnownFromOtherBytes) {
    for (const char* text : {"", "plain", "\u00E9\u4E16\U0001F600", "\xEF\xBB\xBFmark"}) {
        EXPECT_TRUE(isUtf8(text)) << text;
    }
    for (const char* bytes : {"\x80", "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xFFz"}) {
        EXPECT_FALSE(isUtf8(bytes));
    }
}

TEST(Utf8, IsMadeOfOtherBytesAndElseLeftAsItIs) {
    const std::vector<std::pair<const char*, const char*>> cases{{"", ""},
                                                                 {"plain", "plain"},
                                                                 {"\u00E9\U0001F600", "\u00E9\U0001F600"},
                                                                 {"\xEF\xBB\xBFmark", "\xEF\xBB\xBFmark"},
                                                                 {"a\xFFz", "a\uFFFDz"},
                                                                 {"\xE9t\xE9", "\uFFFDt\uFFFD"},
                                                                 {"a\xC3", "a\uFFFD"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(repairedUtf8(bytes), text);
    }
}

TEST(Utf8, HasAHeadThatSplitsNoCharacter) {
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z"; // of 1, 2, 3, 4 and 1 bytes
    const std::size_t lengths[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 11, 11, 11};
    for (std::size_t bytes = 0; bytes < std::size(lengths); ++bytes) {
        EXPECT_EQ(head(text, bytes), text.substr(0, lengths[bytes])) << bytes;
    }
    EXPECT_EQ(head("", 0), "");
    EXPECT_EQ(head("\x80\x80\x80", 2), "") << "bytes that begin no character";
    EXPECT_EQ(head(std::string_view("ab\x80").substr(0, 2), 2), "ab")
        << "what lies behind a text is not looked at";
}

TEST(Utf8, HasATailThatSplitsNoCharacter) {
    EXPECT_EQ(tail("abc", 5), "abc");
    EXPECT_EQ(tail("abc", 3), "abc");
    EXPECT_EQ(tail("abc", 2), "bc");
    EXPECT_EQ(tail("abc", 0), "");
    EXPECT_EQ(tail("", 2), "");
    EXPECT_EQ(tail("a\u00e9", 2), "\u00e9");
    EXPECT_EQ(tail("a\u00e9", 1), "");
    EXPECT_EQ(tail("x\U0001F6B2y", 4), "y");
    EXPECT_EQ(tail("x\U0001F6B2y", 5), "\U0001F6B2y");
}

} // namespace

} // namespace velloway::test
