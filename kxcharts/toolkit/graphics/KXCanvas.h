#pragma once
// TCanvas: integer drawing on any Cairo surface (an ARGB32 image, an SVG or a PDF file), with
// the pixel rules of the classic integer canvas, so that whole-pixel arithmetic lands on
// exact pixels:
//
// - FillRect(l, t, r, b) fills columns l..r-1 and rows t..b-1; FrameRect frames the same box.
// - Rectangle, RoundRect and Ellipse fill the box and stroke their outline inside it.
// - MoveTo/LineTo and Polyline do not paint their end point; 1-pixel lines along the axes are
//   crisp, diagonals, curves, ellipses and text antialiased.
// - Pen modes other than pmCopy, and DrawFocusRect, work on the RGB bytes of an image surface
//   (ARGB32 or RGB24) without antialiasing, so that pmXor and DrawFocusRect drawn twice give
//   back the pixels.
// - Coordinates are clamped to +-SafeCoord before they reach Cairo; a rectangle with no area
//   paints nothing.
//
// Text is Pango: one layout per canvas, kept across calls and rebuilt only when the font
// changes, so measuring many labels costs little. Metrics do not depend on the surface: a
// text measured on a bitmap is as wide in an SVG.

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TGraphic;
class TBitmap;

// The kind of surface a canvas paints on.
enum TCanvasSurfaceKind : uint8_t { skImage, skSvg, skPdf, skOther };

class TCanvas : public TPersistent {
  KX_CLASS(TCanvas, TPersistent)

public:
  // Coordinates beyond this many pixels from the origin are moved to it (the toolkit's one
  // limit for what reaches Cairo).
  static constexpr int32_t SafeCoord = static_cast<int32_t>(KXCanvasCoordLimit);
  // The most characters of a text that are laid out; the rest is cut before layout. A
  // glyph at the smallest font (1 pixel) is at least a quarter pixel wide, and a bitmap at
  // most TBitmap's 32,767 pixels, so no line of a canvas shows more; a text of hundreds of
  // megabytes then costs what this many characters cost, not gigabytes.
  static constexpr int32_t MaxTextLength = 131072;

  TCanvas();
  ~TCanvas() override;

  // --- Surface ---

  // Paints from now on into Surface (which the canvas holds a reference to), keeping its
  // identity, pen, brush and font. Clip rectangles and opacity layers of the old surface
  // are dropped. A nil surface binds the canvas to a private 1 x 1 scratch image, on which
  // text can still be measured. Width and Height give the extent of a surface that has none
  // of its own (SVG, PDF); an image surface reports its own.
  void Bind(cairo_surface_t* Surface, int32_t Width = 0, int32_t Height = 0);
  cairo_t* Handle() const { return FCairo; }
  cairo_surface_t* Surface() const { return FSurface; }
  TCanvasSurfaceKind SurfaceKind() const { return FKind; }
  int32_t Width() const { return FWidth; }
  int32_t Height() const { return FHeight; }
  // Finishes a file surface (SVG, PDF): writes the rest of the file and closes it. Raises
  // an Exception naming the file when it cannot be written. Drawing afterwards does nothing.
  // Freeing a file canvas finishes it too, but swallows the error; call Finish to see it.
  void Finish();

  // --- Drawing objects ---

  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value) { FPen->Assign(Value); }
  TBrush* Brush() const { return FBrush.get(); }
  void SetBrush(const TBrush* Value) { FBrush->Assign(Value); }
  TFont* Font() const { return FFont.get(); }
  void SetFont(const TFont* Value) { FFont->Assign(Value); }
  TPoint PenPos() const { return FPenPos; }
  void SetPenPos(TPoint Value) { FPenPos = Value; }

  // --- Pixels ---

  // The colour of one pixel of an image surface, alpha dropped; clNone outside the surface,
  // on a vector surface, or on an image of a format other than ARGB32 and RGB24.
  TColor Pixel(int32_t X, int32_t Y) const;
  // Sets one opaque pixel, inside the clip rectangle only.
  void SetPixel(int32_t X, int32_t Y, TColor Color);

  // --- Clipping ---

  // Narrows drawing to R within the current clip (clip rectangles nest). Each call must be
  // matched by RestoreClipRect; TCanvasClip does that in its destructor. A clip set inside an
  // opacity layer ends with the layer at the latest.
  void SetClipRect(const TRect& R);
  // Takes back the last SetClipRect. Does nothing when none is left, or when the innermost
  // entry is an opacity layer.
  void RestoreClipRect();
  // The rectangle drawing is restricted to: the canvas extent within all clip rectangles.
  TRect ClipRect() const { return FClip; }
  // The number of clip rectangles and opacity layers in force.
  int32_t LayerDepth() const { return static_cast<int32_t>(FStack.size()); }

  // --- Opacity ---

  // Everything drawn until the matching EndOpacity is composited at once with Opacity
  // (0..1; NaN counts as 0). Layers nest. Pen modes other than pmCopy bypass layers.
  void BeginOpacity(float Opacity);
  void EndOpacity();

  // --- Shapes ---

  void FillRect(const TRect& R);
  // A one-pixel frame just inside R, in the brush colour.
  void FrameRect(const TRect& R);
  // Makes the pixels of R transparent (black on a surface without alpha), within the clip:
  // how a bitmap that is painted only in parts starts.
  void ClearRect(const TRect& R);
  void Rectangle(int32_t X1, int32_t Y1, int32_t X2, int32_t Y2);
  void Rectangle(const TRect& R) { Rectangle(R.Left, R.Top, R.Right, R.Bottom); }
  // Corners are quarter ellipses of width X3 and height Y3.
  void RoundRect(int32_t X1, int32_t Y1, int32_t X2, int32_t Y2, int32_t X3, int32_t Y3);
  void RoundRect(const TRect& R, int32_t CX, int32_t CY) {
    RoundRect(R.Left, R.Top, R.Right, R.Bottom, CX, CY);
  }
  void Ellipse(int32_t X1, int32_t Y1, int32_t X2, int32_t Y2);
  void Ellipse(const TRect& R) { Ellipse(R.Left, R.Top, R.Right, R.Bottom); }
  void MoveTo(int32_t X, int32_t Y) { FPenPos = {X, Y}; }
  // A line from PenPos to (X, Y), without its end point; PenPos becomes (X, Y).
  void LineTo(int32_t X, int32_t Y);
  void Polyline(std::span<const TPoint> Points);
  // Polyline for a line that mostly runs up and down pixel columns (a long series drawn one
  // column at a time): its vertical segments, and the level ones between them, become
  // whole-pixel boxes, written straight into the pixels of an image, and only the others
  // are stroked, with the joins they make with their vertical neighbours. Far fewer edges
  // reach the rasterizer. It is Polyline without antialiasing,
  // for odd, wide or patterned pens, pen modes and SVG or PDF files; otherwise a pixel that
  // the stroke's edge crosses may come out up to two levels off (Cairo's coverage of a
  // pixel depends a little on the other edges it rasterizes at the same time).
  void ColumnPolyline(std::span<const TPoint> Points);
  // Filled by the even-odd rule over the pixels whose centres lie inside, outlined through
  // all points (the pen on pixel centres), the first and last joined.
  void Polygon(std::span<const TPoint> Points);
  // Inverts every other pixel of a one-pixel frame just inside R (an image surface only),
  // so that a second call erases it. The corners of R may come in any order.
  void DrawFocusRect(const TRect& R);

  // --- Text ---

  // Text with its top left at (X, Y), turned by Font.Orientation about that point. Unless
  // the brush is clear, the text's box is first filled with the brush colour. PenPos moves
  // to the right end of the text.
  void TextOut(int32_t X, int32_t Y, std::string_view Text);
  // TextOut clipped to R; unless the brush is clear, R is first filled with the brush colour.
  void TextRect(const TRect& R, int32_t X, int32_t Y, std::string_view Text);
  // The size of Text in the current font, unrotated, in whole pixels (rounded up): the
  // advance width and the line height. An empty text measures (0, 0).
  TSize TextExtent(std::string_view Text);
  int32_t TextWidth(std::string_view Text) { return TextExtent(Text).cx; }
  int32_t TextHeight(std::string_view Text) { return TextExtent(Text).cy; }

  // --- Graphics ---

  void Draw(int32_t X, int32_t Y, const TGraphic* Graphic, float Opacity = 1.0f);
  void StretchDraw(const TRect& R, const TGraphic* Graphic, float Opacity = 1.0f);
  // Paints Stamp (a picture each of whose pixels is opaque or clear) with its top left at
  // each point of At in turn, each over those before, and answers true. On an image the
  // opaque pixels are written straight into the image, so that a million small stamps cost
  // little more than their pixels. False, painting nothing, when the canvas does not write
  // its pixels itself (a vector file, inside an opacity layer) or the stamp has a pixel in
  // between opaque and clear, which would blend with what lies under it.
  bool DrawStamps(const TBitmap* Stamp, std::span<const TPoint> At);

  // --- Paths, for drawing helpers ---

  // Paints the path that the caller built on Handle() (device pixels) with the canvas's
  // brush (when Fill) and pen (when Stroke), honouring styles, pen width and pen mode, and
  // clears the path. The pen is centred on the path; callers that need crisp one-pixel lines
  // put the path on pixel centres.
  void PaintPath(bool Fill, bool Stroke, bool EvenOdd = true);
  // The pen width that painting uses: Pen.Width, and 1 for a width of 0.
  int32_t EffectivePenWidth() const;
  // Sets the canvas's pen and brush colours and styles on Handle() for a caller that fills or
  // strokes itself (gradients, images). True when the pen would paint at all.
  bool ApplyPen();

  // --- Text layout, for drawing helpers ---

  // Options of LayoutText beyond the plain one-line text of TextOut.
  struct TTextLayout {
    bool SingleLine = true;
    int32_t WrapWidth = -1; // pixels; -1 for no wrapping
    int32_t MaxHeight = -1; // pixels; with Ellipsize, lines beyond it are cut
    int32_t Ellipsize = 0;  // 0 none, 1 start, 2 middle, 3 end
    int32_t Align = 0;      // 0 left, 1 centre, 2 right (lines among themselves)
    bool ExpandTabs = true;
    std::vector<int32_t> Underline; // byte offsets of single characters to underline
  };
  // Lays Text out with Options and returns its logical size in pixels (rounded up); LogicalX,
  // when given, receives where the text starts within a wrap width (after alignment).
  TSize LayoutText(std::string_view Text, const TTextLayout& Options, int32_t* LogicalX = nullptr);
  // Paints the text last laid out by LayoutText with its top left at (X, Y), unrotated, in
  // the font colour, after filling Background (when given) with the brush colour.
  void PaintLayout(int32_t X, int32_t Y, const TRect* Background = nullptr);

  // Clamps a coordinate into +-SafeCoord.
  static int32_t Safe(int32_t V) {
    return V < -SafeCoord ? -SafeCoord : V > SafeCoord ? SafeCoord : V;
  }

  void BeforeDestruction() override;

private:
  struct TTextState;
  // One entry of the stack that clip rectangles and opacity layers share: Cairo's saved
  // states and groups must be unwound in the order they were made.
  struct TLayer {
    bool IsOpacity = false;
    TRect SavedClip;
    double Alpha = 1.0;
  };

  void Unbind();
  void ResetState();
  bool CanPaint() const;
  bool RasterMode() const;
  // Whether painting may write the pixels of the surface itself: an image, outside any
  // opacity layer (whose group Cairo keeps elsewhere).
  bool WritesPixels() const;
  // Row Y of an image's pixels (flushed by the caller, marked dirty after writing).
  uint32_t* PixelRow(int32_t Y) const {
    return reinterpret_cast<uint32_t*>(FPixels + ptrdiff_t(Y) * FStride);
  }
  // The clip within the surface.
  TRect DrawableArea() const;
  void SetSourceColor(TColor Color);
  bool SetBrushSource(TColor Color, TBrushStyle Style);
  void SetPenStroke();
  void PaintPathWith(bool Fill, TColor FillColor, TBrushStyle FillStyle, bool Stroke, bool EvenOdd);
  void RasterPaint(cairo_path_t* Path, bool Fill, TBrushStyle FillStyle, bool EvenOdd,
                   TColor Color);
  void StrokeOpen(std::span<const TPoint> Points, const TPoint* Extra);
  // The vertices an open line through Points (and Extra after them) is stroked on: clamped,
  // repeats dropped, on pixel centres for odd pens, the ends moved so that the first pixel
  // is painted and the last one not. Empty when nothing is to be drawn.
  struct TVertex {
    double X, Y;
  };
  void OpenPathVertices(std::span<const TPoint> Points, const TPoint* Extra,
                        std::vector<TVertex>& Out) const;
  // Paints the line From..To of a one-pixel patterned pen along a row or a column (the
  // grid of every chart) as one fill; false, painting nothing, for any other line.
  bool PatternedPixelLine(const TVertex& From, const TVertex& To);
  // Paints whole-pixel boxes, which may overlap, in the opaque Color.
  void FillBoxes(std::span<const TRect> Boxes, TColor Color);
  // The coverage Cairo gives the stroke of the short open path Run (led in and out, every
  // point on whole pixels at most one pixel each way from its second), rendered once per
  // shape; nil when Run is not such a path or the canvas cannot blend into its pixels.
  struct TStamps;
  struct TStamp;
  const TStamp* Stamp(std::span<const TVertex> Run);
  // Blends the pen's colour through a stamp whose origin lies at At, straight into the pixels
  // (flushed before, marked dirty after by the caller); returns the pixels it may change.
  TRect BlendStamp(const TStamp& S, TPoint At);
  void DrawText(int32_t X, int32_t Y, std::string_view Text, const TRect* ClipTo);
  TTextState& Text();

  TOwned<TPen> FPen;
  TOwned<TBrush> FBrush;
  TOwned<TFont> FFont;
  TPoint FPenPos;
  cairo_surface_t* FSurface = nullptr;
  cairo_t* FCairo = nullptr;
  TCanvasSurfaceKind FKind = skOther;
  // Pixels can be read and combined in place (an ARGB32 or RGB24 image; RGB24 has no alpha).
  bool FDirectPixels = false;
  bool FNoAlpha = false;
  unsigned char* FPixels = nullptr; // an image's pixels, and the bytes from a row to the next
  int FStride = 0;
  std::string FFileName;
  bool FFinished = false;
  int32_t FWidth = 0;
  int32_t FHeight = 0;
  TRect FClip;
  std::vector<TLayer> FStack;
  int32_t FOpacityDepth = 0;
  std::unique_ptr<TTextState> FText;
  std::unique_ptr<TStamps> FStamps;

  friend TOwned<TCanvas> CreateSvgCanvas(const std::string&, int32_t, int32_t);
  friend TOwned<TCanvas> CreatePdfCanvas(const std::string&, int32_t, int32_t);
};

// Makes Color (system colours resolved) the source of Cr: the one way a TColor reaches Cairo.
void SetSourceColor(cairo_t* Cr, TColor Color);
// Color (system colours resolved) as an opaque pixel of a Cairo image (a native 32-bit word).
uint32_t OpaquePixel(TColor Color);

// Restricts a canvas to R for the life of the object, also when an exception passes.
class TCanvasClip {
public:
  TCanvasClip(TCanvas* Canvas, const TRect& R) : FCanvas(Canvas) { FCanvas->SetClipRect(R); }
  ~TCanvasClip() { FCanvas->RestoreClipRect(); }
  TCanvasClip(const TCanvasClip&) = delete;
  TCanvasClip& operator=(const TCanvasClip&) = delete;

private:
  TCanvas* FCanvas;
};

// Composites what is drawn during the life of the object with an opacity.
class TCanvasOpacity {
public:
  // A layer costs a surface the size of the canvas and a composite of it: it is opened only
  // when the opacity asks for one (below 1, or NaN, which draws nothing).
  TCanvasOpacity(TCanvas* Canvas, float Opacity)
      : FCanvas(Canvas && !(Opacity >= 1.0f) ? Canvas : nullptr) {
    if (FCanvas) FCanvas->BeginOpacity(Opacity);
  }
  ~TCanvasOpacity() {
    if (FCanvas) FCanvas->EndOpacity();
  }
  TCanvasOpacity(const TCanvasOpacity&) = delete;
  TCanvasOpacity& operator=(const TCanvasOpacity&) = delete;

private:
  TCanvas* FCanvas;
};

// A canvas that paints into an SVG or PDF file of Width x Height pixels (one pixel is one
// point). Raises an Exception naming the file when it cannot be created. Call Finish on the
// canvas to complete the file.
TOwned<TCanvas> CreateSvgCanvas(const std::string& FileName, int32_t Width, int32_t Height);
TOwned<TCanvas> CreatePdfCanvas(const std::string& FileName, int32_t Width, int32_t Height);

} // namespace kx
