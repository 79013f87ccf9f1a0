#include "ui/qt/DroppedPaths.h"

#include <QMimeData>

#include "framework/TypedPath.h"

namespace kinsort {
namespace {

// The bytes themselves, and not the toolkit's addresses: those would lose a name that is no text.
constexpr const char* kUriList = "text/uri-list";

}  // namespace

bool AcceptFiles(QDropEvent& drag) {
    if (!drag.mimeData()->hasFormat(QLatin1String(kUriList))) return false;
    drag.setDropAction(Qt::CopyAction);
    drag.accept();
    return true;
}

std::vector<std::u16string> DroppedPaths(const QDropEvent& drag, const PathCodec& codec) {
    std::vector<std::u16string> paths;
    const QByteArray list = drag.mimeData()->data(QLatin1String(kUriList));
    for (const QByteArray& line : list.split('\n')) {
        const QByteArray address = line.trimmed();
        if (!address.startsWith("file:")) continue;
        TypedPath path = InnerPathFromTyped(address.toStdString(), {}, codec);
        if (path.ok()) paths.push_back(std::move(path.inner));
    }
    return paths;
}

}  // namespace kinsort
