#pragma once
// The graphic elements of a chart panel: everything it paints that is not a chart. Each
// element draws itself into a rectangle, has Visible, Opacity, a change event for its owner
// and two drawing events. The family:
//
//   TKXChartGraphic
//     TKXChartGraphicArea          brush and pen
//       TKXChartShadow             the shadow charts cast
//       TKXChartImageArea          a picture placed by TImageOptions
//         TKXChartHeader           the panel's header and footer band
//     TKXCustomChartLabel          a text with angle, alignment and delta font
//       TKXChartLabelMetaData      published, for texts that come from elsewhere
//         TKXChartLabel            published with its text (axis titles)
//     TKXChartGradient             the panel's background gradient
//
// Axes, grid, legend and layers derive from these in their own modules.
//
// Life. Elements are made by New<T>() (or TOwned through MakeOwned<T>()), which runs
// Initialize (defaults and owned objects) and then InitializeEvents (wiring), so defaults
// raise no change events. The owner wires OnChange to its own handler; freeing an element
// clears OnChange first, so no notification runs while it goes.

#include <cstdint>
#include <functional>
#include <string>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/controls/KXControls.h"
#include "kxcharts/toolkit/chartkit/KXDeltaFont.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

// Sets DW, DH to the largest size of the shape W x H (both above 0) that fits in CW x CH,
// as picture options and image modes that keep proportions place a picture.
void FitProportionally(int32_t W, int32_t H, int32_t CW, int32_t CH, int32_t& DW, int32_t& DH);

class TKXChartAxis;

// --- Enumerations and events ---

enum TKXShadowDirection : uint8_t { sdBottomRight, sdBottomLeft, sdTopRight, sdTopLeft };
KX_ENUM_NAMES(TKXShadowDirection, "sdBottomRight", "sdBottomLeft", "sdTopRight", "sdTopLeft")

enum TImageOption : uint8_t { ioCenter, ioStretch, ioProportional, ioTile, ioTransparent };
KX_ENUM_NAMES(TImageOption, "ioCenter", "ioStretch", "ioProportional", "ioTile", "ioTransparent")
using TImageOptions = TSet<TImageOption>;

// Raised after something has been drawn into ARect.
using TKXChartDrawEvent = std::function<void(TObject* Sender, TCanvas* Canvas, const TRect& ARect)>;
// Raised before drawing into ARect; setting DoDraw to false skips the drawing.
using TKXChartDrawingEvent =
    std::function<void(TObject* Sender, TCanvas* Canvas, const TRect& ARect, bool& DoDraw)>;

// --- TKXChartGraphic ---

class TKXChartGraphic : public TPersistent {
  KX_CLASS(TKXChartGraphic, TPersistent)

protected:
  // Descendants copy and set these directly where no notification is wanted.
  bool FVisible = true;
  float FOpacity = 1.0f;

private:
  TNotifyEvent FOnChange;
  TKXChartDrawEvent FOnDraw;
  TKXChartDrawingEvent FOnDrawing;
  // The Visible that the stored form leaves out (see KeepStartAsStoredDefaults).
  bool FStoredVisible = true;

public:
  TKXChartGraphic() = default;

  // --- Properties ---

  bool Visible() const { return FVisible; }
  void SetVisible(bool Value);
  // 0 (invisible) to 1 (opaque); other numbers are clamped, NaN counts as 0.
  float Opacity() const { return FOpacity; }
  void SetOpacity(float Value);

  // --- Events ---

  // The owner's hook: raised by Changed.
  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }
  const TKXChartDrawingEvent& OnDrawing() const { return FOnDrawing; }
  void SetOnDrawing(TKXChartDrawingEvent Value) { FOnDrawing = std::move(Value); }
  const TKXChartDrawEvent& OnDraw() const { return FOnDraw; }
  void SetOnDraw(TKXChartDrawEvent Value) { FOnDraw = std::move(Value); }

  // --- Operations ---

  // Drawing, then InternalDraw and Drawn when Drawing answers true. Raises Exception for a
  // nil canvas.
  virtual void Draw(TCanvas* Canvas, const TRect& ARect);
  // The form for elements that paint in axis units (layers, grid). Here the axes are
  // ignored and Draw(Canvas, ARect) runs.
  virtual void Draw(TCanvas* Canvas, const TRect& ARect, TKXChartAxis* VertAxis,
                    TKXChartAxis* HorizAxis);
  // A new element of this element's class with this one assigned to it.
  TOwned<TKXChartGraphic> Clone() const;
  // Takes the element's present state as the one its stored form leaves out. An owner
  // that starts an element otherwise than the element starts itself (a panel's hidden top
  // axis) calls it once the element is made, so that a form read back into a new owner
  // gets the element as it was written. Here Visible; descendants add theirs.
  virtual void KeepStartAsStoredDefaults() { FStoredVisible = FVisible; }

  // Fills ARect with copies of Image in its own size, the first at (Left, Top), stepping by
  // the image's width and height while the tile starts before ARect's right and bottom
  // edges. Tiles are clipped to ARect, and only those that reach the canvas's clip
  // rectangle are drawn, so a huge ARect costs no more than the visible part.
  static void TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image, int32_t Left,
                        int32_t Top, float Opacity = 1.0f);
  // The same walk with each tile stretched to ImageWidth by ImageHeight, which are also the
  // steps; a step below 1 draws nothing.
  static void TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image, int32_t ImageWidth,
                        int32_t ImageHeight, int32_t Left, int32_t Top, float Opacity = 1.0f);
  // The stretching form with the size and the top left of ImageRect.
  static void TiledDraw(TCanvas* Canvas, const TRect& ARect, TGraphic* Image,
                        const TRect& ImageRect, float Opacity = 1.0f);

  // From another element: Visible and Opacity, directly and without Changed. Descendants
  // copy their own fields first when Source is of their class.
  void Assign(const TPersistent* Source) override;
  // Runs Initialize, then InitializeEvents.
  void AfterConstruction() override;
  // Clears OnChange, so that nothing is reported while the element goes.
  void BeforeDestruction() override;

protected:
  // Paints the element into ARect on Canvas, which Drawing has set up.
  virtual void InternalDraw(TCanvas* Canvas, const TRect& ARect) = 0;
  // Called when Visible changed; calls Changed here.
  virtual void VisibleChanged();
  // Sets the defaults and makes the owned objects. Overrides call the inherited one first.
  virtual void Initialize();
  // Connects the change events of the owned objects, after Initialize.
  virtual void InitializeEvents();
  // Raises OnChange(this).
  virtual void Changed();
  // Sets the canvas up for drawing (overrides assign their brush, pen or font first, then
  // call the inherited one), then decides: true when ARect has a width and a height above
  // 0, which OnDrawing may change.
  virtual bool Drawing(TCanvas* Canvas, const TRect& ARect);
  // Raises OnDraw.
  virtual void Drawn(TCanvas* Canvas, const TRect& ARect);
  // The change handler of the owned objects: calls Changed.
  virtual void SenderChanged(TObject* Sender);
  // Gives Visible the stored default that KeepStartAsStoredDefaults took, for the
  // declarations of the descendants that follow.
  void DefineProperties(TFiler& Filer) override;
  // A handler that calls SenderChanged, for wiring owned objects.
  TNotifyEvent SenderChangedHandler() {
    return [this](TObject* Sender) { SenderChanged(Sender); };
  }
};

using TKXChartGraphicClass = const TMetaClass*;

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

// --- TKXCustomChartLabel ---

// A text drawn at an angle, aligned in its rectangle, in a font that follows the panel's.
class TKXCustomChartLabel : public TKXChartGraphic {
  KX_CLASS(TKXCustomChartLabel, TKXChartGraphic)

private:
  int32_t FAngle = 0;
  std::string FText;
  TOwned<TKXDeltaFont> FFont;
  TAlignment FAlignment = taCenter;

public:
  TKXCustomChartLabel() = default;

  // --- Properties ---

  TAlignment Alignment() const { return FAlignment; }
  void SetAlignment(TAlignment Value);
  std::string Text() const { return GetText(); }
  TKXDeltaFont* Font() const { return FFont.get(); }
  // Degrees counter-clockwise, kept as Value mod 360 (the sign stays); the font turns
  // with it.
  int32_t Angle() const { return FAngle; }
  void SetAngle(int32_t Value);

  // --- Operations ---

  // The text to draw; the label's own here, descendants may take it from elsewhere.
  virtual std::string GetText() const;
  virtual void SetText(const std::string& Value);
  // Assigns into the owned font and turns it by Angle. Raises no Changed of its own: the
  // font's change event does.
  virtual void SetFont(const TFont* Value);

  void Assign(const TPersistent* Source) override;

protected:
  // Nothing when the text is empty, the label invisible or fully transparent. Otherwise
  // the rotated text's box is aligned in ARect (left and right at its top, centre at its
  // centre) and the text written from its origin within that box.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // Assigns the font to the canvas.
  bool Drawing(TCanvas* Canvas, const TRect& ARect) override;
};

// The label with its appearance stored; its text comes from elsewhere (axis labels, the
// legend).
class TKXChartLabelMetaData : public TKXCustomChartLabel {
  KX_CLASS(TKXChartLabelMetaData, TKXCustomChartLabel)

public:
  TKXChartLabelMetaData() = default;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// The label with its text stored too (axis titles).
class TKXChartLabel : public TKXChartLabelMetaData {
  KX_CLASS(TKXChartLabel, TKXChartLabelMetaData)

public:
  TKXChartLabel() = default;

protected:
  void DefineProperties(TFiler& Filer) override;
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

// --- TKXChartHeader ---

// The band of text (and picture) at the top of a panel (a header) or at its bottom (a
// footer).
class TKXChartHeader : public TKXChartImageArea {
  KX_CLASS(TKXChartHeader, TKXChartImageArea)

private:
  int32_t FAngle = 0;
  std::string FText;
  TAlignment FAlignment = taCenter;
  int32_t FHeight = 0;
  int32_t FWidth = 0;
  bool FIsHeader = false;
  TOwned<TKXDeltaFont> FFont;
  // The panel's font, only until AfterConstruction has taken it.
  const TFont* FOwnerFont = nullptr;

public:
  // A header without a panel (Clone, streaming); it draws as a footer.
  TKXChartHeader() = default;
  // A header (IsHeader) or a footer of a panel whose font is OwnerFont (may be nil).
  // OwnerFont need only live until New<> returns: the font takes a copy and records it as
  // the base of its differences (blue for a header, red for a footer), so that the panel
  // can pass later fonts on through Font()->ChangeBaseFont.
  TKXChartHeader(const TFont* OwnerFont, bool IsHeader)
      : FIsHeader(IsHeader), FOwnerFont(OwnerFont) {}

  // --- Properties ---

  TAlignment Alignment() const { return FAlignment; }
  void SetAlignment(TAlignment Value);
  int32_t Angle() const { return FAngle; }
  void SetAngle(int32_t Value);
  const std::string& Text() const { return FText; }
  void SetText(const std::string& Value);
  TKXDeltaFont* Font() const { return FFont.get(); }
  void SetFont(const TFont* Value);
  // The band's height in pixels: at least the font's Height.
  int32_t Height() const { return FHeight; }
  void SetHeight(int32_t Value);
  // Stored and copied; nothing paints by it.
  int32_t Width() const { return FWidth; }
  void SetWidth(int32_t Value);
  bool IsHeader() const { return FIsHeader; }

  // Copies everything but which band it is.
  void Assign(const TPersistent* Source) override;
  void AfterConstruction() override;

protected:
  // The band of Height pixels at the top (header) or bottom (footer) of ARect: the picture,
  // then the text aligned in it and clipped to it.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // Assigns the font to the canvas.
  bool Drawing(TCanvas* Canvas, const TRect& ARect) override;
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
