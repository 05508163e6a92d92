#include "kxcharts/toolkit/controls/KXCheckListBox.h"

#include "kxcharts/toolkit/controls/KXControls_p.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

void TCheckListBox::SetState(int32_t Index, TCheckBoxState Value) {
  TCheckBoxState& S = Items()->Item(Index).State;
  if (S == Value) return;
  S = Value;
  Invalidate();
}

void TCheckListBox::SetItemEnabled(int32_t Index, bool Value) {
  bool& E = Items()->Item(Index).Enabled;
  if (E == Value) return;
  E = Value;
  Invalidate();
}

void TCheckListBox::ToggleClickCheck(int32_t Index) {
  if (Index < 0 || Index >= Count() || !ItemEnabled(Index)) return;
  const TCheckBoxState S = State(Index);
  SetState(Index, S == cbUnchecked                 ? cbChecked
                  : S == cbChecked && FAllowGrayed ? cbGrayed
                                                   : cbUnchecked);
  ClickCheck();
}

void TCheckListBox::ClickCheck() {
  if (FOnClickCheck) FOnClickCheck(this);
}

void TCheckListBox::MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) {
  const int32_t Index = Button == mbLeft ? ItemAtPos({X, Y}, true) : -1;
  inherited::MouseDown(Button, Shift, X, Y);
  // A handler of the press may have changed the items: the index is checked again.
  if (Index >= 0 && Index < Count() && X - ItemRect(Index).Left < GetCheckWidth())
    ToggleClickCheck(Index);
}

void TCheckListBox::KeyPress(char& Key) {
  inherited::KeyPress(Key);
  if (Key != ' ' || ItemIndex() < 0) return;
  Key = 0;
  ToggleClickCheck(ItemIndex());
}

void TCheckListBox::DrawCheck(const TRect& R, TCheckBoxState AState, bool AEnabled) {
  TCanvas* C = Canvas();
  TBrush* B = C->Brush();
  const TColor Keep = B->Color();
  B->SetStyle(bsSolid);
  B->SetColor(Color());
  C->FillRect(R);
  const int32_t L = R.Left + (R.Width() - CheckSize) / 2;
  const int32_t T = R.Top + (R.Height() - CheckSize) / 2;
  TRect Box{L, T, L + CheckSize, T + CheckSize};
  Frame3D(C, Box, clBtnShadow, clBtnHighlight, 1);
  Frame3D(C, Box, cl3DDkShadow, cl3DLight, 1);
  B->SetColor(AEnabled && AState != cbGrayed ? clWindow : clBtnFace);
  C->FillRect(Box);
  if (AState != cbUnchecked) {
    // The classic tick: seven columns three pixels high, down to the third and up again.
    static constexpr int32_t Tops[] = {3, 4, 5, 4, 3, 2, 1};
    B->SetColor(AEnabled && AState == cbChecked ? clWindowText : clBtnShadow);
    for (int32_t I = 0; I < 7; ++I)
      C->FillRect({Box.Left + 1 + I, Box.Top + Tops[I], Box.Left + 2 + I, Box.Top + Tops[I] + 3});
  }
  B->SetColor(Keep);
}

void TCheckListBox::DrawItemMessage(int32_t Index, TRect& Rect, TOwnerDrawState State) {
  Rect.Left += GetCheckWidth();
  inherited::DrawItemMessage(Index, Rect, State);
}

void TCheckListBox::DrawItem(int32_t Index, const TRect& Rect, TOwnerDrawState State) {
  if (Index < Count())
    DrawCheck({Rect.Left - GetCheckWidth(), Rect.Top, Rect.Left, Rect.Bottom}, this->State(Index),
              Enabled() && ItemEnabled(Index));
  inherited::DrawItem(Index, Rect, State);
}

void TCheckListBox::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("AllowGrayed", this, &TCheckListBox::AllowGrayed, &TCheckListBox::SetAllowGrayed,
                 false);
}

} // namespace kx
