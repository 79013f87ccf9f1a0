// Whole contents of files: reading, writing, copying and comparing them, with short transfers and interruptions
// repeated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "fileop/Progress.h"
#include "platform/Status.h"
#include "platform/Sys.h"

namespace kinsort {

Status WriteAll(Sys& sys, const FileHandle& file, uint64_t offset, std::span<const std::byte> data);

// Fills the buffer from `offset` on; fewer bytes at the end of the file. Stops when there are `enough`.
Result<size_t> ReadUpTo(Sys& sys, const FileHandle& file, uint64_t offset, std::span<std::byte> buffer,
                        size_t enough = SIZE_MAX);

// The whole file; kFileTooLarge beyond `limit` bytes.
Result<std::string> ReadWhole(Sys& sys, const FileHandle& file, uint64_t limit);

// Called with the number of bytes that were just copied.
using ByteSink = std::function<void(uint64_t)>;

// Copies the content of `from`, which looked like `before` when it was opened, to the empty file `to`: a clone where
// the volume can, else inside the kernel, else through a buffer; holes stay holes. kChanged when the source changed
// meanwhile. A cancel returns success early: the caller looks at the token.
Status CopyContent(Sys& sys, const FileHandle& from, const FileInfo& before, const FileHandle& to,
                   const ByteSink& copied, const CancelToken& cancel);

// Whether two files hold the same bytes. What is a hole in both is not read. kInterrupted after a cancel.
Result<bool> HaveSameContent(Sys& sys, const FileHandle& a, const FileHandle& b, const CancelToken& cancel);

}  // namespace kinsort
