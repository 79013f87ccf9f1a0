// Whether a text is a number or a sum of numbers, and numbers brought into one form. Values of the language are text;
// these decide where one is taken as a number.
#pragma once

#include <string>
#include <string_view>

namespace kinsort {

// "007" gives "7", "0x1F" gives "31" (hexadecimal ones beyond 0x7FFFFFFF give 2147483647), both with blanks anywhere.
// Every other text comes back unchanged, its blanks kept, "-7", "0X1F" and "0x" included.
std::u16string NormalizeNumber(std::u16string_view text);

// True for digits, for "0x" and hexadecimal digits, and for the empty text; blanks anywhere do not count. A sign makes
// it false.
bool IsIntegerText(std::u16string_view text);

// Each "0x" with its hexadecimal digits, even in the middle of a word, becomes the decimal number: "ab0x1F" gives
// "ab31".
std::u16string ReplaceHexLiterals(std::u16string_view text);

// True when nothing but digits, ".", "(", ")", blanks and + - * / % occurs: "2024-01-05" is a sum. So is the empty
// text.
bool IsArithmeticText(std::u16string_view text);

// True for what all of these and a sum leave as it is: "0", "-12"; 15 digits at most.
bool IsPlainInteger(std::u16string_view text);

}  // namespace kinsort
