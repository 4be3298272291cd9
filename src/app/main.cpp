#include "app/CommandLine.h"
#include "app/Program.h"
#include "hosts/HostRuntime.h"

#include <algorithm>
#include <cstdio>

int main(int argc, char** argv) {
    if (const auto answer = velloway::answerTo({argv + std::min(1, argc), argv + argc})) {
        return std::fputs(answer->c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    }
    const velloway::HostStart start = velloway::makeHost(argc, argv);
    return start.host ? velloway::runProgram(*start.host) : start.exitCode;
}
