#include "kxcharts/toolkit/graphics/KXCanvas.h"

#include <climits>
#include <cmath>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::CountPainted;
using test::MakeBitmap;
using test::PaintedBounds;
using test::PixelBytes;

struct CanvasFixture : ::testing::Test {
  TOwned<TBitmap> Bmp = MakeBitmap(60, 40);
  TCanvas* C = Bmp->Canvas();
};

// --- Rectangles ---

TEST_F(CanvasFixture, FillAndFrameTouchExactlyTheirHalfOpenBoxInTheBrushColour) {
  C->Brush()->SetColor(clRed);
  C->FillRect({10, 10, 20, 20});
  EXPECT_EQ(CountPainted(Bmp.get()), 100);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{10, 10, 20, 20}));
  EXPECT_EQ(C->Pixel(19, 19), clRed);
  C->Brush()->SetColor(clBlue);
  C->FrameRect({30, 10, 40, 15});
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{10, 10, 40, 20}));
  EXPECT_EQ(CountPainted(Bmp.get()), 100 + 2 * 10 + 2 * 3);
  EXPECT_EQ(C->Pixel(39, 14), clBlue);
  EXPECT_EQ(C->Pixel(32, 12), clWhite);
}

TEST_F(CanvasFixture, DegenerateRectanglesPaintNothing) {
  C->Brush()->SetColor(clRed);
  const TRect Cases[] = {
      {10, 10, 10, 20}, {10, 10, 20, 10}, {20, 10, 10, 20}, {10, 20, 20, 10}, {5, 5, 5, 5}};
  for (const TRect& R : Cases) {
    C->FillRect(R);
    C->FrameRect(R);
    C->Rectangle(R.Left, R.Top, R.Left, R.Bottom);
    C->Ellipse(R.Left, R.Top, R.Right, R.Top);
  }
  EXPECT_EQ(CountPainted(Bmp.get()), 0);
}

class RectanglePenWidth : public ::testing::TestWithParam<int> {};

TEST_P(RectanglePenWidth, StrokesInsideItsBoxAndFillsTheRest) {
  const int W = GetParam();
  TOwned<TBitmap> B = MakeBitmap(60, 40);
  TCanvas* C = B->Canvas();
  C->Pen()->SetWidth(W);
  C->Pen()->SetColor(clBlack);
  C->Brush()->SetColor(clLime);
  C->Rectangle(10, 10, 30, 25);
  EXPECT_EQ(PaintedBounds(B.get()), (TRect{10, 10, 30, 25}));
  const int Pen = std::max(1, W);
  for (int I = 0; I < Pen; ++I) {
    EXPECT_EQ(C->Pixel(10 + I, 17), clBlack) << "left edge, column " << I;
    EXPECT_EQ(C->Pixel(29 - I, 17), clBlack) << "right edge, column " << I;
    EXPECT_EQ(C->Pixel(20, 10 + I), clBlack) << "top edge, row " << I;
    EXPECT_EQ(C->Pixel(20, 24 - I), clBlack) << "bottom edge, row " << I;
  }
  EXPECT_EQ(C->Pixel(10 + Pen, 10 + Pen), clLime);
  EXPECT_EQ(C->Pixel(29 - Pen, 24 - Pen), clLime);
}

INSTANTIATE_TEST_SUITE_P(Widths, RectanglePenWidth, ::testing::Values(0, 1, 2, 3, 5));

TEST_F(CanvasFixture, RectangleOrdersItsCornersAndAClearBrushLeavesTheInside) {
  C->Brush()->SetStyle(bsClear);
  C->Rectangle(30, 25, 10, 10);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{10, 10, 30, 25}));
  EXPECT_EQ(C->Pixel(20, 17), clWhite);
}

TEST_F(CanvasFixture, EllipseAndRoundRectStayInsideTheirBoxes) {
  C->Brush()->SetColor(clRed);
  C->Ellipse(5, 5, 25, 35);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{5, 5, 25, 35}));
  EXPECT_EQ(C->Pixel(15, 20), clRed);
  EXPECT_EQ(C->Pixel(5, 5), clWhite) << "the corner lies outside the ellipse";
  C->RoundRect(30, 5, 55, 35, 10, 10);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{5, 5, 55, 35}));
  EXPECT_EQ(C->Pixel(30, 5), clWhite) << "a rounded corner is cut";
  EXPECT_EQ(C->Pixel(30, 20), clBlack) << "the straight part of the border";
}

// --- Lines ---

struct LineCase {
  TPoint From, To;
};

class LineEnds : public ::testing::TestWithParam<LineCase> {};

TEST_P(LineEnds, LineToPaintsItsStartButNotItsEnd) {
  const LineCase L = GetParam();
  TOwned<TBitmap> B = MakeBitmap(40, 40);
  TCanvas* C = B->Canvas();
  C->MoveTo(L.From.X, L.From.Y);
  C->LineTo(L.To.X, L.To.Y);
  EXPECT_EQ(C->PenPos(), L.To);
  EXPECT_NE(C->Pixel(L.From.X, L.From.Y), clWhite);
  EXPECT_EQ(C->Pixel(L.To.X, L.To.Y), clWhite);
}

INSTANTIATE_TEST_SUITE_P(Directions, LineEnds,
                         ::testing::Values(LineCase{{5, 10}, {30, 10}}, LineCase{{30, 10}, {5, 10}},
                                           LineCase{{10, 5}, {10, 30}}, LineCase{{10, 30}, {10, 5}},
                                           LineCase{{5, 5}, {30, 30}}, LineCase{{30, 5}, {5, 30}},
                                           LineCase{{5, 5}, {30, 12}}));

TEST_F(CanvasFixture, OnePixelLinesAndPolylineCornersAreCrispAtFullColour) {
  C->Pen()->SetColor(clNavy);
  const TPoint L[] = {{5, 5}, {5, 20}, {20, 20}};
  C->Polyline(L);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{5, 5, 20, 21}));
  EXPECT_EQ(test::CountPixels(Bmp.get(), [](TColor P) { return P == clNavy; }), 15 + 15);
  EXPECT_EQ(CountPainted(Bmp.get()), 30);
  EXPECT_EQ(C->Pixel(5, 20), clNavy) << "the corner";
  EXPECT_EQ(C->Pixel(20, 20), clWhite) << "the end point";
}

TEST_F(CanvasFixture, DiagonalsAreAntialiased) {
  C->MoveTo(0, 0);
  C->LineTo(40, 13);
  const int32_t Partial =
      test::CountPixels(Bmp.get(), [](TColor P) { return P != clWhite && P != clBlack; });
  EXPECT_GT(Partial, 10);
}

TEST_F(CanvasFixture, WidePensAndDashesStayOnTheirRows) {
  C->Pen()->SetWidth(3);
  C->MoveTo(5, 10);
  C->LineTo(45, 10);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{5, 9, 45, 12}));
  TOwned<TBitmap> B = MakeBitmap(60, 10);
  B->Canvas()->Pen()->SetStyle(psDot);
  B->Canvas()->MoveTo(0, 5);
  B->Canvas()->LineTo(60, 5);
  EXPECT_EQ(CountPainted(B.get()), 30) << "dots of three on, three off";
  B->Canvas()->Pen()->SetStyle(psClear);
  B->Canvas()->MoveTo(0, 2);
  B->Canvas()->LineTo(60, 2);
  EXPECT_EQ(CountPainted(B.get()), 30);
}

// Points stroked in Style by Polyline, or by ColumnPolyline, or (two points) by MoveTo and
// LineTo, on a white bitmap of Size; inside an opacity layer with Layer.
enum TStrokeWay { swPolyline, swColumns, swLineTo };
struct TStroke {
  TSize Size;
  int32_t Width = 1;
  bool Antialias = true;
  TPenStyle Style = psSolid;
  bool Layer = false;
};

TOwned<TBitmap> Stroke(const TCanvasPoints& Points, const TStroke& S, TStrokeWay Way) {
  TOwned<TBitmap> B = MakeBitmap(S.Size.cx, S.Size.cy, S.Antialias);
  TCanvas* C = B->Canvas();
  C->Pen()->SetWidth(S.Width);
  C->Pen()->SetStyle(S.Style);
  C->Pen()->SetColor(clMaroon);
  if (S.Layer) C->BeginOpacity(0.5f);
  if (Way == swColumns) C->ColumnPolyline(Points);
  if (Way == swPolyline) C->Polyline(Points);
  if (Way == swLineTo) {
    C->MoveTo(Points[0].X, Points[0].Y);
    C->LineTo(Points[1].X, Points[1].Y);
  }
  if (S.Layer) C->EndOpacity();
  return B;
}

// How far ColumnPolyline's picture lies from Polyline's: no channel more than Worst levels
// off, on at most Share of the pixels Polyline paints.
void ExpectColumnsPaintWhatPolylinePaints(const TCanvasPoints& Points, const TStroke& S, int Worst,
                                          double Share) {
  const TOwned<TBitmap> Whole = Stroke(Points, S, swPolyline),
                        Columns = Stroke(Points, S, swColumns);
  const int32_t Painted = CountPainted(Whole.get());
  ASSERT_GT(Painted, 0);
  const test::TPictureDifference D = test::ComparePictures(Whole.get(), Columns.get());
  EXPECT_LE(D.Worst, Worst) << "first at " << D.First.X << "," << D.First.Y;
  EXPECT_LE(D.Pixels, Painted * Share);
}

// A one-pixel patterned line along a row or a column is painted as one fill of its pattern;
// a polyline through a point in its middle is stroked dash by dash. Both must give the same
// pixels, for every pattern, both ways along both axes, with and without antialiasing.
TEST(Canvas, PatternedRowsAndColumnsPaintTheirDashes) {
  // The last four start or end far off the bitmap, where only the dashes that reach it are
  // laid, in the phase they have from the line's start.
  const std::pair<TPoint, TPoint> Lines[] = {
      {{3, 5}, {50, 5}},          {{50, 9}, {4, 9}},          {{7, 2}, {7, 37}},
      {{12, 38}, {12, 1}},        {{20, 20}, {21, 20}},       {{30, 14}, {30, 15}},
      {{-100003, 5}, {50, 5}},    {{50, 9}, {-100004, 9}},    {{7, -99999}, {7, 37}},
      {{12, 100038}, {12, 1}}};
  for (const TPenStyle Style : {psDash, psDot, psDashDot, psDashDotDot, psAlternate})
    for (const bool Antialias : {true, false})
      for (const auto& [From, To] : Lines) {
        SCOPED_TRACE(testing::Message()
                     << "style " << int(Style) << " from " << From.X << "," << From.Y << " to "
                     << To.X << "," << To.Y << (Antialias ? " antialiased" : ""));
        const TStroke S{{60, 40}, 1, Antialias, Style};
        const TPoint Mid{(From.X + To.X) / 2, (From.Y + To.Y) / 2};
        const TOwned<TBitmap> Stroked = Stroke({From, Mid, To}, S, swPolyline);
        ASSERT_GT(CountPainted(Stroked.get()), 0);
        EXPECT_EQ(PixelBytes(Stroke({From, To}, S, swLineTo).get()), PixelBytes(Stroked.get()));
      }
}

// ColumnPolyline paints what Polyline does: the same pixels without antialiasing and for
// odd pens; with it, for even pens (whose runs up and down columns are filled as boxes and
// whose one-pixel joins are stamped from a coverage rendered once per shape), no channel
// more than two levels off on at most 1 % of the painted pixels. Lines: one that runs up and
// down pixel columns with jumps and flat stretches, as a long series reduced per column
// draws, and a dense one whose columns step one pixel in and out.
TEST(Canvas, ColumnPolylinePaintsWhatPolylinePaints) {
  std::mt19937 Random(5);
  std::uniform_int_distribution<int32_t> Row(5, 75), Jump(0, 9);
  TCanvasPoints Points{{3, 40}};
  for (int32_t X = 4; X < 116; ++X) {
    if (Jump(Random) == 0) X += 3;
    if (Jump(Random) == 1) {
      Points.push_back({X, Points.back().Y});
      continue;
    }
    for (int K = 0; K < 4; ++K)
      Points.push_back({X, Row(Random)});
  }
  for (const bool Antialias : {false, true})
    for (const int32_t Width : {1, 2, 3, 4}) {
      SCOPED_TRACE(testing::Message() << "width " << Width << (Antialias ? " antialiased" : ""));
      const bool Exact = !Antialias || Width % 2 == 1;
      ExpectColumnsPaintWhatPolylinePaints(Points, {{120, 80}, Width, Antialias}, Exact ? 0 : 2,
                                           Exact ? 0 : 0.01);
    }
  for (const int Seed : {1, 2, 3})
    for (const int32_t Width : {2, 4, 8, 16}) {
      SCOPED_TRACE(testing::Message() << "dense, seed " << Seed << " width " << Width);
      std::mt19937 Random(Seed);
      std::uniform_int_distribution<int32_t> Step(-1, 1), Reach(1, 12);
      TCanvasPoints Dense{{3, 100}};
      int32_t Y = 100;
      for (int32_t X = 4; X < 396; ++X) {
        Y = std::clamp(Y + Step(Random), 20, 180);
        Dense.push_back({X, Y});
        const int32_t Lo = Y - Reach(Random), Hi = Y + Reach(Random);
        Dense.push_back({X, Step(Random) > 0 ? Lo : Hi});
        Dense.push_back({X, Dense.back().Y == Lo ? Hi : Lo});
        Y = std::clamp(Y + Step(Random), Lo, Hi);
        Dense.push_back({X, Y});
      }
      ExpectColumnsPaintWhatPolylinePaints(Dense, {{400, 200}, Width}, 2, 0.01);
    }
  // Round ends set on the handle by a drawing helper are the stroke's: no boxes, no stamps.
  const TPoint Steps[] = {{5, 5}, {5, 15}, {6, 15}, {6, 5}, {7, 6}, {7, 16}};
  const auto Round = [&](bool Columns) {
    TOwned<TBitmap> B = MakeBitmap(20, 20, true);
    cairo_set_line_cap(B->Canvas()->Handle(), CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(B->Canvas()->Handle(), CAIRO_LINE_JOIN_ROUND);
    B->Canvas()->Pen()->SetWidth(4);
    if (Columns)
      B->Canvas()->ColumnPolyline(Steps);
    else
      B->Canvas()->Polyline(Steps);
    return B;
  };
  EXPECT_EQ(test::PixelBytes(Round(true).get()), test::PixelBytes(Round(false).get()));
}

// A level segment between two vertical ones, the commonest join of a dense line, is painted
// as boxes: its stroke and its miter corners have whole-pixel edges, so the pixels must be
// exactly the stroke's, whichever way the line comes in, goes on and turns, also when it
// starts or ends level, and inside an opacity layer, where the boxes go through Cairo.
TEST(Canvas, ColumnPolylinePaintsLevelJoinsExactly) {
  for (const int32_t Width : {2, 4, 6})
    for (const int32_t In : {-1, 0, 1})    // 0: the line starts level
      for (const int32_t Out : {-1, 0, 1}) // 0: the line ends level
        for (const int32_t Step : {-3, 1, 2})
          for (const bool Layer : {false, true}) {
            SCOPED_TRACE(testing::Message() << "width " << Width << " in " << In << " out " << Out
                                            << " step " << Step << (Layer ? " layer" : ""));
            TCanvasPoints Points;
            if (In != 0) Points.push_back({20, 20 - 9 * In});
            Points.push_back({20, 20});
            Points.push_back({20 + Step, 20});
            if (Out != 0) Points.push_back({20 + Step, 20 + 7 * Out});
            ExpectColumnsPaintWhatPolylinePaints(Points, {{40, 40}, Width, true, psSolid, Layer}, 0,
                                                 0);
          }
}

TEST_F(CanvasFixture, PolygonFillsAndOutlinesThroughEveryPoint) {
  C->Brush()->SetColor(clYellow);
  const TPoint Square[] = {{10, 10}, {20, 10}, {20, 20}, {10, 20}};
  C->Polygon(Square);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{10, 10, 21, 21}));
  EXPECT_EQ(C->Pixel(15, 15), clYellow);
  EXPECT_EQ(C->Pixel(20, 20), clBlack);
}

// --- Pen modes and focus rectangles ---

TEST_F(CanvasFixture, TwoXorLinesRestoreTheBitmapByteForByte) {
  C->Brush()->SetColor(clTeal);
  C->FillRect({0, 0, 30, 40});
  const auto Before = PixelBytes(Bmp.get());
  C->Pen()->SetMode(pmXor);
  C->Pen()->SetColor(clYellow);
  auto Draw = [&] {
    C->MoveTo(2, 3);
    C->LineTo(55, 31);
    C->MoveTo(0, 20);
    C->LineTo(60, 20);
  };
  Draw();
  EXPECT_NE(PixelBytes(Bmp.get()), Before);
  EXPECT_EQ(C->Pixel(40, 20), static_cast<TColor>(clWhite ^ clYellow));
  Draw();
  EXPECT_EQ(PixelBytes(Bmp.get()), Before);
}

TEST_F(CanvasFixture, XorRubberBandRectangleRestoresAndModesThatDoNotReadPixelsDoNot) {
  const auto Before = PixelBytes(Bmp.get());
  C->Pen()->SetMode(pmXor);
  C->Brush()->SetStyle(bsClear);
  C->Rectangle(40, 30, 5, 5);
  C->Rectangle(40, 30, 5, 5);
  EXPECT_EQ(PixelBytes(Bmp.get()), Before);
  C->Pen()->SetMode(pmNop);
  C->Rectangle(5, 5, 40, 30);
  EXPECT_EQ(PixelBytes(Bmp.get()), Before);
  C->Pen()->SetMode(pmNot);
  C->MoveTo(0, 1);
  C->LineTo(10, 1);
  EXPECT_EQ(C->Pixel(3, 1), clBlack);
}

struct FocusCase {
  TRect R;
  bool Visible;
};

class FocusRect : public ::testing::TestWithParam<FocusCase> {};

TEST_P(FocusRect, DrawnTwiceRestoresTheBitmapByteForByte) {
  TOwned<TBitmap> B = MakeBitmap(30, 20, clSilver);
  B->Canvas()->Brush()->SetColor(clMaroon);
  B->Canvas()->FillRect({0, 0, 15, 20});
  const auto Before = PixelBytes(B.get());
  B->Canvas()->DrawFocusRect(GetParam().R);
  EXPECT_EQ(PixelBytes(B.get()) != Before, GetParam().Visible);
  B->Canvas()->DrawFocusRect(GetParam().R);
  EXPECT_EQ(PixelBytes(B.get()), Before);
}

INSTANTIATE_TEST_SUITE_P(
    Rectangles, FocusRect,
    ::testing::Values(FocusCase{{2, 2, 25, 15}, true}, FocusCase{{25, 15, 2, 2}, true},
                      FocusCase{{5, 5, 5, 15}, false}, FocusCase{{5, 5, 6, 15}, true},
                      FocusCase{{5, 5, 15, 6}, true}, FocusCase{{-10, -10, 20, 10}, true},
                      FocusCase{{-10, -10, 40, 40}, false},
                      FocusCase{{INT_MIN, INT_MIN, INT_MAX, INT_MAX}, false},
                      FocusCase{{100, 100, 120, 120}, false}));

// --- Clipping ---

TEST_F(CanvasFixture, ClipRectanglesNestAndUnwind) {
  C->Brush()->SetColor(clRed);
  C->SetClipRect({10, 10, 40, 30});
  C->SetClipRect({20, 0, 60, 20});
  EXPECT_EQ(C->ClipRect(), (TRect{20, 10, 40, 20}));
  C->FillRect({0, 0, 60, 40});
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{20, 10, 40, 20}));
  C->RestoreClipRect();
  C->Brush()->SetColor(clBlue);
  C->FillRect({0, 0, 60, 40});
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{10, 10, 40, 30}));
  C->RestoreClipRect();
  C->RestoreClipRect(); // one too many does nothing
  EXPECT_EQ(C->ClipRect(), (TRect{0, 0, 60, 40}));
  C->FillRect({0, 0, 60, 40});
  EXPECT_EQ(CountPainted(Bmp.get()), 60 * 40);
}

TEST_F(CanvasFixture, ClipScopeIsTakenBackWhenAnExceptionPasses) {
  try {
    TCanvasClip Clip(C, {0, 0, 5, 5});
    throw Exception("handler failed");
  } catch (const Exception&) {
  }
  EXPECT_EQ(C->LayerDepth(), 0);
  EXPECT_EQ(C->ClipRect(), (TRect{0, 0, 60, 40}));
}

TEST_F(CanvasFixture, ClipAppliesToPixelsTextAndPenModes) {
  TCanvasClip Clip(C, {0, 0, 10, 10});
  C->SetPixel(20, 20, clRed);
  C->Pen()->SetMode(pmXor);
  C->MoveTo(0, 20);
  C->LineTo(60, 20);
  C->TextOut(15, 15, "Outside");
  EXPECT_EQ(CountPainted(Bmp.get()), 0);
}

TEST_F(CanvasFixture, ClearRectMakesItsBoxTransparentWithinTheClipAndPaintingGoesOnAsBefore) {
  TCanvasClip Clip(C, {0, 0, 30, 40});
  C->ClearRect({20, 10, 50, 20});
  const std::vector<uint8_t> Bytes = PixelBytes(Bmp.get());
  int32_t Transparent = 0; // all four bytes 0: no colour and no alpha
  for (size_t I = 0; I + 3 < Bytes.size(); I += 4)
    if ((Bytes[I] | Bytes[I + 1] | Bytes[I + 2] | Bytes[I + 3]) == 0) ++Transparent;
  EXPECT_EQ(Transparent, 10 * 10);
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{20, 10, 30, 20}));
  C->Brush()->SetColor(clRed);
  C->FillRect({20, 10, 25, 15});
  EXPECT_EQ(C->Pixel(22, 12), clRed);
}

// --- Opacity ---

TEST_F(CanvasFixture, OpacityLayersBlendAndNest) {
  C->Brush()->SetColor(clBlack);
  C->BeginOpacity(0.5f);
  C->FillRect({0, 0, 10, 10});
  C->EndOpacity();
  EXPECT_TRUE(test::Near(C->Pixel(5, 5), RGBToColor(128, 128, 128)));
  {
    TCanvasOpacity Outer(C, 0.5f);
    TCanvasOpacity Inner(C, 0.5f);
    C->FillRect({20, 0, 30, 10});
  }
  EXPECT_TRUE(test::Near(C->Pixel(25, 5), RGBToColor(191, 191, 191)));
  C->BeginOpacity(std::nanf(""));
  C->FillRect({40, 0, 50, 10});
  C->EndOpacity();
  EXPECT_EQ(C->Pixel(45, 5), clWhite);
  EXPECT_EQ(C->LayerDepth(), 0);
}

// --- Bad coordinates ---

TEST_F(CanvasFixture, HugeCoordinatesAreClampedAndDrawSafely) {
  EXPECT_EQ(C->Pixel(-1, 0), clNone);
  EXPECT_EQ(C->Pixel(60, 0), clNone);
  C->SetPixel(-5, 100, clRed); // ignored
  C->Brush()->SetColor(clRed);
  C->FillRect({INT_MIN, INT_MIN, INT_MAX, INT_MAX});
  EXPECT_EQ(CountPainted(Bmp.get()), 60 * 40) << "the whole bitmap is red";
  EXPECT_EQ(C->Pixel(30, 20), clRed);
  C->MoveTo(INT_MIN, 5);
  C->LineTo(INT_MAX, 5);
  EXPECT_EQ(C->Pixel(30, 5), clBlack);
  const TPoint Wild[] = {{INT_MIN, INT_MAX}, {INT_MAX, INT_MIN}, {0, 0}, {INT_MAX, INT_MAX}};
  C->Polyline(Wild);
  C->Polygon(Wild);
  C->Ellipse(INT_MIN, INT_MIN, INT_MAX, INT_MAX);
  C->RoundRect(INT_MIN, 0, INT_MAX, 10, INT_MAX, INT_MIN);
  C->Polyline({});
  C->Polygon({});
  const TPoint One[] = {{5, 5}};
  C->Polyline(One);
  C->TextOut(INT_MAX, INT_MIN, "far away");
}

// --- Text ---

TEST_F(CanvasFixture, TextExtentsGrowWithFontSize) {
  TSize Last{0, 0};
  for (int Size : {6, 8, 12, 20, 36}) {
    C->Font()->SetSize(Size);
    const TSize S = C->TextExtent("Revenue 2024");
    EXPECT_GT(S.cx, Last.cx) << "size " << Size;
    EXPECT_GT(S.cy, Last.cy) << "size " << Size;
    Last = S;
  }
  EXPECT_EQ(C->TextExtent(""), (TSize{0, 0}));
  EXPECT_GT(C->TextWidth("WW"), C->TextWidth("W"));
  // Sizes are remembered per font: every change of what decides them measures anew, and
  // going back gives the first size again, as a fresh canvas measures it.
  C->Font()->SetSize(12);
  const std::string Family = C->Font()->Name();
  const TSize Plain = C->TextExtent("Revenue 2024");
  C->Font()->SetStyle({fsBold});
  EXPECT_GT(C->TextExtent("Revenue 2024").cx, Plain.cx);
  C->Font()->SetStyle({});
  C->Font()->SetName("DejaVu Serif");
  EXPECT_NE(C->TextExtent("Revenue 2024"), Plain);
  C->Font()->SetName(Family);
  EXPECT_EQ(C->TextExtent("Revenue 2024"), Plain);
  const TOwned<TBitmap> Fresh = MakeBitmap(10, 10);
  Fresh->Canvas()->SetFont(C->Font());
  EXPECT_EQ(Fresh->Canvas()->TextExtent("Revenue 2024"), Plain);
  // A text first measured after the font came back is laid out in that font.
  EXPECT_EQ(C->TextExtent("Costs 2025"), Fresh->Canvas()->TextExtent("Costs 2025"));
}

// Texts are laid out once and drawn from then on; a turned text is the same text in the
// same font on its side, and turning it leaves the texts laid out before as they were.
TEST(Canvas, TurnedTextIsTheSameTextOnItsSide) {
  const auto Draw = [](const std::vector<int32_t>& Angles) {
    TOwned<TBitmap> B = MakeBitmap(120, 120);
    TCanvas* C = B->Canvas();
    C->Font()->SetSize(12);
    C->Font()->SetStyle({fsBold, fsUnderline});
    for (const int32_t Angle : Angles) {
      C->Font()->SetOrientation(Angle);
      C->TextOut(Angle == 0 ? 5 : 40, Angle == 0 ? 5 : 110, "Turned 42");
    }
    return B;
  };
  const TOwned<TBitmap> Flat = Draw({0}), Turned = Draw({90}), Both = Draw({0, 90, 0});
  const TRect F = PaintedBounds(Flat.get()), T = PaintedBounds(Turned.get());
  EXPECT_NEAR(T.Width(), F.Height(), 2);
  EXPECT_NEAR(T.Height(), F.Width(), 2);
  EXPECT_NEAR(CountPainted(Turned.get()), CountPainted(Flat.get()), CountPainted(Flat.get()) / 10);
  // The flat text drawn again after the turned one covers what it covered alone.
  EXPECT_EQ(test::CountPixels(Both.get(), F, [](TColor P) { return P != clWhite; }),
            CountPainted(Flat.get()));
}

TEST_F(CanvasFixture, TextPaintsInsideItsMeasuredBoxAndMovesThePen) {
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetColor(clBlack);
  const TSize S = C->TextExtent("Hello");
  C->TextOut(5, 8, "Hello");
  const TRect Ink = PaintedBounds(Bmp.get());
  EXPECT_FALSE(Ink.IsEmpty());
  EXPECT_GE(Ink.Left, 5);
  EXPECT_GE(Ink.Top, 8);
  EXPECT_LE(Ink.Right, 5 + S.cx);
  EXPECT_LE(Ink.Bottom, 8 + S.cy);
  EXPECT_EQ(C->PenPos(), (TPoint{5 + S.cx, 8}));
  TOwned<TBitmap> B = MakeBitmap(60, 40);
  B->Canvas()->Brush()->SetColor(clYellow);
  B->Canvas()->TextOut(4, 4, "Hello");
  EXPECT_EQ(PaintedBounds(B.get()), (TRect{4, 4, 4 + S.cx, 4 + S.cy})) << "opaque: the whole box";
}

TEST_F(CanvasFixture, TextRectClipsToItsRectangle) {
  C->Brush()->SetStyle(bsClear);
  C->TextRect({0, 0, 12, 40}, 2, 2, "A long text that does not fit");
  EXPECT_LE(PaintedBounds(Bmp.get()).Right, 12);
  C->Brush()->SetColor(clAqua);
  C->TextRect({30, 30, 40, 35}, 30, 30, "");
  EXPECT_EQ(C->Pixel(35, 32), clAqua) << "an opaque TextRect fills its rectangle";
}

TEST_F(CanvasFixture, BadTextIsDrawnWithoutFault) {
  const std::string Invalid = "ok\xff\xfe bad \xc3";
  const std::string WithNul("before\0after", 12);
  EXPECT_GT(C->TextWidth(Invalid), 0);
  EXPECT_EQ(C->TextWidth(WithNul), C->TextWidth("before"));
  C->TextOut(0, 0, Invalid);
  C->Font()->SetName("");
  EXPECT_EQ(C->Font()->Name(), "DejaVu Sans");
}

// Past MaxTextLength characters a text is cut before layout, between two characters: a
// longer text measures as its first MaxTextLength characters do, in one and in two bytes.
TEST_F(CanvasFixture, TextsLongerThanAnyCanvasShowsAreCutBeforeLayout) {
  const size_t Max = TCanvas::MaxTextLength;
  for (const std::string Glyph : {"i", "\xc3\xa9"}) {
    std::string Cut, Long;
    for (size_t I = 0; I < Max; ++I)
      Cut += Glyph;
    Long = Cut + Glyph + Glyph + "\xc3";
    const TSize AtMax = C->TextExtent(Cut);
    EXPECT_GT(AtMax.cx, 0);
    EXPECT_EQ(C->TextExtent(Long), AtMax) << Glyph;
    EXPECT_LT(C->TextExtent(Cut.substr(0, Cut.size() - Glyph.size())).cx, AtMax.cx) << Glyph;
  }
}

TEST(Canvas, MetricsDoNotDependOnTheSurface) {
  test::TTempDir Dir;
  TOwned<TCanvas> Svg = CreateSvgCanvas((Dir / "m.svg").string(), 100, 100);
  TOwned<TBitmap> B = MakeBitmap(10, 10);
  for (const char* Text : {"Axis title", "1,234.5", "Wg"})
    EXPECT_EQ(Svg->TextExtent(Text), B->Canvas()->TextExtent(Text)) << Text;
  Svg->Finish();
}

// --- Bitmaps on canvases ---

TEST_F(CanvasFixture, DrawAndStretchDrawCopyAndBlendBitmaps) {
  TOwned<TBitmap> Red = MakeBitmap(4, 4, clRed);
  C->Draw(2, 2, Red.get());
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{2, 2, 6, 6}));
  C->StretchDraw({10, 10, 30, 20}, Red.get());
  EXPECT_EQ(C->Pixel(10, 10), clRed);
  EXPECT_EQ(C->Pixel(29, 19), clRed);
  EXPECT_EQ(C->Pixel(30, 20), clWhite);
  C->Draw(40, 10, Red.get(), 0.5f);
  EXPECT_TRUE(test::Near(C->Pixel(41, 11), RGBToColor(255, 128, 128)));
  C->StretchDraw({50, 30, 40, 20}, Red.get()); // inverted: nothing
  C->Draw(0, 0, nullptr);
  EXPECT_EQ(C->Pixel(45, 25), clWhite);
}

TEST_F(CanvasFixture, TransparentBitmapsLeaveTheirKeyColourOut) {
  TOwned<TBitmap> Icon = MakeBitmap(6, 6, clLime);
  Icon->Canvas()->Brush()->SetColor(clBlue);
  Icon->Canvas()->FillRect({2, 2, 4, 4});
  Icon->SetTransparent(true);
  C->Draw(10, 10, Icon.get());
  EXPECT_EQ(PaintedBounds(Bmp.get()), (TRect{12, 12, 14, 14}));
}

TEST(Canvas, BindsToForeignImageSurfacesWithoutLosingItsSettings) {
  TOwned<TCanvas> C = MakeOwned<TCanvas>();
  C->Pen()->SetColor(clRed);
  C->Pen()->SetMode(pmXor);
  EXPECT_EQ(C->TextExtent("x").cy > 0, true) << "an unbound canvas still measures";
  cairo_surface_t* Rgb = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 20, 10);
  C->Bind(Rgb);
  cairo_surface_destroy(Rgb); // the canvas keeps its own reference
  C->MoveTo(0, 5);
  C->LineTo(20, 5);
  EXPECT_EQ(C->Pixel(3, 5), clRed) << "black XOR red; RGB24 has no alpha to divide by";
  C->MoveTo(0, 5);
  C->LineTo(20, 5);
  EXPECT_EQ(C->Pixel(3, 5), clBlack);
  cairo_surface_t* Mask = cairo_image_surface_create(CAIRO_FORMAT_A8, 20, 10);
  C->Bind(Mask);
  cairo_surface_destroy(Mask);
  EXPECT_EQ(C->Pen()->Color(), clRed);
  C->MoveTo(0, 5);
  C->LineTo(20, 5); // paints as pmCopy: the bytes cannot be combined in place
  C->DrawFocusRect({0, 0, 10, 10});
  EXPECT_EQ(C->Pixel(3, 5), clNone);
}

// --- Vector output ---

void DrawSample(TCanvas* C) {
  C->Brush()->SetColor(clRed);
  C->Rectangle(10, 10, 90, 60);
  C->Pen()->SetColor(clBlue);
  C->MoveTo(0, 70);
  C->LineTo(100, 70);
  C->Brush()->SetStyle(bsClear);
  C->TextOut(10, 75, "Vector");
}

std::string Slurp(const std::filesystem::path& P) {
  std::ifstream In(P, std::ios::binary);
  return {std::istreambuf_iterator<char>(In), {}};
}

TEST(Canvas, TheSameDrawingMakesValidSvgAndPdfFiles) {
  test::TTempDir Dir;
  const auto SvgPath = Dir / "sample.svg", PdfPath = Dir / "sample.pdf";
  {
    TOwned<TCanvas> Svg = CreateSvgCanvas(SvgPath.string(), 100, 100);
    EXPECT_EQ(Svg->SurfaceKind(), skSvg);
    DrawSample(Svg.get());
    Svg->Finish();
    TOwned<TCanvas> Pdf = CreatePdfCanvas(PdfPath.string(), 100, 100);
    DrawSample(Pdf.get());
    Pdf->Finish();
    Pdf->TextOut(0, 0, "after the end does nothing");
  }
  const std::string Svg = Slurp(SvgPath);
  EXPECT_EQ(Svg.rfind("<?xml", 0), 0u);
  EXPECT_NE(Svg.find("<svg"), std::string::npos);
  EXPECT_NE(Svg.find("</svg>"), std::string::npos);
  EXPECT_NE(Svg.find("width=\"100px\""), std::string::npos);
  const std::string Pdf = Slurp(PdfPath);
  EXPECT_EQ(Pdf.rfind("%PDF-", 0), 0u);
  EXPECT_NE(Pdf.find("%%EOF"), std::string::npos);
}

TEST(Canvas, AFileThatCannotBeCreatedIsNamedInTheError) {
  const std::string Bad = "/nonexistent-folder/x/out.svg";
  try {
    TOwned<TCanvas> Svg = CreateSvgCanvas(Bad, 10, 10);
    Svg->Finish();
    FAIL() << "no exception";
  } catch (const Exception& E) {
    EXPECT_NE(E.Message().find(Bad), std::string::npos) << E.Message();
  }
}

} // namespace
} // namespace kx
