#pragma once

#include <string_view>

/// Facts that only the product's owner can supply. All four are placeholders until then.
namespace velloway::productOwner {

inline constexpr std::string_view developerName = "[Developer's name]";
inline constexpr std::string_view profileLink = "https://example.invalid/developer-profile";
inline constexpr std::string_view walletName = "[Wallet's name]";
inline constexpr std::string_view walletAccount = "[Wallet account number]";

} // namespace velloway::productOwner
