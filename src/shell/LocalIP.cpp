#include "shell/LocalIP.h"

#include "platform/Fatal.h"

#include <algorithm>

namespace velloway {

namespace {

constexpr unsigned up = 0x1;
constexpr unsigned loopback = 0x8;
constexpr unsigned running = 0x40;
constexpr int ipv4 = 2;

bool isUsable(const NetworkInterface& interface, const std::vector<std::string>& prefixes) {
    return (interface.flags & (up | loopback | running)) == (up | running) && interface.addressFamily == ipv4 &&
           std::any_of(prefixes.begin(), prefixes.end(),
                       [&](const std::string& prefix) { return interface.name.starts_with(prefix); });
}

} // namespace

std::string LocalIPAddress::current(const Host& host) {
    std::string result = "Not found";
    const auto interfaces = host.networkInterfaces();
    if (!interfaces) {
        return result;
    }
    const auto prefixes = host.interfacePrefixes();
    for (const NetworkInterface& interface : *interfaces) {
        if (interface.addressFamily == NetworkInterface::noAddress) {
            fatal("Unexpectedly found a network interface without an address");
        }
        if (isUsable(interface, prefixes)) {
            result = interface.numericAddress;
        }
    }
    return result;
}

} // namespace velloway
