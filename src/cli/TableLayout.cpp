#include "cli/TableLayout.h"

#include <algorithm>
#include <string_view>

#include "cli/ShownText.h"

namespace kinsort {
namespace {

constexpr std::string_view kArrow = " -> ";
constexpr std::string_view kGap = "  ";
constexpr std::string_view kDim = "\x1B[2m";
constexpr std::string_view kYellow = "\x1B[33m";
constexpr std::string_view kPlain = "\x1B[0m";

}  // namespace

std::string FormatPlainRow(const TableRow& row) {
    std::string line = row.item + std::string(kArrow) + row.folder;
    if (!row.score.empty()) line += " (score " + row.score;
    if (!row.runnerUp.empty()) line += ", then " + row.runnerUp;
    return row.score.empty() ? line : line + ")";
}

TableLayout::TableLayout(Terminal& terminal, bool isColoured)
    : terminal_(terminal),
      window_(static_cast<size_t>(std::max(terminal.WindowColumns(), 1))),
      isColoured_(isColoured) {}

void TableLayout::Measure(const TableRow& row) {
    const auto widen = [this](size_t& width, const std::string& text) {
        width = std::max(width, ColumnsOf(terminal_, text));
    };
    widen(natural_.item, row.item);
    widen(natural_.folder, row.folder);
    widen(natural_.score, row.score);
    widen(natural_.runnerUp, row.runnerUp);
}

TableLayout::Widths TableLayout::Fit() const {
    Widths fit = natural_;
    size_t room = window_ > kArrow.size() ? window_ - kArrow.size() : 0;
    const auto take = [&room](size_t& width, size_t wanted, size_t gap) {
        if (wanted > 0 && wanted + gap < room) {
            room -= wanted + gap;
            width = wanted;
        } else {
            width = 0;
        }
    };
    take(fit.score, natural_.score, kGap.size());
    // Names come first: the runner-up gets at most a quarter, item and folder share the rest.
    take(fit.runnerUp, std::min(natural_.runnerUp, room / 4), kGap.size());
    if (fit.item + fit.folder > room) {
        fit.folder = std::min(natural_.folder, std::max(room / 2, room - std::min(room, natural_.item)));
        fit.item = std::min(natural_.item, room - fit.folder);
    }
    return fit;
}

std::string TableLayout::Cell(const std::string& text, size_t columns, bool isLast) const {
    std::string cell = CutToColumns(terminal_, text, columns);
    const size_t used = ColumnsOf(terminal_, cell);
    if (!isLast && used < columns) cell.append(columns - used, ' ');
    return cell;
}

std::string TableLayout::Format(const TableRow& row) {
    const Widths fit = Fit();
    const auto colour = [this](std::string_view code, std::string text) {
        return isColoured_ && !text.empty() ? std::string(code) + text + std::string(kPlain) : text;
    };
    const bool hasMore = !row.score.empty() && fit.score > 0;
    std::string line = Cell(row.item, fit.item, false);
    if (window_ > kArrow.size()) line += colour(kDim, std::string(kArrow));
    const std::string folder = Cell(row.folder, fit.folder, !hasMore);
    line += row.hasFolder ? folder : colour(kYellow, folder);
    if (!hasMore) return line;
    line += std::string(kGap) + std::string(fit.score - std::min(fit.score, row.score.size()), ' ') + row.score;
    if (!row.runnerUp.empty() && fit.runnerUp > 0) {
        line += colour(kDim, std::string(kGap) + Cell(row.runnerUp, fit.runnerUp, true));
    }
    return line;
}

}  // namespace kinsort
