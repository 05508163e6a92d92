#pragma once
// Themes: one call gives a panel and its charts a look by setting their ordinary properties,
// so a form saved after it needs nothing new and reads back the same picture.
//
//   ApplyChartTheme(Panel, "light");     // the panel, its elements and every chart on it
//   ApplyChartTheme(Chart, "light");     // a chart added afterwards
//
// "classic" is the look a new panel has. Every other theme starts from it and changes what
// its fields name, so themes applied one after another do not mix: the last one holds.
// A theme is data: RegisterChartTheme adds one (or replaces one of the same name).

#include <string>
#include <vector>

#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKXCustomChart;
class TKXCustomChartPanel;

struct TKXChartTheme {
  std::string Name;
  // The panel's colour and that of the plot behind the charts. clNone keeps classic's
  // gradient behind the whole panel and a transparent plot.
  TColor Background = clNone;
  TColor PlotBackground = clNone;
  // Every text: header, axis labels and titles, legend. clNone keeps classic's.
  TColor TextColor = clNone;
  std::string FontName; // empty: classic's
  int32_t FontSize = 0; // points; 0: classic's
  int32_t HeaderSize = 0;
  bool HeaderBold = false;
  bool FooterVisible = true;
  // Grid lines of every axis, and the axis lines with their ticks. clNone keeps classic's.
  TColor GridColor = clNone;
  TPenStyle GridStyle = psDot;
  TColor AxisColor = clNone;
  // The legend's box: fill and frame (clNone keeps classic's), and its shadow.
  TColor LegendColor = clNone;
  TColor LegendFrameColor = clNone;
  bool LegendShadow = true;
  bool ChartShadow = true;
  // Room around the charts in per cent of the panel (left, top, right, bottom); all 0 keeps
  // classic's.
  TRect Margins{0, 0, 0, 0};
  // The charts' colours in the order charts are added; empty keeps classic's list.
  std::vector<TColor> Palette;
  // Each chart in one colour and without value labels, unless its kind's labels carry what
  // it says: the kinds named in LabelledKinds and the kinds derived from them. Classic gives
  // every value its own colour and label, which also makes a long line draw every value.
  bool PlainCharts = false;
  std::vector<std::string> LabelledKinds = {"TKXPieChart", "TKXCustomShapeChart"};
};

// Adds Theme, or replaces the theme of the same name. Raises EKXChartException for a theme
// without a name, or a palette that is not 1 to 10 colours long.
void RegisterChartTheme(const TKXChartTheme& Theme);
// The theme named Name (case-sensitive). Raises EKXChartException naming the themes there are.
const TKXChartTheme& GetChartTheme(const std::string& Name);
// Every registered theme's name, classic, light and dark first.
std::vector<std::string> ChartThemeNames();

void ApplyChartTheme(TKXCustomChartPanel* Panel, const TKXChartTheme& Theme);
void ApplyChartTheme(TKXCustomChartPanel* Panel, const std::string& Name);
// What the panel's theme does to one chart: its options, and its colour from the panel's
// list by its place among the panel's charts (or the first colour when it has no panel).
void ApplyChartTheme(TKXCustomChart* Chart, const TKXChartTheme& Theme);
void ApplyChartTheme(TKXCustomChart* Chart, const std::string& Name);

} // namespace kx
