#include "framework/Processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/CopyData.h"
#include "framework/EnvironmentText.h"
#include "framework/FileDropList.h"
#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/fake/RecordingOpener.h"
#include "platform/fake/RecordingWindowMessages.h"
#include "platform/fake/ScriptedProcesses.h"
#include "platform/fake/ScriptedUserInterface.h"
#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ProcessesTest : public testing::Test {
  protected:
    ProcessesTest() { ui_.mainWindow = 77; }

    static Status Failure(std::u16string text) { return Status::Failure(StatusCode::kNotFound, 2, std::move(text)); }

    ScriptedProcesses processes_;
    RecordingOpener opener_;
    ScriptedUserInterface ui_;
    MemoryFileSystem files_;
    FakeEnvironment environment_;
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec("");
    ProcessContext context_{processes_, opener_, ui_, files_, environment_, *codec_, {}};
};

TEST_F(ProcessesTest, LaunchChoosesTheStartFolderAndExpandsVariables) {
    environment_.variables = {{u"HOME", u"/home/me"}, {u"NAME", u"a.txt"}};
    ShellLaunch(context_, 5,
                {.file = u"%home%\\docs\\%NAME%",
                 .arguments = u"%NAME% \"b c\"",
                 .startFolder = u"",
                 .waitForShell = true,
                 .showState = 3,
                 .isElevated = true});
    ShellLaunchFromThread(context_, u"Z:\\x.sh", u"", u"%HOME%", false, kShowNormal, false);
    ShellLaunchFromThread(context_, u"notepad", u"", u"", false, kShowNormal, false);
    const std::u16string longFile = u"Z:\\" + std::u16string(300, u'x') + u"\\a";
    ShellLaunchFromThread(context_, longFile, u"", u"", false, kShowNormal, false);
    ASSERT_EQ(opener_.opened.size(), 4u);

    const OpenRequest& first = opener_.opened[0];
    EXPECT_EQ(first.file, u"Z:\\home\\me\\docs\\a.txt");
    EXPECT_EQ(first.startFolder, u"Z:\\home\\me\\docs\\");
    EXPECT_THAT(first.arguments, ElementsAre(u"%NAME%", u"b c"));  // arguments go as given
    EXPECT_EQ(first.verb, OpenVerb::kRunAs);
    EXPECT_EQ(first.showState, 3);
    EXPECT_TRUE(first.waitForOpener);
    EXPECT_EQ(first.owner, 5u);

    const OpenRequest& second = opener_.opened[1];
    EXPECT_EQ(second.startFolder, u"Z:\\home\\me");
    EXPECT_EQ(second.verb, OpenVerb::kDefault);
    EXPECT_FALSE(second.waitForOpener);
    EXPECT_EQ(second.owner, 77u);
    EXPECT_EQ(opener_.opened[2].startFolder, u"notepad");
    EXPECT_EQ(opener_.opened[3].file, u"\\\\?\\" + longFile);
    EXPECT_EQ(opener_.opened[3].startFolder, u"\\\\?\\" + longFile.substr(0, longFile.size() - 1));
}

TEST_F(ProcessesTest, DocumentsAreOpenedWithoutAWordButTheErrorIsKept) {
    opener_.results = {Failure(u"No such file")};
    OpenDocument(context_, u"https://example.org/", u"help.html");
    EXPECT_EQ(opener_.opened[0].file, u"https://example.org/help.html");
    EXPECT_EQ(opener_.opened[0].startFolder, u"");
    EXPECT_EQ(opener_.opened[0].showState, kShow);
    EXPECT_EQ(opener_.opened[0].owner, 77u);
    EXPECT_THAT(ui_.messages, IsEmpty());
    ShowLastError(context_, u"help.html");
    ASSERT_EQ(ui_.messages.size(), 1u);
    EXPECT_EQ(ui_.messages[0].text, u"help.html\nNo such file");
    EXPECT_EQ(ui_.messages[0].buttons, MessageButtons::kOk);
    EXPECT_EQ(ui_.messages[0].owner, 77u);

    OpenDocument(context_, u"Z:\\", u"a");
    ShowLastError(context_);
    EXPECT_EQ(ui_.messages.size(), 1u);  // no error, no box
    context_.lastError = Status::Failure(StatusCode::kOther);
    ShowLastError(context_);
    EXPECT_EQ(ui_.messages.back().text, u"The operation failed, and the system does not say why.");
}

TEST_F(ProcessesTest, RunWaitsForTheEnd) {
    EXPECT_EQ(RunAndWait(context_, u"tool", u"-a \"b c\"", u"Z:\\in", 7, 1000), 1);
    const ProcessRequest& request = processes_.started[0];
    EXPECT_EQ(request.program, u"tool");
    EXPECT_THAT(request.arguments, ElementsAre(u"-a", u"b c"));
    EXPECT_EQ(request.startFolder, u"Z:\\in");
    EXPECT_EQ(request.showState, 7);
    EXPECT_EQ(request.tie, ProcessTie::kOurs);
    EXPECT_THAT(processes_.waits, ElementsAre(1000));
    EXPECT_THAT(ui_.messages, IsEmpty());

    processes_.runs = {{.start = Failure(u"none"), .terminate = {}}};
    EXPECT_EQ(RunAndWait(context_, u"tool", u"", u"", 1, kWaitForever), 0);
    EXPECT_EQ(context_.lastError.systemText(), u"none");
    EXPECT_THAT(ui_.messages, IsEmpty());
}

TEST_F(ProcessesTest, TimeOutAsksBeforeItKills) {
    const ScriptedRun slow = {.start = {}, .endsInTime = false, .terminate = {}};
    processes_.runs = {slow, slow};
    ui_.messageAnswers = {MessageAnswer::kNo, MessageAnswer::kYes};
    EXPECT_EQ(RunAndWait(context_, u"tool", u"", u"", 1, 1000), 0);
    EXPECT_THAT(processes_.terminations, IsEmpty());
    EXPECT_EQ(RunAndWait(context_, u"tool", u"", u"", 1, 1000), 0);
    EXPECT_THAT(processes_.terminations, ElementsAre(999u));
    ASSERT_EQ(ui_.messages.size(), 2u);
    EXPECT_EQ(ui_.messages[0].text, u"Timeout!\nAre you sure you want to kill the process?");
    EXPECT_EQ(ui_.messages[0].buttons, MessageButtons::kYesNo);
    EXPECT_EQ(ui_.messages[0].owner, 77u);
}

TEST_F(ProcessesTest, ProgramIsFoundInTheCommandLine) {
    files_.AddFile(u"Z:\\My Tools\\do it.sh");
    files_.AddFolder(u"Z:\\My");
    struct Case {
        std::u16string_view line;
        std::u16string_view program;
        std::vector<std::u16string> arguments;
    };
    const Case cases[] = {
        {u"Z:\\My Tools\\do it.sh a \"b c\"", u"Z:\\My Tools\\do it.sh", {u"a", u"b c"}},
        {u"\"Z:\\My Tools\\do it.sh\" a", u"Z:\\My Tools\\do it.sh", {u"a"}},
        {u"Z:\\My Tools\\do it.sh", u"Z:\\My Tools\\do it.sh", {}},
        {u"Z:\\My Tools\\none a", u"Z:\\My", {u"Tools\\none", u"a"}},
        {u"  sh\t-c \"exit 3\" ", u"sh", {u"-c", u"exit 3"}},
        {u"", u"", {}},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(StartCommandLine(context_, c.line, u"", 1).ok());
        EXPECT_EQ(processes_.started.back().program, c.program);
        EXPECT_EQ(processes_.started.back().arguments, c.arguments);
    }
}

TEST_F(ProcessesTest, EnvironmentNamesAreReplacedOnce) {
    environment_.variables = {{u"A", u"%B%"}, {u"B", u"2"}, {u"mixed", u"m"}, {u"ROOT", u"/"}, {u"EMPTY", u""}};
    struct Case {
        std::u16string_view text, expected;
    };
    const Case cases[] = {
        {u"", u""},
        {u"%A%%B%", u"%B%2"},
        {u"%b%", u"2"},
        {u"%mixed%|%MIXED%", u"m|%MIXED%"},
        {u"100% of %B%", u"100% of 2"},
        {u"%NONE%B%", u"%NONE2"},
        {u"%%B%", u"%2"},
        {u"%", u"%"},
        {u"x%EMPTY%y", u"xy"},
        {u"%ROOT%etc", u"Z:\\etc"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ExpandEnvironment(c.text, environment_, *codec_), c.expected);
}

std::string Hex(const std::vector<std::byte>& bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string out;
    for (const std::byte byte : bytes) {
        out += kDigits[std::to_integer<unsigned>(byte) >> 4];
        out += kDigits[std::to_integer<unsigned>(byte) & 15];
    }
    return out;
}

TEST(FileDropList, HasTheLayoutThatReceiversExpect) {
    const std::string header = "1400000000000000000000000000000001000000";
    EXPECT_EQ(Hex(BuildFileDropList({})), header + "0000");
    EXPECT_EQ(Hex(BuildFileDropList({u"a\u3042", u"b"})), header + "6100423000006200" + "00000000");
    const std::vector<std::u16string> paths = {u"C:\\a", u"\\\\s\\h\\\U0001F600"};
    EXPECT_EQ(ParseFileDropList(BuildFileDropList(paths)), paths);
}

TEST(FileDropList, DamagedBlocksAreRefused) {
    const std::vector<std::byte> good = BuildFileDropList({u"C:\\a"});
    for (size_t size = 0; size < good.size(); ++size) {
        EXPECT_EQ(ParseFileDropList(std::span(good).first(size)), std::nullopt) << size;
    }
    for (const size_t offset : {0u, 3u, 16u}) {  // list before the header's end or behind the block, narrow characters
        std::vector<std::byte> bad = good;
        bad[offset] = offset == 3 ? std::byte{0xFF} : std::byte{0};
        EXPECT_EQ(ParseFileDropList(bad), std::nullopt) << offset;
    }
}

TEST(CopyData, CarriesTheTextWithItsEndAndTheSender) {
    RecordingWindowMessages messages;
    ScriptedUserInterface ui;
    messages.windows[9] = u"{Host}";
    messages.answer = 1;
    ui.mainWindow = 77;
    EXPECT_EQ(*SendCopyData(messages, ui, messages.FindTopLevel(u"{HOST}"), u"a\u3042", 0xFFFFFFFF), 1);
    EXPECT_EQ(*SendCommandText(messages, ui, 9, u"", -5, 100), 1);
    ASSERT_EQ(messages.sent.size(), 2u);
    EXPECT_EQ(messages.sent[0].target, 9u);
    EXPECT_EQ(messages.sent[0].sender, 77u);
    EXPECT_EQ(messages.sent[0].first, 0xFFFFFFFFu);
    EXPECT_EQ(Hex(messages.sent[0].data), "610042300000");
    EXPECT_EQ(Hex(messages.sent[1].data), "2d0035002f000000");
    EXPECT_EQ(SendCopyData(messages, ui, 8, u"x", 1).code(), StatusCode::kNotFound);
}

}  // namespace
}  // namespace kinsort
