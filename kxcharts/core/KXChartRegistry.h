#pragma once
// The process-wide state of the charts: the chart class registry, which the chart modules
// fill at their start-up, and the palette counter that hands consecutive new charts and
// values consecutive colours.

#include <cstdint>

#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// The process-wide palette counter: consecutive new values and charts take consecutive
// colours, whichever palette they read. Readers set it to 0 when it is 10 or more.
extern int32_t ColorListIndex;

// Adds the class to the chart registry unless it is there, and registers it for
// streaming. Safe from any thread.
void RegisterChart(TKXCustomChartClass ChartClass);
// The first registered class of that kind, or nil. The registry holds what the started
// modules registered (StartChartModules, in the umbrella library, starts them all).
TKXCustomChartClass GetChartClass(TKXChartType ChartType);
// The kind of the chart's class; ctCustom for nil.
TKXChartType GetChartType(const TKXCustomChart* Chart);
// Registers the classes of this module that a form reader makes by name (TKXChart,
// TKXChartPanel, the legend controls). Runs once.
void StartChartPanelModule();

// The colour of List that ColorListIndex points at; moves the counter on. Every palette that a
// new chart or value takes a colour from is read through here.
TColor NextPaletteColor(const TColorList& List);
// The next colour of DefaultColorList by ColorListIndex.
TColor GetChartColor();
// The chart's colour; the form above for nil.
TColor GetChartColor(const TKXCustomChart* Chart);

} // namespace kx
