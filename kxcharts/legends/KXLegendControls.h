#pragma once
// The legend controls: a legend outside the panel. TKXChartLegendBox is a paint box that
// hosts a TKXChartLegend; TKXLegendListBox is a check list whose checks switch charts and
// values on and off and whose selection can select values. Both follow a panel and a chart
// as an IChartPanelListener of each (registered with the panel's Listeners and the chart's),
// and mark themselves for rebuilding when something they show changed, by one table:
//
//   PanelChange, ChartAdded                 always
//   ChartDeleted(Item), ChartChanged(Item)  Item is Chart, or the control lists charts
//   ValueChanged(Item, Value)               list: Item is Chart, or it lists values;
//                                           box: Item is Chart and it lists values
//   SelectionChanged, VisibleChanged(S)     S is Chart; or it lists charts and S is a
//                                           chart; or it lists values and S is a value
//                                           of Chart
//
// where "lists charts" is IsLegendShowingCharts(Panel, the control's legend style). A flag
// already up stays up, and only raising it invalidates. One more case raises it: a
// notification that finds the answer of "lists charts" differs from the one the lines were
// built with (a chart hidden so that an lsAuto legend goes over to values), which the table
// alone would leave showing the old kind of lines.
//
// The box's flag is its legend's NeedsUpdate: the legend gathers its lines through the
// box's GetLegendStrings at the next paint. The list rebuilds its items in RebuildLegend,
// which runs before the list paints (PrepareContent) and before it handles the mouse or a
// key, so that a batch of notifications between two paints costs one rebuild, and no press
// reaches an item whose chart or value has gone.
//
// A line for a chart reads as the chart (lsCharts when the control's style is lsAuto), a
// line for a value as the value (lsValues), whatever the chart's own panel holds.

#include <cstdint>

#include "kxcharts/core/KXChartListeners.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/legends/KXChartLegend.h"
#include "kxcharts/toolkit/controls/KXCheckListBox.h"
#include "kxcharts/toolkit/controls/KXControls.h"

namespace kx {

class TKXCustomChartPanel;

// --- TKXLegendLinks ---

// What a legend control follows: a panel and a chart, neither owned. The control is a
// listener of each and is told when either is freed. The rule table of the header comment
// is answered here for both controls.
class TKXLegendLinks {
private:
  TComponent* FControl;
  IChartPanelListener* FListener;
  TKXCustomChartPanel* FPanel = nullptr;
  TKXCustomChart* FChart = nullptr;

public:
  TKXLegendLinks(TComponent* AControl, IChartPanelListener* AListener)
      : FControl(AControl), FListener(AListener) {}
  TKXLegendLinks(const TKXLegendLinks&) = delete;
  TKXLegendLinks& operator=(const TKXLegendLinks&) = delete;

  TKXCustomChartPanel* Panel() const { return FPanel; }
  TKXCustomChart* Chart() const { return FChart; }
  // Move the listener's registration and the free notification from the old object to
  // the new one; answer whether anything changed.
  bool SetPanel(TKXCustomChartPanel* Value);
  bool SetChart(TKXCustomChart* Value);
  // Lets go of AComponent when it is the panel or the chart; answers whether it was.
  bool Forget(const TComponent* AComponent);
  // The panel's active chart; nil without a panel.
  TKXCustomChart* ActiveChart() const;
  // Whether the lines stand for charts in Style.
  bool ShowsCharts(TKXLegendStyle Style) const;
  // ChartDeleted and ChartChanged: Item is the chart, or charts show.
  bool ChartConcerns(const TKXCustomChart* Item, bool Show) const { return Item == FChart || Show; }
  // SelectionChanged and VisibleChanged: Sender is the chart or Listed (the chart whose
  // values are listed); or charts show and Sender is a chart; or values show and Sender is
  // a value of either.
  bool SenderConcerns(const TObject* Sender, const TKXCustomChart* Listed, bool Show) const;
};

// --- TKXChartLegendBox ---

class TKXChartLegendBox : public TPaintBox, public IChartPanelListener {
  KX_CLASS(TKXChartLegendBox, TPaintBox)

private:
  TKXLegendLinks FLinks{this, this};
  TOwned<TKXChartLegend> FLegend;
  // Whether the lines gathered last stood for charts.
  bool FShownCharts = false;

public:
  // 100 x 100; the legend has no panel, one column of up to 200 rows as wide as the box,
  // no shadow and no frame.
  explicit TKXChartLegendBox(TComponent* AOwner);
  ~TKXChartLegendBox() override;

  // --- Properties ---

  TKXChartLegend* Legend() const { return FLegend.get(); }
  void SetLegend(const TKXChartLegend* Value) { FLegend->Assign(Value); }
  // The panel followed (not owned). Setting one while no chart is set also sets Chart to
  // the panel's active chart of that moment (not while a form is read).
  TKXCustomChartPanel* Panel() const { return FLinks.Panel(); }
  void SetPanel(TKXCustomChartPanel* Value);
  // The chart whose values are listed when the box does not list charts (not owned).
  TKXCustomChart* Chart() const { return FLinks.Chart(); }
  void SetChart(TKXCustomChart* Value);
  // The rebuild flag: the legend's NeedsUpdate.
  bool NeedsUpdate() const { return GetNeedsUpdate(); }

  // --- IChartPanelListener (see the table in the header comment) ---

  // The legend's OnChange: the box repaints.
  virtual void LegendChanged(TObject* Sender);
  void PanelChange() override;
  void ChartAdded(TKXCustomChart* Item) override;
  void ChartDeleted(TKXCustomChart* Item) override;
  void ChartChanged(TKXCustomChart* Item) override;
  void ValueChanged(TKXCustomChart* Item, TKXChartValue* Value) override;
  void SelectionChanged(TObject* Sender) override;
  void VisibleChanged(TObject* Sender) override;

  // --- Overrides ---

  // The legend on the whole box, then the paint box's own Paint (OnPaint).
  void Paint() override;
  void AfterConstruction() override;
  void BeforeDestruction() override;

protected:
  bool GetNeedsUpdate() const;
  void SetNeedsUpdate(bool Value);
  // The legend's OnGetLegendStrings: the lines of the box (see the header comment), with
  // the legend's limits: charts up to MaxRows lines, values up to MaxRows - 1, from
  // FirstIndex.
  virtual void GetLegendStrings(TObject* Sender, TStrings* Strings);
  // A freed panel or chart is let go; the flag goes up.
  void Notification(TComponent* AComponent, TOperation Operation) override;
  // Legend, Panel, Chart after the paint box's.
  void DefineProperties(TFiler& Filer) override;

private:
  void Mark(bool Raise);
  // Whether the box lists charts now, and the chart whose values it lists otherwise.
  bool Show() const { return FLinks.ShowsCharts(FLegend->LegendStyle()); }
  TKXCustomChart* Listed() const;
};

// --- TKXLegendListBox ---

class TKXLegendListBox : public TCheckListBox, public IChartPanelListener {
  KX_CLASS(TKXLegendListBox, TCheckListBox)

private:
  TKXLegendLinks FLinks{this, this};
  TKXLegendTextStyle FLegendTextStyle = ltsCaption;
  TKXLegendStyle FLegendStyle = lsAuto;
  bool FNeedsUpdate = false;
  bool FEnableSelection = false;
  TKXLegendOptions FOptions;
  bool FShowCheckBoxes = true;
  // Whether the items built last stood for charts.
  bool FShownCharts = false;
  bool FRebuilding = false;
  int32_t FRebuilds = 0;

public:
  // Multi-selecting, owner-drawn rows of ItemHeight, with check boxes.
  explicit TKXLegendListBox(TComponent* AOwner);
  ~TKXLegendListBox() override;

  // --- Properties ---
  // (Panel and Chart as in TKXChartLegendBox; every setter below raises the flag.)

  TKXCustomChartPanel* Panel() const { return FLinks.Panel(); }
  void SetPanel(TKXCustomChartPanel* Value);
  TKXCustomChart* Chart() const { return FLinks.Chart(); }
  void SetChart(TKXCustomChart* Value);
  // What is listed: lsAuto lists the charts when the panel has more than one for the
  // legend, otherwise the values of Chart (or of the panel's active chart).
  TKXLegendStyle LegendStyle() const { return FLegendStyle; }
  void SetLegendStyle(TKXLegendStyle Value);
  TKXLegendTextStyle LegendTextStyle() const { return FLegendTextStyle; }
  void SetLegendTextStyle(TKXLegendTextStyle Value);
  // loChartGlyphs: the chart draws each item's glyph instead of a colour box.
  TKXLegendOptions Options() const { return FOptions; }
  void SetOptions(TKXLegendOptions Value);
  // Whether selecting items selects the values they stand for.
  bool EnableSelection() const { return FEnableSelection; }
  void SetEnableSelection(bool Value);
  bool ShowCheckBoxes() const { return FShowCheckBoxes; }
  void SetShowCheckBoxes(bool Value);
  // The rebuild flag.
  bool NeedsUpdate() const { return FNeedsUpdate; }
  // How many rebuilds ran, for those who measure.
  int32_t Rebuilds() const { return FRebuilds; }

  // --- Operations ---

  // Rebuilds the items when the flag is up (and the list is not being freed): the values
  // of Chart (or of the panel's active chart), hidden ones too, checked by their visible
  // option and selected by their selected option; or every chart of the panel that shows
  // in the legend, hidden ones too, checked by Visible. ItemIndex is kept; the flag goes
  // down and the items' bracket closes also when an exception passes.
  virtual void RebuildLegend();

  // --- IChartPanelListener (see the table in the header comment) ---

  void PanelChange() override;
  void ChartAdded(TKXCustomChart* Item) override;
  void ChartDeleted(TKXCustomChart* Item) override;
  void ChartChanged(TKXCustomChart* Item) override;
  void ValueChanged(TKXCustomChart* Item, TKXChartValue* Value) override;
  void SelectionChanged(TObject* Sender) override;
  void VisibleChanged(TObject* Sender) override;

  // --- Overrides ---

  // The items are brought up to date first.
  void MouseDown(TMouseButton Button, TShiftState Shift, int32_t X, int32_t Y) override;
  void KeyDown(uint16_t& Key, TShiftState Shift) override;
  void KeyPress(char& Key) override;
  // The handling of the invalidation before paint: RebuildLegend.
  void PrepareContent() override;
  void AfterConstruction() override;
  void BeforeDestruction() override;

  // After the inherited handling: with EnableSelection, while values are listed, the flag
  // goes up and each item's value takes the item's Selected.
  void Click() override;

protected:
  // After the inherited handling: the item at ItemIndex sets its value's visible option,
  // or its chart's Visible, to its check.
  void ClickCheck() override;
  // Nothing while the list is being freed, for an empty list or index -1. Without check
  // boxes the strip is taken back, so that the item starts at the row's left.
  void DrawItemMessage(int32_t Index, TRect& Rect, TOwnerDrawState State) override;
  // The check box (when shown) in the strip left of Rect, then over the row: the fill, a
  // glyph box as wide as the row is high + 5 (less a pixel each side) in the chart's or
  // value's colour or drawn by the chart (loChartGlyphs), framed black on a light fill, and
  // otherwise white when selected or in the fill itself; the text 5 pixels right of the
  // glyph, centred in the row.
  void DrawItem(int32_t Index, const TRect& Rect, TOwnerDrawState State) override;
  void Notification(TComponent* AComponent, TOperation Operation) override;
  // Options, EnableSelection, LegendStyle, LegendTextStyle, Panel, Chart, ShowCheckBoxes
  // after the check list's own (Style by default lbOwnerDrawFixed; the items are not
  // stored: they are rebuilt).
  void DefineProperties(TFiler& Filer) override;
  bool StoresItems() const override { return false; }
  TListBoxStyle DefaultStyle() const override { return lbOwnerDrawFixed; }

private:
  void Mark(bool Raise);
  // Whether the list stands for charts now, and the chart whose values it lists otherwise.
  bool Show() const { return FLinks.ShowsCharts(FLegendStyle); }
  TKXCustomChart* Listed() const;
};

} // namespace kx
