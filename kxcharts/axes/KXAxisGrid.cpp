#include "kxcharts/axes/KXAxisGrid.h"

#include <algorithm>
#include <cmath>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx {

namespace {

// A line from P + D1 to P + D2 in Pen.
void MarkLine(TCanvas* Canvas, const TPen* Pen, const TPointF& P, const TPoint& D1,
              const TPoint& D2) {
  Canvas->SetPen(Pen);
  TVclCanvasHelper::DrawLine(Canvas, CanvasPoint(double(P.X) + D1.X, double(P.Y) + D1.Y),
                             CanvasPoint(double(P.X) + D2.X, double(P.Y) + D2.Y));
}

} // namespace

// --- Life ---

void TKXAxisGrid::Initialize() {
  inherited::Initialize();
  FMinorGridPen = MakeOwned<TPen>();
  FMinorGridPen->SetColor(clInactiveBorder);
  FMinorGridPen->UseCurrentAsDefaults();
  FGridPen = MakeOwned<TPen>();
  FGridPen->SetStyle(psDot);
  FGridPen->UseCurrentAsDefaults();
  FTicksPen = MakeOwned<TPen>();
  FTicksPen->SetColor(clGray);
  FTicksPen->UseCurrentAsDefaults();
  FOriginPen = MakeOwned<TPen>();
}

void TKXAxisGrid::InitializeEvents() {
  inherited::InitializeEvents();
  for (TPen* Pen : {FMinorGridPen.get(), FGridPen.get(), FTicksPen.get(), FOriginPen.get()})
    Pen->SetOnChange(SenderChangedHandler());
}

void TKXAxisGrid::BeforeDestruction() {
  inherited::BeforeDestruction();
  FGridPen.reset();
  FMinorGridPen.reset();
  FTicksPen.reset();
  FOriginPen.reset();
}

// --- Properties ---

void TKXAxisGrid::SetMinorTickCount(int32_t Value) {
  Value = std::max(Value, 0);
  if (FMinorTickCount == Value) return;
  FMinorTickCount = Value;
  Changed();
}

void TKXAxisGrid::SetDrawOptions(TAxisDrawGridOptions Value) {
  if (FDrawOptions == Value) return;
  FDrawOptions = Value;
  Changed();
}

void TKXAxisGrid::SetTickLength(int32_t Value) {
  Value = std::max(Value, 0);
  if (FTickLength == Value) return;
  FTickLength = Value;
  Changed();
}

void TKXAxisGrid::SetMinorTickLength(int32_t Value) {
  Value = std::max(Value, 0);
  if (FMinorTickLength == Value) return;
  FMinorTickLength = Value;
  Changed();
}

void TKXAxisGrid::SetInnerLength(int32_t Value) {
  Value = std::max(Value, 0);
  if (FInnerLength == Value) return;
  FInnerLength = Value;
  Changed();
}

void TKXAxisGrid::SetOrigin(double Value) {
  if (FOrigin == Value) return;
  FOrigin = Value;
  Changed();
}

// --- Tests ---

bool TKXAxisGrid::ShouldDrawMajorTicks() const {
  return Visible() && FDrawOptions.Contains(agoTicks) && (FTickLength > 0 || FInnerLength > 0);
}

bool TKXAxisGrid::ShouldDrawMinorTicks() const {
  return Visible() && FDrawOptions.Contains(agoTicks) && FMinorTickLength > 0 &&
         FMinorTickCount > 0;
}

bool TKXAxisGrid::IsOriginVisible() const {
  return FDrawOptions.Contains(agoOrigin) && FAxis && FAxis->ZoomMinimum() < FOrigin &&
         FOrigin < FAxis->ZoomMaximum();
}

// --- Drawing ---

TKXAxisGrid::TGeometry TKXAxisGrid::Geometry(const TRect& R, int32_t AxisLine) const {
  TGeometry G;
  G.MinorStep = FMajorGridInterval / (double(FMinorTickCount) + 1);
  const int32_t L = FTickLength, M = FMinorTickLength, N = FInnerLength, A = AxisLine;
  switch (FAxis->Location()) {
  case calLeft:
    G.Point = KXPoint(double(R.Left) + A, R.Top);
    G.MajorTickRect = {-L, 0, N, 0};
    G.MinorTickRect = {-M, 0, 0, 0};
    G.GridVector = {CanvasRound(R.Right - double(G.Point.X)), 0};
    break;
  case calRight:
    G.Point = KXPoint(double(R.Right) - A, R.Top);
    G.MajorTickRect = {L, 0, -N, 0};
    G.MinorTickRect = {0, 0, M, 0};
    G.GridVector = {CanvasRound(-(double(G.Point.X) - R.Left)), 0};
    break;
  case calBottom:
    G.Point = KXPoint(R.Left, double(R.Bottom) - A);
    G.MajorTickRect = {0, L, 0, -N};
    G.MinorTickRect = {0, 0, 0, M};
    G.GridVector = {0, CanvasRound(-(double(G.Point.Y) - R.Top))};
    break;
  case calTop:
    G.Point = KXPoint(R.Left, double(R.Top) + A);
    G.MajorTickRect = {0, -L, 0, N};
    G.MinorTickRect = {0, -M, 0, 0};
    G.GridVector = {0, CanvasRound(R.Bottom - double(G.Point.Y))};
    break;
  }
  if (FAxis->IsVertical())
    G.IncY = FMajorGridInterval;
  else
    G.IncX = FMajorGridInterval;
  if (FAxis->IsVertical())
    G.IncX = G.MinorStep;
  else
    G.IncY = G.MinorStep;
  return G;
}

void TKXAxisGrid::InternalDraw(TCanvas* Canvas, const TRect& ARect) {
  if (!FAxis) return;
  const double ZoomMin = FAxis->ZoomMinimum(), ZoomMax = FAxis->ZoomMaximum();
  if (ZoomMin == ZoomMax || FMajorGridInterval == 0) return;
  // A step that is not a number above 0 has no marks to walk to.
  if (!(FMajorGridInterval > 0) || !std::isfinite(FMajorGridInterval)) return;
  const bool Major = ShouldDrawMajorTicks();
  const bool Minor = ShouldDrawMinorTicks();
  if (FDrawOptions.Bits() == 0 || (!Major && !Minor)) return;

  // Start one interval above the top major line, so that the minor marks above it are
  // reached too.
  double V;
  if (FAxis->SnapGrid()) {
    V = FMajorGridStart + FMajorGridInterval;
  } else {
    V = FAxis->SkipDown(FAxis->Maximum(), ZoomMax, FMajorGridInterval);
  }
  if (ZoomMax < FAxis->Maximum()) V = std::min(V + FMajorGridInterval, FAxis->Maximum());

  FMapRect = ARect;
  double Lo = ZoomMin, Hi = ZoomMax;
  TGeometry G;
  const bool Vertical = FAxis->IsVertical();
  if (!(FAxis->Options().Contains(aoLogarithmic) && FAxis->LogCycles())) {
    G = Geometry(ARect, FAxisLine);
    DrawSegment(Canvas, ARect, Lo, Hi, V, G.MinorStep, G.Point, G.GridVector, Major, Minor,
                G.MajorTickRect, G.MinorTickRect, G.IncX, G.IncY);
  } else {
    // Cycle by cycle from the top, each with a step of its own. Marks are mapped on the
    // whole rectangle, where the axis itself places each cycle; the band of a cycle, from
    // the pixel of its low bound to that of its high one, bounds its minor marks and the
    // room its labels would have. So vertical and reversed axes come out right as well.
    const TLogCycles Cycles = CalcLogCycles(Lo, Hi, FAxis->ScaleBase());
    const size_t N = Cycles.size() - 1;
    for (size_t I = N; I >= 1; --I) {
      const double A = I == 1 ? ZoomMin : Cycles[I - 1].Value;
      const int32_t P1 = FAxis->AxisToPixel(A, ARect), P2 = FAxis->AxisToPixel(Hi, ARect);
      TRect Band = ARect;
      if (Vertical) {
        Band.Top = std::min(P1, P2);
        Band.Bottom = std::max(P1, P2) + 1;
      } else {
        Band.Left = std::min(P1, P2);
        Band.Right = std::max(P1, P2) + 1;
      }
      FMajorGridInterval = FAxis->CycleSpacing(Canvas, Band, A, Hi, ARect);
      // Ticks of every cycle stand on the axis line, which runs along the whole rectangle.
      G = Geometry(ARect, FAxisLine);
      if (FMajorGridInterval > 0 && std::isfinite(FMajorGridInterval))
        DrawSegment(Canvas, Band, A, Hi, V, G.MinorStep, G.Point, G.GridVector, Major, Minor,
                    G.MajorTickRect, G.MinorTickRect, G.IncX, G.IncY);
      Hi = A;
    }
  }

  if (IsOriginVisible()) {
    TPointF P = G.Point;
    const int32_t At = FAxis->AxisToPixel(FOrigin, ARect);
    if (Vertical)
      P.Y = float(At);
    else
      P.X = float(At);
    MarkLine(Canvas, FOriginPen.get(), P, {0, 0}, G.GridVector);
  }
}

void TKXAxisGrid::DrawSegment(TCanvas* Canvas, const TRect& ARect, double AMin, double AMax,
                              double Value, double MinorStep, TPointF Point, TPoint GridVector,
                              bool MajorTicks, bool MinorTicks, const TRect& MajorTickRect,
                              const TRect& MinorTickRect, double, double) {
  const double Step = FMajorGridInterval;
  if (!(Step > 0) || !std::isfinite(Step) || std::isnan(Value)) return;
  const bool Vertical = FAxis->IsVertical();
  const bool MajorGrid = FDrawOptions.Contains(agoMajorGrid);
  const bool MinorGrid = FDrawOptions.Contains(agoMinorGrid);
  // More minor marks than the axis has pixels would only paint the same pixels again.
  const int32_t Pixels = std::max(Vertical ? FMapRect.Height() : FMapRect.Width(), 1);
  const int32_t MinorCount = std::min(FMinorTickCount, Pixels);
  const auto Along = [Vertical](TPointF P, int32_t At) {
    if (Vertical)
      P.Y = float(At);
    else
      P.X = float(At);
    return P;
  };
  // A start far above the stretch (a deep zoom, a log cycle below the top one) moves down
  // by whole intervals at once.
  Value = FAxis->SkipDown(Value, AMax + Step, Step);
  while (AMin <= Value) {
    Point = Along(Point, FAxis->AxisToPixel(Value, FMapRect));
    if (Value <= AMax) {
      if (MajorGrid) MarkLine(Canvas, FGridPen.get(), Point, {0, 0}, GridVector);
      if (MajorTicks)
        MarkLine(Canvas, FTicksPen.get(), Point, {MajorTickRect.Left, MajorTickRect.Top},
                 {MajorTickRect.Right, MajorTickRect.Bottom});
    }
    if (MinorTicks || MinorGrid) {
      double Minor = Value - MinorStep;
      for (int32_t K = 0; K < MinorCount; ++K, Minor -= MinorStep) {
        const TPointF P = Along(Point, FAxis->AxisToPixel(Minor, FMapRect));
        if (!PtInRect(ARect, CanvasPoint(P.X, P.Y))) continue;
        if (MinorGrid) MarkLine(Canvas, FMinorGridPen.get(), P, {0, 0}, GridVector);
        if (MinorTicks)
          MarkLine(Canvas, FTicksPen.get(), P, {MinorTickRect.Left, MinorTickRect.Top},
                   {MinorTickRect.Right, MinorTickRect.Bottom});
      }
    }
    // A step below the resolution of the value would leave it where it is.
    const double Next = Value - Step;
    if (!(Next < Value)) break;
    Value = Next;
  }
}

// --- Change handling ---

void TKXAxisGrid::VisibleChanged() {
  inherited::VisibleChanged();
  if (!FAxis) return;
  TAxisOptions Options = FAxis->Options();
  if (Visible())
    Options.Include(aoShowGrid);
  else
    Options.Exclude(aoShowGrid);
  FAxis->SetOptions(Options);
}

// --- Copying and storing ---

void TKXAxisGrid::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (auto* G = dynamic_cast<const TKXAxisGrid*>(Source)) {
    FMinorTickCount = G->FMinorTickCount;
    FDrawOptions = G->FDrawOptions;
    FInnerLength = G->FInnerLength;
    FTickLength = G->FTickLength;
    FMinorTickLength = G->FMinorTickLength;
    FMinorGridPen->Assign(G->FMinorGridPen.get());
    FGridPen->Assign(G->FGridPen.get());
    FTicksPen->Assign(G->FTicksPen.get());
  }
  inherited::Assign(Source);
}

void TKXAxisGrid::DefineProperties(TFiler& Filer) {
  using G = TKXAxisGrid;
  inherited::DefineProperties(Filer);
  Filer.Property("MinorTickCount", this, &G::MinorTickCount, &G::SetMinorTickCount, 3);
  Filer.Property("DrawOptions", this, &G::DrawOptions, &G::SetDrawOptions,
                 TAxisDrawGridOptions::FromBits(13));
  Filer.Property("GridPen", this, &G::GridPen);
  Filer.Property("MinorGridPen", this, &G::MinorGridPen);
  Filer.Property("TicksPen", this, &G::TicksPen);
  Filer.Property("TickLength", this, &G::TickLength, &G::SetTickLength, 4);
  Filer.Property("MinorTickLength", this, &G::MinorTickLength, &G::SetMinorTickLength, 2);
  Filer.Property("InnerLength", this, &G::InnerLength, &G::SetInnerLength, 0);
  Filer.Property("Origin", this, &G::Origin, &G::SetOrigin, 0.0);
  Filer.Property("OriginPen", this, &G::OriginPen);
  Filer.Property("Opacity", this, &G::Opacity, &G::SetOpacity, 1.0f);
  Filer.Property("Visible", this, &G::Visible, &G::SetVisible, true);
}

} // namespace kx
