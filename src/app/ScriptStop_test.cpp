#include "app/ScriptStop.h"

#include <gmock/gmock.h>

#include "app/DialogWorld_test.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingStopView final : public ScriptStopView {
  public:
    void ShowStop(const ProgressTexts& texts) override {
        calls.push_back("show " + ToUtf8(texts.headline) + " " + ToUtf8(texts.name) + " " + ToUtf8(texts.cancel));
    }
    bool WasStopPressed() override {
        ++looks;
        return isPressed;
    }
    void HideStop() override { calls.emplace_back("hide"); }

    CallLog calls;
    int looks = 0;
    bool isPressed = false;
};

TEST(ScriptStopTest, OffersToStopWhatHasWorkedForSomeSeconds) {
    DialogWorld world;
    RecordingStopView view;
    constexpr int64_t kMs = 1'000'000;
    {
        ScriptStop stop(world.clock, world.messages, view, u"/f/a.txt");
        const auto work = [&](int64_t ms) {
            for (int64_t i = 0; i < ms; ++i) {
                world.clock.Advance(kMs);
                stop.OnPulse();
            }
        };
        work(2'900);
        world.clock.Advance(60'000 * kMs);  // the script has asked something, and the user was away
        work(99);
        EXPECT_THAT(view.calls, IsEmpty());
        work(2);
        EXPECT_THAT(view.calls, ElementsAre("show m64096 /f/a.txt m64080"));
        EXPECT_EQ(view.looks, 1);
        work(1'000);
        EXPECT_EQ(view.looks, 21) << "the window gets its turn twenty times a second";
        EXPECT_FALSE(stop.token().isCancelled());
        view.isPressed = true;
        work(60);
        EXPECT_TRUE(stop.token().isCancelled());
    }
    EXPECT_THAT(view.calls, ElementsAre("show m64096 /f/a.txt m64080", "hide"));
}

}  // namespace
}  // namespace kinsort
