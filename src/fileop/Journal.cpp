#include "fileop/Journal.h"

#include <utility>

#include "fileop/FileContent.h"

namespace kinsort {

Journal::Journal(Sys& sys, FileHandle file, uint64_t length, uint64_t records)
    : sys_(&sys), file_(std::move(file)), length_(length), durableLength_(0), nextSequence_(records) {
    if (length_ == 0) AppendJournalHead(buffer_);
}

void Journal::Append(RecordType type, std::string_view payload) {
    constexpr size_t kMostBuffered = size_t{256} << 10;
    AppendFrame(buffer_, type, nextSequence_++, durableLength_, payload);
    if (buffer_.size() >= kMostBuffered) (void)Flush();  // a failure comes back from the next call
}

Status Journal::Flush() {
    if (!broken_.ok()) return broken_;
    if (buffer_.empty()) return {};
    if (Status written = WriteAll(*sys_, file_, length_, std::as_bytes(std::span(buffer_))); !written.ok()) {
        return broken_ = written;
    }
    length_ += buffer_.size();
    buffer_.clear();
    return {};
}

Status Journal::Sync() {
    if (Status flushed = Flush(); !flushed.ok()) return flushed;
    ++syncs_;
    if (Status synced = sys_->Sync(file_); !synced.ok()) return broken_ = synced;
    durableLength_ = length_;
    return {};
}

Status Journal::Reserve(uint64_t bytes) {
    const Status reserved = sys_->Reserve(file_, length_ + buffer_.size() + bytes);
    return MeansFull(reserved.code()) ? reserved : Status();
}

}  // namespace kinsort
