#include "app/Program.h"
#include "hosts/HostRuntime.h"

int main(int argc, char** argv) {
    const velloway::HostStart start = velloway::makeHost(argc, argv);
    return start.host ? velloway::runProgram(*start.host) : start.exitCode;
}
