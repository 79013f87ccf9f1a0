// What scripts send to a host in another program and start as real processes, and the hand-over by drop.
#include <filesystem>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/CopyData.h"
#include "framework/FileDropList.h"
#include "platform/linux/LinuxDesktopOpener.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/OtherProgram_test.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "script/ScriptWorld_test.h"
#include "script/VariableTable.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::u16string_view kScript = u"C:\\s.ecs";

ScriptEnding RunIn(const ScriptServices& services, std::vector<std::u16string>& items) {
    const ScriptCall call{
        .scriptPath = std::u16string(kScript), .currentFolder = {}, .otherFolder = {}, .selectedItems = items};
    return RunScript(services, call).ending;
}

TEST(HostCommandsTest, MessagesArriveInTheHostByteForByte) {
    const TemporaryFolder folder;
    const auto make = [&folder] { return MakeWindowMessagesIn(folder.path() + "/vel"); };
    ScriptWorld world;
    world.AddScript(kScript, u"select=a\u3042\\,b\nfavoritejump=0,C:\\x\npostmessage=-3,4\nsendmessageall=-3,4\n");
    world.ui.mainWindow = 55;

    Recorder recorder;
    OtherProgram host(make, recorder, {}, std::u16string(kHostWindowClass));
    const std::unique_ptr<WindowMessages> windows = make();
    std::vector<std::u16string> items;
    EXPECT_EQ(RunIn(world.ServicesWith({.windows = windows.get()}), items), ScriptEnding::kFinished);
    host.Stop();
    // What is posted may be dealt with after what is sent later.
    EXPECT_THAT(recorder.got, testing::UnorderedElementsAre(Got{'d', 800, 0, 55, CopyDataBytes(u"a\u3042\\,b")},
                                                            Got{'d', 901, 0, 55, CopyDataBytes(u"10/C:\\x")},
                                                            Got{'n', ~uint64_t{2}, 4, 0x0111, {}},
                                                            Got{'n', ~uint64_t{2}, 4, 0x8008, {}}));
    EXPECT_THAT(world.ui.messages, IsEmpty());
}

class DropHandOverTest : public testing::Test {
  protected:
    DropHandOverTest() {
        world_.files.SetContent(world_.messages.GetMessageFilePath(),
                                Utf16Bytes(u"62541\tCannot start\n62544\tNot ready\n62547\tNo window\n"));
        world_.AddScript(kScript, u"openmode=1\nsendinfomode=1\nrunwait=7\nshell=C:\\Tools\\p.exe\n");
    }
    void Run() { (void)RunIn(world_.services, items_); }
    std::vector<std::u16string> Shown() const {
        std::vector<std::u16string> texts;
        for (const MessageRequest& message : world_.ui.messages)
            texts.push_back(message.text);
        return texts;
    }

    ScriptWorld world_;
    std::vector<std::u16string> items_ = {u"C:\\a.txt", u"C:\\\u3042.txt"};
};

TEST_F(DropHandOverTest, ItemsAreDroppedOnTheWindowOfTheProgram) {
    world_.windows.windows = {{9, u"Anything"}};
    world_.windows.processWindows = {{4711, 9}};
    Run();
    ASSERT_THAT(world_.processes.started, SizeIs(1));
    EXPECT_EQ(world_.processes.started[0].program, u"C:\\Tools\\p.exe");
    EXPECT_EQ(world_.processes.started[0].startFolder, u"C:\\Tools");
    ASSERT_THAT(world_.windows.sent, SizeIs(1));
    EXPECT_EQ(world_.windows.sent[0].target, 9u);
    EXPECT_TRUE(world_.windows.sent[0].isPosted);
    EXPECT_EQ(world_.windows.sent[0].data, BuildFileDropList(items_));
    EXPECT_THAT(world_.ui.broughtToFront, ElementsAre(9u));
    EXPECT_EQ(world_.sleeper.slept, 7);
    EXPECT_THAT(world_.opener.opened, IsEmpty());

    items_.clear();  // nothing to drop: an ordinary launch
    Run();
    EXPECT_THAT(world_.opener.opened, SizeIs(1));
}

TEST_F(DropHandOverTest, EachStepHasItsLimitAndItsMessage) {
    struct Case {
        ScriptedRun run;
        std::u16string message;
        int64_t slept;  // the last 7 are the script's own pause
        size_t idleWaits;
    };
    const Status gone = Status::Failure(StatusCode::kNotFound, 3, u"No such process");
    const Case cases[] = {
        {{.start = gone, .terminate = {}}, u"Cannot start\nC:\\Tools\\p.exe", 7, 0},
        {{.start = {}, .idle = false, .terminate = {}}, u"Not ready", 7, 200},
        {{.start = {}, .idle = gone, .terminate = {}}, u"No such process", 7, 1},
        {{.start = {}, .terminate = {}}, u"No window", 10'007, 1},
    };
    for (const Case& c : cases) {
        world_.processes.runs = {c.run};
        world_.processes.idleWaits.clear();
        world_.ui.messages.clear();
        world_.sleeper.slept = 0;
        Run();
        EXPECT_THAT(Shown(), ElementsAre(c.message));
        EXPECT_EQ(world_.sleeper.slept, c.slept);
        EXPECT_EQ(world_.processes.idleWaits, std::vector<int32_t>(c.idleWaits, 50));
        EXPECT_THAT(world_.windows.sent, IsEmpty());
        EXPECT_THAT(world_.processes.terminations, IsEmpty());
    }
}

TEST(HostCommandsTest, TenThousandItemsAreFilledInAtOnce) {
    ScriptWorld world;
    std::vector<std::u16string> items;
    for (size_t i = 0; i < 10'000; ++i)
        items.push_back(u"C:\\folder\\" + std::u16string(200, u'n') + u".txt");
    world.AddScript(kScript,
                    u"openmode=1\nmulticommandmode=1\ncommandlineoption=?SelFile? ?Name? ?Ext?\n"
                    u"shell=p.exe\nremoveselectitems=!*.*t\nappendselectitem=x\n");
    EXPECT_EQ(RunIn(world.services, items), ScriptEnding::kFinished);
    ASSERT_THAT(world.opener.opened, SizeIs(1));
    EXPECT_THAT(world.opener.opened[0].arguments, SizeIs(30'000));
    EXPECT_THAT(items, SizeIs(10'001));

    // A result that no machine should hold ends the run.
    std::u16string many = u"multicommandmode=1\nopenmode=1\ncommandlineoption=";
    for (int i = 0; i < 20; ++i)
        many += u"?selfile?";
    world.AddScript(kScript, many + u"\nshell=p.exe\n");
    for (std::u16string& item : items)
        item.append(200, u'm');
    EXPECT_EQ(RunIn(world.services, items), ScriptEnding::kError);
    EXPECT_THAT(world.opener.opened, SizeIs(1));
    EXPECT_THAT(world.ui.messages, SizeIs(1));
}

// Programs of this machine: a shell script that writes down how it was started and then behaves as it is told.
class RealProgramsTest : public testing::Test {
  protected:
    RealProgramsTest() {
        Write("helper",
              "#!/bin/sh\n"
              "{ pwd; for a in \"$@\"; do printf '[%s]\\n' \"$a\"; done; } > \"$0.report\"\n"
              "case $1 in stubborn) trap '' TERM INT HUP; while test -e \"$0\"; do sleep 0.05; done; exit 0;; esac\n"
              "exit ${1:-0}\n");
        MakeProgram("helper");
        std::filesystem::create_directory(folder_.path() + "/a b");
    }
    void Write(const std::string& name, std::string_view content) const {
        std::ofstream(folder_.path() + "/" + name) << content;
    }
    void MakeProgram(const std::string& name) const {
        std::filesystem::permissions(folder_.path() + "/" + name, std::filesystem::perms::owner_all);
    }
    std::string Content(const std::string& name) const {
        std::ifstream file(folder_.path() + "/" + name);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::u16string At(std::string_view below) const {
        return codec_->PathToInner(folder_.path() + "/" + std::string(below));
    }
    std::u16string Run(std::u16string_view statements) {
        Write("s.ecs", Utf16Bytes(std::u16string(u"var result=unset\n").append(statements)));
        VariableTable variables;
        ScriptCall call{
            .scriptPath = At("s.ecs"), .currentFolder = At("a b"), .otherFolder = {}, .selectedItems = items_};
        call.variables = &variables;
        (void)RunScript(services_, call);
        return *variables.Find(u"result");
    }

    const TemporaryFolder folder_;
    ScriptWorld world_;
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec("");
    std::unique_ptr<FileSystem> files_ = MakeLinuxFileSystem(*codec_);
    std::unique_ptr<Processes> processes_ = MakeLinuxProcesses(*codec_, *files_);
    std::unique_ptr<DesktopOpener> opener_ = MakeLinuxDesktopOpener(*processes_, *files_, *codec_);
    std::vector<std::u16string> items_;
    ScriptServices services_ = world_.ServicesWith(
        {.files = files_.get(), .processes = processes_.get(), .opener = opener_.get(), .codec = codec_.get()});
};

TEST_F(RealProgramsTest, ArgumentsFoldersAndExitCodesAreExact) {
    const std::u16string helper = u"\"" + At("helper") + u"\"";
    EXPECT_EQ(Run(u"result=call," + helper + u" 42 \"b c\" d\\\"e \"f\\\\\" \"\" $HOME * " + At("helper") + u"\n"),
              u"42");
    EXPECT_EQ(Content("helper.report"),
              folder_.path() + "/a b\n[42]\n[b c]\n[d\"e]\n[f\\]\n[]\n[$HOME]\n[*]\n[" + folder_.path() + "/helper]\n");
    EXPECT_EQ(Run(u"bootdir=" + At("") + u"\nresult=call," + At("helper") + u"\n"), u"0");
    EXPECT_EQ(Content("helper.report"), folder_.path() + "\n");
    EXPECT_EQ(Run(u"result=call,sh -c \"kill -9 $$\"\n"), u"137");
    EXPECT_THAT(world_.ui.messages, IsEmpty());
    EXPECT_EQ(Run(u"result=call," + At("gone") + u"\n"), u"unset");
    EXPECT_THAT(world_.ui.messages, SizeIs(1));
}

TEST_F(RealProgramsTest, OneThatDoesNotEndIsKilledOnYes) {
    const std::u16string stubborn = At("helper") + u" stubborn\n";
    world_.ui.messageAnswers = {MessageAnswer::kYes};
    EXPECT_EQ(Run(u"timeout=20\nresult=call," + stubborn), u"259");
    EXPECT_EQ(world_.ui.unexpected, 0);
    EXPECT_THAT(world_.ui.messages, SizeIs(1));

    // On No it goes on; so it does when it was not to be waited for.
    world_.ui.messageAnswers = {MessageAnswer::kNo};
    EXPECT_EQ(Run(u"timeout=0\nresult=call,sh -c \"while test ! -e go; do sleep 0.01; done; echo x > gone\"\n"),
              u"259");
    EXPECT_EQ(Run(u"result=exec,sh -c \"while test ! -e go; do sleep 0.01; done; echo x > gone2\"\n"), u"259");
    Write("a b/go", "");
    for (const std::string name : {"a b/gone", "a b/gone2"}) {
        while (Content(name) != "x\n")
            std::this_thread::yield();
    }
}

TEST_F(RealProgramsTest, ItemsReachTheProgramWhole) {
    Write("out.sh", "#!/bin/sh\nprintf '[%s]\\n' \"$@\" > \"$0.report\"\n");
    MakeProgram("out.sh");
    items_ = {At("a b/it's & $(x) \xE3\x81\x82.txt"), At("\xFFz")};
    (void)Run(u"openmode=1\nbootmode=5\nmulticommandmode=1\ncommandlineoption=/f ?SelFile? ?name?\nshell=" +
              At("out.sh") + u"\n");
    EXPECT_EQ(Content("out.sh.report"), "[/f]\n[" + folder_.path() + "/a b/it's & $(x) \xE3\x81\x82.txt]\n[" +
                                            folder_.path() + "/\xFFz]\n[it's & $(x) \xE3\x81\x82]\n[\xFFz]\n");
}

}  // namespace
}  // namespace kinsort
