#include "kxcharts/toolkit/controls/KXHintWindow.h"

#include <algorithm>

#include "kxcharts/toolkit/controls/KXForms.h"

namespace kx {

TKXHintWindow::TKXHintWindow(TComponent* AOwner) : TWinControl(AOwner) {
  InitColor(clInfoBk, false);
}

void TKXHintWindow::AfterConstruction() {
  inherited::AfterConstruction();
  SetVisible(false);
  Font()->SetColor(clInfoText);
  Screen.AddPopup(this);
}

void TKXHintWindow::BeforeDestruction() {
  Screen.RemovePopup(this);
  inherited::BeforeDestruction();
}

void TKXHintWindow::SetCorner(int32_t Value) {
  if (Value < 0 || Value > 3) Value = 0;
  if (Value == FCorner) return;
  FCorner = Value;
  if (Visible() || FPending) SetBoundsRect(CalcHintRect(FHintPoint, Text()));
}

void TKXHintWindow::SetInterval(int32_t Value) {
  FInterval = std::max(0, Value);
}

TRect TKXHintWindow::CalcHintRect(TPoint ScreenPoint, const std::string& Text) {
  Canvas()->SetFont(Font());
  const TSize Size = Canvas()->TextExtent(Text);
  const int32_t W = Size.cx + 2 * (MarginX + 1), H = Size.cy + 2 * (MarginY + 1);
  const bool Left = FCorner == 1 || FCorner == 3, Above = FCorner == 2 || FCorner == 3;
  const int32_t X = Left ? ScreenPoint.X - HintGap - W : ScreenPoint.X + HintGap;
  const int32_t Y = Above ? ScreenPoint.Y - HintGap - H : ScreenPoint.Y + HintGap;
  return {X, Y, X + W, Y + H};
}

void TKXHintWindow::ActivateHint(TPoint ScreenPoint, const std::string& Text) {
  FHintPoint = ScreenPoint;
  SetCaption(Text);
  SetBoundsRect(CalcHintRect(ScreenPoint, Text));
  if (Visible() || FInterval == 0) {
    FPending = false;
    SetVisible(true);
  } else if (!FPending) {
    FPending = true;
    FWaited = 0;
  }
}

void TKXHintWindow::Hide() {
  FPending = false;
  SetVisible(false);
}

void TKXHintWindow::Tick(int32_t Milliseconds) {
  if (!FPending) return;
  FWaited += std::max(0, Milliseconds);
  if (FWaited < FInterval) return;
  FPending = false;
  SetVisible(true);
}

void TKXHintWindow::Paint() {
  inherited::Paint();
  TCanvas* C = Canvas();
  const TRect R = ClientRect();
  C->Brush()->SetStyle(bsSolid);
  C->Brush()->SetColor(Color());
  C->FillRect(R);
  C->Brush()->SetColor(Font()->Color());
  C->FrameRect(R);
  C->SetFont(Font());
  C->Brush()->SetStyle(bsClear);
  C->TextRect({R.Left + 1, R.Top + 1, R.Right - 1, R.Bottom - 1}, MarginX + 1, MarginY + 1, Text());
  C->Brush()->SetStyle(bsSolid);
}

} // namespace kx
