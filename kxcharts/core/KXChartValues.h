#pragma once
// The data of a chart: TKXChartValue (one point, a small fixed vector of numbers with a
// caption, a colour, a scale, an opacity and two flags) and TKXChartValues (the chart's
// collection of them: optionally sorted on one dimension, kept to a limit, with lazy
// per-dimension minimum, maximum, sum and absolute sum, and counts of the visible and the
// selected values). Every change of a value travels through the collection to the chart
// that owns it.
//
// Numbers that are not numbers. NaN and the infinities are stored as given. The cached
// metadata skips them (a dimension with no finite number reports zeros). A sorted
// collection keeps its NaNs together at the end, in either sort order, and orders the
// infinities like any other number; FindClosest, IndexOf and Sort treat NaN the same way.
// Two NaNs count as equal, so setting NaN over NaN is no change.

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/chartkit/KXCommon.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKXCustomChart;
class TKXChartValues;
class TStrings;

// --- Enumerations ---

enum TKXChartValueOption : uint8_t { voVisible, voSelected };
KX_ENUM_NAMES(TKXChartValueOption, "voVisible", "voSelected")
using TKXChartValueOptions = TSet<TKXChartValueOption>;

enum TValueMetaDatum : uint8_t { mdMinimum, mdMaximum, mdSum, mdAbsSum };
KX_ENUM_NAMES(TValueMetaDatum, "mdMinimum", "mdMaximum", "mdSum", "mdAbsSum")
using TValueMetaData = TSet<TValueMetaDatum>;

enum TSortOrder : uint8_t { soAscending, soDescending };
KX_ENUM_NAMES(TSortOrder, "soAscending", "soDescending")

enum TXY : uint8_t { xyX, xyY };
KX_ENUM_NAMES(TXY, "xyX", "xyY")
using TXYSet = TSet<TXY>;

enum TXYZ : uint8_t { xyzX, xyzY, xyzZ };
KX_ENUM_NAMES(TXYZ, "xyzX", "xyzY", "xyzZ")
using TXYZSet = TSet<TXYZ>;

enum TKXChartSelectionAction : uint8_t { saSelect, saUnselect, saToggle };
KX_ENUM_NAMES(TKXChartSelectionAction, "saSelect", "saUnselect", "saToggle")

// Dimensions 0 to 7 of a collection (the ones that hold dates, say).
using TKXDimensionSet = TSet<uint8_t, 8>;

// Numbers of any length (metadata per dimension, the numbers handed to Add).
using TKXChartValueTypeArray = std::vector<double>;

// --- Types ---

class TKXChartValue;
// Class references: the value family has the collection item shape, the collections
// their own (owner chart, value class).
using TKXChartValueClass = TCollectionItemClass;
class TKXChartValuesMeta;
using TKXChartValuesClass = const TKXChartValuesMeta*;

using TKXChartValueNotifyEvent =
    std::function<void(TKXChartValue* Item, TCollectionNotification Action)>;
// Negative, zero or positive as the value at Index1 comes before, with or after the one
// at Index2.
using TValuesSortCompare = int32_t (*)(TKXChartValues* Values, int32_t Index1, int32_t Index2);

// --- IChartValuesObserver ---

// What keeps data of its own by the index of the values it derives from (a chart function
// that recalculates only what changed) registers one with the collection. Unlike the
// chart's listeners, an observer hears every change by index, also inside BeginUpdate and
// EndUpdate of the collection or the chart, so that after a batch it knows where the
// values began to differ.
class IChartValuesObserver {
public:
  virtual ~IChartValuesObserver() = default;
  // The values from Index on may not be what they were: a number of the value at Index
  // changed or was copied in, a value came or went at Index, the values from Index on
  // moved, or (Index 0) a setting of the collection that tells how to read them changed.
  // Told while the change happens: the observer must not change the values.
  virtual void ValuesChanged(TKXChartValues* Values, int32_t Index) = 0;
};

// --- TKXChartValue ---

class TKXChartValue : public TGCollectionItem {
  KX_CLASS(TKXChartValue, TGCollectionItem)

public:
  // The most numbers a value holds.
  static constexpr int32_t MaxDimensions = 0xFFFF;

private:
  // A million values must stay small (72 bytes of object here): caption and tag, rarely
  // set in bulk data, share one block made on first use; two numbers live inline.
  struct TExtra {
    std::string Caption;
    intptr_t Tag = 0;
  };
  static constexpr int32_t InlineNumbers = 2;
  // Set while the value sits in a TKXChartValues (kept by that collection's Notify), so
  // that Collection() narrows without a dynamic cast.
  static constexpr uint8_t InValuesFlag = 0x80;

  std::unique_ptr<TExtra> FExtra;
  union {
    double FInline[InlineNumbers];
    double* FHeap;
  };
  TColor FColor = clBlack;
  float FOpacity = 1.0f;
  float FScale = 1.0f;
  uint16_t FCount = 1;
  // TKXChartValueOptions in the low bits, InValuesFlag in the top bit.
  uint8_t FBits = 1u << voVisible;

public:
  // The value has as many numbers as the collection has dimensions, or one when the
  // collection is not a TKXChartValues; they start at 0.
  explicit TKXChartValue(TCollection* Collection);
  ~TKXChartValue() override;

  // --- Properties ---
  const std::string& Caption() const;
  void SetCaption(const std::string& Value);
  TColor Color() const { return FColor; }
  virtual void SetColor(TColor Value);
  // The number of the collection's default dimension (dimension 0 without a collection).
  double Value() const { return GetDefValue(); }
  void SetValue(double Value) { SetDefValue(Value); }
  TDateTime AsDateTime() const { return GetAsDateTime(0); }
  void SetAsDateTime(TDateTime Value) { SetAsDateTime(0, Value); }
  float Scale() const { return FScale; }
  // R grown about its middle by Scale (an inverted R as it stands); R itself at Scale 1.
  TRect ScaledRect(const TRect& R) const;
  // Negative numbers (and NaN) are stored as 0.
  void SetScale(float Value);
  float Opacity() const { return FOpacity; }
  // Clamped to 0..1 (NaN becomes 0).
  void SetOpacity(float Value);
  bool Visible() const { return GetOption(voVisible); }
  void SetVisible(bool Value) { SetOption(voVisible, Value); }
  bool Selected() const { return GetOption(voSelected); }
  void SetSelected(bool Value) { SetOption(voSelected, Value); }
  intptr_t Tag() const { return FExtra ? FExtra->Tag : 0; }
  void SetTag(intptr_t Value);
  TKXChartValueOptions Options() const {
    return TKXChartValueOptions::FromBits(FBits & ~InValuesFlag);
  }
  void SetOptions(TKXChartValueOptions Value);
  int32_t ValueCount() const { return FCount; }
  // The collection, when it is a TKXChartValues; else nil.
  TKXChartValues* Collection() const;
  // All numbers, in dimension order.
  std::span<const double> Numbers() const { return {Data(), FCount}; }

  // --- Operations ---
  // The number of dimension Index (0 outside 0..ValueCount-1).
  double GetValue(int32_t Index) const {
    return static_cast<uint32_t>(Index) < FCount ? Data()[Index] : 0.0;
  }
  // Stores the number and calls ValueChanged(Index) when it differs (two NaNs do not).
  // An Index outside 0..ValueCount-1 is ignored.
  void SetValue(int32_t Index, double Value);
  TDateTime GetAsDateTime(int32_t Index) const { return GetValue(Index); }
  void SetAsDateTime(int32_t Index, TDateTime Value) { SetValue(Index, Value); }
  // Truncated toward zero, saturating at the limits of 32 bits; NaN reads 0.
  int32_t GetIntValue(int32_t Index) const;
  void SetIntValue(int32_t Index, int32_t Value) { SetValue(Index, static_cast<double>(Value)); }
  bool GetOption(TKXChartValueOption Index) const { return Options().Contains(Index); }
  void SetOption(TKXChartValueOption Index, bool Value);

  // The numbers formatted by Fmt (FormatFloat), joined by ", ", in parentheses when asked.
  virtual std::string ValuesToString(const std::string& Fmt, bool Parentheses) const;
  // Whether a selection by the rectangle SelRect (axis units) with Action takes this value.
  // This level tests the point (Value, SelRect.Top), a one-dimensional test; descendants
  // test their own point. A miss answers false; a hit answers true for saSelect, true for
  // saToggle when the value is not selected now, false otherwise.
  virtual bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const;
  // The twin for values that cover a rectangle: a hit when the rectangles intersect.
  virtual bool Selectable(const TRectF& ValueRect, const TRectF& SelRect,
                          TKXChartSelectionAction Action) const;
  // Whether Color is streamed: in a collection that has no chart, or whose chart paints
  // values in their own colours (coValueColors).
  bool IsColorStored() const;

  // Called by the collection after it was read; this level does nothing.
  void Loaded() override;
  // From another TKXChartValue: caption, colour, scale, opacity, all numbers, options and
  // tag, then one Changed(false). The collection's visible and selected counts follow the
  // copied options; a copied caption counts for HasCaptions.
  void Assign(const TPersistent* Source) override;

protected:
  // The default number: dimension DefaultDimension of the collection, dimension 0 without
  // one. Descendants that default to another dimension without a collection override
  // both.
  virtual double GetDefValue() const;
  virtual void SetDefValue(double Value);
  // Hand over to the like-named operation of the collection; nothing without one.
  virtual void SelectionChanged();
  virtual void ValueChanged(int32_t Dimension);
  virtual void VisibleChanged();
  // "(1.00, 2.00)", with a non-empty caption in front; the class name if that is empty.
  std::string GetDisplayName() const override;
  // Caption, Color (when IsColorStored), Value, Scale, Opacity, Visible, Tag.
  void DefineProperties(TFiler& Filer) override;
  // Gives the value Count numbers (clamped to 1..MaxDimensions), keeping those it has and
  // zeroing new ones: for a descendant that has more numbers than the collection it is
  // made in gives it.
  void Resize(int32_t Count);
  // Writes the number of dimension Index without any notice: for a descendant that keeps
  // its numbers in an order (low below high) and drags one along with another, telling
  // once for the number that was set. An Index outside 0..ValueCount-1 is ignored.
  void StoreValue(int32_t Index, double Value) {
    if (static_cast<uint32_t>(Index) < FCount) Data()[Index] = Value;
  }

private:
  friend class TKXChartValues;
  double* Data() { return FCount <= InlineNumbers ? FInline : FHeap; }
  const double* Data() const { return FCount <= InlineNumbers ? FInline : FHeap; }
  TExtra& Extra();
};

// --- Metaclass of the collections ---

// The virtual constructor of the collections takes the owner chart and the value class.
class TKXChartValuesMeta : public TMetaClass {
public:
  using TMetaClass::TMetaClass;
  virtual TKXChartValues* Create(TKXCustomChart* AOwner, TKXChartValueClass ValueClass) const = 0;
};

template <class T> class TKXChartValuesMetaImpl final : public TKXChartValuesMeta {
public:
  using TKXChartValuesMeta::TKXChartValuesMeta;
  bool IsAbstract() const override { return !Constructible; }
  TKXChartValues* Create(TKXCustomChart* AOwner, TKXChartValueClass ValueClass) const override {
    if constexpr (Constructible)
      return New<T>(AOwner, ValueClass);
    else
      throw Exception("Cannot create an instance of the abstract class " +
                      std::string(ClassName()));
  }

private:
  static constexpr bool Constructible =
      !std::is_abstract_v<T> && std::is_constructible_v<T, TKXCustomChart*, TKXChartValueClass>;
};

// The typed walk over a collection of values.
using TKXChartValuesEnumerator = TCollectionEnumeratorOf<TKXChartValue>;

// --- TKXChartValues ---

class TKXChartValues : public TGCollection {
public:
  using inherited = TGCollection;
  template <class T> using MetaImplOf = TKXChartValuesMetaImpl<T>;
  static const TKXChartValuesMeta* StaticClass();
  const TMetaClass* ClassType() const override;

protected:
  int32_t FLimit = 0;
  TSortOrder FSortOrder = soAscending;
  int32_t FSortByDimension = 0;
  // Numbers in each value. A descendant's constructor sets it (with FDefaultDimension and
  // FTimeDimension) before any value is added.
  int32_t FNumDimensions = 1;
  bool FNeedMetaUpdate = true;
  bool FDoNotNotify = false;
  bool FHasCaptions = false;
  bool FSorted = false;
  TKXDimensionSet FDateTimeAxes;
  int32_t FVisibleCount = 0;
  int32_t FSelCount = 0;
  TKXChartValueNotifyEvent FOnNotify;
  TKXChartValueTypeArray FAbsSum;
  TKXChartValueTypeArray FMinValue;
  TKXChartValueTypeArray FMaxValue;
  TKXChartValueTypeArray FSum;
  int32_t FDefaultDimension = 0;
  int32_t FTimeDimension = -1;

private:
  TKXCustomChart* FChart;
  // Set while a re-sort moves a value, so that the move itself is not told: the change
  // that caused it is told once, with the value.
  bool FMovingValue = false;
  // Not owned; an observer that goes removes itself.
  std::vector<IChartValuesObserver*> FObservers;

public:
  // Raises Exception when ValueClass is not a TKXChartValue class.
  TKXChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);
  ~TKXChartValues() override;

  // --- Properties ---
  TKXChartValue* Items(int32_t Index) const {
    return static_cast<TKXChartValue*>(TCollection::Items(Index));
  }
  void SetItem(int32_t Index, const TKXChartValue* Value) { TCollection::SetItem(Index, Value); }
  // The chart, or nil.
  TKXCustomChart* Owner() const { return FChart; }
  int32_t Limit() const { return FLimit; }
  // 0 (no limit) for a negative number. A lower limit deletes the newest values.
  void SetLimit(int32_t Value);
  bool Sorted() const { return FSorted; }
  // Only stores the flag: what is there is not reordered (Sort does that).
  void SetSorted(bool Value) { FSorted = Value; }
  TSortOrder SortOrder() const { return FSortOrder; }
  void SetSortOrder(TSortOrder Value) { FSortOrder = Value; }
  int32_t SortByDimension() const { return GetSortByDimension(); }
  // Clamped to 0..DimensionCount-1; re-sorts a sorted collection on the new dimension.
  void SetSortByDimension(int32_t Value);
  int32_t SelCount() const { return FSelCount; }
  int32_t VisibleCount() const { return FVisibleCount; }
  int32_t DimensionCount() const { return FNumDimensions; }
  int32_t TimeDimension() const { return FTimeDimension; }
  int32_t DefaultDimension() const { return FDefaultDimension; }
  // Whether a value ever got a non-empty caption through its Caption property.
  bool HasCaptions() const { return FHasCaptions; }
  // Whether dimension 0 holds dates; a change of it is a change of the collection.
  bool IsDateTime() const { return GetIsDateTime(); }
  virtual void SetIsDateTime(bool Value);
  TKXDimensionSet DateTimeAxes() const { return FDateTimeAxes; }
  void SetDateTimeAxes(TKXDimensionSet Value);

  // Metadata of dimension 0, worked out on first read after a change.
  double MaxValue() const { return MaxValue(0); }
  double MinValue() const { return MinValue(0); }
  double Sum() const { return Sum(0); }
  double AbsSum() const { return AbsSum(0); }
  // The same for any dimension; 0 outside 0..DimensionCount-1.
  double MaxValue(int32_t Dimension) const;
  double MinValue(int32_t Dimension) const;
  double Sum(int32_t Dimension) const;
  double AbsSum(int32_t Dimension) const;

  // --- Events ---
  // Raised last for every cnAdded, cnExtracting and cnDeleting of a value (not while a
  // value is lifted out and put back by a sorted insert).
  const TKXChartValueNotifyEvent& OnNotify() const { return FOnNotify; }
  void SetOnNotify(TKXChartValueNotifyEvent Value) { FOnNotify = std::move(Value); }

  // --- Operations ---
  // A value with the number Count (before the add) in dimension 0.
  TKXChartValue* Add();
  TKXChartValue* Add(double Value, const std::string& Caption = "", TColor Color = TColor(-1));
  // The numbers go to dimensions 0, 1, ... (extra numbers are ignored, missing ones stay
  // 0); a Color of -1 keeps the colour the palette gave. A sorted collection moves the new
  // value into place. One change notice in all.
  virtual TKXChartValue* Add(std::span<const double> Values, const std::string& Caption = "",
                             TColor Color = TColor(-1));
  TKXChartValue* Add(std::initializer_list<double> Values, const std::string& Caption = "",
                     TColor Color = TColor(-1)) {
    return Add(std::span<const double>(Values.begin(), Values.size()), Caption, Color);
  }
  TKXChartValue* Insert(int32_t Index) {
    return static_cast<TKXChartValue*>(TCollection::Insert(Index));
  }
  TKXChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXChartValue*>(TCollection::FindItemID(ID));
  }
  TKXChartValuesEnumerator GetEnumerator() const { return TKXChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

  // A new collection of this class, owner and value class, with this one assigned to it.
  TOwned<TKXChartValues> Clone() const;
  // Adds a copy of every value of Source, in one bracket.
  void Append(const TKXChartValues* Source);
  // Sets Selected of every value, visible or not.
  void SelectAll();
  void SelectNone();
  // The range an axis showing Dimension must cover: 0..100 in a chart stacked to 100 %,
  // else the minimum and maximum of the dimension. A dimension the values do not have
  // counts the values: 0 and Count - 1.
  virtual double GetAxisMaximum(int32_t Dimension) const;
  virtual double GetAxisMinimum(int32_t Dimension) const;
  // The position of the first value at or past Value in sort order (not the nearest one);
  // Count - 1 when all lie before it; -1 unsorted or empty.
  int32_t FindClosest(double Value) const;
  // On the sort dimension of a sorted collection, FindClosest; else the first value whose
  // number is SameValue as Value (a NaN finds a NaN), or -1.
  int32_t IndexOf(double Value, int32_t Dimension) const;
  // Sorts by CompareChartValues, unless the collection is marked sorted already.
  void Sort();
  // Sorts by SCompare with the class's quicksort, in one bracket, and marks the collection
  // sorted; nothing when it is marked sorted already or holds one value or none.
  virtual void CustomSort(TValuesSortCompare SCompare);
  // The values' Loaded, in index order.
  void Loaded() override;

  // From another TKXChartValues: its sort settings, limit, date dimensions and metadata,
  // then a copy of each value.
  void Assign(const TPersistent* Source) override;
  // Frees the values without raising OnNotify for them.
  void BeforeDestruction() override;

  // Called by the values: a number, the visibility or the selection of Value changed.
  // ValueChanged keeps the sort order (two comparisons when the value stays in place, a
  // binary search and one move otherwise) and tells the chart unless inside a bracket;
  // the other two keep the counts and tell the chart unless inside a bracket.
  virtual void ValueChanged(TKXChartValue* Value, int32_t Dimension);
  virtual void VisibleChanged(TKXChartValue* Value);
  virtual void SelectionChanged(TKXChartValue* Value);
  // Called by a value whose colour, scale or opacity changed, or that was assigned, also
  // inside a bracket (where no Update reaches the collection); this level does nothing.
  virtual void LookChanged(TKXChartValue* Value);

  // Adds Observer unless it is there. The collection does not own it.
  void AddObserver(IChartValuesObserver* Observer);
  void RemoveObserver(IChartValuesObserver* Observer);

protected:
  // Fills the four metadata arrays from all values, visible or not, through
  // GetValueDimMinimum, GetValueDimMaximum and SetMetaData. Descendants with metadata of
  // their own call the inherited one and add theirs.
  virtual void CalculateMetaData();
  virtual bool GetIsDateTime() const;
  // The dimension the collection sorts on; bar values answer another.
  virtual int32_t GetSortByDimension() const;
  // The upper and lower extent of Value in Dimension; this level answers the number.
  // Values that cover a range override them together with SetMetaData.
  virtual double GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const;
  virtual double GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const;
  // Takes Value into the cached metadata of Dimension: mdMinimum and mdMaximum store the
  // extent, mdSum adds the number, mdAbsSum its magnitude.
  virtual void SetMetaData(TValueMetaData Data, const TKXChartValue* Value, int32_t Dimension);
  // The lowest and highest finite number of Dimension (both 0 when there is none) from an
  // index the collection keeps up to date as values change, so that asking for an extent
  // after each append or sliding-window step costs no pass over all values. False when the
  // collection keeps no such index for Dimension: the cached pass answers then. A
  // descendant whose extents are not its plain numbers answers false.
  virtual bool GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const;
  // Grows by Add, shrinks by deleting the newest values, in one bracket.
  void SetCount(int32_t Value);
  // The class's quicksort over L..R.
  void QuickSort(int32_t L, int32_t R, TValuesSortCompare SCompare);
  // -1, 0, 1 as A comes before, with or after B in the sort order, NaN last.
  int32_t OrderOf(double A, double B) const;
  // The colour the palette gives the next new value (the chart's, or the default list
  // without a chart); advances ColorListIndex.
  TColor NextValueColor() const;
  // A value for a deferred item (see TCollection::AddDeferred): of the item class, outside
  // any collection, with Numbers in its first dimensions (the others 0) and Color, and
  // marked as one of this collection's values. Nothing is told and no palette step is taken.
  TKXChartValue* NewDeferredValue(std::span<const double> Numbers, TColor Color) const;
  // Tells the observers that the values from Index on may not be what they were.
  void TellObservers(int32_t Index);

  void AssignTo(TPersistent* Dest) const override;
  void Notify(TCollectionItem* Item, TCollectionNotification Action) override;
  void Update(TCollectionItem* Item) override;
  void ItemsMoved(int32_t From, int32_t To) override;
  // Limit, Sorted, SortOrder.
  void DefineProperties(TFiler& Filer) override;

private:
  friend class TKXChartValue;
  // Where Value (lifted out of its place) belongs in sort order.
  int32_t FindInsertPosition(const TKXChartValue* Value) const;
  void EnsureMetaData() const;
  void MoveValue(TKXChartValue* Value, int32_t NewIndex);
  void CountIn(const TKXChartValue* Value, int32_t Sign);
};

// The comparison Sort uses: the numbers on the sort dimension, equal within 0.0001, in
// the collection's sort order, NaN after every number.
int32_t CompareChartValues(TKXChartValues* Values, int32_t Index1, int32_t Index2);

} // namespace kx
