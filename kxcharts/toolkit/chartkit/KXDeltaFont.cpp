#include "kxcharts/toolkit/chartkit/KXDeltaFont.h"

namespace kx {

TKXDeltaFont::TSnapshot TKXDeltaFont::Take(const TFont& F) {
  return {F.Name(), F.Height(), F.Color(), F.Style(), F.Orientation()};
}

void TKXDeltaFont::SetBaseFont(const TFont* Base) {
  FHasBase = Base != nullptr;
  if (Base) FBase = Take(*Base);
}

void TKXDeltaFont::ChangeBaseFont(const TFont* NewBase) {
  if (!NewBase) return;
  if (!FHasBase) {
    TFont::Assign(NewBase);
    SetBaseFont(NewBase);
    return;
  }
  // Build the result on a scratch font so that the change is raised once.
  TOwned<TFont> Result = MakeOwned<TFont>();
  Result->TFont::Assign(this);
  if (Name() == FBase.Name) Result->SetName(NewBase->Name());
  if (Height() == FBase.Height) Result->SetHeight(NewBase->Height());
  if (Color() == FBase.Color) Result->SetColor(NewBase->Color());
  if (Orientation() == FBase.Orientation) Result->SetOrientation(NewBase->Orientation());
  // Own style members are those that differ from the old base; they flip the new base.
  const TFontStyles Own = (Style() - FBase.Style) + (FBase.Style - Style());
  const TFontStyles NewStyle = (NewBase->Style() - Own) + (Own - NewBase->Style());
  Result->SetStyle(NewStyle);
  SetBaseFont(NewBase);
  TFont::Assign(Result.get());
}

void TKXDeltaFont::Assign(const TPersistent* Source) {
  if (Source == this) return;
  inherited::Assign(Source);
  // A delta font copies the other's base too, so that the copy follows the same parent.
  if (auto* D = dynamic_cast<const TKXDeltaFont*>(Source)) {
    FBase = D->FBase;
    FHasBase = D->FHasBase;
  }
}

} // namespace kx
