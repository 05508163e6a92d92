#pragma once
// The values of every chart that places its values by coordinates: TKX2DChartValue (X in
// dimension 0, Y in dimension 1, Y being the default number), TKX3DChartValue (Z in
// dimension 2) and TKX2DImageChartValue (an index into the chart's image list), each with
// its collection and its typed enumerator. What they add to TKXChartValue and
// TKXChartValues is coordinates and the Add overloads that take them; sorting, metadata,
// change notices and colours are the base's.

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>

#include "kxcharts/core/KXChartValues.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKX2DChartValues;
class TKXValueSummary;
class TKXDeferredXY;
class TKX3DChartValues;
class TKX2DImageChartValues;

// --- TKX2DChartValue ---

class TKX2DChartValue : public TKXChartValue {
  KX_CLASS(TKX2DChartValue, TKXChartValue)

public:
  // Two numbers (three for TKX3DChartValue) also outside a collection of values.
  explicit TKX2DChartValue(TCollection* Collection);

  // --- Properties ---
  double X() const { return GetValue(0); }
  void SetX(double Value) { TKXChartValue::SetValue(0, Value); }
  double Y() const { return GetValue(1); }
  void SetY(double Value) { TKXChartValue::SetValue(1, Value); }
  TDateTime XAsDateTime() const { return GetAsDateTime(0); }
  void SetXAsDateTime(TDateTime Value) { SetAsDateTime(0, Value); }
  TDateTime YAsDateTime() const { return GetAsDateTime(1); }
  void SetYAsDateTime(TDateTime Value) { SetAsDateTime(1, Value); }
  // The collection, when it is a TKX2DChartValues; else nil.
  TKX2DChartValues* Collection() const;

  // --- Overrides ---
  using TKXChartValue::Selectable;
  // The point (X, Y) in SelRect (closed: a point on the edge is inside), then the action
  // rule of the base.
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;

protected:
  // Without a collection of values the default number is Y, not dimension 0.
  double GetDefValue() const override;
  void SetDefValue(double Value) override;
  // X, Y.
  void DefineProperties(TFiler& Filer) override;
};

using TKX2DChartValuesEnumerator = TCollectionEnumeratorOf<TKX2DChartValue>;

// --- TKX2DChartValues ---

// The values of a chart that places them by X and Y, with a summary of them for the paint
// of many values, and the bulk adds (AddValues) that take millions of values at once.
class TKX2DChartValues : public TKXChartValues {
  KX_CLASS(TKX2DChartValues, TKXChartValues)

protected:
  const int32_t FYDim = 1;
  const int32_t FXDim = 0;

private:
  // Built on first use; told of every change from then on. Held by pointer because the
  // summary's type is the library's own business (a private header).
  std::unique_ptr<TKXValueSummary> FSummary;
  // The numbers and colours of the values added in bulk and not made yet, by key.
  std::unique_ptr<TKXDeferredXY> FDeferred;

public:
  // Two dimensions, X the time dimension, Y the default one.
  TKX2DChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);
  ~TKX2DChartValues() override;

  // --- Properties ---
  TKX2DChartValue* Items(int32_t Index) const {
    return static_cast<TKX2DChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKX2DChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  int32_t XDim() const { return FXDim; }
  int32_t YDim() const { return FYDim; }
  // The dimensions that hold dates, as X and Y members; a change is a change of the
  // collection. IsDateTime is the X member.
  TXYSet DateTimeAxes() const { return TXYSet::FromBits(TKXChartValues::DateTimeAxes().Bits()); }
  void SetDateTimeAxes(TXYSet Value);

  // --- Operations ---
  using TKXChartValues::Add;
  // As Add(0): a value at the present largest X.
  TKX2DChartValue* Add();
  // Y = Value at X = the present largest X (MaxValue of dimension 0, 0 when empty): the
  // maximum, not one past it.
  TKX2DChartValue* Add(double Value, const std::string& Caption = "", TColor Color = TColor(-1));
  TKX2DChartValue* Add(double X, double Y, const std::string& Caption = "",
                       TColor Color = TColor(-1));
  // Bulk adds: a value per number, as that many Add(X, Y) in one bracket would add them
  // (each takes its palette colour, a sorted collection stays sorted, Limit holds, one
  // change notice), but made only when something asks for one of them: until then a value
  // costs its numbers. A sorted collection takes a run fastest in its order after the values
  // it has; a run that goes among them is added value by value, and so is every run while
  // OnNotify is assigned (it hears each value).
  // Y at X = the largest finite X present plus 1, 2, 3, ... (0, 1, 2, ... when none is).
  void AddValues(std::span<const double> Y);
  // X and Y in pairs. Raises EListError when the spans differ in length.
  void AddValues(std::span<const double> X, std::span<const double> Y);
  TKX2DChartValue* Insert(int32_t Index) {
    return static_cast<TKX2DChartValue*>(TKXChartValues::Insert(Index));
  }
  TKX2DChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKX2DChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKX2DChartValuesEnumerator GetEnumerator() const { return TKX2DChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
  // The extents of the values changed while no number did (a size that a descendant reads
  // from elsewhere): minimum and maximum are worked out again at the next read.
  void ExtentsChanged() { FNeedMetaUpdate = true; }
  // The summary of the values by index (X, Y, plainness, colour, and ranges of them), up
  // to date. The first call reads every value; later ones read only what changed since.
  const TKXValueSummary& Summary() const;

  // Each also tells the summary.
  void ValueChanged(TKXChartValue* Value, int32_t Dimension) override;
  void VisibleChanged(TKXChartValue* Value) override;
  void SelectionChanged(TKXChartValue* Value) override;
  void LookChanged(TKXChartValue* Value) override;

protected:
  void Notify(TCollectionItem* Item, TCollectionNotification Action) override;
  void ItemsMoved(int32_t From, int32_t To) override;
  // A value added by AddValues, with its numbers and colour.
  TCollectionItem* MakeDeferredItem(int32_t Index, size_t Key) override;
  void DeferredItemsDone() override;
  // X and Y from the summary.
  bool GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const override;
  // SortByDimension, then the date dimensions (always stored).
  void DefineProperties(TFiler& Filer) override;
  // DateTimeAxes in the set type of the class.
  virtual void DefineDateTimeAxes(TFiler& Filer);
  // For values that reach from one number to another in X or Y (a shape's far side, an
  // arrow's end): after the base's SetMetaData, the cached minimum and maximum of X and Y
  // become the value's extent by GetValueDimMinimum and GetValueDimMaximum. A value that
  // reaches past both ends of the range so far widens both.
  void SetExtentMetaData(TValueMetaData Data, const TKXChartValue* Value, int32_t Dimension);

private:
  friend class TKXValueSummary;
  // X, Y and colour of the value at Index without making it; false when it is made.
  bool DeferredXY(int32_t Index, double& X, double& Y, TColor& Color) const;
  // The number of the value at Index on Dimension, without making it.
  double NumberAt(int32_t Index, int32_t Dimension) const;
  // The bulk add: X counts on from X0 when the span is empty.
  void AddRun(std::span<const double> X, double X0, std::span<const double> Y);
};

// --- TKX3DChartValue ---

class TKX3DChartValue : public TKX2DChartValue {
  KX_CLASS(TKX3DChartValue, TKX2DChartValue)

public:
  explicit TKX3DChartValue(TCollection* Collection);

  // --- Properties ---
  double Z() const { return GetValue(2); }
  void SetZ(double Value) { TKXChartValue::SetValue(2, Value); }
  TDateTime ZAsDateTime() const { return GetAsDateTime(2); }
  void SetZAsDateTime(TDateTime Value) { SetAsDateTime(2, Value); }
  // The collection, when it is a TKX3DChartValues; else nil.
  TKX3DChartValues* Collection() const;

protected:
  // X, Y, Z.
  void DefineProperties(TFiler& Filer) override;
};

using TKX3DChartValuesEnumerator = TCollectionEnumeratorOf<TKX3DChartValue>;

// --- TKX3DChartValues ---

class TKX3DChartValues : public TKX2DChartValues {
  KX_CLASS(TKX3DChartValues, TKX2DChartValues)

protected:
  const int32_t FZDim = 2;

public:
  TKX3DChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKX3DChartValue* Items(int32_t Index) const {
    return static_cast<TKX3DChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKX3DChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  int32_t ZDim() const { return FZDim; }
  TXYZSet DateTimeAxes() const { return TXYZSet::FromBits(TKXChartValues::DateTimeAxes().Bits()); }
  void SetDateTimeAxes(TXYZSet Value);

  // --- Operations ---
  using TKXChartValues::Add;
  // Z is 0 in all but the last form.
  TKX3DChartValue* Add();
  // Y = X (the argument) at the present largest X.
  TKX3DChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1));
  TKX3DChartValue* Add(double X, double Y, const std::string& Caption = "",
                       TColor Color = TColor(-1));
  TKX3DChartValue* Add(double X, double Y, double Z, const std::string& Caption = "",
                       TColor Color = TColor(-1));
  TKX3DChartValue* Insert(int32_t Index) {
    return static_cast<TKX3DChartValue*>(TKXChartValues::Insert(Index));
  }
  TKX3DChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKX3DChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKX3DChartValuesEnumerator GetEnumerator() const { return TKX3DChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

protected:
  void DefineDateTimeAxes(TFiler& Filer) override;
};

// --- TKX2DImageChartValue ---

class TKX2DImageChartValue : public TKX2DChartValue {
  KX_CLASS(TKX2DImageChartValue, TKX2DChartValue)

private:
  int32_t FImageIndex = -1;

public:
  explicit TKX2DImageChartValue(TCollection* Collection) : TKX2DChartValue(Collection) {}

  // --- Properties ---
  // Index into the owning chart's image list; -1 is no image, and lower numbers become -1.
  int32_t ImageIndex() const { return FImageIndex; }
  void SetImageIndex(int32_t Value);
  // The collection, when it is a TKX2DImageChartValues; else nil.
  TKX2DImageChartValues* Collection() const;

  // From another image value: the image index, then what the base copies.
  void Assign(const TPersistent* Source) override;

protected:
  // X, Y, ImageIndex (always).
  void DefineProperties(TFiler& Filer) override;
};

using TKX2DImageChartValuesEnumerator = TCollectionEnumeratorOf<TKX2DImageChartValue>;

// --- TKX2DImageChartValues ---

class TKX2DImageChartValues : public TKX2DChartValues {
  KX_CLASS(TKX2DImageChartValues, TKX2DChartValues)

public:
  using TKX2DChartValues::TKX2DChartValues;

  // --- Properties ---
  TKX2DImageChartValue* Items(int32_t Index) const {
    return static_cast<TKX2DImageChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKX2DImageChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }

  // --- Operations ---
  // The forms of the base that take a list of numbers (image index -1). They are declared
  // here rather than brought in whole, whose one-number form would be ambiguous beside
  // the one with an image index.
  TKXChartValue* Add(std::span<const double> Values, const std::string& Caption = "",
                     TColor Color = TColor(-1)) override {
    return TKXChartValues::Add(Values, Caption, Color);
  }
  TKXChartValue* Add(std::initializer_list<double> Values, const std::string& Caption = "",
                     TColor Color = TColor(-1)) {
    return TKXChartValues::Add(Values, Caption, Color);
  }
  // Image index -1.
  TKX2DImageChartValue* Add();
  // Y = X (the argument) at the present largest X. The forms with an image index make one
  // change notice for the value and its index.
  TKX2DImageChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1),
                            int32_t ImageIndex = -1);
  TKX2DImageChartValue* Add(double X, double Y, const std::string& Caption = "",
                            TColor Color = TColor(-1), int32_t ImageIndex = -1);
  TKX2DImageChartValue* Insert(int32_t Index) {
    return static_cast<TKX2DImageChartValue*>(TKXChartValues::Insert(Index));
  }
  TKX2DImageChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKX2DImageChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKX2DImageChartValuesEnumerator GetEnumerator() const {
    return TKX2DImageChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
};

} // namespace kx
