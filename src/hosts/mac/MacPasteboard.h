#pragma once

#include "platform/Pasteboard.h"

namespace velloway {

class MacPasteboard final : public Pasteboard {
public:
    void clearContents() override;
    bool setString(std::string_view text) override;
    /// Answers inside the call.
    void readString(std::function<void(std::optional<std::string>)> done) override;
};

} // namespace velloway
