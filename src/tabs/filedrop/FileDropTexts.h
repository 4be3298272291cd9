#pragma once

#include "tabs/Texts.h"

namespace velloway {

inline constexpr auto fileDropTexts = std::to_array<TextEntry>({
    {"title", "File Drop"},
    {"clearHistory", "Clear History"},
    {"description",
     "Easily move files between your Mac and Android. Received files are saved to your Downloads folder."},
    {"send", "Send Files..."},
    {"sendSymbol", "square.and.arrow.up"},
    {"revealSymbol", "folder"},
    {"revealTooltip", "Show in Finder"},
});

} // namespace velloway
