#include "demo/KXDemo.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/functions/KXChartFunction.h"
#include "kxcharts/legends/KXChartLegends.h"
#include "kxcharts/toolkit/runtime/KXFormat.h"

namespace kx::demo {

namespace {

constexpr int32_t HelpHeight = 26;

const char* const HelpText =
    "Left drag: zoom into the box (Shift keeps the plot's shape)   |   Drag right to left: "
    "unzoom   |   Alt + drag: pan a zoomed chart   |   Ctrl + click or drag on the bars or the "
    "pie: select   |   "
    "Wheel on the million values: zoom   |   The dashed guide follows the mouse";

// A chart without per-value colours and labels: one line, one colour.
template <class T> T* PlainChart(TDemo& Demo, TKXChartPanel* Panel) {
  auto* Chart = New<T>(Demo.Form.get());
  Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
  Chart->SetPanel(Panel);
  return Chart;
}

void BuildLineAndArea(TDemo& Demo, TKXChartPanel* Panel) {
  auto* Area = PlainChart<TKXAreaChart>(Demo, Panel);
  auto* Line = PlainChart<TKXLineChart>(Demo, Panel);
  Area->SetCaption("Capacity");
  Line->SetCaption("Demand");
  Line->Pen()->SetWidth(2);
  for (int I = 0; I <= 48; ++I) {
    Area->Values()->Add(I, 60 + 15 * std::sin(I * 0.13));
    Line->Values()->Add(I, 50 + 25 * std::sin(I * 0.31 + 1) + 6 * std::cos(I * 1.1));
  }
  // A guide that the demo's own code moves: it follows the mouse across the plot and reads
  // the demand under it.
  auto* Reading = New<TKXGuideChart>(Demo.Form.get());
  Reading->SetCaption("Reading");
  Reading->SetOptions(Reading->Options() - coValueColors - coShowInLegend);
  Reading->Pen()->SetColor(clGray);
  TKXGuideChartValue* Guide = Reading->Values()->Add(24, 95, "", TColor(-1), {loVertical});
  Reading->SetPanel(Panel);
  Panel->SetOnMouseMove([Panel, Line, Guide](TObject*, TShiftState, int32_t X, int32_t) {
    const TRect Plot = Panel->ChartRect();
    if (X < Plot.Left || X >= Plot.Right) return;
    const double At = std::clamp(std::round(Panel->BottomAxis()->PixelToAxis(X, false)), 0.0,
                                 static_cast<double>(Line->Values()->Count() - 1));
    Guide->SetX(At);
    Guide->SetCaption(Format("Demand %.1f", Line->Values()->Items(static_cast<int32_t>(At))->Y()));
  });
}

void BuildBars(TDemo& Demo, TKXChartPanel* Panel) {
  static const char* const Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  auto* Bars = New<TKXBarChart>(Demo.Form.get());
  Bars->SetCaption("Orders");
  for (int I = 0; I < 12; ++I)
    Bars->Values()->Add(40 + 30 * std::sin(I * 0.7) + 5 * I, Months[I]);
  Bars->SetPanel(Panel);
  Panel->SetUserActions(Panel->UserActions() + uaSelect);
  Panel->Legend()->SetVisible(false);
}

// A pie whose slices select with Ctrl and the mouse: a click takes the slice under it, a
// rectangle every slice whose bounds it meets.
void BuildPie(TDemo& Demo, TKXChartPanel* Panel) {
  static const char* const Items[] = {"Rent", "Salaries", "Travel", "Equipment", "Other"};
  static const double Numbers[] = {18, 42, 9, 14, 17};
  auto* Pie = New<TKXPieChart>(Demo.Form.get());
  Pie->SetCaption("Budget");
  for (int I = 0; I < 5; ++I)
    Pie->Values()->Add(Numbers[I], Items[I]);
  Pie->SetPanel(Panel);
  for (TKXChartAxis* Axis : {Panel->BottomAxis(), Panel->LeftAxis()})
    Axis->SetVisible(false);
  Panel->SetUserActions(Panel->UserActions() + uaSelect);
  Panel->Legend()->SetVisible(false);
}

// A signal that arrives while the demo runs: the host's timer appends a value every 40 ms
// to the signal and its upper envelope, and each collection keeps the last 400. A chart
// function keeps the average of each ten values of the signal, recalculated as the signal
// slides. A check list beside the panel switches the three on and off.
void BuildLive(TDemo& Demo, TKXChartPanel* Panel) {
  auto* Envelope = PlainChart<TKXAreaChart>(Demo, Panel);
  auto* Line = PlainChart<TKXLineChart>(Demo, Panel);
  auto* Mean = PlainChart<TKXLineChart>(Demo, Panel);
  Envelope->SetCaption("Envelope");
  Line->SetCaption("Signal");
  Mean->SetCaption("Average of 10");
  Mean->Pen()->SetWidth(2);
  for (TKXCustomChart* C : {static_cast<TKXCustomChart*>(Envelope), static_cast<TKXCustomChart*>(Line)})
    C->Values()->SetLimit(400);
  auto* Average = New<TKXChartFunction>(Demo.Form.get());
  Average->SetFunctionType(cfAverage);
  Average->SetPeriod(fpValueCount);
  Average->SetPeriodValue(10);
  Average->SetSourceChart(Line);
  Average->SetTargetChart(Mean);
  Panel->Legend()->SetVisible(false);

  auto* List = New<TKXLegendListBox>(Demo.Form.get());
  List->SetParent(Demo.Form.get());
  List->SetLegendStyle(lsCharts);
  List->SetItemHeight(18);
  List->SetPanel(Panel);
  // The list takes the right of the panel's cell, below the header.
  Demo.Placers.push_back([Panel, List] {
    constexpr int32_t Width = 150;
    const TRect Cell = Panel->BoundsRect();
    Panel->SetBounds(Cell.Left, Cell.Top, std::max(0, Cell.Width() - Width), Cell.Height());
    List->SetBounds(Cell.Right - Width, Cell.Top + 30, Width - 6, 2 * 2 + 3 * 18);
  });

  auto State = std::make_shared<std::pair<double, double>>(0.0, 0.0); // X, phase
  const auto Next = [Line, Envelope, State] {
    auto& [X, Phase] = *State;
    Phase += 0.07;
    const double Y = std::sin(Phase) * 40 + std::sin(Phase * 5.3) * 8 + 50;
    // The last number of a chart, Y for an empty one.
    const auto Last = [Y](const TKXCustomChart* C) {
      const TKXChartValues* V = C->Values();
      return V->Count() ? V->Items(V->Count() - 1)->GetValue(1) : Y;
    };
    Envelope->Values()->Add(X, std::max(Y, Last(Envelope) - 0.8));
    Line->Values()->Add(X++, Y);
  };
  for (int I = 0; I < 400; ++I)
    Next();
  Demo.Timers.push_back({40, [Next] {
                           Next();
                           return true;
                         }});
}

// A million values of a random walk; the wheel zooms here.
void BuildMillion(TDemo& Demo, TKXChartPanel* Panel) {
  auto* Line = PlainChart<TKXLineChart>(Demo, Panel);
  Line->SetOptions(Line->Options() - coZoomPen);
  Line->SetCaption("Walk");
  {
    TUpdateScope<TKXChartValues> Scope(Line->TKXCustomChart::Values());
    std::mt19937 Random(7);
    std::normal_distribution<double> Step(0.0, 1.0);
    double Y = 0;
    for (int32_t I = 0; I < 1000000; ++I)
      Line->Values()->Add(I, Y += Step(Random));
  }
  Panel->SetWheelZoom(true);
  Panel->Legend()->SetVisible(false);
}

// Lays the panels out in a grid above the help line.
void Arrange(const TForm* Form, const std::vector<TKXChartPanel*>& Panels, const TPanel* Help) {
  const int32_t N = static_cast<int32_t>(Panels.size());
  if (N == 0) return;
  const int32_t Columns = static_cast<int32_t>(std::ceil(std::sqrt(double(N))));
  const int32_t Rows = (N + Columns - 1) / Columns;
  const int32_t W = Form->Width(), H = std::max(0, Form->Height() - Help->Height());
  for (int32_t I = 0; I < N; ++I) {
    const int32_t C = I % Columns, R = I / Columns;
    const int32_t L = W * C / Columns, T = H * R / Rows;
    Panels[I]->SetBounds(L, T, W * (C + 1) / Columns - L, H * (R + 1) / Rows - T);
  }
}

} // namespace

const std::vector<TDemoPanel>& DemoPanels() {
  static const std::vector<TDemoPanel> Panels = {
      {"Line and area", BuildLineAndArea},
      {"Bars (Ctrl + drag selects)", BuildBars},
      {"Pie (Ctrl + click or drag selects)", BuildPie},
      {"A live signal (Limit 400, a value every 40 ms; the list switches charts)", BuildLive},
      {"One million values (the wheel zooms)", BuildMillion},
  };
  return Panels;
}

TDemo MakeDemo(int32_t Width, int32_t Height) {
  TDemo Demo;
  Demo.Form.reset(New<TForm>(nullptr));
  Demo.Form->SetBounds(40, 40, Width, Height);
  auto* Help = New<TPanel>(Demo.Form.get());
  Help->SetParent(Demo.Form.get());
  Help->SetHeight(HelpHeight);
  Help->SetAlign(alBottom);
  Help->SetCaption(HelpText);
  for (const TDemoPanel& P : DemoPanels()) {
    auto* Panel = New<TKXChartPanel>(Demo.Form.get());
    Panel->SetParent(Demo.Form.get());
    Panel->Header()->SetText(P.Title);
    Panel->Footer()->SetVisible(false);
    Panel->ChartShadow()->SetVisible(false);
    P.Build(Demo, Panel);
    Demo.Panels.push_back(Panel);
  }
  const auto Layout = [Form = Demo.Form.get(), Panels = Demo.Panels, Help, Placers = Demo.Placers] {
    Arrange(Form, Panels, Help);
    for (const auto& Place : Placers)
      Place();
  };
  Layout();
  Demo.Form->SetOnResize([Layout](TObject*) { Layout(); });
  return Demo;
}

} // namespace kx::demo
