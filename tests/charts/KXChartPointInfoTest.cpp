#include "kxcharts/charts/KXChartPointInfo.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::CountPixels;
using test::MakeBitmap;

// --- Defaults ---

TEST(ChartPointInfo, APointIs10By10AndAShape25By25EachInTheNextChartColour) {
  ColorListIndex = 4;
  auto Point = MakeOwned<TKXChartPointInfo>();
  auto Shape = MakeOwned<TKXDefaultShape>();
  EXPECT_EQ(Point->Owner(), nullptr);
  EXPECT_EQ(Point->Width(), 10);
  EXPECT_EQ(Point->Height(), 10);
  EXPECT_EQ(Point->Brush()->Color(), DefaultColorList[4]);
  EXPECT_EQ(Shape->Width(), 25);
  EXPECT_EQ(Shape->Height(), 25);
  EXPECT_EQ(Shape->Brush()->Color(), DefaultColorList[5]);
  EXPECT_EQ(Shape->Alignment(), tdMiddleCenter);
  EXPECT_EQ(Shape->Style(), shpRectangle);
  EXPECT_EQ(Shape->DefaultStyle(), shpRectangle);
}

// --- Setters ---

struct TSetterCase {
  const char* Name;
  std::function<void(TKXDefaultShape*)> Set;
  std::function<bool(const TKXDefaultShape*)> Holds;
  int Changes;
};

TEST(ChartPointInfo, SettersClampRefuseTheImageAsDefaultAndReportOnlyRealChanges) {
  const TSetterCase Cases[] = {
      {"negative width becomes 0", [](auto* S) { S->SetWidth(-3); },
       [](auto* S) { return S->Width() == 0; }, 1},
      {"negative height becomes 0", [](auto* S) { S->SetHeight(-1); },
       [](auto* S) { return S->Height() == 0; }, 1},
      {"the same width is no change", [](auto* S) { S->SetWidth(25); },
       [](auto* S) { return S->Width() == 25; }, 0},
      {"the image is no default style", [](auto* S) { S->SetDefaultStyle(shpImage); },
       [](auto* S) { return S->DefaultStyle() == shpRectangle; }, 0},
      {"another default style", [](auto* S) { S->SetDefaultStyle(shpStar); },
       [](auto* S) { return S->DefaultStyle() == shpStar; }, 1},
      {"the image is a style", [](auto* S) { S->SetStyle(shpImage); },
       [](auto* S) { return S->Style() == shpImage; }, 1},
      {"alignment", [](auto* S) { S->SetAlignment(tdBottomRight); },
       [](auto* S) { return S->Alignment() == tdBottomRight; }, 1},
      {"the font reports through the shape", [](auto* S) { S->Font()->SetColor(clRed); },
       [](auto* S) { return S->Font()->Color() == clRed; }, 1},
      {"the brush reports through the shape", [](auto* S) { S->Brush()->SetColor(clLime); },
       [](auto* S) { return S->Brush()->Color() == clLime; }, 1},
  };
  for (const TSetterCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    auto Shape = MakeOwned<TKXDefaultShape>();
    int Changes = 0;
    Shape->SetOnChange([&](TObject* Sender) {
      EXPECT_EQ(Sender, Shape.get());
      ++Changes;
    });
    C.Set(Shape.get());
    EXPECT_TRUE(C.Holds(Shape.get()));
    EXPECT_EQ(Changes, C.Changes);
  }
}

// --- Assign ---

TEST(ChartPointInfo, AssignCopiesSizeStylesAndAreaAndTheShapeAlsoItsLabelSettings) {
  auto Source = MakeOwned<TKXDefaultShape>();
  Source->SetWidth(7);
  Source->SetHeight(9);
  Source->SetStyle(shpImage);
  Source->SetDefaultStyle(shpEllipse);
  Source->SetAlignment(tdTopLeft);
  Source->Font()->SetSize(21);
  Source->Brush()->SetColor(clOlive);
  Source->Pen()->SetColor(clPurple);
  Source->SetOpacity(0.25f);

  auto Shape = MakeOwned<TKXDefaultShape>();
  Shape->Assign(Source.get());
  EXPECT_EQ(test::Stored(Shape.get()), test::Stored(Source.get()));

  // A plain point takes what a point has; a shape from a plain point keeps its label.
  auto Point = MakeOwned<TKXChartPointInfo>();
  Point->Assign(Source.get());
  EXPECT_EQ(Point->Width(), 7);
  EXPECT_EQ(Point->DefaultStyle(), shpEllipse);
  auto Other = MakeOwned<TKXDefaultShape>();
  Other->Assign(Point.get());
  EXPECT_EQ(Other->Width(), 7);
  EXPECT_EQ(Other->Alignment(), tdMiddleCenter);
  EXPECT_NE(Other->Font()->Size(), 21);
}

// --- Drawing ---

constexpr TColor Fill = static_cast<TColor>(0x0000C0);

bool IsFill(TColor C) {
  return test::Near(C, Fill, 8);
}

TEST(ChartPointInfo, DrawPaintsTheShapeInsideItsRectangleInItsOwnBrush) {
  auto Point = MakeOwned<TKXChartPointInfo>();
  Point->Brush()->SetColor(Fill);
  Point->Pen()->SetColor(clBlack);
  auto Bitmap = MakeBitmap(60, 60);
  Point->Draw(Bitmap->Canvas(), {10, 10, 50, 50});
  EXPECT_TRUE(IsFill(Bitmap->Canvas()->Pixel(30, 30)));
  EXPECT_TRUE(IsFill(Bitmap->Canvas()->Pixel(14, 14))) << "a rectangle fills its corners";
  EXPECT_EQ(CountPixels(Bitmap.get(), {0, 0, 60, 9}, [](TColor C) { return C != clWhite; }), 0);
  EXPECT_EQ(CountPixels(Bitmap.get(), {51, 0, 60, 60}, [](TColor C) { return C != clWhite; }), 0);
}

TEST(ChartPointInfo, DrawPointAtOpacityZeroDrawsNothingAndOtherwiseDrawsWhole) {
  auto Point = MakeOwned<TKXChartPointInfo>();
  for (float Opacity : {0.0f, 0.3f, 1.0f}) {
    SCOPED_TRACE(Opacity);
    auto Bitmap = MakeBitmap(40, 40);
    TCanvas* C = Bitmap->Canvas();
    C->Brush()->SetColor(Fill);
    C->Pen()->SetColor(Fill);
    Point->DrawPoint(C, {5, 5, 35, 35}, Opacity, nullptr, -1);
    // The caller's canvas decides the look; the opacity only says whether to draw.
    EXPECT_EQ(IsFill(C->Pixel(20, 20)), Opacity != 0.0f);
  }
}

TEST(ChartPointInfo, ThePictureOfTheImageListStandsInForTheShape) {
  auto Images = MakeOwned<TImageList>(nullptr);
  Images->SetSize(8, 8);
  auto Picture = MakeBitmap(8, 8, clLime);
  Images->Add(Picture.get());
  auto Point = MakeOwned<TKXChartPointInfo>();
  Point->SetStyle(shpImage);
  auto Bitmap = MakeBitmap(40, 40);
  Bitmap->Canvas()->Brush()->SetColor(Fill);
  Point->DrawPoint(Bitmap->Canvas(), {4, 4, 36, 36}, 1.0f, Images.get(), 0);
  EXPECT_TRUE(test::Near(Bitmap->Canvas()->Pixel(20, 20), clLime, 8));
  // An index outside the list falls back to the default style in the canvas's brush.
  Point->SetDefaultStyle(shpEllipse);
  Point->DrawPoint(Bitmap->Canvas(), {4, 4, 36, 36}, 1.0f, Images.get(), 3);
  EXPECT_TRUE(IsFill(Bitmap->Canvas()->Pixel(20, 20)));
  EXPECT_TRUE(test::Near(Bitmap->Canvas()->Pixel(6, 6), clLime, 8))
      << "the ellipse leaves the corner of the picture before it";
}

// --- Stored properties ---

TEST(ChartPointInfoStreaming, EverySettingComesBackAndASizeOfZeroStaysZero) {
  auto Form = MakeOwned<test::TPartsForm>(nullptr);
  Form->SetName("Form1");
  auto* Point = Form->Add<TKXChartPointInfo>("Point");
  auto* Shape = Form->Add<TKXDefaultShape>("Shape");
  Point->SetWidth(0);
  Point->SetHeight(14);
  Point->SetStyle(shpDiamond);
  Point->Pen()->SetColor(clRed);
  Shape->SetDefaultStyle(shpHexagon);
  Shape->SetAlignment(tdBottomCenter);
  Shape->Font()->SetColor(clTeal);
  std::string Json;
  auto Copy = test::RoundTrip(Form.get(), &Json);
  test::ExpectStored(Json, {"Width", "Height", "Style", "Color", "DefaultStyle", "Alignment"});
  EXPECT_EQ(Copy->Part<TKXChartPointInfo>(0)->Width(), 0);
  EXPECT_EQ(Copy->Part<TKXDefaultShape>(1)->Width(), 25);
}

} // namespace
} // namespace kx
