#include "ui/qt/FolderBox.h"

#include <QAccessible>
#include <QDropEvent>
#include <QEvent>
#include <QFontMetricsF>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <iterator>

#include "ui/qt/DroppedPaths.h"
#include "ui/qt/QtText.h"

namespace kinsort {

namespace {

constexpr int kShownItems = 20;

struct KeyName {
    int toolkitKey;
    BoxKey key;
};

constexpr KeyName kKeys[] = {
    {Qt::Key_Backspace, BoxKey::kBackspace},
    {Qt::Key_Tab, BoxKey::kTab},
    {Qt::Key_Backtab, BoxKey::kTab},
    {Qt::Key_Return, BoxKey::kEnter},
    {Qt::Key_Enter, BoxKey::kEnter},
    {Qt::Key_Escape, BoxKey::kEscape},
    {Qt::Key_PageUp, BoxKey::kPageUp},
    {Qt::Key_PageDown, BoxKey::kPageDown},
    {Qt::Key_Up, BoxKey::kUp},
    {Qt::Key_Down, BoxKey::kDown},
    {Qt::Key_Space, BoxKey::kSpace},
    {Qt::Key_H, BoxKey::kH},
    {Qt::Key_J, BoxKey::kJ},
    {Qt::Key_K, BoxKey::kK},
    {Qt::Key_L, BoxKey::kL},
};

BoxKeyPress PressOf(const QKeyEvent& event) {
    const auto* found = std::find_if(std::begin(kKeys), std::end(kKeys),
                                     [&](const KeyName& name) { return name.toolkitKey == event.key(); });
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    return {.key = found == std::end(kKeys) ? BoxKey::kOther : found->key,
            .shift = event.key() == Qt::Key_Backtab || modifiers.testFlag(Qt::ShiftModifier),
            .ctrl = modifiers.testFlag(Qt::ControlModifier),
            .alt = modifiers.testFlag(Qt::AltModifier) || modifiers.testFlag(Qt::MetaModifier)};
}

// Keys that another part of the window may have as a shortcut, but that mean something here.
bool IsOurShortcut(const BoxKeyPress& press) {
    return press.ctrl && !press.alt && press.key != BoxKey::kOther;
}

// What opens and closes the list of every combo box of the desktop.
bool IsListToggle(const QKeyEvent& event) {
    const bool isAlt = event.modifiers().testFlag(Qt::AltModifier);
    return event.key() == Qt::Key_F4 || (isAlt && (event.key() == Qt::Key_Up || event.key() == Qt::Key_Down));
}

}  // namespace

FolderBox::FolderBox(const PathCodec& codec, QWidget* parent)
    : QComboBox(parent), codec_(codec), list_(new QListView(this)) {
    setEditable(true);
    setInsertPolicy(NoInsert);
    setCompleter(nullptr);
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    lineEdit()->installEventFilter(this);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] {
        if (control_ != nullptr) control_->OnEdit();
    });

    list_->setWindowFlag(Qt::Popup);
    list_->setFocusProxy(this);
    list_->setModel(&items_);
    list_->setUniformItemSizes(true);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setTextElideMode(Qt::ElideMiddle);
    list_->installEventFilter(this);
    connect(list_, &QListView::clicked, this, &FolderBox::OnClicked);
}

void FolderBox::Attach(CComplementComboBox* control) {
    control_ = nullptr;
    CloseList();
    control_ = control;
}

std::u16string FolderBox::Text() const {
    return FromQString(lineEdit()->text());
}

void FolderBox::SetText(std::u16string_view text) {
    lineEdit()->setText(ToQString(text));
}

TextSelection FolderBox::Selection() const {
    if (!lineEdit()->hasSelectedText()) {
        const auto caret = static_cast<size_t>(lineEdit()->cursorPosition());
        return {caret, caret};
    }
    return {static_cast<size_t>(lineEdit()->selectionStart()), static_cast<size_t>(lineEdit()->selectionEnd())};
}

void FolderBox::SetSelection(TextSelection selection) {
    const auto start = static_cast<int>(selection.start);
    lineEdit()->setCursorPosition(start);
    if (selection.end > selection.start) {
        lineEdit()->setSelection(start, static_cast<int>(selection.end - selection.start));
    } else {
        lineEdit()->deselect();
    }
}

void FolderBox::OpenList() {
    if (control_ == nullptr || IsListOpen()) return;
    control_->OnDropDown();
    if (ItemCount() == 0) return;
    PlaceList();
    list_->setAccessibleName(accessibleName());
    list_->show();
    if (const auto selected = SelectedItem()) SelectItem(*selected);
}

void FolderBox::ResetItems() {
    items_.setStringList({});
}

void FolderBox::AddItems(const std::vector<std::u16string>& texts) {
    QStringList all = items_.stringList();
    all.reserve(all.size() + static_cast<qsizetype>(texts.size()));
    for (const std::u16string& text : texts)
        all.append(ToQString(text));
    items_.setStringList(all);
}

size_t FolderBox::ItemCount() const {
    return static_cast<size_t>(items_.rowCount());
}

std::optional<size_t> FolderBox::SelectedItem() const {
    const QModelIndex current = list_->currentIndex();
    return current.isValid() ? std::optional(static_cast<size_t>(current.row())) : std::nullopt;
}

void FolderBox::SelectItem(size_t index) {
    const QModelIndex item = items_.index(static_cast<int>(index));
    list_->setCurrentIndex(item);
    list_->scrollTo(item);
    if (!QAccessible::isActive() || !IsListOpen()) return;
    QAccessibleEvent read(list_, QAccessible::Focus);
    read.setChild(static_cast<int>(index));
    QAccessible::updateAccessibility(&read);
}

int FolderBox::ClientWidth() const {
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, list_) + 1;
    return width() - 2 * (list_->frameWidth() + margin) - list_->verticalScrollBar()->sizeHint().width();
}

int FolderBox::TextWidth(std::u16string_view text) const {
    const QFontMetricsF metrics(list_->font());
    qreal width = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t character = text[i];
        if (QChar::isHighSurrogate(character) && i + 1 < text.size()) {
            character = QChar::surrogateToUcs4(text[i], text[i + 1]);
            ++i;
        }
        auto known = widthOfCharacter_.constFind(character);
        if (known == widthOfCharacter_.constEnd()) {
            known = widthOfCharacter_.insert(character, metrics.horizontalAdvance(QString::fromUcs4(&character, 1)));
        }
        width += *known;
    }
    return static_cast<int>(std::ceil(width));
}

void FolderBox::ShowBusy(bool isBusy) {
    lineEdit()->setCursor(isBusy ? Qt::BusyCursor : Qt::IBeamCursor);
}

void FolderBox::PostCommand(WindowHandle window, int id) {
    if (postCommand_) postCommand_(window, id);
}

void FolderBox::Post(std::function<void()> task) {
    posted_.Post(std::move(task));
}

// Before the toolkit makes Tab a change of focus or Ctrl+K a shortcut.
bool FolderBox::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && IsOurShortcut(PressOf(*static_cast<QKeyEvent*>(event)))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress && OfferKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QComboBox::event(event);
}

bool FolderBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_ && OnListEvent(event)) return true;
    if (watched == lineEdit() && OnEditEvent(event)) return true;
    return QComboBox::eventFilter(watched, event);
}

bool FolderBox::OnListEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            event->accept();
            return true;
        case QEvent::KeyPress:
            return OnListKey(static_cast<QKeyEvent*>(event));
        case QEvent::MouseButtonPress:
            return OnListPress(*static_cast<QMouseEvent*>(event));
        case QEvent::Hide:
            if (control_ != nullptr) control_->OnCloseUp();
            return false;
        default:
            return false;
    }
}

// A press outside of the list closes it, which a list does not do by itself. It then counts where it fell, but not on
// the box, where it would open the list again.
bool FolderBox::OnListPress(const QMouseEvent& event) {
    if (list_->rect().contains(event.position().toPoint())) return false;
    const QPoint onBox = mapFromGlobal(event.globalPosition().toPoint());
    list_->setAttribute(Qt::WA_NoMouseReplay, rect().contains(onBox));
    CloseList();
    return true;
}

bool FolderBox::OnListKey(QKeyEvent* event) {
    if (OfferKey(*event)) return true;
    if (IsListToggle(*event)) {
        CloseList();
        return true;
    }
    if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown) return false;
    lineEdit()->event(event);
    return true;
}

bool FolderBox::OnEditEvent(QEvent* event) {
    const auto type = event->type();
    if (type == QEvent::MouseButtonDblClick && control_ != nullptr) {
        control_->OnDoubleClick();
        return true;
    }
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
    auto* drag = static_cast<QDropEvent*>(event);  // what all three are
    if (!acceptsFiles_ || control_ == nullptr || !AcceptFiles(*drag)) return false;
    if (type == QEvent::Drop) {
        const std::vector<std::u16string> paths = DroppedPaths(*drag, codec_);
        if (!paths.empty()) control_->OnDropFiles(paths.front());
    }
    return true;
}

bool FolderBox::OfferKey(const QKeyEvent& event) {
    return control_ != nullptr && !isComposing_ && control_->OnKey(PressOf(event));
}

void FolderBox::inputMethodEvent(QInputMethodEvent* event) {
    isComposing_ = !event->preeditString().isEmpty();
    QComboBox::inputMethodEvent(event);
}

void FolderBox::focusOutEvent(QFocusEvent* event) {
    if (event->reason() == Qt::PopupFocusReason && IsListOpen()) return;  // the caret stays
    isComposing_ = false;
    if (control_ != nullptr && event->reason() != Qt::PopupFocusReason) control_->OnKillFocus();
    QComboBox::focusOutEvent(event);
}

void FolderBox::changeEvent(QEvent* event) {
    QComboBox::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) widthOfCharacter_.clear();
}

void FolderBox::OnClicked(const QModelIndex& index) {
    list_->setCurrentIndex(index);
    CloseList();
    if (control_ != nullptr) control_->OnSelChange();
}

// Below the box, or above it where the screen ends too soon.
void FolderBox::PlaceList() {
    const int rows = std::min(items_.rowCount(), kShownItems);
    const int height = rows * std::max(list_->sizeHintForRow(0), 1) + 2 * list_->frameWidth();
    const QRect screenArea = screen()->availableGeometry();
    const QPoint below = mapToGlobal(rect().bottomLeft()) + QPoint(0, 1);
    const int top = mapToGlobal(rect().topLeft()).y();
    const int roomBelow = screenArea.bottom() + 1 - below.y();
    const int roomAbove = top - screenArea.top();
    if (height <= roomBelow || roomBelow >= roomAbove) {
        list_->setGeometry(below.x(), below.y(), width(), std::min(height, roomBelow));
    } else {
        const int fitting = std::min(height, roomAbove);
        list_->setGeometry(below.x(), top - fitting, width(), fitting);
    }
}

}  // namespace kinsort
