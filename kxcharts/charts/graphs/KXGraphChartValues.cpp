#include "kxcharts/charts/graphs/KXGraphChartValues.h"

#include "kxcharts/charts/graphs/KXGraphChart.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXGraphChartLink ---

TKXGraphChartLink::TKXGraphChartLink(TCollection* Collection)
    : TGCollectionItem(Collection), FPen(MakeOwned<TPen>()) {
  FPen->SetOnChange([this](TObject*) { Changed(false); });
}

void TKXGraphChartLink::AfterConstruction() {
  // Joining tells the chart, which hands over its ArrowPen; a link made here keeps the look
  // of the node it leaves instead.
  inherited::AfterConstruction();
  if (const TKXGraphChartValue* Node = Owner()) FPen->Assign(Node->Pen());
}

void TKXGraphChartLink::BeforeDestruction() {
  FPen->SetOnChange(nullptr);
  inherited::BeforeDestruction();
}

TKXGraphChartValue* TKXGraphChartLink::Owner() const {
  const auto* Links = dynamic_cast<const TKXGraphChartLinks*>(Collection());
  return Links ? Links->Owner() : nullptr;
}

TKXGraphChartValues* TKXGraphChartLink::Nodes() const {
  const TKXGraphChartValue* Node = Owner();
  return Node ? Node->Collection() : nullptr;
}

void TKXGraphChartLink::SetValue(TKXGraphChartValue* AValue) {
  if (FValue == AValue) return;
  if (FValue) RemoveFreeNotification(FValue);
  FValue = AValue;
  if (FValue) FreeNotification(FValue);
  Changed(false);
}

void TKXGraphChartLink::Notification(TGCollectionItem* Item) {
  inherited::Notification(Item);
  if (Item == FValue) {
    // The link to the freed node is gone already; only the pointer is left to clear.
    FValue = nullptr;
    Changed(false);
  }
}

void TKXGraphChartLink::SetCaption(const std::string& Value) {
  if (FCaption == Value) return;
  FCaption = Value;
  Changed(false);
}

void TKXGraphChartLink::SetPen(const TPen* Value) {
  if (Value == FPen.get()) return;
  FPen->Assign(Value);
  Changed(false);
}

void TKXGraphChartLink::SetLinePoints(const TKXPoints& Value) {
  FLinePoints = Value;
  Changed(false);
}

void TKXGraphChartLink::SetConnectionPoint(TConnectionPoint Value) {
  if (FConnectionPoint == Value) return;
  FConnectionPoint = Value;
  Changed(false);
}

void TKXGraphChartLink::SetValueConnectionPoint(TConnectionPoint Value) {
  if (FValueConnectionPoint == Value) return;
  FValueConnectionPoint = Value;
  Changed(false);
}

void TKXGraphChartLink::ArrangeConnection(TKXChartOrientation Orientation) {
  // Leaves the node on the side that faces the deeper levels, enters the target on the
  // side that faces back.
  static constexpr TConnectionPoint Leave[] = {cpBottom, cpTop, cpRight, cpLeft};
  static constexpr TConnectionPoint Enter[] = {cpTop, cpBottom, cpLeft, cpRight};
  const auto O = static_cast<size_t>(Orientation % 4);
  SetConnectionPoint(Leave[O]);
  SetValueConnectionPoint(Enter[O]);
}

void TKXGraphChartLink::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXGraphChartLink*>(Source)) {
    FConnectionPoint = Src->FConnectionPoint;
    FValueConnectionPoint = Src->FValueConnectionPoint;
    SetValue(Src->FValue);
    FCaption = Src->FCaption;
    FPen->Assign(Src->FPen.get());
    FLinePoints = Src->FLinePoints;
    Changed(false);
    return;
  }
  inherited::Assign(Source);
}

void TKXGraphChartLink::Loaded() {
  inherited::Loaded();
  const TKXGraphChartValues* Values = Nodes();
  // A stream written elsewhere may name a node that is not there: no target then.
  if (Values && FValueIndex >= 0 && FValueIndex < Values->Count())
    SetValue(Values->Items(FValueIndex));
}

std::string TKXGraphChartLink::GetDisplayName() const {
  return FCaption.empty() ? inherited::GetDisplayName() : FCaption;
}

void TKXGraphChartLink::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXGraphChartLink;
  Filer.Property("Caption", this, &T::Caption, &T::SetCaption);
  Filer.Property("Pen", this, &T::Pen);
  Filer.Property("ConnectionPoint", this, &T::ConnectionPoint, &T::SetConnectionPoint, cpBottom);
  Filer.Property("ValueConnectionPoint", this, &T::ValueConnectionPoint,
                 &T::SetValueConnectionPoint, cpTop);
  const TKXGraphChartValues* Values = Nodes();
  Filer.DefineProperty(
      "ValueIndex", [this](TReader& R) { FValueIndex = static_cast<int32_t>(R.ReadInteger()); },
      [this](TWriter& W) { W.WriteInteger(FValue->Index()); },
      FValue && Values && FValue->Collection() == Values);
}

// --- TKXGraphChartLinks ---

TKXGraphChartLinks::TKXGraphChartLinks(TPersistent* AOwner)
    : TGCollection(AOwner, ClassOf<TKXGraphChartLink>()) {}

TKXGraphChartValue* TKXGraphChartLinks::Owner() const {
  return dynamic_cast<TKXGraphChartValue*>(GetOwner());
}

void TKXGraphChartLinks::ArrangeConnections(TKXChartOrientation Orientation) {
  for (TKXGraphChartLink* Link : *this)
    Link->ArrangeConnection(Orientation);
}

void TKXGraphChartLinks::Notify(TCollectionItem* Item, TCollectionNotification Action) {
  inherited::Notify(Item, Action);
  if (TKXGraphChartValue* Node = Owner())
    Node->LinksNotify(static_cast<TKXGraphChartLink*>(Item), Action);
}

void TKXGraphChartLinks::Update(TCollectionItem* Item) {
  inherited::Update(Item);
  if (TKXGraphChartValue* Node = Owner()) Node->LinksUpdate(static_cast<TKXGraphChartLink*>(Item));
}

// --- TKXGraphChartValue ---

TKXGraphChartValue::TKXGraphChartValue(TCollection* Collection)
    : TKXShapeChartValue(Collection), FLinks(MakeOwned<TKXGraphChartLinks>(this)) {
  if (!Collection || !Collection->InheritsFrom(TKXChartValues::StaticClass())) Resize(5);
}

void TKXGraphChartValue::BeforeDestruction() {
  // The node has left its collection by now, so the links' going tells no chart.
  FLinks.reset();
  inherited::BeforeDestruction();
}

TKXGraphChartValues* TKXGraphChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXGraphChartValues::StaticClass())
             ? static_cast<TKXGraphChartValues*>(C)
             : nullptr;
}

TKXGraphChartValue* TKXGraphChartValue::AddChild(const std::string& ACaption) {
  TKXGraphChartValues* Values = Collection();
  if (!Values) return nullptr;
  TKXGraphChartValue* Child = Values->Add();
  Child->SetLevel(Level() + 1);
  Child->SetCaption(ACaption);
  TKXGraphChartLink* Link = FLinks->Add();
  Link->SetValue(Child);
  if (const TKXGraphChart* Chart = Values->Graph()) Link->ArrangeConnection(Chart->Orientation());
  return Child;
}

void TKXGraphChartValue::ValueChanged(int32_t Dimension) {
  inherited::ValueChanged(Dimension);
  if (Dimension == 4) LevelChanged();
}

void TKXGraphChartValue::LevelChanged() {
  const int32_t Own = Level();
  for (int32_t I = FLinks->Count() - 1; I >= 0; --I) {
    const TKXGraphChartValue* Target = FLinks->Items(I)->Value();
    if (Target && Target->Level() <= Own) FLinks->Delete(I);
  }
  if (TKXGraphChartValues* Values = Collection()) Values->LevelChanged(this);
}

void TKXGraphChartValue::LinksNotify(TKXGraphChartLink* Link, TCollectionNotification Action) {
  if (TKXGraphChartValues* Values = Collection()) Values->LinksNotify(Link, Action);
}

void TKXGraphChartValue::LinksUpdate(TKXGraphChartLink* Link) {
  if (TKXGraphChartValues* Values = Collection()) Values->LinksUpdate(Link);
}

void TKXGraphChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXGraphChartValue*>(Source))
    FLinks->Assign(Src->FLinks.get());
  inherited::Assign(Source);
}

void TKXGraphChartValue::Loaded() {
  inherited::Loaded();
  FLinks->Loaded();
}

void TKXGraphChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  // An integer without a default is always written.
  Filer.Property("Level", this, &TKXGraphChartValue::Level, &TKXGraphChartValue::SetLevel);
  Filer.Property("Links", this, &TKXGraphChartValue::Links);
}

// --- TKXGraphChartValues ---

TKXGraphChartValues::TKXGraphChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
    : TKXShapeChartValues(AOwner, ValueClass) {
  FNumDimensions = 5;
  FSortByDimension = FLevelDim;
}

TKXGraphChart* TKXGraphChartValues::Graph() const {
  return dynamic_cast<TKXGraphChart*>(Owner());
}

void TKXGraphChartValues::LevelChanged(TKXGraphChartValue* Value) {
  if (TKXGraphChart* Chart = Graph()) Chart->LevelChanged(Value);
}

void TKXGraphChartValues::LinksNotify(TKXGraphChartLink* Link, TCollectionNotification Action) {
  if (TKXGraphChart* Chart = Graph()) Chart->LinksNotify(Link, Action);
}

void TKXGraphChartValues::LinksUpdate(TKXGraphChartLink* Link) {
  if (TKXGraphChart* Chart = Graph()) Chart->LinksUpdate(Link);
}

} // namespace kx
