#include "ui/qt/QtKinsortDlgView.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <limits>

#include "controls/HistryComboBoxEx.h"
#include "ui/qt/PopupMenu.h"
#include "ui/qt/QtText.h"

namespace kinsort {
namespace {

// The handle of a window that could not be made known to other programs: it works all the same, alone.
constexpr WindowHandle kUnknownToOthers = std::numeric_limits<WindowHandle>::max();

}  // namespace

QtKinsortDlgView::QtKinsortDlgView(const QtDialogServices& services)
    : services_(services), window_(services.codec, services.icons), favorites_(*window_.Control(kIdFavorites)) {
    window_.Folder().SetCommandPoster([this](WindowHandle window, int id) {
        constexpr uint32_t kWindowCommand = 0x0111;
        (void)services_.messages.PostNumbers(window, kWindowCommand, static_cast<uint64_t>(id), 0);
    });
}

QtKinsortDlgView::~QtKinsortDlgView() {
    window_.SetCallbacks({});
    services_.ui.SetMainWindow(nullptr, kNoWindow);
}

void QtKinsortDlgView::Register(KinsortDlgEvents& events) {
    auto registered = services_.messages.RegisterTopLevel(kDialogWindowClass, events);
    handle_ = kUnknownToOthers;
    if (registered.ok()) {
        topLevel_ = std::move(registered.value());
        handle_ = topLevel_->Handle();
    }
    services_.ui.SetMainWindow(&window_, handle_);
    const int descriptor = services_.messages.EventDescriptor();
    if (descriptor < 0) return;
    notifier_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, &window_, [this] { services_.messages.Dispatch(); });
}

// A window of another program cannot own one of ours on every desktop; where that matters the desktop's own focus rules
// bring that program forward again when the dialog goes.
int QtKinsortDlgView::DoModal(WindowHandle, KinsortDlgEvents& events) {
    events_ = &events;
    window_.SetCallbacks({
        .command = [&events](int id) { events.OnCommand(id); },
        .help = [&events] { return events.OnHelpInfo(); },
        .drop = [&events](const std::vector<std::u16string>& paths) { events.OnDropFiles(paths); },
    });
    Register(events);
    if (events.OnInitDialog()) window_.FocusFirstControl();
    if (!result_) {
        window_.show();
        if (hasClearedSelection_) ClearFolderSelection();  // showing a dialog selects the text of its first field
        loop_.exec();
    }
    window_.SetCallbacks({});
    events_ = nullptr;
    return *result_;
}

void QtKinsortDlgView::EndDialog(int result) {
    result_ = result;
    topLevel_.reset();
    timers_.clear();
    window_.hide();
    loop_.exit();
}

void QtKinsortDlgView::CallSoon(std::function<void()> work) {
    window_.RunWhenDrawn(std::move(work));
}

void QtKinsortDlgView::StartTimer(int timerId, int milliseconds) {
    std::unique_ptr<QTimer>& timer = timers_[timerId];
    if (!timer) {
        timer = std::make_unique<QTimer>();
        QObject::connect(timer.get(), &QTimer::timeout, &window_, [this, timerId] {
            if (events_ != nullptr) events_->OnTimer(timerId);
        });
    }
    timer->start(milliseconds);
}

void QtKinsortDlgView::KillTimer(int timerId) {
    const auto found = timers_.find(timerId);
    if (found != timers_.end()) found->second->stop();
}

void QtKinsortDlgView::MoveTo(int x, int y) {
    window_.move(x, y);
}

void QtKinsortDlgView::SetTopmost(bool isTopmost) {
    window_.SetTopmost(isTopmost);
}

void QtKinsortDlgView::MakeToolWindow() {
    const bool wasVisible = window_.isVisible();
    window_.setWindowFlags((window_.windowFlags() & ~Qt::WindowType_Mask) | Qt::Tool);
    if (wasVisible) window_.show();
}

std::u16string QtKinsortDlgView::Title() const {
    return FromQString(window_.windowTitle());
}

void QtKinsortDlgView::SetTitle(std::u16string_view text) {
    window_.setWindowTitle(ToQString(text));
}

std::u16string QtKinsortDlgView::ControlText(int controlId) const {
    if (controlId == kIdFolder) return FromQString(window_.Folder().currentText());
    return FromQString(window_.Text(controlId));
}

void QtKinsortDlgView::SetControlText(int controlId, std::u16string_view text) {
    if (controlId == kIdFolder) {
        window_.Folder().SetText(text);
    } else {
        window_.SetText(controlId, ToQString(text));
    }
}

bool QtKinsortDlgView::IsChecked(int controlId) const {
    const auto* const button = qobject_cast<QAbstractButton*>(window_.Control(controlId));
    return button != nullptr && button->isChecked();
}

void QtKinsortDlgView::SetChecked(int controlId, bool isChecked) {
    auto* const button = qobject_cast<QAbstractButton*>(window_.Control(controlId));
    if (button != nullptr && button->isCheckable()) button->setChecked(isChecked);
}

void QtKinsortDlgView::EnableControl(int controlId, bool isEnabled) {
    if (QWidget* const widget = window_.Control(controlId)) widget->setEnabled(isEnabled);
}

void QtKinsortDlgView::FocusControl(int controlId) {
    if (QWidget* const widget = window_.Control(controlId)) widget->setFocus();
}

void QtKinsortDlgView::ClearFolderSelection() {
    QLineEdit* const field = window_.Folder().lineEdit();
    hasClearedSelection_ = true;
    field->deselect();
    field->setCursorPosition(static_cast<int>(field->text().size()));
}

void QtKinsortDlgView::AcceptDroppedFiles(int controlId) {
    if (controlId == kIdFolder) window_.Folder().AcceptDroppedFiles(true);
}

std::optional<size_t> QtKinsortDlgView::ShowPopupMenu(int controlId, const std::vector<std::u16string>& texts) {
    QWidget* const anchor = window_.Control(controlId);
    if (anchor == nullptr) return std::nullopt;
    QMenu menu(anchor);
    for (size_t i = 0; i < texts.size(); ++i)
        menu.addAction(MenuText(texts[i]))->setData(QVariant::fromValue(i));
    const QAction* const chosen = ExecMenuOver(*anchor, menu);
    if (chosen == nullptr) return std::nullopt;
    return chosen->data().value<size_t>();
}

void QtKinsortDlgView::PrepareList() {}  // the widget draws icons and selects rows from the beginning

void QtKinsortDlgView::InsertListColumn(size_t index, std::u16string_view title, int width) {
    window_.List().InsertColumn(static_cast<int>(index), ToQString(title), width);
}

void QtKinsortDlgView::SetListCount(size_t count) {
    window_.List().SetItemCount(count);
}

void QtKinsortDlgView::RedrawList() {
    window_.List().Redraw();
}

std::optional<size_t> QtKinsortDlgView::SelectedListRow() const {
    return window_.List().SelectedRow();
}

void QtKinsortDlgView::AttachControls(CCmdListCtrl* list, CHistryComboBoxEx* folderBox) {
    window_.List().Attach(list);
    window_.Folder().Attach(folderBox);
}

}  // namespace kinsort
