#include "tabs/TabHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
        view->activeRecipient.set(std::move(recipient));
        view->chatText.set(std::move(text));
    }
    std::vector<std::string> rowNames() {
        std::vector<std::string> names;
        for (const SmsThreadRow& row : view->smsList().rows) {
            names.push_back(row.name);
        }
        return names;
    }
};

// The list

TEST_F(SmsTabTest, AnEmptyLogWithoutASearchShowsTheEmptyState) {
    EXPECT_TRUE(view->smsList().showsEmptyState);
    EXPECT_FALSE(view->smsList().showsClearButton);
}

TEST_F(SmsTabTest, ASearchInAnEmptyLogShowsAnEmptyList) {
    view->contactQuery.set("abc");
    EXPECT_FALSE(view->smsList().showsEmptyState);
    EXPECT_TRUE(view->smsList().showsClearButton);
    EXPECT_EQ(view->smsList().newMessageTo, std::nullopt);
    EXPECT_THAT(view->smsList().rows, IsEmpty());
}

TEST_F(SmsTabTest, ASearchThatMatchesNothingShowsAnEmptyList) {
    view->phoneSmsLog.set({{.address = "1"}});
    view->contactQuery.set("zzz");
    EXPECT_FALSE(view->smsList().showsEmptyState);
    EXPECT_THAT(view->smsList().rows, IsEmpty());
}

TEST_F(SmsTabTest, ARowShowsNameInitialsDateAndPreview) {
    view->phoneCallLog.set({{.number = "07700900123", .name = "Anna Bell"}});
    view->phoneSmsLog.set({{.address = "+447700900123", .body = "last", .date = 1'700'000'000'000},
                           {.address = "07700900123", .name = "Sister", .body = "first", .date = 5}});
    view->activeRecipient.set("+447700900123");
    EXPECT_THAT(view->smsList().rows, ElementsAre(SmsThreadRow{.id = "7700900123",
                                                               .displayAddress = "+447700900123",
                                                               .avatarInitials = "AB",
                                                               .name = "Sister",
                                                               .date = "22:13",
                                                               .preview = "last",
                                                               .isActive = true}));
}

TEST_F(SmsTabTest, ANameThatOnlyTheMessagesKnowIsNotInTheAvatar) {
    view->phoneSmsLog.set({{.address = "+447700", .name = "Anna Bell"}});
    EXPECT_EQ(view->smsList().rows.at(0).avatarInitials, "+");
    EXPECT_EQ(view->smsList().rows.at(0).name, "Anna Bell");
}

TEST_F(SmsTabTest, PressingARowOpensItsChatAndKeepsTheSearch) {
    view->contactQuery.set("77");
    view->openConversation("+44 77");
    EXPECT_EQ(view->activeRecipient.get(), "+44 77");
    EXPECT_EQ(view->contactQuery.get(), "77");
}

TEST_F(SmsTabTest, ANumberCanBeWrittenTo) {
    view->contactQuery.set("+44 77");
    EXPECT_TRUE(view->looksNumeric.get());
    EXPECT_TRUE(view->showSuggestions.get());
    EXPECT_EQ(view->smsList().newMessageTo, "+44 77");
    view->startNewMessage();
    EXPECT_EQ(view->activeRecipient.get(), "+44 77");
    EXPECT_EQ(view->contactQuery.get(), "");
    EXPECT_FALSE(view->looksNumeric.get());
    EXPECT_EQ(view->smsList().newMessageTo, std::nullopt);
}

TEST_F(SmsTabTest, TheNewRecipientIsExactlyWhatWasTyped) {
    view->contactQuery.set(" 123 ");
    EXPECT_EQ(view->smsList().newMessageTo, " 123 ");
    view->startNewMessage();
    EXPECT_EQ(view->activeRecipient.get(), " 123 ");
}

TEST_F(SmsTabTest, ClearingTheSearchAndRefreshing) {
    view->contactQuery.set("1");
    view->clearSearch();
    EXPECT_EQ(view->contactQuery.get(), "");
    view->refreshSmsHistory();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"get_sms_history"})"));
}

// The chat

TEST_F(SmsTabTest, WithoutARecipientThereIsNoChat) {
    EXPECT_EQ(view->chatHeader(), std::nullopt);
    EXPECT_THAT(view->smsBubbles(), IsEmpty());
}

TEST_F(SmsTabTest, TheHeaderShowsTheAddressOnlyBelowAnotherName) {
    view->phoneSmsLog.set({{.address = "5", .name = "Anna"}});
    view->activeRecipient.set("5");
    EXPECT_EQ(view->chatHeader(), (ChatHeader{.name = "Anna", .address = "5"}));
    view->activeRecipient.set("6");
    EXPECT_EQ(view->chatHeader(), (ChatHeader{.name = "6"}));
}

TEST_F(SmsTabTest, AnotherSpellingLosesHighlightAndThreadButNotTheMessages) {
    view->phoneSmsLog.set({{.address = "+447700900123", .name = "Anna", .body = "hi", .date = 2}});
    view->activeRecipient.set("07700900123");
    EXPECT_FALSE(view->smsList().rows.at(0).isActive);
    EXPECT_EQ(view->chatHeader()->name, "07700900123");
    EXPECT_EQ(view->smsBubbles().size(), 1u);
}

TEST_F(SmsTabTest, TheHeaderOffersTheSims) {
    view->activeRecipient.set("5");
    EXPECT_THAT(view->chatHeader()->sims, IsEmpty());
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    EXPECT_THAT(view->chatHeader()->sims, ElementsAre(SimChoice{"One", 1}, SimChoice{"Two", 2}));
}

TEST_F(SmsTabTest, BubblesRunOldestFirstAndOnlyType2IsOutgoing) {
    view->phoneSmsLog.set({{.address = "5", .body = "c", .date = 1'700'000'000'000, .type = 0},
                           {.address = "5", .body = "b", .date = 1'699'999'940'000, .type = 2},
                           {.address = "5", .body = "a", .date = 1'699'999'880'000, .type = 1}});
    view->activeRecipient.set("5");
    EXPECT_THAT(view->smsBubbles(), ElementsAre(SmsBubble{1'699'999'880'000, "a", "22:11", false},
                                                SmsBubble{1'699'999'940'000, "b", "22:12", true},
                                                SmsBubble{1'700'000'000'000, "c", "22:13", false}));
}

// Sending

TEST_F(SmsTabTest, SendingReachesThePhoneAndEchoesAtOnce) {
    view->selectedSimSlot.set(1);
    chat("+1 (555) 010-1234", "He said \"a/b\"");
    view->sendChatMessage();
    EXPECT_THAT(
        takeSent(),
        ElementsAre(R"({"action":"send_sms","number":"15550101234","body":"He said \"a\/b\"","simSlot":1})"));
    EXPECT_THAT(
        view->phoneSmsLog.get(),
        ElementsAre(SmsRecord{
            .address = "+1 (555) 010-1234", .body = "He said \"a/b\"", .date = 1'700'000'000'000, .type = 2}));
    EXPECT_EQ(view->chatText.get(), "");
    EXPECT_EQ(view->smsList().rows.at(0).id, "5550101234");
    EXPECT_TRUE(view->smsList().rows.at(0).isActive);
}

TEST_F(SmsTabTest, TheThreadTakesTheSpellingOfTheSentMessageAndMovesUp) {
    view->phoneSmsLog.set({{.address = "9", .date = 20}, {.address = "5550101234", .date = 10}});
    chat("+1 (555) 010-1234", "x");
    view->sendChatMessage();
    EXPECT_EQ(view->smsList().rows.at(0).displayAddress, "+1 (555) 010-1234");
    EXPECT_TRUE(view->smsList().rows.at(0).isActive);
}

struct NumberCase {
    std::string recipient, number;
};

class SmsNumberTest : public testing::TestWithParam<NumberCase>, protected TabHarness {};

TEST_P(SmsNumberTest, OnlyDigitsAreSent) {
    view->activeRecipient.set(GetParam().recipient);
    view->chatText.set("x");
    view->sendChatMessage();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"send_sms","number":")" + GetParam().number +
                                        R"(","body":"x","simSlot":0})"));
}

INSTANTIATE_TEST_SUITE_P(Recipients, SmsNumberTest,
                         testing::Values(NumberCase{"Bank 24", "24"}, NumberCase{"Bank", ""},
                                         NumberCase{"+447700900123", "447700900123"}));

TEST_F(SmsTabTest, WithoutARecipientOrATextNothingIsSent) {
    view->chatText.set("x");
    view->sendChatMessage();
    EXPECT_EQ(view->chatText.get(), "x");
    chat("5", "");
    EXPECT_FALSE(view->composer().canSend);
    view->sendChatMessage();
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_THAT(view->phoneSmsLog.get(), IsEmpty());
}

TEST_F(SmsTabTest, AMessageOfBlanksIsSent) {
    chat("5", "  ");
    EXPECT_TRUE(view->composer().canSend);
    view->sendChatMessage();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"send_sms","number":"5","body":"  ","simSlot":0})"));
}

TEST_F(SmsTabTest, WithNoPhoneTheEchoStillShows) {
    phone->report(ConnectionState::cancelled);
    on.drain();
    chat("5", "x");
    view->sendChatMessage();
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_EQ(view->smsBubbles().size(), 1u);
}

TEST_F(SmsTabTest, AHistoryReplacesTheLogWholesale) {
    chat("5", "x");
    view->sendChatMessage();
    link.notifications.post(AppNotification::smsHistoryUpdated, std::vector<SmsRecord>{{.address = "6"}});
    EXPECT_THAT(view->smsBubbles(), IsEmpty());
    EXPECT_THAT(rowNames(), ElementsAre("6"));
}

// SIM choice

TEST_F(SmsTabTest, TheFirstSimIsChosenWheneverTheSimsChange) {
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}});
    EXPECT_EQ(view->selectedSimSlot.get(), 1);
    view->selectedSimSlot.set(2);
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    EXPECT_EQ(view->selectedSimSlot.get(), 1) << "overrides the user's choice";
}

TEST_F(SmsTabTest, NoSimsLeaveTheChoice) {
    store.availableSIMs.set({{.slot = 3, .carrier = "One"}});
    store.availableSIMs.set({});
    EXPECT_EQ(view->selectedSimSlot.get(), 3);
}

TEST_F(SmsTabTest, TheSameSimsAgainLeaveTheChoice) {
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    view->selectedSimSlot.set(2);
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    EXPECT_EQ(view->selectedSimSlot.get(), 2);
}

// Redrawing

TEST_F(SmsTabTest, ViewsLearnOfEachChange) {
    int list = 0;
    int chats = 0;
    int composers = 0;
    const auto one = view->observe(SettingsView::Shown::smsList, [&] { ++list; });
    const auto two = view->observe(SettingsView::Shown::smsChat, [&] { ++chats; });
    const auto three = view->observe(SettingsView::Shown::composer, [&] { ++composers; });
    view->contactQuery.set("abc");
    EXPECT_EQ(list, 1);
    EXPECT_EQ(chats, 0);
    view->activeRecipient.set("5");
    EXPECT_EQ(list, 2);
    EXPECT_EQ(chats, 1);
    view->chatText.set("x");
    EXPECT_EQ(composers, 1);
    store.availableSIMs.set({{.slot = 0, .carrier = "One"}});
    EXPECT_EQ(chats, 2);
}

TEST_F(SmsTabTest, ARedrawAfterASearchAlreadySeesWhetherItLooksNumeric) {
    std::optional<std::string> shown;
    const auto observer =
        view->observe(SettingsView::Shown::smsList, [&] { shown = view->smsList().newMessageTo; });
    view->contactQuery.set("123");
    EXPECT_EQ(shown, "123");
}

// List and chat share what they are made from; no redraw may see what was made from an older log.

TEST_F(SmsTabTest, ARedrawAfterAChangeOfTheMessagesSeesTheNewOnes) {
    view->activeRecipient.set("5");
    std::vector<std::size_t> rows;
    std::vector<std::size_t> bubbles;
    const auto list =
        view->observe(SettingsView::Shown::smsList, [&] { rows.push_back(view->smsList().rows.size()); });
    const auto chats =
        view->observe(SettingsView::Shown::smsChat, [&] { bubbles.push_back(view->smsBubbles().size()); });
    view->phoneSmsLog.set({{.address = "5", .body = "a", .date = 1}, {.address = "6", .body = "b", .date = 2}});
    view->phoneSmsLog.modify([](auto& log) { log.push_back(log.front()); });
    view->phoneSmsLog.modify([](auto& log) { log.erase(log.begin()); });
    view->phoneSmsLog.set({});
    EXPECT_THAT(rows, ElementsAre(2, 2, 2, 0));
    EXPECT_THAT(bubbles, ElementsAre(1, 2, 1, 0));
}

TEST_F(SmsTabTest, ARedrawAfterAChangeOfTheCallsSeesTheNewNames) {
    view->phoneSmsLog.set({{.address = "5", .body = "a", .date = 1}});
    std::vector<std::string> names;
    const auto list = view->observe(SettingsView::Shown::smsList, [&] { names = rowNames(); });
    view->phoneCallLog.set({{.number = "5", .name = "Anna"}});
    EXPECT_THAT(names, ElementsAre("Anna"));
    view->phoneCallLog.modify([](auto& log) { log.front().name = "Bella"; });
    EXPECT_THAT(names, ElementsAre("Bella"));
    view->phoneCallLog.set({});
    EXPECT_THAT(names, ElementsAre("5"));
}

TEST_F(SmsTabTest, ListAndChatAskForTheConversationsOnceBetweenTwoChanges) {
    view->phoneSmsLog.set({{.address = "5", .body = "a", .date = 1}, {.address = "6", .body = "b", .date = 2}});
    const Conversation* first = view->conversations().data();
    view->activeRecipient.set("5");
    view->contactQuery.set("a");
    EXPECT_EQ(view->conversations().data(), first);
    EXPECT_EQ(view->filteredConversations().at(0), &view->conversations().at(1));
}

TEST(SmsTextsTest, AreExact) {
    EXPECT_EQ(smsTexts::searchPlaceholder, "To: Search or type number…");
    EXPECT_EQ(smsTexts::noChat, "Select a conversation or search for a contact to begin.");
    EXPECT_EQ(smsTexts::empty, "No Messages");
    EXPECT_EQ(smsTexts::noSim, "No SIM connected");
    EXPECT_EQ(smsTexts::newConversation, "New Conversation");
    EXPECT_EQ(smsTexts::newMessageCaption, "New message to");
}

} // namespace
} // namespace velloway::test
