#include "framework/DialogTexts.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <span>

#include "framework/Paths.h"
#include "framework/TextFile.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

constexpr size_t kMaxTextLength = 32'766;
constexpr size_t kMaxClassLength = 1'024;

constexpr std::u16string_view kComboBox = u"ComboBox";
constexpr std::u16string_view kComboBoxStart = u"ComboBoxStart";

// To add one: a window class whose text is the user's, not the dialog's.
constexpr std::u16string_view kClassesWithoutText[] = {u"SysListView32", u"SysTabControl32", u"Edit"};

struct Escape {
    std::u16string_view character;
    std::u16string_view written;
};
// To add one: a character that would break a line, and the two that stand for it.
constexpr Escape kEscapes[] = {{u"\n", u"\\n"}, {u"\r", u"\\r"}, {u"\t", u"\\t"}};

std::u16string WithEscapes(std::u16string text) {
    for (const Escape& escape : kEscapes)
        text = Replace(text, escape.character, escape.written);
    return text;
}

std::u16string WithoutEscapes(std::u16string text) {
    for (const Escape& escape : kEscapes)
        text = Replace(text, escape.written, escape.character);
    return text;
}

std::u16string DialogTextFolder(VelFolders& folders, std::u16string_view languageSuffix) {
    const PathParts program = SplitPath(folders.GetProgramFile());
    return (program.drive + program.folder).append(languageSuffix).append(u"\\").append(program.baseName);
}

std::u16string DialogTextFile(VelFolders& folders, std::u16string_view languageSuffix, int dialogNumber) {
    return DialogTextFolder(folders, languageSuffix) + u"\\" + FormatInteger(dialogNumber) + u".txt";
}

std::u16string LinesOf(const DialogControlTexts& control) {
    const std::u16string start = FormatInteger(control.number) + u"\t";
    const std::u16string className = control.className.substr(0, kMaxClassLength);
    std::u16string lines;
    if (className == kComboBox) {
        lines.append(start).append(kComboBoxStart).append(u"\r\n");
        for (const std::u16string& item : control.items)
            lines.append(start).append(kComboBox).append(u"\t").append(item).append(u"\r\n");
        return lines;
    }
    const auto isThis = [&](std::u16string_view other) { return other == className; };
    if (control.text.empty() || std::any_of(std::begin(kClassesWithoutText), std::end(kClassesWithoutText), isThis)) {
        return lines;
    }
    const std::u16string text = WithEscapes(control.text.substr(0, kMaxTextLength));
    return lines.append(start).append(className).append(u"\t").append(text).append(u"\r\n");
}

Status WriteWhole(FileSystem& files, std::u16string_view path, std::u16string_view text) {
    Result<std::unique_ptr<OutputFile>> file = files.OpenOutput(ToLongPathForm(path), OutputStart::kEmpty);
    if (!file.ok()) return file.status();
    const Status written = (*file)->Write(std::as_bytes(std::span(text)));
    const Status closed = (*file)->Close();
    return written.ok() ? closed : written;
}

void ApplyLine(DialogTextTarget& dialog, std::u16string_view line, bool& hasTitle) {
    const std::vector<std::u16string> fields = Split(line, u'\t');
    if (fields.size() == 1 && !hasTitle) {
        dialog.SetTitle(fields[0]);
        hasTitle = true;
    }
    if (fields.size() != 2 && fields.size() != 3) return;
    const int32_t number = ReadInt32(fields[0]);
    if (fields.size() == 2) {
        if (fields[1] == kComboBoxStart) dialog.ClearComboBox(number);
    } else if (fields[1] == kComboBox) {
        dialog.AddComboBoxItem(number, fields[2]);
    } else {
        dialog.SetControlText(number, WithoutEscapes(fields[2]));
    }
}

}  // namespace

void TranslateDialog(const DialogTextContext& context, DialogTextTarget& dialog, int dialogNumber) {
    const std::u16string& suffix = context.settings.LanguageSuffix();
    if (suffix == kDefaultLanguage && !context.settings.IsTextExportOn()) return;
    if (ApplyDialogTranslation(context, dialog, dialogNumber, suffix) == 0) {
        ExportDialogTexts(context, dialog, dialogNumber, suffix);
    }
}

int ApplyDialogTranslation(const DialogTextContext& context, DialogTextTarget& dialog, int dialogNumber,
                           std::u16string_view languageSuffix) {
    CTextFile file(context.files);
    if (file.Open(DialogTextFile(context.folders, languageSuffix, dialogNumber)) == 0) return 0;
    bool hasTitle = false;
    for (std::u16string_view read; file.ReadLine(read);) {
        const std::u16string line = Trim(Replace(read, u"\uFEFF", u""));
        if (line == u"EOF") break;
        if (!line.starts_with(u"//")) ApplyLine(dialog, line, hasTitle);
    }
    return 1;
}

void ExportDialogTexts(const DialogTextContext& context, DialogTextTarget& dialog, int dialogNumber,
                       std::u16string_view languageSuffix) {
    // A folder that cannot be made shows in the file that cannot be.
    static_cast<void>(CreateFolderPath(context.files, DialogTextFolder(context.folders, languageSuffix)));
    std::u16string text = u"\uFEFF" + dialog.Title().substr(0, kMaxTextLength) + u"\r\n";
    for (const DialogControlTexts& control : dialog.Controls())
        text += LinesOf(control);
    const std::u16string path = DialogTextFile(context.folders, languageSuffix, dialogNumber);
    // Half the texts would be taken for a translation at the next start; none of them changes nothing.
    if (!WriteWhole(context.files, path, text).ok()) static_cast<void>(WriteWhole(context.files, path, u""));
}

}  // namespace kinsort
