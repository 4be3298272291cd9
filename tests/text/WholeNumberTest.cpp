#include "text/WholeNumber.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

namespace {

constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
constexpr auto highest = std::numeric_limits<std::int64_t>::max();

TEST(WholeNumber, IsWrittenInTheDigitsOfTheLocaleWithoutGrouping) {
    EXPECT_EQ(wholeNumberText(0, "en_GB"), "0");
    EXPECT_EQ(wholeNumberText(1'234'567, "en_GB"), "1234567");
    EXPECT_EQ(wholeNumberText(-65'535, "de_DE"), "-65535");
    EXPECT_EQ(wholeNumberText(8'765, "ar_EG"), "\u0668\u0667\u0666\u0665");
    EXPECT_EQ(wholeNumberText(lowest, "en_GB"), "-9223372036854775808");
    EXPECT_EQ(wholeNumberText(highest, "no such locale"), "9223372036854775807");
}

TEST(WholeNumber, IsReadFromTheDigitsOfAnyScriptWithBlanksAround) {
    const std::vector<std::pair<const char*, std::int64_t>> cases{
        {"0", 0},
        {"8765", 8'765},
        {"00080", 80},
        {"-5", -5},
        {" \t8765\n", 8'765},
        {"\u0668\u0667\u0666\u0665", 8'765},
        {"9223372036854775807", highest},
        {"-9223372036854775808", lowest},
    };
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(parseWholeNumber(text, "en_GB"), number) << text;
    }
}

TEST(WholeNumber, IsNotReadFromAnythingElse) {
    for (const char* text : {"", "  ", "a", "12a", "a12", "1 2", "1.5", "1,234", "1e3", "-", "--1", "12 ports",
                             "9223372036854775808", "-9223372036854775809"}) {
        EXPECT_EQ(parseWholeNumber(text, "en_GB"), std::nullopt) << text;
    }
    EXPECT_EQ(parseWholeNumber("8.765", "de_DE"), std::nullopt);
}

TEST(WholeNumber, IsNotLookedForInAVeryLongText) {
    EXPECT_EQ(parseWholeNumber(std::string(99, '0') + "7", "en_GB"), 7);
    EXPECT_EQ(parseWholeNumber(std::string(100, '0') + "7", "en_GB"), std::nullopt);
}

} // namespace

} // namespace velloway::test
