#pragma once
// Sparse bar charts: bars at free positions. TKXSparseBarChartValue carries its own X
// (dimension 0) beside the bar's number (dimension 1); the collection keeps the values in
// ascending X and knows the smallest gap between neighbours (Diff), which a bar's width is
// a share of, however wide the other gaps are. TKXCustomSparseBarChart is also the base of
// the high-low-average and candlestick charts; TKXSparseBarChart is the class a user places.
//
// Everything the bar chart does with style, orientation, origin, groups and DrawBar holds;
// stacked sparse bars pair their values by index, as bars do, whatever their X.

#include <cstdint>
#include <string>

#include "kxcharts/charts/bars/KXBarChart.h"

namespace kx {

class TKXSparseBarChartValues;
class TKXCustomSparseBarChart;

// --- TKXSparseBarChartValue ---

class TKXSparseBarChartValue : public TKXBarChartValue {
  KX_CLASS(TKXSparseBarChartValue, TKXBarChartValue)

public:
  // Two numbers also outside a collection of values.
  explicit TKXSparseBarChartValue(TCollection* Collection);

  // --- Properties ---
  double X() const { return GetValue(0); }
  void SetX(double Value) { TKXChartValue::SetValue(0, Value); }
  TDateTime XAsDateTime() const { return GetAsDateTime(0); }
  void SetXAsDateTime(TDateTime Value) { SetAsDateTime(0, Value); }
  TDateTime YAsDateTime() const { return GetAsDateTime(1); }
  void SetYAsDateTime(TDateTime Value) { SetAsDateTime(1, Value); }
  // The collection, when it is a TKXSparseBarChartValues; else nil.
  TKXSparseBarChartValues* Collection() const;

protected:
  // Without a collection of values the bar's number is dimension 1.
  double GetDefValue() const override;
  void SetDefValue(double Value) override;
  // X (the number is the base's Value).
  void DefineProperties(TFiler& Filer) override;
};

using TKXSparseBarChartValuesEnumerator = TCollectionEnumeratorOf<TKXSparseBarChartValue>;

// --- TKXSparseBarChartValues ---

class TKXSparseBarChartValues : public TKXBarChartValues {
  KX_CLASS(TKXSparseBarChartValues, TKXBarChartValues)

protected:
  // The smallest gap between neighbouring values per dimension (worked out with the
  // other metadata).
  TKXChartValueTypeArray FDiff;

public:
  // Two dimensions, X the time, sort and first one, the bar's number the default; sorted.
  TKXSparseBarChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXSparseBarChartValue* Items(int32_t Index) const {
    return static_cast<TKXSparseBarChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXSparseBarChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  TKXCustomSparseBarChart* Owner() const;
  // The smallest positive gap between neighbours (in collection order) in Dimension, up to
  // date; 0 when there is none: one value, or all at one number.
  double Diff(int32_t Dimension) const;
  TXYSet DateTimeAxes() const { return TXYSet::FromBits(TKXChartValues::DateTimeAxes().Bits()); }
  void SetDateTimeAxes(TXYSet Value) {
    TKXChartValues::SetDateTimeAxes(TKXDimensionSet::FromBits(Value.Bits()));
  }

  // --- Operations ---
  using TKXChartValues::Add;
  // A bar of no height at X 0.
  TKXSparseBarChartValue* Add();
  // One past the greatest X so far (1 in an empty collection).
  TKXSparseBarChartValue* Add(double Value, const std::string& Caption,
                              TColor Color = TColor(-1));
  TKXSparseBarChartValue* Add(double X, double Y, const std::string& Caption,
                              TColor Color = TColor(-1));
  TKXSparseBarChartValue* Insert(int32_t Index) {
    return static_cast<TKXSparseBarChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXSparseBarChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXSparseBarChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXSparseBarChartValuesEnumerator GetEnumerator() const {
    return TKXSparseBarChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

  // With an owner the axis that shows X (dimension 0 for standing bars) spans the positions
  // widened by a whole bar of the smallest gap; the other the bars' numbers and the origin
  // (0 to 100 stacked to 100 %). Without one the numbers of Dimension; 0 past the last.
  double GetAxisMaximum(int32_t Dimension) const override;
  double GetAxisMinimum(int32_t Dimension) const override;

protected:
  // The base's metadata, then the smallest gaps.
  void CalculateMetaData() override;
  // The stored sort dimension: the bars stand at their X.
  int32_t GetSortByDimension() const override;
  // SortByDimension, DateTimeAxes.
  void DefineProperties(TFiler& Filer) override;
  // The range of Dimension on its axis; Max picks the end.
  double AxisEnd(int32_t Dimension, bool Max) const;
  // The dimension an axis of Dimension shows for the owner's orientation.
  int32_t ShownDimension(int32_t Dimension) const;
};

// --- TKXCustomSparseBarChart ---

class TKXCustomSparseBarChart : public TKXCustomBarChart {
  KX_CLASS(TKXCustomSparseBarChart, TKXCustomBarChart)

public:
  using TKXCustomBarChart::TKXCustomBarChart;

  // --- Properties ---
  TKXSparseBarChartValues* Values() const {
    return static_cast<TKXSparseBarChartValues*>(TKXCustomChart::Values());
  }
  void SetValues(const TKXSparseBarChartValues* Value) { TKXCustomChart::SetValues(Value); }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctSparseBar; }

  // --- Overrides ---
  // The value shown on the axis of X is the caption of the last value at or before the
  // position; the other axis formats the number.
  std::string GetAxisCaption(const TKXChartAxis* Axis, int32_t& Index, double Value) const override;
  // Zoomed and sorted: from one value before the zoomed range to one past it (so that bars
  // across its edges draw); otherwise all.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;

protected:
  TOwned<TKXChartValues> CreateChartValues() override;
  // Six departments at uneven positions; nothing while loading.
  void CreatePreviewValues() override;
  // The value's X.
  double GetBarCentre(const TKXBarChartValue* Value) const override;
  // The smallest gap between positions.
  double GetBarStep() const override;
  // The value's own.
  float LabelOpacity(const TKXBarChartValue* Value) const override;
};

// --- TKXSparseBarChart ---

class TKXSparseBarChart : public TKXCustomSparseBarChart {
  KX_CLASS(TKXSparseBarChart, TKXCustomSparseBarChart)

public:
  using TKXCustomSparseBarChart::TKXCustomSparseBarChart;

protected:
  // BarSizePct, BarStyle, ImageList, UseOrigin, Orientation.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
