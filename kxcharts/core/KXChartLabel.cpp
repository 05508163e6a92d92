// The text elements: the labels and the panel's header and footer band.
#include "kxcharts/core/KXChartLabel.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/core/KXChartGraphic_p.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXFiler.h"

namespace kx {

using namespace graphic;

// --- TKXCustomChartLabel ---

void TKXCustomChartLabel::Initialize() {
  inherited::Initialize();
  FFont = MakeOwned<TKXDeltaFont>();
  FFont->SetColor(clBlack);
  FFont->UseCurrentAsDefaults();
}

void TKXCustomChartLabel::InitializeEvents() {
  inherited::InitializeEvents();
  FFont->SetOnChange(SenderChangedHandler());
}

std::string TKXCustomChartLabel::GetText() const {
  return FText;
}

void TKXCustomChartLabel::SetText(const std::string& Value) {
  if (Value == FText) return;
  FText = Value;
  Changed();
}

void TKXCustomChartLabel::SetAlignment(TAlignment Value) {
  if (Value == FAlignment) return;
  FAlignment = Value;
  Changed();
}

void TKXCustomChartLabel::SetAngle(int32_t Value) {
  if (Value != FAngle) {
    FAngle = Value % 360;
    RotateFont(FFont.get(), FAngle);
    Changed();
  } else if (FAngle != 0) {
    RotateFont(FFont.get(), FAngle);
  }
}

void TKXCustomChartLabel::SetFont(const TFont* Value) {
  FFont->Assign(Value);
  if (FAngle != 0) RotateFont(FFont.get(), FAngle);
}

bool TKXCustomChartLabel::Drawing(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetFont(FFont.get());
  return inherited::Drawing(Canvas, ARect);
}

void TKXCustomChartLabel::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const std::string Caption = GetText();
  if (Caption.empty() || !Visible() || Opacity() == 0) return;
  TPoint Offset;
  const TSize Size = GetRotatedTextExtent(Canvas, FAngle, Caption, Offset);
  TPoint Box;
  switch (FAlignment) {
  case taLeftJustify:
    Box = {ARect.Left, ARect.Top};
    break;
  case taRightJustify:
    Box = {AddClamped(ARect.Right, -int64_t(Size.cx)), ARect.Top};
    break;
  default: {
    const TPoint C = CanvasCenterPoint(ARect);
    Box = {AddClamped(C.X, -CanvasDiv(Size.cx, 2)), AddClamped(C.Y, -CanvasDiv(Size.cy, 2))};
  }
  }
  // A label has no brush of its own: whatever brush the canvas was left with must not box
  // the text in.
  Canvas->Brush()->SetStyle(bsClear);
  TCanvasOpacity Layer(Canvas, Opacity());
  Canvas->TextOut(AddClamped(Box.X, Offset.X), AddClamped(Box.Y, Offset.Y), Caption);
}

void TKXCustomChartLabel::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* L = dynamic_cast<const TKXCustomChartLabel*>(Source)) {
    FAngle = L->FAngle;
    FText = L->FText;
    FAlignment = L->FAlignment;
    FFont->Assign(L->FFont.get());
  }
  inherited::Assign(Source);
}

void TKXChartLabelMetaData::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Alignment", this, &TKXChartLabelMetaData::Alignment,
                 &TKXChartLabelMetaData::SetAlignment, taCenter);
  Filer.Property("Font", this, &TKXChartLabelMetaData::Font);
  Filer.Property("Angle", this, &TKXChartLabelMetaData::Angle, &TKXChartLabelMetaData::SetAngle, 0);
  Filer.Property("Opacity", this, &TKXChartLabelMetaData::Opacity,
                 &TKXChartLabelMetaData::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartLabelMetaData::Visible,
                 &TKXChartLabelMetaData::SetVisible, true);
}

void TKXChartLabel::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Text", this, &TKXChartLabel::Text, &TKXChartLabel::SetText);
}

// --- TKXChartHeader ---

void TKXChartHeader::Initialize() {
  inherited::Initialize();
  FFont = MakeOwned<TKXDeltaFont>();
  FHeight = CanvasRound(FFont->Size() * 3.0);
  FAlignment = taCenter;
  SetImageOptions(ImageOptions() - TImageOptions{ioCenter});
  SetImageOptions(ImageOptions() + TImageOptions{ioStretch});
  Brush()->SetStyle(bsClear);
  Brush()->UseCurrentAsDefaults();
}

void TKXChartHeader::InitializeEvents() {
  inherited::InitializeEvents();
  FFont->SetOnChange(SenderChangedHandler());
}

void TKXChartHeader::AfterConstruction() {
  inherited::AfterConstruction();
  const TFont* OwnerFont = FOwnerFont;
  FOwnerFont = nullptr;
  if (OwnerFont) FFont->Assign(OwnerFont);
  FFont->SetColor(FIsHeader ? clBlue : clRed);
  if (OwnerFont) FFont->SetBaseFont(OwnerFont);
  FFont->UseCurrentAsDefaults();
}

void TKXChartHeader::SetAlignment(TAlignment Value) {
  if (Value == FAlignment) return;
  FAlignment = Value;
  Changed();
}

void TKXChartHeader::SetAngle(int32_t Value) {
  if (Value == FAngle) return;
  FAngle = Value % 360;
  RotateFont(FFont.get(), FAngle);
  Changed();
}

void TKXChartHeader::SetText(const std::string& Value) {
  if (Value == FText) return;
  FText = Value;
  Changed();
}

void TKXChartHeader::SetFont(const TFont* Value) {
  FFont->Assign(Value);
  if (FAngle != 0) RotateFont(FFont.get(), FAngle);
}

void TKXChartHeader::SetHeight(int32_t Value) {
  if (Value == FHeight) return;
  FHeight = std::max(Value, FFont->Height());
  Changed();
}

void TKXChartHeader::SetWidth(int32_t Value) {
  if (Value == FWidth) return;
  FWidth = Value;
  Changed();
}

bool TKXChartHeader::Drawing(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetFont(FFont.get());
  return inherited::Drawing(Canvas, ARect);
}

void TKXChartHeader::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  TRect R = ARect;
  if (FIsHeader)
    R.Bottom = AddClamped(R.Top, FHeight);
  else
    R.Top = AddClamped(R.Bottom, -int64_t(FHeight));
  inherited::InternalDraw(Canvas, R);
  Canvas->SetFont(FFont.get());
  const int32_t Turn = FAngle % 180;
  const bool Vertical = Turn >= 46 && Turn <= 134;
  const TSize Size = Canvas->TextExtent(FText);
  int32_t X, Y;
  switch (FAlignment) {
  case taLeftJustify:
    X = R.Left;
    Y = Vertical ? AddClamped(R.Bottom, -int64_t(Size.cy)) : R.Top;
    break;
  case taRightJustify:
    X = AddClamped(R.Right, -int64_t(Size.cx));
    Y = R.Top;
    break;
  default: {
    const TPoint C = CanvasCenterPoint(R);
    X = AddClamped(C.X, -CanvasDiv(Size.cx, 2));
    Y = AddClamped(C.Y, -CanvasDiv(Size.cy, 2));
  }
  }
  TCanvasOpacity Layer(Canvas, Opacity());
  Canvas->TextRect(R, X, Y, FText);
}

void TKXChartHeader::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* H = dynamic_cast<const TKXChartHeader*>(Source)) {
    FAngle = H->FAngle;
    FText = H->FText;
    FAlignment = H->FAlignment;
    FHeight = H->FHeight;
    FWidth = H->FWidth;
    FFont->Assign(H->FFont.get());
  }
  inherited::Assign(Source);
}

void TKXChartHeader::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Alignment", this, &TKXChartHeader::Alignment, &TKXChartHeader::SetAlignment,
                 taCenter);
  Filer.Property("Angle", this, &TKXChartHeader::Angle, &TKXChartHeader::SetAngle, 0);
  Filer.Property("Text", this, &TKXChartHeader::Text, &TKXChartHeader::SetText);
  Filer.Property("Font", this, &TKXChartHeader::Font);
  Filer.Property("Height", this, &TKXChartHeader::Height, &TKXChartHeader::SetHeight);
  Filer.Property("Width", this, &TKXChartHeader::Width, &TKXChartHeader::SetWidth, 0);
  Filer.Property("Brush", this, &TKXChartHeader::Brush);
  Filer.Property("Pen", this, &TKXChartHeader::Pen);
  Filer.Property("Image", this, &TKXChartHeader::Image);
  Filer.Property("ImageOptions", this, &TKXChartHeader::ImageOptions,
                 &TKXChartHeader::SetImageOptions, TImageOptions{ioStretch});
  Filer.Property("Opacity", this, &TKXChartHeader::Opacity, &TKXChartHeader::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartHeader::Visible, &TKXChartHeader::SetVisible, true);
}

} // namespace kx
