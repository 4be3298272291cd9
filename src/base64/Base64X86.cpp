#include "base64/Base64Kernels.h"

namespace velloway::base64 {

extern const Kernel avx512Kernel;
extern const Kernel avx2Kernel;
extern const Kernel ssse3Kernel;

namespace {

bool hasAvx512() {
    return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vbmi2") &&
           __builtin_cpu_supports("bmi2");
}

} // namespace

const Kernel* const* usableKernels(std::size_t& count) {
    static const Kernel* const kernels[] = {&avx512Kernel, &avx2Kernel, &ssse3Kernel, &scalarKernel};
    const std::size_t first = hasAvx512()                       ? 0
                              : __builtin_cpu_supports("avx2")  ? 1
                              : __builtin_cpu_supports("ssse3") ? 2
                                                                : 3;
    count = 4 - first;
    return kernels + first;
}

} // namespace velloway::base64
