#include "text/ByteCount.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace velloway::test {

namespace {

TEST(ByteCount, WritesSizesInDecimalUnits) {
    const std::vector<std::pair<std::int64_t, const char*>> cases{
        {0, "Zero KB"},
        {1, "1 byte"},
        {12, "12 bytes"},
        {999, "999 bytes"},
        {1'000, "1 KB"},
        {1'499, "1 KB"},
        {1'500, "2 KB"},
        {1'501, "2 KB"},
        {2'500, "2 KB"},
        {3'500, "4 KB"},
        {999'499, "999 KB"},
        {999'600, "1 MB"},
        {1'000'000, "1 MB"},
        {1'234'567, "1.2 MB"},
        {12'050'001, "12.1 MB"},
        {999'960'000, "1 GB"},
        {1'000'000'000, "1 GB"},
        {1'500'000'000, "1.5 GB"},
        {1'234'567'890, "1.23 GB"},
        {1'204'000'000, "1.2 GB"},
        {1'054'000'000, "1.05 GB"},
        {5'000'000'000'000, "5 TB"},
        {-12, "-12 bytes"},
        {-1'234'567, "-1.2 MB"},
        {1'500'000'000'000'000, "1.5 PB"},
        {std::numeric_limits<std::int64_t>::max(), "9.22 EB"},
        {std::numeric_limits<std::int64_t>::min(), "-9.22 EB"},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(byteCountText(bytes, "en_GB"), text) << bytes;
    }
}

TEST(ByteCount, UsesTheDecimalSeparatorOfTheLocale) {
    EXPECT_EQ(byteCountText(1'234'567, "de_DE"), "1,2 MB");
    EXPECT_EQ(byteCountText(1'234'567, "no such locale"), "1.2 MB");
}

} // namespace

} // namespace velloway::test
