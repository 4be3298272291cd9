#pragma once

#include <cstddef>
#include <string>

/// Made-up message and call logs: the same for the same counts, but for the dates, which end at `now`.
namespace velloway::phone::history {

/// `now` counts milliseconds since 1970. Messages are spread over the threads; the newest stand last.
std::string smsHistory(std::size_t threads, std::size_t messages, double now);
std::string callHistory(std::size_t calls, double now);

/// The message that carries what the file holds: either the whole message or its bare list. Throws
/// std::runtime_error when the file cannot be read or holds neither.
std::string fromFile(const std::string& path, const std::string& action, const std::string& listKey);

} // namespace velloway::phone::history
