// The dialog's frame on the screen: makes the controls of the template, gives them their places, and tells of keys,
// drops and closing. It knows nothing of what the dialog is for.
#pragma once

#include <QDialog>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/DialogTemplate.h"
#include "platform/PathCodec.h"
#include "ui/qt/DialogLayout.h"
#include "ui/qt/FolderBox.h"
#include "ui/qt/PlanListWidget.h"

namespace kinsort {

class KinsortWindow final : public QDialog {
  public:
    struct Callbacks {
        std::function<void(int controlId)> command;
        std::function<bool()> help;
        std::function<void(const std::vector<std::u16string>& paths)> drop;
    };

    // Both outlive it.
    KinsortWindow(const PathCodec& codec, const QtIcons& icons);

    void SetCallbacks(Callbacks callbacks) { callbacks_ = std::move(callbacks); }
    // Runs once, after the window has been drawn for the first time, or soon when it has been already.
    void RunWhenDrawn(std::function<void()> work);

    QWidget* Control(int id) const;  // null for an id that the dialog does not have
    FolderBox& Folder() { return *folder_; }
    const FolderBox& Folder() const { return *folder_; }
    PlanListWidget& List() { return *list_; }
    const PlanListWidget& List() const { return *list_; }

    // With "&" before the accelerator; nothing for the list and the folder box.
    QString Text(int id) const;
    void SetText(int id, const QString& text);
    void SetTopmost(bool isTopmost);
    void FocusFirstControl();

    void reject() override;  // Esc, closing

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void MakeControls(const QtIcons& icons);
    void NameFields();
    void Connect(int id, QWidget* widget);
    void LayOut();
    void PlaceControls();
    void RunWaiting();

    const PathCodec& codec_;
    Callbacks callbacks_;
    std::map<int, QWidget*> controls_;
    FolderBox* folder_ = nullptr;
    PlanListWidget* list_ = nullptr;
    std::optional<DialogLayout> layout_;
    std::vector<std::function<void()>> whenDrawn_;
    bool isDrawn_ = false;
};

}  // namespace kinsort
