// What the tests of Sys's rules share: an implementation, an empty folder in it, and the small things every test does.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Sys.h"

namespace kinsort {

// One implementation and an empty folder in it.
class Place {
  public:
    virtual ~Place() = default;
    virtual Sys& sys() = 0;
    virtual std::string path() const = 0;
};

// How a test makes one.
struct Kind {
    const char* name;
    std::unique_ptr<Place> (*make)();
};

class SysContract : public ::testing::TestWithParam<Kind> {
  protected:
    void SetUp() override {
        if (std::string(GetParam().name) == "Shm" && !std::filesystem::is_directory("/dev/shm"))
            GTEST_SKIP() << "there is no /dev/shm on this machine";
        place_ = GetParam().make();
        Result<FileHandle> root = sys().OpenFolder(place_->path());
        ASSERT_TRUE(root.ok());
        root_ = std::move(*root);
    }
    void TearDown() override {
        root_.Reset();
        place_.reset();
    }

    Sys& sys() { return place_->sys(); }

    void Write(const FileHandle& folder, std::string_view name, std::string_view content) {
        Result<FileHandle> file = sys().CreateFileAt(folder, name, 0644);
        ASSERT_TRUE(file.ok()) << name;
        ASSERT_EQ(*sys().Write(*file, 0, std::as_bytes(std::span(content))), content.size());
        ASSERT_TRUE(file->Close().ok());
    }
    std::string ReadOpen(const FileHandle& file) {
        std::string text(1 << 16, '\0');
        text.resize(*sys().Read(file, 0, std::as_writable_bytes(std::span(text))));
        return text;
    }
    std::string Read(const FileHandle& folder, std::string_view name) {
        Result<FileHandle> file = sys().OpenForRead(folder, name);
        return file.ok() ? ReadOpen(*file) : "cannot open";
    }
    FileHandle MakeFolder(const FileHandle& folder, std::string_view name) {
        EXPECT_TRUE(sys().MakeFolderAt(folder, name, 0755).ok()) << name;
        Result<FileHandle> made = sys().OpenFolderAt(folder, name);
        EXPECT_TRUE(made.ok());
        return std::move(*made);
    }
    std::vector<std::string> Names(const FileHandle& folder) {
        std::vector<std::string> names;
        const Status status = sys().ReadFolder(folder, [&](const FolderEntry& entry) {
            names.push_back(entry.name);
            return true;
        });
        EXPECT_TRUE(status.ok());
        return names;
    }
    uint64_t InodeOf(const FileHandle& folder, std::string_view name) { return sys().StatAt(folder, name)->inode; }

    std::unique_ptr<Place> place_;
    FileHandle root_;
};

}  // namespace kinsort
