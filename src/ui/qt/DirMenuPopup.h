// A folder tree as cascading menus of the toolkit, each filled when it opens.
#pragma once

#include <QWidget>

#include "controls/DirMenu.h"

namespace kinsort {

class DirMenuPopup final : public DirMenuView {
  public:
    // The menus come up over the middle of `anchor`, which outlives it.
    explicit DirMenuPopup(QWidget& anchor) : anchor_(anchor) {}

    uint16_t TrackPopup(CDirMenu& menu, CDirMenuObj& top) override;

  private:
    QWidget& anchor_;
};

}  // namespace kinsort
