#include "platform/Fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace velloway {

namespace {

void (*beforeFatal)() = nullptr;

} // namespace

void setBeforeFatal(void (*action)()) {
    beforeFatal = action;
}

void fatal(std::string_view message) {
    std::string line = "Fatal error: ";
    line.append(message).push_back('\n');
    if (beforeFatal) {
        beforeFatal();
    }
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
    std::abort();
}

} // namespace velloway
