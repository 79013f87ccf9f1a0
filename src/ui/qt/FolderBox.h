// The folder field on the screen: a combo box whose keys go to CComplementComboBox before the toolkit sees them. While
// an input method composes, they stay with it.
//
// The list is a popup of our own under the toolkit's field: the toolkit's would put an item's text into the field
// whenever items change or are walked through, and here the control says what stands there. The keyboard stays in the
// field while the list is open.
#pragma once

#include <QComboBox>
#include <QHash>
#include <QListView>
#include <QStringListModel>
#include <functional>

#include "controls/ComplementComboBox.h"
#include "controls/HistoryComboView.h"
#include "platform/PathCodec.h"
#include "ui/qt/PostedTasks.h"

namespace kinsort {

class FolderBox final : public QComboBox, public HistoryComboView {
  public:
    // The codec outlives it.
    explicit FolderBox(const PathCodec& codec, QWidget* parent = nullptr);

    // Whom to tell; null before the control goes.
    void Attach(CComplementComboBox* control);
    // What takes PostCommand to another window; without it such a command is dropped.
    void SetCommandPoster(std::function<void(WindowHandle, int)> post) { postCommand_ = std::move(post); }
    // Whether a file or folder dropped on the box goes into it.
    void AcceptDroppedFiles(bool accept) { acceptsFiles_ = accept; }

    std::u16string Text() const override;
    void SetText(std::u16string_view text) override;
    TextSelection Selection() const override;
    void SetSelection(TextSelection selection) override;
    bool IsListOpen() const override { return list_->isVisible(); }
    void OpenList() override;
    void CloseList() override { list_->hide(); }
    void ResetItems() override;
    void AddItems(const std::vector<std::u16string>& texts) override;
    size_t ItemCount() const override;
    std::optional<size_t> SelectedItem() const override;
    void SelectItem(size_t index) override;
    int ClientWidth() const override;
    // The sum of the characters' widths: thousands of texts are measured while the user waits.
    int TextWidth(std::u16string_view text) const override;
    void ShowBusy(bool isBusy) override;
    void PostCommand(WindowHandle window, int id) override;
    void Post(std::function<void()> task) override;

    void showPopup() override { OpenList(); }
    void hidePopup() override { CloseList(); }

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    bool OnListEvent(QEvent* event);
    bool OnEditEvent(QEvent* event);
    bool OnListPress(const QMouseEvent& event);
    bool OnListKey(QKeyEvent* event);
    bool OfferKey(const QKeyEvent& event);
    void OnClicked(const QModelIndex& index);
    void PlaceList();

    const PathCodec& codec_;
    CComplementComboBox* control_ = nullptr;
    std::function<void(WindowHandle, int)> postCommand_;
    PostedTasks posted_;
    QStringListModel items_;
    QListView* list_;  // owned as a child
    bool acceptsFiles_ = false;
    bool isComposing_ = false;
    mutable QHash<char32_t, qreal> widthOfCharacter_;
};

}  // namespace kinsort
