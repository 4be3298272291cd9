#pragma once

#include "platform/Host.h"

namespace velloway {

class LinuxHost : public Host {
public:
    /// `machineInfo` is the file in which the system keeps the name that the user gave to the computer.
    explicit LinuxHost(std::filesystem::path machineInfo = "/etc/machine-info");

    std::optional<std::string> localizedName() const override;
    /// Makes the folder when it isn't there.
    std::optional<std::filesystem::path> downloadsDirectory() const override;
    Instant now() const override;
    std::string locale() const override;
    std::string timeZone() const override;
    std::optional<std::vector<NetworkInterface>> networkInterfaces() const override;
    std::vector<std::string> interfacePrefixes() const override;

private:
    std::filesystem::path machineInfo_;
};

} // namespace velloway
