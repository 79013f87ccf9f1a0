// What carrying out a batch shows: progress, questions, the outcome, the offer to undo. The presenter hands over
// finished texts in the user's language; a view places them and reports which button was pressed. All calls come on the
// view's thread, but for Post.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "fileop/Conflict.h"

namespace kinsort {

struct ProgressTexts {
    std::u16string title;     // of the window: "Moving"
    std::u16string headline;  // "45 of 120 items"; "Preparing..." while the batch is planned
    std::u16string name;      // the file that is worked on, as people know its path; to be shortened in its middle
    std::u16string figures;   // "12.3 MB of 80.0 MB (5.0 MB/s) about 14 s left"; empty while unknown
    std::u16string cancel;    // label of the button
    int permille = -1;        // 0 to 1000; -1: at work, nobody knows how far
    bool isStopping = false;  // Cancel was pressed: the button is disabled
};

struct ConflictSideTexts {
    std::u16string heading;  // "Incoming", "Already there"
    std::u16string path;     // as people know it
    std::u16string details;  // "1.2 MB, 2024-05-31 14:03"
};

struct ConflictButton {
    std::u16string label;
    ConflictAnswer answer;
};

struct ConflictQuestion {
    std::u16string title;
    std::u16string instruction;
    ConflictSideTexts item;
    ConflictSideTexts target;
    std::vector<ConflictButton> buttons;  // only what is possible here; the last one, cancel, is also Esc and closing
    size_t defaultButton = 0;             // pressed by Enter
    std::u16string forAll;                // label of the check box that makes the answer count for the rest
};

// A question that is answered by one button.
struct ButtonQuestion {
    std::u16string title;
    std::u16string instruction;
    std::vector<std::u16string> buttons;  // at least one
    size_t defaultButton = 0;             // pressed by Enter
    size_t escapeButton = 0;              // pressed by Esc and by closing the window
};

struct SummaryRow {
    std::u16string name;    // path as people know it
    std::u16string reason;  // what happened and what to do about it
};

struct OperationSummary {
    std::u16string title;
    std::u16string headline;              // "Items moved: 117."
    std::vector<std::u16string> notes;    // about the batch as a whole, in full sentences
    std::vector<SummaryRow> rows;         // items that are not plainly done; can be very many
    std::u16string nameColumn;            // headings of the two columns
    std::u16string reasonColumn;          //
    std::vector<std::u16string> buttons;  // one or two; the last one, close, is also Enter, Esc and closing
};

struct UndoOffer {
    std::u16string title;
    std::u16string text;  // "Items moved into the folders of /home/me/Pictures: 120."
    std::u16string undo;  // label of the button
};

class OperationView {
  public:
    virtual ~OperationView() = default;

    // --- the loop ----------------------------------------------------------------------------------------------------

    // From any thread: `work` runs on the view's thread, in the order of posting, as soon as a loop runs there.
    virtual void Post(std::function<void()> work) = 0;
    // Handles events until EndLoop; an EndLoop that came before counts. Not nested.
    virtual void RunLoop() = 0;
    virtual void EndLoop() = 0;

    // --- progress ----------------------------------------------------------------------------------------------------

    // Opens the progress window; `onCancel` is called when its button is pressed or it is closed, which does not take
    // it away. The view may let half a second pass first, so that a short batch shows none.
    virtual void BeginProgress(const ProgressTexts& texts, std::function<void()> onCancel) = 0;
    virtual void UpdateProgress(const ProgressTexts& texts) = 0;
    virtual void EndProgress() = 0;

    // --- questions and the outcome: each waits for the answer --------------------------------------------------------

    // The answer of the button that was pressed, for all where the box is checked.
    virtual ConflictReply AskConflict(const ConflictQuestion& question) = 0;
    // The index of the button.
    virtual size_t AskButtons(const ButtonQuestion& question) = 0;
    // The index of the button.
    virtual size_t ShowSummary(const OperationSummary& summary) = 0;
    // Offers to undo without standing in the way, for as long as notifications stay; true when that was chosen, false
    // when not, at the latest when the offer has gone from the screen.
    virtual bool OfferUndo(const UndoOffer& offer) = 0;
};

}  // namespace kinsort
