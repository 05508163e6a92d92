#include "kxcharts/charts/graphs/KXGraphChart.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"

namespace kx {

// --- Properties ---

void TKXGraphChart::SetOrientation(TKXChartOrientation Value) {
  if (FOrientation == Value) return;
  FOrientation = Value;
  OrientationChanged();
}

void TKXGraphChart::OrientationChanged() {
  // A stored form keeps the places it was saved with.
  if (!ComponentState().Contains(csLoading)) Arrange();
}

void TKXGraphChart::SetLevelGapPercent(int32_t Value) {
  if (FLevelGapPercent == Value) return;
  FLevelGapPercent = Value;
  Changed();
}

void TKXGraphChart::SetGraphOptions(TGraphOptions Value) {
  if (FGraphOptions == Value) return;
  FGraphOptions = Value;
  Changed();
}

// --- Life ---

void TKXGraphChart::InitializeChart() {
  FArrowPen = MakeOwned<TPen>();
  inherited::InitializeChart();
  FLevelGapPercent = 50;
  FGraphOptions = TGraphOptions::FromBits(DefaultGraphOptions);
  Values()->SetSorted(true);
  Values()->SetSortByDimension(Values()->LevelDim());
  if (ComponentState().Contains(csDesigning)) {
    // The samples made before the values were sorted are made again in level order.
    Values()->Clear();
    CreatePreviewValues();
  }
}

void TKXGraphChart::InitializeChangeEvents() {
  inherited::InitializeChangeEvents();
  FArrowPen->SetOnChange([this](TObject* Sender) { SenderChanged(Sender); });
}

void TKXGraphChart::BeforeDestruction() {
  if (FArrowPen) FArrowPen->SetOnChange(nullptr);
  inherited::BeforeDestruction();
}

TOwned<TKXChartValues> TKXGraphChart::CreateChartValues() {
  auto Values = MakeOwned<TKXGraphChartValues>(this, ClassOf<TKXGraphChartValue>());
  Values->SetOnNotify(
      [this](TKXChartValue* Value, TCollectionNotification Action) { ValueNotify(Value, Action); });
  return Values;
}

void TKXGraphChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXGraphChart*>(Source)) {
    FGraphOptions = Src->FGraphOptions;
    FOrientation = Src->FOrientation;
    FLevelGapPercent = Src->FLevelGapPercent;
    FArrowPen->Assign(Src->FArrowPen.get());
  }
  inherited::Assign(Source);
}

void TKXGraphChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  using T = TKXGraphChart;
  Filer.Property("ImageList", this, &T::ImageList, &T::SetImageList);
  Filer.Property("DefaultShape", this, &T::DefaultShape);
  Filer.Property("Orientation", this, &T::Orientation, &T::SetOrientation, orTopDown);
  Filer.Property("LevelGapPercent", this, &T::LevelGapPercent, &T::SetLevelGapPercent, 50);
  Filer.Property("ArrowPen", this, &T::ArrowPen);
  Filer.Property("GraphOptions", this, &T::GraphOptions, &T::SetGraphOptions,
                 TGraphOptions::FromBits(DefaultGraphOptions));
}

void TKXGraphChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  TFinally Finish([this] {
    EndUpdate();
    Arrange();
    FPreview = true;
  });
  BeginUpdate();
  TKXGraphChartValue* Startup = Values()->Add(0.0, "Startup");
  Startup->SetLevel(0);
  TKXGraphChartValue* Research = Startup->AddChild("Research");
  TKXGraphChartValue* Development = Startup->AddChild("Development");
  Development->SetLevel(2);
  Research->Links()->Add()->SetValue(Development);
  TKXGraphChartValue* Manufacturing = Development->AddChild("Manufacturing");
  TKXGraphChartValue* Marketing = Development->AddChild("Marketing");
  Development->AddChild("Testing");
  TKXGraphChartValue* Purchases = Manufacturing->AddChild("Purchases");
  Marketing->Links()->Add()->SetValue(Purchases);
}

// --- Layout ---

void TKXGraphChart::Arrange() {
  TKXGraphChartValues* Nodes = Values();
  const int32_t Count = Nodes->Count();
  if (!Nodes->Sorted() || Count < 2) return;
  const bool WasPreview = FPreview;
  TFinally RestorePreview([this, WasPreview] { FPreview = WasPreview; });
  TUpdateScope<TKXChartValues> Scope(Nodes);

  // Runs of equal levels in collection order: the nodes of one row or column each.
  std::vector<int32_t> Runs;
  int32_t Cur = Nodes->Items(0)->Level(), Run = 0, Widest = 0;
  for (int32_t I = 0; I < Count; ++I) {
    TKXGraphChartValue* Node = Nodes->Items(I);
    Node->Links()->ArrangeConnections(FOrientation);
    const int32_t Level = Node->Level();
    if (Level == Cur) {
      ++Run;
    } else {
      Runs.push_back(Run);
      Cur = Level;
      Run = 1;
    }
    Widest = std::max(Widest, Run);
  }
  Runs.push_back(Run);
  const double L = Cur;

  const double Gap = FLevelGapPercent / 100.0 + 1.0;
  const double StepH = Nodes->MaxValue(Nodes->HeightDim()) * Gap;
  const double StepW = Nodes->MaxValue(Nodes->WidthDim()) * Gap;

  double X = 0, Y = 0, DX = 0, DY = 0, SpanW = 0, SpanH = 0;
  switch (FOrientation) {
  case orTopDown:
    Y = (StepH - 1.0) * L;
    DY = -StepH;
    SpanW = StepW * Widest;
    SpanH = StepH * L;
    break;
  case orBottomUp:
    DY = StepH;
    SpanW = StepW * Widest;
    SpanH = StepH * L;
    break;
  case orLeftRight:
    DX = StepW;
    SpanW = StepW * L;
    SpanH = StepH * Widest;
    break;
  case orRightLeft:
    X = (StepW - 1.0) * L;
    DX = -StepW;
    SpanW = StepW * L;
    SpanH = StepH * Widest;
    break;
  }

  int32_t I = 0;
  for (const int32_t N : Runs) {
    double PX = X, PY = Y, SX = 0, SY = 0;
    if (DX == 0) {
      SX = SpanW / N;
      PX = SX / 2;
    } else {
      SY = SpanH / N;
      PY = SY / 2;
    }
    for (const int32_t End = I + N; I < End; ++I) {
      TKXGraphChartValue* Node = Nodes->Items(I);
      Node->SetX(PX + (StepW - Node->Width()) / 2);
      Node->SetY(PY + (StepH - Node->Height()) / 2);
      PX += SX;
      PY += SY;
    }
    X += DX;
    Y += DY;
  }
}

// --- Drawing ---

void TKXGraphChart::DrawShape(TCanvas* Canvas, const TRect& Rect, TKXShapeChartValue* Value) {
  const TRect R = Rect;
  inherited::DrawShape(Canvas, R, Value);
  if (auto* Node = dynamic_cast<TKXGraphChartValue*>(Value)) DrawLinks(Canvas, R, Node);
}

void TKXGraphChart::DrawLinks(TCanvas* Canvas, const TRect& ARect, TKXGraphChartValue* Value) {
  for (TKXGraphChartLink* Link : *Value->Links())
    if (Link->Value() && Link->Value()->Visible()) DrawLink(Canvas, ARect, Value, Link);
}

bool TKXGraphChart::LinkEndRect(const TRect& ARect, const TKXGraphChartValue* Node,
                                TRect& R) const {
  if (!FHorizontalAxis || !FVerticalAxis) return false;
  R = GetShapeRect(ARect, Node);
  if (R == TRect{}) return false;
  R = Node->ScaledRect(R);
  return true;
}

int32_t TKXGraphChart::ArrowHeadSize() const {
  const TKXChartAxis* H = FHorizontalAxis;
  const TKXChartAxis* V = FVerticalAxis;
  if (!H || !V || (!H->Zooming() && !V->Zooming())) return ArrowSize;
  const auto Zoom = [](const TKXChartAxis* A) {
    const double Span = A->ZoomMaximum() - A->ZoomMinimum();
    return Span == 0.0 ? 1.0 : (A->Maximum() - A->Minimum()) / Span;
  };
  const double ZH = Zoom(H), ZV = Zoom(V);
  return CanvasRound(std::sqrt(ZH * ZH + ZV * ZV) * ArrowSize);
}

TCanvasPoints TKXGraphChart::LinkRoute(const TRect& ARect, const TKXGraphChartValue* Value,
                                      const TKXGraphChartLink* Link) const {
  const TKXGraphChartValue* Target = Link->Value();
  TRect From, To;
  if (!Target || !LinkEndRect(ARect, Value, From) || !LinkEndRect(ARect, Target, To)) return {};
  const TKXPoints& Route = Link->LinePoints();
  TCanvasPoints Points;
  Points.reserve(Route.size() + 2);
  Points.push_back(GetCanvasPointOnRect(From, Link->ConnectionPoint()));
  const double Offset = GetAdjOffsetVertical();
  for (const TPointF& P : Route)
    Points.push_back({FHorizontalAxis->AxisToPixel(P.X, ARect),
                      FVerticalAxis->AxisToPixel(P.Y + Offset, ARect)});
  Points.push_back(GetCanvasPointOnRect(To, Link->ValueConnectionPoint()));
  return Points;
}

void TKXGraphChart::DrawLink(TCanvas* Canvas, const TRect& ARect, TKXGraphChartValue* Value,
                             TKXGraphChartLink* Link) {
  const TKXGraphChartValue* Target = Link->Value();
  if (!Target) return;
  TPen* Pen = Canvas->Pen();
  Pen->Assign(Link->Pen());
  const bool Parent = Value->Selected(), Child = Target->Selected();
  if ((Parent && FGraphOptions.Contains(goParentSelectionWidth)) ||
      (Child && FGraphOptions.Contains(goChildSelectionWidth)))
    Pen->SetWidth(Pen->Width() + 1);
  if ((Parent && FGraphOptions.Contains(goParentSelectionColor)) ||
      (Child && FGraphOptions.Contains(goChildSelectionColor)))
    Pen->SetColor(FSelectionColor);
  const TCanvasPoints Points = LinkRoute(ARect, Value, Link);
  if (Points.empty()) return;
  const int32_t S = ArrowHeadSize();
  TArrowOptions Options{arEndHead};
  if (FOptions.Contains(coValueLabels)) Options.Include(arText);
  const float Opacity = FOpacity * Target->Opacity();
  if (Points.size() == 2)
    DrawArrow(Canvas, Points[0].X, Points[0].Y, Points[1].X, Points[1].Y, S, Link->Caption(),
              Options, 1, Opacity);
  else
    DrawArrow(Canvas, Points, S, Link->Caption(), Options, 1, -1, Opacity);
}

// --- Hooks and axes ---

void TKXGraphChart::LevelChanged(TKXGraphChartValue*) {}

void TKXGraphChart::LinksUpdate(TKXGraphChartLink*) {}

void TKXGraphChart::LinksNotify(TKXGraphChartLink* Link, TCollectionNotification Action) {
  if (Action == cnAdded) Link->SetPen(FArrowPen.get());
}

void TKXGraphChart::DoUpdateAxisInfo(TKXChartAxis*) {
  const int32_t N = FValues->Count();
  FFirstIndex = 0;
  FLastIndex = N - 1;
  FVisibleCount = N;
}

} // namespace kx
