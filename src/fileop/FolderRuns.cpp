#include "fileop/FolderRuns.h"

#include <algorithm>
#include <numeric>

namespace kinsort {

namespace {

constexpr size_t kMostSteps = 256;
constexpr uint64_t kManyBytes = uint64_t{4} << 20;  // with so many a run is long enough

}  // namespace

std::vector<std::vector<size_t>> SplitByFolder(const std::vector<Step>& steps, std::span<const uint32_t> indices) {
    const auto folderOf = [&](size_t position) { return steps[indices[position]].target.folder; };
    std::vector<size_t> order(indices.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return folderOf(a) < folderOf(b); });
    std::vector<std::vector<size_t>> runs;
    uint64_t bytes = 0;
    for (const size_t position : order) {
        const bool isNew = runs.empty() || folderOf(runs.back().front()) != folderOf(position) ||
                           runs.back().size() == kMostSteps || bytes >= kManyBytes;
        if (isNew) {
            runs.emplace_back();
            bytes = 0;
        }
        runs.back().push_back(position);
        const Step& step = steps[indices[position]];
        bytes += MakesContent(step.kind) ? step.sourceId.size : 0;
    }
    return runs;
}

}  // namespace kinsort
