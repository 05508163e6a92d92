// A line chart of a million values, the way a log or a live signal fills one: the whole
// series, where many values share each pixel column, and the same series zoomed to a
// thousandth of its range, where single steps show again. Both panels paint every value's
// contribution; only what falls on one pixel column is drawn once. The values arrive in one
// bulk call.
#include <algorithm>
#include <random>
#include <vector>

#include "gallery/KXGallery.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx::gallery {

namespace {

constexpr int32_t Count = 1000000;
constexpr int32_t PanelW = 600, PanelH = 380, Gap = 20;

// A panel on its own form with one line chart of the same random walk each time it is
// made, zoomed to ZoomFraction of the X range about its middle (1 for the whole).
void PaintWalk(TCanvas* C, const TRect& Area, double ZoomFraction, const char* Title) {
  ColorListIndex = 0;
  TOwned<TForm> Form(New<TForm>(nullptr));
  Form->SetBounds(0, 0, PanelW, PanelH);
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetParent(Form.get());
  Panel->SetBounds(0, 0, PanelW, PanelH);
  Panel->Header()->SetText(Title);
  Panel->Footer()->SetText("value number");
  Panel->Legend()->SetVisible(false);
  Panel->ChartShadow()->SetVisible(false);
  auto* Line = New<TKXLineChart>(Form.get());
  // The pen keeps its width when zoomed, so that the steps stay thin lines.
  Line->SetOptions(Line->Options() - coValueColors - coValueLabels - coZoomPen);
  Line->SetColor(static_cast<TColor>(0xA05020));
  Line->Pen()->SetWidth(1);
  {
    // The walk in one call: X = 0, 1, 2, ...; the values are made only where asked for.
    std::mt19937 Random(7);
    std::normal_distribution<double> Step(0.0, 1.0);
    std::vector<double> Walk(Count);
    double Y = 0;
    for (double& V : Walk)
      V = Y += Step(Random);
    Line->Values()->AddValues(Walk);
  }
  Line->SetPanel(Panel);
  if (ZoomFraction < 1) {
    // Zoomed on both axes, as a user dragging a box around the middle would: the vertical
    // range is that of the values in view, with a little room above and below.
    const int32_t From = static_cast<int32_t>(Count * (1 - ZoomFraction) / 2);
    const int32_t To = static_cast<int32_t>(Count * (1 + ZoomFraction) / 2);
    double Lo = Line->Values()->Items(From)->Y(), Hi = Lo;
    for (int32_t I = From + 1; I <= To; ++I) {
      Lo = std::min(Lo, Line->Values()->Items(I)->Y());
      Hi = std::max(Hi, Line->Values()->Items(I)->Y());
    }
    const double Room = (Hi - Lo) * 0.05;
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()})
      A->UpdateAxisValues();
    Panel->BottomAxis()->SetZoomMinimum(From);
    Panel->BottomAxis()->SetZoomMaximum(To);
    Panel->LeftAxis()->SetZoomMinimum(Lo - Room);
    Panel->LeftAxis()->SetZoomMaximum(Hi + Room);
  }
  PaintPanel(C, Panel, Area);
}

void PaintLargeData(TCanvas* C, const TRect& Area) {
  PaintWalk(C, {Area.Left, Area.Top, Area.Left + PanelW, Area.Top + PanelH}, 1, "1,000,000 values");
  const int32_t Right = Area.Left + PanelW + Gap;
  PaintWalk(C, {Right, Area.Top, Right + PanelW, Area.Top + PanelH}, 0.001,
            "the middle 1,000 values, zoomed");
}

} // namespace

void AddLargeDataSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"line-million",
                    "A line chart of a million values of a random walk: the whole series, and "
                    "zoomed to a thousandth of it",
                    2 * PanelW + Gap, PanelH, PaintLargeData});
}

} // namespace kx::gallery
