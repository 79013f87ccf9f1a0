#include "script/ScriptError.h"

#include <array>

namespace kinsort {
namespace {

constexpr std::array<std::u16string_view, 9> kTexts = {
    u"Illegal Function Call!\n",
    u"Syntax error!\n",
    u"This label is already in use.\n",
    u"It has already been declared.\n",
    u"It is contained in the variable declared.\n",
    u"Not found.\n",
    u"Failed It.\n",
    u"Undefined label.\n",
    u"Division by zero.\n",
};

}  // namespace

std::u16string_view ScriptErrorText(ScriptError error) {
    return kTexts[static_cast<size_t>(error)];
}

void ShowScriptError(UserInterface& ui, ScriptError error, std::u16string_view text) {
    MessageRequest request;
    request.text = std::u16string(ScriptErrorText(error)).append(text);
    ui.ShowMessage(request);
}

std::u16string MissingOpenerText(std::u16string_view word, std::u16string_view opener) {
    return std::u16string(u"'").append(word).append(u"' was used without '").append(opener).append(u"'\n");
}

}  // namespace kinsort
