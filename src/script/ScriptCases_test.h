// Reads the script tests of tests/*.ecs (see tests/README.md).
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

// "name text" behind a marker.
struct CaseDirective {
    std::u16string name;
    std::u16string text;  // escapes replaced
    int line = 0;         // in the test file
};

// What stands below one line of the script.
struct LineExpectation {
    std::vector<std::u16string> values;  // "//="
    std::vector<std::u16string> events;  // "//!"
    bool isNeverRun = false;
};

struct ScriptCase {
    std::u16string title;
    int line = 0;
    std::u16string script;                              // empty lines in front, so that lines keep their numbers
    std::map<std::u16string, std::u16string> included;  // other scripts by path, likewise
    std::vector<CaseDirective> given;                   // "//<"
    std::vector<CaseDirective> expected;                // "//>"
    std::map<int, LineExpectation> lines;               // of the main script
};

// The cases of a file, in UTF-8. A mistake in it is a std::runtime_error that names the line.
std::vector<ScriptCase> ReadScriptCases(std::string_view bytes);

// "<LF>" and its kind replaced.
std::u16string ReplaceEscapes(std::u16string_view text);
// The other way round, for messages.
std::string ShowWithEscapes(std::u16string_view text);

}  // namespace kinsort
