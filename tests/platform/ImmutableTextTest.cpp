#include "platform/ImmutableText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace velloway::test {
namespace {

TEST(ImmutableText, HoldsTheTextItWasMadeFrom) {
    const std::string text = " with blanks\n";
    EXPECT_EQ(ImmutableText(text).string(), text);
    EXPECT_EQ(ImmutableText(std::string_view(text)).string(), text);
    EXPECT_EQ(ImmutableText(" with blanks\n").string(), text);
    EXPECT_EQ(std::string_view(ImmutableText(text)), text);
    EXPECT_EQ(ImmutableText().string(), "");
}

TEST(ImmutableText, IsEmptyOnlyWithoutAnyByte) {
    EXPECT_TRUE(ImmutableText().empty());
    EXPECT_TRUE(ImmutableText("").empty());
    EXPECT_FALSE(ImmutableText(" ").empty());
    EXPECT_FALSE(ImmutableText(std::string(1, '\0')).empty());
}

TEST(ImmutableText, IsEqualByItsBytesAndSharedByItsCopies) {
    const ImmutableText one("text");
    const ImmutableText copy = one;
    EXPECT_EQ(&copy.string(), &one.string());
    EXPECT_TRUE(copy == one);
    EXPECT_TRUE(ImmutableText("text") == one);
    EXPECT_FALSE(ImmutableText("other") == one);
}

} // namespace
} // namespace velloway::test
