#pragma once

#include "platform/Host.h"

namespace velloway {

class MacHost final : public Host {
public:
    std::optional<std::string> localizedName() const override;
    std::optional<std::filesystem::path> downloadsDirectory() const override;
    Instant now() const override;
    std::string locale() const override;
    std::string timeZone() const override;
    std::optional<std::vector<NetworkInterface>> networkInterfaces() const override;
    std::vector<std::string> interfacePrefixes() const override;
};

} // namespace velloway
