// The rows of a summary as a table of the toolkit. There can be very many: nothing is copied, and only what is seen is
// turned into texts.
#pragma once

#include <QAbstractTableModel>
#include <QModelIndexList>

#include "app/OperationView.h"

namespace kinsort {

class SummaryRows final : public QAbstractTableModel {
  public:
    // The summary outlives it.
    explicit SummaryRows(const OperationSummary& summary) : summary_(summary) {}

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // "name TAB reason", a line each: the given rows, or all of them when there are none.
    QString AsText(const QModelIndexList& rows) const;

  private:
    const OperationSummary& summary_;
};

}  // namespace kinsort
