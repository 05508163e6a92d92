#include "kxcharts/charts/KXXYChartValues.h"

#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::TChartsForm;

// A collection with no chart, of the class under test.
template <class C, class V> TOwned<C> MakeValues() {
  return TOwned<C>(New<C>(nullptr, ClassOf<V>()));
}

TEST(XYChartValues, AddingAValueAloneTakesThePresentLargestXNotOnePastIt) {
  auto V = MakeValues<TKX2DChartValues, TKX2DChartValue>();
  EXPECT_EQ(V->Add(7.0)->X(), 0.0);
  EXPECT_EQ(V->Add(8.0)->X(), 0.0);
  V->Add(3, 1);
  TKX2DChartValue* P = V->Add(5.0, "five");
  EXPECT_EQ(P->X(), 3.0);
  EXPECT_EQ(P->Y(), 5.0);
  EXPECT_EQ(P->Caption(), "five");
  EXPECT_EQ(V->Add()->Y(), 0.0);

  auto V3 = MakeValues<TKX3DChartValues, TKX3DChartValue>();
  V3->Add(4, 2, 9);
  TKX3DChartValue* Q = V3->Add(7.0);
  EXPECT_EQ(Q->X(), 4.0);
  EXPECT_EQ(Q->Y(), 7.0);
  EXPECT_EQ(Q->Z(), 0.0);
  EXPECT_EQ(V3->Add(1, 2)->Z(), 0.0);
  EXPECT_EQ(V3->Items(0)->Z(), 9.0);
}

TEST(XYChartValues, ValuesOutsideACollectionKeepTheirDimensionsAndDefaultToY) {
  TOwned<TKX2DChartValue> P(New<TKX2DChartValue>(nullptr));
  EXPECT_EQ(P->ValueCount(), 2);
  P->SetValue(6.0);
  EXPECT_EQ(P->Y(), 6.0);
  EXPECT_EQ(P->X(), 0.0);
  EXPECT_EQ(P->Value(), 6.0);
  TOwned<TKX3DChartValue> Q(New<TKX3DChartValue>(nullptr));
  EXPECT_EQ(Q->ValueCount(), 3);
  Q->SetZ(2.5);
  EXPECT_EQ(Q->Z(), 2.5);
}

TEST(XYChartValues, PointHitTestFollowsTheClosedRectangleAndTheAction) {
  auto V = MakeValues<TKX2DChartValues, TKX2DChartValue>();
  TKX2DChartValue* P = V->Add(2, 3);
  const TRectF Around = KXRect(1, 2, 4, 5), Edge = KXRect(2, 3, 4, 5), Away = KXRect(5, 5, 6, 6);
  struct TCase {
    TRectF Sel;
    TKXChartSelectionAction Action;
    bool Selected;
    bool Expected;
  };
  const TCase Cases[] = {
      {Around, saSelect, false, true}, {Edge, saSelect, false, true},
      {Away, saSelect, false, false},  {Around, saToggle, false, true},
      {Around, saToggle, true, false}, {Around, saUnselect, false, false},
      {Away, saToggle, false, false},
  };
  for (const TCase& C : Cases) {
    P->SetSelected(C.Selected);
    EXPECT_EQ(P->Selectable(C.Sel, C.Action), C.Expected)
        << "action " << int(C.Action) << " selected " << C.Selected;
  }
  P->SetX(std::numeric_limits<double>::quiet_NaN());
  EXPECT_FALSE(P->Selectable(Around, saSelect));
}

// A line chart whose values carry image indexes.
class TImageChart : public TKXLineChart {
  KX_CLASS(TImageChart, TKXLineChart)

public:
  using TKXLineChart::TKXLineChart;

protected:
  TOwned<TKXChartValues> CreateChartValues() override {
    return MakeOwned<TKX2DImageChartValues>(this, ClassOf<TKX2DImageChartValue>());
  }
};

TEST(XYChartValues, ImageIndexClampsAndAddsWithOneNotice) {
  auto V = MakeValues<TKX2DImageChartValues, TKX2DImageChartValue>();
  TKX2DImageChartValue* P = V->Add();
  EXPECT_EQ(P->ImageIndex(), -1);
  P->SetImageIndex(-5);
  EXPECT_EQ(P->ImageIndex(), -1);
  TKX2DImageChartValue* Q = V->Add(4, 5, "q", clRed, 3);
  EXPECT_EQ(Q->ImageIndex(), 3);
  EXPECT_EQ(Q->Color(), clRed);
  EXPECT_EQ(V->Add(6.0, "", TColor(-1), 2)->X(), 4.0);
  P->Assign(Q);
  EXPECT_EQ(P->ImageIndex(), 3);
  EXPECT_EQ(P->Caption(), "q");

  // One change reaches the chart for a value and its image index.
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Chart = New<TImageChart>(Form.get());
  int Notices = 0;
  Chart->SetOnValueChange([&](TObject*, TKXChartValue*) { ++Notices; });
  static_cast<TKX2DImageChartValues*>(Chart->TKXCustomChart::Values())->Add(1, 2, "", clRed, 4);
  EXPECT_EQ(Notices, 1);
}

TEST(XYChartValues, DateTimeAxesNameTheDimensionsThatHoldDates) {
  auto V = MakeValues<TKX2DChartValues, TKX2DChartValue>();
  V->SetDateTimeAxes(TXYSet{xyX});
  EXPECT_TRUE(V->IsDateTime());
  V->SetDateTimeAxes(TXYSet{xyY});
  EXPECT_FALSE(V->IsDateTime());
  auto V3 = MakeValues<TKX3DChartValues, TKX3DChartValue>();
  V3->SetDateTimeAxes(TXYZSet{xyzZ});
  EXPECT_EQ(V3->DateTimeAxes(), TXYZSet{xyzZ});
  EXPECT_TRUE(V3->TKXChartValues::DateTimeAxes().Contains(2));
}

} // namespace
} // namespace kx
