// What the list of the plan needs of the screen. The list shows row i of the plan as item i and holds no texts: it asks
// CCmdListCtrl for each cell that it draws, tells it which rows are about to be seen and which keys are pressed in it.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>

namespace kinsort {

class CmdListView {
  public:
    virtual ~CmdListView() = default;

    // Has the rows, both included, drawn anew soon; those that are there no longer are left out.
    virtual void RedrawItems(size_t first, size_t last) = 0;
    // The row with the focus mark.
    virtual std::optional<size_t> FocusedItem() const = 0;
    // Takes selection and focus mark off the row; a row that has neither stays as it is.
    virtual void DeselectItem(size_t row) = 0;
    // Makes it the selected row and the one with the focus mark.
    virtual void SelectItem(size_t row) = 0;
    // Scrolls until the row is in sight.
    virtual void EnsureVisible(size_t row) = 0;
    // Runs the task later on the thread of the user interface, or never when the list is gone by then. Any thread.
    virtual void Post(std::function<void()> task) = 0;
};

}  // namespace kinsort
