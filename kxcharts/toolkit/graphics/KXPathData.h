#pragma once
// Vector outlines: TKXPathData holds figures of straight lines and cubic Bézier curves,
// reads and writes them as path text, transforms, measures and hit-tests them, and hands
// them to a canvas segment by segment or as polygons. TKXMatrix is the affine transform
// that ApplyMatrix takes.
//
// Path text. Commands are letters followed by their numbers; upper case takes absolute
// coordinates, lower case coordinates relative to the current point. Numbers are decimal
// with a point (an exponent is allowed) and are separated by blanks or commas; a command
// letter may be followed by more sets of numbers, which repeat it (after M they are lines).
//
//   M x,y              start a figure           L x,y          line
//   H x   V y          horizontal, vertical line
//   C x1,y1 x2,y2 x,y  cubic curve              S x2,y2 x,y    cubic, first control mirrored
//   Q x1,y1 x,y        quadratic curve          T x,y          quadratic, control mirrored
//   A rx,ry angle large-arc-flag sweep-flag x,y   elliptical arc
//   Z                  close the figure
//
// Lines, curves and arcs are kept as lines and cubic curves (a quadratic is raised
// exactly, an arc becomes curves of at most a quarter turn), so every transform is exact
// on curves too.
//
// Filling uses the even-odd rule: a point is inside when a ray from it crosses the
// outline an odd number of times. So a figure inside another cuts a hole whatever its
// direction, as hand-written path text expects; a canvas filling a path sets the same
// rule, and PointInPath answers the same.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TCanvas;

struct TKXPathPoint {
  double X = 0;
  double Y = 0;
  friend constexpr bool operator==(const TKXPathPoint&, const TKXPathPoint&) = default;
};

// --- Matrices ---

// An affine transform of row vectors: (x, y, 1) * M, that is
//   x' = x * M11 + y * M21 + M31,   y' = x * M12 + y * M22 + M32.
struct TKXMatrix {
  double M11 = 1, M12 = 0;
  double M21 = 0, M22 = 1;
  double M31 = 0, M32 = 0;

  TKXPathPoint Transform(const TKXPathPoint& P) const {
    return {P.X * M11 + P.Y * M21 + M31, P.X * M12 + P.Y * M22 + M32};
  }
  friend constexpr bool operator==(const TKXMatrix&, const TKXMatrix&) = default;
};

[[nodiscard]] TKXMatrix CreateTranslateKXMatrix(double DX, double DY);
[[nodiscard]] TKXMatrix CreateScaleKXMatrix(double SX, double SY);
// Turns by Degrees about the origin, clockwise on a canvas whose Y grows downward.
[[nodiscard]] TKXMatrix CreateRotateKXMatrix(double Degrees);
// The transform that applies First, then Second.
[[nodiscard]] TKXMatrix KXMatrixMultiply(const TKXMatrix& First, const TKXMatrix& Second);

// --- Paths ---

// What path data holds after reading: every other command is turned into these.
enum TKXPathCommand : uint8_t { pcMoveTo, pcLineTo, pcCurveTo, pcClose };
KX_ENUM_NAMES(TKXPathCommand, "pcMoveTo", "pcLineTo", "pcCurveTo", "pcClose")

// One step of a path: a move or line with its end point, a curve with its two control
// points and its end point, or a close with none.
struct TKXPathSegment {
  TKXPathCommand Command;
  std::span<const TKXPathPoint> Points;
};

// One figure flattened to straight lines. Closed figures do not repeat the first point.
struct TKXPathPolygon {
  std::vector<TKXPathPoint> Points;
  bool Closed = false;
};

// Path text that cannot be read. Position counts characters from 1; a text that ends too
// early reports the position after its last character.
class EKXPathError : public EConvertError {
public:
  EKXPathError(size_t Position, const std::string& Reason);
  size_t Position() const noexcept { return FPosition; }

private:
  size_t FPosition;
};

class TKXPathData : public TPersistent {
  KX_CLASS(TKXPathData, TPersistent)

public:
  // The flattening that a canvas is expected to use: a quarter of a pixel.
  static constexpr double DefaultTolerance = 0.25;

  TKXPathData() = default;

  // The stored form. After SetPathString it answers the text as given; after anything
  // else changed the path, a text written from the commands (numbers in their shortest
  // exact form, curves as C), which reads back to the same path. A number that is not
  // finite, left by a transform that overflowed, is written as the largest finite one of
  // its sign, or 0 for NaN.
  std::string PathString() const;
  // Reads the text into the path. Empty or blank text gives the empty path. Bad text
  // raises EKXPathError naming the position and leaves the path as it was.
  void SetPathString(std::string_view Value);

  bool IsEmpty() const { return FCommands.empty(); }
  size_t CommandCount() const { return FCommands.size(); }

  // Raised once for every change of the figures; not raised by calls that change nothing
  // (an identical text, a move by 0), and only once at the end of an update.
  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

  // Changes between the two raise one OnChange at the last EndUpdate.
  void BeginUpdate();
  void EndUpdate();

  // --- Building ---
  // Coordinates must be finite (EInvalidOp otherwise). A line or curve without a current
  // point starts a figure at its first point; after a close it starts at the point where
  // the closed figure began.
  void Clear();
  void MoveTo(double X, double Y);
  void LineTo(double X, double Y);
  void CurveTo(double X1, double Y1, double X2, double Y2, double X, double Y);
  void ClosePath();

  // Adds a ring part centred at (0, 0): the band between the two radii from StartAngle to
  // EndAngle, both turned by Offset. Angles are degrees measured from the positive X axis
  // towards positive Y (clockwise on a canvas whose Y grows downward); an end below the
  // start runs backwards. An inner radius of 0 gives a pie slice from the centre; a turn of
  // 360 degrees or more gives the whole ring, as two circles. Negative radii count as 0,
  // the radii are taken in order; an outer radius of 0, equal angles or a number that is
  // not finite add nothing.
  void Arc(double StartAngle, double EndAngle, double InnerRadius, double OuterRadius,
           double Offset);

  // --- Measuring ---
  // The smallest rectangle that holds every point of the path, curves measured at their
  // extremes rather than at their control points. (0, 0, 0, 0) for the empty path.
  TRectF GetBounds() const;
  // Whether the point lies in the filled path (even-odd rule, open figures closed
  // implicitly). Curves are tested at a ten-thousandth of the path's size.
  bool PointInPath(double X, double Y) const;
  bool PointInPath(const TPointF& P) const { return PointInPath(P.X, P.Y); }

  // --- Transforming ---
  void Translate(double DX, double DY);
  // About the origin.
  void Scale(double SX, double SY);
  // Moves and stretches the path so that its bounds become R: the sides of the bounds land
  // on the sides of R exactly. A bounds side of 0 is put in the middle of R's extent; an
  // inverted R mirrors the path; an R that is not finite changes nothing.
  void FitToRect(const TRectF& R);
  void ApplyMatrix(const TKXMatrix& M);

  // --- Walking ---
  // Calls Visit(const TKXPathSegment&) for every command in order.
  template <class F> void ForEachSegment(F&& Visit) const;
  // Every figure as a polygon, curves cut into lines no further than Tolerance from the
  // curve (DefaultTolerance for a tolerance that is not positive). A figure of a single
  // point gives no polygon; a curve gives at most 256 lines.
  std::vector<TKXPathPolygon> Flatten(double Tolerance = DefaultTolerance) const;

  // --- Painting (KXPathDataCanvas.cpp) ---
  // Fills the path with the canvas's brush by the even-odd rule, or strokes it with the
  // canvas's pen (an odd pen on pixel centres, so that level and upright lines are crisp),
  // composited with Opacity.
  void FillPath(TCanvas* Canvas, float Opacity = 1.0f) const;
  void DrawPath(TCanvas* Canvas, float Opacity = 1.0f) const;

  // From another TKXPathData: takes its figures and its text; one change when they differ.
  void Assign(const TPersistent* Source) override;

protected:
  // Raises OnChange (or notes it for EndUpdate).
  virtual void Changed();

private:
  struct TBoundsD {
    double Left, Top, Right, Bottom;
  };
  TBoundsD BoundsD() const;
  void TransformAll(const TKXMatrix& M);

  std::vector<TKXPathCommand> FCommands;
  std::vector<TKXPathPoint> FPoints;
  // The text as given to SetPathString, until the figures change otherwise.
  std::optional<std::string> FText;
  int FUpdateCount = 0;
  bool FChangedInUpdate = false;
  TNotifyEvent FOnChange;
};

// --- Inline ---

template <class F> void TKXPathData::ForEachSegment(F&& Visit) const {
  size_t P = 0;
  for (TKXPathCommand C : FCommands) {
    const size_t N = C == pcCurveTo ? 3 : C == pcClose ? 0 : 1;
    Visit(TKXPathSegment{C, std::span<const TKXPathPoint>(FPoints.data() + P, N)});
    P += N;
  }
}

} // namespace kx
