#pragma once

#include "platform/LoginItem.h"

namespace velloway {

class MacLoginItem final : public LoginItem {
public:
    LoginItemStatus status() const override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;
};

} // namespace velloway
