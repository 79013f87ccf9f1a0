// The scripts of docs/examples: nothing is wrong with them, and they do what their heads say.
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include "script/Script.h"
#include "script/ScriptCheck.h"
#include "script/ScriptWorld_test.h"
#include "text/Split.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kFolder = u"C:\\Scripts\\";

class ScriptExamples : public testing::Test, protected ScriptWorld {
  protected:
    ScriptExamples() {
        setenv("TZ", "UTC", 1);
        clock.SetWall(int64_t{1736068023} * 1'000'000'000);  // 2025-01-05 09:07:03
        for (const auto& entry : std::filesystem::directory_iterator(KINSORT_SCRIPT_EXAMPLES)) {
            if (entry.path().extension() != ".ecs") continue;
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string text{std::istreambuf_iterator<char>(in), {}};
            scripts.push_back(std::u16string(kFolder) + FromUtf8(entry.path().filename().string()));
            AddScript(scripts.back(), u"\uFEFF" + FromUtf8(text));
        }
    }

    // Every run ends by itself.
    void Run(std::u16string_view name) {
        ScriptCall call{.scriptPath = std::u16string(kFolder).append(name),
                        .currentFolder = u"C:\\Work\\",
                        .otherFolder = {},
                        .selectedItems = items};
        EXPECT_EQ(RunScript(services, call).ending, ScriptEnding::kFinished);
        EXPECT_EQ(ui.unexpected, 0);
        said.clear();
        for (const MessageRequest& message : ui.messages)
            said.push_back(ToUtf8(message.text));
    }
    std::vector<std::string> Started() const {
        std::vector<std::string> commands;
        for (const ProcessRequest& request : processes.started)
            commands.push_back(ToUtf8(Join(request.arguments, u"|").insert(0, request.program + u"|")));
        return commands;
    }
    // A file in UTF-16 with its mark, as UTF-8.
    std::string Text(std::u16string_view path) const {
        const std::string bytes = files.ContentOf(path);
        std::u16string text;
        for (size_t i = 0; i + 1 < bytes.size(); i += 2)
            text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                          static_cast<unsigned char>(bytes[i + 1]) << 8);
        return ToUtf8(text);
    }

    std::vector<std::u16string> scripts;
    std::vector<std::u16string> items;
    std::vector<std::string> said;
};

TEST_F(ScriptExamples, HaveNothingWrongAndSayWhenNothingIsSelected) {
    ASSERT_GE(scripts.size(), 6u);
    for (const std::u16string& script : scripts) {
        const auto findings = CheckScript(files, script);
        ASSERT_TRUE(findings.has_value());
        for (const ScriptFinding& finding : *findings)
            ADD_FAILURE() << ToUtf8(script) << ":" << finding.line << ": " << ToUtf8(finding.message);
    }
    for (const char16_t* name : {u"rename-plan.ecs", u"selection-report.ecs", u"backup.ecs", u"convert-code-page.ecs",
                                 u"sort-by-extension.ecs"})
        Run(name);
    EXPECT_EQ(said.size(), 5u);
    EXPECT_THAT(said, testing::Each(testing::AnyOf(testing::StartsWith("Select"), testing::StartsWith("Nothing"))));
}

TEST_F(ScriptExamples, RenamePlanNumbersTheFiles) {
    items = {u"C:\\Work\\a b .txt", u"C:\\Work\\sub", u"C:\\Work\\1-2"};
    files.AddFile(items[0]);
    files.AddFolder(items[1]);
    files.AddFile(items[2]);
    Run(u"rename-plan.ecs");
    EXPECT_EQ(Text(u"C:\\Work\\rename-plan_2025-01-05.txt"),
              "\uFEFF// 3 items of C:\\Work, 2025-01-05 09-07-03\r\n"
              "a b .txt\t2025-01-05_001_a_b.txt\r\n"
              "1-2\t2025-01-05_002_1-2\r\n");
    EXPECT_THAT(said,
                testing::ElementsAre("2 files planned, 1 folders left out: C:\\Work\\rename-plan_2025-01-05.txt"));
    ui.messageAnswers = {MessageAnswer::kYes};
    Run(u"rename-plan.ecs");
    EXPECT_TRUE(said[1].starts_with("There is a plan of today already."));
}

TEST_F(ScriptExamples, SelectionReportTellsKindsApart) {
    items = {u"C:\\Work\\a.PNG", u"C:\\Work\\b,c.txt", u"C:\\Work\\sub", u"D:\\gone"};
    files.AddFile(items[0]);
    files.AddFile(items[1]);
    files.AddFolder(items[2]);
    Run(u"selection-report.ecs");
    EXPECT_EQ(files.ContentOf(u"C:\\Work\\selection.csv"),
              "number,name,extension,kind,type,folder\r\n"
              "1,\"a.PNG\",.PNG,file,image,\"C:\\Work\"\r\n"
              "2,\"b,c.txt\",.txt,file,text,\"C:\\Work\"\r\n"
              "3,\"sub\",,folder,,\"C:\\Work\"\r\n"
              "4,\"gone\",,missing,,\"D:\\\"\r\n");
    EXPECT_THAT(said, testing::ElementsAre("1 of the selected items are not there any more.",
                                           "2 files (1 images, 1 texts, 0 others) and 1 folders: "
                                           "C:\\Work\\selection.csv"));
}

TEST_F(ScriptExamples, BackupTakesAFreeFolderAndCountsFailures) {
    items = {u"C:\\Work\\a.txt", u"C:\\Work\\b.tmp", u"C:\\Work\\c.txt"};
    const std::u16string root = folders.GetUserDir() + u"Backup\\";
    files.AddFolder(root + u"2025-01-05");
    files.AddFolder(root + u"2025-01-05_2");
    const std::string target = ToUtf8(root) + "2025-01-05_3";
    processes.runs.resize(3);
    processes.runs[2].exitCode = 1;
    files.AddFolder(root);
    Run(u"backup.ecs");
    EXPECT_THAT(Started(), testing::ElementsAre("mkdir|-p|" + target, "cp|-a|-n|C:\\Work\\a.txt|" + target,
                                                "cp|-a|-n|C:\\Work\\c.txt|" + target));
    EXPECT_THAT(said, testing::Contains("1 items could not be copied: c.txt"));
    EXPECT_THAT(said, testing::Contains("1 items copied to " + target));
}

TEST_F(ScriptExamples, ConverterReadsWhatItFoundOut) {
    items = {u"C:\\Work\\jp.txt", u"C:\\Work\\x.bin", u"C:\\Work\\done.txt"};
    files.SetContent(items[0], "\x82\xA0\x82\xA2\x82\xA4\x82\xA6\n\x93\xFA\x96\x7B\x8C\xEA\n");
    files.AddFile(items[2]);
    files.AddFile(u"C:\\Work\\done.utf16.txt");
    Run(u"convert-code-page.ecs");
    EXPECT_TRUE(Text(u"C:\\Work\\jp.utf16.txt").starts_with("\uFEFFあいうえ\r\n日本語\r\n"));
    EXPECT_THAT(said, testing::ElementsAre("1 files converted, 2 left out."));
}

TEST_F(ScriptExamples, SorterMovesTheKindsThatWereAllowed) {
    items = {u"C:\\Work\\a.JPG", u"C:\\Work\\b.pdf", u"C:\\Work\\c.xyz", u"C:\\Work\\d.zip"};
    ui.messageAnswers = {MessageAnswer::kYes, MessageAnswer::kNo, MessageAnswer::kYes, MessageAnswer::kYes};
    Run(u"sort-by-extension.ecs");
    EXPECT_THAT(Started(),
                testing::ElementsAre(R"(mkdir|-p|C:\Work\Pictures)", R"(mv|-n|C:\Work\a.JPG|C:\Work\Pictures)",
                                     R"(mkdir|-p|C:\Work\Archives)", R"(mv|-n|C:\Work\d.zip|C:\Work\Archives)"));
    EXPECT_EQ(said.back(), "2 moved, 2 stayed, 0 failed.");
    processes.started.clear();
    ui.messageAnswers = {MessageAnswer::kYes, MessageAnswer::kCancel};
    Run(u"sort-by-extension.ecs");
    EXPECT_EQ(said.back(), "Stopped. Nothing was moved.");
    EXPECT_TRUE(processes.started.empty());
}

}  // namespace
}  // namespace kinsort
