#include "text/Digits.h"

#include <gtest/gtest.h>

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
