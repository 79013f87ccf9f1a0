// Any text as a script, run on a world in memory: it ends, it reads nothing that is not its own, and what it was given
// is still there.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "script/ScriptRun.h"
#include "script/ScriptWorld_test.h"
#include "text/Utf8.h"

namespace {

using namespace kinsort;

// A loop may go on for ever: stops the run after so many lines, and before variables that double make it slow.
class Stopwatch final : public ScriptObserver {
  public:
    explicit Stopwatch(CancelToken& cancel) : cancel_(cancel) {}

    void OnLine(ScriptRun& run, const ScriptLine&) override {
        if (++lines_ > 2000 || run.variables.units() > 20000 || run.selectedItems.size() > 2000) cancel_.Cancel();
    }

  private:
    CancelToken& cancel_;
    int lines_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ScriptWorld world;
    Stopwatch stopwatch(world.cancel);
    const std::u16string text = FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    world.AddScript(u"C:\\main.ecs", text);
    world.AddScript(u"C:\\other.ecs", u"var inner=1\ninner=+1\nexit\n");
    world.files.SetContent(u"C:\\text.txt", "a\r\0b\n");
    world.windows.windows[100] = kHostWindowClass;
    world.ui.messageAnswers.assign(50, MessageAnswer::kYes);
    std::vector<std::u16string> items = {u"C:\\text.txt", u"C:\\folder\\b.tar.gz", u""};
    ScriptCall call{
        .scriptPath = u"C:\\main.ecs", .currentFolder = u"C:\\", .otherFolder = u"", .selectedItems = items};

    ScriptServices services = world.services;
    services.observer = &stopwatch;
    services.maxVariableUnits = 100'000;
    const ScriptResult result = RunScript(services, call);
    if (result.code != 0 && result.code != -1) std::abort();
    if (result.ending == ScriptEnding::kUnreadable) std::abort();
    return 0;
}
