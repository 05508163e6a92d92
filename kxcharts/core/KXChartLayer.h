#pragma once
// TKXChartLayer: a rectangle of colour with an optional picture. A panel paints three of
// them: one behind everything, one behind the plot area and one in front of everything.
// Drawn with two axes (the plot area's layer), the picture can hold to the axis scale:
// when the chart zooms, the picture grows and moves with the data.

#include <cstdint>

#include "kxcharts/core/KXChartGraphic.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKXChartAxis;

// Where a layer's picture goes in its rectangle (at full scale).
enum TImageMode : uint8_t {
  imCenter,            // natural size, centred
  imLeft,              // natural size, at the left edge, centred vertically
  imRight,             // natural size, at the right edge, centred vertically
  imTop,               // natural size, at the top edge, centred horizontally
  imBottom,            // natural size, at the bottom edge, centred horizontally
  imStretch,           // over the whole rectangle
  imTile,              // repeated from the top left corner
  imProportional,      // scaled to fit with its aspect kept, at the top left
  imProportionalCenter // scaled to fit with its aspect kept, centred
};
KX_ENUM_NAMES(TImageMode, "imCenter", "imLeft", "imRight", "imTop", "imBottom", "imStretch",
              "imTile", "imProportional", "imProportionalCenter")

class TKXChartLayer : public TKXChartGraphic {
  KX_CLASS(TKXChartLayer, TKXChartGraphic)

private:
  TOwned<TBrush> FBrush;
  TImageMode FImageMode = imCenter;
  TOwned<TPen> FPen;
  TOwned<TPicture> FImage;
  bool FTransparent = false;
  // Set only while Draw with axes runs; not owned.
  TKXChartAxis* FVerticalAxis = nullptr;
  TKXChartAxis* FHorizontalAxis = nullptr;
  bool FZoomable = true;
  // The Transparent that the stored form leaves out.
  bool FStoredTransparent = false;

public:
  TKXChartLayer() = default;

  // --- Properties ---

  // The fill of the rectangle.
  TBrush* Brush() const { return FBrush.get(); }
  void SetBrush(const TBrush* Value) { FBrush->Assign(Value); }
  // Kept and stored for the application; painting does not use it.
  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value) { FPen->Assign(Value); }
  // The picture. A graphic of a kind other than a bitmap is replaced by a bitmap of it in
  // the first paint.
  TPicture* Image() const { return FImage.get(); }
  void SetImage(const TPicture* Value) { FImage->Assign(Value); }
  TImageMode ImageMode() const { return FImageMode; }
  void SetImageMode(TImageMode Value);
  // No fill, and the picture drawn without its transparent colour.
  bool Transparent() const { return FTransparent; }
  void SetTransparent(bool Value);
  // Whether the picture follows the zoom of the axes it is drawn with.
  bool Zoomable() const { return FZoomable; }
  void SetZoomable(bool Value);
  // The axes of the Draw with axes under way; nil outside it.
  TKXChartAxis* VerticalAxis() const { return FVerticalAxis; }
  TKXChartAxis* HorizontalAxis() const { return FHorizontalAxis; }

  // --- Operations ---

  // Where the stretching modes put the picture in ARect: the whole of it for imStretch;
  // for the proportional modes the largest rectangle of the picture's aspect that fits
  // (small pictures grow too), at the top left or centred; the picture's own size at the
  // top left for the other modes.
  TRect LayerDestRect(const TRect& ARect) const;

  // Keeps the two axes for the picture while the inherited Draw runs, and lets go of them
  // afterwards, also when an exception passes.
  void Draw(TCanvas* Canvas, const TRect& ARect, TKXChartAxis* VertAxis,
            TKXChartAxis* HorizAxis) override;
  using TKXChartGraphic::Draw;

  // Also Transparent.
  void KeepStartAsStoredDefaults() override {
    TKXChartGraphic::KeepStartAsStoredDefaults();
    FStoredTransparent = FTransparent;
  }

  // From another layer: brush, image mode, pen, picture, Transparent and Zoomable.
  void Assign(const TPersistent* Source) override;

protected:
  // The fill (unless Transparent), then the picture clipped to ARect: at full scale by
  // ImageMode, or, while Zoomable and drawn with axes of which one zooms, placed at full
  // scale and carried into the present zoom. Opacity plays no part.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // Brush, Image, ImageMode, Pen, Transparent, Zoomable, Opacity, Visible.
  void DefineProperties(TFiler& Filer) override;

private:
  // The picture's graphic as a bitmap, made so once if it is of another kind.
  TGraphic* PaintableGraphic();
  void DrawFullScale(TCanvas* Canvas, const TRect& ARect, TGraphic* G);
  void DrawZoomed(TCanvas* Canvas, const TRect& ARect, TGraphic* G);
};

} // namespace kx
