#include "kxcharts/core/KXCustomChart.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartLayout.h"
#include "kxcharts/core/KXChartList.h"
#include "kxcharts/core/KXChartRegistry.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/runtime/KXFormat.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/runtime/KXMath.h"
#include "kxcharts/toolkit/graphics/KXPathData.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

// --- TKXCustomChart: class and life ---

const TKXCustomChartMeta* TKXCustomChart::StaticClass() {
  static const TKXCustomChartMetaImpl<TKXCustomChart> Meta("TKXCustomChart",
                                                           TGraphicControl::StaticClass());
  return &Meta;
}

const TMetaClass* TKXCustomChart::ClassType() const {
  return StaticClass();
}

TKXCustomChart::TKXCustomChart(TComponent* AOwner) : TGraphicControl(AOwner) {}

TKXCustomChart::~TKXCustomChart() = default;

void TKXCustomChart::AfterConstruction() {
  inherited::AfterConstruction();
  InitializeChart();
  InitializeChangeEvents();
}

void TKXCustomChart::InitializeChart() {
  FParentFont = true;
  FPanelColorScheme = true;
  FBrush = CreateBrush();
  FFont = CreateFont();
  FPen = CreatePen();
  FValues = CreateChartValues();
  FListeners = MakeOwned<TChartPanelListeners>();
  if (auto* Win = dynamic_cast<TWinControl*>(Owner())) FBrush->Assign(Win->Brush());
  if (auto* Ctl = dynamic_cast<TControl*>(Owner())) {
    FFont->Assign(Ctl->Font());
    if (auto* P = dynamic_cast<TKXCustomChartPanel*>(Owner())) SetPanel(P);
  }
  FBrush->SetStyle(bsSolid);
  SetColor(FPanel ? FPanel->GetChartColor() : kx::GetChartColor());
  FOptions = DefaultChartOptions;
  FSelectionColor = TColor(0xD3D3D3);
  FParentSelectionColor = true;
  TControl::SetCursor(crHandPoint);
  FValueLabelFormat = "#,##0.###";
  FValueLabelStyle = ltsCaption;
  MakeLocalAxes();
  FColorScheme = schDefault;
  FColorList = DefaultColorList;
  FOpacity = 1.0f;
  if (!FPanel) {
    SetHorizontalAxis(FLocalHorizontalAxis.get());
    SetVerticalAxis(FLocalVerticalAxis.get());
  }
  SetBounds(Left(), Top(), 100, 75);
  SetPreview(ComponentState().Contains(csDesigning));
}

void TKXCustomChart::MakeLocalAxes() {
  FLocalHorizontalAxis.reset(New<TKXLocalChartAxis>(this));
  FLocalHorizontalAxis->SetLocation(calBottom);
  FLocalHorizontalAxis->SetVisible(false);
  FLocalVerticalAxis.reset(New<TKXLocalChartAxis>(this));
  FLocalVerticalAxis->SetLocation(calLeft);
  FLocalVerticalAxis->SetVisible(false);
}

void TKXCustomChart::InitializeChangeEvents() {
  const TNotifyEvent Handler = [this](TObject* Sender) { SenderChanged(Sender); };
  FBrush->SetOnChange(Handler);
  FFont->SetOnChange(Handler);
  FPen->SetOnChange(Handler);
}

TOwned<TBrush> TKXCustomChart::CreateBrush() {
  return MakeOwned<TBrush>();
}

TOwned<TFont> TKXCustomChart::CreateFont() {
  return MakeOwned<TFont>();
}

TOwned<TPen> TKXCustomChart::CreatePen() {
  return MakeOwned<TPen>();
}

TOwned<TKXChartValues> TKXCustomChart::CreateChartValues() {
  return MakeOwned<TKXChartValues>(this, ClassOf<TKXChartValue>());
}

void TKXCustomChart::CreatePreviewValues() {}

TKXCustomChart::TLifeWatch::~TLifeWatch() {
  if (!FChart) return;
  for (TLifeWatch** P = &FChart->FWatches; *P; P = &(*P)->FNext)
    if (*P == this) {
      *P = FNext;
      break;
    }
}

void TKXCustomChart::BeforeDestruction() {
  for (TLifeWatch* W = FWatches; W; W = W->FNext)
    W->FChart = nullptr;
  FWatches = nullptr;
  const int32_t Saved = FUpdating;
  FUpdating = 1;
  {
    TFinally Restore([this, Saved] { FUpdating = Saved; });
    // Nobody hears of the chart while it goes.
    FOnChange = nullptr;
    SetPanel(nullptr);
    FListeners->Clear();
    // Leave the local axes' lists before the axes go.
    SetHorizontalAxis(nullptr);
    SetVerticalAxis(nullptr);
    FLocalVerticalAxis.reset();
    FLocalHorizontalAxis.reset();
    FBrush.reset();
    FFont.reset();
    FPen.reset();
    FValues.reset();
    FListeners.reset();
  }
  inherited::BeforeDestruction();
}

TKXCustomChart* TKXCustomChart::Clone() const {
  auto* Copy = static_cast<TKXCustomChart*>(ChartClass()->Create(Owner()));
  try {
    Copy->Assign(this);
  } catch (...) {
    Copy->Free();
    throw;
  }
  return Copy;
}

void TKXCustomChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  const auto* Src = dynamic_cast<const TKXCustomChart*>(Source);
  if (!Src) {
    inherited::Assign(Source);
    return;
  }
  TUpdateScope<TKXCustomChart> Scope(this);
  SetCaption(Src->Caption());
  TControl::SetCursor(Src->Cursor());
  FAxesHints = Src->FAxesHints;
  SetParentFont(Src->ParentFont());
  SetBrush(Src->Brush());
  SetOptions(Src->Options());
  SetOffsetVertical(Src->OffsetVertical());
  SetHorizAxis(Src->HorizAxis());
  SetVertAxis(Src->VertAxis());
  SetGroup(Src->Group());
  SetGroupStyle(Src->GroupStyle());
  SetFont(Src->Font());
  SetPen(Src->Pen());
  SetValues(Src->Values());
  SetPreview(Src->Preview());
  SetValueLabelFormat(Src->ValueLabelFormat());
  SetValueLabelStyle(Src->ValueLabelStyle());
}

// --- TKXCustomChart: properties ---

void TKXCustomChart::SetCaption(const std::string& Value) {
  if (Caption() == Value) return;
  TControl::SetCaption(Value);
  if (FPanel) FPanel->UpdateLegend(this, nullptr);
  Changed();
}

void TKXCustomChart::SetOpacity(float Value) {
  Value = Value > 1.0f ? 1.0f : (Value > 0.0f ? Value : 0.0f);
  if (FOpacity == Value) return;
  FOpacity = Value;
  Changed();
}

void TKXCustomChart::SetOptions(TChartOptions Value) {
  if (FOptions == Value) return;
  FOptions = Value;
  if (FPanel) FPanel->UpdateLegend(this, nullptr);
  Changed();
}

void TKXCustomChart::SetOffsetVertical(double Value) {
  if (FOffsetVertical == Value || (std::isnan(Value) && std::isnan(FOffsetVertical))) return;
  FOffsetVertical = Value;
  Changed();
}

void TKXCustomChart::SetValueLabelFormat(const std::string& Value) {
  if (FValueLabelFormat == Value) return;
  FValueLabelFormat = Value;
  Changed();
}

void TKXCustomChart::SetValueLabelStyle(TKXLegendTextStyle Value) {
  if (FValueLabelStyle == Value) return;
  FValueLabelStyle = Value;
  Changed();
}

TColor TKXCustomChart::GetColor() const {
  return FBrush->Color();
}

void TKXCustomChart::SetColor(TColor Value) {
  if (FBrush->Color() != Value) FBrush->SetColor(Value);
}

TColor TKXCustomChart::GetColor(const TKXChartValue* Value) const {
  return Value && FOptions.Contains(coValueColors) ? Value->Color() : GetColor();
}

TColor TKXCustomChart::GetValueColor() const {
  if (FPanelColorScheme && FPanel) return NextPaletteColor(FPanel->ChartColorList());
  return NextPaletteColor(FColorList);
}

void TKXCustomChart::SetSelectionColor(TColor Value) {
  if (FSelectionColor == Value) return;
  FSelectionColor = Value;
  FParentSelectionColor = false;
}

void TKXCustomChart::SetParentSelectionColor(bool Value) {
  if (FParentSelectionColor == Value) return;
  FParentSelectionColor = Value;
  if (Value && FPanel) FSelectionColor = FPanel->SelectionColor();
}

void TKXCustomChart::SetPreview(bool Value) {
  if (FPreview == Value) return;
  FPreview = Value;
  if (Value && FValues->Count() == 0) {
    // Adding values ends a preview; the samples are one.
    TFinally KeepPreview([this] { FPreview = true; });
    CreatePreviewValues();
  }
}

// --- TKXCustomChart: colours ---

void TKXCustomChart::SetColorScheme(TKXColorScheme Value) {
  if (FColorScheme == Value) return;
  FColorScheme = Value;
  if (const TColorList* List = GetSchemeColorList(Value)) FColorList = *List;
  ColorListIndex = 0;
  FPanelColorScheme = false;
  UpdateColorScheme();
}

void TKXCustomChart::SetColorList(const TColorList& Value) {
  FColorList = Value;
  FColorScheme = schCustom;
  ColorListIndex = 0;
  FPanelColorScheme = false;
  UpdateColorScheme();
}

void TKXCustomChart::UpdateColorScheme() {
  const bool SavedPreview = FPreview;
  TFinally KeepPreview([this, SavedPreview] { FPreview = SavedPreview; });
  const TColorList& List = FPanelColorScheme && FPanel ? FPanel->ChartColorList() : FColorList;
  TUpdateScope<TKXChartValues> Scope(FValues.get());
  for (int32_t I = 0; I < FValues->Count(); ++I)
    FValues->Items(I)->SetColor(List[static_cast<size_t>(I % 10)]);
}

// --- TKXCustomChart: update brackets and the change road ---

void TKXCustomChart::BeginUpdate() {
  ++FUpdating;
}

void TKXCustomChart::EndUpdate() {
  if (FUpdating <= 0) throw Exception("EndUpdate without BeginUpdate on " + ClassName());
  if (--FUpdating == 0) Changed();
}

void TKXCustomChart::Changed(TKXChartValue* Value) {
  if (FUpdating > 0) return;
  FListeners->ValueChanged(this, Value);
  FPreview = false;
  if (FPanel) FPanel->ValueChanged(this, Value);
  if (Visible()) {
    if (FHorizontalAxis) FHorizontalAxis->ValueChanged(this);
    if (FVerticalAxis) FVerticalAxis->ValueChanged(this);
    UpdateAxisInfo(FHorizontalAxis);
  }
  if (FOnValueChange) FOnValueChange(this, Value);
  if (!FPanel) Invalidate();
}

void TKXCustomChart::Changed() {
  if (FUpdating > 0) return;
  FListeners->ChartChanged(this);
  if (FPanel) FPanel->Changed(this);
  if (Visible()) {
    if (FHorizontalAxis) FHorizontalAxis->ValueChanged(this);
    if (FVerticalAxis) FVerticalAxis->ValueChanged(this);
    UpdateAxisInfo(FHorizontalAxis);
  }
  if (FOnChange) FOnChange(this);
  if (!FPanel) Invalidate();
}

void TKXCustomChart::ValueSelectionChanged(TKXChartValue* Value) {
  if (FUpdating > 0) return;
  FListeners->SelectionChanged(Value);
  if (FPanel) FPanel->ValueSelectionChanged(this, Value);
  if (FOnValueSelectionChange) FOnValueSelectionChange(this, Value);
}

void TKXCustomChart::ValueVisibleChanged(TKXChartValue* Value) {
  if (FUpdating > 0) return;
  FListeners->VisibleChanged(Value);
  if (FPanel) FPanel->ValueVisibleChanged(this, Value);
  if (FOnValueVisibleChange) FOnValueVisibleChange(this, Value);
}

void TKXCustomChart::KXVisibleChanged() {
  FListeners->VisibleChanged(this);
  if (FPanel) FPanel->KXVisibleChanged(this);
  if (FHorizontalAxis) FHorizontalAxis->VisibleChanged(this);
  if (FVerticalAxis) FVerticalAxis->VisibleChanged(this);
  if (FOnVisibleChange) FOnVisibleChange(this);
}

void TKXCustomChart::CMVisibleChanged() {
  inherited::CMVisibleChanged();
  // A chart being made or freed has no road to tell yet (or any more).
  if (FListeners && !ComponentState().Contains(csDestroying)) KXVisibleChanged();
}

void TKXCustomChart::SelectionColorChanged() {}

void TKXCustomChart::SenderChanged(TObject*) {
  Changed();
}

// --- TKXCustomChart: panel and axes ---

void TKXCustomChart::SetPanel(TKXCustomChartPanel* Value) {
  if (FPanel == Value) return;
  if (TKXCustomChartPanel* Old = FPanel) {
    // Cleared first: the list's notice calls back here and must find nothing to do.
    FPanel = nullptr;
    SetHorizontalAxis(FLocalHorizontalAxis.get());
    SetVerticalAxis(FLocalVerticalAxis.get());
    Old->Charts()->Remove(this);
    RemoveFreeNotification(Old);
    if (ComponentState().Contains(csDesigning)) SetParent(Old->Parent());
  }
  FPanel = Value;
  if (Value) {
    SetParent(Value);
    Value->Charts()->AddOne(this);
    FreeNotification(Value);
    PanelChanged();
  }
}

void TKXCustomChart::PanelChanged() {
  if (!FPanel) return;
  SetHorizontalAxis(FPanel->GetAxis(FHorizAxis));
  SetVerticalAxis(FPanel->GetAxis(FVertAxis));
  if (FParentFont) SetFont(FPanel->Font());
  if (FParentSelectionColor) FSelectionColor = FPanel->SelectionColor();
}

void TKXCustomChart::SetHorizAxis(THorizontalAxis Value) {
  if (FHorizAxis == Value) return;
  FHorizAxis = Value;
  if (FPanel) SetHorizontalAxis(FPanel->GetAxis(Value));
  Changed();
}

void TKXCustomChart::SetVertAxis(TVerticalAxis Value) {
  if (FVertAxis == Value) return;
  FVertAxis = Value;
  if (FPanel) SetVerticalAxis(FPanel->GetAxis(Value));
  Changed();
}

void TKXCustomChart::SetAxis(TKXChartAxis*& Slot, TKXChartAxis* Axis, bool Horizontal) {
  if (Slot == Axis) return;
  if (Slot) Slot->Charts()->Remove(this);
  Slot = Axis;
  if (Axis) Axis->Charts()->AddOne(this);
  if (Axis && FPanel) {
    if (Horizontal)
      FHorizAxis = Axis == FPanel->BottomAxis() ? haBottom
                   : Axis == FPanel->TopAxis()  ? haTop
                                                : haCustom;
    else
      FVertAxis = Axis == FPanel->LeftAxis()    ? vaLeft
                  : Axis == FPanel->RightAxis() ? vaRight
                                                : vaCustom;
  }
  AxisChanged(Axis);
}

void TKXCustomChart::SetHorizontalAxis(TKXChartAxis* Axis) {
  SetAxis(FHorizontalAxis, Axis, true);
}

void TKXCustomChart::SetVerticalAxis(TKXChartAxis* Axis) {
  SetAxis(FVerticalAxis, Axis, false);
}

void TKXCustomChart::AxisChanged(TKXChartAxis* Axis) {
  if (FSuppressAxesChange) return;
  if (Axis) {
    if (Axis == FVerticalAxis) {
      TKXChartList* List = Axis->Charts();
      for (int32_t I = 0; I < List->Count(); ++I) {
        TKXCustomChart* Other = List->Items(I);
        if (Other != this && Other->Group() == FGroup) SetGroupStyle(Other->GroupStyle());
      }
    }
    Axis->ValueChanged(this);
  }
  Changed();
}

void TKXCustomChart::Loaded() {
  inherited::Loaded();
  if (FPanel) {
    SetHorizontalAxis(FPanel->GetAxis(FHorizAxis));
    SetVerticalAxis(FPanel->GetAxis(FVertAxis));
  }
  FValues->Loaded();
}

void TKXCustomChart::Notification(TComponent* AComponent, TOperation Operation) {
  inherited::Notification(AComponent, Operation);
  if (Operation == opRemove && AComponent && AComponent == FPanel) SetPanel(nullptr);
}

int32_t TKXCustomChart::GroupIndex() const {
  return FVerticalAxis ? FVerticalAxis->Charts()->IndexOf(this) : -1;
}

void TKXCustomChart::SetGroupIndex(int32_t Value) {
  if (!FVerticalAxis) return;
  TKXChartList* List = FVerticalAxis->Charts();
  const int32_t Cur = List->IndexOf(this);
  if (Cur < 0 || List->Count() == 0) return;
  Value = std::clamp(Value, 0, List->Count() - 1);
  if (Value == Cur) return;
  List->Move(Cur, Value);
  FVerticalAxis->SetNeedAxisUpdate(true);
}

// --- TKXCustomChart: grouping and stacking ---

void TKXCustomChart::MarkVerticalAxis() {
  if (FVerticalAxis) FVerticalAxis->SetNeedAxisUpdate(true);
}

void TKXCustomChart::SetGroup(int32_t Value) {
  Value = std::max(Value, 0);
  if (FGroup == Value) return;
  FGroup = Value;
  MarkVerticalAxis();
  Changed();
}

void TKXCustomChart::SetGroupStyle(TKXGroupStyle Value) {
  if (FGroupStyle == Value) return;
  FGroupStyle = Value;
  TChartOptions O = FOptions;
  if (Value == gsNone)
    O.Exclude(coOffsetVertical);
  else
    O.Include(coOffsetVertical);
  SetOptions(O);
  if (FPanel) {
    TKXChartList* List = FPanel->Charts();
    for (int32_t I = 0; I < List->Count(); ++I) {
      TKXCustomChart* Other = List->Items(I);
      if (Other != this && Other->Group() == FGroup) Other->SetGroupStyle(Value);
    }
  }
  MarkVerticalAxis();
  Changed();
}

int32_t TKXCustomChart::GetGroupDimension() const {
  return 1;
}

double TKXCustomChart::GetAdjOffsetVertical() const {
  return FOptions.Contains(coOffsetVertical) ? FOffsetVertical : 0.0;
}

namespace {
// The number of value Index in dimension ValIndex of a chart of ChartClass (any with nil),
// 0 when the chart is of another class or has no such value or dimension.
double StackPart(const TKXCustomChart* Chart, int32_t Index, int32_t ValIndex,
                 TKXCustomChartClass ChartClass) {
  if (ChartClass && !Chart->InheritsFrom(ChartClass)) return 0.0;
  const TKXChartValues* V = Chart->Values();
  if (Index < 0 || Index >= V->Count()) return 0.0;
  const TKXChartValue* Value = V->Items(Index);
  if (ValIndex < 0 || ValIndex >= Value->ValueCount()) return 0.0;
  return Value->GetValue(ValIndex);
}
} // namespace

double TKXCustomChart::GetCumulativeValue(int32_t Index, int32_t ValIndex,
                                          TKXCustomChartClass ChartClass) const {
  double Total = StackPart(this, Index, ValIndex, ChartClass);
  if (!FPanel) return Total;
  // The stack below a chart is every visible chart of its group before it in the list (all
  // of them for a chart not in the list): one pass, not a FindGroupPrevious pass per chart
  // of the stack, which a group of many charts would pay for squared at every value.
  const TKXChartList* List = FPanel->Charts();
  for (int32_t I = 0; I < List->Count(); ++I) {
    const TKXCustomChart* C = List->Items(I);
    if (C == this) break;
    if (C->Visible() && C->FGroup == FGroup) Total += StackPart(C, Index, ValIndex, ChartClass);
  }
  return Total;
}

double TKXCustomChart::GetCumulativeTotal(int32_t Index, int32_t ValIndex,
                                          TKXCustomChartClass ChartClass) const {
  if (!FPanel) return 0.0;
  double Total = 0.0;
  const TKXChartList* List = FPanel->Charts();
  for (int32_t I = 0; I < List->Count(); ++I) {
    const TKXCustomChart* C = List->Items(I);
    if (C->Group() == FGroup) Total += StackPart(C, Index, ValIndex, ChartClass);
  }
  return Total;
}

// --- TKXCustomChart: what lies in view ---

void TKXCustomChart::UpdateAxisInfo(TKXChartAxis* Axis) {
  if (Axis && Axis == FHorizontalAxis) DoUpdateAxisInfo(Axis);
  if (!FPanel) Invalidate();
}

void TKXCustomChart::DoUpdateAxisInfo(TKXChartAxis* Axis) {
  const int32_t N = FValues->Count();
  if (!Axis->Zooming() || !FValues->Sorted()) {
    FFirstIndex = 0;
    FLastIndex = N - 1;
  } else {
    FFirstIndex = -1;
    FLastIndex = -1;
    const int32_t Dim = Axis->Dimension();
    const double Lo = Axis->ZoomMinimum(), Hi = Axis->ZoomMaximum();
    for (int32_t I = 0; I < N && FLastIndex == -1; ++I) {
      const double V = FValues->Items(I)->GetValue(Dim);
      if (FFirstIndex == -1 && V >= Lo) FFirstIndex = std::max(0, I - 1);
      if (FLastIndex == -1 && V > Hi) FLastIndex = I;
    }
    if (FFirstIndex == -1) FFirstIndex = 0;
    if (FLastIndex == -1) FLastIndex = N - 1;
  }
  FVisibleCount = FLastIndex - FFirstIndex + 1;
}

bool TKXCustomChart::IsVisible() const {
  return Visible() && FHorizontalAxis && FVerticalAxis;
}

bool TKXCustomChart::WantsCaptions(const TKXChartAxis* Axis) const {
  return Axis && FValues->SortByDimension() == Axis->Dimension() && FValues->HasCaptions();
}

std::string TKXCustomChart::GetAxisCaption(const TKXChartAxis* Axis, int32_t& Index,
                                           double Value) const {
  if (FValues->DimensionCount() < 2) {
    while (Index > 0 && Value < Index)
      --Index;
  } else {
    const int32_t Dim = Axis ? Axis->Dimension() : 0;
    while (Index > 0 && Index < FValues->Count() && FValues->Items(Index)->GetValue(Dim) > Value)
      --Index;
  }
  if (Index < 0 || Index >= FValues->Count()) return "";
  return FValues->Items(Index)->Caption();
}

// --- TKXCustomChart: drawing ---

bool TKXCustomChart::Drawing(TCanvas* Canvas, const TRect& ARect) {
  bool DoDraw = ARect.Width() > 0 && ARect.Height() > 0;
  if (FOnDrawing) FOnDrawing(this, Canvas, ARect, DoDraw);
  return DoDraw;
}

void TKXCustomChart::Drawn(TCanvas* Canvas, const TRect& ARect) {
  if (FOnDraw) FOnDraw(this, Canvas, ARect);
}

void TKXCustomChart::InternalDraw(TCanvas* Canvas, const TRect&) {
  SetCanvasResources(Canvas, nullptr, true, true);
}

void TKXCustomChart::Draw(TCanvas* Canvas, const TRect& ARect) {
  // OnDrawing and OnDraw may free the chart.
  const TLifeWatch Life(this);
  if (!Drawing(Canvas, ARect) || !Life.Alive()) return;
  FState = stDrawing;
  TFinally Idle([this, &Life] {
    if (Life.Alive()) FState = stIdle;
  });
  InternalDraw(Canvas, ARect);
  if (Life.Alive()) Drawn(Canvas, ARect);
}

void TKXCustomChart::Draw(TCanvas* Canvas, const TRect& ARect, TKXChartAxis* VertAxis,
                          TKXChartAxis* HorizAxis, bool UpdateAxis, bool SuppressEvents) {
  TKXChartAxis* const OldVert = FVerticalAxis;
  TKXChartAxis* const OldHoriz = FHorizontalAxis;
  TNotifyEvent OldOnChange = std::move(FOnChange);
  FOnChange = nullptr;
  FSuppressAxesChange = SuppressEvents;
  TFinally Restore([&, this] {
    // Moving back must not tell anybody either.
    FSuppressAxesChange = true;
    SetVerticalAxis(OldVert);
    SetHorizontalAxis(OldHoriz);
    FOnChange = std::move(OldOnChange);
    FSuppressAxesChange = false;
  });
  // An axis may turn itself visible when it gets a chart; it keeps the visibility it had.
  const auto Join = [this](TKXChartAxis* Axis, bool Vertical) {
    const bool WasVisible = Axis && Axis->Visible();
    TFinally KeepVisible([Axis, WasVisible] {
      if (Axis) Axis->SetVisible(WasVisible);
    });
    if (Vertical)
      SetVerticalAxis(Axis);
    else
      SetHorizontalAxis(Axis);
  };
  Join(VertAxis, true);
  Join(HorizAxis, false);
  if (UpdateAxis) {
    if (HorizAxis) HorizAxis->UpdateAxisValues();
    if (VertAxis) VertAxis->UpdateAxisValues();
  }
  TRect R = ARect;
  if ((VertAxis && VertAxis->Visible()) || (HorizAxis && HorizAxis->Visible()))
    R = DrawAxes(Canvas, ARect, VertAxis, HorizAxis);
  Draw(Canvas, R);
}

TRect TKXCustomChart::DrawAxes(TCanvas* Canvas, const TRect& ARect, TKXChartAxis* VertAxis,
                               TKXChartAxis* HorizAxis) {
  const TRect M = MeasureAxisRoom(
      Canvas, ARect,
      {{VertAxis, VertAxis && VertAxis->Location() == calLeft ? calLeft : calRight},
       {HorizAxis, HorizAxis && HorizAxis->Location() == calTop ? calTop : calBottom}});
  const int32_t ML = M.Left, MT = M.Top, MR = M.Right, MB = M.Bottom;
  if (HorizAxis && HorizAxis->Visible())
    HorizAxis->Draw(Canvas, {ARect.Left + ML, ARect.Top + MT, ARect.Right - MR, ARect.Bottom});
  if (VertAxis && VertAxis->Visible())
    VertAxis->Draw(Canvas, {ARect.Left, ARect.Top + MT, ARect.Right - MR, ARect.Bottom - MB});
  return {ARect.Left + ML, ARect.Top + MT, ARect.Right - MR, ARect.Bottom - MB};
}

void TKXCustomChart::Paint() {
  if (!IsVisible()) return;
  inherited::Paint();
  if (!FPanel) {
    if (FHorizontalAxis->NeedAxisUpdate()) FHorizontalAxis->UpdateAxisValues();
    if (FVerticalAxis->NeedAxisUpdate()) FVerticalAxis->UpdateAxisValues();
    Draw(Canvas(), ClientRect());
  } else if (ComponentState().Contains(csDesigning) || FInPaintTo) {
    Draw(Canvas(), ClientRect());
  }
}

bool TKXCustomChart::CMHitTest(int32_t X, int32_t Y) {
  return !FPanel && inherited::CMHitTest(X, Y);
}

// --- TKXCustomChart: canvas set-up ---

void TKXCustomChart::SetCanvasResources(TCanvas* Canvas, const TBrush* ABrush, const TPen* APen,
                                        const TFont* AFont, bool AdjustFont, bool AdjustPen) {
  const bool Zooming = (FHorizontalAxis && FHorizontalAxis->Zooming()) ||
                       (FVerticalAxis && FVerticalAxis->Zooming());
  double Factor = 1.0;
  if (Zooming) {
    const double H = FHorizontalAxis ? FHorizontalAxis->ZoomAmount() : 1.0;
    const double V = FVerticalAxis ? FVerticalAxis->ZoomAmount() : 1.0;
    Factor = std::sqrt(H * H + V * V);
  }
  if (AFont) {
    Canvas->SetFont(AFont);
    if (AdjustFont && Zooming && FOptions.Contains(coZoomFont))
      Canvas->Font()->SetSize(CanvasRound(Canvas->Font()->Size() * Factor));
  }
  if (ABrush) Canvas->SetBrush(ABrush);
  if (APen) {
    Canvas->SetPen(APen);
    if (AdjustPen && Zooming && FOptions.Contains(coZoomPen))
      Canvas->Pen()->SetWidth(CanvasRound(Canvas->Pen()->Width() * Factor));
  }
}

void TKXCustomChart::SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value,
                                        bool AdjustFont, bool AdjustPen) {
  SetCanvasResources(Canvas, FBrush.get(), FPen.get(), FFont.get(), AdjustFont, AdjustPen);
  if (Value) SetValueLook(Canvas, Value, AdjustPen);
}

void TKXCustomChart::SetValueLook(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustPen) {
  const bool Selected = Value->Selected();
  if (AdjustPen && Selected && FOptions.Contains(coSelectionPen))
    Canvas->Pen()->SetWidth(Canvas->Pen()->Width() + 1);
  if (Selected && FOptions.Contains(coSelectionFill))
    Canvas->Brush()->SetColor(FSelectionColor);
  else
    Canvas->Brush()->SetColor(GetColor(Value));
}

TKXChartShadow* TKXCustomChart::DrawShapeShadow(TCanvas* Canvas, const TRect& ARect,
                                                TKXShapeStyle Style, float Opacity) {
  if (FOptions.Contains(coNoChartShadow) || !FPanel || !FPanel->ChartShadow()->Visible())
    return nullptr;
  TKXChartShadow* Shadow = FPanel->ChartShadow();
  SetCanvasResources(Canvas, Shadow->Brush(), Shadow->Pen(), nullptr, true, true);
  Shadow->Draw(Canvas, Shadow->ShadowRect(ARect, false, Canvas), Style, Opacity);
  return Shadow;
}

void TKXCustomChart::SaveCanvasResources(TCanvas* Canvas, TOwned<TBrush>& ABrush,
                                         TOwned<TPen>& APen, TOwned<TFont>& AFont) {
  ABrush = CreateBrush();
  ABrush->Assign(Canvas->Brush());
  APen = CreatePen();
  APen->Assign(Canvas->Pen());
  AFont = CreateFont();
  AFont->Assign(Canvas->Font());
}

// --- TKXCustomChart: glyphs and labels ---

void TKXCustomChart::DrawGlyph(TCanvas* Canvas, const TRect& ARect) {
  TOwned<TBrush> B;
  TOwned<TPen> P;
  TOwned<TFont> F;
  SaveCanvasResources(Canvas, B, P, F);
  TFinally Restore(
      [&, this] { SetCanvasResources(Canvas, B.get(), P.get(), F.get(), false, true); });
  SetCanvasResources(Canvas, nullptr, false, false);
  Canvas->Brush()->SetColor(GetColor());
  auto Path = MakeOwned<TKXPathData>();
  Path->SetPathString(DefaultChartGlyphPaths[kx::GetChartType(this)]);
  Path->FitToRect(KXRect(ARect));
  Path->FillPath(Canvas, 1.0f);
}

void TKXCustomChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  const TColor Saved = Canvas->Brush()->Color();
  TFinally Restore([Canvas, Saved] { Canvas->Brush()->SetColor(Saved); });
  Canvas->Brush()->SetColor(GetColor(Value));
  Canvas->Rectangle(ARect);
}

void TKXCustomChart::DrawLabel(TCanvas* Canvas, const std::string& Caption, int32_t X, int32_t Y,
                               float) {
  if (Caption.empty()) return;
  const int32_t Lift = CanvasTrunc(Canvas->TextHeight("W") * 0.5);
  const TRect R{X, Y - Lift, X, Y - Lift};
  DrawTextLabel(Canvas, Caption, DT_CENTER | DT_NOCLIP, R);
}

void TKXCustomChart::DrawLabel(TCanvas*, const std::string&, const TRect&, float) {}

void TKXCustomChart::DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, int32_t X, int32_t Y) {
  DrawLabel(Canvas, FormatValue(Value, FValueLabelStyle), X, Y, Value->Opacity());
}

void TKXCustomChart::DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  DrawLabel(Canvas, FormatValue(Value, FValueLabelStyle), ARect, Value->Opacity());
}

std::string TKXCustomChart::FormatValue(const TKXChartValue* Value,
                                        TKXLegendTextStyle TextStyle) const {
  if (!Value) return "";
  const std::string Fmt = FVerticalAxis ? FVerticalAxis->Format() : std::string("%.4f");
  const auto Number = [&] { return FormatFloat(Fmt, Value->Value()); };
  const auto Percent = [&] {
    const TKXChartValues* C = Value->Collection();
    const double Total = C ? C->AbsSum() : 0.0;
    // A share of nothing is no share: "0.00 %" rather than a division by zero.
    const double Share =
        Total != 0.0 && std::isfinite(Total) ? Value->Value() / Total * 100.0 : 0.0;
    return Format("%.2f %%", Share);
  };
  const std::string& Caption = Value->Caption();
  switch (TextStyle) {
  case ltsCaption:
    return Caption;
  case ltsValue:
    return Number();
  case ltsValueCaption:
    return Number() + " " + Caption;
  case ltsCaptionValue:
    return Caption + " " + Number();
  case ltsPercent:
    return Percent();
  case ltsPercentCaption:
    return Percent() + " " + Caption;
  case ltsCaptionPercent:
    return Caption + " " + Percent();
  }
  return "";
}

// --- TKXCustomChart: selection ---

TRectF TKXCustomChart::PixelsToAxes(const TRect& ARect) const {
  return FixRect(TKXCustomChartPanel::RectToAxesRect(ARect, FHorizontalAxis, FVerticalAxis));
}

void TKXCustomChart::Select(const TRect& SelectionRect, TKXChartSelectionAction Action) {
  if (!FOptions.Contains(coSelectable)) return;
  FState = static_cast<TKXChartState>(static_cast<int>(stSelecting) + static_cast<int>(Action));
  TFinally Idle([this] { FState = stIdle; });
  InternalSelect(SelectionRect, Action);
}

void TKXCustomChart::InternalSelect(const TRect& ARect, TKXChartSelectionAction Action) {
  if (!FHorizontalAxis || !FVerticalAxis) return;
  const TRectF R = PixelsToAxes(ARect);
  TUpdateScope<TChartPanelListeners> Scope(FListeners.get());
  const int32_t Last = std::min(FLastIndex, FValues->Count() - 1);
  for (int32_t I = std::max(FFirstIndex, 0); I <= Last; ++I) {
    TKXChartValue* V = FValues->Items(I);
    if (V->Visible()) V->SetSelected(V->Selectable(R, Action));
  }
}

bool TKXCustomChart::IsSelectable(const TRect& SelectionRect) const {
  if (!FOptions.Contains(coSelectable) || !FHorizontalAxis || !FVerticalAxis) return false;
  const TRectF R = PixelsToAxes(SelectionRect);
  const int32_t Last = std::min(FLastIndex, FValues->Count() - 1);
  for (int32_t I = std::max(FFirstIndex, 0); I <= Last; ++I) {
    const TKXChartValue* V = FValues->Items(I);
    if (V->Visible() && V->Selectable(R, saSelect)) return true;
  }
  return false;
}

void TKXCustomChart::MouseHover(const TRect& ARect) {
  if (IsSelectable(ARect)) Screen.SetCursor(Cursor());
}

// --- TKXChart ---

void TKXChart::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Cursor", crHandPoint);
  inherited::DefineProperties(Filer);
  Filer.Property("HorizAxis", this, &TKXChart::HorizAxis, &TKXChart::SetHorizAxis, haBottom);
  Filer.Property("VertAxis", this, &TKXChart::VertAxis, &TKXChart::SetVertAxis, vaLeft);
  Filer.Property("Panel", this, &TKXChart::Panel, &TKXChart::SetPanel);
  Filer.Property("Caption", this, &TKXChart::Caption, &TKXChart::SetCaption);
  Filer.Property("Brush", this, &TKXChart::Brush);
  Filer.Property("Pen", this, &TKXChart::Pen);
  Filer.Property("Font", this, &TKXChart::Font);
  Filer.Property("Color", this, &TKXChart::Color, &TKXChart::SetColor);
  Filer.Property("Opacity", this, &TKXChart::Opacity, &TKXChart::SetOpacity, 1.0f);
  Filer.Property("ParentFont", this, &TKXChart::ParentFont, &TKXChart::SetParentFont, true);
  Filer.Property("ColorScheme", this, &TKXChart::ColorScheme, &TKXChart::SetColorScheme,
                 schDefault);
  Filer.Property("Group", this, &TKXChart::Group, &TKXChart::SetGroup, 0);
  Filer.Property("GroupStyle", this, &TKXChart::GroupStyle, &TKXChart::SetGroupStyle, gsNone);
  Filer.Property("ValueLabelFormat", this, &TKXChart::ValueLabelFormat,
                 &TKXChart::SetValueLabelFormat, std::string("#,##0.###"));
  Filer.Property("ValueLabelStyle", this, &TKXChart::ValueLabelStyle, &TKXChart::SetValueLabelStyle,
                 ltsCaption);
  // Without a panel the chart is on its local axes, which it stores with itself.
  const auto LocalAxis = [](TKXChartAxis* Axis, const TKXChart* Chart) -> TKXChartAxis* {
    return Chart->Panel() ? nullptr : Axis;
  };
  Filer.Property("HorizontalAxis", this,
                 [LocalAxis](TKXChart* C) { return LocalAxis(C->LocalHorizontalAxis(), C); });
  Filer.Property("VerticalAxis", this,
                 [LocalAxis](TKXChart* C) { return LocalAxis(C->LocalVerticalAxis(), C); });
  Filer.Property("Options", this, &TKXChart::Options, &TKXChart::SetOptions, DefaultChartOptions);
  Filer.Property("OffsetVertical", this, &TKXChart::OffsetVertical, &TKXChart::SetOffsetVertical);
  // Sample values are never stored.
  Filer.Property("Values", this, [&Filer](TKXChart* C) -> TKXChartValues* {
    return Filer.IsWriting() && C->Preview() ? nullptr : C->Values();
  });
  Filer.Property("Preview", this, &TKXChart::Preview, &TKXChart::SetPreview, true);
  Filer.Property("SelectionColor", this, &TKXChart::SelectionColor, &TKXChart::SetSelectionColor);
  Filer.Property("ParentSelectionColor", this, &TKXChart::ParentSelectionColor,
                 &TKXChart::SetParentSelectionColor, true);
}

} // namespace kx
