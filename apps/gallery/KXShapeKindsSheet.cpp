// The chart kinds that draw free figures over the plot: guides over a line, a field of
// arrows, outlines fitted to their rectangles, and small pies on a scatter of regions.
#include <cmath>
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXChartInChart.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/KXPathCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetW = 900, SheetH = 560;

// A form holding one panel of the sheet's size.
struct TKindPanel {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = nullptr;

  TKindPanel(const TRect& Area, const std::string& Header) {
    ColorListIndex = 0;
    const int32_t W = Area.Right - Area.Left, H = Area.Bottom - Area.Top;
    Form->SetBounds(0, 0, W, H);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, W, H);
    Panel->Footer()->SetVisible(false);
    Panel->Header()->SetText(Header);
  }
  // Both axes fixed on the given ranges.
  void Ranges(double XLo, double XHi, double YLo, double YHi) {
    for (TKXChartAxis* Axis : {Panel->BottomAxis(), Panel->LeftAxis()})
      Axis->SetOptions(Axis->Options() - aoAutoMinimum - aoAutoMaximum);
    Panel->BottomAxis()->SetMaximum(XHi);
    Panel->BottomAxis()->SetMinimum(XLo);
    Panel->LeftAxis()->SetMaximum(YHi);
    Panel->LeftAxis()->SetMinimum(YLo);
    Panel->BottomAxis()->SetLabelStyle(alsValue);
  }
};

// A swirl: at each point of a grid an arrow along the flow around a centre, coloured by
// its strength; the three strongest are named.
void PaintArrows(TCanvas* C, const TRect& Area) {
  TKindPanel S(Area, "Arrows from start to end in axis units: a flow around (50, 50)");
  S.Panel->Legend()->SetVisible(false);
  S.Ranges(0, 100, 0, 100);
  auto* Flow = New<TKXArrowChart>(S.Form.get());
  Flow->SetCaption("Flow");
  Flow->SetArrowHeadSize(7);
  Flow->Pen()->SetWidth(2);
  Flow->Font()->SetColor(static_cast<TColor>(0x202020));
  const TColor Calm = static_cast<TColor>(0xC08040), Strong = static_cast<TColor>(0x2020D0);
  Flow->Values()->BeginUpdate();
  for (int Row = 0; Row < 7; ++Row)
    for (int Col = 0; Col < 9; ++Col) {
      const double X = 10 + Col * 10, Y = 15 + Row * 12;
      const double DX = X - 50, DY = Y - 50, R = std::hypot(DX, DY);
      if (R < 8) continue;
      // Strongest at a radius of 25, turning anticlockwise.
      const double Strength = std::exp(-std::pow((R - 25) / 18, 2));
      const double Len = 3 + 6 * Strength;
      const bool Named = Row == 3 && (Col == 1 || Col == 7);
      TKXArrowChartValue* V =
          Flow->Values()->Add(X, Y, X - DY / R * Len, Y + DX / R * Len,
                              Named ? (Col == 1 ? "down the west side" : "up the east side") : "",
                              InterpolateColor(Calm, Strong, Strength));
      V->SetOpacity(static_cast<float>(0.55 + 0.45 * Strength));
    }
  Flow->Values()->EndUpdate();
  Flow->SetPanel(S.Panel);
  PaintPanel(C, S.Panel, Area);
}

// A day of readings with two thresholds and a marker: guides across the whole plot.
void PaintGuides(TCanvas* C, const TRect& Area) {
  TKindPanel S(Area, "Guides: thresholds and a marker across a line chart, labels beside them");
  S.Ranges(0, 24, 0, 100);
  auto* Line = New<TKXLineChart>(S.Form.get());
  Line->SetCaption("Load (%)");
  Line->SetOptions(Line->Options() - coValueLabels - coValueColors);
  Line->SetColor(static_cast<TColor>(0x905020));
  for (int H = 0; H <= 96; ++H) {
    const double T = H / 4.0;
    Line->Values()->Add(T, 45 + 30 * std::sin((T - 8) / 24 * 2 * M_PI) + 8 * std::sin(T * 1.7));
  }
  Line->SetPanel(S.Panel);
  // One chart per kind of guide: a guide's line is in its chart's pen, its label's box in
  // the value's colour.
  struct TGuide {
    const char* Caption;
    double X, Y;
    TLineOrientations Orientation;
    TColor Color;
  };
  const TGuide Guides[] = {
      {"Alarm at 80 %", 0.3, 80, {loHorizontal}, static_cast<TColor>(0x2020C0)},
      {"Idle below 20 %", 14, 20, {loHorizontal}, static_cast<TColor>(0x208020)},
      {"Backup 17:30", 17.5, 95, {loVertical}, static_cast<TColor>(0x606060)},
  };
  for (const TGuide& G : Guides) {
    auto* Chart = New<TKXGuideChart>(S.Form.get());
    Chart->SetCaption(G.Caption);
    Chart->Pen()->SetWidth(2);
    Chart->Pen()->SetColor(G.Color);
    Chart->SetColor(G.Color);
    Chart->SetParentFont(false);
    Chart->Font()->SetColor(clWhite);
    Chart->Font()->SetStyle({fsBold});
    Chart->Values()->Add(G.X, G.Y, G.Caption, G.Color, G.Orientation);
    Chart->SetPanel(S.Panel);
  }
  PaintPanel(C, S.Panel, Area);
}

// Three outlines, each in a wide and a tall rectangle: stretched on the left, kept in
// proportion on the right. The labels stand at the foot of each rectangle.
void PaintPaths(TCanvas* C, const TRect& Area) {
  TKindPanel S(Area, "Paths fitted to their rectangles: stretched (left), in proportion (right)");
  S.Ranges(0, 100, 0, 100);
  S.Panel->Legend()->SetVisible(false);
  struct TOutline {
    const char* Caption;
    const char* Path;
    TColor Color;
  };
  const TOutline Outlines[] = {
      {"Star", "M50,0 L61,35 L98,35 L68,57 L79,91 L50,70 L21,91 L32,57 L2,35 L39,35 Z",
       static_cast<TColor>(0x30A0F0)},
      {"House",
       "M0,40 L50,0 L100,40 L88,40 L88,100 L12,100 L12,40 Z M40,100 L40,65 L60,65 L60,100 Z",
       static_cast<TColor>(0x4080C0)},
      {"Arrow", "M0,35 L60,35 L60,10 L100,50 L60,90 L60,65 L0,65 Z", static_cast<TColor>(0x50A050)},
  };
  for (bool Keep : {false, true}) {
    auto* Chart = New<TKXPathChart>(S.Form.get());
    Chart->SetCaption(Keep ? "In proportion" : "Stretched");
    if (Keep) Chart->SetPathOptions({poPreserveAspectRatio});
    const double Left = Keep ? 52 : 2;
    for (int I = 0; I < 3; ++I) {
      const TOutline& O = Outlines[I];
      // A wide rectangle and a tall one.
      const TRectF Rects[] = {KXRect(Left, 72 - I * 33, Left + 28, 72 - I * 33 + 24),
                              KXRect(Left + 32, 70 - I * 33, Left + 44, 70 - I * 33 + 28)};
      for (const TRectF& R : Rects) {
        TKXPathChartValue* V = Chart->Values()->Add(R, O.Path, O.Caption, O.Color);
        V->SetAlignment(tdBottomCenter);
        V->Pen()->SetColor(static_cast<TColor>(0x303030));
      }
    }
    Chart->SetPanel(S.Panel);
  }
  PaintPanel(C, S.Panel, Area);
}

// Regions as a scatter of small pies, each the share of three products there; small shapes
// shed their axes and labels, and the region's name stands under its pie.
void PaintChartInChart(TCanvas* C, const TRect& Area) {
  TKindPanel S(Area, "Chart in chart: a pie of product shares at each region");
  S.Ranges(0, 100, 0, 100);
  S.Panel->Legend()->SetVisible(false);
  auto* Map = New<TKXChartInChart>(S.Form.get());
  Map->SetCaption("Regions");
  // Pale cards under the pies, without the panel's shadow.
  Map->SetOptions(Map->Options() - coValueColors + coNoChartShadow);
  Map->SetColor(static_cast<TColor>(0xF4F0EC));
  Map->DefaultShape()->Font()->SetStyle({fsBold});
  struct TRegion {
    const char* Name;
    double X, Y, Size;
    double A, B, Cc;
  };
  const TRegion Regions[] = {
      {"North", 40, 74, 16, 50, 30, 20},   {"Coast", 12, 52, 12, 20, 60, 20},
      {"Capital", 52, 40, 20, 35, 35, 30}, {"Valley", 78, 58, 13, 15, 25, 60},
      {"South", 30, 10, 14, 45, 10, 45},   {"Islands", 80, 14, 9, 70, 20, 10},
  };
  const TColor Products[] = {static_cast<TColor>(0xC07030), static_cast<TColor>(0x3090E0),
                             static_cast<TColor>(0x50A050)};
  for (const TRegion& R : Regions) {
    auto* Pie = New<TKXPieChart>(nullptr);
    const double Shares[] = {R.A, R.B, R.Cc};
    for (int I = 0; I < 3; ++I)
      Pie->Values()->Add(Shares[I], "", Products[I]);
    Pie->SetOptions(Pie->Options() - coValueLabels);
    TKXChartInChartValue* V =
        Map->Values()->Add(Pie, KXRect(R.X - R.Size / 2, R.Y - R.Size / 2, R.Size, R.Size * 1.6),
                           shpRectangle, R.Name);
    // A pie handed in without an owner goes with its value.
    V->Pen()->SetColor(static_cast<TColor>(0xB0A8A0));
  }
  Map->SetPanel(S.Panel);
  PaintPanel(C, S.Panel, Area);
}

} // namespace

void AddShapeKindSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"guide", "TKXGuideChart: thresholds and a marker over a line chart", SheetW,
                    SheetH, PaintGuides});
  Sheets.push_back(
      {"path", "TKXPathChart: outlines fitted to their rectangles", SheetW, SheetH, PaintPaths});
  Sheets.push_back({"chart-in-chart", "TKXChartInChart: small pies placed on a scatter of regions",
                    SheetW, SheetH, PaintChartInChart});
  Sheets.push_back({"arrow", "TKXArrowChart: a field of arrows, coloured by strength", SheetW,
                    SheetH, PaintArrows});
}

} // namespace kx::gallery
