// The plan as a table on a terminal: columns as wide as their content while the window allows, cut where it does not.
#pragma once

#include <string>

#include "platform/Terminal.h"

namespace kinsort {

// Texts are ShownTexts; `score` and `runnerUp` are empty when they are not wanted or there is none.
struct TableRow {
    std::string item;
    std::string folder;
    std::string score;
    std::string runnerUp;
    bool hasFolder = true;
};

// For output that is no terminal: nothing is cut or aligned.
std::string FormatPlainRow(const TableRow& row);

class TableLayout {
  public:
    // The window is measured now.
    TableLayout(Terminal& terminal, bool isColoured);

    // Every row is measured before the first is formatted.
    void Measure(const TableRow& row);
    // One line without its end, never wider than the window.
    std::string Format(const TableRow& row);

  private:
    struct Widths {
        size_t item = 0;
        size_t folder = 0;
        size_t score = 0;
        size_t runnerUp = 0;
    };
    // Gives the columns what the window has.
    Widths Fit() const;
    std::string Cell(const std::string& text, size_t columns, bool isLast) const;

    const Terminal& terminal_;
    size_t window_;
    bool isColoured_;
    Widths natural_;
};

}  // namespace kinsort
