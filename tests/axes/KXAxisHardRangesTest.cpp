// Ranges that push the axis to the ends of the doubles: the labels it keeps, and where its
// logarithmic scale puts values there.
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "axes/KXAxesTestSupport.h"
#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

// Writes down every label the axis keeps, with the value it stands for.
class TLabelAxis : public TKXChartAxis {
public:
  using TKXChartAxis::TKXChartAxis;
  struct TLabel {
    double Value;
    std::string Text;
    TPoint At;
  };
  std::vector<TLabel> Drawn;

protected:
  void DrawLabel(TCanvas* Canvas, double Value, const std::string& Text, const TPoint& At) override {
    Drawn.push_back({Value, Text, At});
    TKXChartAxis::DrawLabel(Canvas, Value, Text, At);
  }
};

// The axis measured and painted on a bitmap of W x H, as a panel does; answers its labels.
std::vector<TLabelAxis::TLabel> Paint(TLabelAxis* A, int32_t W = 400, int32_t H = 300) {
  auto Bmp = test::MakeBitmap(W, H);
  const TRect R{0, 0, W, H};
  A->CalculateBounds(Bmp->Canvas(), R);
  A->Drawn.clear();
  A->Draw(Bmp->Canvas(), R);
  return A->Drawn;
}

TEST(AxisLabelsAtTheExtremes, ALabelThatIsZeroWithinTheStepReadsZero) {
  const struct {
    const char* Name;
    double Min, Max;
    TAxisOptions Extra;
    bool Snap;
    bool ZeroDue; // whether 0 is one of the labels
  } Cases[] = {
      {"WidestDoubles", -1e308, 1e308, {}, true, true},
      {"WidestDoublesFromTheTop", -1e308, 1e308, {}, false, true},
      {"HalfTheDoubles", -5e307, 1.5e308, {}, true, true},
      {"LogOverSixHundredDecades", 1e-300, 1e300, {aoLogarithmic}, true, false},
      {"Tenths", -0.3, 0.7, {}, true, true},
  };
  for (const auto& C : Cases) {
    for (TKXChartAxisLocation Location : {calBottom, calLeft}) {
      SCOPED_TRACE(std::string(C.Name) + (Location == calLeft ? " left" : " bottom"));
      auto A = test::MakeAxis<TLabelAxis>(Location, C.Min, C.Max);
      A->SetOptions(A->Options() + C.Extra);
      A->SetSnapGrid(C.Snap);
      const auto Labels = Paint(A.get());
      const double Step = A->Grid()->MajorGridInterval();
      ASSERT_GT(Step, 0);
      ASSERT_FALSE(Labels.empty());
      bool Zero = false;
      for (const auto& L : Labels) {
        // Labels are a step apart: one nearer to 0 than half a step is an error piled up.
        EXPECT_TRUE(L.Value == 0 || std::fabs(L.Value) >= Step / 2) << L.Text;
        EXPECT_EQ(L.Text, A->FormatValue(L.Value));
        Zero = Zero || L.Text == "0";
      }
      // Where 0 is a label, it reads 0.
      EXPECT_EQ(Zero, C.ZeroDue);
    }
  }
}

TEST(AxisLabelsAtTheExtremes, FixedFormatsStillDecideWhatARangeBelowTheirPrecisionReads) {
  // No padding and the default format: values closer than a thousandth all read alike.
  const struct {
    double Min, Max;
    const char* Reads;
  } Cases[] = {{0, 2e-300, "0"}, {1.0, 1.0 + 2e-15, "1"}};
  for (const auto& C : Cases) {
    auto A = test::MakeAxis<TLabelAxis>(calLeft, C.Min, C.Max);
    const auto Labels = Paint(A.get());
    ASSERT_FALSE(Labels.empty());
    for (const auto& L : Labels)
      EXPECT_EQ(L.Text, C.Reads);
  }
  // No range, no labels.
  auto A = test::MakeAxis<TLabelAxis>(calLeft, 5, 5);
  EXPECT_TRUE(Paint(A.get()).empty());
}

// On a logarithmic scale the middle of the range lies at log(6) / log(11) of the span,
// whatever the base and however wide the range.
TEST(LogScaleAtTheExtremes, PutsTheMiddleOfAnyFiniteRangeWhereTheScaleSays) {
  const struct {
    double Min, Max;
    TKXLogarithmicType Type;
  } Cases[] = {
      {1, 1e4, ltLogarithmic},         {1e-300, 1e300, ltLogarithmic},
      {-1e308, 1e308, ltLogarithmic},  {-1.7e308, 1.7e308, ltInverseLogarithmic},
      {1e300, 1.7e308, ltLogarithmic}, {-1e308, 1e308, ltInverseLogarithmic},
  };
  const TRect Wide{0, 0, 1000, 40};
  for (const auto& C : Cases) {
    SCOPED_TRACE(testing::Message() << C.Min << " .. " << C.Max);
    auto A = test::MakeAxis(calBottom, C.Min, C.Max);
    A->SetOptions(A->Options() + aoLogarithmic);
    A->SetLogarithmicType(C.Type);
    const double Middle = C.Min / 2 + C.Max / 2;
    const double Share = std::log(6.0) / std::log(11.0);
    const double Expected = C.Type == ltLogarithmic ? 1000 * Share : 1000 * (1 - Share);
    EXPECT_NEAR(A->AxisToPixel(Middle, Wide), Expected, 1);
    EXPECT_EQ(A->AxisToPixel(C.Min, Wide), 0);
    EXPECT_EQ(A->AxisToPixel(C.Max, Wide), 1000);
    // And back.
    const double Back = A->PixelToAxis(int32_t(std::lround(Expected)), Wide, false);
    EXPECT_NEAR(Back / 2 - Middle / 2, 0, std::fabs(C.Max / 2 - C.Min / 2) * 0.01);
  }
}

// A base without a logarithm scales as the default base: every value of the range, and
// every label, stays on the axis.
TEST(LogBase, ABaseWithoutALogarithmKeepsValuesAndLabelsOnTheAxis) {
  for (bool Cycles : {false, true}) {
    for (int32_t Base : {1, 0, -10, 2, 10}) {
      SCOPED_TRACE(testing::Message() << "base " << Base << (Cycles ? " cycles" : ""));
      auto A = test::MakeAxis<TLabelAxis>(calLeft, 1, 100);
      A->SetOptions(A->Options() + aoLogarithmic);
      A->SetLogCycles(Cycles);
      A->SetLogBase(Base);
      auto Ten = test::MakeAxis(calLeft, 1, 100);
      Ten->SetOptions(Ten->Options() + aoLogarithmic);
      Ten->SetLogCycles(Cycles);
      const TRect Tall{0, 20, 40, 320};
      for (double V : {1.0, 2.0, 10.0, 50.0, 100.0}) {
        const int32_t Y = A->AxisToPixel(V, Tall);
        EXPECT_GE(Y, Tall.Top) << V;
        EXPECT_LE(Y, Tall.Bottom) << V;
        if (Base > 1) continue;
        EXPECT_EQ(Y, Ten->AxisToPixel(V, Tall)) << V;
        EXPECT_DOUBLE_EQ(A->PixelToAxis(Y, Tall, false), Ten->PixelToAxis(Y, Tall, false)) << V;
      }
      std::vector<TLabelAxis::TLabel> Labels;
      ASSERT_NO_THROW(Labels = Paint(A.get(), 200, 300));
      EXPECT_FALSE(Labels.empty());
      for (const auto& L : Labels) {
        EXPECT_GE(L.At.Y, -8) << L.Text;
        EXPECT_LE(L.At.Y, 300) << L.Text;
      }
    }
  }
}

} // namespace
} // namespace kx
