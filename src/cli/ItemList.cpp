#include "cli/ItemList.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <thread>

#include "cli/ExistenceCheck.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "fileop/Parallel.h"
#include "framework/TypedPath.h"
#include "text/AsciiCase.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::vector<std::string> SplitAt(std::string_view content, char end) {
    std::vector<std::string> items;
    while (!content.empty()) {
        const size_t length = std::min(content.find(end), content.size());
        if (length > 0) items.emplace_back(content.substr(0, length));
        content.remove_prefix(std::min(length + 1, content.size()));
    }
    return items;
}

// The items as the user wrote them; nothing after a message.
std::optional<std::vector<std::string>> TypedItems(CliContext& context, const CommandLine& line) {
    std::vector<std::string> typed = line.operands;
    if (!line.Has(OptionId::kFilesFrom)) return typed;
    const std::string file = line.Value(OptionId::kFilesFrom);
    const Result<std::string> content = context.services.terminal.ReadAll(file);
    if (!content.ok()) {
        if (content.code() != StatusCode::kInterrupted) {
            context.console.Say("--files-from " + ShownText(file) + ": " + StatusText(content.status()));
        }
        return std::nullopt;
    }
    std::vector<std::string> listed = SplitItemList(*content);
    typed.insert(typed.end(), std::make_move_iterator(listed.begin()), std::make_move_iterator(listed.end()));
    return typed;
}

// Resolves items and sorts them into those that count and those that do not. `shown` is how the user knows an item.
void AddItems(CliContext& context, size_t count, unsigned threads, ItemCheck wanted,
              const std::function<Result<std::u16string>(size_t)>& resolve,
              const std::function<std::string(size_t)>& shown, ItemList& list) {
    struct Looked {
        Result<std::u16string> path = std::u16string();
        Status status;
    };
    std::vector<Looked> looked(count);
    ExistenceCheck existence(context.services);
    const auto look = [&](size_t i, bool) {
        if (context.cancel.isCancelled()) return;
        looked[i].path = resolve(i);
        const Result<std::u16string>& path = looked[i].path;
        looked[i].status = !path.ok()                     ? path.status()
                           : wanted == ItemCheck::kExists ? existence.Look(*path)
                                                          : ExistenceCheck::CheckHasName(*path);
    };
    ForEachParallel(count, threads, look);
    if (context.cancel.isCancelled()) return;
    for (size_t i = 0; i < count; ++i) {
        auto& [path, status] = looked[i];
        if (status.ok()) {
            list.paths.push_back(std::move(*path));
        } else {
            list.missing.push_back({shown(i), path.ok() ? context.NativePath(*path) : shown(i), status});
        }
    }
}

}  // namespace

std::vector<std::string> SplitItemList(std::string_view content) {
    if (content.find('\0') != std::string_view::npos) return SplitAt(content, '\0');
    if (content.starts_with(kByteOrderMark)) content.remove_prefix(kByteOrderMark.size());
    std::vector<std::string> items = SplitAt(content, '\n');
    const auto endsInCr = [](const std::string& item) { return item.back() == '\r'; };
    if (std::all_of(items.begin(), items.end(), endsInCr)) {
        for (std::string& item : items)
            item.pop_back();
        std::erase(items, "");
    }
    return items;
}

Result<std::u16string> ResolveTyped(CliContext& context, std::string_view typed) {
    const PathCodec& codec = context.services.codec;
    // A shell hands over the names of files as they are, also one like "file:x" or "C:\x"; only what cannot be meant
    // as such a name is read as an address.
    TypedPath path;
    constexpr std::string_view kFileScheme = "file:/";
    if (typed.empty() || StartsWithNoCase(FromUtf8(typed.substr(0, kFileScheme.size())), u"file:/") ||
        typed.starts_with("~/")) {
        path = InnerPathFromTyped(typed, context.services.environment("HOME"), codec);
    } else {
        path.inner = codec.PathToInner(typed);
    }
    if (!path.ok()) return Status::Failure(StatusCode::kInvalid, 0, FromUtf8(DescribeProblem(path.problem)));
    return context.services.files.ResolveFullPath(path.inner);
}

ItemList CollectItems(CliContext& context, const CommandLine& line, ItemCheck check) {
    ItemList list;
    const int asked = line.Number(OptionId::kThreads, 0);
    const unsigned threads = asked > 0 ? static_cast<unsigned>(asked) : std::thread::hardware_concurrency();
    if (!line.operands.empty() || line.Has(OptionId::kFilesFrom)) {
        const std::optional<std::vector<std::string>> typed = TypedItems(context, line);
        list.source = typed ? ItemSource::kNamed : ItemSource::kFailed;
        const auto resolve = [&](size_t i) { return ResolveTyped(context, (*typed)[i]); };
        const auto shown = [&](size_t i) { return (*typed)[i]; };
        if (typed) AddItems(context, typed->size(), threads, check, resolve, shown, list);
    } else if (const auto handedOver = context.services.handedOverItems()) {
        list.source = ItemSource::kHandedOver;
        const auto resolve = [&](size_t i) { return context.services.files.ResolveFullPath((*handedOver)[i]); };
        const auto shown = [&](size_t i) { return context.NativePath((*handedOver)[i]); };
        AddItems(context, handedOver->size(), threads, check, resolve, shown, list);
    }
    if (context.cancel.isCancelled()) list.source = ItemSource::kCancelled;
    return list;
}

void SayMissing(CliContext& context, const std::vector<MissingItem>& missing) {
    for (const MissingItem& item : missing)
        context.console.Say((item.typed.empty() ? "''" : ShownText(item.typed)) + ": " + StatusText(item.why));
}

}  // namespace kinsort
