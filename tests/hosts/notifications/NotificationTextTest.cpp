#include "hosts/linux/notifications/NotificationText.h"

#include <gtest/gtest.h>

namespace velloway::test {
namespace {

struct TextCase {
    const char* name;
    NotificationContent content;
    NotificationCapabilities capabilities;
    const char* summary;
    const char* body;
};

void PrintTo(const TextCase& textCase, std::ostream* out) {
    *out << textCase.name;
}

constexpr NotificationCapabilities plain{.body = true};
constexpr NotificationCapabilities markup{.body = true, .bodyMarkup = true};
constexpr NotificationCapabilities bare{};

const TextCase textCases[] = {
    {"noSubtitle", {.title = "Ada", .body = "Hello"}, plain, "Ada", "Hello"},
    {"emptySubtitle", {.title = "Chat", .subtitle = "", .body = "Hello"}, plain, "Chat", "Hello"},
    {"subtitleOnItsOwnLine",
     {.title = "Chat", .subtitle = "Ada", .body = "Hello"},
     plain,
     "Chat",
     "Ada\nHello"},
    {"subtitleInBold", {.title = "Chat", .subtitle = "Ada", .body = "Hi"}, markup, "Chat", "<b>Ada</b>\nHi"},
    {"subtitleAlone", {.title = "Chat", .subtitle = "Ada", .body = ""}, plain, "Chat", "Ada"},
    {"markupEscaped",
     {.title = "A & <b>", .subtitle = "x<y", .body = "1 < 2 && \"q\""},
     markup,
     "A & <b>",
     "<b>x&lt;y</b>\n1 &lt; 2 &amp;&amp; &quot;q&quot;"},
    {"markupLeftWhereItIsPlainText", {.title = "T", .body = "<b>1 & 2</b>"}, plain, "T", "<b>1 & 2</b>"},
    {"foldedWithoutBody",
     {.title = "Chat", .subtitle = "Ada", .body = "one\ntwo"},
     bare,
     "Chat – Ada – one two",
     ""},
    {"titleAloneWithoutBody", {.title = "Chat", .body = ""}, bare, "Chat", ""},
    {"lineBreaksStay", {.title = "T", .body = "one\n\ttwo"}, plain, "T", "one\n\ttwo"},
    {"controlCharactersGo", {.title = std::string("a\0b\x1b", 4), .body = "c\r\nd"}, plain, "ab", "c\nd"},
    {"brokenTextIsMarked", {.title = "a\xff", .body = ""}, plain, "a\xef\xbf\xbd", ""},
};

class NotificationTextTest : public testing::TestWithParam<TextCase> {};

TEST_P(NotificationTextTest, SummaryAndBodySuitTheService) {
    const auto text = notificationText(GetParam().content, GetParam().capabilities);
    EXPECT_EQ(text.summary.toStdString(), GetParam().summary);
    EXPECT_EQ(text.body.toStdString(), GetParam().body);
}

INSTANTIATE_TEST_SUITE_P(Texts, NotificationTextTest, testing::ValuesIn(textCases),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(DisplayableText, CutsWhatIsTooLongAndNeverSplitsACharacter) {
    EXPECT_EQ(displayableText("abcd", 4).toStdString(), "abcd");
    EXPECT_EQ(displayableText("abcde", 4).toStdString(), "abc…");
    EXPECT_EQ(displayableText("ab👍de", 4).toStdString(), "ab…");
    EXPECT_EQ(displayableText("ab👍", 4).toStdString(), "ab👍");
    EXPECT_EQ(displayableText(std::string(10'000'000, 'x'), 100).size(), 100);
    std::string wide;
    for (int i = 0; i < 200; ++i) {
        wide += "字";
    }
    EXPECT_EQ(displayableText(wide, 100).size(), 100);
}

TEST(NotificationCapabilitiesTest, AreReadFromTheNamesOfTheService) {
    const auto all =
        NotificationCapabilities::from({"actions", "body", "body-markup", "inline-reply", "x-other"});
    EXPECT_TRUE(all.actions && all.body && all.bodyMarkup && all.inlineReply);
    const auto none = NotificationCapabilities::from({"action", "bodies"});
    EXPECT_FALSE(none.actions || none.body || none.bodyMarkup || none.inlineReply);
}

} // namespace
} // namespace velloway::test
