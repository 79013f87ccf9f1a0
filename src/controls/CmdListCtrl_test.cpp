#include "controls/CmdListCtrl.h"

#include <atomic>
#include <future>
#include <map>
#include <mutex>
#include <set>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/PostedTasks_test.h"
#include "platform/fake/ManualClock.h"
#include "platform/fake/MemoryFileSystem.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::chrono::seconds kLong{60};  // a limit for what should never take so long

class RecordingList final : public CmdListView {
  public:
    void RedrawItems(size_t first, size_t last) override {
        Record("redraw " + std::to_string(first) + "-" + std::to_string(last));
    }
    std::optional<size_t> FocusedItem() const override { return focused; }
    void DeselectItem(size_t row) override { Record("deselect " + std::to_string(row)); }
    void SelectItem(size_t row) override {
        focused = row;
        Record("select " + std::to_string(row));
    }
    void EnsureVisible(size_t row) override { Record("show " + std::to_string(row)); }
    void Post(std::function<void()> task) override { tasks.Post(std::move(task)); }

    std::optional<size_t> focused;
    std::vector<std::string> calls;
    PostedTasks tasks;

  private:
    void Record(std::string call) { calls.push_back(std::move(call)); }
};

// Icons by path and by name, from a disk that can stop answering.
class ScriptedIcons final : public Icons {
  public:
    int IndexOfPath(std::u16string_view path) override {
        Note(ToUtf8(path));
        if (answer_.valid()) answer_.wait();
        const auto found = icons.find(std::u16string(path));
        return found == icons.end() ? -1 : found->second;
    }
    int IndexOfName(std::u16string_view name, uint32_t attributes) override {
        Note(ToUtf8(name) + " " + std::to_string(attributes));
        return 7;
    }
    void Stop() { answer_ = disk_.get_future(); }
    void GoOn() { disk_.set_value(); }

    std::atomic<int> count = 0;  // of what was asked
    std::map<std::u16string, int> icons;
    std::multiset<std::string> asked;

  private:
    void Note(std::string what) {
        const std::lock_guard lock(mutex_);
        asked.insert(std::move(what));
        ++count;
        count.notify_all();
    }
    std::mutex mutex_;
    std::promise<void> disk_;
    std::shared_future<void> answer_;
};

class CmdListCtrlTest : public testing::Test {
  protected:
    void Add(std::initializer_list<const char16_t*> paths) {
        for (const char16_t* path : paths)
            list->Plan().AddItem(path);
    }
    // Two rows, and a worker that waits for the disk of the first.
    void StartOnADeadDisk() {
        Add({u"Z:\\dead", u"Z:\\b"});
        icons.Stop();
        list->OnCacheHint(0, 1);
        icons.count.wait(0);
    }
    void FetchIcons() {
        ASSERT_TRUE(list->WaitForIcons(kLong));
        view.tasks.RunAll();
    }
    std::vector<int> IconsOfRows() const {
        std::vector<int> found;
        for (size_t row = 0; row < list->Plan().GetCount(); ++row)
            found.push_back(list->Plan().GetIcon(row));
        return found;
    }
    // Presses the keys one after the other, with a second between them for "." and a little more for ","; what the
    // focus mark stands on then.
    size_t Type(std::string_view keys) {
        for (const char key : keys) {
            if (key == '.' || key == ',') {
                Pass(key == '.' ? 1000 : 1001);
            } else {
                list->OnKeyDown(static_cast<unsigned char>(key));
            }
        }
        return view.focused.value_or(99);
    }
    void Pass(int milliseconds) { clock.Advance(milliseconds * int64_t{1'000'000}); }

    RecordingList view;
    ScriptedIcons icons;
    MemoryFileSystem files;
    ManualClock clock;
    std::unique_ptr<CCmdListCtrl> list = std::make_unique<CCmdListCtrl>(view, icons, files, clock);
};

TEST_F(CmdListCtrlTest, CellsShowNameCandidateAndIcon) {
    Add({u"Z:\\in\\a.txt"});
    EXPECT_EQ(list->OnGetDispInfo(0, 0).text, u"a.txt");
    EXPECT_EQ(list->OnGetDispInfo(0, 0).image, 0);
    EXPECT_EQ(list->OnGetDispInfo(0, 1).text, u"");
    list->Plan()[0].arrCandidates = {u"Alpha"};
    list->Plan().SetIcon(0, u"Z:\\in\\a.txt", 5);
    EXPECT_EQ(list->OnGetDispInfo(0, 0).image, 5);
    EXPECT_EQ(list->OnGetDispInfo(0, 1).text.data(), list->Plan()[0].arrCandidates[0].data()) << "a copy was made";
    EXPECT_EQ(list->OnGetDispInfo(0, 2).text, u"");
}

TEST_F(CmdListCtrlTest, IconsOfPathsAreAskedForAndThoseOfSharesGuessedByName) {
    files.AddFolder(u"\\\\nas\\share\\folder");
    files.AddFile(u"\\\\nas\\share\\file.txt");
    Add({u"Z:\\in\\a.txt", u"Z:\\in\\unknown", u"\\\\nas\\share\\folder", u"\\\\nas\\share\\file.txt",
         u"\\\\nas\\share\\gone.txt", u"\\\\nas\\share\\folder\\", u"Z:\\in\\behind.txt"});
    icons.icons = {{u"Z:\\in\\a.txt", 3}};
    list->OnCacheHint(0, 5);
    ASSERT_TRUE(list->WaitForIcons(kLong));
    EXPECT_THAT(view.calls, IsEmpty()) << "the list is told on its own thread only";
    view.tasks.RunAll();
    EXPECT_THAT(view.calls, ElementsAre("redraw 0-5"));
    EXPECT_THAT(IconsOfRows(), ElementsAre(3, 0, 7, 7, 7, -1, -1));
    EXPECT_THAT(icons.asked,
                UnorderedElementsAre("Z:\\in\\a.txt", "Z:\\in\\unknown", "folder 16", "file.txt 128", "gone.txt 128"));
    list->OnCacheHint(0, 4);
    ASSERT_TRUE(list->WaitForIcons(kLong));
    EXPECT_EQ(view.tasks.RunAll(), 0) << "nothing was missing";
}

TEST_F(CmdListCtrlTest, RowsCanGoWhileAWorkerWaitsForADisk) {
    Add({u"Z:\\slow", u"Z:\\b", u"Z:\\c", u"Z:\\d"});
    icons.icons = {{u"Z:\\slow", 1}, {u"Z:\\b", 2}, {u"Z:\\c", 3}, {u"Z:\\d", 4}};
    icons.Stop();
    list->OnCacheHint(0, 3);
    icons.count.wait(0);
    list->Plan().RemoveItem(0);  // would never return if the worker had the lock
    list->Plan().RemoveItem(1);
    EXPECT_EQ(list->OnGetDispInfo(0, 0).text, u"b");
    list->OnCacheHint(0, 1);
    icons.GoOn();
    ASSERT_TRUE(list->WaitForIcons(kLong));
    EXPECT_EQ(list->Plan().GetIcon(0), -1) << "the icon of the row that is gone";
    FetchIcons();
    FetchIcons();
    EXPECT_THAT(IconsOfRows(), ElementsAre(2, 4)) << "the hint given meanwhile was forgotten";
    EXPECT_THAT(view.calls, ElementsAre("redraw 0-3", "redraw 0-0"));
}

TEST_F(CmdListCtrlTest, HintsBeyondTheLastWorkerWaitAndTheNewestIsServed) {
    icons.Stop();
    for (size_t row = 0; row < CCmdListCtrl::kMaxIconWorkers + 2; ++row) {
        list->Plan().AddItem(u"Z:\\" + std::u16string(1, static_cast<char16_t>(u'a' + row)));
        list->OnCacheHint(row, row);
    }
    icons.GoOn();
    FetchIcons();
    ASSERT_TRUE(list->WaitForIcons(kLong));
    std::vector<int> expected(CCmdListCtrl::kMaxIconWorkers + 2, 0);
    expected[CCmdListCtrl::kMaxIconWorkers] = -1;
    EXPECT_EQ(IconsOfRows(), expected);
}

TEST_F(CmdListCtrlTest, ClosingWaitsForWorkersAndDropsTheirAnswers) {
    StartOnADeadDisk();
    std::thread releaser([this] { icons.GoOn(); });
    list.reset();
    releaser.join();
    EXPECT_EQ(WorkerThreads::LeftBehind(), 0u);
    view.tasks.RunAll();
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(CmdListCtrlTest, AWorkerThatHangsIsLeftBehindAndHarmsNobodyWhenItWakes) {
    StartOnADeadDisk();
    list.reset();
    EXPECT_EQ(WorkerThreads::LeftBehind(), 1u);
    icons.GoOn();
    while (WorkerThreads::LeftBehind() > 0)
        std::this_thread::yield();
    EXPECT_EQ(icons.asked.count("Z:\\b"), 0u) << "it went on after the list had gone";
    EXPECT_EQ(view.tasks.RunAll(), 0);
}

TEST_F(CmdListCtrlTest, TypingFindsRowsByTheirFirstLetters) {
    EXPECT_TRUE(list->OnKeyDown('A')) << "there is no row";
    view.focused = 3;  // of rows that are gone
    EXPECT_TRUE(list->OnKeyDown('B'));
    EXPECT_THAT(view.calls, IsEmpty());

    Add({u"\\apple", u"\\Rose", u"\\rain", u"\\READ me", u"\\2024", u"\\ant", u"\\over R"});
    const struct {
        std::optional<size_t> focused;
        std::string keys;
        size_t then;
        const char* why;
    } cases[] = {
        {0, "R", 1, "the next that begins with it"},
        {0, "RR", 2, "the same letter again steps on"},
        {0, "RRRR", 1, "and around, to rows before the focused one"},
        {1, "RE", 3, "different letters make a longer prefix"},
        {0, "RA", 2, "which is looked for from the focused row on"},
        {0, "R.E", 3, "a second is no pause"},
        {5, "R,O", 6, "but more than that begins a new prefix"},
        {2, "R", 3, "in any case"},
        {3, "2", 4, "digits"},
        {0, "A", 5, "never the focused row itself for one letter"},
        {std::nullopt, "A", 5, "nothing focused counts as the first row"},
        {5, "X", 5, "no such row"},
        {6, "REAX", 3, "what no row begins with leaves the focus where it is"},
    };
    for (const auto& one : cases) {
        Pass(2000);
        view.focused = one.focused;
        EXPECT_EQ(Type(one.keys), one.then) << one.keys << ": " << one.why;
    }
    Pass(2000);
    view.focused = 0;
    view.calls.clear();
    EXPECT_TRUE(list->OnKeyDown('R'));
    EXPECT_THAT(view.calls, ElementsAre("deselect 0", "select 1", "show 1"));
    view.calls.clear();
    EXPECT_FALSE(list->OnKeyDown(0x25)) << "an arrow";
    EXPECT_TRUE(list->OnKeyDown('E')) << "looked for, though there is none";
    EXPECT_THAT(view.calls, IsEmpty()) << "the arrow had ended the prefix R";
}

}  // namespace
}  // namespace kinsort
