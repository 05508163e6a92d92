#include "kxcharts/toolkit/controls/KXControls.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

// A paint box that counts its paints and fills as far as its canvas lets it.
class TCountingBox : public TPaintBox {
  KX_CLASS(TCountingBox, TPaintBox)
public:
  using TPaintBox::TPaintBox;
  int Paints = 0;
  TColor Fill = clRed;
  void Paint() override {
    inherited::Paint();
    ++Paints;
    Canvas()->Brush()->SetColor(Fill);
    Canvas()->FillRect({-1000, -1000, 1000, 1000});
  }
};

// A panel that counts its paints and can decline the mouse.
class TCountingPanel : public TPanel {
  KX_CLASS(TCountingPanel, TPanel)
public:
  using TPanel::TPanel;
  int Paints = 0;
  bool TakesMouse = true;
  void Paint() override {
    inherited::Paint();
    ++Paints;
  }
  bool CMHitTest(int32_t X, int32_t Y) override { return TakesMouse && inherited::CMHitTest(X, Y); }
};

TColor Rgb(TColor C) {
  return ColorToRGB(C);
}

// A window of 200 x 100 with no frame, so that pixels are easy to predict.
TOwned<TPanel> PlainPanel() {
  TOwned<TPanel> P = MakeOwned<TPanel>(nullptr);
  P->SetBevelOuter(bvNone);
  P->SetBounds(0, 0, 200, 100);
  P->SetColor(clWhite);
  return P;
}

// A paint box that notes what Visible was when its hook ran.
class THooked : public TPaintBox {
  KX_CLASS(THooked, TPaintBox)
public:
  using TPaintBox::TPaintBox;
  std::vector<bool> Seen;
  void CMVisibleChanged() override { Seen.push_back(Visible()); }
};

// --- Panel defaults and frame ---

struct TFrameCase {
  TBevelCut Outer, Inner;
  int32_t BevelWidth, BorderWidth;
  TBorderStyle Style;
  int32_t Inset;
};

class PanelFrame : public testing::TestWithParam<TFrameCase> {};

TEST_P(PanelFrame, ClientRectOfAlignedControlsIsInsetByTheWholeFrame) {
  const TFrameCase& F = GetParam();
  TOwned<TPanel> P = MakeOwned<TPanel>(nullptr);
  P->SetBounds(0, 0, 400, 300);
  P->SetBevelOuter(F.Outer);
  P->SetBevelInner(F.Inner);
  P->SetBevelWidth(F.BevelWidth);
  P->SetBorderWidth(F.BorderWidth);
  P->SetBorderStyle(F.Style);
  TRect R = P->ClientRect();
  P->AdjustClientRect(R);
  const int32_t I = F.Inset;
  EXPECT_EQ(R, (TRect{I, I, 400 - I, 300 - I}));
  // An alClient child fills exactly that rectangle.
  TPaintBox* Box = New<TPaintBox>(P.get());
  Box->SetParent(P.get());
  Box->SetAlign(alClient);
  EXPECT_EQ(Box->BoundsRect(), R);
  // A panel's paint covers all of it (so its window is not erased first): nothing of what
  // lay there before shows through any frame.
  P->Repaint();
  P->Canvas()->Brush()->SetColor(clLime);
  P->Canvas()->FillRect(P->ClientRect());
  P->Repaint();
  EXPECT_EQ(test::CountPixels(P->Bitmap(), [](TColor C) { return C == clLime; }), 0);
}

INSTANTIATE_TEST_SUITE_P(Frames, PanelFrame,
                         testing::Values(TFrameCase{bvRaised, bvNone, 1, 0, bsNone,
                                                    1}, // the default
                                         TFrameCase{bvNone, bvNone, 1, 0, bsNone, 0},
                                         TFrameCase{bvLowered, bvRaised, 2, 0, bsNone, 4},
                                         TFrameCase{bvRaised, bvLowered, 1, 3, bsSingle, 6},
                                         TFrameCase{bvNone, bvSpace, 5, 0, bsSingle, 6}),
                         [](const testing::TestParamInfo<TFrameCase>& Info) {
                           const TFrameCase& F = Info.param;
                           return GetEnumName(F.Outer) + "_" + GetEnumName(F.Inner) + "_" +
                                  std::to_string(F.BevelWidth) + "_" +
                                  std::to_string(F.BorderWidth) + "_" + GetEnumName(F.Style);
                         });

TEST(Panel, PaintsARaisedBevelInsideItsFaceColour) {
  TOwned<TPanel> P = MakeOwned<TPanel>(nullptr);
  P->SetBounds(0, 0, 40, 20);
  P->Repaint();
  TCanvas* C = P->Canvas();
  EXPECT_EQ(C->Pixel(0, 0), Rgb(clBtnHighlight));
  EXPECT_EQ(C->Pixel(0, 18), Rgb(clBtnHighlight));
  EXPECT_EQ(C->Pixel(38, 0), Rgb(clBtnHighlight));
  EXPECT_EQ(C->Pixel(39, 0), Rgb(clBtnShadow)) << "the far corners belong to the dark edges";
  EXPECT_EQ(C->Pixel(0, 19), Rgb(clBtnShadow));
  EXPECT_EQ(C->Pixel(39, 19), Rgb(clBtnShadow));
  EXPECT_EQ(C->Pixel(1, 1), Rgb(clBtnFace));
  EXPECT_EQ(C->Pixel(38, 18), Rgb(clBtnFace));
  P->SetBevelOuter(bvLowered);
  P->Repaint();
  EXPECT_EQ(C->Pixel(0, 0), Rgb(clBtnShadow));
  EXPECT_EQ(C->Pixel(39, 19), Rgb(clBtnHighlight));
}

TEST(Panel, CaptionSitsWhereAlignmentSaysInTheFontColour) {
  TOwned<TPanel> P = PlainPanel();
  P->Font()->SetColor(clBlack);
  P->SetCaption("Sales");
  const auto InkBounds = [&] {
    P->Repaint();
    return test::PaintedBounds(P->Bitmap());
  };
  const TRect Centred = InkBounds();
  ASSERT_FALSE(Centred.IsEmpty());
  EXPECT_NEAR((Centred.Left + Centred.Right) / 2, 100, 2);
  EXPECT_NEAR((Centred.Top + Centred.Bottom) / 2, 50, 3);
  P->SetAlignment(taLeftJustify);
  P->SetVerticalAlignment(taAlignTop);
  const TRect TopLeft = InkBounds();
  EXPECT_LT(TopLeft.Left, 3);
  EXPECT_LT(TopLeft.Top, 6);
  P->SetAlignment(taRightJustify);
  EXPECT_GT(InkBounds().Right, 196);
  P->SetShowCaption(false);
  EXPECT_TRUE(InkBounds().IsEmpty());
}

// --- Painting ---

TEST(GraphicControl, PaintsAfterItsParentAndInsideItsBoundsOnly) {
  TOwned<TPanel> P = PlainPanel();
  auto* Box = New<TCountingBox>(P.get());
  Box->SetParent(P.get());
  Box->SetBounds(50, 20, 30, 10);
  P->Repaint();
  EXPECT_EQ(test::PaintedBounds(P->Bitmap()), (TRect{50, 20, 80, 30}));
  EXPECT_EQ(test::CountPixels(P->Bitmap(), [](TColor C) { return C == clRed; }), 300);
  // The box's own coordinates start at its top left.
  EXPECT_EQ(Box->Canvas()->Pixel(0, 0), clRed);
  EXPECT_EQ(Box->Canvas()->Width(), 30);
}

TEST(GraphicControl, StickingOutOfItsParentIsClippedToTheParentAfterMovesAndResizes) {
  TOwned<TPanel> P = PlainPanel();
  auto* Box = New<TCountingBox>(P.get());
  Box->SetParent(P.get());
  Box->SetBounds(280, 140, 10, 10);
  P->SetBounds(0, 0, 300, 150);
  P->Repaint();
  EXPECT_EQ(test::PaintedBounds(P->Bitmap()), (TRect{280, 140, 290, 150}));
  P->SetBounds(0, 0, 200, 100);
  Box->SetBounds(-10, 90, 30, 30);
  P->Repaint();
  EXPECT_EQ(test::PaintedBounds(P->Bitmap()), (TRect{0, 90, 20, 100}));
  // Outside Paint too, the box's own coordinates land where the box is.
  EXPECT_EQ(Box->Canvas()->Width(), 30);
  Box->Canvas()->SetPixel(15, 5, clBlue);
  EXPECT_EQ(P->Canvas()->Pixel(5, 95), clBlue);
}

TEST(GraphicControl, HiddenOrParentlessPaintsNothingAnywhere) {
  TOwned<TPanel> P = PlainPanel();
  auto* Box = New<TCountingBox>(P.get());
  Box->SetParent(P.get());
  Box->SetVisible(false);
  P->Repaint();
  EXPECT_EQ(Box->Paints, 0);
  EXPECT_EQ(test::CountPainted(P->Bitmap()), 0);
  Box->SetVisible(true);
  Box->SetParent(nullptr);
  Box->Repaint();
  EXPECT_EQ(Box->Paints, 0);
  EXPECT_EQ(Box->Canvas()->Width(), 1) << "a parentless control has only the scratch image";
}

TEST(GraphicControl, DrawingOutsidePaintReachesTheParentsBitmapAtOnce) {
  TOwned<TPanel> P = PlainPanel();
  auto* Box = New<TPaintBox>(P.get());
  Box->SetParent(P.get());
  Box->SetBounds(10, 10, 50, 40);
  P->Repaint();
  const std::vector<uint8_t> Before = test::PixelBytes(P->Bitmap());
  Box->Canvas()->DrawFocusRect({5, 5, 25, 15});
  EXPECT_NE(P->Canvas()->Pixel(15, 15), clWhite) << "the frame starts at the box's (5, 5)";
  EXPECT_EQ(test::PaintedBounds(P->Bitmap()), (TRect{15, 15, 35, 25}));
  Box->Canvas()->DrawFocusRect({5, 5, 25, 15});
  EXPECT_EQ(test::PixelBytes(P->Bitmap()), Before) << "inverting twice gives the pixels back";
}

TEST(WinControl, InvalidateManyTimesThenUpdatePaintsOnce) {
  TOwned<TCountingPanel> P = MakeOwned<TCountingPanel>(nullptr);
  P->Update();
  ASSERT_EQ(P->Paints, 1) << "a new window waits for its first paint";
  P->Invalidate();
  P->Invalidate();
  P->SetCaption("x");
  EXPECT_TRUE(P->NeedsPaint());
  P->Update();
  P->Update();
  EXPECT_EQ(P->Paints, 2);
  EXPECT_FALSE(P->NeedsPaint());
  P->Repaint();
  EXPECT_EQ(P->Paints, 3) << "Repaint paints whatever was invalidated";
}

TEST(WinControl, APaintThatThrowsLeavesCanvasesClean) {
  TOwned<TPanel> P = PlainPanel();
  auto* Box = New<TPaintBox>(P.get());
  Box->SetParent(P.get());
  bool Fail = true;
  Box->SetOnPaint([&](TObject*) {
    Box->Canvas()->SetClipRect({0, 0, 5, 5});
    if (Fail) throw Exception("paint failed");
    Box->Canvas()->RestoreClipRect();
  });
  EXPECT_THROW(P->Repaint(), Exception);
  EXPECT_FALSE(P->NeedsPaint()) << "the area counts as painted, so that the error shows once";
  EXPECT_EQ(P->Canvas()->LayerDepth(), 0);
  Fail = false;
  Box->Canvas()->RestoreClipRect(); // the handler's own clip is its own to take back
  P->Repaint();
  EXPECT_EQ(Box->Canvas()->LayerDepth(), 0);
  TOwned<TBitmap> Out = test::MakeBitmap(200, 100);
  EXPECT_THROW(
      {
        Fail = true;
        P->PaintTo(Out->Canvas(), 0, 0);
      },
      Exception);
  EXPECT_EQ(Box->Canvas()->Width(), 105) << "PaintTo gives the canvases back to the bitmaps";
  EXPECT_EQ(P->Canvas()->Surface(), P->Bitmap()->Surface());
}

TEST(WinControl, AGraphicChildsInvalidateMarksOnlyItsArea) {
  TOwned<TPanel> P = PlainPanel();
  auto* Box = New<TCountingBox>(P.get());
  Box->SetParent(P.get());
  Box->SetBounds(30, 40, 20, 10);
  P->Update();
  Box->Invalidate();
  EXPECT_EQ(P->InvalidRect(), (TRect{30, 40, 50, 50}));
  Box->Fill = clBlue;
  P->Update();
  EXPECT_EQ(test::CountPixels(P->Bitmap(), [](TColor C) { return C == clBlue; }), 200);
}

TEST(WinControl, PaintToGivesWhatTheBackingBitmapShowsWithChildWindowsOnTop) {
  TOwned<TPanel> P = PlainPanel();
  auto* Box = New<TCountingBox>(P.get());
  Box->SetParent(P.get());
  Box->SetBounds(10, 10, 20, 20);
  auto* Inner = New<TPanel>(P.get());
  Inner->SetParent(P.get());
  Inner->SetBounds(150, 60, 80, 80); // sticks out to the right and bottom
  Inner->SetColor(clLime);
  P->Repaint();
  TOwned<TBitmap> Out = test::MakeBitmap(220, 120, clBlack);
  P->PaintTo(Out->Canvas(), 10, 10);
  EXPECT_EQ(Out->Canvas()->Pixel(9, 9), clBlack);
  EXPECT_EQ(Out->Canvas()->Pixel(25, 25), clRed);
  EXPECT_EQ(Out->Canvas()->Pixel(175, 85), clLime);
  EXPECT_EQ(Out->Canvas()->Pixel(211, 109), clBlack) << "a child window is clipped to its parent";
  EXPECT_EQ(Out->Canvas()->Pixel(205, 105), clLime);
  // The backing bitmap is untouched, and the canvases are back on it.
  EXPECT_EQ(P->Canvas()->Pixel(175, 85), clWhite);
  EXPECT_EQ(Box->Canvas()->Width(), 20);
  Box->Canvas()->SetPixel(0, 0, clBlue);
  EXPECT_EQ(P->Canvas()->Pixel(10, 10), clBlue);
}

// --- Parents, owners and lifetime ---

TEST(Control, FreeingAChildLeavesItsParentsListAndFreeingAParentTakesItsChildren) {
  TOwned<TComponent> Form = MakeOwned<TComponent>(nullptr);
  auto* P = New<TPanel>(Form.get());
  auto* A = New<TPaintBox>(Form.get());
  auto* B = New<TPanel>(Form.get());
  auto* C = New<TPaintBox>(Form.get());
  A->SetParent(P);
  B->SetParent(P);
  C->SetParent(B);
  ASSERT_EQ(P->ControlCount(), 2);
  A->Free();
  EXPECT_EQ(P->ControlCount(), 1);
  EXPECT_EQ(P->Controls(0), B);
  EXPECT_EQ(Form->ComponentCount(), 3);
  P->Free();
  EXPECT_EQ(Form->ComponentCount(), 0) << "B and C went with their parent and left their owner";
}

TEST(Control, AWindowFreedByItsOwnerLetsGoOfChildrenItOwnsItself) {
  TOwned<TPanel> P = MakeOwned<TPanel>(nullptr);
  auto* Own = New<TPaintBox>(P.get());
  Own->SetParent(P.get());
  TOwned<TComponent> Other = MakeOwned<TComponent>(nullptr);
  auto* Foreign = New<TPaintBox>(Other.get());
  Foreign->SetParent(P.get());
  P.reset();
  EXPECT_EQ(Other->ComponentCount(), 0);
}

TEST(Control, ParentCannotBeItselfOrItsOwnChildAndAMoveUpdatesBothLists) {
  TOwned<TPanel> A = MakeOwned<TPanel>(nullptr);
  auto* B = New<TPanel>(A.get());
  B->SetParent(A.get());
  EXPECT_THROW(A->SetParent(A.get()), EInvalidOperation);
  EXPECT_THROW(A->SetParent(B), EInvalidOperation);
  EXPECT_EQ(A->Parent(), nullptr);
  EXPECT_EQ(B->Parent(), A.get());
  auto* Box = New<TPaintBox>(A.get());
  Box->SetParent(A.get());
  Box->SetParent(B);
  EXPECT_EQ(A->ControlCount(), 1) << "B alone";
  ASSERT_EQ(B->ControlCount(), 1);
  EXPECT_EQ(B->Controls(0), Box);
}

TEST(Control, FontAndColourFollowTheParentUntilSetOfTheirOwn) {
  TOwned<TPanel> P = PlainPanel();
  P->Font()->SetSize(14);
  auto* Box = New<TPaintBox>(P.get());
  Box->SetParent(P.get());
  EXPECT_EQ(Box->Font()->Size(), 14);
  EXPECT_EQ(Box->Color(), clWhite);
  P->Font()->SetColor(clRed);
  P->SetColor(clYellow);
  EXPECT_EQ(Box->Font()->Color(), clRed);
  EXPECT_EQ(Box->Color(), clYellow);
  EXPECT_TRUE(Box->ParentFont());
  Box->Font()->SetSize(9);
  Box->SetColor(clNavy);
  EXPECT_FALSE(Box->ParentFont());
  EXPECT_FALSE(Box->ParentColor());
  P->Font()->SetSize(20);
  P->SetColor(clGreen);
  EXPECT_EQ(Box->Font()->Size(), 9);
  EXPECT_EQ(Box->Color(), clNavy);
  Box->SetParentFont(true);
  EXPECT_EQ(Box->Font()->Size(), 20);
}

TEST(Control, AlignLaysOutTopBottomLeftRightThenClient) {
  TOwned<TPanel> P = PlainPanel();
  auto Make = [&](TAlign A, int32_t W, int32_t H) {
    auto* B = New<TPaintBox>(P.get());
    B->SetBounds(0, 0, W, H);
    B->SetParent(P.get());
    B->SetAlign(A);
    return B;
  };
  auto* Client = Make(alClient, 1, 1);
  auto* Top = Make(alTop, 1, 10);
  auto* Bottom = Make(alBottom, 1, 20);
  auto* Left = Make(alLeft, 30, 1);
  auto* Right = Make(alRight, 40, 1);
  EXPECT_EQ(Top->BoundsRect(), (TRect{0, 0, 200, 10}));
  EXPECT_EQ(Bottom->BoundsRect(), (TRect{0, 80, 200, 100}));
  EXPECT_EQ(Left->BoundsRect(), (TRect{0, 10, 30, 80}));
  EXPECT_EQ(Right->BoundsRect(), (TRect{160, 10, 200, 80}));
  EXPECT_EQ(Client->BoundsRect(), (TRect{30, 10, 160, 80}));
  P->SetBounds(0, 0, 100, 50);
  EXPECT_EQ(Client->BoundsRect(), (TRect{30, 10, 60, 30}));
  Top->SetVisible(false);
  EXPECT_EQ(Client->BoundsRect(), (TRect{30, 0, 60, 30}));
  P->SetBounds(0, 0, 20, 20);
  EXPECT_EQ(Client->Width(), 0) << "a crowded client area shrinks to nothing, never below";
}

TEST(Control, SizesAreClampedAndVisibilityHookRunsAfterTheChange) {
  TOwned<THooked> B = MakeOwned<THooked>(nullptr);
  B->SetBounds(1, 2, -5, 1 << 30);
  EXPECT_EQ(B->Width(), 0);
  EXPECT_EQ(B->Height(), TControl::MaxExtent);
  B->SetVisible(false);
  B->SetVisible(false);
  B->SetVisible(true);
  EXPECT_EQ(B->Seen, (std::vector<bool>{false, true}));
}

TEST(WinControl, ControlAtPosTakesTheTopmostThatAcceptsTheMouse) {
  TOwned<TPanel> P = PlainPanel();
  auto* Under = New<TPaintBox>(P.get());
  Under->SetParent(P.get());
  Under->SetBounds(0, 0, 100, 100);
  auto* Over = New<TCountingPanel>(P.get());
  Over->SetParent(P.get());
  Over->SetBounds(50, 0, 100, 100);
  auto* Deep = New<TPaintBox>(P.get());
  Deep->SetParent(Over);
  Deep->SetBounds(10, 10, 10, 10);
  EXPECT_EQ(P->ControlAtPos({60, 5}), Over);
  EXPECT_EQ(P->ControlAtPos({60, 15}, false, true), Deep);
  EXPECT_EQ(P->ControlAtPos({10, 5}), Under);
  EXPECT_EQ(P->ControlAtPos({180, 5}), nullptr);
  Over->TakesMouse = false;
  EXPECT_EQ(P->ControlAtPos({60, 5}), Under) << "declining passes the mouse to what lies beneath";
  Over->TakesMouse = true;
  Over->SetEnabled(false);
  EXPECT_EQ(P->ControlAtPos({60, 5}), Under);
  EXPECT_EQ(P->ControlAtPos({60, 5}, true), Over);
  Under->BringToFront();
  EXPECT_EQ(P->ControlAtPos({60, 5}, true), Under);
}

// --- Persistence ---

TEST(Control, PanelsAndPaintBoxesRoundTripThroughAForm) {
  RegisterFormClasses();
  TOwned<TForm> Form = MakeOwned<TForm>(nullptr);
  Form->SetName("Form1");
  Form->SetBounds(0, 0, 300, 200);
  auto* P = New<TPanel>(Form.get());
  P->SetName("Panel1");
  P->SetParent(Form.get());
  P->SetBounds(10, 20, 0, 90);
  P->SetCaption("Totals");
  P->SetBevelInner(bvLowered);
  P->SetBevelWidth(3);
  P->SetBorderStyle(bsSingle);
  P->SetAlignment(taRightJustify);
  P->SetColor(clYellow);
  P->SetAlign(alTop);
  P->Font()->SetSize(12);
  auto* Box = New<TPaintBox>(Form.get());
  Box->SetName("Box1");
  Box->SetParent(P);
  Box->SetBounds(4, 5, 0, 7); // a width of 0 is stored, not taken for a default
  Box->SetVisible(false);
  Box->SetCursor(crCross);
  auto* Loose = New<TPaintBox>(Form.get());
  Loose->SetName("Loose");

  const std::string Json = SaveFormToString(Form.get());
  test::ExpectStored(Json, {"Caption", "BevelInner", "BevelWidth", "BorderStyle", "Alignment",
                            "Color", "Align", "Width", "Visible", "Cursor"});
  TOwned<TForm> Copy = MakeOwned<TForm>(nullptr);
  LoadFormFromString(Copy.get(), Json);
  auto* P2 = dynamic_cast<TPanel*>(Copy->FindComponent("Panel1"));
  auto* Box2 = dynamic_cast<TPaintBox*>(Copy->FindComponent("Box1"));
  auto* Loose2 = dynamic_cast<TPaintBox*>(Copy->FindComponent("Loose"));
  ASSERT_TRUE(P2 && Box2 && Loose2);
  EXPECT_EQ(P2->Parent(), Copy.get());
  EXPECT_EQ(P2->BoundsRect(), P->BoundsRect());
  EXPECT_FALSE(P2->ParentFont());
  EXPECT_TRUE(Box2->ParentFont()) << "a font taken from the parent is not stored as the box's own";
  EXPECT_EQ(Box2->Font()->Size(), 12);
  EXPECT_EQ(Box2->Parent(), P2);
  EXPECT_EQ(Box2->BoundsRect(), (TRect{4, 5, 4, 12}));
  EXPECT_TRUE(Box2->ParentColor());
  EXPECT_EQ(Box2->Color(), clYellow);
  EXPECT_EQ(Loose2->Parent(), nullptr) << "a control on no window stays so";
  EXPECT_EQ(SaveFormToString(Copy.get()), Json);
}

} // namespace
} // namespace kx
