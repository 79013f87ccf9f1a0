#include "fileop/FolderTable.h"

#include <functional>

#include <gtest/gtest.h>

#include "platform/fake/FaultSys.h"
#include "platform/fake/MemorySys.h"

namespace kinsort {
namespace {

class FolderTableTest : public testing::Test {
  protected:
    FolderTableTest() : faults(disk) {
        disk.MakeFolders("/top/sub/deep");
        disk.MakeFolders("/elsewhere/sub");
        for (const char* own : {"/top", "/top/sub", "/top/sub/deep"})
            disk.SetOwnerOf(own, disk.UserNumber());
        disk.MakeLink("/top", "/way");
    }

    // Adds a sub-folder that is there.
    uint32_t AddExisting(FolderTable& table, uint32_t parent, const std::string& name) {
        const auto opened = table.Open(parent);
        EXPECT_TRUE(opened.ok());
        const FileInfo info = *faults.StatAt(**opened, name);
        return table.AddChild(parent, name, &info);
    }

    MemorySys disk;
    FaultSys faults;
    std::vector<FolderRecord> folders;
};

TEST_F(FolderTableTest, AFolderHasOneIndexHoweverItIsReached) {
    FolderTable table(faults, folders);
    EXPECT_EQ(*table.AddByPath("/top"), 0u);
    EXPECT_EQ(*table.AddByPath("/top/sub"), 1u);
    EXPECT_EQ(*table.AddByPath("/way"), 0u);
    EXPECT_EQ(*table.AddByPath("/way/sub"), 1u);
    EXPECT_EQ(*table.AddByPath("/elsewhere"), 2u);
    EXPECT_EQ(folders.size(), 3u);
    EXPECT_EQ(folders[1].name, "/top/sub") << "the true path, not the one that was typed";
    EXPECT_EQ(table.AddByPath("/none").code(), StatusCode::kNotFound);
    disk.WriteFile("/file", "");
    EXPECT_EQ(table.AddByPath("/file").code(), StatusCode::kNotFolder);
    EXPECT_EQ(folders.size(), 3u) << "what failed is not in the table";
}

TEST_F(FolderTableTest, WhatStandsThereNowMustBeWhatWasChosen) {
    struct Case {
        const char* what;
        std::function<void(MemorySys&)> swap;
        StatusCode top;
        StatusCode sub;
        StatusCode deep;
    };
    constexpr StatusCode kOk = StatusCode::kOk;
    constexpr StatusCode kChanged = StatusCode::kChanged;
    constexpr StatusCode kNotFound = StatusCode::kNotFound;
    const Case cases[] = {
        {"nothing happened", [](MemorySys&) {}, kOk, kOk, kOk},
        {"something else came into it", [](MemorySys& d) { d.WriteFile("/top/sub/new", ""); }, kOk, kOk, kOk},
        {"another folder of the name",
         [](MemorySys& d) { d.Move("/top/sub", "/top/old"), d.MakeFolders("/top/sub/deep"); }, kOk, kChanged, kChanged},
        {"a link to it", [](MemorySys& d) { d.Move("/top/sub", "/top/old"), d.MakeLink("old", "/top/sub"); }, kOk,
         StatusCode::kIsLink, StatusCode::kIsLink},
        {"a link elsewhere", [](MemorySys& d) { d.Remove("/top/sub/deep"), d.MakeLink("/elsewhere", "/top/sub/deep"); },
         kOk, kOk, StatusCode::kIsLink},
        {"a file", [](MemorySys& d) { d.Remove("/top/sub"), d.WriteFile("/top/sub", ""); }, kOk, StatusCode::kNotFolder,
         StatusCode::kNotFolder},
        {"removed", [](MemorySys& d) { d.Remove("/top/sub"); }, kOk, kNotFound, kNotFound},
        {"the chosen folder became a link",
         [](MemorySys& d) { d.Move("/top", "/old"), d.MakeLink("/elsewhere", "/top"); }, kChanged, kChanged, kChanged},
        {"the chosen folder was moved and linked back",
         [](MemorySys& d) { d.Move("/top", "/old"), d.MakeLink("/old", "/top"); }, kOk, kOk, kOk},
        {"another volume was mounted on it", [](MemorySys& d) { d.AddVolume("/top/sub", {}); }, kOk, kChanged,
         kChanged},
    };
    for (const Case& c : cases) {
        MemorySys changed;
        changed.MakeFolders("/top/sub/deep");
        changed.MakeFolders("/elsewhere/sub");
        std::vector<FolderRecord> records;
        FolderTable table(changed, records);
        const uint32_t top = *table.AddByPath("/top");
        const FileInfo subInfo = *changed.Look("/top/sub");
        const uint32_t sub = table.AddChild(top, "sub", &subInfo);
        const FileInfo deepInfo = *changed.Look("/top/sub/deep");
        const uint32_t deep = table.AddChild(sub, "deep", &deepInfo);
        const auto held = table.Open(deep);
        ASSERT_TRUE(held.ok());
        c.swap(changed);
        EXPECT_TRUE(table.Open(sub).ok()) << c.what << ": what is open stays the true folder";
        table.CloseAll();
        EXPECT_EQ(table.Open(top).code(), c.top) << c.what;
        EXPECT_EQ(table.Open(sub).code(), c.sub) << c.what;
        EXPECT_EQ(table.Open(deep).code(), c.deep) << c.what;
        EXPECT_EQ(records[sub].inode, subInfo.inode) << c.what << ": the record is not taught the wrong folder";
    }
}

TEST_F(FolderTableTest, NeverHoldsManyFoldersOpen) {
    FolderTable table(faults, folders);
    const uint32_t top = *table.AddByPath("/top");
    for (int i = 0; i < 400; ++i)
        disk.MakeFolders("/top/f" + std::to_string(i));
    const auto held = table.Open(AddExisting(table, top, "f0"));
    for (int i = 1; i < 400; ++i)
        ASSERT_TRUE(table.Open(AddExisting(table, top, "f" + std::to_string(i))).ok());
    EXPECT_LE(disk.openHandles(), 260u);
    EXPECT_EQ(faults.Stat(**table.Open(1))->inode, disk.Look("/top/f0")->inode) << "opened anew";
    EXPECT_TRUE(faults.Stat(**held).ok()) << "who holds one keeps it";

    std::string path = "/top";
    uint32_t index = top;
    for (int depth = 0; depth < 400; ++depth) {
        disk.MakeFolders(path += "/d");
        const FileInfo info = *disk.Look(path);
        index = table.AddChild(index, "d", &info);
    }
    table.CloseAll();
    ASSERT_TRUE(table.Open(index).ok());
    EXPECT_LE(disk.openHandles(), 260u);
    table.CloseAll();
    EXPECT_EQ(disk.openHandles(), 1u) << "the one that is held";
}

TEST_F(FolderTableTest, MakesRoomWhenNoDescriptorIsLeft) {
    FolderTable table(faults, folders);
    const uint32_t top = *table.AddByPath("/top");
    const uint32_t sub = AddExisting(table, top, "sub");
    faults.AtKind(SysCall::kOpenFolderAt, 1, Fault::Fail(StatusCode::kTooManyOpen));
    EXPECT_TRUE(table.Open(sub).ok());
    table.CloseAll();
    faults.FromKind(SysCall::kOpenFolderAt, 1, Fault::Fail(StatusCode::kTooManyOpen));
    EXPECT_EQ(table.Open(sub).code(), StatusCode::kTooManyOpen);
    EXPECT_EQ(faults.strikes(), 3u) << "once more, then it is told";
}

TEST_F(FolderTableTest, FoldersThatAreMadeLaterArePinnedThen) {
    FolderTable table(faults, folders);
    const uint32_t top = *table.AddByPath("/top");
    const uint32_t made = table.AddChild(top, "made", nullptr);
    EXPECT_EQ(folders[made].device, folders[top].device) << "where it will be";
    EXPECT_EQ(table.Open(made).code(), StatusCode::kNotFound);
    disk.MakeFolders("/top/made");
    ASSERT_TRUE(table.Open(made).ok());
    EXPECT_EQ(folders[made].inode, disk.Look("/top/made")->inode);
    disk.Move("/top/made", "/top/away");
    disk.MakeFolders("/top/made");
    table.CloseAll();
    EXPECT_EQ(table.Open(made).code(), StatusCode::kChanged);

    const uint32_t keep = table.AddKeepFolder(top, "keep");
    EXPECT_FALSE(disk.Has("/top/keep")) << "made only when needed";
    ASSERT_TRUE(table.Open(keep).ok());
    EXPECT_EQ(disk.Look("/top/keep")->mode, 0700u);
    const uint32_t planted = table.AddKeepFolder(top, "planted");
    disk.MakeLink("/elsewhere", "/top/planted");
    EXPECT_EQ(table.Open(planted).code(), StatusCode::kIsLink);
}

TEST_F(FolderTableTest, AfterAnotherBootTheVolumeIsKnownByItsOwnNumber) {
    disk.AddVolume("/usb", {});
    disk.MakeFolders("/usb/sub");
    uint32_t usb = 0;
    uint32_t sub = 0;
    {
        FolderTable table(disk, folders);
        usb = *table.AddByPath("/usb");
        const FileInfo info = *disk.Look("/usb/sub");
        sub = table.AddChild(usb, "sub", &info);
    }
    const uint64_t before = folders[usb].device;
    disk.PowerCut(1);
    EXPECT_EQ(FolderTable(disk, folders).Open(sub).code(), StatusCode::kChanged) << "device numbers are not compared";

    for (FolderRecord& folder : folders)
        folder.isOtherBoot = true;
    std::vector<FolderRecord> strange = folders;
    for (FolderRecord& folder : strange)
        folder.volumeId ^= 1;
    EXPECT_EQ(FolderTable(disk, strange).Open(sub).code(), StatusCode::kChanged) << "another stick in the same place";
    EXPECT_EQ(strange[usb].device, before) << "and nothing is learnt from it";

    FolderTable table(disk, folders);
    ASSERT_TRUE(table.Open(sub).ok());
    EXPECT_EQ(folders[sub].device, disk.Look("/usb/sub")->device);
    EXPECT_FALSE(folders[usb].isOtherBoot || folders[sub].isOtherBoot);
    EXPECT_NE(folders[usb].device, before);
}

}  // namespace
}  // namespace kinsort
