// The rest of the bar family as a user meets it: sparse bars at uneven positions, the daily
// span of a measurement as high-low-average bars, daily prices as candles over their volume.
#include <cmath>
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetW = 640, SheetH = 400;

const TColor Blue = static_cast<TColor>(0xB07830);
const TColor Red = static_cast<TColor>(0x3030C0);

// A form holding one panel of the sheet's size with its header.
struct TFamilyForm {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = nullptr;

  TFamilyForm(const TRect& Area, const std::string& Title) {
    ColorListIndex = 0;
    const int32_t W = Area.Right - Area.Left, H = Area.Bottom - Area.Top;
    Form->SetBounds(0, 0, W, H);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, W, H);
    Panel->Header()->SetText(Title);
    Panel->Footer()->SetVisible(false);
  }
  void DateAxis(const char* Format) const {
    Panel->BottomAxis()->SetLabelStyle(alsDateTime);
    Panel->BottomAxis()->SetDateTimeFormat(Format);
  }
};

// Rain on the days it rained: the bars stand at their day, as wide as the closest two days
// allow, labelled with their millimetres.
void PaintSparse(TCanvas* C, const TRect& Area) {
  TFamilyForm F(Area, "Rainfall in June, mm (TKXSparseBarChart)");
  auto* Rain = New<TKXSparseBarChart>(F.Form.get());
  Rain->SetCaption("Rain");
  Rain->SetOptions(Rain->Options() - coValueColors);
  Rain->SetColor(Blue);
  Rain->SetValueLabelStyle(ltsValue);
  const double Rainy[][2] = {{2, 4.5}, {3, 11}, {7, 2}, {12, 18.5}, {13, 7}, {19, 3.5}, {27, 24}};
  for (const auto& D : Rainy)
    Rain->Values()->Add(D[0], D[1], "");
  Rain->SetPanel(F.Panel);
  TKXChartAxis* Days = F.Panel->BottomAxis();
  // The days as numbers: the bars carry no captions.
  Days->SetLabelStyle(alsValue);
  Days->SetFormat("%.0f");
  TKXChartAxis* Millimetres = F.Panel->LeftAxis();
  Millimetres->SetFormat("%.0f");
  // Room above the highest bar for its label.
  Millimetres->SetOptions(Millimetres->Options() - aoAutoMaximum);
  Millimetres->SetMaximum(30);
  F.Panel->Legend()->SetVisible(false);
  PaintPanel(C, F.Panel, Area);
}

// Three weeks of daily temperatures: each day's span from the low to the high with its
// average marked beside it.
void PaintHighLowAverage(TCanvas* C, const TRect& Area) {
  TFamilyForm F(Area, "Daily temperature, \xC2\xB0" "C (TKXHighLowAverageChart)");
  auto* T = New<TKXHighLowAverageChart>(F.Form.get());
  T->SetCaption("Temperature");
  T->SetOptions(T->Options() - coValueColors - coValueLabels);
  T->SetColor(Red);
  T->SetAverageLinePct(50);
  const TDateTime Start = EncodeDate(2024, 4, 1);
  for (int I = 0; I < 21; ++I) {
    const double Mid = 12 + 5 * std::sin(I / 3.0) + 0.2 * I;
    const double Span = 6 + 3 * std::cos(I * 1.3);
    T->Values()->Add(Start + I, Mid + 0.8 * std::sin(I * 2.1), Mid + Span / 2, Mid - Span / 2, "");
  }
  T->Values()->SetDateTimeAxes({xyX});
  T->SetPanel(F.Panel);
  // No chart shadow: its marks would double the average's.
  F.Panel->ChartShadow()->SetVisible(false);
  F.DateAxis("mmm d");
  F.Panel->LeftAxis()->SetFormat("%.0f");
  F.Panel->Legend()->SetVisible(false);
  PaintPanel(C, F.Panel, Area);
}

// A few months of daily prices as candles on a date axis, weekdays only, and the volume of
// each day as sparse bars in a second panel below, on the same days.
void PaintCandles(TCanvas* C, const TRect& Area) {
  const int32_t W = Area.Right - Area.Left, H = Area.Bottom - Area.Top;
  const int32_t PriceH = H * 2 / 3;
  TFamilyForm F({Area.Left, Area.Top, Area.Right, Area.Top + PriceH},
                "Daily prices (TKXCandleStickChart)");
  auto* VolumePanel = New<TKXChartPanel>(F.Form.get());
  VolumePanel->SetParent(F.Form.get());
  VolumePanel->SetBounds(0, PriceH, W, H - PriceH);
  VolumePanel->Header()->SetText("Volume (TKXSparseBarChart)");
  VolumePanel->Footer()->SetVisible(false);
  VolumePanel->Legend()->SetVisible(false);
  VolumePanel->ChartShadow()->SetVisible(false);
  F.Form->SetBounds(0, 0, W, H);
  F.Panel->ChartShadow()->SetVisible(false);
  F.Panel->Legend()->SetVisible(false);

  auto* Prices = New<TKXCandleStickChart>(F.Form.get());
  Prices->SetCaption("Price");
  auto* Volume = New<TKXSparseBarChart>(F.Form.get());
  Volume->SetCaption("Volume");
  Volume->SetOptions(Volume->Options() - coValueColors - coValueLabels);
  Volume->SetColor(static_cast<TColor>(0xA08060));
  const TDateTime Start = EncodeDate(2024, 3, 1);
  double Close = 100;
  {
    TUpdateScope<TKXChartValues> P(Prices->TKXCustomChart::Values());
    TUpdateScope<TKXChartValues> V(Volume->TKXCustomChart::Values());
    for (int I = 0; I < 92; ++I) {
      const TDateTime Day = Start + I;
      const int32_t Week = DayOfWeek(Day);
      if (Week == 1 || Week == 7) continue; // no trading at the weekend
      const double Open = Close + 0.6 * std::sin(I * 2.3);
      Close = Open + 2.2 * std::sin(I * 0.9) + 1.1 * std::cos(I * 0.31) + 0.15;
      const double Top = std::max(Open, Close) + 0.5 + 0.8 * std::fabs(std::sin(I * 1.7));
      const double Bottom = std::min(Open, Close) - 0.5 - 0.8 * std::fabs(std::cos(I * 1.3));
      Prices->Values()->Add(Day, Open, Close, Top, Bottom, "");
      Volume->Values()->Add(Day, 40 + 25 * std::fabs(Close - Open) + 8 * std::sin(I * 0.7), "");
    }
  }
  Prices->Values()->SetDateTimeAxes({xyX});
  Volume->Values()->SetDateTimeAxes({xyX});
  Prices->SetPanel(F.Panel);
  Volume->SetPanel(VolumePanel);
  for (TKXChartPanel* P : {F.Panel, VolumePanel}) {
    P->BottomAxis()->SetLabelStyle(alsDateTime);
    P->BottomAxis()->SetDateTimeFormat("mmm d");
    P->LeftAxis()->SetFormat("%.0f");
  }
  PaintPanel(C, F.Panel, {Area.Left, Area.Top, Area.Right, Area.Top + PriceH});
  PaintPanel(C, VolumePanel, {Area.Left, Area.Top + PriceH, Area.Right, Area.Bottom});
}

// A price by the minute over two weeks of trading hours, and the daily candles that a
// high-low-average function keeps computed from it: each day's highest, lowest, mean, last
// and first price.
void PaintCandleFunction(TCanvas* C, const TRect& Area) {
  TFamilyForm F(Area, "Daily candles from prices by the minute (TKXHighLowAverageChartFunction)");
  F.Panel->ChartShadow()->SetVisible(false);
  F.Panel->Legend()->SetLegendStyle(lsCharts);
  F.Panel->Legend()->SetAlign(laBottom);
  auto* Minutes = New<TKXLineChart>(F.Form.get());
  Minutes->SetCaption("Price by the minute");
  Minutes->SetOptions(Minutes->Options() - coValueColors - coValueLabels);
  Minutes->SetColor(static_cast<TColor>(0xC8A890));
  auto* Days = New<TKXCandleStickChart>(F.Form.get());
  Days->SetCaption("Daily candles");
  Days->SetBarSizePct(50);
  auto* Function = New<TKXHighLowAverageChartFunction>(F.Form.get());
  Function->SetPeriod(fpDay);
  Function->SetSourceChart(Minutes);
  Function->SetTargetChart(Days);
  const TDateTime Start = EncodeDate(2024, 6, 3); // a Monday
  double Price = 0;
  {
    // One recalculation at the end of the batch.
    TUpdateScope<TKXChartValues> Scope(Minutes->TKXCustomChart::Values());
    int Minute = 0;
    for (int Day = 0; Day < 14; ++Day) {
      const int32_t Week = DayOfWeek(Start + Day);
      if (Week == 1 || Week == 7) continue;
      for (int M = 0; M < 8 * 60; M += 5, Minute += 5) {
        Price = 50 + 4 * std::sin(Minute * 0.0021) + 1.3 * std::sin(Minute * 0.017) +
                0.5 * std::sin(Minute * 0.23) + 0.2 * std::cos(Minute * 1.7);
        Minutes->Values()->Add(Start + Day + (9 * 60 + M) / 1440.0, Price);
      }
    }
  }
  Minutes->Values()->SetDateTimeAxes({xyX});
  Minutes->SetPanel(F.Panel);
  Days->SetPanel(F.Panel);
  F.DateAxis("mmm d");
  F.Panel->LeftAxis()->SetFormat("%.0f");
  PaintPanel(C, F.Panel, Area);
}

// A level meter: the bands of a graphic equaliser, each lit from red to green up to its
// level, with the peak it reached a moment ago marked above it.
void PaintEQ(TCanvas* C, const TRect& Area) {
  TFamilyForm F(Area, "Level meter (TKXEQChart)");
  F.Panel->Legend()->SetVisible(false);
  F.Panel->ChartShadow()->SetVisible(false);
  auto* Meter = New<TKXEQChart>(F.Form.get());
  Meter->SetCaption("Level");
  Meter->SetOptions(Meter->Options() - coValueColors - coValueLabels);
  Meter->SetColor(static_cast<TColor>(0x30A0F0));
  Meter->SetMin(-60);
  Meter->SetMax(0);
  Meter->SetSubdivisions(24);
  Meter->SetSpacing(25);
  const char* Bands[] = {"31", "63", "125", "250", "500", "1k", "2k", "4k", "8k", "16k"};
  const double Level[] = {-18, -9, -6, -12, -21, -15, -24, -30, -39, -48};
  const double Peak[] = {-12, -4, -3, -9, -14, -11, -17, -22, -33, -41};
  for (int I = 0; I < 10; ++I)
    Meter->Values()->Add(Level[I], Peak[I], Bands[I]);
  Meter->SetPanel(F.Panel);
  F.Panel->LeftAxis()->SetFormat("%.0f dB");
  F.Panel->BottomAxis()->SetMinStepIncrement(1);
  PaintPanel(C, F.Panel, Area);
}

} // namespace

void AddBarFamilySheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"sparse-bar",
                    "TKXSparseBarChart: bars at the days they stand for, all as wide as the "
                    "smallest gap between two days allows",
                    SheetW, SheetH, PaintSparse});
  Sheets.push_back({"hla",
                    "TKXHighLowAverageChart: each day's low to high, its average marked on "
                    "both sides of the bar, on a date axis",
                    SheetW, SheetH, PaintHighLowAverage});
  Sheets.push_back({"candlestick",
                    "TKXCandleStickChart: three months of daily prices on a date axis, up days "
                    "green and down days red, with the volume of each day as bars below",
                    800, 600, PaintCandles});
  Sheets.push_back({"candlestick-function",
                    "TKXHighLowAverageChartFunction: daily candles kept computed from a price "
                    "by the minute (fpDay, hfHighLowAverageOpenClose)",
                    800, 450, PaintCandleFunction});
  Sheets.push_back({"eq",
                    "TKXEQChart: a level meter of ten bands, each lit in segments from red to "
                    "green up to its level, its peak marked above",
                    SheetW, SheetH, PaintEQ});
}

} // namespace kx::gallery
