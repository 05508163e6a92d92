#include "kxcharts/toolkit/graphics/KXGraphics.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

namespace kx {

namespace {

constexpr int64_t Int32Min = std::numeric_limits<int32_t>::min();
constexpr int64_t Int32Max = std::numeric_limits<int32_t>::max();

int32_t ClampToInt32(int64_t V) {
  return static_cast<int32_t>(std::clamp(V, Int32Min, Int32Max));
}

// An already integral double to the clamped integer range; NaN gives 0.
int32_t SaturateIntegral(double V) {
  if (std::isnan(V)) return 0;
  if (V >= KXMaxCanvasInt) return KXMaxCanvasInt;
  if (V <= -KXMaxCanvasInt) return -KXMaxCanvasInt;
  return static_cast<int32_t>(V);
}

// A double outside the float range would be undefined to convert; it becomes +-FLT_MAX.
float ToFloat(double V) {
  if (V > FLT_MAX) return FLT_MAX;
  if (V < -FLT_MAX) return -FLT_MAX;
  return static_cast<float>(V);
}

bool IsNormalF(const TRectF& R) {
  return R.Left <= R.Right && R.Top <= R.Bottom; // false for NaN as well
}

} // namespace

// --- Whole pixels ---

int32_t CanvasTrunc(double Value) noexcept {
  return SaturateIntegral(std::trunc(Value));
}

int32_t CanvasDiv(int32_t Dividend, int32_t Divisor) noexcept {
  if (Divisor == 0) return 0;
  if (Divisor == -1) return ClampToInt32(-static_cast<int64_t>(Dividend));
  return Dividend / Divisor;
}

int32_t CanvasMax(std::span<const int32_t> Values) noexcept {
  if (Values.empty()) return 0;
  return *std::max_element(Values.begin(), Values.end());
}

int32_t CanvasMin(std::span<const int32_t> Values) noexcept {
  if (Values.empty()) return 0;
  return *std::min_element(Values.begin(), Values.end());
}

int32_t CanvasMax(std::initializer_list<int32_t> Values) noexcept {
  return CanvasMax(std::span<const int32_t>(Values.begin(), Values.size()));
}

int32_t CanvasMin(std::initializer_list<int32_t> Values) noexcept {
  return CanvasMin(std::span<const int32_t>(Values.begin(), Values.size()));
}

// --- Making rectangles and points ---

TRect CanvasRect(double Left, double Top, double Right, double Bottom) noexcept {
  return {CanvasRound(Left), CanvasRound(Top), CanvasRound(Right), CanvasRound(Bottom)};
}

TRect CanvasRect(const TRectF& R) noexcept {
  return CanvasRect(R.Left, R.Top, R.Right, R.Bottom);
}

TPoint CanvasPoint(double X, double Y) noexcept {
  return {CanvasRound(X), CanvasRound(Y)};
}

TRectF KXRect(double Left, double Top, double Right, double Bottom) noexcept {
  return {ToFloat(Left), ToFloat(Top), ToFloat(Right), ToFloat(Bottom)};
}

TRectF KXRect(const TRect& R) noexcept {
  return KXRect(R.Left, R.Top, R.Right, R.Bottom);
}

TPointF KXPoint(double X, double Y) noexcept {
  return {ToFloat(X), ToFloat(Y)};
}

TPointF KXPoint(const TPoint& P) noexcept {
  return KXPoint(P.X, P.Y);
}

TPoint KXPointToCanvasPoint(const TPointF& P) noexcept {
  return CanvasPoint(P.X, P.Y);
}

// --- Measuring and comparing ---

double KXRectWidth(const TRect& R) noexcept {
  return static_cast<double>(R.Right) - R.Left;
}

double KXRectWidth(const TRectF& R) noexcept {
  return static_cast<double>(R.Right) - R.Left;
}

double KXRectHeight(const TRect& R) noexcept {
  return static_cast<double>(R.Bottom) - R.Top;
}

double KXRectHeight(const TRectF& R) noexcept {
  return static_cast<double>(R.Bottom) - R.Top;
}

bool EqualsRect(const TRect& A, const TRect& B) noexcept {
  return A == B;
}

bool EqualsRect(const TRectF& A, const TRectF& B) noexcept {
  return A == B;
}

TPoint CanvasCenterPoint(const TRect& R) noexcept {
  // The half extent is taken in 64 bits; the result lies between the sides, so it fits.
  const int64_t HalfW = (static_cast<int64_t>(R.Right) - R.Left) / 2;
  const int64_t HalfH = (static_cast<int64_t>(R.Bottom) - R.Top) / 2;
  return {static_cast<int32_t>(R.Left + HalfW), static_cast<int32_t>(R.Top + HalfH)};
}

bool PtInKXRect(const TRectF& R, const TPointF& P) noexcept {
  return P.X >= R.Left && P.X <= R.Right && P.Y >= R.Top && P.Y <= R.Bottom;
}

// --- Changing rectangles and points ---

TRect FixRect(const TRect& R) noexcept {
  return {std::min(R.Left, R.Right), std::min(R.Top, R.Bottom), std::max(R.Left, R.Right),
          std::max(R.Top, R.Bottom)};
}

TRectF FixRect(const TRectF& R) noexcept {
  return {std::min(R.Left, R.Right), std::min(R.Top, R.Bottom), std::max(R.Left, R.Right),
          std::max(R.Top, R.Bottom)};
}

namespace {

// Grows the span [A, B] (or [B, A] when inverted) by Growth, half on each side and the
// odd pixel at B; it never shrinks past an extent of 0.
void GrowSpan(int32_t& A, int32_t& B, int64_t Growth) {
  const int64_t Extent = std::abs(static_cast<int64_t>(B) - A);
  Growth = std::max(Growth, -Extent);
  const int64_t Half = Growth / 2;
  const int64_t Rest = Growth - Half;
  if (B >= A) {
    A = ClampToInt32(A - Half);
    B = ClampToInt32(B + Rest);
  } else {
    A = ClampToInt32(A + Half);
    B = ClampToInt32(B - Rest);
  }
}

void GrowSpan(float& A, float& B, double Growth) {
  if (std::isnan(Growth)) return;
  const double Extent = std::abs(static_cast<double>(B) - A);
  Growth = std::max(Growth, -Extent);
  const double Half = Growth / 2;
  if (B >= A) {
    A = ToFloat(A - Half);
    B = ToFloat(B + Half);
  } else {
    A = ToFloat(A + Half);
    B = ToFloat(B - Half);
  }
}

} // namespace

TRect ScaleRect(const TRect& R, double DX, double DY) noexcept {
  TRect Result = R;
  GrowSpan(Result.Left, Result.Right, CanvasRound(DX));
  GrowSpan(Result.Top, Result.Bottom, CanvasRound(DY));
  return Result;
}

TRectF ScaleRect(const TRectF& R, double DX, double DY) noexcept {
  TRectF Result = R;
  GrowSpan(Result.Left, Result.Right, DX);
  GrowSpan(Result.Top, Result.Bottom, DY);
  return Result;
}

TCanvasPoints ScalePoints(const TCanvasPoints& Points, double SX, double SY) {
  if (Points.empty()) return {};
  int32_t MinX = Points[0].X, MaxX = MinX, MinY = Points[0].Y, MaxY = MinY;
  for (const TPoint& P : Points) {
    MinX = std::min(MinX, P.X);
    MaxX = std::max(MaxX, P.X);
    MinY = std::min(MinY, P.Y);
    MaxY = std::max(MaxY, P.Y);
  }
  return ScalePoints(Points, SX, SY, (static_cast<double>(MinX) + MaxX) / 2,
                     (static_cast<double>(MinY) + MaxY) / 2);
}

TCanvasPoints ScalePoints(const TCanvasPoints& Points, double SX, double SY, double CenterX,
                          double CenterY) {
  // A NaN factor would send every point to 0; it scales by 1 instead.
  if (std::isnan(SX)) SX = 1;
  if (std::isnan(SY)) SY = 1;
  TCanvasPoints Result;
  Result.reserve(Points.size());
  for (const TPoint& P : Points)
    Result.push_back(CanvasPoint(CenterX + (P.X - CenterX) * SX, CenterY + (P.Y - CenterY) * SY));
  return Result;
}

TRect KXInflateRect(const TRect& R, int32_t DX, int32_t DY) noexcept {
  return {ClampToInt32(static_cast<int64_t>(R.Left) - DX),
          ClampToInt32(static_cast<int64_t>(R.Top) - DY),
          ClampToInt32(static_cast<int64_t>(R.Right) + DX),
          ClampToInt32(static_cast<int64_t>(R.Bottom) + DY)};
}

TRectF KXInflateRect(const TRectF& R, double DX, double DY) noexcept {
  return KXRect(R.Left - DX, R.Top - DY, R.Right + DX, R.Bottom + DY);
}

bool KXIntersectRect(TRectF& Dest, const TRectF& A, const TRectF& B) noexcept {
  const TRectF Overlap{std::max(A.Left, B.Left), std::max(A.Top, B.Top), std::min(A.Right, B.Right),
                       std::min(A.Bottom, B.Bottom)};
  if (!IsNormalF(A) || !IsNormalF(B) || !IsNormalF(Overlap)) {
    Dest = {};
    return false;
  }
  Dest = Overlap;
  return true;
}

bool KXIntersectRect(const TRectF& A, const TRectF& B) noexcept {
  TRectF Dummy;
  return KXIntersectRect(Dummy, A, B);
}

bool KXIntersectRect(TRect& Dest, const TRect& A, const TRect& B) noexcept {
  const TRect Overlap{std::max(A.Left, B.Left), std::max(A.Top, B.Top), std::min(A.Right, B.Right),
                      std::min(A.Bottom, B.Bottom)};
  if (A.IsEmpty() || B.IsEmpty() || Overlap.IsEmpty()) {
    Dest = {};
    return false;
  }
  Dest = Overlap;
  return true;
}

bool KXIntersectRect(const TRect& A, const TRect& B) noexcept {
  TRect Dummy;
  return KXIntersectRect(Dummy, A, B);
}

double FitRect(TRectF& R, const TRectF& Bounds, bool ShrinkOnly) noexcept {
  // Tested before FixRect, whose min and max would hide a NaN.
  const auto IsFinite = [](const TRectF& X) {
    return std::isfinite(X.Left) && std::isfinite(X.Top) && std::isfinite(X.Right) &&
           std::isfinite(X.Bottom);
  };
  const bool BoundsFinite = IsFinite(Bounds);
  const bool Finite = BoundsFinite && IsFinite(R);
  const TRectF B = FixRect(Bounds);
  const TRectF S = FixRect(R);
  const double BW = KXRectWidth(B), BH = KXRectHeight(B);
  const double W = KXRectWidth(S), H = KXRectHeight(S);
  const double CX = B.Left + BW / 2, CY = B.Top + BH / 2;
  const auto Empty = [&] {
    const float X = BoundsFinite && std::isfinite(CX) ? ToFloat(CX) : 0.0f;
    const float Y = BoundsFinite && std::isfinite(CY) ? ToFloat(CY) : 0.0f;
    R = {X, Y, X, Y};
    return 0.0;
  };
  if (!Finite || !std::isfinite(BW) || !std::isfinite(BH) || !std::isfinite(W) ||
      !std::isfinite(H) || !std::isfinite(CX) || !std::isfinite(CY))
    return Empty();

  const double ScaleW = W > 0 ? BW / W : std::numeric_limits<double>::infinity();
  const double ScaleH = H > 0 ? BH / H : std::numeric_limits<double>::infinity();
  double Scale = std::min(ScaleW, ScaleH);
  if (!std::isfinite(Scale) || Scale <= 0) return Empty();
  if (ShrinkOnly && Scale > 1) Scale = 1;

  const double HalfW = W * Scale / 2, HalfH = H * Scale / 2;
  R = KXRect(CX - HalfW, CY - HalfH, CX + HalfW, CY + HalfH);
  // The side that decides the scale lands on Bounds exactly, not one rounding off.
  if (Scale == ScaleW) {
    R.Left = B.Left;
    R.Right = B.Right;
  }
  if (Scale == ScaleH) {
    R.Top = B.Top;
    R.Bottom = B.Bottom;
  }
  return Scale;
}

TPoint GetCanvasPointOnRect(const TRect& R, TConnectionPoint Point) noexcept {
  const TPoint C = CanvasCenterPoint(R);
  switch (Point) {
  case cpTop:
    return {C.X, R.Top};
  case cpTopRight:
    return {R.Right, R.Top};
  case cpRight:
    return {R.Right, C.Y};
  case cpBottomRight:
    return {R.Right, R.Bottom};
  case cpBottom:
    return {C.X, R.Bottom};
  case cpBottomLeft:
    return {R.Left, R.Bottom};
  case cpLeft:
    return {R.Left, C.Y};
  case cpTopLeft:
    return {R.Left, R.Top};
  }
  return C; // a number that names no member
}

// --- Coordinates safe for the rasteriser ---

double ClampCanvasCoord(double Value) noexcept {
  if (std::isnan(Value)) return 0;
  return std::clamp(Value, -KXCanvasCoordLimit, KXCanvasCoordLimit);
}

namespace {

// Infinities have no position to interpolate from; the largest finite number keeps
// their direction.
double Finite(double V) {
  if (V == std::numeric_limits<double>::infinity()) return DBL_MAX;
  if (V == -std::numeric_limits<double>::infinity()) return -DBL_MAX;
  return V;
}

// A + (B - A) * T without overflow for any finite A and B: the convex combination never
// leaves the span of its ends.
double Lerp(double A, double B, double T) {
  return A * (1 - T) + B * T;
}

} // namespace

bool ClipCanvasLine(double& X1, double& Y1, double& X2, double& Y2) noexcept {
  if (std::isnan(X1) || std::isnan(Y1) || std::isnan(X2) || std::isnan(Y2)) return false;
  const double AX = Finite(X1), AY = Finite(Y1), BX = Finite(X2), BY = Finite(Y2);
  // Work in units of a power of two that brings every coordinate within 1, so that no
  // product overflows and the scaling itself is exact.
  int Exp = 0;
  std::frexp(std::max({std::abs(AX), std::abs(AY), std::abs(BX), std::abs(BY), 1.0}), &Exp);
  const auto Down = [Exp](double V) { return std::ldexp(V, -Exp); };
  const double Ax = Down(AX), Ay = Down(AY), Dx = Down(BX) - Ax, Dy = Down(BY) - Ay;
  const double L = Down(KXCanvasCoordLimit);
  // Measure from the point of the segment nearest the origin: when both ends lie far out,
  // parameters taken from an end would lose the visible part to rounding.
  const double DD = Dx * Dx + Dy * Dy;
  const double TNear = DD > 0 ? std::clamp(-(Ax * Dx + Ay * Dy) / DD, 0.0, 1.0) : 0.0;
  const double Cx = Ax + TNear * Dx, Cy = Ay + TNear * Dy;
  // Liang-Barsky on C + U * D for U in [-TNear, 1 - TNear].
  double U0 = -TNear, U1 = 1 - TNear;
  const auto Clip = [&](double P, double Q) {
    if (P == 0) return Q >= 0;
    const double U = Q / P;
    if (P < 0) {
      if (U > U1) return false;
      U0 = std::max(U0, U);
    } else {
      if (U < U0) return false;
      U1 = std::min(U1, U);
    }
    return true;
  };
  if (!Clip(-Dx, Cx + L) || !Clip(Dx, L - Cx) || !Clip(-Dy, Cy + L) || !Clip(Dy, L - Cy))
    return false;
  const auto Up = [Exp](double V) { return ClampCanvasCoord(std::ldexp(V, Exp)); };
  // Ends that were not cut keep their exact value.
  if (U0 != -TNear) {
    X1 = Up(Cx + U0 * Dx);
    Y1 = Up(Cy + U0 * Dy);
  }
  if (U1 != 1 - TNear) {
    X2 = Up(Cx + U1 * Dx);
    Y2 = Up(Cy + U1 * Dy);
  }
  return true;
}

std::vector<TCanvasPointD> ClipCanvasPolygon(std::span<const TCanvasPointD> Polygon) {
  std::vector<TCanvasPointD> Current;
  Current.reserve(Polygon.size());
  for (const TCanvasPointD& P : Polygon)
    if (!std::isnan(P.X) && !std::isnan(P.Y)) Current.push_back({Finite(P.X), Finite(P.Y)});

  const double L = KXCanvasCoordLimit;
  // One pass per edge of the square: keep what lies inside, and add the crossing point
  // wherever the outline passes the edge.
  for (int Edge = 0; Edge < 4 && !Current.empty(); ++Edge) {
    const bool OnX = Edge < 2;
    const double Sign = (Edge % 2 == 0) ? -1.0 : 1.0; // the edge at Sign * L
    const auto Inside = [&](const TCanvasPointD& P) { return Sign * (OnX ? P.X : P.Y) <= L; };
    std::vector<TCanvasPointD> Next;
    Next.reserve(Current.size() + 4);
    for (size_t I = 0; I < Current.size(); ++I) {
      const TCanvasPointD& A = Current[I];
      const TCanvasPointD& B = Current[(I + 1) % Current.size()];
      const bool AIn = Inside(A), BIn = Inside(B);
      if (AIn) Next.push_back(A);
      if (AIn != BIn) {
        // Measured from the end inside: the far end may lie so far out that a parameter
        // taken from it loses the crossing to rounding.
        const TCanvasPointD& In = AIn ? A : B;
        const TCanvasPointD& Out = AIn ? B : A;
        const double CIn = OnX ? In.X : In.Y, COut = OnX ? Out.X : Out.Y;
        const double T = (Sign * L / 4 - CIn / 4) / (COut / 4 - CIn / 4);
        TCanvasPointD Cross{Lerp(In.X, Out.X, T), Lerp(In.Y, Out.Y, T)};
        (OnX ? Cross.X : Cross.Y) = Sign * L;
        Next.push_back(Cross);
      }
    }
    Current = std::move(Next);
  }
  for (TCanvasPointD& P : Current) {
    P.X = ClampCanvasCoord(P.X);
    P.Y = ClampCanvasCoord(P.Y);
  }
  return Current;
}

} // namespace kx
