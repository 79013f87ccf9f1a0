#include "fileop/FileContent.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace kinsort {

namespace {

// Below this size one read and one write beat the kernel's own copying.
constexpr uint64_t kSmallFile = 1 << 20;
constexpr size_t kBufferSize = 1 << 20;
// One step of a large copy: small enough that a cancel is answered at once.
constexpr uint64_t kChunk = 8 << 20;
// A file is taken for sparse when at least this much of it has no blocks.
constexpr uint64_t kSparseSlack = 64 << 10;

std::span<std::byte> ThreadBuffer() {
    thread_local std::vector<std::byte> buffer(kBufferSize + 1);
    return buffer;
}

bool MeansTryAnotherWay(StatusCode code) {
    return code == StatusCode::kUnsupported || code == StatusCode::kCrossVolume || code == StatusCode::kInvalid;
}

// One copy under way.
struct ContentCopy {
    Sys& sys;
    const FileHandle& from;
    const FileHandle& to;
    const ByteSink& copied;
    const CancelToken& cancel;
    bool kernelCopies = true;

    // Copies bytes until `end` or the end of the source; sets `at` to how far it came.
    Status CopyRun(uint64_t& at, uint64_t end) {
        while (at < end && !cancel.isCancelled()) {
            const uint64_t length = std::min(end - at, kChunk);
            Result<size_t> moved = kernelCopies ? sys.CopyRange(from, to, at, length) : CopyThroughBuffer(at, length);
            if (moved.code() == StatusCode::kInterrupted) continue;
            if (kernelCopies && MeansTryAnotherWay(moved.code())) {
                kernelCopies = false;
                continue;
            }
            if (!moved.ok()) return moved.status();
            if (*moved == 0) break;
            sys.StartWriteback(to, at, *moved);
            at += *moved;
            copied(*moved);
        }
        return {};
    }

    Result<size_t> CopyThroughBuffer(uint64_t offset, uint64_t length) {
        const std::span<std::byte> buffer = ThreadBuffer().first(std::min<uint64_t>(length, kBufferSize));
        const Result<size_t> got = ReadUpTo(sys, from, offset, buffer);
        if (!got.ok()) return got;
        if (Status written = WriteAll(sys, to, offset, buffer.first(*got)); !written.ok()) return written;
        return got;
    }

    // Data run by data run, leaving the holes out.
    Status CopySparse(uint64_t size) {
        for (uint64_t at = 0; at < size && !cancel.isCancelled();) {
            const Result<uint64_t> data = sys.NextData(from, at);
            if (!data.ok()) return data.status();
            const Result<uint64_t> hole = *data < size ? sys.NextHole(from, *data) : Result<uint64_t>(size);
            if (!hole.ok()) return hole.status();
            const bool hasShrunk = *data < at || (*data < size && *hole <= *data);
            if (hasShrunk) return Status::Failure(StatusCode::kChanged);
            at = *data;
            if (Status run = CopyRun(at, std::min(*hole, size)); !run.ok()) return run;
            at = std::max(at, std::min(*hole, size));
        }
        return sys.SetSize(to, size);
    }

    // One buffer holds it. A byte more is asked for: some volumes do not tell a file's true size.
    Status CopySmall(uint64_t size) {
        const std::span<std::byte> buffer = ThreadBuffer().first(size + 1);
        const Result<size_t> got = ReadUpTo(sys, from, 0, buffer, size);
        if (!got.ok()) return got.status();
        if (Status written = WriteAll(sys, to, 0, buffer.first(*got)); !written.ok()) return written;
        copied(*got);
        return *got == size ? Status() : Status::Failure(StatusCode::kChanged);
    }
};

}  // namespace

Status WriteAll(Sys& sys, const FileHandle& file, uint64_t offset, std::span<const std::byte> data) {
    while (!data.empty()) {
        const Result<size_t> written = sys.Write(file, offset, data);
        if (written.code() == StatusCode::kInterrupted) continue;
        if (!written.ok()) return written.status();
        if (*written == 0) return Status::Failure(StatusCode::kIo);
        offset += *written;
        data = data.subspan(*written);
    }
    return {};
}

Result<size_t> ReadUpTo(Sys& sys, const FileHandle& file, uint64_t offset, std::span<std::byte> buffer, size_t enough) {
    size_t total = 0;
    while (total < buffer.size() && (total < enough || total == 0)) {
        const Result<size_t> got = sys.Read(file, offset + total, buffer.subspan(total));
        if (got.code() == StatusCode::kInterrupted) continue;
        if (!got.ok()) return got;
        if (*got == 0) break;
        total += *got;
    }
    return total;
}

Result<std::string> ReadWhole(Sys& sys, const FileHandle& file, uint64_t limit) {
    const Result<FileInfo> info = sys.Stat(file);
    if (!info.ok()) return info.status();
    if (info->size > limit) return Status::Failure(StatusCode::kFileTooLarge);
    std::string bytes(info->size, '\0');
    const Result<size_t> got = ReadUpTo(sys, file, 0, std::as_writable_bytes(std::span(bytes)));
    if (!got.ok()) return got.status();
    bytes.resize(*got);
    return bytes;
}

Status CopyContent(Sys& sys, const FileHandle& from, const FileInfo& before, const FileHandle& to,
                   const ByteSink& copied, const CancelToken& cancel) {
    ContentCopy copy{sys, from, to, copied, cancel};
    Status done;
    if (before.size >= kSparseSlack && before.allocated + kSparseSlack < before.size) {
        done = copy.CopySparse(before.size);
    } else if (before.size < kSmallFile) {
        done = copy.CopySmall(before.size);
    } else if (const Status cloned = sys.Clone(from, to); cloned.ok()) {
        copied(before.size);
    } else if (MeansTryAnotherWay(cloned.code())) {
        uint64_t at = 0;
        done = copy.CopyRun(at, before.size);
        if (done.ok() && at != before.size && !cancel.isCancelled()) done = Status::Failure(StatusCode::kChanged);
    } else {
        done = cloned;
    }
    if (!done.ok() || cancel.isCancelled()) return done;
    const Result<FileInfo> after = sys.Stat(from);
    if (!after.ok()) return after.status();
    const bool isSame = after->size == before.size && after->modifiedNs == before.modifiedNs;
    return isSame ? Status() : Status::Failure(StatusCode::kChanged);
}

Result<bool> HaveSameContent(Sys& sys, const FileHandle& a, const FileHandle& b, const CancelToken& cancel) {
    const Result<FileInfo> infoA = sys.Stat(a);
    const Result<FileInfo> infoB = sys.Stat(b);
    if (!infoA.ok()) return infoA.status();
    if (!infoB.ok()) return infoB.status();
    if (infoA->size != infoB->size) return false;
    const uint64_t size = infoA->size;
    const bool haveHoles = infoA->allocated < size && infoB->allocated < size;
    std::vector<std::byte> bufferA(std::min<uint64_t>(size, 256 << 10));
    std::vector<std::byte> bufferB(bufferA.size());
    for (uint64_t at = 0; at < size;) {
        if (cancel.isCancelled()) return Status::Failure(StatusCode::kInterrupted);
        if (haveHoles) {
            const Result<uint64_t> dataA = sys.NextData(a, at);
            const Result<uint64_t> dataB = sys.NextData(b, at);
            if (!dataA.ok()) return dataA.status();
            if (!dataB.ok()) return dataB.status();
            at = std::min(*dataA, *dataB);
            if (at >= size) break;
        }
        const Result<size_t> gotA = ReadUpTo(sys, a, at, bufferA);
        if (!gotA.ok()) return gotA.status();
        const Result<size_t> gotB = ReadUpTo(sys, b, at, bufferB);
        if (!gotB.ok()) return gotB.status();
        if (*gotA != *gotB || std::memcmp(bufferA.data(), bufferB.data(), *gotA) != 0) return false;
        if (*gotA == 0) break;
        at += *gotA;
    }
    return true;
}

}  // namespace kinsort
