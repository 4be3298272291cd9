#pragma once

#include <compare>
#include <string>

/// Instants as a user reads them. Instants are seconds since 1970; one that is not a finite number counts as 0.
/// What is expensive to set up is kept per thread, locale and time zone.
namespace velloway {

/// By whose habits and clock a date is written. A name that ICU does not know falls back to the root locale
/// and to Greenwich.
struct DateContext {
    std::string locale;
    std::string timeZone;

    // NOLINTNEXTLINE(modernize-use-nullptr)
    auto operator<=>(const DateContext&) const = default;
};

std::string shortTime(double seconds, const DateContext& context);
std::string shortDate(double seconds, const DateContext& context);
std::string shortDateAndTime(double seconds, const DateContext& context);
/// The month by its abbreviated name.
std::string abbreviatedDateAndShortTime(double seconds, const DateContext& context);

/// Today and yesterday by the calendar as they are at one moment, for many questions at that moment.
class RecentDays {
public:
    RecentDays(double now, const DateContext& context);

    bool isToday(double seconds) const { return isOn(today_, seconds); }
    bool isYesterday(double seconds) const { return isOn(yesterday_, seconds); }

    /// Whether the other one answers every question in the same way.
    bool agreesWith(const RecentDays& other) const {
        return context_ == other.context_ && today_ == other.today_ && yesterday_ == other.yesterday_;
    }

private:
    bool isOn(double day, double seconds) const;

    DateContext context_;
    double now_ = 0;
    /// Days are numbered by the zone's clock; no number when the calendar fails.
    double today_ = 0;
    double yesterday_ = 0;
};

} // namespace velloway
