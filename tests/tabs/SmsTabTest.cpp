#include "tabs/TabHarness.h"
#include "tabs/sms/SmsTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct SearchCase {
    std::string_view query;
    SearchTextTraits traits;
};

class SearchTextTest : public testing::TestWithParam<SearchCase> {};

TEST_P(SearchTextTest, IsTakenForANumberOrNot) {
    EXPECT_EQ(searchTextTraits(GetParam().query), GetParam().traits);
}

INSTANTIATE_TEST_SUITE_P(Queries, SearchTextTest,
                         testing::Values(SearchCase{"0770", {true, true}}, SearchCase{"+44 77", {true, true}},
                                         SearchCase{"+4", {true, false}}, SearchCase{"12", {true, false}},
                                         SearchCase{"123", {true, true}}, SearchCase{" \t123 ", {true, true}},
                                         SearchCase{"077 00", {false, false}},
                                         SearchCase{"(077)", {false, false}}, SearchCase{"+", {false, false}},
                                         SearchCase{"", {false, false}}, SearchCase{"abc", {false, false}},
                                         SearchCase{"+abc1", {true, false}}, SearchCase{"٠٧٧", {true, true}},
                                         SearchCase{"123\n", {false, false}}));

class SmsTabTest : public testing::Test, protected TabHarness {
protected:
    void chat(std::string recipient, std::string text) {
        view->sms.activeRecipient.set(std::move(recipient));
        view->sms.chatText.set(std::move(text));
    }
    std::vector<std::string> rowNames() {
        std::vector<std::string> names;
        for (const SmsThreadRow& row : view->sms.list.get().rows) {
            names.push_back(row.name);
        }
        return names;
    }
};

// The list

TEST_F(SmsTabTest, AnEmptyLogWithoutASearchShowsTheEmptyState) {
    EXPECT_TRUE(view->sms.list.get().showsEmptyState);
    EXPECT_FALSE(view->sms.list.get().showsClearButton);
}

TEST_F(SmsTabTest, OnlyAWebAddressIsOpened) {
    for (const char* other :
         {"file:///etc/passwd", "javascript:alert(1)", "", "https://a.example b", "x https://a.example"}) {
        view->sms.openLink(other);
    }
    EXPECT_TRUE(on.workspace.opened.empty());
    view->sms.openLink("https://a.example/b?c=d");
    EXPECT_EQ(on.workspace.opened, std::vector<std::string>{"https://a.example/b?c=d"});
}

TEST_F(SmsTabTest, ASearchInAnEmptyLogShowsAnEmptyList) {
    view->sms.contactQuery.set("abc");
    EXPECT_FALSE(view->sms.list.get().showsEmptyState);
    EXPECT_TRUE(view->sms.list.get().showsClearButton);
    EXPECT_EQ(view->sms.list.get().newMessageTo, std::nullopt);
    EXPECT_THAT(view->sms.list.get().rows, IsEmpty());
}

TEST_F(SmsTabTest, ASearchThatMatchesNothingShowsAnEmptyList) {
    view->phone.phoneSmsLog.set({{.address = "1"}});
    view->sms.contactQuery.set("zzz");
    EXPECT_FALSE(view->sms.list.get().showsEmptyState);
    EXPECT_THAT(view->sms.list.get().rows, IsEmpty());
}

TEST_F(SmsTabTest, ARowShowsNameInitialsDateAndPreview) {
    view->phone.phoneCallLog.set({{.number = "07700900123", .name = "Anna Bell"}});
    view->phone.phoneSmsLog.set({{.address = "+447700900123", .body = "last", .date = 1'700'000'000'000},
                                 {.address = "07700900123", .name = "Sister", .body = "first", .date = 5}});
    view->sms.activeRecipient.set("+447700900123");
    EXPECT_THAT(view->sms.list.get().rows, ElementsAre(SmsThreadRow{.id = "7700900123",
                                                                    .displayAddress = "+447700900123",
                                                                    .avatarInitials = "AB",
                                                                    .name = "Sister",
                                                                    .date = "03:43",
                                                                    .preview = "last",
                                                                    .isActive = true}));
}

TEST_F(SmsTabTest, TheDateOfARowIsReadAnewOnAnotherDay) {
    view->phone.phoneSmsLog.set({{.address = "1", .date = 1'700'000'000'000}});
    EXPECT_EQ(view->sms.list.get().rows.at(0).date, "03:43");
    on.host.time += std::chrono::hours(24);
    EXPECT_EQ(view->sms.list.get().rows.at(0).date, "Yesterday");
}

TEST_F(SmsTabTest, ARowGoesByTheAddressAsItWasWritten) {
    view->phone.phoneSmsLog.set({{.address = "+44 7700 900123", .body = "hi", .date = 5}});
    EXPECT_EQ(view->sms.list.get().rows.at(0).name, "+44 7700 900123");
    view->sms.activeRecipient.set("7700900123");
    EXPECT_FALSE(view->sms.list.get().rows.at(0).isActive);
    view->sms.activeRecipient.set("+44 7700 900123");
    EXPECT_TRUE(view->sms.list.get().rows.at(0).isActive);
}

TEST_F(SmsTabTest, ANameThatOnlyTheMessagesKnowIsNotInTheAvatar) {
    view->phone.phoneSmsLog.set({{.address = "+447700", .name = "Anna Bell"}});
    EXPECT_EQ(view->sms.list.get().rows.at(0).avatarInitials, "+");
    EXPECT_EQ(view->sms.list.get().rows.at(0).name, "Anna Bell");
}

TEST_F(SmsTabTest, PressingARowOpensItsChatAndKeepsTheSearch) {
    view->sms.contactQuery.set("77");
    view->sms.openConversation("+44 77");
    EXPECT_EQ(view->sms.activeRecipient.get(), "+44 77");
    EXPECT_EQ(view->sms.contactQuery.get(), "77");
}

TEST_F(SmsTabTest, ANumberCanBeWrittenTo) {
    view->sms.contactQuery.set("+44 77");
    EXPECT_TRUE(view->sms.looksNumeric.get());
    EXPECT_TRUE(view->sms.showSuggestions.get());
    EXPECT_EQ(view->sms.list.get().newMessageTo, "+44 77");
    view->sms.startNewMessage();
    EXPECT_EQ(view->sms.activeRecipient.get(), "+44 77");
    EXPECT_EQ(view->sms.contactQuery.get(), "");
    EXPECT_FALSE(view->sms.looksNumeric.get());
    EXPECT_EQ(view->sms.list.get().newMessageTo, std::nullopt);
}

TEST_F(SmsTabTest, TheNewRecipientIsExactlyWhatWasTyped) {
    view->sms.contactQuery.set(" 123 ");
    EXPECT_EQ(view->sms.list.get().newMessageTo, " 123 ");
    view->sms.startNewMessage();
    EXPECT_EQ(view->sms.activeRecipient.get(), " 123 ");
}

TEST_F(SmsTabTest, ClearingTheSearchAndRefreshing) {
    view->sms.contactQuery.set("1");
    view->sms.clearSearch();
    EXPECT_EQ(view->sms.contactQuery.get(), "");
    view->sms.refreshSmsHistory();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"get_sms_history"})"));
}

// The chat

TEST_F(SmsTabTest, WithoutARecipientThereIsNoChat) {
    EXPECT_EQ(view->sms.chatHeader.get(), std::nullopt);
    EXPECT_THAT(view->sms.activeMessages.get(), IsEmpty());
}

TEST_F(SmsTabTest, TheHeaderShowsTheAddressOnlyBelowAnotherName) {
    view->phone.phoneSmsLog.set({{.address = "5", .name = "Anna"}});
    view->sms.activeRecipient.set("5");
    EXPECT_EQ(view->sms.chatHeader.get(), (ChatHeader{.name = "Anna", .address = "5"}));
    view->sms.activeRecipient.set("6");
    EXPECT_EQ(view->sms.chatHeader.get(), (ChatHeader{.name = "6"}));
}

TEST_F(SmsTabTest, AnotherSpellingLosesHighlightAndThreadButNotTheMessages) {
    view->phone.phoneSmsLog.set({{.address = "+447700900123", .name = "Anna", .body = "hi", .date = 2}});
    for (const char* spelling : {"07700900123", "7700900123"}) {
        view->sms.activeRecipient.set(spelling);
        EXPECT_FALSE(view->sms.list.get().rows.at(0).isActive);
        EXPECT_EQ(view->sms.chatHeader.get()->name, spelling);
        EXPECT_EQ(view->sms.activeMessages.get().size(), 1u);
    }
}

TEST_F(SmsTabTest, TheHeaderOffersTheSims) {
    view->sms.activeRecipient.set("5");
    EXPECT_THAT(view->sms.chatHeader.get()->sims, IsEmpty());
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    EXPECT_THAT(view->sms.chatHeader.get()->sims, ElementsAre(SimChoice{"One", 1}, SimChoice{"Two", 2}));
}

TEST_F(SmsTabTest, BubblesRunOldestFirstAndOnlyType2IsOutgoing) {
    view->phone.phoneSmsLog.set({{.address = "5", .body = "c", .date = 1'700'000'000'000, .type = 0},
                                 {.address = "5", .body = "b", .date = 1'699'999'940'000, .type = 2},
                                 {.address = "5", .body = "a", .date = 1'699'999'880'000, .type = 1}});
    view->sms.activeRecipient.set("5");
    using Bubble = std::tuple<std::string, std::string, bool>;
    std::vector<Bubble> bubbles;
    for (const SmsRecord* message : view->sms.activeMessages.get()) {
        bubbles.emplace_back(message->body, view->sms.formatDate(message->date), isOutgoing(*message));
    }
    EXPECT_THAT(bubbles, ElementsAre(Bubble("a", "03:41", false), Bubble("b", "03:42", true),
                                     Bubble("c", "03:43", false)));
}

// Sending

TEST_F(SmsTabTest, SendingReachesThePhoneAndEchoesAtOnce) {
    view->phone.selectedSimSlot.set(1);
    chat("+1 (555) 010-1234", "He said \"a/b\"");
    view->sms.sendChatMessage();
    EXPECT_THAT(
        takeSent(),
        ElementsAre(R"({"action":"send_sms","number":"15550101234","body":"He said \"a\/b\"","simSlot":1})"));
    EXPECT_THAT(
        view->phone.phoneSmsLog.get(),
        ElementsAre(SmsRecord{
            .address = "+1 (555) 010-1234", .body = "He said \"a/b\"", .date = 1'700'000'000'000, .type = 2}));
    EXPECT_EQ(view->sms.chatText.get(), "");
    EXPECT_EQ(view->sms.list.get().rows.at(0).id, "5550101234");
    EXPECT_TRUE(view->sms.list.get().rows.at(0).isActive);
}

TEST_F(SmsTabTest, AMessageIsSentThenEchoedThenItsTextGoes) {
    chat("5", "x");
    on.drain();
    std::vector<std::string> steps;
    const auto sentBefore = [this] { return on.server.pending() == 0 ? " before the message" : ""; };
    const auto log = view->phone.phoneSmsLog.observe(
        [&](const auto&) { steps.push_back(std::string("echo") + sentBefore()); });
    const auto text =
        view->sms.chatText.observe([&](const auto&) { steps.push_back(std::string("text") + sentBefore()); });
    view->sms.sendChatMessage();
    EXPECT_THAT(steps, ElementsAre("echo", "text"));
}

TEST_F(SmsTabTest, AMessageIsDatedByTheMillisecond) {
    on.host.time += std::chrono::milliseconds(123);
    chat("5", "x");
    view->sms.sendChatMessage();
    EXPECT_DOUBLE_EQ(view->phone.phoneSmsLog.get().at(0).date, 1'700'000'000'123);
}

TEST_F(SmsTabTest, ClearingTheSearchOrOpeningAChatLeavesTheRestAlone) {
    chat("5", "draft");
    view->sms.contactQuery.set("abc");
    view->sms.clearSearch();
    EXPECT_EQ(view->sms.contactQuery.get(), "");
    EXPECT_EQ(view->sms.activeRecipient.get(), "5");
    view->sms.openConversation("6");
    EXPECT_EQ(view->sms.activeRecipient.get(), "6");
    EXPECT_EQ(view->sms.chatText.get(), "draft");
}

TEST_F(SmsTabTest, ANewChatIsOpenedBeforeTheSearchIsCleared) {
    view->sms.contactQuery.set("123");
    std::vector<std::string> steps;
    const auto recipient = view->sms.activeRecipient.observe(
        [&](const auto& address) { steps.push_back("chat with " + address.value_or("")); });
    const auto query =
        view->sms.contactQuery.observe([&](const std::string& text) { steps.push_back("query " + text); });
    view->sms.startNewMessage();
    EXPECT_THAT(steps, ElementsAre("chat with 123", "query "));
}

TEST_F(SmsTabTest, TheThreadTakesTheSpellingOfTheSentMessageAndMovesUp) {
    view->phone.phoneSmsLog.set({{.address = "9", .date = 20}, {.address = "5550101234", .date = 10}});
    chat("+1 (555) 010-1234", "x");
    view->sms.sendChatMessage();
    EXPECT_EQ(view->sms.list.get().rows.at(0).displayAddress, "+1 (555) 010-1234");
    EXPECT_TRUE(view->sms.list.get().rows.at(0).isActive);
}

struct NumberCase {
    std::string recipient, number;
};

class SmsNumberTest : public testing::TestWithParam<NumberCase>, protected TabHarness {};

TEST_P(SmsNumberTest, OnlyDigitsAreSent) {
    view->sms.activeRecipient.set(GetParam().recipient);
    view->sms.chatText.set("x");
    view->sms.sendChatMessage();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"send_sms","number":")" + GetParam().number +
                                        R"(","body":"x","simSlot":0})"));
}

INSTANTIATE_TEST_SUITE_P(Recipients, SmsNumberTest,
                         testing::Values(NumberCase{"Bank 24", "24"}, NumberCase{"Bank", ""},
                                         NumberCase{"+447700900123", "447700900123"}));

TEST_F(SmsTabTest, WithoutARecipientOrATextNothingIsSent) {
    view->sms.chatText.set("x");
    view->sms.sendChatMessage();
    EXPECT_EQ(view->sms.chatText.get(), "x");
    chat("5", "");
    EXPECT_FALSE(view->sms.canSend.get());
    view->sms.sendChatMessage();
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_THAT(view->phone.phoneSmsLog.get(), IsEmpty());
}

TEST_F(SmsTabTest, AMessageOfBlanksIsSent) {
    chat("5", "  ");
    EXPECT_TRUE(view->sms.canSend.get());
    view->sms.sendChatMessage();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"send_sms","number":"5","body":"  ","simSlot":0})"));
}

TEST_F(SmsTabTest, WithNoPhoneTheEchoStillShows) {
    phone->report(ConnectionState::cancelled);
    on.drain();
    chat("5", "x");
    view->sms.sendChatMessage();
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_EQ(view->sms.activeMessages.get().size(), 1u);
}

TEST_F(SmsTabTest, AHistoryReplacesTheLogWholesale) {
    chat("5", "x");
    view->sms.sendChatMessage();
    link.notifications.post(AppNotification::smsHistoryUpdated, std::vector<SmsRecord>{{.address = "6"}});
    EXPECT_THAT(view->sms.activeMessages.get(), IsEmpty());
    EXPECT_THAT(rowNames(), ElementsAre("6"));
}

// SIM choice

TEST_F(SmsTabTest, TheFirstSimIsChosenWheneverTheSimsChange) {
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}});
    EXPECT_EQ(view->phone.selectedSimSlot.get(), 1);
    view->phone.selectedSimSlot.set(2);
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    EXPECT_EQ(view->phone.selectedSimSlot.get(), 1) << "overrides the user's choice";
}

TEST_F(SmsTabTest, NoSimsLeaveTheChoice) {
    store.availableSIMs.set({{.slot = 3, .carrier = "One"}});
    store.availableSIMs.set({});
    EXPECT_EQ(view->phone.selectedSimSlot.get(), 3);
}

TEST_F(SmsTabTest, TheSameSimsAgainLeaveTheChoice) {
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    view->phone.selectedSimSlot.set(2);
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    EXPECT_EQ(view->phone.selectedSimSlot.get(), 2);
}

// Redrawing

TEST_F(SmsTabTest, ViewsLearnOfEachChange) {
    int list = 0;
    int chats = 0;
    int composers = 0;
    const auto one = view->sms.list.observe([&] { ++list; });
    const auto two = view->sms.chatHeader.observe([&] { ++chats; });
    const auto three = view->sms.canSend.observe([&] { ++composers; });
    view->sms.contactQuery.set("abc");
    EXPECT_EQ(list, 1);
    EXPECT_EQ(chats, 0);
    view->sms.activeRecipient.set("5");
    EXPECT_EQ(list, 2);
    EXPECT_EQ(chats, 1);
    view->sms.chatText.set("x");
    EXPECT_EQ(composers, 1);
    store.availableSIMs.set({{.slot = 0, .carrier = "One"}});
    EXPECT_EQ(chats, 2);
}

TEST_F(SmsTabTest, ARedrawAfterASearchAlreadySeesWhetherItLooksNumeric) {
    std::optional<std::string> shown;
    const auto observer = view->sms.list.observe([&] { shown = view->sms.list.get().newMessageTo; });
    view->sms.contactQuery.set("123");
    EXPECT_EQ(shown, "123");
}

// List and chat share what they are made from; no redraw may see what was made from an older log.

TEST_F(SmsTabTest, ARedrawAfterAChangeOfTheMessagesSeesTheNewOnes) {
    view->sms.activeRecipient.set("5");
    std::vector<std::size_t> rows;
    std::vector<std::size_t> bubbles;
    const auto list = view->sms.list.observe([&] { rows.push_back(view->sms.list.get().rows.size()); });
    const auto chats =
        view->sms.activeMessages.observe([&] { bubbles.push_back(view->sms.activeMessages.get().size()); });
    view->phone.phoneSmsLog.set(
        {{.address = "5", .body = "a", .date = 1}, {.address = "6", .body = "b", .date = 2}});
    view->phone.phoneSmsLog.modify([](auto& log) { log.push_back(log.front()); });
    view->phone.phoneSmsLog.modify([](auto& log) { log.erase(log.begin()); });
    view->phone.phoneSmsLog.set({});
    EXPECT_THAT(rows, ElementsAre(2, 2, 2, 0));
    EXPECT_THAT(bubbles, ElementsAre(1, 2, 1, 0));
}

TEST_F(SmsTabTest, ARedrawAfterAChangeOfTheCallsSeesTheNewNames) {
    view->phone.phoneSmsLog.set({{.address = "5", .body = "a", .date = 1}});
    std::vector<std::string> names;
    const auto list = view->sms.list.observe([&] { names = rowNames(); });
    view->phone.phoneCallLog.set({{.number = "5", .name = "Anna"}});
    EXPECT_THAT(names, ElementsAre("Anna"));
    view->phone.phoneCallLog.modify([](auto& log) { log.front().name = "Bella"; });
    EXPECT_THAT(names, ElementsAre("Bella"));
    view->phone.phoneCallLog.set({});
    EXPECT_THAT(names, ElementsAre("5"));
}

TEST_F(SmsTabTest, ListAndChatAskForTheConversationsOnceBetweenTwoChanges) {
    view->phone.phoneSmsLog.set(
        {{.address = "5", .body = "a", .date = 1}, {.address = "6", .body = "b", .date = 2}});
    const Conversation* first = view->phone.conversations().data();
    view->sms.activeRecipient.set("5");
    view->sms.contactQuery.set("a");
    EXPECT_EQ(view->phone.conversations().data(), first);
    EXPECT_EQ(filteredConversations(view->phone.conversations(), "a", view->phone.callNames()).at(0),
              &view->phone.conversations().at(1));
}

TEST_F(SmsTabTest, AThreadOfALongAddressOpensUnderAllOfIt) {
    const std::string one = std::string(10'000, 'w') + "one";
    const std::string other = std::string(10'000, 'w') + "other";
    view->phone.phoneSmsLog.set({{one, std::nullopt, "a", 2, 1}, {"5", std::nullopt, "b", 1, 1}});
    const std::vector<SmsThreadRow> rows = view->sms.list.get().rows;
    EXPECT_LT(rows.at(0).displayAddress.size(), 5000u);
    view->sms.openThread(rows.at(0));
    EXPECT_EQ(view->sms.activeRecipient.get(), one);
    EXPECT_TRUE(view->sms.list.get().rows.at(0).isActive);
    view->sms.openThread(rows.at(1));
    EXPECT_EQ(view->sms.activeRecipient.get(), "5");
    view->phone.phoneSmsLog.set({{other, std::nullopt, "a", 2, 1}});
    view->sms.openThread(rows.at(1));
    EXPECT_EQ(view->sms.activeRecipient.get(), "5") << "also when it has gone";
}

TEST(SmsTextsTest, AreExact) {
    EXPECT_EQ(textOf(smsTexts, "searchPlaceholder"), "To: Search or type number…");
    EXPECT_EQ(textOf(smsTexts, "noChat"), "Select a conversation or search for a contact to begin.");
    EXPECT_EQ(textOf(smsTexts, "empty"), "No Messages");
    EXPECT_EQ(textOf(smsTexts, "noSim"), "No SIM connected");
    EXPECT_EQ(textOf(smsTexts, "newConversation"), "New Conversation");
    EXPECT_EQ(textOf(smsTexts, "newMessageCaption"), "New message to");
}

} // namespace
} // namespace velloway::test
