#include "app/Program.h"
#include "hosts/HostRuntime.h"

int main(int argc, char** argv) {
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
