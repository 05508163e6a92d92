// The chart functions sheet: panels in which a source line carries targets that functions
// keep computed from it: an average per period, a sum per week on a date axis, the high
// and the low of each period, and a monthly average over a year of dates.
#include <cmath>
#include <functional>
#include <string>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/functions/KXChartFunction.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetWidth = 1240;
constexpr TColor SourceInk = static_cast<TColor>(0xC8A890); // a soft blue-grey
constexpr TColor Strong = static_cast<TColor>(0x2A50C8);    // red
constexpr TColor Deep = static_cast<TColor>(0x8A5A1E);      // blue
constexpr TColor Green = static_cast<TColor>(0x30904A);

// A form with one panel of the cell's size, a legend of the charts and a header.
struct TFunctionPanel {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = nullptr;

  TFunctionPanel(const TRect& R, const std::string& Title) {
    ColorListIndex = 0;
    const int32_t W = R.Right - R.Left, H = R.Bottom - R.Top;
    Form->SetBounds(0, 0, W, H);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, W, H);
    Panel->ChartShadow()->SetVisible(false);
    Panel->Header()->SetText(Title);
    Panel->Footer()->SetVisible(false);
    Panel->Gradient()->SetStartColor(clWhite);
    Panel->Gradient()->SetEndColor(static_cast<TColor>(0xF4EEE8));
    Panel->Legend()->SetLegendStyle(lsCharts);
    Panel->Legend()->SetAlign(laBottom);
  }

  TKXLineChart* Line(const std::string& Caption, TColor Color, int32_t Width) const {
    auto* L = New<TKXLineChart>(Form.get());
    L->SetCaption(Caption);
    L->SetOptions(L->Options() - coValueColors - coValueLabels);
    L->SetColor(Color);
    L->Pen()->SetWidth(Width);
    L->SetPanel(Panel);
    return L;
  }

  // A function of the form from Source into Target.
  TKXChartFunction* Function(TKXCustomChart* Source, TKXCustomChart* Target,
                             TKXChartFunctionType Type, TKXChartFunctionPeriod Period,
                             double PeriodValue) const {
    auto* F = New<TKXChartFunction>(Form.get());
    F->SetFunctionType(Type);
    F->SetPeriod(Period);
    F->SetPeriodValue(PeriodValue);
    F->SetSourceChart(Source);
    F->SetTargetChart(Target);
    return F;
  }

  void DateAxis(const char* Format) const {
    Panel->BottomAxis()->SetLabelStyle(alsDateTime);
    Panel->BottomAxis()->SetDateTimeFormat(Format);
  }
};

// A wave with a little noise that repeats: the same picture on every run.
double Wave(int I) {
  return 50 + 18 * std::sin(I / 7.0) + 7 * std::sin(I * 1.9) + 4 * std::cos(I * 3.7);
}

void Fill(TKXLineChart* Chart, int Count, const std::function<std::pair<double, double>(int)>& XY) {
  TUpdateScope<TKXChartValues> Scope(Chart->TKXCustomChart::Values());
  for (int I = 0; I < Count; ++I) {
    const auto [X, Y] = XY(I);
    Chart->Values()->Add(X, Y);
  }
}

void PaintAveragePerPeriod(TCanvas* C, const TRect& R) {
  TFunctionPanel F(R, "cfAverage, fpAxisRange 10");
  auto* Source = F.Line("Source", SourceInk, 1);
  Fill(Source, 80, [](int I) { return std::pair<double, double>(I, Wave(I)); });
  // Held at the start of each period and stepped across it: the periods do not overlap.
  auto* Average = F.Line("Average per 10 units", Strong, 3);
  Average->SetLineStyle(lsStepHorizontal);
  F.Function(Source, Average, cfAverage, fpAxisRange, 10)->SetCenterTimePeriod(false);
  PaintPanel(C, F.Panel, R);
}

void PaintWeeklySum(TCanvas* C, const TRect& R) {
  TFunctionPanel F(R, "cfSum, fpWeek (right axis)");
  F.DateAxis("mmm d");
  F.Panel->RightAxis()->SetVisible(true);
  // One grid is enough: the left axis draws it.
  F.Panel->RightAxis()->SetOptions(F.Panel->RightAxis()->Options() - aoShowGrid);
  auto* Daily = F.Line("Daily (left)", SourceInk, 1);
  Daily->Values()->SetDateTimeAxes({xyX});
  const TDateTime Start = EncodeDate(2024, 1, 3); // a Wednesday: the first week is short
  Fill(Daily, 70, [Start](int I) { return std::pair<double, double>(Start + I, Wave(I) / 10); });
  auto* Weekly = F.Line("Sum per week, mid-week (right)", Deep, 3);
  Weekly->SetVertAxis(vaRight);
  F.Function(Daily, Weekly, cfSum, fpWeek, 1);
  PaintPanel(C, F.Panel, R);
}

void PaintHighLow(TCanvas* C, const TRect& R) {
  TFunctionPanel F(R, "cfMaximum and cfMinimum, fpValueCount 8");
  auto* Source = F.Line("Source", SourceInk, 1);
  Fill(Source, 96, [](int I) { return std::pair<double, double>(I, Wave(I)); });
  auto* High = F.Line("High per 8 values", Strong, 2);
  auto* Low = F.Line("Low per 8 values", Green, 2);
  F.Function(Source, High, cfMaximum, fpValueCount, 8);
  F.Function(Source, Low, cfMinimum, fpValueCount, 8);
  PaintPanel(C, F.Panel, R);
}

void PaintMonthly(TCanvas* C, const TRect& R) {
  TFunctionPanel F(R, "cfAverage, fpMonth, stamped mid-month");
  F.DateAxis("mmm");
  auto* Daily = F.Line("Daily, 2024", SourceInk, 1);
  Daily->Values()->SetDateTimeAxes({xyX});
  const TDateTime Start = EncodeDate(2024, 1, 1);
  Fill(Daily, 366, [Start](int I) {
    return std::pair<double, double>(Start + I, 10 + 8 * std::sin(I / 58.0) + Wave(I) / 12);
  });
  auto* Monthly = F.Line("Monthly average", Deep, 3);
  F.Function(Daily, Monthly, cfAverage, fpMonth, 1);
  PaintPanel(C, F.Panel, R);
}

void PaintFunctions(TCanvas* C, const TRect&) {
  ResetCanvas(C, clWhite);
  int32_t Y = SectionTitle(C, 12, "Chart functions: targets kept computed from a source line",
                           SheetWidth, clWhite);
  const TGrid G{10, Y, 610, 400, 2};
  const std::function<void(TCanvas*, const TRect&)> Cells[] = {
      PaintAveragePerPeriod, PaintWeeklySum, PaintHighLow, PaintMonthly};
  const char* Captions[] = {
      "An average per period of 10 units, held from each period's start to the next",
      "Daily values on a date axis, their sum per ISO week on the right axis",
      "The high and the low of each period of 8 values",
      "A year of daily values and their monthly average, in the middle of each month"};
  for (int I = 0; I < 4; ++I) {
    Cells[I](C, G.Body(I));
    ResetCanvas(C, clWhite);
    CaptionUnder(C, G, I, Captions[I], clWhite);
  }
}

} // namespace

void AddFunctionSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"functions",
                    "Chart functions: an average per period, a sum per week on a date axis, the "
                    "high and low per period, a monthly average",
                    SheetWidth, 860, PaintFunctions});
}

} // namespace kx::gallery
