// The chart kinds that draw a shape at each value: point styles side by side, a scatter
// cloud with a filled closed line, labelled shapes, and bubbles sized by area with labels.
#include <cmath>
#include <random>
#include <string>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/charts/bubbles/KXBubbleCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::gallery {

namespace {

constexpr int32_t SheetW = 900, SheetH = 560;

// A form holding one panel of the sheet's size, its legend listing the charts.
struct TSheetPanel {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TKXChartPanel* Panel = nullptr;

  explicit TSheetPanel(const TRect& Area) {
    ColorListIndex = 0;
    const int32_t W = Area.Right - Area.Left, H = Area.Bottom - Area.Top;
    Form->SetBounds(0, 0, W, H);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, W, H);
    Panel->Footer()->SetVisible(false);
  }
};

// Twelve point styles in a row each, one chart per style, so that the legend names them.
void PaintPoints(TCanvas* C, const TRect& Area) {
  TSheetPanel S(Area);
  S.Panel->Legend()->SetLegendStyle(lsCharts);
  S.Panel->Legend()->SetMaxRows(12);
  S.Panel->Header()->SetText("Point styles (PointsInfo.Style), 14 pixels, FixedSizePoints");
  const TKXShapeStyle Styles[] = {shpRectangle, shpEllipse,   shpDiamond,     shpTriangleUp,
                                  shpTriangleDown, shpHexagon, shpStar,       shpRoundRect,
                                  shpCross,     shpOctagon,   shpPentagon,    shpEllipse3D};
  for (int K = 0; K < 12; ++K) {
    auto* P = New<TKXPointChart>(S.Form.get());
    P->SetCaption(GetEnumName(Styles[K]).substr(3));
    P->SetOptions(P->Options() - coValueColors - coValueLabels);
    P->SetFixedSizePoints(true);
    P->PointsInfo()->SetWidth(14);
    P->PointsInfo()->SetHeight(14);
    P->PointsInfo()->SetStyle(Styles[K]);
    P->PointsInfo()->Pen()->SetColor(static_cast<TColor>(0x303030));
    P->SetColor(DefaultColorList[K % 10]);
    // Wide steps: the range widens by half a point on each side, in axis units.
    for (int I = 0; I < 8; ++I)
      P->Values()->Add(10 * I, 10 * (12 - K) + 3 * std::sin(I + K));
    P->SetPanel(S.Panel);
  }
  PaintPanel(C, S.Panel, Area);
}

// A cloud of points around two centres, and a scatter chart's star closed and filled.
void PaintScatter(TCanvas* C, const TRect& Area) {
  TSheetPanel S(Area);
  S.Panel->Legend()->SetLegendStyle(lsCharts);
  S.Panel->Header()->SetText("Scatter: a closed, filled smooth line (lsSmooth) over a point cloud");
  auto* Cloud = New<TKXPointChart>(S.Form.get());
  Cloud->SetCaption("Cloud (2,000 points)");
  Cloud->SetOptions(Cloud->Options() - coValueColors - coValueLabels);
  Cloud->SetFixedSizePoints(true);
  Cloud->PointsInfo()->SetWidth(4);
  Cloud->PointsInfo()->SetHeight(4);
  Cloud->PointsInfo()->Pen()->SetStyle(psClear);
  Cloud->SetColor(static_cast<TColor>(0xB07040));
  std::mt19937 Random(11);
  std::normal_distribution<double> Spread(0.0, 38.0);
  Cloud->Values()->BeginUpdate();
  for (int I = 0; I < 2000; ++I) {
    const bool Left = I % 3 == 0;
    Cloud->Values()->Add((Left ? 270 : 420) + Spread(Random), (Left ? 240 : 170) + Spread(Random));
  }
  Cloud->Values()->EndUpdate();
  Cloud->SetPanel(S.Panel);
  auto* Star = New<TKXScatterChart>(S.Form.get());
  Star->SetCaption("Star (the scatter chart's sample)");
  Star->SetOptions(Star->Options() - coValueColors - coValueLabels);
  Star->SetLineChartElements({bcLine, bcArea});
  Star->SetColor(static_cast<TColor>(0x80D0F0));
  Star->Pen()->SetColor(static_cast<TColor>(0x2060A0));
  Star->PointsInfo()->Pen()->SetColor(static_cast<TColor>(0x2060A0));
  Star->PointsInfo()->SetStyle(shpDiamond);
  Star->SetFixedSizePoints(true);
  Star->SetPreview(true);
  Star->SetPanel(S.Panel);
  PaintPanel(C, S.Panel, Area);
}

// Shapes of several styles, each with its label placed by its own alignment.
void PaintShapes(TCanvas* C, const TRect& Area) {
  TSheetPanel S(Area);
  S.Panel->Header()->SetText("Shapes in axis units, each label placed by its Alignment");
  S.Panel->Legend()->SetVisible(false);
  // Room around the hull of the shapes, which is their range, and numbers along the bottom.
  S.Panel->BottomAxis()->SetLabelStyle(alsValue);
  for (TKXChartAxis* Axis : {S.Panel->BottomAxis(), S.Panel->LeftAxis()})
    Axis->SetOptions(Axis->Options() - aoAutoMinimum - aoAutoMaximum);
  S.Panel->BottomAxis()->SetMinimum(-5);
  S.Panel->BottomAxis()->SetMaximum(117);
  S.Panel->LeftAxis()->SetMinimum(0);
  S.Panel->LeftAxis()->SetMaximum(100);
  auto* Shapes = New<TKXShapeChart>(S.Form.get());
  Shapes->SetCaption("Shapes");
  Shapes->DefaultShape()->Font()->SetColor(clWhite);
  Shapes->DefaultShape()->Font()->SetStyle({fsBold});
  struct TItem {
    double X, Y, W, H;
    TKXShapeStyle Style;
    T2DTextAlignment Alignment;
    const char* Caption;
  };
  const TItem Items[] = {
      {0, 60, 35, 30, shpRectangle, tdTopLeft, "Top left, in a rectangle"},
      {45, 62, 28, 28, shpEllipse, tdMiddleCenter, "Middle of an ellipse"},
      {82, 58, 30, 34, shpHexagon3D, tdBottomCenter, "Raised, bottom"},
      {0, 10, 30, 38, shpDiamond, tdMiddleCenter, "Diamond"},
      {38, 5, 40, 40, shpStar, tdMiddleCenter, "Star"},
      {86, 12, 26, 30, shpRoundRect3D, tdBottomRight, "Rounded, bottom right"},
  };
  for (const TItem& I : Items) {
    TKXShapeChartValue* V = Shapes->Values()->Add(KXRect(I.X, I.Y, I.W, I.H), I.Style, I.Caption);
    V->SetAlignment(I.Alignment);
    V->Font()->SetSize(10);
  }
  Shapes->SetPanel(S.Panel);
  PaintPanel(C, S.Panel, Area);
}

// Bubbles sized by area, labelled with their caption and size.
void PaintBubbles(TCanvas* C, const TRect& Area) {
  TSheetPanel S(Area);
  S.Panel->Header()->SetText("Bubbles sized by area (szArea), the largest 25 % of the plot");
  auto* B = New<TKXBubbleChart>(S.Form.get());
  B->SetCaption("Markets");
  B->SetOptions(B->Options() + coValueLabels);
  B->SetValueLabelStyle(ltsCaptionValue);
  B->Font()->SetColor(static_cast<TColor>(0x202020));
  struct TMarket {
    double X, Y, Size;
    const char* Caption;
  };
  const TMarket Markets[] = {{12, 30, 900, "North"}, {30, 62, 400, "East"}, {52, 40, 1600, "South"},
                             {70, 75, 250, "West"},  {84, 28, 640, "Centre"}, {45, 85, 100, "Isles"}};
  for (const TMarket& M : Markets)
    B->Values()->Add(M.X, M.Y, M.Size, M.Caption);
  B->SetPanel(S.Panel);
  PaintPanel(C, S.Panel, Area);
}

} // namespace

void AddPointSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"point", "TKXPointChart: the point styles side by side", SheetW, SheetH,
                    PaintPoints});
  Sheets.push_back({"scatter", "TKXScatterChart: a cloud of points and a filled, closed line",
                    SheetW, SheetH, PaintScatter});
  Sheets.push_back({"shape", "TKXShapeChart: labelled shapes in axis units", SheetW, SheetH,
                    PaintShapes});
  Sheets.push_back({"bubble", "TKXBubbleChart: bubbles sized by area, with labels", SheetW, SheetH,
                    PaintBubbles});
}

} // namespace kx::gallery
