// What the folder box needs of the screen: an edit field with a drop-down list. Texts are those that people see, in
// UTF-16 code units; positions count units.
//
// The view tells its control of keys, double clicks and dropped files before it does anything with them itself, and of
// what became of the list, whoever opened or closed it:
//   OnDropDown      before the list opens
//   OnCloseUp       when it has closed, before the message of a choice
//   OnSelChange     when the user has picked an item with the mouse
//   OnEdit          when the user has changed the text
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/WindowHandle.h"

namespace kinsort {

struct TextSelection {
    size_t start = 0;
    size_t end = 0;  // equal to `start` when nothing is selected: the caret

    bool operator==(const TextSelection&) const = default;
};

class HistoryComboView {
  public:
    virtual ~HistoryComboView() = default;

    virtual std::u16string Text() const = 0;
    // Where the caret goes is not said. The list stays as it is.
    virtual void SetText(std::u16string_view text) = 0;
    virtual TextSelection Selection() const = 0;
    virtual void SetSelection(TextSelection selection) = 0;

    virtual bool IsListOpen() const = 0;
    virtual void OpenList() = 0;
    virtual void CloseList() = 0;

    // The items of the list. Text and caret are not touched by any of these.
    virtual void ResetItems() = 0;
    virtual void AddItems(const std::vector<std::u16string>& texts) = 0;
    virtual size_t ItemCount() const = 0;
    virtual std::optional<size_t> SelectedItem() const = 0;
    // Marks the item and scrolls to it; `index` is below ItemCount().
    virtual void SelectItem(size_t index) = 0;

    // Pixels: the room for an item's text, and what a text takes of it.
    virtual int ClientWidth() const = 0;
    virtual int TextWidth(std::u16string_view text) const = 0;

    // A listing that the user waits for is under way, or no longer.
    virtual void ShowBusy(bool isBusy) = 0;
    // Tells a window of the command `id`, without waiting for it.
    virtual void PostCommand(WindowHandle window, int id) = 0;
    // Runs the task later on the thread of the user interface, or never when the box is gone by then. Any thread.
    virtual void Post(std::function<void()> task) = 0;
};

}  // namespace kinsort
