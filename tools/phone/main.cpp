#include "phone/Numbers.h"
#include "phone/Phone.h"
#include "phone/Script.h"
#include "phone/Words.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

using namespace velloway::phone;

std::vector<Step> stepsOf(const Options& options) {
    std::vector<Step> steps;
    if (!options.script.empty()) {
        std::ifstream file(options.script, std::ios::binary);
        if (!file) {
            throw std::invalid_argument("cannot read " + options.script);
        }
        World world = options.world;
        world.now = millisecondsNow();
        steps = parseScript(std::string{std::istreambuf_iterator<char>(file), {}}, world);
    }
    for (const std::string& command : splitCommands(options.commands)) {
        steps.push_back({std::nullopt, std::nullopt, parseCommand(command, options.world)});
    }
    return steps;
}

/// Where a phone's owner looks for files, or the home folder of a phone that has not been asked for its
/// storage.
std::string folderOfDevice() {
    const char* home = std::getenv("HOME");
    const std::filesystem::path root = home == nullptr ? "." : home;
    const std::filesystem::path downloads = root / "storage" / "downloads";
    return (std::filesystem::is_directory(downloads) ? downloads : root) / "Velloway";
}

} // namespace

int main(int count, char** words) {
    // A command of the phone may end before it has read its input.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        Options options = parseOptions({words + 1, words + count});
        if (options.wantsHelp) {
            std::printf("%s\nCommands:\n%s", optionHelp().c_str(), commandHelp().c_str());
            return 0;
        }
        if (options.isDevice) {
            if (options.saveTo.empty()) {
                options.saveTo = folderOfDevice();
            }
            std::filesystem::create_directories(options.saveTo);
        }
        return Phone(options, stepsOf(options)).run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velloway-phone: %s\n", error.what());
        return 2;
    }
}
