#include "hosts/linux/desktop/VolumeControl.h"

#include "hosts/linux/desktop/ChildProcess.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <string_view>
#include <utility>

namespace velloway {

namespace {

using namespace std::chrono_literals;

constexpr auto toolTimeLimit = 5s;

/// "Volume: 0.45 [MUTED]"
std::optional<int> parseFraction(const std::string& answer) {
    constexpr std::string_view label = "Volume: ";
    const std::size_t start = answer.find(label);
    if (start == std::string::npos) {
        return std::nullopt;
    }
    double volume = 0;
    const char* begin = answer.data() + start + label.size();
    if (std::from_chars(begin, answer.data() + answer.size(), volume).ec != std::errc()) {
        return std::nullopt;
    }
    return static_cast<int>(std::lround(std::clamp(volume, 0.0, 100.0) * 100));
}

/// "Volume: front-left: 29491 /  45% / -20.81 dB,   front-right: ...": the first channel counts.
std::optional<int> parsePercent(const std::string& answer) {
    const std::size_t end = answer.find('%');
    if (end == std::string::npos) {
        return std::nullopt;
    }
    const std::size_t start = answer.find_last_not_of("0123456789", end - 1);
    int volume = 0;
    const char* begin = answer.data() + (start == std::string::npos ? 0 : start + 1);
    if (std::from_chars(begin, answer.data() + end, volume).ec != std::errc()) {
        return std::nullopt;
    }
    return volume;
}

} // namespace

const std::vector<VolumeControl::Tool>& VolumeControl::tools() {
    static const std::vector<Tool> all{
        {"wpctl",
         {"get-volume", "@DEFAULT_AUDIO_SINK@"},
         {"set-volume", "@DEFAULT_AUDIO_SINK@"},
         {"set-mute", "@DEFAULT_AUDIO_SINK@", "toggle"},
         parseFraction},
        {"pactl",
         {"get-sink-volume", "@DEFAULT_SINK@"},
         {"set-sink-volume", "@DEFAULT_SINK@"},
         {"set-sink-mute", "@DEFAULT_SINK@", "toggle"},
         parsePercent},
    };
    return all;
}

std::optional<std::string> VolumeControl::change(int points) {
    return enqueue(points);
}

std::optional<std::string> VolumeControl::toggleMute() {
    return enqueue(std::nullopt);
}

std::optional<std::string> VolumeControl::enqueue(Change change) {
    const bool hasTool =
        std::any_of(tools().begin(), tools().end(), [](const Tool& tool) { return findProgram(tool.name); });
    if (!hasTool) {
        return "The volume can't be changed: neither wpctl nor pactl is installed.";
    }
    changes_.push_back(change);
    startNext();
    return std::nullopt;
}

void VolumeControl::startNext() {
    if (isBusy_ || changes_.empty()) {
        return;
    }
    isBusy_ = true;
    tryTool(0, changes_.front() ? "The volume can't be read." : "The sound can't be turned off.");
}

/// A tool can be installed without its sound server; the next one is tried then.
void VolumeControl::tryTool(std::size_t toolIndex, std::string complaint) {
    if (toolIndex == tools().size()) {
        finish(complaint);
        return;
    }
    const Tool& tool = tools()[toolIndex];
    const auto program = findProgram(tool.name);
    if (!program) {
        tryTool(toolIndex + 1, std::move(complaint));
        return;
    }
    startChild(
        *this, *program, changes_.front() ? tool.readArguments : tool.muteArguments,
        [this, &tool, program = *program, toolIndex](const ChildResult& result) {
            if (!result.succeeded() || !handle(tool, program, result.output)) {
                tryTool(toolIndex + 1, result.complaint);
            }
        },
        toolTimeLimit);
}

/// What the tool's first call has answered; false when it makes no sense.
bool VolumeControl::handle(const Tool& tool, const QString& program, const std::string& answer) {
    if (!changes_.front()) {
        finish("");
        return true;
    }
    const auto present = tool.parse(answer);
    if (present) {
        write(tool, program, *present);
    }
    return present.has_value();
}

void VolumeControl::write(const Tool& tool, const QString& program, int present) {
    const int change = changes_.front().value_or(0);
    // The desktop may have raised the volume beyond 100, and then up must not lower it.
    const int highest = change < 0 ? present : std::max(present, 100);
    const int wanted = std::clamp(present + change, 0, highest);
    startChild(
        *this, program, tool.writeArguments + QStringList{QStringLiteral("%1%").arg(wanted)},
        [this](const ChildResult& result) { finish(result.succeeded() ? "" : result.complaint); },
        toolTimeLimit);
}

void VolumeControl::finish(const std::string& complaint) {
    isBusy_ = false;
    changes_.pop_front();
    if (!complaint.empty()) {
        onError_(complaint);
    }
    startNext();
}

} // namespace velloway
