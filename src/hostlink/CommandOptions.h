// The fourteen options that a script runs under: how it starts programs, how long it waits for them, how often it may
// repeat itself. They travel as texts (OptionTable), so that a script can set any of them with a line "name=value", and
// are read as one typed record (CommandOptions).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kinsort {

// Option names, all lower case, with their texts. Names are compared exactly.
class OptionTable {
  public:
    // The text of the option; null when the table does not hold it. Valid until the next SetOption.
    const std::u16string* Find(std::u16string_view name) const;
    // Stores or replaces the entry.
    void SetOption(std::u16string_view name, std::u16string_view text);

    // In the order in which they were first set.
    const std::vector<std::pair<std::u16string, std::u16string>>& entries() const { return entries_; }

  private:
    std::vector<std::pair<std::u16string, std::u16string>> entries_;
};

// The values; a new record holds empty texts, zeros and false, its values come from ReadOptions.
struct CommandOptions {
    std::u16string commandLineOption;  // parameters of the programs that "shell" and "exrun" start
    std::u16string bootDir;            // where programs start; "1": in their own folder
    int32_t bootMode = 0;              // mode of the launch batches
    uint16_t showWindow = 0;           // show state handed to programs
    int32_t timeoutMs = 0;             // wait for a program before offering to end it; -1: without limit
    int32_t runWaitMs = 0;             // pause after each program
    int32_t sendInfoMode = 0;          // not 0: the items are dropped on the program
    bool multiCommandMode = false;     // one start for all items
    bool shiftSilentMode = false;      // Shift drops the parameters
    std::u16string filter;             // extensions that "exrun" takes, separated by commas
    int32_t exitLoopCount = 0;         // how often a run may jump backwards
    std::u16string checkGrammar;       // "0": unknown lines are ignored; "1": asked about; else a command line on No
    int32_t openMode = 0;              // what "shell" and "run" do with a folder
    bool runAs = false;                // start programs elevated
};

// A table with the fourteen names and their default texts: "showwindow" and "shiftsilentmode" "1", "timeout" "-1",
// "exitloopcount" "5", the texts empty, everything else "0".
OptionTable CreateDefaultOptions();

// Converts every option that the table holds into its field of the record; the field of an option that is absent stays
// as it was. Numbers are read by text/Numbers.h (0 for what is none), "showwindow" keeps its lowest 16 bits,
// "multicommandmode" and "shiftsilentmode" are true for exactly 1, "runas" for everything but 0.
void ReadOptions(const OptionTable& table, CommandOptions& record);
// The same for one option. False when there is no option of that name.
bool ReadOption(const OptionTable& table, std::u16string_view name, CommandOptions& record);

}  // namespace kinsort
