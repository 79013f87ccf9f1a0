#include "classify/CandidateSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/fake/FakeLocaleMap.h"
#include "platform/fake/MemoryFileSystem.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Candidates of all rows, "-" for none.
std::string CandidatesOf(const ClassificationPlan& plan) {
    std::string text;
    for (size_t i = 0; i < plan.GetCount(); ++i) {
        if (i > 0) text += ' ';
        for (const auto& candidate : plan[i].arrCandidates)
            text += ToUtf8(candidate) + ';';
        if (plan[i].arrCandidates.empty()) text += '-';
    }
    return text;
}

TEST(ClassificationPlan, NamesARowByWhatStandsBehindTheLastSeparator) {
    ClassificationPlan plan;
    const struct {
        std::u16string path, name;
    } rows[] = {
        {u"Z:\\home\\a.txt", u"a.txt"}, {u"Z:/home/b/c.txt", u"c.txt"}, {u"plain", u"plain"},
        {u"Z:\\mixed/d\\e", u"e"},      {u"Z:\\folder\\", u""},         {u"", u""},
    };
    for (const auto& row : rows) {
        plan.AddItem(row.path);
        const CmdListItem& item = plan[plan.GetCount() - 1];
        EXPECT_EQ(item.strName, row.name);
        EXPECT_EQ(item.strPath, row.path);
        EXPECT_EQ(item.nIcon, -1);
        EXPECT_THAT(item.arrCandidates, IsEmpty());
    }
}

TEST(ClassificationPlan, RemovalKeepsTheOrderOfTheRest) {
    ClassificationPlan plan;
    for (const char16_t* path : {u"a", u"b", u"c", u"d", u"e"})
        plan.AddItem(path);
    plan.RemoveItem(5);
    plan.RemoveItem(1);
    plan[0].arrCandidates = {u"x"};
    plan[3].arrCandidates = {u"y"};
    plan.RemoveWithoutCandidate();
    ASSERT_EQ(plan.GetCount(), 2U);
    EXPECT_EQ(plan[0].strName + plan[1].strName, u"ae");
    plan.RemoveAll();
    EXPECT_EQ(plan.GetCount(), 0U);
}

TEST(ListCandidateFolders, KeepsEveryFolderButTheDots) {
    MemoryFileSystem files;
    files.AddFolder(u"Z:\\s\\.git", kAttributeHidden);
    files.AddFolder(u"Z:\\s\\beta\\below");
    files.AddFolder(u"Z:\\s\\Alpha", kAttributeSystem);
    files.AddFolder(u"Z:\\s\\link", kAttributeReparsePoint);
    files.AddFile(u"Z:\\s\\file.txt");
    files.AddFolder(u"Z:\\empty");
    files.AddFolder(u"Z:\\closed\\inner");
    files.DenyFolder(u"Z:\\closed");
    const auto expected = ElementsAre(u".git", u"Alpha", u"beta", u"link");
    EXPECT_THAT(ListCandidateFolders(files, u"Z:\\s"), expected);
    EXPECT_THAT(ListCandidateFolders(files, u"Z:\\s\\"), expected);
    EXPECT_THAT(ListCandidateFolders(files, u"Z:\\empty"), IsEmpty());
    EXPECT_THAT(ListCandidateFolders(files, u"Z:\\missing"), IsEmpty());
    EXPECT_THAT(ListCandidateFolders(files, u"Z:\\closed"), IsEmpty());
    EXPECT_THAT(ListCandidateFolders(files, u"Z:\\s\\file.txt"), IsEmpty());
    files.SetCurrentFolder(u"Z:\\s");
    EXPECT_THAT(ListCandidateFolders(files, u""), ElementsAre(u"closed", u"empty", u"s"));
}

class FillCandidatesTest : public testing::Test {
  protected:
    FillCandidatesTest() {
        for (const char16_t* path :
             {u"Z:\\in\\Report2023_final.docx", u"Z:\\in\\holiday.jpg", u"Z:\\in\\7a", u"Z:\\in\\x"}) {
            plan.AddItem(path);
        }
    }

    const NameNormalizer normalizer{FakeLocaleMap()};
    const std::vector<std::u16string> folders = {u"old reports", u"reports", u"day"};
    ClassificationPlan plan;
};

TEST_F(FillCandidatesTest, GivesEachRowItsBestFolderAndForgetsTheOldOnes) {
    plan[3].arrCandidates = {u"gone"};
    EXPECT_EQ(FillCandidates(plan, folders, normalizer, {}, nullptr), SearchOutcome::kDone);
    EXPECT_EQ(CandidatesOf(plan), "old reports; day; - -");
}

TEST_F(FillCandidatesTest, ScoresSayHowSureEachChoiceIs) {
    std::vector<CandidatePair> scores(9);
    FillCandidates(plan, folders, normalizer, {}, &scores);
    EXPECT_THAT(scores, ElementsAre(CandidatePair{{0, 5}, {1, 5}}, CandidatePair{{2, 2}, {0, 1}}, CandidatePair{},
                                    CandidatePair{}));
    EXPECT_EQ(CandidatesOf(plan), "old reports; day; - -");
}

TEST_F(FillCandidatesTest, LeavesOutWhatIsWeakerThanAskedFor) {
    SearchOptions options;
    options.minScore = 3;
    FillCandidates(plan, folders, normalizer, options, nullptr);
    EXPECT_EQ(CandidatesOf(plan), "old reports; - - -");
    std::vector<CandidatePair> scores;
    FillCandidates(plan, folders, normalizer, options, &scores);
    EXPECT_EQ(CandidatesOf(plan), "old reports; - - -");
    EXPECT_EQ(scores[1], CandidatePair{});
}

TEST_F(FillCandidatesTest, WithoutFoldersNothingChanges) {
    plan[0].arrCandidates = {u"kept"};
    std::vector<CandidatePair> scores(1);
    EXPECT_EQ(FillCandidates(plan, {}, normalizer, {}, &scores), SearchOutcome::kNoDirectory);
    EXPECT_EQ(CandidatesOf(plan), "kept; - - -");
    EXPECT_EQ(scores.size(), 1U);
}

}  // namespace
}  // namespace kinsort
