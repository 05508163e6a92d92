#include "kxcharts/core/KXChartValues.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXLists.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXFormat.h"
#include "kxcharts/toolkit/runtime/KXMath.h"

namespace kx {

namespace {

// Equality of stored numbers for the "did it change" tests: NaN over NaN is no change.
bool SameNumber(double A, double B) {
  return A == B || (std::isnan(A) && std::isnan(B));
}

int32_t DimensionsOf(const TCollection* Collection) {
  if (!Collection || !Collection->InheritsFrom(TKXChartValues::StaticClass())) return 1;
  const auto* Values = static_cast<const TKXChartValues*>(Collection);
  return std::clamp(Values->DimensionCount(), 1, TKXChartValue::MaxDimensions);
}

const std::string& EmptyText() {
  static const std::string Empty;
  return Empty;
}

} // namespace

// --- TKXChartValue: life ---

TKXChartValue::TKXChartValue(TCollection* Collection) : TGCollectionItem(Collection) {
  FInline[0] = FInline[1] = 0.0;
  Resize(DimensionsOf(Collection));
}

TKXChartValue::~TKXChartValue() {
  if (FCount > InlineNumbers) delete[] FHeap;
}

void TKXChartValue::Resize(int32_t Count) {
  Count = std::clamp(Count, 1, MaxDimensions);
  if (Count == FCount) return;
  if (Count > InlineNumbers) {
    auto* Block = new double[static_cast<size_t>(Count)]();
    std::copy_n(Data(), std::min<int32_t>(FCount, Count), Block);
    if (FCount > InlineNumbers) delete[] FHeap;
    FHeap = Block;
  } else if (FCount > InlineNumbers) {
    double* Block = FHeap;
    std::copy_n(Block, Count, FInline);
    delete[] Block;
  } else {
    for (int32_t I = FCount; I < Count; ++I)
      FInline[I] = 0.0;
  }
  FCount = static_cast<uint16_t>(Count);
}

TKXChartValue::TExtra& TKXChartValue::Extra() {
  if (!FExtra) FExtra = std::make_unique<TExtra>();
  return *FExtra;
}

TKXChartValues* TKXChartValue::Collection() const {
  return (FBits & InValuesFlag) ? static_cast<TKXChartValues*>(inherited::Collection()) : nullptr;
}

// --- TKXChartValue: properties ---

const std::string& TKXChartValue::Caption() const {
  return FExtra ? FExtra->Caption : EmptyText();
}

TRect TKXChartValue::ScaledRect(const TRect& R) const {
  if (FScale == 1.0f) return R;
  return ScaleRect(R, std::fabs(KXRectWidth(R)) * (FScale - 1.0),
                   std::fabs(KXRectHeight(R)) * (FScale - 1.0));
}

void TKXChartValue::SetCaption(const std::string& Value) {
  if (Caption() == Value) return;
  Extra().Caption = Value;
  if (!Value.empty())
    if (TKXChartValues* C = Collection()) C->FHasCaptions = true;
  Changed(false);
}

void TKXChartValue::SetColor(TColor Value) {
  if (FColor == Value) return;
  FColor = Value;
  if (TKXChartValues* C = Collection()) C->LookChanged(this);
  Changed(false);
}

void TKXChartValue::SetScale(float Value) {
  if (!(Value > 0.0f)) Value = 0.0f;
  if (FScale == Value) return;
  FScale = Value;
  if (TKXChartValues* C = Collection()) C->LookChanged(this);
  Changed(false);
}

void TKXChartValue::SetOpacity(float Value) {
  Value = Value > 1.0f ? 1.0f : (Value > 0.0f ? Value : 0.0f);
  if (FOpacity == Value) return;
  FOpacity = Value;
  if (TKXChartValues* C = Collection()) C->LookChanged(this);
  Changed(false);
}

void TKXChartValue::SetTag(intptr_t Value) {
  if (Tag() == Value) return;
  Extra().Tag = Value;
}

void TKXChartValue::SetOption(TKXChartValueOption Index, bool Value) {
  TKXChartValueOptions O = Options();
  if (Value)
    O.Include(Index);
  else
    O.Exclude(Index);
  SetOptions(O);
}

void TKXChartValue::SetOptions(TKXChartValueOptions Value) {
  const TKXChartValueOptions Old = Options();
  if (Old == Value) return;
  FBits = static_cast<uint8_t>((FBits & InValuesFlag) | Value.Bits());
  if (Old.Contains(voVisible) != Value.Contains(voVisible)) VisibleChanged();
  if (Old.Contains(voSelected) != Value.Contains(voSelected)) SelectionChanged();
  Changed(false);
}

// --- TKXChartValue: numbers ---

void TKXChartValue::SetValue(int32_t Index, double Value) {
  if (static_cast<uint32_t>(Index) >= FCount) return;
  double& Slot = Data()[Index];
  if (SameNumber(Slot, Value)) return;
  Slot = Value;
  ValueChanged(Index);
}

int32_t TKXChartValue::GetIntValue(int32_t Index) const {
  const double V = GetValue(Index);
  if (std::isnan(V)) return 0;
  if (V >= static_cast<double>(std::numeric_limits<int32_t>::max()))
    return std::numeric_limits<int32_t>::max();
  if (V <= static_cast<double>(std::numeric_limits<int32_t>::min()))
    return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(V);
}

double TKXChartValue::GetDefValue() const {
  const TKXChartValues* C = Collection();
  return GetValue(C ? C->DefaultDimension() : 0);
}

void TKXChartValue::SetDefValue(double Value) {
  const TKXChartValues* C = Collection();
  SetValue(C ? C->DefaultDimension() : 0, Value);
}

// --- TKXChartValue: hand-over to the collection ---

void TKXChartValue::SelectionChanged() {
  if (TKXChartValues* C = Collection()) C->SelectionChanged(this);
}

void TKXChartValue::ValueChanged(int32_t Dimension) {
  if (TKXChartValues* C = Collection()) C->ValueChanged(this, Dimension);
}

void TKXChartValue::VisibleChanged() {
  if (TKXChartValues* C = Collection()) C->VisibleChanged(this);
}

void TKXChartValue::Loaded() {}

// --- TKXChartValue: text, selection, copying ---

std::string TKXChartValue::ValuesToString(const std::string& Fmt, bool Parentheses) const {
  std::string S;
  for (int32_t I = 0; I < FCount; ++I) {
    if (I > 0) S += ", ";
    S += FormatFloat(Fmt, Data()[I]);
  }
  return Parentheses ? "(" + S + ")" : S;
}

std::string TKXChartValue::GetDisplayName() const {
  std::string S = ValuesToString("0.00", true);
  if (!Caption().empty()) S = Caption() + " " + S;
  return S.empty() ? inherited::GetDisplayName() : S;
}

namespace {
bool SelectionAnswer(bool Hit, TKXChartSelectionAction Action, bool Selected) {
  if (!Hit) return false;
  return Action == saSelect || (Action == saToggle && !Selected);
}
} // namespace

bool TKXChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const TPointF P = KXPoint(GetDefValue(), SelRect.Top);
  return SelectionAnswer(PtInKXRect(FixRect(SelRect), P), Action, Selected());
}

bool TKXChartValue::Selectable(const TRectF& ValueRect, const TRectF& SelRect,
                               TKXChartSelectionAction Action) const {
  TRectF Common;
  const bool Hit = KXIntersectRect(Common, FixRect(ValueRect), FixRect(SelRect));
  return SelectionAnswer(Hit, Action, Selected());
}

bool TKXChartValue::IsColorStored() const {
  const TKXChartValues* C = Collection();
  if (!C) return false;
  const TKXCustomChart* Chart = C->Owner();
  return !Chart || Chart->Options().Contains(coValueColors);
}

void TKXChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  const auto* Src = dynamic_cast<const TKXChartValue*>(Source);
  if (!Src) {
    inherited::Assign(Source);
    return;
  }
  TKXChartValues* C = Collection();
  if (C) C->CountIn(this, -1);
  if (Src->FExtra)
    Extra() = *Src->FExtra;
  else
    FExtra.reset();
  FColor = Src->FColor;
  FScale = Src->FScale;
  FOpacity = Src->FOpacity;
  Resize(Src->FCount);
  std::copy_n(Src->Data(), FCount, Data());
  FBits = static_cast<uint8_t>((FBits & InValuesFlag) | (Src->FBits & ~InValuesFlag));
  if (C) {
    C->CountIn(this, +1);
    if (!Caption().empty()) C->FHasCaptions = true;
    C->FNeedMetaUpdate = true;
    C->TellObservers(Index());
    C->LookChanged(this);
  }
  Changed(false);
}

void TKXChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Caption", this, &TKXChartValue::Caption, &TKXChartValue::SetCaption);
  // -1 is no colour at all, so every colour is written when IsColorStored says so.
  Filer.Property("Color", this, &TKXChartValue::Color, &TKXChartValue::SetColor, TColor(-1),
                 [](TKXChartValue* V) { return V->IsColorStored(); });
  Filer.Property("Value", this, &TKXChartValue::Value,
                 static_cast<void (TKXChartValue::*)(double)>(&TKXChartValue::SetValue));
  Filer.Property("Scale", this, &TKXChartValue::Scale, &TKXChartValue::SetScale, 1.0f);
  Filer.Property("Opacity", this, &TKXChartValue::Opacity, &TKXChartValue::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &TKXChartValue::Visible, &TKXChartValue::SetVisible, true);
  Filer.Property("Tag", this, &TKXChartValue::Tag, &TKXChartValue::SetTag, intptr_t(0));
}

// --- TKXChartValues: class and life ---

const TKXChartValuesMeta* TKXChartValues::StaticClass() {
  static const TKXChartValuesMetaImpl<TKXChartValues> Meta("TKXChartValues",
                                                           TGCollection::StaticClass());
  return &Meta;
}

const TMetaClass* TKXChartValues::ClassType() const {
  return StaticClass();
}

namespace {
TCollectionItemClass CheckedValueClass(TKXChartValueClass ValueClass) {
  if (!ValueClass || !ValueClass->InheritsFrom(ClassOf<TKXChartValue>()))
    throw Exception("The values of a chart must be of a TKXChartValue class, not " +
                    (ValueClass ? std::string(ValueClass->ClassName()) : std::string("nil")));
  return ValueClass;
}
} // namespace

TKXChartValues::TKXChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TGCollection(AOwner, CheckedValueClass(ValueClass)), FChart(AOwner) {}

TKXChartValues::~TKXChartValues() = default;

void TKXChartValues::BeforeDestruction() {
  // No event for the values that go with the collection.
  FOnNotify = nullptr;
  FObservers.clear();
  inherited::BeforeDestruction();
}

// --- TKXChartValues: adding and counting ---

namespace {

// The index of the value that leaves Values when one too many arrives under its Limit: in a
// sorted collection the oldest value whose number on Dim is NaN, when it holds one besides
// the arrival; else 0. Such values have no place to be shown; were value 0 always the one to
// go, a live window fed now and then such a value would end up holding nothing else.
int32_t LimitVictim(const TKXChartValues& Values, int32_t Dim) {
  // The value that arrives stands last, its numbers still to come: it is never the one.
  const int32_t Before = Values.Count() - 2;
  if (!Values.Sorted() || Before < 0) return 0;
  const auto NaNAt = [&](int32_t I) { return std::isnan(Values.Items(I)->GetValue(Dim)); };
  if (!NaNAt(Before)) return 0;
  // They stand together at the end in the order they came: the first of them is the oldest.
  int32_t Low = 0, High = Before;
  while (Low < High) {
    const int32_t Mid = (High - Low) / 2 + Low;
    if (NaNAt(Mid))
      High = Mid;
    else
      Low = Mid + 1;
  }
  return Low;
}

} // namespace

TKXChartValue* TKXChartValues::Add() {
  return Add(static_cast<double>(Count()));
}

TKXChartValue* TKXChartValues::Add(double Value, const std::string& Caption, TColor Color) {
  return Add(std::span<const double>(&Value, 1), Caption, Color);
}

TKXChartValue* TKXChartValues::Add(std::span<const double> Values, const std::string& Caption,
                                   TColor Color) {
  TUpdateScope<TKXChartValues> Scope(this);
  auto* Item = static_cast<TKXChartValue*>(TCollection::Add());
  const size_t N = std::min(Values.size(), static_cast<size_t>(Item->FCount));
  std::copy_n(Values.data(), N, Item->Data());
  Item->SetCaption(Caption);
  if (Color != TColor(-1)) Item->SetColor(Color);
  // Also unsorted: the numbers arrived after the item was announced, and whatever
  // follows the values (the cache, an index) must hear of them.
  ValueChanged(Item, GetSortByDimension());
  return Item;
}

TColor TKXChartValues::NextValueColor() const {
  return FChart ? FChart->GetValueColor() : GetChartColor();
}

TKXChartValue* TKXChartValues::NewDeferredValue(std::span<const double> Numbers,
                                                TColor Color) const {
  auto* Value = static_cast<TKXChartValue*>(ItemClass()->Create(nullptr));
  Value->Resize(FNumDimensions);
  std::copy_n(Numbers.data(), std::min(Numbers.size(), static_cast<size_t>(Value->FCount)),
              Value->Data());
  Value->FColor = Color;
  Value->FBits |= TKXChartValue::InValuesFlag;
  return Value;
}

void TKXChartValues::CountIn(const TKXChartValue* Value, int32_t Sign) {
  if (Value->Visible()) FVisibleCount += Sign;
  if (Value->Selected()) FSelCount += Sign;
}

void TKXChartValues::Notify(TCollectionItem* Item, TCollectionNotification Action) {
  inherited::Notify(Item, Action);
  auto* Value = static_cast<TKXChartValue*>(Item);
  // The membership flag follows every move, also the silent ones.
  if (Action == cnAdded)
    Value->FBits |= TKXChartValue::InValuesFlag;
  else if (Action == cnExtracting)
    Value->FBits &= static_cast<uint8_t>(~TKXChartValue::InValuesFlag);
  // Also the silent moves: the places changed all the same.
  if (Action != cnDeleting) TellObservers(Value->Index());
  if (FDoNotNotify) return;
  switch (Action) {
  case cnAdded:
    Value->FColor = NextValueColor();
    // A value moved in from elsewhere may be hidden or selected already.
    CountIn(Value, +1);
    FNeedMetaUpdate = true;
    if (FLimit > 0 && Count() > FLimit) Delete(LimitVictim(*this, GetSortByDimension()));
    break;
  case cnExtracting:
    FNeedMetaUpdate = true;
    CountIn(Value, -1);
    break;
  case cnDeleting:
    FNeedMetaUpdate = true;
    break;
  }
  if (FOnNotify) FOnNotify(Value, Action);
}

void TKXChartValues::Update(TCollectionItem* Item) {
  if (FMovingValue) return;
  inherited::Update(Item);
  if (FChart) FChart->Changed(static_cast<TKXChartValue*>(Item));
}

void TKXChartValues::SetLimit(int32_t Value) {
  FLimit = std::max(Value, 0);
  if (FLimit != 0 && Count() > FLimit) SetCount(FLimit);
}

void TKXChartValues::SetCount(int32_t Value) {
  Value = std::max(Value, 0);
  if (Value == Count()) return;
  TUpdateScope<TKXChartValues> Scope(this);
  while (Count() < Value)
    Add();
  while (Count() > Value)
    Delete(Count() - 1);
}

void TKXChartValues::SetDateTimeAxes(TKXDimensionSet Value) {
  if (FDateTimeAxes == Value) return;
  FDateTimeAxes = Value;
  TellObservers(0);
  Changed();
}

bool TKXChartValues::GetIsDateTime() const {
  return FDateTimeAxes.Contains(0);
}

void TKXChartValues::SetIsDateTime(bool Value) {
  TKXDimensionSet S = FDateTimeAxes;
  if (Value)
    S.Include(0);
  else
    S.Exclude(0);
  SetDateTimeAxes(S);
}

void TKXChartValues::SelectAll() {
  for (int32_t I = 0; I < Count(); ++I)
    Items(I)->SetSelected(true);
}

void TKXChartValues::SelectNone() {
  for (int32_t I = 0; I < Count(); ++I)
    Items(I)->SetSelected(false);
}

// --- TKXChartValues: change paths ---

void TKXChartValues::ValueChanged(TKXChartValue* Value, int32_t Dimension) {
  FNeedMetaUpdate = true;
  if (Value->Collection() == this) TellObservers(Value->Index());
  if (FSorted && Dimension == GetSortByDimension() && Count() > 1 && Value->Collection() == this) {
    const int32_t Index = Value->Index();
    const double V = Value->GetValue(Dimension);
    const bool AfterPrevious = Index == 0 || OrderOf(Items(Index - 1)->GetValue(Dimension), V) <= 0;
    const bool BeforeNext =
        Index == Count() - 1 || OrderOf(V, Items(Index + 1)->GetValue(Dimension)) <= 0;
    if (!AfterPrevious || !BeforeNext)
      MoveValue(Value, Count() == 2 ? (Index + 1) % 2 : FindInsertPosition(Value));
  }
  if (UpdateCount() == 0) Update(Value);
}

void TKXChartValues::MoveValue(TKXChartValue* Value, int32_t NewIndex) {
  const bool Was = FMovingValue;
  FMovingValue = true;
  TFinally Restore([this, Was] { FMovingValue = Was; });
  Value->SetIndex(NewIndex);
}

void TKXChartValues::VisibleChanged(TKXChartValue* Value) {
  FVisibleCount += Value->Visible() ? 1 : -1;
  if (UpdateCount() == 0 && FChart) FChart->ValueVisibleChanged(Value);
}

void TKXChartValues::LookChanged(TKXChartValue*) {}

void TKXChartValues::ItemsMoved(int32_t From, int32_t To) {
  inherited::ItemsMoved(From, To);
  TellObservers(From);
}

void TKXChartValues::AddObserver(IChartValuesObserver* Observer) {
  if (Observer && std::find(FObservers.begin(), FObservers.end(), Observer) == FObservers.end())
    FObservers.push_back(Observer);
}

void TKXChartValues::RemoveObserver(IChartValuesObserver* Observer) {
  std::erase(FObservers, Observer);
}

void TKXChartValues::TellObservers(int32_t Index) {
  for (IChartValuesObserver* O : FObservers)
    O->ValuesChanged(this, Index);
}

void TKXChartValues::SelectionChanged(TKXChartValue* Value) {
  FSelCount += Value->Selected() ? 1 : -1;
  if (UpdateCount() == 0 && FChart) FChart->ValueSelectionChanged(Value);
}

// --- TKXChartValues: sort order ---

int32_t TKXChartValues::OrderOf(double A, double B) const {
  const bool NanA = std::isnan(A), NanB = std::isnan(B);
  if (NanA || NanB) return NanA == NanB ? 0 : (NanA ? 1 : -1);
  if (A == B) return 0;
  return (A < B) == (FSortOrder == soAscending) ? -1 : 1;
}

// The value stays where it is and the search skips its index, which is what lifting it
// out and putting it back would give, without renumbering the collection twice or giving
// the value a new ID.
int32_t TKXChartValues::FindInsertPosition(const TKXChartValue* Value) const {
  const int32_t Own = Value->Index();
  const int32_t Dim = GetSortByDimension();
  const double V = Value->GetValue(Dim);
  const auto NumberAt = [&](int32_t I) { return Items(I >= Own ? I + 1 : I)->GetValue(Dim); };
  int32_t Low = 0, High = Count() - 2;
  while (Low <= High) {
    const int32_t Mid = (High - Low) / 2 + Low;
    const int32_t Order = OrderOf(NumberAt(Mid), V);
    if (Order == 0) return Mid;
    if (Order > 0)
      High = Mid - 1;
    else
      Low = Mid + 1;
  }
  return Low;
}

int32_t TKXChartValues::FindClosest(double Value) const {
  if (!FSorted || Count() == 0) return -1;
  const int32_t Dim = GetSortByDimension();
  int32_t Low = 0, High = Count() - 1;
  while (Low <= High) {
    const int32_t Mid = (High - Low) / 2 + Low;
    const int32_t Order = OrderOf(Items(Mid)->GetValue(Dim), Value);
    if (Order == 0) return Mid;
    if (Order > 0)
      High = Mid - 1;
    else
      Low = Mid + 1;
  }
  return Low == Count() ? Count() - 1 : Low;
}

int32_t TKXChartValues::IndexOf(double Value, int32_t Dimension) const {
  if (FSorted && Dimension == GetSortByDimension()) return FindClosest(Value);
  const bool Nan = std::isnan(Value);
  for (int32_t I = 0; I < Count(); ++I) {
    const double N = Items(I)->GetValue(Dimension);
    if (Nan ? std::isnan(N) : SameValue(N, Value, 0)) return I;
  }
  return -1;
}

int32_t TKXChartValues::GetSortByDimension() const {
  return FSortByDimension;
}

void TKXChartValues::SetSortByDimension(int32_t Value) {
  if (Value == GetSortByDimension()) return;
  FSortByDimension = std::clamp(Value, 0, std::max(FNumDimensions - 1, 0));
  if (FSorted) {
    // Sort stops at a collection marked sorted; the mark stays whatever happens.
    FSorted = false;
    TFinally Resorted([this] { FSorted = true; });
    Sort();
  }
  Changed();
}

int32_t CompareChartValues(TKXChartValues* Values, int32_t Index1, int32_t Index2) {
  const int32_t Dim = Values->SortByDimension();
  const double A = Values->Items(Index1)->GetValue(Dim);
  const double B = Values->Items(Index2)->GetValue(Dim);
  const bool NanA = std::isnan(A), NanB = std::isnan(B);
  if (NanA || NanB) return NanA == NanB ? 0 : (NanA ? 1 : -1);
  int32_t R = 0;
  if (A < B - 0.0001)
    R = -1;
  else if (A > B + 0.0001)
    R = 1;
  // Sort leaves the order that sorted inserts and searches expect.
  return Values->SortOrder() == soDescending ? -R : R;
}

void TKXChartValues::Sort() {
  CustomSort(&CompareChartValues);
}

void TKXChartValues::CustomSort(TValuesSortCompare SCompare) {
  if (FSorted || Count() <= 1) return;
  TUpdateScope<TKXChartValues> Scope(this);
  QuickSort(0, Count() - 1, SCompare);
  FSorted = true;
  FNeedMetaUpdate = true;
}

// The partition is the class's own; only the order in which the two parts are finished
// differs: the smaller one recursively, the larger one in the loop, so that the depth
// stays logarithmic. The parts are disjoint, so the result is the same.
void TKXChartValues::QuickSort(int32_t L, int32_t R, TValuesSortCompare SCompare) {
  while (L < R) {
    int32_t I = L, J = R;
    int32_t P = L + (R - L) / 2;
    do {
      while (SCompare(this, I, P) < 0)
        ++I;
      while (SCompare(this, J, P) > 0)
        --J;
      if (I <= J) {
        if (I != J) {
          ExchangeItems(I, J);
          if (P == I)
            P = J;
          else if (P == J)
            P = I;
        }
        ++I;
        --J;
      }
    } while (I <= J);
    if (J - L < R - I) {
      if (L < J) QuickSort(L, J, SCompare);
      L = I;
    } else {
      if (I < R) QuickSort(I, R, SCompare);
      R = J;
    }
  }
}

// --- TKXChartValues: metadata ---

void TKXChartValues::EnsureMetaData() const {
  // The cache is the collection's own business: a reader through a const pointer still
  // gets numbers that are up to date.
  if (FNeedMetaUpdate) const_cast<TKXChartValues*>(this)->CalculateMetaData();
}

double TKXChartValues::MaxValue(int32_t Dimension) const {
  double Lo, Hi;
  if (FNeedMetaUpdate && GetIndexedExtent(Dimension, Lo, Hi)) return Hi;
  EnsureMetaData();
  return static_cast<size_t>(Dimension) < FMaxValue.size() ? FMaxValue[Dimension] : 0.0;
}

double TKXChartValues::MinValue(int32_t Dimension) const {
  double Lo, Hi;
  if (FNeedMetaUpdate && GetIndexedExtent(Dimension, Lo, Hi)) return Lo;
  EnsureMetaData();
  return static_cast<size_t>(Dimension) < FMinValue.size() ? FMinValue[Dimension] : 0.0;
}

double TKXChartValues::Sum(int32_t Dimension) const {
  EnsureMetaData();
  return static_cast<size_t>(Dimension) < FSum.size() ? FSum[Dimension] : 0.0;
}

double TKXChartValues::AbsSum(int32_t Dimension) const {
  EnsureMetaData();
  return static_cast<size_t>(Dimension) < FAbsSum.size() ? FAbsSum[Dimension] : 0.0;
}

void TKXChartValues::CalculateMetaData() {
  const size_t Dims = static_cast<size_t>(std::max(FNumDimensions, 0));
  FSum.assign(Dims, 0.0);
  FAbsSum.assign(Dims, 0.0);
  FMinValue.assign(Dims, 0.0);
  FMaxValue.assign(Dims, 0.0);
  FNeedMetaUpdate = false;
  // Per dimension: whether a finite extent has been taken as the first minimum and
  // maximum. NaN and the infinities never enter the cache.
  std::vector<bool> Seen(Dims, false);
  for (int32_t I = 0; I < Count(); ++I) {
    const TKXChartValue* V = Items(I);
    for (int32_t D = 0; D < static_cast<int32_t>(Dims); ++D) {
      const double Lo = GetValueDimMinimum(V, D);
      const double Hi = GetValueDimMaximum(V, D);
      if (std::isfinite(Lo) && std::isfinite(Hi)) {
        if (!Seen[D]) {
          SetMetaData({mdMinimum, mdMaximum}, V, D);
          Seen[D] = true;
        } else if (Lo < FMinValue[D]) {
          SetMetaData({mdMinimum}, V, D);
        } else if (Hi > FMaxValue[D]) {
          SetMetaData({mdMaximum}, V, D);
        }
      }
      if (std::isfinite(V->GetValue(D))) SetMetaData({mdSum, mdAbsSum}, V, D);
    }
  }
}

bool TKXChartValues::GetIndexedExtent(int32_t, double&, double&) const {
  return false;
}

double TKXChartValues::GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const {
  return Value->GetValue(Dimension);
}

double TKXChartValues::GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const {
  return Value->GetValue(Dimension);
}

void TKXChartValues::SetMetaData(TValueMetaData Data, const TKXChartValue* Value,
                                 int32_t Dimension) {
  const size_t D = static_cast<size_t>(Dimension);
  if (D >= FSum.size()) return;
  const double N = Value->GetValue(Dimension);
  if (Data.Contains(mdMinimum)) FMinValue[D] = N;
  if (Data.Contains(mdMaximum)) FMaxValue[D] = N;
  if (Data.Contains(mdSum)) FSum[D] += N;
  if (Data.Contains(mdAbsSum)) FAbsSum[D] += std::fabs(N);
}

double TKXChartValues::GetAxisMaximum(int32_t Dimension) const {
  if (Dimension < 0 || Dimension >= FNumDimensions) return Count() - 1;
  if (FChart && FChart->GroupStyle() == gsStacked100) return 100.0;
  return MaxValue(Dimension);
}

double TKXChartValues::GetAxisMinimum(int32_t Dimension) const {
  if (Dimension < 0 || Dimension >= FNumDimensions) return 0.0;
  if (FChart && FChart->GroupStyle() == gsStacked100) return 0.0;
  return MinValue(Dimension);
}

// --- TKXChartValues: copying ---

TOwned<TKXChartValues> TKXChartValues::Clone() const {
  const auto* Meta = static_cast<const TKXChartValuesMeta*>(ClassType());
  TOwned<TKXChartValues> Copy(Meta->Create(FChart, ItemClass()));
  Copy->Assign(this);
  return Copy;
}

void TKXChartValues::Append(const TKXChartValues* Source) {
  if (!Source) return;
  TUpdateScope<TKXChartValues> Scope(this);
  // A collection appended to itself copies what it held at the start.
  const int32_t N = Source->Count();
  for (int32_t I = 0; I < N; ++I)
    Add()->Assign(Source->Items(I));
}

void TKXChartValues::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXChartValues*>(Source)) {
    FDateTimeAxes = Src->FDateTimeAxes;
    FSorted = Src->FSorted;
    FLimit = Src->FLimit;
    FSortOrder = Src->FSortOrder;
    FNeedMetaUpdate = Src->FNeedMetaUpdate;
    FAbsSum = Src->FAbsSum;
    FMinValue = Src->FMinValue;
    FMaxValue = Src->FMaxValue;
    FSum = Src->FSum;
  }
  inherited::Assign(Source);
}

void TKXChartValues::AssignTo(TPersistent* Dest) const {
  if (auto* Strings = dynamic_cast<TStrings*>(Dest)) {
    TUpdateScope<TStrings> Scope(Strings);
    Strings->Clear();
    for (int32_t I = 0; I < Count(); ++I)
      Strings->AddObject(Items(I)->DisplayName(), Items(I));
    return;
  }
  inherited::AssignTo(Dest);
}

void TKXChartValues::Loaded() {
  for (int32_t I = 0; I < Count(); ++I)
    Items(I)->Loaded();
}

void TKXChartValues::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Limit", this, &TKXChartValues::Limit, &TKXChartValues::SetLimit, 0);
  Filer.Property("Sorted", this, &TKXChartValues::Sorted, &TKXChartValues::SetSorted, false);
  Filer.Property("SortOrder", this, &TKXChartValues::SortOrder, &TKXChartValues::SetSortOrder,
                 soAscending);
}

} // namespace kx
