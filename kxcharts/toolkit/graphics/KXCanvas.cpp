// TCanvas: surface, clip, opacity, pixels, fills and shapes, and paths painted with pen and brush.
#include "kxcharts/toolkit/graphics/KXCanvas.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXCanvas_p.h"
#include "kxcharts/toolkit/runtime/KXMath.h"

namespace kx {

namespace {

// Cairo wants premultiplied ARGB as native 32-bit words; TColor keeps red in the low byte.
uint32_t ColorToPixelRGB(TColor Color) {
  const TColor C = ColorToRGB(Color);
  return (uint32_t(GetRValue(C)) << 16) | (uint32_t(GetGValue(C)) << 8) | GetBValue(C);
}

TRect Normalized(int32_t X1, int32_t Y1, int32_t X2, int32_t Y2) {
  return {std::min(X1, X2), std::min(Y1, Y2), std::max(X1, X2), std::max(Y1, Y2)};
}

// The sixteen binary raster operations on 24-bit RGB; P is the pen, D the destination.
uint32_t Rop2(TPenMode Mode, uint32_t P, uint32_t D) {
  switch (Mode) {
  case pmBlack:
    return 0;
  case pmWhite:
    return 0xFFFFFF;
  case pmNop:
    return D;
  case pmNot:
    return ~D;
  case pmCopy:
    return P;
  case pmNotCopy:
    return ~P;
  case pmMergePenNot:
    return P | ~D;
  case pmMaskPenNot:
    return P & ~D;
  case pmMergeNotPen:
    return ~P | D;
  case pmMaskNotPen:
    return ~P & D;
  case pmMerge:
    return P | D;
  case pmNotMerge:
    return ~(P | D);
  case pmMask:
    return P & D;
  case pmNotMask:
    return ~(P & D);
  case pmXor:
    return P ^ D;
  case pmNotXor:
    return ~(P ^ D);
  }
  return P;
}

// An 8 x 8 tile of the hatch in the brush colour, transparent elsewhere, aligned to the
// surface origin as the platform's hatches are.
cairo_pattern_t* CreateHatch(TBrushStyle Style, TColor Color) {
  cairo_surface_t* Tile = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 8, 8);
  cairo_surface_flush(Tile);
  auto* Data = cairo_image_surface_get_data(Tile);
  const int Stride = cairo_image_surface_get_stride(Tile);
  const uint32_t Pixel = OpaquePixel(Color);
  for (int Y = 0; Y < 8; ++Y)
    for (int X = 0; X < 8; ++X) {
      const bool H = Y == 0, V = X == 0, F = X == Y, B = X + Y == 7;
      bool On = false;
      switch (Style) {
      case bsHorizontal:
        On = H;
        break;
      case bsVertical:
        On = V;
        break;
      case bsFDiagonal:
        On = F;
        break;
      case bsBDiagonal:
        On = B;
        break;
      case bsCross:
        On = H || V;
        break;
      case bsDiagCross:
        On = F || B;
        break;
      default:
        break;
      }
      reinterpret_cast<uint32_t*>(Data + Y * Stride)[X] = On ? Pixel : 0;
    }
  cairo_surface_mark_dirty(Tile);
  cairo_pattern_t* Pattern = cairo_pattern_create_for_surface(Tile);
  cairo_surface_destroy(Tile);
  cairo_pattern_set_extend(Pattern, CAIRO_EXTEND_REPEAT);
  cairo_pattern_set_filter(Pattern, CAIRO_FILTER_NEAREST);
  return Pattern;
}

} // namespace

// --- Life ---

TCanvas::TCanvas()
    : FPen(MakeOwned<TPen>()), FBrush(MakeOwned<TBrush>()), FFont(MakeOwned<TFont>()) {
  Bind(nullptr);
}

TCanvas::~TCanvas() {
  FText.reset();
  Unbind();
}

void TCanvas::BeforeDestruction() {
  if ((FKind == skSvg || FKind == skPdf) && !FFinished) {
    FFinished = true;
    cairo_surface_finish(FSurface);
  }
  inherited::BeforeDestruction();
}

void TCanvas::Unbind() {
  if (FCairo) cairo_destroy(FCairo);
  if (FSurface) cairo_surface_destroy(FSurface);
  FCairo = nullptr;
  FSurface = nullptr;
  FStack.clear();
  FOpacityDepth = 0;
}

void TCanvas::Bind(cairo_surface_t* Surface, int32_t Width, int32_t Height) {
  if (Surface)
    cairo_surface_reference(Surface);
  else
    Surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1);
  Unbind();
  FSurface = Surface;
  FCairo = cairo_create(Surface);
  FFinished = false;
  FFileName.clear();
  FDirectPixels = FNoAlpha = false;
  FPixels = nullptr;
  FStride = 0;
  switch (cairo_surface_get_type(Surface)) {
  case CAIRO_SURFACE_TYPE_IMAGE: {
    const cairo_format_t Format = cairo_image_surface_get_format(Surface);
    // A view of part of an image (cairo_surface_create_for_rectangle) reports the image's
    // type but has no pixels of its own: it draws like any other surface, at the size given.
    if (Format == CAIRO_FORMAT_INVALID) {
      FKind = skOther;
      break;
    }
    FKind = skImage;
    Width = cairo_image_surface_get_width(Surface);
    Height = cairo_image_surface_get_height(Surface);
    FDirectPixels = Format == CAIRO_FORMAT_ARGB32 || Format == CAIRO_FORMAT_RGB24;
    FNoAlpha = Format == CAIRO_FORMAT_RGB24;
    // An image's pixels stay where they are for its life.
    FPixels = cairo_image_surface_get_data(Surface);
    FStride = cairo_image_surface_get_stride(Surface);
    break;
  }
  case CAIRO_SURFACE_TYPE_SVG:
    FKind = skSvg;
    break;
  case CAIRO_SURFACE_TYPE_PDF:
    FKind = skPdf;
    break;
  default:
    FKind = skOther;
    break;
  }
  FWidth = std::max(0, Width);
  FHeight = std::max(0, Height);
  FClip = (FWidth > 0 || FHeight > 0) ? TRect{0, 0, FWidth, FHeight}
                                      : TRect{-SafeCoord, -SafeCoord, SafeCoord, SafeCoord};
  ResetState();
  if (FText) pango_cairo_update_layout(FCairo, FText->Layout);
}

void TCanvas::ResetState() {
  SetLineEnds(FCairo);
}

void TCanvas::Finish() {
  if (FKind != skSvg && FKind != skPdf) return;
  if (FFinished) return;
  FFinished = true;
  cairo_surface_finish(FSurface);
  const cairo_status_t Status = cairo_surface_status(FSurface);
  if (Status != CAIRO_STATUS_SUCCESS)
    throw Exception("Cannot write the file \"" + FFileName +
                    "\": " + cairo_status_to_string(Status));
}

bool TCanvas::CanPaint() const {
  return !FFinished && !FClip.IsEmpty() && cairo_status(FCairo) == CAIRO_STATUS_SUCCESS;
}

bool TCanvas::RasterMode() const {
  return FDirectPixels && FPen->Mode() != pmCopy;
}

bool TCanvas::WritesPixels() const {
  return FDirectPixels && FOpacityDepth == 0;
}

TRect TCanvas::DrawableArea() const {
  return Intersect(FClip, TRect{0, 0, FWidth, FHeight});
}

// --- Pixels ---

TColor TCanvas::Pixel(int32_t X, int32_t Y) const {
  if (!FDirectPixels || X < 0 || Y < 0 || X >= FWidth || Y >= FHeight) return clNone;
  cairo_surface_flush(FSurface);
  const uint32_t P = PixelRow(Y)[X];
  const uint32_t A = FNoAlpha ? 255 : P >> 24;
  auto Channel = [&](int Shift) -> uint8_t {
    const uint32_t C = (P >> Shift) & 0xFF;
    if (A == 0) return 0;
    if (A == 255) return static_cast<uint8_t>(C);
    return static_cast<uint8_t>(std::min<uint32_t>(255, (C * 255 + A / 2) / A));
  };
  return RGBToColor(Channel(16), Channel(8), Channel(0));
}

void TCanvas::SetPixel(int32_t X, int32_t Y, TColor Color) {
  if (!CanPaint() || !PtInRect(FClip, {X, Y})) return;
  if (WritesPixels()) {
    cairo_surface_flush(FSurface);
    PixelRow(Y)[X] = OpaquePixel(Color);
    cairo_surface_mark_dirty_rectangle(FSurface, X, Y, 1, 1);
    return;
  }
  SetSourceColor(Color);
  cairo_rectangle(FCairo, X, Y, 1, 1);
  cairo_fill(FCairo);
}

// --- Clipping and opacity ---

void TCanvas::SetClipRect(const TRect& R) {
  FStack.push_back({false, FClip, 1.0});
  FClip = Intersect(FClip, R);
  cairo_save(FCairo);
  cairo_new_path(FCairo);
  cairo_rectangle(FCairo, FClip.Left, FClip.Top, FClip.Width(), FClip.Height());
  cairo_clip(FCairo);
}

void TCanvas::RestoreClipRect() {
  if (FStack.empty() || FStack.back().IsOpacity) return;
  FClip = FStack.back().SavedClip;
  FStack.pop_back();
  cairo_restore(FCairo);
}

void TCanvas::BeginOpacity(float Opacity) {
  const double A = std::isnan(Opacity) ? 0.0 : std::clamp<double>(Opacity, 0.0, 1.0);
  FStack.push_back({true, FClip, A});
  ++FOpacityDepth;
  cairo_push_group(FCairo);
}

void TCanvas::EndOpacity() {
  if (FOpacityDepth == 0) return;
  while (!FStack.back().IsOpacity)
    RestoreClipRect();
  const double A = FStack.back().Alpha;
  FStack.pop_back();
  --FOpacityDepth;
  cairo_pop_group_to_source(FCairo);
  if (A > 0 && !FFinished) cairo_paint_with_alpha(FCairo, A);
  cairo_set_source_rgb(FCairo, 0, 0, 0);
}

// --- Pen, brush and paths ---

int32_t TCanvas::EffectivePenWidth() const {
  return std::max(1, FPen->Width());
}

void SetSourceColor(cairo_t* Cr, TColor Color) {
  const TColor C = ColorToRGB(Color);
  cairo_set_source_rgb(Cr, GetRValue(C) / 255.0, GetGValue(C) / 255.0, GetBValue(C) / 255.0);
}

uint32_t OpaquePixel(TColor Color) {
  return 0xFF000000u | ColorToPixelRGB(Color);
}

void TCanvas::SetSourceColor(TColor Color) {
  kx::SetSourceColor(FCairo, Color);
}

// The colour a pen mode paints with where it cannot read the pixels below.
static TColor VectorModeColor(TPenMode Mode, TColor Color) {
  switch (Mode) {
  case pmBlack:
    return clBlack;
  case pmWhite:
    return clWhite;
  case pmNotCopy:
    return static_cast<TColor>(~ColorToRGB(Color) & 0xFFFFFF);
  default:
    return Color;
  }
}

bool TCanvas::SetBrushSource(TColor BrushColor, TBrushStyle Style) {
  if (Style == bsClear) return false;
  const TColor Color = VectorModeColor(FPen->Mode(), BrushColor);
  if (Style == bsSolid) {
    SetSourceColor(Color);
  } else {
    cairo_pattern_t* Hatch = CreateHatch(Style, Color);
    cairo_set_source(FCairo, Hatch);
    cairo_pattern_destroy(Hatch);
  }
  return true;
}

void TCanvas::SetPenStroke() {
  const double W = EffectivePenWidth();
  cairo_set_line_width(FCairo, W);
  const std::span<const double> Pattern = DashPattern(FPen->Style());
  if (!Pattern.empty()) {
    // Wide pens keep the pattern's proportions.
    double Scaled[6];
    for (size_t I = 0; I < Pattern.size(); ++I)
      Scaled[I] = Pattern[I] * W;
    cairo_set_dash(FCairo, Scaled, static_cast<int>(Pattern.size()), 0);
  } else {
    cairo_set_dash(FCairo, nullptr, 0, 0);
  }
}

bool TCanvas::ApplyPen() {
  if (FPen->Style() == psClear || FPen->Mode() == pmNop) return false;
  SetPenStroke();
  SetSourceColor(VectorModeColor(FPen->Mode(), FPen->Color()));
  return true;
}

void TCanvas::PaintPath(bool Fill, bool Stroke, bool EvenOdd) {
  PaintPathWith(Fill, FBrush->Color(), FBrush->Style(), Stroke, EvenOdd);
}

void TCanvas::PaintPathWith(bool Fill, TColor FillColor, TBrushStyle FillStyle, bool Stroke,
                            bool EvenOdd) {
  const bool DoFill = Fill && FillStyle != bsClear;
  const bool DoStroke = Stroke && FPen->Style() != psClear;
  if (!CanPaint() || FPen->Mode() == pmNop || (!DoFill && !DoStroke)) {
    cairo_new_path(FCairo);
    return;
  }
  if (RasterMode()) {
    cairo_path_t* Path = cairo_copy_path(FCairo);
    cairo_new_path(FCairo);
    if (DoFill) RasterPaint(Path, true, FillStyle, EvenOdd, FillColor);
    if (DoStroke) RasterPaint(Path, false, FillStyle, EvenOdd, FPen->Color());
    cairo_path_destroy(Path);
    return;
  }
  if (DoFill) {
    cairo_set_fill_rule(FCairo, EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    SetBrushSource(FillColor, FillStyle);
    if (DoStroke)
      cairo_fill_preserve(FCairo);
    else
      cairo_fill(FCairo);
  }
  if (DoStroke && ApplyPen()) cairo_stroke(FCairo);
  cairo_new_path(FCairo);
}

// Renders the path into a one-bit mask and combines the pixels under it with Color through
// the pen mode. Working on whole pixels is what makes pmXor undo itself exactly.
void TCanvas::RasterPaint(cairo_path_t* Path, bool Fill, TBrushStyle FillStyle, bool EvenOdd,
                          TColor Color) {
  cairo_save(FCairo);
  cairo_new_path(FCairo);
  cairo_append_path(FCairo, Path);
  double X1, Y1, X2, Y2;
  if (Fill) {
    cairo_fill_extents(FCairo, &X1, &Y1, &X2, &Y2);
  } else {
    SetPenStroke();
    cairo_stroke_extents(FCairo, &X1, &Y1, &X2, &Y2);
  }
  cairo_new_path(FCairo);
  cairo_restore(FCairo);
  const TRect Box = Intersect(
      TRect{static_cast<int32_t>(std::floor(X1)) - 1, static_cast<int32_t>(std::floor(Y1)) - 1,
            static_cast<int32_t>(std::ceil(X2)) + 1, static_cast<int32_t>(std::ceil(Y2)) + 1},
      FClip);
  if (Box.IsEmpty()) return;

  cairo_surface_t* Mask = cairo_image_surface_create(CAIRO_FORMAT_A8, Box.Width(), Box.Height());
  cairo_t* M = cairo_create(Mask);
  cairo_set_antialias(M, CAIRO_ANTIALIAS_NONE);
  cairo_translate(M, -Box.Left, -Box.Top);
  cairo_append_path(M, Path);
  if (Fill) {
    cairo_set_fill_rule(M, EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
    if (FillStyle == bsSolid) {
      cairo_set_source_rgba(M, 0, 0, 0, 1);
    } else {
      cairo_pattern_t* Hatch = CreateHatch(FillStyle, clBlack);
      cairo_set_source(M, Hatch);
      cairo_pattern_destroy(Hatch);
    }
    cairo_fill(M);
  } else {
    std::swap(FCairo, M);
    SetPenStroke();
    SetLineEnds(FCairo);
    std::swap(FCairo, M);
    cairo_set_source_rgba(M, 0, 0, 0, 1);
    cairo_stroke(M);
  }
  cairo_destroy(M);
  cairo_surface_flush(Mask);
  const auto* MaskData = cairo_image_surface_get_data(Mask);
  const int MaskStride = cairo_image_surface_get_stride(Mask);

  cairo_surface_flush(FSurface);
  const uint32_t P = ColorToPixelRGB(Color);
  const TPenMode Mode = FPen->Mode();
  for (int32_t Y = 0; Y < Box.Height(); ++Y) {
    const uint8_t* MaskRow = MaskData + Y * MaskStride;
    uint32_t* Row = PixelRow(Box.Top + Y) + Box.Left;
    for (int32_t X = 0; X < Box.Width(); ++X)
      if (MaskRow[X] >= 128)
        Row[X] = (Row[X] & 0xFF000000u) | (Rop2(Mode, P, Row[X] & 0xFFFFFF) & 0xFFFFFF);
  }
  cairo_surface_mark_dirty_rectangle(FSurface, Box.Left, Box.Top, Box.Width(), Box.Height());
  cairo_surface_destroy(Mask);
}

// --- Shapes ---

void TCanvas::FillRect(const TRect& R) {
  const TRect B{Safe(R.Left), Safe(R.Top), Safe(R.Right), Safe(R.Bottom)};
  if (B.IsEmpty() || !CanPaint() || !SetBrushSource(FBrush->Color(), FBrush->Style())) return;
  cairo_new_path(FCairo);
  cairo_rectangle(FCairo, B.Left, B.Top, B.Width(), B.Height());
  cairo_set_fill_rule(FCairo, CAIRO_FILL_RULE_WINDING);
  cairo_fill(FCairo);
}

void TCanvas::FrameRect(const TRect& R) {
  const TRect B{Safe(R.Left), Safe(R.Top), Safe(R.Right), Safe(R.Bottom)};
  if (B.IsEmpty() || !CanPaint() || !SetBrushSource(FBrush->Color(), FBrush->Style())) return;
  cairo_new_path(FCairo);
  cairo_rectangle(FCairo, B.Left, B.Top, B.Width(), B.Height());
  if (B.Width() > 2 && B.Height() > 2)
    cairo_rectangle(FCairo, B.Left + 1, B.Top + 1, B.Width() - 2, B.Height() - 2);
  cairo_set_fill_rule(FCairo, CAIRO_FILL_RULE_EVEN_ODD);
  cairo_fill(FCairo);
}

void TCanvas::Rectangle(int32_t X1, int32_t Y1, int32_t X2, int32_t Y2) {
  const TRect B = Normalized(Safe(X1), Safe(Y1), Safe(X2), Safe(Y2));
  if (B.IsEmpty() || !CanPaint()) return;
  const bool Outline = FPen->Style() != psClear;
  const int32_t W = Outline ? EffectivePenWidth() : 0;
  if (Outline && (B.Width() <= 2 * W || B.Height() <= 2 * W)) {
    // The pen covers the whole box: paint it in the pen's colour and mode.
    cairo_new_path(FCairo);
    cairo_rectangle(FCairo, B.Left, B.Top, B.Width(), B.Height());
    PaintPathWith(true, FPen->Color(), bsSolid, false, true);
    return;
  }
  // The brush fills inside the border only, so that a mode such as pmXor meets each pixel once.
  cairo_new_path(FCairo);
  cairo_rectangle(FCairo, B.Left + W, B.Top + W, B.Width() - 2 * W, B.Height() - 2 * W);
  PaintPath(true, false);
  if (!Outline) return;
  const double H = W / 2.0;
  cairo_rectangle(FCairo, B.Left + H, B.Top + H, B.Width() - W, B.Height() - W);
  PaintPath(false, true);
}

void TCanvas::RoundRect(int32_t X1, int32_t Y1, int32_t X2, int32_t Y2, int32_t X3, int32_t Y3) {
  const TRect B = Normalized(Safe(X1), Safe(Y1), Safe(X2), Safe(Y2));
  if (B.IsEmpty() || !CanPaint()) return;
  const double W = FPen->Style() != psClear ? EffectivePenWidth() : 0;
  const double H = W / 2.0;
  const double L = B.Left + H, T = B.Top + H, R = B.Right - H, Bo = B.Bottom - H;
  if (R <= L || Bo <= T) {
    Rectangle(B);
    return;
  }
  const double Rx = std::clamp(std::abs(Safe(X3)) / 2.0 - H, 0.0, (R - L) / 2);
  const double Ry = std::clamp(std::abs(Safe(Y3)) / 2.0 - H, 0.0, (Bo - T) / 2);
  cairo_new_path(FCairo);
  if (Rx <= 0 || Ry <= 0) {
    cairo_rectangle(FCairo, L, T, R - L, Bo - T);
  } else {
    auto Corner = [&](double Cx, double Cy, double From) {
      cairo_save(FCairo);
      cairo_translate(FCairo, Cx, Cy);
      cairo_scale(FCairo, Rx, Ry);
      cairo_arc(FCairo, 0, 0, 1, From, From + Pi / 2);
      cairo_restore(FCairo);
    };
    Corner(R - Rx, T + Ry, -Pi / 2);
    Corner(R - Rx, Bo - Ry, 0);
    Corner(L + Rx, Bo - Ry, Pi / 2);
    Corner(L + Rx, T + Ry, Pi);
    cairo_close_path(FCairo);
  }
  PaintPath(true, true);
}

void TCanvas::Ellipse(int32_t X1, int32_t Y1, int32_t X2, int32_t Y2) {
  const TRect B = Normalized(Safe(X1), Safe(Y1), Safe(X2), Safe(Y2));
  if (B.IsEmpty() || !CanPaint()) return;
  const double W = FPen->Style() != psClear ? EffectivePenWidth() : 0;
  double Rx = (B.Width() - W) / 2.0, Ry = (B.Height() - W) / 2.0;
  bool PenOnly = false;
  if (Rx <= 0 || Ry <= 0) {
    // Too small for a ring: the pen fills the whole ellipse.
    Rx = B.Width() / 2.0;
    Ry = B.Height() / 2.0;
    PenOnly = true;
  }
  cairo_new_path(FCairo);
  cairo_save(FCairo);
  cairo_translate(FCairo, (B.Left + B.Right) / 2.0, (B.Top + B.Bottom) / 2.0);
  cairo_scale(FCairo, Rx, Ry);
  cairo_arc(FCairo, 0, 0, 1, 0, 2 * Pi);
  cairo_restore(FCairo);
  cairo_close_path(FCairo);
  if (PenOnly) {
    PaintPathWith(true, FPen->Color(), bsSolid, false, true);
    return;
  }
  PaintPath(true, true);
}

void TCanvas::ClearRect(const TRect& R) {
  const TRect B{Safe(R.Left), Safe(R.Top), Safe(R.Right), Safe(R.Bottom)};
  if (B.IsEmpty() || !CanPaint()) return;
  cairo_save(FCairo);
  cairo_set_operator(FCairo, CAIRO_OPERATOR_CLEAR);
  cairo_new_path(FCairo);
  cairo_rectangle(FCairo, B.Left, B.Top, B.Width(), B.Height());
  cairo_fill(FCairo);
  cairo_restore(FCairo);
}

void TCanvas::Polygon(std::span<const TPoint> Points) {
  if (Points.size() < 2 || !CanPaint()) return;
  auto Trace = [&](double Off) {
    cairo_new_path(FCairo);
    cairo_move_to(FCairo, Safe(Points[0].X) + Off, Safe(Points[0].Y) + Off);
    for (size_t I = 1; I < Points.size(); ++I)
      cairo_line_to(FCairo, Safe(Points[I].X) + Off, Safe(Points[I].Y) + Off);
    cairo_close_path(FCairo);
  };
  // The fill runs on the points themselves, so that its edges are whole pixels; an odd pen
  // runs through pixel centres like every line and covers the edge pixels on both sides.
  Trace(0);
  if (EffectivePenWidth() % 2 == 0) {
    PaintPath(true, true);
    return;
  }
  PaintPath(true, false);
  Trace(0.5);
  PaintPath(false, true);
}

void TCanvas::DrawFocusRect(const TRect& R) {
  if (!FDirectPixels || FFinished) return;
  const TRect B = Normalized(R.Left, R.Top, R.Right, R.Bottom);
  if (B.IsEmpty()) return;
  const TRect Area = DrawableArea();
  cairo_surface_flush(FSurface);
  auto Invert = [&](int64_t X, int64_t Y) {
    if ((X + Y) % 2 != 0) return;
    if (X < Area.Left || X >= Area.Right || Y < Area.Top || Y >= Area.Bottom) return;
    PixelRow(static_cast<int32_t>(Y))[X] ^= 0xFFFFFF;
  };
  // Each pixel of the frame once, even where the frame is one pixel wide or high; loops run
  // over the part inside the drawable area only.
  const int64_t L = B.Left, T = B.Top, Rt = int64_t(B.Right) - 1, Bt = int64_t(B.Bottom) - 1;
  const int64_t X0 = std::max<int64_t>(L, Area.Left), X1 = std::min<int64_t>(Rt, Area.Right - 1);
  const int64_t Y0 = std::max<int64_t>(T + 1, Area.Top),
                Y1 = std::min<int64_t>(Bt - 1, Area.Bottom - 1);
  for (int64_t X = X0; X <= X1; ++X) {
    Invert(X, T);
    if (Bt != T) Invert(X, Bt);
  }
  for (int64_t Y = Y0; Y <= Y1; ++Y) {
    Invert(L, Y);
    if (Rt != L) Invert(Rt, Y);
  }
  cairo_surface_mark_dirty(FSurface);
}

// --- Graphics ---

void TCanvas::Draw(int32_t X, int32_t Y, const TGraphic* Graphic, float Opacity) {
  if (!Graphic) return;
  StretchDraw({X, Y, SatAdd(X, Graphic->Width()), SatAdd(Y, Graphic->Height())}, Graphic, Opacity);
}

void TCanvas::StretchDraw(const TRect& R, const TGraphic* Graphic, float Opacity) {
  const TRect B{Safe(R.Left), Safe(R.Top), Safe(R.Right), Safe(R.Bottom)};
  if (!Graphic || Graphic->Empty() || B.IsEmpty() || !CanPaint()) return;
  if (std::isnan(Opacity) || Opacity <= 0) return;
  Graphic->Draw(this, B, std::min(Opacity, 1.0f));
}

// --- Vector files ---

namespace {

TOwned<TCanvas> MakeFileCanvas(cairo_surface_t* Surface, const std::string& FileName, int32_t W,
                               int32_t H) {
  const cairo_status_t Status = cairo_surface_status(Surface);
  if (Status != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(Surface);
    throw Exception("Cannot create the file \"" + FileName +
                    "\": " + cairo_status_to_string(Status));
  }
  TOwned<TCanvas> Canvas = MakeOwned<TCanvas>();
  Canvas->Bind(Surface, W, H);
  cairo_surface_destroy(Surface);
  return Canvas;
}

int32_t PageExtent(int32_t V) {
  return std::clamp(V, 1, 32767);
}

} // namespace

TOwned<TCanvas> CreateSvgCanvas(const std::string& FileName, int32_t Width, int32_t Height) {
  Width = PageExtent(Width);
  Height = PageExtent(Height);
  cairo_surface_t* S = cairo_svg_surface_create(FileName.c_str(), Width, Height);
  if (cairo_surface_status(S) == CAIRO_STATUS_SUCCESS)
    cairo_svg_surface_set_document_unit(S, CAIRO_SVG_UNIT_PX);
  TOwned<TCanvas> Canvas = MakeFileCanvas(S, FileName, Width, Height);
  Canvas->FFileName = FileName;
  return Canvas;
}

TOwned<TCanvas> CreatePdfCanvas(const std::string& FileName, int32_t Width, int32_t Height) {
  Width = PageExtent(Width);
  Height = PageExtent(Height);
  cairo_surface_t* S = cairo_pdf_surface_create(FileName.c_str(), Width, Height);
  // Without a date of making, one picture gives the same file each time.
  if (cairo_surface_status(S) == CAIRO_STATUS_SUCCESS)
    cairo_pdf_surface_set_metadata(S, CAIRO_PDF_METADATA_CREATE_DATE, "");
  TOwned<TCanvas> Canvas = MakeFileCanvas(S, FileName, Width, Height);
  Canvas->FFileName = FileName;
  return Canvas;
}

} // namespace kx
