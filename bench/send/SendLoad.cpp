// Lets one sender after the other send a file, several rounds side by side, and prints the medians: the time
// from the request until the last byte has come to every connection, and the most memory that the sender ever
// had. All of it runs on loopback and in memory-backed storage.

#include "LoadClient.h"
#include "MeasuredProcess.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <poll.h>

namespace velloway::bench {
namespace {

struct Settings {
    Command velloway;
    Command rawSource;
    Command node;
    std::filesystem::path folder;
    int rounds = 5;
    std::size_t fileBytes = 0;
};

void writeRandomFile(const std::filesystem::path& path, std::size_t size) {
    std::mt19937_64 random(42);
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at < size; at += 8) {
        const std::uint64_t value = random();
        std::memcpy(bytes.data() + at, &value, 8);
    }
    std::ofstream(path, std::ios::binary) << bytes;
}

/// What has come to one phone. The bytes are counted and dropped, so that the load itself costs little.
class Arrival {
public:
    Arrival(int port, bool isWebSocket, std::size_t fileBytes)
        : client_(port), isWebSocket_(isWebSocket), fileBytes_(fileBytes) {
        if (isWebSocket_) {
            client_.shakeHands();
        }
    }

    int descriptor() const { return client_.descriptor(); }

    void read(std::vector<char>& scratch) {
        const std::size_t count = client_.read(scratch.data(), scratch.size());
        count_ += count;
        tail_.append(scratch.data() + count - std::min(count, lastWords.size()),
                     std::min(count, lastWords.size()));
        tail_.erase(0, tail_.size() - std::min(tail_.size(), lastWords.size()));
    }

    bool isComplete() const {
        if (!isWebSocket_) {
            return count_ == fileBytes_;
        }
        // Base64 has no quotation mark: these words stand at the end of the last chunk alone.
        return tail_ == lastWords && count_ > fileBytes_ / 3 * 4;
    }

private:
    static constexpr std::string_view lastWords = R"("isLast":true})";

    LoadClient client_;
    bool isWebSocket_;
    std::size_t fileBytes_;
    std::size_t count_ = 0;
    std::string tail_;
};

void readAll(std::deque<Arrival>& arrivals) {
    constexpr int timeout = 60'000;
    std::vector<char> scratch(1 << 20);
    for (;;) {
        std::vector<pollfd> waiting;
        std::vector<Arrival*> incomplete;
        for (Arrival& arrival : arrivals) {
            if (!arrival.isComplete()) {
                waiting.push_back({arrival.descriptor(), POLLIN, 0});
                incomplete.push_back(&arrival);
            }
        }
        if (waiting.empty()) {
            return;
        }
        if (poll(waiting.data(), waiting.size(), timeout) <= 0) {
            giveUp("the file does not come");
        }
        for (std::size_t index = 0; index < waiting.size(); ++index) {
            if (waiting[index].revents != 0) {
                incomplete[index]->read(scratch);
            }
        }
    }
}

void measure(const std::string& name, const Command& command, bool isWebSocket, int connections,
             const Settings& settings, Figures& figures) {
    MeasuredProcess sender(command, settings.folder);
    std::deque<Arrival> arrivals;
    for (int index = 0; index < connections; ++index) {
        arrivals.emplace_back(sender.port, isWebSocket, settings.fileBytes);
    }
    const double processorBefore = sender.processorTime();
    const auto start = Clock::now();
    sender.say((settings.folder / "sent.bin").string());
    readAll(arrivals);
    figures.add(name, secondsSince(start));
    figures.add(name + ", processor", sender.processorTime() - processorBefore);
    figures.add(name + ", memory", sender.peakMegabytes());
}

void run(const Settings& settings) {
    writeRandomFile(settings.folder / "sent.bin", settings.fileBytes);
    const std::vector<std::string> names{"Raw TCP",
                                         "Velloway",
                                         "Velloway, 2 connections",
                                         "Velloway, 4 connections",
                                         "Node ws",
                                         "Node ws, 4 connections"};
    Figures figures;
    for (int round = 1; round <= settings.rounds; ++round) {
        std::fprintf(stderr, "round %d of %d\n", round, settings.rounds);
        measure(names[0], settings.rawSource, false, 1, settings, figures);
        measure(names[1], settings.velloway, true, 1, settings, figures);
        measure(names[2], settings.velloway, true, 2, settings, figures);
        measure(names[3], settings.velloway, true, 4, settings, figures);
        measure(names[4], settings.node, true, 1, settings, figures);
        measure(names[5], settings.node, true, 4, settings, figures);
        figures.add("pair to raw", figures.last("Raw TCP") / figures.last("Velloway"));
        figures.add("pair to node", figures.last("Node ws") / figures.last("Velloway"));
    }
    std::printf("Medians of %d rounds; a file of %zu MiB in messages of 1 MiB\n", settings.rounds,
                settings.fileBytes >> 20);
    for (const std::string& name : names) {
        std::printf(
            "  %-26s %6.2f s until the last byte came, %6.2f s of processor, at most %4.0f MiB of memory\n",
            name.c_str(), figures.median(name), figures.median(name + ", processor"),
            figures.median(name + ", memory"));
    }
    std::printf("Ratios of speed, paired in each round; median\n");
    std::printf("  Velloway to raw TCP %6.2f   (at least 0.45, aim 0.60)\n  Velloway to Node ws %6.2f\n",
                figures.median("pair to raw"), figures.median("pair to node"));
    std::printf("Memory for any number of connections: at most 128 MiB, aim 64 MiB\n");
}

} // namespace
} // namespace velloway::bench

int main(int count, char** arguments) {
    using namespace velloway::bench;
    if (count != 7) {
        std::fprintf(stderr,
                     "usage: send_load velloway_receiver raw_source node-sender.js folder rounds MiB\n");
        return 2;
    }
    Settings settings;
    settings.velloway = {arguments[1]};
    settings.rawSource = {arguments[2]};
    settings.node = {"node", arguments[3]};
    settings.folder = arguments[4];
    settings.rounds = std::clamp(std::atoi(arguments[5]), 1, 50);
    settings.fileBytes = static_cast<std::size_t>(std::clamp(std::atoi(arguments[6]), 1, 1024)) << 20;
    run(settings);
}
