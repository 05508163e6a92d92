#include "kxcharts/core/KXCustomChartPanel.h"

#include "kxcharts/toolkit/KXStreaming.h"

namespace kx {

// --- Life ---

TKXCustomChartPanel::TKXCustomChartPanel(TComponent* AOwner) : TCustomPanel(AOwner) {}

TKXCustomChartPanel::~TKXCustomChartPanel() = default;

void TKXCustomChartPanel::AfterConstruction() {
  inherited::AfterConstruction();
  SetCaption("");
  FChartColorScheme = schDefault;
  FChartColorList = DefaultColorList;
  FBottomAxis = CreateAxis(calBottom);
  FLeftAxis = CreateAxis(calLeft);
  FRightAxis = CreateAxis(calRight);
  FTopAxis = CreateAxis(calTop);
  FLegend = CreateLegend();
  FChartShadow = CreateShadow();
  FCharts = MakeOwned<TKXChartList>(this);
  FCharts->SetOnNotify([this](TObject* Sender, TKXCustomChart* Chart, TListNotification Action) {
    ChartListNotify(Sender, Chart, Action);
  });
  FListeners = MakeOwned<TChartPanelListeners>();
  FSelectionColor = TColor(0xD3D3D3);
  SetBounds(Left(), Top(), 400, 300);
}

TOwned<TKXChartAxis> TKXCustomChartPanel::CreateAxis(TKXChartAxisLocation Location) {
  TOwned<TKXChartAxis> Axis(New<TKXChartAxis>(this));
  Axis->SetLocation(Location);
  // A panel made in code starts as one placed at design time and then run.
  Axis->SetVisible(Location == calLeft || Location == calBottom);
  Axis->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Axis;
}

TOwned<TKXChartLegend> TKXCustomChartPanel::CreateLegend() {
  auto Legend = MakeOwned<TKXChartLegend>(this);
  Legend->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Legend;
}

TOwned<TKXChartShadow> TKXCustomChartPanel::CreateShadow() {
  auto Shadow = MakeOwned<TKXChartShadow>();
  Shadow->SetSize(2);
  Shadow->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
  return Shadow;
}

void TKXCustomChartPanel::BeforeDestruction() {
  FOnChange = nullptr;
  FOnChartChange = nullptr;
  FOnChartValueChange = nullptr;
  FOnChartValueVisibleChange = nullptr;
  FOnChartValueSelectionChange = nullptr;
  FOnAddChart = nullptr;
  FOnDeleteChart = nullptr;
  FOnDrawCharts = nullptr;
  FOnDrawingCharts = nullptr;
  FOnGetLegendStrings = nullptr;
  // Every chart leaves while the axes still stand, and falls back to its local axes.
  if (FCharts) FCharts->Clear();
  FBottomAxis.reset();
  FTopAxis.reset();
  FLeftAxis.reset();
  FRightAxis.reset();
  FLegend.reset();
  FCharts.reset();
  FListeners.reset();
  FChartShadow.reset();
  inherited::BeforeDestruction();
}

// --- Properties ---

void TKXCustomChartPanel::SetBottomAxis(const TKXChartAxis* Value) {
  FBottomAxis->Assign(Value);
}

void TKXCustomChartPanel::SetTopAxis(const TKXChartAxis* Value) {
  FTopAxis->Assign(Value);
}

void TKXCustomChartPanel::SetLeftAxis(const TKXChartAxis* Value) {
  FLeftAxis->Assign(Value);
}

void TKXCustomChartPanel::SetRightAxis(const TKXChartAxis* Value) {
  FRightAxis->Assign(Value);
}

void TKXCustomChartPanel::SetChartShadow(const TKXChartShadow* Value) {
  FChartShadow->Assign(Value);
}

TKXChartAxis* TKXCustomChartPanel::GetAxis(THorizontalAxis Value) const {
  switch (Value) {
  case haBottom:
    return FBottomAxis.get();
  case haTop:
    return FTopAxis.get();
  default:
    return nullptr;
  }
}

TKXChartAxis* TKXCustomChartPanel::GetAxis(TVerticalAxis Value) const {
  switch (Value) {
  case vaLeft:
    return FLeftAxis.get();
  case vaRight:
    return FRightAxis.get();
  default:
    return nullptr;
  }
}

TColor TKXCustomChartPanel::GetChartColor() const {
  if (ColorListIndex >= 10 || ColorListIndex < 0) ColorListIndex = 0;
  return FChartColorList[static_cast<size_t>(ColorListIndex++)];
}

bool TKXCustomChartPanel::IsLegendShowingCharts() const {
  return FLegend && FLegend->IsShowingCharts();
}

void TKXCustomChartPanel::GetLegendStrings(TStrings* Strings) {
  if (FOnGetLegendStrings) FOnGetLegendStrings(this, Strings);
}

// --- Colours ---

void TKXCustomChartPanel::SetChartColorScheme(TKXColorScheme Value) {
  if (FChartColorScheme == Value) return;
  FChartColorScheme = Value;
  if (const TColorList* List = GetSchemeColorList(Value)) FChartColorList = *List;
  ColorListIndex = 0;
  UpdateChartColorScheme();
}

void TKXCustomChartPanel::SetChartColorList(const TColorList& Value) {
  FChartColorList = Value;
  FChartColorScheme = schCustom;
  ColorListIndex = 0;
  UpdateChartColorScheme();
}

void TKXCustomChartPanel::UpdateChartColorScheme() {
  for (int32_t I = 0; I < FCharts->Count(); ++I) {
    TKXCustomChart* Chart = FCharts->Items(I);
    Chart->SetColor(FChartColorList[static_cast<size_t>(I % 10)]);
    if (Chart->PanelColorScheme()) Chart->UpdateColorScheme();
  }
}

void TKXCustomChartPanel::SetSelectionColor(TColor Value) {
  if (FSelectionColor == Value) return;
  FSelectionColor = Value;
  SelectionColorChanged();
}

void TKXCustomChartPanel::SelectionColorChanged() {
  for (int32_t I = 0; I < FCharts->Count(); ++I)
    FCharts->Items(I)->SelectionColorChanged();
}

// --- Coordinates ---

TPointF TKXCustomChartPanel::PointToAxesPoint(const TPoint& Pt, const TKXChartAxis* XAxis,
                                              const TKXChartAxis* YAxis) {
  return {static_cast<float>(XAxis ? XAxis->PixelToAxis(Pt.X, false) : 0.0),
          static_cast<float>(YAxis ? YAxis->PixelToAxis(Pt.Y, false) : 0.0)};
}

TRectF TKXCustomChartPanel::RectToAxesRect(const TRect& ARect, const TKXChartAxis* XAxis,
                                           const TKXChartAxis* YAxis) {
  const TPointF TopLeft = PointToAxesPoint({ARect.Left, ARect.Bottom}, XAxis, YAxis);
  const TPointF BottomRight = PointToAxesPoint({ARect.Right, ARect.Top}, XAxis, YAxis);
  return {TopLeft.X, TopLeft.Y, BottomRight.X, BottomRight.Y};
}

// --- Drawing the charts ---

void TKXCustomChartPanel::DrawCharts(TCanvas* Canvas, const TRect& ARect) {
  bool DoDraw = true;
  if (FOnDrawingCharts) FOnDrawingCharts(this, Canvas, ARect, DoDraw);
  if (!DoDraw) return;
  {
    // A foreign canvas (a bitmap, a file) is left unclipped.
    const bool Own = Canvas == TCustomPanel::Canvas();
    if (Own) Canvas->SetClipRect(ARect);
    TFinally Unclip([Canvas, Own] {
      if (Own) Canvas->RestoreClipRect();
    });
    for (int32_t I = 0; I < FCharts->Count(); ++I) {
      TKXCustomChart* Chart = FCharts->Items(I);
      if (!Chart->IsVisible()) continue;
      Chart->FInPaintTo = true;
      TFinally Done([Chart] { Chart->FInPaintTo = false; });
      Chart->Draw(Canvas, ARect);
    }
  }
  if (FOnDrawCharts) FOnDrawCharts(this, Canvas, ARect);
}

// --- The change road ---

void TKXCustomChartPanel::Changed() {
  if (FOnChange) FOnChange(this);
}

void TKXCustomChartPanel::Changed(TKXCustomChart* Chart) {
  FListeners->ChartChanged(Chart);
  if (FOnChartChange) FOnChartChange(this, Chart);
  UpdateLegend(Chart, nullptr);
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::ValueChanged(TKXCustomChart* Chart, TKXChartValue* Value) {
  FListeners->ValueChanged(Chart, Value);
  if (FOnChartValueChange) FOnChartValueChange(this, Chart, Value);
  Changed(Chart);
}

void TKXCustomChartPanel::ValueSelectionChanged(TKXCustomChart* Chart, TKXChartValue* Value) {
  FListeners->SelectionChanged(Value);
  UpdateLegend(Chart, Value);
  if (FOnChartValueSelectionChange) FOnChartValueSelectionChange(this, Chart, Value);
}

void TKXCustomChartPanel::ValueVisibleChanged(TKXCustomChart* Chart, TKXChartValue* Value) {
  FListeners->VisibleChanged(Value);
  UpdateLegend(Chart, Value);
  if (FOnChartValueVisibleChange) FOnChartValueVisibleChange(this, Chart, Value);
}

void TKXCustomChartPanel::KXVisibleChanged(TKXCustomChart* Chart) {
  FListeners->VisibleChanged(Chart);
  FCharts->VisibleChanged(Chart);
  UpdateLegend(Chart, nullptr);
  if (Chart->UpdateLevel() == 0) Changed(Chart);
}

void TKXCustomChartPanel::ChartListNotify(TObject*, TKXCustomChart* Chart,
                                          TListNotification Action) {
  if (Action == lnAdded)
    ChartAdded(Chart);
  else if (Action == lnDeleted)
    ChartDeleted(Chart);
}

void TKXCustomChartPanel::ChartAdded(TKXCustomChart* Chart) {
  FListeners->ChartAdded(Chart);
  if (FOnAddChart) FOnAddChart(this, Chart);
  if (FLegend) FLegend->SetNeedsUpdate(true);
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::ChartDeleted(TKXCustomChart* Chart) {
  FListeners->ChartDeleted(Chart);
  if (FOnDeleteChart) FOnDeleteChart(this, Chart);
  if (FLegend) FLegend->SetNeedsUpdate(true);
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::UpdateLegend(TKXCustomChart* Chart, TKXChartValue* Value) {
  if (!FLegend || FLegend->NeedsUpdate()) return;
  if (FLegend->IsShowingCharts())
    FLegend->SetNeedsUpdate(Value == nullptr);
  else
    FLegend->SetNeedsUpdate(Chart && Chart == FCharts->ActiveChart());
}

void TKXCustomChartPanel::SenderChanged(TObject*) {
  Invalidate();
  Changed();
}

void TKXCustomChartPanel::FontChanged() {
  inherited::FontChanged();
  SenderChanged(Font());
}

void TKXCustomChartPanel::Resize() {
  inherited::Resize();
  if (!FCharts) return;
  for (int32_t I = 0; I < FCharts->Count(); ++I)
    FCharts->Items(I)->Resize();
}

void TKXCustomChartPanel::Notification(TComponent* AComponent, TOperation Operation) {
  inherited::Notification(AComponent, Operation);
  if (Operation == opRemove && FCharts && !ComponentState().Contains(csDestroying) &&
      FCharts->TComponentList::IndexOf(AComponent) >= 0)
    Invalidate();
}

// --- TKXChartPanel ---

void TKXChartPanel::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("ChartColorScheme", this, &TKXChartPanel::ChartColorScheme,
                 &TKXChartPanel::SetChartColorScheme, schDefault);
  Filer.Property("ChartShadow", this, &TKXChartPanel::ChartShadow);
  Filer.Property("BottomAxis", this, &TKXChartPanel::BottomAxis);
  Filer.Property("TopAxis", this, &TKXChartPanel::TopAxis);
  Filer.Property("LeftAxis", this, &TKXChartPanel::LeftAxis);
  Filer.Property("RightAxis", this, &TKXChartPanel::RightAxis);
  Filer.Property("Legend", this, &TKXChartPanel::Legend);
  Filer.Property("SelectionColor", this, &TKXChartPanel::SelectionColor,
                 &TKXChartPanel::SetSelectionColor, clActiveBorder);
}

} // namespace kx
