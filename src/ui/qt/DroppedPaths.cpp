#include "ui/qt/DroppedPaths.h"

#include "framework/TypedPath.h"

namespace kinsort {
namespace {

// The bytes themselves, and not the toolkit's addresses: those would lose a name that is no text.
constexpr const char* kUriList = "text/uri-list";

}  // namespace

bool HoldsFiles(const QMimeData& data) {
    return data.hasFormat(QLatin1String(kUriList));
}

std::vector<std::u16string> DroppedPaths(const QMimeData& data, const PathCodec& codec) {
    std::vector<std::u16string> paths;
    const QByteArray list = data.data(QLatin1String(kUriList));
    for (const QByteArray& line : list.split('\n')) {
        const QByteArray address = line.trimmed();
        if (!address.startsWith("file:")) continue;
        TypedPath path = InnerPathFromTyped(address.toStdString(), {}, codec);
        if (path.ok()) paths.push_back(std::move(path.inner));
    }
    return paths;
}

}  // namespace kinsort
