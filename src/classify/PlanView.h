// What the operations on the plan need of the screen: the list of the rows, the label with their number, and the
// fields behind the dialog's controls.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kinsort {

class PlanView {
  public:
    virtual ~PlanView() = default;

    // Takes what the controls hold over into the dialog's fields; false when a control refused.
    virtual bool ReadControls() = 0;
    // The folder field as it was last read; inner form, as typed.
    virtual std::u16string SearchFolder() const = 0;
    // Shows the dialog's fields in the controls.
    virtual void PushFields() = 0;

    // How many rows the list asks the plan for. Draws nothing yet.
    virtual void SetItemCount(size_t count) = 0;
    // Erases and draws the list before it returns.
    virtual void Redraw() = 0;
    virtual std::optional<size_t> SelectedRow() const = 0;
    // Makes the row the selected one and the one with the focus mark.
    virtual void SelectRow(size_t row) = 0;
    // Scrolls until the row is in sight.
    virtual void EnsureVisible(size_t row) = 0;
    // Gives the list the keyboard.
    virtual void FocusList() = 0;

    virtual void SetCountLabel(std::u16string_view text) = 0;
    // A message box over the dialog, with its default caption and an OK button only; returns when it was answered.
    virtual void ShowMessage(std::u16string_view text) = 0;
};

}  // namespace kinsort
