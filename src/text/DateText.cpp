#include "text/DateText.h"

#include "text/IcuLocale.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/dtptngen.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <utility>

namespace velloway {

namespace {

enum class Style : std::size_t { shortTime, shortDate, shortDateAndTime, abbreviated };

constexpr double millisecondsPerDay = 24 * 3600 * 1000;
constexpr double noDay = std::numeric_limits<double>::quiet_NaN();
/// Further away than any clock can put yesterday, in seconds.
constexpr double surelyLongAgo = 4 * 24 * 3600;

UDate toDate(double seconds) {
    return std::isfinite(seconds) ? seconds * 1000.0 : 0.0;
}

/// What ICU keeps for one locale and time zone.
class Formatters {
public:
    explicit Formatters(const DateContext& context)
        : locale_(icuLocale(context.locale)),
          zone_(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(context.timeZone))) {
        UErrorCode error = U_ZERO_ERROR;
        calendar_.reset(icu::Calendar::createInstance(*zone_, locale_, error));
    }

    std::string format(double seconds, Style style) {
        auto& format = formats_[static_cast<std::size_t>(style)];
        if (!format) {
            format = make(style);
        }
        if (!format) {
            return {};
        }
        icu::UnicodeString text;
        format->format(toDate(seconds), text);
        std::string out;
        text.toUTF8String(out);
        return out;
    }

    /// The number of the local day that `seconds` lies on. Not a number when it is unknown, which equals
    /// nothing.
    double day(double seconds) const {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t fromGreenwich = 0;
        std::int32_t summerTime = 0;
        zone_->getOffset(toDate(seconds), false, fromGreenwich, summerTime, error);
        return U_SUCCESS(error)
                   ? std::floor((toDate(seconds) + fromGreenwich + summerTime) / millisecondsPerDay)
                   : noDay;
    }

    /// The number of the day before that of `seconds`, where the calendar's rules count and not the hours.
    double dayBefore(double seconds) const {
        if (!calendar_) {
            return noDay;
        }
        UErrorCode error = U_ZERO_ERROR;
        calendar_->setTime(toDate(seconds), error);
        calendar_->add(UCAL_DATE, -1, error);
        const UDate before = calendar_->getTime(error);
        return U_SUCCESS(error) ? day(before / 1000.0) : noDay;
    }

private:
    std::unique_ptr<icu::DateFormat> make(Style style) const {
        using icu::DateFormat;
        std::unique_ptr<DateFormat> format;
        switch (style) {
        case Style::shortTime:
            format.reset(DateFormat::createTimeInstance(DateFormat::kShort, locale_));
            break;
        case Style::shortDate:
            format.reset(DateFormat::createDateInstance(DateFormat::kShort, locale_));
            break;
        case Style::shortDateAndTime:
            format.reset(DateFormat::createDateTimeInstance(DateFormat::kShort, DateFormat::kShort, locale_));
            break;
        case Style::abbreviated:
            format = makeAbbreviated();
            break;
        }
        if (format) {
            format->setTimeZone(*zone_);
        }
        return format;
    }

    std::unique_ptr<icu::DateFormat> makeAbbreviated() const {
        UErrorCode error = U_ZERO_ERROR;
        const std::unique_ptr<icu::DateTimePatternGenerator> generator(
            icu::DateTimePatternGenerator::createInstance(locale_, error));
        if (U_FAILURE(error)) {
            return nullptr;
        }
        const icu::UnicodeString pattern =
            generator->getBestPattern(icu::UnicodeString::fromUTF8("yMMMdjmm"), error);
        auto format = std::make_unique<icu::SimpleDateFormat>(pattern, locale_, error);
        return U_SUCCESS(error) ? std::move(format) : nullptr;
    }

    icu::Locale locale_;
    std::unique_ptr<icu::TimeZone> zone_;
    std::unique_ptr<icu::Calendar> calendar_;
    std::array<std::unique_ptr<icu::DateFormat>, 4> formats_;
};

Formatters& formatters(const DateContext& context) {
    thread_local std::map<DateContext, Formatters> kept;
    return kept.try_emplace(context, context).first->second;
}

} // namespace

std::string shortTime(double seconds, const DateContext& context) {
    return formatters(context).format(seconds, Style::shortTime);
}

std::string shortDate(double seconds, const DateContext& context) {
    return formatters(context).format(seconds, Style::shortDate);
}

std::string shortDateAndTime(double seconds, const DateContext& context) {
    return formatters(context).format(seconds, Style::shortDateAndTime);
}

std::string abbreviatedDateAndShortTime(double seconds, const DateContext& context) {
    return formatters(context).format(seconds, Style::abbreviated);
}

RecentDays::RecentDays(double now, const DateContext& context)
    : context_(context),
      now_(toDate(now) / 1000),
      today_(formatters(context).day(now)),
      yesterday_(formatters(context).dayBefore(now)) {}

bool RecentDays::isOn(double day, double seconds) const {
    // Most instants are settled without asking the zone, and none comes near what it can't number.
    const bool isNear = std::abs(toDate(seconds) / 1000 - now_) < surelyLongAgo;
    return isNear && formatters(context_).day(seconds) == day;
}

} // namespace velloway
