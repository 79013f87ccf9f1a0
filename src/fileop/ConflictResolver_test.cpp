#include "fileop/ConflictResolver.h"

#include <gtest/gtest.h>

#include "fileop/BatchWorld_test.h"

namespace kinsort {
namespace {

constexpr AnswerScope kOnce = AnswerScope::kThisOne;
constexpr AnswerScope kForAll = AnswerScope::kAllInBatch;

Conflict ConflictThat(bool canReplace, bool isMerge = false) {
    Conflict conflict;
    conflict.canReplace = canReplace;
    conflict.isMerge = isMerge;
    return conflict;
}
const Conflict kFiles = ConflictThat(true);
const Conflict kFolderAgainstFile = ConflictThat(false);
const Conflict kFolders = ConflictThat(true, true);

TEST(ConflictResolverTest, APolicyAnswersWithoutAsking) {
    struct Case {
        ConflictAnswer policy;
        ConflictAnswer files;
        ConflictAnswer folderAgainstFile;
    };
    constexpr Case kCases[] = {
        {ConflictAnswer::kSkip, ConflictAnswer::kSkip, ConflictAnswer::kSkip},
        {ConflictAnswer::kReplace, ConflictAnswer::kReplace, ConflictAnswer::kKeepBoth},
        {ConflictAnswer::kKeepBoth, ConflictAnswer::kKeepBoth, ConflictAnswer::kKeepBoth},
        {ConflictAnswer::kCancel, ConflictAnswer::kCancel, ConflictAnswer::kCancel},
    };
    for (const Case& c : kCases) {
        ScriptedAsker asker({{ConflictAnswer::kCancel, kOnce}});
        ConflictResolver resolver(c.policy, &asker);
        EXPECT_EQ(resolver.Resolve(kFiles), c.files);
        EXPECT_EQ(resolver.Resolve(kFolderAgainstFile), c.folderAgainstFile);
        EXPECT_TRUE(asker.asked.empty());
    }
    ConflictResolver alone(ConflictAnswer::kAsk, nullptr);
    EXPECT_EQ(alone.Resolve(kFiles), ConflictAnswer::kSkip) << "with nobody to ask nothing is touched";
    EXPECT_EQ(alone.ResolveFailure(u"x", Status::Failure(StatusCode::kNoSpace)), FailureAnswer::kSkip);
}

TEST(ConflictResolverTest, AnAnswerForAllCountsForItsKindOfConflict) {
    ScriptedAsker asker({{ConflictAnswer::kKeepBoth, kOnce},
                         {ConflictAnswer::kReplace, kForAll},
                         {ConflictAnswer::kSkip, kForAll},
                         {ConflictAnswer::kCancel, kOnce}});
    ConflictResolver resolver(ConflictAnswer::kAsk, &asker);
    EXPECT_EQ(resolver.Resolve(kFiles), ConflictAnswer::kKeepBoth);
    EXPECT_EQ(resolver.Resolve(kFiles), ConflictAnswer::kReplace);
    EXPECT_EQ(resolver.Resolve(kFiles), ConflictAnswer::kReplace);
    EXPECT_EQ(resolver.Resolve(kFolderAgainstFile), ConflictAnswer::kKeepBoth)
        << "\"replace all\" was not said of what would lose something";
    EXPECT_EQ(asker.asked.size(), 2u);
    EXPECT_EQ(resolver.Resolve(kFolders), ConflictAnswer::kSkip);
    EXPECT_EQ(resolver.Resolve(kFolders), ConflictAnswer::kSkip);
    EXPECT_EQ(resolver.Resolve(kFiles), ConflictAnswer::kReplace) << "merging and replacing are remembered apart";
    EXPECT_EQ(asker.asked.size(), 3u);
}

TEST(ConflictResolverTest, AnAnswerThatIsNoneSkips) {
    ScriptedAsker asker({{ConflictAnswer::kAsk, kForAll}, {ConflictAnswer::kReplace, kOnce}});
    ConflictResolver resolver(ConflictAnswer::kAsk, &asker);
    EXPECT_EQ(resolver.Resolve(kFiles), ConflictAnswer::kSkip);
    EXPECT_EQ(resolver.Resolve(kFiles), ConflictAnswer::kSkip);
    EXPECT_EQ(asker.asked.size(), 1u);
}

}  // namespace
}  // namespace kinsort
