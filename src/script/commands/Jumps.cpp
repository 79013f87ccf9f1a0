// "folderjump", "filejump", "favoritejump" and "ubjump": where the host is to go.
#include <array>

#include "framework/Paths.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/HostMessages.h"
#include "script/commands/Statements.h"
#include "text/Numbers.h"
#include "text/Trim.h"

namespace kinsort {

namespace {

constexpr std::array<uint32_t, 4> kFolderCodes = {100, 200, 300, 400};  // by mode
constexpr std::array<uint32_t, 4> kFileCodes = {103, 203, 303, 403};
constexpr uint32_t kFavoriteCode = 901;
constexpr uint32_t kUbCode = 1003;
constexpr int32_t kMaxFavorite = 9;
constexpr int32_t kFavoriteForZero = 10;
constexpr int32_t kMaxUb = 10;

struct NumberAndText {
    int32_t number;
    std::u16string_view text;  // trimmed
};

NumberAndText Separate(std::u16string_view value) {
    const size_t comma = value.find(u',');
    const std::u16string_view text = comma == value.npos ? std::u16string_view() : TrimView(value.substr(comma + 1));
    return {ReadInt32(value.substr(0, comma)), text};
}

LineOutcome Jump(ScriptRun& run, const StatementCall& call, const std::array<uint32_t, 4>& codes) {
    const auto [mode, path] = Separate(call.value);
    if (path.empty() || mode < 0 || mode >= static_cast<int32_t>(codes.size()))
        return run.Fail(ScriptError::kSyntax, call.line.statement);
    SendToHost(run, GetFullPath(run.services.files, path), codes[static_cast<size_t>(mode)]);
    return LineOutcome::kNextLine;
}

}  // namespace

LineOutcome RunFolderJump(ScriptRun& run, const StatementCall& call) {
    return Jump(run, call, kFolderCodes);
}

LineOutcome RunFileJump(ScriptRun& run, const StatementCall& call) {
    return Jump(run, call, kFileCodes);
}

LineOutcome RunFavoriteJump(ScriptRun& run, const StatementCall& call) {
    const auto [number, path] = Separate(call.value);
    if (path.empty() || number > kMaxFavorite) return run.Fail(ScriptError::kSyntax, call.line.statement);
    SendToHost(run, number == 0 ? kFavoriteForZero : number, GetFullPath(run.services.files, path), kFavoriteCode);
    return LineOutcome::kNextLine;
}

LineOutcome RunUbJump(ScriptRun& run, const StatementCall& call) {
    const auto [number, text] = Separate(call.value);
    if (number < 1 || number > kMaxUb) return run.Fail(ScriptError::kSyntax, call.line.statement);
    SendToHost(run, number - 1, text, kUbCode);
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
