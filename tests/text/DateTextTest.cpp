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

bool isToday(double seconds, double now, const DateContext& context) {
    return RecentDays(now, context).isToday(seconds);
}

bool isYesterday(double seconds, double now, const DateContext& context) {
    return RecentDays(now, context).isYesterday(seconds);
}

TEST(DateText, WritesTimesAndDatesByTheHabitsOfTheLocale) {
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

TEST(DateText, FollowsTheTimeZoneIntoAnotherDay) {
    EXPECT_EQ(shortDateAndTime(instant, {"en_GB", "Asia/Tokyo"}), "15/11/2023, 07:13");
}

TEST(DateText, TellsTodayByTheCalendarAndNotByHours) {
    const double midnight = instant - (22 * hour + 13 * 60 + 20);
    EXPECT_TRUE(isToday(midnight, instant, london));
    EXPECT_FALSE(isToday(midnight - 1, instant, london));
    EXPECT_TRUE(isToday(midnight + day - 1, instant, london));
    EXPECT_FALSE(isToday(midnight + day, instant, london));
    EXPECT_TRUE(isToday(instant + 2 * hour, instant, newYork));
    EXPECT_FALSE(isToday(instant + 2 * hour, instant, london));
    EXPECT_FALSE(isToday(instant - 365 * day, instant, london));
}

TEST(DateText, TellsYesterdayByTheCalendarAndNotByHours) {
    const double midnight = instant - (22 * hour + 13 * 60 + 20);
    EXPECT_TRUE(isYesterday(midnight - 1, instant, london));
    EXPECT_TRUE(isYesterday(midnight - day, instant, london));
    EXPECT_FALSE(isYesterday(midnight - day - 1, instant, london));
    EXPECT_FALSE(isYesterday(midnight, instant, london));
}

TEST(DateText, FindsYesterdayAcrossAYearAndAcrossAClockChange) {
    constexpr double newYear = 1'704'067'200; // 2024-01-01 00:00 in London
    EXPECT_TRUE(isYesterday(newYear - 1, newYear, london));
    EXPECT_TRUE(isToday(newYear, newYear + hour, london));
    constexpr double backToWinter = 1'698'534'000; // 2023-10-29 00:00 in London, a day of 25 hours
    EXPECT_TRUE(isYesterday(backToWinter, backToWinter + 25 * hour, london));
    EXPECT_TRUE(isToday(backToWinter, backToWinter + 24.5 * hour, london));
}

/// By the written date, which is another one for every day.
TEST(DateText, TellsTheDaysApartAsTheWrittenDatesDo) {
    // Zones whose clocks were set back across midnight, moved at midnight, or left out a day among them.
    for (const char* zone : {"Europe/London", "America/St_Johns", "America/Sao_Paulo", "Asia/Beirut",
                             "Pacific/Apia", "Pacific/Kiritimati", "Asia/Kathmandu"}) {
        const DateContext context{"en_GB", zone};
        // Changes of the clock in October 1987, October 2000, and at the end of 2011.
        for (const double now : {562'132'800.0, 972'777'600.0, 1'325'332'800.0, instant}) {
            for (int step = -120; step <= 120; ++step) {
                const double moment = now + step * 3170;
                const RecentDays days(moment, context);
                for (const double seconds : {moment - 60, now, now - day / 2, moment + hour}) {
                    EXPECT_EQ(days.isToday(seconds), shortDate(seconds, context) == shortDate(moment, context))
                        << zone << ' ' << moment << ' ' << seconds;
                }
            }
        }
    }
}

TEST(DateText, AgreesWithAnyMomentOfTheSameDayInTheSamePlace) {
    const RecentDays days(instant, london);
    EXPECT_TRUE(days.agreesWith(RecentDays(instant, london)));
    EXPECT_TRUE(days.agreesWith(RecentDays(instant + hour, london)));
    EXPECT_FALSE(days.agreesWith(RecentDays(instant + 2 * hour, london))) << "after midnight";
    EXPECT_FALSE(days.agreesWith(RecentDays(instant - day, london)));
    EXPECT_FALSE(days.agreesWith(RecentDays(instant, {"en_GB", "Europe/Lisbon"}))) << "by the same clock";
    EXPECT_FALSE(days.agreesWith(RecentDays(instant, {"en_US", "Europe/London"})));
}

TEST(DateText, SurvivesInstantsThatNoCalendarKnows) {
    for (const double wild : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1.7e12, -1.0}) {
        EXPECT_FALSE(shortDateAndTime(wild, london).empty());
        EXPECT_FALSE(isToday(wild, instant, london));
        EXPECT_FALSE(isYesterday(wild, instant, london));
    }
    EXPECT_EQ(shortDate(std::numeric_limits<double>::quiet_NaN(), london), shortDate(0, london));
}

TEST(DateText, SurvivesLocalesAndZonesThatDoNotExist) {
    EXPECT_FALSE(shortDateAndTime(instant, {"no such locale", "No/Such_Zone"}).empty());
    EXPECT_EQ(shortTime(instant, {"en_GB", "No/Such_Zone"}), "22:13");
    EXPECT_FALSE(shortTime(instant, {"", ""}).empty());
}

TEST(DateText, KeepsLocalesAndZonesApart) {
    EXPECT_EQ(shortTime(instant, london), "22:13");
    EXPECT_EQ(shortTime(instant, {"en_GB", "Europe/Paris"}), "23:13");
    EXPECT_EQ(shortDate(instant, {"en_US", "Europe/London"}), "11/14/23");
    EXPECT_EQ(shortTime(instant, london), "22:13");
}

} // namespace

} // namespace velloway::test
