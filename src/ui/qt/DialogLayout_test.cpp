#include "ui/qt/DialogLayout.h"

#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kinsort {
namespace {

constexpr BaseUnits kUnits = {8, 16};  // one dialog unit is two pixels both ways

std::vector<LayoutItem> TemplateItems() {
    std::vector<LayoutItem> items;
    for (const DialogControl& control : kDialogControls) {
        LayoutItem item;
        item.place = control.place;
        if (control.kind == ControlKind::kComboBoxEx) item.place.height = 12;
        item.anchor = control.anchor;
        item.isSingleLine = control.place.height < 16 || control.kind == ControlKind::kComboBoxEx;
        item.smallestWidth = 100;
        item.smallestHeight = 60;
        items.push_back(item);
    }
    return items;
}

size_t IndexOf(int id) {
    for (size_t i = 0; i < kDialogControls.size(); ++i) {
        if (kDialogControls[i].id == id) return i;
    }
    return kDialogControls.size();
}

DialogLayout LayOut(std::vector<LayoutItem> items) {
    return DialogLayout(std::move(items), kUnits, kDialogTemplate.width, kDialogTemplate.height);
}

bool Overlap(const PixelRect& a, const PixelRect& b) {
    return a.x < b.Right() && b.x < a.Right() && a.y < b.Bottom() && b.y < a.Bottom();
}

// Nothing on top of anything else, nothing outside.
void ExpectSound(const DialogLayout& layout, int width, int height, const std::string& what) {
    for (size_t i = 0; i < kDialogControls.size(); ++i) {
        const PixelRect a = layout.PlaceAt(i, width, height);
        EXPECT_TRUE(a.x >= 0 && a.y >= 0 && a.Right() <= width && a.Bottom() <= height)
            << what << ": control " << kDialogControls[i].id << " leaves the dialog";
        for (size_t j = i + 1; j < kDialogControls.size(); ++j) {
            EXPECT_FALSE(Overlap(a, layout.PlaceAt(j, width, height)))
                << what << ": controls " << kDialogControls[i].id << " and " << kDialogControls[j].id;
        }
    }
}

TEST(DialogLayout, WhereEverythingFitsTheTemplateIsScaled) {
    const DialogLayout layout = LayOut(TemplateItems());
    EXPECT_EQ(layout.Width(), 630);
    EXPECT_EQ(layout.Height(), 606);
    const auto at = [&](int id) { return layout.PlaceAt(IndexOf(id), 630, 606); };
    EXPECT_EQ(at(kIdFolder), (PixelRect{14, 36, 352, 26})) << "as high as its row";
    EXPECT_EQ(at(kIdBrowse), (PixelRect{368, 36, 28, 26}));
    EXPECT_EQ(at(kIdList), (PixelRect{14, 202, 450, 390}));
    EXPECT_EQ(at(kIdOk), (PixelRect{474, 350, 142, 46})) << "left edges one unit apart are one";
    ExpectSound(layout, 630, 606, "the template");
}

TEST(DialogLayout, AnchorsFollowTheSize) {
    const DialogLayout layout = LayOut(TemplateItems());
    struct Row {
        int id;
        int moveX, growX, growY;  // for a dialog that is 100 wider and 40 higher
    };
    for (const Row& row : {Row{kIdFolder, 0, 100, 0},
                           {kIdList, 0, 100, 40},
                           {kIdBrowse, 100, 0, 0},
                           {kIdOk, 100, 0, 0},
                           {kIdSearchHint, 100, 0, 0},
                           {kIdOtherTabs, 0, 0, 0},
                           {kIdCount, 0, 0, 0}}) {
        const PixelRect before = layout.PlaceAt(IndexOf(row.id), 630, 606);
        const PixelRect after = layout.PlaceAt(IndexOf(row.id), 730, 646);
        EXPECT_EQ(after,
                  (PixelRect{before.x + row.moveX, before.y, before.width + row.growX, before.height + row.growY}))
            << row.id;
    }
    ExpectSound(layout, layout.SmallestWidth(), layout.SmallestHeight(), "the smallest size");
    EXPECT_LT(layout.SmallestHeight(), layout.Height());
}

TEST(DialogLayout, WhatGrowsPushesItsNeighbours) {
    std::vector<LayoutItem> items = TemplateItems();
    items[IndexOf(kIdCopy)].neededWidth = 82 + 50;
    items[IndexOf(kIdDeleteSelected)].neededWidth = 140 + 30;
    items[IndexOf(kIdConfirm)].heightFor = [](int) { return 20 + 10; };
    items[IndexOf(kIdSearchHint)].heightFor = [](int width) { return width == 170 ? 92 + 200 : 0; };
    const DialogLayout layout = LayOut(items);
    const auto at = [&](int id) { return layout.PlaceAt(IndexOf(id), layout.Width(), layout.Height()); };
    EXPECT_EQ(at(kIdMove).x, 198 + 50);
    EXPECT_EQ(at(kIdMove).height, 30) << "a row is as high as its highest";
    EXPECT_EQ(at(kIdSearchAgain).y, 144 + 10) << "the rows below move on";
    EXPECT_EQ(at(kIdOk).width, 170) << "buttons under each other stay equally wide";
    EXPECT_EQ(layout.Width(), 658);
    EXPECT_EQ(at(kIdFolder).width, 352 + 28) << "what grows with the dialog takes the room";
    EXPECT_EQ(at(kIdSearchHint).height, 292) << "the height is asked for at the width that was found";
    EXPECT_EQ(at(kIdList).Bottom(), layout.Height() - 14);
    ExpectSound(layout, layout.Width(), layout.Height(), "grown");
}

TEST(DialogLayout, NothingOverlapsHoweverMuchGrows) {
    std::mt19937 random(20);
    for (int round = 0; round < 300; ++round) {
        std::vector<LayoutItem> items = TemplateItems();
        for (LayoutItem& item : items) {
            if (random() % 3 == 0) item.neededWidth = static_cast<int>(random() % 600);
            const int height = random() % 3 == 0 ? static_cast<int>(random() % 150) : 0;
            item.heightFor = [height](int) { return height; };
        }
        const DialogLayout layout = LayOut(items);
        const std::string what = "round " + std::to_string(round);
        ExpectSound(layout, layout.Width(), layout.Height(), what);
        ExpectSound(layout, layout.SmallestWidth(), layout.SmallestHeight(), what + ", smallest");
        if (testing::Test::HasFailure()) return;
    }
}

}  // namespace
}  // namespace kinsort
