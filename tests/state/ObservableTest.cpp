#include "state/Observable.h"
#include "state/AppNotificationCenter.h"
#include "state/Uuid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace velloway::test {

namespace {

TEST(Observable, RunsObserversInTheirOrderWithTheNewValue) {
    Observable<int> value{1};
    std::vector<int> seen;
    const auto first = value.observe([&](int now) { seen.push_back(now); });
    const auto second = value.observe([&](int now) { seen.push_back(-now); });
    value.set(2);
    value.modify([](int& now) { now += 3; });
    EXPECT_EQ(seen, (std::vector<int>{2, -2, 5, -5}));
}

TEST(Observable, GivesItsObserversTheValueItselfAndNoCopies) {
    Observable<std::string> value;
    AppNotificationCenter center;
    std::vector<const void*> seen;
    const auto ofValue = value.observe([&](const std::string& now) { seen.push_back(&now); });
    const auto ofCenter = center.observe(AppNotification::smsHistoryUpdated,
                                         [&](const AppNotificationObject& now) { seen.push_back(&now); });
    value.set("a");
    const AppNotificationObject object = std::string("b");
    center.post(AppNotification::smsHistoryUpdated, object);
    EXPECT_EQ(seen, (std::vector<const void*>{&value.get(), &object}));
}

TEST(Observable, GivesTheCurrentValueOnlyWhenAsked) {
    Observable<int> value{1};
    std::vector<int> seen;
    const auto silent = value.observe([&](int now) { seen.push_back(now); });
    EXPECT_TRUE(seen.empty());
    const auto eager = value.observeWithCurrent([&](int now) { seen.push_back(now * 10); });
    EXPECT_EQ(seen, (std::vector<int>{10}));
}

TEST(Observable, StopsTellingWhoHasLeft) {
    Observable<int> value;
    int calls = 0;
    auto subscription = value.observe([&](int) { ++calls; });
    value.set(1);
    subscription.reset();
    value.set(2);
    EXPECT_EQ(calls, 1);
}

TEST(Observable, LetsObserversLeaveAndJoinWhileItTells) {
    Observable<int> value;
    std::vector<std::string> calls;
    Subscription second;
    Subscription third;
    const auto first = value.observe([&](int) {
        calls.emplace_back("first");
        second.reset();
        if (calls.size() == 1) {
            third = value.observe([&](int) { calls.emplace_back("third"); });
        }
    });
    second = value.observe([&](int) { calls.emplace_back("second"); });
    value.set(1);
    EXPECT_EQ(calls, (std::vector<std::string>{"first"}));
    value.set(2);
    EXPECT_EQ(calls, (std::vector<std::string>{"first", "first", "third"}));
}

TEST(Observable, MayGoBeforeItsSubscriptions) {
    auto value = std::make_unique<Observable<int>>();
    const auto token = std::make_shared<int>();
    auto subscription = value->observe([token](int) {});
    value.reset();
    EXPECT_EQ(token.use_count(), 1);
    subscription.reset();
    EXPECT_EQ(token.use_count(), 1);
}

TEST(AppNotificationCenter, ReachesOnlyObserversOfThatNotification) {
    AppNotificationCenter center;
    std::vector<AppNotificationObject> seen;
    const auto subscription = center.observe(AppNotification::callDurationUpdated,
                                             [&](const auto& object) { seen.push_back(object); });
    center.post(AppNotification::callHistoryUpdated, std::vector<CallRecord>{});
    center.post(AppNotification::callDurationUpdated, std::int64_t{-1});
    EXPECT_EQ(seen, (std::vector<AppNotificationObject>{std::int64_t{-1}}));
}

TEST(AppNotificationCenter, NamesItsNotifications) {
    EXPECT_EQ(name(AppNotification::prepareActiveCall), "PrepareActiveCall");
    EXPECT_EQ(name(AppNotification::callDurationUpdated), "CallDurationUpdated");
    EXPECT_EQ(name(AppNotification::smsHistoryUpdated), "SmsHistoryUpdated");
    EXPECT_EQ(name(AppNotification::callHistoryUpdated), "CallHistoryUpdated");
}

TEST(Uuid, IsRandomAndHasTheStandardForm) {
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        const std::string text = Uuid::random().text();
        ASSERT_EQ(text.size(), 36U);
        EXPECT_EQ(text[14], '4') << text;
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos) << text;
        EXPECT_EQ(text.find_first_not_of("0123456789ABCDEF-"), std::string::npos) << text;
        EXPECT_TRUE(text[8] == '-' && text[13] == '-' && text[18] == '-' && text[23] == '-') << text;
        seen.insert(text);
    }
    EXPECT_EQ(seen.size(), 100U);
}

TEST(Uuid, IsRandomInEveryPlaceApartFromTheOthers) {
    std::vector<std::string> drawn(500);
    std::generate(drawn.begin(), drawn.end(), [] { return Uuid::random().text(); });
    const auto differ = [&](std::size_t one, std::size_t other) {
        return std::any_of(drawn.begin(), drawn.end(),
                           [&](const std::string& text) { return text[one] != text[other]; });
    };
    for (std::size_t place = 0; place < 36; ++place) {
        if (place == 8 || place == 13 || place == 18 || place == 23 || place == 14) {
            continue;
        }
        std::set<char> digits;
        for (const std::string& text : drawn) {
            digits.insert(text[place]);
        }
        EXPECT_EQ(digits.size(), place == 19 ? 4U : 16U) << "place " << place;
        for (std::size_t other = 0; other < place; ++other) {
            EXPECT_TRUE(differ(place, other)) << "places " << other << " and " << place;
        }
    }
}

} // namespace

} // namespace velloway::test
