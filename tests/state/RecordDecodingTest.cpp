#include "state/RecordDecoding.h"
#include "fakes/FakeDesktop.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace velloway::test {

namespace {

class RecordDecoding : public testing::Test {
protected:
    JsonValue parse(std::string_view text) {
        std::string error;
        const auto root = reader_.parse(text, 0, error);
        EXPECT_TRUE(root) << text << ": " << error;
        return *root;
    }

    std::optional<NotifPayload> notification(std::string_view text) {
        return decodeNotifPayload(parse(text), host);
    }
    std::optional<SmsRecord> sms(std::string_view text) { return decodeSmsRecord(parse(text)); }
    std::optional<CallRecord> call(std::string_view text) { return decodeCallRecord(parse(text)); }
    std::optional<SimInfo> sim(std::string_view text) { return decodeSimInfo(parse(text)); }

    /// `object` with the value under `key` replaced; an empty `value` takes the key out.
    static std::string with(const std::vector<std::pair<std::string, std::string>>& object,
                            const std::string& key, const std::string& value) {
        std::string text;
        for (const auto& [name, present] : object) {
            const std::string& chosen = name == key ? value : present;
            if (!chosen.empty()) {
                text += (text.empty() ? "{\"" : ",\"") + name + "\":" + chosen;
            }
        }
        return text.empty() ? "{}" : text + "}";
    }

    FakeHost host;

private:
    JsonReader reader_;
};

TEST_F(RecordDecoding, FillsANotificationFromAnEmptyObject) {
    const auto payload = notification("{}");
    ASSERT_TRUE(payload);
    EXPECT_EQ(payload->app, "");
    EXPECT_EQ(payload->title, "");
    EXPECT_EQ(payload->body, "");
    EXPECT_EQ(payload->time, 1'700'000'000.0);
    EXPECT_EQ(payload->key, std::nullopt);
}

TEST_F(RecordDecoding, MakesANewIdentityAtEachRead) {
    EXPECT_NE(notification("{}")->id, notification("{}")->id);
}

TEST_F(RecordDecoding, ReadsEveryKeyOfANotification) {
    const auto payload = notification(
        R"({"app":"Chat","title":"Anna","body":"a\nb","time":1700000000.5,"key":"k","id":"x","more":[]})");
    ASSERT_TRUE(payload);
    EXPECT_EQ(payload->app, "Chat");
    EXPECT_EQ(payload->title, "Anna");
    EXPECT_EQ(payload->body, "a\nb");
    EXPECT_EQ(payload->time, 1'700'000'000.5);
    EXPECT_EQ(payload->key, "k");
}

TEST_F(RecordDecoding, TakesANotificationTimeAsItStands) {
    EXPECT_EQ(notification(R"({"time":1700000000000})")->time, 1'700'000'000'000.0);
}

TEST_F(RecordDecoding, RefusesANotificationWithAnyKeyOfAnotherType) {
    EXPECT_FALSE(notification(R"({"title":5})"));
    for (const char* key : {"app", "title", "body", "key"}) {
        for (const char* wrong : {"5", "true", "[]", "{}"}) {
            EXPECT_FALSE(notification("{\"" + std::string(key) + "\":" + wrong + "}")) << key << wrong;
        }
        EXPECT_TRUE(notification("{\"" + std::string(key) + "\":null}")) << key;
    }
    EXPECT_FALSE(notification(R"({"time":"5"})"));
    EXPECT_FALSE(notification(R"({"time":true})"));
    EXPECT_EQ(notification(R"({"time":null})")->time, 1'700'000'000.0);
    EXPECT_FALSE(notification("[]"));
}

TEST_F(RecordDecoding, FillsAnSmsFromAnEmptyObject) {
    EXPECT_EQ(sms("{}"), (SmsRecord{.address = "", .name = {}, .body = "", .date = 0, .type = 1}));
}

TEST_F(RecordDecoding, ReadsSmsNumbersHoweverTheyAreWritten) {
    EXPECT_EQ(sms(R"({"date":1700000000000})")->date, 1'700'000'000'000.0);
    EXPECT_EQ(sms(R"({"date":1700000000000.0})")->date, 1'700'000'000'000.0);
    EXPECT_EQ(sms(R"({"type":2.0})")->type, 2);
}

TEST_F(RecordDecoding, RefusesAnSmsWithAnyKeyOfAnotherType) {
    for (const char* bad :
         {R"({"type":"1"})", R"({"type":1.5})", R"({"type":true})", R"({"date":"1"})", R"({"address":7700})",
          R"({"name":1})", R"({"body":false})", "[]", R"({"type":99999999999999999999})"}) {
        EXPECT_FALSE(sms(bad)) << bad;
    }
    EXPECT_EQ(sms(R"({"address":null,"name":null,"body":null,"date":null,"type":null})"), SmsRecord());
    EXPECT_EQ(sms(R"({"name":""})")->name, "");
}

TEST_F(RecordDecoding, NeedsEveryKeyOfACallButTheName) {
    const std::vector<std::pair<std::string, std::string>> good{{"number", "\"5551\""},
                                                                {"name", "\"Anna\""},
                                                                {"date", "1700000000000"},
                                                                {"duration", "61"},
                                                                {"type", "2"}};
    EXPECT_EQ(
        call(with(good, "", "")),
        (CallRecord{.number = "5551", .name = "Anna", .date = 1'700'000'000'000.0, .duration = 61, .type = 2}));
    for (const char* required : {"number", "date", "duration", "type"}) {
        EXPECT_FALSE(call(with(good, required, ""))) << required;
        EXPECT_FALSE(call(with(good, required, "null"))) << required;
        EXPECT_FALSE(call(with(good, required, "[]"))) << required;
    }
    EXPECT_EQ(call(with(good, "name", ""))->name, std::nullopt);
    EXPECT_EQ(call(with(good, "name", "null"))->name, std::nullopt);
    EXPECT_FALSE(call(with(good, "name", "5")));
    EXPECT_FALSE(call(with(good, "number", "5551")));
    EXPECT_FALSE(call(with(good, "duration", "61.5")));
}

TEST_F(RecordDecoding, NeedsBothKeysOfASim) {
    EXPECT_EQ(sim(R"({"slot":1,"carrier":"Two"})"), (SimInfo{.slot = 1, .carrier = "Two"}));
    for (const char* bad : {"{}", R"({"slot":1})", R"({"carrier":"Two"})", R"({"slot":null,"carrier":"Two"})",
                            R"({"slot":"1","carrier":"Two"})", R"({"slot":1,"carrier":null})", "[]"}) {
        EXPECT_FALSE(sim(bad)) << bad;
    }
}

TEST_F(RecordDecoding, LosesTheWholeListWithOneBadElement) {
    constexpr std::string_view goodCall = R"({"number":"1","date":1,"duration":2,"type":3})";
    const std::string good(goodCall);
    EXPECT_EQ(decodeCallHistory(parse("{\"calls\":[" + good + "," + good + "]}"))->size(), 2U);
    EXPECT_FALSE(decodeCallHistory(parse("{\"calls\":[" + good + R"(,{"number":"1","date":1,"type":3}]})")));
    EXPECT_FALSE(decodeSmsHistory(parse(R"({"messages":[{},{"body":5}]})")));
    EXPECT_FALSE(decodeSmsHistory(parse(R"({"messages":[{},null]})")));
    EXPECT_FALSE(decodeSims(parse(R"({"sims":[{"slot":0,"carrier":"One"},{"slot":1}]})")));
}

TEST_F(RecordDecoding, NeedsAListUnderItsKey) {
    EXPECT_TRUE(decodeSmsHistory(parse(R"({"messages":[]})"))->empty());
    for (const char* bad : {"{}", R"({"messages":null})", R"({"messages":{}})", R"({"messages":"[]"})"}) {
        EXPECT_FALSE(decodeSmsHistory(parse(bad))) << bad;
    }
    EXPECT_FALSE(decodeCallHistory(parse("{}")));
    EXPECT_FALSE(decodeSims(parse("{}")));
}

TEST_F(RecordDecoding, KeepsListsInTheOrderOfThePhone) {
    const auto history = decodeSmsHistory(parse(R"({"messages":[{"body":"b"},{"body":"a"}]})"));
    ASSERT_EQ(history->size(), 2U);
    EXPECT_EQ((*history)[0].body, "b");
    EXPECT_EQ((*history)[1].body, "a");
}

TEST(Records, TellSimsOfOneSlotApartByTheirCarrier) {
    const SimInfo one{.slot = 0, .carrier = "One"};
    const SimInfo two{.slot = 0, .carrier = "Two"};
    EXPECT_NE(one, two);
    EXPECT_EQ(one.id(), two.id());
    const std::unordered_set<SimInfo> sims{one, two, one, {.slot = 1, .carrier = "One"}};
    EXPECT_EQ(sims.size(), 3U);
}

TEST(Records, ShareAnIdentityWithinOneMillisecond) {
    EXPECT_EQ((SmsRecord{.body = "a", .date = 5}).id(), (SmsRecord{.body = "b", .date = 5}).id());
    EXPECT_EQ((CallRecord{.number = "a", .date = 5}).id(), (CallRecord{.number = "b", .date = 5}).id());
    EXPECT_EQ((SmsRecord{.date = 5, .type = 2}).id(), 5);
    EXPECT_EQ((CallRecord{.date = 6, .duration = 3, .type = 2}).id(), 6);
    EXPECT_EQ((SimInfo{.slot = 1, .carrier = "One"}).id(), 1);
}

TEST(Records, ShowTheTimeOfTodayAndTheDateOfAnyOtherDay) {
    const FakeHost host;
    NotifPayload payload;
    payload.time = 1'700'000'000 - 3600;
    EXPECT_EQ(payload.formattedTime(host), "02:43");
    payload.time -= 24.0 * 3600;
    EXPECT_EQ(payload.formattedTime(host), "14/11/2023, 02:43");
    payload.time = 1'700'000'000 + 24.0 * 3600;
    EXPECT_EQ(payload.formattedTime(host), "16/11/2023, 03:43");
}

TEST(Records, GoByTheClockOfTheUser) {
    FakeHost host;
    NotifPayload payload;
    payload.time = 1'700'000'000;
    host.zone = "Asia/Kolkata";
    EXPECT_EQ(payload.formattedTime(host), "03:43");
    payload.time -= 4 * 3600.0;
    EXPECT_EQ(payload.formattedTime(host), "14/11/2023, 23:43") << "yesterday there, today at Greenwich";
    host.zone = "America/New_York";
    EXPECT_EQ(payload.formattedTime(host), "13:13");
}

} // namespace

} // namespace velloway::test
