// Runs every case of tests/*.ecs in a world of its own.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>

#include <gtest/gtest.h>

#include "script/ReportedServices.h"
#include "script/ScriptCases_test.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/ScriptWorld_test.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kMainScript = u"C:\\Scripts\\main.ecs";

struct NamedAnswer {
    std::u16string_view name;
    MessageAnswer answer;
};
constexpr NamedAnswer kAnswers[] = {{u"ok", MessageAnswer::kOk},         {u"cancel", MessageAnswer::kCancel},
                                    {u"abort", MessageAnswer::kAbort},   {u"retry", MessageAnswer::kRetry},
                                    {u"ignore", MessageAnswer::kIgnore}, {u"yes", MessageAnswer::kYes},
                                    {u"no", MessageAnswer::kNo}};
constexpr std::u16string_view kButtonNames[] = {u"",       u" okcancel",    u" abortretryignore", u" yesnocancel",
                                                u" yesno", u" retrycancel", u" canceltrycontinue"};
constexpr std::u16string_view kEndings[] = {u"finished", u"declined", u"error", u"limit", u"cancelled", u"unreadable"};

std::u16string IconName(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::kNone:
            return {};
        case MessageIcon::kError:
            return u" error";
        case MessageIcon::kQuestion:
            return u" question";
        case MessageIcon::kWarning:
            return u" warning";
        case MessageIcon::kInformation:
            return u" information";
    }
    return u" ?";
}

std::vector<std::u16string> List(std::u16string_view text) {
    std::vector<std::u16string> items;
    for (const std::u16string& item : SplitSkippingEmpty(text, u'|'))
        items.push_back(Trim(item));
    return items;
}

// "PATH: rest", split at the first ": ".
std::pair<std::u16string, std::u16string> PathAndText(const std::u16string& text) {
    const size_t colon = text.find(u": ");
    if (colon == text.npos) return {text.ends_with(u':') ? text.substr(0, text.size() - 1) : text, {}};
    return {text.substr(0, colon), text.substr(colon + 2)};
}

std::string BytesOfHex(const std::u16string& text) {
    std::string bytes;
    for (const std::u16string& pair : SplitSkippingEmpty(text, u' '))
        bytes += static_cast<char>(ReadInt32AnyBase(u"0x" + pair));
    return bytes;
}

// "2025-01-05 09:07:03".
int64_t SecondsOf(const std::u16string& moment) {
    const auto number = [&](size_t at) { return ReadInt32(moment.substr(at, 2)); };
    const std::chrono::sys_days day = std::chrono::year(ReadInt32(moment)) / number(5) / number(8);
    return int64_t{day.time_since_epoch().count()} * 86400 + number(11) * 3600 + number(14) * 60 + number(17);
}

// Notes what is asked, in one list with everything else that happens outside.
class NotingUserInterface final : public ScriptedUserInterface {
  public:
    explicit NotingUserInterface(std::function<void(std::u16string)> note) : note_(std::move(note)) {}

    MessageAnswer ShowMessage(const MessageRequest& request) override {
        std::u16string text = u"box";
        text += kButtonNames[static_cast<size_t>(request.buttons)];
        text += IconName(request.icon);
        if (request.defaultButton != 0) text += u" default" + FormatInteger(request.defaultButton);
        if (request.owner != kNoWindow) text += u" over " + FormatInteger(static_cast<int64_t>(request.owner));
        if (!request.title.empty()) text += u" [" + request.title + u"]";
        note_(text + u": " + request.text);
        return ScriptedUserInterface::ShowMessage(request);
    }
    std::optional<size_t> ChooseOne(const ChoiceRequest& request) override {
        note_(u"choose: " + request.instruction + u" | " + Join(request.choices, u" | "));
        return ScriptedUserInterface::ChooseOne(request);
    }

  private:
    std::function<void(std::u16string)> note_;
};

class CaseRunner final : public ScriptObserver {
  public:
    explicit CaseRunner(const ScriptCase& one) : case_(one) {}

    void Run() {
        world_.AddScript(kMainScript, case_.script);
        for (const auto& [path, text] : case_.included)
            world_.AddScript(path, text);
        for (const CaseDirective& given : case_.given)
            Prepare(given);
        if (!messageFile_.empty()) world_.AddScript(world_.messages.GetMessageFilePath(), messageFile_);

        ScriptServices inner = world_.ServicesWith({.ui = &ui_});
        inner.observer = this;
        inner.maxVariableUnits = memory_;
        ReportedServices reported(
            inner, world_.registry, [this](const std::u16string& event) { Note(event); }, Performance::kReportAndDo);
        call_.variables = &variables_;
        result_ = RunScript(reported.services(), call_);
        FinishLine();
        Judge();
    }

    void OnLine(ScriptRun& run, const ScriptLine& line) override {
        if (run.session.depth != 0) return;
        FinishLine();
        line_ = line.number;
        target_ = line.target;
        const IndexedName name = SplitIndexedName(target_);
        if (name.isIndexed())
            target_ = FormatIndexedName(name.base, ExpandLine(name.index, run.scope, Trimming::kTrim).value_or(u"?"));
    }

  private:
    void Note(std::u16string event) { events_.push_back(std::move(event)); }

    std::string Place(int line) const { return "line " + std::to_string(line); }

    // Keeps what the line that has just run did; line 0 is what comes before the first one.
    void FinishLine() {
        if (world_.sleeper.slept != slept_) Note(u"wait: " + FormatInteger(world_.sleeper.slept - slept_));
        slept_ = world_.sleeper.slept;
        Done& done = done_[line_];
        ++done.times;
        const std::u16string* const value = variables_.Find(target_);
        done.values.push_back(value == nullptr ? u"(" + target_ + u" is not declared)" : *value);
        lastEvents_ = done.events.size();
        std::move(events_.begin(), events_.end(), std::back_inserter(done.events));
        events_.clear();
    }

    void Judge() {
        std::vector<std::u16string> eventsAtEnd;
        JudgeDirectives(eventsAtEnd);
        TakeEventsAtEnd(eventsAtEnd);
        for (const auto& [line, done] : done_) {
            const auto found = case_.lines.find(line);
            JudgeEvents(line, found == case_.lines.end() ? std::vector<std::u16string>() : found->second.events,
                        done.events);
        }
        for (const auto& [line, expectation] : case_.lines)
            JudgeLine(line, expectation);
        EXPECT_EQ(ShowWithEscapes(kEndings[static_cast<size_t>(result_.ending)]), ShowWithEscapes(ending_));
        EXPECT_EQ(result_.code, code_);
        EXPECT_EQ(ui_.unexpected, 0) << "a question for which no answer is given";
        EXPECT_TRUE(ui_.messageAnswers.empty()) << "an answer that nothing asked for";
    }

    // What happened after the last line counts to that line, unless the case expects it at the end.
    void TakeEventsAtEnd(const std::vector<std::u16string>& expected) {
        if (expected.empty()) return;
        std::vector<std::u16string>& events = done_[line_].events;
        const size_t count = std::min(expected.size(), events.size() - lastEvents_);
        const std::vector<std::u16string> last(events.end() - static_cast<ptrdiff_t>(count), events.end());
        JudgeEvents(0, expected, last);
        events.resize(events.size() - count);
    }

    void JudgeEvents(int line, const std::vector<std::u16string>& expected,
                     const std::vector<std::u16string>& events) const {
        EXPECT_EQ(ShowWithEscapes(Join(events, u"\n      ")), ShowWithEscapes(Join(expected, u"\n      ")))
            << (line == 0 ? "after the last line" : Place(line));
    }

    void JudgeLine(int line, const LineExpectation& expectation) {
        const auto found = done_.find(line);
        if (expectation.isNeverRun) {
            EXPECT_EQ(found, done_.end()) << Place(line) << " was run";
            return;
        }
        ASSERT_NE(found, done_.end()) << Place(line) << " was not run";
        const std::vector<std::u16string>& expected = expectation.values;
        if (expected.empty()) return;
        const Done& done = found->second;
        if (expected.size() > 1) {
            EXPECT_EQ(done.times, expected.size()) << Place(line) << " ran as many times";
        }
        for (size_t i = 0; i < done.values.size(); ++i) {
            const std::u16string& wanted = expected[std::min(i, expected.size() - 1)];
            EXPECT_EQ(ShowWithEscapes(done.values[i]), ShowWithEscapes(wanted)) << Place(line) << ", time " << i + 1;
        }
    }

    using Handler = void (*)(CaseRunner& self, const std::u16string& text);
    struct HandlerRow {
        std::u16string_view name;
        Handler handler;
    };

    static void Call(std::span<const HandlerRow> rows, CaseRunner& self, const CaseDirective& directive) {
        const auto found =
            std::find_if(rows.begin(), rows.end(), [&](const HandlerRow& row) { return row.name == directive.name; });
        ASSERT_NE(found, rows.end()) << self.Place(directive.line) << ": unknown directive " << ToUtf8(directive.name);
        SCOPED_TRACE(self.Place(directive.line));
        found->handler(self, directive.text);
    }

    void Prepare(const CaseDirective& given);
    void JudgeDirectives(std::vector<std::u16string>& eventsAtEnd);

    struct Done {
        size_t times = 0;
        std::vector<std::u16string> values, events;
    };

    const ScriptCase& case_;
    ScriptWorld world_;
    NotingUserInterface ui_{[this](std::u16string event) { Note(std::move(event)); }};
    VariableTable variables_;
    std::vector<std::u16string> items_;
    ScriptCall call_{
        .scriptPath = std::u16string(kMainScript), .currentFolder = {}, .otherFolder = {}, .selectedItems = items_};
    std::u16string messageFile_;
    size_t memory_ = kMaxVariableUnits;
    ScriptResult result_;
    std::u16string ending_ = u"finished";
    int32_t code_ = 0;
    std::vector<std::u16string> expectedAtEnd_;

    int line_ = 0;  // that is running
    std::u16string target_;
    int64_t slept_ = 0;
    size_t lastEvents_ = 0;  // of the last line, before its last time
    std::vector<std::u16string> events_;
    std::map<int, Done> done_;
};

void CaseRunner::Prepare(const CaseDirective& given) {
    static constexpr HandlerRow kRows[] = {
        {u"items", [](CaseRunner& self, const std::u16string& text) { self.items_ = List(text); }},
        {u"cwd", [](CaseRunner& self, const std::u16string& text) { self.call_.currentFolder = text; }},
        {u"other", [](CaseRunner& self, const std::u16string& text) { self.call_.otherFolder = text; }},
        {u"answer",
         [](CaseRunner& self, const std::u16string& text) {
             for (const NamedAnswer& row : kAnswers)
                 if (row.name == text) return self.ui_.messageAnswers.push_back(row.answer);
             FAIL() << "no answer of that name";
         }},
        {u"choose",
         [](CaseRunner& self, const std::u16string& text) {
             std::optional<size_t> choice;
             if (text != u"cancel") choice = static_cast<size_t>(ReadInt32(text));
             self.ui_.choices.push_back(choice);
         }},
        {u"file",
         [](CaseRunner& self, const std::u16string& text) {
             const auto [path, content] = PathAndText(text);
             self.world_.AddScript(path, content);
         }},
        {u"bytes",
         [](CaseRunner& self, const std::u16string& text) {
             const auto [path, hex] = PathAndText(text);
             self.world_.files.SetContent(path, BytesOfHex(hex));
         }},
        {u"folder", [](CaseRunner& self, const std::u16string& text) { self.world_.files.AddFolder(text); }},
        {u"full", [](CaseRunner& self, const std::u16string& text) { self.world_.files.FillUp(text); }},
        {u"denied", [](CaseRunner& self, const std::u16string& text) { self.world_.files.DenyFolder(text); }},
        {u"clipboard", [](CaseRunner& self, const std::u16string& text) { self.ui_.clipboard = text; }},
        {u"env",
         [](CaseRunner& self, const std::u16string& text) {
             const size_t equals = text.find(u'=');
             self.world_.environment.variables[text.substr(0, equals)] = text.substr(equals + 1);
         }},
        {u"now", [](CaseRunner& self,
                    const std::u16string& text) { self.world_.clock.SetWall(SecondsOf(text) * 1'000'000'000); }},
        {u"exit",
         [](CaseRunner& self, const std::u16string& text) {
             ScriptedRun run;
             run.exitCode = static_cast<uint32_t>(ReadInt64(text));
             self.world_.processes.runs.push_back(run);
         }},
        {u"hangs",
         [](CaseRunner& self, const std::u16string&) {
             ScriptedRun run;
             run.endsInTime = false;
             self.world_.processes.runs.push_back(run);
         }},
        {u"missing",
         [](CaseRunner& self, const std::u16string&) {
             ScriptedRun run;
             run.start = Status::Failure(StatusCode::kNotFound, 2, u"No such file or directory");
             self.world_.processes.runs.push_back(run);
         }},
        {u"host", [](CaseRunner& self, const std::u16string&) { self.world_.windows.windows[100] = kHostWindowClass; }},
        {u"message",
         [](CaseRunner& self, const std::u16string& text) {
             const auto [number, message] = PathAndText(text);
             self.messageFile_ += number + u"\t" + message + u"\r\n";
         }},
        {u"screens",  // "0 0 1920 1080 | 1920 0 3200 1024", the work area of the first is 40 less high
         [](CaseRunner& self, const std::u16string& text) {
             for (const std::u16string& screen : List(text)) {
                 const auto edges = SplitSkippingEmpty(screen, u' ');
                 self.ui_.screens.push_back(
                     {ReadInt32(edges.at(0)), ReadInt32(edges.at(1)), ReadInt32(edges.at(2)), ReadInt32(edges.at(3))});
             }
             self.ui_.workArea = self.ui_.screens.at(0);
             self.ui_.workArea->bottom -= 40;
         }},
        {u"keys",
         [](CaseRunner& self, const std::u16string& text) {
             auto& keys = self.ui_.keysDown;
             if (text.find(u"shift") != text.npos) keys.insert(ModifierKey::kShift);
             if (text.find(u"control") != text.npos) keys.insert(ModifierKey::kControl);
             if (text.find(u"alt") != text.npos) keys.insert(ModifierKey::kAlt);
         }},
        {u"open-mode",
         [](CaseRunner& self, const std::u16string& text) {
             self.call_.forcedOpenMode = static_cast<uint32_t>(ReadInt32(text));
         }},
        {u"takes-option",
         [](CaseRunner& self, const std::u16string& text) { self.call_.takesCommandLineOption = ReadInt32(text); }},
        {u"marks-file",
         [](CaseRunner& self, const std::u16string& text) { self.call_.marksSelectedFile = ReadInt32(text); }},
        {u"memory",
         [](CaseRunner& self, const std::u16string& text) { self.memory_ = static_cast<size_t>(ReadInt32(text)); }},
        {u"cancel", [](CaseRunner& self, const std::u16string&) { self.world_.cancel.Cancel(); }},
    };
    Call(kRows, *this, given);
}

void CaseRunner::JudgeDirectives(std::vector<std::u16string>& eventsAtEnd) {
    static constexpr HandlerRow kRows[] = {
        {u"ends", [](CaseRunner& self, const std::u16string& text) { self.ending_ = text; }},
        {u"returns", [](CaseRunner& self, const std::u16string& text) { self.code_ = ReadInt32(text); }},
        {u"event", [](CaseRunner& self, const std::u16string& text) { self.expectedAtEnd_.push_back(text); }},
        {u"items",
         [](CaseRunner& self, const std::u16string& text) {
             EXPECT_EQ(ShowWithEscapes(Join(self.items_, u" | ")), ShowWithEscapes(Join(List(text), u" | ")));
         }},
        {u"file",
         [](CaseRunner& self, const std::u16string& text) {
             const auto [path, content] = PathAndText(text);
             const std::string bytes = self.world_.files.ContentOf(path);
             EXPECT_EQ(bytes, Utf16Bytes(content)) << ToUtf8(path);
         }},
        {u"bytes",
         [](CaseRunner& self, const std::u16string& text) {
             const auto [path, hex] = PathAndText(text);
             EXPECT_EQ(self.world_.files.ContentOf(path), BytesOfHex(hex)) << ToUtf8(path);
         }},
        {u"clipboard",
         [](CaseRunner& self, const std::u16string& text) {
             EXPECT_EQ(ShowWithEscapes(self.ui_.clipboard), ShowWithEscapes(text));
         }},
        {u"variable",
         [](CaseRunner& self, const std::u16string& text) {
             const size_t equals = text.find(u'=');
             const std::u16string* const value = self.variables_.Find(Trim(text.substr(0, equals)));
             ASSERT_NE(value, nullptr) << "not declared";
             EXPECT_EQ(ShowWithEscapes(*value), ShowWithEscapes(Trim(text.substr(equals + 1))));
         }},
    };
    for (const CaseDirective& expected : case_.expected)
        Call(kRows, *this, expected);
    eventsAtEnd = expectedAtEnd_;
}

class ScriptFiles : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(ScriptFiles, RunAsWritten) {
    setenv("TZ", "UTC", 1);
    std::ifstream file(GetParam(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::vector<ScriptCase> cases;
    ASSERT_NO_THROW(cases = ReadScriptCases(bytes)) << GetParam();
    ASSERT_FALSE(cases.empty());
    for (const ScriptCase& one : cases) {
        SCOPED_TRACE(GetParam().filename().string() + ":" + std::to_string(one.line) + ": " + ToUtf8(one.title));
        CaseRunner(one).Run();
    }
}

std::vector<std::filesystem::path> FindScriptFiles() {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(KINSORT_SCRIPT_TESTS))
        if (entry.path().extension() == ".ecs") found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

INSTANTIATE_TEST_SUITE_P(Tests, ScriptFiles, testing::ValuesIn(FindScriptFiles()),
                         [](const auto& file) { return file.param.stem().string(); });

}  // namespace
}  // namespace kinsort
