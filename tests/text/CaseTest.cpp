#include "text/Case.h"

#include <gtest/gtest.h>

namespace velloway::test {

namespace {

TEST(Case, MapsWholeTexts) {
    EXPECT_EQ(upperCased("ringing 12!"), "RINGING 12!");
    EXPECT_EQ(lowerCased("Bank ABC-12"), "bank abc-12");
    EXPECT_EQ(upperCased("éàя"), "ÉÀЯ");
    EXPECT_EQ(lowerCased("ÉÀЯ"), "éàя");
    EXPECT_EQ(upperCased(""), "");
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

} // namespace

} // namespace velloway::test
