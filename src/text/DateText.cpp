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
#include <map>
#include <memory>
#include <utility>

namespace velloway {

namespace {

enum class Style : std::size_t { shortTime, shortDate, shortDateAndTime, abbreviated };

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

    /// Whether `seconds` lies on the day of `now` moved by `dayOffset` days.
    bool isOnDay(double seconds, double now, int dayOffset) {
        if (!calendar_) {
            return false;
        }
        UErrorCode error = U_ZERO_ERROR;
        calendar_->setTime(toDate(now), error);
        calendar_->add(UCAL_DATE, dayOffset, error);
        const Day wanted = day(error);
        calendar_->setTime(toDate(seconds), error);
        return day(error) == wanted && U_SUCCESS(error);
    }

private:
    using Day = std::array<std::int32_t, 3>;

    Day day(UErrorCode& error) const {
        return {calendar_->get(UCAL_ERA, error), calendar_->get(UCAL_YEAR, error),
                calendar_->get(UCAL_DAY_OF_YEAR, error)};
    }

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

bool isToday(double seconds, double now, const DateContext& context) {
    return formatters(context).isOnDay(seconds, now, 0);
}

bool isYesterday(double seconds, double now, const DateContext& context) {
    return formatters(context).isOnDay(seconds, now, -1);
}

} // namespace velloway
