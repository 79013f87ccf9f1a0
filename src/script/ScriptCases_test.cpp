#include "script/ScriptCases_test.h"

#include <stdexcept>

#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

struct Escape {
    std::u16string_view name;
    char16_t unit;
};
constexpr Escape kEscapes[] = {{u"<LF>", u'\n'}, {u"<CR>", u'\r'}, {u"<TAB>", u'\t'}, {u"<SP>", u' '}, {u"<NUL>", 0}};

[[noreturn]] void Fail(int line, const std::string& what) {
    throw std::runtime_error("line " + std::to_string(line) + ": " + what);
}

class CaseReader {
  public:
    void Take(std::u16string_view text, int number) {
        if (text.starts_with(u"////")) return Begin(Trim(text.substr(4)), number);
        if (cases_.empty()) {
            if (!Trim(text).empty() && !text.starts_with(u"//")) Fail(number, "a case begins with //// and a title");
            return;
        }
        const std::u16string_view rest = text.size() > 3 ? text.substr(3) : std::u16string_view();
        ScriptCase& one = cases_.back();
        if (text.starts_with(u"//<")) {
            TakeGiven(Directive(rest, number));
        } else if (text.starts_with(u"//>")) {
            one.expected.push_back(Directive(rest, number));
        } else if (text.starts_with(u"//=")) {
            Expectation(number).values.push_back(ReplaceEscapes(Trim(rest)));
        } else if (text.starts_with(u"//!")) {
            LineExpectation& line = Expectation(number);
            const std::u16string event = Replace(Trim(rest), u"<LINE>", FormatInteger(lastLine_));
            if (event == u"not run")
                line.isNeverRun = true;
            else
                line.events.push_back(ReplaceEscapes(event));
        } else {
            const std::u16string statement = Trim(text);
            const bool isLine = !statement.empty() && !statement.starts_with(u"//");
            if (isLine && script_ == &one.script) lastLine_ = number;
            script_->append(static_cast<size_t>(number - 1) - lineCount_, u'\n').append(ReplaceEscapes(text));
            lineCount_ = static_cast<size_t>(number - 1);
        }
    }
    std::vector<ScriptCase> Finish() { return std::move(cases_); }

  private:
    void Begin(std::u16string title, int number) {
        cases_.emplace_back();
        cases_.back().title = std::move(title);
        cases_.back().line = number;
        Continue(cases_.back().script);
        lastLine_ = 0;
    }
    void Continue(std::u16string& script) {
        script_ = &script;
        lineCount_ = 0;
    }
    static CaseDirective Directive(std::u16string_view rest, int number) {
        const std::u16string trimmed = Trim(rest);
        const size_t blank = trimmed.find(u' ');
        if (blank == trimmed.npos) return {trimmed, {}, number};
        return {trimmed.substr(0, blank), ReplaceEscapes(Trim(trimmed.substr(blank))), number};
    }
    void TakeGiven(CaseDirective directive) {
        if (directive.name == u"script")
            Continue(cases_.back().included[directive.text]);
        else
            cases_.back().given.push_back(std::move(directive));
    }
    LineExpectation& Expectation(int number) {
        if (lastLine_ == 0 || script_ != &cases_.back().script) Fail(number, "no line of the main script stands above");
        return cases_.back().lines[lastLine_];
    }

    std::vector<ScriptCase> cases_;
    std::u16string* script_ = nullptr;
    size_t lineCount_ = 0;  // line ends in *script_
    int lastLine_ = 0;
};

}  // namespace

std::vector<ScriptCase> ReadScriptCases(std::string_view bytes) {
    CaseReader reader;
    int number = 0;
    for (const std::u16string& line : Split(FromUtf8(bytes), u'\n'))
        reader.Take(line, ++number);
    return reader.Finish();
}

std::u16string ReplaceEscapes(std::u16string_view text) {
    std::u16string out(text);
    for (const Escape& escape : kEscapes)
        out = Replace(out, escape.name, std::u16string(1, escape.unit));
    for (size_t at = out.find(u"<U+"); at != out.npos; at = out.find(u"<U+", at + 1)) {
        const size_t end = out.find(u'>', at);
        if (end == out.npos) break;
        const int32_t unit = ReadInt32AnyBase(u"0x" + out.substr(at + 3, end - at - 3));
        out.replace(at, end + 1 - at, 1, static_cast<char16_t>(unit));
    }
    return out;
}

std::string ShowWithEscapes(std::u16string_view text) {
    std::u16string out(text);
    for (const Escape& escape : kEscapes)
        if (escape.unit != u' ') out = Replace(out, std::u16string(1, escape.unit), escape.name);
    return ToUtf8(out);
}

}  // namespace kinsort
