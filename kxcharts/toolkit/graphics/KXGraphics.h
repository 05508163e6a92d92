#pragma once
// Whole-pixel arithmetic and the rectangle and point helpers every drawing step uses.
//
// Pixel arithmetic never overflows and never leaves a value undefined: conversions from
// double saturate, division by 0 gives 0, and sums work in 64 bits before they are
// clamped back. Integer rectangles are half-open like the canvas fills (columns
// Left..Right-1); float rectangles, which hold axis units or exact pixel geometry, are
// closed (a point on an edge is inside).

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// A polyline or polygon on a canvas.
using TCanvasPoints = std::vector<TPoint>;

// Where a text stands in a rectangle: three rows (top, middle, bottom) of three columns
// (left, centre, right), numbered 0 to 8 row by row.
enum T2DTextAlignment : uint8_t {
  tdTopLeft,
  tdTopCenter,
  tdTopRight,
  tdMiddleLeft,
  tdMiddleCenter,
  tdMiddleRight,
  tdBottomLeft,
  tdBottomCenter,
  tdBottomRight,
};
KX_ENUM_NAMES(T2DTextAlignment, "tdTopLeft", "tdTopCenter", "tdTopRight", "tdMiddleLeft",
              "tdMiddleCenter", "tdMiddleRight", "tdBottomLeft", "tdBottomCenter", "tdBottomRight")

// A point on the outline of a rectangle, clockwise from the middle of the top edge; the
// even members are the middles of the edges, the odd ones the corners.
enum TConnectionPoint : uint8_t {
  cpTop,
  cpTopRight,
  cpRight,
  cpBottomRight,
  cpBottom,
  cpBottomLeft,
  cpLeft,
  cpTopLeft,
};
KX_ENUM_NAMES(TConnectionPoint, "cpTop", "cpTopRight", "cpRight", "cpBottomRight", "cpBottom",
              "cpBottomLeft", "cpLeft", "cpTopLeft")

// --- Whole pixels ---

// The largest magnitude CanvasRound and CanvasTrunc answer. Kept at 2^30 - 1 so that the
// sum or difference of any two results still fits in 32 bits.
inline constexpr int32_t KXMaxCanvasInt = 0x3FFFFFFF;

// Rounds halves away from zero (2.5 -> 3, -2.5 -> -3). NaN gives 0; numbers beyond
// +-KXMaxCanvasInt, infinities included, give +-KXMaxCanvasInt. Inline: every value a
// chart draws passes through it.
[[nodiscard]] inline int32_t CanvasRound(double Value) noexcept {
  if (Value > -KXMaxCanvasInt && Value < KXMaxCanvasInt) {
    // The conversion drops the fraction, and Value - Whole is exact below 2^30, so the
    // half is decided without error (0.49999999999999994 stays 0) and without a call.
    const auto Whole = static_cast<int32_t>(Value);
    const double Rest = Value - Whole;
    return Whole + (Rest >= 0.5) - (Rest <= -0.5);
  }
  return Value != Value ? 0 : Value > 0 ? KXMaxCanvasInt : -KXMaxCanvasInt;
}
// Drops the fraction (towards zero); NaN and large numbers as CanvasRound.
[[nodiscard]] int32_t CanvasTrunc(double Value) noexcept;
// Integer division truncating towards zero. A divisor of 0 gives 0, and the one quotient
// that does not fit (INT32_MIN / -1) gives INT32_MAX.
[[nodiscard]] int32_t CanvasDiv(int32_t Dividend, int32_t Divisor) noexcept;
// The largest and smallest of the numbers; 0 for none.
[[nodiscard]] int32_t CanvasMax(std::span<const int32_t> Values) noexcept;
[[nodiscard]] int32_t CanvasMin(std::span<const int32_t> Values) noexcept;
[[nodiscard]] int32_t CanvasMax(std::initializer_list<int32_t> Values) noexcept;
[[nodiscard]] int32_t CanvasMin(std::initializer_list<int32_t> Values) noexcept;

// --- Making rectangles and points ---

// Each coordinate through CanvasRound.
[[nodiscard]] TRect CanvasRect(double Left, double Top, double Right, double Bottom) noexcept;
[[nodiscard]] TRect CanvasRect(const TRectF& R) noexcept;
[[nodiscard]] TPoint CanvasPoint(double X, double Y) noexcept;
// Float rectangles and points. Numbers beyond the float range become +-FLT_MAX, NaN
// stays NaN.
[[nodiscard]] TRectF KXRect(double Left, double Top, double Right, double Bottom) noexcept;
[[nodiscard]] TRectF KXRect(const TRect& R) noexcept;
[[nodiscard]] TPointF KXPoint(double X, double Y) noexcept;
[[nodiscard]] TPointF KXPoint(const TPoint& P) noexcept;
[[nodiscard]] TPoint KXPointToCanvasPoint(const TPointF& P) noexcept;

// --- Measuring and comparing ---

// Right - Left and Bottom - Top with their sign (negative for an inverted rectangle),
// computed in double so that no pair of coordinates overflows.
[[nodiscard]] double KXRectWidth(const TRect& R) noexcept;
[[nodiscard]] double KXRectWidth(const TRectF& R) noexcept;
[[nodiscard]] double KXRectHeight(const TRect& R) noexcept;
[[nodiscard]] double KXRectHeight(const TRectF& R) noexcept;

[[nodiscard]] bool EqualsRect(const TRect& A, const TRect& B) noexcept;
// Exact comparison; a rectangle holding NaN equals nothing, itself included.
[[nodiscard]] bool EqualsRect(const TRectF& A, const TRectF& B) noexcept;

// The point Left + (Right - Left) div 2, Top + (Bottom - Top) div 2.
[[nodiscard]] TPoint CanvasCenterPoint(const TRect& R) noexcept;

// Closed: a point on any edge is inside. A rectangle with Right < Left or Bottom < Top
// holds no point; one of width or height 0 holds the points of its edge.
[[nodiscard]] bool PtInKXRect(const TRectF& R, const TPointF& P) noexcept;

// --- Changing rectangles and points ---

// The same rectangle with Left <= Right and Top <= Bottom.
[[nodiscard]] TRect FixRect(const TRect& R) noexcept;
[[nodiscard]] TRectF FixRect(const TRectF& R) noexcept;

// Grows the rectangle by DX in width and DY in height in all, half on each side (a
// negative amount shrinks it). The growth follows the rectangle's own direction, so an
// inverted rectangle stays inverted and its extent grows just the same. The integer form
// rounds the amounts once (CanvasRound) and gives the odd pixel to the right and bottom.
[[nodiscard]] TRect ScaleRect(const TRect& R, double DX, double DY) noexcept;
[[nodiscard]] TRectF ScaleRect(const TRectF& R, double DX, double DY) noexcept;

// Each point moved away from the centre by the factors: C + (P - C) * S, rounded. The
// short form scales about the centre of the points' bounding box, so that a segment or a
// polygon grows about its middle as a rectangle does in ScaleRect.
[[nodiscard]] TCanvasPoints ScalePoints(const TCanvasPoints& Points, double SX, double SY);
[[nodiscard]] TCanvasPoints ScalePoints(const TCanvasPoints& Points, double SX, double SY,
                                        double CenterX, double CenterY);

// Moves Left and Top out by DX and DY, Right and Bottom out by the same (the classic
// rule, which assumes normal form: an inverted rectangle shrinks).
[[nodiscard]] TRect KXInflateRect(const TRect& R, int32_t DX, int32_t DY) noexcept;
[[nodiscard]] TRectF KXInflateRect(const TRectF& R, double DX, double DY) noexcept;

// Whether the two rectangles share a point, and the rectangle they share (all zero when
// they share none). The float form is closed like PtInKXRect: rectangles that touch
// intersect, and a rectangle of size 0 at P meets R exactly when PtInKXRect(R, P). The
// integer form is half-open like the fills: the overlap must hold a pixel. Inverted
// rectangles meet nothing.
bool KXIntersectRect(TRectF& Dest, const TRectF& A, const TRectF& B) noexcept;
[[nodiscard]] bool KXIntersectRect(const TRectF& A, const TRectF& B) noexcept;
bool KXIntersectRect(TRect& Dest, const TRect& A, const TRect& B) noexcept;
[[nodiscard]] bool KXIntersectRect(const TRect& A, const TRect& B) noexcept;

// Resizes R at equal scale until it fits Bounds and centres it there; with ShrinkOnly a
// rectangle that already fits keeps its size and is only centred. Both come out in normal
// form. Answers the scale applied. A side of 0 in R keeps 0 and the other side alone
// decides the scale; an R of no size, a Bounds of no size or a number that is not finite
// gives the empty rectangle at the centre of Bounds (at 0, 0 when Bounds is not finite)
// and a scale of 0.
double FitRect(TRectF& R, const TRectF& Bounds, bool ShrinkOnly = false) noexcept;

// The middle of an edge or a corner of R, on R's own coordinates (the bottom edge is
// R.Bottom, the middle is CanvasCenterPoint's).
[[nodiscard]] TPoint GetCanvasPointOnRect(const TRect& R, TConnectionPoint Point) noexcept;

// --- Coordinates safe for the rasteriser ---

// Cairo holds coordinates in 24.8 fixed point and wraps silently outside about
// +-8.3 million. Drawing code passes every device coordinate through these first; the
// limit leaves room for a device scale of 2.
inline constexpr double KXCanvasCoordLimit = 4194304.0;

// The coordinate within +-KXCanvasCoordLimit; NaN gives 0.
[[nodiscard]] double ClampCanvasCoord(double Value) noexcept;

// Cuts the segment to the square of +-KXCanvasCoordLimit without changing its direction,
// so a line towards a far point keeps its slope on the screen. Answers false (and leaves
// the points alone) when no part of the segment lies in the square or a coordinate is
// NaN.
bool ClipCanvasLine(double& X1, double& Y1, double& X2, double& Y2) noexcept;

// A point in double precision, for polygons on their way to the rasteriser.
struct TCanvasPointD {
  double X = 0;
  double Y = 0;
  friend constexpr bool operator==(const TCanvasPointD&, const TCanvasPointD&) = default;
};

// Cuts a closed polygon to the square of +-KXCanvasCoordLimit (Sutherland-Hodgman), so
// that a fill reaching far off the surface keeps its true shape inside it. Points with
// NaN are dropped. The result may be empty.
[[nodiscard]] std::vector<TCanvasPointD> ClipCanvasPolygon(std::span<const TCanvasPointD> Polygon);

} // namespace kx
