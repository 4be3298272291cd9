#include "base64/Base64.h"
#include "base64/Base64Kernels.h"
#include "base64/Base64With.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace velloway::test {

namespace {

using namespace std::string_literals;

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// A second codec, as plain as can be: bits in, bits out.
std::optional<std::string> plainDecode(std::string_view text) {
    std::string bits;
    std::size_t letters = 0;
    std::size_t padding = 0;
    for (const char c : text) {
        const std::size_t value = alphabet.find(c);
        if (c == '=') {
            ++padding;
        } else if (value != std::string_view::npos) {
            if (padding > 0) {
                return std::nullopt;
            }
            ++letters;
            for (int bit = 5; bit >= 0; --bit) {
                bits.push_back((value >> bit & 1) != 0 ? '1' : '0');
            }
        }
    }
    const std::size_t wanted = letters % 4 == 0 ? 0 : 4 - letters % 4;
    if (padding != wanted || wanted == 3) {
        return std::nullopt;
    }
    std::string out;
    for (std::size_t i = 0; i + 8 <= bits.size(); i += 8) {
        out.push_back(static_cast<char>(std::stoi(bits.substr(i, 8), nullptr, 2)));
    }
    return out;
}

std::string plainEncode(std::string_view bytes) {
    std::string bits;
    for (const char c : bytes) {
        for (int bit = 7; bit >= 0; --bit) {
            bits.push_back((static_cast<unsigned char>(c) >> bit & 1) != 0 ? '1' : '0');
        }
    }
    while (bits.size() % 6 != 0) {
        bits.push_back('0');
    }
    std::string out;
    for (std::size_t i = 0; i < bits.size(); i += 6) {
        out.push_back(alphabet[static_cast<std::size_t>(std::stoi(bits.substr(i, 6), nullptr, 2))]);
    }
    while (out.size() % 4 != 0) {
        out.push_back('=');
    }
    return out;
}

std::string escapeSlashes(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '/') {
            out.push_back('\\');
        }
        out.push_back(c);
    }
    return out;
}

std::vector<const base64::Kernel*> kernels() {
    std::size_t count = 0;
    const base64::Kernel* const* all = base64::usableKernels(count);
    return {all, all + count};
}

/// Decodes out of and into memory of exactly the promised size, so that a step too far is seen by the
/// sanitizer.
std::optional<std::string> decodeTightly(const base64::Kernel& kernel, std::string_view text) {
    const auto in = std::make_unique<char[]>(text.size());
    std::copy(text.begin(), text.end(), in.get());
    const auto room = std::make_unique<char[]>(base64::decodeRoom(text.size()));
    const auto size = base64::decodeWith(kernel, {in.get(), text.size()}, room.get());
    if (!size) {
        return std::nullopt;
    }
    return std::string(room.get(), *size);
}

std::string encodeTightly(const base64::Kernel& kernel, std::string_view bytes) {
    const auto in = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), in.get());
    std::string out = "before";
    base64::appendEncodedEscapedWith(kernel, out, {in.get(), bytes.size()});
    EXPECT_EQ(out.substr(0, 6), "before");
    return out.substr(6);
}

std::string randomBytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char& c : bytes) {
        c = static_cast<char>(random());
    }
    return bytes;
}

class Base64 : public testing::TestWithParam<const base64::Kernel*> {
protected:
    const base64::Kernel& kernel() const { return *GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Kernels, Base64, testing::ValuesIn(kernels()),
                         [](const auto& kernel) { return std::string(kernel.param->name); });

} // namespace

TEST_P(Base64, DecodesAndEncodesTheStandardExamples) {
    const std::pair<std::string, std::string> examples[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {"\xff\xff\xfe"s, "///+"},
    };
    for (const auto& [bytes, text] : examples) {
        EXPECT_EQ(decodeTightly(kernel(), text), bytes);
        EXPECT_EQ(encodeTightly(kernel(), bytes), escapeSlashes(text));
    }
}

TEST_P(Base64, SkipsLineBreaksBlanksAndAnyOtherUnknownByte) {
    EXPECT_EQ(decodeTightly(kernel(), "Zm9v\r\nYmFy\r\n"), "foobar");
    EXPECT_EQ(decodeTightly(kernel(), " Z m\t9-v_\0\x80\xff"s), "foo");
    EXPECT_EQ(decodeTightly(kernel(), "Zg=\n=\n"), "f");
    EXPECT_EQ(decodeTightly(kernel(), "\\/\\/\\/\\/"), "\xff\xff\xff");
}

TEST_P(Base64, GivesEmptyBytesForTextWithNothingToDecode) {
    EXPECT_EQ(decodeTightly(kernel(), ""), "");
    EXPECT_EQ(decodeTightly(kernel(), " \r\n-_*"), "");
    EXPECT_EQ(decodeTightly(kernel(), std::string(500, '\n')), "");
}

TEST_P(Base64, GivesNothingWhenWhatIsLeftIsNotWholeGroups) {
    for (const std::string_view text :
         {"A", "AA", "AAA", "AAAAA", "AA=", "AAA==", "A===", "=", "==", "====", "AAAA=", "AAAA====", "AA==AAAA",
          "AA=A", "=AAA", "AAA=A", "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"}) {
        EXPECT_EQ(decodeTightly(kernel(), text), std::nullopt) << text;
        EXPECT_EQ(plainDecode(text), std::nullopt) << text;
    }
}

TEST_P(Base64, RoundTripsEveryLengthUpToSeveralBlocks) {
    std::mt19937 random(1);
    for (std::size_t size = 0; size <= 300; ++size) {
        const std::string bytes = randomBytes(random, size);
        const std::string text = encodeTightly(kernel(), bytes);
        ASSERT_EQ(text, escapeSlashes(plainEncode(bytes))) << size;
        ASSERT_EQ(base64::encodedEscapedSizeWith(kernel(), bytes), text.size()) << size;
        ASSERT_LE(text.size(), base64::encodedEscapedBound(size)) << size;
        ASSERT_EQ(decodeTightly(kernel(), text), bytes) << size;
        ASSERT_EQ(decodeTightly(kernel(), plainEncode(bytes)), bytes) << size;
    }
}

TEST_P(Base64, EncodesNothingButSlashesUpToTheBound) {
    for (const std::size_t size : {3u, 48u, 3072u, 3075u, 9999u}) {
        const std::string bytes(size, '\xff');
        const std::string text = encodeTightly(kernel(), bytes);
        EXPECT_EQ(text, escapeSlashes(std::string(size / 3 * 4, '/')));
        EXPECT_EQ(text.size(), base64::encodedEscapedBound(size));
        EXPECT_EQ(base64::encodedEscapedSizeWith(kernel(), bytes), text.size());
        EXPECT_EQ(decodeTightly(kernel(), text), bytes);
    }
}

TEST_P(Base64, KnowsEveryByteAtEveryPlaceOfABlock) {
    const std::string clean = plainEncode(std::string(72, 'x'));
    for (std::size_t place = 0; place < clean.size(); ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string inserted = clean;
            inserted.insert(place, 1, static_cast<char>(byte));
            std::string replaced = clean;
            replaced[place] = static_cast<char>(byte);
            ASSERT_EQ(decodeTightly(kernel(), inserted), plainDecode(inserted)) << place << " " << byte;
            ASSERT_EQ(decodeTightly(kernel(), replaced), plainDecode(replaced)) << place << " " << byte;
        }
    }
}

TEST_P(Base64, AgreesWithThePlainCodecOnThousandsOfRandomTexts) {
    std::mt19937 random(20);
    for (int round = 0; round < 6000; ++round) {
        const std::string bytes = randomBytes(random, random() % 400);
        std::string text = random() % 2 == 0 ? plainEncode(bytes) : escapeSlashes(plainEncode(bytes));
        const std::size_t edits = random() % 4 == 0 ? random() % 40 : random() % 3;
        for (std::size_t i = 0; i < edits; ++i) {
            const char byte = random() % 8 == 0 ? '=' : static_cast<char>(random());
            text.insert(random() % (text.size() + 1), 1, byte);
        }
        if (random() % 3 == 0) {
            text.resize(random() % (text.size() + 1));
        }
        ASSERT_EQ(decodeTightly(kernel(), text), plainDecode(text)) << testing::PrintToString(text);
        ASSERT_EQ(encodeTightly(kernel(), bytes), escapeSlashes(plainEncode(bytes)));
    }
}

TEST_P(Base64, DecodesLongTextsWithUnknownBytesScatteredThroughThem) {
    std::mt19937 random(3);
    for (const std::size_t gap : {1u, 3u, 7u, 31u, 64u, 76u, 1000u, 5000u}) {
        const std::string bytes = randomBytes(random, 40'000);
        const std::string clean = plainEncode(bytes);
        std::string text;
        for (std::size_t at = 0; at < clean.size(); at += gap) {
            text.append(clean, at, gap).append(random() % 2 == 0 ? "\r\n" : "\n");
        }
        ASSERT_EQ(decodeTightly(kernel(), text), bytes) << gap;
    }
}

TEST(Base64Codec, UsesTheSameRulesWithoutAChosenKernel) {
    std::mt19937 random(4);
    const std::string bytes = randomBytes(random, 5000);
    std::string text;
    base64::appendEncodedEscaped(text, bytes);
    EXPECT_EQ(text, escapeSlashes(plainEncode(bytes)));
    EXPECT_EQ(text.size(), base64::encodedEscapedSize(bytes));
    std::string reference;
    base64::scalar::appendEncodedEscaped(reference, bytes);
    EXPECT_EQ(text, reference);
    EXPECT_EQ(base64::decode(text), bytes);
    EXPECT_EQ(base64::scalar::decode(text), bytes);
    EXPECT_EQ(base64::decode("AAA"), std::nullopt);
    const auto room = std::make_unique<char[]>(base64::decodeRoom(text.size()));
    EXPECT_EQ(base64::decodeInto(text, room.get()), bytes.size());
}

} // namespace velloway::test
