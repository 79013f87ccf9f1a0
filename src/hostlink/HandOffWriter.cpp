#include "hostlink/HandOffWriter.h"

#include <vector>

#include "hostlink/LaunchDescriptor.h"
#include "text/Numbers.h"
#include "text/Utf16Bytes.h"

namespace kinsort {
namespace {

// Calls `take` for each field in its order, until one returns a failure.
template <typename Take>
Status ForEachField(const HostHandOff& handOff, Take take) {
    Status status;
    for (size_t count : {handOff.SelectedItems.size(), handOff.OtherTabFolders.size()}) {
        if (status.ok()) status = take(FormatInteger(static_cast<int64_t>(count)));
    }
    for (const std::u16string* text : {&handOff.CurrentDir, &handOff.Option}) {
        if (status.ok()) status = take(*text);
    }
    for (const auto* paths : {&handOff.SelectedItems, &handOff.OtherTabFolders}) {
        for (size_t i = 0; i < paths->size() && status.ok(); ++i)
            status = take((*paths)[i]);
    }
    return status;
}

// Bytes of the block, the NUL at its end included.
Result<int32_t> MeasureText(const HostHandOff& handOff) {
    uint64_t units = 1;
    const Status status = ForEachField(handOff, [&](std::u16string_view field) {
        units += field.size() + 1;
        if (field.find_first_of(std::u16string_view(u"\t\0", 2)) == std::u16string_view::npos) return Status();
        return Status::Failure(StatusCode::kInvalid).At(std::u16string(field));
    });
    if (!status.ok()) return status;
    if (units * 2 > SharedMemory::kMaxBlockBytes) return Status::Failure(StatusCode::kFileTooLarge);
    return static_cast<int32_t>(units * 2);
}

// Gathers units and writes them in large pieces.
class BlockText {
  public:
    explicit BlockText(CShareMem& shared) : shared_(shared) {}

    Status Append(std::u16string_view text) {
        AppendUtf16Bytes(bytes_, text);
        return bytes_.size() < kPiece ? Status() : Flush();
    }

    Status Flush() {
        Status status = shared_.Write(offset_, bytes_);
        offset_ += bytes_.size();
        bytes_.clear();
        return status;
    }

  private:
    static constexpr size_t kPiece = size_t{1} << 20;
    CShareMem& shared_;
    uint64_t offset_ = 0;
    std::vector<std::byte> bytes_;
};

Status WriteText(CShareMem& shared, const HostHandOff& handOff) {
    BlockText text(shared);
    Status status = ForEachField(handOff, [&](std::u16string_view field) {
        Status appended = text.Append(field);
        return appended.ok() ? text.Append(u"\t") : appended;
    });
    if (status.ok()) status = text.Append(std::u16string_view(u"\0", 1));
    return status.ok() ? text.Flush() : status;
}

}  // namespace

Result<WrittenHandOff> WriteHandOff(SharedMemory& memory, const HostHandOff& handOff) {
    const Result<int32_t> size = MeasureText(handOff);
    if (!size.ok()) return size.status();
    LaunchDescriptor descriptor = {.showMode = handOff.ShowMode,
                                   .returnFocus = handOff.ReturnFocus,
                                   .first = memory.ProgramNumber(),
                                   .second = 0,
                                   .size = *size,
                                   .isShared = true};
    // Names that are taken are our own of a moment ago, or left by a program of the same number that was killed.
    constexpr int32_t kMaxAttempts = 10000;
    for (;; ++descriptor.second) {
        CShareMem shared(memory, descriptor.first, descriptor.second, descriptor.size, SharedOpening::kCreateNew);
        if (shared.GetStatus().code() == StatusCode::kExists && descriptor.second < kMaxAttempts) continue;
        if (!shared.GetStatus().ok()) return shared.GetStatus();
        Status written = shared.WhileLocked([&] { return WriteText(shared, handOff); });
        if (!written.ok()) return written;
        return WrittenHandOff{FormatLaunchDescriptor(descriptor), std::move(shared)};
    }
}

}  // namespace kinsort
