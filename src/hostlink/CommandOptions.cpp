#include "hostlink/CommandOptions.h"

#include <algorithm>
#include <array>
#include <variant>

#include "text/Numbers.h"

namespace kinsort {
namespace {

// A flag says which numbers mean true.
struct ExactlyOne {
    bool CommandOptions::*field;
};
struct AnythingButZero {
    bool CommandOptions::*field;
};
using Field = std::variant<std::u16string CommandOptions::*, int32_t CommandOptions::*, uint16_t CommandOptions::*,
                           ExactlyOne, AnythingButZero>;

struct OptionRow {
    std::u16string_view name;
    std::u16string_view defaultText;
    Field field;
};

// To add an option: a field of the record and a row here; what a script line does with it stands in
// script/OptionLines.cpp.
constexpr std::array<OptionRow, 14> kOptionRows = {{
    {u"commandlineoption", u"", &CommandOptions::commandLineOption},
    {u"bootdir", u"", &CommandOptions::bootDir},
    {u"bootmode", u"0", &CommandOptions::bootMode},
    {u"showwindow", u"1", &CommandOptions::showWindow},
    {u"timeout", u"-1", &CommandOptions::timeoutMs},
    {u"runwait", u"0", &CommandOptions::runWaitMs},
    {u"sendinfomode", u"0", &CommandOptions::sendInfoMode},
    {u"multicommandmode", u"0", ExactlyOne{&CommandOptions::multiCommandMode}},
    {u"shiftsilentmode", u"1", ExactlyOne{&CommandOptions::shiftSilentMode}},
    {u"filter", u"", &CommandOptions::filter},
    {u"exitloopcount", u"5", &CommandOptions::exitLoopCount},
    {u"checkgrammar", u"0", &CommandOptions::checkGrammar},
    {u"openmode", u"0", &CommandOptions::openMode},
    {u"runas", u"0", AnythingButZero{&CommandOptions::runAs}},
}};

struct Converter {
    const std::u16string& text;
    CommandOptions& record;

    void operator()(std::u16string CommandOptions::*field) const { record.*field = text; }
    void operator()(int32_t CommandOptions::*field) const { record.*field = ReadInt32(text); }
    void operator()(uint16_t CommandOptions::*field) const { record.*field = static_cast<uint16_t>(ReadInt32(text)); }
    void operator()(ExactlyOne flag) const { record.*flag.field = ReadInt32(text) == 1; }
    void operator()(AnythingButZero flag) const { record.*flag.field = ReadInt32(text) != 0; }
};

void ReadRow(const OptionTable& table, const OptionRow& row, CommandOptions& record) {
    if (const std::u16string* const text = table.Find(row.name)) std::visit(Converter{*text, record}, row.field);
}

}  // namespace

const std::u16string* OptionTable::Find(std::u16string_view name) const {
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [name](const auto& entry) { return entry.first == name; });
    return found == entries_.end() ? nullptr : &found->second;
}

void OptionTable::SetOption(std::u16string_view name, std::u16string_view text) {
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [name](const auto& entry) { return entry.first == name; });
    if (found != entries_.end()) {
        found->second = text;
    } else {
        entries_.emplace_back(name, text);
    }
}

OptionTable CreateDefaultOptions() {
    OptionTable table;
    for (const OptionRow& row : kOptionRows)
        table.SetOption(row.name, row.defaultText);
    return table;
}

void ReadOptions(const OptionTable& table, CommandOptions& record) {
    for (const OptionRow& row : kOptionRows)
        ReadRow(table, row, record);
}

bool ReadOption(const OptionTable& table, std::u16string_view name, CommandOptions& record) {
    const auto* const row = std::find_if(kOptionRows.begin(), kOptionRows.end(),
                                         [name](const OptionRow& candidate) { return candidate.name == name; });
    if (row == kOptionRows.end()) return false;
    ReadRow(table, *row, record);
    return true;
}

}  // namespace kinsort
