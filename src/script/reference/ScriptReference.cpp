#include "script/reference/ScriptReference.h"

#include <set>

#include "script/ExpandLine.h"
#include "script/FunctionTable.h"
#include "script/OptionLines.h"
#include "script/StatementTable.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr std::string_view kTitle = "//// ";

std::string_view TakeLine(std::string_view& text) {
    const size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return line;
}

// "function left right" as "function left" and "function right".
std::vector<std::string> NamesOf(std::string_view title) {
    std::vector<std::string> names;
    const size_t space = title.find(' ');
    const std::string kind(title.substr(0, space));
    std::string_view rest = space == title.npos ? std::string_view() : title.substr(space + 1);
    while (!rest.empty()) {
        const size_t end = rest.find(' ');
        names.push_back(kind + " " + std::string(rest.substr(0, end)));
        rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
    }
    return names;
}

std::string TrimLineEnds(std::string text) {
    while (text.ends_with("\n\n"))
        text.pop_back();
    return text;
}

// Writes the sections and keeps count of the examples that were used.
class ReferenceWriter {
  public:
    ReferenceWriter(const ReferenceExamples& examples, std::vector<std::string>& missing)
        : examples_(examples), missing_(missing) {}

    void Write() {
        text_ += "\n## Functions\n\nWritten as `name=function,arguments`, where `name` is a declared variable.\n";
        for (const FunctionRow& row : Functions())
            WriteEntry("function", ToUtf8(row.name), ",", row.synopsis, row.help);
        text_ += "\n## Commands\n\nWritten as `command=value`, upper or lower case.\n";
        for (const StatementRow& row : Statements())
            WriteEntry("command", ToUtf8(row.keyword), "=", row.synopsis, row.help);
        text_ +=
            "\n## Options\n\nWritten as `option=value`; they hold until they are set again.\n\n| option | "
            "|\n|---|---|\n";
        for (const OptionLineRow& row : OptionLines())
            WriteRow(ToUtf8(row.name), std::string(row.help));
        text_ +=
            "\n## Tokens\n\nFilled in wherever they stand; upper and lower case count.\n\n| token | |\n|---|---|\n";
        for (const TokenHelp& row : ListTokens())
            WriteRow(ToUtf8(row.token), ToUtf8(row.help));
        for (const auto& [name, example] : examples_)
            if (!used_.contains(name)) missing_.push_back("an example for what is not there: " + name);
    }
    std::string Take() { return std::move(text_); }

  private:
    void WriteEntry(const std::string& kind, const std::string& name, std::string_view joint, std::string_view synopsis,
                    std::string_view help) {
        text_ += "\n### " + name + "\n\n`" + name;
        if (!synopsis.empty()) text_.append(joint).append(synopsis);
        text_.append("`\n\n").append(help).append("\n");
        const auto example = examples_.find(kind + " " + name);
        if (example == examples_.end()) {
            missing_.push_back("no example for " + kind + " " + name);
            return;
        }
        used_.insert(example->first);
        text_ += "\n```\n" + example->second + "```\n";
    }
    void WriteRow(const std::string& name, const std::string& help) { text_ += "| `" + name + "` | " + help + " |\n"; }

    const ReferenceExamples& examples_;
    std::vector<std::string>& missing_;
    std::set<std::string> used_;
    std::string text_;
};

}  // namespace

ReferenceExamples ReadReferenceExamples(std::string_view cases) {
    ReferenceExamples examples;
    std::vector<std::string> names;
    std::string body;
    const auto keep = [&] {
        for (const std::string& name : names)
            examples[name] = TrimLineEnds(body);
        body.clear();
    };
    while (!cases.empty()) {
        const std::string_view line = TakeLine(cases);
        if (!line.starts_with(kTitle)) {
            body.append(line).append("\n");
            continue;
        }
        keep();
        names = NamesOf(line.substr(kTitle.size()));
    }
    keep();
    return examples;
}

std::string WriteScriptReference(const ReferenceExamples& examples, std::vector<std::string>& missing) {
    ReferenceWriter writer(examples, missing);
    writer.Write();
    return writer.Take();
}

}  // namespace kinsort
