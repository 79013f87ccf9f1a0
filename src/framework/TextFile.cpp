#include "framework/TextFile.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <span>
#include <utility>

#include "framework/JapaneseEncoding.h"
#include "framework/Paths.h"

namespace kinsort {
namespace {

static_assert(std::endian::native == std::endian::little, "the bytes of a file are used as UTF-16 where they are");

constexpr size_t kFirstReadBytes = 1 << 14;
constexpr char16_t kByteOrderMark = 0xFEFF;

// The code page that a byte-order mark names.
std::optional<uint32_t> CodePageOfMark(std::string_view bytes) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\xFE\xFF"sv)) return kCodePageUtf16BigEndian;
    if (bytes.starts_with("\xFF\xFE\0\0"sv)) return kCodePageUtf32;
    if (bytes.starts_with("\xFF\xFE"sv)) return kCodePageUtf16;
    if (bytes.starts_with("\xEF\xBB\xBF"sv)) return kCodePageUtf8;
    if (bytes.starts_with("\0\0\xFE\xFF"sv)) return kCodePageUtf32BigEndian;
    return std::nullopt;
}

}  // namespace

void CTextFile::Reset() {
    input_.reset();
    text_ = {};
    length_ = 0;
    codePage_ = 0;
    currentLineStart_ = 0;
    nextPosition_ = 0;
    lineCount_ = 0;
    lineStarts_.clear();
    currentLine_ = 0;
}

int CTextFile::Open(std::u16string_view path) {
    path_ = path;
    Reset();
    lastError_ = ReadAll();
    if (lastError_.ok()) return 1;
    Reset();
    return 0;
}

void CTextFile::Close() {
    Reset();
    path_.clear();
    lastError_ = {};
}

Status CTextFile::ReadAll() {
    Result<std::unique_ptr<InputFile>> input = files_->OpenInput(ToLongPathForm(path_));
    if (!input.ok()) return input.status();
    input_ = std::move(*input);
    size_t bytes = 0;
    for (size_t room = kFirstReadBytes; bytes < kMaxFileBytes; room = std::min(room * 2, kMaxFileBytes)) {
        text_.resize(room / sizeof(char16_t));
        const Result<size_t> count = input_->Read(std::as_writable_bytes(std::span(text_)).subspan(bytes));
        if (!count.ok()) return count.status().At(path_);
        bytes += *count;
        if (bytes < room) break;
    }
    text_.resize((bytes + 1) / sizeof(char16_t));
    length_ = static_cast<int32_t>(bytes);
    return {};
}

std::u16string_view CTextFile::GetText() const {
    std::u16string_view text(text_.data(), text_.size());
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(1);
    return text.substr(0, text.find(u'\0'));
}

bool CTextFile::DetectCodePage(const CodePages& service, uint32_t& codePage) {
    std::optional<uint32_t> found = CodePageOfMark(Bytes());
    if (!found) {
        const uint32_t japanese = DetectJapaneseEncoding(Bytes());
        found = japanese != 0 ? japanese : service.Detect(Bytes());
    }
    if (!found) return false;
    codePage_ = *found;
    codePage = *found;
    return true;
}

int CTextFile::ConvertToUnicode(const CodePages& service, uint32_t codePage) {
    const Result<std::u16string> converted = service.ToUnicode(codePage, Bytes());
    if (!converted.ok()) {
        lastError_ = converted.status();
        return 0;
    }
    text_.assign(converted->begin(), converted->end());
    text_.resize(text_.size() + 2);
    length_ = static_cast<int32_t>(text_.size() * sizeof(char16_t));
    return 1;
}

void CTextFile::RecordLineStart(int32_t offset) {
    currentLineStart_ = offset;
    // Nearly always the line after the one before: known, or new at the end.
    const bool isNext = currentLine_ + 1 < lineStarts_.size() && lineStarts_[currentLine_ + 1].offset == offset;
    if (isNext) {
        ++currentLine_;
        return;
    }
    auto place = lineStarts_.end();
    if (!lineStarts_.empty() && offset <= lineStarts_.back().offset) {
        place = std::lower_bound(lineStarts_.begin(), lineStarts_.end(), offset,
                                 [](const LineStart& start, int32_t value) { return start.offset < value; });
    }
    if (place == lineStarts_.end() || place->offset != offset)
        place = lineStarts_.insert(place, {offset, ++lineCount_});
    currentLine_ = static_cast<size_t>(place - lineStarts_.begin());
}

bool CTextFile::ReadLine(std::u16string_view& line) {
    const std::u16string_view text(text_.data(), text_.size());
    if (nextPosition_ == 0 && text.starts_with(kByteOrderMark)) nextPosition_ = sizeof(char16_t);
    RecordLineStart(nextPosition_);
    const size_t begin = static_cast<size_t>(nextPosition_) / sizeof(char16_t);
    if (begin >= text.size()) return false;

    const size_t limit = std::min(text.size(), begin + kLineLimit);
    size_t end = begin;
    size_t nul = limit;
    for (; end < limit; ++end) {
        const char16_t unit = text[end];
        if (unit > u'\r') continue;
        if (unit == u'\r' || unit == u'\n') break;
        if (unit == u'\0' && nul == limit) nul = end;
    }
    if (end - begin == kLineLimit) return false;
    line = text.substr(begin, std::min(end, nul) - begin);
    if (end < text.size()) end += text.substr(end).starts_with(u"\r\n") ? 2 : 1;
    nextPosition_ = static_cast<int32_t>(end * sizeof(char16_t));
    return true;
}

int32_t CTextFile::GetLineNumber() const {
    return lineStarts_.empty() ? -1 : lineStarts_[currentLine_].number;
}

void CTextFile::Seek(int32_t offset) {
    nextPosition_ = std::max(offset, 0) & ~1;
}

}  // namespace kinsort
