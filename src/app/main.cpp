#include "app/Program.h"
#include "hosts/HostRuntime.h"

int main(int argc, char** argv) {
    const auto host = velloway::makeHost(argc, argv);
    if (!host) {
        return 0; // Another instance of this session has taken the call.
    }
    velloway::Program program(host->platform(), [&host] { host->terminate(); });
    velloway::WebSocketServer::setShared(program.sharedServer());
    velloway::AppDelegate::setShared(program.sharedDelegate());
    const int answer = host->run(program.delegate());
    velloway::AppDelegate::setShared(nullptr);
    velloway::WebSocketServer::setShared(nullptr);
    return answer;
}
