#include "framework/Messages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "framework/Paths.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"
#include "text/Utf16Bytes.h"

namespace kinsort {
namespace {

constexpr size_t kMaxFileBytes = size_t{4} << 20;  // of a file; the rest is not read
constexpr size_t kMaxPieceLength = 32766;          // units of a line, its end included, that are read at a time

// The next line, or piece of one, up to its first NUL.
std::u16string NextPiece(std::string_view bytes, size_t& offset) {
    std::u16string piece;
    bool isEnded = false;
    for (size_t count = 0; count < kMaxPieceLength && offset + 1 < bytes.size(); ++count) {
        const char16_t unit = Utf16UnitAt(std::as_bytes(std::span(bytes)), offset);
        offset += 2;
        isEnded |= unit == u'\0';
        if (!isEnded) piece += unit;
        if (unit == u'\n') break;
    }
    return piece;
}

std::u16string Clean(std::u16string line) {
    std::erase(line, u'\xFEFF');
    return Trim(Replace(Replace(line, u"\r\n", u""), u"\\n", u"\n"));
}

Result<std::string> ReadBytes(FileSystem& files, std::u16string_view path) {
    Result<std::unique_ptr<InputFile>> file = files.OpenInput(path);
    if (!file.ok()) return file.status();
    std::string bytes;
    std::array<std::byte, 65536> buffer;
    while (bytes.size() < kMaxFileBytes) {
        const Result<size_t> got = (*file)->Read(buffer);
        if (!got.ok()) return got.status();
        if (*got == 0) break;
        bytes.append(reinterpret_cast<const char*>(buffer.data()), *got);
    }
    return bytes;
}

}  // namespace

MessageTable ParseMessageFile(std::string_view bytes) {
    MessageTable table;
    for (size_t offset = 0; offset + 1 < bytes.size();) {
        const std::u16string line = Clean(NextPiece(bytes, offset));
        if (line == u"EOF") break;
        if (line.starts_with(u"//")) continue;
        std::vector<std::u16string> fields = Split(line, u'\t');
        if (fields.size() != 2) continue;
        table.try_emplace(static_cast<uint16_t>(ReadInt32(fields[0])), std::move(fields[1]));
    }
    return table;
}

const std::u16string& Messages::GetMessageFilePath() {
    if (!path_) {
        const std::u16string file = u"..\\..\\Lang\\Msg" + settings_.LanguageSuffix() + u".txt";
        path_ = GetFullPath(files_, folders_.GetProgramDir() + file);
    }
    return *path_;
}

int Messages::LoadMessageFile() {
    hasTried_ = true;
    table_.clear();
    const std::u16string path = GetMessageFilePath();
    const Result<std::string> bytes = ReadBytes(files_, ToLongPathForm(path));
    if (!bytes.ok()) {
        MessageRequest request;
        request.text = u"Cannot open message file.\n" + folders_.PathForPeople(path);
        ui_.ShowMessage(request);
        return 0;
    }
    table_ = ParseMessageFile(*bytes);
    return table_.empty() ? 0 : 1;
}

std::u16string Messages::GetMessageText(uint16_t number) {
    const bool isOwn = number >= kFirstOwnMessage;
    if (table_.empty() && !(isOwn && hasTried_)) LoadMessageFile();
    if (const auto found = table_.find(number); found != table_.end()) return found->second;
    if (isOwn) {
        if (const auto found = EnglishTable().find(number); found != EnglishTable().end()) return found->second;
    }
    return std::u16string(kNoMessageText);
}

const MessageTable& Messages::EnglishTable() {
    if (!english_) {
        const std::u16string path = folders_.GetAppDir() + u"Lang\\Msg.en-US.txt";
        const Result<std::string> bytes = ReadBytes(files_, ToLongPathForm(path));
        english_ = bytes.ok() ? ParseMessageFile(*bytes) : MessageTable();
    }
    return *english_;
}

std::u16string Messages::GetMessageText(uint16_t number, std::initializer_list<std::u16string_view> values) {
    const std::u16string text = GetMessageText(number);
    std::u16string filled;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isMark = text[i] == u'%' && i + 1 < text.size();
        if (!isMark) {
            filled += text[i];
        } else if (text[i + 1] == u'%') {
            filled += text[++i];
        } else if (const size_t index = size_t{text[i + 1]} - u'1'; index < values.size() && IsDigit(text[i + 1])) {
            filled += values.begin()[index];
            ++i;
        } else {
            filled += text[i];
        }
    }
    return filled;
}

}  // namespace kinsort
