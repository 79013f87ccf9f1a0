#include "script/ExpandLine.h"

#include <array>
#include <ctime>

#include "framework/Paths.h"
#include "framework/VelFolders.h"
#include "script/ItemTokens.h"
#include "text/Numbers.h"
#include "text/Trim.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

// A date of more units is none.
constexpr size_t kMaxDateLength = 127;

struct DateToken {
    std::u16string_view token;
    const char* format;
    std::u16string_view help;
};
constexpr DateToken kDateTokens[] = {
    {u"?Date?", "%Y-%m-%d", u"today, as 2025-01-05"},
    {u"?Time?", "%H-%M-%S", u"the time of day, as 09-07-03"},
    {u"?Year?", "%Y", u"the year, four digits"},
    {u"?Month?", "%m", u"the month, two digits"},
    {u"?Day?", "%d", u"the day of the month, two digits"},
    {u"?Hour?", "%H", u"the hour, 00 to 23"},
    {u"?Minute?", "%M", u"the minute, two digits"},
    {u"?Second?", "%S", u"the second, two digits"},
    {u"?Week?", "%a", u"the day of the week, short"},
    {u"?WEEK?", "%A", u"the day of the week"},
    {u"?ShellTime?", "%c", u"date and time as the user's language writes them"},
};

constexpr TokenHelp kRunTokens[] = {
    {u"?SelectedCount?", u"how many items were selected when the script began"},
    {u"?ScriptName?", u"the script's file name"},
    {u"?ScriptPath?", u"the script's folder, with its backslash"},
};

struct FolderToken {
    std::u16string_view token;
    std::u16string (*value)(const ExpansionScope& scope);
    std::u16string_view help;
};
constexpr FolderToken kFolderTokens[] = {
    {u"?Drive?", [](const ExpansionScope& scope) { return SplitPath(scope.otherFolder).drive; },
     u"the drive of the other folder, as C:"},
    {u"?Dir?", [](const ExpansionScope& scope) { return SplitPath(scope.otherFolder).folder; },
     u"the other folder behind its drive, up to its last backslash"},
    {u"?NowDir?",
     [](const ExpansionScope& scope) { return Quote(RemoveTrailingSeparatorKeepRoot(scope.currentFolder)); },
     u"the current folder, in quotation marks"},
    {u"?nowdir?", [](const ExpansionScope& scope) { return RemoveTrailingSeparatorKeepRoot(scope.currentFolder); },
     u"the current folder"},
    {u"?TargetDir?", [](const ExpansionScope&) { return std::u16string(); }, u"always empty"},
    {u"?TargetDrive?", [](const ExpansionScope&) { return std::u16string(); }, u"always empty"},
};

template <typename Table>
bool HoldsOneOf(std::u16string_view text, const Table& table) {
    for (const auto& row : table)
        if (text.find(row.token) != text.npos) return true;
    return false;
}

std::u16string FormatDate(const char* format, const std::tm& time) {
    std::array<char, 4 * kMaxDateLength> bytes;
    const size_t size = std::strftime(bytes.data(), bytes.size(), format, &time);
    std::u16string text = FromUtf8(std::string_view(bytes.data(), size));
    return text.size() > kMaxDateLength ? std::u16string() : text;
}

void FillInDates(std::u16string& text, Clock& clock) {
    if (!HoldsOneOf(text, kDateTokens)) return;
    constexpr int64_t kNanosecondsPerSecond = 1'000'000'000;
    const auto seconds = static_cast<std::time_t>(clock.WallNanoseconds() / kNanosecondsPerSecond);
    const std::tm* const time = std::localtime(&seconds);
    for (const DateToken& row : kDateTokens)
        ReplaceToken(text, row.token, time == nullptr ? std::u16string() : FormatDate(row.format, *time));
}

void FillInFolders(std::u16string& text, const ExpansionScope& scope) {
    for (const FolderToken& row : kFolderTokens) {
        if (text.find(row.token) == text.npos) continue;
        ReplaceToken(text, row.token, scope.currentFolder.empty() ? std::u16string() : row.value(scope));
    }
    // A folder whose own name holds a token does not bring it in.
    for (const FolderToken& row : kFolderTokens)
        ReplaceToken(text, row.token, {});
}

void FillInPathTokens(std::u16string& text, const ExpansionScope& scope) {
    // One alone divides.
    const size_t percent = text.find(u'%');
    if (percent != text.npos && text.find(u'%', percent + 1) != text.npos)
        text = scope.folders.ExpandDirectoryMacros(text);
    if (text.find(u'?') == text.npos) return;
    FillInDates(text, scope.clock);
    FillInFolders(text, scope);
}

}  // namespace

std::optional<std::u16string> ExpandLine(std::u16string_view text, const ExpansionScope& scope, Trimming trimming) {
    std::u16string out(text);
    if (!ExpandVariables(scope.variables, out)) return std::nullopt;
    FillInPathTokens(out, scope);
    const auto index = static_cast<size_t>(scope.forIndex);
    if (scope.forIndex >= 0 && index < scope.selectedItems.size() && out.find(u'?') != out.npos)
        out = FillInItem(out, scope.selectedItems[index], scope.system);
    if (trimming == Trimming::kTrim) {
        const std::u16string_view trimmed = TrimView(out);
        if (trimmed.size() != out.size()) out = std::u16string(trimmed);
    }
    return out;
}

std::u16string ExpandPathText(std::u16string_view text, const ExpansionScope& scope) {
    std::u16string out(text);
    FillInPathTokens(out, scope);
    return out;
}

RunTokens::RunTokens(std::u16string_view scriptPath, size_t selectedCount)
    : selectedCount_(FormatInteger(static_cast<int64_t>(selectedCount))),
      scriptName_(GetFileNamePart(scriptPath)),
      scriptPath_(GetDirectoryPart(scriptPath)) {}

std::u16string RunTokens::Replace(std::u16string_view line) const {
    std::u16string out(line);
    if (out.find(u'?') == out.npos) return out;
    ReplaceToken(out, kRunTokens[0].token, selectedCount_);
    ReplaceToken(out, kRunTokens[1].token, scriptName_);
    ReplaceToken(out, kRunTokens[2].token, scriptPath_);
    return out;
}

std::vector<TokenHelp> ListTokens() {
    std::vector<TokenHelp> tokens(std::begin(kRunTokens), std::end(kRunTokens));
    const auto add = [&tokens](const auto& table) {
        for (const auto& row : table)
            tokens.push_back({row.token, row.help});
    };
    add(kDateTokens);
    add(kFolderTokens);
    add(ListItemTokens());
    return tokens;
}

}  // namespace kinsort
