#include "json/JsonReader.h"
#include "json/EndOfMemory.h"

#include <gtest/gtest.h>
#include <simdjson.h>

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace velloway::test {

namespace {

/// A number beyond the range of the parser, which has a way of its own.
constexpr std::string_view hugeNumber = "1e400";

/// One value in an object, alone or beside a number beyond the range of the parser.
class JsonReaderTest : public testing::TestWithParam<bool> {
protected:
    static std::string wrap(std::string_view value) {
        const std::string head = GetParam() ? "{\"huge\":" + std::string(hugeNumber) + "," : "{";
        return head + "\"v\":" + std::string(value) + "}";
    }

    std::optional<JsonValue> parse(std::string_view text) {
        error.clear();
        // A block of exactly this size, so that a sanitizer sees any read beyond it.
        const std::vector<char> exact(text.begin(), text.end());
        return reader.parse({exact.data(), exact.size()}, 0, error);
    }

    std::optional<JsonValue> value(std::string_view fragment) {
        const auto root = parse(wrap(fragment));
        EXPECT_TRUE(root) << fragment << ": " << error;
        return root ? root->member("v") : std::nullopt;
    }

    bool isRefused(std::string_view fragment) { return !parse(wrap(fragment)) && !error.empty(); }

    JsonReader reader;
    std::string error;
};

INSTANTIATE_TEST_SUITE_P(Neighbours, JsonReaderTest, testing::Values(false, true),
                         [](const auto& test) { return test.param ? "BesideAHugeNumber" : "Alone"; });

TEST_P(JsonReaderTest, KnowsEachTypeAndConvertsNone) {
    const auto null = value("null");
    EXPECT_TRUE(null->isNull());
    EXPECT_FALSE(null->text() || null->integer() || null->real() || null->boolean());

    const auto text = value("\"12\"");
    EXPECT_EQ(text->text(), "12");
    EXPECT_FALSE(text->isNull() || text->isObject() || text->isArray());
    EXPECT_FALSE(text->integer() || text->real() || text->boolean());

    const auto yes = value("true");
    EXPECT_EQ(yes->boolean(), true);
    EXPECT_FALSE(yes->integer() || yes->real() || yes->text());
    EXPECT_EQ(value("false")->boolean(), false);

    const auto one = value("1");
    EXPECT_EQ(one->integer(), 1);
    EXPECT_EQ(one->real(), 1.0);
    EXPECT_FALSE(one->boolean() || one->text());

    EXPECT_TRUE(value("[]")->isArray());
    EXPECT_FALSE(value("[]")->isObject());
    EXPECT_TRUE(value("{}")->isObject());
    EXPECT_FALSE(value("{}")->isArray());
    EXPECT_FALSE(value("[]")->text() || value("{}")->real());
}

TEST_P(JsonReaderTest, ReadsWholeNumbersHoweverTheyAreWritten) {
    const std::vector<std::pair<std::string_view, std::int64_t>> cases{
        {"12", 12},
        {"12.0", 12},
        {"1e3", 1000},
        {"1.5e1", 15},
        {"-7", -7},
        {"-0", 0},
        {"-0.0", 0},
        {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
        {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
        {"-9223372036854775808.0", std::numeric_limits<std::int64_t>::min()},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(value(text)->integer(), expected) << text;
    }
}

TEST_P(JsonReaderTest, ReadsFractionsAndNumbersBeyond64BitsAsRealsOnly) {
    const std::vector<std::pair<std::string_view, double>> cases{
        {"12.5", 12.5},
        {"-0.5", -0.5},
        {"9223372036854775808", 9223372036854775808.0},
        {"9223372036854775807.0", 9223372036854775808.0},
        {"-9223372036854775809", -9223372036854775808.0},
        {"18446744073709551615", 18446744073709551616.0},
        {"18446744073709551616", 18446744073709551616.0},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"1e300", 1e300},
    };
    for (const auto& [text, expected] : cases) {
        const auto number = value(text);
        ASSERT_TRUE(number->real()) << text;
        EXPECT_DOUBLE_EQ(*number->real(), expected) << text;
        EXPECT_FALSE(number->integer()) << text;
    }
    EXPECT_TRUE(std::signbit(*value("-0.0")->real()));
}

TEST_P(JsonReaderTest, ReadsNumbersBeyondADoubleAsInfinite) {
    EXPECT_EQ(value("1e400")->real(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("-1e400")->real(), -std::numeric_limits<double>::infinity());
    EXPECT_FALSE(value("1e400")->integer());
    EXPECT_EQ(value("1e-400")->real(), 0.0);
    EXPECT_EQ(value("0e400")->real(), 0.0);
    EXPECT_EQ(value("0e400")->integer(), 0);
    EXPECT_EQ(value("1e99999999999999999999")->real(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("1e-99999999999999999999")->real(), 0.0);
    EXPECT_EQ(value(std::string(400, '9'))->real(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("-" + std::string(400, '9'))->real(), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("1.7976931348623157e308")->real(), std::numeric_limits<double>::max());
    EXPECT_EQ(value("1.5e400")->real(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(value("-1.5E+400")->real(), -std::numeric_limits<double>::infinity());
    for (const std::string_view fragment : {"1.e400", "01e400", "1.5e400.5", "1e4005e", "-e400", "1..5e400"}) {
        EXPECT_TRUE(isRefused(fragment)) << fragment;
    }
}

TEST_P(JsonReaderTest, KeepsManyOddNumbersApart) {
    const auto numbers =
        value("[9223372036854775808,-1e400,9223372036854775809,1,18446744073709551615,\"1e400\","
              "-9223372036854775809,{\"9\\\"1e400\":20000000000000000000},1e400,2.5]");
    std::vector<double> seen;
    numbers->forEachElement([&](const JsonValue& number) {
        const auto inner = number.member("9\"1e400");
        seen.push_back((inner ? *inner : number).real().value_or(-1));
        return true;
    });
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(seen,
              (std::vector<double>{9223372036854775808.0, -infinity, 9223372036854775808.0, 1,
                                   18446744073709551616.0, -1, -9223372036854775808.0, 2e19, infinity, 2.5}));
}

TEST_P(JsonReaderTest, TakesTheLastOfEqualKeys) {
    const auto object = value(R"({"a":1,"b":0,"a":"two","a":3})");
    EXPECT_EQ(object->member("a")->integer(), 3);
    const auto outer = parse(R"({"v":1,"big":)" + std::string(GetParam() ? hugeNumber : "2") + R"(,"v":[]})");
    EXPECT_TRUE(outer->member("v")->isArray());
}

TEST_P(JsonReaderTest, FindsMembersOfObjectsOnly) {
    EXPECT_FALSE(value(R"({"a":1})")->member("b"));
    EXPECT_FALSE(value(R"({"a":1})")->member("A"));
    EXPECT_FALSE(value(R"(["a"])")->member("a"));
    EXPECT_FALSE(value(R"("a")")->member("a"));
    EXPECT_EQ(value(R"({"\u0061/\/":1})")->member("a//")->integer(), 1);
    EXPECT_EQ(value(R"({"":1})")->member("")->integer(), 1);
    EXPECT_TRUE(value(R"({"a":null})")->member("a")->isNull());
}

TEST_P(JsonReaderTest, WalksTheElementsOfAnArrayUntilTold) {
    std::vector<std::int64_t> seen;
    EXPECT_TRUE(value("[1,2,3]")->forEachElement([&](const JsonValue& element) {
        seen.push_back(*element.integer());
        return true;
    }));
    EXPECT_EQ(seen, (std::vector<std::int64_t>{1, 2, 3}));

    int calls = 0;
    EXPECT_FALSE(value("[1,2,3]")->forEachElement([&](const JsonValue&) { return ++calls < 2; }));
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(value("[]")->forEachElement([](const JsonValue&) { return false; }));
    EXPECT_FALSE(value("{}")->forEachElement([](const JsonValue&) { return true; }));
    EXPECT_FALSE(value("1")->forEachElement([](const JsonValue&) { return true; }));
}

TEST_P(JsonReaderTest, DecodesEscapes) {
    using namespace std::string_view_literals;
    EXPECT_EQ(value(R"("\"\\\/\b\f\n\r\t")")->text(), "\"\\/\b\f\n\r\t");
    EXPECT_EQ(value(R"("a\u0000b")")->text(), "a\0b"sv);
    EXPECT_EQ(value(R"("\u00e9\u20AC\uD83D\uDE00")")->text(), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(value("\"\xF0\x9F\x98\x80\x7F\"")->text(), "\xF0\x9F\x98\x80\x7F");
}

TEST_P(JsonReaderTest, RefusesTextsThatAreNoUnicode) {
    for (const std::string_view fragment :
         {R"("\uDC00")", R"("\uDFFFx")", R"("\uD800")", R"("\uD800\u0041")", R"("\uD800\uD800")",
          R"("\uD83Dx")", "\"\xFF\"", "\"\xC3\"", "\"\xED\xB0\x80\"", "\"\xED\xA0\x80\"", "\"\xC0\xAF\"",
          "\"\xF4\x90\x80\x80\""}) {
        EXPECT_TRUE(isRefused(fragment)) << fragment;
    }
}

TEST_P(JsonReaderTest, RefusesRawControlCharactersInTexts) {
    for (char c = 0; c < 0x20; ++c) {
        EXPECT_TRUE(isRefused(std::string("\"a") + c + "\"")) << int(c);
    }
}

TEST_P(JsonReaderTest, RefusesWhatIsNoJson) {
    for (const std::string_view fragment :
         {"01",        "1.",   ".5",    "+1",    "-",        "1e",      "0x10",    "NaN",
          "Infinity",  "nul",  "true1", "True",  "'a'",      "\"a",     "\"\\x\"", "\"\\u00g0\"",
          "\"\\u12\"", "[1,]", "[,1]",  "[1 2]", "{\"a\":}", "{\"a\"}", "{a:1}",   "{,}",
          "[1]]",      "[",    "",      "1,",    "/**/1",    "\f1"}) {
        EXPECT_TRUE(isRefused(fragment)) << fragment;
    }
    using namespace std::string_view_literals;
    EXPECT_TRUE(isRefused("\0"sv));
    EXPECT_TRUE(isRefused("1\0"sv));
}

TEST_P(JsonReaderTest, RefusesAnythingAfterTheValue) {
    using namespace std::string_view_literals;
    for (const std::string_view tail : {"x"sv, "{}"sv, ","sv, "}"sv, "\0"sv, "\xEF\xBB\xBF"sv}) {
        EXPECT_FALSE(parse(wrap("1") + std::string(tail))) << tail;
    }
    EXPECT_TRUE(parse(" \t\r\n" + wrap("1") + " \t\r\n"));
}

TEST_P(JsonReaderTest, PassesOverOneByteOrderMark) {
    EXPECT_TRUE(parse("\xEF\xBB\xBF" + wrap("1")));
    EXPECT_FALSE(parse("\xEF\xBB\xBF\xEF\xBB\xBF" + wrap("1")));
    EXPECT_FALSE(parse(" \xEF\xBB\xBF" + wrap("1")));
}

TEST_P(JsonReaderTest, Takes512LevelsAndNoMore) {
    const std::string innermost = GetParam() ? std::string(hugeNumber) : "1";
    const auto nested = [](std::size_t levels, const std::string& inside) {
        return std::string(levels, '[') + inside + std::string(levels, ']');
    };
    EXPECT_TRUE(parse(nested(512, innermost)));
    EXPECT_FALSE(parse(nested(513, innermost)));
    EXPECT_FALSE(parse(nested(100'000, innermost)));

    const std::string sibling = innermost + ",";
    for (const std::string_view empty : {"[]", "{}"}) {
        EXPECT_TRUE(parse(nested(511, sibling + std::string(empty)))) << empty;
        EXPECT_FALSE(parse(nested(512, sibling + std::string(empty)))) << empty;
    }
    const auto nestedObjects = [](std::size_t levels, const std::string& inside) {
        std::string text;
        for (std::size_t level = 0; level < levels; ++level) {
            text += R"({"a":)";
        }
        return text + inside + std::string(levels, '}');
    };
    for (const std::string_view inside : {"1", "[]", "{}", "[1]", R"({"b":1})"}) {
        const std::size_t levels = inside == "1" ? 512 : 511;
        EXPECT_TRUE(parse(nestedObjects(levels, std::string(inside)))) << inside;
        EXPECT_FALSE(parse(nestedObjects(levels + 1, std::string(inside)))) << inside;
        EXPECT_TRUE(parse(nested(levels, std::string(inside)))) << inside;
        EXPECT_FALSE(parse(nested(levels + 1, std::string(inside)))) << inside;
    }
    // Siblings do not add up, and numbers on the tape are not taken for brackets.
    std::string siblings = "[" + innermost;
    for (int i = 0; i < 600; ++i) {
        siblings += ",[],{},[6557241057451442176,6.0134700169916e-154,18446744073709551615]";
    }
    EXPECT_TRUE(parse(siblings + "]"));
}

TEST(JsonReader, RefusesValuesThatAreNeitherObjectNorArray) {
    JsonReader reader;
    std::string error;
    for (const std::string_view text :
         {"1", "\"a\"", "null", "true", "1e400", "12345678901234567890123", "", " ", "\xEF\xBB\xBF"}) {
        error.clear();
        EXPECT_FALSE(reader.parse(text, 0, error)) << text;
        EXPECT_FALSE(error.empty()) << text;
    }
    EXPECT_TRUE(reader.parse("[]", 0, error));
    EXPECT_TRUE(reader.parse("{}", 0, error));
}

TEST(JsonReader, SaysWhatIsWrongInTheWordsOfTheParserWithoutItsStop) {
    JsonReader reader;
    std::string error;
    EXPECT_FALSE(reader.parse("1", 0, error));
    EXPECT_EQ(error, "The text holds no object or array at top level");
    EXPECT_FALSE(reader.parse("[1,]", 0, error));
    std::string_view expected = simdjson::error_message(simdjson::TAPE_ERROR);
    while (expected.ends_with('.')) {
        expected.remove_suffix(1);
    }
    EXPECT_EQ(error, expected);
}

TEST(JsonReader, ReadsNothingBeyondTheEnd) {
    EndOfMemory memory;
    JsonReader reader(8);
    std::string error;
    for (const std::string_view text : {R"({"a":"xyz"})", R"({"a":1e400})", R"({"a":1e400,"b":"c\)", R"(["a)",
                                        R"(["a\)", R"([")", "[1e400"}) {
        reader.parse(memory.place(text), 0, error);
    }
    for (std::size_t length = 0; length < 300; ++length) {
        const std::string filler(length, 'x');
        for (const char* end : {R"("})", R"(\)", "", R"(\")"}) {
            const std::string text = R"({"a":")" + filler + end;
            reader.parse(memory.place(text, 64), 64, error);
            reader.parse(memory.place(text), 0, error);
        }
    }
}

TEST(JsonReader, ReadsInPlaceWhenThereIsRoomBehindTheText) {
    JsonReader reader;
    std::string error;
    const std::string text = R"({"a":"xyz","n":12})";
    const std::string buffer = text + std::string(64, '7');
    const auto root = reader.parse(std::string_view(buffer).substr(0, text.size()), 64, error);
    ASSERT_TRUE(root) << error;
    EXPECT_EQ(root->member("a")->text(), "xyz");
    EXPECT_EQ(root->member("n")->integer(), 12);
}

TEST(JsonReader, ReadsOneTextAfterAnotherOfAnySize) {
    JsonReader reader;
    std::string error;
    for (const std::size_t size : {10, 100'000, 10, 3'000'000, 99'999, 3'500'000}) {
        const std::string filler(size, 'x');
        const auto root = reader.parse("{\"a\":\"" + filler + "\"}", 0, error);
        ASSERT_TRUE(root) << error;
        EXPECT_EQ(root->member("a")->text(), filler);
        EXPECT_FALSE(reader.parse("{\"a\":" + filler, 0, error));
    }
}

TEST(JsonReader, GivesTheMemoryOfALargeTextBackWhenReleased) {
    JsonReader reader;
    std::string error;
    ASSERT_TRUE(reader.parse("[\"" + std::string(20'000'000, 'x') + "\"]", 0, error));
    EXPECT_GE(reader.capacity(), 20'000'000U);
    reader.release();
    EXPECT_LE(reader.capacity(), JsonReader::alwaysKept);
    EXPECT_TRUE(reader.parse("[1]", 0, error));
}

TEST(JsonReader, KeepsTheMemoryThatTextsOfOrdinarySizeNeed) {
    JsonReader reader;
    std::string error;
    ASSERT_TRUE(reader.parse("[\"" + std::string(2'000'000, 'x') + "\"]", 0, error));
    const std::size_t capacity = reader.capacity();
    reader.release();
    EXPECT_EQ(reader.capacity(), capacity);
}

} // namespace

} // namespace velloway::test
