#include "kxcharts/charts/KXChartPointInfo.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "kxcharts/charts/KXShapeCharts.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXCustomChartPointInfo ---

void TKXCustomChartPointInfo::Initialize() {
  inherited::Initialize();
  FWidth = 10;
  FHeight = 10;
  Brush()->SetColor(GetChartColor());
}

void TKXCustomChartPointInfo::SetHeight(int32_t Value) {
  if (Value < 0) Value = 0;
  if (Value == FHeight) return;
  FHeight = Value;
  Changed();
}

void TKXCustomChartPointInfo::SetWidth(int32_t Value) {
  if (Value < 0) Value = 0;
  if (Value == FWidth) return;
  FWidth = Value;
  Changed();
}

void TKXCustomChartPointInfo::SetStyle(TKXShapeStyle Value) {
  if (Value == FStyle) return;
  FStyle = Value;
  Changed();
}

void TKXCustomChartPointInfo::SetDefaultStyle(TKXShapeStyle Value) {
  if (Value == FDefaultStyle || Value == shpImage) return;
  FDefaultStyle = Value;
  Changed();
}

void TKXCustomChartPointInfo::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  inherited::InternalDraw(Canvas, ARect);
  DrawPoint(Canvas, ARect, 1.0f, FOwner ? FOwner->ImageList() : nullptr, -1);
}

void TKXCustomChartPointInfo::DrawPoint(TCanvas* Canvas, const TRect& ARect, float Opacity,
                                        const TImageList* Images, int32_t ImageIndex) {
  if (Opacity == 0.0f) return;
  DrawShape(Canvas, ARect, Images, ImageIndex, FStyle, FDefaultStyle, true, clBtnHighlight,
            clBtnShadow, ShapeBevelWidth(ARect));
}

void TKXCustomChartPointInfo::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* P = dynamic_cast<const TKXCustomChartPointInfo*>(Source)) {
    FHeight = P->FHeight;
    FWidth = P->FWidth;
    FStyle = P->FStyle;
    FDefaultStyle = P->FDefaultStyle;
  }
  inherited::Assign(Source);
}

void TKXCustomChartPointInfo::DefinePointProperties(TFiler& Filer) {
  using T = TKXCustomChartPointInfo;
  Filer.Property("Brush", this, &T::Brush);
  Filer.Property("Pen", this, &T::Pen);
  Filer.Property("DefaultStyle", this, &T::DefaultStyle, &T::SetDefaultStyle, shpRectangle);
  Filer.Property("Style", this, &T::Style, &T::SetStyle, shpRectangle);
  // Always stored: a size of 0 must read back as 0, not as the size a new element has.
  // No size is negative, so -1 is never the value.
  Filer.Property("Height", this, &T::Height, &T::SetHeight, -1);
  Filer.Property("Width", this, &T::Width, &T::SetWidth, -1);
}

void TKXChartPointInfo::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  DefinePointProperties(Filer);
}

// --- TKXCustomDefaultShape ---

void TKXCustomDefaultShape::Initialize() {
  inherited::Initialize();
  SetWidth(25);
  SetHeight(25);
  FFont = MakeOwned<TFont>();
  FAlignment = tdMiddleCenter;
}

void TKXCustomDefaultShape::InitializeEvents() {
  inherited::InitializeEvents();
  FFont->SetOnChange(SenderChangedHandler());
}

void TKXCustomDefaultShape::BeforeDestruction() {
  inherited::BeforeDestruction();
  FFont.reset();
}

void TKXCustomDefaultShape::SetAlignment(T2DTextAlignment Value) {
  if (Value == FAlignment) return;
  FAlignment = Value;
  Changed();
}

void TKXCustomDefaultShape::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* S = dynamic_cast<const TKXCustomDefaultShape*>(Source)) {
    FAlignment = S->FAlignment;
    FFont->Assign(S->FFont.get());
  } else if (auto* V = dynamic_cast<const TKXShapeChartValue*>(Source)) {
    SetHeight(CanvasRound(V->GetValue(3)));
    SetWidth(CanvasRound(V->GetValue(2)));
    SetStyle(V->Style());
    SetBrush(V->Brush());
    SetPen(V->Pen());
    SetAlignment(V->Alignment());
    SetFont(V->Font());
    return;
  }
  inherited::Assign(Source);
}

void TKXCustomDefaultShape::AssignTo(TPersistent* Dest) const {
  auto* V = dynamic_cast<TKXShapeChartValue*>(Dest);
  if (!V) {
    inherited::AssignTo(Dest);
    return;
  }
  V->SetValue(3, Height());
  V->SetValue(2, Width());
  V->SetStyle(Style());
  V->SetBrush(Brush());
  V->SetPen(Pen());
  V->SetAlignment(FAlignment);
  V->SetFont(FFont.get());
}

void TKXDefaultShape::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  DefinePointProperties(Filer);
  Filer.Property("Alignment", this, &TKXDefaultShape::Alignment, &TKXDefaultShape::SetAlignment,
                 tdMiddleCenter);
  Filer.Property("Font", this, &TKXDefaultShape::Font);
}

} // namespace kx
