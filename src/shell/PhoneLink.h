#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// What a `tel:` or `sms:` address asks for.
struct PhoneLink {
    enum class Kind { call, message };
    Kind kind = Kind::call;
    /// Digits, `*` and `#`, with a leading `+` where there was one; never empty.
    std::string number;
    /// UTF-8. Of a message only; may be empty.
    std::string body;

    bool operator==(const PhoneLink&) const = default;
};

/// Absent for other addresses, and for those without a number that can be dialled. Of several recipients the
/// first counts. Such addresses come from web pages, so that nothing else of them is passed on.
std::optional<PhoneLink> parsePhoneLink(std::string_view address);

} // namespace velloway
