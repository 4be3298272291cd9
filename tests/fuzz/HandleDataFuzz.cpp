// Feeds any bytes to the one entry for what the phone says, with every feature behind it on fakes.

#include "platform/Fatal.h"
#include "server/DispatchFixture.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace velloway {

namespace {

struct RequiredEnd {};

} // namespace

/// Stands in for the one that ends the process: the fatal conversions are required and no finding.
void fatal(std::string_view) {
    throw RequiredEnd();
}

} // namespace velloway

namespace {

using velloway::test::DispatchBench;

/// Runs `step`; false if it came to the end that some messages require.
template <class Step> bool survives(Step step) {
    try {
        step();
        return true;
    } catch (const velloway::RequiredEnd&) {
        return false;
    }
}

} // namespace

/// The input is a list of messages, each ended by a line break.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bench = std::make_unique<DispatchBench>();
    bench->fakes.host.downloads = "/home/me";
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    bool goesOn = true;
    while (goesOn && !rest.empty()) {
        const std::string_view message = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(message.size() + 1, rest.size()));
        goesOn = survives([&] { bench->handle(message); }) && survives([&] { bench->fakes.drain(); });
        bench->fakes.host.time += std::chrono::seconds(1);
    }
    return 0;
}
