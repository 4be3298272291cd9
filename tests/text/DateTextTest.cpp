#include "text/DateText.h"

#include <gtest/gtest.h>

#include <limits>

namespace velloway::test {

namespace {

const DateContext london{"en_GB", "Europe/London"};
const DateContext newYork{"en_US", "America/New_York"};
/// 14 November 2023, 22:13:20 in London.
constexpr double instant = 1'700'000'000;
constexpr double hour = 3600;
constexpr double day = 24 * hour;

TEST(DateText, writesTimesAndDatesByTheHabitsOfTheLocale) {
    EXPECT_EQ(shortTime(instant, london), "22:13");
    EXPECT_EQ(shortDate(instant, london), "14/11/2023");
    EXPECT_EQ(shortDateAndTime(instant, london), "14/11/2023, 22:13");
    EXPECT_EQ(abbreviatedDateAndShortTime(instant, london), "14 Nov 2023, 22:13");
    EXPECT_EQ(shortDate(instant, newYork), "11/14/23");
    EXPECT_EQ(shortDate(instant, {"de_DE", "Europe/Berlin"}), "14.11.23");
    EXPECT_EQ(shortTime(instant, {"de_DE", "Europe/Berlin"}), "23:13");
    const std::string american = shortTime(instant, newYork);
    EXPECT_EQ(american.substr(0, 4), "5:13");
    EXPECT_EQ(american.substr(american.size() - 2), "PM");
}

TEST(DateText, followsTheTimeZoneIntoAnotherDay) {
    EXPECT_EQ(shortDateAndTime(instant, {"en_GB", "Asia/Tokyo"}), "15/11/2023, 07:13");
}

TEST(DateText, tellsTodayByTheCalendarAndNotByHours) {
    const double midnight = instant - (22 * hour + 13 * 60 + 20);
    EXPECT_TRUE(isToday(midnight, instant, london));
    EXPECT_FALSE(isToday(midnight - 1, instant, london));
    EXPECT_TRUE(isToday(midnight + day - 1, instant, london));
    EXPECT_FALSE(isToday(midnight + day, instant, london));
    EXPECT_TRUE(isToday(instant + 2 * hour, instant, newYork));
    EXPECT_FALSE(isToday(instant + 2 * hour, instant, london));
    EXPECT_FALSE(isToday(instant - 365 * day, instant, london));
}

TEST(DateText, tellsYesterdayByTheCalendarAndNotByHours) {
    const double midnight = instant - (22 * hour + 13 * 60 + 20);
    EXPECT_TRUE(isYesterday(midnight - 1, instant, london));
    EXPECT_TRUE(isYesterday(midnight - day, instant, london));
    EXPECT_FALSE(isYesterday(midnight - day - 1, instant, london));
    EXPECT_FALSE(isYesterday(midnight, instant, london));
}

TEST(DateText, findsYesterdayAcrossAYearAndAcrossAClockChange) {
    constexpr double newYear = 1'704'067'200; // 2024-01-01 00:00 in London
    EXPECT_TRUE(isYesterday(newYear - 1, newYear, london));
    EXPECT_TRUE(isToday(newYear, newYear + hour, london));
    constexpr double backToWinter = 1'698'534'000; // 2023-10-29 00:00 in London, a day of 25 hours
    EXPECT_TRUE(isYesterday(backToWinter, backToWinter + 25 * hour, london));
    EXPECT_TRUE(isToday(backToWinter, backToWinter + 24.5 * hour, london));
}

TEST(DateText, survivesInstantsThatNoCalendarKnows) {
    for (const double wild : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1.7e12, -1.0}) {
        EXPECT_FALSE(shortDateAndTime(wild, london).empty());
        EXPECT_FALSE(isToday(wild, instant, london));
        EXPECT_FALSE(isYesterday(wild, instant, london));
    }
    EXPECT_EQ(shortDate(std::numeric_limits<double>::quiet_NaN(), london), shortDate(0, london));
}

TEST(DateText, survivesLocalesAndZonesThatDoNotExist) {
    EXPECT_FALSE(shortDateAndTime(instant, {"no such locale", "No/Such_Zone"}).empty());
    EXPECT_EQ(shortTime(instant, {"en_GB", "No/Such_Zone"}), "22:13");
    EXPECT_FALSE(shortTime(instant, {"", ""}).empty());
}

TEST(DateText, keepsLocalesAndZonesApart) {
    EXPECT_EQ(shortTime(instant, london), "22:13");
    EXPECT_EQ(shortTime(instant, {"en_GB", "Europe/Paris"}), "23:13");
    EXPECT_EQ(shortDate(instant, {"en_US", "Europe/London"}), "11/14/23");
    EXPECT_EQ(shortTime(instant, london), "22:13");
}

} // namespace

} // namespace velloway::test
