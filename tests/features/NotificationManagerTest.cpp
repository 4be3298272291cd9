#include "features/FeatureTest.h"

#include <cmath>
#include <limits>

namespace velloway::test {

namespace {

using namespace std::chrono_literals;

class NotificationManagerTest : public FeatureTest {
protected:
    void post(const std::string& app, const std::string& title, const std::string& body,
              std::optional<std::string> key = {}) {
        notificationManager.post({.app = app, .title = title, .body = body, .key = std::move(key)});
    }
    const NotificationContent& content() const { return host.notificationCenter.requests.back().content; }
    Entries onScreen() const {
        Entries identifiers;
        for (const auto& [identifier, request] : host.notificationCenter.delivered) {
            identifiers.push_back(identifier);
        }
        return identifiers;
    }

    /// Whether a second notification with this title is dropped as the worse copy.
    bool countsAsNumber(const std::string& title) {
        FakeUserNotificationCenter center;
        NotificationManager manager(center, host.host, host.log);
        manager.post({.app = "Messages", .title = "first", .body = "same"});
        manager.post({.app = "Messages", .title = title, .body = "same"});
        return center.requests.size() == 1;
    }
};

using NotificationManagerDeathTest = NotificationManagerTest;

} // namespace

TEST_F(NotificationManagerTest, DropsTheCopyThatKnowsTheSenderOnlyByNumber) {
    post("Messages", "Ann", "hi", "k1");
    host.host.time += 1s;
    post("Phone", "+49 151 1234567", "hi", "k2");
    EXPECT_EQ(onScreen(), (Entries{"k1"}));
    EXPECT_EQ(host.journal.take(), (Entries{"add k1"}));
}

TEST_F(NotificationManagerTest, KeepsTheTimeOfTheFirstWhenACopyIsDropped) {
    post("Messages", "Ann", "hi", "k1");
    host.host.time += 2s;
    post("Messages", "+4915112345", "hi", "k2");
    host.host.time += 1s;
    post("Messages", "+4915112345", "hi", "k3");
    EXPECT_EQ(onScreen(), (Entries{"k1", "k3"}));
}

TEST_F(NotificationManagerTest, PutsTheCopyWithANameInPlaceOfTheOneWithANumber) {
    post("Messages", "015112345678", "hi", "k1");
    host.host.time += 2'999ms;
    post("Messages", "Ann", "hi", "k2");
    EXPECT_EQ(onScreen(), (Entries{"k2"}));
    EXPECT_EQ(host.journal.take(), (Entries{"add k1", "removeDelivered k1", "removePending k1", "add k2"}));
}

TEST_F(NotificationManagerTest, ShowsOneFreshBannerForTwoAlike) {
    post("Messages", "Ann", "hi", "k1");
    post("Messages", "Ann", "hi", "k2");
    EXPECT_EQ(onScreen(), (Entries{"k2"}));
}

TEST_F(NotificationManagerTest, LetsBothStandAfterExactlyThreeSeconds) {
    post("Messages", "Ann", "hi", "k1");
    host.host.time += 3s;
    post("Messages", "015112345678", "hi", "k2");
    EXPECT_EQ(onScreen(), (Entries{"k1", "k2"}));
}

TEST_F(NotificationManagerTest, ComparesBodiesAcrossApps) {
    post("Mail", "Ann", "same text", "k1");
    post("Chat", "Bob", "same text", "k2");
    EXPECT_EQ(onScreen(), (Entries{"k2"}));
}

TEST_F(NotificationManagerTest, ComparesBodiesWithoutTheBlanksAroundThem) {
    post("Mail", "Ann", " \t\u00a0\u3000", "k1");
    post("Mail", "Ann", "", "k2");
    EXPECT_EQ(onScreen(), (Entries{"k2"}));
    EXPECT_EQ(host.notificationCenter.requests[0].content.body, " \t\u00a0\u3000");
}

TEST_F(NotificationManagerTest, KeepsBodiesApartByTheirLineBreaks) {
    post("Mail", "Ann", "hi", "k1");
    post("Mail", "Ann", "hi\n", "k2");
    EXPECT_EQ(onScreen(), (Entries{"k1", "k2"}));
    EXPECT_EQ(notificationManager.rememberedBodies(), 2u);
}

TEST_F(NotificationManagerTest, ForgetsBodiesAfterThirtySecondsWhenTheNextOneComes) {
    post("Mail", "Ann", "one");
    host.host.time += 1ms;
    post("Mail", "Ann", "two");
    host.host.time += 30s - 1ms;
    EXPECT_EQ(notificationManager.rememberedBodies(), 2u);
    post("Mail", "Ann", "three");
    EXPECT_EQ(notificationManager.rememberedBodies(), 2u) << "only the one of exactly thirty seconds goes";
}

TEST_F(NotificationManagerTest, NamesTheAppAndThenTheSender) {
    post("Mail", "Ann", "text", "k");
    EXPECT_EQ(content(), (NotificationContent{.title = "Mail",
                                              .subtitle = "Ann",
                                              .body = "text",
                                              .hasDefaultSound = true,
                                              .threadIdentifier = "Mail",
                                              .categoryIdentifier = "REPLY_CATEGORY"}));
    post("Mail", "", "text2");
    EXPECT_EQ(content().title, "Mail");
    EXPECT_EQ(content().subtitle, "");
}

TEST_F(NotificationManagerTest, NamesTheSenderAloneWhenTheAppIsUnknown) {
    post("Unknown", "Ann", "one");
    EXPECT_EQ(content().title, "Ann");
    EXPECT_EQ(content().subtitle, std::nullopt);
    EXPECT_EQ(content().threadIdentifier, "Unknown");
    post("", "Ann", "two");
    EXPECT_EQ(content().title, "Ann");
    EXPECT_EQ(content().threadIdentifier, "");
    post("", "", "three");
    EXPECT_EQ(content().title, "Velloway");
    EXPECT_EQ(content().subtitle, std::nullopt);
    EXPECT_EQ(content().categoryIdentifier, "REPLY_CATEGORY");
}

TEST_F(NotificationManagerTest, UsesTheKeyAsIdentifierAndElseAComposite) {
    post("Mail", "Ann", "one", "k");
    post("Mail", "Ann", "two", "");
    post("Mail", "Ann", "\t three ");
    EXPECT_EQ(host.journal.take(), (Entries{"add k", "add ", "add Mail:Ann:three"}));
}

TEST_F(NotificationManagerTest, ReplacesInPlaceUnderTheSameKeyWithoutRemoving) {
    post("Mail", "Ann", "one", "k");
    post("Mail", "Ann", "two", "k");
    EXPECT_EQ(onScreen(), (Entries{"k"}));
    EXPECT_EQ(host.journal.take(), (Entries{"add k", "add k"}));
}

TEST_F(NotificationManagerTest, RemovesADoubleFirstEvenUnderTheSameKey) {
    post("Mail", "Ann", "one", "k");
    post("Mail", "Ann", "one", "k");
    EXPECT_EQ(host.journal.take(), (Entries{"add k", "removeDelivered k", "removePending k", "add k"}));
}

TEST_F(NotificationManagerTest, FindsADoubleWithoutAKeyByWhatWasShown) {
    post("Mail", "015112345678", "one");
    post("Chat", "Ann", " one ");
    EXPECT_EQ(host.journal.take(),
              (Entries{"add Mail:015112345678:one", "removeDelivered Mail:015112345678:one",
                       "removePending Mail:015112345678:one", "add Chat:Ann:one"}));
    post("Chat", "Ann", "one\t");
    EXPECT_EQ(host.journal.take(),
              (Entries{"removeDelivered Chat:Ann:one", "removePending Chat:Ann:one", "add Chat:Ann:one"}));
    EXPECT_EQ(notificationManager.rememberedBodies(), 1u);
}

TEST_F(NotificationManagerTest, LogsAFailedPostAndRemembersItAllTheSame) {
    host.notificationCenter.addError = "not allowed";
    post("Mail", "Ann", "one", "k1");
    EXPECT_EQ(host.log.take(), (Entries{"[Notifications] Post error: not allowed"}));
    post("Mail", "1234567", "one", "k2");
    EXPECT_EQ(host.notificationCenter.requests.size(), 1u);
    EXPECT_TRUE(host.log.lines().empty());
}

TEST_F(NotificationManagerTest, KnowsPhoneNumbersFromNames) {
    struct {
        const char* title;
        bool isNumber;
    } const cases[] = {
        {"", false},
        {"+", true},
        {"+Ann", true},
        {" +4912345678", true},
        {" +Ann", false},
        {"1234567  ", false},
        {"  1234567", false},
        {"1234567", true},
        {"123456", false},
        {"01511 2345 67", true},
        {"(030) 12-34567", false},
        {"12345678ab", false},
        {"123456789ab", true},
        {"١٢٣٤٥٦٧", true},
        {"①②③④⑤⑥⑦", true},
        {"ⅦⅧⅨ½¼¾Ⅰ", true},
        {"123456é", false},
        {"Ann", false},
        // Seven digits with an accent each are seven characters, not fourteen.
        {"1\u03012\u03013\u03014\u03015\u03016\u03017\u0301", true},
    };
    for (const auto& [title, isNumber] : cases) {
        EXPECT_EQ(countsAsNumber(title), isNumber) << title;
    }
}

TEST_F(NotificationManagerTest, ShowsItsOwnMessagesEachUnderAnIdentifierOfItsOwn) {
    notificationManager.postSimple("Title", "Body");
    notificationManager.postSimple("Title", "Body");
    const auto& requests = host.notificationCenter.requests;
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0].content,
              (NotificationContent{.title = "Title", .body = "Body", .hasDefaultSound = true}));
    EXPECT_NE(requests[0].identifier, requests[1].identifier);
    EXPECT_THAT(requests[0].identifier, testing::MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
    EXPECT_EQ(host.notificationCenter.hadCompletion, (std::vector<bool>{false, false}));
}

TEST_F(NotificationManagerTest, ShowsFileProgressUnderTheGivenIdentifier) {
    struct {
        double progress;
        const char* title;
        const char* body;
        bool hasSound;
    } const cases[] = {
        {0.0, "Receiving File...", "a.txt (0%)", false},    {0.999, "Receiving File...", "a.txt (99%)", false},
        {1.0, "File Received", "a.txt (100%)", true},       {1.5, "File Received", "a.txt (150%)", true},
        {-0.005, "Receiving File...", "a.txt (0%)", false},
    };
    for (const auto& [progress, title, body, hasSound] : cases) {
        notificationManager.postFileProgress("a.txt", progress, "id");
        EXPECT_EQ(content(), (NotificationContent{.title = title, .body = body, .hasDefaultSound = hasSound}));
    }
    EXPECT_EQ(onScreen(), (Entries{"id"}));
}

TEST_F(NotificationManagerDeathTest, StopsTheProcessOverAProgressThatIsNoWholeNumber) {
    // A hundred times the last one is 2^63, the first whole number that does not fit.
    for (const double progress :
         {std::nan(""), std::numeric_limits<double>::infinity(), 1e17, -1e18, 92233720368547760.0}) {
        EXPECT_DEATH(notificationManager.postFileProgress("a", progress, "id"),
                     "Fatal error: The progress of a file is not a whole number of percent\n");
    }
    notificationManager.postFileProgress("a", 9e16, "id");
    EXPECT_EQ(content().body, "a (9000000000000000000%)");
}

} // namespace velloway::test
