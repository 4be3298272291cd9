#pragma once

#include <unicode/locid.h>

#include <string>

namespace velloway {

/// The root locale for a name that is not a locale: ICU's formatters do not survive a bogus one.
inline icu::Locale icuLocale(const std::string& name) {
    const icu::Locale locale = icu::Locale::createCanonical(name.c_str());
    return locale.isBogus() ? icu::Locale::getRoot() : locale;
}

} // namespace velloway
