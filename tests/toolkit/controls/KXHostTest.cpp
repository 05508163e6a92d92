#include "kxcharts/toolkit/controls/KXHost.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHintWindow.h"
#include "support/KXBitmapProbe.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

// What a control heard, one line per message: "Name down mbLeft [ssShift,ssLeft] 5,6".
std::vector<std::string> Log;

std::string ShiftText(TShiftState S) {
  std::string T;
  for (TShiftStateItem I : S)
    T += (T.empty() ? "" : ",") + GetEnumName(I);
  return "[" + T + "]";
}

template <class Base> class TLogging : public Base {
public:
  using Base::Base;
  bool TakesMouse = true;
  void MouseDown(TMouseButton B, TShiftState S, int32_t X, int32_t Y) override {
    Note("down " + GetEnumName(B) + " " + ShiftText(S) + " " + At(X, Y));
    Base::MouseDown(B, S, X, Y);
  }
  void MouseMove(TShiftState S, int32_t X, int32_t Y) override {
    Note("move " + ShiftText(S) + " " + At(X, Y));
    Base::MouseMove(S, X, Y);
  }
  void MouseUp(TMouseButton B, TShiftState S, int32_t X, int32_t Y) override {
    Note("up " + GetEnumName(B) + " " + ShiftText(S) + " " + At(X, Y));
    Base::MouseUp(B, S, X, Y);
  }
  void Click() override {
    Note("click");
    Base::Click();
  }
  void CMMouseEnter() override { Note("enter"); }
  void CMMouseLeave() override { Note("leave"); }
  bool CMHitTest(int32_t X, int32_t Y) override { return TakesMouse && Base::CMHitTest(X, Y); }
  bool UsesWheel = false;
  bool MouseWheel(TShiftState S, int32_t Delta, int32_t X, int32_t Y) override {
    Note("wheel " + std::to_string(Delta) + " " + ShiftText(S) + " " + At(X, Y));
    return UsesWheel;
  }

private:
  void Note(const std::string& What) { Log.push_back(this->Name() + " " + What); }
  static std::string At(int32_t X, int32_t Y) {
    return std::to_string(X) + "," + std::to_string(Y);
  }
};

class TLogPanel : public TLogging<TPanel> {
  KX_CLASS(TLogPanel, TPanel)
public:
  using TLogging<TPanel>::TLogging;
};

class TLogBox : public TLogging<TPaintBox> {
  KX_CLASS(TLogBox, TPaintBox)
public:
  using TLogging<TPaintBox>::TLogging;
};

// A form at (100, 50) of 300 x 200 holding a panel at (10, 10) of 200 x 150, which holds a
// box at (20, 30) of 40 x 40; a second box lies on the form at (250, 10).
class Host : public testing::Test {
protected:
  void SetUp() override {
    Log.clear();
    Screen.SetCursor(crDefault);
    Form = MakeOwned<TForm>(nullptr);
    Form->SetName("Form");
    Form->SetBounds(100, 50, 300, 200);
    Panel = Make<TLogPanel>("Panel", Form.get(), {10, 10, 210, 160});
    Box = Make<TLogBox>("Box", Panel, {20, 30, 60, 70});
    Side = Make<TLogBox>("Side", Form.get(), {250, 10, 290, 50});
    Win = MakeOwned<TKXHost>();
    Win->AddWindow(Form.get());
  }

  template <class T> T* Make(const char* Name, TWinControl* Parent, TRect R) {
    T* C = New<T>(Form.get());
    C->SetName(Name);
    C->SetParent(Parent);
    C->SetBoundsRect(R);
    return C;
  }

  // The screen point of a client point of C.
  static TPoint On(TControl* C, int32_t X, int32_t Y) { return C->ClientToScreen({X, Y}); }

  TOwned<TForm> Form;
  TLogPanel* Panel = nullptr;
  TLogBox* Box = nullptr;
  TLogBox* Side = nullptr;
  TOwned<TKXHost> Win;
};

// --- Delivery ---

struct TClickCase {
  TPoint Screen;
  TMouseButton Button;
  TShiftState Keys;
  std::vector<std::string> Heard;
};

class HostClick : public Host, public testing::WithParamInterface<TClickCase> {};

TEST_P(HostClick, ReachesTheDeepestControlWithButtonShiftAndClientPoint) {
  const TClickCase& C = GetParam();
  Win->Click(C.Screen, C.Button, C.Keys);
  // Entering is not what this table is about.
  std::erase_if(Log, [](const std::string& L) { return L.ends_with("enter"); });
  EXPECT_EQ(Log, C.Heard);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Points, HostClick, testing::Values(
    TClickCase{{135, 95}, mbLeft, {},
               {"Box down mbLeft [ssLeft] 5,5", "Box up mbLeft [] 5,5", "Box click"}},
    TClickCase{{135, 95}, mbRight, {ssShift, ssCtrl},
               {"Box down mbRight [ssShift,ssCtrl,ssRight] 5,5",
                "Box up mbRight [ssShift,ssCtrl] 5,5"}},
    TClickCase{{111, 61}, mbLeft, {ssAlt},
               {"Panel down mbLeft [ssAlt,ssLeft] 1,1", "Panel up mbLeft [ssAlt] 1,1",
                "Panel click"}},
    TClickCase{{389, 99}, mbMiddle, {},
               {"Side down mbMiddle [ssMiddle] 39,39", "Side up mbMiddle [] 39,39"}},
    TClickCase{{390, 99}, mbLeft, {}, {}}, // the form itself logs nothing
    TClickCase{{99, 49}, mbLeft, {}, {}}));
// clang-format on

TEST_F(Host, AControlThatDeclinesTheMousePassesItToItsParent) {
  Box->TakesMouse = false;
  Win->Click(On(Box, 5, 5));
  EXPECT_EQ(Log, (std::vector<std::string>{"Panel enter", "Panel down mbLeft [ssLeft] 25,35",
                                           "Panel up mbLeft [] 25,35", "Panel click"}));
  Log.clear();
  Box->TakesMouse = true;
  Box->SetEnabled(false);
  Win->Click(On(Box, 5, 5));
  EXPECT_EQ(Log.front(), "Panel down mbLeft [ssLeft] 25,35") << "a disabled control is skipped too";
}

TEST_F(Host, APressCapturesTheMouseUntilTheLastButtonIsUp) {
  Win->MouseDown(On(Box, 1, 1), mbLeft);
  Win->MouseMove(On(Side, 2, 2));
  Win->MouseDown(On(Side, 2, 2), mbRight);
  Win->MouseUp(On(Side, 2, 2), mbLeft);
  Win->MouseUp(On(Side, 3, 3), mbRight);
  EXPECT_EQ(Log, (std::vector<std::string>{
                     "Box enter", "Box down mbLeft [ssLeft] 1,1", "Box move [ssLeft] 222,-28",
                     "Box down mbRight [ssLeft,ssRight] 222,-28", "Box up mbLeft [ssRight] 222,-28",
                     "Box up mbRight [] 223,-27", "Box leave", "Side enter"}))
      << "no click away from the box; the leave waits for the release";
  EXPECT_EQ(Win->CaptureControl(), nullptr);
  EXPECT_EQ(Win->MouseControl(), Side);
}

TEST_F(Host, MovingOffAControlSendsLeaveThenEnterAndExitSendsLeave) {
  Win->MouseMove(On(Box, 1, 1));
  Win->MouseMove(On(Box, 2, 2));
  Win->MouseMove(On(Panel, 1, 1), {ssShift});
  Win->MouseExit();
  Win->MouseExit();
  EXPECT_EQ(
      Log, (std::vector<std::string>{"Box enter", "Box move [] 1,1", "Box move [] 2,2", "Box leave",
                                     "Panel enter", "Panel move [ssShift] 1,1", "Panel leave"}));
}

TEST_F(Host, TheWheelIsOfferedToTheControlUnderTheMouseThenToItsParents) {
  EXPECT_FALSE(Win->MouseWheel(On(Box, 3, 4), 120, {ssCtrl}));
  EXPECT_EQ(Log, (std::vector<std::string>{"Box enter", "Box wheel 120 [ssCtrl] 3,4",
                                           "Panel wheel 120 [ssCtrl] 23,34"}));
  Log.clear();
  Box->UsesWheel = true;
  EXPECT_TRUE(Win->MouseWheel(On(Box, 3, 4), -240));
  EXPECT_EQ(Log, (std::vector<std::string>{"Box wheel -240 [] 3,4"}));
  // While captured, the turn goes to the capture wherever the mouse is.
  Log.clear();
  Win->MouseDown(On(Box, 1, 1), mbLeft);
  Win->MouseWheel(On(Side, 1, 1), 120);
  EXPECT_EQ(Log.back(), "Box wheel 120 [ssLeft] 221,-29");
}

TEST_F(Host, AReleaseWhoseHandlerRaisesStillEndsTheCapture) {
  Panel->SetOnMouseUp([](TObject*, TMouseButton, TShiftState, int32_t, int32_t) {
    throw EInvalidOperation("up");
  });
  Win->MouseDown(On(Panel, 1, 1), mbLeft);
  EXPECT_THROW(Win->MouseUp(On(Panel, 1, 1), mbLeft), EInvalidOperation);
  EXPECT_EQ(Win->CaptureControl(), nullptr);
  Win->MouseMove(On(Side, 1, 1));
  EXPECT_EQ(Win->MouseControl(), Side);
}

TEST_F(Host, ADoubleClickCarriesSsDouble) {
  Win->MouseDown(On(Panel, 4, 4), mbLeft, {}, true);
  EXPECT_EQ(Log.back(), "Panel down mbLeft [ssLeft,ssDouble] 4,4");
}

TEST_F(Host, AControlFreedByItsOwnHandlerLeavesNothingDangling) {
  Box->SetOnMouseDown([&](TObject*, TMouseButton, TShiftState, int32_t, int32_t) { Box->Free(); });
  Win->MouseMove(On(Box, 1, 1));
  Win->MouseDown(On(Box, 1, 1), mbLeft);
  EXPECT_EQ(Win->CaptureControl(), nullptr);
  EXPECT_EQ(Win->MouseControl(), nullptr);
  Win->MouseMove(On(Panel, 50, 50));
  Win->MouseUp(On(Panel, 50, 50), mbLeft);
  EXPECT_EQ(Win->MouseControl(), Panel);
  Form.reset();
  EXPECT_EQ(Win->WindowCount(), 0);
  Win->MouseMove({150, 100});
  EXPECT_EQ(Win->ControlAt({150, 100}), nullptr);
}

TEST_F(Host, TheCursorIsTheScreensOrTheNearestOneUnderTheMouse) {
  Panel->SetCursor(crCross);
  Win->MouseMove(On(Box, 1, 1));
  EXPECT_EQ(Win->Cursor(), crCross) << "the box has none of its own";
  Box->SetCursor(crHandPoint);
  EXPECT_EQ(Win->Cursor(), crHandPoint);
  Screen.SetCursor(crSizeWE);
  EXPECT_EQ(Win->Cursor(), crSizeWE);
  Screen.SetCursor(crDefault);
  Win->MouseMove(On(Side, 1, 1));
  EXPECT_EQ(Win->Cursor(), crDefault);
}

// --- Painting ---

TEST_F(Host, ProcessPaintsPaintsEachWaitingWindowOnce) {
  int Paints = 0;
  Form->SetOnPaint([&](TObject*) { ++Paints; });
  EXPECT_EQ(Win->ProcessPaints(), 2) << "the form and the panel wait for their first paint";
  EXPECT_EQ(Win->ProcessPaints(), 0);
  Form->Invalidate();
  Form->Invalidate();
  Side->Invalidate();
  EXPECT_EQ(Win->ProcessPaints(), 1);
  EXPECT_EQ(Paints, 2);
  Panel->SetVisible(false);
  Panel->Invalidate();
  EXPECT_EQ(Win->ProcessPaints(), 0)
      << "a hidden window waits, and the form's own pixels did not change under it";
  Panel->SetVisible(true);
  EXPECT_EQ(Win->ProcessPaints(), 1);
}

TEST_F(Host, CaptureComposesChildWindowsAndShowsDrawingDoneOutsidePaint) {
  Form->SetColor(clWhite);
  Panel->SetColor(clYellow);
  Box->SetOnPaint([&](TObject*) {
    Box->Canvas()->Brush()->SetColor(clBlue);
    Box->Canvas()->FillRect(Box->ClientRect());
  });
  Win->ProcessPaints();
  TOwned<TBitmap> Shot = Win->Capture(Form.get());
  EXPECT_EQ(Shot->Width(), 300);
  EXPECT_EQ(Shot->Canvas()->Pixel(5, 5), clWhite);
  EXPECT_EQ(Shot->Canvas()->Pixel(100, 150), clYellow);
  EXPECT_EQ(Shot->Canvas()->Pixel(35, 45), clBlue);
  // A crosshair drawn straight onto the panel's canvas shows without a paint.
  Panel->Canvas()->Pen()->SetMode(pmXor);
  Panel->Canvas()->Pen()->SetColor(clWhite);
  Panel->Canvas()->MoveTo(100, 0);
  Panel->Canvas()->LineTo(100, 150);
  EXPECT_EQ(Win->Capture(Form.get())->Canvas()->Pixel(110, 120), ColorToRGB(clYellow) ^ 0xFFFFFF);
  // Painting tells a host which part of the window to show again; drawing outside Paint
  // tells it only when reported.
  Panel->TakeScreenDamage();
  Panel->Invalidate();
  Win->ProcessPaints();
  Panel->InvalidateScreen({5, 5, 10, 10});
  EXPECT_EQ(Panel->TakeScreenDamage(), (std::vector<TRect>{Panel->ClientRect()}))
      << "a part already to be shown adds nothing";
  EXPECT_TRUE(Panel->TakeScreenDamage().empty());
  for (int I = 0; I < 40; ++I)
    Panel->InvalidateScreen({I, 0, I + 1, 500});
  const std::vector<TRect> Many = Panel->TakeScreenDamage();
  EXPECT_LE(Many.size(), 16u) << "many rectangles are gathered into few";
  TRect All = Many.front();
  for (const TRect& D : Many) {
    EXPECT_EQ(D.Bottom, 150) << "clipped to the window";
    All = {std::min(All.Left, D.Left), 0, std::max(All.Right, D.Right), 150};
  }
  EXPECT_EQ(All, (TRect{0, 0, 40, 150}));
  // A graphic control's picture is the part of its parent's under it.
  TOwned<TBitmap> Part = Win->Capture(Box);
  EXPECT_EQ(Part->Width(), 40);
  EXPECT_EQ(test::CountPixels(Part.get(), [](TColor C) { return C == clBlue; }), 1600);
}

TEST_F(Host, SaveToFileWritesWhatCaptureShows) {
  test::TTempDir Dir;
  Win->ProcessPaints();
  Win->SaveToFile(Panel, Dir / "panel.png");
  TOwned<TBitmap> Back = MakeOwned<TBitmap>();
  Back->LoadFromFile((Dir / "panel.png").string());
  EXPECT_EQ(test::PixelBytes(Back.get()), test::PixelBytes(Win->Capture(Panel).get()));
  EXPECT_THROW(Win->SaveToFile(Panel, Dir / "no" / "such" / "dir.png"), EInvalidGraphic);
}

TEST_F(Host, AWindowWithAParentCannotBeShownOnItsOwn) {
  EXPECT_THROW(Win->AddWindow(Panel), EInvalidOperation);
  EXPECT_EQ(Win->WindowCount(), 1);
}

// --- Hint window ---

struct THintCase {
  int32_t Corner;
  bool Left, Above;
};

class HintPlace : public testing::TestWithParam<THintCase> {};

TEST_P(HintPlace, CornerPutsTheHintOnItsSideOfThePointClearOfIt) {
  const THintCase& C = GetParam();
  TOwned<TKXHintWindow> H = MakeOwned<TKXHintWindow>(nullptr);
  H->SetCorner(C.Corner);
  H->ActivateHint({500, 400}, "12.5, 7");
  const TRect R = H->BoundsRect();
  const int32_t Gap = TKXHintWindow::HintGap;
  EXPECT_EQ(C.Left ? R.Right : R.Left, C.Left ? 500 - Gap : 500 + Gap);
  EXPECT_EQ(C.Above ? R.Bottom : R.Top, C.Above ? 400 - Gap : 400 + Gap);
  EXPECT_GT(R.Width(), H->Canvas()->TextWidth("12.5, 7"));
}

INSTANTIATE_TEST_SUITE_P(Corners, HintPlace,
                         testing::Values(THintCase{0, false, false}, THintCase{1, true, false},
                                         THintCase{2, false, true}, THintCase{3, true, true},
                                         THintCase{7, false, false}));

TEST(HintWindow, AnIntervalDelaysTheShowAndHideCancelsIt) {
  TOwned<TKXHost> Win = MakeOwned<TKXHost>();
  TOwned<TKXHintWindow> H = MakeOwned<TKXHintWindow>(nullptr);
  H->SetInterval(300);
  H->ActivateHint({10, 10}, "a");
  EXPECT_FALSE(H->Visible());
  EXPECT_TRUE(H->Pending());
  Win->AdvanceTime(200);
  EXPECT_FALSE(H->Visible());
  Win->AdvanceTime(100);
  EXPECT_TRUE(H->Visible());
  H->ActivateHint({20, 20}, "b");
  EXPECT_TRUE(H->Visible()) << "a showing hint moves without waiting again";
  H->Hide();
  H->ActivateHint({20, 20}, "c");
  H->Hide();
  Win->AdvanceTime(1000);
  EXPECT_FALSE(H->Visible());
  EXPECT_FALSE(H->Pending());
}

TEST(HintWindow, ShowsAboveTheFormsAndPaintsItsTextOnInfoColours) {
  TOwned<TKXHost> Win = MakeOwned<TKXHost>();
  TOwned<TForm> Form = MakeOwned<TForm>(nullptr);
  Win->AddWindow(Form.get());
  TOwned<TKXHintWindow> H = MakeOwned<TKXHintWindow>(nullptr);
  H->ActivateHint({100, 100}, "Hint");
  EXPECT_EQ(Win->ControlAt({110, 110}), H.get());
  Win->ProcessPaints();
  TOwned<TBitmap> Shot = Win->Capture(H.get());
  EXPECT_EQ(Shot->Canvas()->Pixel(0, 0), ColorToRGB(clInfoText));
  EXPECT_EQ(Shot->Canvas()->Pixel(2, 2), ColorToRGB(clInfoBk));
  EXPECT_GT(test::CountPixels(Shot.get(), {2, 2, H->Width() - 2, H->Height() - 2},
                              [](TColor C) { return C != ColorToRGB(clInfoBk); }),
            10)
      << "the text is painted";
  H->Hide();
  EXPECT_EQ(Win->ControlAt({110, 110}), Form.get());
  const int32_t Before = Screen.PopupCount();
  H.reset();
  EXPECT_EQ(Screen.PopupCount(), Before - 1);
}

} // namespace
} // namespace kx
