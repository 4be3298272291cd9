// Feeds any bytes to the one entry for what the phone says, with every feature behind it on fakes.

#include "json/JsonReader.h"
#include "platform/Fatal.h"
#include "server/DispatchFixture.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
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

/// Files land in a folder of this process alone, which goes with it.
struct DownloadsFolder {
    DownloadsFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "velloway-fuzz-XXXXXX").string();
        path = ::mkdtemp(pattern.data());
    }
    ~DownloadsFolder() { std::filesystem::remove_all(path); }

    void empty() const {
        for (const auto& entry : std::filesystem::directory_iterator(path)) {
            std::filesystem::remove_all(entry.path());
        }
    }

    std::filesystem::path path;
};

std::unique_ptr<DispatchBench> makeBench(const DownloadsFolder& downloads) {
    auto bench = std::make_unique<DispatchBench>();
    bench->fakes.host.downloads = downloads.path;
    return bench;
}

/// Whether the message names a file outside the folder. Such names are taken as they come, which is no finding
/// either, but a fuzzer must not write all over the computer.
bool leavesFolder(std::string_view message) {
    static velloway::JsonReader reader;
    std::string error;
    const auto root = reader.parse(message, 0, error);
    const auto name = root ? root->member("fileName") : std::nullopt;
    return name && name->text().value_or("").find("..") != std::string_view::npos;
}

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
    static const DownloadsFolder downloads;
    const auto bench = makeBench(downloads);
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    bool goesOn = true;
    while (goesOn && !rest.empty()) {
        const std::string_view message = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(message.size() + 1, rest.size()));
        if (leavesFolder(message)) {
            continue;
        }
        goesOn = survives([&] { bench->handle(message); }) && survives([&] { bench->fakes.drain(); });
        bench->fakes.host.time += std::chrono::seconds(1);
    }
    downloads.empty();
    return 0;
}
