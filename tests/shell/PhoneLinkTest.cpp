#include "shell/PhoneLink.h"

#include <gtest/gtest.h>

namespace velloway::test {
namespace {

constexpr auto call = PhoneLink::Kind::call;
constexpr auto message = PhoneLink::Kind::message;

std::optional<PhoneLink> link(PhoneLink::Kind kind, std::string number, std::string body = {}) {
    return PhoneLink{.kind = kind, .number = std::move(number), .body = std::move(body)};
}

} // namespace

TEST(PhoneLinkTest, ReadsTheNumberAndTheTextOfAnAddress) {
    const struct {
        const char* address;
        std::optional<PhoneLink> expected;
    } cases[] = {
        {"tel:+491515551000", link(call, "+491515551000")},
        {"TEL:+1-201-555-0123;ext=42;phone-context=x", link(call, "+12015550123")},
        {"tel:(030)%20555.10/00", link(call, "0305551000")},
        {"tel://5551", link(call, "5551")},
        {"tel:*100%23", link(call, "*100#")},
        {"sms:5551", link(message, "5551")},
        {"sms:+4915155510,+4915155511?body=On%20my%20way", link(message, "+4915155510", "On my way")},
        {"smsto:5551?x=y&Body=Gr%C3%BC%C3%9Fe%0A%F0%9F%9A%B2&body=no", link(message, "5551", "Grüße\n🚲")},
        {"sms:5551?body=100%", link(message, "5551", "100%")},
        {"sms:5551?body=%g1%1g%41", link(message, "5551", "%g1%1gA")},
        {"sms:5551?body=%4", link(message, "5551", "%4")},
        {"sms:5551?body=%ff%00", link(message, "5551", "\xEF\xBF\xBD")},
        {"sms:5551?body=", link(message, "5551")},
        {"tel:5551?body=hi", link(call, "5551")},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(parsePhoneLink(each.address), each.expected) << each.address;
    }
}

TEST(PhoneLinkTest, RefusesWhatIsNoNumberOrNoSuchAddress) {
    for (const char* address :
         {"", "tel", "tel:", "tel:+", "tel:1-800-FLOWERS", "tel:555%22,%22x", "tel:5\\1", "tel:55+1", "tel:٣",
          "sms:?body=hi", "sms:Ada", "https://tel:1", "file:///tel", "callto:5551"}) {
        EXPECT_EQ(parsePhoneLink(address), std::nullopt) << address;
    }
}

} // namespace velloway::test
