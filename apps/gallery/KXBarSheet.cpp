// The bar family as a user meets it: a new bar chart with its sample values and their
// captions along the category axis; three charts of one group clustered side by side (the
// opt-in), stacked, and stacked to 100 %; lying bars; and bars with a line in one panel.
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bars/KXBarCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetW = 640, SheetH = 400;

const char* const Quarters[] = {"Q1", "Q2", "Q3", "Q4", "Q5", "Q6"};

// A form holding one panel of the sheet's size.
struct TBarForm {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = nullptr;

  explicit TBarForm(const TRect& Area) {
    ColorListIndex = 0;
    Form->SetBounds(0, 0, Area.Right - Area.Left, Area.Bottom - Area.Top);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, Area.Right - Area.Left, Area.Bottom - Area.Top);
  }

  // Labels at whole categories only (a step of 0.5 would repeat each caption), and no
  // origin line through the first category.
  static void Categories(TKXChartAxis* Axis) {
    Axis->SetMinStepIncrement(1);
    Axis->Grid()->SetDrawOptions(Axis->Grid()->DrawOptions() - agoOrigin);
  }

  // A chart of one colour, without value labels, with a number per quarter.
  TKXBarChart* Bars(const char* Caption, TColor Color, std::initializer_list<double> Numbers) {
    auto* C = New<TKXBarChart>(Form.get());
    C->SetCaption(Caption);
    C->SetOptions(C->Options() - coValueColors - coValueLabels);
    C->SetColor(Color);
    int I = 0;
    for (double N : Numbers)
      C->Values()->Add(N, Quarters[I++]);
    C->SetPanel(Panel);
    return C;
  }
};

const TColor Blue = static_cast<TColor>(0xB07830);
const TColor Orange = static_cast<TColor>(0x3C8CE6);
const TColor Green = static_cast<TColor>(0x50A050);

// Three regions over four quarters, one group; Style and Clustered set on the first.
void PaintGroup(TCanvas* C, const TRect& Area, TKXGroupStyle Style, bool Clustered) {
  TBarForm F(Area);
  F.Panel->Legend()->SetLegendStyle(lsCharts);
  auto* North = F.Bars("North", Blue, {42, 55, 61, 48});
  F.Bars("South", Orange, {30, 28, 35, 44});
  F.Bars("West", Green, {18, 26, 22, 31});
  North->SetGroupStyle(Style);
  North->SetClustered(Clustered);
  TBarForm::Categories(F.Panel->BottomAxis());
  PaintPanel(C, F.Panel, Area);
}

// A new bar chart: the sample values, each in its colour, with their captions as labels and
// along the category axis.
void PaintNew(TCanvas* C, const TRect& Area) {
  TBarForm F(Area);
  auto* Chart = New<TKXBarChart>(F.Form.get());
  Chart->SetCaption("Bars");
  Chart->SetPanel(F.Panel);
  Chart->SetPreview(true);
  PaintPanel(C, F.Panel, Area);
}

// Lying bars: the categories down the left axis, the numbers along the bottom, a negative
// one pointing left from the origin; each labelled with its number.
void PaintHorizontal(TCanvas* C, const TRect& Area) {
  TBarForm F(Area);
  auto* Chart = New<TKXBarChart>(F.Form.get());
  Chart->SetCaption("Change");
  Chart->SetValueLabelStyle(ltsValue);
  const char* Names[] = {"Rent", "Salaries", "Travel", "Equipment", "Training"};
  const double Numbers[] = {12, 35, -8, 21, 6};
  for (int I = 0; I < 5; ++I)
    Chart->Values()->Add(Numbers[I], Names[I]);
  Chart->SetOrientation(boHorizontal);
  Chart->SetPanel(F.Panel);
  TBarForm::Categories(F.Panel->LeftAxis());
  PaintPanel(C, F.Panel, Area);
}

// Monthly bars and a line of their running average in one panel, on the same axes: the
// line's X is the bar's index.
void PaintWithLine(TCanvas* C, const TRect& Area) {
  TBarForm F(Area);
  F.Panel->Legend()->SetLegendStyle(lsCharts);
  const char* Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug"};
  const double Sales[] = {14, 18, 11, 23, 19, 27, 24, 30};
  auto* Bars = New<TKXBarChart>(F.Form.get());
  Bars->SetCaption("Sales");
  Bars->SetOptions(Bars->Options() - coValueColors - coValueLabels);
  Bars->SetColor(static_cast<TColor>(0xD8B890));
  auto* Line = New<TKXLineChart>(F.Form.get());
  Line->SetCaption("Three-month average");
  Line->SetOptions(Line->Options() - coValueColors - coValueLabels);
  Line->SetColor(static_cast<TColor>(0x2030B0));
  double Sum = 0;
  for (int I = 0; I < 8; ++I) {
    Bars->Values()->Add(Sales[I], Months[I]);
    Sum += Sales[I] - (I >= 3 ? Sales[I - 3] : 0);
    Line->Values()->Add(I, Sum / (I >= 3 ? 3 : I + 1));
  }
  Bars->SetPanel(F.Panel);
  Line->SetPanel(F.Panel);
  TBarForm::Categories(F.Panel->BottomAxis());
  PaintPanel(C, F.Panel, Area);
}

} // namespace

void AddBarSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"bar",
                    "TKXBarChart in a chart panel, with the values a new chart shows: their "
                    "captions label the bars and the category axis",
                    SheetW, SheetH, PaintNew});
  Sheets.push_back({"bar-clustered",
                    "Three bar charts of one group, clustered (Clustered, off by default): "
                    "side by side at each category",
                    SheetW, SheetH,
                    [](TCanvas* C, const TRect& A) { PaintGroup(C, A, gsNone, true); }});
  Sheets.push_back({"bar-stacked", "Three bar charts of one group, stacked (gsStacked)", SheetW,
                    SheetH,
                    [](TCanvas* C, const TRect& A) { PaintGroup(C, A, gsStacked, false); }});
  Sheets.push_back({"bar-stacked100",
                    "The same group stacked to 100 per cent (gsStacked100): each category's "
                    "shares",
                    SheetW, SheetH,
                    [](TCanvas* C, const TRect& A) { PaintGroup(C, A, gsStacked100, false); }});
  Sheets.push_back({"bar-horizontal",
                    "Lying bars (boHorizontal): categories down the left axis, a negative "
                    "value to the left of the origin, value labels along the bars' upper edge",
                    SheetW, SheetH, PaintHorizontal});
  Sheets.push_back({"bar-line", "A bar chart and a line chart in one panel, on the same axes",
                    SheetW, SheetH, PaintWithLine});
}

} // namespace kx::gallery
