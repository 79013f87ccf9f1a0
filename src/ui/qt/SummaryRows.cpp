#include "ui/qt/SummaryRows.h"

#include <algorithm>

#include "ui/qt/PlainText.h"
#include "ui/qt/QtText.h"

namespace kinsort {

int SummaryRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(summary_.rows.size());
}

int SummaryRows::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 2;
}

QVariant SummaryRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
    const SummaryRow& row = summary_.rows[static_cast<size_t>(index.row())];
    const QString text = ToQString(index.column() == 0 ? row.name : row.reason);
    return role == Qt::ToolTipRole ? PlainToolTip(text) : text;
}

QVariant SummaryRows::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return ToQString(section == 0 ? summary_.nameColumn : summary_.reasonColumn);
}

QString SummaryRows::AsText(const QModelIndexList& rows) const {
    std::vector<size_t> wanted;
    for (const QModelIndex& row : rows)
        wanted.push_back(static_cast<size_t>(row.row()));
    std::sort(wanted.begin(), wanted.end());
    const size_t count = wanted.empty() ? summary_.rows.size() : wanted.size();
    QString text;
    for (size_t i = 0; i < count; ++i) {
        const SummaryRow& row = summary_.rows[wanted.empty() ? i : wanted[i]];
        text += ToQString(row.name) + QLatin1Char('\t') + ToQString(row.reason) + QLatin1Char('\n');
    }
    return text;
}

}  // namespace kinsort
