#include "kxcharts/charts/KXLineCharts.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXAxisGrid.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXLineReduction_p.h"
#include "kxcharts/core/KXCustomChartPanel.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

namespace {

// Longest joined polyline handed to the canvas at once. Runs beyond it go out in parts that
// meet end to start, so that memory stays small whatever the number of values.
constexpr size_t MaxRunPoints = 4096;
// Runs of alike values shorter than this go segment by segment: too short to gain.
constexpr int32_t MinReducedRun = 16;

} // namespace

// --- TKXLineChartPen ---

void TKXLineChartPen::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Width", 2);
  inherited::DefineProperties(Filer);
}

// --- TKXCustomLineChart: life and properties ---

void TKXCustomLineChart::InitializeChart() {
  inherited::InitializeChart();
  FPen->SetWidth(2);
  FEnforceSingleOption = true;
  SetOptions(FOptions - coReservedFlag);
  Values()->SetSortByDimension(0);
  Values()->SetSorted(true);
}

TOwned<TPen> TKXCustomLineChart::CreatePen() {
  return MakeOwned<TKXLineChartPen>();
}

TOwned<TKXChartValues> TKXCustomLineChart::CreateChartValues() {
  return MakeOwned<TKX2DChartValues>(this, ClassOf<TKX2DChartValue>());
}

void TKXCustomLineChart::CreatePreviewValues() {
  if (ComponentState().Contains(csLoading)) return;
  {
    TUpdateScope<TKXChartValues> Scope(TKXCustomChart::Values());
    TKX2DChartValues* V = Values();
    V->Add(5, 13, "Research");
    V->Add(15, 75, "Purchases");
    V->Add(100, 200, "Manufacturing");
    V->Add(300, 100, "Marketing");
    V->Add(400, 500, "Development");
  }
  // Adding ends a preview; these values are one.
  FPreview = true;
}

void TKXCustomLineChart::SetLineStyle(TLineChartStyle Value) {
  if (FLineStyle == Value) return;
  FLineStyle = Value;
  Changed();
}

void TKXCustomLineChart::SetLineChartElements(TBasicCharts Value) {
  if (FLineChartElements == Value) return;
  FLineChartElements = Value;
  Changed();
}

void TKXCustomLineChart::SetReducedDrawing(bool Value) {
  if (FReducedDrawing == Value) return;
  FReducedDrawing = Value;
  Changed();
}

void TKXCustomLineChart::SetOptions(TChartOptions Value) {
  if (FEnforceSingleOption) Value.Exclude(coReservedFlag);
  inherited::SetOptions(Value);
}

void TKXCustomLineChart::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TKXCustomLineChart*>(Source)) {
    FLineStyle = Src->FLineStyle;
    FLineChartElements = Src->FLineChartElements;
  }
  inherited::Assign(Source);
}

void TKXCustomLineChart::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Options", TChartOptions::FromBits(1811));
  inherited::DefineProperties(Filer);
}

void TKXCustomLineChart::DoUpdateAxisInfo(TKXChartAxis* Axis) {
  const TKX2DChartValues* V = Values();
  const int32_t Dim = Axis->Dimension();
  if (!Axis->Zooming() || !V->Sorted() || V->SortOrder() != soAscending ||
      V->SortByDimension() != Dim) {
    inherited::DoUpdateAxisInfo(Axis);
    return;
  }
  const int32_t N = V->Count();
  // The first index at which Test stops holding, Test holding for a prefix of 0..End-1.
  const auto Boundary = [&](int32_t End, auto Test) {
    int32_t Lo = 0, Hi = End;
    while (Lo < Hi) {
      const int32_t Mid = Lo + (Hi - Lo) / 2;
      if (Test(V->Items(Mid)->GetValue(Dim)))
        Lo = Mid + 1;
      else
        Hi = Mid;
    }
    return Lo;
  };
  const double ZLo = Axis->ZoomMinimum(), ZHi = Axis->ZoomMaximum();
  const int32_t Numbers = Boundary(N, [](double X) { return !std::isnan(X); });
  const int32_t AtLo = Boundary(Numbers, [ZLo](double X) { return X < ZLo; });
  const int32_t PastHi = Boundary(Numbers, [ZHi](double X) { return X <= ZHi; });
  FFirstIndex = AtLo < Numbers ? std::max(0, AtLo - 1) : 0;
  FLastIndex = PastHi < Numbers ? PastHi : N - 1;
  FVisibleCount = FLastIndex - FFirstIndex + 1;
}

// --- TKXCustomLineChart: geometry ---

TPoint TKXCustomLineChart::GetValuePoint(const TKXChartValue* Value, const TRect& Rect) const {
  if (!FHorizontalAxis || !FVerticalAxis) return NoPoint;
  const TKX2DChartValues* V = Values();
  const double X = Value->GetValue(V->XDim());
  const double Y = GetAdjOffsetVertical() + Value->GetValue(V->YDim());
  // A number that is none has no pixel; the axes would give it one at an edge.
  if (!std::isfinite(X) || !std::isfinite(Y)) return NoPoint;
  return {FHorizontalAxis->AxisToPixel(X, Rect), FVerticalAxis->AxisToPixel(Y, Rect)};
}

int32_t TKXCustomLineChart::AreaBaseline(const TRect& Rect) const {
  // An origin line the vertical axis shows inside its zoomed range is where areas stand;
  // otherwise they reach down to the bottom of the plot.
  const TKXAxisGrid* Grid = FVerticalAxis ? FVerticalAxis->Grid() : nullptr;
  if (Grid && Grid->IsOriginVisible()) return FVerticalAxis->AxisToPixel(Grid->Origin(), Rect);
  return Rect.Bottom;
}

void TKXCustomLineChart::GetPoints(const TPoint& Prev, const TPoint& Cur, const TRect& Rect,
                                   TCanvasPoints& Points) const {
  Points.clear();
  const bool Area = FLineChartElements.Contains(bcArea);
  const int32_t Base = Area ? AreaBaseline(Rect) : 0;
  if (Area) Points.push_back({Prev.X, Base});
  Points.push_back(Prev);
  if (FLineStyle == lsStepHorizontal)
    Points.push_back({Cur.X, Prev.Y});
  else if (FLineStyle == lsStepVertical)
    Points.push_back({Prev.X, Cur.Y});
  Points.push_back(Cur);
  if (Area) Points.push_back({Cur.X, Base});
}

TCanvasPoints TKXCustomLineChart::BuildPoints(const TRect& Rect, int32_t& First,
                                              int32_t& Last) const {
  const TKX2DChartValues* V = Values();
  First = FFirstIndex;
  Last = FLastIndex;
  if (Last - First < 2) {
    First = std::max(0, First - 1);
    Last = std::min(V->Count() - 1, Last + 1);
  }
  TCanvasPoints Points;
  Points.reserve(static_cast<size_t>(std::max(0, Last - First + 2)));
  for (int32_t I = First; I <= Last; ++I)
    Points.push_back(GetValuePoint(V->Items(I), Rect));
  if (FCloseLine && !Points.empty()) Points.push_back(Points.front());
  return Points;
}

// --- TKXCustomLineChart: the passes ---

void TKXCustomLineChart::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  const int32_t Count = FValues->Count();
  if (Count <= 1 || FFirstIndex == -1 || !FHorizontalAxis || !FVerticalAxis) return;
  // Values changed inside an update bracket leave the span stale; it must lie in the
  // collection before the walk.
  if (FFirstIndex >= Count || FLastIndex >= Count || FLastIndex < FFirstIndex)
    DoUpdateAxisInfo(FHorizontalAxis);
  if (FFirstIndex < 0 || FLastIndex >= Count || FLastIndex < FFirstIndex) return;
  // A pass that raises leaves nothing waiting for the next one.
  TFinally Drop([this] {
    FRun.Points.clear();
    FRun.Columns = false;
    FRun.Canvas = nullptr;
    FLabelLift = -1;
  });
  if (!FOptions.Contains(coNoChartShadow) && FPanel && FPanel->ChartShadow()->Visible()) {
    const TKXChartShadow* Shadow = FPanel->ChartShadow();
    SetCanvasResources(Canvas, Shadow->Brush(), Shadow->Pen(), nullptr, true, true);
    DrawLine(Canvas, Shadow->ShadowRect(ARect, false, Canvas), true);
    FlushSegments();
  }
  SetCanvasResources(Canvas, nullptr, true, true);
  FLabelLift = -1;
  DrawLine(Canvas, ARect, false);
  FlushSegments();
}

void TKXCustomLineChart::DrawLine(TCanvas* Canvas, const TRect& Rect, bool Shadow) {
  if (FLineStyle == lsSmooth || FLineStyle == lsBezier) {
    DrawSmoothline(Canvas, Rect, Shadow);
    return;
  }
  const TKX2DChartValues* V = Values();
  const TKX2DChartValue* First = V->Items(FFirstIndex);
  const TPoint Start = GetValuePoint(First, Rect);
  int32_t X = Start.X, Y = Start.Y;
  DrawLine(Canvas, First, Rect, X, Y, Shadow);
  const bool Line = FLineChartElements.Contains(bcLine);
  const bool Area = FLineChartElements.Contains(bcArea);
  if (Area || Line) {
    const TKXValueSummary* Summary = CanReduce(Canvas, Shadow) ? &V->Summary() : nullptr;
    const bool OneColor = Shadow || !FOptions.Contains(coValueColors);
    for (int32_t I = FFirstIndex + 1; I <= FLastIndex;) {
      if (Summary && Summary->Plain(I)) {
        int32_t End = Summary->NextNotPlain(I, FLastIndex) - 1;
        if (!OneColor) End = Summary->NextOtherColor(I, End, Summary->Color(I)) - 1;
        if (End - I + 1 >= MinReducedRun) {
          DrawReducedRun(Canvas, *Summary, I, End, Rect, X, Y, Area, Shadow);
          I = End + 1;
          continue;
        }
      }
      if (Area)
        DrawArea(Canvas, V->Items(I), Rect, X, Y, Shadow);
      else
        DrawLine(Canvas, V->Items(I), Rect, X, Y, Shadow);
      ++I;
    }
  }
  if (FCloseLine && FFirstIndex >= 0 && Line) DrawLine(Canvas, First, Rect, X, Y, Shadow);
}

void TKXCustomLineChart::ApplyValueLook(TCanvas* Canvas, const TKX2DChartValue* Value, bool Fill,
                                        bool Shadow) {
  if (Shadow) return;
  const TColor Own = Value->Selected()                  ? FSelectionColor
                     : FOptions.Contains(coValueColors) ? Value->Color()
                     : Fill                             ? GetColor()
                                                        : FPen->Color();
  if (Fill) {
    Canvas->Pen()->SetColor(FPen->Color());
    Canvas->Brush()->SetColor(Own);
  } else {
    Canvas->Pen()->SetColor(Own);
  }
}

void TKXCustomLineChart::DrawLine(TCanvas* Canvas, const TKX2DChartValue* Value, const TRect& Rect,
                                  int32_t& X, int32_t& Y, bool Shadow) {
  ApplyValueLook(Canvas, Value, false, Shadow);
  const TPoint Cur = GetValuePoint(Value, Rect);
  DrawValueSegment(Canvas, Value, {X, Y}, Cur, Rect, false, Shadow);
  X = Cur.X;
  Y = Cur.Y;
}

bool TKXCustomLineChart::CanReduce(const TCanvas* Canvas, bool Shadow) const {
  const TKX2DChartValues* V = Values();
  // A dash pattern runs along the path's length, which the reduction shortens.
  const TPenStyle Style = Canvas->Pen()->Style();
  return FReducedDrawing && !FCloseLine && (Shadow || !FOptions.Contains(coValueLabels)) &&
         Canvas->Pen()->Mode() == pmCopy &&
         (Style == psSolid || Style == psClear || Style == psInsideFrame) && V->Sorted() &&
         V->SortByDimension() == V->XDim() && FLastIndex - FFirstIndex >= MinReducedRun;
}

void TKXCustomLineChart::DrawReducedRun(TCanvas* Canvas, const TKXValueSummary& Summary,
                                        int32_t From, int32_t To, const TRect& Rect, int32_t& X,
                                        int32_t& Y, bool Fill, bool Shadow) {
  ApplyValueLook(Canvas, Values()->Items(From), Fill, Shadow);
  const TKXPixelMap Map{FHorizontalAxis, FVerticalAxis, Rect, GetAdjOffsetVertical()};
  // A line broken just before the run starts at its first value, as DrawValueSegment does.
  TPoint Lead{X, Y};
  if (Lead == NoPoint) Lead = {Map.PX(Summary.X(From)), Map.PY(Summary.Y(From))};
  FReduced.clear();
  FReduced.push_back(Lead);
  ReduceLineRun(Summary, From, To, Map, FReduced);
  // The canvas draws a thinned line as boxes of whole pixel columns only with an even pen;
  // with an odd one each column goes through the stroker, which for the one-pixel pen of a
  // shadow cost thirty times the line itself. A thinned shadow line is drawn a pixel wider
  // instead (a line whose values all show keeps its own pen, pixel for pixel).
  TPen* Pen = Canvas->Pen();
  const int32_t Width = Pen->Width();
  const bool Widen = Shadow && !Fill && Width % 2 == 1 &&
                     FReduced.size() < static_cast<size_t>(To - From) + 2;
  if (Widen) Pen->SetWidth(Width + 1);
  TFinally Narrow([Pen, Width, Widen] {
    if (Widen) Pen->SetWidth(Width);
  });
  for (size_t K = 1; K < FReduced.size(); ++K) {
    GetPoints(FReduced[K - 1], FReduced[K], Rect, FSegment);
    DrawSegment(Canvas, FSegment, Fill);
    FRun.Columns = FRun.Columns || !Fill;
  }
  const TPoint End{Map.PX(Summary.X(To)), Map.PY(Summary.Y(To))};
  X = End.X;
  Y = End.Y;
}

void TKXCustomLineChart::DrawArea(TCanvas* Canvas, const TKX2DChartValue* Value, const TRect& Rect,
                                  int32_t& X, int32_t& Y, bool Shadow) {
  ApplyValueLook(Canvas, Value, true, Shadow);
  const TPoint Cur = GetValuePoint(Value, Rect);
  DrawValueSegment(Canvas, Value, {X, Y}, Cur, Rect, true, Shadow);
  X = Cur.X;
  Y = Cur.Y;
}

void TKXCustomLineChart::DrawValueSegment(TCanvas* Canvas, const TKX2DChartValue* Value,
                                          TPoint Prev, const TPoint& Cur, const TRect& Rect,
                                          bool Fill, bool Shadow) {
  // A value that is no number draws nothing, and the value after it starts afresh as the
  // first value does: the line breaks on both sides of it.
  if (Cur == NoPoint) return;
  if (Prev == NoPoint) Prev = Cur;
  if (!Value->Visible() || !(Value->Opacity() > 0.0f)) return;
  GetPoints(Prev, Cur, Rect, FSegment);
  if (Value->Scale() != 1.0f)
    DrawSegment(Canvas, ScalePoints(FSegment, Value->Scale(), Value->Scale()), Fill);
  else
    DrawSegment(Canvas, FSegment, Fill);
  if (!Shadow && FOptions.Contains(coValueLabels)) DrawValueLabel(Canvas, Value, Cur);
}

void TKXCustomLineChart::DrawValueLabel(TCanvas* Canvas, const TKX2DChartValue* Value,
                                        const TPoint& Point) {
  // The label lies over the segments drawn so far and under the later ones.
  FlushSegments();
  if (FLabelLift < 0) FLabelLift = Canvas->TextHeight("W");
  DrawLabel(Canvas, Value, Point.X, Point.Y - FLabelLift);
}

// --- TKXCustomLineChart: curves ---

void TKXCustomLineChart::DrawSmoothline(TCanvas* Canvas, const TRect& Rect, bool Shadow) {
  if (FLineChartElements.Empty()) return;
  if (!Shadow) Canvas->Pen()->SetColor(FPen->Color());
  int32_t First = 0, Last = -1;
  const TCanvasPoints Points = BuildPoints(Rect, First, Last);
  const std::span<const TPoint> All(Points);
  // A value that is no number cuts the curve in runs, each drawn as a curve of its own.
  for (size_t From = 0; From < Points.size();) {
    if (Points[From] == NoPoint) {
      ++From;
      continue;
    }
    size_t To = From;
    while (To < Points.size() && Points[To] != NoPoint)
      ++To;
    if (FLineStyle == lsBezier) {
      FlushSegments();
      DrawBezierPolygon(Canvas, All.subspan(From, To - From), true, false, false, 1, FOpacity);
    } else {
      DrawSmoothRun(Canvas, All, From, To, First, Rect, Shadow);
    }
    From = To;
  }
  if (FLineStyle != lsBezier || Shadow || !FOptions.Contains(coValueLabels)) return;
  const TKX2DChartValues* V = Values();
  for (int32_t I = FFirstIndex; I <= FLastIndex; ++I) {
    const TKX2DChartValue* Value = V->Items(I);
    const TPoint& P = Points[static_cast<size_t>(I - First)];
    if (Value->Visible() && P != NoPoint) DrawValueLabel(Canvas, Value, P);
  }
}

void TKXCustomLineChart::DrawSmoothRun(TCanvas* Canvas, std::span<const TPoint> Points, size_t From,
                                       size_t To, int32_t First, const TRect& Rect, bool Shadow) {
  const std::vector<TPoint> Curve =
      BezierPolygonPoints(Points.subspan(From, To - From), false, false, 1);
  if (Curve.empty()) return;
  const TKX2DChartValues* V = Values();
  const bool Area = FLineChartElements.Contains(bcArea);
  const int32_t Base = Area ? AreaBaseline(Rect) : 0;
  // The point a line closes with is the first point again; it belongs to the first value.
  const size_t Closing = FCloseLine ? Points.size() - 1 : Points.size();
  size_t Start = 0;
  TCanvasPoints Piece;
  for (size_t K = From; K < To; ++K) {
    // The piece runs from where the last one ended to this value's own point on the
    // curve, which holds every given point; the closing piece takes what is left.
    size_t J = Start;
    if (K == Closing)
      J = Curve.size() - 1;
    else
      while (J + 1 < Curve.size() && Curve[J] != Points[K])
        ++J;
    Piece.assign(Curve.begin() + static_cast<std::ptrdiff_t>(Start),
                 Curve.begin() + static_cast<std::ptrdiff_t>(J) + 1);
    if (Area) {
      Piece.insert(Piece.begin(), TPoint{Curve[Start].X, Base});
      Piece.push_back({Curve[J].X, Base});
    }
    Start = J;
    const int32_t Index = K == Closing ? First : First + static_cast<int32_t>(K);
    DrawSmoothSegment(Canvas, V->Items(Index), Points[K], Piece, Shadow);
  }
}

void TKXCustomLineChart::DrawSmoothSegment(TCanvas* Canvas, const TKX2DChartValue* Value,
                                           const TPoint& LabelPoint, std::span<const TPoint> Piece,
                                           bool Shadow) {
  const bool Area = FLineChartElements.Contains(bcArea);
  if (!Shadow) {
    const bool Own = FOptions.Contains(coValueColors);
    if (!Area) {
      // Without a value colour the pen keeps the colour it has.
      if (Value->Selected())
        Canvas->Pen()->SetColor(FSelectionColor);
      else if (Own)
        Canvas->Pen()->SetColor(Value->Color());
    } else {
      Canvas->Brush()->SetColor(Value->Selected() ? FSelectionColor
                                : Own             ? Value->Color()
                                                  : GetColor());
    }
  }
  if (!Value->Visible() || !(Value->Opacity() > 0.0f)) return;
  if (Value->Scale() != 1.0f)
    DrawSegment(
        Canvas,
        ScalePoints(TCanvasPoints(Piece.begin(), Piece.end()), Value->Scale(), Value->Scale()),
        Area);
  else
    DrawSegment(Canvas, Piece, Area);
  if (!Shadow && FOptions.Contains(coValueLabels)) DrawValueLabel(Canvas, Value, LabelPoint);
}

// --- TKXCustomLineChart: reaching the canvas ---

void TKXCustomLineChart::DrawSegment(TCanvas* Canvas, std::span<const TPoint> Points, bool Fill) {
  if (Fill) {
    FlushSegments();
    Canvas->Polygon(Points);
    return;
  }
  if (Points.empty()) return;
  const TPen* Pen = Canvas->Pen();
  // Other pen modes combine with what lies beneath, so a joined path would differ where
  // segments overlap.
  if (Pen->Mode() != pmCopy) {
    FlushSegments();
    Canvas->Polyline(Points);
    return;
  }
  const bool Continues = FRun.Canvas == Canvas && !FRun.Points.empty() &&
                         FRun.Points.back() == Points.front() && FRun.Color == Pen->Color() &&
                         FRun.Width == Pen->Width() && FRun.Style == Pen->Style() &&
                         FRun.Points.size() < MaxRunPoints;
  if (Continues) {
    FRun.Points.insert(FRun.Points.end(), Points.begin() + 1, Points.end());
    return;
  }
  FlushSegments();
  FRun.Canvas = Canvas;
  FRun.Color = Pen->Color();
  FRun.Width = Pen->Width();
  FRun.Style = Pen->Style();
  FRun.Points.assign(Points.begin(), Points.end());
}

void TKXCustomLineChart::FlushSegments() {
  if (FRun.Canvas && FRun.Points.size() >= 2) {
    TPen* Pen = FRun.Canvas->Pen();
    const TColor Color = Pen->Color();
    const int32_t Width = Pen->Width();
    const TPenStyle Style = Pen->Style();
    TFinally Restore([&] {
      Pen->SetColor(Color);
      Pen->SetWidth(Width);
      Pen->SetStyle(Style);
    });
    Pen->SetColor(FRun.Color);
    Pen->SetWidth(FRun.Width);
    Pen->SetStyle(FRun.Style);
    if (FRun.Columns)
      FRun.Canvas->ColumnPolyline(FRun.Points);
    else
      FRun.Canvas->Polyline(FRun.Points);
  }
  FRun.Points.clear();
  FRun.Columns = false;
}

// --- TKXLineChart ---

TColor TKXLineChart::GetColor() const {
  return FPen->Color();
}

void TKXLineChart::SetColor(TColor Value) {
  if (FPen->Color() != Value) FPen->SetColor(Value);
}

void TKXLineChart::InitializeChart() {
  inherited::InitializeChart();
  FLineChartElements = TBasicCharts{bcLine};
  SetOptions((FOptions - coReservedFlag) + coZoomPen);
}

void TKXLineChart::DefineProperties(TFiler& Filer) {
  Filer.Redefault("Options", TChartOptions::FromBits(1939));
  inherited::DefineProperties(Filer);
  Filer.Property("LineStyle", this, &TKXLineChart::LineStyle, &TKXLineChart::SetLineStyle,
                 lsStraight);
}

// --- TKXAreaChart ---

void TKXAreaChart::InitializeChart() {
  inherited::InitializeChart();
  FLineChartElements = TBasicCharts{bcArea};
}

void TKXAreaChart::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("LineStyle", this, &TKXAreaChart::LineStyle, &TKXAreaChart::SetLineStyle,
                 lsStraight);
}

} // namespace kx
