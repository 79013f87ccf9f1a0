// The folder box with its history: the folders of the last runs, which the drop-down shows when nothing is being
// completed.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "controls/ComplementComboBox.h"
#include "framework/Messages.h"
#include "framework/Settings.h"
#include "platform/UserInterface.h"

namespace kinsort {

class CHistryComboBoxEx : public CComplementComboBox {
  public:
    // All of them must outlive the box.
    CHistryComboBoxEx(HistoryComboView& view, FileSystem& files, const FolderText& texts, Settings& settings,
                      Messages& messages, UserInterface& ui);

    // The values are called `valuePrefix` and the number of the entry in three digits, from 000 on, the newest first.
    void SetHistory(std::u16string valuePrefix, size_t maxEntries);
    // Reads the history soon, when the window has come up.
    void PostLoadHistory();

    void OnLoadHistory();
    // Forgets all entries, here and in the registry.
    void OnClearHistory();
    // The window goes: saves the history with the box's text as its newest entry, if m_bSaveOnDestroy.
    void OnDestroy();

    bool m_bSaveOnDestroy = false;

  protected:
    void AskToClearHistory() override;

  private:
    void AddToHistory();
    void RebuildListItems();
    std::u16string ValueName(size_t index) const;
    void WriteHistory();

    Settings& settings_;
    Messages& messages_;
    UserInterface& ui_;
    std::vector<std::u16string> m_history;  // most recent first; as many as SetHistory said, empty ones included
    std::u16string valuePrefix_;
};

}  // namespace kinsort
