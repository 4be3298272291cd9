#include "json/JsonReader.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

// Every form that the libraries in this program use is replaced, as what one of them gives another takes back.

namespace {

/// What this program has taken from the allocator at present.
std::atomic<std::size_t> heldBytes = 0;

/// Each block has its size in front.
constexpr std::size_t headSize = alignof(std::max_align_t);

void* take(std::size_t size) noexcept {
    auto* const block = static_cast<std::byte*>(std::malloc(headSize + size));
    if (block == nullptr) {
        return nullptr;
    }
    std::memcpy(block, &size, sizeof size);
    heldBytes += size;
    return block + headSize;
}

void giveBack(void* memory) noexcept {
    if (memory == nullptr) {
        return;
    }
    std::byte* const block = static_cast<std::byte*>(memory) - headSize;
    std::size_t size = 0;
    std::memcpy(&size, block, sizeof size);
    heldBytes -= size;
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) {
    void* const memory = take(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return take(size);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return take(size);
}
void operator delete(void* memory) noexcept {
    giveBack(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    giveBack(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept {
    giveBack(memory);
}

namespace velloway::test {

TEST(JsonReader, GivesTheMemoryOfALongTextWithoutItsEscapesBackWhenReleased) {
    JsonReader reader(1000);
    std::string error;
    std::string text = R"(["\/)" + std::string(2'000'000, 'x') + R"("])";
    const std::size_t size = text.size();
    text.append(64, ' ');
    const auto parse = [&] { return reader.parse(std::string_view(text).substr(0, size), 64, error); };
    parse();
    reader.release();
    const std::size_t before = heldBytes;
    parse()->forEachElement([](const JsonValue& element) { return element.text()->size() == 2'000'001; });
    EXPECT_GT(heldBytes, before + 2'000'000);
    reader.release();
    EXPECT_LT(heldBytes, before + 100'000);
}

} // namespace velloway::test
