// The choice of kernel on an x86-64 processor, made once by asking it what it has.
#include <vector>

#include "classify/RowKernelList.h"
#include "classify/RowKernels.h"

namespace kinsort {

std::span<const RowKernel> RowKernels() {
    static const std::vector<RowKernel> kernels = [] {
        std::vector<RowKernel> supported;
        if (__builtin_cpu_supports("avx512f")) supported.push_back({"avx512", FindSumAvx512});
        if (__builtin_cpu_supports("avx2")) supported.push_back({"avx2", FindSumAvx2});
        supported.push_back({"plain", FindSumPlain});
        return supported;
    }();
    return kernels;
}

}  // namespace kinsort
