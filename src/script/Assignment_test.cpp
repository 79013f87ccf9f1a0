// Conditions and assignments, as a line of a script gives them.
#include "script/Assignment.h"

#include <gtest/gtest.h>

#include "script/Condition.h"
#include "script/ExpansionWorld_test.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

// Answers "text", "plain", "empty", "nothing" and "stop", and remembers how it was called.
class RecordingCaller final : public FunctionCaller {
  public:
    std::u16string seen;

    FunctionResult Call(const FunctionCall& call) override {
        seen = std::u16string(call.name).append(u"|").append(call.arguments).append(u"|");
        seen += static_cast<char16_t>(u'0' + call.pieces);
        if (call.name == u"text") return FunctionResult::Text(std::u16string(call.arguments));
        if (call.name == u"plain") return FunctionResult::Plain(std::u16string(call.arguments));
        if (call.name == u"empty") return FunctionResult::Plain(std::u16string(kEmptyPlainResult));
        if (call.name == u"nothing") return FunctionResult::Plain({});
        if (call.name == u"stop") return FunctionResult::Ended();
        if (call.name == u"getCLIPboardtext") return FunctionResult::Text(u" 1+1");
        return FunctionResult::Unknown();
    }
};

class AssignmentTest : public testing::Test, protected ExpansionWorld {
  protected:
    AssignmentResult Assign(std::u16string_view line) {
        caller.seen.clear();
        const size_t equals = line.find(u'=');
        return AssignVariable(TrimView(line.substr(0, equals)), line.substr(equals + 1), line, variables, scope,
                              caller);
    }
    RecordingCaller caller;
};

TEST_F(AssignmentTest, StoresSumsOperationsAndText) {
    const struct {
        std::u16string_view old, right, stored;
    } cases[] = {
        {u"", u"7/2", u"3.5"},      {u"", u"  a b  ", u"a b"},
        {u"", u"ab0x1F", u"ab31"},  {u"", u"007", u"7"},
        {u"old", u"", u""},         {u"10", u"+5", u"15"},
        {u"10", u"-5", u"5"},       {u"10", u"*3", u"30"},
        {u"10", u"/3", u"3"},       {u"-10", u"/3", u"-3"},
        {u"-10", u"%3", u"-1"},     {u"10", u"/0", u"0"},
        {u"10", u"%0", u"0"},       {u"0x10", u"+0x0F", u"31"},
        {u"", u"-5", u"-5"},        {u"word", u"+5", u"5"},
        {u"10", u"+5.5", u"5.5"},  // no whole number: a sum of its own
        {u"10", u"+abc", u"+abc"},  {u"10", u"+-5", u"-5"},
        {u"10", u"&abc", u"10abc"}, {u"x", u" & a & ", u"x a & "},
        {u"1", u"&+2", u"3"},  // what was put together is a sum
        {u"q", u"&", u"&"},         {u"9223372036854775807", u"+1", u"-9223372036854775808"},
    };
    for (const auto& row : cases) {
        variables = {};
        Set(u"v0", row.old);
        EXPECT_EQ(Assign(std::u16string(u" v0 =").append(row.right)), AssignmentResult::kAssigned);
        EXPECT_EQ(*variables.Find(u"v0"), row.stored) << testing::PrintToString(row.right);
    }
    EXPECT_EQ(Assign(u"v0=+"), AssignmentResult::kSyntaxError);  // alone it is a sum without numbers
    EXPECT_EQ(Assign(u"v0=1/0"), AssignmentResult::kDivisionByZero);
    EXPECT_EQ(*variables.Find(u"v0"), u"-9223372036854775808") << "what is no sum leaves the variable alone";
    EXPECT_EQ(Assign(u"V0=1"), AssignmentResult::kNotAssignment);
    EXPECT_EQ(Assign(u"=1"), AssignmentResult::kNotAssignment);
}

TEST_F(AssignmentTest, FindsElementsByTheirExpandedIndex) {
    for (const char16_t* name : {u"a[0]", u"a[1]", u"i"})
        Set(name, u"");
    Set(u"i", u"1");
    EXPECT_EQ(Assign(u"a[ i ]=a=b"), AssignmentResult::kAssigned);
    EXPECT_EQ(*variables.Find(u"a[1]"), u"a=b");
    EXPECT_EQ(Assign(u"a[2]=x"), AssignmentResult::kNotAssignment);
    EXPECT_EQ(Assign(u"a=x"), AssignmentResult::kNotAssignment);
}

TEST_F(AssignmentTest, CallsFunctionsAndStoresWhatTheyGive) {
    const struct {
        std::u16string_view right, seen, stored;
    } cases[] = {
        {u" text , 1+1,b ", u"text| 1+1,b|3", u" 1+1,b"},
        {u"plain,1+1", u"plain|1+1|2", u"2"},
        {u"plain, 1,2", u"plain| 1,2|3", u" 1,2"},
        {u"nothing,4*4", u"nothing|4*4|2", u"16"},
        {u"empty,x", u"empty|x|2", u""},
        {u"strange,1+1", u"strange|1+1|2", u"strange,1+1"},
        {u",", u"||2", u","},
        {u"getCLIPboardtext", u"getCLIPboardtext||1", u" 1+1"},
        {u"text", u"", u"text"},  // without a comma it is a text
        {u"&text,1", u"", u"oldtext,1"},
    };
    for (const auto& row : cases) {
        variables = {};
        Set(u"v0", u"old");
        EXPECT_EQ(Assign(std::u16string(u"v0=").append(row.right)), AssignmentResult::kAssigned);
        EXPECT_EQ(caller.seen, row.seen) << testing::PrintToString(row.right);
        EXPECT_EQ(*variables.Find(u"v0"), row.stored) << testing::PrintToString(row.right);
    }
    EXPECT_EQ(Assign(u"v0=stop,1"), AssignmentResult::kEnded);
    EXPECT_EQ(*variables.Find(u"v0"), u"oldtext,1");
}

TEST_F(AssignmentTest, ComparesAsNumbersNaturallyOrByPattern) {
    Set(u"vEq", u"a==b");
    Set(u"vNum", u"5");
    const std::pair<std::u16string_view, ConditionResult> cases[] = {
        {u"a == A", ConditionResult::kTrue},
        {u"a!=A", ConditionResult::kFalse},
        {u"007 == 7", ConditionResult::kTrue},
        {u"0x1F == 31", ConditionResult::kTrue},
        {u" == ", ConditionResult::kTrue},
        {u"10 < 9", ConditionResult::kFalse},
        {u"10 >= 9", ConditionResult::kTrue},
        {u"file10 < file9", ConditionResult::kFalse},
        {u"file9 <= file10", ConditionResult::kTrue},
        {u"-5 < 3", ConditionResult::kTrue},
        {u"+3 <= 3", ConditionResult::kTrue},
        {u"9999999999 > 2147483647", ConditionResult::kFalse},  // both are the largest number
        {u"abc < 5", ConditionResult::kFalse},
        {u" < 1", ConditionResult::kTrue},  // nothing is the number 0
        {u"vNum > 4", ConditionResult::kTrue},
        {u"name.TXT ^ *.txt;*.log", ConditionResult::kTrue},
        {u"name.TXT !^ *.txt;*.log", ConditionResult::kFalse},
        {u"name.txt.bak ^ *.txt", ConditionResult::kFalse},
        {u"ab ^ a?", ConditionResult::kTrue},
        {u"x ^ ;;", ConditionResult::kFalse},
        {u"x !^", ConditionResult::kTrue},
        {u"vEq != 1<2", ConditionResult::kTrue},  // split at "!=", whatever the value holds
        {u"1<2==1", ConditionResult::kFalse},     // "==" comes first wherever it stands
        {u"vEq", ConditionResult::kNoOperator},
        {u"a = b", ConditionResult::kNoOperator},
        {u"", ConditionResult::kNoOperator},
    };
    for (const auto& [condition, expected] : cases)
        EXPECT_EQ(EvaluateCondition(SplitCondition(condition), scope), expected) << testing::PrintToString(condition);
}

}  // namespace
}  // namespace kinsort
