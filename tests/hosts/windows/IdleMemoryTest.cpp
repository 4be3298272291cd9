#include "hosts/linux/windows/IdleMemory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace velloway::test {
namespace {

constexpr std::size_t length = std::size_t{64} << 10;

/// A file in memory, mapped; its pages are read once.
class MappedFile {
public:
    MappedFile(int rights, int kind) {
        char name[] = "/tmp/velloway-idle.XXXXXX";
        const int file = mkstemp(name);
        unlink(name);
        const std::string content(length, 'f');
        EXPECT_EQ(write(file, content.data(), length), static_cast<ssize_t>(length));
        bytes_ = static_cast<char*>(mmap(nullptr, length, rights, kind, file, 0));
        close(file);
        volatile char sum = 0;
        for (std::size_t at = 0; at < length; at += 4096) {
            sum = static_cast<char>(sum + bytes_[at]);
        }
    }
    ~MappedFile() { munmap(bytes_, length); }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    char* bytes() { return bytes_; }
    /// How many of its pages this process holds.
    std::size_t pagesHeld() const {
        const int map = open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC);
        std::vector<std::uint64_t> entries(length / 4096);
        const auto place = static_cast<off_t>(reinterpret_cast<std::uintptr_t>(bytes_) / 4096 * 8);
        EXPECT_GT(pread(map, entries.data(), entries.size() * 8, place), 0);
        close(map);
        std::size_t held = 0;
        for (const std::uint64_t entry : entries) {
            held += entry >> 63U;
        }
        return held;
    }

private:
    char* bytes_ = nullptr;
};

/// Bytes of memory that the process holds.
long resident() {
    std::ifstream file("/proc/self/statm");
    long all = 0;
    long held = 0;
    file >> all >> held;
    return held * sysconf(_SC_PAGESIZE);
}

TEST(IdleMemoryTest, PagesOfFilesThatMayBeReadAgainAreLetGo) {
    MappedFile library(PROT_READ, MAP_PRIVATE);
    ASSERT_EQ(library.pagesHeld(), length / 4096);
    giveBackIdleMemory();
    EXPECT_EQ(library.pagesHeld(), 0u);
    EXPECT_EQ(library.bytes()[5000], 'f');
}

TEST(IdleMemoryTest, WhatExistsNowhereElseStays) {
    MappedFile relocated(PROT_READ | PROT_WRITE, MAP_PRIVATE);
    std::memset(relocated.bytes() + 4096, 'r', 4096);
    mprotect(relocated.bytes(), length, PROT_READ);
    MappedFile writable(PROT_READ | PROT_WRITE, MAP_PRIVATE);
    MappedFile shared(PROT_READ, MAP_SHARED);
    giveBackIdleMemory();
    EXPECT_EQ(relocated.bytes()[5000], 'r');
    EXPECT_EQ(relocated.pagesHeld(), length / 4096);
    EXPECT_EQ(writable.pagesHeld(), length / 4096);
    EXPECT_EQ(shared.pagesHeld(), length / 4096);
}

TEST(IdleMemoryTest, FreedMemoryGoesBackToTheSystem) {
    constexpr int count = 4000;
    constexpr std::size_t size = 16'000;
    std::vector<char*> pieces;
    for (int index = 0; index < count; ++index) {
        pieces.push_back(static_cast<char*>(std::malloc(size)));
        std::memset(pieces.back(), 1, size);
    }
    // What is still in use at the end of the heap keeps the rest with the allocator.
    void* const last = std::malloc(1000);
    for (char* piece : pieces) {
        std::free(piece);
    }
    const long before = resident();
    giveBackIdleMemory();
    EXPECT_LT(resident(), before - 20'000'000);
    std::free(last);
}

} // namespace
} // namespace velloway::test
