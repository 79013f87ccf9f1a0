// Where the controls of a dialog stand. The template's positions are what the dialog starts from: they are scaled to
// the real font, then a control that its text does not fit in grows, and what stands beside or below it moves on. No
// toolkit here; all results are pixels of the dialog's client area, read from left to right.
#pragma once

#include <functional>
#include <vector>

#include "app/DialogTemplate.h"

namespace kinsort {

struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    int Right() const { return x + width; }
    int Bottom() const { return y + height; }
    bool operator==(const PixelRect&) const = default;
};

// Pixels of four horizontal and of eight vertical dialog units: the font's average character.
struct BaseUnits {
    int width = 0;
    int height = 0;
};

struct LayoutItem {
    DialogUnits place;  // of a drop-down: with its list closed
    Anchor anchor = Anchor::kStay;
    bool isSingleLine = true;           // stands in a row: as high as its neighbours there
    int neededWidth = 0;                // pixels
    std::function<int(int)> heightFor;  // pixels that it needs at a width
    int smallestWidth = 0;              // of one that grows with the dialog, when the dialog is made smaller
    int smallestHeight = 0;             //
};

class DialogLayout {
  public:
    // Finds places for all items and the size that the dialog has with them, at least width x height dialog units.
    DialogLayout(std::vector<LayoutItem> items, BaseUnits units, int width, int height);

    int Width() const { return width_; }
    int Height() const { return height_; }
    // Nothing overlaps down to this size.
    int SmallestWidth() const { return smallestWidth_; }
    int SmallestHeight() const { return smallestHeight_; }

    // Of the item with that index, in a dialog of that size.
    PixelRect PlaceAt(size_t item, int width, int height) const;

  private:
    int ToX(int units) const { return (units * units_.width + 2) / 4; }
    int ToY(int units) const { return (units * units_.height + 4) / 8; }
    void SnapLeftEdges();
    void PlaceColumns(int templateWidth);
    void PlaceRows(int templateHeight);
    void ShareColumnWidths();
    std::vector<std::vector<size_t>> Rows() const;
    void FindSmallest();

    std::vector<LayoutItem> items_;
    BaseUnits units_;
    std::vector<PixelRect> places_;
    int width_ = 0;
    int height_ = 0;
    int smallestWidth_ = 0;
    int smallestHeight_ = 0;
};

}  // namespace kinsort
