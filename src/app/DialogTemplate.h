// Dialog 102 as data: every control with its id, window class, text, place and behaviour. The view builds its widgets
// from this table, the export of texts walks it, and the presenter knows the controls by these ids.
//
// To add a control: give it an id, add a row where it stands in the tab order, and handle the id in KinsortDlg.cpp when
// it is a button. Texts are the Japanese ones; other languages come from the translation files.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kinsort {

// The caption of message boxes and of questions.
inline constexpr std::u16string_view kProgramTitle = u"Kinsort";

enum ControlId : int {
    kIdOk = 1,
    kIdCancel = 2,
    kIdBrowse = 1100,
    kIdFavorites = 1101,
    kIdOtherTabs = 1102,
    kIdList = 1200,
    kIdCopy = 1224,
    kIdMove = 1225,
    kIdCount = 1350,
    kIdFolder = 1410,
    kIdSearchAgain = 1603,
    kIdDeleteNoCandidate = 1604,
    kIdDeleteSelected = 1605,
    kIdConfirm = 1606,
    kIdFolderLabel = 1900,
    kIdModeLabel = 1901,
    kIdListLabel = 1902,
    kIdSearchHint = 1903,
};

enum class ControlKind : uint8_t {
    kStatic,             // labels the control in the next row when that is no static itself
    kComboBoxEx,         // drop-down with an edit field: CHistryComboBoxEx
    kPushButton,         //
    kDefaultPushButton,  // pressed by Enter
    kRadioButton,        // checks itself and unchecks the others of its group
    kCheckBox,           // toggles itself
    kListView,           // report, single selection that stays visible without the focus: CCmdListCtrl
};

// The name of the window class, as in files of dialog texts.
constexpr std::u16string_view WindowClassOf(ControlKind kind) {
    switch (kind) {
        case ControlKind::kStatic:
            return u"Static";
        case ControlKind::kComboBoxEx:
            return u"ComboBoxEx32";
        case ControlKind::kListView:
            return u"SysListView32";
        case ControlKind::kPushButton:
        case ControlKind::kDefaultPushButton:
        case ControlKind::kRadioButton:
        case ControlKind::kCheckBox:
            break;
    }
    return u"Button";
}

// What happens to a control when the dialog is resized.
enum class Anchor : uint8_t {
    kStay,       // keeps its place and size
    kGrowWidth,  // its right edge moves with the dialog's
    kGrowBoth,   // its right and bottom edges do
    kMoveRight,  // keeps its size and its distance from the right edge
};

// Bits of DialogControl::styles.
constexpr uint8_t kStyleGroupStart = 1;  // first radio button of its group
constexpr uint8_t kStyleDisabled = 2;    // until the presenter enables it
constexpr uint8_t kStyleMultiLine = 4;   // a button whose text may take several lines; "\n" is a forced break
constexpr uint8_t kStyleTabStop = 8;     // reached by Tab; a radio group is reached at its checked button

struct DialogUnits {  // a quarter of the average character's width, an eighth of its height
    int x, y, width, height;
};

struct DialogControl {
    int id;
    ControlKind kind;
    std::u16string_view text;  // "&" marks the accelerator
    DialogUnits place;         // of the client area; of a drop-down with its list open
    Anchor anchor;
    uint8_t styles;
};

struct DialogTemplate {
    int id;
    std::u16string_view title;
    std::u16string_view font;
    int fontPoints;
    int width, height;  // dialog units
};

// Caption, system menu, sizing frame, help on F1, files may be dropped anywhere.
inline constexpr DialogTemplate kDialogTemplate = {102, u"似ている名前のフォルダーへ分類", u"MS Shell Dlg", 9, 315,
                                                   303};

// The order is that of the windows: tab order and order of the text export.
inline constexpr std::array<DialogControl, 18> kDialogControls = {{
    {kIdFolderLabel, ControlKind::kStatic, u"似ている名前の候補を探すフォルダー", {8, 7, 140, 8}, Anchor::kStay, 0},
    {kIdFolder, ControlKind::kComboBoxEx, u"", {7, 18, 176, 164}, Anchor::kGrowWidth, kStyleTabStop},
    {kIdBrowse, ControlKind::kPushButton, u"...", {184, 19, 14, 12}, Anchor::kMoveRight, kStyleTabStop},
    {kIdOtherTabs,
     ControlKind::kPushButton,
     u"他のタブのフォルダー(&T)",
     {50, 33, 80, 14},
     Anchor::kStay,
     kStyleTabStop},
    {kIdFavorites, ControlKind::kPushButton, u"登録フォルダー(&X)", {133, 33, 65, 14}, Anchor::kStay, kStyleTabStop},
    {kIdModeLabel, ControlKind::kStatic, u"操作モード", {8, 53, 37, 8}, Anchor::kStay, 0},
    {kIdCopy,
     ControlKind::kRadioButton,
     u"コピー(&P)",
     {51, 53, 41, 10},
     Anchor::kStay,
     kStyleGroupStart | kStyleTabStop},
    {kIdMove, ControlKind::kRadioButton, u"移動(&M)", {100, 53, 41, 10}, Anchor::kStay, 0},
    {kIdConfirm, ControlKind::kCheckBox, u"確認ダイアログを表示する", {156, 53, 95, 10}, Anchor::kStay, kStyleTabStop},
    {kIdSearchAgain,
     ControlKind::kPushButton,
     u"似ている名前の候補フォルダの再検索(&S)",
     {45, 72, 141, 14},
     Anchor::kStay,
     kStyleDisabled | kStyleTabStop},
    {kIdListLabel, ControlKind::kStatic, u"選択したファイル", {7, 90, 49, 8}, Anchor::kStay, 0},
    {kIdCount, ControlKind::kStatic, u"(9999999999)", {64, 90, 136, 8}, Anchor::kStay, 0},
    {kIdList, ControlKind::kListView, u"", {7, 101, 225, 195}, Anchor::kGrowBoth, kStyleTabStop},
    {kIdDeleteSelected,
     ControlKind::kPushButton,
     u"選択アイテムを削除(&E)",
     {238, 116, 70, 14},
     Anchor::kMoveRight,
     kStyleDisabled | kStyleTabStop},
    {kIdDeleteNoCandidate,
     ControlKind::kPushButton,
     u"候補フォルダが見つからない項目を一括削除",
     {238, 135, 70, 27},
     Anchor::kMoveRight,
     kStyleDisabled | kStyleMultiLine | kStyleTabStop},
    {kIdOk,
     ControlKind::kDefaultPushButton,
     u"処理開始\n(アンドゥ可能)(&O)",
     {238, 175, 70, 23},
     Anchor::kMoveRight,
     kStyleDisabled | kStyleMultiLine | kStyleTabStop},
    {kIdCancel, ControlKind::kPushButton, u"Cancel(&C)", {238, 201, 70, 14}, Anchor::kMoveRight, kStyleTabStop},
    {kIdSearchHint,
     ControlKind::kStatic,
     u"バックグラウンドでフォルダーなどを作成した場合に再検索ボタンを押してください",
     {237, 233, 71, 46},
     Anchor::kMoveRight,
     0},
}};

// The row of a control; null for an id that the dialog does not have.
constexpr const DialogControl* FindControl(int id) {
    for (const DialogControl& control : kDialogControls) {
        if (control.id == id) return &control;
    }
    return nullptr;
}

}  // namespace kinsort
