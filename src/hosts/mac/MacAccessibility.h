#pragma once

#include "platform/Accessibility.h"

namespace velloway {

class MacAccessibility final : public Accessibility {
public:
    bool isTrusted() override;
    bool isTrustedWithPrompt() override;
};

} // namespace velloway
