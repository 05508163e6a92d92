#pragma once
// TKXCustomChartPanel: the component an application places on a form to hold charts. It
// owns four axes, a header and a footer, a legend, three layers (behind everything, behind
// the plot, in front of everything), a gradient, a chart shadow, margins and the list of
// its charts. The list does not own the charts, but the panel frees the charts placed on it
// when it is freed (they are its child controls, as on any window), whoever owns them: a
// chart that must outlive the panel leaves it first (SetPanel(nullptr), SetParent(nullptr)).
// A chart's owner frees it too, wherever it stands. A chart may be freed at any time, also
// from its own or the panel's drawing events (not from a per-value event such as
// OnCustomDrawValue of the chart being drawn): it leaves the list and its axes.
//
// Its one central algorithm is the layout: InternalDraw cuts the client rectangle step by
// step into the areas of these elements and paints them in a fixed order. It keeps the
// palette its charts take from, and is the panel's end of the change road: every change of
// a chart or of an element it owns reaches its listeners and events and repaints it.
// TKXChartPanel publishes it.
//
// The layout of one paint, from the outside in: the margins and the frame, the background
// and the gradient on all of what is left, the header band at the top, the footer band at
// the bottom, the legend's room at its side (not for an overlay), then the axes' room on
// each side (10 pixels, or what a visible outer axis measures), and in the middle the plot
// rectangle, ChartRect, where every chart paints. The painting order is background,
// gradient, header, footer, chart background, bottom, top, left and right axis, charts,
// legend, foreground.

#include <array>
#include <cstdint>
#include <string>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartLabel.h"
#include "kxcharts/core/KXChartLayer.h"
#include "kxcharts/core/KXChartList.h"
#include "kxcharts/core/KXChartListeners.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/legends/KXChartLegend.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"
#include "kxcharts/toolkit/controls/KXControls.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/controls/KXHintWindow.h"
#include "kxcharts/toolkit/objects/KXLists.h"
#include "kxcharts/toolkit/objects/KXObjectRect.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// --- Enumerations ---

// The areas a paint may be narrowed to (see Draw with DrawPanelAreas).
enum TChartPanelArea : uint8_t {
  paBackground,
  paForeground,
  paGradient,
  paCharts,
  paHeader,
  paFooter,
  paLegend,
  paChartBackground,
  paLeftAxis,
  paRightAxis,
  paTopAxis,
  paBottomAxis
};
KX_ENUM_NAMES(TChartPanelArea, "paBackground", "paForeground", "paGradient", "paCharts", "paHeader",
              "paFooter", "paLegend", "paChartBackground", "paLeftAxis", "paRightAxis", "paTopAxis",
              "paBottomAxis")
using TChartPanelAreas = TSet<TChartPanelArea>;

// What the mouse may do in a panel.
enum TChartUserAction : uint8_t { uaZoom, uaPan, uaSelect, uaMouseTracking };
KX_ENUM_NAMES(TChartUserAction, "uaZoom", "uaPan", "uaSelect", "uaMouseTracking")
using TChartUserActions = TSet<TChartUserAction>;

// What the mouse is doing now.
enum TChartUserActionExt : uint8_t { uaxNone, uaxZoom, uaxPan, uaxSelect };
KX_ENUM_NAMES(TChartUserActionExt, "uaxNone", "uaxZoom", "uaxPan", "uaxSelect")

// --- TKXCustomChartPanel ---

// The two forwarded drawing events of one owned element: reading and writing go to the
// element's own OnDrawing and OnDraw; the panel holds nothing.
#define KX_PANEL_ELEMENT_EVENTS(Element, Field)                                                    \
  const TKXChartDrawingEvent& OnDrawing##Element() const {                                         \
    return Field->OnDrawing();                                                                     \
  }                                                                                                \
  void SetOnDrawing##Element(TKXChartDrawingEvent Value) {                                         \
    Field->SetOnDrawing(std::move(Value));                                                         \
  }                                                                                                \
  const TKXChartDrawEvent& OnDraw##Element() const {                                               \
    return Field->OnDraw();                                                                        \
  }                                                                                                \
  void SetOnDraw##Element(TKXChartDrawEvent Value) {                                               \
    Field->SetOnDraw(std::move(Value));                                                            \
  }

class TKXCustomChartPanel : public TCustomPanel {
  KX_CLASS(TKXCustomChartPanel, TCustomPanel)

protected:
  // The painted gradient, kept between paints while its size and the gradient stay.
  TOwned<TBitmap> FGradientBuffer;
  TOwned<TKXChartList> FCharts;
  TOwned<TKXChartAxis> FRightAxis;
  TOwned<TKXChartAxis> FTopAxis;
  TOwned<TKXChartAxis> FLeftAxis;
  TOwned<TKXChartAxis> FBottomAxis;
  TOwned<TKXChartLayer> FBackground;
  TOwned<TKXChartLayer> FForeground;
  TOwned<TKXChartHeader> FHeader;
  TOwned<TKXChartHeader> FFooter;
  TOwned<TKXObjectRect> FMargins;
  TOwned<TKXChartLegend> FLegend;
  TGetStringsEvent FOnGetLegendStrings;
  TKXChartEvent FOnAddChart;
  TKXChartEvent FOnDeleteChart;
  TKXChartEvent FOnChartChange;
  TKXChartValueEvent FOnChartValueChange;
  // The rectangle of the last layout: the plot rectangle once a paint got that far.
  TRect FChartRect;
  TOwned<TKXChartShadow> FChartShadow;
  TOwned<TKXChartGradient> FGradient;
  TNotifyEvent FOnChange;
  TChartUserActions FUserActions = TChartUserActions::FromBits(11);
  TShiftState FUserZoom = TShiftState::FromBits(8);
  TShiftState FUserPan = TShiftState::FromBits(10);
  TShiftState FUserSelect = TShiftState::FromBits(12);
  TChartUserActionExt FUserAction = uaxNone;
  // Whether a crosshair is on screen; a paint wipes it.
  bool FMouseTrackingOn = false;
  // The rubber band while zooming or selecting; the last point while panning.
  TRect FSelectionBox;
  // Where the crosshair is (while FMouseTrackingOn).
  TPoint FMouseTrackingPoint;
  TNotifyEvent FOnPan;
  TNotifyEvent FOnUnzoom;
  TNotifyEvent FOnZoom;
  // Whether the mouse wheel zooms; off, so that a stored form keeps its meaning.
  bool FWheelZoom = false;
  TKXChartDrawEvent FOnDraw;
  TKXChartDrawingEvent FOnDrawing;
  TKXChartValueEvent FOnChartValueSelectionChange;
  TKXChartValueEvent FOnChartValueVisibleChange;
  TColor FSelectionColor = TColor(0xD3D3D3);
  TKXChartDrawEvent FOnDrawCharts;
  TKXChartDrawingEvent FOnDrawingCharts;
  TShiftState FUserProportional = TShiftState::FromBits(1);
  TOwned<TKXChartLayer> FChartBackground;
  TKXColorScheme FChartColorScheme = schDefault;
  TColorList FChartColorList = DefaultColorList;
  TOwned<TChartPanelListeners> FListeners;
  // Made outside design mode only; a sub-component the panel owns.
  TKXHintWindow* FHintWindow = nullptr;
  TChartPanelAreas FDrawAreas = TChartPanelAreas::FromBits(0xFFF);

public:
  explicit TKXCustomChartPanel(TComponent* AOwner);
  ~TKXCustomChartPanel() override;

  // --- Properties ---
  // Setters of owned elements assign into them and never replace them.

  // The charts in drawing order. The list does not own them; the panel frees them with
  // itself as its child controls (see the top of this file).
  TKXChartList* Charts() const { return FCharts.get(); }
  TKXChartAxis* BottomAxis() const { return FBottomAxis.get(); }
  void SetBottomAxis(const TKXChartAxis* Value) { FBottomAxis->Assign(Value); }
  TKXChartAxis* TopAxis() const { return FTopAxis.get(); }
  void SetTopAxis(const TKXChartAxis* Value) { FTopAxis->Assign(Value); }
  TKXChartAxis* LeftAxis() const { return FLeftAxis.get(); }
  void SetLeftAxis(const TKXChartAxis* Value) { FLeftAxis->Assign(Value); }
  TKXChartAxis* RightAxis() const { return FRightAxis.get(); }
  void SetRightAxis(const TKXChartAxis* Value) { FRightAxis->Assign(Value); }
  // The layer behind everything (opaque, visible, in the panel's colour at the start).
  TKXChartLayer* Background() const { return FBackground.get(); }
  void SetBackground(const TKXChartLayer* Value) { FBackground->Assign(Value); }
  // The layer behind the plot area, drawn on the axes (transparent, hidden at the start).
  TKXChartLayer* ChartBackground() const { return FChartBackground.get(); }
  void SetChartBackground(const TKXChartLayer* Value) { FChartBackground->Assign(Value); }
  // The layer in front of everything (transparent, hidden at the start).
  TKXChartLayer* Foreground() const { return FForeground.get(); }
  void SetForeground(const TKXChartLayer* Value) { FForeground->Assign(Value); }
  // The band at the top ("Chart") and at the bottom ("Footer").
  TKXChartHeader* Header() const { return FHeader.get(); }
  void SetHeader(const TKXChartHeader* Value) { FHeader->Assign(Value); }
  TKXChartHeader* Footer() const { return FFooter.get(); }
  void SetFooter(const TKXChartHeader* Value) { FFooter->Assign(Value); }
  // Pixels around the whole chart, (3, 4, 3, 4) at the start.
  TKXObjectRect* Margins() const { return FMargins.get(); }
  void SetMargins(const TKXObjectRect* Value) { FMargins->Assign(Value); }
  TKXChartLegend* Legend() const { return FLegend.get(); }
  void SetLegend(const TKXChartLegend* Value) { FLegend->Assign(Value); }
  // The shadow charts cast while they paint (when it is visible).
  TKXChartShadow* ChartShadow() const { return FChartShadow.get(); }
  void SetChartShadow(const TKXChartShadow* Value) { FChartShadow->Assign(Value); }
  // Painted on the whole area inside the frame, through a buffer kept between paints.
  TKXChartGradient* Gradient() const { return FGradient.get(); }
  void SetGradient(const TKXChartGradient* Value) { FGradient->Assign(Value); }
  // The buffer of the last gradient painted; nil before the first paint and after a change
  // of the gradient.
  TBitmap* GradientBuffer() const { return FGradientBuffer.get(); }
  // The rectangle of the last layout, on whatever canvas it ran: the plot rectangle once a
  // paint got that far.
  const TRect& ChartRect() const { return FChartRect; }
  TKXColorScheme ChartColorScheme() const { return FChartColorScheme; }
  // Copies the scheme's palette (schCustom keeps the list), restarts ColorListIndex and
  // recolours the charts.
  void SetChartColorScheme(TKXColorScheme Value);
  const TColorList& ChartColorList() const { return FChartColorList; }
  // Takes the ten colours as a palette of the panel's own (scheme schCustom).
  void SetChartColorList(const TColorList& Value);
  TColor SelectionColor() const { return FSelectionColor; }
  void SetSelectionColor(TColor Value);
  TChartPanelListeners* Listeners() const { return FListeners.get(); }
  void SetListeners(const TChartPanelListeners* Value) { FListeners->Assign(Value); }
  // What the mouse may do, and the keys and buttons that start each action.
  TChartUserActions UserActions() const { return FUserActions; }
  void SetUserActions(TChartUserActions Value) { FUserActions = Value; }
  TShiftState UserZoom() const { return FUserZoom; }
  void SetUserZoom(TShiftState Value) { FUserZoom = Value; }
  TShiftState UserPan() const { return FUserPan; }
  void SetUserPan(TShiftState Value) { FUserPan = Value; }
  TShiftState UserSelect() const { return FUserSelect; }
  void SetUserSelect(TShiftState Value) { FUserSelect = Value; }
  TShiftState UserProportional() const { return FUserProportional; }
  void SetUserProportional(TShiftState Value) { FUserProportional = Value; }
  TChartUserActionExt UserAction() const { return FUserAction; }
  // Whether the wheel zooms both the bottom and the left axis around the mouse: a notch
  // away from the user zooms in by a quarter, a notch towards the user zooms back out by
  // as much. Off at the start.
  bool WheelZoom() const { return FWheelZoom; }
  void SetWheelZoom(bool Value) { FWheelZoom = Value; }
  // The crosshair is on screen, at MouseTrackingPoint.
  bool MouseTrackingOn() const { return FMouseTrackingOn; }
  TPoint MouseTrackingPoint() const { return FMouseTrackingPoint; }
  // The rubber band being dragged (raw corners: the press, then the mouse).
  const TRect& SelectionBox() const { return FSelectionBox; }
  // The crosshair's hint; nil in design mode.
  TKXHintWindow* HintWindow() const { return FHintWindow; }
  // The areas the paint under way paints (all twelve outside Draw with DrawPanelAreas).
  TChartPanelAreas DrawAreas() const { return FDrawAreas; }

  // --- Events ---
  const TKXChartEvent& OnAddChart() const { return FOnAddChart; }
  void SetOnAddChart(TKXChartEvent Value) { FOnAddChart = std::move(Value); }
  const TKXChartEvent& OnDeleteChart() const { return FOnDeleteChart; }
  void SetOnDeleteChart(TKXChartEvent Value) { FOnDeleteChart = std::move(Value); }
  const TKXChartEvent& OnChartChange() const { return FOnChartChange; }
  void SetOnChartChange(TKXChartEvent Value) { FOnChartChange = std::move(Value); }
  const TKXChartValueEvent& OnChartValueChange() const { return FOnChartValueChange; }
  void SetOnChartValueChange(TKXChartValueEvent Value) { FOnChartValueChange = std::move(Value); }
  const TKXChartValueEvent& OnChartValueSelectionChange() const {
    return FOnChartValueSelectionChange;
  }
  void SetOnChartValueSelectionChange(TKXChartValueEvent Value) {
    FOnChartValueSelectionChange = std::move(Value);
  }
  const TKXChartValueEvent& OnChartValueVisibleChange() const { return FOnChartValueVisibleChange; }
  void SetOnChartValueVisibleChange(TKXChartValueEvent Value) {
    FOnChartValueVisibleChange = std::move(Value);
  }
  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }
  // Raised while the legend gathers its lines, after the legend's own event.
  const TGetStringsEvent& OnGetLegendStrings() const { return FOnGetLegendStrings; }
  void SetOnGetLegendStrings(TGetStringsEvent Value) { FOnGetLegendStrings = std::move(Value); }
  // Before a paint (DoDraw false skips it) and after it.
  const TKXChartDrawingEvent& OnDrawing() const { return FOnDrawing; }
  void SetOnDrawing(TKXChartDrawingEvent Value) { FOnDrawing = std::move(Value); }
  const TKXChartDrawEvent& OnDraw() const { return FOnDraw; }
  void SetOnDraw(TKXChartDrawEvent Value) { FOnDraw = std::move(Value); }
  const TKXChartDrawingEvent& OnDrawingCharts() const { return FOnDrawingCharts; }
  void SetOnDrawingCharts(TKXChartDrawingEvent Value) { FOnDrawingCharts = std::move(Value); }
  const TKXChartDrawEvent& OnDrawCharts() const { return FOnDrawCharts; }
  void SetOnDrawCharts(TKXChartDrawEvent Value) { FOnDrawCharts = std::move(Value); }
  // After the axes zoomed (ZoomPixelArea, Zoom by a rectangle, the wheel), unzoomed or
  // panned.
  const TNotifyEvent& OnZoom() const { return FOnZoom; }
  void SetOnZoom(TNotifyEvent Value) { FOnZoom = std::move(Value); }
  const TNotifyEvent& OnUnzoom() const { return FOnUnzoom; }
  void SetOnUnzoom(TNotifyEvent Value) { FOnUnzoom = std::move(Value); }
  const TNotifyEvent& OnPan() const { return FOnPan; }
  void SetOnPan(TNotifyEvent Value) { FOnPan = std::move(Value); }
  KX_PANEL_ELEMENT_EVENTS(ChartShadow, FChartShadow)
  KX_PANEL_ELEMENT_EVENTS(Background, FBackground)
  KX_PANEL_ELEMENT_EVENTS(ChartBackground, FChartBackground)
  KX_PANEL_ELEMENT_EVENTS(Foreground, FForeground)
  KX_PANEL_ELEMENT_EVENTS(BottomAxis, FBottomAxis)
  KX_PANEL_ELEMENT_EVENTS(TopAxis, FTopAxis)
  KX_PANEL_ELEMENT_EVENTS(LeftAxis, FLeftAxis)
  KX_PANEL_ELEMENT_EVENTS(RightAxis, FRightAxis)
  KX_PANEL_ELEMENT_EVENTS(Gradient, FGradient)
  KX_PANEL_ELEMENT_EVENTS(Footer, FFooter)
  KX_PANEL_ELEMENT_EVENTS(Header, FHeader)
  KX_PANEL_ELEMENT_EVENTS(Legend, FLegend)

  // --- Class-level ---
  // The pixel point of an axis point: (XAxis.AxisToPixel(X), YAxis.AxisToPixel(Y)), each on
  // its owner's plot rectangle; nil axes give 0.
  static TPoint AxesPointToPoint(const TPointF& Pt, const TKXChartAxis* XAxis,
                                 const TKXChartAxis* YAxis);
  // The pixel rectangle of an axis rectangle: its two corners, each through
  // AxesPointToPoint (so a rectangle whose Top is its lower value comes out upside down).
  static TRect AxesRectToRect(const TRectF& ARect, const TKXChartAxis* XAxis,
                              const TKXChartAxis* YAxis);
  // The axis values at a pixel point: (XAxis.PixelToAxis(X), YAxis.PixelToAxis(Y)), on the
  // zoomed ranges; nil axes give 0.
  static TPointF PointToAxesPoint(const TPoint& Pt, const TKXChartAxis* XAxis,
                                  const TKXChartAxis* YAxis);
  // The axis rectangle of a pixel rectangle: TopLeft from (Left, Bottom), BottomRight from
  // (Right, Top), as pixel rows grow downward while values grow upward.
  static TRectF RectToAxesRect(const TRect& ARect, const TKXChartAxis* XAxis,
                               const TKXChartAxis* YAxis);

  // --- Operations ---
  // The bottom or top axis; nil for haCustom.
  TKXChartAxis* GetAxis(THorizontalAxis Value) const;
  // The left or right axis; nil for vaCustom.
  TKXChartAxis* GetAxis(TVerticalAxis Value) const;
  // The next colour of ChartColorList by ColorListIndex.
  TColor GetChartColor() const;
  // Whether the legend lists charts (rather than the values of the active chart).
  bool IsLegendShowingCharts() const;
  // The platform's ScreenToClient.
  TPoint ScreenToChart(TPoint Pt) const { return ScreenToClient(Pt); }

  // Lays the panel out in ARect and paints it on Canvas, which may be any canvas: Drawing
  // (the go-ahead), InternalDraw, Drawn. ChartRect keeps the layout of this paint.
  virtual void Draw(TCanvas* Canvas, const TRect& ARect);
  // The same, painting only the areas in DrawPanelAreas; the others still take their room,
  // so what is painted stands where a full paint puts it. The areas are put back
  // afterwards, also when an exception passes.
  virtual void Draw(TCanvas* Canvas, const TRect& ARect, TChartPanelAreas DrawPanelAreas);
  // Draws every visible chart in ARect, in list order (the first lies underneath), after
  // OnDrawingCharts agrees; on the panel's own canvas clipped to ARect. The clip and each
  // chart's paint flag are put back also when a handler raises.
  virtual void DrawCharts(TCanvas* Canvas, const TRect& ARect);
  // Raises OnGetLegendStrings; the legend calls it when it gathers its lines.
  virtual void GetLegendStrings(TStrings* Strings);
  // Decides whether the legend must gather its lines again after a change of Chart (or of
  // its Value): when it lists charts and the chart itself changed, or when it lists
  // values and the chart is the active one. A raised flag stays raised.
  virtual void UpdateLegend(TKXCustomChart* Chart, TKXChartValue* Value);
  // Colour i mod 10 of ChartColorList for the chart at index i; charts that follow the
  // panel's colours recolour their values too.
  virtual void UpdateChartColorScheme();

  // --- Zooming, panning and selecting from code ---
  // UseBottomAxis picks the bottom axis (else the top one), UseLeftAxis the left axis (else
  // the right one).

  // ZoomPixelArea of the two axes, then OnZoom.
  virtual void ZoomPixelArea(const TRect& ClientRect, bool UseBottomAxis, bool UseLeftAxis);
  // Zoom to a rectangle in axis units on the two axes, then OnZoom.
  virtual void Zoom(const TRectF& ChartRect, bool UseBottomAxis, bool UseLeftAxis);
  // Zoom(CenterPoint.X, ZoomX) and Zoom(CenterPoint.Y, ZoomY) of the two axes; no OnZoom.
  virtual void Zoom(const TPointF& CenterPoint, float ZoomX, float ZoomY, bool UseBottomAxis,
                    bool UseLeftAxis);
  // Unzoom of the two axes, then OnUnzoom.
  void Unzoom(bool UseBottomAxis, bool UseLeftAxis);
  // Pans the two axes by pixels, then OnPan.
  virtual void Pan(int32_t MoveX, int32_t MoveY, bool UseBottomAxis, bool UseLeftAxis);
  // Pans the two axes in axis units, then OnPan.
  virtual void Pan(double MoveX, double MoveY, bool UseBottomAxis, bool UseLeftAxis);
  // Select(SelectionRect, Action) of every visible chart in list order, with the listeners
  // quiet until the end (which is guaranteed).
  virtual void Select(const TRect& SelectionRect, TKXChartSelectionAction Action);

  // --- The mouse ---
  // The state machine over UserAction: a press picks zoom, pan or select by the shift state
  // (UserProportional taken out), moves drag the box or pan, the release zooms, unzooms or
  // selects. The crosshair and the hint follow the mouse over the plot rectangle. The box
  // and the crosshair are drawn by inversion straight onto the canvas, outside Paint.

  void MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) override;
  void MouseMove(TShiftState Shift, int32_t X, int32_t Y) override;
  void MouseUp(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) override;
  // Erases the crosshair and hides the hint.
  void CMMouseLeave() override;
  // With WheelZoom, over the plot rectangle and while no drag is under way: zooms. Answers
  // whether it did.
  bool MouseWheel(TShiftState Shift, int32_t WheelDelta, int32_t X, int32_t Y) override;

  // --- The change road ---
  // Public so that charts, axes and elements can tell the panel.

  // Raises OnChange.
  virtual void Changed();
  // A chart's properties changed: listeners, OnChartChange, UpdateLegend, Invalidate,
  // Changed.
  virtual void Changed(TKXCustomChart* Chart);
  // A value of a chart changed: listeners, OnChartValueChange, Changed(Chart).
  virtual void ValueChanged(TKXCustomChart* Chart, TKXChartValue* Value);
  virtual void ValueSelectionChanged(TKXCustomChart* Chart, TKXChartValue* Value);
  virtual void ValueVisibleChanged(TKXCustomChart* Chart, TKXChartValue* Value);
  // A chart was shown or hidden.
  virtual void KXVisibleChanged(TKXCustomChart* Chart);
  // The selection colour changed: every chart hears it.
  virtual void SelectionColorChanged();
  // The handler of everything the panel owns. The panel's font goes on to the delta fonts
  // of header, footer, legend and the axes' labels and titles; a change of the gradient
  // drops its buffer. Then Invalidate and Changed.
  virtual void SenderChanged(TObject* Sender);

  // The frame, then Draw(Canvas, ClientRect).
  void Paint() override;
  // The charts hear of it too.
  void Resize() override;
  void AfterConstruction() override;
  void BeforeDestruction() override;

protected:
  // Paints the crosshair at Pt across ChartRect, in XOR with 0xA9A9A9 and a one-pixel pen,
  // so that the same call erases it. The canvas's pen is put back, also when an exception
  // passes.
  virtual void DrawMouseTracking(const TPoint& Pt);
  // Inverts the frame of ARect on the canvas (DrawFocusRect): the same call erases it.
  void DrawSelectionBox(const TRect& ARect);

  // Decides whether a paint goes ahead: true when ARect has a width and a height above 0,
  // which OnDrawing may change.
  virtual bool Drawing(TCanvas* Canvas, const TRect& ARect);
  // Raises OnDraw; runs after every paint that went ahead, also one that painted nothing.
  virtual void Drawn(TCanvas* Canvas, const TRect& ARect);
  // Cuts FChartRect from ARect step by step and paints the elements in their order (see
  // the header comment). An area left out of DrawAreas is not painted, but its element
  // still takes its room. A rectangle that the margins and the frame leave empty paints
  // nothing.
  virtual void InternalDraw(TCanvas* Canvas, const TRect& ARect);

  // The factories of the owned elements, run once each in AfterConstruction; a descendant
  // swaps an element's class by overriding one. Each wires the element's OnChange to
  // SenderChanged.
  //
  // The axis of one side, with its title turned at the vertical sides. Left and bottom
  // axes start visible, right and top invisible; in design mode the title names the side.
  virtual TOwned<TKXChartAxis> CreateAxis(TKXChartAxisLocation Location);
  // A layer in the panel's colour, visible when it is not transparent.
  virtual TOwned<TKXChartLayer> CreateLayer(bool Transparent);
  // A header (IsHeader) or footer with Text, in the panel's font.
  virtual TOwned<TKXChartHeader> CreateHeader(const std::string& Text, bool IsHeader);
  virtual TOwned<TKXChartLegend> CreateLegend();
  // The chart shadow, 2 pixels.
  virtual TOwned<TKXChartShadow> CreateShadow();
  virtual TOwned<TKXChartGradient> CreateGradient();

  virtual void ChartListNotify(TObject* Sender, TKXCustomChart* Chart, TListNotification Action);
  virtual void ChartAdded(TKXCustomChart* Chart);
  virtual void ChartDeleted(TKXCustomChart* Chart);

  void FontChanged() override;
  void Notification(TComponent* AComponent, TOperation Operation) override;

private:
  // The twelve elements with forwarded drawing events, in the order of those events (nil
  // entries before construction and after destruction).
  std::array<TKXChartGraphic*, 12> Elements() const;
  // Paints the gradient on Whole through FGradientBuffer, painting the buffer first when
  // there is none of Whole's size.
  void DrawGradient(TCanvas* Canvas, const TRect& Whole);
  // The box's bottom-right corner for the mouse at (X, Y): proportional to ChartRect while
  // Shift holds UserProportional.
  TPoint SelectionCorner(TShiftState Shift, int32_t X, int32_t Y) const;
  // Whether Shift and UserSelect agree on the keys, UserProportional left aside.
  bool SelectKeysHeld(TShiftState Shift) const;
  // Erases the crosshair and moves it to (X, Y); shows the hint there, or hides it outside
  // the plot rectangle.
  void TrackMouse(int32_t X, int32_t Y);
  // Zooms Axis by Factor around the value under Pixel.
  static void ZoomAround(TKXChartAxis* Axis, int32_t Pixel, double Factor);
};

#undef KX_PANEL_ELEMENT_EVENTS

// The panel as a form stores it.
class TKXChartPanel : public TKXCustomChartPanel {
  KX_CLASS(TKXChartPanel, TKXCustomChartPanel)

public:
  using TKXCustomChartPanel::TKXCustomChartPanel;

protected:
  // After the panel's own: ChartColorScheme, ChartShadow, Background, ChartBackground,
  // Foreground, BottomAxis, TopAxis, LeftAxis, RightAxis, Gradient, Footer, Header, Legend,
  // Margins (only when they differ from 3, 4, 3, 4), SelectionColor (always, as it starts
  // off its default), UserActions, UserZoom, UserPan, UserProportional, UserSelect,
  // WheelZoom.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
