#include "kxcharts/charts/KXShapeCharts.h"

#include <cmath>
#include <limits>
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

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();

// A shape chart alone on axes of 0..10 drawn into 100 x 100 (X = 10 x, Y = 100 - 10 y).
struct TShapes {
  TOwned<TChartsForm> Form{New<TChartsForm>(nullptr)};
  TKXShapeChart* Chart = New<TKXShapeChart>(Form.get());
  TShapes() {
    Chart->SetBounds(0, 0, 100, 100);
    test::FixAxes(Chart);
  }
  TKXShapeChartValue* Add(double X, double Y, double W, double H, const std::string& Caption = "") {
    // The numbers as doubles: a float rectangle would bend the huge ones.
    TKXShapeChartValue* V = Chart->Values()->Add(X, Y, Caption);
    V->SetWidth(W);
    V->SetHeight(H);
    test::FixAxes(Chart);
    return V;
  }
  TOwned<TBitmap> Draw() {
    TOwned<TBitmap> B = MakeBitmap(100, 100);
    Chart->Draw(B->Canvas(), {0, 0, 100, 100});
    return B;
  }
};

bool Painted(TColor C) {
  return C != clWhite;
}

// --- Values ---

TEST(ShapeCharts, ANewValueTakesTheDefaultShapeAndAddTakesARectangleAsFourNumbers) {
  StartChartsModule();
  TShapes S;
  EXPECT_EQ(GetChartClass(ctShape), ClassOf<TKXShapeChart>());
  EXPECT_TRUE(S.Chart->Options().Contains(coValueLabels));
  S.Chart->DefaultShape()->SetStyle(shpStar);
  S.Chart->DefaultShape()->SetAlignment(tdTopRight);
  S.Chart->DefaultShape()->Font()->SetSize(13);
  S.Chart->DefaultShape()->Pen()->SetColor(clMaroon);
  TKXShapeChartValue* A = S.Chart->Values()->Add(3, 4, "a");
  EXPECT_EQ(A->Width(), 25);
  EXPECT_EQ(A->Height(), 25);
  EXPECT_EQ(A->Style(), shpStar);
  EXPECT_EQ(A->Alignment(), tdTopRight);
  EXPECT_EQ(A->Font()->Size(), 13);
  EXPECT_EQ(A->Pen()->Color(), clMaroon);
  // The rectangle's right is the width, its bottom the height.
  TKXShapeChartValue* B = S.Chart->Values()->Add(KXRect(1, 2, 3, 4), shpEllipse, "b");
  EXPECT_EQ(B->Numbers().size(), 4u);
  EXPECT_EQ(B->X(), 1);
  EXPECT_EQ(B->Y(), 2);
  EXPECT_EQ(B->Width(), 3);
  EXPECT_EQ(B->Height(), 4);
  EXPECT_EQ(B->Style(), shpEllipse);
  // Later changes of the default leave existing values alone.
  S.Chart->DefaultShape()->SetWidth(40);
  EXPECT_EQ(A->Width(), 25);
}

TEST(ShapeCharts, RadiusScalesBothSidesAndLeavesAShapeOfNoSize) {
  struct TCase {
    double W, H, Radius, NewW, NewH;
  };
  const TCase Cases[] = {{3, 4, 10, 6, 8}, {3, 4, 0, 0, 0}, {0, 0, 7, 0, 0}, {-3, 4, 5, -3, 4}};
  for (const TCase& C : Cases) {
    TShapes S;
    TKXShapeChartValue* V = S.Add(0, 0, C.W, C.H);
    V->SetRadius(C.Radius);
    EXPECT_DOUBLE_EQ(V->Width(), C.NewW) << C.W << " x " << C.H << " to " << C.Radius;
    EXPECT_DOUBLE_EQ(V->Height(), C.NewH);
  }
}

TEST(ShapeCharts, DefaultShapeAndValueExchangeTheirSettings) {
  TShapes S;
  TKXShapeChartValue* V = S.Add(1, 1, 6.6, 3.2);
  V->SetStyle(shpHexagon);
  V->SetAlignment(tdBottomLeft);
  V->Brush()->SetColor(clAqua);
  V->Font()->SetColor(clGreen);
  auto Shape = MakeOwned<TKXDefaultShape>();
  Shape->Assign(V);
  EXPECT_EQ(Shape->Width(), 7) << "rounded";
  EXPECT_EQ(Shape->Height(), 3);
  EXPECT_EQ(Shape->Style(), shpHexagon);
  EXPECT_EQ(Shape->Alignment(), tdBottomLeft);
  EXPECT_EQ(Shape->Brush()->Color(), clAqua);
  EXPECT_EQ(Shape->Font()->Color(), clGreen);
  Shape->SetWidth(2);
  TKXShapeChartValue* W = S.Add(0, 0, 9, 9);
  W->Assign(Shape.get());
  EXPECT_EQ(W->Width(), 2);
  EXPECT_EQ(W->Style(), shpHexagon);
  EXPECT_EQ(W->Font()->Color(), clGreen);
  auto Point = MakeOwned<TKXChartPointInfo>();
  EXPECT_THROW(Point->Assign(S.Chart->Font()), EConvertError);
}

// --- Geometry ---

struct TShapeRectCase {
  const char* Name;
  double X, Y, W, H;
  TRect Expected;
};

TEST(ShapeCharts, TheRectangleOfAShapeOnKnownAxes) {
  const TShapeRectCase Cases[] = {
      {"a plain shape: top and bottom put in order", 2, 3, 4, 5, {20, 20, 60, 70}},
      {"a negative width keeps left beyond right", 6, 3, -4, 5, {60, 20, 20, 70}},
      {"a negative height is put in order too", 2, 8, 4, -5, {20, 20, 60, 70}},
      {"no size", 5, 5, 0, 0, {50, 50, 50, 50}},
      {"a corner that is no number has no rectangle", NaN, 3, 4, 5, {}},
      {"an infinite size has none either", 1, 1, Inf, 1, {}},
  };
  for (const TShapeRectCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TShapes S;
    TKXShapeChartValue* V = S.Add(C.X, C.Y, C.W, C.H);
    EXPECT_EQ(S.Chart->GetShapeRect({0, 0, 100, 100}, V), C.Expected);
  }
}

TEST(ShapeCharts, TheHitTestIsTheRectangleToItsEdgeWhateverTheStyle) {
  struct TCase {
    double X, Y;
    bool Hit;
  };
  const TCase Cases[] = {{2, 3, true},  {6, 8, true},       {6.01, 8, false},
                         {2, 2.99, false}, {2.1, 7.9, true}};
  TShapes S;
  TKXShapeChartValue* V = S.Add(2, 3, 4, 5);
  V->SetStyle(shpEllipse); // the corners of the rectangle count
  for (const TCase& C : Cases)
    EXPECT_EQ(V->Selectable(KXRect(C.X, C.Y, C.X, C.Y), saSelect), C.Hit) << C.X << ", " << C.Y;
  // A negative width covers the same ground the other way.
  TKXShapeChartValue* N = S.Add(6, 3, -4, 5);
  EXPECT_TRUE(N->Selectable(KXRect(3, 4, 3, 4), saSelect));
}

TEST(ShapeCharts, TheRangeIsTheHullOfTheShapes) {
  TShapes S;
  S.Add(2, 3, 4, 5);
  // Reaches past both ends of what came before, and the other way.
  S.Add(0, 1, 10, 10);
  S.Add(5, 5, -7, 1);
  const TKXShapeChartValues* V = S.Chart->Values();
  EXPECT_DOUBLE_EQ(V->MinValue(0), -2);
  EXPECT_DOUBLE_EQ(V->MaxValue(0), 10);
  EXPECT_DOUBLE_EQ(V->MinValue(1), 1);
  EXPECT_DOUBLE_EQ(V->MaxValue(1), 11);
}

// --- Drawing ---

TEST(ShapeCharts, ALabelStandsWhereItsAlignmentSaysAlsoWhenItWraps) {
  struct TCase {
    T2DTextAlignment Alignment;
    const char* Text;
    // Where the label's ink must lie within the shape (20..80 each way), and not.
    TRect Inside, Empty;
  };
  const TCase Cases[] = {
      {tdTopLeft, "Top", {20, 20, 50, 40}, {20, 60, 80, 80}},
      {tdBottomRight, "Low", {50, 60, 80, 80}, {20, 20, 80, 40}},
      {tdMiddleCenter, "Two words here", {20, 30, 80, 70}, {20, 20, 80, 30}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Text);
    TShapes S;
    S.Chart->SetOptions(S.Chart->Options() - coValueColors);
    S.Chart->DefaultShape()->Brush()->SetColor(clWhite);
    S.Chart->DefaultShape()->Pen()->SetStyle(psClear);
    S.Chart->DefaultShape()->Font()->SetColor(clBlack);
    S.Chart->DefaultShape()->SetAlignment(C.Alignment);
    S.Chart->SetColor(clWhite);
    S.Add(2, 2, 6, 6, C.Text);
    auto B = S.Draw();
    const auto Ink = [](TColor X) { return test::Near(X, clBlack, 120); };
    EXPECT_GT(CountPixels(B.get(), C.Inside, Ink), 5);
    EXPECT_EQ(CountPixels(B.get(), C.Empty, Ink), 0);
  }
}

TEST(ShapeCharts, TheEventCanTakeOverAShapeAndBadShapesDrawNothing) {
  TShapes S;
  S.Chart->SetOptions(S.Chart->Options() - coValueLabels);
  S.Add(1, 1, 2, 2);
  S.Add(6, 6, 2, 2);
  S.Add(NaN, 1, 1, 1);
  S.Add(1e308, 1e308, 1e308, 1e308);
  S.Add(5, 5, -Inf, 1);
  TRect Seen;
  S.Chart->SetOnCustomDrawValue([&](TObject*, TCanvas*, const TRect& R, TKXPointChartValue* V,
                                    bool& DefaultDraw) {
    Seen = R;
    DefaultDraw = V->X() != 1;
  });
  auto B = S.Draw();
  EXPECT_EQ(Seen, (TRect{0, 0, 100, 100})) << "the handler gets the chart's rectangle";
  EXPECT_EQ(CountPixels(B.get(), {0, 60, 40, 100}, Painted), 0);
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{60, 20, 80, 40}));
}

TEST(ShapeCharts, TheSampleValuesAreFiveLabelledShapes) {
  TShapes S;
  S.Chart->SetPreview(true);
  ASSERT_EQ(S.Chart->Values()->Count(), 5);
  const TKXShapeStyle Styles[] = {shpEllipse, shpDiamond3D, shpOctagon, shpHexagon3D, shpPentagon};
  for (int I = 0; I < 5; ++I)
    EXPECT_EQ(S.Chart->Values()->Items(I)->Style(), Styles[I]);
  EXPECT_EQ(S.Chart->Values()->Items(3)->Width(), 100);
  EXPECT_TRUE(S.Chart->Preview());
}

TEST(ShapeCharts, AChartComesBackFromItsStoredForm) {
  StartChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* Chart = New<TKXShapeChart>(Form.get());
  Chart->SetName("Shapes1");
  Chart->DefaultShape()->SetAlignment(tdTopCenter);
  TKXShapeChartValue* V = Chart->Values()->Add(KXRect(1, 2, 3, 4), shpCross, "x");
  V->Font()->SetSize(17);
  V->Brush()->SetColor(clYellow);
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  auto* Back = static_cast<TKXShapeChart*>(Copy->FindComponent("Shapes1"));
  ASSERT_NE(Back, nullptr);
  const TKXShapeChartValue* W = Back->Values()->Items(0);
  EXPECT_EQ(W->Style(), shpCross);
  EXPECT_EQ(W->Height(), 4);
  EXPECT_EQ(W->Font()->Size(), 17);
  EXPECT_EQ(W->Brush()->Color(), clYellow);
  EXPECT_EQ(Back->DefaultShape()->Alignment(), tdTopCenter);
}

} // namespace
} // namespace kx
