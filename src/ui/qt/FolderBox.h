// The folder field on the screen: a combo box whose keys go to CComplementComboBox before the toolkit sees them. While
// an input method composes, they stay with it.
#pragma once

#include <QComboBox>
#include <functional>

#include "controls/ComplementComboBox.h"
#include "controls/HistoryComboView.h"
#include "platform/PathCodec.h"

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
    void AcceptDroppedFiles(bool accept);

    std::u16string Text() const override;
    void SetText(std::u16string_view text) override;
    TextSelection Selection() const override;
    void SetSelection(TextSelection selection) override;
    bool IsListOpen() const override;
    void OpenList() override;
    void CloseList() override;
    void ResetItems() override;
    void AddItems(const std::vector<std::u16string>& texts) override;
    size_t ItemCount() const override;
    std::optional<size_t> SelectedItem() const override;
    void SelectItem(size_t index) override;
    int ClientWidth() const override;
    int TextWidth(std::u16string_view text) const override;
    void ShowBusy(bool isBusy) override;
    void PostCommand(WindowHandle window, int id) override;
    void Post(std::function<void()> task) override;

    void showPopup() override;
    void hidePopup() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    const PathCodec& codec_;
    CComplementComboBox* control_ = nullptr;
    std::function<void(WindowHandle, int)> postCommand_;
};

}  // namespace kinsort
