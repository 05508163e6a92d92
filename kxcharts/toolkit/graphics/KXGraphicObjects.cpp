#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

namespace {

// A light desktop theme, indexed by the low byte of a system colour. One fixed table, so that
// a picture looks the same on every machine.
constexpr TColor SystemColors[] = {
    RGBToColor(0xC8, 0xC8, 0xC8), // clScrollBar
    RGBToColor(0x00, 0x00, 0x00), // clBackground
    RGBToColor(0x99, 0xB4, 0xD1), // clActiveCaption
    RGBToColor(0xBF, 0xCD, 0xDB), // clInactiveCaption
    RGBToColor(0xF0, 0xF0, 0xF0), // clMenu
    RGBToColor(0xFF, 0xFF, 0xFF), // clWindow
    RGBToColor(0x64, 0x64, 0x64), // clWindowFrame
    RGBToColor(0x00, 0x00, 0x00), // clMenuText
    RGBToColor(0x00, 0x00, 0x00), // clWindowText
    RGBToColor(0x00, 0x00, 0x00), // clCaptionText
    RGBToColor(0xB4, 0xB4, 0xB4), // clActiveBorder
    RGBToColor(0xF4, 0xF7, 0xFC), // clInactiveBorder
    RGBToColor(0xAB, 0xAB, 0xAB), // clAppWorkSpace
    RGBToColor(0x00, 0x78, 0xD7), // clHighlight
    RGBToColor(0xFF, 0xFF, 0xFF), // clHighlightText
    RGBToColor(0xF0, 0xF0, 0xF0), // clBtnFace
    RGBToColor(0xA0, 0xA0, 0xA0), // clBtnShadow
    RGBToColor(0x6D, 0x6D, 0x6D), // clGrayText
    RGBToColor(0x00, 0x00, 0x00), // clBtnText
    RGBToColor(0x00, 0x00, 0x00), // clInactiveCaptionText
    RGBToColor(0xFF, 0xFF, 0xFF), // clBtnHighlight
    RGBToColor(0x69, 0x69, 0x69), // cl3DDkShadow
    RGBToColor(0xE3, 0xE3, 0xE3), // cl3DLight
    RGBToColor(0x00, 0x00, 0x00), // clInfoText
    RGBToColor(0xFF, 0xFF, 0xE1), // clInfoBk
    RGBToColor(0xB5, 0xB5, 0xB5), // index 25 has no name
    RGBToColor(0x00, 0x66, 0xCC), // clHotLight
    RGBToColor(0xB9, 0xD1, 0xEA), // clGradientActiveCaption
    RGBToColor(0xD7, 0xE4, 0xF2), // clGradientInactiveCaption
    RGBToColor(0x33, 0x99, 0xFF), // clMenuHighlight
    RGBToColor(0xF0, 0xF0, 0xF0), // clMenuBar
};

// N * Num / Den rounded half away from zero, the platform's MulDiv.
int32_t MulDiv(int32_t N, int32_t Num, int32_t Den) {
  const int64_t P = int64_t(N) * Num;
  const int64_t Half = Den / 2;
  return static_cast<int32_t>(P >= 0 ? (P + Half) / Den : -((-P + Half) / Den));
}

constexpr int32_t MaxFontExtent = 2000;

} // namespace

TColor ColorToRGB(TColor Color) {
  const auto Raw = static_cast<uint32_t>(Color);
  if ((Raw & 0xFF000000u) == 0xFF000000u) {
    const uint32_t Index = Raw & 0xFFu;
    return Index < std::size(SystemColors) ? SystemColors[Index] : clBlack;
  }
  return static_cast<TColor>(Raw & 0xFFFFFFu);
}

// --- TGraphicsObject ---

void TGraphicsObject::Changed() {
  ++FRevision;
  if (FOnChange) FOnChange(this);
}

// --- TPen ---

void TPen::SetColor(TColor Value) {
  if (Value == FColor) return;
  FColor = Value;
  Changed();
}

void TPen::SetWidth(int32_t Value) {
  Value = std::clamp(Value, 0, MaxWidth);
  if (Value == FWidth) return;
  FWidth = Value;
  Changed();
}

void TPen::SetStyle(TPenStyle Value) {
  if (Value == FStyle) return;
  FStyle = Value;
  Changed();
}

void TPen::SetMode(TPenMode Value) {
  if (Value == FMode) return;
  FMode = Value;
  Changed();
}

void TPen::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* P = dynamic_cast<const TPen*>(Source)) {
    if (FColor == P->FColor && FWidth == P->FWidth && FStyle == P->FStyle && FMode == P->FMode)
      return;
    FColor = P->FColor;
    FWidth = P->FWidth;
    FStyle = P->FStyle;
    FMode = P->FMode;
    Changed();
    return;
  }
  inherited::Assign(Source);
}

void TPen::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Color", this, &TPen::Color, &TPen::SetColor, FDefaults.Color);
  Filer.Property("Mode", this, &TPen::Mode, &TPen::SetMode, FDefaults.Mode);
  Filer.Property("Style", this, &TPen::Style, &TPen::SetStyle, FDefaults.Style);
  Filer.Property("Width", this, &TPen::Width, &TPen::SetWidth, FDefaults.Width);
}

void TPen::UseCurrentAsDefaults() {
  FDefaults = {FColor, FWidth, FStyle, FMode};
}

// --- TBrush ---

void TBrush::SetColor(TColor Value) {
  if (Value == FColor && FStyle != bsClear) return;
  FColor = Value;
  if (FStyle == bsClear) FStyle = bsSolid;
  Changed();
}

void TBrush::SetStyle(TBrushStyle Value) {
  if (Value == FStyle) return;
  FStyle = Value;
  Changed();
}

void TBrush::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* B = dynamic_cast<const TBrush*>(Source)) {
    if (FColor == B->FColor && FStyle == B->FStyle) return;
    FColor = B->FColor;
    FStyle = B->FStyle;
    Changed();
    return;
  }
  inherited::Assign(Source);
}

void TBrush::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Color", this, &TBrush::Color, &TBrush::SetColor, FDefaultColor);
  Filer.Property("Style", this, &TBrush::Style, &TBrush::SetStyle, FDefaultStyle);
}

void TBrush::UseCurrentAsDefaults() {
  FDefaultColor = FColor;
  FDefaultStyle = FStyle;
}

// --- TFont ---

void TFont::SetName(const std::string& Value) {
  const std::string& Name = Value.empty() ? std::string(DefaultName) : Value;
  if (Name == FName) return;
  FName = Name;
  Changed();
}

int32_t TFont::Size() const {
  return -MulDiv(FHeight, 72, PixelsPerInch);
}

void TFont::SetSize(int32_t Value) {
  Value = std::clamp(Value, -MaxFontExtent, MaxFontExtent);
  SetHeight(-MulDiv(Value, PixelsPerInch, 72));
}

void TFont::SetHeight(int32_t Value) {
  Value = std::clamp(Value, -MaxFontExtent, MaxFontExtent);
  if (Value == FHeight) return;
  FHeight = Value;
  Changed();
}

void TFont::SetColor(TColor Value) {
  if (Value == FColor) return;
  FColor = Value;
  Changed();
}

void TFont::SetStyle(TFontStyles Value) {
  if (Value == FStyle) return;
  FStyle = Value;
  Changed();
}

void TFont::SetOrientation(int32_t Value) {
  Value %= 360;
  if (Value < 0) Value += 360;
  if (Value == FOrientation) return;
  FOrientation = Value;
  Changed();
}

bool TFont::SameAs(const TFont& Other) const {
  return FName == Other.FName && FHeight == Other.FHeight && FColor == Other.FColor &&
         FStyle == Other.FStyle && FOrientation == Other.FOrientation;
}

void TFont::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* F = dynamic_cast<const TFont*>(Source)) {
    if (SameAs(*F)) return;
    FName = F->FName;
    FHeight = F->FHeight;
    FColor = F->FColor;
    FStyle = F->FStyle;
    FOrientation = F->FOrientation;
    Changed();
    return;
  }
  inherited::Assign(Source);
}

void TFont::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  const TAttributes& D = FDefaults;
  Filer.Property("Color", this, &TFont::Color, &TFont::SetColor, D.Color);
  Filer.Property("Height", this, &TFont::Height, &TFont::SetHeight, D.Height);
  Filer.Property("Name", this, &TFont::Name, &TFont::SetName, D.Name);
  Filer.Property("Orientation", this, &TFont::Orientation, &TFont::SetOrientation, D.Orientation);
  Filer.Property("Style", this, &TFont::Style, &TFont::SetStyle, D.Style);
}

void TFont::UseCurrentAsDefaults() {
  FDefaults = {FName, FHeight, FColor, FStyle, FOrientation};
}

} // namespace kx
