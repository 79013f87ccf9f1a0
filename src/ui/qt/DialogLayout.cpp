#include "ui/qt/DialogLayout.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace kinsort {
namespace {

constexpr int kMargin = 7;      // dialog units that stay free at the right and at the bottom
constexpr int kRowSlack = 2;    // dialog units by which the tops of one row differ at most
constexpr int kSameColumn = 1;  // dialog units by which edges of one column differ at most

bool ShareHeight(const DialogUnits& a, const DialogUnits& b) {
    return a.y < b.y + b.height && b.y < a.y + a.height;
}

bool IsLeftOf(const DialogUnits& a, const DialogUnits& b) {
    return a.x + a.width <= b.x && ShareHeight(a, b);
}

bool GrowsWide(const LayoutItem& item) {
    return item.anchor == Anchor::kGrowWidth || item.anchor == Anchor::kGrowBoth;
}

}  // namespace

DialogLayout::DialogLayout(std::vector<LayoutItem> items, BaseUnits units, int width, int height)
    : items_(std::move(items)), units_(units), places_(items_.size()) {
    SnapLeftEdges();
    PlaceColumns(width);
    PlaceRows(height);
    FindSmallest();
}

// Left edges that differ by one unit are one edge to the eye; right edges stay where they are.
void DialogLayout::SnapLeftEdges() {
    for (LayoutItem& item : items_) {
        const bool isOffByOne = std::any_of(items_.begin(), items_.end(), [&item](const LayoutItem& other) {
            return other.place.x == item.place.x - 1 && !ShareHeight(other.place, item.place);
        });
        if (!isOffByOne) continue;
        item.place.x -= 1;
        item.place.width += 1;
    }
}

// Buttons under each other stay equally wide.
void DialogLayout::ShareColumnWidths() {
    for (size_t i = 0; i < items_.size(); ++i) {
        for (size_t j = 0; j < items_.size(); ++j) {
            const DialogUnits& a = items_[i].place;
            const DialogUnits& b = items_[j].place;
            const bool isSame = items_[i].anchor == Anchor::kMoveRight && items_[j].anchor == Anchor::kMoveRight &&
                                std::abs(a.x - b.x) <= kSameColumn && std::abs(a.width - b.width) <= kSameColumn;
            if (isSame) places_[i].width = std::max(places_[i].width, items_[j].neededWidth);
        }
    }
}

void DialogLayout::PlaceColumns(int templateWidth) {
    std::vector<size_t> order(items_.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [this](size_t a, size_t b) { return items_[a].place.x < items_[b].place.x; });
    for (size_t i = 0; i < items_.size(); ++i) {
        places_[i].width = std::max(ToX(items_[i].place.width), items_[i].neededWidth);
    }
    ShareColumnWidths();
    width_ = ToX(templateWidth);
    for (size_t i : order) {
        const DialogUnits& mine = items_[i].place;
        places_[i].x = ToX(mine.x);
        for (size_t j : order) {
            const DialogUnits& other = items_[j].place;
            if (!IsLeftOf(other, mine)) continue;
            const int gap = ToX(mine.x - other.x - other.width);
            places_[i].x = std::max(places_[i].x, places_[j].Right() + gap);
        }
        const int rightMargin = items_[i].anchor == Anchor::kMoveRight ? templateWidth - mine.x - mine.width : kMargin;
        width_ = std::max(width_, places_[i].Right() + ToX(rightMargin));
    }
    for (size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].anchor != Anchor::kMoveRight) continue;
        const DialogUnits& mine = items_[i].place;
        places_[i].x = width_ - ToX(templateWidth - mine.x - mine.width) - places_[i].width;
    }
    // What grows with the dialog takes what the others left.
    for (size_t i = 0; i < items_.size(); ++i) {
        if (!GrowsWide(items_[i])) continue;
        const DialogUnits& mine = items_[i].place;
        int right = width_ - ToX(templateWidth - mine.x - mine.width);
        for (size_t j = 0; j < items_.size(); ++j) {
            const DialogUnits& other = items_[j].place;
            if (IsLeftOf(mine, other)) right = std::min(right, places_[j].x - ToX(other.x - mine.x - mine.width));
        }
        places_[i].width = std::max(places_[i].width, right - places_[i].x);
    }
}

// Indices of the items, those of one row together.
std::vector<std::vector<size_t>> DialogLayout::Rows() const {
    std::vector<size_t> order(items_.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [this](size_t a, size_t b) { return items_[a].place.y < items_[b].place.y; });
    std::vector<std::vector<size_t>> rows;
    for (size_t i : order) {
        const bool joins = !rows.empty() && items_[i].isSingleLine && items_[rows.back()[0]].isSingleLine &&
                           items_[i].place.y - items_[rows.back()[0]].place.y <= kRowSlack;
        if (joins) {
            rows.back().push_back(i);
        } else {
            rows.push_back({i});
        }
    }
    return rows;
}

void DialogLayout::PlaceRows(int templateHeight) {
    struct PlacedRow {
        int top, bottom;   // dialog units
        int pixelsBottom;  //
    };
    height_ = ToY(templateHeight);
    std::vector<PlacedRow> above;
    for (const std::vector<size_t>& row : Rows()) {
        int top = items_[row[0]].place.y;
        int bottom = top;
        for (size_t i : row) {
            top = std::min(top, items_[i].place.y);
            bottom = std::max(bottom, items_[i].place.y + items_[i].place.height);
        }
        int y = ToY(top);
        for (const PlacedRow& other : above) {
            if (other.bottom <= top) y = std::max(y, other.pixelsBottom + ToY(top - other.bottom));
        }
        int height = ToY(bottom - top);
        for (size_t i : row) {
            if (items_[i].heightFor) height = std::max(height, items_[i].heightFor(places_[i].width));
        }
        for (size_t i : row) {
            places_[i].y = y;
            places_[i].height = height;
        }
        above.push_back({top, bottom, y + height});
        height_ = std::max(height_, y + height + ToY(kMargin));
    }
    for (size_t i = 0; i < items_.size(); ++i) {
        if (items_[i].anchor != Anchor::kGrowBoth) continue;
        const DialogUnits& mine = items_[i].place;
        const int bottom = height_ - ToY(templateHeight - mine.y - mine.height);
        places_[i].height = std::max(places_[i].height, bottom - places_[i].y);
    }
}

void DialogLayout::FindSmallest() {
    smallestWidth_ = 0;
    smallestHeight_ = 0;
    int spareWidth = width_;
    int spareHeight = height_;
    for (size_t i = 0; i < items_.size(); ++i) {
        const bool growsHigh = items_[i].anchor == Anchor::kGrowBoth;
        if (GrowsWide(items_[i])) {
            spareWidth = std::min(spareWidth, std::max(places_[i].width - items_[i].smallestWidth, 0));
        } else if (items_[i].anchor == Anchor::kStay) {
            smallestWidth_ = std::max(smallestWidth_, places_[i].Right() + ToX(kMargin));
        }
        if (growsHigh) {
            spareHeight = std::min(spareHeight, std::max(places_[i].height - items_[i].smallestHeight, 0));
        } else {
            smallestHeight_ = std::max(smallestHeight_, places_[i].Bottom() + ToY(kMargin));
        }
    }
    smallestWidth_ = std::max(smallestWidth_, width_ - spareWidth);
    smallestHeight_ = std::max(smallestHeight_, height_ - spareHeight);
}

PixelRect DialogLayout::PlaceAt(size_t item, int width, int height) const {
    PixelRect place = places_[item];
    switch (items_[item].anchor) {
        case Anchor::kStay:
            break;
        case Anchor::kMoveRight:
            place.x += width - width_;
            break;
        case Anchor::kGrowBoth:
            place.height += height - height_;
            [[fallthrough]];
        case Anchor::kGrowWidth:
            place.width += width - width_;
            break;
    }
    return place;
}

}  // namespace kinsort
