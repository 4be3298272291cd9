#pragma once

#include "json/JsonReader.h"
#include "platform/Host.h"
#include "state/Records.h"

#include <optional>
#include <vector>

/// Typed reads: absent when a required key is missing or any listed key holds another JSON type. A null counts
/// as missing, and other keys are passed over.
namespace velloway {

/// `host` gives the time of a notification that carries none. The `id` is a new one each time.
std::optional<NotifPayload> decodeNotifPayload(const JsonValue& value, const Host& host);
std::optional<SmsRecord> decodeSmsRecord(const JsonValue& value);
std::optional<CallRecord> decodeCallRecord(const JsonValue& value);
std::optional<SimInfo> decodeSimInfo(const JsonValue& value);

// The list under a required key of a message. One bad element fails the whole.
std::optional<std::vector<SmsRecord>> decodeSmsHistory(const JsonValue& message);
std::optional<std::vector<CallRecord>> decodeCallHistory(const JsonValue& message);
std::optional<std::vector<SimInfo>> decodeSims(const JsonValue& message);

} // namespace velloway
