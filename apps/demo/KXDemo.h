#pragma once
// The interactive demo: a dashboard of chart panels on one form, each built by an entry of
// DemoPanels(), laid out in a grid above a line that tells what the mouse does. Adding a
// panel to the demo is adding an entry.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::demo {

// A timer the host runs for the demo (the library has none of its own): Tick every
// Interval milliseconds while it answers true.
struct TDemoTimer {
  int32_t Interval;
  std::function<bool()> Tick;
};

// The dashboard: the form, its panels in grid order, the timers they need, and what each
// panel places beside itself in its cell after the grid is laid out (run in order at
// every layout).
struct TDemo {
  TOwned<TForm> Form;
  std::vector<TKXChartPanel*> Panels;
  std::vector<TDemoTimer> Timers;
  std::vector<std::function<void()>> Placers;
};

// One panel of the dashboard: its header and what it puts into the panel (charts are made
// with Demo.Form as their owner).
struct TDemoPanel {
  std::string Title;
  std::function<void(TDemo& Demo, TKXChartPanel* Panel)> Build;
};

// The panels of the dashboard, in grid order.
const std::vector<TDemoPanel>& DemoPanels();

// Builds the dashboard at Width x Height.
TDemo MakeDemo(int32_t Width, int32_t Height);

} // namespace kx::demo
