#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

#include "kxcharts/toolkit/graphics/KXPathData.h"

#include <climits>
#include <cmath>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "support/KXBitmapProbe.h"

namespace kx {
namespace {

using test::CountPainted;
using test::MakeBitmap;
using test::PaintedBounds;
using test::PixelBytes;

struct Sheet : ::testing::Test {
  TOwned<TBitmap> Bmp = MakeBitmap(120, 100);
  TCanvas* C = Bmp->Canvas();
  bool Painted(int X, int Y) const { return C->Pixel(X, Y) != clWhite; }
};

// --- Lines and pens ---

TEST_F(Sheet, AHairlinePenCountsAsOnePixelWide) {
  TVclCanvasHelper::SetPenWidth(C, 0);
  EXPECT_EQ(TVclCanvasHelper::GetPenWidth(C), 1);
  TVclCanvasHelper::SetPenWidth(C, 4);
  EXPECT_EQ(TVclCanvasHelper::GetPenWidth(C), 4);
}

// --- Shapes ---

class EveryShape : public ::testing::TestWithParam<int> {};

TEST_P(EveryShape, StaysInItsBoxAndItsInnerRectangleLiesInsideTheShape) {
  const auto Style = static_cast<TKXShapeStyle>(GetParam());
  for (const int Pen : {1, 3}) {
    TOwned<TBitmap> B = MakeBitmap(120, 100);
    TCanvas* C = B->Canvas();
    C->Pen()->SetWidth(Pen);
    C->Brush()->SetColor(clRed);
    const TRect Box{10, 10, 110, 80};
    const TRect Inner =
        DrawShape(C, Box, nullptr, Style, true, clBtnHighlight, clBtnShadow, 4, 1.0f);
    if (Style != shpImage && Style != shpImage3D) { // without a bitmap: the rectangle
      EXPECT_EQ(Inner, ShapeInnerRect(Box, Style, Pen, 4));
    }
    const TRect Ink = PaintedBounds(B.get());
    EXPECT_GE(Ink.Left, Box.Left);
    EXPECT_GE(Ink.Top, Box.Top);
    EXPECT_LE(Ink.Right, Box.Right);
    EXPECT_LE(Ink.Bottom, Box.Bottom);
    ASSERT_FALSE(Inner.IsEmpty()) << "pen " << Pen;
    if (Pen == 1 && Style < shpRectangle3D) { // thick pens and rims take their share
      EXPECT_GE(Inner.Width() * Inner.Height(),
                Box.Width() * Box.Height() / (Style == shpStar ? 24 : 8))
          << "room for a label";
    }
    // Every pixel of the inner rectangle is the brush's: inside the fill, clear of the rim.
    EXPECT_EQ(test::CountPixels(B.get(), Inner, [](TColor P) { return P != clRed; }), 0)
        << "pen " << Pen << ", inner " << Inner.Left << "," << Inner.Top << "," << Inner.Right
        << "," << Inner.Bottom;
  }
}

INSTANTIATE_TEST_SUITE_P(Styles, EveryShape, ::testing::Range(0, 25));

TEST_F(Sheet, ShapesThePartsRelyOnAreDistinct) {
  std::set<std::vector<uint8_t>> Seen;
  for (const int S : {0, 1, 8, 10, 11, 15, 18}) {
    TOwned<TBitmap> B = MakeBitmap(60, 60);
    DrawShape(B->Canvas(), {5, 5, 55, 55}, nullptr, static_cast<TKXShapeStyle>(S), true,
              clBtnHighlight, clBtnShadow, 3, 1.0f);
    EXPECT_TRUE(Seen.insert(PixelBytes(B.get())).second) << "style " << S;
  }
}

TEST_F(Sheet, RectangleAndRoundedStylesAreTheCanvasShapes) {
  TOwned<TBitmap> A = MakeBitmap(80, 60), B = MakeBitmap(80, 60);
  DrawShape(A->Canvas(), {5, 5, 75, 55}, nullptr, shpRectangle, true, clWhite, clGray, 3, 1.0f);
  B->Canvas()->Rectangle(5, 5, 75, 55);
  EXPECT_EQ(PixelBytes(A.get()), PixelBytes(B.get()));
  DrawShape(A->Canvas(), {5, 5, 75, 55}, nullptr, shpRoundRect, true, clWhite, clGray, 3, 1.0f);
  B->Canvas()->RoundRect(5, 5, 75, 55, 70 / 5, 50 / 5);
  EXPECT_EQ(PixelBytes(A.get()), PixelBytes(B.get())) << "the legend's rounded box";
}

TEST_F(Sheet, ShapesTakeTurnedRectanglesAndDrawNothingWithoutAreaOrOpacity) {
  TOwned<TBitmap> Ordered = MakeBitmap(120, 100);
  DrawShape(Ordered->Canvas(), {10, 10, 60, 50}, nullptr, shpStar, true, clWhite, clGray, 3);
  DrawShape(C, {60, 50, 10, 10}, nullptr, shpStar, true, clWhite, clGray, 3);
  EXPECT_EQ(PixelBytes(Bmp.get()), PixelBytes(Ordered.get()));
  TOwned<TBitmap> Empty = MakeBitmap(50, 50);
  const TRect Inner =
      DrawShape(Empty->Canvas(), {10, 10, 10, 40}, nullptr, shpEllipse, true, clWhite, clGray, 3);
  EXPECT_TRUE(Inner.IsEmpty());
  DrawShape(Empty->Canvas(), {0, 0, 40, 40}, nullptr, shpHexagon, true, clWhite, clGray, 3, 0);
  DrawShape(Empty->Canvas(), {0, 0, 40, 40}, nullptr, shpHexagon, true, clWhite, clGray, 3,
            std::nanf(""));
  EXPECT_EQ(CountPainted(Empty.get()), 0) << "no opacity, nothing drawn";
  Empty->Canvas()->Brush()->SetColor(clBlack);
  Empty->Canvas()->Pen()->SetStyle(psClear);
  DrawShape(Empty->Canvas(), {0, 0, 40, 40}, nullptr, shpEllipse, true, clWhite, clGray, 3, 0.5f);
  EXPECT_TRUE(test::Near(Empty->Canvas()->Pixel(20, 20), RGBToColor(128, 128, 128)));
}

TEST_F(Sheet, LitShapesAreBrightTowardTheLightUnlessSunken) {
  auto Brightness = [](TColor Cl) { return GetRValue(Cl) + GetGValue(Cl) + GetBValue(Cl); };
  for (const bool Raised : {true, false}) {
    TOwned<TBitmap> B = MakeBitmap(80, 80);
    B->Canvas()->Pen()->SetStyle(psClear);
    B->Canvas()->Brush()->SetColor(clGray);
    DrawShape(B->Canvas(), {10, 10, 70, 70}, nullptr, shpRectangle3D, Raised, clWhite, clBlack, 5,
              1.0f);
    const int TopLeft = Brightness(B->Canvas()->Pixel(12, 40));
    const int BottomRight = Brightness(B->Canvas()->Pixel(67, 40));
    EXPECT_EQ(TopLeft > BottomRight, Raised);
    EXPECT_EQ(B->Canvas()->Pixel(40, 40), clGray) << "the face keeps the brush";
  }
}

TEST_F(Sheet, TheImageStyleFitsTheBitmapAndFallsBackToTheRectangle) {
  TOwned<TBitmap> Icon = MakeBitmap(20, 10, clBlue);
  const TRect Inner =
      DrawShape(C, {0, 0, 100, 100}, Icon.get(), shpImage, true, clWhite, clGray, 3, 1.0f);
  EXPECT_EQ(Inner, (TRect{0, 0, 100, 100}));
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{0, 25, 100, 75})) << "proportional, centred";
  TOwned<TBitmap> B = MakeBitmap(60, 60);
  DrawShape(B->Canvas(), {5, 5, 55, 55}, nullptr, shpImage, true, clWhite, clGray, 3, 1.0f);
  EXPECT_EQ(B->Canvas()->Pixel(5, 30), clBlack) << "no bitmap: the rectangle";
}

// --- Text ---

TEST_F(Sheet, CentredUnclippedLabelsStandOnAPoint) {
  C->Brush()->SetStyle(bsClear);
  DrawTextLabel(C, "Label", 0x101, {60, 40, 60, 40});
  const TRect Ink = PaintedBounds(Bmp.get());
  ASSERT_FALSE(Ink.IsEmpty());
  EXPECT_NEAR((Ink.Left + Ink.Right) / 2.0, 60, 2.0);
  EXPECT_GE(Ink.Top, 40);
  TOwned<TBitmap> Clipped = MakeBitmap(120, 100);
  Clipped->Canvas()->Brush()->SetStyle(bsClear);
  DrawTextLabel(Clipped->Canvas(), "Label", DT_CENTER, {60, 40, 60, 40});
  EXPECT_EQ(CountPainted(Clipped.get()), 0) << "a zero-size rectangle clips everything";
}

struct Placement {
  uint32_t Flags;
  int Column, Row; // -1 start, 0 middle, 1 end
};

class LabelPlacement : public ::testing::TestWithParam<Placement> {};

TEST_P(LabelPlacement, FlagsPlaceWrappedTextInItsRectangle) {
  TOwned<TBitmap> B = MakeBitmap(200, 160);
  TCanvas* C = B->Canvas();
  C->Brush()->SetStyle(bsClear);
  const TRect R{20, 20, 180, 140};
  const std::string Text = "North American wholesale revenue";
  const uint32_t Flags = DT_WORDBREAK | DT_END_ELLIPSIS | GetParam().Flags;
  const int32_t H = DrawTextLabel(C, Text, Flags, {R.Left, R.Top, R.Left + 90, R.Bottom});
  DrawTextLabel(C, "", Flags, R);
  const TRect Ink = PaintedBounds(B.get());
  ASSERT_FALSE(Ink.IsEmpty());
  EXPECT_GT(H, C->TextHeight("N") * 3 / 2) << "the text wraps";
  EXPECT_LE(Ink.Right, R.Left + 90);
  const double MidY = (Ink.Top + Ink.Bottom) / 2.0;
  switch (GetParam().Row) {
  case -1:
    EXPECT_LT(Ink.Top - R.Top, 6);
    break;
  case 0:
    EXPECT_NEAR(MidY, (R.Top + R.Bottom) / 2.0, 6);
    break;
  case 1:
    EXPECT_LT(R.Bottom - Ink.Bottom, 8);
    break;
  }
  switch (GetParam().Column) {
  case -1:
    EXPECT_LT(Ink.Left - R.Left, 3);
    break;
  case 1:
    EXPECT_LT(R.Left + 90 - Ink.Right, 3);
    break;
  default:
    EXPECT_NEAR((Ink.Left + Ink.Right) / 2.0, R.Left + 45, 4);
    break;
  }
}

INSTANTIATE_TEST_SUITE_P(Alignments, LabelPlacement,
                         ::testing::Values(Placement{0, -1, -1}, Placement{1, 0, -1},
                                           Placement{2, 1, -1}, Placement{4, -1, 0},
                                           Placement{5, 0, 0}, Placement{6, 1, 0},
                                           Placement{8, -1, 1}, Placement{9, 0, 1},
                                           Placement{10, 1, 1}));

TEST_F(Sheet, EllipsisKeepsWrappedTextInsideItsRectangle) {
  C->Brush()->SetStyle(bsClear);
  const TRect R{10, 10, 70, 40};
  const std::string Long(200, 'x');
  const std::string Words = "one two three four five six seven eight nine ten eleven twelve";
  DrawTextLabel(C, Words, DT_WORDBREAK | DT_END_ELLIPSIS | DT_NOCLIP, R);
  DrawTextLabel(C, Long, DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOCLIP, {10, 60, 70, 80});
  const TRect Ink = PaintedBounds(Bmp.get());
  EXPECT_LE(Ink.Right, R.Right);
  EXPECT_LE(Ink.Bottom, 80);
  EXPECT_EQ(test::CountPixels(Bmp.get(), {10, R.Bottom + 1, 120, 59},
                              [](TColor P) { return P != clWhite; }),
            0)
      << "no line runs below the rectangle";
}

TEST_F(Sheet, PrefixesUnderlineOrEscape) {
  const auto W = [&](std::string_view T, uint32_t F) {
    return TextLabelRect(C, T, F | DT_SINGLELINE, {0, 0, 0, 0}).Width();
  };
  EXPECT_EQ(W("&Save", 0), W("Save", 0));
  EXPECT_EQ(W("R&&D", 0), W("R&D", DT_NOPREFIX));
  EXPECT_GT(W("&Save", DT_NOPREFIX), W("Save", 0));
  C->Brush()->SetStyle(bsClear);
  EXPECT_GT(DrawTextLabel(C, "Measured", DT_CALCRECT, {0, 0, 100, 100}), 0);
  EXPECT_EQ(CountPainted(Bmp.get()), 0) << "DT_CALCRECT draws nothing";
}

struct TurnCase {
  int32_t Angle;
  bool Swapped;
};

class RotatedExtent : public ::testing::TestWithParam<TurnCase> {};

TEST_P(RotatedExtent, BoxHoldsTheTurnedTextFromItsOffset) {
  TOwned<TBitmap> B = MakeBitmap(160, 160);
  TCanvas* C = B->Canvas();
  C->Font()->SetSize(11);
  C->Brush()->SetStyle(bsClear);
  const TSize Flat = C->TextExtent("Quarterly");
  TPoint Offset;
  const TSize S = GetRotatedTextExtent(C, GetParam().Angle, "Quarterly", Offset);
  if (GetParam().Swapped) {
    EXPECT_EQ(S, (TSize{Flat.cy, Flat.cx}));
  } else if (GetParam().Angle % 180 == 0) {
    EXPECT_EQ(S, Flat);
  }
  EXPECT_EQ(GetRotatedTextExtent(C, GetParam().Angle, "Quarterly"), S);
  RotateFont(C->Font(), GetParam().Angle);
  C->TextOut(20 + Offset.X, 20 + Offset.Y, "Quarterly");
  const TRect Ink = PaintedBounds(B.get());
  ASSERT_FALSE(Ink.IsEmpty());
  EXPECT_GE(Ink.Left, 19);
  EXPECT_GE(Ink.Top, 19);
  EXPECT_LE(Ink.Right, 21 + S.cx);
  EXPECT_LE(Ink.Bottom, 21 + S.cy);
}

INSTANTIATE_TEST_SUITE_P(Angles, RotatedExtent,
                         ::testing::Values(TurnCase{0, false}, TurnCase{90, true},
                                           TurnCase{180, false}, TurnCase{270, true},
                                           TurnCase{45, false}, TurnCase{330, false}));

TEST(VclGraphics, RotatedOffsetsPutTheOriginOnTheRightCorner) {
  TOwned<TBitmap> B = MakeBitmap(10, 10);
  const TSize Flat = B->Canvas()->TextExtent("Axis");
  TPoint Offset;
  GetRotatedTextExtent(B->Canvas(), 90, "Axis", Offset);
  EXPECT_EQ(Offset, (TPoint{0, Flat.cx})) << "text at 90 degrees rises from the bottom left";
  GetRotatedTextExtent(B->Canvas(), 180, "Axis", Offset);
  EXPECT_EQ(Offset, (TPoint{Flat.cx, Flat.cy}));
  GetRotatedTextExtent(B->Canvas(), 270, "Axis", Offset);
  EXPECT_EQ(Offset, (TPoint{Flat.cy, 0}));
  TOwned<TFont> F = MakeOwned<TFont>();
  RotateFont(F.get(), 450);
  EXPECT_EQ(F->Orientation(), 90);
}

// --- Arrows ---

int32_t ColumnCount(const TBitmap* B, int32_t X) {
  return test::CountPixels(B, {X, 0, X + 1, B->Height()}, [](TColor P) { return P != clWhite; });
}

TEST_F(Sheet, ArrowHeadsAreWiderThanTheShaftAndPointTheWay) {
  C->Brush()->SetColor(clBlack);
  DrawArrow(C, 10, 50, 100, 50, 12, "", {arEndHead, arFilledHead}, 1, 1.0f);
  EXPECT_GT(ColumnCount(Bmp.get(), 95), 6) << "the head near the end";
  EXPECT_LE(ColumnCount(Bmp.get(), 50), 2) << "the shaft in the middle";
  EXPECT_LE(ColumnCount(Bmp.get(), 12), 2) << "no head at the start";
  TOwned<TBitmap> Both = MakeBitmap(120, 100);
  DrawArrow(Both->Canvas(), 10, 50, 100, 50, 12, "", {arStartHead, arEndHead}, 1, 1.0f);
  EXPECT_GT(ColumnCount(Both.get(), 14), 4) << "an open head at the start";
}

TEST_F(Sheet, ArrowTextDotAndOpacityFollowTheOptions) {
  DrawArrow(C, 10, 60, 110, 60, 8, "Sales", {arEndHead}, 1, 1.0f);
  EXPECT_EQ(PaintedBounds(Bmp.get()).Top, 60 - 4) << "no text without arText";
  DrawArrow(C, 10, 60, 110, 60, 8, "Sales", {arEndHead, arText}, 1, 1.0f);
  EXPECT_LT(PaintedBounds(Bmp.get()).Top, 50) << "the text stands above a level arrow";
  TOwned<TBitmap> Still = MakeBitmap(60, 60);
  Still->Canvas()->Brush()->SetColor(clBlack);
  DrawArrow(Still->Canvas(), 30, 30, 30, 30, 10, "", {arEndHead, arFilledHead}, 1, 1.0f);
  EXPECT_EQ(CountPainted(Still.get()), 0) << "an arrow without length has no direction";
  DrawArrow(Still->Canvas(), 30, 30, 30, 30, 10, "", {arStartDot}, 1, 1.0f);
  EXPECT_TRUE(Still->Canvas()->Pixel(30, 30) != clWhite);
  TOwned<TBitmap> Ghost = MakeBitmap(60, 60);
  DrawArrow(Ghost->Canvas(), 0, 0, 50, 50, 10, "x", {arEndHead, arText}, 1, 0.0f);
  EXPECT_EQ(CountPainted(Ghost.get()), 0);
}

TEST_F(Sheet, PolylineArrowsFollowEveryPointAndSurviveWildInput) {
  const TPoint Route[] = {{10, 90}, {10, 10}, {100, 10}, {100, 60}};
  DrawArrow(C, Route, 10, "", {arEndHead, arFilledHead}, 1, -1, 1.0f);
  EXPECT_TRUE(Painted(10, 50));
  EXPECT_TRUE(Painted(50, 10));
  EXPECT_GT(test::CountPixels(Bmp.get(), {95, 50, 106, 60}, [](TColor P) { return P != clWhite; }),
            20)
      << "the head points down along the last segment";
  const TPoint Wild[] = {{INT_MIN, INT_MAX}, {INT_MAX, INT_MIN}, {INT_MAX, INT_MIN}};
  DrawArrow(C, Wild, INT_MAX, "far", {arStartHead, arEndHead, arText, arStartDot}, INT_MAX, 7,
            1.0f);
  DrawArrow(C, {}, 5, "", {arEndHead}, 1, -1, 1.0f);
}

// --- Curves ---

using Points = std::vector<TPoint>;

class CurveThrough : public ::testing::TestWithParam<Points> {};

TEST_P(CurveThrough, HoldsEveryGivenPointInOrder) {
  const Points& P = GetParam();
  for (const bool Closed : {false, true}) {
    const Points Curve = BezierPolygonPoints(P, false, Closed, 1);
    size_t At = 0;
    for (const TPoint& Q : P) {
      while (At < Curve.size() && Curve[At] != Q)
        ++At;
      ASSERT_LT(At, Curve.size()) << "point (" << Q.X << ", " << Q.Y << ") missing";
    }
    EXPECT_EQ(Curve.front(), P.front());
    EXPECT_EQ(Curve.back(), Closed && P.size() > 2 ? P.front() : P.back());
    for (size_t I = 1; I < Curve.size(); ++I)
      EXPECT_LE(
          std::max(std::abs(Curve[I].X - Curve[I - 1].X), std::abs(Curve[I].Y - Curve[I - 1].Y)),
          40)
          << "the polyline is dense";
  }
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, CurveThrough,
    ::testing::Values(Points{{0, 0}, {100, 0}}, Points{{0, 50}, {30, 0}, {60, 90}, {90, 40}},
                      Points{{0, 0}, {10, 10}, {10, 10}, {20, 0}, {0, 0}, {40, 40}},
                      Points{{5, 5}, {6, 5}, {7, 6}, {200, 300}, {-50, 20}}));

TEST(VclGraphics, CurvesOfFewPointsAndSmoothnessZero) {
  EXPECT_TRUE(BezierPolygonPoints({}, false, false, 1).empty());
  const TPoint One[] = {{3, 4}};
  EXPECT_EQ(BezierPolygonPoints(One, false, false, 1), (Points{{3, 4}}));
  const TPoint Bent[] = {{0, 0}, {50, 50}, {100, 0}};
  for (const TPoint& Q : BezierPolygonPoints(Bent, false, false, 0))
    EXPECT_EQ(Q.Y, Q.X <= 50 ? Q.X : 100 - Q.X) << "smoothness 0 keeps straight edges";
  const Points B = BezierPolygonPoints(Bent, true, false, 1);
  EXPECT_EQ(B.front(), (TPoint{0, 0}));
  EXPECT_EQ(B.back(), (TPoint{100, 0}));
  EXPECT_EQ(std::count(B.begin(), B.end(), TPoint{50, 50}), 0) << "a B-spline cuts the corner";
}

TEST_F(Sheet, FilledClosedCurvesFillTheirInside) {
  C->Brush()->SetColor(clGreen);
  const TPoint Blob[] = {{20, 20}, {100, 20}, {100, 80}, {20, 80}};
  DrawBezierPolygon(C, Blob, false, true, true, 1, 1.0f);
  EXPECT_EQ(C->Pixel(60, 50), clGreen);
  EXPECT_FALSE(Painted(2, 2));
  TOwned<TBitmap> Line = MakeBitmap(120, 100);
  DrawBezierPolygon(Line->Canvas(), Blob, true, false, false, 1, 1.0f);
  EXPECT_FALSE(Line->Canvas()->Pixel(60, 50) != clWhite) << "an open line fills nothing";
  EXPECT_GT(CountPainted(Line.get()), 50);
}

// --- Paths ---

TEST_F(Sheet, PathsFillByTheEvenOddRuleAndStrokeLikeCanvasLines) {
  TOwned<TKXPathData> Path = MakeOwned<TKXPathData>();
  Path->SetPathString("M10,10 L90,10 L90,90 L10,90 Z M30,30 L70,30 L70,70 L30,70 Z");
  C->Brush()->SetColor(clRed);
  Path->FillPath(C);
  EXPECT_EQ(C->Pixel(15, 50), clRed);
  EXPECT_EQ(C->Pixel(50, 50), clWhite) << "the inner figure is a hole";
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{10, 10, 90, 90})) << "whole-pixel edges";
  TOwned<TBitmap> B = MakeBitmap(60, 30);
  Path->SetPathString("M5,10 L55,10");
  Path->DrawPath(B->Canvas());
  const auto Painted = PixelBytes(B.get());
  EXPECT_EQ(PaintedBounds(B.get()).Top, 10);
  EXPECT_EQ(PaintedBounds(B.get()).Bottom, 11) << "a level line is one crisp row";
  EXPECT_EQ(B->Canvas()->Pixel(30, 10), clBlack);
  Path->DrawPath(B->Canvas(), 0.0f);
  Path->Clear();
  Path->FillPath(B->Canvas());
  EXPECT_EQ(PixelBytes(B.get()), Painted) << "no opacity, no path: nothing more";
}

// --- Slices ---

struct SliceCase {
  double Start, End, Offset;
  TPoint In, Out;
};

class PieSlice : public ::testing::TestWithParam<SliceCase> {};

TEST_P(PieSlice, CoversItsAnglesCounterClockwiseFromTheRight) {
  const SliceCase& K = GetParam();
  TOwned<TBitmap> B = MakeBitmap(100, 100);
  B->Canvas()->Brush()->SetColor(clRed);
  DrawPieSlice(B->Canvas(), {0, 0, 100, 100}, K.Start, K.End, 1.0, K.Offset, 1.0f);
  EXPECT_EQ(B->Canvas()->Pixel(K.In.X, K.In.Y), clRed);
  EXPECT_EQ(B->Canvas()->Pixel(K.Out.X, K.Out.Y), clWhite);
}

INSTANTIATE_TEST_SUITE_P(
    Angles, PieSlice,
    ::testing::Values(SliceCase{0, 90, 0, {75, 25}, {25, 25}},    // upper right
                      SliceCase{90, 0, 0, {75, 25}, {75, 75}},    // reversed
                      SliceCase{0, 90, 90, {25, 25}, {75, 25}},   // turned by the offset
                      SliceCase{180, 270, 0, {25, 75}, {75, 75}}, // lower left
                      SliceCase{-90, 0, 0, {75, 75}, {75, 25}},   // negative angles
                      SliceCase{0, 720, 0, {20, 80}, {2, 2}}));   // a whole turn and more

TEST_F(Sheet, SlicesHonourRadiiAndRefuseBadNumbers) {
  C->Brush()->SetColor(clRed);
  DrawPieSlice(C, {0, 0, 100, 100}, 0, 360, 0.5, 0, 1.0f);
  EXPECT_EQ(C->Pixel(50, 50), clRed);
  EXPECT_FALSE(Painted(90, 50)) << "radius 0.5 stops at half";
  const double Nan = std::nan("");
  TOwned<TBitmap> B = MakeBitmap(100, 100);
  TCanvas* D = B->Canvas();
  DrawPieSlice(D, {0, 0, 100, 100}, Nan, 90, 1, 0, 1.0f);
  DrawPieSlice(D, {0, 0, 100, 100}, 0, 90, Nan, 0, 1.0f);
  DrawPieSlice(D, {0, 0, 100, 100}, 0, 90, 0, 0, 1.0f);
  DrawPieSlice(D, {0, 0, 100, 100}, 45, 45, 1, 0, 1.0f);
  DrawPieSlice(D, {0, 0, 0, 100}, 0, 90, 1, 0, 1.0f);
  DrawPieSlice(D, {0, 0, 100, 100}, 0, 1e308, 1e308, 1e308, 1.0f);
  DrawDonutSlice(D, {0, 0, 100, 100}, 0, 90, 0, 0.5, 0.5, 1.0f);
  DrawDonutSlice(D, {0, 0, 100, 100}, 0, 90, 0, Nan, 1, 1.0f);
  EXPECT_EQ(CountPainted(B.get()), 0);
}

TEST_F(Sheet, DonutSlicesLeaveTheHoleAndTakeRadiiInEitherOrder) {
  TOwned<TBitmap> Reversed = MakeBitmap(120, 100);
  for (TCanvas* D : {C, Reversed->Canvas()})
    D->Brush()->SetColor(clBlue);
  DrawDonutSlice(C, {0, 0, 100, 100}, 0, 360, 0, 0.5, 1.0, 1.0f);
  DrawDonutSlice(Reversed->Canvas(), {0, 0, 100, 100}, 360, 0, 0, 1.0, 0.5, 1.0f);
  EXPECT_EQ(PixelBytes(Bmp.get()), PixelBytes(Reversed.get()));
  EXPECT_FALSE(Painted(50, 50)) << "the hole";
  EXPECT_EQ(C->Pixel(50, 10), clBlue) << "the ring";
  TOwned<TBitmap> Pie = MakeBitmap(100, 100);
  Pie->Canvas()->Brush()->SetColor(clBlue);
  DrawDonutSlice(Pie->Canvas(), {0, 0, 100, 100}, 0, 90, 0, 0, 1, 1.0f);
  EXPECT_EQ(Pie->Canvas()->Pixel(60, 40), clBlue) << "inner radius 0 is a pie slice";
}

// --- Gradients and colours ---

TEST(VclGraphics, InterpolateColorRunsFromTheFirstToTheSecond) {
  EXPECT_EQ(InterpolateColor(clRed, clBlue, 0), clRed);
  EXPECT_EQ(InterpolateColor(clRed, clBlue, 1), clBlue);
  EXPECT_EQ(InterpolateColor(clBlack, clWhite, 0.5), RGBToColor(128, 128, 128));
  EXPECT_EQ(InterpolateColor(clRed, clBlue, -3), clRed);
  EXPECT_EQ(InterpolateColor(clRed, clBlue, 7), clBlue);
  EXPECT_EQ(InterpolateColor(clRed, clBlue, std::nan("")), clRed);
  EXPECT_EQ(InterpolateColor(clBtnFace, clBtnFace, 0.3), ColorToRGB(clBtnFace));
}

struct GradientCase {
  TGradientDirection Direction;
  TPoint First, Last; // where the first and the last colour show
};

class Gradient : public ::testing::TestWithParam<GradientCase> {};

TEST_P(Gradient, PutsItsColoursWhereItsDirectionSays) {
  TOwned<TBitmap> B = MakeBitmap(101, 81);
  DirectionGradient(B->Canvas(), {0, 0, 101, 81}, {clBlack, clWhite}, GetParam().Direction, 1,
                    1.0f);
  const auto Level = [&](TPoint P) { return int(GetRValue(B->Canvas()->Pixel(P.X, P.Y))); };
  EXPECT_LT(Level(GetParam().First), 30);
  EXPECT_GT(Level(GetParam().Last), 225);
}

INSTANTIATE_TEST_SUITE_P(Directions, Gradient,
                         ::testing::Values(GradientCase{gdLeftToRight, {0, 40}, {100, 40}},
                                           GradientCase{gdRightToLeft, {100, 40}, {0, 40}},
                                           GradientCase{gdBottomToTop, {50, 80}, {50, 0}},
                                           GradientCase{gdTopToBottom, {50, 0}, {50, 80}},
                                           GradientCase{gdTopLeftToBottomRight, {0, 0}, {100, 80}},
                                           GradientCase{gdBottomLeftToTopRight, {0, 80}, {100, 0}},
                                           GradientCase{gdHorizontalMirror, {0, 40}, {50, 40}},
                                           GradientCase{gdVerticalMirror, {50, 80}, {50, 40}},
                                           GradientCase{gdRadial, {50, 40}, {0, 0}}));

TEST_F(Sheet, CoarseGradientsPaintBandsAndLineGradientsTakeTheirHighIndex) {
  DirectionGradient(C, {0, 0, 100, 10}, {clBlack, clWhite}, gdLeftToRight, 10, 1.0f);
  std::set<int32_t> Shades;
  for (int X = 0; X < 100; ++X)
    Shades.insert(C->Pixel(X, 5));
  EXPECT_EQ(Shades.size(), 10u);
  EXPECT_EQ(C->Pixel(0, 5), C->Pixel(9, 5));
  const TColor Three[] = {clRed, clLime, clBlue};
  LineGradient(C, {0, 20, 100, 30}, Three, 0, 1, grHorizontal, 1.0f);
  EXPECT_EQ(C->Pixel(99, 25), clRed) << "high index 0: one colour";
  LineGradient(C, {0, 40, 10, 100}, Three, 2, 1, grVertical, 1.0f);
  EXPECT_TRUE(test::Near(C->Pixel(5, 40), clRed, 12));
  EXPECT_TRUE(test::Near(C->Pixel(5, 99), clBlue, 12));
  LineGradient(C, {50, 40, 60, 100}, Three, 99, 1, grHorizontal, 0.0f);
  DirectionGradient(C, {50, 40, 60, 100}, std::span<const TColor>(), gdRadial, 1, 1.0f);
  DirectionGradient(C, {60, 40, 60, 100}, {clRed}, gdRadial, 1, 1.0f);
  EXPECT_EQ(test::CountPixels(Bmp.get(), {50, 40, 120, 100}, [](TColor P) { return P != clWhite; }),
            0);
  DirectionGradient(C, {110, 90, 100, 80}, {clRed}, gdRadial, 1, 0.5f);
  EXPECT_TRUE(test::Near(C->Pixel(105, 85), RGBToColor(255, 128, 128))) << "turned, half";
}

} // namespace
} // namespace kx
