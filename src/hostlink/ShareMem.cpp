#include "hostlink/ShareMem.h"

#include <algorithm>

#include "text/Numbers.h"
#include "text/Utf16Bytes.h"

namespace kinsort {
namespace {

bool HasNulUnit(std::span<const std::byte> bytes) {
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        if (Utf16UnitAt(bytes, i) == u'\0') return true;
    }
    return false;
}

}  // namespace

CShareMem::CShareMem(SharedMemory& memory, int32_t first, int32_t second, int32_t size, SharedOpening opening)
    : m_nSize(static_cast<uint32_t>(size)),
      m_strName(u"ShareMem_" + FormatInteger(first) + u"_" + FormatInteger(second)),
      m_strMutexName(m_strName + u"_Mutex") {
    Result<std::unique_ptr<SharedBlock>> block = memory.OpenSharedBlock(m_strName, m_nSize, opening);
    if (!block.ok()) {
        m_status = block.status();
        return;
    }
    Result<std::unique_ptr<SharedMutex>> mutex = memory.OpenSharedMutex(m_strMutexName);
    if (!mutex.ok()) {
        m_status = mutex.status();
        return;
    }
    m_pBlock = std::move(*block);
    m_pMutex = std::move(*mutex);
}

CShareMem::~CShareMem() {
    m_pBlock.reset();
    m_pMutex.reset();
}

Result<std::vector<std::byte>> CShareMem::ReadText() {
    constexpr size_t kChunk = size_t{1} << 20;  // an even number: units are not cut
    std::vector<std::byte> text;
    while (text.size() < m_nSize) {
        const size_t start = text.size();
        text.resize(start + std::min<size_t>(kChunk, m_nSize - start));
        const std::span<std::byte> chunk = std::span(text).subspan(start);
        Result<size_t> got = m_pBlock->Read(start, chunk);
        if (!got.ok()) return got.status();
        text.resize(start + *got);
        if (*got < chunk.size() || HasNulUnit(chunk)) break;
    }
    return text;
}

}  // namespace kinsort
