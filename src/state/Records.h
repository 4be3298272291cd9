#pragma once

#include "platform/Host.h"
#include "platform/ImmutableText.h"
#include "state/Uuid.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace velloway {

/// One mirrored notification of the phone.
struct NotifPayload {
    Uuid id = Uuid::random();
    std::string app;
    std::string title;
    /// Shared with whatever shows it: a body may be large.
    ImmutableText body;
    /// Seconds since 1970, as it came.
    double time = 0;
    /// The phone's own handle for this notification.
    std::optional<std::string> key;

    /// Time of day, with a short date before it unless `time` lies in today.
    std::string formattedTime(const Host& host) const;

    bool operator==(const NotifPayload&) const = default;
};

/// One SIM slot of the phone.
struct SimInfo {
    std::int64_t slot = 0;
    std::string carrier;

    std::int64_t id() const { return slot; }
    bool operator==(const SimInfo&) const = default;
};

/// One SMS of the phone's history.
struct SmsRecord {
    std::string address;
    std::optional<std::string> name;
    std::string body;
    /// Milliseconds since 1970.
    double date = 0;
    /// 2 is a sent message; anything else counts as received.
    std::int64_t type = 1;

    /// Messages of the same millisecond share an identity.
    double id() const { return date; }
    bool operator==(const SmsRecord&) const = default;
};

/// One call of the phone's history.
struct CallRecord {
    std::string number;
    std::optional<std::string> name;
    /// Milliseconds since 1970.
    double date = 0;
    std::int64_t duration = 0;
    std::int64_t type = 0;

    /// Calls of the same millisecond share an identity.
    double id() const { return date; }
    bool operator==(const CallRecord&) const = default;
};

/// A ringing call.
struct IncomingCallInfo {
    std::string number;
    std::optional<std::string> name;

    bool operator==(const IncomingCallInfo&) const = default;
};

/// One row of the transfer list.
struct FileTransferRecord {
    Uuid id;
    std::string fileName;
    /// Where the file lies; absent until known.
    std::optional<std::filesystem::path> url;
    /// Bytes, as announced.
    std::int64_t fileSize = 0;
    Instant date;
    bool isOutgoing = false;
    /// Share of the file done. Above 1 when more came than was announced.
    double progress = 0;
    bool isCompleted = false;

    bool operator==(const FileTransferRecord&) const = default;
};

/// One text received from the phone's clipboard.
struct ClipboardRecord {
    Uuid id = Uuid::random();
    std::string text;
    Instant date;

    bool operator==(const ClipboardRecord&) const = default;
};

/// The `reply` message; only ever written.
struct ReplyActionMessage {
    std::string key;
    std::string message;
};

/// The `send_sms` message; only ever written.
struct SendSmsActionMessage {
    std::string number;
    std::string body;
    std::int64_t simSlot = 0;
};

} // namespace velloway

template <> struct std::hash<velloway::SimInfo> {
    std::size_t operator()(const velloway::SimInfo& sim) const noexcept {
        const std::size_t slot = std::hash<std::int64_t>{}(sim.slot);
        return slot ^
               (std::hash<std::string>{}(sim.carrier) + 0x9e3779b97f4a7c15ULL + (slot << 6) + (slot >> 2));
    }
};
