// A combo box that exists only in memory: it does as the header of its interface says and writes down what it was told.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "controls/ComplementComboBox.h"
#include "controls/HistoryComboView.h"
#include "controls/PostedTasks_test.h"

namespace kinsort {

class MemoryCombo final : public HistoryComboView {
  public:
    std::u16string Text() const override { return text; }
    void SetText(std::u16string_view newText) override { text = newText; }
    TextSelection Selection() const override { return selection; }
    void SetSelection(TextSelection newSelection) override { selection = newSelection; }
    bool IsListOpen() const override { return isOpen; }
    void OpenList() override {
        if (isOpen) return;
        control->OnDropDown();
        isOpen = !items.empty();
    }
    void CloseList() override {
        if (std::exchange(isOpen, false)) control->OnCloseUp();
    }
    void ResetItems() override {
        items.clear();
        selected.reset();
    }
    void AddItems(const std::vector<std::u16string>& texts) override {
        items.insert(items.end(), texts.begin(), texts.end());
    }
    size_t ItemCount() const override { return items.size(); }
    std::optional<size_t> SelectedItem() const override { return selected; }
    void SelectItem(size_t index) override { selected = index; }
    int ClientWidth() const override { return width; }
    int TextWidth(std::u16string_view shown) const override { return static_cast<int>(shown.size()); }
    void ShowBusy(bool busy) override { isBusy = busy; }
    void PostCommand(WindowHandle window, int id) override { commands.emplace_back(window, id); }
    void Post(std::function<void()> task) override { tasks.Post(std::move(task)); }

    // The user picks an item with the mouse.
    void Pick(size_t index) {
        selected = index;
        CloseList();
        control->OnSelChange();
    }
    // The user types over the whole text.
    void Type(std::u16string_view newText) {
        text = newText;
        selection = {text.size(), text.size()};
        control->OnEdit();
    }
    bool IsCaretAtEnd() const { return selection == TextSelection{text.size(), text.size()}; }

    CComplementComboBox* control = nullptr;
    std::u16string text;
    TextSelection selection;
    bool isOpen = false;
    bool isBusy = false;
    std::vector<std::u16string> items;
    std::optional<size_t> selected;
    int width = 1000;  // as many units
    std::vector<std::pair<WindowHandle, int>> commands;
    PostedTasks tasks;
};

}  // namespace kinsort
