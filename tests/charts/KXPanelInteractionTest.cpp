// A chart panel driven by the mouse through the headless host, as a window system drives it:
// the zoom box, unzooming, panning, selecting, the crosshair and its hint, the wheel, and
// the state left behind when a handler raises.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "KXChartsTestSupport.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHost.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {
namespace {

using test::PixelBytes;

// A form at (50, 40) on the host's screen holding a 400 x 300 panel at (0, 0), whose bottom
// and left axes run 0..100. A line chart holds (10, 10), (20, 20) .. (90, 90).
class PanelMouse : public testing::Test {
protected:
  void SetUp() override {
    Screen.SetCursor(crDefault);
    Form.reset(New<TForm>(nullptr));
    Form->SetBounds(50, 40, 400, 300);
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetParent(Form.get());
    Panel->SetBounds(0, 0, 400, 300);
    Panel->ChartShadow()->SetVisible(false);
    // Setting an end takes it off automatic (setting 0 over the starting 0 would not).
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()}) {
      A->SetMinimum(-1);
      A->SetMaximum(100);
      A->SetMinimum(0);
    }
    Chart = New<TKXLineChart>(Form.get());
    Chart->SetOptions(Chart->Options() - coValueLabels);
    for (int I = 1; I <= 9; ++I)
      Chart->Values()->Add(10.0 * I, 10.0 * I);
    Chart->SetPanel(Panel);
    Panel->SetOnZoom([this](TObject*) { ++Zooms; });
    Panel->SetOnUnzoom([this](TObject*) { ++Unzooms; });
    Panel->SetOnPan([this](TObject*) { ++Pans; });
    Host = MakeOwned<TKXHost>();
    Host->AddWindow(Form.get());
    Host->ProcessPaints();
    R = Panel->ChartRect();
  }
  void TearDown() override { Screen.SetCursor(crDefault); }

  // The screen point at fractions of the plot rectangle, (0, 0) its top left.
  TPoint At(double FX, double FY) const {
    return Panel->ClientToScreen({R.Left + static_cast<int32_t>(std::lround(FX * R.Width())),
                                  R.Top + static_cast<int32_t>(std::lround(FY * R.Height()))});
  }
  // One pixel in axis units, the tolerance of a range read off pixels.
  double PixelX() const { return 100.0 / R.Width(); }
  double PixelY() const { return 100.0 / R.Height(); }
  std::vector<uint8_t> Pixels() const { return PixelBytes(Panel->Bitmap()); }
  int32_t Selected() const {
    int32_t N = 0;
    for (int32_t I = 0; I < Chart->Values()->Count(); ++I)
      N += Chart->Values()->Items(I)->Selected() ? 1 : 0;
    return N;
  }

  TOwned<TForm> Form;
  TKXChartPanel* Panel = nullptr;
  TKXLineChart* Chart = nullptr;
  TOwned<TKXHost> Host;
  TRect R;
  int Zooms = 0, Unzooms = 0, Pans = 0;
};

// --- The zoom box ---

struct TZoomCase {
  const char* Name;
  double X1, Y1, X2, Y2;
  TShiftState Keys;         // held through the drag
  TShiftState ReleaseKeys;  // held at the release
  double BottomMin, BottomMax, LeftMin, LeftMax;
  int Zooms, Unzooms;
};

class PanelZoomBox : public PanelMouse, public testing::WithParamInterface<TZoomCase> {};

TEST_P(PanelZoomBox, ZoomsTheBottomAndLeftAxesToTheBoxOrUnzooms) {
  const TZoomCase& C = GetParam();
  // Start zoomed in code, so that an unzoom shows.
  Panel->Zoom(TRectF{5, 5, 95, 95}, true, true);
  Host->ProcessPaints();
  R = Panel->ChartRect();
  Zooms = 0;
  const auto Before = Pixels();
  Host->MouseDown(At(C.X1, C.Y1), mbLeft, C.Keys);
  const int Steps = 4;
  for (int I = 1; I <= Steps; ++I)
    Host->MouseMove(At(C.X1 + (C.X2 - C.X1) * I / Steps, C.Y1 + (C.Y2 - C.Y1) * I / Steps),
                    C.Keys);
  EXPECT_EQ(Panel->UserAction(), uaxZoom);
  Host->MouseUp(At(C.X2, C.Y2), mbLeft, C.ReleaseKeys);
  EXPECT_EQ(Panel->UserAction(), uaxNone);
  EXPECT_EQ(Zooms, C.Zooms);
  EXPECT_EQ(Unzooms, C.Unzooms);
  const TKXChartAxis* B = Panel->BottomAxis();
  const TKXChartAxis* L = Panel->LeftAxis();
  // The zoom was read off the picture of 5..95.
  const double TX = PixelX(), TY = PixelY();
  EXPECT_NEAR(B->ZoomMinimum(), C.BottomMin, TX);
  EXPECT_NEAR(B->ZoomMaximum(), C.BottomMax, TX);
  EXPECT_NEAR(L->ZoomMinimum(), C.LeftMin, TY);
  EXPECT_NEAR(L->ZoomMaximum(), C.LeftMax, TY);
  if (C.Zooms + C.Unzooms == 0) {
    // Nothing happened, and the box is gone from the picture: all pixels as before, but for
    // the crosshair, which the move that leaves the plot erases.
    Host->MouseMove(Panel->ClientToScreen({1, 1}));
    EXPECT_EQ(Pixels(), Before);
  }
}

const TShiftState NoKeys{};
const TShiftState ShiftKey{ssShift};

INSTANTIATE_TEST_SUITE_P(
    Drags, PanelZoomBox,
    testing::Values(
        // A box from 20 % to 60 % of the plot across and from 20 % to 50 % down; the axes
        // showed 5..95, so that is 23..59 across and 50..77 up.
        TZoomCase{"RightAndDown", 0.2, 0.2, 0.6, 0.5, NoKeys, NoKeys, 23, 59, 50, 77, 1, 0},
        TZoomCase{"RightAndUp", 0.2, 0.5, 0.6, 0.2, NoKeys, NoKeys, 23, 59, 50, 77, 1, 0},
        TZoomCase{"LeftUnzooms", 0.6, 0.2, 0.2, 0.5, NoKeys, NoKeys, 0, 100, 0, 100, 0, 1},
        TZoomCase{"LeftAndUpUnzooms", 0.6, 0.5, 0.2, 0.2, NoKeys, NoKeys, 0, 100, 0, 100, 0, 1},
        // Beyond the plot the box ends at the end of what the axes show.
        TZoomCase{"BeyondThePlot", 0.5, 0.5, 1.4, -0.6, NoKeys, NoKeys, 50, 95, 50, 95, 1, 0},
        // Shift keeps the plot's shape: the box is as much higher as it is wider, in parts
        // of the plot, whatever the mouse's height (here 0.4 of the width gives 0.4 down).
        TZoomCase{"ShiftKeepsTheShape", 0.2, 0.2, 0.6, 0.9, ShiftKey, ShiftKey, 23, 59, 41, 77,
                  1, 0},
        // The release decides: Shift let go first gives the box as the mouse left it.
        TZoomCase{"ShiftLetGoFirst", 0.2, 0.2, 0.6, 0.9, ShiftKey, NoKeys, 23, 59, 14, 77, 1, 0},
        // A box of no width or no height does nothing.
        TZoomCase{"NoWidth", 0.3, 0.2, 0.3, 0.6, NoKeys, NoKeys, 5, 95, 5, 95, 0, 0},
        TZoomCase{"NoHeight", 0.3, 0.4, 0.7, 0.4, NoKeys, NoKeys, 5, 95, 5, 95, 0, 0},
        TZoomCase{"Click", 0.3, 0.4, 0.3, 0.4, NoKeys, NoKeys, 5, 95, 5, 95, 0, 0}),
    [](const testing::TestParamInfo<TZoomCase>& I) { return std::string(I.param.Name); });

TEST_F(PanelMouse, TheBoxIsInvertedWhileDraggedAndGoneAtTheRelease) {
  Panel->SetUserActions(Panel->UserActions() - uaMouseTracking);
  const auto Before = Pixels();
  const TOwned<TBitmap> Clean = Host->Capture(Panel);
  Host->MouseDown(At(0.2, 0.2), mbLeft);
  Host->MouseMove(At(0.5, 0.6));
  const TRect Box = FixRect(Panel->SelectionBox());
  EXPECT_EQ(Panel->ClientToScreen({Box.Right, Box.Bottom}), At(0.5, 0.6));
  // The frame's corner is inverted; the inside of the box is not.
  EXPECT_EQ(Panel->Canvas()->Pixel(Box.Left, Box.Top),
            TColor(Clean->Canvas()->Pixel(Box.Left, Box.Top) ^ 0xFFFFFF));
  EXPECT_EQ(Panel->Canvas()->Pixel(Box.Left + 5, Box.Top + 5),
            Clean->Canvas()->Pixel(Box.Left + 5, Box.Top + 5));
  // Inverting it once more gives the clean picture: it was drawn exactly once.
  Panel->Canvas()->DrawFocusRect(Panel->SelectionBox());
  EXPECT_EQ(Pixels(), Before);
  Panel->Canvas()->DrawFocusRect(Panel->SelectionBox());
  // Released leftwards of the press: an unzoom, which repaints only later.
  Host->MouseUp(At(0.1, 0.6), mbLeft);
  EXPECT_EQ(Unzooms, 1);
  EXPECT_EQ(Pixels(), Before);
}

TEST_F(PanelMouse, APaintDuringTheDragKeepsTheBoxSoThatTheNextMoveErasesIt) {
  Panel->SetUserActions(Panel->UserActions() - uaMouseTracking);
  Host->MouseDown(At(0.2, 0.2), mbLeft);
  Host->MouseMove(At(0.5, 0.6));
  const auto WithBox = Pixels();
  Panel->Repaint();
  EXPECT_EQ(Pixels(), WithBox);
  Host->MouseMove(At(0.4, 0.4));
  Host->MouseMove(At(0.5, 0.6));
  EXPECT_EQ(Pixels(), WithBox);
  Host->MouseUp(At(0.1, 0.6), mbLeft);
}

TEST_F(PanelMouse, ZoomSwitchedOffOrOtherButtonsDoNothing) {
  Panel->SetUserActions(Panel->UserActions() - uaZoom);
  Host->Drag(At(0.2, 0.2), At(0.6, 0.6));
  Panel->SetUserActions(Panel->UserActions() + uaZoom);
  Host->Drag(At(0.2, 0.2), At(0.6, 0.6), {}, mbRight);
  EXPECT_EQ(Zooms, 0);
  EXPECT_FALSE(Panel->BottomAxis()->Zooming());
}

// --- Panning ---

struct TPanCase {
  const char* Name;
  bool ReverseBottom, ReverseLeft;
  double DX, DY; // the drag in parts of the plot
  double BottomMin, LeftMin;
};

class PanelPan : public PanelMouse, public testing::WithParamInterface<TPanCase> {};

TEST_P(PanelPan, AltDragMovesAZoomedRangeByTheMouseWithTheHandCursor) {
  const TPanCase& C = GetParam();
  if (C.ReverseBottom)
    Panel->BottomAxis()->SetOptions(Panel->BottomAxis()->Options() + aoReversed);
  if (C.ReverseLeft) Panel->LeftAxis()->SetOptions(Panel->LeftAxis()->Options() + aoReversed);
  Panel->Zoom(TRectF{40, 40, 60, 60}, true, true);
  Host->ProcessPaints();
  R = Panel->ChartRect();
  const TShiftState Alt{ssAlt};
  Host->MouseDown(At(0.5, 0.5), mbLeft, Alt);
  EXPECT_EQ(Panel->UserAction(), uaxPan);
  EXPECT_EQ(Host->Cursor(), crHandPoint);
  for (int I = 1; I <= 4; ++I)
    Host->MouseMove(At(0.5 + C.DX * I / 4, 0.5 + C.DY * I / 4), Alt);
  EXPECT_EQ(Pans, 4);
  Host->MouseUp(At(0.5 + C.DX, 0.5 + C.DY), mbLeft, Alt);
  EXPECT_EQ(Host->Cursor(), crDefault);
  EXPECT_NEAR(Panel->BottomAxis()->ZoomMinimum(), C.BottomMin, 0.2);
  EXPECT_NEAR(Panel->BottomAxis()->ZoomMaximum(), C.BottomMin + 20, 0.2);
  EXPECT_NEAR(Panel->LeftAxis()->ZoomMinimum(), C.LeftMin, 0.2);
  EXPECT_NEAR(Panel->LeftAxis()->ZoomMaximum(), C.LeftMin + 20, 0.2);
  EXPECT_EQ(Zooms, 1);
}

INSTANTIATE_TEST_SUITE_P(
    Drags, PanelPan,
    testing::Values(
        // A drag to the right by a quarter of the plot shows what lay a quarter of the
        // zoomed range (5) to the left; a drag down shows what lay above.
        TPanCase{"Plain", false, false, 0.25, 0.25, 35, 45},
        TPanCase{"ReversedBottom", true, false, 0.25, 0.25, 45, 45},
        TPanCase{"ReversedLeft", false, true, 0.25, 0.25, 35, 35},
        // Past the end of the range the pan stops there.
        TPanCase{"PastTheEnd", false, false, -6.0, 6.0, 80, 80}),
    [](const testing::TestParamInfo<TPanCase>& I) { return std::string(I.param.Name); });

TEST_F(PanelMouse, AltDragOnAnUnzoomedPanelStartsNothing) {
  Host->MouseDown(At(0.5, 0.5), mbLeft, {ssAlt});
  EXPECT_EQ(Panel->UserAction(), uaxNone);
  EXPECT_EQ(Host->Cursor(), crDefault);
  Host->MouseMove(At(0.7, 0.7), {ssAlt});
  Host->MouseUp(At(0.7, 0.7), mbLeft, {ssAlt});
  EXPECT_EQ(Pans + Zooms + Unzooms, 0);
}

TEST_F(PanelMouse, PansFromCodeInPixelsAndUnitsRaiseOnPanAndStopAtHugeSteps) {
  Panel->Zoom(TRectF{40, 40, 60, 60}, true, true);
  Panel->Pan(10.0, -10.0, true, true);
  EXPECT_DOUBLE_EQ(Panel->BottomAxis()->ZoomMinimum(), 50);
  EXPECT_DOUBLE_EQ(Panel->LeftAxis()->ZoomMinimum(), 30);
  const double Inf = std::numeric_limits<double>::infinity();
  for (double Step : {1e308, -1e308, Inf, -Inf, std::nan("")}) {
    Panel->Pan(Step, Step, true, true);
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()}) {
      EXPECT_GE(A->ZoomMinimum(), 0);
      EXPECT_LE(A->ZoomMaximum(), 100);
      EXPECT_NEAR(A->ZoomMaximum() - A->ZoomMinimum(), 20, 1e-9);
    }
  }
  Panel->Pan(int32_t(R.Width() / 2), int32_t(0), true, true);
  EXPECT_EQ(Pans, 7);
  // The other pair of axes is left alone.
  EXPECT_FALSE(Panel->TopAxis()->Zooming());
}

// --- Selecting ---

struct TSelectCase {
  const char* Name;
  TShiftState Keys, ReleaseKeys;
  int32_t FirstDrag, SecondDrag; // values selected after one drag, and after the same again
};

class PanelSelect : public PanelMouse, public testing::WithParamInterface<TSelectCase> {};

TEST_P(PanelSelect, CtrlDragTogglesTheValuesInTheBox) {
  const TSelectCase& C = GetParam();
  Panel->SetUserActions(Panel->UserActions() + uaSelect);
  // Values 30, 40 and 50 lie in a box from 25 to 55 on both axes, dragged right and
  // down (the way a box that keeps the plot's shape grows).
  for (int Round = 0; Round < 2; ++Round) {
    Host->MouseDown(At(0.25, 0.45), mbLeft, C.Keys);
    EXPECT_EQ(Panel->UserAction(), uaxSelect);
    Host->MouseMove(At(0.55, 0.75), C.Keys);
    Host->MouseUp(At(0.55, 0.75), mbLeft, C.ReleaseKeys);
    EXPECT_EQ(Selected(), Round == 0 ? C.FirstDrag : C.SecondDrag) << "round " << Round;
  }
  EXPECT_EQ(Zooms, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Drags, PanelSelect,
    testing::Values(TSelectCase{"Ctrl", {ssCtrl}, {ssCtrl}, 3, 0},
                    // Ctrl let go before the button: nothing is selected.
                    TSelectCase{"CtrlLetGoFirst", {ssCtrl}, {}, 0, 0},
                    // With Shift the box keeps the plot's shape (the same box here, as it
                    // is as wide as high in parts of the plot), and it selects.
                    TSelectCase{"ShiftCtrl", {ssShift, ssCtrl}, {ssShift, ssCtrl}, 3, 0}),
    [](const testing::TestParamInfo<TSelectCase>& I) { return std::string(I.param.Name); });

TEST_F(PanelMouse, CtrlDragWithoutSelectionSwitchedOnZoomsNothingAndSelectsNothing) {
  Host->Drag(At(0.25, 0.75), At(0.55, 0.45), {ssCtrl});
  EXPECT_EQ(Selected(), 0);
  EXPECT_EQ(Zooms, 0);
}

TEST_F(PanelMouse, SelectFromCodeByActionAndTheListenersHearOneChange) {
  struct TCounter : IChartPanelListener {
    int Changes = 0, Selections = 0;
    void PanelChange() override { ++Changes; }
    void ChartAdded(TKXCustomChart*) override {}
    void ChartDeleted(TKXCustomChart*) override {}
    void ChartChanged(TKXCustomChart*) override {}
    void ValueChanged(TKXCustomChart*, TKXChartValue*) override {}
    void SelectionChanged(TObject*) override { ++Selections; }
    void VisibleChanged(TObject*) override {}
  } Listener;
  Panel->Listeners()->Add(&Listener);
  const TRect Box = FixRect(TRect{Panel->ScreenToClient(At(0.25, 0.75)).X,
                                  Panel->ScreenToClient(At(0.25, 0.75)).Y,
                                  Panel->ScreenToClient(At(0.55, 0.45)).X,
                                  Panel->ScreenToClient(At(0.55, 0.45)).Y});
  struct {
    TKXChartSelectionAction Action;
    int32_t Selected;
  } Steps[] = {{saSelect, 3}, {saSelect, 3}, {saToggle, 0}, {saToggle, 3}, {saUnselect, 0}};
  for (const auto& S : Steps) {
    Panel->Select(Box, S.Action);
    EXPECT_EQ(Selected(), S.Selected) << GetEnumName(S.Action);
  }
  EXPECT_EQ(Listener.Selections, 0);
  EXPECT_EQ(Listener.Changes, 5);
  // saUnselect clears whatever the rectangle.
  Panel->Select(Box, saSelect);
  Panel->Select(TRect{0, 0, 1, 1}, saUnselect);
  EXPECT_EQ(Selected(), 0);
  Panel->Listeners()->Remove(&Listener);
}

TEST_F(PanelMouse, SelectOnAnEmptyOrHiddenChartDoesNothing) {
  Chart->Values()->Clear();
  Panel->Select(R, saToggle);
  auto* Hidden = New<TKXLineChart>(Form.get());
  Hidden->Values()->Add(50, 50);
  Hidden->SetVisible(false);
  Hidden->SetPanel(Panel);
  Panel->Select(R, saSelect);
  EXPECT_FALSE(Hidden->Values()->Items(0)->Selected());
}

// A chart that answers IsSelectable over the left half of the plot and notes its hovers.
class THoverChart : public TKXLineChart {
  KX_CLASS(THoverChart, TKXLineChart)

public:
  using TKXLineChart::TKXLineChart;
  TRect Area;
  int Hovers = 0;
  bool IsSelectable(const TRect& SelectionRect) const override {
    return PtInRect(Area, SelectionRect.TopLeft());
  }
  void MouseHover(const TRect& ARect) override {
    ++Hovers;
    TKXLineChart::MouseHover(ARect);
  }
};

TEST_F(PanelMouse, HoverWithTheSelectKeysGoesToTheTopmostSelectableChartAndShowsItsCursor) {
  Panel->SetUserActions(Panel->UserActions() + uaSelect);
  THoverChart* Under = New<THoverChart>(Form.get());
  THoverChart* Over = New<THoverChart>(Form.get());
  for (THoverChart* H : {Under, Over}) {
    H->Area = {R.Left, R.Top, R.Left + R.Width() / 2, R.Bottom};
    H->Values()->Add(50, 50);
    H->SetPanel(Panel);
  }
  Over->SetCursor(crCross);
  Host->MouseMove(At(0.25, 0.5), {ssCtrl});
  EXPECT_EQ(Over->Hovers, 1);
  EXPECT_EQ(Under->Hovers, 0);
  EXPECT_EQ(Host->Cursor(), crCross);
  Host->MouseMove(At(0.75, 0.5), {ssCtrl});
  EXPECT_EQ(Host->Cursor(), crDefault);
  Host->MouseMove(At(0.25, 0.5));
  EXPECT_EQ(Over->Hovers, 1) << "without Ctrl there is no hover";
  Panel->SetUserActions(Panel->UserActions() - uaSelect);
  Host->MouseMove(At(0.25, 0.5), {ssCtrl});
  EXPECT_EQ(Over->Hovers, 1) << "nor without selection switched on";
}

// --- Crosshair and hint ---

TEST_F(PanelMouse, TheCrosshairIsXoredAcrossThePlotAndPutBackExactly) {
  // A canvas pen in an odd state before the move, as a paint handler may leave it.
  TPen* Pen = Panel->Canvas()->Pen();
  Pen->SetColor(clRed);
  Pen->SetWidth(3);
  Pen->SetStyle(psDot);
  const auto Before = Pixels();
  const TOwned<TBitmap> Clean = Host->Capture(Panel);
  const auto CleanPixel = [&](int32_t X, int32_t Y) { return Clean->Canvas()->Pixel(X, Y); };
  const TPoint P = Panel->ScreenToClient(At(0.3, 0.6));
  Host->MouseMove(At(0.3, 0.6));
  ASSERT_TRUE(Panel->MouseTrackingOn());
  EXPECT_EQ(Panel->MouseTrackingPoint(), P);
  TCanvas* C = Panel->Canvas();
  // Every pixel of the row and the column inside the plot is the clean one XOR 0xA9A9A9,
  // but for the crossing, XORed twice; nothing outside the plot changed.
  for (int32_t X = R.Left; X < R.Right; ++X) {
    if (X == P.X) continue;
    ASSERT_EQ(C->Pixel(X, P.Y), TColor(CleanPixel(X, P.Y) ^ 0xA9A9A9)) << X;
  }
  for (int32_t Y = R.Top; Y < R.Bottom; ++Y) {
    if (Y == P.Y) continue;
    ASSERT_EQ(C->Pixel(P.X, Y), TColor(CleanPixel(P.X, Y) ^ 0xA9A9A9)) << Y;
  }
  EXPECT_EQ(C->Pixel(P.X, P.Y), CleanPixel(P.X, P.Y));
  EXPECT_EQ(C->Pixel(R.Right, P.Y), CleanPixel(R.Right, P.Y));
  EXPECT_EQ(C->Pixel(P.X, R.Top - 1), CleanPixel(P.X, R.Top - 1));
  EXPECT_EQ(Pen->Mode(), pmCopy) << "the canvas's pen is put back";
  EXPECT_EQ(Pen->Color(), clRed);
  EXPECT_EQ(Pen->Width(), 3);
  EXPECT_EQ(Pen->Style(), psDot);
  Host->MouseMove(At(0.7, 0.2));
  Host->MouseExit();
  EXPECT_FALSE(Panel->MouseTrackingOn());
  EXPECT_EQ(Pixels(), Before);
}

TEST_F(PanelMouse, TheHintShowsTheAxisValuesAboveRightOfThePointerAndHidesOffThePlot) {
  TKXHintWindow* Hint = Panel->HintWindow();
  ASSERT_NE(Hint, nullptr);
  const TPoint Corner = Panel->ClientToScreen({R.Left, R.Bottom - 1});
  Host->MouseMove(Corner);
  ASSERT_TRUE(Hint->Visible());
  const double Y = Panel->LeftAxis()->PixelToAxis(R.Bottom - 1, false);
  EXPECT_EQ(Hint->Text(), "0, " + Panel->LeftAxis()->FormatValue(Y));
  EXPECT_LT(Y, 1.0);
  EXPECT_EQ(Hint->HintPoint(), Corner);
  EXPECT_GT(Hint->Left(), Corner.X);
  EXPECT_LT(Hint->Top() + Hint->Height(), Corner.Y);
  // At the far corner both values are a pixel short of 100.
  Host->MouseMove(Panel->ClientToScreen({R.Right - 1, R.Top}));
  const std::string Text = Hint->Text();
  const size_t Comma = Text.find(", ");
  ASSERT_NE(Comma, std::string::npos) << Text;
  EXPECT_NEAR(std::stod(Text.substr(0, Comma)), 100, 1.5 * PixelX()) << Text;
  EXPECT_NEAR(std::stod(Text.substr(Comma + 2)), 100, 1.5 * PixelY()) << Text;
  // Leaving the plot hides the hint and takes the crosshair off.
  Host->MouseMove(Panel->ClientToScreen({R.Left - 3, R.Top + 5}));
  EXPECT_FALSE(Hint->Visible());
  EXPECT_FALSE(Panel->MouseTrackingOn());
  // Leaving the panel after a paint wiped the crosshair still hides the hint.
  Host->MouseMove(At(0.5, 0.5));
  Panel->Repaint();
  EXPECT_FALSE(Panel->MouseTrackingOn());
  const auto Painted = Pixels();
  Host->MouseExit();
  EXPECT_FALSE(Hint->Visible());
  EXPECT_EQ(Pixels(), Painted) << "a wiped crosshair is not erased again";
}

TEST_F(PanelMouse, WithoutMouseTrackingThereIsNoCrosshairAndNoHint) {
  Panel->SetUserActions(Panel->UserActions() - uaMouseTracking);
  const auto Clean = Pixels();
  Host->MouseMove(At(0.5, 0.5));
  EXPECT_FALSE(Panel->MouseTrackingOn());
  EXPECT_FALSE(Panel->HintWindow()->Visible());
  EXPECT_EQ(Pixels(), Clean);
}

TEST_F(PanelMouse, TheCrosshairAndTheBoxReportTheirPixelsToTheHostWithoutAPaint) {
  Host->ProcessPaints();
  Panel->TakeScreenDamage();
  Host->MouseMove(At(0.5, 0.5));
  const std::vector<TRect> Lines = Panel->TakeScreenDamage();
  ASSERT_EQ(Lines.size(), 2u);
  EXPECT_EQ(Lines[0].Height(), 1);
  EXPECT_EQ(Lines[1].Width(), 1);
  EXPECT_FALSE(Panel->NeedsPaint());
}

// --- Operations for code ---

TEST_F(PanelMouse, OnAReversedAxisTheTopOfAPixelRectangleIsTheLargerValue) {
  Panel->LeftAxis()->SetOptions(Panel->LeftAxis()->Options() + aoReversed);
  const TRectF A = TKXCustomChartPanel::RectToAxesRect(R, Panel->BottomAxis(), Panel->LeftAxis());
  EXPECT_GT(A.Top, A.Bottom);
  EXPECT_LT(A.Left, A.Right);
}

TEST_F(PanelMouse, ZoomFromCodeByCentreRaisesNoEventAndByRectangleOne) {
  Panel->Zoom(TPointF{50, 50}, 4.0f, 2.0f, true, true);
  EXPECT_EQ(Zooms, 0);
  EXPECT_DOUBLE_EQ(Panel->BottomAxis()->ZoomMinimum(), 37.5);
  EXPECT_DOUBLE_EQ(Panel->LeftAxis()->ZoomMinimum(), 25);
  // The top and right axes: the bottom one stays as it was.
  Panel->Zoom(TRectF{10, 30, 30, 10}, false, false);
  EXPECT_EQ(Zooms, 1);
  EXPECT_DOUBLE_EQ(Panel->BottomAxis()->ZoomMinimum(), 37.5);
  Panel->Unzoom(true, true);
  EXPECT_EQ(Unzooms, 1);
  EXPECT_FALSE(Panel->BottomAxis()->Zooming());
}

// --- The wheel ---

TEST_F(PanelMouse, TheWheelZoomsOnlyWhenSwitchedOnAndKeepsTheValueUnderTheMouse) {
  EXPECT_FALSE(Host->MouseWheel(At(0.5, 0.5), 120));
  EXPECT_FALSE(Panel->BottomAxis()->Zooming());
  Panel->SetWheelZoom(true);
  ASSERT_TRUE(Host->MouseWheel(At(0.5, 0.5), 120));
  EXPECT_NEAR(Panel->BottomAxis()->ZoomMinimum(), 10, PixelX());
  EXPECT_NEAR(Panel->BottomAxis()->ZoomMaximum(), 90, PixelX());
  EXPECT_EQ(Zooms, 1);
  Host->MouseWheel(At(0.5, 0.5), -120);
  EXPECT_NEAR(Panel->BottomAxis()->ZoomMinimum(), 0, PixelX());
  EXPECT_NEAR(Panel->BottomAxis()->ZoomMaximum(), 100, PixelX());
  // Off centre the value under the mouse stays where it is.
  Host->ProcessPaints();
  const TPoint P = Panel->ScreenToClient(At(0.2, 0.3));
  const double X = Panel->BottomAxis()->PixelToAxis(P.X, false);
  const double Y = Panel->LeftAxis()->PixelToAxis(P.Y, false);
  // (Read before the next paint, which may move the plot as the labels change.)
  Host->MouseWheel(At(0.2, 0.3), 3 * 120);
  EXPECT_NEAR(Panel->BottomAxis()->PixelToAxis(P.X, false), X, PixelX());
  EXPECT_NEAR(Panel->LeftAxis()->PixelToAxis(P.Y, false), Y, PixelY());
  EXPECT_NEAR(Panel->BottomAxis()->SizeZoomed(), 100 / std::pow(1.25, 3), 1e-6);
  // Off the plot, or mid-drag, the wheel is not the panel's.
  EXPECT_FALSE(Host->MouseWheel(Panel->ClientToScreen({1, 1}), 120));
}

TEST_F(PanelMouse, WheelZoomIsStoredOnlyWhenSwitchedOn) {
  Form->SetName("Form1");
  Panel->SetName("Panel1");
  Chart->SetName("Chart1");
  EXPECT_EQ(SaveFormToString(Form.get()).find("WheelZoom"), std::string::npos);
  Panel->SetWheelZoom(true);
  const std::string Json = SaveFormToString(Form.get());
  EXPECT_NE(Json.find("\"WheelZoom\": true"), std::string::npos) << Json;
}

// --- Bad input and raising handlers ---

TEST_F(PanelMouse, ADragOnAPlotOfNoSizeLeavesDefinedRanges) {
  for (TRect Bounds : {TRect{0, 0, 30, 300}, TRect{0, 0, 400, 40}, TRect{0, 0, 0, 0}}) {
    Panel->SetBoundsRect(Bounds);
    Host->ProcessPaints();
    const TPoint O = Panel->ClientToScreen({0, 0});
    for (TShiftState Keys : {TShiftState{}, TShiftState{ssShift}, TShiftState{ssAlt}}) {
      Host->Drag(O, {O.X + 25, O.Y + 35}, Keys);
      Host->Drag({O.X + 25, O.Y + 35}, O, Keys);
      Host->MouseWheel({O.X + 5, O.Y + 5}, 120);
    }
    for (TKXChartAxis* A : {Panel->BottomAxis(), Panel->LeftAxis()}) {
      EXPECT_TRUE(std::isfinite(A->ZoomMinimum()));
      EXPECT_TRUE(std::isfinite(A->ZoomMaximum()));
    }
    EXPECT_EQ(Panel->UserAction(), uaxNone);
  }
}

TEST_F(PanelMouse, AZoomToNoWidthStillPaintsAndTracks) {
  Panel->Zoom(TRectF{50, 50, 50, 50}, true, true);
  Host->ProcessPaints();
  Host->MouseMove(At(0.5, 0.5));
  Host->Drag(At(0.2, 0.2), At(0.6, 0.6));
  Host->ProcessPaints();
  Host->Drag(At(0.6, 0.6), At(0.2, 0.2));
  EXPECT_FALSE(Panel->BottomAxis()->Zooming());
}

TEST_F(PanelMouse, AHandlerThatRaisesLeavesTheDragEndedAndTheCaptureFree) {
  Panel->SetUserActions(Panel->UserActions() - uaMouseTracking);
  const auto Clean = Pixels();
  Panel->SetOnZoom([](TObject*) { throw std::runtime_error("zoom"); });
  Host->MouseDown(At(0.2, 0.2), mbLeft);
  Host->MouseMove(At(0.6, 0.6));
  EXPECT_THROW(Host->MouseUp(At(0.6, 0.6), mbLeft), std::runtime_error);
  EXPECT_EQ(Panel->UserAction(), uaxNone);
  EXPECT_EQ(Host->CaptureControl(), nullptr);
  // The axes zoomed before the handler ran; the box is gone from the picture.
  EXPECT_TRUE(Panel->BottomAxis()->Zooming());
  EXPECT_EQ(Pixels(), Clean);

  Host->ProcessPaints();
  Panel->SetOnPan([](TObject*) { throw std::runtime_error("pan"); });
  Host->MouseDown(At(0.5, 0.5), mbLeft, {ssAlt});
  EXPECT_THROW(Host->MouseMove(At(0.6, 0.5), {ssAlt}), std::runtime_error);
  const double AfterOne = Panel->BottomAxis()->ZoomMinimum();
  // The next move pans by its own step only, not again by the first one.
  EXPECT_THROW(Host->MouseMove(At(0.6, 0.5), {ssAlt}), std::runtime_error);
  EXPECT_DOUBLE_EQ(Panel->BottomAxis()->ZoomMinimum(), AfterOne);
  Host->MouseUp(At(0.6, 0.5), mbLeft, {ssAlt});
  EXPECT_EQ(Host->Cursor(), crDefault);

  Panel->SetOnMouseDown([](TObject*, TMouseButton, TShiftState, int32_t, int32_t) {
    throw std::runtime_error("down");
  });
  EXPECT_THROW(Host->MouseDown(At(0.2, 0.2), mbLeft), std::runtime_error);
  EXPECT_EQ(Panel->UserAction(), uaxNone);
  Host->MouseUp(At(0.2, 0.2), mbLeft);
  EXPECT_EQ(Host->CaptureControl(), nullptr);
}

} // namespace
} // namespace kx
