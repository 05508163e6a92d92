#include "kxcharts/toolkit/KXBitmap.h"

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/KXBitmapProbe.h"
#include "tests/support/KXTestSupport.h"

namespace kx {
namespace {

using test::MakeBitmap;

void WriteBytes(const std::filesystem::path& P, const std::vector<uint8_t>& Bytes) {
  std::ofstream Out(P, std::ios::binary);
  Out.write(reinterpret_cast<const char*>(Bytes.data()), std::streamsize(Bytes.size()));
}

// Runs F and returns the message of the EInvalidGraphic it raises ("" when none).
template <class F> std::string ErrorOf(F&& Fn) {
  try {
    Fn();
  } catch (const EInvalidGraphic& E) {
    return E.Message();
  }
  return "";
}

TEST(Bitmap, SetSizeKeepsSharedPixelsWhitensNewOnesAndClamps) {
  TOwned<TBitmap> B = MakeBitmap(10, 10, clRed);
  int Changes = 0;
  B->SetOnChange([&](TObject*) { ++Changes; });
  B->SetSize(20, 5);
  EXPECT_EQ(Changes, 1);
  EXPECT_EQ(B->Canvas()->Pixel(9, 4), clRed);
  EXPECT_EQ(B->Canvas()->Pixel(10, 4), clWhite);
  B->SetSize(20, 5);
  EXPECT_EQ(Changes, 1) << "the same size changes nothing";
  B->SetSize(-3, 1 << 30);
  EXPECT_EQ(B->Width(), 0);
  EXPECT_EQ(B->Height(), TBitmap::MaxExtent);
  EXPECT_TRUE(B->Empty());
  EXPECT_THROW(B->SetSize(TBitmap::MaxExtent, TBitmap::MaxExtent), EInvalidGraphic);
}

TEST(Bitmap, PngRoundTripsThroughFilesAndBytes) {
  test::TTempDir Dir;
  TOwned<TBitmap> B = MakeBitmap(7, 5, clNavy);
  B->Canvas()->SetPixel(3, 2, clYellow);
  const std::string File = (Dir / "b.png").string();
  B->SaveToFile(File);
  TOwned<TBitmap> C = MakeOwned<TBitmap>();
  TCanvas* Canvas = C->Canvas();
  C->LoadFromFile(File);
  EXPECT_EQ(C->Canvas(), Canvas);
  EXPECT_EQ(test::PixelBytes(C.get()), test::PixelBytes(B.get()));
  TOwned<TBitmap> D = MakeOwned<TBitmap>();
  D->LoadFromBytes(B->SaveToBytes());
  EXPECT_EQ(D->Canvas()->Pixel(3, 2), clYellow);
}

TEST(Bitmap, UnreadableFilesRaiseAnErrorThatNamesThem) {
  test::TTempDir Dir;
  TOwned<TBitmap> Good = MakeBitmap(4, 4, clRed);
  std::vector<uint8_t> Png = Good->SaveToBytes();
  std::vector<uint8_t> Truncated(Png.begin(), Png.begin() + Png.size() / 2);
  std::vector<uint8_t> Huge = Png;
  Huge[16] = 0x7F; // width 2^31 - ...: the header lies
  std::vector<uint8_t> Junk(500, 0x42);
  const std::pair<const char*, std::vector<uint8_t>> Cases[] = {
      {"empty.png", {}}, {"junk.png", Junk}, {"cut.png", Truncated}, {"huge.png", Huge}};
  for (const auto& [Name, Bytes] : Cases) {
    const std::string File = (Dir / Name).string();
    WriteBytes(File, Bytes);
    TOwned<TBitmap> B = MakeBitmap(3, 3, clLime);
    const std::string Message = ErrorOf([&] { B->LoadFromFile(File); });
    EXPECT_NE(Message.find(File), std::string::npos) << Name << ": " << Message;
    EXPECT_EQ(B->Width(), 3) << Name << ": a failed load leaves the bitmap as it was";
    EXPECT_EQ(B->Canvas()->Pixel(1, 1), clLime);
  }
  const std::string Missing = (Dir / "missing.png").string();
  EXPECT_NE(ErrorOf([&] { Good->LoadFromFile(Missing); }).find(Missing), std::string::npos);
  EXPECT_NE(ErrorOf([&] { Good->LoadFromFile(Dir.Path().string()); }), "");
  EXPECT_NE(ErrorOf([&] { Good->LoadFromBytes(Junk); }), "");
}

TEST(Bitmap, UnwritableFilesAndEmptyBitmapsRaise) {
  TOwned<TBitmap> B = MakeBitmap(2, 2);
  const std::string Bad = "/nonexistent-folder/out.png";
  EXPECT_NE(ErrorOf([&] { B->SaveToFile(Bad); }).find(Bad), std::string::npos);
  TOwned<TBitmap> Empty = MakeOwned<TBitmap>();
  test::TTempDir Dir;
  EXPECT_NE(ErrorOf([&] { Empty->SaveToFile((Dir / "e.png").string()); }), "");
}

TEST(Bitmap, AssignCopiesPixelsIntoAnIndependentBitmap) {
  TOwned<TBitmap> A = MakeBitmap(5, 5, clPurple);
  A->SetTransparent(true);
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->Assign(A.get());
  A->Canvas()->SetPixel(0, 0, clWhite);
  EXPECT_EQ(B->Width(), 5);
  EXPECT_TRUE(B->Transparent());
  EXPECT_EQ(B->Canvas()->Pixel(0, 0), clPurple);
}

TEST(Picture, LoadsByExtensionAndReportsChangesOfItsGraphic) {
  test::TTempDir Dir;
  MakeBitmap(6, 3, clTeal)->SaveToFile((Dir / "p.PNG").string());
  TOwned<TPicture> P = MakeOwned<TPicture>();
  int Changes = 0;
  P->SetOnChange([&](TObject*) { ++Changes; });
  P->LoadFromFile((Dir / "p.PNG").string());
  EXPECT_EQ(Changes, 1);
  EXPECT_EQ(P->Width(), 6);
  ASSERT_TRUE(Is<TBitmap>(P->Graphic()));
  P->Bitmap()->SetSize(8, 8);
  EXPECT_EQ(Changes, 2) << "a change of the held bitmap reaches the picture";
  const std::string Gif = (Dir / "p.gif").string();
  const std::string Message = ErrorOf([&] { P->LoadFromFile(Gif); });
  EXPECT_NE(Message.find("Unknown picture file extension (.gif)"), std::string::npos) << Message;
  EXPECT_EQ(P->Width(), 8) << "the picture is as it was";
}

TEST(Picture, AssignCopiesTheGraphicBothWays) {
  TOwned<TPicture> A = MakeOwned<TPicture>();
  A->Bitmap()->Assign(MakeBitmap(3, 4, clRed).get());
  TOwned<TPicture> B = MakeOwned<TPicture>();
  B->Assign(A.get());
  EXPECT_NE(B->Graphic(), A->Graphic());
  EXPECT_EQ(B->Height(), 4);
  TOwned<TBitmap> Out = MakeOwned<TBitmap>();
  Out->Assign(B.get());
  EXPECT_EQ(Out->Canvas()->Pixel(2, 3), clRed);
  B->Assign(nullptr);
  EXPECT_EQ(B->Graphic(), nullptr);
  EXPECT_NE(ErrorOf([&] { B->SaveToFile("/tmp/never-written.png"); }), "");
  EXPECT_THROW(Out->Assign(B.get()), EConvertError) << "an empty picture has no bitmap to give";
}

} // namespace
} // namespace kx
