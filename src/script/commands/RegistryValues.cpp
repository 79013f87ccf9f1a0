// "writeregnum" and "writeregstring": values below the host's key of the registry. Whether they could be written,
// nobody is told.
#include "framework/Settings.h"
#include "script/FunctionTable.h"
#include "script/NumberText.h"
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kHostKey = u"Software\\TEV_Soft\\Vel\\Main001\\";

struct ValuePlace {
    std::u16string key;
    std::u16string_view name;
};

// The first two arguments; an empty key when one of them is missing.
ValuePlace TakePlace(ArgumentReader& arguments) {
    const std::u16string_view subKey = arguments.Next();
    if (subKey.empty()) return {};
    const std::u16string_view name = arguments.Next();
    if (name.empty()) return {};
    return {std::u16string(kHostKey).append(subKey), name};
}

}  // namespace

LineOutcome RunWriteRegNum(ScriptRun& run, const StatementCall& call) {
    ArgumentReader arguments(call.value);
    const ValuePlace place = TakePlace(arguments);
    const std::u16string_view number = arguments.Next();
    if (place.key.empty() || number.empty()) return LineOutcome::kNextLine;
    const int32_t value = ReadInt32(NormalizeNumber(number));
    run.services.settings.WriteRegDword(place.key, place.name, static_cast<uint32_t>(value));
    return LineOutcome::kNextLine;
}

LineOutcome RunWriteRegString(ScriptRun& run, const StatementCall& call) {
    ArgumentReader arguments(call.value);
    const ValuePlace place = TakePlace(arguments);
    if (!place.key.empty()) run.services.settings.WriteRegString(place.key, place.name, arguments.Rest());
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
