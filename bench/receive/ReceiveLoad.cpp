// Loads one receiver after the other, several rounds side by side, and prints the medians.
// All of it runs on loopback and in memory-backed storage.

#include "LoadClient.h"
#include "text/Base64.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velloway::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Command = std::vector<std::string>;

[[noreturn]] void giveUp(const std::string& what) {
    std::fprintf(stderr, "receive_load: %s\n", what.c_str());
    std::exit(1);
}

struct Settings {
    int rounds = 5;
    int messages = 500'000;
    int chunks = 256;
    std::filesystem::path velloway;
    std::filesystem::path rawSink;
    std::filesystem::path nodeScript;
    std::filesystem::path folder;
};

int freePort() {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(probe, reinterpret_cast<sockaddr*>(&address), size) != 0) {
        giveUp("no free port");
    }
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    close(probe);
    return ntohs(address.sin_port);
}

/// A receiver as a process of its own, whose log goes to a file.
class Receiver {
public:
    Receiver(Command command, const std::filesystem::path& folder) : port(freePort()), log(folder / "log.txt") {
        command.push_back(std::to_string(port));
        command.push_back(folder.string());
        int pipe[2];
        if (::pipe2(pipe, O_CLOEXEC) != 0) {
            giveUp("pipe");
        }
        input_ = pipe[1];
        process_ = fork();
        if (process_ == 0) {
            dup2(pipe[0], STDIN_FILENO);
            dup2(::open(log.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_APPEND, 0644), STDOUT_FILENO);
            dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
            std::vector<char*> arguments;
            for (std::string& argument : command) {
                arguments.push_back(argument.data());
            }
            arguments.push_back(nullptr);
            execvp(arguments[0], arguments.data());
            _exit(127);
        }
        close(pipe[0]);
    }
    ~Receiver() { end(); }

    /// Processor time so far, in seconds.
    double processorTime() const {
        std::ifstream file("/proc/" + std::to_string(process_) + "/stat");
        std::string stat((std::istreambuf_iterator<char>(file)), {});
        unsigned long user = 0;
        unsigned long system = 0;
        std::sscanf(stat.c_str() + stat.rfind(')') + 2, "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu",
                    &user, &system);
        return static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
    }

    double peakMegabytes() const {
        std::ifstream file("/proc/" + std::to_string(process_) + "/status");
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with("VmHWM:")) {
                return std::atof(line.c_str() + 6) / 1024;
            }
        }
        return 0;
    }

    void end() {
        if (process_ <= 0) {
            return;
        }
        close(input_);
        for (int waited = 0; waited < 200; ++waited) {
            if (waitpid(process_, nullptr, WNOHANG) == process_) {
                process_ = 0;
                return;
            }
            usleep(10'000);
        }
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = 0;
    }

    const int port;
    const std::filesystem::path log;

private:
    pid_t process_ = 0;
    int input_ = -1;
};

/// What was measured under one name, one value a round.
class Figures {
public:
    void add(const std::string& name, double value) { values_[name].push_back(value); }
    double last(const std::string& name) const { return values_.at(name).back(); }
    double median(const std::string& name) const {
        auto values = values_.at(name);
        std::sort(values.begin(), values.end());
        const std::size_t half = values.size() / 2;
        return values.size() % 2 ? values[half] : (values[half - 1] + values[half]) / 2;
    }
    void print(const std::string& name, const char* unit) const {
        const auto& values = values_.at(name);
        const auto [least, most] = std::minmax_element(values.begin(), values.end());
        std::printf("  %-58s %12.1f %-14s (%.1f to %.1f)\n", name.c_str(), median(name), unit, *least, *most);
    }

private:
    std::map<std::string, std::vector<double>> values_;
};

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

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

void expectLogLines(const Receiver& receiver, int messages) {
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
    Receiver receiver(command, settings.folder);
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

void measureFile(const std::string& name, const Command& command, const Settings& settings,
                 const std::string& load, std::string_view file, Figures& figures) {
    Receiver receiver(command, settings.folder);
    LoadClient client(receiver.port);
    client.shakeHands();
    const auto start = Clock::now();
    client.write(load);
    client.waitUntilHandled();
    const double seconds = secondsSince(start);
    figures.add(name + ": file in 1 MiB chunks", static_cast<double>(file.size()) / seconds / 1e6);
    figures.add(name + ": peak memory", receiver.peakMegabytes());
    receiver.end();
    expectFile(settings.folder / "big.bin", file);
}

void measureRaw(const Settings& settings, std::string_view file, Figures& figures) {
    Receiver receiver({settings.rawSink.string()}, settings.folder);
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
    std::printf("  Velloway to raw TCP, file       %6.2f   (target 0.40, next 0.55)\n",
                figures.median("pair to raw"));
    std::printf("  Velloway to Node ws, file       %6.2f   (target 5)\n", figures.median("pair to node"));
    std::printf("  Velloway to Node ws, small      %6.2f   (target above 1, and 350000 a second)\n",
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
