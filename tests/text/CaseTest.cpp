#include "text/Case.h"

#include <gtest/gtest.h>
#include <unicode/unistr.h>

namespace velloway::test {

namespace {

TEST(Case, MapsWholeTexts) {
    EXPECT_EQ(upperCased("ringing 12!"), "RINGING 12!");
    EXPECT_EQ(lowerCased("Bank ABC-12"), "bank abc-12");
    EXPECT_EQ(upperCased("éàя"), "ÉÀЯ");
    EXPECT_EQ(lowerCased("ÉÀЯ"), "éàя");
    EXPECT_EQ(upperCased(""), "");
}

TEST(Case, MapsEveryAsciiLetterAndNothingElseOfAscii) {
    for (int value = 0; value < 0x80; ++value) {
        const char c = static_cast<char>(value);
        const bool isSmall = c >= 'a' && c < 'a' + 26;
        const bool isCapital = c >= 'A' && c < 'A' + 26;
        EXPECT_EQ(upperAscii(c), isSmall ? c - 32 : c) << value;
        EXPECT_EQ(lowerAscii(c), isCapital ? c + 32 : c) << value;
    }
    EXPECT_EQ(upperAscii('\xE9'), '\xE9');
    EXPECT_EQ(lowerAscii('\xC9'), '\xC9');
    EXPECT_EQ(upperCased("abcdefghijklmnopqrstuvwxyz"), "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    EXPECT_EQ(lowerCased("ABCDEFGHIJKLMNOPQRSTUVWXYZ"), "abcdefghijklmnopqrstuvwxyz");
}

TEST(Case, MayChangeTheLengthOfAText) {
    EXPECT_EQ(upperCased("ß"), "SS");
    EXPECT_EQ(upperCased("ﬁ"), "FI");
    EXPECT_EQ(lowerCased("İ"), "i̇");
}

TEST(Case, KnowsAsciiByItsHighestBit) {
    for (const std::string_view text : {"", "plain", "\x01\x7F"}) {
        EXPECT_TRUE(isAscii(text)) << text;
    }
    for (const std::string_view text : {"\x80", "a\x80", "\u00E9", "\xFF"}) {
        EXPECT_FALSE(isAscii(text));
    }
}

TEST(Case, EveryCharacterBecomesWhatTheFullMappingMakesOfIt) {
    for (char32_t c = 0x80; c < 0x110000; ++c) {
        if (c >= 0xD800 && c < 0xE000) {
            continue;
        }
        std::string text;
        icu::UnicodeString(static_cast<UChar32>(c)).toUTF8String(text);
        // The capital before it keeps the whole from being lower-case already.
        EXPECT_EQ("a " + lowerCased(text), lowerCased("A " + text)) << static_cast<unsigned>(c);
    }
}

TEST(Case, KnowsTheFinalSigma) {
    EXPECT_EQ(lowerCased("ΟΔΟΣ"), "οδος");
}

TEST(Case, SurvivesBytesThatAreNoUtf8) {
    EXPECT_EQ(upperCased("a\xFF"
                         "b")
                  .front(),
              'A');
    EXPECT_EQ(upperCased("a\xFF"
                         "b")
                  .back(),
              'B');
    EXPECT_EQ(lowerCased("\xE2\x82"
                         "A")
                  .back(),
              'a');
}

TEST(Case, MapsEveryAsciiCharacterAtEveryPlace) {
    for (std::size_t before = 0; before < 9; ++before) {
        for (int c = 0; c < 128; ++c) {
            const char character = static_cast<char>(c);
            const std::string text = std::string(before, '-') + character + "----------";
            std::string upper = text;
            std::string lower = text;
            upper[before] = upperAscii(character);
            lower[before] = lowerAscii(character);
            EXPECT_EQ(upperCased(text), upper) << c << " at " << before;
            EXPECT_EQ(lowerCased(text), lower) << c << " at " << before;
        }
    }
}

TEST(Case, FindsAByteBeyondAsciiAnywhere) {
    for (std::size_t length = 0; length < 20; ++length) {
        EXPECT_TRUE(isAscii(std::string(length, '\x7f')));
        for (std::size_t at = 0; at < length; ++at) {
            std::string text(length, 'a');
            text[at] = '\x80';
            EXPECT_FALSE(isAscii(text)) << at << " of " << length;
        }
    }
}

} // namespace

} // namespace velloway::test
