// Content, attributes, durability and locks of the in-memory file system.
#include <algorithm>
#include <vector>

#include "platform/fake/MemorySys.h"

namespace kinsort {
namespace {

constexpr uint32_t kModeBits = 07777;
constexpr uint64_t kPageSize = MemoryContent::kPageSize;
constexpr uint64_t kMaxFileSize = uint64_t{1} << 44;

uint64_t PagesFor(uint64_t bytes) {
    return (bytes + kPageSize - 1) / kPageSize;
}

}  // namespace

Result<NodeId> MemorySys::UseFile(const FileHandle& handle, bool forWriting) const {
    Result<Opened> opened = Use(handle);
    if (!opened.ok()) return opened.status();
    if (disk_.node(opened->node).kind == FileKind::kFolder) return Failure(StatusCode::kIsFolder);
    if (forWriting && !opened->writable) return Failure(StatusCode::kInvalid);
    return opened->node;
}

// --- looking -------------------------------------------------------------------------------------------------------

FileInfo MemorySys::Describe(NodeId node) const {
    const MemoryNode& seen = disk_.node(node);
    FileInfo info;
    info.kind = seen.kind;
    info.mode = seen.attributes.mode;
    info.links = seen.names;
    info.owner = seen.owner;
    info.device = boot_ * 256 + seen.volume;
    info.inode = seen.inode;
    info.size = seen.kind == FileKind::kLink ? seen.linkText.size() : seen.content.size();
    info.allocated = seen.kind == FileKind::kFile ? disk_.PagesOf(seen) * kPageSize : 0;
    info.createdNs = disk_.OptionsOf(node).createdTimes ? seen.createdNs : 0;
    info.modifiedNs = seen.attributes.modifiedNs;
    info.accessedNs = seen.attributes.accessedNs;
    info.changedNs = seen.changedNs;
    return info;
}

Result<FileInfo> MemorySys::Stat(const FileHandle& handle) {
    const std::lock_guard lock(mutex_);
    Result<Opened> opened = Use(handle);
    if (!opened.ok()) return opened.status();
    return Describe(opened->node);
}

Result<FileInfo> MemorySys::StatAt(const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpExisting(folder, name);
    if (!place.ok()) return place.status();
    return Describe(place->node);
}

Result<VolumeInfo> MemorySys::DescribeVolume(const FileHandle& handle) {
    const std::lock_guard lock(mutex_);
    Result<Opened> opened = Use(handle);
    if (!opened.ok()) return opened.status();
    const size_t index = disk_.node(opened->node).volume;
    const MemoryVolume& volume = disk_.VolumeOf(opened->node);
    const uint64_t used = std::min(volume.usedPages * kPageSize, volume.options.bytes);
    return VolumeInfo{.volumeId = volume.options.stableIdentity ? 0x5eed0000 + index : 0,
                      .freeBytes = volume.options.bytes - used};
}

// --- content -------------------------------------------------------------------------------------------------------

Result<FileHandle> MemorySys::OpenFile(const FileHandle& folder, std::string_view name, bool writable) {
    Result<Place> place = LookUpExisting(folder, name);
    if (!place.ok()) return place.status();
    const MemoryNode& node = disk_.node(place->node);
    if (node.kind == FileKind::kLink) return Failure(StatusCode::kIsLink);
    if (node.kind == FileKind::kFolder) return Failure(StatusCode::kIsFolder);
    if (writable && disk_.OptionsOf(place->node).readOnly) return Failure(StatusCode::kReadOnly);
    const bool allowed =
        Allowed(place->node, Access::kRead) && (!writable || (Allowed(place->node, Access::kWrite) && !node.immutable));
    if (!allowed) return Failure(StatusCode::kAccessDenied);
    if (node.kind == FileKind::kOther) return Failure(StatusCode::kInvalid);
    return Open(place->node, writable);
}

Result<FileHandle> MemorySys::OpenForRead(const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    return OpenFile(folder, name, false);
}

Result<FileHandle> MemorySys::OpenForWrite(const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    return OpenFile(folder, name, true);
}

Result<FileHandle> MemorySys::CreateFileAt(const FileHandle& folder, std::string_view name, uint32_t mode) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpFree(folder, name);
    if (!place.ok()) return place.status();
    Result<NodeId> made = Create(*place, FileKind::kFile, mode);
    if (!made.ok()) return made.status();
    AddName(*place, *made, true);
    return Open(*made, true);
}

Result<FileHandle> MemorySys::CreateNameless(const FileHandle& folder, uint32_t mode) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> holder = UseFolder(folder);
    if (!holder.ok()) return holder.status();
    if (!disk_.OptionsOf(*holder).nameless) return Failure(StatusCode::kUnsupported);
    if (Status status = MayChangeNames(*holder); !status.ok()) return status;
    if (disk_.node(*holder).names == 0) return Failure(StatusCode::kNotFound);
    Result<NodeId> made = Create({*holder, {}, 0}, FileKind::kFile, mode);
    if (!made.ok()) return made.status();
    disk_.node(*made).nameless = true;
    return Open(*made, true);
}

Status MemorySys::NameFile(const FileHandle& file, const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, false);
    if (!node.ok()) return node.status();
    Result<Place> place = LookUpFree(folder, name);
    if (!place.ok()) return place.status();
    const MemoryNode& named = disk_.node(*node);
    if (named.volume != disk_.node(place->folder).volume) return Failure(StatusCode::kCrossVolume);
    if (named.names == 0 && !named.nameless) return Failure(StatusCode::kNotFound);
    AddName(*place, *node, named.nameless);
    return {};
}

Result<size_t> MemorySys::Read(const FileHandle& file, uint64_t offset, std::span<std::byte> buffer) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, false);
    if (!node.ok()) return node.status();
    return disk_.node(*node).content.Read(offset, buffer);
}

// Takes the pages that a write needs and that are not there yet; returns how many of the bytes have room.
size_t MemorySys::MakeRoom(NodeId file, uint64_t offset, size_t length) {
    const MemoryNode& node = disk_.node(file);
    const uint64_t end = offset + length;
    for (uint64_t index = offset / kPageSize; index * kPageSize < end; ++index) {
        if (index < node.reservedPages || node.content.HasPage(index)) continue;
        if (!disk_.TakePages(node.volume, 1)) return static_cast<size_t>(std::max(index * kPageSize, offset) - offset);
        // Put the page there, so that it is counted once.
        constexpr std::byte kNothing[1] = {};
        disk_.node(file).content.Write(index * kPageSize, kNothing);
    }
    return length;
}

Result<size_t> MemorySys::WriteInto(NodeId file, uint64_t offset, std::span<const std::byte> data) {
    if (offset > kMaxFileSize || data.size() > kMaxFileSize - offset) return Failure(StatusCode::kFileTooLarge);
    const size_t room = MakeRoom(file, offset, data.size());
    if (room == 0 && !data.empty()) return Failure(StatusCode::kNoSpace);
    disk_.node(file).content.Write(offset, data.first(room));
    Touch(file, true);
    return room;
}

Result<size_t> MemorySys::Write(const FileHandle& file, uint64_t offset, std::span<const std::byte> data) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, true);
    if (!node.ok()) return node.status();
    return WriteInto(*node, offset, data);
}

// The two files of a transfer that their volume has to know how to do.
Result<MemorySys::Transfer> MemorySys::UseBoth(const FileHandle& from, const FileHandle& to,
                                               bool MemoryVolumeOptions::*feature) const {
    const Result<NodeId> source = UseFile(from, false);
    const Result<NodeId> target = UseFile(to, true);
    if (!source.ok()) return source.status();
    if (!target.ok()) return target.status();
    if (disk_.node(*source).volume != disk_.node(*target).volume) return Failure(StatusCode::kCrossVolume);
    if (!(disk_.OptionsOf(*target).*feature)) return Failure(StatusCode::kUnsupported);
    return Transfer{*source, *target};
}

Result<size_t> MemorySys::CopyRange(const FileHandle& from, const FileHandle& to, uint64_t offset, uint64_t length) {
    const std::lock_guard lock(mutex_);
    const Result<Transfer> both = UseBoth(from, to, &MemoryVolumeOptions::copyRange);
    if (!both.ok()) return both.status();
    constexpr uint64_t kMost = uint64_t{1} << 20;  // longer requests come up short
    std::vector<std::byte> buffer(static_cast<size_t>(std::min(length, kMost)));
    const size_t count = disk_.node(both->source).content.Read(offset, buffer);
    if (count == 0) return size_t{0};
    return WriteInto(both->target, offset, std::span(buffer).first(count));
}

Status MemorySys::Clone(const FileHandle& from, const FileHandle& to) {
    const std::lock_guard lock(mutex_);
    const Result<Transfer> both = UseBoth(from, to, &MemoryVolumeOptions::clone);
    if (!both.ok()) return both.status();
    MemoryNode& node = disk_.node(both->target);
    // Counted like a copy: the room that a clone saves is not what tests are about.
    disk_.GivePages(node.volume, disk_.PagesOf(node));
    const MemoryContent before = std::exchange(node.content, disk_.node(both->source).content);
    if (!disk_.TakePages(node.volume, disk_.PagesOf(node))) {
        node.content = before;
        (void)disk_.TakePages(node.volume, disk_.PagesOf(node));
        return Failure(StatusCode::kNoSpace);
    }
    Touch(both->target, true);
    return {};
}

Result<uint64_t> MemorySys::NextData(const FileHandle& file, uint64_t offset) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, false);
    if (!node.ok()) return node.status();
    const MemoryContent& content = disk_.node(*node).content;
    return disk_.OptionsOf(*node).holes ? content.NextData(offset) : std::min(offset, content.size());
}

Result<uint64_t> MemorySys::NextHole(const FileHandle& file, uint64_t offset) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, false);
    if (!node.ok()) return node.status();
    const MemoryContent& content = disk_.node(*node).content;
    return disk_.OptionsOf(*node).holes ? content.NextHole(offset) : content.size();
}

Status MemorySys::SetSize(const FileHandle& file, uint64_t size) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, true);
    if (!node.ok()) return node.status();
    if (size > kMaxFileSize) return Failure(StatusCode::kFileTooLarge);
    MemoryNode& sized = disk_.node(*node);
    const uint64_t before = disk_.PagesOf(sized);
    if (size < sized.content.size()) sized.reservedPages = std::min(sized.reservedPages, PagesFor(size));
    sized.content.SetSize(size);
    disk_.GivePages(sized.volume, before - disk_.PagesOf(sized));
    Touch(*node, true);
    return {};
}

Status MemorySys::Reserve(const FileHandle& file, uint64_t size) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, true);
    if (!node.ok()) return node.status();
    if (!disk_.OptionsOf(*node).reserve) return Failure(StatusCode::kUnsupported);
    if (size > kMaxFileSize) return Failure(StatusCode::kFileTooLarge);
    MemoryNode& reserved = disk_.node(*node);
    const uint64_t pages = std::max(reserved.reservedPages, PagesFor(size));
    const uint64_t needed = pages + reserved.content.CountPages(pages) - disk_.PagesOf(reserved);
    if (!disk_.TakePages(reserved.volume, needed)) return Failure(StatusCode::kNoSpace);
    reserved.reservedPages = pages;
    return {};
}

// --- attributes ----------------------------------------------------------------------------------------------------

Status MemorySys::MayChangeAttributes(NodeId node) const {
    if (disk_.OptionsOf(node).readOnly) return Failure(StatusCode::kReadOnly);
    return !OwnerOf(node) || disk_.node(node).immutable ? Failure(StatusCode::kAccessDenied) : Status();
}

Status MemorySys::SetMode(const FileHandle& handle, uint32_t mode) {
    const std::lock_guard lock(mutex_);
    Result<Opened> opened = Use(handle);
    if (!opened.ok()) return opened.status();
    if (Status status = MayChangeAttributes(opened->node); !status.ok()) return status;
    disk_.node(opened->node).attributes.mode = mode & kModeBits;
    Touch(opened->node, false);
    return {};
}

Status MemorySys::SetTimesOf(NodeId node, int64_t accessedNs, int64_t modifiedNs) {
    if (Status status = MayChangeAttributes(node); !status.ok()) return status;
    disk_.node(node).attributes.accessedNs = accessedNs;
    disk_.node(node).attributes.modifiedNs = modifiedNs;
    Touch(node, false);
    return {};
}

Status MemorySys::SetTimes(const FileHandle& handle, int64_t accessedNs, int64_t modifiedNs) {
    const std::lock_guard lock(mutex_);
    Result<Opened> opened = Use(handle);
    return opened.ok() ? SetTimesOf(opened->node, accessedNs, modifiedNs) : opened.status();
}

Status MemorySys::SetTimesAt(const FileHandle& folder, std::string_view name, int64_t accessedNs, int64_t modifiedNs) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpExisting(folder, name);
    return place.ok() ? SetTimesOf(place->node, accessedNs, modifiedNs) : place.status();
}

Status MemorySys::CopyUserAttributes(const FileHandle& from, const FileHandle& to) {
    const std::lock_guard lock(mutex_);
    Result<Opened> source = Use(from);
    Result<Opened> target = Use(to);
    if (!source.ok()) return source.status();
    if (!target.ok()) return target.status();
    const auto& attributes = disk_.node(source->node).attributes.user;
    if (attributes.empty() || !disk_.OptionsOf(source->node).userAttributes) return {};
    if (!disk_.OptionsOf(target->node).userAttributes) return Failure(StatusCode::kUnsupported);
    for (const auto& [name, value] : attributes)
        disk_.node(target->node).attributes.user[name] = value;
    Touch(target->node, false);
    return {};
}

// --- durability and locks ------------------------------------------------------------------------------------------

Status MemorySys::Sync(const FileHandle& handle) {
    const std::lock_guard lock(mutex_);
    Result<Opened> opened = Use(handle);
    if (opened.ok()) disk_.SyncNode(opened->node);
    return opened.status();
}

Status MemorySys::SyncVolume(const FileHandle& handle) {
    const std::lock_guard lock(mutex_);
    Result<Opened> opened = Use(handle);
    if (opened.ok()) disk_.SyncVolume(disk_.node(opened->node).volume);
    return opened.status();
}

void MemorySys::StartWriteback(const FileHandle&, uint64_t, uint64_t) {}

Status MemorySys::TryLock(const FileHandle& file) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFile(file, true);
    if (!node.ok()) return node.status();
    const auto [holder, taken] = locks_.try_emplace(*node, file.number());
    return taken || holder->second == file.number() ? Status() : Failure(StatusCode::kLocked);
}

// --- the process ---------------------------------------------------------------------------------------------------

std::string MemorySys::BootId() {
    const std::lock_guard lock(mutex_);
    return "memory-boot-" + std::to_string(boot_);
}

uint32_t MemorySys::UserNumber() {
    return kUser;
}

}  // namespace kinsort
