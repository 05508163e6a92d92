#include "kxcharts/charts/KXXYChartValues.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

#include "kxcharts/charts/KXValueSummary_p.h"

#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- Values added in bulk ---

// What a run of AddValues keeps until its values are made: their numbers, and their colours,
// one each or (in the order they came) by the palette's period of 10. X that steps evenly
// (sample numbers, regular times) is kept as its start and step.
struct TKXDeferredRun {
  size_t FirstKey = 0;
  size_t Count = 0;
  double X0 = 0, XStep = 1; // X of the value at offset K is X0 + K * XStep ...
  std::vector<double> X;    // ... unless it has one of its own here
  std::vector<double> Y;
  std::array<TColor, 10> Palette{}; // the value at offset K has Palette[K % 10] ...
  std::vector<TColor> Colors;       // ... unless it has a colour of its own here

  double XAt(size_t Offset) const { return X.empty() ? X0 + double(Offset) * XStep : X[Offset]; }
  // Keeps X[From..] as a start and a step when each number is exactly what they give.
  void TakeX(std::span<const double> All, size_t From) {
    const std::span<const double> Own = All.subspan(From);
    X0 = Own[0];
    XStep = Own.size() > 1 ? Own[1] - Own[0] : 1.0;
    for (size_t K = 0; K < Own.size(); ++K)
      if (!(XAt(K) == Own[K])) {
        X.assign(Own.begin(), Own.end());
        return;
      }
  }
  TColor ColorAt(size_t Offset) const {
    return Colors.empty() ? Palette[Offset % Palette.size()] : Colors[Offset];
  }
};

class TKXDeferredXY {
public:
  std::vector<TKXDeferredRun> Runs; // by FirstKey

  // The run holding Key and the offset of Key in it.
  const TKXDeferredRun& Find(size_t Key, size_t& Offset) const {
    const auto It =
        std::upper_bound(Runs.begin(), Runs.end(), Key,
                         [](size_t K, const TKXDeferredRun& R) { return K < R.FirstKey; });
    const TKXDeferredRun& Run = *std::prev(It);
    Offset = Key - Run.FirstKey;
    return Run;
  }
};

namespace {

bool IsValuesCollection(const TCollection* Collection) {
  return Collection && Collection->InheritsFrom(TKXChartValues::StaticClass());
}

// The collection of Value narrowed to C, or nil when it is of another kind.
template <class C> C* CollectionAs(const TKXChartValue* Value) {
  TKXChartValues* Values = Value->TKXChartValue::Collection();
  return Values && Values->InheritsFrom(C::StaticClass()) ? static_cast<C*>(Values) : nullptr;
}

} // namespace

// --- TKX2DChartValue ---

TKX2DChartValue::TKX2DChartValue(TCollection* Collection) : TKXChartValue(Collection) {
  if (!IsValuesCollection(Collection)) Resize(2);
}

TKX2DChartValues* TKX2DChartValue::Collection() const {
  return CollectionAs<TKX2DChartValues>(this);
}

double TKX2DChartValue::GetDefValue() const {
  return TKXChartValue::Collection() ? inherited::GetDefValue() : GetValue(1);
}

void TKX2DChartValue::SetDefValue(double Value) {
  if (TKXChartValue::Collection())
    inherited::SetDefValue(Value);
  else
    TKXChartValue::SetValue(1, Value);
}

bool TKX2DChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  // A rectangle of no size at the point meets SelRect exactly when the point lies in it.
  const TRectF Point = KXRect(X(), Y(), X(), Y());
  return TKXChartValue::Selectable(Point, SelRect, Action);
}

void TKX2DChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("X", this, &TKX2DChartValue::X, &TKX2DChartValue::SetX, 0.0);
  Filer.Property("Y", this, &TKX2DChartValue::Y, &TKX2DChartValue::SetY, 0.0);
}

// --- TKX2DChartValues ---

TKX2DChartValues::TKX2DChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKXChartValues(AOwner, ValueClass), FSummary(std::make_unique<TKXValueSummary>()),
      FDeferred(std::make_unique<TKXDeferredXY>()) {
  FNumDimensions = 2;
  FTimeDimension = 0;
  FDefaultDimension = 1;
}

TKX2DChartValues::~TKX2DChartValues() = default;

void TKX2DChartValues::SetDateTimeAxes(TXYSet Value) {
  TKXChartValues::SetDateTimeAxes(TKXDimensionSet::FromBits(Value.Bits()));
}

TKX2DChartValue* TKX2DChartValues::Add() {
  return Add(0.0);
}

TKX2DChartValue* TKX2DChartValues::Add(double Value, const std::string& Caption, TColor Color) {
  return Add(MaxValue(FXDim), Value, Caption, Color);
}

TKX2DChartValue* TKX2DChartValues::Add(double X, double Y, const std::string& Caption,
                                       TColor Color) {
  const double Numbers[] = {X, Y};
  return static_cast<TKX2DChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
}

void TKX2DChartValues::SetExtentMetaData(TValueMetaData Data, const TKXChartValue* Value,
                                         int32_t Dimension) {
  if (Dimension != FXDim && Dimension != FYDim) return;
  const auto D = static_cast<size_t>(Dimension);
  if (D >= FMaxValue.size()) return;
  // A value that reaches the other way has its near side as the minimum.
  if (Data.Contains(mdMinimum)) FMinValue[D] = GetValueDimMinimum(Value, Dimension);
  const double Hi = GetValueDimMaximum(Value, Dimension);
  if (Data.Contains(mdMaximum))
    FMaxValue[D] = Hi;
  else if (Data.Contains(mdMinimum) && Hi > FMaxValue[D])
    FMaxValue[D] = Hi;
}

// --- TKX2DChartValues: bulk adds ---

void TKX2DChartValues::AddValues(std::span<const double> Y) {
  const TKXValueSummary& S = Summary();
  double Lo = 0, Hi = 0;
  const bool AnyX = S.Count() > 0 && S.XMinMax(0, S.Count() - 1, Lo, Hi);
  AddRun({}, AnyX ? Hi + 1 : 0.0, Y);
}

void TKX2DChartValues::AddValues(std::span<const double> X, std::span<const double> Y) {
  if (X.size() != Y.size())
    throw EListError("AddValues takes one Y for each X, not " + std::to_string(X.size()) +
                     " X and " + std::to_string(Y.size()) + " Y");
  AddRun(X, 0, Y);
}

void TKX2DChartValues::AddRun(std::span<const double> X, double X0, std::span<const double> Y) {
  const size_t N = Y.size();
  if (N == 0) return;
  if (N > static_cast<size_t>(INT32_MAX - Count()))
    throw EListError("A collection holds at most 2147483647 items");
  const auto XOf = [&](size_t K) { return X.empty() ? X0 + double(K) : X[K]; };
  const int32_t Dim = GetSortByDimension();
  const auto SortNumber = [&](size_t K) {
    return Dim == FXDim ? XOf(K) : Dim == FYDim ? Y[K] : 0.0;
  };
  TUpdateScope<TKXChartValues> Scope(this);

  // A sorted collection takes the run in its own order, when that follows what it holds.
  std::vector<size_t> Order;
  bool ValueByValue = static_cast<bool>(FOnNotify);
  // Under a Limit a sorted collection lets its values of no sort number go first: a run that
  // brings or meets such values takes the road of single adds, which knows that rule.
  if (FSorted && FLimit > 0 && !ValueByValue) {
    for (size_t K = 0; K < N && !ValueByValue; ++K)
      ValueByValue = std::isnan(SortNumber(K));
    if (!ValueByValue && Count() > 0) ValueByValue = std::isnan(NumberAt(Count() - 1, Dim));
  }
  if (FSorted && !ValueByValue) {
    for (size_t K = 1; K < N && Order.empty(); ++K)
      if (OrderOf(SortNumber(K - 1), SortNumber(K)) > 0) {
        Order.resize(N);
        std::iota(Order.begin(), Order.end(), size_t(0));
        std::stable_sort(Order.begin(), Order.end(), [&](size_t A, size_t B) {
          return OrderOf(SortNumber(A), SortNumber(B)) < 0;
        });
      }
    const double First = SortNumber(Order.empty() ? 0 : Order[0]);
    ValueByValue = Count() > 0 && OrderOf(NumberAt(Count() - 1, Dim), First) > 0;
  }
  if (ValueByValue) {
    for (size_t K = 0; K < N; ++K)
      Add(XOf(K), Y[K]);
    return;
  }

  // The palette walks a list of 10: the first ten steps give every colour, and the steps
  // taken in all leave the counter as N steps would.
  TKXDeferredRun Run;
  const size_t Steps = N <= Run.Palette.size() ? N : Run.Palette.size() + (N - 10) % 10;
  for (size_t K = 0; K < Steps; ++K) {
    const TColor C = NextValueColor();
    if (K < Run.Palette.size()) Run.Palette[K] = C;
  }
  // Under a Limit the first values of the run would go again at once: they only take their
  // colour.
  const size_t Skip = FLimit > 0 && N > size_t(FLimit) ? N - size_t(FLimit) : 0;
  Run.Count = N - Skip;
  if (Order.empty()) {
    if (X.empty())
      Run.X0 = X0 + double(Skip);
    else
      Run.TakeX(X, Skip);
    Run.Y.assign(Y.begin() + std::ptrdiff_t(Skip), Y.end());
    std::rotate(Run.Palette.begin(), Run.Palette.begin() + std::ptrdiff_t(Skip % 10),
                Run.Palette.end());
  } else {
    Run.X.resize(Run.Count);
    Run.Y.resize(Run.Count);
    Run.Colors.resize(Run.Count);
    for (size_t J = 0; J < Run.Count; ++J) {
      const size_t K = Order[Skip + J];
      Run.X[J] = XOf(K);
      Run.Y[J] = Y[K];
      Run.Colors[J] = Run.Palette[K % 10];
    }
  }
  const int32_t First = Count();
  Run.FirstKey = AddDeferred(Run.Count);
  FDeferred->Runs.push_back(std::move(Run));
  TellObservers(First);
  FVisibleCount += static_cast<int32_t>(N - Skip);
  FNeedMetaUpdate = true;
  while (FLimit > 0 && Count() > FLimit)
    Delete(0);
}

TCollectionItem* TKX2DChartValues::MakeDeferredItem(int32_t, size_t Key) {
  size_t Offset = 0;
  const TKXDeferredRun& Run = FDeferred->Find(Key, Offset);
  const double Numbers[] = {Run.XAt(Offset), Run.Y[Offset]};
  return NewDeferredValue(Numbers, Run.ColorAt(Offset));
}

void TKX2DChartValues::DeferredItemsDone() {
  FDeferred->Runs = {};
}

bool TKX2DChartValues::DeferredXY(int32_t Index, double& X, double& Y, TColor& Color) const {
  size_t Key = 0, Offset = 0;
  if (!DeferredKey(Index, Key)) return false;
  const TKXDeferredRun& Run = FDeferred->Find(Key, Offset);
  X = Run.XAt(Offset);
  Y = Run.Y[Offset];
  Color = Run.ColorAt(Offset);
  return true;
}

double TKX2DChartValues::NumberAt(int32_t Index, int32_t Dimension) const {
  double X = 0, Y = 0;
  TColor Color = clNone;
  if (!DeferredXY(Index, X, Y, Color)) return Items(Index)->GetValue(Dimension);
  return Dimension == FXDim ? X : Dimension == FYDim ? Y : 0.0;
}

// --- TKX2DChartValues: the summary ---

const TKXValueSummary& TKX2DChartValues::Summary() const {
  FSummary->Sync(this);
  return *FSummary;
}

void TKX2DChartValues::ValueChanged(TKXChartValue* Value, int32_t Dimension) {
  inherited::ValueChanged(Value, Dimension);
  if (Value->TKXChartValue::Collection() == this) FSummary->ValueChanged(Value->Index());
}

void TKX2DChartValues::VisibleChanged(TKXChartValue* Value) {
  inherited::VisibleChanged(Value);
  FSummary->ValueChanged(Value->Index());
}

void TKX2DChartValues::SelectionChanged(TKXChartValue* Value) {
  inherited::SelectionChanged(Value);
  FSummary->ValueChanged(Value->Index());
}

void TKX2DChartValues::LookChanged(TKXChartValue* Value) {
  inherited::LookChanged(Value);
  FSummary->ValueChanged(Value->Index());
}

void TKX2DChartValues::Notify(TCollectionItem* Item, TCollectionNotification Action) {
  // While it is extracted the value still stands at its index.
  if (Action == cnExtracting) FSummary->Removing(Item->Index());
  inherited::Notify(Item, Action);
}

void TKX2DChartValues::ItemsMoved(int32_t From, int32_t To) {
  inherited::ItemsMoved(From, To);
  FSummary->InvalidateFrom(From);
}

bool TKX2DChartValues::GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const {
  if (Dimension != FXDim && Dimension != FYDim) return false;
  const TKXValueSummary& S = Summary();
  const int32_t Last = S.Count() - 1;
  if (!(Dimension == FXDim ? S.XMinMax(0, Last, Lo, Hi) : S.MinMax(0, Last, Lo, Hi))) Lo = Hi = 0;
  return true;
}

void TKX2DChartValues::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("SortByDimension", this, &TKX2DChartValues::SortByDimension,
                 &TKX2DChartValues::SetSortByDimension, 0);
  DefineDateTimeAxes(Filer);
}

void TKX2DChartValues::DefineDateTimeAxes(TFiler& Filer) {
  Filer.Property("DateTimeAxes", this, &TKX2DChartValues::DateTimeAxes,
                 &TKX2DChartValues::SetDateTimeAxes);
}

// --- TKX3DChartValue ---

TKX3DChartValue::TKX3DChartValue(TCollection* Collection) : TKX2DChartValue(Collection) {
  if (!IsValuesCollection(Collection)) Resize(3);
}

TKX3DChartValues* TKX3DChartValue::Collection() const {
  return CollectionAs<TKX3DChartValues>(this);
}

void TKX3DChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Z", this, &TKX3DChartValue::Z, &TKX3DChartValue::SetZ, 0.0);
}

// --- TKX3DChartValues ---

TKX3DChartValues::TKX3DChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKX2DChartValues(AOwner, ValueClass) {
  FNumDimensions = 3;
}

void TKX3DChartValues::SetDateTimeAxes(TXYZSet Value) {
  TKXChartValues::SetDateTimeAxes(TKXDimensionSet::FromBits(Value.Bits()));
}

TKX3DChartValue* TKX3DChartValues::Add() {
  return Add(0.0);
}

TKX3DChartValue* TKX3DChartValues::Add(double X, const std::string& Caption, TColor Color) {
  return Add(MaxValue(FXDim), X, 0.0, Caption, Color);
}

TKX3DChartValue* TKX3DChartValues::Add(double X, double Y, const std::string& Caption,
                                       TColor Color) {
  return Add(X, Y, 0.0, Caption, Color);
}

TKX3DChartValue* TKX3DChartValues::Add(double X, double Y, double Z, const std::string& Caption,
                                       TColor Color) {
  const double Numbers[] = {X, Y, Z};
  return static_cast<TKX3DChartValue*>(TKXChartValues::Add(Numbers, Caption, Color));
}

void TKX3DChartValues::DefineDateTimeAxes(TFiler& Filer) {
  Filer.Property("DateTimeAxes", this, &TKX3DChartValues::DateTimeAxes,
                 &TKX3DChartValues::SetDateTimeAxes);
}

// --- TKX2DImageChartValue ---

void TKX2DImageChartValue::SetImageIndex(int32_t Value) {
  if (Value < -1) Value = -1;
  if (FImageIndex == Value) return;
  FImageIndex = Value;
  Changed(false);
}

TKX2DImageChartValues* TKX2DImageChartValue::Collection() const {
  return CollectionAs<TKX2DImageChartValues>(this);
}

void TKX2DImageChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKX2DImageChartValue*>(Source))
    FImageIndex = Src->FImageIndex;
  inherited::Assign(Source);
}

void TKX2DImageChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  // -1 is the start value, yet every value writes its index.
  Filer.Property("ImageIndex", this, &TKX2DImageChartValue::ImageIndex,
                 &TKX2DImageChartValue::SetImageIndex, -2);
}

// --- TKX2DImageChartValues ---

TKX2DImageChartValue* TKX2DImageChartValues::Add() {
  return static_cast<TKX2DImageChartValue*>(TKX2DChartValues::Add());
}

TKX2DImageChartValue* TKX2DImageChartValues::Add(double X, const std::string& Caption, TColor Color,
                                                 int32_t ImageIndex) {
  return Add(MaxValue(FXDim), X, Caption, Color, ImageIndex);
}

TKX2DImageChartValue* TKX2DImageChartValues::Add(double X, double Y, const std::string& Caption,
                                                 TColor Color, int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  auto* Value = static_cast<TKX2DImageChartValue*>(TKX2DChartValues::Add(X, Y, Caption, Color));
  Value->SetImageIndex(ImageIndex);
  return Value;
}

} // namespace kx
