// The texts of a dialog, written to a file for a translator to edit and read back from it. The file belongs to one
// dialog of one program in one language: "<program's folder><suffix>\<program>\<dialog>.txt", UTF-16LE, CR LF:
//
//     似ている名前のフォルダーへ分類               the title: the first line without a TAB
//     1225 TAB Button TAB 移動(&M)                control, window class, text; "\n", "\r", "\t" for line feed, CR, TAB
//     1500 TAB ComboBoxStart                      the list of a combo box begins
//     1500 TAB ComboBox TAB first                 one of its items, as it is
//     // a comment
//     EOF                                         whatever follows does not count
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "framework/Settings.h"
#include "framework/VelFolders.h"
#include "platform/FileSystem.h"

namespace kinsort {

struct DialogControlTexts {
    int number = 0;
    std::u16string className;           // of the window: "Button", "Static", "ComboBox"
    std::u16string text;                // with "&" before the accelerator
    std::vector<std::u16string> items;  // of a ComboBox
};

// A dialog whose controls exist. A number that no control has, or not one of that kind, has no effect.
class DialogTextTarget {
  public:
    virtual ~DialogTextTarget() = default;

    virtual std::u16string Title() = 0;
    virtual void SetTitle(std::u16string_view title) = 0;
    // In the order of the windows.
    virtual std::vector<DialogControlTexts> Controls() = 0;
    virtual void SetControlText(int number, std::u16string_view text) = 0;
    virtual void ClearComboBox(int number) = 0;
    virtual void AddComboBoxItem(int number, std::u16string_view item) = 0;
};

// References outlive the calls.
struct DialogTextContext {
    Settings& settings;
    VelFolders& folders;
    FileSystem& files;
};

// What a dialog does at its start: in another language than the one it was made in, and when the export is on, it shows
// the texts of the file, and writes the file when there is none.
void TranslateDialog(const DialogTextContext& context, DialogTextTarget& dialog, int dialogNumber);

// Puts the texts of the file into the dialog; lines that say nothing are skipped. 1 when the file was read, 0 when it
// could not be opened.
int ApplyDialogTranslation(const DialogTextContext& context, DialogTextTarget& dialog, int dialogNumber,
                           std::u16string_view languageSuffix);

// Writes the dialog's texts, without those of edit fields, lists and tabs, in place of a file that may be there. The
// folder is made. Tells nobody when it fails, and leaves at most an empty file then.
void ExportDialogTexts(const DialogTextContext& context, DialogTextTarget& dialog, int dialogNumber,
                       std::u16string_view languageSuffix);

}  // namespace kinsort
