#include "text/CodePoints.h"

#include <gtest/gtest.h>

namespace velloway::test {

namespace {

TEST(CodePoints, OfEveryLengthBecomeUtf16) {
    struct {
        std::string_view utf8;
        std::u16string units;
    } const cases[] = {
        {"", u""},
        {std::string_view("a\0b", 3), std::u16string(u"a\0b", 3)},
        {"\x7F\u0080\u07FF\u0800\uFFFF", u"\u007F\u0080\u07FF\u0800\uFFFF"},
        {"\U0001F600", {0xD83D, 0xDE00}},
        {"\U00010000\U0010FFFF", {0xD800, 0xDC00, 0xDBFF, 0xDFFF}},
        {"\uD7FF\uE000", {0xD7FF, 0xE000}},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(utf16From(each.utf8), each.units);
    }
}

TEST(CodePoints, ReplaceBytesThatAreNotUtf8) {
    struct {
        std::string_view bytes;
        std::u16string units;
    } const cases[] = {
        {"\x80", u"\uFFFD"},
        {"a\xC3", u"a\uFFFD"},
        {"\xF0\x9F\x98", u"\uFFFD\uFFFD\uFFFD"},
        {"\xC3(", u"\uFFFD("},
        {"\xC0\xAF", u"\uFFFD\uFFFD"},
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xFF\xFE\xF8z", u"\uFFFD\uFFFD\uFFFDz"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(utf16From(each.bytes), each.units);
    }
}

TEST(CodePoints, AreTakenOneByOne) {
    std::string_view text = "\u00E9\U0001F600z";
    EXPECT_EQ(takeCodePoint(text), U'\u00E9');
    EXPECT_EQ(takeCodePoint(text), U'\U0001F600');
    EXPECT_EQ(text, "z");
}

TEST(CodePoints, AreTakenFromTheEndOneByOne) {
    std::string_view text("\u00E9\U0001F600\0z", 8);
    EXPECT_EQ(takeLastCodePoint(text), U'z');
    EXPECT_EQ(takeLastCodePoint(text), U'\0');
    EXPECT_EQ(takeLastCodePoint(text), U'\U0001F600');
    EXPECT_EQ(text, "\u00E9");
    EXPECT_EQ(takeLastCodePoint(text), U'\u00E9');
    EXPECT_EQ(text, "");
}

TEST(CodePoints, OfBytesThatAreNotUtf8AreTakenFromTheEndByteByByte) {
    std::string_view text("ab\x80\xF0\x9F");
    for (const char* rest : {"ab\x80\xF0", "ab\x80", "ab"}) {
        EXPECT_EQ(takeLastCodePoint(text), U'\uFFFD');
        EXPECT_EQ(text, rest);
    }
}

} // namespace

} // namespace velloway::test
