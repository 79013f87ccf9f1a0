// A text file in memory: scripts, message files, dialog texts and the files that scripts read. Handed out line by line,
// with the number that each line had when it was first met, so that a line can be gone back to and still be named.
//
// The text is UTF-16, little-endian; a file in another encoding is made that first:
//
//     CTextFile file(files);
//     if (!file.Open(path)) return Complain(file.lastError());
//     uint32_t codePage = 0;
//     if (file.DetectCodePage(codePages, codePage) && codePage != kCodePageUtf16) {
//         file.ConvertToUnicode(codePages, codePage);
//     }
//     for (std::u16string_view line; file.ReadLine(line);) Use(file.GetLineNumber(), line);
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CodePages.h"
#include "platform/FileSystem.h"
#include "platform/Status.h"

namespace kinsort {

// Used from one thread. Offsets count bytes from the beginning of the text in memory.
class CTextFile {
  public:
    // What is read of a file; the rest is ignored.
    static constexpr size_t kMaxFileBytes = 52'428'800;
    // A line is shorter than this, in code units without its end. One that is not ends the reading.
    static constexpr size_t kLineLimit = 32'767;

    explicit CTextFile(FileSystem& files) : files_(&files) {}

    // Reads the file, and keeps writers out of it until Close. 1 on success. 0 when it cannot be opened or read: the
    // object is then empty, and lastError() says why. Either way whatever was open before is gone, and path() is the
    // new one.
    int Open(std::u16string_view path);
    void Close();
    bool isOpen() const { return input_ != nullptr; }
    const std::u16string& path() const { return path_; }
    const Status& lastError() const { return lastError_; }

    // The whole text without a byte-order mark, up to the first NUL. Valid until Open, Close or ConvertToUnicode; so
    // are the lines.
    std::u16string_view GetText() const;

    // Finds out the encoding of what is in memory: by its byte-order mark, by what Japanese text in its three usual
    // encodings looks like, or else by asking the service. True with the code page in `codePage` and codePage();
    // otherwise neither is touched.
    bool DetectCodePage(const CodePages& service, uint32_t& codePage);
    // Replaces what is in memory by its UTF-16 form; two NUL units then count as part of its length, so that after a
    // last line with an end one more line is read, an empty one. 1 on success. 0 when the service does not know the
    // code page: nothing is changed. Meant for a file that no line was read of; positions stay what they are.
    int ConvertToUnicode(const CodePages& service, uint32_t codePage);
    // 0 until it was detected or set.
    uint32_t codePage() const { return codePage_; }
    void SetCodePage(uint32_t codePage) { codePage_ = codePage; }

    // The next line without its end (CR LF, CR or LF), up to its first NUL. False at the end of the text, and for good
    // at a line of kLineLimit units or more. A last line without an end is a line unless it is empty.
    bool ReadLine(std::u16string_view& line);
    // The number of the line that was read last, counted from 1 in the order in which lines were met for the first
    // time; -1 before any was read.
    int32_t GetLineNumber() const;

    // Where the line that was read last begins, and where the next one does.
    int32_t currentLineStart() const { return currentLineStart_; }
    int32_t nextPosition() const { return nextPosition_; }
    // Goes on reading at `offset`, where a line begins; beyond the text nothing is read.
    void Seek(int32_t offset);
    // Goes back to the beginning; the lines keep their numbers.
    void Rewind() { nextPosition_ = 0; }

    // Bytes in memory.
    int32_t length() const { return length_; }

  private:
    struct LineStart {
        int32_t offset;
        int32_t number;
    };

    Status ReadAll();
    void Reset();
    void RecordLineStart(int32_t offset);
    std::string_view Bytes() const { return {reinterpret_cast<const char*>(text_.data()), size_t(length_)}; }

    FileSystem* files_;
    std::unique_ptr<InputFile> input_;  // open as long as the text is in use
    std::u16string path_;
    Status lastError_;
    std::vector<char16_t> text_;  // the bytes, a lone last one completed, and then at least one NUL
    int32_t length_ = 0;
    uint32_t codePage_ = 0;
    int32_t currentLineStart_ = 0;
    int32_t nextPosition_ = 0;
    int32_t lineCount_ = 0;
    std::vector<LineStart> lineStarts_;  // by offset
    size_t currentLine_ = 0;             // in lineStarts_
};

}  // namespace kinsort
