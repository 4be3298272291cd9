#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <string_view>

namespace velloway::test {

/// Texts that end where the memory of the process ends: to read one byte more is fatal.
class EndOfMemory {
public:
    EndOfMemory()
        : pages_(static_cast<char*>(
              ::mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        ::mprotect(pages_ + size, size, PROT_NONE);
    }
    ~EndOfMemory() { ::munmap(pages_, 2 * size); }
    EndOfMemory(const EndOfMemory&) = delete;
    EndOfMemory& operator=(const EndOfMemory&) = delete;

    /// The text with so many bytes behind it that may be read.
    std::string_view place(std::string_view text, std::size_t readableAfter = 0) {
        char* const at = pages_ + size - readableAfter - text.size();
        text.copy(at, text.size());
        return {at, text.size()};
    }

private:
    static constexpr std::size_t size = 65'536;
    char* const pages_;
};

} // namespace velloway::test
