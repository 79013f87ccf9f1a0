#include "app/KinsortApp.h"

#include <gmock/gmock.h>

#include "app/DialogWorld_test.h"
#include "platform/fake/FakeSharedMemory.h"

namespace kinsort {
namespace {

using testing::Contains;
using testing::ElementsAre;

// Writes down the markers that are made and closed.
class MarkerMemory final : public FakeSharedMemory {
  public:
    explicit MarkerMemory(CallLog& log) : calls(log) {}

    Result<std::unique_ptr<SharedMutex>> OpenSharedMutex(std::u16string_view name) override {
        calls.push_back("marker " + ToUtf8(name));
        if (!mutexFailure.ok()) return mutexFailure;
        return std::unique_ptr<SharedMutex>(std::make_unique<Marker>(calls));
    }

    CallLog& calls;

  private:
    class Marker final : public SharedMutex {
      public:
        explicit Marker(CallLog& log) : calls_(log) {}
        ~Marker() override { calls_.push_back("no marker"); }
        Status Lock() override { return {}; }
        void Unlock() override {}

      private:
        CallLog& calls_;
    };
};

class KinsortAppTest : public testing::Test, protected DialogWorld {
  protected:
    // One run of the program.
    void Run(std::vector<std::string> arguments) {
        handOff = {};
        CKinsortApp app({view, services, memory, environment, *codec, "/home/me"}, std::move(arguments));
        EXPECT_FALSE(app.InitInstance());
    }

    MarkerMemory memory{calls};
};

TEST_F(KinsortAppTest, AppliesArgumentsFromLeftToRight) {
    const struct {
        std::vector<std::string> arguments;
        const char16_t* folder;
        int mode;
        int isTwoStep;
    } cases[] = {
        {{}, u"", 0, 0},
        {{"/m", "D:\\Photos"}, u"D:\\Photos\\", 1, 0},
        {{"D:\\A", "D:\\B", "/C"}, u"D:\\B\\", 0, 0},
        {{"/2c"}, u"", 0, 1},
        {{"/2M"}, u"", 1, 1},
        {{"/2m", "/c"}, u"", 0, 1},
        {{"~/x"}, u"/home/me/x/", 0, 0},
        {{"file://nas/x"}, u"file://nas/x\\", 0, 0},
        {{"/move"}, u"/move/", 0, 0},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(testing::PrintToString(one.arguments));
        bool wasTwoStep = false;
        view.whileModal = [&](KinsortDlgEvents& events) {
            events.OnDropFiles({u"Z:\\from\\report"});
            wasTwoStep = view.enabled.empty();  // the folder is still to come
            view.enabled.clear();
        };
        Run(one.arguments);
        EXPECT_EQ(view.box.text, one.folder);
        EXPECT_EQ(view.IsChecked(kIdMove), one.mode == 1);
        EXPECT_EQ(view.IsChecked(kIdCopy), one.mode == 0);
        EXPECT_EQ(wasTwoStep, one.isTwoStep == 1);
    }
}

TEST_F(KinsortAppTest, RunsInThisOrderAndHandsTheFocusBack) {
    ShowHost();
    const struct {
        const char* descriptor;
        const char* parent;
        bool isHostInFront;
    } cases[] = {
        {"0:0:1:1:0::::x:", "modal 0", false},
        {"0:1:1:1:0::::x:", "modal 0", true},
        {"3:1:1:1:0::::x:", "modal 5", true},
        {"3:2:1:1:0::::x:", "modal 5", false},
        {"", "modal 0", false},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.descriptor);
        environment.variables[u"VEL_ExCommand"] = FromUtf8(one.descriptor);
        calls.clear();
        Run({});
        EXPECT_THAT(CallLog(calls.begin(), calls.begin() + 2), ElementsAre("marker ExCommand.Kinsort", one.parent));
        CallLog ending = {"offer undo", "no marker"};
        if (one.isHostInFront) ending.insert(ending.begin(), "front 5");
        EXPECT_EQ(CallLog(calls.end() - static_cast<std::ptrdiff_t>(ending.size()), calls.end()), ending);
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "front 5"), one.isHostInFront ? 1 : 0);
    }
}

TEST_F(KinsortAppTest, RunsWithoutAHostAndWithoutAMarker) {
    environment.variables[u"VEL_ExCommand"] = u"3:1:1:1:16::::Share:";
    memory.mutexFailure = memory.blockFailure = Status::Failure(StatusCode::kAccessDenied, 13, u"denied");
    Run({});
    EXPECT_THAT(calls, Contains("modal 0"));
    EXPECT_THAT(calls, Contains("says denied"));
    EXPECT_EQ(handOff.SharedHandOff, 1);
    EXPECT_EQ(view.texts[kIdCount], u"(0)");
}

}  // namespace
}  // namespace kinsort
