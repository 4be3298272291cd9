#pragma once

namespace velloway {

/// The index of a tab is a stored key; it does not follow the order of the rows.
namespace tabIndex {
inline constexpr int settings = 0;
inline constexpr int notifications = 1;
inline constexpr int sms = 2;
inline constexpr int info = 3;
inline constexpr int call = 4;
inline constexpr int fileDrop = 5;
inline constexpr int clipboard = 6;
inline constexpr int remote = 7;
} // namespace tabIndex

} // namespace velloway
