#include "kxcharts/charts/KXXYChartValues.h"

#include "kxcharts/charts/KXValueSummary_p.h"

#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

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
    : TKXChartValues(AOwner, ValueClass), FSummary(std::make_unique<TKXValueSummary>()) {
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
