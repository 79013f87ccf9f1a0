// The windows that a batch asks and reports with. Each shows finished texts and tells which button was pressed; the
// texts may be of any length and hold any name.
#pragma once

#include <QWidget>

#include "app/OperationView.h"
#include "ui/qt/WindowTexts.h"

namespace kinsort {

// Each waits for the answer; `owner` may be null.
ConflictReply AskConflictIn(QWidget* owner, const ConflictQuestion& question);
size_t AskButtonsIn(QWidget* owner, const ButtonQuestion& question);
size_t ShowSummaryIn(QWidget* owner, const OperationSummary& summary, const WindowTexts& texts);

// A small window in a corner of the screen that takes no focus and goes away by itself. True when the user wants to
// undo.
bool OfferUndoIn(const UndoOffer& offer, const WindowTexts& texts, int limitMs);

}  // namespace kinsort
