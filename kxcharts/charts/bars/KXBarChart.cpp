#include "kxcharts/charts/bars/KXBarChart.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

namespace {

bool IsBarChart(const TKXCustomChart* Chart) {
  return Chart && Chart->InheritsFrom(TKXCustomBarChart::StaticClass());
}

// Bars one pixel across, each a rectangle of one look, come in index order, so pixel column
// after pixel column (row after row for lying bars). Those that overlap in one column paint
// its span from the highest to the lowest of them: one box per column and look, however
// many bars share it, in place of a rectangle each.
class TBarColumns {
public:
  TBarColumns(TCanvas* Canvas, bool Standing) : FCanvas(Canvas), FStanding(Standing) {}
  ~TBarColumns() = default;

  // R is one pixel across; Color what a one-pixel rectangle of the look paints.
  void Add(const TRect& R, TColor Color) {
    const int32_t At = FStanding ? R.Left : R.Top;
    const int32_t Lo = FStanding ? R.Top : R.Left;
    const int32_t Hi = FStanding ? R.Bottom : R.Right;
    if (FOpen && Color == FColor && At == FAt && Lo <= FHi && FLo <= Hi) {
      FLo = std::min(FLo, Lo);
      FHi = std::max(FHi, Hi);
      return;
    }
    Flush();
    FOpen = true;
    FColor = Color;
    FAt = At;
    FLo = Lo;
    FHi = Hi;
  }
  // Paints the box that waits; before anything else is drawn over it.
  void Flush() {
    if (!FOpen) return;
    FOpen = false;
    TBrush* Brush = FCanvas->Brush();
    const TColor Color = Brush->Color();
    const TBrushStyle Style = Brush->Style();
    Brush->SetColor(FColor);
    Brush->SetStyle(bsSolid);
    FCanvas->FillRect(FStanding ? TRect{FAt, FLo, FAt + 1, FHi} : TRect{FLo, FAt, FHi, FAt + 1});
    Brush->SetColor(Color);
    Brush->SetStyle(Style);
  }

private:
  TCanvas* FCanvas;
  bool FStanding;
  bool FOpen = false;
  TColor FColor = clBlack;
  int32_t FAt = 0, FLo = 0, FHi = 0;
};

} // namespace

// --- TKXBarChartValue ---

void TKXBarChartValue::SetImageIndex(int32_t Value) {
  Value = std::max(Value, -1);
  if (FImageIndex == Value) return;
  FImageIndex = Value;
  Changed(false);
}

void TKXBarChartValue::SetParentStyle(bool Value) {
  if (FParentStyle == Value) return;
  FParentStyle = Value;
  Changed(false);
}

void TKXBarChartValue::SetStyle(TBarChartStyle Value) {
  if (FStyle == Value) return;
  FStyle = Value;
  FParentStyle = false;
  Changed(false);
}

TKXBarChartValues* TKXBarChartValue::Collection() const {
  TKXChartValues* Values = TKXChartValue::Collection();
  return Values && Values->InheritsFrom(TKXBarChartValues::StaticClass())
             ? static_cast<TKXBarChartValues*>(Values)
             : nullptr;
}

bool TKXBarChartValue::Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const {
  const TKXBarChartValues* Values = Collection();
  const TKXCustomBarChart* Chart = Values ? Values->Owner() : nullptr;
  const TKXCustomChartPanel* Panel = Chart ? Chart->Panel() : nullptr;
  if (!Panel) return inherited::Selectable(SelRect, Action);
  // A number that is no number has no bar to hit.
  if (!TKXCustomBarChart::HasFiniteNumbers(this)) return false;
  const TRect Bar = FixRect(Chart->GetBarRect(Panel->ChartRect(), this));
  const TRect Sel = FixRect(
      TKXCustomChartPanel::AxesRectToRect(SelRect, Chart->HorizontalAxis(), Chart->VerticalAxis()));
  // A selection of no size is a point; the closed overlap of a rectangle of no size with the
  // bar is exactly that point lying in the bar.
  return inherited::Selectable(KXRect(Bar), KXRect(Sel), Action);
}

void TKXBarChartValue::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXBarChartValue*>(Source)) {
    FImageIndex = Src->FImageIndex;
    FParentStyle = Src->FParentStyle;
    FStyle = Src->FStyle;
  }
  inherited::Assign(Source);
}

void TKXBarChartValue::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("ParentStyle", this, &TKXBarChartValue::ParentStyle,
                 &TKXBarChartValue::SetParentStyle, true);
  // Stored after ParentStyle: reading it must not undo a ParentStyle read before it.
  Filer.Property(
      "Style", this, &TKXBarChartValue::Style,
      [](TKXBarChartValue* V, TBarChartStyle S) {
        if (V->FStyle == S) return;
        V->FStyle = S;
        V->Changed(false);
      },
      bsRectangle);
  Filer.Property("ImageIndex", this, &TKXBarChartValue::ImageIndex,
                 &TKXBarChartValue::SetImageIndex, -1);
}

// --- TKXBarChartValues ---

TKXCustomBarChart* TKXBarChartValues::Owner() const {
  TKXCustomChart* Chart = TKXChartValues::Owner();
  return IsBarChart(Chart) ? static_cast<TKXCustomBarChart*>(Chart) : nullptr;
}

TKXBarChartValue* TKXBarChartValues::Add() {
  return static_cast<TKXBarChartValue*>(TKXChartValues::Add(0.0));
}

TKXBarChartValue* TKXBarChartValues::Add(double Value, const std::string& Caption, TColor Color,
                                         int32_t ImageIndex) {
  TUpdateScope<TKXChartValues> Scope(this);
  auto* Item = static_cast<TKXBarChartValue*>(TKXChartValues::Add(Value, Caption, Color));
  Item->SetImageIndex(ImageIndex);
  return Item;
}

int32_t TKXBarChartValues::GetSortByDimension() const {
  return FNumDimensions;
}

void TKXBarChartValues::CustomSort(TValuesSortCompare SCompare) {
  if (GetSortByDimension() < FNumDimensions) {
    inherited::CustomSort(SCompare);
    return;
  }
  // Every bar reads 0 on the index "dimension": a sort would only shuffle equal keys.
  FSorted = true;
}

double TKXBarChartValues::GetAxisMaximum(int32_t Dimension) const {
  const TKXCustomBarChart* Chart = Owner();
  if (!Chart) return inherited::GetAxisMaximum(Dimension);
  if (Dimension != Chart->Orientation()) return inherited::GetAxisMaximum(1) + 0.5;
  const double Max = inherited::GetAxisMaximum(0);
  return Chart->GroupStyle() == gsStacked100 ? Max : std::max(Max, Chart->GetAdjOrigin());
}

double TKXBarChartValues::GetAxisMinimum(int32_t Dimension) const {
  const TKXCustomBarChart* Chart = Owner();
  if (!Chart) return inherited::GetAxisMinimum(Dimension);
  if (Dimension != Chart->Orientation()) return inherited::GetAxisMinimum(1) - 0.5;
  const double Min = inherited::GetAxisMinimum(0);
  return Chart->GroupStyle() == gsStacked100 ? Min : std::min(Min, Chart->GetAdjOrigin());
}

// --- TKXCustomBarChart: life ---

void TKXCustomBarChart::InitializeChart() {
  inherited::InitializeChart();
  FBarSizePct = 70;
  FOrientation = boVertical;
  SetAxesHints(TAxisHints{ahBarScale});
  FUseOrigin = true;
}

TOwned<TKXChartValues> TKXCustomBarChart::CreateChartValues() {
  return MakeOwned<TKXBarChartValues>(this, ClassOf<TKXBarChartValue>());
}

void TKXCustomBarChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TFinally KeepPreview([this] { FPreview = true; });
    TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
    TKXBarChartValues* V = Values();
    V->Add(1000, "Manufacturing", TColor(-1), -1);
    V->Add(3000, "Marketing", TColor(-1), -1);
    V->Add(500, "Research", TColor(-1), -1);
    V->Add(4000, "Development", TColor(-1), -1);
    V->Add(1500, "Purchases", TColor(-1), -1);
  }
}

void TKXCustomBarChart::BeforeDestruction() {
  // Let go of the list first, without telling anybody: the chart is going.
  if (FImageList) RemoveFreeNotification(FImageList);
  FImageList = nullptr;
  inherited::BeforeDestruction();
}

void TKXCustomBarChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXCustomBarChart*>(Source)) {
    FUseOrigin = Src->FUseOrigin;
    FBarSizePct = Src->FBarSizePct;
    FBarStyle = Src->FBarStyle;
    FOrientation = Src->FOrientation;
    FClustered = Src->FClustered;
    SetImageList(Src->FImageList);
  }
  inherited::Assign(Source);
}

void TKXCustomBarChart::Notification(TComponent* AComponent, TOperation Operation) {
  inherited::Notification(AComponent, Operation);
  if (Operation == opRemove && AComponent && AComponent == FImageList) SetImageList(nullptr);
}

// --- TKXCustomBarChart: properties ---

void TKXCustomBarChart::SetBarSizePct(int32_t Value) {
  Value = std::clamp(Value, 1, 100);
  if (FBarSizePct == Value) return;
  FBarSizePct = Value;
  Changed();
}

void TKXCustomBarChart::SetBarStyle(TBarChartStyle Value) {
  if (FBarStyle == Value) return;
  FBarStyle = Value;
  Changed();
}

void TKXCustomBarChart::SetImageList(TImageList* Value) {
  if (FImageList == Value) return;
  if (FImageList) RemoveFreeNotification(FImageList);
  FImageList = Value;
  if (Value) FreeNotification(Value);
  Changed();
}

template <class F> void TKXCustomBarChart::ForGroup(F Apply) {
  if (!FPanel) return;
  const TKXChartList* List = FPanel->Charts();
  for (int32_t I = 0; I < List->Count(); ++I) {
    TKXCustomChart* Other = List->Items(I);
    if (Other != this && Other->Group() == FGroup && IsBarChart(Other))
      Apply(static_cast<TKXCustomBarChart*>(Other));
  }
}

void TKXCustomBarChart::SetOrientation(TBarOrientation Value) {
  if (FOrientation == Value) return;
  const bool SavedPreview = FPreview;
  TFinally KeepPreview([this, SavedPreview] { FPreview = SavedPreview; });
  FOrientation = Value;
  // A group always shares one orientation.
  if (FGroupStyle != gsNone) ForGroup([Value](TKXCustomBarChart* C) { C->SetOrientation(Value); });
  Values()->InvalidateMetaData();
  Changed(nullptr);
}

void TKXCustomBarChart::SetUseOrigin(bool Value) {
  if (FUseOrigin == Value) return;
  const bool SavedPreview = FPreview;
  TFinally KeepPreview([this, SavedPreview] { FPreview = SavedPreview; });
  FUseOrigin = Value;
  Values()->InvalidateMetaData();
  Changed(nullptr);
}

void TKXCustomBarChart::SetClustered(bool Value) {
  if (FClustered == Value) return;
  FClustered = Value;
  ForGroup([Value](TKXCustomBarChart* C) { C->SetClustered(Value); });
  Changed();
}

// --- TKXCustomBarChart: axes, origin and stacks ---

int32_t TKXCustomBarChart::GetGroupDimension() const {
  return FOrientation;
}

const TKXCustomChart* TKXCustomBarChart::StackPrevious() const {
  return FGroupStyle != gsNone && FPanel ? FPanel->Charts()->FindGroupPrevious(this) : nullptr;
}

const TKXCustomBarChart* TKXCustomBarChart::StackLeader() const {
  if (FGroupStyle == gsNone || !FPanel) return this;
  // A chart takes over its predecessor's origin and offset when it stacks and that
  // predecessor is a bar chart, which took them over from its own in the same way: the
  // answer is the first of the unbroken run of such charts that ends here. One pass over
  // the list instead of a walk of predecessors, each of which is a pass.
  const TKXCustomBarChart* Leader = nullptr; // that of the last visible chart of the group
  const TKXChartList* List = FPanel->Charts();
  for (int32_t I = 0; I < List->Count(); ++I) {
    const TKXCustomChart* C = List->Items(I);
    if (C == this) break;
    if (!C->Visible() || C->Group() != FGroup) continue;
    if (!IsBarChart(C)) {
      Leader = nullptr;
      continue;
    }
    const auto* Bar = static_cast<const TKXCustomBarChart*>(C);
    if (!Leader || Bar->FGroupStyle == gsNone) Leader = Bar;
  }
  return Leader ? Leader : this;
}

double TKXCustomBarChart::GetAdjOrigin() const {
  const TKXCustomBarChart* Leader = StackLeader();
  if (!Leader->FUseOrigin || !Leader->FVerticalAxis) return 0.0;
  // The vertical axis's grid decides in both orientations.
  return Leader->FVerticalAxis->Grid()->Origin();
}

double TKXCustomBarChart::GetAdjOffsetVertical() const {
  return StackLeader()->TKXChart::GetAdjOffsetVertical();
}

bool TKXCustomBarChart::ClusterSlot(int32_t& Slot, int32_t& Slots) const {
  if (!FClustered || FGroupStyle != gsNone || !FPanel) return false;
  Slot = -1;
  Slots = 0;
  const TKXChartList* List = FPanel->Charts();
  for (int32_t I = 0; I < List->Count(); ++I) {
    const TKXCustomChart* C = List->Items(I);
    if (C == this) Slot = Slots;
    if (!C->Visible() || C->Group() != FGroup || !IsBarChart(C)) continue;
    const auto* Bar = static_cast<const TKXCustomBarChart*>(C);
    if (Bar->FClustered && Bar->FGroupStyle == gsNone) ++Slots;
  }
  // A hidden chart has no slot of its own; its bars take the last one.
  if (Slot < 0 || Slot >= Slots) Slot = Slots - 1;
  return Slots > 1;
}

// --- TKXCustomBarChart: bar rectangles ---

TRect TKXCustomBarChart::GetBarRect(const TRect& ARect, const TKXBarChartValue* Value) const {
  return GetBarRect(ARect, Value, StackPrevious(), GetBarHalfSize(), GetAdjOrigin(),
                    GetAdjOffsetVertical());
}

double TKXCustomBarChart::GetBarCentre(const TKXBarChartValue* Value) const {
  return Value->Index();
}

double TKXCustomBarChart::GetBarStep() const {
  return 1.0;
}

double TKXCustomBarChart::GetBarHalfSize() const {
  const double Step = GetBarStep();
  return (Step > 0.0 && std::isfinite(Step) ? Step : 1.0) * FBarSizePct / 200.0;
}

bool TKXCustomBarChart::HasFiniteNumbers(const TKXChartValue* Value) {
  for (const double N : Value->Numbers())
    if (!std::isfinite(N)) return false;
  return true;
}

TRect TKXCustomBarChart::GetBarRect(const TRect& ARect, const TKXBarChartValue* Value,
                                    const TKXCustomChart* PrevChart, double BarHalfSize,
                                    double Origin, double Offset) const {
  const TKXChartAxis* Index = IndexAxis();
  const TKXChartAxis* ValueAxis = this->ValueAxis();
  if (!Index || !ValueAxis) return {};
  const int32_t I = Value->Index();
  const double V = Value->Value();
  // The stack adds up the bars' numbers, which are the values' default dimension; the
  // values of one index stack, wherever a sparse kind puts them.
  const int32_t Dim = FValues->DefaultDimension();
  const double Cum = PrevChart ? PrevChart->GetCumulativeValue(I, Dim, ChartClass()) : 0.0;
  double E1, E2;
  switch (FGroupStyle) {
  case gsStacked:
    E1 = Offset + V + Cum;
    E2 = Offset + std::max(Cum, Origin);
    break;
  case gsStacked100: {
    const double Total = GetCumulativeTotal(I, Dim, ChartClass());
    const double Min = ValueAxis->Minimum(), Span = ValueAxis->Maximum() - Min;
    if (Total == 0.0 || !std::isfinite(Total)) {
      // Shares of nothing: the bar has no length, where the axis starts.
      E1 = E2 = Min;
    } else {
      E1 = Min + Span * ((V + Cum) / Total);
      E2 = Min + Span * (Cum / Total);
    }
    break;
  }
  default:
    if (FOrientation == boVertical) {
      E1 = Offset + V;
      E2 = Offset + Origin;
    } else {
      // Lying bars of an ungrouped chart start at the offset alone.
      E1 = Offset + V + Cum;
      E2 = Offset + Cum;
    }
  }
  double Centre = GetBarCentre(Value), Half = BarHalfSize;
  int32_t Slot = 0, Slots = 1;
  if (FClustered && ClusterSlot(Slot, Slots)) {
    Half = BarHalfSize / Slots;
    Centre = Centre - BarHalfSize + (2 * Slot + 1) * Half;
  }
  return SpanRect(ARect, Centre, Half, E1, E2);
}

TRect TKXCustomBarChart::SpanRect(const TRect& ARect, double Centre, double Half, double E1,
                                  double E2) const {
  const TKXChartAxis* Index = IndexAxis();
  const TKXChartAxis* ValueAxis = this->ValueAxis();
  if (!Index || !ValueAxis) return {};
  const TAxisPixels Across(this, Index, ARect), Along(this, ValueAxis, ARect);
  const int32_t S1 = Across(Centre - Half);
  int32_t S2 = Across(Centre + Half);
  // A bar narrower than a pixel keeps one: dense bars would otherwise vanish, or show as a
  // picket fence of those whose edges happen to round apart.
  if (S2 == S1) ++S2;
  const int32_t P1 = Along(E1);
  const int32_t P2 = Along.Repeated(E2);
  const auto [Lo, Hi] = std::minmax(S1, S2);
  const auto [Near, Far] = std::minmax(P1, P2);
  return FOrientation == boVertical ? TRect{Lo, Near, Hi, Far} : TRect{Near, Lo, Far, Hi};
}

TBarChartStyle TKXCustomBarChart::GetBarStyle(const TKXBarChartValue* Value) const {
  return Value->ParentStyle() ? FBarStyle : Value->Style();
}

// --- TKXCustomBarChart: drawing ---

void TKXCustomBarChart::DrawBar(TCanvas* Canvas, const TRect& ARect,
                                const TKXBarChartValue* Value) {
  bool DefaultDraw = true;
  if (FOnCustomDrawValue) {
    const TRect Copy = ARect;
    FOnCustomDrawValue(this, Canvas, Copy, Value, DefaultDraw);
    if (!DefaultDraw) return;
  }
  const TBarChartStyle Style = GetBarStyle(Value);
  if (Style < bsGradient) {
    DrawShape(Canvas, ARect, FImageList, Value->ImageIndex(), static_cast<TKXShapeStyle>(Style),
              shpRectangle, true, clBtnHighlight, clBtnShadow, 3);
  } else if (Style == bsGradient) {
    const TColor Colors[2] = {FPanel ? FPanel->Color() : clBtnFace, Canvas->Brush()->Color()};
    LineGradient(Canvas, ARect, Colors, 1, 1, static_cast<TGradientOrientation>(FOrientation),
                 Value->Opacity() * FOpacity);
  } else if (Style == bsArrow) {
    // The per cent applies a second time, to the bar's own pixels.
    const TArrowOptions Options = TArrowOptions::FromBits(6);
    const float Opacity = FOpacity * Value->Opacity();
    if (FOrientation == boVertical) {
      const int32_t X = ARect.Left + CanvasDiv(ARect.Right - ARect.Left, 2);
      const int32_t T = CanvasRound((double(ARect.Right) - ARect.Left) * FBarSizePct / 100.0);
      DrawArrow(Canvas, X, ARect.Bottom, X, ARect.Top, T, "", Options, CanvasDiv(T, 2), Opacity);
    } else {
      const int32_t Y = ARect.Top + CanvasDiv(ARect.Bottom - ARect.Top, 2);
      const int32_t T = CanvasRound((double(ARect.Bottom) - ARect.Top) * FBarSizePct / 100.0);
      DrawArrow(Canvas, ARect.Left, Y, ARect.Right, Y, T, "", Options, CanvasDiv(T, 2), Opacity);
    }
  }
}

void TKXCustomBarChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const TKXBarChartValues* V = Values();
  const int32_t Count = V->Count();
  TKXChartAxis* Index = IndexAxis();
  if (Count == 0 || !Index || !ValueAxis()) return;
  // The change road tells the horizontal axis alone, which is not the index axis of lying
  // bars: the span is brought up to date here, at the cost of a few comparisons.
  DoUpdateAxisInfo(Index);
  const int32_t First = std::max(FFirstIndex, 0), Last = std::min(FLastIndex, Count - 1);

  const double Origin = GetAdjOrigin();
  const double Step = GetBarStep();
  const double Unit =
      double(Index->AxisToPixel(std::isfinite(Step) ? Step : 0.0, ARect)) - Index->AxisToPixel(0.0, ARect);
  FBarSize = CanvasRound(Unit * FBarSizePct / 100.0);
  const double BarHalfSize = GetBarHalfSize();
  const double Offset = GetAdjOffsetVertical();
  const TKXCustomChart* Prev = StackPrevious();

  // Both axes' mappings once, for the four edges of every bar.
  TFinally Forget([this] { FPixels = {}; });
  const TKXChartAxis* Axes[2] = {FHorizontalAxis, FVerticalAxis};
  for (size_t K = 0; K < 2; ++K) {
    TKXLinearPixels Map;
    if (Axes[K]->LinearPixels(ARect, Map)) FPixels[K] = {Axes[K], ARect, Map};
  }

  const TKXChartShadow* Shadow =
      !FOptions.Contains(coNoChartShadow) && FPanel && FPanel->ChartShadow()->Visible()
          ? FPanel->ChartShadow()
          : nullptr;
  const bool Labels = FOptions.Contains(coValueLabels);
  // A bar without area draws nothing, so its canvas need not be set up, unless somebody
  // wants to hear of it or a style paints beyond its rectangle.
  const bool Silent = !FOnCustomDrawValue && !Labels;
  // One-pixel rectangles go out per column when nothing else is drawn with them and the
  // chart's pen paints them whole (one pixel wide, solid, copied) or not at all.
  const bool Standing = FOrientation == boVertical;
  TBarColumns Columns(Canvas, Standing);
  bool Reduce = Silent && !Shadow;
  bool PenPaints = false;
  TColor PenColor = clBlack;
  if (Reduce) {
    SetCanvasResources(Canvas, nullptr, true, true);
    const TPen* Pen = Canvas->Pen();
    PenPaints = Pen->Style() == psSolid;
    PenColor = Pen->Color();
    Reduce = Pen->Mode() == pmCopy && Pen->Width() == 1 &&
             (PenPaints || (Pen->Style() == psClear && Canvas->Brush()->Style() == bsSolid));
  }
  for (int32_t I = First; I <= Last; ++I) {
    const TKXBarChartValue* Value = V->Items(I);
    if (!Value->Visible() || !(Value->Opacity() > 0.0f) || !HasFiniteNumbers(Value)) continue;
    TRect R = GetBarRect(ARect, Value, Prev, BarHalfSize, Origin, Offset);
    if (Value->Scale() != 1.0f) {
      const double Grow = Value->Scale() - 1.0;
      R = FixRect(ScaleRect(R, std::abs(KXRectWidth(R)) * Grow, std::abs(KXRectHeight(R)) * Grow));
    }
    if (Silent && PaintsInsideRect(Value)) {
      if (R.IsEmpty()) continue;
      if (Reduce && !Value->Selected() && (Standing ? R.Width() : R.Height()) == 1) {
        TRect Spans[2];
        TColor Color = clBlack;
        const int32_t N = ColumnSpans(Value, R, {PenPaints, PenColor}, Spans, Color);
        if (N >= 0) {
          for (int32_t K = 0; K < N; ++K)
            Columns.Add(Spans[K], Color);
          continue;
        }
      }
    }
    Columns.Flush();
    if (Shadow) {
      SetCanvasResources(Canvas, Shadow->Brush(), Shadow->Pen(), nullptr, true, true);
      DrawBarValue(Canvas, Shadow->ShadowRect(R, false, Canvas), Value, true);
      R = Shadow->NonShadowRect(R, false, Canvas);
    }
    SetCanvasResources(Canvas, Value, true, true);
    DrawBarValue(Canvas, R, Value, false);
    if (Labels) DrawValueLabel(Canvas, Value, R, Unit);
  }
  Columns.Flush();
}

void TKXCustomBarChart::DrawValueLabel(TCanvas* Canvas, const TKXBarChartValue* Value,
                                       const TRect& R, double Unit) {
  const std::string Text = FormatValue(Value, FValueLabelStyle);
  if (Text.empty()) return;
  TRect Box = FixRect(R);
  Box.Bottom = Box.Top + Canvas->TextHeight(Text);
  Box = KXInflateRect(Box, CanvasTrunc(Unit / 2.0 - 2.0), 0);
  if (FOrientation == boVertical) {
    const int32_t Lift = Canvas->TextHeight("W");
    Box.Top -= Lift;
    Box.Bottom -= Lift;
  } else {
    const int32_t Shift = Canvas->TextWidth("W");
    Box.Left += Shift;
    Box.Right += Shift;
  }
  const TPoint P = CanvasCenterPoint(Box);
  DrawLabel(Canvas, Text, P.X, P.Y, LabelOpacity(Value));
}

void TKXCustomBarChart::DrawBarValue(TCanvas* Canvas, const TRect& R, const TKXBarChartValue* Value,
                                     bool) {
  DrawBar(Canvas, R, Value);
}

bool TKXCustomBarChart::PaintsInsideRect(const TKXBarChartValue* Value) const {
  return GetBarStyle(Value) != bsArrow;
}

int32_t TKXCustomBarChart::ColumnSpans(const TKXBarChartValue* Value, const TRect& R,
                                       const TColumnPen& Pen, TRect (&Spans)[2],
                                       TColor& Color) const {
  if (GetBarStyle(Value) != bsRectangle) return -1;
  Spans[0] = R;
  Color = Pen.Paints ? Pen.Color : GetColor(Value);
  return 1;
}

float TKXCustomBarChart::LabelOpacity(const TKXBarChartValue*) const {
  return 1.0f;
}

void TKXCustomBarChart::DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) {
  if (!Value || !Value->InheritsFrom(TKXBarChartValue::StaticClass())) {
    inherited::DrawGlyph(Canvas, Value, ARect);
    return;
  }
  TOwned<TBrush> B;
  TOwned<TPen> P;
  TOwned<TFont> F;
  SaveCanvasResources(Canvas, B, P, F);
  TFinally Restore(
      [&, this] { SetCanvasResources(Canvas, B.get(), P.get(), F.get(), false, false); });
  SetCanvasResources(Canvas, Value, false, false);
  DrawBar(Canvas, ARect, static_cast<const TKXBarChartValue*>(Value));
}

// --- TKXCustomBarChart: captions and the span in view ---

bool TKXCustomBarChart::WantsCaptions(const TKXChartAxis* Axis) const {
  if (!Axis) return false;
  return FOrientation == boHorizontal ? Axis->IsVertical() : !Axis->IsVertical();
}

std::string TKXCustomBarChart::GetAxisCaption(const TKXChartAxis* Axis, int32_t& Index,
                                              double Value) const {
  if (Axis && Axis->Dimension() == FOrientation) return Axis->FormatValue(Value);
  // Index walks down while it lies above Value: to the whole part of Value, at once, since
  // an axis of a hundred thousand bars asks once per label.
  if (Index > 0 && Value < Index) Index = Value >= 1.0 ? static_cast<int32_t>(Value) : 0;
  if (Index < 0 || Index >= FValues->Count()) return "";
  return FValues->Items(Index)->Caption();
}

void TKXCustomBarChart::UpdateAxisInfo(TKXChartAxis* Axis) {
  if (Axis && Axis == IndexAxis()) DoUpdateAxisInfo(Axis);
  if (!FPanel) Invalidate();
}

void TKXCustomBarChart::DoUpdateAxisInfo(TKXChartAxis* Axis) {
  const int32_t Count = FValues->Count();
  if (Axis->Zooming() && FValues->Sorted()) {
    FFirstIndex = std::max(0, CanvasTrunc(Axis->ZoomMinimum()));
    const int32_t Last = CanvasTrunc(Axis->ZoomMaximum() + 1.0);
    FLastIndex = Last < 0 ? -1 : std::min(Last, Count - 1);
  } else {
    FFirstIndex = 0;
    FLastIndex = Count - 1;
  }
  FVisibleCount = FLastIndex - FFirstIndex + 1;
}

// --- TKXBarChart ---

void TKXBarChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("BarSizePct", this, &TKXBarChart::BarSizePct, &TKXBarChart::SetBarSizePct, 70);
  Filer.Property("BarStyle", this, &TKXBarChart::BarStyle, &TKXBarChart::SetBarStyle, bsRectangle);
  Filer.Property("ImageList", this, &TKXBarChart::ImageList, &TKXBarChart::SetImageList);
  Filer.Property("UseOrigin", this, &TKXBarChart::UseOrigin, &TKXBarChart::SetUseOrigin, true);
  Filer.Property("Orientation", this, &TKXBarChart::Orientation, &TKXBarChart::SetOrientation,
                 boVertical);
  Filer.Property("Clustered", this, &TKXBarChart::Clustered, &TKXBarChart::SetClustered, false);
}

} // namespace kx
