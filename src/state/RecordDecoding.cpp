#include "state/RecordDecoding.h"

#include <string>
#include <string_view>
#include <utility>

namespace velloway {

namespace {

bool read(const JsonValue& value, std::string& field) {
    const auto text = value.text();
    if (text) {
        field = *text;
    }
    return text.has_value();
}

bool read(const JsonValue& value, ImmutableText& field) {
    const auto text = value.text();
    if (text) {
        field = *text;
    }
    return text.has_value();
}

bool read(const JsonValue& value, std::int64_t& field) {
    const auto integer = value.integer();
    field = integer.value_or(field);
    return integer.has_value();
}

bool read(const JsonValue& value, double& field) {
    const auto real = value.real();
    field = real.value_or(field);
    return real.has_value();
}

template <class T> bool read(const JsonValue& value, std::optional<T>& field) {
    return read(value, field.emplace());
}

/// Reads the keys of one record into its fields, and remembers whether all went well.
class RecordReader {
public:
    explicit RecordReader(const JsonValue& record) : record_(record), isGood_(record.isObject()) {}

    template <class T> RecordReader& require(std::string_view key, T& field) {
        const auto value = record_.member(key);
        isGood_ = isGood_ && value && read(*value, field);
        return *this;
    }

    /// Leaves `field` as it is when the key is missing or null.
    template <class T> RecordReader& allow(std::string_view key, T& field) {
        const auto value = record_.member(key);
        isGood_ = isGood_ && (!value || value->isNull() || read(*value, field));
        return *this;
    }

    bool isGood() const { return isGood_; }

private:
    const JsonValue& record_;
    bool isGood_;
};

template <class Record> std::optional<Record> ifGood(const RecordReader& reader, Record record) {
    return reader.isGood() ? std::optional(std::move(record)) : std::nullopt;
}

template <class Record> std::optional<std::vector<Record>>
decodeList(const JsonValue& message, std::string_view key, std::optional<Record> (*decode)(const JsonValue&)) {
    const auto list = message.member(key);
    std::vector<Record> records;
    const bool isGood = list && list->forEachElement([&](const JsonValue& element) {
        auto record = decode(element);
        const bool isDecoded = record.has_value();
        if (isDecoded) {
            records.push_back(*std::move(record));
        }
        return isDecoded;
    });
    return isGood ? std::optional(std::move(records)) : std::nullopt;
}

} // namespace

std::optional<NotifPayload> decodeNotifPayload(const JsonValue& value, const Host& host) {
    NotifPayload payload;
    payload.time = secondsSince1970(host.now());
    const auto reader = RecordReader(value)
                            .allow("app", payload.app)
                            .allow("title", payload.title)
                            .allow("body", payload.body)
                            .allow("time", payload.time)
                            .allow("key", payload.key);
    return ifGood(reader, std::move(payload));
}

std::optional<SmsRecord> decodeSmsRecord(const JsonValue& value) {
    SmsRecord record;
    const auto reader = RecordReader(value)
                            .allow("address", record.address)
                            .allow("name", record.name)
                            .allow("body", record.body)
                            .allow("date", record.date)
                            .allow("type", record.type);
    return ifGood(reader, std::move(record));
}

std::optional<CallRecord> decodeCallRecord(const JsonValue& value) {
    CallRecord record;
    const auto reader = RecordReader(value)
                            .require("number", record.number)
                            .allow("name", record.name)
                            .require("date", record.date)
                            .require("duration", record.duration)
                            .require("type", record.type);
    return ifGood(reader, std::move(record));
}

std::optional<SimInfo> decodeSimInfo(const JsonValue& value) {
    SimInfo sim;
    const auto reader = RecordReader(value).require("slot", sim.slot).require("carrier", sim.carrier);
    return ifGood(reader, std::move(sim));
}

std::optional<std::vector<SmsRecord>> decodeSmsHistory(const JsonValue& message) {
    return decodeList(message, "messages", decodeSmsRecord);
}

std::optional<std::vector<CallRecord>> decodeCallHistory(const JsonValue& message) {
    return decodeList(message, "calls", decodeCallRecord);
}

std::optional<std::vector<SimInfo>> decodeSims(const JsonValue& message) {
    return decodeList(message, "sims", decodeSimInfo);
}

} // namespace velloway
