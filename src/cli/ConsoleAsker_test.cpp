#include "cli/ConsoleAsker.h"

#include <gmock/gmock.h>

#include "cli/CliFixture_test.h"

namespace kinsort {
namespace {

using testing::HasSubstr;

TEST(ReadConflictReply, TakesLettersWordsAndForAll) {
    struct Case {
        const char* typed;
        ConflictAnswer answer;
        AnswerScope scope;
    };
    const Case cases[] = {
        {"r", ConflictAnswer::kReplace, AnswerScope::kThisOne},
        {"R", ConflictAnswer::kReplace, AnswerScope::kAllInBatch},
        {"skip", ConflictAnswer::kSkip, AnswerScope::kThisOne},
        {"Skip", ConflictAnswer::kSkip, AnswerScope::kAllInBatch},
        {"skip all", ConflictAnswer::kSkip, AnswerScope::kAllInBatch},
        {"ka", ConflictAnswer::kKeepBoth, AnswerScope::kAllInBatch},
        {"k a", ConflictAnswer::kKeepBoth, AnswerScope::kAllInBatch},
        {"keep both", ConflictAnswer::kKeepBoth, AnswerScope::kThisOne},
        {"c", ConflictAnswer::kCancel, AnswerScope::kThisOne},
    };
    for (const Case& one : cases) {
        ConflictReply reply;
        ASSERT_TRUE(ReadConflictReply(one.typed, true, reply)) << one.typed;
        EXPECT_EQ(reply.answer, one.answer) << one.typed;
        EXPECT_EQ(reply.scope, one.scope) << one.typed;
    }
    ConflictReply reply;
    for (const char* const bad : {"", "x", "a", "all", "rr", "sk", "y", "replace it"}) {
        EXPECT_FALSE(ReadConflictReply(bad, true, reply)) << bad;
    }
    EXPECT_FALSE(ReadConflictReply("r", false, reply)) << "replacing would lose something";
}

class ConsoleAskerTest : public testing::Test {
  protected:
    void SitDown() {
        for (bool& isTerminal : fixture_.terminal.isTerminal)
            isTerminal = true;
    }
    Conflict conflict_{.item = {u"Z:\\s\\a\uF00A.txt", FileKind::kFile, 1500, 0},
                       .target = {u"Z:\\d\\a.txt", FileKind::kFolder, 0, 0}};
    CliFixture fixture_;
    CliContext context_{fixture_.services};
    ConsoleProgress progress_{context_, BatchAction::kMove};
    ConsoleAsker asker_{context_, progress_};
};

TEST_F(ConsoleAskerTest, ShowsBothSidesAndAsksUntilItUnderstands) {
    SitDown();
    fixture_.terminal.answers = {"?", "K"};
    const ConflictReply reply = asker_.AskConflict(conflict_);
    EXPECT_EQ(reply.answer, ConflictAnswer::kKeepBoth);
    EXPECT_EQ(reply.scope, AnswerScope::kAllInBatch);
    EXPECT_THAT(fixture_.terminal.messages, HasSubstr("new: /s/a\\x0a.txt  (file, 1.5 kB, 19"));
    EXPECT_THAT(fixture_.terminal.messages, HasSubstr("old: /d/a.txt  (folder, 19"));
    EXPECT_THAT(fixture_.terminal.messages, testing::EndsWith("for all: Please type r, s, k or c: "));
    EXPECT_EQ(asker_.unanswered(), 0U);

    conflict_.canReplace = false;
    fixture_.terminal.messages.clear();
    fixture_.terminal.answers = {"r", "s"};
    EXPECT_EQ(asker_.AskConflict(conflict_).answer, ConflictAnswer::kSkip);
    EXPECT_THAT(fixture_.terminal.messages, testing::Not(HasSubstr("[r]eplace")));
}

TEST_F(ConsoleAskerTest, EndOfInputCancels) {
    SitDown();
    EXPECT_EQ(asker_.AskConflict(conflict_).answer, ConflictAnswer::kCancel);
    EXPECT_EQ(asker_.AskFailure(u"Z:\\a", Status::Failure(StatusCode::kNoSpace)), FailureAnswer::kCancel);
    fixture_.terminal.answers = {"", "T"};
    EXPECT_EQ(asker_.AskFailure(u"Z:\\a", Status::Failure(StatusCode::kNoSpace)), FailureAnswer::kRetry);
}

TEST_F(ConsoleAskerTest, SkipsWhenNobodyCanBeAskedAndSaysSoOnce) {
    fixture_.terminal.isTerminal[static_cast<size_t>(Stream::kMessages)] = true;
    fixture_.terminal.answers = {"r", "r"};  // not an answer: the input is not a terminal
    EXPECT_EQ(asker_.AskConflict(conflict_).answer, ConflictAnswer::kSkip);
    EXPECT_EQ(asker_.AskConflict(conflict_).answer, ConflictAnswer::kSkip);
    EXPECT_EQ(asker_.unanswered(), 2U);
    EXPECT_EQ(fixture_.terminal.messages,
              "kinsort: some names are taken and nobody can be asked here, so these items are skipped; choose with "
              "--on-conflict\n");
    EXPECT_EQ(asker_.AskFailure(u"Z:\\a", Status::Failure(StatusCode::kNoSpace)), FailureAnswer::kSkip);
}

}  // namespace
}  // namespace kinsort
