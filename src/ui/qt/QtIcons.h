// The desktop's icons by the type of a file. Workers find out a type's name, which asks the disk at most what stands at
// a path; pictures are made on the thread of the user interface, when somebody draws them.
#pragma once

#include <QHash>
#include <QIcon>
#include <QMimeDatabase>
#include <QString>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/Icons.h"

namespace kinsort {

class QtIcons final : public Icons {
  public:
    // `files` must outlive it.
    explicit QtIcons(FileSystem& files);

    int IndexOfPath(std::u16string_view path) override;
    int IndexOfName(std::u16string_view name, uint32_t attributes) override;

    // The picture of an index that one of the above gave; the plain one for any other number. Thread of the user
    // interface.
    const QIcon& IconOf(int index) const;

  private:
    struct TypeIcon {
        QString name;         // in the desktop's icon theme
        QString genericName;  // where the theme has none of that name
    };
    int IndexOf(const QString& typeName, TypeIcon icon);

    FileSystem& files_;
    QMimeDatabase types_;  // asked by workers only: reading it in takes its time
    mutable std::mutex mutex_;
    std::vector<TypeIcon> typeIcons_;   // by index; under mutex_
    QHash<QString, int> indexOfType_;   // under mutex_
    mutable std::vector<QIcon> icons_;  // by index, made when first drawn; thread of the user interface
};

}  // namespace kinsort
