// Command lines in the rules of the platform that the script language was made for: blanks and tabs separate, double
// quotes hold together, backslashes are ordinary unless a double quote follows them.
//
//   a "b c" d\e      a | b c | d\e
//   "a\"b" "c\\"     a"b | c\         2n backslashes and a quote: n backslashes, the quote opens or closes
//   "a""b" a\\\"b    a"b | a\"b       2n+1 and a quote: n backslashes and the quote itself; so does "" inside quotes
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

std::vector<std::u16string> SplitArguments(std::u16string_view text);

// The same with the program in front, to which other rules apply: backslashes are always ordinary, quotes only hold
// together. Always at least one element, empty when the text is.
std::vector<std::u16string> SplitCommandLine(std::u16string_view text);

// One argument as SplitArguments reads it back, quoted only where it must be.
std::u16string QuoteArgument(std::u16string_view argument);

// SplitArguments(JoinArguments(a)) == a, whatever the arguments hold.
std::u16string JoinArguments(const std::vector<std::u16string>& arguments);

}  // namespace kinsort
