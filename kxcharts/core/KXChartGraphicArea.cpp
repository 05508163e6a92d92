// TKXChartGraphicArea and the area elements: shadow, gradient and image area.
#include "kxcharts/core/KXChartGraphicArea.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/core/KXChartGraphic_p.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXFiler.h"

namespace kx {

using namespace graphic;

// --- TKXChartGraphicArea ---

void TKXChartGraphicArea::Initialize() {
  inherited::Initialize();
  FBrush = MakeOwned<TBrush>();
  FBrush->SetColor(clBtnFace);
  FBrush->UseCurrentAsDefaults();
  FPen = MakeOwned<TPen>();
}

void TKXChartGraphicArea::InitializeEvents() {
  inherited::InitializeEvents();
  FBrush->SetOnChange(SenderChangedHandler());
  FPen->SetOnChange(SenderChangedHandler());
}

void TKXChartGraphicArea::BeforeDestruction() {
  inherited::BeforeDestruction();
  SetOnDrawing(nullptr);
  SetOnDraw(nullptr);
  FBrush.reset();
  FPen.reset();
}

void TKXChartGraphicArea::InternalDraw(TCanvas*, const TRect&) {}

bool TKXChartGraphicArea::Drawing(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetBrush(FBrush.get());
  Canvas->SetPen(FPen.get());
  return inherited::Drawing(Canvas, ARect);
}

void TKXChartGraphicArea::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* A = dynamic_cast<const TKXChartGraphicArea*>(Source)) {
    FBrush->Assign(A->FBrush.get());
    FPen->Assign(A->FPen.get());
  }
  inherited::Assign(Source);
}

// --- TKXChartShadow ---

void TKXChartShadow::Initialize() {
  inherited::Initialize();
  Brush()->SetColor(clBlack);
  Brush()->SetStyle(bsSolid);
  Brush()->UseCurrentAsDefaults();
}

void TKXChartShadow::SetSize(int32_t Value) {
  if (Value == FSize) return;
  FSize = Value;
  Changed();
}

void TKXChartShadow::SetDirection(TKXShadowDirection Value) {
  if (Value == FDirection) return;
  FDirection = Value;
  Changed();
}

void TKXChartShadow::SetStyle(TKXShapeStyle Value) {
  if (Value == shpImage) Value = shpRectangle;
  if (Value == FStyle) return;
  FStyle = Value;
  Changed();
}

int32_t TKXChartShadow::Offset(TCanvas* Canvas) const {
  if (!Canvas) return FSize;
  // A thick pen makes the thing larger, so its shadow reaches further.
  return CanvasRound(double(FSize) + TVclCanvasHelper::GetPenWidth(Canvas) - 1);
}

TRect TKXChartShadow::ShadowRect(const TRect& ARect, bool Constrained, TCanvas* Canvas) const {
  const int64_t S = Offset(Canvas);
  const auto& R = ARect;
  if (!Constrained) {
    const int64_t DX = FDirection == sdBottomRight || FDirection == sdTopRight ? S : -S;
    const int64_t DY = FDirection == sdBottomRight || FDirection == sdBottomLeft ? S : -S;
    return {AddClamped(R.Left, DX), AddClamped(R.Top, DY), AddClamped(R.Right, DX),
            AddClamped(R.Bottom, DY)};
  }
  switch (FDirection) {
  case sdBottomLeft:
    return {R.Left, AddClamped(R.Top, S), AddClamped(R.Right, -S), R.Bottom};
  case sdTopRight:
    return {AddClamped(R.Left, S), R.Top, R.Right, AddClamped(R.Bottom, -S)};
  case sdTopLeft:
    return {R.Left, R.Top, AddClamped(R.Right, -S), AddClamped(R.Bottom, -S)};
  default:
    return {AddClamped(R.Left, S), AddClamped(R.Top, S), R.Right, R.Bottom};
  }
}

TRect TKXChartShadow::NonShadowRect(const TRect& ARect, bool Constrained, TCanvas* Canvas) const {
  if (!Constrained) return ARect;
  const int64_t S = Offset(Canvas);
  const TRect R = ShadowRect(ARect, true, nullptr);
  const int64_t DX = FDirection == sdBottomRight || FDirection == sdTopRight ? -S : S;
  const int64_t DY = FDirection == sdBottomRight || FDirection == sdBottomLeft ? -S : S;
  return {AddClamped(R.Left, DX), AddClamped(R.Top, DY), AddClamped(R.Right, DX),
          AddClamped(R.Bottom, DY)};
}

void TKXChartShadow::Draw(TCanvas* Canvas, const TRect& ARect, TKXShapeStyle AStyle,
                          float AOpacity) {
  struct TRestore {
    TKXChartShadow* Self;
    TKXShapeStyle Style;
    float Opacity;
    ~TRestore() {
      Self->FStyle = Style;
      Self->FOpacity = Opacity;
    }
  } Restore{this, FStyle, FOpacity};
  FStyle = AStyle == shpImage ? shpRectangle : AStyle;
  FOpacity = std::isnan(AOpacity) ? 0.0f : std::clamp(AOpacity, 0.0f, 1.0f);
  Draw(Canvas, ARect);
}

void TKXChartShadow::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const TRect R = ShadowRect(ARect, true, nullptr);
  const auto Flat = static_cast<TKXShapeStyle>(FStyle >= shpRectangle3D ? FStyle - 12 : FStyle);
  DrawShape(Canvas, R, nullptr, Flat, true, clBtnHighlight, clBtnShadow, 3, Opacity());
}

void TKXChartShadow::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* S = dynamic_cast<const TKXChartShadow*>(Source)) {
    FSize = S->FSize;
    FDirection = S->FDirection;
  }
  inherited::Assign(Source);
}

void TKXChartShadow::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Brush", this, &TKXChartShadow::Brush);
  Filer.Property("Direction", this, &TKXChartShadow::Direction, &TKXChartShadow::SetDirection,
                 sdBottomRight);
  Filer.Property("Size", this, &TKXChartShadow::Size, &TKXChartShadow::SetSize, 3);
  Filer.Property("Opacity", this, &TKXChartShadow::Opacity, &TKXChartShadow::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartShadow::Visible, &TKXChartShadow::SetVisible, true);
}

// --- TKXChartGradient ---

void TKXChartGradient::SetDirection(TGradientDirection Value) {
  if (Value == FDirection) return;
  FDirection = Value;
  Changed();
}

void TKXChartGradient::SetCoarseness(int32_t Value) {
  Value = std::max(Value, 1);
  if (Value == FCoarseness) return;
  FCoarseness = Value;
  Changed();
}

void TKXChartGradient::SetStartColor(TColor Value) {
  if (Value == FStartColor) return;
  FStartColor = Value;
  Changed();
}

void TKXChartGradient::SetEndColor(TColor Value) {
  if (Value == FEndColor) return;
  FEndColor = Value;
  Changed();
}

void TKXChartGradient::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  DirectionGradient(Canvas, ARect, {FStartColor, FEndColor}, FDirection, FCoarseness, Opacity());
}

void TKXChartGradient::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* G = dynamic_cast<const TKXChartGradient*>(Source)) {
    FCoarseness = G->FCoarseness;
    FEndColor = G->FEndColor;
    FStartColor = G->FStartColor;
    FDirection = G->FDirection;
  }
  inherited::Assign(Source);
}

void TKXChartGradient::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Direction", this, &TKXChartGradient::Direction, &TKXChartGradient::SetDirection,
                 gdTopToBottom);
  Filer.Property("Coarseness", this, &TKXChartGradient::Coarseness,
                 &TKXChartGradient::SetCoarseness, 1);
  Filer.Property("StartColor", this, &TKXChartGradient::StartColor,
                 &TKXChartGradient::SetStartColor, clYellow);
  Filer.Property("EndColor", this, &TKXChartGradient::EndColor, &TKXChartGradient::SetEndColor,
                 clWhite);
  Filer.Property("Opacity", this, &TKXChartGradient::Opacity, &TKXChartGradient::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartGradient::Visible, &TKXChartGradient::SetVisible, true);
}

// --- TKXChartImageArea ---

void TKXChartImageArea::Initialize() {
  inherited::Initialize();
  FImage = MakeOwned<TPicture>();
}

void TKXChartImageArea::InitializeEvents() {
  inherited::InitializeEvents();
  FImage->SetOnChange(SenderChangedHandler());
}

void TKXChartImageArea::SetImageOptions(TImageOptions Value) {
  if (Value == FImageOptions) return;
  const TImageOptions Old = FImageOptions;
  auto NewlyOn = [&](TImageOption O) { return Value.Contains(O) && !Old.Contains(O); };
  if (NewlyOn(ioCenter)) Value -= TImageOptions{ioStretch, ioTile};
  if (NewlyOn(ioTile)) Value -= TImageOptions{ioCenter, ioStretch};
  if (NewlyOn(ioStretch)) Value -= TImageOptions{ioCenter, ioProportional, ioTile};
  if (NewlyOn(ioProportional)) Value -= TImageOptions{ioStretch};
  FImageOptions = Value;
  // A picture loaded earlier takes the new transparency at once, not at its next change.
  if (Value.Contains(ioTransparent) != Old.Contains(ioTransparent)) ApplyTransparency();
  Changed();
}

void TKXChartImageArea::ApplyTransparency() {
  // Raises the picture's change when it differs, which comes back here through
  // SenderChanged and then finds nothing to change.
  if (TGraphic* G = FImage->Graphic()) G->SetTransparent(FImageOptions.Contains(ioTransparent));
}

void TKXChartImageArea::SenderChanged(TObject* Sender) {
  if (Sender == FImage.get()) ApplyTransparency();
  inherited::SenderChanged(Sender);
}

TRect TKXChartImageArea::DestRect(const TRect& ARect) const {
  const int32_t W = FImage->Width(), H = FImage->Height();
  const int32_t CW = Extent(ARect.Left, ARect.Right), CH = Extent(ARect.Top, ARect.Bottom);
  int32_t DW = W, DH = H;
  const bool Proportional = FImageOptions.Contains(ioProportional);
  if (FImageOptions.Contains(ioStretch) || (Proportional && (W > CW || H > CH))) {
    DW = CW;
    DH = CH;
    if (Proportional && W > 0 && H > 0) {
      FitProportionally(W, H, CW, CH, DW, DH);
    }
  }
  TRect D{ARect.Left, ARect.Top, AddClamped(ARect.Left, DW), AddClamped(ARect.Top, DH)};
  if (FImageOptions.Contains(ioCenter)) {
    const int32_t DX = CanvasDiv(Extent(DW, CW), 2), DY = CanvasDiv(Extent(DH, CH), 2);
    D = {AddClamped(D.Left, DX), AddClamped(D.Top, DY), AddClamped(D.Right, DX),
         AddClamped(D.Bottom, DY)};
  }
  return D;
}

void TKXChartImageArea::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  TGraphic* G = FImage->Graphic();
  if (!G || G->Empty()) return;
  const TRect D = DestRect(ARect);
  if (!FImageOptions.Contains(ioTile))
    Canvas->StretchDraw(D, G, Opacity());
  else
    TiledDraw(Canvas, ARect, G, Extent(D.Left, D.Right), Extent(D.Top, D.Bottom), ARect.Left,
              ARect.Top, Opacity());
}

void TKXChartImageArea::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* A = dynamic_cast<const TKXChartImageArea*>(Source)) {
    FImage->Assign(A->FImage.get());
    FImageOptions = A->FImageOptions;
  }
  inherited::Assign(Source);
}

} // namespace kx
