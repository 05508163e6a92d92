// The axis sheet: a bottom and a left axis measured and painted around a plot rectangle, on
// every scale, with dates, inward, in each label style and grid option, and a chart alone
// on a form painting its own axes around itself.
#include <functional>
#include <string>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx::gallery {

namespace {

constexpr TColor Paper = static_cast<TColor>(0xFBF8F6);
constexpr int32_t SheetWidth = 1200;
const TGrid Cells{15, 15, 390, 260, 3};

class TAxisSheetForm : public TComponent {
  KX_CLASS(TAxisSheetForm, TComponent)

public:
  using TComponent::TComponent;
};

TOwned<TKXChartAxis> MakeAxis(TKXChartAxisLocation Location, double Min, double Max) {
  TOwned<TKXChartAxis> A(New<TKXChartAxis>(nullptr));
  A->SetLocation(Location);
  A->SetMaximum(Max);
  A->SetMinimum(Min);
  A->Grid()->GridPen()->SetColor(static_cast<TColor>(0xC8C0B8));
  return A;
}

using TSetUp = std::function<void(TKXChartAxis* Bottom, TKXChartAxis* Left)>;

// What a panel does with its axes: both measure on the whole rectangle, the plot is what
// they leave, then each paints on its side of it.
void AxesCell(TCanvas* C, int I, const std::string& Caption, double XMin, double XMax, double YMin,
              double YMax, const TSetUp& SetUp) {
  const TRect R = Cells.Body(I);
  ResetCanvas(C, Paper);
  C->FillRect(R);
  auto Bottom = MakeAxis(calBottom, XMin, XMax);
  auto Left = MakeAxis(calLeft, YMin, YMax);
  Left->Title()->SetAngle(90);
  if (SetUp) SetUp(Bottom.get(), Left.get());
  Left->CalculateBounds(C, R);
  Bottom->CalculateBounds(C, R);
  const int32_t LW = Left->InwardPosition() == 0 ? Left->Width() : 0;
  const int32_t BH = Bottom->InwardPosition() == 0 ? Bottom->Height() : 0;
  const TRect Plot{R.Left + LW, R.Top + 6, R.Right - 8, R.Bottom - BH};
  Outline(C, Plot, Paper);
  Bottom->Draw(C, {Plot.Left, Plot.Top, Plot.Right, R.Bottom});
  Left->Draw(C, {R.Left, Plot.Top, Plot.Right, Plot.Bottom});
  CaptionUnder(C, Cells, I, Caption, Paper);
}

TDateTime Day(int32_t Y, int32_t M, int32_t D) {
  return EncodeDate(Y, M, D);
}

void PaintAxes(TCanvas* C, const TRect&) {
  int I = 0;
  AxesCell(C, I++, "Linear, 0 to 100 by -20 to 20", 0, 100, -20, 20, nullptr);
  AxesCell(C, I++, "Reversed bottom axis, titles", 0, 100, 0, 1,
           [](TKXChartAxis* B, TKXChartAxis* L) {
             B->SetOptions(B->Options() + aoReversed);
             B->Title()->SetText("Reversed");
             L->Title()->SetText("Share");
           });
  AxesCell(C, I++, "Logarithmic, 1 to 10 000", 1, 10000, 1, 1000,
           [](TKXChartAxis* B, TKXChartAxis* L) {
             B->SetOptions(B->Options() + aoLogarithmic);
             L->SetOptions(L->Options() + aoLogarithmic);
             L->SetLogarithmicType(ltInverseLogarithmic);
           });
  AxesCell(C, I++, "Log cycles, 1 to 10 000, minor grid", 1, 10000, 0, 10,
           [](TKXChartAxis* B, TKXChartAxis*) {
             B->SetOptions(B->Options() + aoLogarithmic);
             B->SetLogCycles(true);
             B->Grid()->SetDrawOptions(B->Grid()->DrawOptions() + agoMinorGrid);
           });
  AxesCell(C, I++, "Dates over two weeks (mmm d)", Day(2024, 3, 1), Day(2024, 3, 15), 0, 1,
           [](TKXChartAxis* B, TKXChartAxis*) {
             B->SetLabelStyle(alsDateTime);
             B->SetDateTimeFormat("mmm d");
           });
  AxesCell(C, I++, "Dates over a year (mmm yy), step of 30 days at least", Day(2023, 1, 1),
           Day(2024, 1, 1), 0, 1, [](TKXChartAxis* B, TKXChartAxis*) {
             B->SetLabelStyle(alsDateTime);
             B->SetDateTimeFormat("mmm yy");
             B->SetMinStepIncrement(30);
           });
  AxesCell(C, I++, "Inward at 50 %: both axes cross the plot", -10, 10, -5, 5,
           [](TKXChartAxis* B, TKXChartAxis* L) {
             for (TKXChartAxis* A : {B, L}) {
               A->SetInwardPosition(50);
               A->Grid()->SetDrawOptions(A->Grid()->DrawOptions() - agoOrigin);
             }
           });
  AxesCell(C, I++, "Minor grid, minor ticks and the origin line", -50, 50, -3, 7,
           [](TKXChartAxis* B, TKXChartAxis* L) {
             for (TKXChartAxis* A : {B, L}) {
               A->Grid()->SetDrawOptions(A->Grid()->DrawOptions() + agoMinorGrid);
               A->Grid()->OriginPen()->SetColor(clRed);
               A->Grid()->SetInnerLength(3);
             }
           });
  AxesCell(C, I++, "SnapGrid off: labels from the top, 3 to 97", 3, 97, 3, 97,
           [](TKXChartAxis* B, TKXChartAxis* L) {
             B->SetSnapGrid(false);
             L->SetSnapGrid(false);
           });
  AxesCell(C, I++, "Labels: %.1f format, left aligned; ticks only", 0, 1, 0, 5000,
           [](TKXChartAxis* B, TKXChartAxis* L) {
             B->SetFormat("%.1f");
             B->Labels()->SetAlignment(taLeftJustify);
             L->Grid()->SetDrawOptions({agoTicks});
             B->Grid()->SetDrawOptions({agoTicks});
           });
  AxesCell(C, I++, "Fixed LabelIncrement 2.5 becomes 2", 0, 20, 0, 1,
           [](TKXChartAxis* B, TKXChartAxis*) { B->SetLabelIncrement(2.5); });

  // A chart alone on a form: its local axes made visible, painted around it.
  {
    TOwned<TAxisSheetForm> Form(New<TAxisSheetForm>(nullptr));
    auto* Chart = New<TKXLineChart>(Form.get());
    Chart->Values()->Clear();
    const double Ys[] = {3, 7, 4, 9, 6, 8, 2, 5};
    const char* Names[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun", "Mon"};
    for (int K = 0; K < 8; ++K)
      Chart->Values()->Add({double(K), Ys[K]}, Names[K]);
    TKXChartAxis* H = Chart->HorizontalAxis();
    TKXChartAxis* V = Chart->VerticalAxis();
    H->SetVisible(true);
    V->SetVisible(true);
    V->SetOptions(V->Options() - aoAutoMinimum);
    V->SetMinimum(0);
    const TRect R = Cells.Body(I);
    ResetCanvas(C, Paper);
    C->FillRect(R);
    Chart->Draw(C, R, V, H, true, true);
    CaptionUnder(C, Cells, I++, "A chart alone, captions on its own axes", Paper);
  }
}

} // namespace

void AddAxisSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"axes", "Axes: scales, dates, label styles and grid options", SheetWidth,
                    Cells.Bottom(12) + 15, PaintAxes});
}

} // namespace kx::gallery
