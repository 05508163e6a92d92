#include "kxcharts/charts/KXLineReduction_p.h"

#include <algorithm>

#include "kxcharts/axes/KXChartAxis.h"

namespace kx {

namespace {

// Columns with this many values or fewer are drawn through every value: the searches
// would cost more than they save.
constexpr int32_t SmallColumn = 6;
// How many neighbours are tried one by one before a search through the summary.
constexpr int32_t ShortLook = 8;

void Push(TCanvasPoints& Points, TPoint P) {
  if (Points.empty() || Points.back() != P) Points.push_back(P);
}

// The last index in I..To whose X lands in column Px (I's own); NextPx gets the column of
// the index after it when that is at most To. The values of a series are spread about
// evenly, so the column ends near Guess (where the previous column's width would end it):
// a gallop out from there brackets the end, and halving finds it. A good guess reads two
// neighbouring Xs, where a gallop from I would reach across the column and miss the cache
// at every step.
int32_t LastInColumn(const TKXValueSummary& S, const TKXPixelMap& Map, int32_t I, int32_t To,
                     int32_t Px, int32_t Guess, int32_t& NextPx) {
  // Out is always a probed index (or To + 1), so its column is known when the end is.
  int32_t In = I, Out = To + 1, OutPx = 0;
  const auto Outside = [&](int32_t K) {
    const int32_t P = Map.PX(S.X(K));
    if (P == Px) return false;
    Out = K;
    OutPx = P;
    return true;
  };
  const int32_t G = std::clamp(Guess, I, To);
  if (!Outside(G)) {
    In = G;
    for (int64_t Step = 1;; Step *= 2) {
      const int64_t Next = int64_t(In) + Step;
      if (Next > To || Outside(static_cast<int32_t>(Next))) break;
      In = static_cast<int32_t>(Next);
    }
  } else {
    for (int64_t Step = 1;; Step *= 2) {
      const int64_t Next = int64_t(Out) - Step;
      if (Next <= I) break;
      if (!Outside(static_cast<int32_t>(Next))) {
        In = static_cast<int32_t>(Next);
        break;
      }
    }
  }
  while (Out - In > 1) {
    const int32_t Mid = In + (Out - In) / 2;
    if (!Outside(Mid)) In = Mid;
  }
  NextPx = OutPx;
  return In;
}

// The first (last) index in From..To whose row is not Row, and that row in Found; -1 when
// none.
int32_t FirstOffRow(const TKXValueSummary& S, const TKXPixelMap& Map, int32_t From, int32_t To,
                    int32_t Row, int32_t& Found) {
  const int32_t Near = std::min(To, From + ShortLook - 1);
  for (int32_t I = From; I <= Near; ++I)
    if ((Found = Map.PY(S.Y(I))) != Row) return I;
  const int32_t I = S.FirstWhere(
      Near + 1, To, [&](double Lo, double Hi) { return Map.PY(Lo) != Row || Map.PY(Hi) != Row; });
  if (I >= 0) Found = Map.PY(S.Y(I));
  return I;
}

int32_t LastOffRow(const TKXValueSummary& S, const TKXPixelMap& Map, int32_t From, int32_t To,
                   int32_t Row, int32_t& Found) {
  const int32_t Near = std::max(From, To - ShortLook + 1);
  for (int32_t I = To; I >= Near; --I)
    if ((Found = Map.PY(S.Y(I))) != Row) return I;
  const int32_t I = S.LastWhere(
      From, Near - 1, [&](double Lo, double Hi) { return Map.PY(Lo) != Row || Map.PY(Hi) != Row; });
  if (I >= 0) Found = Map.PY(S.Y(I));
  return I;
}

// The vertices of the values A..B, all in column Px, after the last of Points.
void ReduceColumn(const TKXValueSummary& S, const TKXPixelMap& Map, int32_t A, int32_t B,
                  int32_t Px, TCanvasPoints& Points) {
  TPoint First = Points.back();
  // A lead point in another column joins this one by a slanted segment to its first value.
  if (First.X != Px) {
    First = {Px, Map.PY(S.Y(A))};
    Push(Points, First);
    ++A;
  }
  if (A > B) return;
  double Lo = 0, Hi = 0;
  S.MinMax(A, B, Lo, Hi);
  const int32_t R1 = Map.PY(Lo), R2 = Map.PY(Hi);
  const int32_t Top = std::min({R1, R2, First.Y}), Bottom = std::max({R1, R2, First.Y});
  const TPoint Last{Px, Map.PY(S.Y(B))};
  if (Top == Bottom) return; // every point is the first one
  // The way the first segment that moves leaves the first point (-1 up, 1 down).
  int32_t Row1 = 0, Row2 = 0;
  const int32_t K1 = FirstOffRow(S, Map, A, B, First.Y, Row1);
  const int32_t Leave = K1 >= 0 && Row1 < First.Y ? -1 : 1;
  // The way the last segment that moves reaches the last point.
  const int32_t K2 = LastOffRow(S, Map, A, B - 1, Last.Y, Row2);
  const int32_t Before = K2 >= 0 ? Row2 : First.Y;
  const int32_t Arrive = Last.Y > Before ? 1 : -1;
  const int32_t E1 = Leave < 0 ? Top : Bottom, E2 = Leave < 0 ? Bottom : Top;
  Push(Points, {Px, E1});
  Push(Points, {Px, E2});
  if (Last.Y == E2) return;
  // Reaching the last point downwards needs a point above it, upwards one below it.
  if (Arrive > 0 ? E2 >= Last.Y : E2 <= Last.Y) Push(Points, {Px, E1});
  Push(Points, Last);
}

} // namespace

TKXPixelMap::TKXPixelMap(const TKXChartAxis* Horizontal, const TKXChartAxis* Vertical,
                         const TRect& Rect, double YOffset)
    : FHorizontal(Horizontal), FVertical(Vertical), FRect(Rect), FYOffset(YOffset),
      FLinearX(Horizontal->LinearPixels(Rect, FX)), FLinearY(Vertical->LinearPixels(Rect, FY)) {}

int32_t TKXPixelMap::OnAxis(const TKXChartAxis* Axis, double Value) const {
  return Axis->AxisToPixel(Value, FRect);
}

void ReduceLineRun(const TKXValueSummary& Summary, int32_t From, int32_t To, const TKXPixelMap& Map,
                   TCanvasPoints& Points) {
  int32_t Width = 1; // values in the previous column
  int32_t Px = From <= To ? Map.PX(Summary.X(From)) : 0;
  for (int32_t I = From; I <= To;) {
    int32_t NextPx = 0;
    const int32_t K = LastInColumn(Summary, Map, I, To, Px, I + Width - 1, NextPx);
    Width = K - I + 1;
    if (K - I < SmallColumn) {
      for (int32_t J = I; J <= K; ++J)
        Push(Points, {Px, Map.PY(Summary.Y(J))});
    } else {
      // The next column ends about a column's width on, too far for the cache to guess:
      // its numbers are asked for now and arrive while this column is worked.
      Summary.Prefetch(static_cast<int32_t>(std::min<int64_t>(int64_t(K) + Width, To)));
      ReduceColumn(Summary, Map, I, K, Px, Points);
    }
    I = K + 1;
    Px = NextPx;
  }
}

} // namespace kx
