#pragma once

#include <netinet/in.h>

#include <optional>
#include <string>
#include <vector>

namespace velloway::test {

/// The system's list of network interfaces, in place of that of this machine.
struct FakeInterfaces {
    struct Entry {
        std::string name;
        unsigned flags = 0;
        /// Absent for an entry without an address. A family other than the two of the internet has nothing but
        /// its number.
        std::optional<int> family;
        std::string address;
    };
    std::vector<Entry> entries;
    bool fails = false;
    /// Lists that were given out and have not come back.
    int listsAlive = 0;
};
extern FakeInterfaces fakeInterfaces;
/// A loopback interface and a wired one.
FakeInterfaces everydayInterfaces();

} // namespace velloway::test
