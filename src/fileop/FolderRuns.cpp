#include "fileop/FolderRuns.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace kinsort {

namespace {

constexpr size_t kMostSteps = 256;
constexpr uint64_t kManyBytes = uint64_t{4} << 20;  // with so many a run is long enough

// Folders out of which one of the steps moves something and into which another one puts something.
std::unordered_set<uint32_t> FindMixedFolders(const std::vector<Step>& steps, std::span<const uint32_t> indices) {
    std::unordered_set<uint32_t> sources;
    for (const uint32_t index : indices) {
        if (IsMove(steps[index].kind)) sources.insert(steps[index].source.folder);
    }
    std::unordered_set<uint32_t> mixed;
    for (const uint32_t index : indices) {
        if (sources.contains(steps[index].target.folder)) mixed.insert(steps[index].target.folder);
    }
    return mixed;
}

uint64_t BytesToRead(const Step& step) {
    if (MakesContent(step.kind)) return step.sourceId.size;
    return step.kind == StepKind::kRemoveCopy ? step.targetId.size : 0;
}

}  // namespace

std::vector<std::vector<size_t>> SplitByFolder(const std::vector<Step>& steps, std::span<const uint32_t> indices) {
    const std::unordered_set<uint32_t> mixed = FindMixedFolders(steps, indices);
    const auto folderOf = [&](size_t position) {
        const Step& step = steps[indices[position]];
        const bool isInOrder =
            mixed.contains(step.target.folder) || (IsMove(step.kind) && mixed.contains(step.source.folder));
        return isInOrder ? kNoIndex : step.target.folder;
    };
    std::vector<size_t> order(indices.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return folderOf(a) < folderOf(b); });
    std::vector<std::vector<size_t>> runs;
    uint64_t bytes = 0;
    for (const size_t position : order) {
        const bool isLong = !runs.empty() && (runs.back().size() >= kMostSteps || bytes >= kManyBytes);
        const bool isNew = runs.empty() || folderOf(runs.back().front()) != folderOf(position) ||
                           (isLong && folderOf(position) != kNoIndex);
        if (isNew) {
            runs.emplace_back();
            bytes = 0;
        }
        runs.back().push_back(position);
        bytes += BytesToRead(steps[indices[position]]);
    }
    return runs;
}

}  // namespace kinsort
