// Any text as a sum, as a condition's operator, as a number: nothing ends badly, results are texts of the forms that
// they promise.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "script/ArithmeticEvaluator.h"
#include "script/Condition.h"
#include "script/NumberText.h"
#include "text/Numbers.h"

namespace {

using namespace kinsort;

void Require(bool holds) {
    if (!holds) std::abort();
}

void CheckSum(std::u16string_view text) {
    ArithmeticEvaluator evaluator;
    const ArithmeticEvaluator::Status status = evaluator.Evaluate(text);
    const std::u16string result = evaluator.result();
    Require(status == ArithmeticEvaluator::Status::kSuccess || result == u"0");
    Require(!result.empty());
    // A result that is a number is a sum of its own.
    if (status == ArithmeticEvaluator::Status::kSuccess && IsArithmeticText(result) && result.size() < 15) {
        Require(evaluator.Evaluate(result) == ArithmeticEvaluator::Status::kSuccess);
        Require(evaluator.result() == result);
    }
}

void CheckNumbers(std::u16string_view text) {
    const std::u16string normalized = NormalizeNumber(text);
    Require(NormalizeNumber(normalized) == normalized);
    Require(normalized == text || IsIntegerText(text));
    Require(!IsPlainInteger(text) || FormatInteger(ReadInt64(text)) == text || text == u"-0");
    (void)ReplaceHexLiterals(text);
    const Condition condition = SplitCondition(text);
    Require(condition.left.size() + condition.right.size() <= text.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Bytes as characters find the grammar sooner; pairs of bytes reach the rest.
    const std::u16string bytes(data, data + size);
    CheckSum(bytes);
    CheckNumbers(bytes);
    std::u16string text(size / 2, u'\0');
    if (!text.empty()) std::memcpy(text.data(), data, text.size() * 2);
    CheckSum(text);
    CheckNumbers(text);
    return 0;
}
