#pragma once
// The graphic elements of a chart panel: everything it paints that is not a chart. Each
// element draws itself into a rectangle, has Visible, Opacity, a change event for its owner
// and two drawing events. The family, by file:
//
//   TKXChartGraphic                  KXChartGraphic.h
//     TKXChartGraphicArea            KXChartGraphicArea.h: brush and pen
//       TKXChartShadow               the shadow charts cast
//       TKXChartImageArea            a picture placed by TImageOptions
//         TKXChartHeader             KXChartLabel.h: the panel's header and footer band
//     TKXChartGradient               KXChartGraphicArea.h: the panel's background gradient
//     TKXCustomChartLabel            KXChartLabel.h: a text with angle, alignment and delta font
//       TKXChartLabelMetaData        published, for texts that come from elsewhere
//         TKXChartLabel              published with its text (axis titles)
//
// Axes, grid, legend and layers derive from these in their own modules.
//
// Life. Elements are made by New<T>() (or TOwned through MakeOwned<T>()), which runs
// Initialize (defaults and owned objects) and then InitializeEvents (wiring), so defaults
// raise no change events. The owner wires OnChange to its own handler; freeing an element
// clears OnChange first, so no notification runs while it goes.

#include <cstdint>
#include <functional>

#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// Sets DW, DH to the largest size of the shape W x H (both above 0) that fits in CW x CH,
// as picture options and image modes that keep proportions place a picture.
void FitProportionally(int32_t W, int32_t H, int32_t CW, int32_t CH, int32_t& DW, int32_t& DH);

class TKXChartAxis;

// --- Events ---

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

} // namespace kx
