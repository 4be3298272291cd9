#pragma once

#include <compare>
#include <string>

/// Instants as a user reads them. Instants are seconds since 1970; one that is no finite number counts as 0.
/// What is expensive to set up is kept per thread, locale and time zone.
namespace velloway {

/// By whose habits and clock a date is written. A name that ICU does not know falls back to the root locale
/// and to Greenwich.
struct DateContext {
    std::string locale;
    std::string timeZone;

    auto operator<=>(const DateContext&) const = default;
};

std::string shortTime(double seconds, const DateContext& context);
std::string shortDate(double seconds, const DateContext& context);
std::string shortDateAndTime(double seconds, const DateContext& context);
/// The month by its abbreviated name.
std::string abbreviatedDateAndShortTime(double seconds, const DateContext& context);

/// Whether the calendar puts both instants on one day.
bool isToday(double seconds, double now, const DateContext& context);
bool isYesterday(double seconds, double now, const DateContext& context);

} // namespace velloway
