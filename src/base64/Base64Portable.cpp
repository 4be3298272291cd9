#include "base64/Base64Kernels.h"

namespace velloway::base64 {

const Kernel* const* usableKernels(std::size_t& count) {
    static const Kernel* const kernels[] = {&scalarKernel};
    count = 1;
    return kernels;
}

} // namespace velloway::base64
