#include "app/OperationPresenter.h"

#include <deque>
#include <fstream>

#include <gmock/gmock.h>

#include "app/DialogWorld_test.h"
#include "fileop/BatchWorld_test.h"

namespace kinsort {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A screen whose user has written the answers down. Its loop is a real one: the batch posts from its own thread.
class ScriptedOperationView final : public OperationView {
  public:
    void Post(std::function<void()> work) override { tasks_.Post(std::move(work)); }
    void RunLoop() override {
        while (!std::exchange(isEnded_, false))
            tasks_.RunNext();
    }
    void EndLoop() override { isEnded_ = true; }

    void BeginProgress(const ProgressTexts& texts, std::function<void()> onCancel) override {
        EXPECT_FALSE(isOpen);
        isOpen = true;
        progress.push_back(texts);
        cancel = std::move(onCancel);
        if (whenProgressBegins) whenProgressBegins();
    }
    void UpdateProgress(const ProgressTexts& texts) override {
        EXPECT_TRUE(isOpen);
        progress.push_back(texts);
    }
    void EndProgress() override { isOpen = false; }
    ConflictReply AskConflict(const ConflictQuestion& question) override {
        conflicts.push_back(question);
        return Take(replies, ConflictReply());
    }
    size_t AskButtons(const ButtonQuestion& question) override {
        questions.push_back(question);
        return Take(buttons, question.escapeButton);
    }
    size_t ShowSummary(const OperationSummary& summary) override {
        EXPECT_FALSE(isOpen);
        summaries.push_back(summary);
        return Take(buttons, summary.buttons.size() - 1);
    }
    bool OfferUndo(const UndoOffer& offer) override {
        offers.push_back(offer);
        return takesOffers;
    }

    std::deque<ConflictReply> replies;  // skip when there are none left
    std::deque<size_t> buttons;         // the one for Esc when there are none left
    std::function<void()> whenProgressBegins;
    bool takesOffers = false;
    bool isOpen = false;
    std::vector<ProgressTexts> progress;
    std::vector<ConflictQuestion> conflicts;
    std::vector<ButtonQuestion> questions;
    std::vector<OperationSummary> summaries;
    std::vector<UndoOffer> offers;
    std::function<void()> cancel;

  private:
    template <typename Answer>
    static Answer Take(std::deque<Answer>& answers, Answer otherwise) {
        if (answers.empty()) return otherwise;
        const Answer answer = answers.front();
        answers.pop_front();
        return answer;
    }

    PostedTasks tasks_;
    bool isEnded_ = false;
};

constexpr uint32_t kAsks = 0x2840;  // about conflicts
constexpr const char* kBefore = "in/ in/a.txt=AAA in/b.txt=BBB out/ out/A/ out/B/";
constexpr const char* kMoved = "in/ out/ out/A/ out/A/a.txt=AAA out/B/ out/B/b.txt=BBB";

ItemRequest Item(const std::u16string& name, const std::u16string& folder, bool isMove = true) {
    return {u"Z:\\in\\" + name, u"Z:\\out\\" + folder, isMove};
}

// With the English texts.
class OperationPresenterTest : public testing::Test, protected DialogWorld {
  protected:
    OperationPresenterTest() {
        std::ifstream english(KINSORT_BUILT_TEXTS "/Lang/Msg.en-US.txt", std::ios::binary);
        files.SetContent(kMessageFile, std::string(std::istreambuf_iterator<char>(english), {}));
        Fill(disk);
    }
    static void Fill(MemorySys& empty) {
        BatchWorld::Prepare(empty);
        empty.MakeFolders("/out/A");
        empty.MakeFolders("/out/B");
        empty.WriteFile("/in/a.txt", "AAA");
        empty.WriteFile("/in/b.txt", "BBB");
    }
    void CarryOut(bool isMove, uint32_t flags = kAsks) {
        presenter.CarryOut({Item(u"a.txt", u"A", isMove), Item(u"b.txt", u"B", isMove)}, flags);
        EXPECT_FALSE(screen.isOpen);
    }
    std::string Tree() { return BatchWorld::Tree(disk); }

    MemorySys disk;
    BatchWorld world;
    ScriptedOperationView screen;
    OperationPresenter presenter{world.ServicesOn(disk), screen, messages, *codec};
    OperationTexts texts{messages, *codec};
};

TEST_F(OperationPresenterTest, MovesAndOffersToUndo) {
    CarryOut(true);
    EXPECT_EQ(Tree(), kMoved);
    EXPECT_EQ(screen.progress.front().title, u"Moving");
    EXPECT_EQ(screen.progress.front().headline, u"Preparing...");
    EXPECT_EQ(screen.progress.back().headline, u"2 of 2 items");
    EXPECT_EQ(screen.progress.back().permille, 1000);
    EXPECT_THAT(screen.summaries, IsEmpty());
    presenter.OfferUndo();
    presenter.OfferUndo();
    ASSERT_THAT(screen.offers, SizeIs(1)) << "once for each batch";
    EXPECT_EQ(screen.offers[0].text, u"Items moved into the folders of /out: 2.");
    EXPECT_EQ(Tree(), kMoved);

    screen.takesOffers = true;
    presenter.CarryOut({{u"Z:\\out\\A\\a.txt", u"Z:\\in\\", true}}, kAsks);
    presenter.OfferUndo();
    EXPECT_EQ(screen.offers[1].text, u"Items moved into the folders of /: 1.");
    EXPECT_EQ(Tree(), kMoved);
    EXPECT_EQ(screen.progress.back().title, u"Undoing");
    EXPECT_THAT(screen.summaries, IsEmpty());
}

TEST_F(OperationPresenterTest, AsksAboutConflictsOrReplacesWithoutAsking) {
    disk.WriteFile("/out/A/a.txt", "old");
    const std::string before = Tree();
    const struct {
        const char* what;
        uint32_t flags;
        std::deque<ConflictReply> replies;
        size_t asked;
        const char* a;  // what lies in the target then
        size_t summaries;
    } cases[] = {
        {"replace", kAsks, {{ConflictAnswer::kReplace, AnswerScope::kThisOne}}, 1, "out/A/a.txt=AAA", 0},
        {"skip", kAsks, {{ConflictAnswer::kSkip, AnswerScope::kAllInBatch}}, 1, "out/A/a.txt=old", 0},
        {"keep both", kAsks, {{ConflictAnswer::kKeepBoth, AnswerScope::kThisOne}}, 1, "out/A/a (2).txt=AAA", 0},
        {"stop", kAsks, {{ConflictAnswer::kCancel, AnswerScope::kThisOne}}, 1, "out/A/a.txt=old", 1},
        {"no confirmation", kAsks | kFofNoConfirmation, {}, 0, "out/A/a.txt=AAA", 0},
    };
    screen.takesOffers = true;
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        screen.conflicts.clear();
        screen.summaries.clear();
        screen.replies = one.replies;
        CarryOut(false, one.flags);
        EXPECT_THAT(screen.conflicts, SizeIs(one.asked));
        EXPECT_THAT(Tree(), testing::HasSubstr(one.a));
        EXPECT_THAT(screen.summaries, SizeIs(one.summaries));
        presenter.OfferUndo();
        EXPECT_EQ(Tree(), before);
    }
}

TEST_F(OperationPresenterTest, PutsAConflictIntoWords) {
    disk.WriteFile("/out/A/a.txt", "old!");
    screen.replies = {{ConflictAnswer::kSkip, AnswerScope::kThisOne}};
    CarryOut(true);
    ASSERT_THAT(screen.conflicts, SizeIs(1));
    const ConflictQuestion& question = screen.conflicts[0];
    EXPECT_EQ(question.instruction,
              u"/out/A already has a file named \"a.txt\".\nA replaced file is kept; undo brings it back.");
    EXPECT_EQ(question.item.path, u"/in/a.txt");
    EXPECT_TRUE(question.item.details.starts_with(u"3 B, "));
    EXPECT_EQ(question.target.path, u"/out/A/a.txt");
    EXPECT_TRUE(question.target.details.starts_with(u"4 B, "));
    std::vector<std::u16string> labels;
    for (const ConflictButton& button : question.buttons)
        labels.push_back(button.label);
    EXPECT_THAT(labels, ElementsAre(u"&Replace", u"&Skip", u"&Keep both", u"&Stop"));
    EXPECT_EQ(question.buttons[question.defaultButton].answer, ConflictAnswer::kSkip);
    EXPECT_EQ(question.buttons.back().answer, ConflictAnswer::kCancel);
    presenter.OfferUndo();
    ASSERT_THAT(screen.offers, SizeIs(1));
    EXPECT_EQ(screen.offers[0].text, u"Items moved into the folders of /out: 1.\nItems skipped: 1.");

    Conflict conflict{.item = {.path = u"Z:\\in\\x", .kind = FileKind::kFile},
                      .target = {.path = u"Z:\\out\\x", .kind = FileKind::kFolder},
                      .canReplace = false};
    const ConflictQuestion against = texts.Ask(conflict);
    EXPECT_EQ(against.instruction, u"/out already has a folder named \"x\".");
    EXPECT_EQ(against.buttons.front().answer, ConflictAnswer::kSkip);
    conflict = {.item = conflict.target, .target = conflict.target, .canReplace = true, .isMerge = true};
    EXPECT_EQ(texts.Ask(conflict).buttons.front().label, u"&Merge");
}

TEST_F(OperationPresenterTest, TellsWhatWentWrongAndUndoesTheRest) {
    presenter.CarryOut({Item(u"a.txt", u"A"), Item(u"gone", u"A"), Item(u"b.txt", u"Missing")}, kAsks);
    ASSERT_THAT(screen.summaries, SizeIs(1));
    const OperationSummary& summary = screen.summaries[0];
    EXPECT_EQ(summary.headline, u"Items moved: 1.");
    EXPECT_THAT(summary.notes, ElementsAre(u"Items that failed: 2."));
    ASSERT_THAT(summary.rows, SizeIs(2));
    EXPECT_EQ(summary.rows[0].name, u"/in/gone");
    EXPECT_EQ(summary.rows[0].reason, u"it is gone since it was chosen");
    EXPECT_EQ(summary.rows[1].name, u"/in/b.txt");
    EXPECT_EQ(summary.rows[1].reason, u"it does not exist; check the name and the folder (/out/Missing)");
    EXPECT_THAT(summary.buttons, ElementsAre(u"&Undo", u"&Close"));
    presenter.OfferUndo();
    EXPECT_THAT(screen.offers, IsEmpty()) << "the summary has offered it";

    screen.buttons = {0};
    presenter.CarryOut({Item(u"b.txt", u"B"), Item(u"gone", u"A")}, kAsks);
    EXPECT_EQ(Tree(), "in/ in/b.txt=BBB out/ out/A/ out/A/a.txt=AAA out/B/");

    presenter.CarryOut({Item(u"gone", u"A", false)}, kAsks);
    EXPECT_EQ(screen.summaries.back().headline, u"Nothing was done.");
    EXPECT_THAT(screen.summaries.back().buttons, ElementsAre(u"&Close"));
    presenter.CarryOut({}, kAsks);
    EXPECT_THAT(screen.summaries, SizeIs(3)) << "of nothing nothing is said";
}

TEST_F(OperationPresenterTest, TellsWhatCouldNotBeKept) {
    FaultSys faults(disk);
    faults.FromKind(SysCall::kCopyUserAttributes, 1, Fault::Fail(StatusCode::kUnsupported));
    OperationPresenter lossy(world.ServicesOn(faults), screen, messages, *codec);
    lossy.CarryOut({Item(u"a.txt", u"A", false)}, kAsks);
    lossy.OfferUndo();
    EXPECT_EQ(screen.offers.at(0).text,
              u"Items copied into the folders of /out: 1.\n"
              u"Some user attributes could not be kept: the target volume does not hold them.");
}

TEST_F(OperationPresenterTest, StopsWhenTheUserCancelsOrTheSessionEnds) {
    screen.whenProgressBegins = [this] { screen.cancel(); };
    CarryOut(true);
    EXPECT_EQ(Tree(), kBefore);
    EXPECT_TRUE(screen.progress[1].isStopping);
    EXPECT_EQ(screen.progress[1].headline, u"Stopping. The item at work is finished or taken back first...");
    ASSERT_THAT(screen.summaries, SizeIs(1));
    EXPECT_THAT(screen.summaries[0].notes, Contains(u"Every item is either wholly done or untouched."));
    EXPECT_THAT(screen.summaries[0].rows, IsEmpty());

    screen.whenProgressBegins = [this] { presenter.CancelRunning(); };
    CarryOut(true);
    EXPECT_EQ(Tree(), kBefore);
    presenter.OfferUndo();
    EXPECT_THAT(screen.summaries, SizeIs(1)) << "at the end of the session nothing is said";
    EXPECT_THAT(screen.offers, IsEmpty());
}

TEST_F(OperationPresenterTest, AsksWhatToDoAboutAFullVolume) {
    disk.AddVolume("/small", {.bytes = 12'288});
    disk.MakeFolders("/small/S");
    disk.WriteFile("/in/big", std::string(100'000, 'x'));
    screen.buttons = {0, 1, 1};  // again, skip, close
    presenter.CarryOut({{u"Z:\\in\\big", u"Z:\\small\\S", true}}, kAsks);
    ASSERT_THAT(screen.questions, SizeIs(2));
    EXPECT_EQ(screen.questions[0].instruction, u"/small/S/big\nno space left on the volume; free some and try again");
    EXPECT_THAT(screen.questions[0].buttons, ElementsAre(u"&Retry", u"&Skip", u"&Stop"));
    EXPECT_EQ(disk.ReadFile("/in/big"), std::string(100'000, 'x'));
    EXPECT_THAT(screen.summaries, SizeIs(1));
}

TEST_F(OperationPresenterTest, BeginsNothingWithoutAPlaceForTheJournal) {
    OperationPresenter homeless(std::nullopt, screen, messages, *codec);
    homeless.CarryOut({Item(u"a.txt", u"A")}, kAsks);
    homeless.OfferUndo();
    homeless.OfferRecovery();
    EXPECT_EQ(screen.summaries.at(0).headline,
              u"There is no place for the undo journal. Set HOME or XDG_STATE_HOME to a folder.");
    EXPECT_THAT(screen.progress, IsEmpty());
    EXPECT_EQ(Tree(), kBefore);

    FaultSys faults(disk);
    faults.FromKind(SysCall::kReserve, 1, Fault::Fail(StatusCode::kNoSpace));
    faults.FromKind(SysCall::kWrite, 1, Fault::Fail(StatusCode::kNoSpace));
    OperationPresenter full(world.ServicesOn(faults), screen, messages, *codec);
    full.CarryOut({Item(u"a.txt", u"A")}, kAsks);
    EXPECT_EQ(screen.summaries.at(1).headline, u"Nothing was done.");
    EXPECT_EQ(screen.summaries.at(1).notes.back(),
              u"The operation cannot begin: /state/undo: no space left on the volume; free some and try again");
    EXPECT_EQ(Tree(), kBefore);
}

TEST_F(OperationPresenterTest, OffersToRecoverWhatACrashTore) {
    presenter.OfferRecovery();
    EXPECT_THAT(screen.questions, IsEmpty());
    EXPECT_FALSE(disk.OpenFolder("/state/undo").ok()) << "no folder is made";

    const struct {
        const char* what;
        bool isUndoTorn;
        std::u16string title;  // of the progress
        size_t button;
        const char* after;  // null: as the crash left it
    } cases[] = {
        {"leave", false, u"", 2, nullptr},
        {"finish", false, u"Moving", 0, kMoved},
        {"undo", false, u"Undoing", 1, kBefore},
        {"leave the undo", true, u"", 2, nullptr},
        {"finish the undo", true, u"Undoing", 0, kBefore},
        {"undo the undo", true, u"Redoing", 1, kMoved},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        MemorySys torn;
        Fill(torn);
        FaultSys faults(torn);
        faults.AtKind(SysCall::kRenameNoReplace, one.isUndoTorn ? 4 : 2, Fault::Kill());
        OperationPolicy policy;
        policy.threads = 1;
        world.Run(faults, {{true, "/in/a.txt", "/out/A"}, {true, "/in/b.txt", "/out/B"}}, policy);
        if (one.isUndoTorn) world.Undo(faults);
        ASSERT_TRUE(faults.killed());
        const std::string left = BatchWorld::Tree(torn);
        ASSERT_TRUE(left != kBefore && left != kMoved);

        screen.questions.clear();
        screen.progress.clear();
        OperationPresenter next(world.ServicesOn(torn), screen, messages, *codec);
        screen.buttons = {one.button};
        next.OfferRecovery();
        EXPECT_TRUE(screen.questions.at(0).instruction.starts_with(one.isUndoTorn ? u"Undoing the sorting into /out on "
                                                                                  : u"Sorting into /out on "));
        EXPECT_EQ(BatchWorld::Tree(torn), one.after == nullptr ? left : one.after);
        EXPECT_EQ(screen.progress.empty() ? u"" : screen.progress.back().title, one.title);
        EXPECT_THAT(screen.summaries, IsEmpty());
        next.OfferRecovery();
        EXPECT_THAT(screen.questions, SizeIs(one.after == nullptr ? 2 : 1)) << "asked again only when it was left";
    }
}

TEST_F(OperationPresenterTest, PutsProgressIntoWords) {
    constexpr BatchPhase kRunning = BatchPhase::kRunning;
    const struct {
        const char* what;
        BatchPhase phase;
        uint64_t items, itemsTotal, bytes, bytesTotal;
        double secondsLeft;
        int permille;
        std::u16string headline, figures;
    } cases[] = {
        {"planning", BatchPhase::kPlanning, 0, 9, 0, 0, -1, -1, u"Preparing...", u""},
        {"moves", kRunning, 1, 3, 0, 0, 59.5, 333, u"1 of 3 items", u"about 1 min left"},
        {"copies", kRunning, 0, 3, 500, 2000, 15, 250, u"0 of 3 items", u"500 B of 2.0 kB (100 B/s) about 15 s left"},
        {"only names left", kRunning, 1, 3, 2000, 2000, 0, 1000, u"1 of 3 items", u"2.0 kB of 2.0 kB (100 B/s)"},
        {"an hour", kRunning, 1, 4, 0, 0, 3541, 250, u"1 of 4 items", u"about 1 h 0 min left"},
        {"beyond belief", BatchPhase::kSyncing, 0, 4, 0, 0, 1e6, 0, u"0 of 4 items", u""},
        {"nothing to do", kRunning, 0, 0, 0, 0, -1, -1, u"0 of 0 items", u""},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        const ProgressTexts shown = texts.Progress(
            OperationKind::kCopy,
            {one.phase, one.items, one.itemsTotal, one.bytes, one.bytesTotal, 100, 0, one.secondsLeft, u""}, false);
        EXPECT_EQ(shown.permille, one.permille);
        EXPECT_EQ(shown.headline, one.headline);
        EXPECT_EQ(shown.figures, one.figures);
    }
}

TEST_F(OperationPresenterTest, PutsReasonsIntoWords) {
    const auto reason = [this](ItemOutcome outcome, ItemReason why, const Status& status) {
        return texts.ReasonText({0, u"Z:\\in\\a", u"", outcome, why, status});
    };
    const auto failure = [&](const Status& status) {
        return reason(ItemOutcome::kFailed, ItemReason::kSystem, status);
    };
    EXPECT_EQ(failure(Status::Failure(StatusCode::kNotFound, 2, u"raw").At(u"Z:\\in\\a")),
              u"it does not exist; check the name and the folder");
    EXPECT_EQ(failure(Status::Failure(StatusCode::kOther, 71, u"Protocol error")), u"the system says: Protocol error");
    EXPECT_EQ(failure(Status::Failure(StatusCode::kOther, 71)), u"the system says: 71");
    EXPECT_EQ(reason(ItemOutcome::kNotReached, ItemReason::kNone, {}), u"the operation was stopped before it");
    EXPECT_EQ(reason(ItemOutcome::kFailed, ItemReason::kLastCopy, {}), u"it is the last copy there is, so it stays");
}

}  // namespace
}  // namespace kinsort
