// A line chart placed on a form paints itself on its own axes; moved into a panel it paints
// where the panel draws its charts, on the panel's axes; taken out again, it paints on its
// own axes as before.
#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx {
namespace {

using test::CountPixels;
using test::MakeBitmap;
using test::PixelBytes;

constexpr TColor Ink = clRed;

bool IsInk(TColor C) {
  return test::Near(C, Ink, 40);
}

class LineChartOnAFormAndInAPanel : public testing::Test {
protected:
  void SetUp() override {
    Form.reset(New<TForm>(nullptr));
    Form->SetBounds(0, 0, 300, 300);
    Chart = New<TKXLineChart>(Form.get());
    Chart->SetParent(Form.get());
    Chart->SetBounds(20, 20, 100, 100);
    Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
    Chart->SetColor(Ink);
    // (0, 0) to (10, 10) on axes of 0..10: the diagonal of whatever rectangle is drawn in.
    test::FixAxes(Chart);
    Chart->Values()->Add(0, 0);
    Chart->Values()->Add(10, 10);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, 200, 200);
    // The panel's axes reach twice as far, so that the chart ends in the middle there.
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()}) {
      A->SetMaximum(20);
      A->SetMinimum(0);
    }
  }
  // What the chart paints of itself, as the form would show it, on a 100 x 100 picture.
  TOwned<TBitmap> PaintChart() {
    TOwned<TBitmap> B = MakeBitmap(100, 100);
    Chart->PaintTo(B->Canvas(), 0, 0);
    return B;
  }
  // What the panel draws of its charts in a 200 x 200 plot rectangle.
  TOwned<TBitmap> PaintPanelCharts() {
    TOwned<TBitmap> B = MakeBitmap(200, 200);
    Panel->DrawCharts(B->Canvas(), {0, 0, 200, 200});
    return B;
  }
  static int32_t Inked(const TBitmap* B, const TRect& Area) { return CountPixels(B, Area, IsInk); }

  TOwned<TForm> Form;
  TKXLineChart* Chart = nullptr;
  TKXChartPanel* Panel = nullptr;
};

TEST_F(LineChartOnAFormAndInAPanel, AloneTheChartPaintsTheDiagonalOfItsOwnRectangleOnItsLocalAxes) {
  EXPECT_EQ(Chart->HorizontalAxis(), Chart->LocalHorizontalAxis());
  EXPECT_EQ(Chart->VerticalAxis(), Chart->LocalVerticalAxis());
  auto B = PaintChart();
  for (int32_t X : {10, 50, 90}) {
    SCOPED_TRACE(X);
    EXPECT_GT(Inked(B.get(), {X - 2, 100 - X - 2, X + 3, 100 - X + 3}), 0);
  }
  // Nothing away from the diagonal.
  EXPECT_EQ(Inked(B.get(), {0, 0, 40, 40}), 0);
  EXPECT_EQ(Inked(B.get(), {60, 60, 100, 100}), 0);
}

TEST_F(LineChartOnAFormAndInAPanel,
       InAPanelItPaintsOnThePanelsAxesInThePanelsRectangleAndNotByItself) {
  const auto Alone = PaintChart();
  Chart->SetPanel(Panel);
  EXPECT_EQ(Chart->HorizontalAxis(), Panel->BottomAxis());
  EXPECT_EQ(Chart->VerticalAxis(), Panel->LeftAxis());
  EXPECT_EQ(Panel->Charts()->IndexOf(Chart), 0);

  // Its own paint leaves the drawing to the panel.
  EXPECT_EQ(Inked(PaintChart().get(), {0, 0, 100, 100}), 0);

  // (0, 0) to (10, 10) on axes of 0..20 in 200 x 200: from the bottom left to the middle.
  auto B = PaintPanelCharts();
  for (int32_t X : {20, 50, 80}) {
    SCOPED_TRACE(X);
    EXPECT_GT(Inked(B.get(), {X - 2, 200 - X - 2, X + 3, 200 - X + 3}), 0);
  }
  EXPECT_EQ(Inked(B.get(), {110, 0, 200, 200}), 0) << "the line ends at the middle";
  EXPECT_EQ(Inked(B.get(), {0, 0, 200, 90}), 0);

  // Taken out again, it is back on its own axes, with their range, and paints as before.
  Chart->SetPanel(nullptr);
  EXPECT_EQ(Chart->HorizontalAxis(), Chart->LocalHorizontalAxis());
  EXPECT_EQ(Chart->VerticalAxis(), Chart->LocalVerticalAxis());
  EXPECT_EQ(Panel->Charts()->IndexOf(Chart), -1);
  EXPECT_EQ(Panel->BottomAxis()->Charts()->IndexOf(Chart), -1);
  EXPECT_EQ(PixelBytes(PaintChart().get()), PixelBytes(Alone.get()));
  EXPECT_EQ(Inked(PaintPanelCharts().get(), {0, 0, 200, 200}), 0);
}

TEST_F(LineChartOnAFormAndInAPanel, MovedToAnotherPanelItLeavesTheFirstAndTakesTheSecondsAxes) {
  Chart->SetPanel(Panel);
  auto* Second = New<TKXChartPanel>(Form.get());
  Second->SetParent(Form.get());
  Second->SetBounds(0, 0, 200, 200);
  Chart->SetPanel(Second);
  // Axes of 0..10 here: the whole diagonal of the plot rectangle.
  test::FixAxes(Chart);
  EXPECT_EQ(Chart->HorizontalAxis(), Second->BottomAxis());
  EXPECT_EQ(Panel->Charts()->IndexOf(Chart), -1);
  EXPECT_EQ(Panel->LeftAxis()->Charts()->IndexOf(Chart), -1);
  EXPECT_EQ(Inked(PaintPanelCharts().get(), {0, 0, 200, 200}), 0);
  auto B = MakeBitmap(200, 200);
  Second->DrawCharts(B->Canvas(), {0, 0, 200, 200});
  EXPECT_GT(Inked(B.get(), {148, 48, 153, 53}), 0) << "the line reaches the top right";
}

} // namespace
} // namespace kx
