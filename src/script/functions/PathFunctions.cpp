// Parts of a path. Nothing here asks whether it exists.
#include "framework/Paths.h"
#include "script/functions/Functions.h"

namespace kinsort {

FunctionResult GetPathFolder(ScriptRun&, const FunctionCall& call) {
    return FunctionResult::Text(GetDirectoryPart(call.arguments));
}

FunctionResult GetPathName(ScriptRun&, const FunctionCall& call) {
    return FunctionResult::Text(GetFileNamePart(RemoveTrailingSeparatorKeepRoot(call.arguments)));
}

FunctionResult GetPathExtension(ScriptRun&, const FunctionCall& call) {
    return FunctionResult::Text(SplitPath(call.arguments).extension);
}

FunctionResult RemoveLastSeparator(ScriptRun&, const FunctionCall& call) {
    return FunctionResult::Text(RemoveTrailingSeparator(call.arguments));
}

}  // namespace kinsort
