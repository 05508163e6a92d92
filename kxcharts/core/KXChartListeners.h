#pragma once
// Listeners: whatever must follow a chart or a panel without being part of it (chart
// functions, stand-alone legends) registers an IChartPanelListener with it. A chart and a
// panel each own one TChartPanelListeners list. The list does not own its listeners, and
// a listener takes itself out when it lets go of what it follows.

#include <cstdint>

#include "kxcharts/toolkit/chartkit/KXCommon.h"
#include "kxcharts/toolkit/objects/KXObject.h"

namespace kx {

class TKXCustomChart;
class TKXChartValue;

// What a listener hears. Chart and Value may be nil where the operation says so.
class IChartPanelListener {
public:
  virtual ~IChartPanelListener() = default;
  // A batch of changes has ended (the closing EndUpdate of the list).
  virtual void PanelChange() = 0;
  // A chart came into the panel.
  virtual void ChartAdded(TKXCustomChart* Chart) = 0;
  // A chart left the panel.
  virtual void ChartDeleted(TKXCustomChart* Chart) = 0;
  // A property of the chart changed.
  virtual void ChartChanged(TKXCustomChart* Chart) = 0;
  // A value of the chart changed; Value is nil for a change of the whole collection.
  virtual void ValueChanged(TKXCustomChart* Chart, TKXChartValue* Value) = 0;
  // Sender is the value whose selection changed.
  virtual void SelectionChanged(TObject* Sender) = 0;
  // Sender is the value or the chart whose visibility changed.
  virtual void VisibleChanged(TObject* Sender) = 0;
};

using TChartPanelListenerList = TKXAssignList<IChartPanelListener*>;

// The listeners of one chart or panel. Between BeginUpdate and EndUpdate nobody hears
// anything; the calls are not stored, and the outermost EndUpdate sends one PanelChange
// instead. Each notice reads the number of listeners once and calls them by index from
// the first; a listener must not add or remove listeners while it is told something
// (one that removes itself ends the round early rather than reading past the end).
class TChartPanelListeners : public TChartPanelListenerList {
  KX_CLASS(TChartPanelListeners, TChartPanelListenerList)

private:
  int32_t FUpdateCount = 0;

public:
  TChartPanelListeners() = default;

  int32_t UpdateCount() const { return FUpdateCount; }

  // Adds Listener unless it is there; answers its index either way.
  int32_t Add(IChartPanelListener* Listener);
  void BeginUpdate() { ++FUpdateCount; }
  // Raises Exception without a matching BeginUpdate.
  void EndUpdate();

  // PanelChange of every listener.
  void Change();
  void ChartAdded(TKXCustomChart* Chart);
  void ChartDeleted(TKXCustomChart* Chart);
  void ChartChanged(TKXCustomChart* Chart);
  void ValueChanged(TKXCustomChart* Chart, TKXChartValue* Value);
  void SelectionChanged(TObject* Sender);
  void VisibleChanged(TObject* Sender);

private:
  template <class F> void Tell(F&& Call);
};

} // namespace kx
