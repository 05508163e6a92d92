#include "kxcharts/core/KXChartLayer.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

namespace {

// Pixel sums in 64 bits, clamped back, so that no rectangle or picture size overflows.
int32_t Clamp32(int64_t V) {
  return static_cast<int32_t>(std::clamp<int64_t>(V, INT32_MIN, INT32_MAX));
}

int32_t Extent(int32_t From, int32_t To) {
  return static_cast<int32_t>(
      std::clamp<int64_t>(int64_t(To) - From, -KXMaxCanvasInt, KXMaxCanvasInt));
}

} // namespace

// --- Life ---

void TKXChartLayer::Initialize() {
  inherited::Initialize();
  FBrush = MakeOwned<TBrush>();
  FPen = MakeOwned<TPen>();
  FImage = MakeOwned<TPicture>();
}

void TKXChartLayer::InitializeEvents() {
  inherited::InitializeEvents();
  FBrush->SetOnChange(SenderChangedHandler());
  FPen->SetOnChange(SenderChangedHandler());
  FImage->SetOnChange(SenderChangedHandler());
  FZoomable = true;
}

// --- Properties ---

void TKXChartLayer::SetImageMode(TImageMode Value) {
  if (Value == FImageMode) return;
  FImageMode = Value;
  Changed();
}

void TKXChartLayer::SetTransparent(bool Value) {
  if (Value == FTransparent) return;
  FTransparent = Value;
  Changed();
}

void TKXChartLayer::SetZoomable(bool Value) {
  if (Value == FZoomable) return;
  FZoomable = Value;
  Changed();
}

void TKXChartLayer::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* L = dynamic_cast<const TKXChartLayer*>(Source)) {
    FBrush->Assign(L->FBrush.get());
    FImageMode = L->FImageMode;
    FPen->Assign(L->FPen.get());
    FImage->Assign(L->FImage.get());
    FTransparent = L->FTransparent;
    FZoomable = L->FZoomable;
  }
  inherited::Assign(Source);
}

// --- Drawing ---

void TKXChartLayer::Draw(TCanvas* Canvas, const TRect& ARect, TKXChartAxis* VertAxis,
                         TKXChartAxis* HorizAxis) {
  FVerticalAxis = VertAxis;
  FHorizontalAxis = HorizAxis;
  TFinally Release([this] {
    FVerticalAxis = nullptr;
    FHorizontalAxis = nullptr;
  });
  inherited::Draw(Canvas, ARect, VertAxis, HorizAxis);
}

TRect TKXChartLayer::LayerDestRect(const TRect& ARect) const {
  const int32_t W = FImage->Width(), H = FImage->Height();
  const int32_t CW = Extent(ARect.Left, ARect.Right), CH = Extent(ARect.Top, ARect.Bottom);
  const bool Proportional = FImageMode == imProportional || FImageMode == imProportionalCenter;
  int32_t DW = W, DH = H;
  if (FImageMode == imStretch) {
    DW = CW;
    DH = CH;
  } else if (Proportional && (W >= 1 || H >= 1)) {
    DW = CW;
    DH = CH;
    if (W > 0 && H > 0) {
      FitProportionally(W, H, CW, CH, DW, DH);
    }
  }
  int64_t Left = ARect.Left, Top = ARect.Top;
  if (FImageMode == imProportionalCenter) {
    Left += CanvasDiv(Extent(DW, CW), 2);
    Top += CanvasDiv(Extent(DH, CH), 2);
  }
  return {Clamp32(Left), Clamp32(Top), Clamp32(Left + DW), Clamp32(Top + DH)};
}

TGraphic* TKXChartLayer::PaintableGraphic() {
  TGraphic* G = FImage->Graphic();
  if (!G || Is<TBitmap>(G)) return G;
  // Other kinds of picture are painted once into a bitmap, which the picture keeps from
  // then on, so that tiles and zoomed copies cost a bitmap copy each.
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->SetSize(G->Width(), G->Height());
  B->Canvas()->ClearRect({0, 0, B->Width(), B->Height()});
  B->Canvas()->Draw(0, 0, G);
  B->SetTransparent(G->Transparent());
  FImage->SetGraphic(B.get());
  return FImage->Graphic();
}

void TKXChartLayer::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  Canvas->SetBrush(FBrush.get());
  if (!FTransparent) Canvas->FillRect(ARect);
  if (!FImage->Graphic() || FImage->Graphic()->Empty()) return;
  FImage->Graphic()->SetTransparent(FTransparent);
  TGraphic* G = PaintableGraphic();
  TCanvasClip Clip(Canvas, ARect);
  const bool Zooming = FZoomable && FVerticalAxis && FHorizontalAxis &&
                       (FVerticalAxis->Zooming() || FHorizontalAxis->Zooming());
  if (Zooming)
    DrawZoomed(Canvas, ARect, G);
  else
    DrawFullScale(Canvas, ARect, G);
}

void TKXChartLayer::DrawFullScale(TCanvas* Canvas, const TRect& ARect, TGraphic* G) {
  const int64_t W = G->Width(), H = G->Height();
  const TPoint C = CanvasCenterPoint(ARect);
  const int32_t PX = Clamp32(C.X - int64_t(CanvasDiv(G->Width(), 2)));
  const int32_t PY = Clamp32(C.Y - int64_t(CanvasDiv(G->Height(), 2)));
  switch (FImageMode) {
  case imCenter:
    Canvas->Draw(PX, PY, G);
    break;
  case imLeft:
    Canvas->Draw(ARect.Left, PY, G);
    break;
  case imRight:
    Canvas->Draw(Clamp32(ARect.Right - W), PY, G);
    break;
  case imTop:
    Canvas->Draw(PX, ARect.Top, G);
    break;
  case imBottom:
    Canvas->Draw(PX, Clamp32(ARect.Bottom - H), G);
    break;
  case imTile:
    TiledDraw(Canvas, ARect, G, ARect.Left, ARect.Top);
    break;
  default:
    Canvas->StretchDraw(LayerDestRect(ARect), G);
  }
}

void TKXChartLayer::DrawZoomed(TCanvas* Canvas, const TRect& ARect, TGraphic* G) {
  const TKXChartAxis* HA = FHorizontalAxis;
  const TKXChartAxis* VA = FVerticalAxis;
  if (HA->SizeZoomed() == 0 || VA->SizeZoomed() == 0) return;
  const int64_t W = G->Width(), H = G->Height();
  // Pixels of the picture's full-scale place become values on the whole range...
  auto HP2A = [&](int64_t Pixel) { return HA->PixelToAxis(Clamp32(Pixel), ARect, true); };
  auto VP2A = [&](int64_t Pixel) { return VA->PixelToAxis(Clamp32(Pixel), ARect, true); };

  if (FImageMode == imTile) {
    // The tiles grow by the zoom, and the pattern stays where the data is.
    const double ScaleX = HA->SizeUnzoomed() / HA->SizeZoomed();
    const double ScaleY = VA->SizeUnzoomed() / VA->SizeZoomed();
    const double TileW = double(W) * ScaleX, TileH = double(H) * ScaleY;
    const double UnitX = HP2A(ARect.Left + W) - HA->Minimum();
    const double UnitY = VA->Maximum() - VP2A(ARect.Top + H);
    // A tile that spans no value (a range of no size) has no place in the zoom.
    if (UnitX == 0 || UnitY == 0 || !std::isfinite(UnitX) || !std::isfinite(UnitY)) return;
    const double StartX = ARect.Left - TileW * (HA->ZoomMinimum() - HA->Minimum()) / UnitX;
    const double StartY = ARect.Top - TileH * (VA->Maximum() - VA->ZoomMaximum()) / UnitY;
    TiledDraw(Canvas, ARect, G, CanvasRound(TileW), CanvasRound(TileH), CanvasRound(StartX),
              CanvasRound(StartY));
    return;
  }

  const TPoint C = CanvasCenterPoint(ARect);
  const int64_t PX = C.X - int64_t(CanvasDiv(G->Width(), 2));
  const int64_t PY = C.Y - int64_t(CanvasDiv(G->Height(), 2));
  float L, T, R, B;
  switch (FImageMode) {
  case imCenter:
    L = HP2A(PX), T = VP2A(PY), R = HP2A(PX + W), B = VP2A(PY + H);
    break;
  case imLeft:
    L = HA->Minimum(), T = VP2A(PY), R = HP2A(ARect.Left + W), B = VP2A(PY + H);
    break;
  case imRight:
    L = HP2A(ARect.Right - W), T = VP2A(PY), R = HA->Maximum(), B = VP2A(PY + H);
    break;
  case imTop:
    L = HP2A(PX), T = VA->Maximum(), R = HP2A(PX + W), B = VP2A(ARect.Top + H);
    break;
  case imBottom:
    L = HP2A(PX), T = VP2A(ARect.Bottom - H), R = HP2A(PX + W), B = VA->Minimum();
    break;
  default: {
    const TRect D = LayerDestRect(ARect);
    L = HP2A(D.Left), T = VP2A(D.Top), R = HP2A(D.Right), B = VP2A(D.Bottom);
  }
  }
  // ...and those values become pixels of the present zoom.
  Canvas->StretchDraw({HA->AxisToPixel(L, ARect), VA->AxisToPixel(T, ARect),
                       HA->AxisToPixel(R, ARect), VA->AxisToPixel(B, ARect)},
                      G);
}

// --- Stored properties ---

void TKXChartLayer::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Brush", this, &TKXChartLayer::Brush);
  Filer.Property("Image", this, &TKXChartLayer::Image);
  Filer.Property("ImageMode", this, &TKXChartLayer::ImageMode, &TKXChartLayer::SetImageMode,
                 imCenter);
  Filer.Property("Pen", this, &TKXChartLayer::Pen);
  Filer.Property("Transparent", this, &TKXChartLayer::Transparent, &TKXChartLayer::SetTransparent,
                 FStoredTransparent);
  Filer.Property("Zoomable", this, &TKXChartLayer::Zoomable, &TKXChartLayer::SetZoomable, true);
  Filer.Property("Opacity", this, &TKXChartLayer::Opacity, &TKXChartLayer::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartLayer::Visible, &TKXChartLayer::SetVisible, true);
}

} // namespace kx
