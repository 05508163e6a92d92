#pragma once
// How the points of a point chart look, and the shape a shape chart gives a new value: small
// graphic elements with a size, a shape style, a brush and a pen.
//
//   TKXCustomChartPointInfo      size (10 x 10), style, the style drawn in place of a missing
//                                image; draws one point with DrawShape
//     TKXChartPointInfo          the same, with its properties stored
//     TKXCustomDefaultShape      25 x 25, with a font and an alignment for the shape's label
//       TKXDefaultShape          the same, with its properties stored
//
// The chart that owns a point info makes it, wires its OnChange to its own change handler
// and frees it. A default shape and a shape value exchange their settings both ways
// (Assign, AssignTo).

#include <cstdint>

#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

class TKXCustomPointChart;

// --- TKXCustomChartPointInfo ---

class TKXCustomChartPointInfo : public TKXChartGraphicArea {
  KX_CLASS(TKXCustomChartPointInfo, TKXChartGraphicArea)

private:
  TKXCustomPointChart* FOwner = nullptr;
  int32_t FHeight = 0;
  int32_t FWidth = 0;
  TKXShapeStyle FStyle = shpRectangle;
  TKXShapeStyle FDefaultStyle = shpRectangle;

public:
  explicit TKXCustomChartPointInfo(TKXCustomPointChart* AOwner = nullptr) : FOwner(AOwner) {}

  // --- Properties ---
  // Setters store and call Changed only when the value differs.

  // The chart the point info belongs to, or nil.
  TKXCustomPointChart* Owner() const { return FOwner; }
  int32_t Height() const { return FHeight; }
  // A negative number is stored as 0.
  void SetHeight(int32_t Value);
  int32_t Width() const { return FWidth; }
  // A negative number is stored as 0.
  void SetWidth(int32_t Value);
  TKXShapeStyle Style() const { return FStyle; }
  void SetStyle(TKXShapeStyle Value);
  // The shape drawn when Style is the image and the image is missing. The image itself
  // (shpImage) cannot stand in for a missing image and is ignored, without a change.
  TKXShapeStyle DefaultStyle() const { return FDefaultStyle; }
  void SetDefaultStyle(TKXShapeStyle Value);

  // --- Operations ---

  // Draws one point in ARect with the brush and pen the canvas holds (the caller sets
  // them): nothing at an opacity of exactly 0; else the shape Style (the image ImageIndex
  // of Images for shpImage, DefaultStyle without one), raised, its outline a twentieth of
  // the width (at least 1) wide. Opacity does not fade the shape: the caller that wants a
  // faded point sets the canvas up for it.
  virtual void DrawPoint(TCanvas* Canvas, const TRect& ARect, float Opacity,
                         const TImageList* Images, int32_t ImageIndex);

  // From another point info: size and styles, then what the base copies.
  void Assign(const TPersistent* Source) override;

protected:
  // The element's own brush and pen, then DrawPoint at full opacity, with the owner's image
  // list and no image index.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // 10 x 10, the brush in the next chart colour.
  void Initialize() override;
  // Brush, Pen, DefaultStyle, Style, Height, Width: the stored properties of both published
  // classes.
  void DefinePointProperties(TFiler& Filer);
};

// The point info as a chart stores it.
class TKXChartPointInfo : public TKXCustomChartPointInfo {
  KX_CLASS(TKXChartPointInfo, TKXCustomChartPointInfo)

public:
  using TKXCustomChartPointInfo::TKXCustomChartPointInfo;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXCustomDefaultShape ---

class TKXCustomDefaultShape : public TKXCustomChartPointInfo {
  KX_CLASS(TKXCustomDefaultShape, TKXCustomChartPointInfo)

private:
  T2DTextAlignment FAlignment = tdMiddleCenter;
  TOwned<TFont> FFont;

public:
  using TKXCustomChartPointInfo::TKXCustomChartPointInfo;

  // --- Properties ---

  // Where the shape's label stands in the shape.
  T2DTextAlignment Alignment() const { return FAlignment; }
  void SetAlignment(T2DTextAlignment Value);
  // The font of the shape's label; its changes are the shape's.
  TFont* Font() const { return FFont.get(); }
  void SetFont(const TFont* Value) { FFont->Assign(Value); }

  // From another default shape: alignment and font, then what the base copies. From a
  // shape value: its size (rounded), style, brush, pen, alignment and font, through the
  // setters.
  void Assign(const TPersistent* Source) override;
  // Frees the font after the base has let go of its events.
  void BeforeDestruction() override;

protected:
  // A shape value takes the size, style, brush, pen, alignment and font.
  void AssignTo(TPersistent* Dest) const override;
  // 25 x 25, a font, the label in the middle.
  void Initialize() override;
  void InitializeEvents() override;
};

// The default shape as a chart stores it.
class TKXDefaultShape : public TKXCustomDefaultShape {
  KX_CLASS(TKXDefaultShape, TKXCustomDefaultShape)

public:
  using TKXCustomDefaultShape::TKXCustomDefaultShape;

protected:
  // The point info's, then Alignment and Font.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
