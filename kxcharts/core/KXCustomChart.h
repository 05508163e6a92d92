#pragma once
// TKXCustomChart, the base of every chart kind (series), and TKXChart, the class a user
// places. The list of charts a panel and every axis keep is in KXChartList.h, the chart
// class registry in KXChartRegistry.h.
//
// A chart is a graphic control that stands alone on a form (on two invisible local axes
// of its own, painting itself) or lives in a chart panel (on the panel's axes, painted by
// the panel). It owns its values, brush, font, pen, listeners and the two local axes. It
// turns every change of its values and properties into notices for its listeners, its
// panel, its axes and its events, in that order ("the change road"). A chart kind
// overrides GetChartType, CreateChartValues, InitializeChart, InternalDraw,
// CreatePreviewValues and DrawGlyph(Canvas, Value, ARect), and registers its class at its
// module's start-up with RegisterChart.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>

#include "kxcharts/core/KXChartListeners.h"
#include "kxcharts/core/KXChartValues.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/controls/KXControls.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/objects/KXLists.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKXChartAxis;
class TKXChartShadow;
class TKXCustomChartPanel;
class TKXCustomChart;

// --- Enumerations ---

enum TChartOption : uint8_t {
  coValueColors,
  coShowInLegend,
  coReservedFlag,
  coOffsetVertical,
  coValueLabels,
  coNoChartShadow,
  coZoomFont,
  coZoomPen,
  coSelectable,
  coSelectionFill,
  coSelectionPen
};
KX_ENUM_NAMES(TChartOption, "coValueColors", "coShowInLegend", "coReservedFlag", "coOffsetVertical",
              "coValueLabels", "coNoChartShadow", "coZoomFont", "coZoomPen", "coSelectable",
              "coSelectionFill", "coSelectionPen")
using TChartOptions = TSet<TChartOption>;
// Value colours, legend, the reserved flag, value labels, selectable with fill and pen.
inline constexpr TChartOptions DefaultChartOptions = TChartOptions::FromBits(1815);

enum TKXGroupStyle : uint8_t { gsNone, gsStacked, gsStacked100 };
KX_ENUM_NAMES(TKXGroupStyle, "gsNone", "gsStacked", "gsStacked100")

enum TBasicChart : uint8_t { bcLine, bcArea };
KX_ENUM_NAMES(TBasicChart, "bcLine", "bcArea")
using TBasicCharts = TSet<TBasicChart>;

enum THorizontalAxis : uint8_t { haBottom, haTop, haCustom };
KX_ENUM_NAMES(THorizontalAxis, "haBottom", "haTop", "haCustom")

enum TVerticalAxis : uint8_t { vaLeft, vaRight, vaCustom };
KX_ENUM_NAMES(TVerticalAxis, "vaLeft", "vaRight", "vaCustom")

enum TKXChartState : uint8_t { stIdle, stDrawing, stSelecting, stUnselecting, stToggling };
KX_ENUM_NAMES(TKXChartState, "stIdle", "stDrawing", "stSelecting", "stUnselecting", "stToggling")

// Hints a chart gives the axes that find their range from it.
enum TAxisHint : uint8_t {
  ahIgnoreAxes, // takes no part in the range, offers no captions
  ahBarScale    // carried along for bar charts; the axis does not read it
};
KX_ENUM_NAMES(TAxisHint, "ahIgnoreAxes", "ahBarScale")
using TAxisHints = TSet<TAxisHint>;

// What a legend lists: the charts, or the values of the active chart.
enum TKXLegendStyle : uint8_t { lsAuto, lsCharts, lsValues, lsChartsLastValue };
KX_ENUM_NAMES(TKXLegendStyle, "lsAuto", "lsCharts", "lsValues", "lsChartsLastValue")

// How a value reads in a legend line or a value label (FormatValue).
enum TKXLegendTextStyle : uint8_t {
  ltsCaption,
  ltsValue,
  ltsValueCaption,
  ltsCaptionValue,
  ltsPercent,
  ltsPercentCaption,
  ltsCaptionPercent
};
KX_ENUM_NAMES(TKXLegendTextStyle, "ltsCaption", "ltsValue", "ltsValueCaption", "ltsCaptionValue",
              "ltsPercent", "ltsPercentCaption", "ltsCaptionPercent")

// --- Events ---

using TKXChartEvent = std::function<void(TObject* Sender, TKXCustomChart* Chart)>;
// Raised after something has been drawn into ARect.
using TKXChartDrawEvent = std::function<void(TObject* Sender, TCanvas* Canvas, const TRect& ARect)>;
// Raised before drawing into ARect; setting DoDraw to false skips the drawing.
using TKXChartDrawingEvent =
    std::function<void(TObject* Sender, TCanvas* Canvas, const TRect& ARect, bool& DoDraw)>;
using TKXChartValueEvent =
    std::function<void(TObject* Sender, TKXCustomChart* Chart, TKXChartValue* Value)>;
using TKXChartValueEvent2 = std::function<void(TObject* Sender, TKXChartValue* Value)>;

// --- Metaclass of the charts ---

// The component shape (the virtual constructor takes the owner) plus the class-level
// operations of charts.
class TKXCustomChartMeta : public TComponentMeta {
public:
  using TComponentMeta::TComponentMeta;
  // The chart kind of the class; a class that does not declare its own answers its
  // parent's.
  virtual TKXChartType GetChartType() const = 0;
};
using TKXCustomChartClass = const TKXCustomChartMeta*;

template <class T>
class TKXCustomChartMetaImpl final : public TComponentMetaOf<T, TKXCustomChartMeta> {
public:
  using TComponentMetaOf<T, TKXCustomChartMeta>::TComponentMetaOf;
  TKXChartType GetChartType() const override { return T::GetChartType(); }
};

// --- TKXCustomChart ---

class TKXCustomChart : public TGraphicControl {
public:
  using inherited = TGraphicControl;
  template <class T> using MetaImplOf = TKXCustomChartMetaImpl<T>;
  static const TKXCustomChartMeta* StaticClass();
  const TMetaClass* ClassType() const override;

protected:
  bool FParentFont = true;
  TOwned<TBrush> FBrush;
  TOwned<TFont> FFont;
  TOwned<TPen> FPen;
  TOwned<TKXChartValues> FValues;
  THorizontalAxis FHorizAxis = haBottom;
  TKXChartAxis* FVerticalAxis = nullptr;
  TKXChartAxis* FHorizontalAxis = nullptr;
  TVerticalAxis FVertAxis = vaLeft;
  TAxisHints FAxesHints;
  int32_t FGroup = 0;
  TKXGroupStyle FGroupStyle = gsNone;
  double FOffsetVertical = 0.0;
  bool FPreview = false;
  TKXChartDrawEvent FOnDraw;
  TKXChartDrawingEvent FOnDrawing;
  TNotifyEvent FOnChange;
  TKXChartValueEvent2 FOnValueChange;
  TKXChartValueEvent2 FOnValueVisibleChange;
  TKXChartValueEvent2 FOnValueSelectionChange;
  TNotifyEvent FOnVisibleChange;
  TKXChartState FState = stIdle;
  bool FParentSelectionColor = true;
  TColor FSelectionColor = TColor(0xD3D3D3);
  TKXLegendTextStyle FValueLabelStyle = ltsCaption;
  std::string FValueLabelFormat = "#,##0.###";
  TKXCustomChartPanel* FPanel = nullptr;
  TOwned<TChartPanelListeners> FListeners;
  TOwned<TKXChartAxis> FLocalVerticalAxis;
  TOwned<TKXChartAxis> FLocalHorizontalAxis;
  TColorList FColorList = DefaultColorList;
  TKXColorScheme FColorScheme = schDefault;
  bool FPanelColorScheme = true;
  float FOpacity = 1.0f;
  int32_t FLastIndex = -1;
  int32_t FFirstIndex = 0;
  int32_t FVisibleCount = 0;
  int32_t FUpdating = 0;
  bool FSuppressAxesChange = false;
  TChartOptions FOptions = DefaultChartOptions;
  bool FInPaintTo = false;

public:
  // Tells a drawing pass whether the chart it draws was freed by one of the pass's own
  // events (OnDrawing, OnDraw, the panel's chart events): made on the stack around the call,
  // it reads Alive() afterwards instead of touching a chart that is gone.
  class TLifeWatch {
  public:
    explicit TLifeWatch(TKXCustomChart* Chart) : FChart(Chart), FNext(Chart->FWatches) {
      Chart->FWatches = this;
    }
    ~TLifeWatch();
    TLifeWatch(const TLifeWatch&) = delete;
    TLifeWatch& operator=(const TLifeWatch&) = delete;
    bool Alive() const { return FChart != nullptr; }

  private:
    friend class TKXCustomChart;
    TKXCustomChart* FChart;
    TLifeWatch* FNext;
  };

  // Only initialises members; AfterConstruction runs InitializeChart and
  // InitializeChangeEvents.
  explicit TKXCustomChart(TComponent* AOwner);
  ~TKXCustomChart() override;

  // --- Properties ---
  // (Setters store and call Changed only when the value differs, unless told otherwise.)

  // The name of the series; a change also asks the panel's legend to gather its lines.
  using TControl::Caption;
  void SetCaption(const std::string& Value);
  TBrush* Brush() const { return FBrush.get(); }
  void SetBrush(const TBrush* Value) { FBrush->Assign(Value); }
  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value) { FPen->Assign(Value); }
  // The chart's own font (not the control's).
  TFont* Font() const { return FFont.get(); }
  void SetFont(const TFont* Value) { FFont->Assign(Value); }
  // The brush colour, through the virtual GetColor and SetColor.
  TColor Color() const { return GetColor(); }
  float Opacity() const { return FOpacity; }
  // Clamped to 0..1 (NaN becomes 0).
  void SetOpacity(float Value);
  // Whether the chart takes the panel's font when it joins one. Only stores.
  bool ParentFont() const { return FParentFont; }
  void SetParentFont(bool Value) { FParentFont = Value; }
  TKXColorScheme ColorScheme() const { return FColorScheme; }
  // Copies the scheme's palette (schCustom keeps the list), restarts ColorListIndex,
  // stops following the panel's colours and recolours the values.
  void SetColorScheme(TKXColorScheme Value);
  const TColorList& ColorList() const { return FColorList; }
  // Takes the ten colours as a palette of the chart's own (scheme schCustom).
  void SetColorList(const TColorList& Value);
  bool PanelColorScheme() const { return FPanelColorScheme; }
  void SetPanelColorScheme(bool Value) { FPanelColorScheme = Value; }
  int32_t Group() const { return FGroup; }
  // 0 for a negative number; the vertical axis finds its range again.
  void SetGroup(int32_t Value);
  TKXGroupStyle GroupStyle() const { return FGroupStyle; }
  // Sets coOffsetVertical for the stacked styles and clears it for gsNone, and passes the
  // style on to every chart of the panel in the same group.
  void SetGroupStyle(TKXGroupStyle Value);
  const std::string& ValueLabelFormat() const { return FValueLabelFormat; }
  void SetValueLabelFormat(const std::string& Value);
  TKXLegendTextStyle ValueLabelStyle() const { return FValueLabelStyle; }
  void SetValueLabelStyle(TKXLegendTextStyle Value);
  // Which panel axis the chart wants; with a panel the chart moves to it.
  THorizontalAxis HorizAxis() const { return FHorizAxis; }
  void SetHorizAxis(THorizontalAxis Value);
  TVerticalAxis VertAxis() const { return FVertAxis; }
  void SetVertAxis(TVerticalAxis Value);
  // The axes in use (not owned). Setting one moves the chart from the old axis's list to
  // the new one's and, in a panel, names it in HorizAxis or VertAxis.
  TKXChartAxis* HorizontalAxis() const { return FHorizontalAxis; }
  void SetHorizontalAxis(TKXChartAxis* Axis);
  TKXChartAxis* VerticalAxis() const { return FVerticalAxis; }
  void SetVerticalAxis(TKXChartAxis* Axis);
  TChartOptions Options() const { return FOptions; }
  // Also asks the panel's legend to gather its lines.
  virtual void SetOptions(TChartOptions Value);
  double OffsetVertical() const { return FOffsetVertical; }
  void SetOffsetVertical(double Value);
  TKXCustomChartPanel* Panel() const { return FPanel; }
  // Leaves the old panel (falling back to the local axes) and joins the new one (taking
  // its axes, font and selection colour).
  void SetPanel(TKXCustomChartPanel* Value);
  TKXChartValues* Values() const { return FValues.get(); }
  void SetValues(const TKXChartValues* Value) { FValues->Assign(Value); }
  // Whether the values are sample data (made by CreatePreviewValues, never stored); the
  // first change of a value ends it.
  bool Preview() const { return FPreview; }
  void SetPreview(bool Value);
  TColor SelectionColor() const { return FSelectionColor; }
  // A new colour stops following the panel's. Neither setter calls Changed.
  void SetSelectionColor(TColor Value);
  bool ParentSelectionColor() const { return FParentSelectionColor; }
  // True takes the panel's colour at once.
  void SetParentSelectionColor(bool Value);
  TAxisHints AxesHints() const { return FAxesHints; }
  void SetAxesHints(TAxisHints Value) { FAxesHints = Value; }
  // The position in the list of the vertical axis, -1 without one. Setting it moves the
  // chart in that list; the axis finds its range again.
  int32_t GroupIndex() const;
  void SetGroupIndex(int32_t Value);
  // The values that lie in view, kept by DoUpdateAxisInfo.
  int32_t FirstIndex() const { return FFirstIndex; }
  int32_t LastIndex() const { return FLastIndex; }
  int32_t VisibleCount() const { return FVisibleCount; }
  TChartPanelListeners* Listeners() const { return FListeners.get(); }
  void SetListeners(const TChartPanelListeners* Value) { FListeners->Assign(Value); }
  TKXChartState State() const { return FState; }
  // The invisible axes the chart draws on when it stands alone.
  TKXChartAxis* LocalHorizontalAxis() const { return FLocalHorizontalAxis.get(); }
  TKXChartAxis* LocalVerticalAxis() const { return FLocalVerticalAxis.get(); }
  int32_t UpdateLevel() const { return FUpdating; }

  // --- Events ---
  const TKXChartDrawingEvent& OnDrawing() const { return FOnDrawing; }
  void SetOnDrawing(TKXChartDrawingEvent Value) { FOnDrawing = std::move(Value); }
  const TKXChartDrawEvent& OnDraw() const { return FOnDraw; }
  void SetOnDraw(TKXChartDrawEvent Value) { FOnDraw = std::move(Value); }
  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }
  const TNotifyEvent& OnVisibleChange() const { return FOnVisibleChange; }
  void SetOnVisibleChange(TNotifyEvent Value) { FOnVisibleChange = std::move(Value); }
  const TKXChartValueEvent2& OnValueChange() const { return FOnValueChange; }
  void SetOnValueChange(TKXChartValueEvent2 Value) { FOnValueChange = std::move(Value); }
  const TKXChartValueEvent2& OnValueSelectionChange() const { return FOnValueSelectionChange; }
  void SetOnValueSelectionChange(TKXChartValueEvent2 Value) {
    FOnValueSelectionChange = std::move(Value);
  }
  const TKXChartValueEvent2& OnValueVisibleChange() const { return FOnValueVisibleChange; }
  void SetOnValueVisibleChange(TKXChartValueEvent2 Value) {
    FOnValueVisibleChange = std::move(Value);
  }

  // --- Class-level ---

  // The chart kind of the class; ctCustom here. Each kind redeclares it.
  static TKXChartType GetChartType() { return ctCustom; }
  // The dynamic class as a chart class.
  TKXCustomChartClass ChartClass() const { return static_cast<TKXCustomChartClass>(ClassType()); }

  // --- Operations ---

  // A chart of the same class and owner with this one assigned to it; the owner frees it
  // (the caller, when there is no owner).
  TKXCustomChart* Clone() const;
  // While the level is above 0, Changed, Changed(Value) and the two value notices do
  // nothing; the closing EndUpdate calls Changed once.
  virtual void BeginUpdate();
  // Raises Exception without a matching BeginUpdate.
  virtual void EndUpdate();

  // The brush colour; a line chart answers its pen's, a point chart its point's.
  virtual TColor GetColor() const;
  // Sets the brush colour; its change event does the rest.
  virtual void SetColor(TColor Value);
  // The colour of one value: its own with coValueColors, else GetColor.
  virtual TColor GetColor(const TKXChartValue* Value) const;
  // The next colour for a new value: from the chart's palette, or the panel's when the
  // chart follows the panel's colours. Advances ColorListIndex.
  TColor GetValueColor() const;

  // Draws the chart in ARect on its axes: Drawing (go-ahead), InternalDraw, Drawn; the
  // state is stIdle again afterwards, also when a handler raises.
  virtual void Draw(TCanvas* Canvas, const TRect& ARect);
  // Draws the chart on any canvas against any two axes and puts everything back (axes,
  // OnChange, the axes' visibility), also when a handler raises. With SuppressEvents the
  // chart does not react to its axes while it is on them.
  virtual void Draw(TCanvas* Canvas, const TRect& ARect, TKXChartAxis* VertAxis,
                    TKXChartAxis* HorizAxis, bool UpdateAxis, bool SuppressEvents);
  // Reserves room for the two axes in ARect, draws the visible ones, and answers the plot
  // rectangle.
  virtual TRect DrawAxes(TCanvas* Canvas, const TRect& ARect, TKXChartAxis* VertAxis,
                         TKXChartAxis* HorizAxis);
  // The chart's legend picture: its kind's glyph filled in GetColor.
  virtual void DrawGlyph(TCanvas* Canvas, const TRect& ARect);
  // A value's legend picture; this level draws a rectangle in the value's colour.
  virtual void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect);
  // A label centred on (X, Y), lifted by half a text height; nothing for an empty caption.
  virtual void DrawLabel(TCanvas* Canvas, const std::string& Caption, int32_t X, int32_t Y,
                         float Opacity);
  // The label of a rectangle; empty at this level and in every kind.
  virtual void DrawLabel(TCanvas* Canvas, const std::string& Caption, const TRect& ARect,
                         float Opacity);
  // The value's label (FormatValue with ValueLabelStyle) in the forms above.
  virtual void DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, int32_t X, int32_t Y);
  virtual void DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect);
  // The text of a value in TextStyle: the number in the vertical axis's Format ("%.4f"
  // without an axis), the share of the absolute sum as "12.50 %", the caption, or two of
  // them joined by a blank. A collection whose absolute sum is 0 (or not finite) gives
  // the share "0.00 %".
  virtual std::string FormatValue(const TKXChartValue* Value, TKXLegendTextStyle TextStyle) const;
  // The caption for an axis position: Index walks down from where it is to the value at
  // or below Value; an Index outside the values gives "".
  virtual std::string GetAxisCaption(const TKXChartAxis* Axis, int32_t& Index, double Value) const;
  // Whether the axis labels with value captions: the values sort on its dimension and
  // have captions.
  virtual bool WantsCaptions(const TKXChartAxis* Axis) const;

  // Selects by the pixel rectangle with Action (with coSelectable only); the state shows
  // the action meanwhile and is stIdle again afterwards, also when a handler raises.
  virtual void Select(const TRect& SelectionRect, TKXChartSelectionAction Action);
  // Whether a visible value in view lies in the pixel rectangle (with coSelectable only).
  virtual bool IsSelectable(const TRect& SelectionRect) const;
  // The mouse hovers over ARect: the screen cursor becomes Cursor over a selectable value.
  virtual void MouseHover(const TRect& ARect);
  // The stacking offset in axis units: OffsetVertical with coOffsetVertical, else 0.
  virtual double GetAdjOffsetVertical() const;
  // Visible and on two axes; the panel skips charts that are not.
  virtual bool IsVisible() const;

  // Sets the canvas up for the chart, or for one value of it (pen one wider when the
  // value is selected and coSelectionPen holds; brush in the selection colour, the value's
  // or the chart's colour). Zooming axes grow font and pen with coZoomFont, coZoomPen.
  virtual void SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                                  bool AdjustPen);
  // The same with given objects (each may be nil, which leaves that one of the canvas).
  void SetCanvasResources(TCanvas* Canvas, const TBrush* ABrush, const TPen* APen,
                          const TFont* AFont, bool AdjustFont, bool AdjustPen);
  // The look of one value over what the canvas holds: one pixel more pen when the value is
  // selected and coSelectionPen holds (with AdjustPen), the brush in the selection colour
  // (selected, coSelectionFill) or GetColor(Value).
  void SetValueLook(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustPen);
  // The shadow pass of one shape: when the chart casts a shadow (in a panel whose
  // ChartShadow is visible, without coNoChartShadow), the shadow of a shape of Style at ARect
  // in the shadow's brush and pen with Opacity, and the shadow; else nil.
  TKXChartShadow* DrawShapeShadow(TCanvas* Canvas, const TRect& ARect, TKXShapeStyle Style,
                                  float Opacity);
  // Draw(), with the canvas's brush, pen and font given back afterwards, also when an
  // exception passes (legend pictures draw on the legend's canvas).
  template <class F> void KeepCanvasResources(TCanvas* Canvas, F&& Draw) {
    TOwned<TBrush> B;
    TOwned<TPen> P;
    TOwned<TFont> Fo;
    SaveCanvasResources(Canvas, B, P, Fo);
    TFinally Restore(
        [&, this] { SetCanvasResources(Canvas, B.get(), P.get(), Fo.get(), false, false); });
    Draw();
  }
  // Copies of the canvas's brush, pen and font, made by CreateBrush, CreatePen,
  // CreateFont; the caller keeps them.
  void SaveCanvasResources(TCanvas* Canvas, TOwned<TBrush>& ABrush, TOwned<TPen>& APen,
                           TOwned<TFont>& AFont);

  // The height of the stack up to and including this chart at value Index, dimension
  // ValIndex, counting only charts of ChartClass (any with nil); hidden charts do not
  // count.
  double GetCumulativeValue(int32_t Index, int32_t ValIndex,
                            TKXCustomChartClass ChartClass = nullptr) const;
  // The whole stack of the group at that value, hidden charts included; 0 with no panel.
  double GetCumulativeTotal(int32_t Index, int32_t ValIndex,
                            TKXCustomChartClass ChartClass = nullptr) const;

  // Which values lie in view on Axis when it is zoomed: sets FirstIndex, LastIndex and
  // VisibleCount (all values unless the axis zooms and the values are sorted).
  virtual void DoUpdateAxisInfo(TKXChartAxis* Axis);
  // DoUpdateAxisInfo for the horizontal axis; a chart alone repaints.
  virtual void UpdateAxisInfo(TKXChartAxis* Axis);
  // Recolours value i with colour i mod 10 of the panel's list (when the chart follows
  // the panel's colours) or of its own, keeping Preview.
  virtual void UpdateColorScheme();

  // --- The change road ---
  // Public so that values, axes and the panel can tell the chart; overrides call the
  // inherited one.

  // A value changed (nil: the whole collection): listeners, Preview ends, panel, axes and
  // UpdateAxisInfo (when visible), OnValueChange; a chart alone repaints.
  virtual void Changed(TKXChartValue* Value);
  // A property changed: the same road with ChartChanged and OnChange.
  virtual void Changed();
  virtual void ValueSelectionChanged(TKXChartValue* Value);
  virtual void ValueVisibleChanged(TKXChartValue* Value);
  // The chart's visibility changed: listeners, panel, axes, OnVisibleChange (whatever
  // the update level).
  virtual void KXVisibleChanged();
  // The panel's selection colour changed; nothing at this level.
  virtual void SelectionColorChanged();
  // The chart is on Axis now (nil: none): a vertical axis hands over its group's style,
  // then the axis hears of the chart; then Changed. Nothing while drawing against foreign
  // axes with SuppressEvents.
  virtual void AxisChanged(TKXChartAxis* Axis);
  // Which value dimension stacks; 1 at this level.
  virtual int32_t GetGroupDimension() const;

  // --- Overrides ---

  // From another chart, in one bracket: caption, cursor, hints, ParentFont, brush,
  // options, offset, HorizAxis, VertAxis, group, group style, font, pen, values, Preview,
  // label format and style.
  void Assign(const TPersistent* Source) override;
  void AfterConstruction() override;
  void BeforeDestruction() override;
  // Draws when visible: alone after bringing stale axes up to date; in a panel only at
  // design time or while the panel paints it.
  void Paint() override;
  // The client area alone; nowhere in a panel, so that the mouse goes to the panel.
  bool CMHitTest(int32_t X, int32_t Y) override;
  void CMVisibleChanged() override;

protected:
  // Defaults and owned objects, in the constructor's place. Overrides call the inherited
  // one first.
  virtual void InitializeChart();
  // Wires the change events of the owned graphic objects to SenderChanged.
  virtual void InitializeChangeEvents();
  // The factories of the owned objects.
  virtual TOwned<TBrush> CreateBrush();
  virtual TOwned<TFont> CreateFont();
  virtual TOwned<TPen> CreatePen();
  virtual TOwned<TKXChartValues> CreateChartValues();
  // Adds sample values; nothing at this level.
  virtual void CreatePreviewValues();
  // The go-ahead for drawing: ARect has an area, and OnDrawing agrees.
  virtual bool Drawing(TCanvas* Canvas, const TRect& ARect);
  // Raises OnDraw.
  virtual void Drawn(TCanvas* Canvas, const TRect& ARect);
  // Paints the kind; this level sets the canvas resources.
  virtual void InternalDraw(TCanvas* Canvas, const TRect& ARect);
  // Writes the answer of Selectable into Selected of every visible value in view.
  virtual void InternalSelect(const TRect& ARect, TKXChartSelectionAction Action);
  // The change handler of brush, font and pen: Changed.
  virtual void SenderChanged(TObject* Sender);
  // The chart joined FPanel: takes its axes, font and selection colour.
  virtual void PanelChanged();

  void Loaded() override;
  void Notification(TComponent* AComponent, TOperation Operation) override;

private:
  friend class TKXCustomChartPanel;
  TLifeWatch* FWatches = nullptr;
  void MakeLocalAxes();
  void SetGroupStyleOnly(TKXGroupStyle Value);
  void MarkVerticalAxis();
  TRectF PixelsToAxes(const TRect& ARect) const;
  void SetAxis(TKXChartAxis*& Slot, TKXChartAxis* Axis, bool Horizontal);
};

// --- TKXChart ---

// The chart a user places: TKXCustomChart with its stored properties. Every chart kind
// derives from it.
class TKXChart : public TKXCustomChart {
  KX_CLASS(TKXChart, TKXCustomChart)

public:
  using TKXCustomChart::TKXCustomChart;

protected:
  // HorizAxis, VertAxis and Panel first (the axes are bound in Loaded), then Caption,
  // Brush, Pen, Font, Color, Opacity, ParentFont, ColorScheme, Group, GroupStyle,
  // ValueLabelFormat, ValueLabelStyle, HorizontalAxis and VerticalAxis (the local axes,
  // without a panel), Options, OffsetVertical, Values (not while Preview), Preview,
  // SelectionColor, ParentSelectionColor.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
