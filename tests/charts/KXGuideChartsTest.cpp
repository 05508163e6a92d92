#include "kxcharts/charts/KXGuideCharts.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHost.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::CountPixels;
using test::MakeBitmap;
using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
const TLineOrientations None{}, Horizontal{loHorizontal}, Vertical{loVertical},
    Both{loHorizontal, loVertical};

// A guide chart that writes down every line it draws: "H x,y" or "V x,y".
class TRecGuideChart : public TKXGuideChart {
  KX_CLASS(TRecGuideChart, TKXGuideChart)

public:
  using TKXGuideChart::TKXGuideChart;
  std::vector<std::string> Lines;
  void DrawGuide(TCanvas* Canvas, const TRect& ARect, int32_t X, int32_t Y,
                 TLineOrientation Orientation, float Opacity) override {
    Lines.push_back((Orientation == loHorizontal ? "H " : "V ") + std::to_string(X) + "," +
                    std::to_string(Y));
    TKXGuideChart::DrawGuide(Canvas, ARect, X, Y, Orientation, Opacity);
  }
};

// A guide chart alone on axes of 0..10 drawn into 100 x 100 (X = 10 x, Y = 100 - 10 y).
struct TGuides {
  TOwned<TChartsForm> Form{New<TChartsForm>(nullptr)};
  TRecGuideChart* Chart = New<TRecGuideChart>(Form.get());
  TGuides() {
    Chart->SetBounds(0, 0, 100, 100);
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->Pen()->SetColor(clRed);
    Chart->Pen()->SetStyle(psSolid);
    test::FixAxes(Chart);
  }
  TOwned<TBitmap> Draw() {
    Chart->Lines.clear();
    TOwned<TBitmap> B = MakeBitmap(100, 100);
    Chart->Draw(B->Canvas(), {0, 0, 100, 100});
    return B;
  }
};

bool IsRed(TColor C) {
  return test::Near(C, clRed, 60);
}

TEST(GuideCharts, ANewChartDrawsDashDotLinesWithoutFill) {
  StartChartsModule();
  TOwned<TKXGuideChart> Chart(New<TKXGuideChart>(nullptr));
  EXPECT_EQ(GetChartClass(ctGuide), ClassOf<TKXGuideChart>());
  EXPECT_EQ(Chart->Options().Bits(), 1943u);
  EXPECT_EQ(Chart->Pen()->Style(), psDashDot);
  EXPECT_EQ(Chart->Pen()->Width(), 1);
  EXPECT_EQ(Chart->Brush()->Style(), bsClear);
  EXPECT_EQ(Chart->Values()->Add(3.0)->Orientation(), Horizontal);
}

// Each orientation gives one line through the position from edge to edge.
TEST(GuideCharts, EachOrientationDrawsOneLineAcrossTheRectangle) {
  struct TCase {
    const char* Name;
    double X, Y;
    TLineOrientations Orientation;
    std::vector<std::string> Lines;
    std::vector<TPoint> Red, White;
  };
  const TCase Cases[] = {
      {"horizontal", 3, 7, Horizontal, {"H 30,30"}, {{0, 30}, {99, 30}}, {{30, 50}, {30, 31}}},
      {"vertical", 3, 7, Vertical, {"V 30,30"}, {{30, 0}, {30, 99}}, {{50, 30}, {31, 30}}},
      {"both", 6, 2, Both, {"H 60,80", "V 60,80"}, {{0, 80}, {60, 0}}, {{10, 10}}},
      {"none: no line", 6, 2, None, {}, {}, {{0, 80}, {60, 0}}},
      {"outside the range: still drawn, beyond the edge",
       20,
       5,
       Both,
       {"H 200,50", "V 200,50"},
       {{0, 50}},
       {}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TGuides G;
    G.Chart->Values()->Add(C.X, C.Y, "", TColor(-1), C.Orientation);
    TOwned<TBitmap> B = G.Draw();
    EXPECT_EQ(G.Chart->Lines, C.Lines);
    for (const TPoint& P : C.Red)
      EXPECT_TRUE(IsRed(B->Canvas()->Pixel(P.X, P.Y))) << P.X << "," << P.Y;
    for (const TPoint& P : C.White)
      EXPECT_EQ(B->Canvas()->Pixel(P.X, P.Y), clWhite) << P.X << "," << P.Y;
  }
}

// A click is a rectangle of no size; it catches a line within 0.1 axis units of it.
TEST(GuideCharts, AClickCatchesALineWithinATenthOfAUnit) {
  struct TCase {
    const char* Name;
    TLineOrientations Orientation;
    float X, Y; // the click
    TLineOrientations Hit;
  };
  // The guide stands at (5, 5).
  const TCase Cases[] = {
      {"on the position", Horizontal, 5, 5, Horizontal},
      {"along the horizontal line", Horizontal, 1, 5.05f, Horizontal},
      {"just beyond the tolerance", Horizontal, 1, 5.15f, None},
      {"a vertical guide is not caught along a row", Vertical, 1, 5, None},
      {"along the vertical line", Vertical, 5.08f, 9, Vertical},
      {"both lines answer both, on either line", Both, 9, 5, Both},
      {"both lines, the vertical one", Both, 5, 0.5f, Both},
      {"no orientation is never hit", None, 5, 5, None},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TGuides G;
    TKXGuideChartValue* V = G.Chart->Values()->Add(5, 5, "", TColor(-1), C.Orientation);
    const TRectF Click{C.X, C.Y, C.X, C.Y};
    EXPECT_EQ(V->SelectGuide(TPointF{5, 5}, Click), C.Hit);
    EXPECT_EQ(V->Selectable(Click, saSelect), !C.Hit.Empty());
    EXPECT_EQ(V->Selectable(Click, saToggle), !C.Hit.Empty());
    V->SetSelected(true);
    EXPECT_FALSE(V->Selectable(Click, saToggle));
  }
}

TEST(GuideCharts, TheLabelStandsBesideThePositionAboveTheLine) {
  TGuides G;
  G.Chart->Font()->SetColor(clBlue);
  G.Chart->Values()->Add(3, 5, "Limit");
  const auto Blue = [](TColor C) { return test::Near(C, clBlue, 90); };
  EXPECT_EQ(CountPixels(G.Draw().get(), Blue), 0);
  G.Chart->SetOptions(G.Chart->Options() + coValueLabels);
  TOwned<TBitmap> B = G.Draw();
  // Right of the vertical through X = 30, above the line at Y = 50.
  EXPECT_GT(CountPixels(B.get(), {31, 0, 100, 50}, Blue), 0);
  EXPECT_EQ(CountPixels(B.get(), {0, 0, 31, 100}, Blue), 0);
  EXPECT_EQ(CountPixels(B.get(), {0, 51, 100, 100}, Blue), 0);
}

TEST(GuideCharts, GuidesAtNaNDrawOnlyTheLineThatHasANumber) {
  TGuides G;
  G.Chart->Values()->Add(NaN, 4, "", TColor(-1), Both);
  G.Chart->Values()->Add(NaN, NaN, "", TColor(-1), Both);
  TOwned<TBitmap> B = G.Draw();
  EXPECT_EQ(G.Chart->Lines, std::vector<std::string>{"H 0,60"});
  EXPECT_FALSE(G.Chart->Values()->Items(1)->Selectable(TRectF{0, 0, 10, 10}, saSelect));
}

TEST(GuideCharts, EveryGuideIsWalkedWhateverTheZoom) {
  TGuides G;
  for (double X : {1.0, 5.0, 9.0})
    G.Chart->Values()->Add(X, X, "", TColor(-1), Vertical);
  G.Chart->HorizontalAxis()->SetZoomMinimum(4);
  G.Chart->HorizontalAxis()->SetZoomMaximum(6);
  G.Chart->DoUpdateAxisInfo(G.Chart->HorizontalAxis());
  EXPECT_EQ(G.Chart->FirstIndex(), 0);
  EXPECT_EQ(G.Chart->LastIndex(), 2);
  EXPECT_EQ(G.Chart->VisibleCount(), 3);
}

// In a panel with selection on, the mouse over a guide shows which of its lines lies there.
TEST(GuideCharts, TheCursorOverAGuideShowsItsLines) {
  Screen.SetCursor(crDefault);
  TOwned<TForm> Form(New<TForm>(nullptr));
  Form->SetBounds(50, 40, 400, 300);
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetParent(Form.get());
  Panel->SetBounds(0, 0, 400, 300);
  Panel->SetUserActions(Panel->UserActions() + uaSelect);
  for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()})
    test::SetRange(A, 0, 10);
  auto* Chart = New<TKXGuideChart>(Form.get());
  Chart->Values()->Add(2, 7, "", TColor(-1), Horizontal);
  Chart->Values()->Add(8, 3, "", TColor(-1), Vertical);
  Chart->Values()->Add(5, 5, "", TColor(-1), Both);
  Chart->SetPanel(Panel);
  TOwned<TKXHost> Host = MakeOwned<TKXHost>();
  Host->AddWindow(Form.get());
  Host->ProcessPaints();
  struct TCase {
    const char* Name;
    double X, Y;
    TCursor Cursor;
  };
  const TCase Cases[] = {
      {"on the horizontal guide", 6, 7, crVSplit}, {"on the vertical guide", 8, 8.5, crHSplit},
      {"on a guide of both lines", 9, 5, crCross}, {"on its other line", 5, 1, crCross},
      {"away from every guide", 1, 1, crDefault},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    const TPoint P{Panel->BottomAxis()->AxisToPixel(C.X), Panel->LeftAxis()->AxisToPixel(C.Y)};
    Host->MouseMove(Panel->ClientToScreen(P), {ssCtrl});
    EXPECT_EQ(Host->Cursor(), C.Cursor);
  }
  Screen.SetCursor(crDefault);
}

TEST(GuideCharts, AChartComesBackFromItsStoredForm) {
  StartChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* Chart = New<TKXGuideChart>(Form.get());
  Chart->SetName("Guides1");
  Chart->Values()->Add(1, 2, "a", TColor(-1), Both);
  Chart->Values()->Add(3, 4, "b");
  const std::string Json = SaveFormToString(Form.get());
  // The pen's dash-dot is its stored default; the brush writes its clear style, which its
  // colour would otherwise turn solid on reading.
  EXPECT_EQ(Json.find("psDashDot"), std::string::npos);
  EXPECT_NE(Json.find("bsClear"), std::string::npos);
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  auto* Back = static_cast<TKXGuideChart*>(Copy->FindComponent("Guides1"));
  ASSERT_NE(Back, nullptr);
  EXPECT_EQ(Back->Values()->Items(0)->Orientation(), Both);
  EXPECT_EQ(Back->Values()->Items(1)->Orientation(), Horizontal);
  EXPECT_EQ(Back->Pen()->Style(), psDashDot);
  EXPECT_EQ(Back->Brush()->Style(), bsClear);
}

TEST(GuideCharts, TheSampleValuesAreTwoHorizontalGuides) {
  TGuides G;
  G.Chart->SetPreview(true);
  ASSERT_EQ(G.Chart->Values()->Count(), 2);
  EXPECT_EQ(G.Chart->Values()->Items(1)->Y(), 75);
  EXPECT_EQ(G.Chart->Values()->Items(1)->Caption(), "75");
  EXPECT_EQ(G.Chart->Values()->Items(0)->Orientation(), Horizontal);
}

} // namespace
} // namespace kx
