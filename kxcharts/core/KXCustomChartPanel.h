#pragma once
// TKXCustomChartPanel: the component an application places on a form to hold charts. It
// owns four axes, a chart shadow and the list of its charts (which belong to the form,
// not to it), keeps the colour palette its charts take from, and is the panel's end of
// the change road: every change of a chart or of an element it owns reaches its
// listeners and events and repaints it. TKXChartPanel publishes it.
//
// This is the panel's first form: it has the charts, axes, legend, colours, listeners, the
// change road and the drawing of the charts in a plot rectangle; the layout of header,
// footer, legend, layers and axes, and the mouse, are not here yet (Paint draws the frame
// only).

#include <cstdint>
#include <string>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartGraphic.h"
#include "kxcharts/core/KXChartListeners.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/legends/KXChartLegend.h"
#include "kxcharts/toolkit/KXCanvas.h"
#include "kxcharts/toolkit/KXCommonCharts.h"
#include "kxcharts/toolkit/KXControls.h"
#include "kxcharts/toolkit/KXLists.h"
#include "kxcharts/toolkit/KXTypes.h"

namespace kx {

class TKXCustomChartPanel : public TCustomPanel {
  KX_CLASS(TKXCustomChartPanel, TCustomPanel)

protected:
  TOwned<TKXChartList> FCharts;
  TOwned<TKXChartAxis> FRightAxis;
  TOwned<TKXChartAxis> FTopAxis;
  TOwned<TKXChartAxis> FLeftAxis;
  TOwned<TKXChartAxis> FBottomAxis;
  TKXChartEvent FOnAddChart;
  TKXChartEvent FOnDeleteChart;
  TKXChartEvent FOnChartChange;
  TKXChartValueEvent FOnChartValueChange;
  // The plot rectangle of the last layout.
  TRect FChartRect;
  TOwned<TKXChartShadow> FChartShadow;
  TNotifyEvent FOnChange;
  TKXChartValueEvent FOnChartValueSelectionChange;
  TKXChartValueEvent FOnChartValueVisibleChange;
  TColor FSelectionColor = TColor(0xD3D3D3);
  TKXChartDrawEvent FOnDrawCharts;
  TKXChartDrawingEvent FOnDrawingCharts;
  TKXColorScheme FChartColorScheme = schDefault;
  TColorList FChartColorList = DefaultColorList;
  TOwned<TChartPanelListeners> FListeners;
  TOwned<TKXChartLegend> FLegend;
  TGetStringsEvent FOnGetLegendStrings;

public:
  explicit TKXCustomChartPanel(TComponent* AOwner);
  ~TKXCustomChartPanel() override;

  // --- Properties ---
  // The charts in drawing order (not owned: they belong to their owner).
  TKXChartList* Charts() const { return FCharts.get(); }
  TKXChartAxis* BottomAxis() const { return FBottomAxis.get(); }
  TKXChartAxis* TopAxis() const { return FTopAxis.get(); }
  TKXChartAxis* LeftAxis() const { return FLeftAxis.get(); }
  TKXChartAxis* RightAxis() const { return FRightAxis.get(); }
  // Each setter assigns into the owned axis.
  void SetBottomAxis(const TKXChartAxis* Value);
  void SetTopAxis(const TKXChartAxis* Value);
  void SetLeftAxis(const TKXChartAxis* Value);
  void SetRightAxis(const TKXChartAxis* Value);
  // The shadow charts cast while they paint (when it is visible).
  TKXChartShadow* ChartShadow() const { return FChartShadow.get(); }
  void SetChartShadow(const TKXChartShadow* Value);
  // The plot rectangle of the last layout, on whatever canvas it ran.
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
  TKXChartLegend* Legend() const { return FLegend.get(); }
  // Assigns into the owned legend.
  void SetLegend(const TKXChartLegend* Value) { FLegend->Assign(Value); }

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
  const TKXChartDrawingEvent& OnDrawingCharts() const { return FOnDrawingCharts; }
  void SetOnDrawingCharts(TKXChartDrawingEvent Value) { FOnDrawingCharts = std::move(Value); }
  const TKXChartDrawEvent& OnDrawCharts() const { return FOnDrawCharts; }
  void SetOnDrawCharts(TKXChartDrawEvent Value) { FOnDrawCharts = std::move(Value); }

  // --- Class-level ---
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
  // The handler of everything the panel owns: Invalidate, Changed.
  virtual void SenderChanged(TObject* Sender);

  void AfterConstruction() override;
  void BeforeDestruction() override;
  void Resize() override;

protected:
  // Makes the axis of one side; a descendant swaps the class here. Left and bottom axes
  // start visible, right and top invisible.
  virtual TOwned<TKXChartAxis> CreateAxis(TKXChartAxisLocation Location);
  virtual TOwned<TKXChartShadow> CreateShadow();
  // Makes the legend of this panel; a descendant swaps the class here.
  virtual TOwned<TKXChartLegend> CreateLegend();
  virtual void ChartListNotify(TObject* Sender, TKXCustomChart* Chart, TListNotification Action);
  virtual void ChartAdded(TKXCustomChart* Chart);
  virtual void ChartDeleted(TKXCustomChart* Chart);

  void FontChanged() override;
  void Notification(TComponent* AComponent, TOperation Operation) override;
};

// The panel as a form stores it.
class TKXChartPanel : public TKXCustomChartPanel {
  KX_CLASS(TKXChartPanel, TKXCustomChartPanel)

public:
  using TKXCustomChartPanel::TKXCustomChartPanel;

protected:
  // ChartColorScheme, ChartShadow, BottomAxis, TopAxis, LeftAxis, RightAxis, Legend,
  // SelectionColor.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
