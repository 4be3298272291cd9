#include "json/JsonReader.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

namespace {

/// What this program has taken from the allocator at present.
std::size_t heldBytes = 0;

} // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    heldBytes += ::malloc_usable_size(block);
    return block;
}
void operator delete(void* block) noexcept {
    heldBytes -= ::malloc_usable_size(block);
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    operator delete(block);
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
