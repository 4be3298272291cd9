#include "text/Trim.h"

#include <gtest/gtest.h>

namespace velloway::test {

namespace {

TEST(Trim, CutsBlanksAndTabsFromBothEndsOnly) {
    EXPECT_EQ(trimBlanks(" \t a b\t "), "a b");
    EXPECT_EQ(trimBlanks("\xC2\xA0\xE3\x80\x80x\xE2\x80\x89"), "x");
    EXPECT_EQ(trimBlanks(" \t "), "");
    EXPECT_EQ(trimBlanks(""), "");
}

TEST(Trim, LeavesLineBreaksUnlessAsked) {
    EXPECT_EQ(trimBlanks(" \n a\r\n "), "\n a\r\n");
    EXPECT_EQ(trimBlanks("\xE2\x80\xA8x"), "\xE2\x80\xA8x");
    EXPECT_EQ(trimBlanksAndLineEnds(" \n a\r\n\v\f "), "a");
    EXPECT_EQ(trimBlanksAndLineEnds("\xC2\x85\xE2\x80\xA8x\xE2\x80\xA9\t"), "x");
}

TEST(Trim, StopsAtOtherInvisibleCharacters) {
    EXPECT_EQ(trimBlanksAndLineEnds("\x01x\x7F"), "\x01x\x7F");
    EXPECT_EQ(trimBlanksAndLineEnds("\xE2\x80\x8Dx"), "\xE2\x80\x8Dx");
}

TEST(Trim, StopsAtBytesThatAreNoUtf8) {
    EXPECT_EQ(trimBlanksAndLineEnds(" \xFF \xE2\x80 "), "\xFF \xE2\x80");
    EXPECT_EQ(trimBlanksAndLineEnds(" \x80\x80\x80\x80\x80 "), "\x80\x80\x80\x80\x80");
    EXPECT_EQ(trimBlanksAndLineEnds("x\xC2\xA0\xA0"), "x\xC2\xA0\xA0");
}

} // namespace

} // namespace velloway::test
