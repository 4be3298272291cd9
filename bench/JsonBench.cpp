// What it costs to read the messages that come most often, and to write those that are large.

#include "json/JsonReader.h"
#include "json/JsonWriter.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace velloway {

namespace {

/// Room that lets the reader work in place.
constexpr std::size_t padding = 64;

/// A message as it lies in a receive buffer.
struct Received {
    explicit Received(std::string_view message) : buffer(message), size(message.size()) {
        buffer.append(padding, '\0');
    }
    std::string_view text() const { return std::string_view(buffer).substr(0, size); }

    std::string buffer;
    std::size_t size;
};

template <std::size_t count> void readTexts(benchmark::State& state, const Received& message,
                                            const std::array<std::string_view, count>& keys) {
    JsonReader reader;
    std::string error;
    for (auto iteration : state) {
        const auto root = reader.parse(message.text(), padding, error);
        if (!root) {
            state.SkipWithError(error.c_str());
            break;
        }
        for (const std::string_view key : keys) {
            const auto value = root->member(key);
            benchmark::DoNotOptimize(value ? value->text() : std::nullopt);
        }
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(message.size));
}

void pointerMove(benchmark::State& state) {
    const Received message(
        R"({"action":"remote_control","command":"move","type":"mouse_move","dx":-3.25,"dy":12})");
    JsonReader reader;
    std::string error;
    for (auto iteration : state) {
        const auto root = reader.parse(message.text(), padding, error);
        for (const std::string_view key : {"action", "command", "type", "text", "button", "url"}) {
            const auto value = root->member(key);
            benchmark::DoNotOptimize(value ? value->text() : std::nullopt);
        }
        for (const std::string_view key : {"dx", "dy"}) {
            benchmark::DoNotOptimize(root->member(key)->real());
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(pointerMove);

void notification(benchmark::State& state) {
    const Received message(
        R"({"app":"Chat","title":"Anna Bell","body":"Are you coming to the station, or shall we meet at home? )"
        R"(I could bring something to eat\nsee you \ud83d\ude00","time":1700000000.123,)"
        R"("key":"0|com.example.chat|1001|null|10123"})");
    readTexts<6>(state, message, {"action", "app", "title", "body", "time", "key"});
}
BENCHMARK(notification);

/// Some 860 KB.
void smsHistory(benchmark::State& state) {
    std::string text = R"({"action":"sms_history","messages":[)";
    for (int i = 0; i < 6500; ++i) {
        text += std::string(i > 0 ? "," : "") + R"({"address":"+49151555)" + std::to_string(1000 + i % 900) +
                R"(","name":"Anna Bell","body":"Are you coming to the station?\nI am there","date":)" +
                std::to_string(1'700'000'000'000 + i) + R"(,"type":)" + std::to_string(1 + i % 2) + "}";
    }
    const Received message(text + "]}");
    JsonReader reader;
    std::string error;
    for (auto iteration : state) {
        const auto root = reader.parse(message.text(), padding, error);
        root->member("messages")->forEachElement([](const JsonValue& sms) {
            for (const std::string_view key : {"address", "name", "body"}) {
                benchmark::DoNotOptimize(sms.member(key)->text());
            }
            benchmark::DoNotOptimize(sms.member("date")->real());
            benchmark::DoNotOptimize(sms.member("type")->integer());
            return true;
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(message.size));
}
BENCHMARK(smsHistory)->Unit(benchmark::kMicrosecond);

/// The base64 text of 1 MiB, in which every 64th character is a slash as in random bytes.
std::string base64Text(std::string_view slash) {
    constexpr std::size_t length = (std::size_t{1} << 20) / 3 * 4;
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < length; ++i) {
        state = state * 1'664'525 + 1'013'904'223;
        const char next = alphabet[state >> 26];
        if (next == '/') {
            text += slash;
        } else {
            text += next;
        }
    }
    return text;
}

void fileChunk(benchmark::State& state, std::string_view slash) {
    const Received message(R"({"action":"file_chunk","fileName":"film.mkv","fileData":")" + base64Text(slash) +
                           R"(","isLast":false})");
    readTexts<4>(state, message, {"action", "fileName", "fileData", "isLast"});
}
BENCHMARK_CAPTURE(fileChunk, plainSlashes, "/")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(fileChunk, escapedSlashes, "\\/")->Unit(benchmark::kMicrosecond);

void writeClipboard(benchmark::State& state) {
    std::string text;
    while (text.size() < 10'000'000) {
        text += "A line of plain prose, as it is copied from a page, with \"quotes\" and a/slash.\n";
    }
    for (auto iteration : state) {
        JsonWriter writer(text.size() + 128);
        writer.add("action", "clipboard");
        writer.add("text", text);
        benchmark::DoNotOptimize(std::move(writer).finish());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(writeClipboard)->Unit(benchmark::kMillisecond);

void writeFileChunk(benchmark::State& state) {
    const std::string bytes(std::size_t{1} << 20, '\xA7');
    for (auto iteration : state) {
        JsonWriter writer(bytes.size() * 2);
        writer.add("action", "file_chunk");
        writer.addBase64("fileData", bytes);
        benchmark::DoNotOptimize(std::move(writer).finish());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(writeFileChunk)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace velloway

BENCHMARK_MAIN();
