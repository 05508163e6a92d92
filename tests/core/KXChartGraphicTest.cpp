#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/core/KXChartLabel.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {

namespace {

// Counts the change reports of an element.
struct TChangeCounter {
  int Count = 0;
  void Attach(TKXChartGraphic* G) {
    G->SetOnChange([this](TObject*) { ++Count; });
  }
};

// --- The base: opacity, visibility, the drawing shape ---

TEST(ChartGraphic, OpacityIsClampedAndReportedWhenTheAskedValueDiffers) {
  const struct {
    float Set, Expected;
    int Changes;
  } Cases[] = {{2.0f, 1.0f, 1},
               {-1.0f, 0.0f, 1},
               {0.25f, 0.25f, 1},
               {1.0f, 1.0f, 0},
               {std::numeric_limits<float>::quiet_NaN(), 0.0f, 1},
               {std::numeric_limits<float>::infinity(), 1.0f, 1}};
  for (const auto& C : Cases) {
    auto Area = MakeOwned<TKXChartGraphicArea>();
    TChangeCounter Counter;
    Counter.Attach(Area.get());
    Area->SetOpacity(C.Set);
    EXPECT_FLOAT_EQ(Area->Opacity(), C.Expected) << C.Set;
    EXPECT_EQ(Counter.Count, C.Changes) << C.Set;
  }
}

TEST(ChartGraphic, ChangesOfTheBrushAndPenReachTheOwner) {
  auto Area = MakeOwned<TKXChartGraphicArea>();
  TChangeCounter C;
  C.Attach(Area.get());
  Area->Brush()->SetColor(clRed);
  Area->Pen()->SetWidth(3);
  EXPECT_EQ(C.Count, 2);
}

TEST(ChartGraphic, AnEmptyRectangleDrawsNothingButOnDrawingMayOverrule) {
  auto B = test::MakeBitmap(40, 40);
  auto Shadow = MakeOwned<TKXChartShadow>();
  std::vector<bool> Asked;
  int Drawn = 0;
  Shadow->SetOnDrawing(
      [&](TObject*, TCanvas*, const TRect&, bool& DoDraw) { Asked.push_back(DoDraw); });
  Shadow->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { ++Drawn; });
  for (TRect R : {TRect{10, 10, 10, 30}, TRect{10, 30, 30, 10}, TRect{INT32_MIN, 0, INT32_MAX, 0}})
    Shadow->Draw(B->Canvas(), R);
  EXPECT_EQ(Asked, std::vector<bool>({false, false, false}));
  EXPECT_EQ(Drawn, 0);
  EXPECT_EQ(test::CountPainted(B.get()), 0);

  Shadow->SetOnDrawing([](TObject*, TCanvas*, const TRect&, bool& DoDraw) { DoDraw = false; });
  Shadow->Draw(B->Canvas(), {0, 0, 30, 30});
  EXPECT_EQ(test::CountPainted(B.get()), 0);
  EXPECT_EQ(Drawn, 0);
}

TEST(ChartGraphic, DrawingSetsTheCanvasUpBeforeTheHandlerRuns) {
  auto B = test::MakeBitmap(10, 10);
  auto Area = MakeOwned<TKXChartGraphicArea>();
  Area->Brush()->SetColor(clLime);
  Area->Pen()->SetColor(clNavy);
  TColor SeenBrush = clNone, SeenPen = clNone;
  Area->SetOnDrawing([&](TObject*, TCanvas* C, const TRect&, bool&) {
    SeenBrush = C->Brush()->Color();
    SeenPen = C->Pen()->Color();
  });
  Area->Draw(B->Canvas(), {0, 0, 5, 5});
  EXPECT_EQ(SeenBrush, clLime);
  EXPECT_EQ(SeenPen, clNavy);
  EXPECT_THROW(Area->Draw(nullptr, {0, 0, 5, 5}), Exception);
}

TEST(ChartGraphic, FreeingReportsNoChange) {
  auto* Label = New<TKXChartLabel>();
  bool Reported = false;
  Label->SetOnChange([&](TObject*) { Reported = true; });
  Label->Free();
  EXPECT_FALSE(Reported);
}

// --- Labels ---

TEST(ChartLabel, AngleIsKeptModulo360AndTurnsTheFont) {
  auto Label = MakeOwned<TKXChartLabel>();
  TChangeCounter C;
  C.Attach(Label.get());
  Label->SetAngle(450);
  EXPECT_EQ(Label->Angle(), 90);
  EXPECT_EQ(Label->Font()->Orientation(), 90);
  Label->SetAngle(-90);
  EXPECT_EQ(Label->Angle(), -90);
  EXPECT_EQ(Label->Font()->Orientation(), 270);
  const int Before = C.Count;
  Label->SetAngle(-90); // equal: no change, the font turned again only
  EXPECT_EQ(C.Count, Before);
}

TEST(ChartLabel, SetFontKeepsTheLabelsAngle) {
  auto Label = MakeOwned<TKXChartLabel>();
  Label->SetAngle(90);
  auto F = MakeOwned<TFont>();
  F->SetSize(20);
  Label->SetFont(F.get());
  EXPECT_EQ(Label->Font()->Size(), 20);
  EXPECT_EQ(Label->Font()->Orientation(), 90);
}

TEST(ChartLabel, HiddenOrEmptyPaintsNothingYetRaisesOnDraw) {
  auto B = test::MakeBitmap(80, 40);
  int Drawn = 0;
  for (int Case = 0; Case < 3; ++Case) {
    auto Label = MakeOwned<TKXChartLabel>();
    Label->SetText(Case == 1 ? "" : "Text");
    if (Case == 0) Label->SetVisible(false);
    if (Case == 2) Label->SetOpacity(0);
    Label->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { ++Drawn; });
    Label->Draw(B->Canvas(), {0, 0, 80, 40});
  }
  EXPECT_EQ(Drawn, 3);
  EXPECT_EQ(test::CountPainted(B.get()), 0);
}

TEST(ChartLabel, WritesOnlyTheTextWhateverBrushTheCanvasHas) {
  auto B = test::MakeBitmap(120, 40);
  B->Canvas()->Brush()->SetColor(clLime);
  auto Label = MakeOwned<TKXChartLabel>();
  Label->SetText("Text");
  Label->Draw(B->Canvas(), {0, 0, 120, 40});
  EXPECT_GT(test::CountPainted(B.get()), 10);
  EXPECT_EQ(test::CountPixels(B.get(), [](TColor C) { return C == clLime; }), 0);
}

// The text lands in the box that the alignment gives its rotated extent.
TEST(ChartLabel, PutsTheRotatedTextBoxWhereTheAlignmentSays) {
  const std::pair<TAlignment, int32_t> Cases[] = {
      {taLeftJustify, 0},   {taRightJustify, 0}, {taCenter, 0},       {taLeftJustify, 90},
      {taRightJustify, 90}, {taCenter, 90},      {taLeftJustify, 45}, {taCenter, 180}};
  const TRect R{20, 30, 220, 190};
  for (const auto& [Alignment, Angle] : Cases) {
    SCOPED_TRACE(std::string(GetEnumName(Alignment)) + " at " + std::to_string(Angle));
    auto B = test::MakeBitmap(240, 220);
    auto Label = MakeOwned<TKXChartLabel>();
    Label->SetText("Wg Label");
    Label->Font()->SetSize(14);
    Label->SetAngle(Angle);
    Label->SetAlignment(Alignment);
    Label->Draw(B->Canvas(), R);

    B->Canvas()->SetFont(Label->Font());
    const TSize S = GetRotatedTextExtent(B->Canvas(), Label->Angle(), "Wg Label");
    const TPoint Box = Alignment == taLeftJustify    ? TPoint{R.Left, R.Top}
                       : Alignment == taRightJustify ? TPoint{R.Right - S.cx, R.Top}
                                                     : TPoint{120 - S.cx / 2, 110 - S.cy / 2};
    const TRect Painted = test::PaintedBounds(B.get());
    ASSERT_FALSE(Painted.IsEmpty());
    // Ink lies within the box (antialiasing may reach one pixel out), and fills most of it.
    EXPECT_GE(Painted.Left, Box.X - 1);
    EXPECT_GE(Painted.Top, Box.Y - 1);
    EXPECT_LE(Painted.Right, Box.X + S.cx + 1);
    EXPECT_LE(Painted.Bottom, Box.Y + S.cy + 1);
    EXPECT_GT(Painted.Width() * 10, S.cx * 5);
    EXPECT_GT(Painted.Height() * 10, S.cy * 5);
  }
}

// --- Shadow ---

TEST(ChartShadow, ShadowAndThingFillTheRectangleTogether) {
  const struct {
    TKXShadowDirection Direction;
    TRect Free, Constrained, Thing;
  } Cases[] = {{sdBottomRight, {3, 3, 103, 103}, {3, 3, 100, 100}, {0, 0, 97, 97}},
               {sdBottomLeft, {-3, 3, 97, 103}, {0, 3, 97, 100}, {3, 0, 100, 97}},
               {sdTopRight, {3, -3, 103, 97}, {3, 0, 100, 97}, {0, 3, 97, 100}},
               {sdTopLeft, {-3, -3, 97, 97}, {0, 0, 97, 97}, {3, 3, 100, 100}}};
  const TRect R{0, 0, 100, 100};
  for (const auto& C : Cases) {
    SCOPED_TRACE(GetEnumName(C.Direction));
    auto Shadow = MakeOwned<TKXChartShadow>();
    Shadow->SetDirection(C.Direction);
    EXPECT_EQ(Shadow->ShadowRect(R, false), C.Free);
    EXPECT_EQ(Shadow->ShadowRect(R, true), C.Constrained);
    EXPECT_EQ(Shadow->NonShadowRect(R, true), C.Thing);
    EXPECT_EQ(Shadow->NonShadowRect(R, false), R);
  }
}

TEST(ChartShadow, AThickPenCastsALongerShadow) {
  auto B = test::MakeBitmap(4, 4);
  auto Shadow = MakeOwned<TKXChartShadow>();
  B->Canvas()->Pen()->SetWidth(2);
  EXPECT_EQ(Shadow->ShadowRect({0, 0, 100, 100}, false, B->Canvas()), (TRect{4, 4, 104, 104}));
  B->Canvas()->Pen()->SetWidth(0); // the hairline paints one pixel wide
  EXPECT_EQ(Shadow->ShadowRect({0, 0, 100, 100}, false, B->Canvas()), (TRect{3, 3, 103, 103}));
}

TEST(ChartShadow, HugeRectanglesAndOffsetsSaturate) {
  auto Shadow = MakeOwned<TKXChartShadow>();
  Shadow->SetSize(INT32_MAX);
  const TRect R = Shadow->ShadowRect({0, 0, INT32_MAX, INT32_MAX}, false);
  EXPECT_EQ(R.Right, INT32_MAX);
  Shadow->SetDirection(sdTopLeft);
  EXPECT_EQ(Shadow->ShadowRect({INT32_MIN, INT32_MIN, 0, 0}, false).Left, INT32_MIN);
}

TEST(ChartShadow, ImageStyleIsStoredAsRectangle) {
  auto Shadow = MakeOwned<TKXChartShadow>();
  Shadow->SetStyle(shpEllipse);
  EXPECT_EQ(Shadow->Style(), shpEllipse);
  Shadow->SetStyle(shpImage);
  EXPECT_EQ(Shadow->Style(), shpRectangle);
}

TEST(ChartShadow, PaintsItsBrushOnTheConstrainedShadowOnly) {
  auto B = test::MakeBitmap(80, 80);
  auto Shadow = MakeOwned<TKXChartShadow>();
  Shadow->Draw(B->Canvas(), {10, 10, 60, 60});
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{13, 13, 60, 60}));
  EXPECT_EQ(B->Canvas()->Pixel(40, 40), clBlack);
}

TEST(ChartShadow, StyledDrawPutsStyleAndOpacityBackAlsoWhenAHandlerRaises) {
  auto B = test::MakeBitmap(80, 80);
  auto Shadow = MakeOwned<TKXChartShadow>();
  Shadow->SetOpacity(0.8f);
  float SeenOpacity = -1;
  Shadow->SetOnDraw([&](TObject*, TCanvas*, const TRect&) { SeenOpacity = Shadow->Opacity(); });
  Shadow->Draw(B->Canvas(), {10, 10, 70, 70}, shpEllipse3D, 1.0f);
  EXPECT_FLOAT_EQ(SeenOpacity, 1.0f);
  EXPECT_EQ(Shadow->Style(), shpRectangle);
  EXPECT_FLOAT_EQ(Shadow->Opacity(), 0.8f);
  // An ellipse: the corners of the shadow rectangle stay white, its middle is black.
  EXPECT_EQ(B->Canvas()->Pixel(14, 14), clWhite);
  EXPECT_EQ(B->Canvas()->Pixel(41, 41), clBlack);

  Shadow->SetOnDrawing([](TObject*, TCanvas*, const TRect&, bool&) { throw Exception("no"); });
  EXPECT_THROW(Shadow->Draw(B->Canvas(), {0, 0, 10, 10}, shpDiamond, 0.5f), Exception);
  EXPECT_EQ(Shadow->Style(), shpRectangle);
  EXPECT_FLOAT_EQ(Shadow->Opacity(), 0.8f);
}

// --- Gradient ---

TEST(ChartGradient, StartsVisibleYellowToWhiteFromTheTop) {
  auto G = MakeOwned<TKXChartGradient>();
  G->SetCoarseness(0);
  EXPECT_EQ(G->Coarseness(), 1);
  G->SetCoarseness(-7);
  EXPECT_EQ(G->Coarseness(), 1);
  auto B = test::MakeBitmap(20, 100, clBlack);
  G->Draw(B->Canvas(), {0, 0, 20, 100});
  EXPECT_TRUE(test::Near(B->Canvas()->Pixel(10, 0), clYellow, 6));
  EXPECT_TRUE(test::Near(B->Canvas()->Pixel(10, 99), clWhite, 6));
  EXPECT_TRUE(test::Near(B->Canvas()->Pixel(10, 50), RGBToColor(255, 255, 128), 8));
}

// --- Image area ---

TEST(ChartImageArea, NewlySwitchedOnOptionsWin) {
  struct TCase {
    TImageOptions From, To, Expected;
  };
  const TCase Cases[] = {
      {{ioCenter, ioProportional}, {ioCenter, ioProportional, ioTile}, {ioProportional, ioTile}},
      {{ioCenter, ioProportional}, {ioCenter, ioProportional, ioStretch}, {ioStretch}},
      {{ioStretch}, {ioStretch, ioProportional}, {ioProportional}},
      {{ioTile}, {ioTile, ioCenter}, {ioCenter}},
      {{ioStretch}, {ioStretch, ioTile}, {ioTile}},
      {{ioTile, ioProportional},
       {ioTile, ioProportional, ioTransparent},
       {ioTile, ioProportional, ioTransparent}},
      {{ioCenter, ioProportional}, {}, {}},
  };
  for (const TCase& C : Cases) {
    auto A = MakeOwned<TKXChartImageArea>();
    A->SetImageOptions(C.From);
    ASSERT_EQ(A->ImageOptions(), C.From);
    A->SetImageOptions(C.To);
    EXPECT_EQ(A->ImageOptions().Bits(), C.Expected.Bits()) << "to " << C.To.Bits();
  }
}

TEST(ChartImageArea, DestRectPlacesThePictureByItsOptions) {
  const struct {
    int32_t W, H;
    TImageOptions Options;
    TRect Expected;
  } Cases[] = {// its own size, at the top left or centred
               {40, 20, {}, {10, 20, 50, 40}},
               {40, 20, {ioCenter}, {40, 60, 80, 80}},
               // proportional and smaller keeps the picture's size
               {40, 20, {ioProportional}, {10, 20, 50, 40}},
               {40, 20, {ioCenter, ioProportional}, {40, 60, 80, 80}},
               // proportional and larger fits the rectangle at the picture's proportions
               {200, 100, {ioProportional}, {10, 20, 110, 70}},
               {200, 100, {ioCenter, ioProportional}, {10, 45, 110, 95}},
               {100, 300, {ioCenter, ioProportional}, {43, 20, 76, 120}},
               {150, 150, {ioCenter, ioProportional}, {10, 20, 110, 120}},
               // stretched fills the rectangle
               {40, 20, {ioStretch}, {10, 20, 110, 120}},
               // tiles take the picture's size
               {40, 20, {ioTile}, {10, 20, 50, 40}},
               {40, 20, {ioTile, ioProportional}, {10, 20, 50, 40}},
               {400, 200, {ioTile, ioProportional}, {10, 20, 110, 70}}};
  for (const auto& C : Cases) {
    SCOPED_TRACE(std::to_string(C.W) + " x " + std::to_string(C.H) + " options " +
                 std::to_string(C.Options.Bits()));
    auto A = MakeOwned<TKXChartImageArea>();
    auto Pic = test::MakeBitmap(C.W, C.H, clRed);
    A->Image()->SetGraphic(Pic.get());
    A->SetImageOptions({});
    A->SetImageOptions(C.Options);
    ASSERT_EQ(A->ImageOptions(), C.Options);
    EXPECT_EQ(A->DestRect({10, 20, 110, 120}), C.Expected);
  }
}

TEST(ChartImageArea, DestRectOfAnEmptyOrInvertedRectangleIsDefined) {
  auto A = MakeOwned<TKXChartImageArea>();
  auto Pic = test::MakeBitmap(30, 10, clRed);
  A->Image()->SetGraphic(Pic.get());
  EXPECT_EQ(A->DestRect({0, 0, 0, 0}), (TRect{0, 0, 0, 0}));
  A->SetImageOptions({});
  EXPECT_EQ(A->DestRect({INT32_MIN, 0, INT32_MAX, 100}), (TRect{INT32_MIN, 0, INT32_MIN + 30, 10}));
  auto None = MakeOwned<TKXChartImageArea>();
  EXPECT_EQ(None->DestRect({0, 0, 100, 100}), (TRect{50, 50, 50, 50}));
}

TEST(ChartImageArea, TransparencyFollowsTheOptionWhateverComesFirst) {
  auto A = MakeOwned<TKXChartImageArea>();
  auto Pic = test::MakeBitmap(4, 4, clRed);
  A->Image()->SetGraphic(Pic.get());
  EXPECT_FALSE(A->Image()->Graphic()->Transparent());
  A->SetImageOptions(A->ImageOptions() + ioTransparent);
  EXPECT_TRUE(A->Image()->Graphic()->Transparent());
  A->Image()->SetGraphic(Pic.get()); // a new picture takes the option too
  EXPECT_TRUE(A->Image()->Graphic()->Transparent());
}

TEST(ChartImageArea, TilesCoverTheRectangleAndStayInIt) {
  auto B = test::MakeBitmap(60, 60);
  auto A = MakeOwned<TKXChartImageArea>();
  auto Pic = test::MakeBitmap(10, 7, clRed);
  A->Image()->SetGraphic(Pic.get());
  A->SetImageOptions({ioTile});
  const TRect R{5, 5, 38, 31};
  A->Draw(B->Canvas(), R);
  EXPECT_EQ(test::CountPixels(B.get(), R, [](TColor C) { return C == clRed; }), 33 * 26);
  EXPECT_EQ(test::PaintedBounds(B.get()), R);
}

TEST(ChartImageArea, TilingAHugeRectangleCostsOnlyTheVisibleTiles) {
  auto B = test::MakeBitmap(30, 30);
  auto Pic = test::MakeBitmap(1, 1, clBlue);
  // 2^62 tiles in all; only the 900 on the bitmap are drawn.
  TKXChartGraphic::TiledDraw(B->Canvas(), {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, Pic.get(),
                             INT32_MIN, INT32_MIN);
  EXPECT_EQ(test::CountPixels(B.get(), [](TColor C) { return C == clBlue; }), 900);
  auto Nothing = test::MakeBitmap(10, 10);
  TKXChartGraphic::TiledDraw(Nothing->Canvas(), {0, 0, 10, 10}, Pic.get(), 0, 5, 0, 0);
  TKXChartGraphic::TiledDraw(Nothing->Canvas(), {0, 0, 10, 10}, Pic.get(), TRect{0, 0, 4, -4});
  EXPECT_EQ(test::CountPainted(Nothing.get()), 0);
}

// --- Header ---

TEST(ChartHeader, HeightIsAtLeastTheFontHeight) {
  auto H = MakeOwned<TKXChartHeader>();
  H->Font()->SetHeight(30); // a cell height of 30 pixels
  H->SetHeight(12);
  EXPECT_EQ(H->Height(), 30);
  H->SetHeight(40);
  EXPECT_EQ(H->Height(), 40);
}

TEST(ChartHeader, HeaderAndFooterPaintTheirTextInTheirBand) {
  for (bool IsHeader : {true, false}) {
    auto B = test::MakeBitmap(200, 120);
    auto H = MakeOwned<TKXChartHeader>(nullptr, IsHeader);
    H->SetText("Title");
    H->Draw(B->Canvas(), {0, 0, 200, 120});
    const TRect P = test::PaintedBounds(B.get());
    ASSERT_FALSE(P.IsEmpty());
    const TRect Band = IsHeader ? TRect{0, 0, 200, 24} : TRect{0, 96, 200, 120};
    EXPECT_GE(P.Top, Band.Top);
    EXPECT_LE(P.Bottom, Band.Bottom);
    EXPECT_NEAR((P.Left + P.Right) / 2, 100, 2);
    const TColor Ink = IsHeader ? clBlue : clRed;
    EXPECT_GT(test::CountPixels(B.get(), [&](TColor C) { return test::Near(C, Ink, 60); }), 5);
  }
}

TEST(ChartHeader, TextIsClippedToTheBandAndAlignedByAlignment) {
  auto B = test::MakeBitmap(200, 100);
  auto H = MakeOwned<TKXChartHeader>(nullptr, true);
  H->SetText("Left");
  H->Font()->SetSize(30); // taller than the band of 24
  H->SetAlignment(taLeftJustify);
  H->Draw(B->Canvas(), {10, 10, 190, 90});
  const TRect P = test::PaintedBounds(B.get());
  EXPECT_GE(P.Top, 10);
  EXPECT_LE(P.Bottom, 34);
  EXPECT_LE(P.Left, 14);

  auto R = test::MakeBitmap(200, 100);
  H->SetAlignment(taRightJustify);
  H->Font()->SetSize(8);
  H->Draw(R->Canvas(), {10, 10, 190, 90});
  EXPECT_GE(test::PaintedBounds(R.get()).Right, 186);
  EXPECT_LE(test::PaintedBounds(R.get()).Right, 190);
}

TEST(ChartHeader, PictureFillsTheBand) {
  auto B = test::MakeBitmap(100, 100);
  auto H = MakeOwned<TKXChartHeader>(nullptr, false);
  auto Pic = test::MakeBitmap(5, 5, clTeal);
  H->Image()->SetGraphic(Pic.get());
  H->Draw(B->Canvas(), {0, 0, 100, 100});
  EXPECT_EQ(test::PaintedBounds(B.get()), (TRect{0, 76, 100, 100}));
}

// --- Assign and the stored form ---

TEST(ChartGraphicAssign, ShadowAndHeaderCopyAllButStyleAndWhichBandAndAcrossKindsLittle) {
  auto A = MakeOwned<TKXChartShadow>();
  A->SetSize(7);
  A->SetDirection(sdTopLeft);
  A->SetVisible(false);
  A->SetOpacity(0.5f);
  A->Brush()->SetColor(clGray);
  A->SetStyle(shpStar);
  auto B = MakeOwned<TKXChartShadow>();
  TChangeCounter C;
  C.Attach(B.get());
  B->Assign(A.get());
  EXPECT_EQ(test::Stored(B.get()), test::Stored(A.get()));
  EXPECT_EQ(B->Style(), shpRectangle) << "the style is the owner's to set";
  EXPECT_EQ(C.Count, 1); // the brush reported its own change; Assign added none

  auto H = MakeOwned<TKXChartHeader>(nullptr, true);
  H->SetText("Sales");
  H->SetAngle(90);
  H->SetAlignment(taRightJustify);
  H->SetHeight(40);
  H->SetWidth(77);
  H->SetImageOptions({ioTile});
  auto Pic = test::MakeBitmap(3, 2, clRed);
  H->Image()->SetGraphic(Pic.get());
  auto Footer = MakeOwned<TKXChartHeader>(nullptr, false);
  Footer->Assign(H.get());
  EXPECT_FALSE(Footer->IsHeader());
  EXPECT_EQ(Footer->Text(), "Sales");
  EXPECT_EQ(Footer->Angle(), 90);
  EXPECT_EQ(Footer->Font()->Orientation(), 90);
  EXPECT_EQ(Footer->Font()->Color(), clBlue);
  EXPECT_EQ(Footer->Alignment(), taRightJustify);
  EXPECT_EQ(Footer->Height(), 40);
  EXPECT_EQ(Footer->Width(), 77);
  EXPECT_EQ(Footer->ImageOptions(), TImageOptions{ioTile});
  EXPECT_EQ(Footer->Image()->Width(), 3);

  // Across kinds only visibility and opacity travel.
  auto G = MakeOwned<TKXChartGradient>();
  G->SetVisible(false);
  G->SetOpacity(0.3f);
  auto L = MakeOwned<TKXChartLabel>();
  L->SetText("kept");
  L->Assign(G.get());
  EXPECT_FALSE(L->Visible());
  EXPECT_FLOAT_EQ(L->Opacity(), 0.3f);
  EXPECT_EQ(L->Text(), "kept");
  auto F = MakeOwned<TFont>();
  EXPECT_EQ(test::MessageOf<EConvertError>([&] { L->Assign(F.get()); }),
            "Cannot assign a TFont to a TKXChartLabel");
}

TEST(ChartGraphicStreaming, ElementsRoundTripWithPictureAndFontsAndBadPicturesAreRefused) {
  auto Form = MakeOwned<test::TPartsForm>(nullptr);
  Form->SetName("Form1");
  auto* Header = Form->Add<TKXChartHeader>("Header", nullptr, true);
  auto* Shadow = Form->Add<TKXChartShadow>("Shadow");
  auto* Gradient = Form->Add<TKXChartGradient>("Gradient");
  auto* Title = Form->Add<TKXChartLabel>("Title");
  auto* Labels = Form->Add<TKXChartLabelMetaData>("Labels");
  Header->SetText("Quarterly");
  Header->Font()->SetColor(clWindowText); // equal to a fresh font's: still stored
  Header->Brush()->SetColor(clWhite);
  Header->SetImageOptions({ioTile, ioTransparent});
  auto Pic = test::MakeBitmap(3, 2, RGBToColor(10, 20, 30));
  Header->Image()->SetGraphic(Pic.get());
  Shadow->SetSize(6);
  Shadow->SetDirection(sdTopRight);
  Gradient->SetDirection(gdRadial);
  Gradient->SetVisible(false);
  Title->SetText("Volume");
  Title->SetAngle(90);
  Labels->SetAlignment(taLeftJustify);
  Labels->SetOpacity(0.5f);
  std::string Json;
  auto Copy = test::RoundTrip(Form.get(), &Json);
  EXPECT_EQ(Json.find("\"Coarseness\""), std::string::npos) << "defaults stay out";
  test::ExpectStored(Json, {"Text", "Color", "ImageOptions", "Data", "Size", "Direction", "Visible",
                            "Angle", "Alignment", "Opacity"});
  auto* H = Copy->Part<TKXChartHeader>(0);
  EXPECT_EQ(H->Image()->Bitmap()->Canvas()->Pixel(2, 1), RGBToColor(10, 20, 30));
  EXPECT_TRUE(H->Image()->Graphic()->Transparent());
  EXPECT_EQ(Copy->Part<TKXChartLabel>(3)->Font()->Orientation(), 90);

  const size_t At = Json.find("\"Data\": \"") + 9;
  Json.replace(At, 4, "!!!!");
  auto Bad = Form->Fresh();
  EXPECT_NE(test::MessageOf<EFilerError>([&] {
              LoadFormFromString(Bad.get(), Json);
            }).find("Header.Image.Data"),
            std::string::npos);
  EXPECT_EQ(Bad->Part<TKXChartHeader>(0)->Image()->Graphic(), nullptr);
}

} // namespace

} // namespace kx
