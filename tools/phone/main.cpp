#include "phone/Phone.h"
#include "phone/Script.h"
#include "phone/Words.h"

#include <cstdio>
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
        world.now = static_cast<double>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                            std::chrono::system_clock::now().time_since_epoch())
                                            .count());
        steps = parseScript(std::string{std::istreambuf_iterator<char>(file), {}}, world);
    }
    for (const std::string& command : splitCommands(options.commands)) {
        steps.push_back({std::nullopt, std::nullopt, parseCommand(command, options.world)});
    }
    return steps;
}

} // namespace

int main(int count, char** words) {
    try {
        const Options options = parseOptions({words + 1, words + count});
        if (options.wantsHelp) {
            std::printf("%s\nCommands:\n%s", optionHelp().c_str(), commandHelp().c_str());
            return 0;
        }
        return Phone(options, stepsOf(options)).run();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "velloway-phone: %s\n", error.what());
        return 2;
    }
}
