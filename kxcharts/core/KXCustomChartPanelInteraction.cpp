// The chart panel and the mouse: the zoom box, unzooming, panning, selecting, the crosshair
// with its hint, the wheel, and the same operations for code.
#include <algorithm>
#include <climits>
#include <cmath>

#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx {

namespace {

constexpr TColor CrosshairColor = TColor(0xA9A9A9);
// One notch of the wheel, as the platform counts it.
constexpr int32_t WheelNotch = 120;
constexpr double WheelStep = 1.25;

const TShiftState SelectKeys{ssShift, ssAlt, ssCtrl};

} // namespace

// --- Operations for code ---

void TKXCustomChartPanel::ZoomPixelArea(const TRect& ClientRect, bool UseBottomAxis,
                                        bool UseLeftAxis) {
  (UseBottomAxis ? FBottomAxis : FTopAxis)->ZoomPixelArea(ClientRect);
  (UseLeftAxis ? FLeftAxis : FRightAxis)->ZoomPixelArea(ClientRect);
  if (FOnZoom) FOnZoom(this);
}

void TKXCustomChartPanel::Zoom(const TRectF& ChartRect, bool UseBottomAxis, bool UseLeftAxis) {
  (UseBottomAxis ? FBottomAxis : FTopAxis)->Zoom(ChartRect);
  (UseLeftAxis ? FLeftAxis : FRightAxis)->Zoom(ChartRect);
  if (FOnZoom) FOnZoom(this);
}

void TKXCustomChartPanel::Zoom(const TPointF& CenterPoint, float ZoomX, float ZoomY,
                               bool UseBottomAxis, bool UseLeftAxis) {
  (UseBottomAxis ? FBottomAxis : FTopAxis)->Zoom(CenterPoint.X, ZoomX);
  (UseLeftAxis ? FLeftAxis : FRightAxis)->Zoom(CenterPoint.Y, ZoomY);
}

void TKXCustomChartPanel::Unzoom(bool UseBottomAxis, bool UseLeftAxis) {
  (UseBottomAxis ? FBottomAxis : FTopAxis)->Unzoom();
  (UseLeftAxis ? FLeftAxis : FRightAxis)->Unzoom();
  if (FOnUnzoom) FOnUnzoom(this);
}

void TKXCustomChartPanel::Pan(int32_t MoveX, int32_t MoveY, bool UseBottomAxis,
                              bool UseLeftAxis) {
  (UseBottomAxis ? FBottomAxis : FTopAxis)->Pan(MoveX);
  (UseLeftAxis ? FLeftAxis : FRightAxis)->Pan(MoveY);
  if (FOnPan) FOnPan(this);
}

void TKXCustomChartPanel::Pan(double MoveX, double MoveY, bool UseBottomAxis, bool UseLeftAxis) {
  (UseBottomAxis ? FBottomAxis : FTopAxis)->Pan(MoveX);
  (UseLeftAxis ? FLeftAxis : FRightAxis)->Pan(MoveY);
  if (FOnPan) FOnPan(this);
}

void TKXCustomChartPanel::Select(const TRect& SelectionRect, TKXChartSelectionAction Action) {
  TUpdateScope<TChartPanelListeners> Quiet(FListeners.get());
  for (int32_t I = 0; I < FCharts->Count(); ++I) {
    TKXCustomChart* Chart = FCharts->Items(I);
    if (Chart->Visible()) Chart->Select(SelectionRect, Action);
  }
}

// --- Drawing outside Paint ---

void TKXCustomChartPanel::DrawSelectionBox(const TRect& ARect) {
  const TRect Box = FixRect(ARect);
  Canvas()->DrawFocusRect(FUserAction == uaxSelect ? Box : ARect);
  InvalidateScreen(Box);
}

void TKXCustomChartPanel::DrawMouseTracking(const TPoint& Pt) {
  TCanvas* C = Canvas();
  TPen* Pen = C->Pen();
  const TPenMode Mode = Pen->Mode();
  const TPenStyle Style = Pen->Style();
  const int32_t Width = Pen->Width();
  const TColor Color = Pen->Color();
  TFinally Restore([=] {
    Pen->SetMode(Mode);
    Pen->SetStyle(Style);
    Pen->SetWidth(Width);
    Pen->SetColor(Color);
  });
  Pen->SetMode(pmXor);
  Pen->SetStyle(psSolid);
  Pen->SetWidth(1);
  Pen->SetColor(CrosshairColor);
  const TRect& R = FChartRect;
  C->MoveTo(R.Left, Pt.Y);
  C->LineTo(R.Right, Pt.Y);
  C->MoveTo(Pt.X, R.Top);
  C->LineTo(Pt.X, R.Bottom);
  InvalidateScreen({R.Left, Pt.Y, R.Right, Pt.Y + 1});
  InvalidateScreen({Pt.X, R.Top, Pt.X + 1, R.Bottom});
}

// --- The mouse ---

TPoint TKXCustomChartPanel::SelectionCorner(TShiftState Shift, int32_t X, int32_t Y) const {
  const int64_t W = int64_t(FChartRect.Right) - FChartRect.Left;
  // A plot of no width has no shape to keep: the box follows the mouse.
  if ((Shift * FUserProportional) != FUserProportional || W == 0) return {X, Y};
  const double Ratio = std::abs(double(int64_t(FChartRect.Bottom) - FChartRect.Top) / double(W));
  const double Height = (double(X) - FSelectionBox.Left) * Ratio;
  return {X, static_cast<int32_t>(
                 std::clamp<int64_t>(int64_t(FSelectionBox.Top) + CanvasRound(Height),
                                     INT32_MIN, INT32_MAX))};
}

bool TKXCustomChartPanel::SelectKeysHeld(TShiftState Shift) const {
  // The press takes UserProportional out of the shift state; so does this test, or a
  // proportional selection box could never select.
  const TShiftState Keys = SelectKeys - FUserProportional;
  return (Shift * Keys) == (FUserSelect * Keys);
}

void TKXCustomChartPanel::MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) {
  inherited::MouseDown(Button, Shift, X, Y);
  // A press while a drag is under way (a second button) leaves that drag to its release.
  if (FUserAction != uaxNone) return;
  const TShiftState S = Shift - FUserProportional;
  const bool Zooming = FBottomAxis->Zooming() || FLeftAxis->Zooming();
  TChartUserActionExt Action = uaxNone;
  if (S == FUserZoom && FUserActions.Contains(uaZoom)) {
    Action = uaxZoom;
  } else if (S == FUserPan && FUserActions.Contains(uaPan) && Zooming) {
    Screen.SetCursor(crHandPoint);
    Action = uaxPan;
  } else if (S == FUserSelect && FUserActions.Contains(uaSelect)) {
    Action = uaxSelect;
  }
  FUserAction = Action;
  FSelectionBox = {X, Y, X, Y};
  if (FUserAction == uaxZoom || FUserAction == uaxSelect) DrawSelectionBox(FSelectionBox);
}

void TKXCustomChartPanel::MouseMove(TShiftState Shift, int32_t X, int32_t Y) {
  inherited::MouseMove(Shift, X, Y);
  switch (FUserAction) {
  case uaxNone:
    Screen.SetCursor(crDefault);
    if (FUserActions.Contains(uaSelect) && SelectKeysHeld(Shift) &&
        PtInRect(FChartRect, TPoint{X, Y})) {
      const TRect At{X, Y, X, Y};
      for (int32_t I = FCharts->Count() - 1; I >= 0; --I) {
        TKXCustomChart* Chart = FCharts->Items(I);
        if (Chart->IsSelectable(At)) {
          Chart->MouseHover(At);
          break;
        }
      }
    }
    break;
  case uaxPan: {
    FSelectionBox.Right = X;
    FSelectionBox.Bottom = Y;
    // Each move pans by its own step, even when a handler of the pan raises.
    TFinally Step([this] {
      FSelectionBox.Left = FSelectionBox.Right;
      FSelectionBox.Top = FSelectionBox.Bottom;
    });
    int32_t DX = FBottomAxis->Zooming() ? FSelectionBox.Left - FSelectionBox.Right : 0;
    int32_t DY = FLeftAxis->Zooming() ? FSelectionBox.Bottom - FSelectionBox.Top : 0;
    if (FBottomAxis->Options().Contains(aoReversed)) DX = -DX;
    if (FLeftAxis->Options().Contains(aoReversed)) DY = -DY;
    Pan(DX, DY, true, true);
    break;
  }
  case uaxZoom:
  case uaxSelect: {
    DrawSelectionBox(FSelectionBox);
    const TPoint Corner = SelectionCorner(Shift, X, Y);
    FSelectionBox.Right = Corner.X;
    FSelectionBox.Bottom = Corner.Y;
    DrawSelectionBox(FSelectionBox);
    break;
  }
  }
  if (FUserActions.Contains(uaMouseTracking)) TrackMouse(X, Y);
}

void TKXCustomChartPanel::TrackMouse(int32_t X, int32_t Y) {
  if (FMouseTrackingOn) DrawMouseTracking(FMouseTrackingPoint);
  FMouseTrackingPoint = {X, Y};
  FMouseTrackingOn = PtInRect(FChartRect, FMouseTrackingPoint);
  if (!FMouseTrackingOn) {
    if (FHintWindow) FHintWindow->Hide();
    return;
  }
  DrawMouseTracking(FMouseTrackingPoint);
  if (FHintWindow)
    FHintWindow->ActivateHint(ClientToScreen(FMouseTrackingPoint),
                              FBottomAxis->FormatValue(FBottomAxis->PixelToAxis(X, false)) + ", " +
                                  FLeftAxis->FormatValue(FLeftAxis->PixelToAxis(Y, false)));
}

void TKXCustomChartPanel::MouseUp(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) {
  inherited::MouseUp(Button, Shift, X, Y);
  const TChartUserActionExt Action = FUserAction;
  // The drag is over whatever the handlers below do.
  TFinally Idle([this] { FUserAction = uaxNone; });
  if (Action == uaxZoom || Action == uaxSelect) {
    DrawSelectionBox(FSelectionBox);
    const TPoint Corner = SelectionCorner(Shift, X, Y);
    FSelectionBox.Right = Corner.X;
    FSelectionBox.Bottom = Corner.Y;
    if (Action == uaxZoom) {
      if (FSelectionBox.Right < FSelectionBox.Left)
        Unzoom(true, true);
      else if (FSelectionBox.Right != FSelectionBox.Left &&
               FSelectionBox.Bottom != FSelectionBox.Top)
        ZoomPixelArea(FSelectionBox, true, true);
    } else if (FUserActions.Contains(uaSelect) && SelectKeysHeld(Shift)) {
      Select(FixRect(FSelectionBox), saToggle);
    }
  } else if (Action == uaxPan) {
    Screen.SetCursor(crDefault);
  }
}

void TKXCustomChartPanel::CMMouseLeave() {
  inherited::CMMouseLeave();
  if (FMouseTrackingOn) {
    DrawMouseTracking(FMouseTrackingPoint);
    FMouseTrackingOn = false;
  }
  // Also when a paint has wiped the crosshair since the hint showed: the hint must not
  // outlive the mouse's stay.
  if (FHintWindow) FHintWindow->Hide();
}

// --- The wheel ---

void TKXCustomChartPanel::ZoomAround(TKXChartAxis* Axis, int32_t Pixel, double Factor) {
  const double Lo = Axis->ZoomMinimum(), Hi = Axis->ZoomMaximum();
  // A logarithmic axis keeps the point under the mouse in its own scale.
  const bool Log = Axis->Options().Contains(aoLogarithmic) && Lo > 0 && Hi > 0;
  const auto In = [Log](double V) { return Log ? std::log(V) : V; };
  const auto Out = [Log](double V) { return Log ? std::exp(V) : V; };
  const double At = In(Axis->PixelToAxis(Pixel, false));
  const double NewLo = Out(At - (At - In(Lo)) / Factor);
  const double NewHi = Out(At + (In(Hi) - At) / Factor);
  if (!std::isfinite(NewLo) || !std::isfinite(NewHi) || !(NewLo < NewHi)) return;
  // In doubles: a rectangle of floats would lose the place on a long axis.
  Axis->SetZoomMinimum(NewLo);
  Axis->SetZoomMaximum(NewHi);
}

bool TKXCustomChartPanel::MouseWheel(TShiftState Shift, int32_t WheelDelta, int32_t X, int32_t Y) {
  if (!FWheelZoom || FUserAction != uaxNone || WheelDelta == 0 ||
      !PtInRect(FChartRect, TPoint{X, Y}))
    return inherited::MouseWheel(Shift, WheelDelta, X, Y);
  const double Factor = std::pow(WheelStep, std::clamp(WheelDelta, -12 * WheelNotch, 12 * WheelNotch) /
                                                double(WheelNotch));
  ZoomAround(FBottomAxis.get(), X, Factor);
  ZoomAround(FLeftAxis.get(), Y, Factor);
  if (FOnZoom) FOnZoom(this);
  return true;
}

} // namespace kx
