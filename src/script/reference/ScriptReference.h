// The reference of the script language, from the tables that run it: names, arguments, a sentence and an example for
// each function, command, option and token.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

// The text of each example by its name: "function left", "command messagebox". Read from cases of script tests
// ("//// function left" and the lines below it); a title with several names stands for each of them.
using ReferenceExamples = std::map<std::string, std::string>;
ReferenceExamples ReadReferenceExamples(std::string_view cases);

// Markdown. `missing` gets the name of every function and command that has no example, and of every example that is
// nobody's.
std::string WriteScriptReference(const ReferenceExamples& examples, std::vector<std::string>& missing);

// What stands before this line in the document is written by hand, what follows by WriteScriptReference.
constexpr std::string_view kReferenceMark =
    "<!-- From here on written by script_reference; change the tables instead. -->\n";

}  // namespace kinsort
