#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace velloway::bench {

using Clock = std::chrono::steady_clock;
using Command = std::vector<std::string>;

double secondsSince(Clock::time_point start);

/// Ends the process.
[[noreturn]] void giveUp(const std::string& what);

/// A server as a process of its own, on a free port and with a log in a file. It is started with the port and
/// the folder behind the command, and ends when its standard input does.
class MeasuredProcess {
public:
    MeasuredProcess(Command command, const std::filesystem::path& folder);
    ~MeasuredProcess() { end(); }
    MeasuredProcess(const MeasuredProcess&) = delete;

    /// Writes a line to its standard input.
    void say(std::string_view line);
    /// Processor time so far, in seconds.
    double processorTime() const;
    double peakMegabytes() const;
    void end();

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

} // namespace velloway::bench
