// TKXChartGraphic: the life, drawing events and storing every graphic element shares, and
// the tiling of pictures.
#include "kxcharts/core/KXChartGraphic.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kxcharts/core/KXChartGraphic_p.h"
#include "kxcharts/toolkit/chartkit/KXCommon.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/objects/KXFiler.h"

namespace kx {

using namespace graphic;

namespace {

bool HasArea(const TRect& R) {
  return int64_t(R.Right) > R.Left && int64_t(R.Bottom) > R.Top;
}

} // namespace

void FitProportionally(int32_t W, int32_t H, int32_t CW, int32_t CH, int32_t& DW, int32_t& DH) {
  // The longer side of the picture decides first; if the other side then overflows the
  // room, that side decides instead.
  const double Ratio = double(W) / H;
  if (W > H) {
    DH = CanvasTrunc(CW / Ratio);
    if (DH > CH) {
      DW = CanvasTrunc(CH * Ratio);
      DH = CH;
    }
  } else {
    DW = CanvasTrunc(CH * Ratio);
    if (DW > CW) {
      DH = CanvasTrunc(CW / Ratio);
      DW = CW;
    }
  }
}

// --- TKXChartGraphic ---

void TKXChartGraphic::AfterConstruction() {
  inherited::AfterConstruction();
  Initialize();
  InitializeEvents();
}

void TKXChartGraphic::BeforeDestruction() {
  FOnChange = nullptr;
  inherited::BeforeDestruction();
}

void TKXChartGraphic::Initialize() {}
void TKXChartGraphic::InitializeEvents() {}

void TKXChartGraphic::SetVisible(bool Value) {
  if (Value == FVisible) return;
  FVisible = Value;
  VisibleChanged();
}

void TKXChartGraphic::SetOpacity(float Value) {
  if (Value == FOpacity) return;
  FOpacity = std::isnan(Value) ? 0.0f : std::clamp(Value, 0.0f, 1.0f);
  Changed();
}

void TKXChartGraphic::VisibleChanged() {
  Changed();
}

void TKXChartGraphic::Changed() {
  if (FOnChange) FOnChange(this);
}

void TKXChartGraphic::SenderChanged(TObject*) {
  Changed();
}

void TKXChartGraphic::Draw(TCanvas* Canvas, const TRect& ARect) {
  if (!Canvas) throw Exception("Cannot draw a " + ClassName() + " without a canvas");
  if (!Drawing(Canvas, ARect)) return;
  InternalDraw(Canvas, ARect);
  Drawn(Canvas, ARect);
}

void TKXChartGraphic::Draw(TCanvas* Canvas, const TRect& ARect, TKXChartAxis*, TKXChartAxis*) {
  Draw(Canvas, ARect);
}

bool TKXChartGraphic::Drawing(TCanvas* Canvas, const TRect& ARect) {
  bool DoDraw = HasArea(ARect);
  if (FOnDrawing) FOnDrawing(this, Canvas, ARect, DoDraw);
  return DoDraw;
}

void TKXChartGraphic::Drawn(TCanvas* Canvas, const TRect& ARect) {
  if (FOnDraw) FOnDraw(this, Canvas, ARect);
}

TOwned<TKXChartGraphic> TKXChartGraphic::Clone() const {
  return TOwned<TKXChartGraphic>(
      static_cast<TKXChartGraphic*>(ClonePersistentClass(this, ClassType())));
}

void TKXChartGraphic::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* G = dynamic_cast<const TKXChartGraphic*>(Source)) {
    FVisible = G->FVisible;
    FOpacity = G->FOpacity;
    return;
  }
  inherited::Assign(Source);
}

void TKXChartGraphic::DefineProperties(TFiler& Filer) {
  // A new default must come before any declaration, and every descendant declares its own
  // properties after this inherited call.
  if (!FStoredVisible) Filer.Redefault("Visible", false);
  inherited::DefineProperties(Filer);
}

// --- Tiles ---

void TKXChartGraphic::TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image, int32_t Left,
                                int32_t Top, float Opacity) {
  if (!Image) return;
  TiledDraw(Canvas, ARect, Image, Image->Width(), Image->Height(), Left, Top, Opacity);
}

void TKXChartGraphic::TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image,
                                const TRect& ImageRect, float Opacity) {
  TiledDraw(Canvas, ARect, Image, Extent(ImageRect.Left, ImageRect.Right),
            Extent(ImageRect.Top, ImageRect.Bottom), ImageRect.Left, ImageRect.Top, Opacity);
}

void TKXChartGraphic::TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image,
                                int32_t ImageWidth, int32_t ImageHeight, int32_t Left, int32_t Top,
                                float Opacity) {
  if (!Canvas || !Image || Image->Empty() || ImageWidth < 1 || ImageHeight < 1 || !HasArea(ARect))
    return;
  TRect Visible;
  if (!KXIntersectRect(Visible, ARect, Canvas->ClipRect())) return;
  // The walk is from (Left, Top); tiles that end before the visible part are skipped
  // arithmetically, so the cost follows the visible tiles.
  auto FirstStep = [](int32_t From, int32_t Step, int32_t VisibleStart) {
    const int64_t Gap = int64_t(VisibleStart) - From;
    return Gap <= Step ? int64_t(From) : From + (Gap / Step - 1) * int64_t(Step);
  };
  const int64_t X0 = FirstStep(Left, ImageWidth, Visible.Left);
  const int64_t Y0 = FirstStep(Top, ImageHeight, Visible.Top);
  TCanvasClip Clip(Canvas, ARect);
  for (int64_t Y = Y0; Y < ARect.Bottom && Y < Visible.Bottom; Y += ImageHeight)
    for (int64_t X = X0; X < ARect.Right && X < Visible.Right; X += ImageWidth) {
      if (X + ImageWidth <= Visible.Left || Y + ImageHeight <= Visible.Top) continue;
      const TRect Tile{static_cast<int32_t>(X), static_cast<int32_t>(Y),
                       AddClamped(static_cast<int32_t>(X), ImageWidth),
                       AddClamped(static_cast<int32_t>(Y), ImageHeight)};
      Canvas->StretchDraw(Tile, Image, Opacity);
    }
}

} // namespace kx
