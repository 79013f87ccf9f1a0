// For tests: the settings, files and folders that a command finds, in memory. The user is user1, at home in Z:\home\me.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "framework/VelFolders.h"
#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/FakeUserAccount.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/fake/MemoryRegistry.h"
#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {

struct FolderWorld {
    explicit FolderWorld(std::u16string_view program = u"C:\\V\\command\\Default\\Kinsort")
        : folders({settings, files, account, environment, *codec}, program) {}

    MemoryRegistry registry;
    Settings settings{registry, u"Kinsort"};
    MemoryFileSystem files;
    FakeUserAccount account;
    FakeEnvironment environment;
    const std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("/nowhere/drives");
    VelFolders folders;
};

}  // namespace kinsort
