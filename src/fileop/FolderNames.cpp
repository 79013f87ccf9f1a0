#include "fileop/FolderNames.h"

namespace kinsort {

namespace {

constexpr size_t kFewQuestions = 32;
constexpr size_t kNamesPerQuestion = 8;  // to read a name costs about an eighth of a look for one

}  // namespace

FolderNames::FolderNames(Sys& sys, const FileHandle& folder, size_t questions) {
    if (questions < kFewQuestions) return;
    bool isTooLong = false;
    const Status read = sys.ReadFolder(folder, [&](const FolderEntry& entry) {
        isTooLong = names_.size() >= questions * kNamesPerQuestion;
        if (!isTooLong) names_.insert(entry.name);
        return !isTooLong;
    });
    isListed_ = read.ok() && !isTooLong;
    if (!isListed_) names_ = {};
}

}  // namespace kinsort
