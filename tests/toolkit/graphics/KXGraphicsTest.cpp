#include "kxcharts/toolkit/graphics/KXGraphics.h"

#include <cfloat>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace kx {
namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();
constexpr int32_t IntMin = std::numeric_limits<int32_t>::min();
constexpr int32_t IntMax = std::numeric_limits<int32_t>::max();
constexpr double Limit = KXCanvasCoordLimit;

// --- Whole pixels ---

TEST(Pixels, RoundTakesHalvesAwayFromZeroAndBothSaturate) {
  struct Case {
    double In;
    int32_t Round, Trunc;
  };
  // clang-format off
  const Case Cases[] = {
      {0.5, 1, 0}, {-0.5, -1, 0}, {1.5, 2, 1}, {2.5, 3, 2}, {-2.5, -3, -2}, {1.9, 2, 1},
      {-1.9, -2, -1}, {0.49999999999999994, 0, 0}, {NaN, 0, 0},
      {Inf, KXMaxCanvasInt, KXMaxCanvasInt}, {-1e308, -KXMaxCanvasInt, -KXMaxCanvasInt},
      {4294967296.0, KXMaxCanvasInt, KXMaxCanvasInt}, {1073741822.6, KXMaxCanvasInt, 1073741822}};
  // clang-format on
  for (const Case& C : Cases) {
    EXPECT_EQ(CanvasRound(C.In), C.Round) << "CanvasRound(" << C.In << ")";
    EXPECT_EQ(CanvasTrunc(C.In), C.Trunc) << "CanvasTrunc(" << C.In << ")";
  }
}

TEST(Pixels, CanvasDivTruncatesAndNeverTraps) {
  struct Case {
    int32_t A, B, Out;
  };
  const Case Cases[] = {
      {7, 2, 3},           {-7, 2, -3},          {7, -2, -3}, {5, 0, 0}, {IntMin, -1, IntMax},
      {IntMin, 1, IntMin}, {IntMax, -1, -IntMax}};
  for (const Case& C : Cases)
    EXPECT_EQ(CanvasDiv(C.A, C.B), C.Out) << C.A << " div " << C.B;
}

TEST(Pixels, CanvasMaxAndMinReadArraysAndGiveZeroForNone) {
  EXPECT_EQ(CanvasMax({1, 7, -3}), 7);
  EXPECT_EQ(CanvasMin({1, 7, -3}), -3);
  const std::vector<int32_t> V{4, IntMin, IntMax};
  EXPECT_EQ(CanvasMax(V), IntMax);
  EXPECT_EQ(CanvasMin(V), IntMin);
  EXPECT_EQ(CanvasMax(std::span<const int32_t>()), 0);
  EXPECT_EQ(CanvasMin(std::span<const int32_t>()), 0);
}

// --- Making and measuring ---

TEST(Rects, ConversionsRoundAndKeepFloatsInRange) {
  EXPECT_EQ(CanvasRect(0.5, -0.5, 10.4, 10.6), (TRect{1, -1, 10, 11}));
  EXPECT_EQ(CanvasRect(TRectF{1.5f, 2.5f, 3.5f, 4.5f}), (TRect{2, 3, 4, 5}));
  EXPECT_EQ(CanvasPoint(-1.5, NaN), (TPoint{-2, 0}));
  EXPECT_EQ(KXPointToCanvasPoint({2.5f, -2.5f}), (TPoint{3, -3}));
  EXPECT_EQ(KXRect(TRect{1, 2, 3, 4}), (TRectF{1, 2, 3, 4}));
  EXPECT_EQ(KXRect(1e308, -1e308, 0, 0).Left, FLT_MAX);
  EXPECT_EQ(KXRect(1e308, -1e308, 0, 0).Top, -FLT_MAX);
  EXPECT_TRUE(std::isnan(KXPoint(NaN, 0).X));
}

TEST(Rects, WidthAndHeightAreSignedAndNeverOverflow) {
  EXPECT_EQ(KXRectWidth(TRect{10, 0, 4, 0}), -6);
  EXPECT_EQ(KXRectHeight(TRect{0, 10, 0, 4}), -6);
  EXPECT_EQ(KXRectWidth(TRect{IntMin, 0, IntMax, 0}), 4294967295.0);
  EXPECT_FLOAT_EQ(KXRectHeight(TRectF{0, 2.5f, 0, 1}), -1.5);
}

TEST(Rects, TRectWidthAndHeightSaturateAtTheEndsOfTheIntRange) {
  struct Case {
    TRect R;
    int32_t Width, Height;
  };
  // clang-format off
  const Case Cases[] = {
      {{0, 0, 7, 3}, 7, 3},
      {{10, 10, 4, 4}, -6, -6},
      {{IntMin, IntMin, IntMax, IntMax}, IntMax, IntMax},
      {{IntMax, IntMax, IntMin, IntMin}, IntMin, IntMin},
      {{-1, -2, IntMax, IntMax}, IntMax, IntMax},
      {{IntMin, IntMin, 0, 1}, IntMax, IntMax},
      {{1, 0, IntMin, IntMin}, IntMin, IntMin}};
  // clang-format on
  for (const Case& C : Cases) {
    EXPECT_EQ(C.R.Width(), C.Width) << C.R.Left << ".." << C.R.Right;
    EXPECT_EQ(C.R.Height(), C.Height) << C.R.Top << ".." << C.R.Bottom;
  }
}

TEST(Rects, CenterPointDividesTheExtentTowardsTheTopLeft) {
  EXPECT_EQ(CanvasCenterPoint({0, 0, 10, 11}), (TPoint{5, 5}));
  EXPECT_EQ(CanvasCenterPoint({-3, -3, 0, 0}), (TPoint{-2, -2}));
  EXPECT_EQ(CanvasCenterPoint({10, 0, 0, 0}), (TPoint{5, 0})); // inverted
  EXPECT_EQ(CanvasCenterPoint({IntMin, IntMin, IntMax, IntMax}), (TPoint{-1, -1}));
}

TEST(Rects, FixRectOrdersCorners) {
  EXPECT_EQ(FixRect(TRect{10, 20, 0, 5}), (TRect{0, 5, 10, 20}));
  EXPECT_EQ(FixRect(TRect{0, 5, 10, 20}), (TRect{0, 5, 10, 20}));
  EXPECT_EQ(FixRect(TRectF{1.5f, -1, -1.5f, -2}), (TRectF{-1.5f, -2, 1.5f, -1}));
}

// --- Changing rectangles ---

TEST(Rects, ScaleRectGrowsByTheAmountInAllHalfOnEachSide) {
  struct Case {
    TRect In;
    double DX, DY;
    TRect Out;
  };
  const Case Cases[] = {
      {{0, 0, 10, 20}, 10, 20, {-5, -10, 15, 30}}, // Scale 2 as the charts pass it
      {{0, 0, 10, 10}, 5, 0, {-2, 0, 13, 10}},     // the odd pixel goes right
      {{0, 0, 10, 10}, -4, -5, {2, 2, 8, 7}},      // shrinking
      {{0, 0, 10, 10}, -30, -10, {5, 5, 5, 5}},    // never past an extent of 0
      {{10, 10, 0, 0}, 4, 4, {12, 12, -2, -2}},    // an inverted rectangle grows too
      {{0, 0, 10, 10}, NaN, 2.5, {0, -1, 10, 12}}, // NaN rounds to no growth
      {{IntMax - 1, 0, IntMax, 1}, 1e300, 0, {IntMax - 1 - (KXMaxCanvasInt / 2), 0, IntMax, 1}}};
  for (const Case& C : Cases)
    EXPECT_EQ(ScaleRect(C.In, C.DX, C.DY), C.Out) << C.DX << ", " << C.DY;
}

TEST(Rects, ScaleRectOnFloatsSplitsTheAmountExactly) {
  EXPECT_EQ(ScaleRect(TRectF{0, 0, 10, 10}, 5, 1), (TRectF{-2.5f, -0.5f, 12.5f, 10.5f}));
  EXPECT_EQ(ScaleRect(TRectF{10, 0, 0, 10}, 2, -20), (TRectF{11, 5, -1, 5}));
  EXPECT_EQ(ScaleRect(TRectF{0, 0, 10, 10}, NaN, 0), (TRectF{0, 0, 10, 10}));
}

TEST(Rects, InflateRectMovesSidesOutAndClamps) {
  EXPECT_EQ(KXInflateRect(TRect{0, 0, 10, 10}, 2, -3), (TRect{-2, 3, 12, 7}));
  EXPECT_EQ(KXInflateRect(TRect{IntMin, 0, IntMax, 0}, 5, 0), (TRect{IntMin, 0, IntMax, 0}));
  EXPECT_EQ(KXInflateRect(TRectF{0, 0, 1, 1}, 0.5, 1e300),
            (TRectF{-0.5f, -FLT_MAX, 1.5f, FLT_MAX}));
}

TEST(Points, ScalePointsGrowsAboutTheMiddleOfTheBoundingBox) {
  const TCanvasPoints Segment{{0, 0}, {10, 20}};
  EXPECT_EQ(ScalePoints(Segment, 2, 2), (TCanvasPoints{{-5, -10}, {15, 30}}));
  EXPECT_EQ(ScalePoints(Segment, 0.5, 1, 0, 0), (TCanvasPoints{{0, 0}, {5, 20}}));
  EXPECT_EQ(ScalePoints(Segment, NaN, 1), Segment);
  EXPECT_TRUE(ScalePoints({}, 2, 2).empty());
  // Far points saturate rather than wrap.
  EXPECT_EQ(ScalePoints({{0, 0}, {1000, 0}}, 1e12, 1)[1].X, KXMaxCanvasInt);
}

// --- Hit tests ---

TEST(Rects, PtInKXRectIsClosedAndEmptyWhenInverted) {
  const TRectF R{0, 0, 10, 5};
  struct Case {
    TRectF R;
    TPointF P;
    bool In;
  };
  const Case Cases[] = {{R, {0, 0}, true},
                        {R, {10, 5}, true},
                        {R, {10.01f, 5}, false},
                        {R, {5, -0.01f}, false},
                        {{10, 0, 0, 5}, {5, 2}, false},
                        {{3, 0, 3, 5}, {3, 2}, true},
                        {R, {float(NaN), 1}, false}};
  for (const Case& C : Cases)
    EXPECT_EQ(PtInKXRect(C.R, C.P), C.In) << C.P.X << ", " << C.P.Y;
}

TEST(Rects, FloatIntersectionIsClosedAndAgreesWithThePointTest) {
  TRectF D;
  EXPECT_TRUE(KXIntersectRect(D, {0, 0, 10, 10}, {5, 5, 20, 20}));
  EXPECT_EQ(D, (TRectF{5, 5, 10, 10}));
  EXPECT_TRUE(KXIntersectRect(D, {0, 0, 10, 10}, {10, 0, 20, 10})); // touching
  EXPECT_EQ(D, (TRectF{10, 0, 10, 10}));
  EXPECT_FALSE(KXIntersectRect(D, {0, 0, 10, 10}, {11, 0, 20, 10}));
  EXPECT_EQ(D, TRectF{});
  EXPECT_FALSE(KXIntersectRect(TRectF{10, 0, 0, 10}, TRectF{0, 0, 10, 10}));
  EXPECT_FALSE(KXIntersectRect(TRectF{0, 0, float(NaN), 10}, TRectF{0, 0, 10, 10}));

  // A click is a rectangle of size 0: it hits exactly what PtInKXRect says it hits.
  const TRectF R{-1, -1, 1, 1};
  for (float X = -2; X <= 2; X += 0.5f)
    for (float Y = -2; Y <= 2; Y += 0.5f)
      EXPECT_EQ(KXIntersectRect(R, TRectF{X, Y, X, Y}), PtInKXRect(R, {X, Y})) << X << ", " << Y;
}

TEST(Rects, IntegerIntersectionIsHalfOpenLikeTheFills) {
  TRect D;
  EXPECT_TRUE(KXIntersectRect(D, {0, 0, 10, 10}, {9, 9, 20, 20}));
  EXPECT_EQ(D, (TRect{9, 9, 10, 10}));
  EXPECT_FALSE(KXIntersectRect(D, {0, 0, 10, 10}, {10, 0, 20, 10}));
  EXPECT_FALSE(KXIntersectRect(TRect{0, 0, 0, 10}, TRect{0, 0, 10, 10}));
  EXPECT_FALSE(KXIntersectRect(TRect{10, 10, 0, 0}, TRect{0, 0, 10, 10}));
}

// --- Fitting and connection points ---

TEST(Rects, FitRectKeepsProportionsAndCentres) {
  struct Case {
    TRectF R, Bounds;
    bool ShrinkOnly;
    TRectF Out;
    double Scale;
  };
  const Case Cases[] = {
      {{0, 0, 10, 10}, {0, 0, 100, 50}, false, {25, 0, 75, 50}, 5},
      {{0, 0, 20, 10}, {0, 0, 50, 100}, false, {0, 37.5f, 50, 62.5f}, 2.5},
      {{5, 5, 7, 6}, {0, 0, 100, 100}, true, {49, 49.5f, 51, 50.5f}, 1},
      {{0, 0, 400, 200}, {0, 0, 100, 100}, true, {0, 25, 100, 75}, 0.25},
      {{0, 0, 0, 10}, {0, 0, 100, 50}, false, {50, 0, 50, 50}, 5},
      {{10, 10, 0, 0}, {100, 50, 0, 0}, false, {25, 0, 75, 50}, 5}, // both inverted
      {{0, 0, 0, 0}, {0, 0, 100, 50}, false, {50, 25, 50, 25}, 0},
      {{0, 0, 10, 10}, {0, 0, 0, 50}, false, {0, 25, 0, 25}, 0},
      {{0, 0, float(NaN), 10}, {0, 0, 100, 50}, false, {50, 25, 50, 25}, 0},
      {{0, 0, 10, 10}, {0, 0, 100, float(NaN)}, false, {0, 0, 0, 0}, 0}};
  for (const Case& C : Cases) {
    TRectF R = C.R;
    EXPECT_EQ(FitRect(R, C.Bounds, C.ShrinkOnly), C.Scale);
    EXPECT_EQ(R, C.Out) << R.Left << " " << R.Top << " " << R.Right << " " << R.Bottom;
  }
}

TEST(Rects, FitRectPutsTheDecidingSidesOnTheBoundsExactly) {
  TRectF R{0, 0, 3, 7};
  const TRectF Bounds{0.1f, 0.3f, 33.3f, 10.7f};
  FitRect(R, Bounds);
  EXPECT_EQ(R.Top, Bounds.Top);
  EXPECT_EQ(R.Bottom, Bounds.Bottom);
}

TEST(Rects, ConnectionPointsRunClockwiseFromTheTop) {
  const TRect R{10, 20, 30, 60};
  const TPoint Expected[] = {{20, 20}, {30, 20}, {30, 40}, {30, 60},
                             {20, 60}, {10, 60}, {10, 40}, {10, 20}};
  for (int I = 0; I < TEnumCount<TConnectionPoint>; ++I)
    EXPECT_EQ(GetCanvasPointOnRect(R, TConnectionPoint(I)), Expected[I])
        << GetEnumName(TConnectionPoint(I));
}

// --- Coordinates for the rasteriser ---

TEST(CanvasCoords, ClampKeepsCoordinatesInTheSafeSquare) {
  EXPECT_EQ(ClampCanvasCoord(NaN), 0);
  EXPECT_EQ(ClampCanvasCoord(-Inf), -Limit);
  EXPECT_EQ(ClampCanvasCoord(1e300), Limit);
  EXPECT_EQ(ClampCanvasCoord(-12.5), -12.5);
}

TEST(CanvasCoords, ClipLineKeepsTheSlopeOfFarLines) {
  struct Case {
    double X1, Y1, X2, Y2;
    bool Visible;
    double OX1, OY1, OX2, OY2;
  };
  const Case Cases[] = {{1, 2, 3, 4, true, 1, 2, 3, 4},
                        {0, 0, 1e9, 5e8, true, 0, 0, Limit, Limit / 2},
                        {0, 10, Inf, 10, true, 0, 10, Limit, 10},
                        {-1e308, -1e308, 1e308, 1e308, true, -Limit, -Limit, Limit, Limit},
                        {-DBL_MAX, 0, DBL_MAX, 0, true, -Limit, 0, Limit, 0},
                        {2 * Limit, 0, 3 * Limit, 5, false, 2 * Limit, 0, 3 * Limit, 5},
                        {NaN, 0, 1, 1, false, NaN, 0, 1, 1}};
  for (const Case& C : Cases) {
    double X1 = C.X1, Y1 = C.Y1, X2 = C.X2, Y2 = C.Y2;
    EXPECT_EQ(ClipCanvasLine(X1, Y1, X2, Y2), C.Visible) << C.X1 << " " << C.X2;
    if (!C.Visible) continue;
    EXPECT_NEAR(X1, C.OX1, 1e-6);
    EXPECT_NEAR(Y1, C.OY1, 1e-6);
    EXPECT_NEAR(X2, C.OX2, 1e-6);
    EXPECT_NEAR(Y2, C.OY2, 1e-6);
  }
}

double Area(const std::vector<TCanvasPointD>& P) {
  double A = 0;
  for (size_t I = 0, J = P.size() - 1; I < P.size(); J = I++)
    A += P[J].X * P[I].Y - P[I].X * P[J].Y;
  return std::abs(A) / 2;
}

TEST(CanvasCoords, ClipPolygonKeepsTheTrueShapeInsideTheSquare) {
  const std::vector<TCanvasPointD> Small{{0, 0}, {10, 0}, {0, 10}};
  EXPECT_EQ(ClipCanvasPolygon(Small), Small);

  // A huge triangle whose long side lies beyond the square covers one quarter of it.
  const std::vector<TCanvasPointD> Huge{{0, 0}, {1e12, 0}, {0, 1e12}};
  EXPECT_NEAR(Area(ClipCanvasPolygon(Huge)), Limit * Limit, 1);

  // A spike 100 pixels wide towards a far corner stays a strip 100 pixels wide.
  const std::vector<TCanvasPointD> Spike{{0, 0}, {100, 0}, {1e15, 1e15}};
  const auto Clipped = ClipCanvasPolygon(Spike);
  for (const TCanvasPointD& P : Clipped)
    EXPECT_GE(P.X, P.Y - 1e-3) << "stays on the side of the spike";
  EXPECT_NEAR(Area(Clipped), 100 * Limit, 0.01 * 100 * Limit);

  EXPECT_TRUE(
      ClipCanvasPolygon(std::vector<TCanvasPointD>{{5 * Limit, 0}, {6 * Limit, 0}, {6 * Limit, 5}})
          .empty());
  EXPECT_EQ(ClipCanvasPolygon(std::vector<TCanvasPointD>{{NaN, 0}, {1, 1}, {2, 0}, {0, 2}}).size(),
            3u);
}

} // namespace
} // namespace kx
