// "GetSystemMetrics": measures of the desktop by the numbers of the platform that the language was made for.
#include <algorithm>
#include <array>

#include "script/ScriptRun.h"
#include "script/functions/Functions.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

struct Desktop {
    std::vector<ScreenRectangle> screens;  // the main one first
    ScreenRectangle screen;                // the main one, all 0 when there is none
    ScreenRectangle work;                  // the same without panels
    ScreenRectangle all;                   // around all screens
};

Desktop AskFor(UserInterface& ui) {
    Desktop desktop;
    desktop.screens = ui.Screens();
    if (desktop.screens.empty()) return desktop;
    desktop.screen = desktop.all = desktop.screens.front();
    desktop.work = ui.WorkArea(kNoWindow).value_or(desktop.screen);
    for (const ScreenRectangle& one : desktop.screens) {
        desktop.all.left = std::min(desktop.all.left, one.left);
        desktop.all.top = std::min(desktop.all.top, one.top);
        desktop.all.right = std::max(desktop.all.right, one.right);
        desktop.all.bottom = std::max(desktop.all.bottom, one.bottom);
    }
    return desktop;
}

struct MetricRow {
    int32_t index;
    int32_t (*measure)(const Desktop& desktop);
};

// To add one: its number and how it is worked out. Every other number gives 0: widths of frames and heights of captions
// are the business of each toolkit here.
constexpr MetricRow kMetrics[] = {
    {0, [](const Desktop& d) { return d.screen.right - d.screen.left; }},           // main screen, width
    {1, [](const Desktop& d) { return d.screen.bottom - d.screen.top; }},           // ... height
    {16, [](const Desktop& d) { return d.work.right - d.work.left; }},              // room on it, width
    {17, [](const Desktop& d) { return d.work.bottom - d.work.top; }},              // ... height
    {19, [](const Desktop& d) { return d.screens.empty() ? 0 : 1; }},               // there is a mouse
    {76, [](const Desktop& d) { return d.all.left; }},                              // all screens, left
    {77, [](const Desktop& d) { return d.all.top; }},                               // ... top
    {78, [](const Desktop& d) { return d.all.right - d.all.left; }},                // ... width
    {79, [](const Desktop& d) { return d.all.bottom - d.all.top; }},                // ... height
    {80, [](const Desktop& d) { return static_cast<int32_t>(d.screens.size()); }},  // how many
};

}  // namespace

FunctionResult CallGetSystemMetrics(ScriptRun& run, const FunctionCall& call) {
    const int32_t index = ReadInt32(call.arguments);
    const auto row = std::find_if(std::begin(kMetrics), std::end(kMetrics),
                                  [&](const MetricRow& metric) { return metric.index == index; });
    const int32_t value = row == std::end(kMetrics) ? 0 : row->measure(AskFor(run.services.ui));
    return FunctionResult::Plain(FormatInteger(value));
}

}  // namespace kinsort
