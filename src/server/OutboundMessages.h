#pragma once

#include "state/Records.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The text of every message to the phone but the two of a file, which are in features/FileMessages.h. Free
/// text of the user is escaped, a slash included; numbers and booleans are put in as they stand. Absent when a
/// text that must be escaped is not UTF-8.
namespace velloway::outbound {

std::optional<std::string> connected(std::string_view deviceName);
std::string connectedFallback();
std::string findDevice();
std::optional<std::string> mediaCommand(std::string_view command);
std::optional<std::string> navCommand(std::string_view command);
std::string getSmsHistory();
std::string getCallHistory();
std::optional<std::string> clipboard(std::string_view text);
std::string makeCall(std::string_view number, std::int64_t simSlot);
std::string answerCall();
std::string hangupCall();
std::string toggleSpeaker(bool enabled);
std::string toggleMute(bool enabled);
std::optional<std::string> reply(const ReplyActionMessage& message);
std::optional<std::string> sendSms(const SendSmsActionMessage& message);

} // namespace velloway::outbound
