#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/chartkit/KXDeltaFont.h"

namespace kx {
namespace {

TEST(GraphicObjects, SystemColoursResolveThroughOneTable) {
  EXPECT_EQ(ColorToRGB(clBtnFace), RGBToColor(0xF0, 0xF0, 0xF0));
  EXPECT_EQ(ColorToRGB(clWindow), clWhite);
  EXPECT_EQ(ColorToRGB(clWindowText), clBlack);
  EXPECT_EQ(ColorToRGB(clRed), clRed);
  EXPECT_EQ(ColorToRGB(static_cast<TColor>(0xFF0000FE)), clBlack) << "unknown system index";
  EXPECT_EQ(ColorToRGB(clDefault), clBlack);
}

// Each row: a setter call and the number of changes it should raise, applied in order.
struct SetterStep {
  const char* What;
  std::function<void(TPen&, TBrush&, TFont&)> Do;
  int Changes;
};

TEST(GraphicObjects, SettersReportOnlyRealChanges) {
  TOwned<TPen> Pen = MakeOwned<TPen>();
  TOwned<TBrush> Brush = MakeOwned<TBrush>();
  TOwned<TFont> Font = MakeOwned<TFont>();
  int Count = 0;
  for (TGraphicsObject* G :
       std::initializer_list<TGraphicsObject*>{Pen.get(), Brush.get(), Font.get()})
    G->SetOnChange([&](TObject*) { ++Count; });
  const SetterStep Steps[] = {
      {"pen colour", [](TPen& P, TBrush&, TFont&) { P.SetColor(clRed); }, 1},
      {"same pen colour", [](TPen& P, TBrush&, TFont&) { P.SetColor(clRed); }, 0},
      {"pen width", [](TPen& P, TBrush&, TFont&) { P.SetWidth(3); }, 1},
      {"pen mode", [](TPen& P, TBrush&, TFont&) { P.SetMode(pmXor); }, 1},
      {"pen style", [](TPen& P, TBrush&, TFont&) { P.SetStyle(psDot); }, 1},
      {"brush style", [](TPen&, TBrush& B, TFont&) { B.SetStyle(bsClear); }, 1},
      {"colour on a clear brush", [](TPen&, TBrush& B, TFont&) { B.SetColor(clWhite); }, 1},
      {"same brush colour", [](TPen&, TBrush& B, TFont&) { B.SetColor(clWhite); }, 0},
      {"font size", [](TPen&, TBrush&, TFont& F) { F.SetSize(12); }, 1},
      {"same size as height", [](TPen&, TBrush&, TFont& F) { F.SetHeight(-16); }, 0},
      {"font style", [](TPen&, TBrush&, TFont& F) { F.SetStyle({fsBold}); }, 1},
      {"orientation 360", [](TPen&, TBrush&, TFont& F) { F.SetOrientation(360); }, 0},
  };
  for (const SetterStep& S : Steps) {
    Count = 0;
    S.Do(*Pen, *Brush, *Font);
    EXPECT_EQ(Count, S.Changes) << S.What;
  }
  EXPECT_EQ(Brush->Style(), bsSolid) << "giving a clear brush a colour makes it solid";
}

TEST(GraphicObjects, NumbersAreClampedNeverRefused) {
  TOwned<TPen> Pen = MakeOwned<TPen>();
  Pen->SetWidth(-5);
  EXPECT_EQ(Pen->Width(), 0);
  Pen->SetWidth(1 << 30);
  EXPECT_EQ(Pen->Width(), TPen::MaxWidth);
  TOwned<TFont> Font = MakeOwned<TFont>();
  Font->SetOrientation(450);
  EXPECT_EQ(Font->Orientation(), 90);
  Font->SetOrientation(-90);
  EXPECT_EQ(Font->Orientation(), 270);
  Font->SetSize(1 << 30);
  EXPECT_EQ(Font->Size(), 2000 * 72 / 96);
}

struct SizeHeight {
  int32_t Size, Height;
};

class FontSizeAndHeight : public ::testing::TestWithParam<SizeHeight> {};

TEST_P(FontSizeAndHeight, FollowThePointRuleAt96PixelsPerInch) {
  TOwned<TFont> F = MakeOwned<TFont>();
  F->SetSize(GetParam().Size);
  EXPECT_EQ(F->Height(), GetParam().Height);
  F->SetHeight(GetParam().Height);
  EXPECT_EQ(F->Size(), GetParam().Size);
}

INSTANTIATE_TEST_SUITE_P(Sizes, FontSizeAndHeight,
                         ::testing::Values(SizeHeight{8, -11}, SizeHeight{9, -12},
                                           SizeHeight{10, -13}, SizeHeight{12, -16},
                                           SizeHeight{24, -32}, SizeHeight{-15, 20}));

TEST(GraphicObjects, AssignCopiesRaisesOnceAndRejectsStrangers) {
  TOwned<TFont> A = MakeOwned<TFont>(), B = MakeOwned<TFont>();
  A->SetName("DejaVu Serif");
  A->SetSize(14);
  A->SetColor(clBlue);
  A->SetStyle({fsItalic, fsUnderline});
  A->SetOrientation(45);
  int Count = 0;
  B->SetOnChange([&](TObject*) { ++Count; });
  B->Assign(A.get());
  EXPECT_TRUE(B->SameAs(*A));
  EXPECT_EQ(Count, 1);
  B->Assign(A.get());
  B->Assign(B.get());
  EXPECT_EQ(Count, 1) << "an equal or self assignment changes nothing";
  TOwned<TBrush> Brush = MakeOwned<TBrush>();
  TOwned<TPen> Pen = MakeOwned<TPen>();
  try {
    Pen->Assign(Brush.get());
    FAIL();
  } catch (const EConvertError& E) {
    EXPECT_EQ(E.Message(), "Cannot assign a TBrush to a TPen");
  }
}

// --- Delta fonts ---

struct DeltaFixture : ::testing::Test {
  TOwned<TFont> Panel = MakeOwned<TFont>();
  TOwned<TKXDeltaFont> Header = MakeOwned<TKXDeltaFont>();
  void SetUp() override {
    Header->Assign(Panel.get());
    Header->SetColor(clBlue);
    Header->SetStyle({fsBold});
    Header->SetBaseFont(Panel.get());
  }
};

TEST_F(DeltaFixture, FollowsTheBaseInWhatItDidNotSetItself) {
  TOwned<TFont> NewPanel = MakeOwned<TFont>();
  NewPanel->SetName("DejaVu Serif");
  NewPanel->SetSize(12);
  NewPanel->SetColor(clGreen);
  NewPanel->SetStyle({fsItalic});
  int Count = 0;
  Header->SetOnChange([&](TObject*) { ++Count; });
  Header->ChangeBaseFont(NewPanel.get());
  EXPECT_EQ(Count, 1);
  EXPECT_EQ(Header->Name(), "DejaVu Serif");
  EXPECT_EQ(Header->Size(), 12);
  EXPECT_EQ(Header->Color(), clBlue) << "its own colour stays";
  EXPECT_EQ(Header->Style(), (TFontStyles{fsBold, fsItalic})) << "styles count per member";
  // A second change works from the recorded new base.
  NewPanel->SetSize(9);
  Header->ChangeBaseFont(NewPanel.get());
  EXPECT_EQ(Header->Size(), 9);
  EXPECT_EQ(Header->Color(), clBlue);
}

TEST_F(DeltaFixture, OwnStyleMembersFlipTheNewBase) {
  TOwned<TFont> NewPanel = MakeOwned<TFont>();
  NewPanel->SetColor(clRed);
  NewPanel->SetStyle({fsBold});
  Header->ChangeBaseFont(NewPanel.get());
  EXPECT_EQ(Header->Color(), clBlue);
  EXPECT_EQ(Header->Style(), TFontStyles{}) << "bold was the difference, so it flips off";
}

TEST(DeltaFont, WithoutABaseItTakesTheNewBaseWhole) {
  TOwned<TKXDeltaFont> F = MakeOwned<TKXDeltaFont>();
  TOwned<TFont> Base = MakeOwned<TFont>();
  Base->SetSize(20);
  EXPECT_FALSE(F->HasBaseFont());
  F->ChangeBaseFont(Base.get());
  EXPECT_EQ(F->Size(), 20);
  EXPECT_TRUE(F->HasBaseFont());
  TOwned<TKXDeltaFont> Copy = MakeOwned<TKXDeltaFont>();
  Copy->Assign(F.get());
  EXPECT_TRUE(Copy->HasBaseFont()) << "a copy follows the same base";
}

} // namespace
} // namespace kx
