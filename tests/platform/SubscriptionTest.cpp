#include "platform/Subscription.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace velloway::test {
namespace {

/// Notes its name when it ends.
Subscription noting(std::string& ended, std::string name) {
    return Subscription([&ended, name = std::move(name)] { ended += name; });
}

TEST(Subscription, EndsOnce) {
    std::string ended;
    {
        Subscription one = noting(ended, "a");
        EXPECT_EQ(ended, "");
        one.reset();
        EXPECT_EQ(ended, "a");
        one.reset();
    }
    EXPECT_EQ(ended, "a");
    { const Subscription two = noting(ended, "b"); }
    EXPECT_EQ(ended, "ab");
}

TEST(Subscription, IsHandedOnWithoutAnEnd) {
    std::string ended;
    Subscription one = noting(ended, "a");
    {
        const Subscription two = std::move(one);
        EXPECT_EQ(ended, "");
    }
    EXPECT_EQ(ended, "a");
}

TEST(Subscription, EndsWhenAnotherTakesItsPlace) {
    std::string ended;
    Subscription place = noting(ended, "a");
    place = noting(ended, "b");
    EXPECT_EQ(ended, "a");
    Subscription& same = place;
    place = std::move(same);
    EXPECT_EQ(ended, "a") << "it takes its own place";
    place = Subscription();
    EXPECT_EQ(ended, "ab");
}

} // namespace
} // namespace velloway::test
