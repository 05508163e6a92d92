#include "kxcharts/charts/KXPathCharts.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::CountPixels;
using test::MakeBitmap;
using test::TChartsForm;

// A path chart that notes, per value drawn, whether its path is rebuilt in that draw.
class TRecPathChart : public TKXPathChart {
  KX_CLASS(TRecPathChart, TKXPathChart)

public:
  using TKXPathChart::TKXPathChart;
  std::vector<bool> Rebuilt;
  void DrawPath(TCanvas* Canvas, const TRect& ARect, TKXPathChartValue* Value) override {
    Rebuilt.push_back(UpdatePaths() || Value->NeedPathUpdate());
    TKXPathChart::DrawPath(Canvas, ARect, Value);
  }
};

// A path chart alone on axes of 0..10 drawn into 100 x 100 (X = 10 x, Y = 100 - 10 y).
struct TPaths {
  TOwned<TChartsForm> Form{New<TChartsForm>(nullptr)};
  TRecPathChart* Chart = New<TRecPathChart>(Form.get());
  TPaths() {
    Chart->SetBounds(0, 0, 100, 100);
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetColor(clRed);
    test::FixAxes(Chart);
  }
  TOwned<TBitmap> Draw(const TRect& R = {0, 0, 100, 100}) {
    Chart->Rebuilt.clear();
    TOwned<TBitmap> B = MakeBitmap(100, 100);
    Chart->Draw(B->Canvas(), R);
    return B;
  }
};

TEST(PathCharts, APathPlacedByItselfTakesItsBoundsAsItsRectangle) {
  StartChartsModule();
  EXPECT_EQ(GetChartClass(ctPath), ClassOf<TKXPathChart>());
  struct TCase {
    const char* Path;
    double X, Y, W, H;
  };
  const TCase Cases[] = {
      {"M1,2 L5,2 L5,9 Z", 1, 2, 4, 7},
      {"M 3.5, 4 L 1.25, 0.5 L 6, 1 Z", 1.25, 0.5, 4.75, 3.5},
      {"M2,2 L8,2", 2, 2, 6, 0},
      {"", 0, 0, 0, 0},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Path);
    TPaths P;
    const TKXPathChartValue* V = P.Chart->Values()->Add(C.Path, "p");
    EXPECT_DOUBLE_EQ(V->X(), C.X);
    EXPECT_DOUBLE_EQ(V->Y(), C.Y);
    EXPECT_DOUBLE_EQ(V->Width(), C.W);
    EXPECT_DOUBLE_EQ(V->Height(), C.H);
    EXPECT_EQ(V->Data()->PathString(), C.Path);
  }
  TPaths P;
  const TKXPathChartValue* V = P.Chart->Values()->Add(KXRect(1, 2, 4, 6), "M0,0 L1,1 Z");
  EXPECT_EQ(V->ShapeRect(), KXRect(1, 2, 4, 6));
  EXPECT_EQ(V->Width(), 3);
}

// Current is Data fitted to the pixel rectangle: stretched, or at equal scale and centred.
TEST(PathCharts, APathIsFittedToItsRectangle) {
  struct TCase {
    const char* Name;
    const char* Path;
    TRectF Rect;
    bool Preserve;
    TRectF Bounds; // of Current
  };
  const TCase Cases[] = {
      {"stretched", "M0,0 L10,0 L10,10 L0,10 Z", {0, 0, 100, 50}, false, {0, 0, 100, 50}},
      {"square kept square", "M0,0 L10,0 L10,10 L0,10 Z", {0, 0, 100, 50}, true, {25, 0, 75, 50}},
      {"moved and shrunk",
       "M100,200 L300,200 L300,300 Z",
       {10, 10, 30, 20},
       false,
       {10, 10, 30, 20}},
      {"no height keeps its own place", "M0,5 L10,5", {0, 0, 100, 50}, false, {0, 5, 10, 5}},
      {"empty", "", {0, 0, 100, 50}, true, {0, 0, 0, 0}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TKXPathChartValue V(nullptr);
    V.Data()->SetPathString(C.Path);
    EXPECT_TRUE(V.NeedPathUpdate());
    V.UpdatePath(C.Rect, C.Preserve);
    EXPECT_FALSE(V.NeedPathUpdate());
    EXPECT_EQ(V.Current()->GetBounds(), C.Bounds);
    EXPECT_EQ(V.Data()->PathString(), C.Path) << "the given path stays as it was";
  }
}

TEST(PathCharts, BadPathTextNamesThePositionAndChangesNothing) {
  TPaths P;
  P.Chart->Values()->Add("M0,0 L1,1 Z");
  struct TCase {
    const char* Path;
    size_t Position;
  };
  const TCase Cases[] = {{"M0,0 L1,x", 9}, {"M0,0 Q", 7}, {"K1,1", 1}};
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Path);
    try {
      P.Chart->Values()->Add(C.Path, "bad");
      ADD_FAILURE() << "no error";
    } catch (const EKXPathError& E) {
      EXPECT_EQ(E.Position(), C.Position);
    }
    EXPECT_THROW(P.Chart->Values()->Add(KXRect(0, 0, 1, 1), C.Path), EKXPathError);
    EXPECT_EQ(P.Chart->Values()->Count(), 1);
    EXPECT_THROW(P.Chart->Values()->Items(0)->Data()->SetPathString(C.Path), EKXPathError);
    EXPECT_EQ(P.Chart->Values()->Items(0)->Data()->PathString(), "M0,0 L1,1 Z");
  }
}

// The working copy is rebuilt only when something moved.
TEST(PathCharts, APathIsRebuiltOnlyWhenSomethingMoved) {
  TPaths P;
  TKXPathChartValue* V = P.Chart->Values()->Add(KXRect(2, 2, 6, 6), "M0,0 L10,0 L5,8 Z");
  P.Chart->Values()->Add(KXRect(6, 6, 9, 9), "M0,0 L10,0 L5,8 Z");
  struct TStep {
    const char* Name;
    std::function<void()> Change;
    TRect Rect;
    std::vector<bool> Rebuilt;
  };
  TOwned<TBitmap> Legend = MakeBitmap(20, 20);
  const TStep Steps[] = {
      {"first draw", [] {}, {0, 0, 100, 100}, {true, true}},
      {"nothing changed", [] {}, {0, 0, 100, 100}, {false, false}},
      {"a brush", [&] { V->Brush()->SetColor(clBlue); }, {0, 0, 100, 100}, {false, false}},
      {"a number of one value", [&] { V->SetX(1); }, {0, 0, 100, 100}, {true, false}},
      {"the path of one value",
       [&] { V->Data()->SetPathString("M0,0 L1,1 L0,1 Z"); },
       {0, 0, 100, 100},
       {true, false}},
      {"a legend picture",
       [&] {
         P.Chart->DrawGlyph(Legend->Canvas(), V, {0, 0, 20, 20});
       },
       {0, 0, 100, 100},
       {true, true}},
      {"another rectangle", [] {}, {0, 0, 90, 100}, {true, true}},
      {"the axes", [&] { test::FixAxes(P.Chart, 12); }, {0, 0, 90, 100}, {true, true}},
  };
  for (const TStep& S : Steps) {
    SCOPED_TRACE(S.Name);
    S.Change();
    P.Draw(S.Rect);
    EXPECT_EQ(P.Chart->Rebuilt, S.Rebuilt);
  }
}

TEST(PathCharts, AClickSelectsByThePathARectangleByTheBounds) {
  struct TCase {
    const char* Name;
    TRectF Sel;
    bool Hit;
  };
  // A triangle (0, 0), (10, 0), (0, 10) placed on its own bounds.
  const TCase Cases[] = {
      {"a click inside", {2, 2, 2, 2}, true},
      {"a click in the bounds, outside the path", {8, 8, 8, 8}, false},
      {"a click outside", {12, 1, 12, 1}, false},
      {"a rectangle over the empty corner", {7, 7, 9, 9}, true},
      {"a rectangle beside", {11, 0, 12, 5}, false},
  };
  TPaths P;
  const TKXPathChartValue* V = P.Chart->Values()->Add("M0,0 L10,0 L0,10 Z");
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    EXPECT_EQ(V->Selectable(C.Sel, saSelect), C.Hit);
  }
}

TEST(PathCharts, APathFillsItsRectangleWithTheLabelInside) {
  TPaths P;
  P.Chart->SetOptions(P.Chart->Options() + coValueLabels);
  P.Chart->Font()->SetColor(clBlue);
  TKXPathChartValue* V = P.Chart->Values()->Add(KXRect(2, 2, 6, 6), "M0,0 L1,0 L1,1 L0,1 Z", "x");
  V->Font()->SetColor(clBlue);
  TOwned<TBitmap> B = P.Draw();
  const auto Red = [](TColor C) { return test::Near(C, clRed, 60); };
  const auto Blue = [](TColor C) { return test::Near(C, clBlue, 90); };
  // Axis units 2..6 are pixels 20..60 across and 80..40 down.
  EXPECT_TRUE(Red(B->Canvas()->Pixel(25, 45)));
  EXPECT_EQ(CountPixels(B.get(), {0, 0, 18, 100}, Red), 0);
  EXPECT_EQ(CountPixels(B.get(), {0, 0, 100, 38}, Red), 0);
  EXPECT_GT(CountPixels(B.get(), {20, 40, 60, 80}, Blue), 0);
  EXPECT_EQ(CountPixels(B.get(), {0, 0, 100, 40}, Blue), 0);
}

TEST(PathCharts, AValueWithoutSizeOrPathDrawsNothing) {
  TPaths P;
  P.Chart->Values()->Add();
  P.Chart->Values()->Add(KXRect(0, 0, 0, 0), "M0,0 L5,5 L0,5 Z");
  TOwned<TBitmap> B = P.Draw();
  EXPECT_EQ(CountPixels(B.get(), [](TColor C) { return test::Near(C, clRed, 60); }), 0);
}

TEST(PathCharts, AChartComesBackFromItsStoredForm) {
  StartChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* Chart = New<TKXPathChart>(Form.get());
  Chart->SetName("Paths1");
  Chart->SetPathOptions({poPreserveAspectRatio});
  TKXPathChartValue* V = Chart->Values()->Add(KXRect(1, 2, 4, 6), "M0,0 L1,0.5 L0,1 Z", "tri");
  V->SetAlignment(tdTopLeft);
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* Back = static_cast<TKXPathChart*>(Copy->FindComponent("Paths1"));
  ASSERT_NE(Back, nullptr);
  EXPECT_EQ(Back->PathOptions(), TPathOptions{poPreserveAspectRatio});
  const TKXPathChartValue* W = Back->Values()->Items(0);
  EXPECT_EQ(W->Data()->PathString(), "M0,0 L1,0.5 L0,1 Z");
  EXPECT_EQ(W->ShapeRect(), KXRect(1, 2, 4, 6));
  EXPECT_EQ(W->Alignment(), tdTopLeft);
}

TEST(PathCharts, TheSampleValuesAreAStarAHexagonAndACross) {
  TPaths P;
  P.Chart->SetPreview(true);
  ASSERT_EQ(P.Chart->Values()->Count(), 3);
  const TKXPathChartValue* Star = P.Chart->Values()->Items(0);
  EXPECT_EQ(Star->Caption(), "Star");
  EXPECT_EQ(Star->ShapeRect(), KXRect(231, 75, 469, 301));
  const TKXPathChartValue* Cancel = P.Chart->Values()->Items(2);
  EXPECT_EQ(Cancel->Data()->CommandCount(), 30u);
  EXPECT_NEAR(Cancel->X(), 320, 1);
  EXPECT_NEAR(Cancel->Y() + Cancel->Height(), 764, 1);
  EXPECT_TRUE(P.Chart->Preview());
}

} // namespace
} // namespace kx
