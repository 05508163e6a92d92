#pragma once
// The pie: TKXPieChartValue (one slice, which can be pushed out of the pie), its collection
// TKXPieChartValues and enumerator, and TKXPieChart.
//
// Angles are degrees, 0 to the right, rising anticlockwise on the screen. Each value's
// slice sweeps its share of the absolute sum of all values (backwards for a negative
// value); the first starts at 0 and each next one where the one before ended, hidden ones
// included, so hiding a value leaves its gap. A value that is not a finite number sweeps
// nothing. The pie fills the ellipse inscribed in the rectangle it is given (a circle only
// when that is square); the radii are fractions of that ellipse, so an inner radius above
// 0 makes a ring, which the donuts build on.
//
// A pie takes no part in the range of an axis and is not cut by a zoomed one: it always
// shows every value, so that what is drawn and what a click hits agree.

#include <cstdint>
#include <memory>
#include <string>

#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/graphics/KXPathData.h"
#include "kxcharts/toolkit/objects/KXObjectRect.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXSet.h"

namespace kx {

class TKXPieChartValues;
class TKXPieChart;

// --- Enumerations ---

// What one pass over the slices does.
enum TPieSliceOption : uint8_t {
  psColor,    // the brush takes the value's colour (else it keeps the pass's first colour)
  psSlice,    // the slice is drawn
  psLabel,    // the value's label is drawn
  psSelection // a selected value's brush takes SelectionColor
};
KX_ENUM_NAMES(TPieSliceOption, "psColor", "psSlice", "psLabel", "psSelection")
using TPieSliceOptions = TSet<TPieSliceOption>;

// --- TKXPieChartValue ---

class TKXPieChartValue : public TKXChartValue {
  KX_CLASS(TKXPieChartValue, TKXChartValue)

private:
  float FExplode = 0.0f;

public:
  using TKXChartValue::TKXChartValue;

  // --- Properties ---
  // How many pixels the slice is pushed outward; a negative number (or NaN) is stored as 0.
  float Explode() const { return FExplode; }
  void SetExplode(float Value);
  double StartDegrees() const;
  double EndDegrees() const;
  // The collection, when it is a TKXPieChartValues; else nil.
  TKXPieChartValues* Collection() const;

  // --- Operations ---
  // The degrees of the value's slice: the sweeps of the values before it and its own added
  // up from 0. Both 0 without a collection, or when the absolute sum is 0 or not finite.
  virtual void GetDegrees(double& StartDegrees, double& EndDegrees) const;

  // --- Overrides ---
  using TKXChartValue::Selectable;
  // SelRect is in pixels here. A hit of the slice where it lies before any explosion, in
  // the panel's ChartRect (the chart's client rectangle alone): a point (SelRect of no
  // size) inside its path, a rectangle that meets the path's bounds. Then the action rule
  // of the base. Without an owning pie the base's test decides.
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;
  // From another pie value: Explode, then the base's copy.
  void Assign(const TPersistent* Source) override;

protected:
  // Explode.
  void DefineProperties(TFiler& Filer) override;
};

using TKXPieChartValuesEnumerator = TCollectionEnumeratorOf<TKXPieChartValue>;

// --- TKXPieChartValues ---

class TKXPieChartValues : public TKXChartValues {
  KX_CLASS(TKXPieChartValues, TKXChartValues)

public:
  using TKXChartValues::TKXChartValues;

  // --- Properties ---
  TKXPieChartValue* Items(int32_t Index) const {
    return static_cast<TKXPieChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXPieChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  // The pie that owns the collection, or nil.
  TKXPieChart* Owner() const;

  // --- Operations ---
  using TKXChartValues::Add;
  // A value with the number Count, as the base's.
  TKXPieChartValue* Add() { return static_cast<TKXPieChartValue*>(TKXChartValues::Add()); }
  TKXPieChartValue* Add(double Value, const std::string& Caption = "", TColor Color = TColor(-1)) {
    return static_cast<TKXPieChartValue*>(TKXChartValues::Add(Value, Caption, Color));
  }
  TKXPieChartValue* Insert(int32_t Index) {
    return static_cast<TKXPieChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXPieChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXPieChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXPieChartValuesEnumerator GetEnumerator() const { return TKXPieChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
};

// --- TKXPieChart ---

class TKXPieChart : public TKXChart {
  KX_CLASS(TKXPieChart, TKXChart)

protected:
  int32_t FOffset = 0;
  float FOuterRadius = 1.0f;
  float FInnerRadius = 0.0f;
  TOwned<TKXPosition> FOrigin;

public:
  using TKXChart::TKXChart;

  // --- Properties ---
  // The shift of the pie as a fraction of its rectangle's width and height.
  TKXPosition* Origin() const { return FOrigin.get(); }
  void SetOrigin(const TKXPosition* Value);
  // Fractions of half the rectangle: the outer one within InnerRadius..1, the inner one
  // within 0..OuterRadius (NaN changes nothing).
  float OuterRadius() const { return FOuterRadius; }
  void SetOuterRadius(float Value);
  float InnerRadius() const { return FInnerRadius; }
  void SetInnerRadius(float Value);
  // Degrees by which the whole pie turns anticlockwise, kept as the signed remainder by 360.
  int32_t Offset() const { return FOffset; }
  void SetOffset(int32_t Value);
  TKXPieChartValues* Values() const {
    return static_cast<TKXPieChartValues*>(TKXCustomChart::Values());
  }
  void SetValues(const TKXPieChartValues* Value) { TKXCustomChart::SetValues(Value); }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctPie; }

  // --- Operations ---
  // The sweep of a value's slice: its share of the absolute sum in degrees, with its sign;
  // 0 for a number that is not finite or a sum that is 0 or not finite.
  double SweepOf(const TKXChartValue* Value) const;
  // One slice of Value from Start to End degrees in Rect when Flags holds psSlice (a pie
  // slice when its inner radius is 0, a ring part otherwise), moved by Origin, Explode and
  // the value's Scale. Answers the label point: on the middle of the slice between its
  // radii, moved by Origin alone.
  virtual TPoint DrawPieSlice(TCanvas* Canvas, const TRect& Rect, double Start, double End,
                              const TKXPieChartValue* Value, TPieSliceOptions Flags);
  // One pass over the values in view with Flags.
  virtual void DrawSlices(TCanvas* Canvas, const TRect& Rect, TPieSliceOptions Flags);
  // The radii of Value's slice: here the chart's.
  virtual void GetRadius(const TKXPieChartValue* Value, float& Inner, float& Outer) const;
  // The outline of Value's slice in Rect, in pixels, where it lies before any explosion.
  virtual std::unique_ptr<TKXPathData> GetSlicePath(const TRect& Rect,
                                                     const TKXPieChartValue* Value) const;

  // Where selection tests the slices: the panel's ChartRect, or the client rectangle of a
  // pie alone.
  TRect SelectionArea() const;

  // --- Overrides ---
  // Always with coValueColors.
  void SetOptions(TChartOptions Value) override;
  // A visible, selectable value whose slice the pixel rectangle hits.
  bool IsSelectable(const TRect& SelectionRect) const override;
  // Every visible value in view, without turning the rectangle into axis units.
  void InternalSelect(const TRect& ARect, TKXChartSelectionAction Action) override;
  // All values, whatever the axis shows.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;
  // From another pie: both radii, the offset and the origin, then what the base copies.
  void Assign(const TPersistent* Source) override;
  // The origin's change event is let go first.
  void BeforeDestruction() override;

protected:
  // The origin at (0, 0), then the base's; without coZoomFont and coZoomPen, with
  // coValueLabels; a solid brush; the axes ignored; radii 0 and 1.
  void InitializeChart() override;
  // TKXPieChartValues of TKXPieChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Five departments; nothing while loading.
  void CreatePreviewValues() override;
  // The shadow pass (with the panel's visible ChartShadow), the slices in their colours and
  // selection, then the labels over all of them.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // Options against 1815, Origin, OuterRadius, Offset.
  void DefineProperties(TFiler& Filer) override;

  // One step of a pass: the brush by Flags, the slice from Start to End and its label, for
  // a value that shows and sweeps at least a rounded degree. Saved is the brush colour the
  // pass began with.
  void DrawSlice(TCanvas* Canvas, const TRect& Rect, const TKXPieChartValue* Value, double Start,
                 double End, TPieSliceOptions Flags, TColor Saved);
private:
  // The rectangle moved by Origin.
  TRect OriginRect(const TRect& Rect) const;
};

} // namespace kx
