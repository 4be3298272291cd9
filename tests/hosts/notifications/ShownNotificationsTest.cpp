#include "hosts/linux/notifications/ShownNotifications.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {
namespace {

using Shown = ShownNotifications::Shown;

class ShownNotificationsTest : public testing::Test {
protected:
    void byService(const std::string& identifier, uint id, std::uint64_t turn = 0) {
        shown_.addFromService(identifier, {.serviceId = id, .content = {.title = identifier}, .turn = turn});
    }
    void onBanner(const std::string& identifier, std::uint64_t turn = 0) {
        shown_.addOnBanner(identifier, {.content = {.title = identifier}, .turn = turn});
    }
    std::string nameOf(uint id) const {
        const std::string* found = shown_.identifierOf(id);
        return found ? *found : "unknown";
    }

    ShownNotifications shown_;
};

TEST_F(ShownNotificationsTest, WhatTheServiceShowsIsFoundByIdentifierAndById) {
    EXPECT_EQ(shown_.find("a"), nullptr);
    byService("a", 7);
    ASSERT_NE(shown_.find("a"), nullptr);
    EXPECT_EQ(shown_.find("a")->serviceId, 7u);
    EXPECT_EQ(shown_.find("a")->content.title, "a");
    EXPECT_FALSE(shown_.find("a")->isOnBanner);
    EXPECT_EQ(nameOf(7), "a");
    EXPECT_EQ(nameOf(8), "unknown");
}

TEST_F(ShownNotificationsTest, AnotherIdForTheSameIdentifierReplacesTheFirst) {
    byService("a", 7);
    byService("a", 8);
    EXPECT_EQ(nameOf(7), "unknown");
    EXPECT_EQ(nameOf(8), "a");
    EXPECT_EQ(shown_.takeFromService("a"), 8u);
    EXPECT_EQ(nameOf(8), "unknown");
    EXPECT_EQ(shown_.find("a"), nullptr);
    EXPECT_EQ(shown_.takeFromService("a"), 0u);
}

TEST_F(ShownNotificationsTest, ABannerTakesThePlaceOfWhatTheServiceShows) {
    byService("a", 7);
    onBanner("a");
    EXPECT_EQ(nameOf(7), "unknown");
    EXPECT_EQ(shown_.find("a")->serviceId, 0u);
    EXPECT_TRUE(shown_.find("a")->isOnBanner);
    EXPECT_EQ(shown_.takeFromService("a"), 0u);
    EXPECT_NE(shown_.find("a"), nullptr);
    EXPECT_TRUE(shown_.takeFromBanner("a"));
    EXPECT_EQ(shown_.find("a"), nullptr);
    EXPECT_FALSE(shown_.takeFromBanner("a"));
}

TEST_F(ShownNotificationsTest, TakingABannerLeavesTheServiceAlone) {
    byService("a", 7);
    EXPECT_FALSE(shown_.takeFromBanner("a"));
    EXPECT_EQ(nameOf(7), "a");
    EXPECT_EQ(shown_.find("a")->serviceId, 7u);
}

TEST_F(ShownNotificationsTest, BannersComeInTheOrderOfHandOver) {
    onBanner("a", 3);
    onBanner("b", 1);
    byService("c", 9, 2);
    onBanner("d", 2);
    std::vector<std::string> found;
    for (const auto& [identifier, shown] : shown_.onBanners()) {
        found.push_back(identifier);
        EXPECT_EQ(shown.content.title, identifier);
    }
    EXPECT_EQ(found, (std::vector<std::string>{"b", "d", "a"}));
}

TEST_F(ShownNotificationsTest, AnotherServiceKnowsNoIdAndSendsNothingEarly) {
    int delivered = 0;
    byService("a", 7);
    onBanner("b");
    shown_.keepEarly(7, [&] { ++delivered; });
    shown_.serviceChanged();
    EXPECT_EQ(nameOf(7), "unknown");
    EXPECT_EQ(shown_.find("a"), nullptr);
    EXPECT_NE(shown_.find("b"), nullptr);
    shown_.deliverEarly(7);
    EXPECT_EQ(delivered, 0);
}

TEST_F(ShownNotificationsTest, OnlyTheLatestTwoThousandOfTheServiceAreKept) {
    // Whatever the order of their ids.
    for (uint i = 0; i < 2000; ++i) {
        byService(std::to_string(i), 5000 - i, 10 + i);
    }
    onBanner("banner", 1);
    EXPECT_EQ(nameOf(5000), "0");
    byService("one more", 9000, 9000);
    EXPECT_EQ(nameOf(5000), "unknown");
    EXPECT_EQ(shown_.find("0"), nullptr);
    EXPECT_EQ(nameOf(4999), "1");
    EXPECT_EQ(nameOf(9000), "one more");
    EXPECT_NE(shown_.find("banner"), nullptr);
    byService("one more", 9001, 9001);
    EXPECT_EQ(nameOf(4999), "1");
}

TEST_F(ShownNotificationsTest, EarlySignalsAreDeliveredOnceInOrderToTheirOwnId) {
    std::vector<std::string> delivered;
    for (const auto& [id, text] : {std::pair{7u, "first"}, {8u, "other"}, {7u, "second"}}) {
        shown_.keepEarly(id, [&delivered, text = text] { delivered.emplace_back(text); });
    }
    shown_.deliverEarly(7);
    EXPECT_EQ(delivered, (std::vector<std::string>{"first", "second"}));
    shown_.deliverEarly(7);
    EXPECT_EQ(delivered.size(), 2u);
    shown_.dropEarly();
    shown_.deliverEarly(8);
    EXPECT_EQ(delivered.size(), 2u);
}

TEST_F(ShownNotificationsTest, NoMoreThan256EarlySignalsAreKept) {
    int delivered = 0;
    for (int i = 0; i < 1000; ++i) {
        shown_.keepEarly(7, [&] { ++delivered; });
    }
    shown_.deliverEarly(7);
    EXPECT_EQ(delivered, 256);
}

} // namespace
} // namespace velloway::test
