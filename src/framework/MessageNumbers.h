// The numbers of the texts that this program takes from the message file. Below 64000 they are the host's, shared with
// its other commands; from 64000 on they are our own. To add one: a row here and a line in each lang/*/Msg.txt (a test
// holds the three together). "%1" and so on are places for values, named in the comment.
#pragma once

#include <cstdint>

namespace kinsort {

enum MessageNumber : uint16_t {
    // The host's.
    kMsgBadFolder = 62304,     // the search folder has not the form of a full path
    kMsgTryAgain = 62325,      // ends the texts of kMsgNoOtherTabs and kMsgNoFavorites
    kMsgClearHistory = 62400,  // what will be cleared; kMsgAreYouSure follows
    kMsgNoOtherTabs = 62401,   // kMsgTryAgain follows
    kMsgNoFavorites = 62402,   // kMsgTryAgain follows
    kMsgCannotStart = 62541,   // a line feed and the program follow
    kMsgNotReady = 62544,      // a started program does not become ready for input
    kMsgNoWindow = 62547,      // a started program opens no window
    kMsgAreYouSure = 63007,    //
    kMsgChooseFolder = 63503,  // title of the folder browser

    // Progress of a batch.
    kMsgProgressCopy = 64000,  // window title
    kMsgProgressMove = 64001,
    kMsgProgressUndo = 64002,
    kMsgProgressRedo = 64003,
    kMsgProgressPreparing = 64004,   // before the first item
    kMsgProgressItems = 64005,       // %1 items done of %2
    kMsgProgressBytes = 64006,       // %1 done of %2, sizes; %3 a second
    kMsgProgressSeconds = 64007,     // %1 seconds left
    kMsgProgressMinutes = 64008,     // %1 minutes left
    kMsgProgressHours = 64009,       // %1 hours, %2 minutes left
    kMsgProgressCancelling = 64010,  // after Cancel, until the item at work is finished or taken back
    kMsgCancel = 64011,              // button

    // A name is taken.
    kMsgConflictTitle = 64020,
    kMsgConflictFile = 64021,      // %1 a name, %2 the folder that has one already
    kMsgConflictFolder = 64022,    // %1 a folder's name, %2 the folder that has one already
    kMsgConflictNew = 64023,       // heads size and time of the item that comes
    kMsgConflictOld = 64024,       // heads size and time of what is there
    kMsgConflictReplace = 64025,   // button
    kMsgConflictSkip = 64026,      // button
    kMsgConflictKeepBoth = 64027,  // button
    kMsgConflictMerge = 64028,     // button: the folder's content goes into the one that is there
    kMsgConflictAll = 64029,       // check box: the same answer for all further ones
    kMsgConflictUndoHint = 64030,  // a replaced file is kept
    kMsgSizeAndTime = 64031,       // %1 a size, %2 a time

    // What became of a batch.
    kMsgSummaryTitle = 64040,
    kMsgSummaryCopied = 64041,     // %1 items
    kMsgSummaryMoved = 64042,      // %1 items
    kMsgSummaryUndone = 64043,     // %1 items
    kMsgSummaryRedone = 64044,     // %1 items
    kMsgSummarySkipped = 64045,    // %1 items
    kMsgSummaryFailed = 64046,     // %1 items
    kMsgSummaryCancelled = 64047,  // %1 items that were not reached
    kMsgSummaryColumnItem = 64048,
    kMsgSummaryColumnReason = 64049,
    kMsgSummaryUndo = 64050,   // button
    kMsgSummaryClose = 64052,  // button
    kMsgSummaryNothing = 64054,
    kMsgNotifyTitle = 64055,   // of the desktop's notification
    kMsgNotifyCopied = 64056,  // %1 items, %2 the folder
    kMsgNotifyMoved = 64057,   // %1 items, %2 the folder

    // A batch as a whole cannot be begun, or was torn.
    kMsgBatchNotStarted = 64070,  // %1 the reason
    kMsgBatchStopped = 64071,     // %1 the reason
    kMsgBatchUnfinished = 64072,  // asks about a batch that was torn; %1 the folder, %2 the time
    kMsgRecoverFinish = 64073,    // button
    kMsgRecoverUndo = 64074,      // button
    kMsgRecoverLeave = 64075,     // button
    kMsgNothingToUndo = 64076,    //
    kMsgNoJournalPlace = 64077,   // there is no place for the undo journal
    kMsgRetryQuestion = 64078,    // %1 a path, %2 the reason: no space, above all
    kMsgRetry = 64079,            // button
    kMsgStopBatch = 64080,        // button
    kMsgUndoUnfinished = 64081,   // asks about an undo that was torn; %1 the folder of the batch, %2 the time
    kMsgUntouched = 64082,        // after a stop: every item is either wholly done or untouched

    // The settings.
    kMsgRegistrySetAside = 64090,  // %1 the damaged file, %2 its new name
    kMsgRegistryDamaged = 64091,   // %1 the damaged file, which cannot be moved

    // The dialog.
    kMsgFolderTooLong = 64095,  // %1 characters that the folder field takes at most
    kMsgScriptRuns = 64096,     // above the name of a script that has run for some seconds

    // Why something failed: this plus the value of its StatusCode. Of kOther: %1 the system's text.
    kMsgStatusFirst = 64100,
    // Why an item was not done: this plus the value of its ItemReason.
    kMsgReasonFirst = 64150,
    // What a batch could not keep: this plus the value of its BatchWarning.
    kMsgWarningFirst = 64170,
};

}  // namespace kinsort
