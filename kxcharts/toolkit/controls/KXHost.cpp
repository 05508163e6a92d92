#include "kxcharts/toolkit/controls/KXHost.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXHintWindow.h"

namespace kx {

TKXHost::TKXHost(TComponent* AOwner) : TComponent(AOwner) {}

void TKXHost::BeforeDestruction() {
  while (!FWindows.empty())
    RemoveWindow(FWindows.back());
  SetSlot(FMouseControl, nullptr);
  SetSlot(FCaptureControl, nullptr);
  SetSlot(FPressControl, nullptr);
  SetSlot(FFocusControl, nullptr);
  inherited::BeforeDestruction();
}

// --- Links ---

bool TKXHost::Refers(const TComponent* C) const {
  return C == FMouseControl || C == FCaptureControl || C == FPressControl || C == FFocusControl ||
         std::find(FWindows.begin(), FWindows.end(), C) != FWindows.end();
}

void TKXHost::SetSlot(TControl*& Slot, TControl* Value) {
  TControl* Old = Slot;
  if (Old == Value) return;
  Slot = Value;
  if (Value) FreeNotification(Value);
  if (Old && !Refers(Old)) RemoveFreeNotification(Old);
}

void TKXHost::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove) {
    if (AComponent == FMouseControl) FMouseControl = nullptr;
    if (AComponent == FCaptureControl) FCaptureControl = nullptr;
    if (AComponent == FPressControl) FPressControl = nullptr;
    if (AComponent == FFocusControl) FFocusControl = nullptr;
    std::erase(FWindows, AComponent);
  }
  inherited::Notification(AComponent, Operation);
}

// --- Windows ---

void TKXHost::AddWindow(TWinControl* Window) {
  if (!Window) return;
  if (Window->Parent())
    throw EInvalidOperation("A window placed on another cannot be shown on its own");
  std::erase(FWindows, Window);
  FWindows.push_back(Window);
  FreeNotification(Window);
}

void TKXHost::RemoveWindow(TWinControl* Window) {
  auto It = std::find(FWindows.begin(), FWindows.end(), Window);
  if (It == FWindows.end()) return;
  FWindows.erase(It);
  if (!Refers(Window)) RemoveFreeNotification(Window);
}

TWinControl* TKXHost::Windows(int32_t Index) const {
  if (Index < 0 || Index >= WindowCount())
    throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
  return FWindows[Index];
}

// --- Painting ---

namespace {

int32_t PaintTree(TWinControl* W) {
  if (!W->Visible()) return 0;
  int32_t Count = 0;
  if (W->NeedsPaint()) {
    W->Update();
    ++Count;
  }
  // A paint handler may change the children: walk a copy, and skip the ones gone.
  std::vector<TWinControl*> Children;
  for (int32_t I = 0; I < W->ControlCount(); ++I)
    if (auto* C = dynamic_cast<TWinControl*>(W->Controls(I))) Children.push_back(C);
  for (TWinControl* C : Children)
    if (C->Parent() == W) Count += PaintTree(C);
  return Count;
}

} // namespace

void TKXHost::Compose(TWinControl* W, cairo_t* Cr, int32_t X, int32_t Y) {
  cairo_save(Cr);
  cairo_rectangle(Cr, X, Y, W->Width(), W->Height());
  cairo_clip(Cr);
  if (cairo_surface_t* S = W->Bitmap()->Surface(); S && !W->Bitmap()->Empty()) {
    cairo_surface_mark_dirty(S);
    cairo_set_source_surface(Cr, S, X, Y);
    cairo_paint(Cr);
  }
  for (int32_t I = 0; I < W->ControlCount(); ++I) {
    auto* C = dynamic_cast<TWinControl*>(W->Controls(I));
    if (C && C->Visible()) Compose(C, Cr, X + C->Left(), Y + C->Top());
  }
  cairo_restore(Cr);
}

int32_t TKXHost::ProcessPaints() {
  int32_t Count = 0;
  for (TWinControl* W : std::vector<TWinControl*>(FWindows))
    if (std::find(FWindows.begin(), FWindows.end(), W) != FWindows.end()) Count += PaintTree(W);
  for (int32_t I = 0; I < Screen.PopupCount(); ++I)
    Count += PaintTree(Screen.Popups(I));
  return Count;
}

TOwned<TBitmap> TKXHost::Capture(TControl* Control) const {
  TOwned<TBitmap> Out = MakeOwned<TBitmap>();
  if (!Control) return Out;
  Out->SetSize(Control->Width(), Control->Height());
  if (auto* W = dynamic_cast<TWinControl*>(Control)) {
    Compose(W, Out->Canvas()->Handle(), 0, 0);
    cairo_surface_mark_dirty(Out->Canvas()->Surface());
  } else if (TWinControl* P = Control->Parent()) {
    TOwned<TBitmap> Whole = Capture(P);
    if (!Whole->Empty()) Out->Canvas()->Draw(-Control->Left(), -Control->Top(), Whole.get());
  } else if (auto* G = dynamic_cast<TGraphicControl*>(Control)) {
    G->PaintTo(Out->Canvas(), 0, 0);
  }
  return Out;
}

void TKXHost::SaveToFile(TControl* Control, const std::filesystem::path& FileName) const {
  Capture(Control)->SaveToFile(FileName.string());
}

// --- Mouse ---

TShiftState TKXHost::ButtonBit(TMouseButton Button) {
  switch (Button) {
  case mbRight:
    return {ssRight};
  case mbMiddle:
    return {ssMiddle};
  default:
    return {ssLeft};
  }
}

TShiftState TKXHost::ShiftOf(TShiftState Keys) const {
  return (Keys - TShiftState{ssLeft, ssRight, ssMiddle, ssDouble}) + FButtons;
}

TControl* TKXHost::ControlAt(TPoint Point) const {
  // Pop-ups lie above the forms; the last shown lies on top.
  std::vector<TWinControl*> Order(FWindows);
  for (int32_t I = 0; I < Screen.PopupCount(); ++I)
    Order.push_back(Screen.Popups(I));
  for (auto It = Order.rbegin(); It != Order.rend(); ++It) {
    TWinControl* W = *It;
    if (!W->Visible() || !W->Enabled() || !PtInRect(W->BoundsRect(), Point)) continue;
    TPoint Local{Point.X - W->Left(), Point.Y - W->Top()};
    if (!W->CMHitTest(Local.X, Local.Y)) continue;
    TControl* Deepest = W->ControlAtPos(Local, false, true);
    return Deepest ? Deepest : W;
  }
  return nullptr;
}

void TKXHost::UpdateHover() {
  TControl* Now = ControlAt(FMousePos);
  TControl* Old = FMouseControl;
  if (Now == Old) return;
  SetSlot(FMouseControl, Now);
  // Old is alive here: a freed control leaves the slot at once. Its handler may free the
  // new one, which clears the slot again.
  if (Old) Old->CMMouseLeave();
  if (FMouseControl) FMouseControl->CMMouseEnter();
}

void TKXHost::MouseMove(TPoint Point, TShiftState Keys) {
  FMousePos = Point;
  if (!FCaptureControl) UpdateHover();
  TControl* Target = FCaptureControl ? FCaptureControl : FMouseControl;
  if (!Target) return;
  const TPoint Local = Target->ScreenToClient(Point);
  Target->MouseMove(ShiftOf(Keys), Local.X, Local.Y);
}

void TKXHost::MouseDown(TPoint Point, TMouseButton Button, TShiftState Keys, bool DoubleClick) {
  FMousePos = Point;
  if (!FCaptureControl) {
    UpdateHover();
    SetSlot(FCaptureControl, FMouseControl);
    if (Button == mbLeft) SetSlot(FPressControl, FMouseControl);
  }
  FButtons += ButtonBit(Button);
  TControl* Target = FCaptureControl;
  if (!Target) return;
  for (TControl* C = Target; C; C = C->Parent())
    if (auto* W = dynamic_cast<TWinControl*>(C); W && W->CanFocus()) {
      SetFocus(W);
      // Taking the focus may free or hide the control; the press goes nowhere then.
      if (FCaptureControl != Target) return;
      break;
    }
  TShiftState Shift = ShiftOf(Keys);
  if (DoubleClick) Shift.Include(ssDouble);
  const TPoint Local = Target->ScreenToClient(Point);
  Target->MouseDown(Button, Shift, Local.X, Local.Y);
}

void TKXHost::MouseUp(TPoint Point, TMouseButton Button, TShiftState Keys) {
  FMousePos = Point;
  FButtons -= ButtonBit(Button);
  TControl* Target = FCaptureControl ? FCaptureControl : ControlAt(Point);
  const bool LastButton = FButtons.Bits() == 0;
  {
    // The capture ends with the last button, also when a handler of the release raises.
    TFinally Release([this, LastButton] {
      if (LastButton) SetSlot(FCaptureControl, nullptr);
    });
    if (Target) {
      const TPoint Local = Target->ScreenToClient(Point);
      const bool Clicked =
          Button == mbLeft && Target == FPressControl && PtInRect(Target->ClientRect(), Local);
      if (Button == mbLeft) SetSlot(FPressControl, nullptr);
      // The release and the click go to the control while it is still captured.
      Target->MouseUp(Button, ShiftOf(Keys), Local.X, Local.Y);
      if (Clicked && Refers(Target) && Target->ClickEvents()) Target->Click();
    }
  }
  if (LastButton) UpdateHover();
}

void TKXHost::Click(TPoint Point, TMouseButton Button, TShiftState Keys) {
  MouseDown(Point, Button, Keys);
  MouseUp(Point, Button, Keys);
}

void TKXHost::Drag(TPoint From, TPoint To, TShiftState Keys, TMouseButton Button, int32_t Steps) {
  MouseDown(From, Button, Keys);
  Steps = std::max(1, Steps);
  for (int32_t I = 1; I <= Steps; ++I) {
    const double T = double(I) / Steps;
    MouseMove({From.X + int32_t(std::lround((To.X - From.X) * T)),
               From.Y + int32_t(std::lround((To.Y - From.Y) * T))},
              Keys);
  }
  MouseUp(To, Button, Keys);
}

bool TKXHost::MouseWheel(TPoint Point, int32_t Delta, TShiftState Keys) {
  FMousePos = Point;
  if (!FCaptureControl) UpdateHover();
  TControl* Target = FCaptureControl ? FCaptureControl : FMouseControl;
  for (TControl* C = Target; C; C = C->Parent()) {
    const TPoint Local = C->ScreenToClient(Point);
    if (C->MouseWheel(ShiftOf(Keys), Delta, Local.X, Local.Y)) return true;
  }
  return false;
}

void TKXHost::MouseExit() {
  TControl* Old = FMouseControl;
  SetSlot(FMouseControl, nullptr);
  if (Old) Old->CMMouseLeave();
}

// --- Keys ---

void TKXHost::SetFocus(TWinControl* Window) {
  if (Window == FFocusControl || (Window && !Window->CanFocus())) return;
  TControl* Old = FFocusControl;
  SetSlot(FFocusControl, Window);
  if (auto* W = dynamic_cast<TWinControl*>(Old)) W->CMExit();
  if (Window && FFocusControl == Window) Window->CMEnter();
}

TWinControl* TKXHost::FocusControl() const {
  return static_cast<TWinControl*>(FFocusControl);
}

namespace {

// The character a key makes, 0 for none.
char CharOfKey(uint16_t Key, TShiftState Keys) {
  if (Keys.Contains(ssCtrl) || Keys.Contains(ssAlt)) return 0;
  if (Key == VK_SPACE || Key == VK_RETURN || Key == VK_BACK || Key == VK_TAB || Key == VK_ESCAPE ||
      (Key >= '0' && Key <= '9'))
    return static_cast<char>(Key);
  if (Key >= 'A' && Key <= 'Z')
    return static_cast<char>(Keys.Contains(ssShift) ? Key : Key - 'A' + 'a');
  return 0;
}

} // namespace

bool TKXHost::KeyDown(uint16_t Key, TShiftState Keys) {
  auto* Target = FocusControl();
  if (!Target) return false;
  const char Char = CharOfKey(Key, Keys);
  Target->KeyDown(Key, Keys);
  if (Key != 0 && Char != 0 && FFocusControl == Target) {
    char C = Char;
    Target->KeyPress(C);
  }
  return true;
}

TCursor TKXHost::Cursor() const {
  if (Screen.Cursor() != crDefault) return Screen.Cursor();
  for (const TControl* C = FCaptureControl ? FCaptureControl : FMouseControl; C; C = C->Parent())
    if (C->Cursor() != crDefault) return C->Cursor();
  return crDefault;
}

void TKXHost::AdvanceTime(int32_t Milliseconds) {
  for (int32_t I = 0; I < Screen.PopupCount(); ++I)
    if (auto* Hint = dynamic_cast<TKXHintWindow*>(Screen.Popups(I))) Hint->Tick(Milliseconds);
}

} // namespace kx
