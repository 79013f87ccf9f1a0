// Where the items of plan and sort come from: operands, --files-from, the host's hand-off.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/CliContext.h"
#include "cli/CommandLine.h"

namespace kinsort {

// The items of a list. With a NUL byte in it, each item is ended by NUL and taken as it is. Otherwise items stand on
// lines: empty lines are left out, a byte-order mark is skipped, and a CR before the line end goes when every line has
// one.
std::vector<std::string> SplitItemList(std::string_view content);

struct MissingItem {
    std::string typed;       // as the user or the host wrote it
    std::string nativePath;  // absolute where it could be resolved
    Status why;
};

enum class ItemSource : uint8_t {
    kNamed,       // operands and --files-from
    kHandedOver,  // the host's selection
    kNone,        // nobody named any
    kFailed,      // the list could not be read; said already
    kCancelled,
};

struct ItemList {
    ItemSource source = ItemSource::kNone;
    std::vector<std::u16string> paths;  // inner form, absolute
    std::vector<MissingItem> missing;
};

enum class ItemCheck : uint8_t {
    kExists,  // what does not exist is missing
    kNotNow,  // whoever takes the items finds out; only what names no path at all is missing
};

// Collects the items. Nothing is said about missing ones.
ItemList CollectItems(CliContext& context, const CommandLine& line, ItemCheck check = ItemCheck::kExists);

// Names each item that does not exist, and why it does not count.
void SayMissing(CliContext& context, const std::vector<MissingItem>& missing);

// The absolute inner form of what the user wrote for a path: a file:/ address, a path below "~/", or a native path.
// kInvalid, with a text that says why, for an address that names no local file.
Result<std::u16string> ResolveTyped(CliContext& context, std::string_view typed);

}  // namespace kinsort
