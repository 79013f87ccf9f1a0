// "Exist", "IsDirectory", "IsFile" and "random": what a path leads to.
#include <random>

#include "framework/Paths.h"
#include "script/MatchingEntries.h"
#include "script/ScriptRun.h"
#include "script/functions/Functions.h"

namespace kinsort {
namespace {

FunctionResult Flag(bool isSet) {
    return FunctionResult::Plain(isSet ? u"1" : u"0");
}

// Whether the path leads to a folder, or to anything else; the run ends when it leads nowhere.
FunctionResult AskForFolder(ScriptRun& run, const FunctionCall& call, bool wantsFolder) {
    const uint32_t attributes = GetPathAttributes(run.services.files, call.arguments);
    if (attributes != kInvalidAttributes) return Flag(((attributes & kAttributeDirectory) != 0) == wantsFolder);
    run.Fail(ScriptError::kNotFound, call.arguments);
    return FunctionResult::Ended();
}

}  // namespace

FunctionResult CallExist(ScriptRun& run, const FunctionCall& call) {
    return Flag(FileExists(run.services.files, call.arguments));
}

FunctionResult CallIsDirectory(ScriptRun& run, const FunctionCall& call) {
    return AskForFolder(run, call, true);
}

FunctionResult CallIsFile(ScriptRun& run, const FunctionCall& call) {
    return AskForFolder(run, call, false);
}

FunctionResult CallRandom(ScriptRun& run, const FunctionCall& call) {
    std::vector<std::u16string> entries;
    ListMatchingEntries(run.services.files, call.arguments, entries);
    if (entries.empty()) return FunctionResult::Text({});
    // Nanoseconds: two lines of a script run within the same millisecond and should not pick the same entry.
    std::mt19937_64 generator(static_cast<uint64_t>(run.services.clock.SteadyNanoseconds()));
    return FunctionResult::Text(entries[generator() % entries.size()]);
}

}  // namespace kinsort
