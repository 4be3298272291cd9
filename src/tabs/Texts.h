#pragma once

#include <array>
#include <string_view>

namespace velloway {

/// A fixed text or symbol of a tab. The tables of these are the source of what the views name `SmsTexts.title`
/// and so on.
struct TextEntry {
    std::string_view name;
    std::string_view text;
};

} // namespace velloway
