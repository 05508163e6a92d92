#include "kxcharts/functions/KXChartFunction.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- Class and life ---

const TKXChartFunctionMeta* TKXCustomChartFunction::StaticClass() {
  static const TKXChartFunctionMetaImpl<TKXCustomChartFunction> Meta("TKXCustomChartFunction",
                                                                     TComponent::StaticClass());
  return &Meta;
}

const TMetaClass* TKXCustomChartFunction::ClassType() const {
  return StaticClass();
}

TKXCustomChartFunction::TKXCustomChartFunction(TComponent* AOwner) : TComponent(AOwner) {}

TKXCustomChartFunction::~TKXCustomChartFunction() = default;

void TKXCustomChartFunction::BeforeDestruction() {
  SetSourceChart(nullptr);
  if (FTargetChart) {
    Detach(FTargetChart, false);
    RemoveFreeNotification(FTargetChart);
    FTargetChart = nullptr;
  }
  inherited::BeforeDestruction();
}

// --- Wiring ---

void TKXCustomChartFunction::Attach(TKXCustomChart* Chart, bool Source) {
  if (Source) Chart->Listeners()->Add(this);
  Chart->Values()->AddObserver(this);
  FreeNotification(Chart);
}

// A chart that is being freed may have let go of its listeners and values already.
void TKXCustomChartFunction::Detach(TKXCustomChart* Chart, bool Source) {
  if (Source && Chart->Listeners()) Chart->Listeners()->Remove(this);
  if (Chart->Values()) Chart->Values()->RemoveObserver(this);
}

void TKXCustomChartFunction::Notification(TComponent* AComponent, TOperation Operation) {
  if (Operation == opRemove && AComponent) {
    if (AComponent == FSourceChart) {
      Detach(FSourceChart, true);
      FSourceChart = nullptr;
      ForgetPeriods();
    }
    if (AComponent == FTargetChart) {
      Detach(FTargetChart, false);
      FTargetChart = nullptr;
      ForgetPeriods();
    }
  }
  inherited::Notification(AComponent, Operation);
}

void TKXCustomChartFunction::Loaded() {
  inherited::Loaded();
  Changed();
}

// --- Properties ---

int32_t TKXCustomChartFunction::ClampDim(int32_t Value, const TKXCustomChart* Chart) const {
  if (Value < -1) return -1;
  if (Chart && Value >= Chart->Values()->DimensionCount())
    return Chart->Values()->DimensionCount() - 1;
  return Value;
}

void TKXCustomChartFunction::SetChart(TKXCustomChart*& Slot, TKXCustomChart* Value, bool Source) {
  if (Value == Slot) return;
  if (Value && Value == (Source ? FTargetChart : FSourceChart))
    throw EKXChartException(SSourceTargetChartEqual);
  if (Slot) {
    Detach(Slot, Source);
    RemoveFreeNotification(Slot);
  }
  Slot = Value;
  FModified = true;
  ForgetPeriods();
  if (Value) {
    Attach(Value, Source);
    int32_t& Dim = Source ? FSourceDim : FTargetDim;
    Dim = ClampDim(Dim, Value);
  }
  Changed();
}

void TKXCustomChartFunction::SetSourceChart(TKXCustomChart* Value) {
  SetChart(FSourceChart, Value, true);
}

void TKXCustomChartFunction::SetTargetChart(TKXCustomChart* Value) {
  SetChart(FTargetChart, Value, false);
}

void TKXCustomChartFunction::SettingChanged() {
  FModified = true;
  ForgetPeriods();
  Changed();
}

void TKXCustomChartFunction::SetEnabled(bool Value) {
  if (FEnabled == Value) return;
  FEnabled = Value;
  Changed();
}

void TKXCustomChartFunction::SetFunctionType(TKXChartFunctionType Value) {
  if (FFunctionType == Value) return;
  FFunctionType = Value;
  SettingChanged();
}

void TKXCustomChartFunction::SetPeriod(TKXChartFunctionPeriod Value) {
  if (FPeriod == Value) return;
  FPeriod = Value;
  SettingChanged();
}

void TKXCustomChartFunction::SetPeriodValue(double Value) {
  if (!(Value > 0)) Value = 0.1;
  if (FPeriodValue == Value) return;
  FPeriodValue = Value;
  SettingChanged();
}

void TKXCustomChartFunction::SetSourceDim(int32_t Value) {
  Value = ClampDim(Value, FSourceChart);
  if (FSourceDim == Value) return;
  FSourceDim = Value;
  SettingChanged();
}

void TKXCustomChartFunction::SetTargetDim(int32_t Value) {
  Value = ClampDim(Value, FTargetChart);
  if (FTargetDim == Value) return;
  FTargetDim = Value;
  SettingChanged();
}

void TKXCustomChartFunction::SetCenterTimePeriod(bool Value) {
  if (FCenterTimePeriod == Value) return;
  FCenterTimePeriod = Value;
  SettingChanged();
}

void TKXCustomChartFunction::SetIncremental(bool Value) {
  if (FIncremental == Value) return;
  FIncremental = Value;
  // The target stands as it is; the records for the next update come with the next rebuild.
  ForgetPeriods();
  if (!Value) std::vector<TPeriodRecord>().swap(FPeriods);
}

void TKXCustomChartFunction::SetOnCustomFunction(TKXChartFunctionEvent Value) {
  FOnCustomFunction = std::move(Value);
  // A new handler shapes the target of cfCustom; it takes effect with the next change.
  if (FFunctionType == cfCustom) {
    FModified = true;
    ForgetPeriods();
  }
}

// --- Listening ---

void TKXCustomChartFunction::ValueChanged(TKXCustomChart*, TKXChartValue*) {
  FModified = true;
  Changed();
}

void TKXCustomChartFunction::ChartChanged(TKXCustomChart*) {
  if (FChangedFrom == NoChange) return;
  FModified = true;
  Changed();
}

void TKXCustomChartFunction::PanelChange() {
  if (FChangedFrom == NoChange) return;
  FModified = true;
  Changed();
}

void TKXCustomChartFunction::ChartAdded(TKXCustomChart*) {}
void TKXCustomChartFunction::ChartDeleted(TKXCustomChart*) {}
void TKXCustomChartFunction::SelectionChanged(TObject*) {}
void TKXCustomChartFunction::VisibleChanged(TObject*) {}

void TKXCustomChartFunction::ValuesChanged(TKXChartValues* Values, int32_t Index) {
  if (FSourceChart && Values == FSourceChart->Values())
    FChangedFrom = std::min(FChangedFrom, std::max(Index, 0));
  else if (!FWritingTarget)
    // Somebody else changed the target: what the records say of it no longer holds.
    FPeriodsValid = false;
  else if (Index < Values->Count() - 1)
    // Our own write touched the target before its end (a sorted target put a value in
    // place, a limit dropped the oldest): the records cannot say where periods begin.
    FTargetOutOfOrder = true;
}

// --- Recalculating ---

void TKXCustomChartFunction::Changed() {
  if (!FEnabled) return;
  // A form being read calculates once, in Loaded, when every reference is set.
  if (ComponentState().Contains(csLoading)) return;
  PerformFunction();
}

void TKXCustomChartFunction::PerformFunction() {
  if (!FSourceChart || !FTargetChart) return;
  // Functions that feed each other in a ring would recalculate for ever: a function told
  // of a change while it recalculates stays modified instead.
  if (FPerforming) {
    FChangedWhilePerforming = true;
    return;
  }
  FPerforming = true;
  FChangedWhilePerforming = false;
  const int32_t ChangedFrom = std::exchange(FChangedFrom, NoChange);
  bool Completed = false;
  TFinally Done([this, &Completed] {
    FPerforming = false;
    if (!Completed) {
      // A calculation raised: the next one starts from scratch.
      FChangedFrom = 0;
      ForgetPeriods();
    }
  });
  if (!(FIncremental && UpdateIncrementally(ChangedFrom))) Rebuild();
  Completed = true;
  FModified = FChangedWhilePerforming;
}

template <class F> void TKXCustomChartFunction::WriteTarget(F&& Body) {
  TKXCustomChart* Target = FTargetChart;
  const bool Designing = ComponentState().Contains(csDesigning);
  TFinally Preview([Target, Designing] {
    if (Designing) Target->SetPreview(true);
  });
  TUpdateScope<TKXChartValues> Scope(Target->Values());
  FWritingTarget = true;
  FTargetOutOfOrder = false;
  TFinally Writing([this] { FWritingTarget = false; });
  Body(Target->Values());
}

void TKXCustomChartFunction::Rebuild() {
  ForgetPeriods();
  WriteTarget([this](TKXChartValues* Target) {
    Target->Clear();
    if (FSourceChart->Values()->Count() == 0) return;
    if (FOnExecutingFunction) FOnExecutingFunction(this);
    DoFunction();
    if (FOnExecutedFunction) FOnExecutedFunction(this);
  });
  FPeriodsValid = FIncremental && CalculatesPerPeriod() && !FTargetOutOfOrder;
}

bool TKXCustomChartFunction::UpdateIncrementally(int32_t ChangedFrom) {
  if (!FPeriodsValid || !CalculatesPerPeriod()) return false;
  // Nothing of the source's numbers changed (a colour, say): the target stands.
  if (ChangedFrom == NoChange) return true;
  if (FPeriods.empty() || FPeriod == fpAll) return false;
  const double Step = PeriodStep();
  if (!(Step == FPeriodsStep)) return false;
  // The first period that holds the changed value, or that ended just before it: a period
  // ends where the next value lies beyond it (or the values end), so a change there can
  // move its end.
  auto It = std::lower_bound(FPeriods.begin(), FPeriods.end(), ChangedFrom - 1,
                             [](const TPeriodRecord& R, int32_t I) { return R.High < I; });
  if (It == FPeriods.end()) --It;
  if (It == FPeriods.begin()) return false;
  const TPeriodRecord From = *It;
  FPeriods.erase(It, FPeriods.end());
  WriteTarget([this, &From, Step](TKXChartValues* Target) {
    while (Target->Count() > From.TargetStart)
      Target->Delete(Target->Count() - 1);
    if (FOnExecutingFunction) FOnExecutingFunction(this);
    SetFunction();
    if (FChartFunction) WalkPeriods(From.Cursor, Step);
    if (FOnExecutedFunction) FOnExecutedFunction(this);
  });
  if (FTargetOutOfOrder) ForgetPeriods();
  return true;
}

void TKXCustomChartFunction::ForgetPeriods() {
  FPeriods.clear();
  FPeriodsValid = false;
}

// --- TKXChartFunction ---

void TKXChartFunction::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Enabled", this, &TKXChartFunction::Enabled, &TKXChartFunction::SetEnabled, true);
  Filer.Property("FunctionType", this, &TKXChartFunction::FunctionType,
                 &TKXChartFunction::SetFunctionType, cfSum);
  // A default of 0 that no instance has: the initial 0.1 is always written.
  Filer.Property("PeriodValue", this, &TKXChartFunction::PeriodValue,
                 &TKXChartFunction::SetPeriodValue, 0.0);
  Filer.Property("Period", this, &TKXChartFunction::Period, &TKXChartFunction::SetPeriod,
                 fpPercentRange);
  Filer.Property("SourceChart", this, &TKXChartFunction::SourceChart,
                 &TKXChartFunction::SetSourceChart);
  Filer.Property("TargetChart", this, &TKXChartFunction::TargetChart,
                 &TKXChartFunction::SetTargetChart);
  Filer.Property("Incremental", this, &TKXChartFunction::Incremental,
                 &TKXChartFunction::SetIncremental, false);
}

void StartChartFunctionModule() {
  static std::once_flag Once;
  std::call_once(Once, [] { RegisterClasses({ClassOf<TKXChartFunction>()}); });
}

} // namespace kx
