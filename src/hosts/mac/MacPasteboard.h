#pragma once

#include "platform/Pasteboard.h"

namespace velloway {

class MacPasteboard final : public Pasteboard {
public:
    void clearContents() override;
    bool setString(std::string_view text) override;
    std::optional<std::string> string() const override;
};

} // namespace velloway
