#include "json/JsonReader.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace velloway::test {

namespace {

constexpr std::size_t shortestLongText = 8;
constexpr std::size_t readableAfter = 64;

/// A reader that leaves long texts where they are, and one that parses everything.
class LongTextsTest : public testing::Test {
protected:
    std::optional<JsonValue> parse(std::string_view text) {
        // What lies behind the text would change its meaning if it were read as a part of it.
        bytes.assign(text.begin(), text.end());
        bytes.insert(bytes.end(), readableAfter, '"');
        error.clear();
        return reader.parse({bytes.data(), text.size()}, readableAfter, error);
    }

    bool isInPlace(std::string_view text) const {
        return text.data() >= bytes.data() && text.data() < bytes.data() + bytes.size();
    }

    void expectSameAsWhole(const std::string& text) {
        const auto value = parse(text);
        std::string wholeError;
        const auto whole = wholeReader.parse(text, 0, wholeError);
        ASSERT_EQ(value.has_value(), whole.has_value()) << text;
        EXPECT_EQ(error, wholeError) << text;
        if (value && value->isObject()) {
            for (const char* key : {"name", "data", "", "a\\b"}) {
                const auto member = value->member(key);
                const auto wholeMember = whole->member(key);
                ASSERT_EQ(member.has_value(), wholeMember.has_value()) << text << ", " << key;
                EXPECT_EQ(member ? member->text() : std::nullopt,
                          wholeMember ? wholeMember->text() : std::nullopt)
                    << text << ", " << key;
            }
        }
    }

    JsonReader reader{shortestLongText};
    JsonReader wholeReader;
    std::vector<char> bytes;
    std::string error;
};

TEST_F(LongTextsTest, StaysWhereItIsUntilItIsAskedForWithoutItsEscapes) {
    std::string escaped = R"(\/AB+\/\/)";
    std::string plain = "/AB+//";
    for (int i = 0; i < 40; ++i) {
        escaped += std::string(static_cast<std::size_t>(i), 'x') + R"(\/)";
        plain += std::string(static_cast<std::size_t>(i), 'x') + "/";
    }
    const auto root = parse(R"({"n":1.5,"name":"a","data":")" + escaped + R"(","isLast":true})");
    ASSERT_TRUE(root) << error;
    const auto data = root->member("data");
    ASSERT_TRUE(data);
    EXPECT_EQ(data->slashEscapedText(), escaped);
    EXPECT_TRUE(isInPlace(*data->slashEscapedText()));
    EXPECT_EQ(data->text(), plain);
    EXPECT_EQ(data->text(), plain);
    EXPECT_EQ(root->member("name")->text(), "a");
    EXPECT_EQ(root->member("name")->slashEscapedText(), "a");
    EXPECT_EQ(root->member("n")->real(), 1.5);
    EXPECT_EQ(root->member("isLast")->boolean(), true);
    EXPECT_FALSE(root->member("n")->slashEscapedText());
}

TEST_F(LongTextsTest, IsFoundAmongValuesOfEveryKind) {
    const auto root = parse(R"([1,-2,2.5,18446744073709551615,{"k":"kkkkkkkkkk\/","":null},true,"short",)"
                            R"(["llllllllllllllllll"],false,"mmmmmmmmmmmmmmmm\/m"])");
    ASSERT_TRUE(root) << error;
    std::vector<std::string> texts;
    ASSERT_TRUE(root->forEachElement([&](const JsonValue& element) {
        if (const auto member = element.member("k")) {
            texts.emplace_back(*member->text());
        }
        element.forEachElement([&](const JsonValue& inner) {
            texts.emplace_back(*inner.text());
            return true;
        });
        if (const auto text = element.text()) {
            texts.emplace_back(*text);
        }
        return true;
    }));
    EXPECT_EQ(texts,
              (std::vector<std::string>{"kkkkkkkkkk/", "short", "llllllllllllllllll", "mmmmmmmmmmmmmmmm/m"}));
}

TEST_F(LongTextsTest, MayBeAKey) {
    const auto root =
        parse(R"({"long long long key" : "value","x":"yyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyy"})");
    ASSERT_TRUE(root) << error;
    EXPECT_EQ(root->member("long long long key")->text(), "value");
    EXPECT_FALSE(root->member(""));
    EXPECT_TRUE(isInPlace(*root->member("x")->slashEscapedText()));
}

TEST_F(LongTextsTest, OfEqualKeysTheLastCounts) {
    const auto root = parse(R"({"data":"aaaaaaaaaaaaaaaaaaaaaaa","data":"bbbbbbbbbbbbbbbbbbbbbbbb"})");
    ASSERT_TRUE(root) << error;
    EXPECT_EQ(root->member("data")->text(), "bbbbbbbbbbbbbbbbbbbbbbbb");
}

TEST_F(LongTextsTest, IsReadWithNumbersOfAnySizeBesideIt) {
    const auto root = parse(R"({"n":1e400,"data":"aaaaaaaaaaaaaaaaaaaaaaaaaaaaa\/"})");
    ASSERT_TRUE(root) << error;
    EXPECT_EQ(root->member("data")->text(), "aaaaaaaaaaaaaaaaaaaaaaaaaaaaa/");
    EXPECT_EQ(root->member("data")->slashEscapedText(), "aaaaaaaaaaaaaaaaaaaaaaaaaaaaa/");
}

TEST_F(LongTextsTest, ChangesNothingOfWhatIsJsonAndWhatIsWrongWithTheRest) {
    const std::string message = "\xEF\xBB\xBF"
                                R"({"name":"gr)"
                                "\xC3\xBC"
                                R"(n","n":12,"data":"aaaaaaaaaa\/)" +
                                std::string(130, 'b') + R"(\/","isLast":false} )";
    expectSameAsWhole(message);
    for (std::size_t size = 0; size < message.size(); ++size) {
        expectSameAsWhole(message.substr(0, size));
    }
    for (std::size_t at = 0; at < message.size(); ++at) {
        for (const std::string_view wrong : {"\"", "\\", "\\\\", "/", "\n", "\x80", "\xC3\xBC", "\x7F", "",
                                             "\\u002f", "\\n", "{", "}", "\\\"", ","}) {
            expectSameAsWhole(message.substr(0, at) + std::string(wrong) + message.substr(at + 1));
        }
    }
}

TEST_F(LongTextsTest, HoldsNothingButPlainCharacters) {
    const std::string filler(70, 'a');
    for (int byte = 0; byte < 256; ++byte) {
        for (const std::size_t at : {0U, 1U, 15U, 16U, 63U, 64U, 69U}) {
            std::string text = filler;
            text[at] = static_cast<char>(byte);
            expectSameAsWhole(R"({"data":")" + text + R"(","name":"b"})");
        }
    }
}

TEST_F(LongTextsTest, OfAnyContentAreReadAsBySomebodyWhoParsesEverything) {
    std::mt19937 random(1);
    const auto below = [&](unsigned count) { return random() % count; };
    const std::vector<std::string> pieces{"a",     "bb",    "cccccccc", std::string(70, 'd'),
                                          R"(\/)", R"(\")", R"(\\)",    R"(\u0041)",
                                          " ",     R"(\n)", "\xC3\xBC"};
    const std::vector<std::string> blanks{"", "", " ", "\n", std::string(12, ' '), std::string(90, ' ')};
    const auto text = [&] {
        std::string made = "\"";
        for (unsigned count = below(6); count > 0; --count) {
            made += pieces[below(static_cast<unsigned>(pieces.size()))];
        }
        return made + "\"";
    };
    const auto blank = [&] { return blanks[below(static_cast<unsigned>(blanks.size()))]; };
    const auto value = [&] {
        switch (below(4)) {
        case 0:
            return std::string("[") + blank() + text() + "," + text() + "]";
        case 1:
            return std::string(R"({"data":)") + text() + blank() + "}";
        default:
            return text();
        }
    };
    const std::string mostOfIt = "\"" + std::string(900, 'd') + R"(\/dddddddd")";
    int found = 0;
    for (int round = 0; round < 3'000; ++round) {
        const std::string message = R"({"x":)" + value() + blank() + R"(,"name":)" + blank() + text() +
                                    blank() + R"(,"y":)" + value() + R"(,"data":)" +
                                    (below(2) == 0 ? text() : mostOfIt) + blank() + "}";
        expectSameAsWhole(message);
        const auto root = parse(message);
        found += root && isInPlace(root->member("data")->slashEscapedText().value_or("")) ? 1 : 0;
    }
    EXPECT_GT(found, 300) << "texts that were left where they are";
}

} // namespace

} // namespace velloway::test
