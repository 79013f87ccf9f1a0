// The texts that users see, by number, from the message file of their language. The file is shared by the host and all
// of its commands. UTF-16LE, one text a line: number, TAB, text; "\n" in a text is a line feed, "//" begins a comment
// line, a line "EOF" ends the file. The numbers that this program uses stand in framework/MessageNumbers.h.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "framework/Settings.h"
#include "framework/VelFolders.h"
#include "platform/FileSystem.h"
#include "platform/UserInterface.h"

namespace kinsort {

using MessageTable = std::unordered_map<uint16_t, std::u16string>;

// What every number reads as that the message file does not have.
inline constexpr std::u16string_view kNoMessageText = u"No message text.Please update message file.";

// From this number on the texts are our own and not the host's.
inline constexpr uint16_t kFirstOwnMessage = 64000;

// The entries of a message file's bytes. Of a number that occurs twice the first counts; lines without exactly one TAB
// are ignored; numbers above 65535 wrap. A line longer than 32,766 units is several lines.
MessageTable ParseMessageFile(std::string_view bytes);

// One message file, loaded by the first text that somebody asks for. References outlive it. Main thread.
class Messages {
  public:
    Messages(Settings& settings, VelFolders& folders, FileSystem& files, UserInterface& ui)
        : settings_(settings), folders_(folders), files_(files), ui_(ui) {}

    // "Lang\Msg<suffix>.txt" in the host's folder, absolute; worked out once.
    const std::u16string& GetMessageFilePath();
    // Reads the file anew, 4 MiB of it at the most. 1 when it held at least one text; 0 when not, and when it cannot be
    // opened, which the user is told in a box.
    int LoadMessageFile();
    // The text, kNoMessageText when there is none. As long as nothing is loaded, each call tries to load. Not so for
    // our own texts, which are asked for many times a second, and stand on buttons that decide about files: those try
    // once, and what the file lacks is taken from the English one beside it.
    std::u16string GetMessageText(uint16_t number);
    // The same with "%1", "%2"... replaced by the values, and "%%" by "%".
    std::u16string GetMessageText(uint16_t number, std::initializer_list<std::u16string_view> values);

  private:
    const MessageTable& EnglishTable();

    Settings& settings_;
    VelFolders& folders_;
    FileSystem& files_;
    UserInterface& ui_;
    std::optional<std::u16string> path_;
    MessageTable table_;
    bool hasTried_ = false;
    std::optional<MessageTable> english_;
};

}  // namespace kinsort
