#include "hosts/linux/notifications/NotificationCall.h"
#include "hosts/linux/notifications/LongIdentifiers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {
namespace {

constexpr unsigned loud = presentationOptions::banner | presentationOptions::sound;
const std::optional<TextInputNotificationAction> noReply;
const std::optional<TextInputNotificationAction> reply{
    TextInputNotificationAction{"REPLY_ACTION", "Answer", "Send", "Type your reply..."}};
const NotificationContent content{.title = "Chat",
                                  .subtitle = "Ada",
                                  .body = "Hello?",
                                  .hasDefaultSound = true,
                                  .threadIdentifier = "Family",
                                  .categoryIdentifier = "REPLY_CATEGORY"};

TEST(NotificationCallTest, HasItsTextsTheIdThatItReplacesAndTheNameOfTheProgram) {
    const auto call = notificationCall(content, noReply, loud, 17, {.body = true});
    EXPECT_EQ(call.replacesId, 17u);
    EXPECT_EQ(call.summary, "Chat");
    EXPECT_EQ(call.body, "Ada\nHello?");
    EXPECT_TRUE(call.actions.empty());
    EXPECT_EQ(call.hints, (QVariantMap{{"desktop-entry", "org.velloway.Velloway"},
                                       {"urgency", QVariant::fromValue<uchar>(1)},
                                       {"sound-name", "message-new-instant"}}));
    // The bus distinguishes a byte from a number.
    EXPECT_EQ(call.hints["urgency"].typeId(), QMetaType::UChar);
}

TEST(NotificationCallTest, OffersTheActionsThatTheServiceHas) {
    struct Case {
        NotificationCapabilities capabilities;
        QStringList withoutReply;
        QStringList withReply;
        bool hasField;
    };
    const Case cases[] = {
        {{}, {}, {}, false},
        {{.actions = true}, {"default", ""}, {"default", "", "REPLY_ACTION", "Answer"}, false},
        {{.inlineReply = true}, {}, {"inline-reply", "Answer"}, true},
        {{.actions = true, .inlineReply = true},
         {"default", ""},
         {"default", "", "inline-reply", "Answer"},
         true},
    };
    for (const auto& each : cases) {
        const auto without = notificationCall(content, noReply, loud, 0, each.capabilities);
        const auto with = notificationCall(content, reply, loud, 0, each.capabilities);
        EXPECT_EQ(without.actions, each.withoutReply);
        EXPECT_EQ(with.actions, each.withReply);
        EXPECT_FALSE(without.hints.contains("category"));
        EXPECT_EQ(with.hints.value("category"), "im.received");
        EXPECT_FALSE(without.hints.contains("x-kde-reply-placeholder-text"));
        EXPECT_EQ(with.hints.value("x-kde-reply-placeholder-text").toString(),
                  each.hasField ? "Type your reply..." : "");
        EXPECT_EQ(with.hints.value("x-kde-reply-submit-button-text").toString(), each.hasField ? "Send" : "");
    }
}

TEST(NotificationCallTest, MakesASoundOnlyWhereTheContentHasOneAndTheDelegateAllowsIt) {
    for (const bool hasSound : {false, true}) {
        for (const unsigned options : {0u, unsigned(presentationOptions::banner), loud}) {
            NotificationContent sounding = content;
            sounding.hasDefaultSound = hasSound;
            const auto hints = notificationCall(sounding, reply, options, 0, {}).hints;
            const bool isLoud = hasSound && options == loud;
            EXPECT_EQ(hints.value("sound-name").toString(), isLoud ? "message-new-instant" : "");
            EXPECT_EQ(hints.value("suppress-sound"), isLoud ? QVariant() : QVariant(true));
        }
    }
}

TEST(NotificationCallTest, NamesWhereItComesFromWhereTheServiceAsksForIt) {
    struct Case {
        bool canName;
        std::optional<std::string> thread;
        QString name;
    };
    const Case cases[] = {{true, "Family", "Family"},
                          {true, std::string(600, 'x'), QString(499, u'x') + u'…'},
                          {true, "", {}},
                          {true, std::nullopt, {}},
                          {false, "Family", {}}};
    for (const auto& each : cases) {
        NotificationContent named = content;
        named.threadIdentifier = each.thread;
        const auto hints = notificationCall(named, reply, loud, 0, {.originName = each.canName}).hints;
        EXPECT_EQ(hints.contains("x-kde-origin-name"), !each.name.isEmpty());
        EXPECT_EQ(hints.value("x-kde-origin-name").toString(), each.name);
    }
}

TEST(LongIdentifiersTest, KeepsThoseThatAreInUseUntilTheNextComes) {
    LongIdentifiers identifiers;
    std::vector<std::string> asked;
    const auto isOne = [&](const std::string& name) {
        asked.push_back(name);
        return name == "one";
    };
    identifiers.keep("one", ImmutableText(std::string("the first")), isOne);
    identifiers.keep("two", ImmutableText(std::string("the second")), isOne);
    EXPECT_EQ(identifiers.identifierOf("one"), "the first");
    EXPECT_EQ(identifiers.identifierOf("two"), "the second");
    identifiers.keep("one", ImmutableText(std::string("the third")), isOne);
    EXPECT_EQ(identifiers.identifierOf("one"), "the third");
    EXPECT_EQ(identifiers.identifierOf("two"), "two");
    EXPECT_EQ(identifiers.identifierOf("never there"), "never there");
    EXPECT_EQ(asked, (std::vector<std::string>{"one", "one", "two"}));
}

} // namespace
} // namespace velloway::test
