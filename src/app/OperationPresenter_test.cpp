#include "app/OperationPresenter.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>

#include <gmock/gmock.h>

#include "app/DialogWorld_test.h"
#include "fileop/BatchWorld_test.h"
#include "framework/MessageNumbers.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A screen whose user has written the answers down. Its loop is a real one: the batch posts from its own thread.
class ScriptedOperationView final : public OperationView {
  public:
    void Post(std::function<void()> work) override {
        const std::lock_guard lock(mutex_);
        posted_.push_back(std::move(work));
        arrived_.notify_one();
    }
    void RunLoop() override {
        while (!std::exchange(isEnded_, false)) {
            std::unique_lock lock(mutex_);
            arrived_.wait(lock, [this] { return !posted_.empty(); });
            const std::function<void()> work = std::move(posted_.front());
            posted_.pop_front();
            lock.unlock();
            work();
        }
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
        if (replies.empty()) return {};
        const ConflictReply reply = replies.front();
        replies.pop_front();
        return reply;
    }
    size_t AskButtons(const ButtonQuestion& question) override {
        questions.push_back(question);
        return TakeButton(question.escapeButton);
    }
    size_t ShowSummary(const OperationSummary& summary) override {
        EXPECT_FALSE(isOpen);
        summaries.push_back(summary);
        return TakeButton(summary.buttons.size() - 1);
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
    size_t TakeButton(size_t otherwise) {
        if (buttons.empty()) return otherwise;
        const size_t button = buttons.front();
        buttons.pop_front();
        return button;
    }

    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<std::function<void()>> posted_;
    bool isEnded_ = false;
};

// Texts are the number of the message, with the values that it is given behind it.
class OperationPresenterTest : public testing::Test, protected DialogWorld {
  protected:
    OperationPresenterTest() {
        std::u16string texts;
        const std::map<int, const char*> values = {
            {kMsgProgressItems, " %1/%2"},   {kMsgProgressBytes, " %1/%2/%3"},  {kMsgProgressHours, " %1:%2"},
            {kMsgConflictFile, " %1 in %2"}, {kMsgConflictFolder, " %1 in %2"}, {kMsgSizeAndTime, " %1"},
            {kMsgNotifyCopied, " %1 to %2"}, {kMsgNotifyMoved, " %1 to %2"},    {kMsgBatchUnfinished, " %1"},
            {kMsgRetryQuestion, " %1: %2"},  {kMsgUndoUnfinished, " %1"},       {kMsgBatchStopped, " %1"},
            {kMsgBatchNotStarted, " %1"},    {kMsgStatusFirst + 27, " %1"}};
        constexpr int kCounted[] = {kMsgSummaryCopied,   kMsgSummaryMoved,    kMsgSummaryUndone,
                                    kMsgSummarySkipped,  kMsgSummaryFailed,   kMsgSummaryCancelled,
                                    kMsgProgressSeconds, kMsgProgressMinutes, kMsgSummaryRedone};
        for (int number = 64000; number < 64200; ++number) {
            const auto found = values.find(number);
            const bool isCounted = std::find(std::begin(kCounted), std::end(kCounted), number) != std::end(kCounted);
            const std::string value = found != values.end() ? found->second : isCounted ? " %1" : "";
            texts += FromUtf8(std::to_string(number) + "\t" + std::to_string(number) + value + "\r\n");
        }
        files.SetContent(u"Z:\\opt\\vel\\Lang\\Msg.ja-JP.txt", InFile(texts));
        BatchWorld::Prepare(disk);
        disk.MakeFolders("/out/A");
        disk.MakeFolders("/out/B");
        disk.WriteFile("/in/a.txt", "AAA");
        disk.WriteFile("/in/b.txt", "BBB");
    }

    void CarryOut(bool isMove, uint32_t flags = 0x2840) {
        presenter.CarryOut({{u"Z:\\in\\a.txt", u"Z:\\out\\A", isMove}, {u"Z:\\in\\b.txt", u"Z:\\out\\B", isMove}},
                           flags);
        EXPECT_FALSE(screen.isOpen);
    }
    std::string Tree() { return BatchWorld::Tree(disk); }
    static std::u16string N(int number) { return FromUtf8(std::to_string(number)); }

    static constexpr const char* kBefore = "in/ in/a.txt=AAA in/b.txt=BBB out/ out/A/ out/B/";
    static constexpr const char* kMoved = "in/ out/ out/A/ out/A/a.txt=AAA out/B/ out/B/b.txt=BBB";

    MemorySys disk;
    BatchWorld world;
    ScriptedOperationView screen;
    OperationPresenter presenter{world.ServicesOn(disk), screen, messages, *codec};
};

TEST_F(OperationPresenterTest, MovesAndOffersToUndo) {
    CarryOut(true);
    EXPECT_EQ(Tree(), kMoved);
    EXPECT_EQ(screen.progress.front().title, N(kMsgProgressMove));
    EXPECT_EQ(screen.progress.front().headline, N(kMsgProgressPreparing));
    EXPECT_EQ(screen.progress.back().headline, N(kMsgProgressItems) + u" 2/2");
    EXPECT_EQ(screen.progress.back().permille, 1000);
    EXPECT_THAT(screen.summaries, IsEmpty());
    presenter.OfferUndo();
    presenter.OfferUndo();
    ASSERT_THAT(screen.offers, SizeIs(1)) << "once for each batch";
    EXPECT_EQ(screen.offers[0].text, N(kMsgNotifyMoved) + u" 2 to /out");
    EXPECT_EQ(Tree(), kMoved);

    screen.takesOffers = true;
    presenter.CarryOut({{u"Z:\\out\\A\\a.txt", u"Z:\\in\\", true}}, 0x2840);
    presenter.OfferUndo();
    EXPECT_EQ(screen.offers[1].text, N(kMsgNotifyMoved) + u" 1 to /");
    EXPECT_EQ(Tree(), kMoved);
    EXPECT_EQ(screen.progress.back().title, N(kMsgProgressUndo));
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
        {"replace", 0x2840, {{ConflictAnswer::kReplace, AnswerScope::kThisOne}}, 1, "out/A/a.txt=AAA", 0},
        {"skip", 0x2840, {{ConflictAnswer::kSkip, AnswerScope::kAllInBatch}}, 1, "out/A/a.txt=old", 0},
        {"keep both", 0x2840, {{ConflictAnswer::kKeepBoth, AnswerScope::kThisOne}}, 1, "out/A/a (2).txt=AAA", 0},
        {"stop", 0x2840, {{ConflictAnswer::kCancel, AnswerScope::kThisOne}}, 1, "out/A/a.txt=old", 1},
        {"no confirmation", 0x2850, {}, 0, "out/A/a.txt=AAA", 0},
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
    EXPECT_EQ(question.instruction, N(kMsgConflictFile) + u" a.txt in /out/A\n" + N(kMsgConflictUndoHint));
    EXPECT_EQ(question.item.path, u"/in/a.txt");
    EXPECT_EQ(question.item.details, N(kMsgSizeAndTime) + u" 3 B");
    EXPECT_EQ(question.target.path, u"/out/A/a.txt");
    EXPECT_EQ(question.target.details, N(kMsgSizeAndTime) + u" 4 B");
    std::vector<std::u16string> labels;
    for (const ConflictButton& button : question.buttons)
        labels.push_back(button.label);
    EXPECT_THAT(labels,
                ElementsAre(N(kMsgConflictReplace), N(kMsgConflictSkip), N(kMsgConflictKeepBoth), N(kMsgStopBatch)));
    EXPECT_EQ(question.buttons[question.defaultButton].answer, ConflictAnswer::kSkip);
    EXPECT_EQ(question.buttons.back().answer, ConflictAnswer::kCancel);
    presenter.OfferUndo();
    ASSERT_THAT(screen.offers, SizeIs(1));
    EXPECT_EQ(screen.offers[0].text, N(kMsgNotifyMoved) + u" 1 to /out\n" + N(kMsgSummarySkipped) + u" 1");

    OperationTexts texts(messages, *codec);
    Conflict conflict{.item = {.path = u"Z:\\in\\x", .kind = FileKind::kFile},
                      .target = {.path = u"Z:\\out\\x", .kind = FileKind::kFolder},
                      .canReplace = false};
    const ConflictQuestion against = texts.Ask(conflict);
    EXPECT_EQ(against.instruction, N(kMsgConflictFolder) + u" x in /out");
    EXPECT_EQ(against.buttons.front().answer, ConflictAnswer::kSkip);
    conflict = {.item = conflict.target, .target = conflict.target, .canReplace = true, .isMerge = true};
    EXPECT_EQ(texts.Ask(conflict).buttons.front().label, N(kMsgConflictMerge));
}

TEST_F(OperationPresenterTest, TellsWhatWentWrongAndUndoesTheRest) {
    presenter.CarryOut({{u"Z:\\in\\a.txt", u"Z:\\out\\A", true},
                        {u"Z:\\in\\gone", u"Z:\\out\\A", true},
                        {u"Z:\\in\\b.txt", u"Z:\\out\\Missing", true}},
                       0x2840);
    ASSERT_THAT(screen.summaries, SizeIs(1));
    const OperationSummary& summary = screen.summaries[0];
    EXPECT_EQ(summary.headline, N(kMsgSummaryMoved) + u" 1");
    EXPECT_THAT(summary.notes, ElementsAre(N(kMsgSummaryFailed) + u" 2"));
    ASSERT_THAT(summary.rows, SizeIs(2));
    EXPECT_EQ(summary.rows[0].name, u"/in/gone");
    EXPECT_EQ(summary.rows[0].reason, N(kMsgReasonFirst + static_cast<int>(ItemReason::kSourceGone)));
    EXPECT_EQ(summary.rows[1].name, u"/in/b.txt");
    EXPECT_TRUE(summary.rows[1].reason.starts_with(N(kMsgStatusFirst + 1)));
    EXPECT_THAT(summary.buttons, ElementsAre(N(kMsgSummaryUndo), N(kMsgSummaryClose)));
    presenter.OfferUndo();
    EXPECT_THAT(screen.offers, IsEmpty()) << "the summary has offered it";

    screen.buttons = {0};
    presenter.CarryOut({{u"Z:\\in\\b.txt", u"Z:\\out\\B", true}, {u"Z:\\in\\gone", u"Z:\\out\\A", true}}, 0x2840);
    EXPECT_EQ(Tree(), "in/ in/b.txt=BBB out/ out/A/ out/A/a.txt=AAA out/B/");

    presenter.CarryOut({{u"Z:\\in\\gone", u"Z:\\out\\A", false}}, 0x2840);
    EXPECT_EQ(screen.summaries.back().headline, N(kMsgSummaryNothing));
    EXPECT_THAT(screen.summaries.back().buttons, ElementsAre(N(kMsgSummaryClose)));
    presenter.CarryOut({}, 0x2840);
    EXPECT_THAT(screen.summaries, SizeIs(3)) << "of nothing nothing is said";
}

TEST_F(OperationPresenterTest, StopsWhenTheUserCancels) {
    screen.whenProgressBegins = [this] { screen.cancel(); };
    CarryOut(true);
    EXPECT_EQ(Tree(), kBefore);
    EXPECT_TRUE(screen.progress[1].isStopping);
    EXPECT_EQ(screen.progress[1].headline, N(kMsgProgressCancelling));
    ASSERT_THAT(screen.summaries, SizeIs(1));
    EXPECT_THAT(screen.summaries[0].notes, testing::Contains(N(kMsgUntouched)));
    EXPECT_THAT(screen.summaries[0].rows, IsEmpty());
}

TEST_F(OperationPresenterTest, StopsAndIsSilentWhenTheSessionEnds) {
    screen.whenProgressBegins = [this] { presenter.CancelRunning(); };
    CarryOut(true);
    EXPECT_EQ(Tree(), kBefore);
    presenter.OfferUndo();
    EXPECT_THAT(screen.summaries, IsEmpty());
    EXPECT_THAT(screen.offers, IsEmpty());
}

TEST_F(OperationPresenterTest, AsksWhatToDoAboutAFullVolume) {
    disk.AddVolume("/small", {.bytes = 12'288});
    disk.MakeFolders("/small/S");
    disk.WriteFile("/in/big", std::string(100'000, 'x'));
    screen.buttons = {0, 1, 1};  // again, skip, close
    presenter.CarryOut({{u"Z:\\in\\big", u"Z:\\small\\S", true}}, 0x2840);
    ASSERT_THAT(screen.questions, SizeIs(2));
    EXPECT_EQ(screen.questions[0].instruction, N(kMsgRetryQuestion) + u" /small/S/big: " + N(kMsgStatusFirst + 5));
    EXPECT_THAT(screen.questions[0].buttons, ElementsAre(N(kMsgRetry), N(kMsgConflictSkip), N(kMsgStopBatch)));
    EXPECT_EQ(disk.ReadFile("/in/big"), std::string(100'000, 'x'));
    EXPECT_THAT(screen.summaries, SizeIs(1));
}

TEST_F(OperationPresenterTest, BeginsNothingWithoutAPlaceForTheJournal) {
    OperationPresenter homeless(std::nullopt, screen, messages, *codec);
    homeless.CarryOut({{u"Z:\\in\\a.txt", u"Z:\\out\\A", true}}, 0x2840);
    homeless.OfferUndo();
    homeless.OfferRecovery();
    EXPECT_EQ(screen.summaries.at(0).headline, N(kMsgNoJournalPlace));
    EXPECT_THAT(screen.progress, IsEmpty());
    EXPECT_EQ(Tree(), kBefore);

    FaultSys faults(disk);
    faults.FromKind(SysCall::kReserve, 1, Fault::Fail(StatusCode::kNoSpace));
    faults.FromKind(SysCall::kWrite, 1, Fault::Fail(StatusCode::kNoSpace));
    OperationPresenter full(world.ServicesOn(faults), screen, messages, *codec);
    full.CarryOut({{u"Z:\\in\\a.txt", u"Z:\\out\\A", true}}, 0x2840);
    EXPECT_EQ(screen.summaries.at(1).headline, N(kMsgSummaryNothing));
    EXPECT_EQ(screen.summaries.at(1).notes.back(), N(kMsgBatchNotStarted) + u" /state/undo: " + N(kMsgStatusFirst + 5));
    EXPECT_EQ(Tree(), kBefore);
}

TEST_F(OperationPresenterTest, OffersToRecoverWhatACrashTore) {
    presenter.OfferRecovery();
    EXPECT_THAT(screen.questions, IsEmpty());
    EXPECT_FALSE(disk.OpenFolder("/state/undo").ok()) << "no folder is made";

    const struct {
        const char* what;
        bool isUndoTorn;
        int title;
        size_t button;
        const char* after;  // null: as the crash left it
    } cases[] = {
        {"leave", false, 0, 2, nullptr},
        {"finish", false, kMsgProgressMove, 0, kMoved},
        {"undo", false, kMsgProgressUndo, 1, kBefore},
        {"leave the undo", true, 0, 2, nullptr},
        {"finish the undo", true, kMsgProgressUndo, 0, kBefore},
        {"undo the undo", true, kMsgProgressRedo, 1, kMoved},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        MemorySys torn;
        BatchWorld::Prepare(torn);
        for (const char* folder : {"/out/A", "/out/B"})
            torn.MakeFolders(folder);
        torn.WriteFile("/in/a.txt", "AAA");
        torn.WriteFile("/in/b.txt", "BBB");
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
        EXPECT_EQ(screen.questions.at(0).instruction,
                  N(one.isUndoTorn ? kMsgUndoUnfinished : kMsgBatchUnfinished) + u" /out");
        EXPECT_EQ(BatchWorld::Tree(torn), one.after == nullptr ? left : one.after);
        EXPECT_EQ(screen.progress.empty() ? u"" : screen.progress.back().title, one.title == 0 ? u"" : N(one.title));
        EXPECT_THAT(screen.summaries, IsEmpty());
        next.OfferRecovery();
        EXPECT_THAT(screen.questions, SizeIs(one.after == nullptr ? 2 : 1)) << "asked again only when it was left";
    }
}

TEST_F(OperationPresenterTest, PutsProgressIntoWords) {
    OperationTexts texts(messages, *codec);
    const std::u16string items = N(kMsgProgressItems);
    const std::u16string bytes = N(kMsgProgressBytes);
    constexpr BatchPhase kRunning = BatchPhase::kRunning;
    const struct {
        const char* what;
        BatchPhase phase;
        uint64_t items, itemsTotal, bytes, bytesTotal;
        double secondsLeft;
        int permille;
        std::u16string headline, figures;
    } cases[] = {
        {"planning", BatchPhase::kPlanning, 0, 9, 0, 0, -1, -1, N(kMsgProgressPreparing), u""},
        {"moves", kRunning, 1, 3, 0, 0, 59.5, 333, items + u" 1/3", N(kMsgProgressMinutes) + u" 1"},
        {"copies", kRunning, 0, 3, 500, 2000, 15, 250, items + u" 0/3",
         bytes + u" 500 B/2.0 kB/100 B " + N(kMsgProgressSeconds) + u" 15"},
        {"only names left", kRunning, 1, 3, 2000, 2000, 0, 1000, items + u" 1/3", bytes + u" 2.0 kB/2.0 kB/100 B"},
        {"an hour", kRunning, 1, 4, 0, 0, 3541, 250, items + u" 1/4", N(kMsgProgressHours) + u" 1:0"},
        {"beyond belief", BatchPhase::kSyncing, 0, 4, 0, 0, 1e6, 0, items + u" 0/4", u""},
        {"nothing to do", kRunning, 0, 0, 0, 0, -1, -1, items + u" 0/0", u""},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        ProgressState state;
        state.phase = one.phase;
        state.itemsDone = one.items;
        state.itemsTotal = one.itemsTotal;
        state.bytesDone = one.bytes;
        state.bytesTotal = one.bytesTotal;
        state.bytesPerSecond = 100;
        state.secondsLeft = one.secondsLeft;
        const ProgressTexts shown = texts.Progress(OperationKind::kCopy, state, false);
        EXPECT_EQ(shown.permille, one.permille);
        EXPECT_EQ(shown.headline, one.headline);
        EXPECT_EQ(shown.figures, one.figures);
    }
}

TEST_F(OperationPresenterTest, PutsReasonsIntoWords) {
    OperationTexts texts(messages, *codec);
    const Status gone = Status::Failure(StatusCode::kNotFound, 2, u"raw").At(u"Z:\\out\\A");
    const Status other = Status::Failure(StatusCode::kOther, 71, u"Protocol error");
    constexpr ItemOutcome kFailed = ItemOutcome::kFailed;
    const struct {
        const char16_t* source;
        ItemOutcome outcome;
        ItemReason reason;
        Status status;
        std::u16string text;
    } cases[] = {
        {u"Z:\\in\\a", kFailed, ItemReason::kSystem, gone, N(kMsgStatusFirst + 1) + u" (/out/A)"},
        {u"Z:\\out\\A", kFailed, ItemReason::kSystem, gone, N(kMsgStatusFirst + 1)},
        {u"", kFailed, ItemReason::kSystem, other, N(kMsgStatusFirst + 27) + u" Protocol error"},
        {u"", kFailed, ItemReason::kSystem, Status::Failure(StatusCode::kOther, 71), N(kMsgStatusFirst + 27) + u" 71"},
        {u"", kFailed, ItemReason::kLastCopy, {}, N(kMsgReasonFirst + 12)},
        {u"", ItemOutcome::kNotReached, ItemReason::kNone, {}, N(kMsgReasonFirst + 14)},
    };
    for (const auto& one : cases)
        EXPECT_EQ(texts.ReasonText({0, one.source, u"", one.outcome, one.reason, one.status}), one.text);
}

}  // namespace
}  // namespace kinsort
