#pragma once
// The area elements: TKXChartGraphicArea, an element with a brush and a pen, and the
// elements that fill a rectangle: the shadow that charts cast, the panel's background
// gradient and the image area that places a picture.

#include <cstdint>

#include "kxcharts/core/KXChartGraphic.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXSet.h"

namespace kx {

// --- Enumerations ---

enum TKXShadowDirection : uint8_t { sdBottomRight, sdBottomLeft, sdTopRight, sdTopLeft };
KX_ENUM_NAMES(TKXShadowDirection, "sdBottomRight", "sdBottomLeft", "sdTopRight", "sdTopLeft")

enum TImageOption : uint8_t { ioCenter, ioStretch, ioProportional, ioTile, ioTransparent };
KX_ENUM_NAMES(TImageOption, "ioCenter", "ioStretch", "ioProportional", "ioTile", "ioTransparent")
using TImageOptions = TSet<TImageOption>;

// --- TKXChartGraphicArea ---

// An element with a brush (starting as clBtnFace) and a pen. Paints nothing itself.
class TKXChartGraphicArea : public TKXChartGraphic {
  KX_CLASS(TKXChartGraphicArea, TKXChartGraphic)

private:
  TOwned<TBrush> FBrush;
  TOwned<TPen> FPen;

public:
  TKXChartGraphicArea() = default;

  // --- Properties ---

  TBrush* Brush() const { return FBrush.get(); }
  void SetBrush(const TBrush* Value) { FBrush->Assign(Value); }
  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value) { FPen->Assign(Value); }

  void Assign(const TPersistent* Source) override;
  // Also clears OnDrawing and OnDraw, then frees brush and pen.
  void BeforeDestruction() override;

protected:
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // Assigns the brush and the pen to the canvas.
  bool Drawing(TCanvas* Canvas, const TRect& ARect) override;
};

// --- TKXChartShadow ---

// The shadow that charts cast: drawn first in the shadow's brush and pen on ShadowRect, then
// the thing itself on NonShadowRect.
class TKXChartShadow : public TKXChartGraphicArea {
  KX_CLASS(TKXChartShadow, TKXChartGraphicArea)

private:
  int32_t FSize = 3;
  TKXShadowDirection FDirection = sdBottomRight;
  TKXShapeStyle FStyle = shpRectangle;

public:
  TKXChartShadow() = default;

  // --- Properties ---

  // The offset in pixels.
  int32_t Size() const { return FSize; }
  void SetSize(int32_t Value);
  TKXShadowDirection Direction() const { return FDirection; }
  void SetDirection(TKXShadowDirection Value);
  // The shape drawn. The image style (shpImage) has nothing to cast and is stored as the
  // rectangle.
  TKXShapeStyle Style() const { return FStyle; }
  void SetStyle(TKXShapeStyle Value);

  // --- Operations ---

  // Where the shadow of ARect lies. The offset is Size, grown by the canvas pen's width
  // less 1 when a canvas is given. Not constrained: ARect moved by the offset towards
  // Direction. Constrained: within ARect, the edges on the far side of Direction moved in.
  TRect ShadowRect(const TRect& ARect, bool Constrained, TCanvas* Canvas = nullptr) const;
  // Where the thing itself lies beside its shadow: ARect when not constrained; constrained,
  // the other corner of ARect, so that the two constrained rectangles fill ARect.
  TRect NonShadowRect(const TRect& ARect, bool Constrained, TCanvas* Canvas = nullptr) const;
  // Draws the shadow of a thing of shape AStyle with Opacity; Style and Opacity are put
  // back afterwards, also when an exception passes.
  void Draw(TCanvas* Canvas, const TRect& ARect, TKXShapeStyle AStyle, float AOpacity);
  using TKXChartGraphicArea::Draw;

  void Assign(const TPersistent* Source) override;

protected:
  // The shape on ShadowRect(ARect, true), flat (3D styles as their flat style).
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void DefineProperties(TFiler& Filer) override;

private:
  int32_t Offset(TCanvas* Canvas) const;
};

// --- TKXChartGradient ---

// Two colours spread across the rectangle in a direction.
class TKXChartGradient : public TKXChartGraphic {
  KX_CLASS(TKXChartGradient, TKXChartGraphic)

private:
  int32_t FCoarseness = 1;
  TColor FEndColor = clWhite;
  TColor FStartColor = clYellow;
  TGradientDirection FDirection = gdTopToBottom;

public:
  TKXChartGradient() = default;

  // --- Properties ---

  TGradientDirection Direction() const { return FDirection; }
  void SetDirection(TGradientDirection Value);
  // The width of the colour bands in pixels, at least 1.
  int32_t Coarseness() const { return FCoarseness; }
  void SetCoarseness(int32_t Value);
  TColor StartColor() const { return FStartColor; }
  void SetStartColor(TColor Value);
  TColor EndColor() const { return FEndColor; }
  void SetEndColor(TColor Value);

  void Assign(const TPersistent* Source) override;

protected:
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXChartImageArea ---

// An area that shows a picture, placed by its options.
class TKXChartImageArea : public TKXChartGraphicArea {
  KX_CLASS(TKXChartImageArea, TKXChartGraphicArea)

private:
  TOwned<TPicture> FImage;
  TImageOptions FImageOptions = TImageOptions::FromBits(5);

public:
  TKXChartImageArea() = default;

  // --- Properties ---

  TPicture* Image() const { return FImage.get(); }
  void SetImage(const TPicture* Value) { FImage->Assign(Value); }
  // The option switched on last wins over those it contradicts: ioCenter takes ioStretch
  // and ioTile away; ioTile takes ioCenter and ioStretch; ioStretch takes ioCenter,
  // ioProportional and ioTile; ioProportional takes ioStretch.
  TImageOptions ImageOptions() const { return FImageOptions; }
  void SetImageOptions(TImageOptions Value);

  // --- Operations ---

  // Where the picture goes in ARect: its own size, or ARect's when stretched (or when
  // proportional and larger than ARect), kept at the picture's proportions when
  // proportional; at ARect's top left, or centred with ioCenter.
  TRect DestRect(const TRect& ARect) const;

  void Assign(const TPersistent* Source) override;

protected:
  // Without a graphic nothing; else the picture stretched into DestRect, or tiled over
  // ARect in DestRect's size with ioTile.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // A change of the picture also sets its graphic's Transparent from ioTransparent.
  void SenderChanged(TObject* Sender) override;

private:
  void ApplyTransparency();
};

} // namespace kx
