#include "ui/qt/QtIcons.h"

#include <QApplication>
#include <QMimeType>
#include <QStyle>
#include <utility>

#include "framework/Paths.h"
#include "ui/qt/QtText.h"

namespace kinsort {

namespace {

constexpr int kPlainIcon = 0;
constexpr int kFolderIcon = 1;
constexpr int kUnknownIcon = -1;

}  // namespace

QtIcons::QtIcons(FileSystem& files) : files_(files) {
    IndexOf(QStringLiteral("application/octet-stream"),
            {QStringLiteral("application-octet-stream"), QStringLiteral("text-x-generic")});  // kPlainIcon
    IndexOf(QStringLiteral("inode/directory"),
            {QStringLiteral("inode-directory"), QStringLiteral("folder")});  // kFolderIcon
}

int QtIcons::IndexOfPath(std::u16string_view path) {
    const uint32_t attributes = GetPathAttributes(files_, path);
    return attributes == kInvalidAttributes ? kUnknownIcon : IndexOfName(GetFileNamePart(path), attributes);
}

int QtIcons::IndexOfName(std::u16string_view name, uint32_t attributes) {
    if ((attributes & kAttributeDirectory) != 0) return kFolderIcon;
    const QMimeType type = types_.mimeTypeForFile(ToQString(name), QMimeDatabase::MatchExtension);
    return IndexOf(type.name(), {type.iconName(), type.genericIconName()});
}

int QtIcons::IndexOf(const QString& typeName, TypeIcon icon) {
    const std::lock_guard lock(mutex_);
    const auto known = indexOfType_.constFind(typeName);
    if (known != indexOfType_.constEnd()) return *known;
    const auto index = static_cast<int>(typeIcons_.size());
    typeIcons_.push_back(std::move(icon));
    indexOfType_.insert(typeName, index);
    return index;
}

const QIcon& QtIcons::IconOf(int index) const {
    size_t at = index < 0 ? kPlainIcon : static_cast<size_t>(index);
    if (at < icons_.size() && !icons_[at].isNull()) return icons_[at];
    TypeIcon wanted;
    {
        const std::lock_guard lock(mutex_);
        if (at >= typeIcons_.size()) at = kPlainIcon;
        wanted = typeIcons_[at];
    }
    if (icons_.size() <= at) icons_.resize(at + 1);
    if (QIcon::hasThemeIcon(wanted.name)) {
        icons_[at] = QIcon::fromTheme(wanted.name);
    } else if (QIcon::hasThemeIcon(wanted.genericName)) {
        icons_[at] = QIcon::fromTheme(wanted.genericName);
    } else {
        icons_[at] = QApplication::style()->standardIcon(at == kFolderIcon ? QStyle::SP_DirIcon : QStyle::SP_FileIcon);
    }
    return icons_[at];
}

}  // namespace kinsort
