#pragma once

#include "tabs/ProductOwner.h"

#include <string_view>

namespace velloway::infoTexts {

inline constexpr std::string_view name = "Velloway";
inline constexpr std::string_view version = "Version 1.0 (Build 1)";
inline constexpr std::string_view descriptionSection = "Description";
inline constexpr std::string_view description =
    "Professional notification bridging between Android and macOS. Secure, local, and real-time communication "
    "over your WiFi network.";
inline constexpr std::string_view developerSection = "Developer";
inline constexpr std::string_view developerLabel = "Name";
inline constexpr std::string_view developerName = productOwner::developerName;
inline constexpr std::string_view profileTitle = "Visit Profile";
inline constexpr std::string_view supportSection = "Support the Project";
inline constexpr std::string_view supportSymbol = "heart.fill";
inline constexpr std::string_view walletName = productOwner::walletName;
inline constexpr std::string_view walletAccount = productOwner::walletAccount;

} // namespace velloway::infoTexts
