#include "ui/qt/QtUserInterface.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <array>
#include <span>

#include "ui/qt/PlainText.h"
#include "ui/qt/QtText.h"

namespace kinsort {
namespace {

// A message with more lines than this is shown as a text that scrolls.
constexpr qsizetype kMaxPlainLines = 25;
constexpr qsizetype kMaxPlainUnits = 2000;

struct ButtonRow {
    MessageAnswer answer;
    WindowText text;
    QMessageBox::ButtonRole role;
};

constexpr ButtonRow kOkButton = {MessageAnswer::kOk, WindowText::kOk, QMessageBox::AcceptRole};
constexpr ButtonRow kCancelButton = {MessageAnswer::kCancel, WindowText::kCancel, QMessageBox::RejectRole};
constexpr ButtonRow kYesButton = {MessageAnswer::kYes, WindowText::kYes, QMessageBox::YesRole};
constexpr ButtonRow kNoButton = {MessageAnswer::kNo, WindowText::kNo, QMessageBox::NoRole};
constexpr ButtonRow kRetryButton = {MessageAnswer::kRetry, WindowText::kRetry, QMessageBox::AcceptRole};

constexpr std::array kOkSet = {kOkButton};
constexpr std::array kOkCancelSet = {kOkButton, kCancelButton};
constexpr std::array kAbortRetryIgnoreSet = {
    ButtonRow{MessageAnswer::kAbort, WindowText::kAbort, QMessageBox::RejectRole}, kRetryButton,
    ButtonRow{MessageAnswer::kIgnore, WindowText::kIgnore, QMessageBox::AcceptRole}};
constexpr std::array kYesNoCancelSet = {kYesButton, kNoButton, kCancelButton};
constexpr std::array kYesNoSet = {kYesButton, kNoButton};
constexpr std::array kRetryCancelSet = {kRetryButton, kCancelButton};
constexpr std::array kCancelTryContinueSet = {
    kCancelButton, ButtonRow{MessageAnswer::kTryAgain, WindowText::kTryAgain, QMessageBox::AcceptRole},
    ButtonRow{MessageAnswer::kContinue, WindowText::kContinue, QMessageBox::AcceptRole}};

struct ButtonSet {
    MessageButtons buttons;
    std::span<const ButtonRow> rows;  // from the left
    size_t onClosing;                 // the row that closing the box stands for
};

constexpr std::array kButtonSets = {
    ButtonSet{MessageButtons::kOk, kOkSet, 0},
    ButtonSet{MessageButtons::kOkCancel, kOkCancelSet, 1},
    ButtonSet{MessageButtons::kAbortRetryIgnore, kAbortRetryIgnoreSet, 0},
    ButtonSet{MessageButtons::kYesNoCancel, kYesNoCancelSet, 2},
    ButtonSet{MessageButtons::kYesNo, kYesNoSet, 1},
    ButtonSet{MessageButtons::kRetryCancel, kRetryCancelSet, 1},
    ButtonSet{MessageButtons::kCancelTryContinue, kCancelTryContinueSet, 0},
};

const ButtonSet& SetOf(MessageButtons buttons) {
    for (const ButtonSet& set : kButtonSets) {
        if (set.buttons == buttons) return set;
    }
    return kButtonSets[0];
}

QMessageBox::Icon IconOf(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::kError:
            return QMessageBox::Critical;
        case MessageIcon::kQuestion:
            return QMessageBox::Question;
        case MessageIcon::kWarning:
            return QMessageBox::Warning;
        case MessageIcon::kInformation:
            return QMessageBox::Information;
        case MessageIcon::kNone:
            break;
    }
    return QMessageBox::NoIcon;
}

QString TitleOr(const std::u16string& title) {
    return title.empty() ? QGuiApplication::applicationDisplayName() : ToQString(title);
}

void SetBoxText(QMessageBox& box, QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    box.setTextFormat(Qt::PlainText);  // a file name is never mark-up
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    if (text.size() <= kMaxPlainUnits && text.count(QLatin1Char('\n')) < kMaxPlainLines) {
        box.setText(text);
        return;
    }
    box.setText(text.section(QLatin1Char('\n'), 0, 4).left(400) + QStringLiteral(" …"));
    box.setDetailedText(text);
}

ScreenRectangle ToRectangle(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

}  // namespace

void QtUserInterface::SetMainWindow(QWidget* window, WindowHandle handle) {
    mainWindow_ = window;
    mainHandle_ = handle;
}

QWidget* QtUserInterface::OwnerFor(WindowHandle owner) const {
    QWidget* const active = QApplication::activeModalWidget();
    if (active != nullptr) return active;
    if (owner != kNoWindow && owner == mainHandle_) return mainWindow_;
    return mainWindow_ != nullptr && mainWindow_->isVisible() ? mainWindow_ : nullptr;
}

MessageAnswer QtUserInterface::ShowMessage(const MessageRequest& request) {
    const ButtonSet& set = SetOf(request.buttons);
    QMessageBox box(OwnerFor(request.owner));
    box.setWindowTitle(TitleOr(request.title));
    box.setIcon(IconOf(request.icon));
    SetBoxText(box, ToQString(request.text));
    std::vector<QPushButton*> buttons;
    for (const ButtonRow& row : set.rows)
        buttons.push_back(box.addButton(texts_.Say(row.text), row.role));
    box.setDefaultButton(buttons[request.defaultButton < buttons.size() ? request.defaultButton : 0]);
    box.setEscapeButton(buttons[set.onClosing]);
    box.exec();
    for (size_t i = 0; i < buttons.size(); ++i) {
        if (box.clickedButton() == buttons[i]) return set.rows[i].answer;
    }
    return set.rows[set.onClosing].answer;
}

std::optional<size_t> QtUserInterface::ChooseOne(const ChoiceRequest& request) {
    QDialog dialog(OwnerFor(request.owner));
    dialog.setWindowTitle(TitleOr(request.title));
    auto* const layout = new QVBoxLayout(&dialog);
    QLabel* const label = PlainLabel(ToQString(request.instruction));
    label->setWordWrap(true);
    label->setVisible(!request.instruction.empty());
    auto* const list = new QListWidget;
    for (const std::u16string& choice : request.choices)
        list->addItem(ToQString(choice));
    list->setCurrentRow(0);
    list->setAccessibleName(label->text());
    list->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(texts_.Say(WindowText::kOk), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(texts_.Say(WindowText::kCancel), QDialogButtonBox::RejectRole);
    layout->addWidget(label);
    layout->addWidget(list);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    QObject::connect(list, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
    list->setFocus();
    if (dialog.exec() != QDialog::Accepted || list->currentRow() < 0) return std::nullopt;
    return static_cast<size_t>(list->currentRow());
}

std::optional<std::u16string> QtUserInterface::BrowseForFolder(const FolderRequest& request) {
    QFileDialog dialog(OwnerFor(request.owner), TitleOr(request.title));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setLabelText(QFileDialog::Accept, texts_.Say(WindowText::kOk));
    dialog.setLabelText(QFileDialog::Reject, texts_.Say(WindowText::kCancel));
    if (!request.initialFolder.empty()) {
        const Result<std::string> stored = codec_.PathToStored(request.initialFolder);
        const QString folder = stored.ok() ? QFile::decodeName(stored.value().c_str()) : QString();
        if (QFileInfo(folder).isDir()) dialog.setDirectory(folder);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return codec_.PathToInner(QFile::encodeName(dialog.selectedFiles().first()).toStdString());
}

std::u16string QtUserInterface::GetClipboardText() {
    return FromQString(QGuiApplication::clipboard()->text());
}

void QtUserInterface::SetClipboardText(std::u16string_view text) {
    QGuiApplication::clipboard()->setText(ToQString(text));
}

bool QtUserInterface::IsKeyDown(ModifierKey key) {
    const Qt::KeyboardModifiers down = QGuiApplication::queryKeyboardModifiers();
    switch (key) {
        case ModifierKey::kShift:
            return down.testFlag(Qt::ShiftModifier);
        case ModifierKey::kControl:
            return down.testFlag(Qt::ControlModifier);
        case ModifierKey::kAlt:
            return down.testFlag(Qt::AltModifier);
    }
    return false;
}

void QtUserInterface::BringToForeground(WindowHandle window) {
    if (window == kNoWindow || window != MainWindow()) return;
    mainWindow_->raise();
    mainWindow_->activateWindow();
}

std::optional<ScreenRectangle> QtUserInterface::WindowRectangle(WindowHandle window) {
    if (window == kNoWindow || window != MainWindow()) return std::nullopt;
    return ToRectangle(mainWindow_->frameGeometry());
}

std::optional<ScreenRectangle> QtUserInterface::WorkArea(WindowHandle window) {
    const bool isOwn = window != kNoWindow && window == MainWindow();
    const QScreen* const screen = isOwn ? mainWindow_->screen() : QGuiApplication::primaryScreen();
    if (screen == nullptr) return std::nullopt;
    return ToRectangle(screen->availableGeometry());
}

std::vector<ScreenRectangle> QtUserInterface::Screens() {
    std::vector<ScreenRectangle> screens;
    const QScreen* const primary = QGuiApplication::primaryScreen();
    if (primary != nullptr) screens.push_back(ToRectangle(primary->geometry()));
    for (const QScreen* screen : QGuiApplication::screens())
        if (screen != primary) screens.push_back(ToRectangle(screen->geometry()));
    return screens;
}

}  // namespace kinsort
