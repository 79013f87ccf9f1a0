// Statements that are one message to the host's window: a text with a code, or a pair of numbers.
#pragma once

#include <cstdint>
#include <string_view>

#include "script/StatementTable.h"

namespace kinsort {

// A text for the host's window; nothing happens when that is not there.
void SendToHost(ScriptRun& run, std::u16string_view text, uint32_t code);
// The same with a number and a slash before the text.
void SendToHost(ScriptRun& run, int32_t number, std::u16string_view text, uint32_t code);

enum class Delivery : uint8_t { kPosted, kSent };

// A message whose two numbers are the value, "40001,1"; only variables are filled in.
LineOutcome SendNumbersToHost(ScriptRun& run, const StatementCall& call, uint32_t message, Delivery delivery);

// The statements that send their value as it stands.
template <uint32_t kCode>
LineOutcome SendText(ScriptRun& run, const StatementCall& call) {
    SendToHost(run, call.value, kCode);
    return LineOutcome::kNextLine;
}
template <uint32_t kMessage, Delivery kDelivery>
LineOutcome SendNumbers(ScriptRun& run, const StatementCall& call) {
    return SendNumbersToHost(run, call, kMessage, kDelivery);
}

// "postmessagetab", which never means anything.
LineOutcome RunPostMessageTab(ScriptRun& run, const StatementCall& call);
// "system_command=code,text": a text with a code of its own.
LineOutcome RunSystemCommand(ScriptRun& run, const StatementCall& call);

}  // namespace kinsort
