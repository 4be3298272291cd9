#include "tabs/Conversations.h"
#include "tabs/sms/SmsRules.h"

#include "fakes/FakeDesktop.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace velloway {
namespace {

constexpr std::size_t threadCount = 2'000;

std::string bodyText(std::mt19937& engine, bool isAscii) {
    static const std::vector<std::string> plain{"see",     "you",      "at",      "the",
                                                "station", "Tomorrow", "morning", "OK"};
    static const std::vector<std::string> accented{"увидимся", "на", "вокзале", "Завтра",
                                                   "утром",    "👍",  "ОК",      "да"};
    const auto& words = isAscii ? plain : accented;
    std::string body;
    for (int i = 0; i < 10; ++i) {
        body += words[engine() % words.size()];
        body += ' ';
    }
    return body;
}

/// Newest first, as phones send it, in two spellings of each number.
std::vector<SmsRecord> makeLog(std::size_t count, bool isAscii) {
    std::mt19937 engine(7);
    std::vector<SmsRecord> log;
    log.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(7'700'000'000 + engine() % threadCount);
        log.push_back({.address = engine() % 2 == 0 ? "+44 " + number : "0" + number,
                       .name = engine() % 4 == 0 ? std::optional<std::string>("Someone Else") : std::nullopt,
                       .body = bodyText(engine, isAscii),
                       .date = 1'700'000'000'000.0 - static_cast<double>(i) * 60'000,
                       .type = static_cast<std::int64_t>(1 + engine() % 2)});
    }
    return log;
}

std::vector<CallRecord> makeCalls() {
    std::vector<CallRecord> calls;
    for (std::size_t i = 0; i < 500; ++i) {
        calls.push_back({.number = "0" + std::to_string(7'700'000'000 + i * 3), .name = "Caller", .date = 1});
    }
    return calls;
}

void conversationsOfALog(benchmark::State& state) {
    const auto log = makeLog(static_cast<std::size_t>(state.range(0)), true);
    for (auto _ : state) {
        benchmark::DoNotOptimize(conversations(log));
    }
}
BENCHMARK(conversationsOfALog)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// What a key press in the search field costs at most before the view gets its rows: the first after a change
/// of the log. Later ones have the conversations and the rows.
void searchKeyPress(benchmark::State& state, bool isAscii, const std::string& query) {
    const test::FakeHost host;
    const auto log = makeLog(static_cast<std::size_t>(state.range(0)), isAscii);
    const auto calls = makeCalls();
    for (auto _ : state) {
        const auto all = conversations(log);
        const CallNames names(calls);
        benchmark::DoNotOptimize(smsList(all, smsThreadRows(all, names, RelativeDates(host)), query,
                                         searchTextTraits(query).looksNumeric, std::nullopt, names));
    }
}
BENCHMARK_CAPTURE(searchKeyPress, nothing_found, true, "zzz")->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchKeyPress, some_found, true, "770000012")->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchKeyPress, all_found, true, "o")->Arg(10'000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(searchKeyPress, cyrillic_nothing_found, false, "нет такого")
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);

void messagesOfAChat(benchmark::State& state) {
    const auto log = makeLog(static_cast<std::size_t>(state.range(0)), true);
    for (auto _ : state) {
        benchmark::DoNotOptimize(activeMessages(conversations(log), "7700000001"));
    }
}
BENCHMARK(messagesOfAChat)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace velloway
