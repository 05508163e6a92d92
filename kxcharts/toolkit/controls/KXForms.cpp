#include "kxcharts/toolkit/controls/KXForms.h"

#include <algorithm>
#include <string>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

constinit TScreen Screen;

// --- TForm ---

TForm::TForm(TComponent* AOwner) : TWinControl(AOwner) {
  InitSize(320, 240);
  InitColor(clBtnFace, false);
}

void TForm::Paint() {
  inherited::Paint();
  Canvas()->SetFont(Font());
  Canvas()->Brush()->SetColor(Color());
  if (FOnPaint) FOnPaint(this);
}

void TForm::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  DefineCaptionProperty(Filer);
  DefineColorProperties(Filer, clBtnFace, false);
  DefineFontProperties(Filer);
}

// --- TScreen ---

TWinControl* TScreen::Popups(int32_t Index) const {
  if (Index < 0 || Index >= PopupCount())
    throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
  return FPopups[Index];
}

void TScreen::AddPopup(TWinControl* Window) {
  if (Window && std::find(FPopups.begin(), FPopups.end(), Window) == FPopups.end())
    FPopups.push_back(Window);
}

void TScreen::RemovePopup(TWinControl* Window) {
  auto It = std::find(FPopups.begin(), FPopups.end(), Window);
  if (It != FPopups.end()) FPopups.erase(It);
}

void RegisterFormClasses() {
  RegisterControlClasses();
  RegisterClasses({ClassOf<TForm>()});
}

} // namespace kx
