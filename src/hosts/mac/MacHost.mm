#include "hosts/mac/MacHost.h"

#include "hosts/mac/MacText.h"

#include <array>
#include <ifaddrs.h>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace velloway {

namespace {

std::string numericAddress(const sockaddr& address) {
    const socklen_t length = address.sa_family == AF_INET    ? sizeof(sockaddr_in)
                             : address.sa_family == AF_INET6 ? sizeof(sockaddr_in6)
                                                             : 0;
    std::array<char, NI_MAXHOST> text{};
    const bool isKnown = length != 0 && ::getnameinfo(&address, length, text.data(), text.size(), nullptr, 0,
                                                      NI_NUMERICHOST) == 0;
    return isKnown ? text.data() : "";
}

NetworkInterface describe(const ifaddrs& entry) {
    NetworkInterface described{.name = entry.ifa_name, .flags = entry.ifa_flags};
    if (entry.ifa_addr == nullptr) {
        described.addressFamily = NetworkInterface::noAddress;
        return described;
    }
    described.addressFamily = entry.ifa_addr->sa_family;
    described.numericAddress = numericAddress(*entry.ifa_addr);
    return described;
}

} // namespace

std::optional<std::string> MacHost::localizedName() const {
    @autoreleasepool {
        NSString* name = [NSHost currentHost].localizedName;
        return name != nil ? std::optional(stdString(name)) : std::nullopt;
    }
}

std::optional<std::filesystem::path> MacHost::downloadsDirectory() const {
    @autoreleasepool {
        NSURL* folder = [NSFileManager.defaultManager URLsForDirectory:NSDownloadsDirectory
                                                             inDomains:NSUserDomainMask]
                            .firstObject;
        return folder != nil ? std::optional<std::filesystem::path>(stdString(folder.path)) : std::nullopt;
    }
}

Instant MacHost::now() const {
    return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now());
}

std::string MacHost::locale() const {
    @autoreleasepool {
        return stdString(NSLocale.currentLocale.localeIdentifier);
    }
}

std::string MacHost::timeZone() const {
    @autoreleasepool {
        return stdString(NSTimeZone.localTimeZone.name);
    }
}

std::optional<std::vector<NetworkInterface>> MacHost::networkInterfaces() const {
    ifaddrs* head = nullptr;
    if (::getifaddrs(&head) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> release(head, &::freeifaddrs);
    std::vector<NetworkInterface> interfaces;
    for (const ifaddrs* entry = head; entry != nullptr; entry = entry->ifa_next) {
        interfaces.push_back(describe(*entry));
    }
    return interfaces;
}

std::vector<std::string> MacHost::interfacePrefixes() const {
    return {"en"};
}

} // namespace velloway
