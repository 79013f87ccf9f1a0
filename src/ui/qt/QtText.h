// Text between the house and the toolkit: both hold UTF-16, so that every name survives, lone surrogates included.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace kinsort {

inline QString ToQString(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::u16string FromQString(const QString& text) {
    return text.toStdU16String();
}

}  // namespace kinsort
