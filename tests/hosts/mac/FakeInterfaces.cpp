#include "hosts/mac/FakeInterfaces.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

namespace velloway::test {

FakeInterfaces everydayInterfaces() {
    return {.entries = {{"lo0", IFF_UP | IFF_LOOPBACK, AF_INET, "127.0.0.1"},
                        {"en0", IFF_UP, AF_INET, "10.0.0.5"}}};
}

FakeInterfaces fakeInterfaces = everydayInterfaces();

namespace {

/// An address takes as much memory as its family needs, so that whoever reads beyond it is noticed.
sockaddr* addressOf(const FakeInterfaces::Entry& entry) {
    if (!entry.family) {
        return nullptr;
    }
    if (*entry.family == AF_INET6) {
        auto* const made = new sockaddr_in6{};
        ::inet_pton(AF_INET6, entry.address.c_str(), &made->sin6_addr);
        made->sin6_family = AF_INET6;
        return reinterpret_cast<sockaddr*>(made);
    }
    auto* const made = new sockaddr_in{};
    ::inet_pton(AF_INET, entry.address.c_str(), &made->sin_addr);
    made->sin_family = static_cast<sa_family_t>(*entry.family);
    return reinterpret_cast<sockaddr*>(made);
}

void destroyAddress(sockaddr* address) {
    if (address != nullptr && address->sa_family == AF_INET6) {
        delete reinterpret_cast<sockaddr_in6*>(address);
    } else {
        delete reinterpret_cast<sockaddr_in*>(address);
    }
}

} // namespace
} // namespace velloway::test

using namespace velloway::test;

extern "C" {

int getifaddrs(ifaddrs** list) {
    if (fakeInterfaces.fails) {
        errno = ENOMEM;
        return -1;
    }
    ifaddrs** next = list;
    *list = nullptr;
    for (const FakeInterfaces::Entry& entry : fakeInterfaces.entries) {
        auto* const made = new ifaddrs{};
        made->ifa_name = ::strdup(entry.name.c_str());
        made->ifa_flags = entry.flags;
        made->ifa_addr = addressOf(entry);
        *next = made;
        next = &made->ifa_next;
    }
    ++fakeInterfaces.listsAlive;
    return 0;
}

void freeifaddrs(ifaddrs* list) {
    while (list != nullptr) {
        ifaddrs* const next = list->ifa_next;
        std::free(list->ifa_name);
        destroyAddress(list->ifa_addr);
        delete list;
        list = next;
    }
    --fakeInterfaces.listsAlive;
}

} // extern "C"
