#pragma once

#include "tabs/Texts.h"
#include "tabs/info/ProductOwner.h"

namespace velloway {

inline constexpr auto infoTexts = std::to_array<TextEntry>({
    {"name", "Velloway"},
    {"version", "Version 1.0 (Build 1)"},
    {"descriptionSection", "Description"},
    {"description", "Professional notification bridging between Android and macOS. Secure, local, and "
                    "real-time communication over your WiFi network."},
    {"developerSection", "Developer"},
    {"developerLabel", "Name"},
    {"developerName", productOwner::developerName},
    {"profileTitle", "Visit Profile"},
    {"supportSection", "Support the Project"},
    {"supportSymbol", "heart.fill"},
    {"walletName", productOwner::walletName},
    {"walletAccount", productOwner::walletAccount},
});

} // namespace velloway
