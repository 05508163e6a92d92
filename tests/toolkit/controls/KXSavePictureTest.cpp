#include "kxcharts/toolkit/controls/KXSavePicture.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/controls/KXForms.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

std::string Text(const std::vector<uint8_t>& Bytes, size_t Count) {
  return std::string(Bytes.begin(), Bytes.begin() + std::min(Count, Bytes.size()));
}

TOwned<TBitmap> Decoded(const std::vector<uint8_t>& Png) {
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->LoadFromBytes(Png);
  return B;
}

// A frameless panel with a blue strip aligned to its right edge: a picture at another size
// shows whether the panel was laid out at that size.
struct TStripForm {
  TOwned<TForm> Form{New<TForm>(nullptr)};
  TPanel* Panel = New<TPanel>(Form.get());
  TPanel* Strip = New<TPanel>(Form.get());
  TStripForm() {
    Panel->SetName("Board");
    Panel->SetBevelOuter(bvNone);
    Panel->SetColor(clWhite);
    Panel->SetBounds(5, 7, 100, 50);
    Strip->SetParent(Panel);
    Strip->SetBevelOuter(bvNone);
    Strip->SetColor(clBlue);
    Strip->SetWidth(10);
    Strip->SetAlign(alRight);
  }
};

struct TKindCase {
  const char* FileName;
  TPictureKind Kind;
  const char* Starts; // what a file of the kind begins with
};

class SavePictureKinds : public testing::TestWithParam<TKindCase> {};

// Saving twice gives the same bytes, in memory and in the file: no date of making, and
// image and surface ids that do not count on from the last document.
TEST_P(SavePictureKinds, TheExtensionChoosesTheKindAndEverySaveHoldsTheSameBytes) {
  const TKindCase& C = GetParam();
  EXPECT_EQ(PictureKindOf(C.FileName), C.Kind);
  TOwned<TBitmap> Icon = test::MakeBitmap(8, 8, clBlue);
  const TPicturePainter Paint = [&Icon](TCanvas* Canvas) {
    Canvas->Brush()->SetColor(clRed);
    Canvas->FillRect({10, 10, 30, 20});
    Canvas->Draw(40, 4, Icon.get());
    Canvas->TextOut(2, 2, "Sales");
  };
  const std::vector<uint8_t> Bytes = SavePictureToBytes(Paint, 64, 32, C.Kind);
  EXPECT_EQ(Text(Bytes, std::string(C.Starts).size()), C.Starts);

  test::TTempDir Dir;
  SavePicture(Paint, 64, 32, Dir / C.FileName);
  std::ifstream In(Dir / C.FileName, std::ios::binary);
  const std::vector<uint8_t> Written{std::istreambuf_iterator<char>(In), {}};
  EXPECT_EQ(Written, Bytes);
  if (C.Kind == pkSvg) {
    const std::string Svg(Bytes.begin(), Bytes.end());
    EXPECT_NE(Svg.find("id=\"image1\""), std::string::npos) << Svg;
    EXPECT_NE(Svg.find("xlink:href=\"#image1\""), std::string::npos) << Svg;
  }
}

INSTANTIATE_TEST_SUITE_P(, SavePictureKinds,
                         testing::Values(TKindCase{"a.png", pkPng, "\x89PNG"},
                                         TKindCase{"B.PNG", pkPng, "\x89PNG"},
                                         TKindCase{"c.svg", pkSvg, "<?xml"},
                                         TKindCase{"d.Pdf", pkPdf, "%PDF"}));

TEST(SavePicture, AnUnknownExtensionSaysWhichOnesThereAre) {
  for (const char* Name : {"chart.jpeg", "chart", "png"}) {
    const std::string M = test::MessageOf<EInvalidGraphic>([&] { PictureKindOf(Name); });
    EXPECT_NE(M.find(Name), std::string::npos) << M;
    EXPECT_NE(M.find(".png, .svg or .pdf"), std::string::npos) << M;
  }
}

TEST(SavePicture, APngHoldsWhatWasPaintedAtItsSize) {
  const auto Png = Decoded(SavePictureToBytes(
      [](TCanvas* C) {
        EXPECT_EQ(C->Width(), 40);
        EXPECT_EQ(C->Height(), 30);
        C->Brush()->SetColor(clRed);
        C->FillRect({0, 0, 20, 30});
      },
      40, 30, pkPng));
  ASSERT_EQ(Png->Width(), 40);
  ASSERT_EQ(Png->Height(), 30);
  EXPECT_EQ(Png->Canvas()->Pixel(19, 29), clRed);
  EXPECT_EQ(Png->Canvas()->Pixel(20, 0), clWhite); // the picture starts white
}

TEST(SavePicture, AVectorPictureHasTheSizeInPixels) {
  const std::vector<uint8_t> Svg = SavePictureToBytes([](TCanvas*) {}, 321, 123, pkSvg);
  const std::string S(Svg.begin(), Svg.end());
  EXPECT_NE(S.find("width=\"321px\""), std::string::npos);
  EXPECT_NE(S.find("height=\"123px\""), std::string::npos);
}

TEST(SavePicture, SizesOutsideOneTo32767AreRefusedWithTheSizeGiven) {
  const TPicturePainter Nothing = [](TCanvas*) {};
  for (TPictureKind Kind : {pkPng, pkSvg, pkPdf})
    for (const TSize S : {TSize{0, 10}, TSize{10, -5}, TSize{40000, 10}}) {
      const std::string M =
          test::MessageOf<EInvalidGraphic>([&] { SavePictureToBytes(Nothing, S.cx, S.cy, Kind); });
      EXPECT_NE(M.find(std::to_string(S.cx) + " x " + std::to_string(S.cy)), std::string::npos)
          << M;
    }
  // Within the extent but more pixels than an image may hold.
  EXPECT_THROW(SavePictureToBytes(Nothing, 32767, 32767, pkPng), EInvalidGraphic);
}

TEST(SavePicture, AControlIsLaidOutAtTheSizeAskedAndGetsItsOwnBack) {
  TStripForm F;
  const auto Png = Decoded(SavePictureToBytes(F.Panel, pkPng, 200, 40));
  ASSERT_EQ(Png->Width(), 200);
  ASSERT_EQ(Png->Height(), 40);
  // The strip follows the right edge of the picture, not that of the panel's own size.
  EXPECT_EQ(Png->Canvas()->Pixel(195, 20), clBlue);
  EXPECT_EQ(Png->Canvas()->Pixel(95, 20), clWhite);
  EXPECT_EQ(F.Panel->BoundsRect(), (TRect{5, 7, 105, 57}));
  EXPECT_EQ(F.Strip->BoundsRect(), (TRect{90, 0, 100, 50}));

  // Without a size: the control's own, and its place on the form does not matter.
  const auto Own = Decoded(SavePictureToBytes(F.Panel, pkPng));
  EXPECT_EQ(Own->Width(), 100);
  EXPECT_EQ(Own->Canvas()->Pixel(95, 0), clBlue);
  EXPECT_EQ(Own->Canvas()->Pixel(0, 0), clWhite);
}

TEST(SavePicture, AGraphicControlIsSavedAlone) {
  TStripForm F;
  auto* Box = New<TPaintBox>(F.Form.get());
  Box->SetParent(F.Panel);
  Box->SetBounds(3, 3, 20, 10);
  Box->SetOnPaint([Box](TObject*) {
    Box->Canvas()->Brush()->SetColor(clLime);
    Box->Canvas()->FillRect({0, 0, 20, 10});
  });
  const auto Png = Decoded(SavePictureToBytes(Box, pkPng));
  ASSERT_EQ(Png->Width(), 20);
  EXPECT_EQ(test::CountPixels(Png.get(), [](TColor C) { return C == clLime; }), 200);
}

TEST(SavePicture, AControlWithoutASizeSaysWhichOneAndWhatToDo) {
  TStripForm F;
  F.Panel->SetBounds(0, 0, 0, 50);
  const std::string M =
      test::MessageOf<EInvalidGraphic>([&] { SavePictureToBytes(F.Panel, pkPng); });
  EXPECT_NE(M.find("Board"), std::string::npos) << M;
  EXPECT_NE(M.find("SetBounds"), std::string::npos) << M;
  EXPECT_NO_THROW(SavePictureToBytes(F.Panel, pkPng, 10, 10));
  EXPECT_THROW(SavePictureToBytes(nullptr, pkPng), EInvalidGraphic);
}

TEST(SavePicture, AControlWhosePaintRaisesStillGetsItsSizeBack) {
  TStripForm F;
  auto* Box = New<TPaintBox>(F.Form.get());
  Box->SetBounds(0, 0, 30, 30);
  Box->SetOnPaint([](TObject*) { throw Exception("paint failed"); });
  EXPECT_THROW(SavePictureToBytes(Box, pkSvg, 60, 60), Exception);
  EXPECT_EQ(Box->BoundsRect(), (TRect{0, 0, 30, 30}));
}

TEST(SavePicture, AFileThatCannotBeWrittenIsNamed) {
  test::TTempDir Dir;
  const auto Missing = Dir / "no-such-folder" / "chart.png";
  TStripForm F;
  const std::string M = test::MessageOf<EInvalidGraphic>([&] { SavePicture(F.Panel, Missing); });
  EXPECT_NE(M.find(Missing.string()), std::string::npos) << M;
}

} // namespace
} // namespace kx
