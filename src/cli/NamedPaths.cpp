#include "cli/NamedPaths.h"

#include "cli/ItemList.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"

namespace kinsort {
namespace {

std::u16string Refuse(CliContext& context, OptionId option, const std::string& typed, std::string_view why) {
    context.console.Say("--" + std::string(SpecOf(option).name) + " " + ShownText(typed) + ": " + std::string(why));
    return {};
}

}  // namespace

std::u16string FindNamedFolder(CliContext& context, OptionId option, const std::string& typed) {
    const Result<std::u16string> folder = ResolveTyped(context, typed);
    if (!folder.ok()) return Refuse(context, option, typed, StatusText(folder.status()));
    const uint32_t attributes = context.services.files.GetAttributes(*folder);
    if (attributes == kInvalidAttributes)
        return Refuse(context, option, typed, "there is no such folder, or it cannot be read; check the path");
    if ((attributes & kAttributeDirectory) == 0) return Refuse(context, option, typed, "this is a file; name a folder");
    return *folder;
}

std::u16string FindFolderToList(CliContext& context, OptionId option, const std::string& typed) {
    std::u16string folder = FindNamedFolder(context, option, typed);
    if (folder.empty()) return folder;
    const Result<std::string> stored = context.services.codec.PathToStored(folder);
    if (stored.ok() && context.services.sys.OpenFolder(*stored).code() == StatusCode::kAccessDenied)
        return Refuse(context, option, typed, "permission denied; its sub-folders cannot be listed");
    return folder;
}

Result<std::u16string> FindFileToRead(CliContext& context, const std::string& typed) {
    Result<std::u16string> path = ResolveTyped(context, typed);
    if (!path.ok()) return path;
    const Status opened = context.services.files.OpenInput(*path).status();
    return opened.ok() ? path : opened;
}

}  // namespace kinsort
