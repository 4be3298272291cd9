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
    const auto& host = start.host;
    if (!host) {
        return start.answer;
    }
    velloway::Program program(host->platform(), [&host] { host->terminate(); });
    velloway::WebSocketServer::setShared(program.sharedServer());
    velloway::AppDelegate::setShared(program.sharedDelegate());
    const int answer = host->run(program.delegate());
    velloway::AppDelegate::setShared(nullptr);
    velloway::WebSocketServer::setShared(nullptr);
    return answer;
}
