#pragma once
// TKXGraphChart: the node graph drawn and laid out. Each node is drawn as its shape and then
// its outgoing links as arrows, so that a node's links lie over the nodes drawn before it and
// under those drawn after it. Arrange places the nodes by Level in rows (orTopDown,
// orBottomUp) or columns (orLeftRight, orRightLeft).
//
// Readings of points the behaviour leaves open:
// - SetOrientation raises no change of its own: it re-arranges, and the moved nodes reach
//   the panel through the values' change road. A chart that Arrange leaves alone (unsorted,
//   or fewer than two nodes) is not repainted. LevelGapPercent raises a change and
//   re-arranges nothing.
// - The top-down and right-left layouts start the first level at (Step - 1) * L, L being the
//   last node's level: the same one unit short as in every other level count, kept so that
//   a layout is the same whichever way it was computed. The spans grow with L, so levels
//   that hold no node leave their room at the far end of the layout, while the steps are
//   taken only between levels that hold nodes.
// - Within a level the nodes stand in the order of the sorted collection, which is where its
//   binary search put each one as its level was set, not the order of insertion. Nodes
//   added level by level while Sorted is false keep their order when Sorted is set before
//   Arrange.
// - Arrange counts runs of equal levels in collection order; a level that stands in two runs
//   (a NaN level, kept at the end by the sort, reads 0) is placed as two levels, never as
//   one count laid over both.
// - A chart being read from a stream does not re-arrange when its Orientation is read: the
//   stored places and connection points stand as they were saved.
// - A link is not drawn when either end has no finite place on the axes.

#include <cstdint>
#include <functional>

#include "kxcharts/charts/KXShapeCharts.h"
#include "kxcharts/charts/graphs/KXGraphChartValues.h"

namespace kx {

// How a link shows the selection of the nodes it joins.
enum TGraphOption : uint8_t {
  goParentSelectionColor, // in SelectionColor when its owning node is selected
  goChildSelectionColor,  // in SelectionColor when its target is selected
  goChildSelectionWidth,  // pen one wider when its target is selected
  goParentSelectionWidth  // pen one wider when its owning node is selected
};
KX_ENUM_NAMES(TGraphOption, "goParentSelectionColor", "goChildSelectionColor",
              "goChildSelectionWidth", "goParentSelectionWidth")
using TGraphOptions = TSet<TGraphOption>;

// --- TKXGraphChart ---

class TKXGraphChart : public TKXCustomShapeChart {
  KX_CLASS(TKXGraphChart, TKXCustomShapeChart)

public:
  static constexpr uint64_t DefaultGraphOptions = 9;
  // The arrow head's length and width in pixels when neither axis zooms.
  static constexpr int32_t ArrowSize = 10;

private:
  TKXChartOrientation FOrientation = orTopDown;
  int32_t FLevelGapPercent = 50;
  TOwned<TPen> FArrowPen;
  TGraphOptions FGraphOptions = TGraphOptions::FromBits(DefaultGraphOptions);

public:
  using TKXCustomShapeChart::TKXCustomShapeChart;

  // --- Properties ---
  TKXChartOrientation Orientation() const { return FOrientation; }
  // Re-arranges on a change (OrientationChanged).
  void SetOrientation(TKXChartOrientation Value);
  // The room between levels and between neighbours, in per cent of the largest node.
  int32_t LevelGapPercent() const { return FLevelGapPercent; }
  void SetLevelGapPercent(int32_t Value);
  // The pen a link takes when it moves in from another node.
  TPen* ArrowPen() const { return FArrowPen.get(); }
  void SetArrowPen(const TPen* Value) { FArrowPen->Assign(Value); }
  TGraphOptions GraphOptions() const { return FGraphOptions; }
  void SetGraphOptions(TGraphOptions Value);
  TKXGraphChartValues* Values() const {
    return static_cast<TKXGraphChartValues*>(TKXCustomChart::Values());
  }
  TKXDefaultShape* DefaultShape() const {
    return static_cast<TKXDefaultShape*>(TKXCustomShapeChart::DefaultShape());
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctGraph; }

  // --- Operations ---
  // The pixel points a link of Value (its owner) runs through on ARect: the owner's
  // connection point, each of LinePoints, the target's connection point. Empty without a
  // target or when either end has no finite place.
  TCanvasPoints LinkRoute(const TRect& ARect, const TKXGraphChartValue* Value,
                          const TKXGraphChartLink* Link) const;
  // One link of Value (its owner) as an arrow from the owner's connection point to the
  // target's, through its LinePoints.
  virtual void DrawLink(TCanvas* Canvas, const TRect& ARect, TKXGraphChartValue* Value,
                        TKXGraphChartLink* Link);
  // Every link of Value whose target is visible, in list order.
  virtual void DrawLinks(TCanvas* Canvas, const TRect& ARect, TKXGraphChartValue* Value);
  // Hooks for a descendant: a node's level changed; a link changed.
  virtual void LevelChanged(TKXGraphChartValue* Value);
  virtual void LinksUpdate(TKXGraphChartLink* Link);
  // A link that joins a node of this chart takes ArrowPen.
  virtual void LinksNotify(TKXGraphChartLink* Link, TCollectionNotification Action);
  // Sets X and Y of every node and both connection points of every link; nothing unless
  // the values are Sorted and there are at least two.
  virtual void Arrange();
  // The arrow head's size in pixels on the current zoom of the two axes.
  int32_t ArrowHeadSize() const;

  // --- Overrides ---
  // The shape, then the node's links.
  using TKXCustomShapeChart::DrawShape;
  void DrawShape(TCanvas* Canvas, const TRect& Rect, TKXShapeChartValue* Value) override;
  // Every node, whatever the zoom: the values are in level order, not along an axis.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;
  // From another graph chart: GraphOptions, Orientation, LevelGapPercent, ArrowPen; then the
  // point chart's.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // Runs Arrange, except while the chart is being read: the stored places stand.
  virtual void OrientationChanged();
  // ArrowPen first, then the shape chart's, values sorted by level.
  void InitializeChart() override;
  void InitializeChangeEvents() override;
  // TKXGraphChartValues of TKXGraphChartValue, whose OnNotify runs ValueNotify.
  TOwned<TKXChartValues> CreateChartValues() override;
  // A small organisation of seven nodes, arranged; nothing while loading.
  void CreatePreviewValues() override;
  // ImageList, DefaultShape, Orientation, LevelGapPercent, ArrowPen, GraphOptions.
  void DefineProperties(TFiler& Filer) override;

private:
  // The pixel rectangle a link ends on for Node (grown by its Scale); false when the node
  // has no finite place.
  bool LinkEndRect(const TRect& ARect, const TKXGraphChartValue* Node, TRect& R) const;
};

} // namespace kx
