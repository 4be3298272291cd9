#include "base64/Base64.h"
#include "fakes/FakePlatform.h"
#include "features/IncomingFiles.h"
#include "features/OutgoingFiles.h"
#include "hosts/posix/PosixFiles.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

using namespace velloway;

constexpr std::size_t chunkSize = 1024 * 1024;
constexpr std::size_t sentFileSize = 256 * chunkSize;

std::string randomBytes(std::size_t size) {
    std::mt19937_64 random(1);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

/// In memory-backed storage, so that no disk is measured.
class Folder {
public:
    Folder() {
        std::string pattern = "/dev/shm/velloway-bench-XXXXXX";
        path_ = ::mkdtemp(pattern.data());
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

struct Setting {
    test::FakePlatform host;
    std::shared_ptr<HistoryStore> store = std::make_shared<HistoryStore>(host.host);
    std::shared_ptr<StoreLink> link = std::make_shared<StoreLink>(StoreLink{store});
    NotificationManager notifications{host.notificationCenter, host.host, host.log};
    PosixFiles storage;
    Folder folder;
};

/// One file in chunks of 1 MiB; a new one after each 256 MiB, so that the storage stays small.
void receiveChunks(benchmark::State& state, bool isEscaped) {
    Setting setting;
    setting.host.host.downloads = setting.folder.path();
    IncomingFiles files({.main = setting.host.main,
                         .server = setting.host.server,
                         .fileQueue = setting.host.fileQueue,
                         .link = setting.link,
                         .notifications = setting.notifications,
                         .host = setting.host.host,
                         .files = setting.storage,
                         .log = setting.host.log});
    std::string text;
    base64::appendEncodedEscaped(text, randomBytes(chunkSize));
    if (!isEscaped) {
        std::erase(text, '\\');
    }
    std::size_t count = 0;
    for (auto _ : state) {
        if (count++ % 256 == 0) {
            files.start("a.bin", sentFileSize);
        }
        files.chunk("a.bin", text, false);
        setting.host.drain();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * chunkSize));
}

/// What the same bytes cost without a codec.
void writeChunks(benchmark::State& state) {
    Folder folder;
    const std::string bytes = randomBytes(chunkSize);
    PosixFiles storage;
    std::unique_ptr<FileWriter> file;
    std::error_code error;
    std::size_t count = 0;
    for (auto _ : state) {
        if (count++ % 256 == 0) {
            file = storage.create(folder.path() / "a.bin", error);
        }
        benchmark::DoNotOptimize(file->append(bytes, error));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * chunkSize));
}

/// Takes every message at once, as the fastest connection does.
void sendFile(benchmark::State& state) {
    Setting setting;
    const auto path = setting.folder.path() / "a.bin";
    std::ofstream(path, std::ios::binary) << randomBytes(sentFileSize);
    std::size_t bytes = 0;
    OutgoingFiles files({.main = setting.host.main,
                         .server = setting.host.server,
                         .reading = setting.host.server,
                         .notifications = setting.notifications,
                         .host = setting.host.host,
                         .files = setting.storage,
                         .log = setting.host.log,
                         .send = [](std::string) {},
                         .sendChunk = [&](const std::shared_ptr<TextSeries>& chunks,
                                          std::uint64_t index) { bytes += chunks->atHand(index)->size(); }},
                        setting.link);
    for (auto _ : state) {
        files.sendFile(path);
        setting.host.drain();
    }
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    state.counters["text_share"] =
        static_cast<double>(bytes) / static_cast<double>(state.iterations()) / sentFileSize;
    state.counters["peak_memory_share"] = static_cast<double>(usage.ru_maxrss) * 1024 / sentFileSize;
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * sentFileSize));
}

BENCHMARK(writeChunks);
BENCHMARK_CAPTURE(receiveChunks, clean, false);
BENCHMARK_CAPTURE(receiveChunks, escaped, true);
BENCHMARK(sendFile)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
