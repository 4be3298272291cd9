#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

using Instant = std::chrono::sys_time<std::chrono::nanoseconds>;

inline double secondsSince1970(Instant instant) {
    return std::chrono::duration<double>(instant.time_since_epoch()).count();
}

/// One entry of the system's list of network interfaces.
struct NetworkInterface {
    std::string name;
    unsigned flags = 0;
    /// `noAddress` for an entry without an address, which ends the process when the local address is searched.
    /// A host on which such entries are everyday ones (tunnels on Linux) leaves them out of its list.
    int addressFamily = 0;
    static constexpr int noAddress = -1;
    /// The address in numeric form; empty when the system could not put it into text.
    std::string numericAddress;
};

/// Facts about the computer and the user. Any thread may ask.
class Host {
public:
    virtual ~Host() = default;

    /// The computer's name as its user knows it.
    virtual std::optional<std::string> localizedName() const = 0;
    /// Absent when the system names none.
    virtual std::optional<std::filesystem::path> downloadsDirectory() const = 0;
    virtual Instant now() const = 0;
    /// An ICU locale name.
    virtual std::string locale() const = 0;
    /// An ICU time zone name.
    virtual std::string timeZone() const = 0;
    /// In the system's order; absent when the system gives no list.
    virtual std::optional<std::vector<NetworkInterface>> networkInterfaces() const = 0;
    /// How the names of wired and wireless interfaces begin on this system.
    virtual std::vector<std::string> interfacePrefixes() const = 0;
};

} // namespace velloway
