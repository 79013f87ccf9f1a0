// For tests: everything that a script can touch, in memory.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "framework/FolderWorld_test.h"
#include "framework/LaunchBatch.h"
#include "framework/Messages.h"
#include "platform/fake/FakeLocaleMap.h"
#include "platform/fake/ManualClock.h"
#include "platform/fake/ManualSleeper.h"
#include "platform/fake/RecordingOpener.h"
#include "platform/fake/RecordingWindowMessages.h"
#include "platform/fake/ScriptedProcesses.h"
#include "platform/fake/ScriptedUserInterface.h"
#include "platform/linux/IcuCodePages.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "script/Script.h"
#include "text/Utf16Bytes_test.h"

namespace kinsort {

// What stands in for the world's own, where it is given.
struct OtherServices {
    FileSystem* files = nullptr;
    UserInterface* ui = nullptr;
    WindowMessages* windows = nullptr;
    Processes* processes = nullptr;
    DesktopOpener* opener = nullptr;
    const PathCodec* codec = nullptr;
};

struct ScriptWorld : FolderWorld {
    ScriptedUserInterface ui;
    RecordingWindowMessages windows;
    ScriptedProcesses processes;
    RecordingOpener opener;
    std::unique_ptr<CodePages> codePages = MakeIcuCodePages();
    Messages messages{settings, folders, files, ui};
    ManualClock clock;
    ManualSleeper sleeper{clock};
    std::unique_ptr<SystemInfo> system = MakeLinuxSystemInfo();
    FakeLocaleMap locale;
    CancelToken cancel;
    LaunchWorkers workers;

    ScriptServices services = ServicesWith({});

    ScriptServices ServicesWith(const OtherServices& others) {
        const auto pick = [](auto* other, auto& own) -> auto& {
            return other == nullptr ? own : *other;
        };
        return {.files = pick(others.files, files),
                .ui = pick(others.ui, ui),
                .windows = pick(others.windows, windows),
                .processes = pick(others.processes, processes),
                .opener = pick(others.opener, opener),
                .environment = environment,
                .codec = pick(others.codec, *codec),
                .codePages = *codePages,
                .settings = settings,
                .folders = folders,
                .messages = messages,
                .clock = clock,
                .sleeper = sleeper,
                .launchWorkers = workers,
                .system = *system,
                .locale = locale,
                .cancel = &cancel};
    }

    void AddScript(std::u16string_view path, std::u16string_view text) { files.SetContent(path, Utf16Bytes(text)); }
};

}  // namespace kinsort
