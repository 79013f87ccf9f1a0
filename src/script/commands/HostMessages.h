// Statements that are one message to the host's window: a text with a code, or a pair of numbers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "script/SortedTable.h"
#include "script/StatementTable.h"

namespace kinsort {

// A text that is sent with its code as it stands. To add one: a row.
struct TextMessageRow {
    std::u16string_view keyword;
    ValueUse use;
    uint32_t code;
    std::string_view help;
};
inline constexpr std::array<TextMessageRow, 7> kTextMessages = {{
    {u"fullstateopen", ValueUse::kRaw, 205, "Sends the host a text with the code 205, as it is written."},
    {u"fullstateopenex", ValueUse::kExpanded, 205, "Sends the host a text with the code 205."},
    {u"select", ValueUse::kExpanded, 800, "Sends the host a text with the code 800: what to select."},
    {u"listinnerparam", ValueUse::kExpanded, 910, "Sends the host a text with the code 910."},
    {u"operationmode", ValueUse::kRaw, 911, "Sends the host a text with the code 911, as it is written."},
    {u"tabletmode", ValueUse::kRaw, 912, "Sends the host a text with the code 912, as it is written."},
    {u"backgroundimage", ValueUse::kExpanded, 1200, "Sends the host a text with the code 1200: an image."},
}};

enum class Delivery : uint8_t { kPosted, kSent };

// A message whose two numbers are the value, "40001,1"; only variables are filled in. To add one: a row.
struct CommandMessageRow {
    std::u16string_view keyword;
    uint32_t message;
    Delivery delivery;
    std::string_view help;
};
inline constexpr std::array<CommandMessageRow, 8> kCommandMessages = {{
    {u"postmessage", 0x0111, Delivery::kPosted, "Posts a command to the host: its number, and a second number."},
    {u"sendmessage", 0x0111, Delivery::kSent, "Sends a command to the host and waits until it has dealt with it."},
    {u"postmessageall", 0x8008, Delivery::kPosted, "Posts two numbers to the host as message 0x8008."},
    {u"sendmessageall", 0x8008, Delivery::kSent,
     "Sends two numbers to the host as message 0x8008 and waits until it has dealt with them."},
    {u"postmessage1", 0x8009, Delivery::kPosted, "Posts two numbers to the host as message 0x8009."},
    {u"postmessage2", 0x800A, Delivery::kPosted, "Posts two numbers to the host as message 0x800A."},
    {u"postwait", 0x800B, Delivery::kPosted, "Posts two numbers to the host as message 0x800B."},
    {u"postmessagebar", 0x800C, Delivery::kPosted, "Posts two numbers to the host as message 0x800C."},
}};

// A text for the host's window; nothing happens when that is not there.
void SendToHost(ScriptRun& run, std::u16string_view text, uint32_t code);
// The same with a number and a slash before the text.
void SendToHost(ScriptRun& run, int32_t number, std::u16string_view text, uint32_t code);

LineOutcome SendTextMessage(ScriptRun& run, const StatementCall& call, const TextMessageRow& row);
LineOutcome SendCommandMessage(ScriptRun& run, const StatementCall& call, const CommandMessageRow& row);
// "postmessagetab", which never means anything.
LineOutcome RunPostMessageTab(ScriptRun& run, const StatementCall& call);
// "system_command=code,text": a text with a code of its own.
LineOutcome RunSystemCommand(ScriptRun& run, const StatementCall& call);

template <size_t kIndex>
LineOutcome RunTextMessage(ScriptRun& run, const StatementCall& call) {
    return SendTextMessage(run, call, kTextMessages[kIndex]);
}
template <size_t kIndex>
LineOutcome RunCommandMessage(ScriptRun& run, const StatementCall& call) {
    return SendCommandMessage(run, call, kCommandMessages[kIndex]);
}

template <size_t... kIndices>
consteval auto TextMessageStatements(std::index_sequence<kIndices...>) {
    return std::array<StatementRow, sizeof...(kIndices)>{
        {{kTextMessages[kIndices].keyword, kTextMessages[kIndices].use, RunTextMessage<kIndices>,
          ArgumentCount{0, kAnyCount}, "text", kTextMessages[kIndices].help}...}};
}
template <size_t... kIndices>
consteval auto CommandMessageStatements(std::index_sequence<kIndices...>) {
    return std::array<StatementRow, sizeof...(kIndices)>{
        {{kCommandMessages[kIndices].keyword, ValueUse::kRawLine, RunCommandMessage<kIndices>, ArgumentCount{1, 2},
          "number,number", kCommandMessages[kIndices].help}...}};
}

inline constexpr std::array<StatementRow, 2> kOtherMessageStatements = {{
    {u"postmessagetab", ValueUse::kRawLine, RunPostMessageTab, {1, 2}, "number,number", "Is always an error."},
    {u"system_command",
     ValueUse::kExpanded,
     RunSystemCommand,
     {1, kAnyCount},
     "code,text",
     "Sends the host a text with a code of your own."},
}};

inline constexpr auto kMessageStatements =
    JoinSlices(&StatementRow::keyword, TextMessageStatements(std::make_index_sequence<kTextMessages.size()>()),
               CommandMessageStatements(std::make_index_sequence<kCommandMessages.size()>()), kOtherMessageStatements);

}  // namespace kinsort
