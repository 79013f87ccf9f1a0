#include "cli/Integration.h"

#include <algorithm>

namespace kinsort {
namespace {

constexpr std::string_view kActionBegin = "<action>";
constexpr std::string_view kActionEnd = "</action>";
constexpr std::string_view kListEnd = "</actions>";
constexpr std::string_view kEmptyList = "<actions/>";
constexpr std::string_view kOurId = "<unique-id>kinsort-integrate-open</unique-id>";

std::string Replaced(std::string_view text, std::string_view from, std::string_view to) {
    std::string out;
    for (size_t at = text.find(from); at != text.npos; at = text.find(from)) {
        out.append(text.substr(0, at)).append(to);
        text.remove_prefix(at + from.size());
    }
    return out.append(text);
}

std::string ShellQuoted(std::string_view text) {
    return "'" + Replaced(text, "'", "'\\''") + "'";
}

// In double quotes, backslashes before what means something there; then once more for the file's own escapes.
std::string DesktopQuoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return Replaced(Replaced(quoted + "\"", "\\", "\\\\"), "%", "%%");
}

std::string XmlEscaped(std::string_view text) {
    return Replaced(Replaced(Replaced(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;");
}

std::string QuotedProgram(ProgramQuoting quoting, std::string_view program) {
    switch (quoting) {
        case ProgramQuoting::kNone:
            break;
        case ProgramQuoting::kDesktopEntry:
            return DesktopQuoted(program);
        case ProgramQuoting::kShell:
            return ShellQuoted(program);
        case ProgramQuoting::kShellInXml:
            return XmlEscaped(Replaced(ShellQuoted(program), "%", "%%"));
    }
    return {};
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

}  // namespace

std::string IntegrationNames(std::string_view separator) {
    std::string names;
    std::string_view last;
    for (const IntegrationFile& file : kIntegrationFiles) {
        if (file.name != last) names.append(names.empty() ? "" : separator).append(file.name);
        last = file.name;
    }
    return names;
}

bool IsIntegration(std::string_view name) {
    return std::any_of(kIntegrationFiles.begin(), kIntegrationFiles.end(),
                       [name](const IntegrationFile& file) { return file.name == name; });
}

std::string FillTemplate(std::string_view text, const IntegrationFile& file, std::string_view program) {
    return Replaced(Replaced(text, "@SELECTION@", file.selection), "@KINSORT@", QuotedProgram(file.quoting, program));
}

std::string WithoutOurAction(std::string_view list) {
    const size_t id = list.find(kOurId);
    size_t begin = id == list.npos ? list.npos : list.rfind(kActionBegin, id);
    size_t end = id == list.npos ? list.npos : list.find(kActionEnd, id);
    if (begin == list.npos || end == list.npos) return std::string(list);
    end += kActionEnd.size();
    // With the line that it stood on.
    while (begin > 0 && IsBlank(list[begin - 1]))
        --begin;
    if (end < list.size() && list[end] == '\n' && (begin == 0 || list[begin - 1] == '\n')) ++end;
    return std::string(list.substr(0, begin)).append(list.substr(end));
}

std::optional<std::string> WithOurAction(std::string_view list, std::string_view action) {
    const std::string rest = Replaced(WithoutOurAction(list), kEmptyList, "<actions>\n</actions>");
    const size_t end = rest.rfind(kListEnd);
    if (end == std::string::npos || rest.find("<actions") > end) return std::nullopt;
    std::string merged = rest.substr(0, end);
    if (!merged.ends_with('\n')) merged += '\n';
    return merged.append(action).append(rest.substr(end));
}

}  // namespace kinsort
