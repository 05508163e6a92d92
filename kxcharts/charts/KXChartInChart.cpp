#include "kxcharts/charts/KXChartInChart.h"

#include <algorithm>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXLineCharts.h"
#include "kxcharts/charts/KXPieChart.h"
#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- TKXChartInChartValue ---

TKXChartInChartValues* TKXChartInChartValue::Collection() const {
  TKXChartValues* C = TKXChartValue::Collection();
  return C && C->InheritsFrom(TKXChartInChartValues::StaticClass())
             ? static_cast<TKXChartInChartValues*>(C)
             : nullptr;
}

TKXChartInChart* TKXChartInChartValue::Chart() const {
  const TKXChartValues* C = TKXChartValue::Collection();
  return C ? dynamic_cast<TKXChartInChart*>(C->Owner()) : nullptr;
}

void TKXChartInChartValue::SetTextBoxAlignment(T2DTextAlignment Value) {
  if (FTextBoxAlignment == Value) return;
  FTextBoxAlignment = Value;
  Changed(false);
}

void TKXChartInChartValue::SetSubChartType(TKXChartType Value) {
  if (FSubChartType == Value) return;
  FSubChartType = Value;
  const TKXCustomChartClass Class = Value == ctCustom ? nullptr : GetChartClass(Value);
  SetSubChart(Class ? static_cast<TKXCustomChart*>(Class->Create(nullptr)) : nullptr);
}

namespace {

// Whether Chart is Target or holds it through the sub charts of its values.
bool Holds(const TKXCustomChart* Chart, const TKXCustomChart* Target) {
  if (Chart == Target) return true;
  const auto* Nested = dynamic_cast<const TKXChartInChart*>(Chart);
  if (!Nested) return false;
  for (const TKXChartInChartValue* V : *Nested->Values())
    if (V->SubChart() && Holds(V->SubChart(), Target)) return true;
  return false;
}

} // namespace

void TKXChartInChartValue::SetSubChart(TKXCustomChart* Value) {
  if (Value == FSubChart) return;
  TKXChartInChart* Owner = Chart();
  // Each chart's changes run into the other's: a loop without end, on screen and in the
  // change notices.
  if (Owner && Value && Holds(Value, Owner))
    throw EKXChartException("A chart in chart cannot hold itself or a chart that holds it");
  if (TKXCustomChart* Old = FSubChart) {
    FSubChart = nullptr;
    if (Owner) Old->RemoveFreeNotification(Owner);
    if (!Old->Owner())
      Old->Free();
    else
      Old->SetOnChange(nullptr);
  }
  FSubChart = Value;
  FSubChartType = GetChartType(Value);
  if (Value) {
    if (Owner) Value->FreeNotification(Owner);
    Value->SetOnChange([this](TObject* Sender) { Changed(Sender); });
  }
  Changed(false);
}

void TKXChartInChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXChartInChartValue*>(Source)) {
    FTextBoxAlignment = Src->FTextBoxAlignment;
    SetSubChart(Src->FSubChart ? Src->FSubChart->Clone() : nullptr);
  }
  inherited::Assign(Source);
}

void TKXChartInChartValue::BeforeDestruction() {
  SetSubChart(nullptr);
  inherited::BeforeDestruction();
}

void TKXChartInChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXChartInChartValue;
  Filer.Property("TextBoxAlignment", this, &T::TextBoxAlignment, &T::SetTextBoxAlignment,
                 tdBottomCenter);
  // Only the kind is stored: reading it back gives an empty chart of that kind.
  Filer.Property("SubChartType", this, &T::SubChartType, &T::SetSubChartType, ctCustom,
                 [](const T*) { return true; });
}

// --- TKXChartInChartValues ---

TKXChartInChartValue* TKXChartInChartValues::WithChart(TKXShapeChartValue* Value,
                                                       TKXCustomChart* Chart) {
  auto* V = static_cast<TKXChartInChartValue*>(Value);
  V->SetSubChart(Chart);
  return V;
}

TKXCustomChart* TKXChartInChartValues::MakeChart(TKXCustomChartClass ChartClass) {
  return ChartClass ? static_cast<TKXCustomChart*>(ChartClass->Create(nullptr)) : nullptr;
}

TKXChartInChartValue* TKXChartInChartValues::Add(TKXChart* Chart, double X,
                                                 const std::string& Caption, TColor Color,
                                                 int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  return WithChart(TKXShapeChartValues::Add(X, Caption, Color, ImageIndex), Chart);
}

TKXChartInChartValue* TKXChartInChartValues::Add(TKXCustomChartClass ChartClass, double X,
                                                 const std::string& Caption, TColor Color,
                                                 int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  return WithChart(TKXShapeChartValues::Add(X, Caption, Color, ImageIndex), MakeChart(ChartClass));
}

TKXChartInChartValue* TKXChartInChartValues::Add(TKXChart* Chart, double X, double Y,
                                                 const std::string& Caption, TColor Color,
                                                 int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  return WithChart(TKXShapeChartValues::Add(X, Y, Caption, Color, ImageIndex), Chart);
}

TKXChartInChartValue* TKXChartInChartValues::Add(TKXCustomChartClass ChartClass, double X, double Y,
                                                 const std::string& Caption, TColor Color,
                                                 int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  return WithChart(TKXShapeChartValues::Add(X, Y, Caption, Color, ImageIndex),
                   MakeChart(ChartClass));
}

TKXChartInChartValue* TKXChartInChartValues::Add(TKXChart* Chart, const TRectF& ARect,
                                                 TKXShapeStyle Style, const std::string& Caption,
                                                 TColor Color, int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  return WithChart(TKXShapeChartValues::Add(ARect, Style, Caption, Color, ImageIndex), Chart);
}

TKXChartInChartValue* TKXChartInChartValues::Add(TKXCustomChartClass ChartClass,
                                                 const TRectF& ARect, TKXShapeStyle Style,
                                                 const std::string& Caption, TColor Color,
                                                 int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  return WithChart(TKXShapeChartValues::Add(ARect, Style, Caption, Color, ImageIndex),
                   MakeChart(ChartClass));
}

// --- TKXChartInChart ---

TKXChartInChart::TKXChartInChart(TComponent* AOwner) : TKXCustomShapeChart(AOwner) {}

TKXChartInChart::~TKXChartInChart() = default;

void TKXChartInChart::InitializeChart() {
  inherited::InitializeChart();
  FAxisThreshold = 150;
  FLabelThreshold = 100;
  FSubChartVerticalAxis = CreateAxis(calLeft);
  FSubChartHorizontalAxis = CreateAxis(calBottom);
}

void TKXChartInChart::BeforeDestruction() {
  // The values free their sub charts before the axes those were drawn on go.
  FSubChartVerticalAxis->SetOnChange(nullptr);
  FSubChartHorizontalAxis->SetOnChange(nullptr);
  inherited::BeforeDestruction();
}

TOwned<TKXChartAxis> TKXChartInChart::CreateAxis(TKXChartAxisLocation Location) {
  TOwned<TKXChartAxis> Axis(New<TKXChartAxis>(nullptr));
  if (Location == calLeft)
    Axis->Title()->SetAngle(90);
  else if (Location == calRight)
    Axis->Title()->SetAngle(270);
  Axis->SetLocation(Location);
  if (ComponentState().Contains(csDesigning)) Axis->Title()->SetText(GetEnumName(Location));
  // Made in code, the axes start as axes placed at design time and then run.
  Axis->SetVisible(Location == calLeft || Location == calBottom);
  Axis->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Axis;
}

TOwned<TKXCustomChartPointInfo> TKXChartInChart::CreatePointsInfo() {
  auto Info = MakeOwned<TKXDefaultShape>(this);
  Info->SetAlignment(tdTopCenter);
  Info->SetStyle(static_cast<TKXShapeStyle>(12));
  return Info;
}

TOwned<TKXChartValues> TKXChartInChart::CreateChartValues() {
  auto Values = MakeOwned<TKXChartInChartValues>(this, ClassOf<TKXChartInChartValue>());
  Values->SetOnNotify(
      [this](TKXChartValue* Value, TCollectionNotification Action) { ValueNotify(Value, Action); });
  return Values;
}

void TKXChartInChart::SetAxisThreshold(int32_t Value) {
  Value = std::max(Value, 0);
  if (FAxisThreshold == Value) return;
  FAxisThreshold = Value;
  Changed();
}

void TKXChartInChart::SetLabelThreshold(int32_t Value) {
  Value = std::max(Value, 0);
  if (FLabelThreshold == Value) return;
  FLabelThreshold = Value;
  Changed();
}

void TKXChartInChart::SetSubChartHorizontalAxis(const TKXChartAxis* Value) {
  FSubChartHorizontalAxis->Assign(Value);
}

void TKXChartInChart::SetSubChartVerticalAxis(const TKXChartAxis* Value) {
  FSubChartVerticalAxis->Assign(Value);
}

void TKXChartInChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXChartInChart*>(Source)) {
    FSubChartHorizontalAxis->Assign(Src->FSubChartHorizontalAxis.get());
    FSubChartVerticalAxis->Assign(Src->FSubChartVerticalAxis.get());
    FAxisThreshold = Src->FAxisThreshold;
    FLabelThreshold = Src->FLabelThreshold;
  }
  inherited::Assign(Source);
}

bool TKXChartInChart::UpdateAxis(TKXChartAxis* Axis) {
  bool Handled = false;
  if (FOnUpdateAxis) FOnUpdateAxis(this, Axis, Handled);
  return Handled;
}

void TKXChartInChart::Notification(TComponent* AComponent, TOperation Operation) {
  inherited::Notification(AComponent, Operation);
  if (Operation != opRemove || ComponentState().Contains(csDestroying) || !FValues) return;
  for (int32_t I = 0; I < FValues->Count(); ++I) {
    TKXChartInChartValue* Value = Values()->Items(I);
    if (Value->SubChart() == AComponent) Value->SetSubChart(nullptr);
  }
}

TRect TKXChartInChart::TextBox(const TRect& L, T2DTextAlignment Alignment) {
  // The members run left to right, then top to bottom: the column and row say which way.
  const int32_t DX = static_cast<int32_t>(Alignment % 3) - 1;
  const int32_t DY = static_cast<int32_t>(Alignment / 3) - 1;
  const int32_t W = L.Width(), H = L.Height();
  return {L.Left + DX * W, L.Top + DY * H, L.Right + DX * W, L.Bottom + DY * H};
}

void TKXChartInChart::DrawSubChart(TCanvas* Canvas, const TRect& S, TKXCustomChart* Sub) {
  TKXChartAxis* H = FSubChartHorizontalAxis.get();
  TKXChartAxis* V = FSubChartVerticalAxis.get();
  TNotifyEvent SubChange = Sub->OnChange(), HChange = H->OnChange(), VChange = V->OnChange();
  const TChartOptions SubOptions = Sub->Options();
  const TAxisOptions HOptions = H->Options(), VOptions = V->Options();
  const bool HVisible = H->Visible(), VVisible = V->Visible();
  Sub->SetOnChange(nullptr);
  H->SetOnChange(nullptr);
  V->SetOnChange(nullptr);
  // Back as they were, the events last, so that putting things back tells nobody.
  TFinally Restore([&] {
    Sub->SetOptions(SubOptions);
    H->SetOptions(HOptions);
    V->SetOptions(VOptions);
    H->SetVisible(HVisible);
    V->SetVisible(VVisible);
    Sub->SetOnChange(std::move(SubChange));
    H->SetOnChange(std::move(HChange));
    V->SetOnChange(std::move(VChange));
  });
  // A threshold acts only when both sides are below it.
  const bool Small = [&S](int32_t T) { return S.Width() < T && S.Height() < T; }(FLabelThreshold);
  if (Small) {
    Sub->SetOptions(Sub->Options() - coValueLabels);
    H->SetOptions(H->Options() - aoShowLabels - aoShowTitle);
    V->SetOptions(V->Options() - aoShowLabels - aoShowTitle);
  }
  if (S.Width() < FAxisThreshold && S.Height() < FAxisThreshold) {
    H->SetVisible(false);
    V->SetVisible(false);
  }
  const bool UH = UpdateAxis(H), UV = UpdateAxis(V);
  Sub->Draw(Canvas, S, V, H, !(UH && UV), false);
}

void TKXChartInChart::DrawShape(TCanvas* Canvas, const TRect& Rect, TKXShapeChartValue* Value) {
  const TRect Place = GetShapeRect(Rect, Value);
  if (Place == TRect{}) return;
  TRect S = Value->ScaledRect(Place);
  const float Opacity = FOpacity * Value->Opacity();
  if (TKXChartShadow* Shadow = DrawShapeShadow(Canvas, S, Value->Style(), Opacity))
    S = Shadow->NonShadowRect(S, false, Canvas);
  const TRect L = S;
  SetCanvasResources(Canvas, Value, true, true);
  bool DefaultDraw = true;
  if (FOnCustomDrawValue) FOnCustomDrawValue(this, Canvas, Rect, Value, DefaultDraw);
  if (DefaultDraw)
    S = kx::DrawShape(Canvas, S, FImageList, Value->ImageIndex(), Value->Style(),
                      FPointsInfo->DefaultStyle(), true, clBtnHighlight, clBtnShadow,
                      ShapeBevelWidth(S));
  const auto* Holder = dynamic_cast<const TKXChartInChartValue*>(Value);
  TKXCustomChart* Sub = Holder ? Holder->SubChart() : nullptr;
  // A chart that is being drawn already holds this one: drawing it again would not end.
  if (Sub && Sub->State() == stIdle) {
    DrawSubChart(Canvas, S, Sub);
    Canvas->SetFont(Value->Font());
    if (FVerticalAxis && FVerticalAxis->Zooming() && FOptions.Contains(coZoomFont))
      Canvas->Font()->SetSize(CanvasRound(Canvas->Font()->Size() * FVerticalAxis->ZoomAmount()));
  }
  if (FOptions.Contains(coValueLabels))
    DrawLabel(Canvas, Value, TextBox(L, Holder ? Holder->TextBoxAlignment() : tdMiddleCenter));
}

void TKXChartInChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  const auto* Holder = dynamic_cast<const TKXChartInChartValue*>(Value);
  if (Holder && Holder->SubChart())
    Holder->SubChart()->DrawGlyph(Canvas, ARect);
  else
    inherited::DrawGlyph(Canvas, Value, ARect);
}

void TKXChartInChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(FValues.get());
    struct TSample {
      const char* Caption;
      double X, Y;
      TKXCustomChartClass Class;
    };
    const TSample Samples[] = {{"Research", 5, 13, ClassOf<TKXAreaChart>()},
                               {"Purchases", 15, 75, ClassOf<TKXPieChart>()},
                               {"Manufacturing", 100, 200, ClassOf<TKXAreaChart>()},
                               {"Marketing", 300, 100, ClassOf<TKXPieChart>()},
                               {"Development", 400, 500, ClassOf<TKXPieChart>()}};
    for (const TSample& S : Samples) {
      TKXChartInChartValue* V =
          Values()->Add(S.Class, KXRect(S.X, S.Y, 100, 100), shpRectangle, S.Caption);
      TKXCustomChart* Sub = V->SubChart();
      Sub->SetPreview(true);
      Sub->SetOptions(Sub->Options() - coValueLabels);
    }
  }
  FPreview = true;
}

void TKXChartInChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXChartInChart;
  Filer.Property("AxisThreshold", this, &T::AxisThreshold, &T::SetAxisThreshold, 150);
  Filer.Property("LabelThreshold", this, &T::LabelThreshold, &T::SetLabelThreshold, 100);
  Filer.Property("SubChartHorizontalAxis", this, &T::SubChartHorizontalAxis);
  Filer.Property("SubChartVerticalAxis", this, &T::SubChartVerticalAxis);
  Filer.Property("ImageList", this, &T::ImageList, &T::SetImageList);
  Filer.Property("DefaultShape", this, &T::DefaultShape);
}

} // namespace kx
