#include "kxcharts/charts/KXChartInChart.h"

#include <stdexcept>
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

// Hears of the components it watches going away.
class TWatcher : public TComponent {
  KX_CLASS(TWatcher, TComponent)

public:
  using TComponent::TComponent;
  int Freed = 0;

protected:
  void Notification(TComponent* AComponent, TOperation Operation) override {
    TComponent::Notification(AComponent, Operation);
    if (Operation == opRemove) ++Freed;
  }
};

// A chart in chart alone on axes of 0..10 drawn into 300 x 300: one unit is 30 pixels.
struct TNested {
  TOwned<TChartsForm> Form{New<TChartsForm>(nullptr)};
  TKXChartInChart* Chart = New<TKXChartInChart>(Form.get());
  TNested() {
    StartChartsModule();
    Chart->SetBounds(0, 0, 300, 300);
    Chart->SetOptions(Chart->Options() - coValueLabels);
    test::FixAxes(Chart);
  }
  // A value on the rectangle (X, Y, W, H in axis units) holding a line chart of its own.
  TKXChartInChartValue* Add(double X, double Y, double W, double H) {
    TKXChartInChartValue* V =
        Chart->Values()->Add(ClassOf<TKXLineChart>(), KXRect(X, Y, W, H), shpRectangle);
    for (int I = 0; I < 5; ++I)
      static_cast<TKXLineChart*>(V->SubChart())->Values()->Add(I * 10.0, I * I);
    test::FixAxes(Chart);
    return V;
  }
  TOwned<TBitmap> Draw() {
    TOwned<TBitmap> B = MakeBitmap(300, 300);
    Chart->Draw(B->Canvas(), {0, 0, 300, 300});
    return B;
  }
};

TEST(ChartInChart, ANewChartHoldsItsThresholdsAndTwoAxesOfItsOwn) {
  TNested N;
  EXPECT_EQ(GetChartClass(ctChartInChart), ClassOf<TKXChartInChart>());
  EXPECT_EQ(N.Chart->AxisThreshold(), 150);
  EXPECT_EQ(N.Chart->LabelThreshold(), 100);
  EXPECT_EQ(N.Chart->DefaultShape()->Alignment(), tdTopCenter);
  EXPECT_EQ(N.Chart->DefaultShape()->Style(), static_cast<TKXShapeStyle>(12));
  EXPECT_EQ(N.Chart->SubChartVerticalAxis()->Location(), calLeft);
  EXPECT_EQ(N.Chart->SubChartVerticalAxis()->Title()->Angle(), 90);
  EXPECT_EQ(N.Chart->SubChartHorizontalAxis()->Location(), calBottom);
  const TKXChartInChartValue* V = N.Chart->Values()->Add(1.0, 2.0);
  EXPECT_EQ(V->TextBoxAlignment(), tdBottomCenter);
  EXPECT_EQ(V->SubChart(), nullptr);
  EXPECT_EQ(V->SubChartType(), ctCustom);
  N.Chart->SetAxisThreshold(-5);
  EXPECT_EQ(N.Chart->AxisThreshold(), 0);
}

// A threshold acts only when both sides of the shape are below it.
TEST(ChartInChart, SmallShapesShedAxesAndLabelsByTheThresholds) {
  struct TCase {
    const char* Name;
    double W, H; // axis units of 30 pixels
    int32_t AxisThreshold, LabelThreshold;
    bool Axes, Labels;
  };
  const TCase Cases[] = {
      {"120 x 90: axes go, labels stay", 4, 3, 150, 100, false, true},
      {"90 x 90: both go", 3, 3, 150, 100, false, false},
      {"210 x 90: both stay", 7, 3, 150, 100, true, true},
      {"thresholds 0 keep both at every size", 1, 1, 0, 0, true, true},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TNested N;
    N.Chart->SetAxisThreshold(C.AxisThreshold);
    N.Chart->SetLabelThreshold(C.LabelThreshold);
    TKXChartInChartValue* V = N.Add(1, 1, C.W, C.H);
    V->SubChart()->SetOptions(V->SubChart()->Options() + coValueLabels);
    TKXChartAxis* H = N.Chart->SubChartHorizontalAxis();
    TKXChartAxis* Vert = N.Chart->SubChartVerticalAxis();
    const TAxisOptions Before = H->Options();
    int Calls = 0;
    N.Chart->SetOnUpdateAxis([&](TObject*, TKXChartAxis* Axis, bool&) {
      ++Calls;
      EXPECT_EQ(Axis->Visible(), C.Axes);
      EXPECT_EQ(Axis->Options().Contains(aoShowLabels), C.Labels);
      EXPECT_EQ(V->SubChart()->Options().Contains(coValueLabels), C.Labels);
    });
    N.Draw();
    EXPECT_EQ(Calls, 2);
    // Everything is back as it was.
    EXPECT_EQ(H->Options(), Before);
    EXPECT_TRUE(H->Visible());
    EXPECT_TRUE(Vert->Visible());
    EXPECT_TRUE(V->SubChart()->Options().Contains(coValueLabels));
  }
}

// The sub chart is drawn inside the shape: in its plot when the axes show, in the room the
// shape leaves otherwise, in the whole shape when the handler drew the shape itself.
TEST(ChartInChart, TheSubChartIsDrawnInsideItsShape) {
  struct TCase {
    const char* Name;
    double X, Y, W, H;
    bool HandlerDraws;
    TRect Shape; // pixels
    bool Whole;  // the sub chart gets exactly the shape
  };
  const TCase Cases[] = {
      {"small: the room inside the rectangle", 1, 1, 3, 3, false, {30, 180, 120, 270}, false},
      {"large: inside, less the axes", 1, 1, 8, 8, false, {30, 30, 270, 270}, false},
      {"the handler drew it: the whole shape", 1, 1, 3, 3, true, {30, 180, 120, 270}, true},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TNested N;
    TKXChartInChartValue* V = N.Add(C.X, C.Y, C.W, C.H);
    if (C.HandlerDraws)
      N.Chart->SetOnCustomDrawValue([](TObject*, TCanvas*, const TRect&, TKXPointChartValue*,
                                       bool& Default) { Default = false; });
    std::vector<TRect> Drawn;
    V->SubChart()->SetOnDraw([&](TObject*, TCanvas*, const TRect& R) { Drawn.push_back(R); });
    N.Draw();
    ASSERT_EQ(Drawn.size(), 1u);
    const TRect& R = Drawn[0];
    if (C.Whole) {
      EXPECT_EQ(R, C.Shape);
      continue;
    }
    EXPECT_GE(R.Left, C.Shape.Left);
    EXPECT_GE(R.Top, C.Shape.Top);
    EXPECT_LE(R.Right, C.Shape.Right);
    EXPECT_LE(R.Bottom, C.Shape.Bottom);
    EXPECT_GT(R.Width(), C.Shape.Width() / 2);
  }
}

TEST(ChartInChart, TheSharedAxesAreBackAfterASubChartRaised) {
  TNested N;
  TKXChartInChartValue* V = N.Add(1, 1, 2, 2);
  V->SubChart()->SetOptions(V->SubChart()->Options() + coValueLabels);
  V->SubChart()->SetOnDrawing(
      [](TObject*, TCanvas*, const TRect&, bool&) { throw std::runtime_error("sub chart"); });
  int SubChanges = 0;
  TKXCustomChart* Sub = V->SubChart();
  const TAxisOptions Before = N.Chart->SubChartVerticalAxis()->Options();
  EXPECT_THROW(N.Draw(), std::runtime_error);
  EXPECT_EQ(N.Chart->SubChartVerticalAxis()->Options(), Before);
  EXPECT_TRUE(N.Chart->SubChartVerticalAxis()->Visible());
  EXPECT_TRUE(Sub->Options().Contains(coValueLabels));
  EXPECT_EQ(N.Chart->State(), stIdle);
  // The value hears of its sub chart again.
  N.Chart->SetOnValueChange([&](TObject*, TKXChartValue*) { ++SubChanges; });
  Sub->SetColor(clRed);
  EXPECT_EQ(SubChanges, 1);
}

// Handled for one axis only still fits both axes to the sub chart.
TEST(ChartInChart, OnUpdateAxisSettlesTheRangesOnlyWhenItHandlesBoth) {
  struct TCase {
    const char* Name;
    bool HandleH, HandleV;
    bool Kept;
  };
  const TCase Cases[] = {{"the horizontal one only", true, false, false},
                         {"neither", false, false, false}};
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TNested N;
    N.Add(1, 1, 8, 8);
    TKXChartAxis* H = N.Chart->SubChartHorizontalAxis();
    // A range of the handler's, on an axis that would find its own from the sub chart.
    H->SetMaximum(1000);
    H->SetOptions(H->Options() + aoAutoMinimum + aoAutoMaximum);
    N.Chart->SetOnUpdateAxis([&](TObject*, TKXChartAxis* Axis, bool& Handled) {
      Handled = Axis == H ? C.HandleH : C.HandleV;
    });
    N.Draw();
    EXPECT_EQ(H->Maximum() == 1000, C.Kept);
  }
}

TEST(ChartInChart, AnOwnedSubChartGoesWithItsValueAReferredOneStays) {
  TNested N;
  TOwned<TWatcher> Watcher(New<TWatcher>(nullptr));
  // Made by the kind: no owner, freed when the kind goes back to none.
  TKXChartInChartValue* V = N.Chart->Values()->Add(1.0, 1.0);
  V->SetSubChartType(ctPie);
  ASSERT_NE(V->SubChart(), nullptr);
  EXPECT_EQ(V->SubChart()->ClassType(), ClassOf<TKXPieChart>());
  EXPECT_EQ(V->SubChart()->Owner(), nullptr);
  V->SubChart()->FreeNotification(Watcher.get());
  V->SetSubChartType(ctCustom);
  EXPECT_EQ(V->SubChart(), nullptr);
  EXPECT_EQ(Watcher->Freed, 1);
  // Handed in with an owner: it stays when the value goes, without the value's handler.
  auto* Line = New<TKXLineChart>(N.Form.get());
  TKXChartInChartValue* W = N.Chart->Values()->Add(Line, 2.0, 2.0);
  EXPECT_EQ(W->SubChartType(), ctLine);
  EXPECT_TRUE(static_cast<bool>(Line->OnChange()));
  W->Free();
  EXPECT_FALSE(static_cast<bool>(Line->OnChange()));
  // Freed elsewhere while referred to: the value lets go of it.
  auto* Area = New<TKXAreaChart>(N.Form.get());
  TKXChartInChartValue* X = N.Chart->Values()->Add(Area, 3.0, 3.0);
  Area->Free();
  EXPECT_EQ(X->SubChart(), nullptr);
  EXPECT_EQ(X->SubChartType(), ctCustom);
  N.Draw();
}

// A chart that would hold itself, or its parent, is refused: the two would feed each other's
// changes and drawings without end.
TEST(ChartInChart, AChartCannotHoldItselfOrItsParent) {
  TNested N;
  TKXChartInChartValue* Self = N.Add(1, 1, 3, 3);
  TKXCustomChart* Line = Self->SubChart();
  EXPECT_THROW(Self->SetSubChart(N.Chart), EKXChartException);
  EXPECT_EQ(Self->SubChart(), Line);
  auto* Inner = New<TKXChartInChart>(N.Form.get());
  test::FixAxes(Inner);
  N.Chart->Values()->Add(Inner, KXRect(5, 5, 4, 4), shpRectangle);
  EXPECT_THROW(Inner->Values()->Add(N.Chart, KXRect(1, 1, 8, 8), shpRectangle), EKXChartException);
  int Draws = 0;
  N.Chart->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { ++Draws; });
  TOwned<TBitmap> B = N.Draw();
  EXPECT_EQ(Draws, 1);
  EXPECT_GT(test::CountPainted(B.get()), 0);
  Inner->Free();
  EXPECT_EQ(N.Chart->Values()->Items(1)->SubChart(), nullptr);
}

TEST(ChartInChart, TheLabelBoxStandsBesideTheShapeByTextBoxAlignment) {
  struct TCase {
    T2DTextAlignment Box;
    TRect Where; // where the label's pixels lie
  };
  // The shape covers pixels 90..180 across and 120..210 down.
  const TCase Cases[] = {
      {tdBottomCenter, {90, 210, 180, 300}},
      {tdTopCenter, {90, 30, 180, 120}},
      {tdMiddleLeft, {0, 120, 90, 210}},
      {tdMiddleCenter, {90, 120, 180, 210}},
  };
  for (const TCase& C : Cases) {
    SCOPED_TRACE(GetEnumName(C.Box));
    TNested N;
    N.Chart->SetOptions(N.Chart->Options() + coValueLabels);
    TKXChartInChartValue* V = N.Chart->Values()->Add(KXRect(3, 3, 3, 3), shpRectangle, "Label");
    V->Brush()->SetStyle(bsClear);
    V->Pen()->SetStyle(psClear);
    V->Font()->SetColor(clBlue);
    V->SetTextBoxAlignment(C.Box);
    TOwned<TBitmap> B = N.Draw();
    const auto Blue = [](TColor Px) { return test::Near(Px, clBlue, 90); };
    const int32_t All = CountPixels(B.get(), Blue);
    EXPECT_GT(All, 0);
    EXPECT_EQ(CountPixels(B.get(), C.Where, Blue), All);
  }
}

TEST(ChartInChart, AFormReadsBackTheKindOfEachSubChart) {
  StartChartsModule();
  RegisterClasses({ClassOf<TChartsForm>()});
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  Form->SetName("Form1");
  auto* Chart = New<TKXChartInChart>(Form.get());
  Chart->SetName("Nested1");
  Chart->SetAxisThreshold(60);
  TKXChartInChartValue* V =
      Chart->Values()->Add(ClassOf<TKXPieChart>(), KXRect(1, 2, 3, 4), shpEllipse, "pie");
  V->SubChart()->Values()->Add(5.0);
  V->SetTextBoxAlignment(tdTopRight);
  Chart->Values()->Add(KXRect(5, 5, 1, 1), shpRectangle, "empty");
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* Back = static_cast<TKXChartInChart*>(Copy->FindComponent("Nested1"));
  ASSERT_NE(Back, nullptr);
  EXPECT_EQ(Back->AxisThreshold(), 60);
  const TKXChartInChartValue* W = Back->Values()->Items(0);
  EXPECT_EQ(W->SubChartType(), ctPie);
  ASSERT_NE(W->SubChart(), nullptr);
  EXPECT_EQ(W->SubChart()->ClassType(), ClassOf<TKXPieChart>());
  // The kind alone is stored: the sub chart comes back empty.
  EXPECT_EQ(W->SubChart()->Values()->Count(), 0);
  EXPECT_EQ(W->TextBoxAlignment(), tdTopRight);
  EXPECT_EQ(Back->Values()->Items(1)->SubChart(), nullptr);
}

TEST(ChartInChart, TheSampleValuesHoldAreaAndPieChartsWithTheirOwnSamples) {
  TNested N;
  N.Chart->SetPreview(true);
  ASSERT_EQ(N.Chart->Values()->Count(), 5);
  const TKXCustomChartClass Classes[] = {ClassOf<TKXAreaChart>(), ClassOf<TKXPieChart>(),
                                         ClassOf<TKXAreaChart>(), ClassOf<TKXPieChart>(),
                                         ClassOf<TKXPieChart>()};
  for (int I = 0; I < 5; ++I) {
    const TKXCustomChart* Sub = N.Chart->Values()->Items(I)->SubChart();
    ASSERT_NE(Sub, nullptr);
    EXPECT_EQ(Sub->ClassType(), Classes[I]);
    EXPECT_GT(Sub->Values()->Count(), 0);
    EXPECT_FALSE(Sub->Options().Contains(coValueLabels));
  }
  EXPECT_EQ(N.Chart->Values()->Items(4)->Width(), 100);
}

} // namespace
} // namespace kx
