#pragma once
// Chart functions: components that keep one chart, the target, computed from another, the
// source (sums per hour, an average per ten values, a copy). TKXCustomChartFunction holds
// the wiring and the calculations; TKXChartFunction is the component an application places
// and stores with its form.
//
// A function listens to its source. Every change of a source value recalculates while
// Enabled: the source is cut into periods (Period, PeriodValue), and the calculation in
// force (FunctionType) turns each period into target values, stamped with the period's
// place on the source's time dimension. By default the target is rebuilt whole each time;
// Incremental keeps what has not changed and recalculates only the periods from the first
// changed source value on.
//
// Extending. A descendant with calculations of its own (the high-low-average function)
// overrides SetFunction to put its calculation into FChartFunction, keeps the cutting into
// periods, and answers CalculatesPerPeriod for its types. Its class operations are static
// members; one that declares its own AddValue overloads brings the inherited one into scope
// (`using TKXCustomChartFunction::AddValue;`), which the function metaclass calls.

#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKXCustomChartFunction;

// --- Enumerations ---

// What a period of source values becomes in the target.
enum TKXChartFunctionType : uint8_t {
  cfCustom,               // OnCustomFunction of the application
  cfCopy,                 // each value, unchanged
  cfSum,                  //
  cfMedian,               // the middle value by position
  cfAverage,              //
  cfMinimum,              //
  cfMaximum,              //
  cfStdDev,               // sample standard deviation
  cfPopnStdDev,           // population standard deviation
  cfVariance,             // sample variance
  cfPopnVariance,         // population variance
  cfTotalVariance,        // sum of squared differences from the mean
  cfSumOfSquares,         //
  cfNorm,                 // square root of the sum of squares
  cfGreatestCommonDivisor // of the values rounded to whole numbers
};
KX_ENUM_NAMES(TKXChartFunctionType, "cfCustom", "cfCopy", "cfSum", "cfMedian", "cfAverage",
              "cfMinimum", "cfMaximum", "cfStdDev", "cfPopnStdDev", "cfVariance",
              "cfPopnVariance", "cfTotalVariance", "cfSumOfSquares", "cfNorm",
              "cfGreatestCommonDivisor")

// How the source is cut into periods, with PeriodValue.
enum TKXChartFunctionPeriod : uint8_t {
  fpEachValue,     // one value
  fpValueCount,    // PeriodValue values (at least 1)
  fpAxisRange,     // PeriodValue units of dimension 0
  fpPercentValues, // the fraction PeriodValue (at most 1) of all values
  fpPercentRange,  // the fraction PeriodValue (at most 1) of the horizontal axis's range
  fpAll,           // all values
  fpSecond,        // calendar periods of dimension 0 as dates
  fpMinute,
  fpHour,
  fpDay,
  fpWeek,
  fpMonth,
  fpYear
};
KX_ENUM_NAMES(TKXChartFunctionPeriod, "fpEachValue", "fpValueCount", "fpAxisRange",
              "fpPercentValues", "fpPercentRange", "fpAll", "fpSecond", "fpMinute", "fpHour",
              "fpDay", "fpWeek", "fpMonth", "fpYear")

// --- Events ---

// A calculation: adds to TargetChart what the source values IndexLow..IndexHigh (inclusive)
// yield in SourceDim, stamped with TimeStamp, written in TargetDim. A dimension of -1 is
// the chart's default dimension.
using TKXChartFunctionEvent =
    std::function<void(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                       int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                       int32_t SourceDim, int32_t TargetDim)>;

// --- Metaclass of the functions ---

// The component shape plus the class operation that the built-in calculations hand their
// results to, so that a descendant's AddValue takes them.
class TKXChartFunctionMeta : public TComponentMeta {
public:
  using TComponentMeta::TComponentMeta;
  virtual void AddValue(TKXCustomChart* Chart, double Value, TDateTime TimeStamp,
                        int32_t TargetDim) const = 0;
};
using TKXChartFunctionClass = const TKXChartFunctionMeta*;

template <class T>
class TKXChartFunctionMetaImpl final : public TComponentMetaOf<T, TKXChartFunctionMeta> {
public:
  using TComponentMetaOf<T, TKXChartFunctionMeta>::TComponentMetaOf;
  void AddValue(TKXCustomChart* Chart, double Value, TDateTime TimeStamp,
                int32_t TargetDim) const override {
    T::AddValue(Chart, Value, TimeStamp, TargetDim);
  }
};

// --- TKXCustomChartFunction ---

class TKXCustomChartFunction : public TComponent,
                               public IChartPanelListener,
                               private IChartValuesObserver {
public:
  using inherited = TComponent;
  template <class T> using MetaImplOf = TKXChartFunctionMetaImpl<T>;
  static const TKXChartFunctionMeta* StaticClass();
  const TMetaClass* ClassType() const override;

  // A source index past every value: nothing changed.
  static constexpr int32_t NoChange = std::numeric_limits<int32_t>::max();

protected:
  bool FModified = true;
  bool FEnabled = true;
  double FPeriodValue = 0.1;
  TKXCustomChart* FSourceChart = nullptr;
  TKXChartFunctionPeriod FPeriod = fpPercentRange;
  TKXCustomChart* FTargetChart = nullptr;
  TNotifyEvent FOnExecutingFunction;
  TNotifyEvent FOnExecutedFunction;
  // The calculation in force, set by SetFunction.
  TKXChartFunctionEvent FChartFunction;
  // A descendant keeps its own function types here too.
  TKXChartFunctionType FFunctionType = cfSum;
  TKXChartFunctionEvent FOnCustomFunction;
  int32_t FTargetDim = -1;
  int32_t FSourceDim = -1;
  bool FCenterTimePeriod = true;
  bool FIncremental = false;

public:
  explicit TKXCustomChartFunction(TComponent* AOwner);
  ~TKXCustomChartFunction() override;

  // --- Properties ---
  // (Each setter that changes what the target would hold marks the function modified,
  // also while it is disabled, and recalculates while it is enabled.)

  // Whether changes recalculate. Turning it on recalculates.
  bool Enabled() const { return FEnabled; }
  void SetEnabled(bool Value);
  TKXChartFunctionType FunctionType() const { return FFunctionType; }
  void SetFunctionType(TKXChartFunctionType Value);
  TKXChartFunctionPeriod Period() const { return FPeriod; }
  void SetPeriod(TKXChartFunctionPeriod Value);
  // The size of a period in the unit Period gives it. Anything not above 0 (NaN too) is
  // stored as 0.1.
  double PeriodValue() const { return FPeriodValue; }
  void SetPeriodValue(double Value);
  // The watched chart (not owned). Raises EKXChartException when it is the target, and
  // then changes nothing.
  TKXCustomChart* SourceChart() const { return FSourceChart; }
  void SetSourceChart(TKXCustomChart* Value);
  // The filled chart (not owned); the same check.
  TKXCustomChart* TargetChart() const { return FTargetChart; }
  void SetTargetChart(TKXCustomChart* Value);
  // The dimension read in the source and the one written in the target; -1 is the
  // chart's default dimension. Below -1 is stored as -1; above the chart's last
  // dimension as the last one.
  int32_t SourceDim() const { return FSourceDim; }
  void SetSourceDim(int32_t Value);
  int32_t TargetDim() const { return FTargetDim; }
  void SetTargetDim(int32_t Value);
  // Whether a period's result stands in the middle of its period or at its start.
  bool CenterTimePeriod() const { return FCenterTimePeriod; }
  void SetCenterTimePeriod(bool Value);
  // Off by default: the target is rebuilt whole at each change, and every rebuilt value
  // takes the next colour of the palette. On, a change recalculates only the periods from
  // the one that holds the first changed source value (or ends just before it): appending
  // to a long source costs one period. The kept target values keep their colours. It
  // applies where CalculatesPerPeriod holds and the period sizes do not depend on the
  // whole source (not fpPercentValues, nor fpPercentRange once the axis range moves, nor
  // fpAll, which is one period), while every result landed at the end of the target (a
  // sorted target whose stamps ascend; no limit that drops values) and nobody else changed
  // the target; any other change rebuilds whole, as does a change in the first period (a
  // value removed at the front, say).
  bool Incremental() const { return FIncremental; }
  void SetIncremental(bool Value);
  // Whether the target is out of date.
  virtual bool IsModified() const { return FModified; }
  // The dynamic class, with its class operations.
  TKXChartFunctionClass FunctionClass() const {
    return static_cast<TKXChartFunctionClass>(ClassType());
  }

  // --- Events ---
  const TNotifyEvent& OnExecutingFunction() const { return FOnExecutingFunction; }
  void SetOnExecutingFunction(TNotifyEvent Value) { FOnExecutingFunction = std::move(Value); }
  const TNotifyEvent& OnExecutedFunction() const { return FOnExecutedFunction; }
  void SetOnExecutedFunction(TNotifyEvent Value) { FOnExecutedFunction = std::move(Value); }
  // The calculation of cfCustom; without one, cfCustom leaves the target empty.
  const TKXChartFunctionEvent& OnCustomFunction() const { return FOnCustomFunction; }
  void SetOnCustomFunction(TKXChartFunctionEvent Value);

  // --- Operations ---

  // Recalculates now: nothing unless both charts are set. The target's values are
  // rebuilt in one bracket (closed also when a calculation raises); OnExecutingFunction
  // and OnExecutedFunction come around the calculation when the source has values.
  virtual void PerformFunction();
  // PerformFunction when Enabled.
  virtual void Changed();

  // --- Class operations ---
  // Each reducing form answers the figure of the source values IndexLow..IndexHigh in
  // SourceDim; each adding form, with the signature of TKXChartFunctionEvent, hands that
  // figure to AddValue. Indexes outside the values are cut to them. Sums of no values are
  // 0; where a figure divides by the count (mean, variances), no values, and for the
  // sample figures one value, give NaN: there is nothing to measure.

  static double Sum(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                    TDateTime& TimeStamp, int32_t SourceDim);
  static void Sum(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart, int32_t IndexLow,
                  int32_t IndexHigh, TDateTime TimeStamp, int32_t SourceDim, int32_t TargetDim);
  // The middle value by position (the values are taken to be in order): the mean of the
  // two middle ones for an even count. On a source of dates the stamp becomes the result.
  static double Median(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                       TDateTime& TimeStamp, int32_t SourceDim);
  static void Median(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                     int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                     int32_t SourceDim, int32_t TargetDim);
  static double Average(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                        TDateTime& TimeStamp, int32_t SourceDim);
  static void Average(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                      int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                      int32_t SourceDim, int32_t TargetDim);
  // The smallest and largest; ties keep the earlier value, and a NaN stands only when it
  // comes first. NaN for no values.
  static double Minimum(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                        TDateTime& TimeStamp, int32_t SourceDim);
  static void Minimum(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                      int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                      int32_t SourceDim, int32_t TargetDim);
  static double Maximum(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                        TDateTime& TimeStamp, int32_t SourceDim);
  static void Maximum(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                      int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                      int32_t SourceDim, int32_t TargetDim);
  // Of the values rounded to whole numbers (halves to even), folded from the right: 0 for
  // no values, the value itself for one; negative values may give a negative result. NaN
  // when a value is no whole number of 32 bits after rounding (NaN, infinite, too large).
  static double GreatestCommonDivisor(TKXCustomChart* SourceChart, int32_t IndexLow,
                                      int32_t IndexHigh, TDateTime& TimeStamp,
                                      int32_t SourceDim);
  static void GreatestCommonDivisor(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                                    int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                                    int32_t SourceDim, int32_t TargetDim);
  static double StdDev(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                       TDateTime& TimeStamp, int32_t SourceDim);
  static void StdDev(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                     int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                     int32_t SourceDim, int32_t TargetDim);
  static double PopnStdDev(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                           TDateTime& TimeStamp, int32_t SourceDim);
  static void PopnStdDev(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                         int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                         int32_t SourceDim, int32_t TargetDim);
  static double Variance(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                         TDateTime& TimeStamp, int32_t SourceDim);
  static void Variance(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                       int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                       int32_t SourceDim, int32_t TargetDim);
  static double PopnVariance(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                             TDateTime& TimeStamp, int32_t SourceDim);
  static void PopnVariance(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                           int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                           int32_t SourceDim, int32_t TargetDim);
  static double TotalVariance(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                              TDateTime& TimeStamp, int32_t SourceDim);
  static void TotalVariance(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                            int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                            int32_t SourceDim, int32_t TargetDim);
  static double SumOfSquares(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                             TDateTime& TimeStamp, int32_t SourceDim);
  static void SumOfSquares(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart,
                           int32_t IndexLow, int32_t IndexHigh, TDateTime TimeStamp,
                           int32_t SourceDim, int32_t TargetDim);
  static double Norm(TKXCustomChart* SourceChart, int32_t IndexLow, int32_t IndexHigh,
                     TDateTime& TimeStamp, int32_t SourceDim);
  static void Norm(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart, int32_t IndexLow,
                   int32_t IndexHigh, TDateTime TimeStamp, int32_t SourceDim, int32_t TargetDim);
  // Adds each value of the range, all with the same stamp.
  static void Copy(TKXCustomChart* SourceChart, TKXCustomChart* TargetChart, int32_t IndexLow,
                   int32_t IndexHigh, TDateTime TimeStamp, int32_t SourceDim, int32_t TargetDim);

  // Adds one value to Chart: Value in TargetDim, TimeStamp in the values' time dimension
  // (when they have one), and in dimension 0, where neither goes, the value's index, as a
  // new value has it. When TargetDim is the time dimension, Value wins: the dimension was
  // asked for by name. The function metaclass makes this a class operation a descendant
  // may redeclare.
  static void AddValue(TKXCustomChart* Chart, double Value, TDateTime TimeStamp,
                       int32_t TargetDim);
  // The last index of the period that starts at IndexLow and ends at StopTime: the values
  // from IndexLow on whose dimension 0 is not above StopTime, but IndexLow at least, so a
  // period always holds a value.
  static int32_t GetPeriodIndex(TKXCustomChart* Chart, int32_t IndexLow, TDateTime StopTime);
  // The numbers of the range in SourceDim (cut to the values, as above).
  static TKXChartValueTypeArray ToArray(TKXCustomChart* Chart, int32_t IndexLow,
                                        int32_t IndexHigh, int32_t SourceDim);

  // --- IChartPanelListener ---
  // A value change of the source marks the function modified and recalculates (Changed).
  // The end of a batch of the source chart (ChartChanged) or of its listeners
  // (PanelChange) does the same when values changed inside the batch, which the function
  // knows from watching the source's values; a change of the chart's other properties,
  // selections and visibility recalculate nothing. A descendant may override any of them.
  void PanelChange() override;
  void ChartAdded(TKXCustomChart* Item) override;
  void ChartDeleted(TKXCustomChart* Item) override;
  void ChartChanged(TKXCustomChart* Item) override;
  void ValueChanged(TKXCustomChart* Item, TKXChartValue* Value) override;
  void SelectionChanged(TObject* Sender) override;
  void VisibleChanged(TObject* Sender) override;

  // --- Overrides ---
  // Lets go of source and target (leaving the source's listeners) first.
  void BeforeDestruction() override;

protected:
  // Puts the calculation of FFunctionType into FChartFunction (FOnCustomFunction for
  // cfCustom, which may be empty). A descendant with types of its own overrides it.
  virtual void SetFunction();
  // Runs SetFunction, then cuts the source into periods and runs FChartFunction once a
  // period, the periods in order.
  virtual void DoFunction();
  // Whether the calculation in force reads nothing but the source values of the period
  // it is given and only adds to the target, which the incremental mode relies on: true
  // for every built-in type, false for cfCustom (an application's handler may read
  // anything). A descendant answers for its own types, and answers false when it cuts the
  // source its own way (overrides DoFunction).
  virtual bool CalculatesPerPeriod() const;

  // The chart a reference points to went: the function lets go of it.
  void Notification(TComponent* AComponent, TOperation Operation) override;
  // A function read from a form calculates once here, after every reference is set.
  void Loaded() override;

private:
  // Where a walk over the periods stands before a period: its first source index, the
  // number the walk carries from the period before (the size walk's running end, the
  // range and calendar walks' period start), and whether it is the first period (whose
  // end is one millisecond short).
  struct TPeriodCursor {
    int32_t Low = 0;
    double Carry = 0.0;
    bool First = true;
  };
  // What the incremental mode keeps of one period it calculated: the source range, the
  // cursor it started from and where its values begin in the target.
  struct TPeriodRecord {
    TPeriodCursor Cursor;
    int32_t High;
    int32_t TargetStart;
  };

  // The incremental mode's account of the target it built (valid only while the target
  // stands as the function left it).
  std::vector<TPeriodRecord> FPeriods;
  bool FPeriodsValid = false;
  // The period size (values or units) the records were cut with.
  double FPeriodsStep = 0.0;
  // The lowest source index changed since the last calculation, or NoChange.
  int32_t FChangedFrom = 0;
  bool FWritingTarget = false;
  // Set when a write of the function touched the target anywhere but at its end.
  bool FTargetOutOfOrder = false;
  bool FPerforming = false;
  bool FChangedWhilePerforming = false;

  // Runs Body(target values) in one bracket of the target's values, closed also when Body
  // raises; at design time the target shows its preview afterwards.
  template <class F> void WriteTarget(F&& Body);
  // The whole rebuild of the target.
  void Rebuild();
  // The incremental update; false when it does not apply and the target must be rebuilt.
  bool UpdateIncrementally(int32_t ChangedFrom);
  // Cuts the source into periods from Cursor on, with periods of Step (values or units, as
  // PeriodStep gives it), and runs FChartFunction for each.
  void WalkPeriods(TPeriodCursor Cursor, double Step);
  // The size of a period for the walks by size and by range (0 for the others).
  double PeriodStep();
  // Runs FChartFunction for Low..High, recording the period in incremental mode.
  void RunPeriod(const TPeriodCursor& Cursor, int32_t High, TDateTime TimeStamp);
  // The stamp in the middle of Low..High: the centre time on a source with a time
  // dimension, else the middle index.
  TDateTime MiddleStamp(int32_t Low, int32_t High) const;
  TDateTime CentreTime(int32_t Low, int32_t High) const;
  void ForgetPeriods();
  // Sets the source (Source) or the target in Slot: the same check against the other one,
  // listeners, observation and free notification moved, the dimension lowered.
  void SetChart(TKXCustomChart*& Slot, TKXCustomChart* Value, bool Source);
  void Attach(TKXCustomChart* Chart, bool Source);
  void Detach(TKXCustomChart* Chart, bool Source);
  // Marks the target out of date (a setting that shapes it changed), then Changed.
  void SettingChanged();
  int32_t ClampDim(int32_t Value, const TKXCustomChart* Chart) const;

  void ValuesChanged(TKXChartValues* Values, int32_t Index) override;
};

// --- TKXChartFunction ---

// The chart function an application places: TKXCustomChartFunction with its stored
// properties.
class TKXChartFunction : public TKXCustomChartFunction {
  KX_CLASS(TKXChartFunction, TKXCustomChartFunction)

public:
  using TKXCustomChartFunction::TKXCustomChartFunction;

protected:
  // Enabled, FunctionType, PeriodValue (default 0, so that 0.1 is written), Period,
  // SourceChart, TargetChart, then Incremental. CenterTimePeriod, SourceDim and TargetDim
  // are not stored.
  void DefineProperties(TFiler& Filer) override;
};

// --- Module ---

// Registers TKXChartFunction with the form reader, once. StartChartModules runs it; call
// that rather than this.
void StartChartFunctionModule();

} // namespace kx
