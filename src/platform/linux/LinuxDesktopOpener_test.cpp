#include "platform/linux/LinuxDesktopOpener.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/fake/ScriptedProcesses.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LinuxDesktopOpenerTest : public testing::Test {
  protected:
    LinuxDesktopOpenerTest() {
        Write("photo.jpg", "", 0644);
        Write("tool.sh", "#!/bin/sh\n", 0755);
        std::filesystem::create_directory(folder_.path() + "/sub");
    }

    std::u16string At(std::string_view below) { return codec_->PathToInner(folder_.path() + "/" + std::string(below)); }

    void Write(std::string_view name, std::string_view content, mode_t mode) {
        const std::string path = folder_.path() + "/" + std::string(name);
        std::ofstream(path) << content;
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
    }

    static OpenRequest Request(std::u16string file, std::u16string startFolder = u"") {
        OpenRequest request;
        request.file = std::move(file);
        request.arguments = {u"argument"};
        request.startFolder = std::move(startFolder);
        return request;
    }

    TemporaryFolder folder_;
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec("");
    std::unique_ptr<FileSystem> files_ = MakeLinuxFileSystem(*codec_);
    ScriptedProcesses processes_;
    std::unique_ptr<DesktopOpener> opener_ = MakeLinuxDesktopOpener(processes_, *files_, *codec_);
};

TEST_F(LinuxDesktopOpenerTest, EverythingGoesToTheRightProgram) {
    struct Case {
        std::u16string file;
        std::u16string startFolder;
        std::u16string program;
        std::vector<std::u16string> arguments;
    };
    const Case cases[] = {
        {At("photo.jpg"), u"", u"xdg-open", {At("photo.jpg")}},
        {At("sub"), u"", u"xdg-open", {At("sub")}},
        {u"photo.jpg", At(""), u"xdg-open", {At("photo.jpg")}},
        {At("tool.sh"), u"", At("tool.sh"), {u"argument"}},
        {u"sub\\..\\tool.sh", At(""), At("tool.sh"), {u"argument"}},
        {u"https://example.org/a%20b", u"", u"xdg-open", {u"https://example.org/a%20b"}},
        {u"mailto:me@example.org", u"", u"xdg-open", {u"mailto:me@example.org"}},
        {u"notepad", u"", u"notepad", {u"argument"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.file));
        EXPECT_TRUE(opener_->Open(Request(c.file, c.startFolder)).ok());
        const ProcessRequest& started = processes_.started.back();
        EXPECT_EQ(started.program, c.program);
        EXPECT_EQ(started.arguments, c.arguments);
        EXPECT_EQ(started.startFolder, c.startFolder);
        EXPECT_EQ(started.tie, ProcessTie::kFree);
    }
    EXPECT_EQ(processes_.started.size(), std::size(cases));
    EXPECT_THAT(processes_.waits, IsEmpty());

    EXPECT_TRUE(opener_->Open(Request(At("tool.sh"), At("gone"))).ok());
    EXPECT_EQ(processes_.started.back().startFolder, u"");
}

TEST_F(LinuxDesktopOpenerTest, AnAdministratorsRightsAreAskedForByTheElevator) {
    OpenRequest request = Request(At("tool.sh"));
    request.verb = OpenVerb::kRunAs;
    EXPECT_TRUE(opener_->Open(request).ok());
    EXPECT_EQ(processes_.started[0].program, u"pkexec");
    EXPECT_EQ(processes_.started[0].tie, ProcessTie::kOurs);
    EXPECT_THAT(processes_.started[0].arguments, ElementsAre(u"--keep-cwd", At("tool.sh"), u"argument"));
    request.file = At("photo.jpg");
    EXPECT_EQ(opener_->Open(request).code(), StatusCode::kUnsupported);
    EXPECT_EQ(processes_.started.size(), 1u);
}

TEST_F(LinuxDesktopOpenerTest, WhatCannotBeOpenedIsNamed) {
    for (const std::u16string& file : {At("gone.txt"), std::u16string(u"::{guid}"), std::u16string(u"gone\\x")}) {
        const Status status = opener_->Open(Request(file));
        EXPECT_EQ(status.code(), StatusCode::kNotFound) << ToUtf8(file);
        EXPECT_EQ(status.path(), file);
    }
    EXPECT_EQ(opener_->Open(Request(u"")).code(), StatusCode::kNotFound);
    EXPECT_THAT(processes_.started, IsEmpty());

    processes_.runs = {{.start = Status::Failure(StatusCode::kNotFound).At(u"xdg-open"), .terminate = {}}};
    EXPECT_EQ(opener_->Open(Request(At("photo.jpg"))).path(), u"xdg-open");
}

TEST_F(LinuxDesktopOpenerTest, AFileThatOnlyLooksLikeAProgramIsADocument) {
    processes_.runs = {{.start = Status::Failure(StatusCode::kUnsupported), .terminate = {}}};
    EXPECT_TRUE(opener_->Open(Request(At("tool.sh"))).ok());
    ASSERT_EQ(processes_.started.size(), 2u);
    EXPECT_EQ(processes_.started[1].program, u"xdg-open");
    EXPECT_THAT(processes_.started[1].arguments, ElementsAre(At("tool.sh")));
}

TEST_F(LinuxDesktopOpenerTest, WaitingTellsWhetherTheDesktopTookIt) {
    const std::unique_ptr<Processes> real = MakeLinuxProcesses(*codec_, *files_);
    Write("opener", "#!/bin/sh\nprintf '%s' \"$1\" > \"$0.got\"\nexit $(wc -c < \"$1\")\n", 0755);
    Write("empty\xFF", "", 0644);
    Write("three", "abc", 0644);
    opener_ = MakeLinuxDesktopOpener(*real, *files_, *codec_, {.opener = At("opener")});
    OpenRequest request = Request(At("empty\xFF"));
    request.waitForOpener = true;
    EXPECT_TRUE(opener_->Open(request).ok());
    std::ifstream got(folder_.path() + "/opener.got");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(got), {}), folder_.path() + "/empty\xFF");
    request.file = At("three");
    const Status status = opener_->Open(request);
    EXPECT_EQ(status.code(), StatusCode::kUnsupported);
    EXPECT_EQ(status.path(), At("three"));
}

TEST_F(LinuxDesktopOpenerTest, PlacesAreShownByTheFileManagerOrElseOpened) {
    Write("a,b \xFF'.txt", "", 0644);
    const std::unique_ptr<FileManager> manager = MakeLinuxFileManager(processes_, *opener_, *files_, *codec_);
    EXPECT_TRUE(manager->ShowFile(At("a,b \xFF'.txt")).ok());
    EXPECT_TRUE(manager->ShowFolder(At("sub")).ok());
    ASSERT_EQ(processes_.started.size(), 2u);
    const std::u16string base = u"array:string:file://" + FromUtf8(folder_.path());
    const std::vector<std::u16string>& shown = processes_.started[0].arguments;
    EXPECT_EQ(std::vector(shown.end() - 3, shown.end()),
              (std::vector<std::u16string>{u"org.freedesktop.FileManager1.ShowItems", base + u"/a%2Cb%20%FF%27.txt",
                                           u"string:"}));
    EXPECT_EQ(*(processes_.started[1].arguments.end() - 2), base + u"/sub");

    const ScriptedRun nobody{.start = {}, .exitCode = 1, .terminate = {}};
    const ScriptedRun missing{.start = Status::Failure(StatusCode::kNotFound), .terminate = {}};
    processes_.started.clear();
    processes_.runs = {nobody, {}, missing, {}};
    EXPECT_TRUE(manager->ShowFile(At("sub/../photo.jpg")).ok());
    EXPECT_TRUE(manager->ShowFolder(At("sub")).ok());
    ASSERT_EQ(processes_.started.size(), 4u);
    EXPECT_THAT(processes_.started[1].arguments, ElementsAre(At("")));
    EXPECT_THAT(processes_.started[3].arguments, ElementsAre(At("sub")));
    EXPECT_EQ(manager->ShowFolder(At("gone")).code(), StatusCode::kNotFound);
    EXPECT_EQ(processes_.started.size(), 4u);
}

}  // namespace
}  // namespace kinsort
