#include "tabs/Conversations.h"

#include "fakes/FakeDesktop.h"
#include "text/Case.h"
#include "text/Digits.h"
#include "text/Graphemes.h"
#include "text/Trim.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SmsRecord sms(std::string address, double date, std::string body = "", std::optional<std::string> name = {}) {
    return {.address = std::move(address), .name = std::move(name), .body = std::move(body), .date = date};
}

CallRecord call(std::string number, std::optional<std::string> name = {}) {
    return {.number = std::move(number), .name = std::move(name), .date = 1};
}

std::vector<std::string> ids(const std::vector<Conversation>& threads) {
    std::vector<std::string> out;
    for (const Conversation& thread : threads) {
        out.push_back(thread.id);
    }
    return out;
}

std::vector<std::string> ids(const std::vector<const Conversation*>& threads) {
    std::vector<std::string> out;
    for (const Conversation* thread : threads) {
        out.push_back(thread->id);
    }
    return out;
}

std::vector<std::string> bodies(const std::vector<const SmsRecord*>& messages) {
    std::vector<std::string> out;
    for (const SmsRecord* message : messages) {
        out.push_back(message->body);
    }
    return out;
}

// Keys

struct KeyCase {
    std::string_view address, key;
};

class NormalizeAddressTest : public testing::TestWithParam<KeyCase> {};

TEST_P(NormalizeAddressTest, GivesTheKey) {
    EXPECT_EQ(normalizeAddress(GetParam().address), GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, NormalizeAddressTest,
    testing::Values(KeyCase{"+44 7700-900123", "7700900123"}, KeyCase{"07700900123", "7700900123"},
                    KeyCase{"447700900123", "7700900123"}, KeyCase{"+1 (555) 010-1234", "5550101234"},
                    KeyCase{"5550101234", "5550101234"}, KeyCase{"123456789", "123456789"},
                    KeyCase{"16216", "16216"}, KeyCase{"Bank ABC", "bank abc"}, KeyCase{"ABC", "abc"},
                    KeyCase{"Bank 24", "24"}, KeyCase{"Bank 1", "1"}, KeyCase{"Shop 1", "1"}, KeyCase{"", ""},
                    KeyCase{"ÄRZTE-Haus", "ärzte-haus"}, KeyCase{"٠٧٧", "٠٧٧"},
                    KeyCase{"+٤٤ ٧٧٠٠-٩٠٠١٢٣", "٧٧٠٠٩٠٠١٢٣"}, KeyCase{"½", "½"}));

// Threads

TEST(ConversationsTest, SpellingsOfOneNumberShareAThreadUnderTheNewestSpelling) {
    const std::vector<SmsRecord> log{sms("+447700900123", 1, "old"), sms("07700900123", 2, "new")};
    const auto threads = conversations(log);
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_EQ(threads[0].id, "7700900123");
    EXPECT_EQ(threads[0].displayAddress, "07700900123");
    EXPECT_THAT(bodies(threads[0].messages), ElementsAre("old", "new"));
    EXPECT_EQ(threads[0].lastMessage()->body, "new");
}

TEST(ConversationsTest, TenAndElevenDigitsShareAThreadAndNineStandAlone) {
    const std::vector<SmsRecord> log{sms("7700900123", 3), sms("07700900123", 2), sms("700900123", 1)};
    EXPECT_THAT(ids(conversations(log)), ElementsAre("7700900123", "700900123"));
}

TEST(ConversationsTest, LettersAreComparedWithoutCaseAndDigitsWinOverLetters) {
    const std::vector<SmsRecord> log{sms("ABC", 4), sms("abc", 3), sms("Bank 1", 2), sms("Shop 1", 1)};
    EXPECT_THAT(ids(conversations(log)), ElementsAre("abc", "1"));
}

TEST(ConversationsTest, AnEmptyAddressHasAThreadOfItsOwn) {
    const std::vector<SmsRecord> log{sms("", 1), sms("1", 2)};
    const auto threads = conversations(log);
    EXPECT_THAT(ids(threads), ElementsAre("1", ""));
    EXPECT_EQ(threads[1].displayAddress, "");
}

TEST(ConversationsTest, AnEmptyLogHasNoThreads) {
    EXPECT_THAT(conversations({}), IsEmpty());
}

TEST(ConversationsTest, RecordsOfOneDateKeepTheOrderOfTheLog) {
    const std::vector<SmsRecord> log{sms("+1", 5, "first"), sms("1", 5, "second"), sms("(1)", 5, "third")};
    const auto threads = conversations(log);
    EXPECT_THAT(bodies(threads[0].messages), ElementsAre("first", "second", "third"));
    EXPECT_EQ(threads[0].displayAddress, "+1") << "the first of the log among the newest";
    EXPECT_EQ(threads[0].lastMessage()->body, "third");
}

TEST(ConversationsTest, TheFirstNameOfTheLogCountsEvenIfEmpty) {
    const std::vector<SmsRecord> log{sms("1", 1), sms("1", 3, "", ""), sms("1", 2, "", "Anna")};
    const auto threads = conversations(log);
    EXPECT_EQ(threads[0].contactName, "");
    EXPECT_EQ(CallNames({call("1", "From the calls")}).contactName("1", threads[0].contactName),
              "From the calls");
}

TEST(ConversationsTest, WithoutAnyNameTheNameIsAbsent) {
    const std::vector<SmsRecord> log{sms("1", 1)};
    EXPECT_EQ(conversations(log)[0].contactName, std::nullopt);
}

TEST(ConversationsTest, ActiveMessagesFollowTheKeyAndNotTheSpelling) {
    const std::vector<SmsRecord> log{sms("+447700900123", 2, "b"), sms("5", 3, "x"),
                                     sms("07700900123", 1, "a")};
    EXPECT_THAT(bodies(activeMessages(conversations(log), "7700 900123")), ElementsAre("a", "b"));
    EXPECT_THAT(activeMessages(conversations(log), std::nullopt), IsEmpty());
    EXPECT_THAT(activeMessages(conversations(log), "999"), IsEmpty());
}

// Search

std::vector<std::string> found(const std::vector<SmsRecord>& log, std::string_view query,
                               const std::vector<CallRecord>& calls = {}) {
    return ids(filteredConversations(conversations(log), query, CallNames(calls)));
}

TEST(ConversationSearchTest, BlanksAreNoSearch) {
    const std::vector<SmsRecord> log{sms("1", 2), sms("2", 1)};
    EXPECT_THAT(found(log, " \t "), ElementsAre("1", "2"));
    EXPECT_THAT(found(log, ""), ElementsAre("1", "2"));
}

TEST(ConversationSearchTest, LooksIntoOldMessagesWhateverTheCase) {
    const std::vector<SmsRecord> log{sms("1", 2, "bye"), sms("1", 1, "oh hello there"), sms("2", 3, "other")};
    EXPECT_THAT(found(log, "HELLO"), ElementsAre("1"));
    EXPECT_THAT(found(log, "  Hello"), ElementsAre("1"));
    EXPECT_THAT(found(log, "hello\n"), IsEmpty()) << "line breaks are part of the search";
}

TEST(ConversationSearchTest, LooksIntoTheShownNameAndTheAddress) {
    const std::vector<SmsRecord> log{sms("+44 7700", 2, "", "Anna"), sms("+44 77-00", 1, "", "Bob")};
    EXPECT_THAT(found(log, "ANN"), ElementsAre("447700"));
    EXPECT_THAT(found({sms("5", 1)}, "carl", {call("5", "Carl")}), ElementsAre("5"));
}

TEST(ConversationSearchTest, DigitsMustStandInARow) {
    EXPECT_THAT(found({sms("+44 7700", 1)}, "7700"), ElementsAre("447700"));
    EXPECT_THAT(found({sms("+44 77-00", 1)}, "7700"), IsEmpty());
}

TEST(ConversationSearchTest, LettersBeyondAsciiFollowTheFullCaseMapping) {
    EXPECT_THAT(found({sms("1", 1, "ПРИВЕТ, как дела")}, "привет"), ElementsAre("1"));
    EXPECT_THAT(found({sms("1", 1, "300 \u212A today")}, "k t"), ElementsAre("1")) << "the Kelvin sign is a k";
    EXPECT_THAT(found({sms("1", 1, "\u0130stanbul")}, "i"), ElementsAre("1"));
    EXPECT_THAT(found({sms("1", 1, "Grüße HELLO")}, "hello"), ElementsAre("1"));
    EXPECT_THAT(found({sms("1", 1, "plain")}, "ü"), IsEmpty());
}

// Names

struct NameCase {
    std::string address;
    std::optional<std::string> provided;
    std::vector<CallRecord> calls;
    std::string name;
};

class ContactNameTest : public testing::TestWithParam<NameCase> {};

TEST_P(ContactNameTest, GivesTheName) {
    EXPECT_EQ(CallNames(GetParam().calls).contactName(GetParam().address, GetParam().provided),
              GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Names, ContactNameTest,
                         testing::Values(NameCase{"1", "Given", {call("1", "Called")}, "Given"},
                                         NameCase{"1", "", {call("1", "Called")}, "Called"},
                                         NameCase{"1", {}, {call("1", "Called")}, "Called"},
                                         NameCase{
                                             "+447700900123", {}, {call("07700900123", "Called")}, "Called"},
                                         NameCase{"1", {}, {call("1"), call("1", "Later")}, "1"},
                                         NameCase{"1", {}, {call("1", ""), call("1", "Later")}, "1"},
                                         NameCase{"1", {}, {call("1", "First"), call("1", "Later")}, "First"},
                                         NameCase{" 1 ", {}, {}, " 1 "}, NameCase{"", {}, {}, ""}));

struct InitialsCase {
    std::string_view address, initials;
};

class AvatarInitialsTest : public testing::TestWithParam<InitialsCase> {};

TEST_P(AvatarInitialsTest, GivesTheInitials) {
    EXPECT_EQ(avatarInitials(GetParam().address, CallNames()), GetParam().initials);
}

INSTANTIATE_TEST_SUITE_P(Initials, AvatarInitialsTest,
                         testing::Values(InitialsCase{"  Anna  Bell ", "AB"}, InitialsCase{"", "?"},
                                         InitialsCase{"anna", "A"}, InitialsCase{"Mary Ann Jones", "MA"},
                                         InitialsCase{"+44 7700", "+7"}, InitialsCase{"+447700", "+"},
                                         InitialsCase{"ßa élan", "SSÉ"}, InitialsCase{" anna", " "},
                                         InitialsCase{"👩‍👧 mum", "👩‍👧M"},
                                         InitialsCase{"e\u0301va", "E\u0301"}, InitialsCase{"a\tb", "A"},
                                         // A blank with an accent is another character and splits nothing.
                                         InitialsCase{"Anna \u0301Bell", "A"}));

TEST(AvatarInitialsFromCallsTest, TheCallLogGivesTheName) {
    EXPECT_EQ(avatarInitials("+1 555", CallNames({call("1555", "Zoe Quinn")})), "ZQ");
}

// Dates

constexpr double lastMidnight = 1'699'920'000'000; // of the fake host's day, in London

FakeHost inLondon() {
    FakeHost host;
    host.zone = "Europe/London";
    return host;
}

TEST(ConversationDatesTest, ATimeStampIsATimeOfDay) {
    const FakeHost host = inLondon();
    EXPECT_EQ(formatDate(lastMidnight + 61'000, host), "00:01");
    EXPECT_EQ(formatDate(lastMidnight - 365 * 86'400'000.0, host), "00:00");
    EXPECT_EQ(formatDate(0, host), "01:00") << "London kept summer time in that winter";
}

TEST(ConversationDatesTest, ARelativeDateIsATimeOrYesterdayOrADate) {
    const FakeHost host = inLondon();
    EXPECT_EQ(RelativeDates(host).text(lastMidnight + 1), "00:00");
    EXPECT_EQ(RelativeDates(host).text(lastMidnight - 1), "Yesterday");
    EXPECT_EQ(RelativeDates(host).text(lastMidnight - 86'400'000), "Yesterday");
    EXPECT_EQ(RelativeDates(host).text(lastMidnight - 86'400'001), "12/11/2023");
}

// The quick ways against the plain ones

std::string plainKey(const std::string& address) {
    const std::string digits = digitsOnly(address);
    if (digits.empty()) {
        return lowerCased(address);
    }
    auto characters = graphemes(digits);
    std::string key;
    for (std::size_t i = characters.size() > 10 ? characters.size() - 10 : 0; i < characters.size(); ++i) {
        key += characters[i];
    }
    return key;
}

std::string plainContactName(const std::string& address, const std::optional<std::string>& provided,
                             const std::vector<CallRecord>& calls) {
    if (provided && !provided->empty()) {
        return *provided;
    }
    for (const CallRecord& record : calls) {
        if (plainKey(record.number) == plainKey(address)) {
            return record.name && !record.name->empty() ? *record.name : address;
        }
    }
    return address;
}

struct PlainThread {
    std::string id, displayAddress;
    std::optional<std::string> contactName;
    std::vector<SmsRecord> messages;
};

std::map<std::string, PlainThread> plainThreads(const std::vector<SmsRecord>& log) {
    std::map<std::string, std::vector<SmsRecord>> groups;
    for (const SmsRecord& record : log) {
        groups[plainKey(record.address)].push_back(record);
    }
    std::map<std::string, PlainThread> threads;
    for (const auto& [key, entry] : groups) {
        PlainThread thread{.id = key, .messages = entry};
        auto descending = entry;
        std::stable_sort(thread.messages.begin(), thread.messages.end(),
                         [](const auto& a, const auto& b) { return a.date < b.date; });
        std::stable_sort(descending.begin(), descending.end(),
                         [](const auto& a, const auto& b) { return a.date > b.date; });
        thread.displayAddress = descending.front().address;
        const auto named =
            std::find_if(entry.begin(), entry.end(), [](const auto& r) { return r.name.has_value(); });
        if (named != entry.end()) {
            thread.contactName = named->name;
        }
        threads.emplace(key, std::move(thread));
    }
    return threads;
}

bool plainlyMatches(const PlainThread& thread, const std::string& query, const std::vector<CallRecord>& calls) {
    const auto contains = [&](const std::string& text) {
        return lowerCased(text).find(query) != std::string::npos;
    };
    return contains(plainContactName(thread.displayAddress, thread.contactName, calls)) ||
           contains(thread.displayAddress) ||
           std::any_of(thread.messages.begin(), thread.messages.end(),
                       [&](const SmsRecord& message) { return contains(message.body); });
}

class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    std::size_t below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(engine_);
    }

    std::string text(std::size_t longest) {
        static const std::vector<std::string> pieces{"0",      "1",      "7", "9", "+", " ", "-", "(",
                                                     "a",      "B",      "k", "K", "i", "é", "É", "٣",
                                                     "\u212A", "\u0130", "Σ", "ς", "ß", "👍"};
        std::string out;
        for (std::size_t left = below(longest + 1); left > 0; --left) {
            out += pieces[below(pieces.size())];
        }
        return out;
    }
    std::optional<std::string> name() {
        return below(3) == 0 ? std::optional<std::string>() : std::optional(text(3));
    }

private:
    std::mt19937 engine_;
};

void expectSame(const std::vector<Conversation>& quick, const std::map<std::string, PlainThread>& plain) {
    ASSERT_EQ(quick.size(), plain.size());
    for (const Conversation& thread : quick) {
        ASSERT_TRUE(plain.contains(thread.id)) << thread.id;
        const PlainThread& expected = plain.at(thread.id);
        EXPECT_EQ(thread.displayAddress, expected.displayAddress);
        EXPECT_EQ(thread.contactName, expected.contactName);
        std::vector<SmsRecord> messages;
        for (const SmsRecord* message : thread.messages) {
            messages.push_back(*message);
        }
        EXPECT_EQ(messages, expected.messages);
    }
    EXPECT_TRUE(std::is_sorted(quick.begin(), quick.end(), [](const auto& a, const auto& b) {
        return a.lastMessage()->date > b.lastMessage()->date;
    }));
}

TEST(ConversationsRandomTest, TheKeyOfALongAddressIsThatOfAShortOne) {
    Dice dice(7);
    const std::string characters = "0189/:;@P`p\x7f -+";
    for (int round = 0; round < 5000; ++round) {
        std::string address(dice.below(40), '-');
        for (char& c : address) {
            c = characters[dice.below(dice.below(2) == 0 ? 4 : characters.size())];
        }
        EXPECT_EQ(normalizeAddress(address), plainKey(address)) << address;
    }
}

TEST(ConversationSearchTest, AQueryLongerThanEveryTextFindsNothingAndAnotherMay) {
    const std::string body(30'000, 'K');
    const std::vector<SmsRecord> log{sms("1", 1, body)};
    const auto threads = conversations(log);
    EXPECT_EQ(filteredConversations(threads, std::string(30'000, 'k'), {}).size(), 1u);
    EXPECT_EQ(filteredConversations(threads, std::string(30'001, 'k'), {}).size(), 0u);
    EXPECT_EQ(filteredConversations(threads, std::string(1'000'000, 'k'), {}).size(), 0u);
    std::string kelvins;
    while (kelvins.size() < 90'000) {
        kelvins += "\u212A";
    }
    EXPECT_EQ(filteredConversations(threads, kelvins, {}).size(), 1u) << "three bytes for a k";
}

TEST(ConversationsRandomTest, TheQuickWaysGiveWhatThePlainOnesGive) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        std::vector<SmsRecord> log;
        std::vector<CallRecord> calls;
        const std::size_t records = dice.below(40);
        const bool isNewestFirst = dice.below(2) == 0;
        for (std::size_t i = 0; i < records; ++i) {
            const double date =
                isNewestFirst ? static_cast<double>(1000 - i) : static_cast<double>(dice.below(20));
            log.push_back(sms(dice.text(12), date, dice.text(20), dice.name()));
            calls.push_back(call(dice.below(2) == 0 ? log.back().address : dice.text(4), dice.name()));
        }
        const auto plain = plainThreads(log);
        const auto threads = conversations(log);
        expectSame(threads, plain);

        const CallNames names(calls);
        for (const SmsRecord& record : log) {
            EXPECT_EQ(names.contactName(record.address, record.name),
                      plainContactName(record.address, record.name, calls));
            const auto& expected = plain.at(plainKey(record.address)).messages;
            std::vector<SmsRecord> active;
            for (const SmsRecord* message : activeMessages(threads, record.address)) {
                active.push_back(*message);
            }
            EXPECT_EQ(active, expected);
        }
        for (int i = 0; i < 10; ++i) {
            const std::string query = lowerCased(trimBlanks(dice.text(3)));
            auto kept = ids(filteredConversations(threads, query, names));
            std::vector<std::string> expected;
            for (const auto& [key, thread] : plain) {
                if (query.empty() || plainlyMatches(thread, query, calls)) {
                    expected.push_back(key);
                }
            }
            EXPECT_THAT(kept, testing::UnorderedElementsAreArray(expected)) << "query: " << query;
        }
    }
}

} // namespace
} // namespace velloway::test
