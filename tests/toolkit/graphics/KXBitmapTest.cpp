#include "kxcharts/toolkit/graphics/KXBitmap.h"

#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::MakeBitmap;

void WriteBytes(const std::filesystem::path& P, const std::vector<uint8_t>& Bytes) {
  std::ofstream Out(P, std::ios::binary);
  Out.write(reinterpret_cast<const char*>(Bytes.data()), std::streamsize(Bytes.size()));
}

// The message of the EInvalidGraphic that Fn raises ("" when none).
template <class F> std::string ErrorOf(F&& Fn) {
  const std::string M = test::MessageOf<EInvalidGraphic>(Fn);
  return M == "no exception" ? "" : M;
}

TEST(Bitmap, SetSizeKeepsTheCanvasAndSharedPixelsWhitensNewOnesAndClamps) {
  TOwned<TBitmap> B = MakeBitmap(10, 10, clRed);
  TCanvas* Canvas = B->Canvas();
  int Changes = 0;
  B->SetOnChange([&](TObject*) { ++Changes; });
  B->SetSize(20, 5);
  EXPECT_EQ(Changes, 1);
  EXPECT_EQ(B->Canvas(), Canvas) << "one canvas for the bitmap's life";
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

// A 24-bit bitmap has no alpha: it keeps what its pixels show on white, keeps its format
// through SetSize and Assign, draws as a plain copy, and its unused byte (which holds
// anything) never decides which pixels a transparent draw or a mask leaves out.
TEST(Bitmap, TwentyFourBitBitmapsAreOpaqueAndKeepTheirFormat) {
  TOwned<TBitmap> B = MakeBitmap(6, 4, clTeal);
  cairo_t* Cr = cairo_create(B->Surface());
  cairo_set_operator(Cr, CAIRO_OPERATOR_SOURCE);
  cairo_set_source_rgba(Cr, 1, 0, 0, 0.5);
  cairo_rectangle(Cr, 5, 3, 1, 1);
  cairo_fill(Cr);
  cairo_destroy(Cr);
  cairo_surface_mark_dirty(B->Surface());
  int Changes = 0;
  B->SetOnChange([&](TObject*) { ++Changes; });
  B->SetPixelFormat(pf24bit);
  B->SetPixelFormat(pf24bit);
  EXPECT_EQ(Changes, 1);
  EXPECT_EQ(B->PixelFormat(), pf24bit);
  EXPECT_EQ(B->Canvas()->Pixel(0, 0), clTeal);
  const TColor HalfRed = B->Canvas()->Pixel(5, 3);
  EXPECT_EQ(GetRValue(HalfRed), 255);
  EXPECT_NEAR(GetGValue(HalfRed), 128, 1) << "half red on white";

  B->SetSize(8, 4);
  EXPECT_EQ(B->PixelFormat(), pf24bit);
  EXPECT_EQ(B->Canvas()->Pixel(7, 0), clWhite);
  TOwned<TBitmap> Copy = MakeOwned<TBitmap>();
  Copy->Assign(B.get());
  EXPECT_EQ(Copy->PixelFormat(), pf24bit);
  TOwned<TBitmap> Loaded = MakeOwned<TBitmap>();
  Loaded->LoadFromBytes(B->SaveToBytes());
  EXPECT_EQ(Loaded->PixelFormat(), pf32bit);
  EXPECT_EQ(Loaded->Canvas()->Pixel(0, 0), clTeal);

  // Teal is the key; the unused bytes are cleared to tell a masked test from a plain one.
  cairo_surface_flush(B->Surface());
  auto* Data = cairo_image_surface_get_data(B->Surface());
  for (int32_t Y = 0; Y < B->Height(); ++Y)
    for (int32_t X = 0; X < B->Width(); ++X)
      reinterpret_cast<uint32_t*>(Data + Y * cairo_image_surface_get_stride(B->Surface()))[X] &=
          0xFFFFFF;
  cairo_surface_mark_dirty(B->Surface());
  B->SetTransparentColor(clTeal);
  B->SetTransparent(true);
  TOwned<TBitmap> Sheet = MakeBitmap(20, 10, clBlue);
  Sheet->Canvas()->Draw(0, 0, B.get());
  EXPECT_EQ(Sheet->Canvas()->Pixel(0, 0), clBlue) << "the key left out";
  EXPECT_EQ(Sheet->Canvas()->Pixel(7, 0), clWhite) << "the rest drawn";
  TOwned<TImageList> L(New<TImageList>(nullptr));
  L->SetSize(8, 4);
  ASSERT_EQ(L->AddMasked(B.get(), clTeal), 0);
  L->Draw(Sheet->Canvas(), 10, 0, 0, true);
  EXPECT_EQ(Sheet->Canvas()->Pixel(10, 0), clBlue) << "the mask leaves the key out";
  EXPECT_EQ(Sheet->Canvas()->Pixel(17, 0), clWhite);
  B->SetPixelFormat(pf32bit);
  EXPECT_EQ(B->Canvas()->Pixel(7, 0), clWhite) << "back to 32 bits: opaque";
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

// --- Image lists ---

TEST(ImageList, CutsStripsIntoImagesOfItsSizeAndDrawsThemByIndex) {
  TOwned<TImageList> L(New<TImageList>(nullptr));
  L->SetSize(4, 3);
  TOwned<TBitmap> Strip = MakeBitmap(10, 5, clRed);
  Strip->Canvas()->Brush()->SetColor(clBlue);
  Strip->Canvas()->FillRect({4, 0, 8, 5});
  EXPECT_EQ(L->Add(Strip.get()), 0);
  EXPECT_EQ(L->Count(), 3) << "4 + 4 + a short piece of 2";
  EXPECT_EQ(L->Add(nullptr), -1);
  TOwned<TBitmap> Sheet = MakeBitmap(20, 10);
  L->Draw(Sheet->Canvas(), 1, 1, 1);
  EXPECT_EQ(test::PaintedBounds(Sheet.get()), (TRect{1, 1, 5, 4}));
  EXPECT_EQ(Sheet->Canvas()->Pixel(2, 2), clBlue);
  L->Draw(Sheet->Canvas(), 10, 1, 2);
  EXPECT_EQ(Sheet->Canvas()->Pixel(12, 2), clWhite) << "the padding is transparent";
  EXPECT_EQ(Sheet->Canvas()->Pixel(11, 2), clRed);
  const auto Before = test::PixelBytes(Sheet.get());
  L->Draw(Sheet->Canvas(), 0, 0, 3);
  L->Draw(Sheet->Canvas(), 0, 0, -1);
  EXPECT_EQ(test::PixelBytes(Sheet.get()), Before) << "no image, nothing drawn";
  L->Draw(Sheet->Canvas(), 15, 5, 1, false);
  const TColor Grey = Sheet->Canvas()->Pixel(16, 6);
  EXPECT_TRUE(GetRValue(Grey) == GetGValue(Grey) && GetGValue(Grey) == GetBValue(Grey))
      << "a disabled image is grey";
  EXPECT_THROW(L->Delete(3), EListError);
  L->Delete(0);
  EXPECT_EQ(L->Count(), 2);
  L->SetWidth(8);
  EXPECT_EQ(L->Count(), 0) << "a new size empties the list";
}

TEST(ImageList, MaskedImagesAndShapesDrawnFromTheList) {
  TOwned<TImageList> L(New<TImageList>(nullptr));
  L->SetSize(10, 10);
  TOwned<TBitmap> Icon = MakeBitmap(10, 10, clLime);
  Icon->Canvas()->Brush()->SetColor(clNavy);
  Icon->Canvas()->FillRect({3, 3, 7, 7});
  ASSERT_EQ(L->AddMasked(Icon.get(), clLime), 0);
  TOwned<TBitmap> Sheet = MakeBitmap(40, 20);
  TCanvas* C = Sheet->Canvas();
  C->Brush()->SetColor(clRed);
  DrawShape(C, {0, 0, 10, 10}, L.get(), 0, shpImage, shpEllipse, true, clWhite, clGray, 3);
  EXPECT_EQ(test::PaintedBounds(Sheet.get()), (TRect{3, 3, 7, 7})) << "lime left out";
  DrawShape(C, {20, 0, 40, 20}, L.get(), 5, shpImage, shpEllipse, true, clWhite, clGray, 3);
  EXPECT_EQ(C->Pixel(30, 10), clRed) << "no such image: the default style";
  EXPECT_EQ(C->Pixel(20, 0), clWhite) << "an ellipse, not a rectangle";
  TOwned<TBitmap> Other = MakeBitmap(30, 30);
  DrawShape(Other->Canvas(), {0, 0, 30, 30}, nullptr, -1, shpImage, shpImage, true, clWhite, clGray,
            3);
  EXPECT_EQ(Other->Canvas()->Pixel(0, 15), clBlack) << "a default that is the image: rectangle";
}

// --- Stored forms ---

class TGfxHolder : public TComponent {
  KX_CLASS(TGfxHolder, TComponent)
public:
  explicit TGfxHolder(TComponent* Owner)
      : TComponent(Owner), FPen(MakeOwned<TPen>()), FBrush(MakeOwned<TBrush>()),
        FFont(MakeOwned<TFont>()), FPicture(MakeOwned<TPicture>()) {}
  TPen* Pen() const { return FPen.get(); }
  TBrush* Brush() const { return FBrush.get(); }
  TFont* Font() const { return FFont.get(); }
  TPicture* Picture() const { return FPicture.get(); }
  TImageList* Images() const { return FImages; }
  void SetImages(TImageList* V) {
    if (FImages) RemoveFreeNotification(FImages);
    FImages = V;
    if (V) FreeNotification(V);
  }

protected:
  void Notification(TComponent* C, TOperation Op) override {
    inherited::Notification(C, Op);
    if (Op == opRemove && C == FImages) FImages = nullptr;
  }
  void DefineProperties(TFiler& Filer) override {
    inherited::DefineProperties(Filer);
    Filer.Property("Pen", this, &TGfxHolder::Pen);
    Filer.Property("Brush", this, &TGfxHolder::Brush);
    Filer.Property("Font", this, &TGfxHolder::Font);
    Filer.Property("Picture", this, &TGfxHolder::Picture);
    Filer.Property("Images", this, &TGfxHolder::Images, &TGfxHolder::SetImages);
  }

private:
  TOwned<TPen> FPen;
  TOwned<TBrush> FBrush;
  TOwned<TFont> FFont;
  TOwned<TPicture> FPicture;
  TImageList* FImages = nullptr;
};

TEST(StoredGraphics, FormsCarryPensBrushesFontsPicturesAndImageLists) {
  RegisterGraphicsClasses();
  RegisterClasses({ClassOf<TGfxHolder>()});
  TOwned<TGfxHolder> Form(New<TGfxHolder>(nullptr));
  Form->SetName("Form1");
  Form->Pen()->SetColor(clRed);
  Form->Pen()->SetWidth(3);
  Form->Pen()->SetStyle(psDot);
  Form->Brush()->SetColor(clAqua);
  Form->Brush()->SetStyle(bsClear);
  Form->Font()->SetName("DejaVu Serif");
  Form->Font()->SetSize(13);
  Form->Font()->SetStyle({fsBold, fsUnderline});
  Form->Font()->SetOrientation(90);
  Form->Picture()->Bitmap()->Assign(MakeBitmap(3, 2, clGreen).get());
  TImageList* Images = New<TImageList>(Form.get());
  Images->SetName("Images1");
  Images->SetSize(2, 2);
  Images->Add(MakeBitmap(4, 2, clYellow).get());
  Form->SetImages(Images);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_EQ(Json.find("\"Mode\""), std::string::npos) << "defaults stay out";
  test::ExpectStored(Json, {"Color", "Width", "Style", "Name", "Height", "Orientation", "Data"});

  TOwned<TGfxHolder> Copy(New<TGfxHolder>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
  EXPECT_EQ(Copy->Brush()->Style(), bsClear) << "the style is read after the colour";
  EXPECT_TRUE(Copy->Font()->SameAs(*Form->Font()));
  EXPECT_EQ(Copy->Picture()->Bitmap()->Canvas()->Pixel(2, 1), clGreen);
  ASSERT_NE(Copy->Images(), nullptr);
  EXPECT_EQ(Copy->Images()->Image(1)->Canvas()->Pixel(1, 1), clYellow);

  std::string Bad = Json;
  const size_t At = Bad.find("\"Data\": \"") + 9;
  Bad.replace(At, 4, "!!!!");
  TOwned<TGfxHolder> Broken(New<TGfxHolder>(nullptr));
  EXPECT_THROW(LoadFormFromString(Broken.get(), Bad), Exception);
}

} // namespace
} // namespace kx
