#include "json/JsonWriter.h"
#include "json/EndOfMemory.h"
#include "json/JsonReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace velloway::test {

namespace {

std::string written(std::string_view text) {
    JsonWriter writer;
    writer.add("t", text);
    EXPECT_TRUE(writer.isValid());
    return std::move(writer).finish();
}

TEST(JsonWriter, WritesKeysInTheOrderOfTheCalls) {
    JsonWriter writer;
    writer.add("b", "x");
    writer.add("a", std::int64_t{-5});
    writer.addBoolean("d", true);
    writer.addBoolean("c", false);
    EXPECT_EQ(std::move(writer).finish(), R"({"b":"x","a":-5,"d":true,"c":false})");
}

TEST(JsonWriter, WritesAnEmptyObject) {
    EXPECT_EQ(JsonWriter().finish(), "{}");
}

TEST(JsonWriter, WritesTheWholeRangeOfIntegers) {
    JsonWriter writer;
    writer.add("a", std::numeric_limits<std::int64_t>::min());
    writer.add("b", std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(std::move(writer).finish(), R"({"a":-9223372036854775808,"b":9223372036854775807})");
}

TEST(JsonWriter, EscapesQuotesBackslashesSlashesAndControlCharacters) {
    EXPECT_EQ(written("\"\\/"), R"({"t":"\"\\\/"})");
    EXPECT_EQ(written("\b\f\n\r\t"), R"({"t":"\b\f\n\r\t"})");
    using namespace std::string_view_literals;
    EXPECT_EQ(written("\0\x01\x0B\x1F"sv), R"({"t":"\u0000\u0001\u000b\u001f"})");
}

TEST(JsonWriter, LeavesEverythingElseAsItIs) {
    constexpr std::string_view text = " !#.0[]~\x7F\xC3\xA9\xE2\x80\xA8\xE2\x82\xAC\xF0\x9F\x98\x80";
    EXPECT_EQ(written(text), "{\"t\":\"" + std::string(text) + "\"}");
}

TEST(JsonWriter, EscapesAtEveryOffsetAndInEveryLength) {
    JsonReader reader;
    for (std::size_t length = 1; length <= 40; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            for (const char special : {'"', '\\', '/', '\n', '\x01', '\x1F', ' ', '\x7F'}) {
                std::string text(length, 'a');
                text[at] = special;
                const std::string json = written(text);
                std::string error;
                const auto root = reader.parse(json, 0, error);
                ASSERT_TRUE(root) << json;
                ASSERT_EQ(root->member("t")->text(), text);
            }
        }
    }
}

TEST(JsonWriter, EscapesByWhatTheTextHoldsAndNotByWhatLiesAround) {
    const std::string around(64, 'a');
    const std::string text = "aaaaaaaaaaa\"aaaaaaaaaaaaaaaa/";
    const std::string all = around + text + around;
    EXPECT_EQ(written(std::string_view(all).substr(around.size(), text.size())),
              R"({"t":"aaaaaaaaaaa\"aaaaaaaaaaaaaaaa\/"})");
}

TEST(JsonWriter, ReadsNothingBeyondTheEndOfAText) {
    EndOfMemory memory;
    for (std::size_t length = 0; length <= 40; ++length) {
        const std::string rest(length, 'a');
        EXPECT_EQ(written(memory.place(rest)), R"({"t":")" + rest + R"("})");
        // Behind an escape the search goes on from there.
        EXPECT_EQ(written(memory.place("aaaaaaaaaaa/" + rest)), R"({"t":"aaaaaaaaaaa\/)" + rest + R"("})");
    }
}

TEST(JsonWriter, WritesBytesAsBase64WithItsSlashesEscaped) {
    JsonWriter writer;
    writer.addBase64("data", "\xFF\xFF\xFF!");
    EXPECT_EQ(std::move(writer).finish(), R"({"data":"\/\/\/\/IQ=="})");
}

TEST(JsonWriter, SparesNoCharacterWhenAllMustBeEscaped) {
    EXPECT_EQ(written(std::string(100, '/')), [] {
        std::string expected = "{\"t\":\"";
        for (int i = 0; i < 100; ++i) {
            expected += "\\/";
        }
        return expected + "\"}";
    }());
}

TEST(JsonWriter, NoticesTextsThatAreNotUtf8) {
    for (const std::string_view text : {"\xFF", "a\xC3", "\xED\xA0\x80", "\xC0\x80"}) {
        JsonWriter writer;
        writer.add("good", "text");
        EXPECT_TRUE(writer.isValid());
        writer.add("t", text);
        writer.add("later", "text");
        EXPECT_FALSE(writer.isValid());
    }
}

} // namespace

} // namespace velloway::test
