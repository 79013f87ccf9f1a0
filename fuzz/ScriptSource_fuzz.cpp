// Any bytes as a script file: every line keeps its number and its place, and is taken apart without leaving its text.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/fake/MemoryFileSystem.h"
#include "script/ScriptSource.h"

namespace {

using namespace kinsort;

void Require(bool holds) {
    if (!holds) std::abort();
}

bool IsPieceOf(std::u16string_view piece, std::u16string_view text) {
    return piece.empty() || (piece.data() >= text.data() && piece.data() + piece.size() <= text.data() + text.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemoryFileSystem files;
    files.SetContent(u"C:\\a.ecs", std::string_view(reinterpret_cast<const char*>(data), size));
    ScriptSource source(files);
    Require(source.Open(u"C:\\a.ecs"));
    (void)source.CollectLabels();
    const RunTokens tokens(u"C:\\a.ecs", 3);
    int32_t number = 0;
    for (size_t i = 0; i < source.size(); ++i) {
        const ScriptLine& line = source.LineAt(i, tokens);
        Require(line.number > number);
        number = line.number;
        Require(IsPieceOf(line.statement, line.text) && IsPieceOf(line.target, line.statement) &&
                IsPieceOf(line.value, line.statement));
        Require(line.raw.size() == line.text.size() && line.target.size() == line.key.size());
        Require(IsPieceOf(line.operand, line.statement));
        Require(line.hasValue || (line.option == nullptr && line.command == nullptr));
        Require(&source.LineAt(i, tokens) == &line);
        const std::u16string label = LabelName(line.statement);
        if (const auto found = source.FindLabel(label)) Require(!label.empty() && *found < source.size());
    }
    return 0;
}
