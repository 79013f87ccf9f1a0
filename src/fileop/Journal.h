// One batch's journal file, open and locked by this process, to which records are appended.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "fileop/JournalFormat.h"
#include "platform/Status.h"
#include "platform/Sys.h"

namespace kinsort {

class Journal {
  public:
    // Goes on behind `length` bytes that hold `records` good frames. The file is locked already and stays so as long
    // as the Journal lives.
    Journal(Sys& sys, FileHandle file, uint64_t length, uint64_t records);

    // Buffers one record; a full buffer is written. A failure of that is told by the next Flush or Sync.
    void Append(RecordType type, std::string_view payload);
    // Writes what is buffered. It then survives the end of this process, not a power cut.
    Status Flush();
    // Flush, then make everything durable. After a failure the journal is broken and stays so: every later call fails
    // with the same status, because a second sync could succeed without having written anything.
    Status Sync();
    // Says that everything flushed so far was made durable together with the volume.
    void NoteVolumeSynced() { durableLength_ = length_; }
    // Reserves room for `bytes` more, so that marks can be written on a full disk. Fails with kNoSpace or kQuota only.
    Status Reserve(uint64_t bytes);

    uint64_t syncs() const { return syncs_; }

  private:
    Sys* sys_;
    FileHandle file_;
    uint64_t length_;         // bytes written
    uint64_t durableLength_;  // of them, those that survive a power cut
    uint64_t nextSequence_;
    std::string buffer_;
    Status broken_;
    uint64_t syncs_ = 0;
};

}  // namespace kinsort
