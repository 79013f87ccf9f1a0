// For tests: a program whose terminal is a script and whose words are kept.
#pragma once

#include <deque>
#include <map>
#include <string>

#include "cli/CliContext.h"
#include "cli/HostServices.h"
#include "cli/ScriptBackend.h"
#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/FakeSharedMemory.h"
#include "platform/fake/FakeUserAccount.h"
#include "platform/fake/ManualClock.h"
#include "platform/fake/ManualSleeper.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/fake/MemoryRegistry.h"
#include "platform/fake/RecordingFileManager.h"
#include "platform/fake/RecordingOpener.h"
#include "platform/fake/RecordingWindowMessages.h"
#include "platform/fake/ScriptedProcesses.h"
#include "platform/linux/IcuCodePages.h"
#include "platform/linux/IcuLocaleMap.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/LinuxSystemInfo.h"

namespace kinsort {

// Answers from a list; characters from U+1100 on are wide, U+0300..036F take no column.
class ScriptedTerminal : public Terminal {
  public:
    bool IsTerminal(Stream stream) const override { return isTerminal[static_cast<size_t>(stream)]; }
    int WindowColumns() const override { return columns; }
    int CharacterColumns(char32_t character) const override {
        if (character >= 0x300 && character <= 0x36F) return 0;
        return character >= 0x1100 && character != 0x2026 ? 2 : 1;
    }
    Status Write(Stream stream, std::string_view bytes) override {
        if (stream == Stream::kOutput && !outputFails.ok()) return outputFails;
        (stream == Stream::kOutput ? output : messages) += bytes;
        return {};
    }
    Result<std::string> ReadLine() override {
        if (answers.empty()) return Status::Failure(StatusCode::kNotFound);
        std::string answer = answers.front();
        answers.pop_front();
        return answer;
    }
    Result<std::string> ReadAll(std::string_view nativePath) override {
        const auto found = files.find(std::string(nativePath));
        if (found == files.end()) return Status::Failure(StatusCode::kNotFound);
        return found->second;
    }
    void CallOnInterrupt(void (*)(void*), void*) override {}

    bool isTerminal[3] = {false, false, false};
    int columns = 80;
    std::deque<std::string> answers;
    std::map<std::string, std::string> files;
    Status outputFails;
    std::string output;
    std::string messages;
};

struct CliFixture {
    ScriptedTerminal terminal;
    MemoryFileSystem files;
    std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("");
    std::unique_ptr<Sys> sys = MakeLinuxSys();
    ManualClock clock;
    std::map<std::string, std::string> environment;
    std::optional<std::vector<std::u16string>> handedOver;
    MemoryRegistry registry;
    Settings settings{registry, u"Kinsort"};
    FakeUserAccount account;
    FakeEnvironment variables;
    VelFolders folders{{settings, files, account, variables, *codec}, u"Z:\\usr\\lib\\vel\\command\\Default\\Kinsort"};
    FakeSharedMemory sharedMemory;
    ScriptedProcesses processes;
    RecordingOpener opener;
    RecordingWindowMessages windows;
    std::unique_ptr<CodePages> codePages = MakeIcuCodePages();
    std::unique_ptr<SystemInfo> system = MakeLinuxSystemInfo();
    ManualSleeper sleeper{clock};
    RecordingFileManager fileManager;
    ScriptBackend scripts{processes, opener, windows, variables, *codePages, *system, sleeper, fileManager};
    HostServices host{registry, settings, folders, sharedMemory, processes, "/usr/bin/kinsort"};
    CliServices services{files,
                         *codec,
                         *sys,
                         clock,
                         terminal,
                         [this](const char* name) { return environment[name]; },
                         MakeIcuLocaleMap,
                         [this] { return handedOver; },
                         [this]() -> HostServices& { return host; },
                         scripts};
};

}  // namespace kinsort
