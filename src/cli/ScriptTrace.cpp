#include "cli/ScriptTrace.h"

#include "cli/ShownText.h"
#include "framework/Paths.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "text/Utf8.h"

namespace kinsort {

std::u16string FilledIn(ScriptRun& run, const ScriptLine& line) {
    const bool isAssignment = line.hasValue && (line.kind == LineKind::kStatement || line.kind == LineKind::kVar);
    const size_t end = line.statement.find(isAssignment ? u'=' : u' ');
    if (end == std::u16string_view::npos) return std::u16string(line.statement);
    const std::optional<std::u16string> rest = ExpandLine(line.statement.substr(end + 1), run.scope, Trimming::kKeep);
    return std::u16string(line.statement.substr(0, end + 1)) + rest.value_or(u"(too long to show)");
}

void ScriptTrace::OnLine(ScriptRun& run, const ScriptLine& line) {
    const std::u16string filledIn = FilledIn(run, line);
    std::string text = ToUtf8(GetFileNamePart(run.call.scriptPath)) + ":" + std::to_string(line.number) + ": " +
                       ToUtf8(line.statement);
    if (filledIn != line.statement) text += "  ->  " + ToUtf8(filledIn);
    console_.PutMessage(ShownText(text) + "\n");
}

}  // namespace kinsort
