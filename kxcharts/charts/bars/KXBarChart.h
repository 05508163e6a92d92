#pragma once
// Bar charts: TKXBarChartValue (one bar: a number, a style of its own or the chart's, an
// image index), its collection TKXBarChartValues and enumerator, TKXCustomBarChart (the
// base of every chart of the bar family: orientation, origin, grouping, the drawing loop,
// value labels, the hit test) and TKXBarChart, the class a user places.
//
// A bar stands at its value's index on the index axis, from -0.5 to Count - 0.5, and runs
// along the value axis from the origin (or from the stack below it) to its number. Bars of
// several charts at one index lie over one another in list order; charts of one group with
// a stacked group style stack their bars, summing signed numbers. With Clustered, the bars
// of a group's charts that do not stack stand side by side at each index instead.
//
// A value whose number is not finite has no bar and no label. A bar whose rectangle has no
// area leaves no pixel: the loop skips it without setting the canvas up (unless it has a
// label or a handler to hear of it), so that a hundred thousand bars narrower than a pixel
// cost what their few visible pixels cost.

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"

namespace kx {

class TKXBarChartValue;
class TKXBarChartValues;
class TKXCustomBarChart;

// --- Enumerations ---

// How a bar is drawn. 0 to 8 are the shapes of TKXShapeStyle with the same numbers (2 draws
// the value's image from the chart's ImageList).
enum TBarChartStyle : uint8_t {
  bsRectangle,
  bsShape1,
  bsImage,
  bsShape3,
  bsShape4,
  bsShape5,
  bsShape6,
  bsShape7,
  bsShape8,
  bsGradient, // from the panel's colour to the bar's
  bsArrow     // an arrow along the bar, always pointing up or right
};
KX_ENUM_NAMES(TBarChartStyle, "bsRectangle", "bsShape1", "bsImage", "bsShape3", "bsShape4",
              "bsShape5", "bsShape6", "bsShape7", "bsShape8", "bsGradient", "bsArrow")

// Which way the value runs. The number is also the dimension of the value axis.
enum TBarOrientation : uint8_t {
  boHorizontal, // the value along the horizontal axis: bars lie
  boVertical    // the value along the vertical axis: bars stand
};
KX_ENUM_NAMES(TBarOrientation, "boHorizontal", "boVertical")

// --- Events ---

// Raised before a bar (or a legend glyph) is drawn in ARect; DefaultDraw false skips the
// built-in drawing.
using TKXBarChartValueDrawEvent =
    std::function<void(TObject* Sender, TCanvas* Canvas, const TRect& ARect,
                       const TKXBarChartValue* Value, bool& DefaultDraw)>;

// --- TKXBarChartValue ---

class TKXBarChartValue : public TKXChartValue {
  KX_CLASS(TKXBarChartValue, TKXChartValue)

private:
  int32_t FImageIndex = -1;
  bool FParentStyle = true;
  TBarChartStyle FStyle = bsRectangle;

public:
  using TKXChartValue::TKXChartValue;

  // --- Properties ---
  // An index into the chart's ImageList; below -1 becomes -1 (none).
  int32_t ImageIndex() const { return FImageIndex; }
  void SetImageIndex(int32_t Value);
  // True: the bar takes the chart's BarStyle.
  bool ParentStyle() const { return FParentStyle; }
  void SetParentStyle(bool Value);
  // A new style also ends ParentStyle; the style already held leaves it as it is.
  TBarChartStyle Style() const { return FStyle; }
  void SetStyle(TBarChartStyle Value);
  // The collection, when it is a TKXBarChartValues; else nil.
  TKXBarChartValues* Collection() const;

  // --- Overrides ---
  using TKXChartValue::Selectable;
  // A hit on the bar's rectangle in the owner's panel: the point of an empty SelRect in
  // it, or any overlap. Without a chart in a panel the base's test decides.
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;
  // From another bar value: image index, parent style and style, then the base's copy.
  void Assign(const TPersistent* Source) override;

protected:
  // ParentStyle, Style, ImageIndex. Reading Style keeps ParentStyle as stored.
  void DefineProperties(TFiler& Filer) override;
};

using TKXBarChartValuesEnumerator = TCollectionEnumeratorOf<TKXBarChartValue>;

// --- TKXBarChartValues ---

class TKXBarChartValues : public TKXChartValues {
  KX_CLASS(TKXBarChartValues, TKXChartValues)

public:
  using TKXChartValues::TKXChartValues;

  // --- Properties ---
  TKXBarChartValue* Items(int32_t Index) const {
    return static_cast<TKXBarChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXBarChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  // The bar chart that owns the collection, or nil.
  TKXCustomBarChart* Owner() const;

  // --- Operations ---
  using TKXChartValues::Add;
  // A bar of no height.
  TKXBarChartValue* Add();
  // One change notice for the value and its image index; a Color of -1 keeps the colour
  // the palette gave.
  TKXBarChartValue* Add(double Value, const std::string& Caption, TColor Color = TColor(-1),
                        int32_t ImageIndex = -1);
  TKXBarChartValue* Insert(int32_t Index) {
    return static_cast<TKXBarChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXBarChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXBarChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXBarChartValuesEnumerator GetEnumerator() const { return TKXBarChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
  // The metadata is worked out again at its next read (the owner's orientation changed).
  void InvalidateMetaData() { FNeedMetaUpdate = true; }

  // With an owner: the index axis (the dimension other than the orientation) runs from
  // -0.5 to Count - 0.5; the value axis takes the base's range, widened to hold the
  // chart's origin unless the group is stacked to 100 %.
  double GetAxisMaximum(int32_t Dimension) const override;
  double GetAxisMinimum(int32_t Dimension) const override;
  // Keeps the order the bars were added in: they are sorted on their index already.
  void CustomSort(TValuesSortCompare SCompare) override;

protected:
  // The index, which none of the numbers is: a bar's place does not follow its number, so
  // a Sorted collection never moves a bar (and its span in view is cut by index). The
  // sparse bars, which stand at a number of their own, answer the stored dimension.
  int32_t GetSortByDimension() const override;
};

// --- TKXCustomBarChart ---

class TKXCustomBarChart : public TKXChart {
  KX_CLASS(TKXCustomBarChart, TKXChart)

protected:
  int32_t FBarSizePct = 70;
  TBarChartStyle FBarStyle = bsRectangle;
  TBarOrientation FOrientation = boVertical;
  int32_t FBarSize = 0;
  TKXBarChartValueDrawEvent FOnCustomDrawValue;
  bool FUseOrigin = true;
  TImageList* FImageList = nullptr;
  // The bars of the group's charts stand side by side rather than over one another.
  bool FClustered = false;

private:
  // A linear axis's mapping on the rectangle being drawn, taken once per draw so that the
  // bars do not ask the axis for each of their four edges.
  struct TPixelCache {
    const TKXChartAxis* Axis = nullptr;
    TRect Rect{};
    TKXLinearPixels Map;
    // The last value mapped and its pixel: the base of every bar is one value.
    double Last = std::numeric_limits<double>::quiet_NaN();
    int32_t LastPixel = 0;
  };
  mutable std::array<TPixelCache, 2> FPixels;

public:
  explicit TKXCustomBarChart(TComponent* AOwner) : TKXChart(AOwner) {}

  // --- Properties ---
  // The width of a bar in per cent of a step of the index axis, clamped to 1..100.
  int32_t BarSizePct() const { return FBarSizePct; }
  void SetBarSizePct(int32_t Value);
  // The style of every bar whose ParentStyle holds.
  TBarChartStyle BarStyle() const { return FBarStyle; }
  void SetBarStyle(TBarChartStyle Value);
  // Setting it on a grouped chart sets it on every bar chart of its group in the panel; the
  // Preview flag survives.
  TBarOrientation Orientation() const { return FOrientation; }
  void SetOrientation(TBarOrientation Value);
  // Bars start at the Origin of the vertical axis's grid rather than at 0.
  bool UseOrigin() const { return FUseOrigin; }
  void SetUseOrigin(bool Value);
  // The pictures of bsImage (not owned; the chart lets go of a list that is freed).
  TImageList* ImageList() const { return FImageList; }
  void SetImageList(TImageList* Value);
  // The width of a bar in pixels at the last draw.
  int32_t BarSize() const { return FBarSize; }
  // Whether every number of Value is finite: a value with a number that is no number has no
  // bar, no label and no hit.
  static bool HasFiniteNumbers(const TKXChartValue* Value);
  // Off by default. When on, the visible bar charts of this chart's Group that do not stack
  // (GroupStyle gsNone) share each index step side by side, in list order, instead of
  // lying over one another. Setting it sets it on every bar chart of the group in the
  // panel, so that a group is clustered as a whole.
  bool Clustered() const { return FClustered; }
  void SetClustered(bool Value);
  TKXBarChartValues* Values() const {
    return static_cast<TKXBarChartValues*>(TKXCustomChart::Values());
  }
  void SetValues(const TKXBarChartValues* Value) { TKXCustomChart::SetValues(Value); }

  // --- Events ---
  const TKXBarChartValueDrawEvent& OnCustomDrawValue() const { return FOnCustomDrawValue; }
  void SetOnCustomDrawValue(TKXBarChartValueDrawEvent Value) {
    FOnCustomDrawValue = std::move(Value);
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctBar; }

  // --- Operations ---

  // The axis the bars stand along (the horizontal one for boVertical) and the one their
  // numbers run along.
  TKXChartAxis* IndexAxis() const {
    return FOrientation == boVertical ? FHorizontalAxis : FVerticalAxis;
  }
  TKXChartAxis* ValueAxis() const {
    return FOrientation == boVertical ? FVerticalAxis : FHorizontalAxis;
  }
  // Where bars start: the vertical axis's grid Origin with UseOrigin, else 0. In a stacked
  // group the first bar chart of the group decides for all of it.
  double GetAdjOrigin() const;
  // The pixel rectangle of Value's bar in ARect, with the origin, offset and predecessor
  // in the group that drawing uses.
  TRect GetBarRect(const TRect& ARect, const TKXBarChartValue* Value) const;
  // The bar's rectangle in normal form: the ends from the value (plus what stands below it
  // in its stack, or in per cent of the stack's total), the sides BarHalfSize index units
  // either side of its index. PrevChart is the predecessor in a stacked group (nil
  // otherwise); Origin and Offset are those of GetAdjOrigin and GetAdjOffsetVertical. A
  // stack to 100 % whose total is 0 has an empty bar at the axis's minimum.
  virtual TRect GetBarRect(const TRect& ARect, const TKXBarChartValue* Value,
                           const TKXCustomChart* PrevChart, double BarHalfSize, double Origin,
                           double Offset) const;
  // The value's own Style, or BarStyle when its ParentStyle holds.
  virtual TBarChartStyle GetBarStyle(const TKXBarChartValue* Value) const;
  // Draws one bar in ARect with the canvas as set up: OnCustomDrawValue first (with a copy
  // of the rectangle); unless it says no, the shape, gradient or arrow of GetBarStyle.
  virtual void DrawBar(TCanvas* Canvas, const TRect& ARect, const TKXBarChartValue* Value);

  // --- Overrides ---
  // The offset of the stack's first bar chart, which the whole stack starts from: the
  // offsets the axis writes into later charts of a stack do not move bars.
  double GetAdjOffsetVertical() const override;
  // The orientation: the dimension of the value axis.
  int32_t GetGroupDimension() const override;
  // The index axis, whatever the values' captions (an axis on the left or right for
  // boHorizontal, at the bottom or top for boVertical).
  bool WantsCaptions(const TKXChartAxis* Axis) const override;
  // The value axis formats the number; the index axis lowers Index to the value at or below
  // the position and answers its caption.
  std::string GetAxisCaption(const TKXChartAxis* Axis, int32_t& Index, double Value) const override;
  // The span in view on the index axis (only there).
  void UpdateAxisInfo(TKXChartAxis* Axis) override;
  // A zoomed, sorted collection draws the indices from Trunc(ZoomMinimum) to
  // Trunc(ZoomMaximum + 1); any other all of them.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;
  using TKXChart::DrawGlyph;
  // The value's bar in ARect, through DrawBar (so OnCustomDrawValue hears of glyphs too);
  // the canvas is put back afterwards, also when a handler raises.
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // From another bar chart: UseOrigin, BarSizePct, BarStyle, Orientation, Clustered,
  // ImageList, then what the base copies.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // BarSizePct 70, standing bars, the ahBarScale hint, UseOrigin.
  void InitializeChart() override;
  // TKXBarChartValues of TKXBarChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Five departments with their numbers; nothing while loading.
  void CreatePreviewValues() override;
  // Every visible value in view with a finite number: its bar (first in the panel's
  // ChartShadow when that shows), then its label with coValueLabels. Nothing for an empty
  // collection.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Notification(TComponent* AComponent, TOperation Operation) override;

  // Where Axis puts values in ARect: the mapping taken for this draw when there is one.
  class TAxisPixels {
  public:
    TAxisPixels(const TKXCustomBarChart* Chart, const TKXChartAxis* Axis, const TRect& ARect)
        : FAxis(Axis), FRect(ARect) {
      for (TPixelCache& C : Chart->FPixels)
        if (C.Axis == Axis && C.Rect == ARect) FCache = &C;
    }
    int32_t operator()(double Value) const {
      return FCache ? FCache->Map.Pixel(Value) : FAxis->AxisToPixel(Value, FRect);
    }
    // The same for a value that repeats from bar to bar.
    int32_t Repeated(double Value) const {
      if (!FCache) return FAxis->AxisToPixel(Value, FRect);
      if (Value != FCache->Last) {
        FCache->Last = Value;
        FCache->LastPixel = FCache->Map.Pixel(Value);
      }
      return FCache->LastPixel;
    }

  private:
    const TKXChartAxis* FAxis;
    const TRect& FRect;
    TPixelCache* FCache = nullptr;
  };
  // The predecessor in a stacked group in the panel, or nil.
  const TKXCustomChart* StackPrevious() const;

  // --- What the family's kinds change in the one drawing loop and bar rectangle ---
  // Where the bar of Value stands on the index axis: its index here, its X in the sparse
  // kinds.
  virtual double GetBarCentre(const TKXBarChartValue* Value) const;
  // One step of the index axis in axis units, which BarSizePct is a share of: 1 here, the
  // smallest gap between positions in the sparse kinds (0 when there is none).
  virtual double GetBarStep() const;
  // Half a bar's width in axis units: BarSizePct of a step, or of 1 when the step is 0.
  double GetBarHalfSize() const;
  // Draws the bar of Value in R, its shadow when Shadow: DrawBar here.
  virtual void DrawBarValue(TCanvas* Canvas, const TRect& R, const TKXBarChartValue* Value,
                            bool Shadow);
  // Whether Value paints only inside its rectangle, so that an empty rectangle paints
  // nothing: every style but the arrow here.
  virtual bool PaintsInsideRect(const TKXBarChartValue* Value) const;
  // What the chart's pen paints of a bar one pixel across: its colour when it is solid
  // (Paints), else nothing, and the bar is its brush.
  struct TColumnPen {
    bool Paints;
    TColor Color;
  };
  // The pixels of Value drawn in R, one pixel across, as spans of one colour along its
  // column (at most two, in drawing order) when that is all it paints with the chart's pen
  // as Pen says and its own look; -1 when it paints otherwise. A plain rectangle here.
  virtual int32_t ColumnSpans(const TKXBarChartValue* Value, const TRect& R, const TColumnPen& Pen,
                              TRect (&Spans)[2], TColor& Color) const;
  // The opacity of a value label: 1 here, the value's own in the sparse kinds.
  virtual float LabelOpacity(const TKXBarChartValue* Value) const;
  // The label of a bar drawn in R, Unit pixels a step; nothing for an empty text.
  virtual void DrawValueLabel(TCanvas* Canvas, const TKXBarChartValue* Value, const TRect& R,
                              double Unit);
  // The rectangle in normal form from the ends E1, E2 on the value axis and the sides
  // Centre - Half and Centre + Half on the index axis, at least one pixel across.
  TRect SpanRect(const TRect& ARect, double Centre, double Half, double E1, double E2) const;

private:
  // The chart whose origin and offset this one takes: the first of the unbroken run of
  // bar charts that ends with this one in its stack.
  const TKXCustomBarChart* StackLeader() const;
  // This chart's place among the clustered bar charts of its group, and their number;
  // false when its bars are not clustered.
  bool ClusterSlot(int32_t& Slot, int32_t& Slots) const;
  // Sets Apply on every other bar chart of the panel in the group.
  template <class F> void ForGroup(F Apply);
};

// --- TKXBarChart ---

// The bar chart a user places: TKXCustomBarChart with its stored properties.
class TKXBarChart : public TKXCustomBarChart {
  KX_CLASS(TKXBarChart, TKXCustomBarChart)

public:
  using TKXCustomBarChart::TKXCustomBarChart;

protected:
  // BarSizePct, BarStyle, ImageList, UseOrigin, Orientation, Clustered.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
