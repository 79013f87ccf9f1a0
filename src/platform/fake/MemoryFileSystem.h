// A file system that exists only in memory, for tests of whatever lists folders and asks for attributes. It behaves as
// the header of FileSystem says; names are case-sensitive and upper-cased, for the order, in ASCII only.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "platform/FileSystem.h"

namespace kinsort {

struct MemoryFile {
    std::string bytes;
    int readers = 0;
    bool hasWriter = false;
    bool isFull = false;
};

class MemoryFileSystem final : public FileSystem {
  public:
    // Starts with an empty "Z:\" as the current folder. Paths are resolved like those of every call; folders that are
    // missing on the way are made, a new drive or share included.
    void AddFolder(std::u16string_view path, uint32_t extraAttributes = 0);
    void AddFile(std::u16string_view path, uint64_t size = 0, int64_t modifiedNs = 0, uint32_t extraAttributes = 0);
    // A file with these bytes in it; AddFile fills one with NUL.
    void SetContent(std::u16string_view path, std::string_view bytes);
    // The bytes that were written so far; empty for what is no file.
    std::string ContentOf(std::u16string_view path) const;
    // Takes the entry away, with everything below it.
    void Remove(std::u16string_view path);
    void SetCurrentFolder(std::u16string_view path);
    // From now on listing the folder `path`, or creating or opening anything in it, fails with kAccessDenied.
    void DenyFolder(std::u16string_view path);
    // From now on every write to the file fails with kNoSpace.
    void FillUp(std::u16string_view path);

    uint32_t GetAttributes(std::u16string_view path) override;
    Result<std::unique_ptr<FolderSearch>> OpenSearch(std::u16string_view pattern) override;
    Status CreateFolder(std::u16string_view path) override;
    Result<std::unique_ptr<InputFile>> OpenInput(std::u16string_view path) override;
    Result<std::unique_ptr<OutputFile>> OpenOutput(std::u16string_view path, OutputStart start) override;
    Result<std::u16string> ResolveFullPath(std::u16string_view path) override;
    std::u16string CurrentFolder() override;

  private:
    // Drive upper-cased, no prefix, no trailing separator, hence "Z:" for a root; empty for what is no path here.
    std::u16string KeyOf(std::u16string_view path) const;
    void AddEntry(const std::u16string& key, const FindData& data);
    bool isFolder(const std::u16string& key) const;
    MemoryFile& FileAt(const std::u16string& key);

    std::map<std::u16string, FindData> entries_;                   // by key
    std::map<std::u16string, std::shared_ptr<MemoryFile>> files_;  // of the entries, those that were looked into
    std::set<std::u16string> denied_;
    std::u16string current_ = u"Z:\\";
};

}  // namespace kinsort
