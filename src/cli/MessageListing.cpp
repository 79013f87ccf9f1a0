#include "cli/MessageListing.h"

#include <algorithm>
#include <array>
#include <optional>

#include "cli/JsonWriter.h"
#include "cli/RegistryJson.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "framework/FileDropList.h"
#include "hostlink/HostHandOff.h"
#include "text/PathSyntax.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr size_t kShownBytes = 64;

enum class Content : uint8_t { kText, kFolder, kFile, kItems };

// The codes of data that the commands of the language send, with their keywords, and the block of items.
struct CodeRow {
    uint64_t code;
    std::string_view name;
    Content content;
};
constexpr auto kCodes = std::to_array<CodeRow>({
    {100, "folderjump", Content::kFolder},
    {103, "filejump", Content::kFile},
    {200, "folderjump", Content::kFolder},
    {203, "filejump", Content::kFile},
    {205, "fullstateopen", Content::kText},
    {255, "items", Content::kItems},
    {300, "folderjump", Content::kFolder},
    {303, "filejump", Content::kFile},
    {400, "folderjump", Content::kFolder},
    {403, "filejump", Content::kFile},
    {800, "select", Content::kText},
    {901, "favoritejump", Content::kText},
    {910, "listinnerparam", Content::kText},
    {911, "operationmode", Content::kText},
    {912, "tabletmode", Content::kText},
    {1003, "ubjump", Content::kText},
    {1200, "backgroundimage", Content::kText},
});

const CodeRow* FindCode(uint64_t code) {
    const auto* const found = std::ranges::find(kCodes, code, &CodeRow::code);
    return found == kCodes.end() ? nullptr : found;
}

// The text of data that ends with a NUL, up to its first one; nothing for data that is no text.
std::optional<std::u16string> TextOf(std::span<const std::byte> data) {
    if (data.size() < 2 || data.size() % 2 != 0) return std::nullopt;
    std::u16string text;
    text.reserve(data.size() / 2);
    for (size_t i = 0; i < data.size(); i += 2) {
        text +=
            static_cast<char16_t>(std::to_integer<unsigned>(data[i]) | (std::to_integer<unsigned>(data[i + 1]) << 8));
    }
    if (text.back() != 0) return std::nullopt;
    text.resize(text.find(u'\0'));
    return text;
}

bool IsFullPath(std::u16string_view text) {
    const PathRootKind kind = ParsePathRoot(text).kind;
    return kind == PathRootKind::kDrive || kind == PathRootKind::kShare;
}

// A path as a native one, anything else as text.
std::string Shown(const CliContext& context, const std::u16string& text) {
    return IsFullPath(text) ? context.ShownPath(text) : ShownText(ToUtf8(text));
}

void WritePaths(JsonWriter& json, const CliContext& context, std::string_view key,
                const std::vector<std::u16string>& paths) {
    json.BeginArray(key);
    for (const std::u16string& path : paths) {
        json.BeginObject();
        json.Path("path", context.NativePath(path));
        json.EndObject();
    }
    json.EndArray();
}

void WriteText(JsonWriter& json, const CliContext& context, const std::u16string& text) {
    json.String("text", ToUtf8(text));
    if (IsFullPath(text)) json.Path("path", context.NativePath(text));
}

// The block in which the host hands over a selection.
HostHandOff ItemsOf(std::span<const std::byte> data) {
    std::vector<std::byte> block(data.begin(), data.end());
    HostHandOff handOff;
    ParseHandOffBlock(block, handOff);
    return handOff;
}

void PrintPaths(CliContext& context, std::string_view head, const std::vector<std::u16string>& paths) {
    context.console.Print(std::string(head) + ": " + Counted(paths.size(), "item") + "\n");
    for (const std::u16string& path : paths)
        context.console.Print("  " + Shown(context, path) + "\n");
}

struct DataMessage {
    WindowHandle sender;
    uint64_t code;
    std::span<const std::byte> data;
    const CodeRow* row;                  // null: a code that nobody knows
    std::optional<std::u16string> text;  // nothing: other data
};

bool IsItems(const DataMessage& message) {
    return message.row != nullptr && message.row->content == Content::kItems;
}

void WriteData(JsonWriter& json, const CliContext& context, const DataMessage& message) {
    json.BeginObject();
    json.String("kind", "data");
    json.Number("code", message.code);
    if (message.row != nullptr) {
        json.String("name", message.row->name);
    }
    json.Number("sender", message.sender);
    if (IsItems(message)) {
        const HostHandOff handOff = ItemsOf(message.data);
        json.Path("folder", handOff.CurrentDir.empty() ? std::string() : context.NativePath(handOff.CurrentDir));
        json.String("option", ToUtf8(handOff.Option));
        WritePaths(json, context, "items", handOff.SelectedItems);
        WritePaths(json, context, "other_tabs", handOff.OtherTabFolders);
    } else if (message.text) {
        WriteText(json, context, *message.text);
    } else {
        json.String("bytes", HexOfBytes(message.data));
    }
    json.EndObject();
}

void PrintData(CliContext& context, const DataMessage& message) {
    const std::string code = std::to_string(message.code);
    const std::string head = message.row == nullptr ? "data " + code : std::string(message.row->name) + " " + code;
    if (IsItems(message)) {
        PrintPaths(context, head, ItemsOf(message.data).SelectedItems);
    } else if (message.text) {
        context.console.Print(head + ": " + Shown(context, *message.text) + "\n");
    } else {
        const std::string hex = HexOfBytes(message.data.first(std::min(message.data.size(), kShownBytes)));
        const std::string_view more = message.data.size() > kShownBytes ? "..." : "";
        context.console.Print(head + ": " + Counted(message.data.size(), "byte") + " " + hex + std::string(more) +
                              "\n");
    }
}

}  // namespace

int64_t MessageListing::OnData(WindowHandle sender, uint64_t number, std::span<const std::byte> data) {
    const DataMessage message{sender, number, data, FindCode(number), TextOf(data)};
    if (asJson_) {
        JsonWriter json(context_.console, JsonLayout::kOneLine);
        WriteData(json, context_, message);
        json.Finish();
    } else {
        PrintData(context_, message);
    }
    (void)context_.console.Flush();
    const bool isJump = message.row != nullptr && message.text && !message.text->empty() &&
                        (message.row->content == Content::kFolder || message.row->content == Content::kFile);
    if (isJump) jumps_.push_back({*message.text, message.row->content == Content::kFile});
    return 1;
}

int64_t MessageListing::OnNumbers(uint32_t message, uint64_t first, int64_t second) {
    const auto signedFirst = static_cast<int64_t>(first);
    if (asJson_) {
        JsonWriter json(context_.console, JsonLayout::kOneLine);
        json.BeginObject();
        json.String("kind", "numbers");
        json.Number("message", message);
        json.Integer("first", signedFirst);
        json.Integer("second", second);
        json.EndObject();
        json.Finish();
    } else {
        context_.console.Print("numbers " + std::to_string(message) + ": " + std::to_string(signedFirst) + " " +
                               std::to_string(second) + "\n");
    }
    (void)context_.console.Flush();
    return 1;
}

void MessageListing::OnDrop(std::span<const std::byte> dropList) {
    const std::vector<std::u16string> paths = ParseFileDropList(dropList).value_or(std::vector<std::u16string>());
    if (asJson_) {
        JsonWriter json(context_.console, JsonLayout::kOneLine);
        json.BeginObject();
        json.String("kind", "drop");
        WritePaths(json, context_, "items", paths);
        json.EndObject();
        json.Finish();
    } else {
        PrintPaths(context_, "drop", paths);
    }
    (void)context_.console.Flush();
}

}  // namespace kinsort
