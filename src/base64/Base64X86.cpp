#include "base64/Base64Kernels.h"

namespace velloway::base64 {

extern const Kernel avx2Kernel;
extern const Kernel ssse3Kernel;

const Kernel* const* usableKernels(std::size_t& count) {
    static const Kernel* const kernels[] = {&avx2Kernel, &ssse3Kernel, &scalarKernel};
    const std::size_t first = __builtin_cpu_supports("avx2") ? 0 : __builtin_cpu_supports("ssse3") ? 1 : 2;
    count = 3 - first;
    return kernels + first;
}

} // namespace velloway::base64
