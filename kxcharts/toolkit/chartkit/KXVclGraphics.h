#pragma once
// Drawing helpers the chart modules share: lines, shapes, text labels, arrows, curves, pie
// and donut slices, gradients. They draw with the brush, pen and font that the caller has set
// on the canvas; every helper that takes an opacity composites its whole drawing with it
// (0 draws nothing). Degenerate rectangles, zero radii and NaN numbers draw nothing.

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXSet.h"

namespace kx {

// --- Lines and pens ---

// The canvas operations the chart modules reach through the canvas helper.
struct TVclCanvasHelper {
  // MoveTo(P1), LineTo(P2): the end point stays unpainted.
  static void DrawLine(TCanvas* Canvas, const TPoint& P1, const TPoint& P2);
  static void DrawLine(TCanvas* Canvas, int32_t X1, int32_t Y1, int32_t X2, int32_t Y2);
  // The width the pen paints with: its Width, and 1 for the hairline width 0.
  static int32_t GetPenWidth(const TCanvas* Canvas);
  static void SetPenWidth(TCanvas* Canvas, int32_t Width);
};

// --- Shapes ---

// The shapes of DrawShape. The numbers are fixed: 0 is the rectangle (and the default of
// every value), 2 draws an image, 8 is the rounded rectangle of the legend box, 0 to 8 are
// also the bar styles of the same numbers. Styles 12 to 23 are styles 0 to 11 lit as raised
// (or sunken) 3D bodies; a shadow takes them as the flat style twelve below. Any other
// number draws the rectangle.
enum TKXShapeStyle : uint8_t {
  shpRectangle,
  shpEllipse,
  shpImage,
  shpDiamond,
  shpTriangleUp,
  shpTriangleDown,
  shpHexagon,
  shpStar,
  shpRoundRect,
  shpCross,
  shpOctagon,
  shpPentagon,
  shpRectangle3D,
  shpEllipse3D,
  shpImage3D,
  shpDiamond3D,
  shpTriangleUp3D,
  shpTriangleDown3D,
  shpHexagon3D,
  shpStar3D,
  shpRoundRect3D,
  shpCross3D,
  shpOctagon3D,
  shpPentagon3D
};
KX_ENUM_NAMES(TKXShapeStyle, "shpRectangle", "shpEllipse", "shpImage", "shpDiamond",
              "shpTriangleUp", "shpTriangleDown", "shpHexagon", "shpStar", "shpRoundRect",
              "shpCross", "shpOctagon", "shpPentagon", "shpRectangle3D", "shpEllipse3D",
              "shpImage3D", "shpDiamond3D", "shpTriangleUp3D", "shpTriangleDown3D", "shpHexagon3D",
              "shpStar3D", "shpRoundRect3D", "shpCross3D", "shpOctagon3D", "shpPentagon3D")

// Fills shape Style in R (corners in any order) with the canvas's brush and outlines it with
// its pen, inside R. The 3D styles light their rim, BevelWidth pixels wide, from the top left
// with Highlight and Shadow when Raised, the other way round when not. shpImage draws Bitmap
// fitted into R and centred (a missing or empty bitmap draws the rectangle instead).
// Answers the rectangle inside the shape, within its outline and rim, where a label or a
// picture can go; empty for an empty R.
TRect DrawShape(TCanvas* Canvas, const TRect& R, const TBitmap* Bitmap, TKXShapeStyle Style,
                bool Raised, TColor Highlight, TColor Shadow, int32_t BevelWidth,
                float Opacity = 1.0f);
// The same with the picture of shpImage (and of its lit form) taken from Images at
// ImageIndex; without that image (no list, an index outside it) DefaultStyle is drawn
// instead, and a default that is itself the image draws the rectangle.
TRect DrawShape(TCanvas* Canvas, const TRect& R, const TImageList* Images, int32_t ImageIndex,
                TKXShapeStyle Style, TKXShapeStyle DefaultStyle, bool Raised, TColor Highlight,
                TColor Shadow, int32_t BevelWidth);
// The rim a chart gives a shape of R: a twentieth of its width, at least 1.
int32_t ShapeBevelWidth(const TRect& R);
// The rectangle DrawShape answers, without drawing.
TRect ShapeInnerRect(const TRect& R, TKXShapeStyle Style, int32_t PenWidth, int32_t BevelWidth);

// --- Text ---

// The flags of the classic text-drawing call, with their numbers.
inline constexpr uint32_t DT_TOP = 0x0;
inline constexpr uint32_t DT_LEFT = 0x0;
inline constexpr uint32_t DT_CENTER = 0x1;
inline constexpr uint32_t DT_RIGHT = 0x2;
inline constexpr uint32_t DT_VCENTER = 0x4;
inline constexpr uint32_t DT_BOTTOM = 0x8;
inline constexpr uint32_t DT_WORDBREAK = 0x10;
inline constexpr uint32_t DT_SINGLELINE = 0x20;
inline constexpr uint32_t DT_EXPANDTABS = 0x40;
inline constexpr uint32_t DT_NOCLIP = 0x100;
inline constexpr uint32_t DT_CALCRECT = 0x400;
inline constexpr uint32_t DT_NOPREFIX = 0x800;
inline constexpr uint32_t DT_PATH_ELLIPSIS = 0x4000;
inline constexpr uint32_t DT_END_ELLIPSIS = 0x8000;
inline constexpr uint32_t DT_WORD_ELLIPSIS = 0x40000;
inline constexpr uint32_t DT_HIDEPREFIX = 0x100000;

// Draws Text in R by Flags, in the canvas's font, unrotated; unless the brush is clear, the
// text's box is first filled with the brush colour. Horizontal: DT_LEFT, DT_CENTER, DT_RIGHT
// align each line in R (on a zero-width R, around R.Left). Vertical: DT_TOP, DT_VCENTER,
// DT_BOTTOM place the whole block, also when it wraps. Lines break at line feeds unless
// DT_SINGLELINE; DT_WORDBREAK also wraps at R's width. The ellipsis flags shorten lines that
// do not fit R's width and, with DT_WORDBREAK, end the last line that fits R's height.
// "&" underlines the next character and "&&" writes one "&" unless DT_NOPREFIX (DT_HIDEPREFIX
// drops the underline). The text is clipped to R unless DT_NOCLIP. With DT_CALCRECT nothing
// is drawn. Answers the height of the text.
int32_t DrawTextLabel(TCanvas* Canvas, std::string_view Text, uint32_t Flags, const TRect& R);
// The rectangle DrawTextLabel would fill: its top left at R's, the width of the widest line
// (R's width when DT_WORDBREAK wraps), the height of the text.
TRect TextLabelRect(TCanvas* Canvas, std::string_view Text, uint32_t Flags, const TRect& R);

// Turns Font by Angle degrees counter-clockwise (kept in 0..359).
void RotateFont(TFont* Font, int32_t Angle);
// The box that Text takes in the canvas's font turned by Angle degrees counter-clockwise,
// and in Offset where the text's origin (its unrotated top left, where TextOut starts it)
// lies within that box.
TSize GetRotatedTextExtent(TCanvas* Canvas, int32_t Angle, std::string_view Text);
TSize GetRotatedTextExtent(TCanvas* Canvas, int32_t Angle, std::string_view Text, TPoint& Offset);

// --- Arrows ---

enum TArrowOption : uint8_t {
  arStartHead,  // a head at the first point too
  arEndHead,    // a head at the last point
  arFilledHead, // heads are triangles filled with the brush; otherwise open, in the pen
  arStartDot,   // a dot marks the first point
  arText        // the text stands beside the line
};
KX_ENUM_NAMES(TArrowOption, "arStartHead", "arEndHead", "arFilledHead", "arStartDot", "arText")
using TArrowOptions = TSet<TArrowOption>;

// An arrow from (X1, Y1) to (X2, Y2) in the pen's colour. HeadSize is the length and the width
// of a head in pixels; the shaft is max(pen width, ShaftWidth) wide. An arrow whose two ends
// meet has no direction: only its dot and text are drawn.
void DrawArrow(TCanvas* Canvas, int32_t X1, int32_t Y1, int32_t X2, int32_t Y2, int32_t HeadSize,
               std::string_view Text, TArrowOptions Options, int32_t ShaftWidth,
               float Opacity = 1.0f);
// The same along a polyline; heads follow the first and last segments. The text stands at
// the middle of segment TextSegment, or halfway along the whole line for -1 (or a segment
// that does not exist).
void DrawArrow(TCanvas* Canvas, std::span<const TPoint> Points, int32_t HeadSize,
               std::string_view Text, TArrowOptions Options, int32_t ShaftWidth,
               int32_t TextSegment, float Opacity = 1.0f);

// --- Curves ---

// A smooth curve through Points. Bezier false: an interpolating spline that passes through
// every point. Bezier true: a B-spline that uses the inner points as control points and passes
// through the first and last only (a calmer line). Closed joins the last point back to the
// first smoothly; Filled fills the closed curve with the brush (and closes it). Smoothness
// (0..1, usually 1) bends the curve: 0 gives straight segments.
void DrawBezierPolygon(TCanvas* Canvas, std::span<const TPoint> Points, bool Bezier, bool Closed,
                       bool Filled, double Smoothness, float Opacity = 1.0f);
// The curve of DrawBezierPolygon as a dense polyline. With Bezier false it holds every one of
// Points, in order, each exactly once at the end of its piece, and no point between two of
// them equals either; a closed curve ends with the first point again.
std::vector<TPoint> BezierPolygonPoints(std::span<const TPoint> Points, bool Bezier, bool Closed,
                                        double Smoothness);

// --- Slices ---

// A pie slice of the ellipse inscribed in R, scaled by Radius (1 touches R's sides), from
// StartAngle to EndAngle (degrees, 0 to the right, counter-clockwise), both turned by Offset
// degrees. A sweep of 360 degrees or more is the whole ellipse; the angles may come in any
// order.
void DrawPieSlice(TCanvas* Canvas, const TRect& R, double StartAngle, double EndAngle,
                  double Radius, double Offset, float Opacity = 1.0f);
// A ring part between InnerRadius and OuterRadius (fractions as Radius above; they may come
// in either order); an inner radius of 0 draws the pie slice.
void DrawDonutSlice(TCanvas* Canvas, const TRect& R, double StartAngle, double EndAngle,
                    double Offset, double InnerRadius, double OuterRadius, float Opacity = 1.0f);

// --- Gradients and colours ---

// Where the first colour of a gradient lies and where the last.
enum TGradientDirection : uint8_t {
  gdLeftToRight,
  gdRightToLeft,
  gdBottomToTop,
  gdTopLeftToBottomRight,
  gdTopToBottom, // the default look: light from above
  gdBottomLeftToTopRight,
  gdHorizontalMirror, // first colour at the left and right edges, last in the middle
  gdVerticalMirror,   // first colour at the top and bottom edges, last in the middle
  gdRadial            // first colour in the centre, last in the corners
};
KX_ENUM_NAMES(TGradientDirection, "gdLeftToRight", "gdRightToLeft", "gdBottomToTop",
              "gdTopLeftToBottomRight", "gdTopToBottom", "gdBottomLeftToTopRight",
              "gdHorizontalMirror", "gdVerticalMirror", "gdRadial")

// The orientation of LineGradient: its numbers are those of the bar orientation, so that a
// lying bar (0) runs its colours left to right and a standing bar (1) top to bottom.
enum TGradientOrientation : uint8_t { grHorizontal, grVertical };
KX_ENUM_NAMES(TGradientOrientation, "grHorizontal", "grVertical")

// Fills R (corners in any order) with Colors spread evenly in Direction. Coarseness is the
// width of the colour bands in pixels: 1 (or less) is smooth.
void DirectionGradient(TCanvas* Canvas, const TRect& R, std::span<const TColor> Colors,
                       TGradientDirection Direction, int32_t Coarseness, float Opacity = 1.0f);
void DirectionGradient(TCanvas* Canvas, const TRect& R, std::initializer_list<TColor> Colors,
                       TGradientDirection Direction, int32_t Coarseness, float Opacity = 1.0f);
// Fills R with Colors[0..HighIndex] along Orientation.
void LineGradient(TCanvas* Canvas, const TRect& R, std::span<const TColor> Colors,
                  int32_t HighIndex, int32_t Coarseness, TGradientOrientation Orientation,
                  float Opacity = 1.0f);

// C1 at T = 0, C2 at T = 1, each channel in between (T is clamped; NaN counts as 0).
// System colours are resolved first.
TColor InterpolateColor(TColor C1, TColor C2, double T);

} // namespace kx
