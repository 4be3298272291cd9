#include "contract/NetworkContract.h"

namespace velloway::test {

std::vector<NetworkImplementation> networkImplementations() {
    return {{"Fake", makeFakeNetworkWorld}, {"Linux", makeLinuxNetworkWorld}};
}

} // namespace velloway::test
