#include "text/Digits.h"
#include "text/CodePoints.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace velloway::test {

namespace {

TEST(Digits, DropsEverythingButDecimalDigits) {
    EXPECT_EQ(digitsOnly("+44 7700-900123"), "447700900123");
    EXPECT_EQ(digitsOnly("+1 (555) 010-1234"), "15550101234");
    EXPECT_EQ(digitsOnly("Bank"), "");
    EXPECT_EQ(digitsOnly(""), "");
}

TEST(Digits, KeepsTheDigitsOfOtherScriptsAsTheyAre) {
    EXPECT_EQ(digitsOnly("a٠١b"), "٠١");
    EXPECT_EQ(digitsOnly("𝟏-２"), "𝟏２");
}

TEST(Digits, TheLastOnesAreTheEndOfThemAll) {
    const std::string_view characters[] = {"7",          "0",      "9",      "/",      ":",
                                           "a",          "\u00ff", "\u0301", "\u0660", "\u0669",
                                           "\u06f0",     "\u0966", "\u0800", "\uff19", "\U0001d7cf",
                                           "\U0001f6b2", "\x7f",   "\x80",   "\xd9",   "\xff"};
    std::mt19937 engine(1);
    for (int round = 0; round < 20'000; ++round) {
        std::string text;
        const std::size_t length = engine() % 200;
        // A few kinds at a time, so that there are long stretches without a digit.
        const std::size_t kinds = 1 + engine() % 4;
        const std::size_t from = engine() % std::size(characters);
        for (std::size_t i = 0; i < length; ++i) {
            text += characters[(from + engine() % kinds) % std::size(characters)];
        }
        const std::string digits = digitsOnly(text);
        std::string_view rest = digits;
        for (int i = 0; i < 3 && !rest.empty(); ++i) {
            takeLastCodePoint(rest);
        }
        EXPECT_EQ(lastDigits(text, 3), digits.substr(rest.size())) << testing::PrintToString(text);
    }
    EXPECT_EQ(lastDigits("+44 7700-900123", 10), "7700900123");
    EXPECT_EQ(lastDigits("1\u06602", 2), "\u06602");
    EXPECT_EQ(lastDigits("", 10), "");
}

TEST(Digits, DropsNumbersThatAreNoDecimalDigits) {
    EXPECT_EQ(digitsOnly("½²Ⅷ①"), "");
}

TEST(Digits, DropsBytesThatAreNoUtf8) {
    EXPECT_EQ(digitsOnly("1\xFF\x32\xE2\x82"), "12");
}

TEST(Digits, TakesAnyKindOfNumberForANumber) {
    for (const char* number : {"7", "٣", "½", "Ⅷ", "①", "三", "²"}) {
        EXPECT_TRUE(isNumberCharacter(number)) << number;
    }
    for (const char* other : {"", "a", "+", " ", "é", "😀", "\xFF"}) {
        EXPECT_FALSE(isNumberCharacter(other)) << other;
    }
}

TEST(Digits, LetsTheFirstCodePointOfACharacterDecide) {
    EXPECT_TRUE(isNumberCharacter("1\xEF\xB8\x8F\xE2\x83\xA3"));
}

TEST(Digits, KnowsADecimalDigitByItsCodePoint) {
    for (const char32_t digit : {U'0', U'9', U'\u0660', U'\u0669', U'\u06f0', U'\u0966', U'\uff19'}) {
        EXPECT_TRUE(isDecimalDigit(digit)) << static_cast<unsigned>(digit);
    }
    for (const char32_t other : {U'/', U':', U'a', U'\u00b2', U'\u00bd', U'\u0301', U'\u2167', U'\u066a'}) {
        EXPECT_FALSE(isDecimalDigit(other)) << static_cast<unsigned>(other);
    }
}

} // namespace

} // namespace velloway::test
