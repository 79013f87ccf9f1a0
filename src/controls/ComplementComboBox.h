// A folder box that completes paths as they are typed: it lists what begins with the typed text, and has keys to step
// through the list, to cut the path back and to clear it.
//
// Texts are in the inner form here; FolderText turns them into what people see when they go to the view, and back.
//
// Listing. The folder is listed on a worker, so that a slow disk never holds up typing; a local folder of thousands
// answers before the eye sees it. The answer counts only if the box still holds the text that was asked for: who types
// on while a slow listing runs has simply asked for nothing. Asking again for the text that is being listed waits for
// that listing. The list of an answer opens when the answer comes.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "controls/FolderText.h"
#include "controls/HistoryComboView.h"
#include "framework/WorkerThreads.h"
#include "platform/FileSystem.h"
#include "platform/WindowHandle.h"

namespace kinsort {

enum class BoxKey : uint8_t {
    kOther,
    kBackspace,
    kTab,
    kEnter,
    kEscape,
    kPageUp,
    kPageDown,
    kUp,
    kDown,
    kSpace,
    kH,
    kJ,
    kK,
    kL
};

struct BoxKeyPress {
    BoxKey key = BoxKey::kOther;
    bool shift = false;
    bool ctrl = false;
    bool alt = false;
};

// All of it runs on the thread of the user interface.
class CComplementComboBox {
  public:
    // Collecting stops beyond this many candidates.
    static constexpr size_t kMaxCandidates = 5000;
    static constexpr size_t kMaxListings = 16;

    // All of them must outlive the box; see WorkerThreads.h for a listing that hangs.
    CComplementComboBox(HistoryComboView& view, FileSystem& files, const FolderText& texts);
    virtual ~CComplementComboBox();
    CComplementComboBox(const CComplementComboBox&) = delete;
    CComplementComboBox& operator=(const CComplementComboBox&) = delete;

    // The text of the box.
    std::u16string GetText() const;
    // Leaves a box alone that says it already, in whatever way. Caret as the view puts it.
    void SetText(std::u16string_view text);

    // --- what the view tells -----------------------------------------------------------------------------------------

    // True when the key was used up; otherwise the view does with it what it does with such a key.
    bool OnKey(const BoxKeyPress& press);
    void OnDoubleClick();
    void OnDropDown();
    void OnCloseUp();
    void OnSelChange();
    // The text that the user typed replaces what the end of the list would bring back, and closes a list that it no
    // longer fits.
    void OnEdit();
    // The keyboard went elsewhere: a listing under way is no longer of interest.
    void OnKillFocus();
    // `path` is the first of the dropped paths. The view has nothing more to do with the drop.
    void OnDropFiles(std::u16string_view path);

    // --- what can be done with it ------------------------------------------------------------------------------------

    // The next item of an open list; otherwise Complete.
    void CompleteOrStep();
    // Lists what the text can become. When the answer is there: a single candidate becomes the text, several are shown
    // in the list. The beginnings of a root ("\", "d", "d:", "~") are completed at once and list nothing.
    void Complete();
    // "C:\a\b\file.txt" becomes "C:\a\b\", that "C:\a\b", and that "C:\a\".
    void CutLastPart();
    // True when no listing runs; false after the limit. Their answers are posted by then, not yet delivered.
    bool WaitForListing(std::chrono::milliseconds limit) { return workers_.WaitForAll(limit); }

    WindowHandle m_hNotifyWnd = kNoWindow;  // told of m_nNotifyId when Enter is pressed and the list is closed
    int m_nNotifyId = 0;
    std::u16string m_strBaseDir;  // relative text is made absolute against it before it is completed
    bool m_bFoldersOnly = false;  // completion offers no files, and a dropped file stands for its folder
    bool m_bTabComplete = false;  // Tab completes when the list is closed

  protected:
    // Fills the drop-down from m_listItems.
    virtual void FillList();
    // Ctrl+H with the list closed.
    virtual void AskToClearHistory() {}
    void ShowItems(std::vector<std::u16string> fullTexts);
    void PutText(std::u16string_view text);  // with the caret at the end and nothing selected
    HistoryComboView& View() const { return view_; }
    // Runs the task later, unless the box is gone by then.
    void PostToSelf(std::function<void()> task) { workers_.Post(std::move(task)); }

    std::vector<std::u16string> m_listItems;  // shown when the list is opened and nothing was completed

  private:
    bool OnKeyInOpenList(const BoxKeyPress& press);
    bool OnKeyInClosedList(const BoxKeyPress& press);
    void StepList(bool isForward);
    void DeleteToEnd();
    std::u16string CompletedRoot() const;
    void StartListing(const std::u16string& text);
    void OnListed(uint64_t number, std::vector<std::u16string> candidates);
    void EndListing();
    void ShowCompletion();

    HistoryComboView& view_;
    FileSystem& files_;
    const FolderText& texts_;
    std::u16string m_strChosen;                             // text that the box gets when the list closes
    std::vector<std::u16string> m_candidates;               // full texts of the items, in their order
    std::u16string m_strDropDir;                            // relative text is completed against it
    std::optional<std::u16string> awaited_;                 // what the listing under way was asked for
    std::shared_ptr<std::atomic<uint64_t>> listingNumber_;  // of that listing; the others give up
    WorkerThreads workers_;
};

}  // namespace kinsort
