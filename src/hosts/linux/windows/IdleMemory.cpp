#include "hosts/linux/windows/IdleMemory.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

#include <malloc.h>
#include <sys/mman.h>

namespace velloway {

namespace {

/// One entry of the list of mappings that the system keeps for the process.
struct Mapping {
    void* start = nullptr;
    void* end = nullptr;
    /// Of a file, not shared, and may not be written.
    bool isReadOnlyFile = false;
};

/// False when the line is not the first one of an entry: the others begin with a capital letter.
bool readHead(const std::string& line, Mapping& mapping) {
    if (line.empty() || (line.front() >= 'A' && line.front() <= 'Z')) {
        return false;
    }
    std::istringstream words(line);
    char dash = 0;
    std::string rights;
    std::string offset;
    std::string device;
    std::uint64_t inode = 0;
    mapping = {};
    if (words >> mapping.start >> dash >> mapping.end >> rights >> offset >> device >> inode) {
        mapping.isReadOnlyFile = inode != 0 && rights.size() == 4 && rights[1] == '-' && rights[3] == 'p';
    }
    return true;
}

/// Pages that were written before they became read-only, such as relocated tables, exist nowhere else.
void letGoOfLibraryPages() {
    std::ifstream list("/proc/self/smaps");
    Mapping mapping;
    for (std::string line; std::getline(list, line);) {
        if (!readHead(line, mapping) && mapping.isReadOnlyFile && line.starts_with("Anonymous:")) {
            if (line.find(" 0 kB") != std::string::npos) {
                const auto size = static_cast<std::byte*>(mapping.end) - static_cast<std::byte*>(mapping.start);
                ::madvise(mapping.start, static_cast<std::size_t>(size), MADV_DONTNEED);
            }
        }
    }
}

} // namespace

void giveBackIdleMemory() {
    ::malloc_trim(0);
    letGoOfLibraryPages();
}

} // namespace velloway
