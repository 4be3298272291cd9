// Loads one receiver after the other, several rounds side by side, and prints the medians.
// All of it runs on loopback and in memory-backed storage.

#include "LoadClient.h"
#include "MeasuredProcess.h"
#include "base64/Base64.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace velloway::bench {
namespace {

struct Settings {
    int rounds = 5;
    int messages = 500'000;
    int chunks = 256;
    std::filesystem::path velloway;
    std::filesystem::path rawSink;
    std::filesystem::path nodeScript;
    std::filesystem::path folder;
};

constexpr std::string_view pointerMove =
    R"({"action":"remote_control","type":"mouse_move","command":"m","dx":1.5,"dy":-2})";

std::string smallLoad(int messages) {
    std::string one;
    appendFrame(one, pointerMove);
    std::string all;
    all.reserve(one.size() * static_cast<std::size_t>(messages));
    for (int index = 0; index < messages; ++index) {
        all += one;
    }
    return all;
}

constexpr std::size_t chunkBytes = std::size_t{1} << 20;

std::string randomFile(int chunks) {
    std::mt19937_64 random(42);
    std::string bytes(chunkBytes * static_cast<std::size_t>(chunks), '\0');
    for (std::size_t at = 0; at < bytes.size(); at += 8) {
        const std::uint64_t value = random();
        std::memcpy(bytes.data() + at, &value, 8);
    }
    return bytes;
}

std::string fileLoad(std::string_view file) {
    std::string all;
    all.reserve(file.size() * 11 / 8);
    appendFrame(all, R"({"action":"file_transfer_start","fileName":"big.bin","fileSize":)" +
                         std::to_string(file.size()) + "}");
    std::string message;
    for (std::size_t at = 0; at < file.size(); at += chunkBytes) {
        message = R"({"action":"file_chunk","fileName":"big.bin","fileData":")";
        base64::appendEncodedEscaped(message, file.substr(at, chunkBytes));
        message += at + chunkBytes == file.size() ? R"(","isLast":true})" : R"(","isLast":false})";
        appendFrame(all, message);
    }
    return all;
}

void expectLogLines(const MeasuredProcess& receiver, int messages) {
    std::ifstream file(receiver.log);
    int lines = 0;
    for (std::string line; std::getline(file, line);) {
        lines += line.find("Received complete message of " + std::to_string(pointerMove.size()) + " bytes") !=
                 std::string::npos;
    }
    if (lines != messages) {
        giveUp("only " + std::to_string(lines) + " messages were logged");
    }
}

void expectFile(const std::filesystem::path& path, std::string_view expected) {
    std::ifstream file(path, std::ios::binary);
    std::string got((std::istreambuf_iterator<char>(file)), {});
    if (got != expected) {
        giveUp("the received file differs");
    }
    std::filesystem::remove(path);
}

void measureSmall(const std::string& name, const Command& command, const Settings& settings,
                  const std::string& load, Figures& figures) {
    MeasuredProcess receiver(command, settings.folder);
    LoadClient client(receiver.port);
    client.shakeHands();
    const double processorBefore = receiver.processorTime();
    const auto start = Clock::now();
    client.write(load);
    client.waitUntilHandled();
    const double seconds = secondsSince(start);
    const double processor = receiver.processorTime() - processorBefore;
    figures.add(name + ": small messages", settings.messages / seconds);
    figures.add(name + ": processor time per small message", processor / settings.messages * 1e9);
    expectLogLines(receiver, settings.messages);
}

/// A receiver may write on a thread of its own, after it has answered.
void waitForFile(const std::filesystem::path& path, std::size_t size) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    std::error_code error;
    while (std::filesystem::file_size(path, error) != size) {
        if (std::chrono::steady_clock::now() > deadline) {
            giveUp("the received file is not complete");
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

void measureFile(const std::string& name, const Command& command, const Settings& settings,
                 const std::string& load, std::string_view file, Figures& figures) {
    MeasuredProcess receiver(command, settings.folder);
    LoadClient client(receiver.port);
    client.shakeHands();
    const auto start = Clock::now();
    client.write(load);
    client.waitUntilHandled();
    waitForFile(settings.folder / "big.bin", file.size());
    const double seconds = secondsSince(start);
    figures.add(name + ": file in 1 MiB chunks", static_cast<double>(file.size()) / seconds / 1e6);
    figures.add(name + ": peak memory", receiver.peakMegabytes());
    receiver.end();
    expectFile(settings.folder / "big.bin", file);
}

void measureRaw(const Settings& settings, std::string_view file, Figures& figures) {
    MeasuredProcess receiver({settings.rawSink.string()}, settings.folder);
    LoadClient client(receiver.port);
    const auto start = Clock::now();
    client.write(file);
    client.finish();
    figures.add("Raw TCP to file: the same bytes",
                static_cast<double>(file.size()) / secondsSince(start) / 1e6);
    expectFile(settings.folder / "big.bin", file);
}

void run(const Settings& settings) {
    const Command velloway{settings.velloway.string()};
    const Command node{"node", settings.nodeScript.string()};
    const std::string small = smallLoad(settings.messages);
    const std::string file = randomFile(settings.chunks);
    const std::string chunks = fileLoad(file);
    Figures figures;
    for (int round = 1; round <= settings.rounds; ++round) {
        std::fprintf(stderr, "round %d of %d\n", round, settings.rounds);
        measureSmall("Velloway", velloway, settings, small, figures);
        measureSmall("Node ws", node, settings, small, figures);
        measureRaw(settings, file, figures);
        measureFile("Velloway", velloway, settings, chunks, file, figures);
        measureFile("Node ws", node, settings, chunks, file, figures);
        figures.add("pair to raw", figures.last("Velloway: file in 1 MiB chunks") /
                                       figures.last("Raw TCP to file: the same bytes"));
        figures.add("pair to node", figures.last("Velloway: file in 1 MiB chunks") /
                                        figures.last("Node ws: file in 1 MiB chunks"));
        figures.add("pair of small",
                    figures.last("Velloway: small messages") / figures.last("Node ws: small messages"));
    }
    std::printf("Medians of %d rounds (least to most); %d messages of %zu bytes, a file of %d MiB\n",
                settings.rounds, settings.messages, pointerMove.size(), settings.chunks);
    for (const char* name : {"Velloway: small messages", "Node ws: small messages"}) {
        figures.print(name, "a second");
    }
    for (const char* name :
         {"Velloway: processor time per small message", "Node ws: processor time per small message"}) {
        figures.print(name, "ns");
    }
    for (const char* name : {"Raw TCP to file: the same bytes", "Velloway: file in 1 MiB chunks",
                             "Node ws: file in 1 MiB chunks"}) {
        figures.print(name, "MB a second");
    }
    for (const char* name : {"Velloway: peak memory", "Node ws: peak memory"}) {
        figures.print(name, "MiB");
    }
    std::printf("Ratios, paired in each round; median\n");
    std::printf("  Velloway to raw TCP, file       %6.2f   (at least 0.60, aim 0.70)\n",
                figures.median("pair to raw"));
    std::printf("  Velloway to Node ws, file       %6.2f\n", figures.median("pair to node"));
    std::printf(
        "  Velloway to Node ws, small      %6.2f   (at least 2.0, aim 4; and 500000 a second, aim 1000000)\n",
        figures.median("pair of small"));
}

} // namespace
} // namespace velloway::bench

int main(int count, char** arguments) {
    using namespace velloway::bench;
    if (count != 8) {
        std::fprintf(stderr, "usage: receive_load velloway_receiver raw_sink node-receiver.js folder rounds "
                             "messages chunks\n");
        return 2;
    }
    Settings settings;
    settings.velloway = arguments[1];
    settings.rawSink = arguments[2];
    settings.nodeScript = arguments[3];
    settings.folder = arguments[4];
    settings.rounds = std::clamp(std::atoi(arguments[5]), 1, 50);
    settings.messages = std::clamp(std::atoi(arguments[6]), 1, 5'000'000);
    settings.chunks = std::clamp(std::atoi(arguments[7]), 1, 1024);
    run(settings);
}
