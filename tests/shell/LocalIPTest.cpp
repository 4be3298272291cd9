#include "shell/LocalIP.h"

#include "fakes/FakeDesktop.h"

#include <gtest/gtest.h>

namespace velloway::test {
namespace {

constexpr unsigned up = 0x1;
constexpr unsigned loopback = 0x8;
constexpr unsigned running = 0x40;
constexpr int ipv4 = 2;
constexpr int ipv6 = 30;

NetworkInterface interface(std::string name, std::string address, unsigned flags = up | running,
                           int family = ipv4) {
    return {
        .name = std::move(name), .flags = flags, .addressFamily = family, .numericAddress = std::move(address)};
}

std::string found(std::optional<std::vector<NetworkInterface>> interfaces) {
    FakeHost host;
    host.interfaces = std::move(interfaces);
    return LocalIPAddress::current(host);
}

TEST(LocalIPTest, TheLastMatchOfTheSystemsOrderWins) {
    EXPECT_EQ(found({{interface("en0", "10.0.0.1"), interface("en1", "10.0.0.2")}}), "10.0.0.2");
    EXPECT_EQ(found({{interface("en1", "10.0.0.2"), interface("en0", "10.0.0.1")}}), "10.0.0.1");
}

TEST(LocalIPTest, OtherFlagsDoNotMatter) {
    EXPECT_EQ(found({{interface("en0", "10.0.0.1", 0x8863)}}), "10.0.0.1");
}

TEST(LocalIPTest, AnythingElseIsSkipped) {
    EXPECT_EQ(found({{interface("lo0", "127.0.0.1", up | running | loopback), interface("utun3", "10.8.0.1")}}),
              "Not found");
    EXPECT_EQ(found({{interface("en0", "fe80::1", up | running, ipv6)}}), "Not found");
    EXPECT_EQ(found({{interface("en0", "10.0.0.1", up)}}), "Not found");
    EXPECT_EQ(found({{interface("en0", "10.0.0.1", running)}}), "Not found");
    EXPECT_EQ(found({{interface("en0", "127.0.0.1", up | running | loopback)}}), "Not found");
    EXPECT_EQ(found({{interface("pen0", "10.0.0.1")}}), "Not found");
}

TEST(LocalIPTest, OnlyTheBeginningOfTheNameIsTested) {
    EXPECT_EQ(found({{interface("enp3", "10.0.0.3")}}), "10.0.0.3");
}

TEST(LocalIPTest, TheHostTellsHowNamesBegin) {
    struct OtherHost : FakeHost {
        std::vector<std::string> interfacePrefixes() const override { return {"eth", "wl"}; }
    };
    OtherHost host;
    host.interfaces = {
        {interface("eth0", "10.0.0.1"), interface("wlan0", "10.0.0.2"), interface("en0", "10.0.0.3")}};
    EXPECT_EQ(LocalIPAddress::current(host), "10.0.0.2");
}

TEST(LocalIPTest, WithoutAListOrAMatchNothingIsFound) {
    EXPECT_EQ(found(std::nullopt), "Not found");
    EXPECT_EQ(found(std::vector<NetworkInterface>{}), "Not found");
}

TEST(LocalIPTest, AnAddressWithoutATextGivesTheEmptyTextUntilALaterMatch) {
    EXPECT_EQ(found({{interface("en0", "")}}), "");
    EXPECT_EQ(found({{interface("en0", "10.0.0.1"), interface("en1", "")}}), "");
    EXPECT_EQ(found({{interface("en0", ""), interface("en1", "10.0.0.2")}}), "10.0.0.2");
}

TEST(LocalIPDeathTest, AnyEntryWithoutAnAddressEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        found({{interface("utun0", "", 0, NetworkInterface::noAddress), interface("en0", "10.0.0.1")}}),
        "Fatal error: Unexpectedly found a network interface without an address\n");
}

TEST(LocalIPTest, EachReadingSearchesAnew) {
    FakeHost host;
    host.interfaces = {{interface("en0", "10.0.0.1")}};
    EXPECT_EQ(LocalIPAddress::current(host), "10.0.0.1");
    host.interfaces = {{interface("en0", "10.0.0.9")}};
    EXPECT_EQ(LocalIPAddress::current(host), "10.0.0.9");
}

} // namespace
} // namespace velloway::test
