#include "kxcharts/toolkit/graphics/KXCanvas.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <unordered_map>

#include "kxcharts/toolkit/graphics/KXBitmap.h"

namespace kx {

namespace {

constexpr double Pi = 3.14159265358979323846;
constexpr double MiterLimit = 2.0;

// How every line of a canvas ends and turns. Right angles keep square corners; sharper ones
// are bevelled instead of growing spikes.
void SetLineEnds(cairo_t* Cr) {
  cairo_set_line_cap(Cr, CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(Cr, CAIRO_LINE_JOIN_MITER);
  cairo_set_miter_limit(Cr, MiterLimit);
}

// Cairo wants premultiplied ARGB as native 32-bit words; TColor keeps red in the low byte.
uint32_t ColorToPixelRGB(TColor Color) {
  const TColor C = ColorToRGB(Color);
  return (uint32_t(GetRValue(C)) << 16) | (uint32_t(GetGValue(C)) << 8) | GetBValue(C);
}

TRect Intersect(const TRect& A, const TRect& B) {
  TRect R{std::max(A.Left, B.Left), std::max(A.Top, B.Top), std::min(A.Right, B.Right),
          std::min(A.Bottom, B.Bottom)};
  if (R.Right < R.Left) R.Right = R.Left;
  if (R.Bottom < R.Top) R.Bottom = R.Top;
  return R;
}

// The smallest rectangle holding both; an empty one holds nothing.
TRect Union(const TRect& A, const TRect& B) {
  if (A.IsEmpty()) return B;
  if (B.IsEmpty()) return A;
  return {std::min(A.Left, B.Left), std::min(A.Top, B.Top), std::max(A.Right, B.Right),
          std::max(A.Bottom, B.Bottom)};
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

// Text as Pango accepts it: valid UTF-8 up to the first NUL.
std::string_view CutAtNul(std::string_view Text) {
  const size_t Nul = Text.find('\0');
  return Nul == std::string_view::npos ? Text : Text.substr(0, Nul);
}

// A + B, held at the ends of the int32 range.
int32_t SatAdd(int32_t A, int32_t B) {
  const int64_t S = int64_t(A) + B;
  return S > INT32_MAX ? INT32_MAX : S < INT32_MIN ? INT32_MIN : static_cast<int32_t>(S);
}

int32_t PangoCeil(int Units) {
  return static_cast<int32_t>((static_cast<int64_t>(Units) + PANGO_SCALE - 1) / PANGO_SCALE);
}

} // namespace

// --- Text state ---

// The Pango objects a canvas keeps between calls. The layouts live as long as the canvas; the
// font description is looked up again only when the font's revision moves.
struct TCanvas::TTextState {
  PangoLayout* Layout = nullptr;  // texts with options (wrapped, cut, aligned, underlined)
  PangoLayout* Current = nullptr; // the one last laid out: Layout or one of Laid
  PangoLayout* Turned = nullptr;  // rotated text, on a context of its own, so that turning
                                  // it leaves the laid out texts laid out
  PangoFontDescription* Desc = nullptr; // one of Descs
  // Descriptions by FontKey: a panel's elements take turns with a few fonts, and making a
  // description asks the font for its metrics, which costs more than laying out a label.
  // Emptied when it grows past MaxDescs.
  std::unordered_map<std::string, PangoFontDescription*> Descs;
  static constexpr size_t MaxDescs = 64;
  uint64_t FontRevision = ~uint64_t(0);
  bool FontUnderline = false;
  bool FontStrikeOut = false;
  // What of the font decides a text's look: a font assigned again with the same values
  // keeps its description, and the texts laid out with it.
  std::string FontKey;
  // Plain texts (one line, no options) laid out, by FontKey and text, with their sizes:
  // axes and legends measure and draw the same labels on every paint, and shaping them is
  // most of what text costs. Emptied when it grows past MaxLaid.
  struct TLaid {
    PangoLayout* Layout;
    TSize Size;
    int32_t LogicalX;
  };
  std::unordered_map<std::string, TLaid> Laid;
  static constexpr size_t MaxLaid = 1024;

  ~TTextState() {
    ForgetLaid();
    if (Layout) g_object_unref(Layout);
    if (Turned) g_object_unref(Turned);
    ForgetDescs();
  }
  void ForgetDescs() {
    for (const auto& Entry : Descs)
      pango_font_description_free(Entry.second);
    Descs.clear();
    Desc = nullptr;
  }
  void ForgetLaid() {
    for (const auto& Entry : Laid)
      g_object_unref(Entry.second.Layout);
    Laid.clear();
    Current = Layout;
  }
};

namespace {
// A layout on a context of its own that measures as every output measures.
PangoLayout* NewTextLayout(cairo_t* Cr) {
  PangoLayout* Layout = pango_cairo_create_layout(Cr);
  PangoContext* Context = pango_layout_get_context(Layout);
  // Unhinted metrics: a text is as wide on a bitmap as in an SVG or a PDF.
  cairo_font_options_t* Options = cairo_font_options_create();
  cairo_font_options_set_hint_metrics(Options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(Options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_antialias(Options, CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(Context, Options);
  cairo_font_options_destroy(Options);
  pango_cairo_context_set_resolution(Context, TFont::PixelsPerInch);
  pango_layout_context_changed(Layout);
  return Layout;
}
} // namespace

TCanvas::TTextState& TCanvas::Text() {
  if (!FText) {
    FText = std::make_unique<TTextState>();
    FText->Layout = FText->Current = NewTextLayout(FCairo);
  }
  TTextState& T = *FText;
  if (T.FontRevision != FFont->Revision()) {
    T.FontRevision = FFont->Revision();
    const std::string Key = FFont->Name() + '\x1f' + std::to_string(FFont->Height()) + '\x1f' +
                            std::to_string(FFont->Style().Bits());
    if (T.Desc && Key == T.FontKey) return T;
    T.FontKey = Key;
    const TFontStyles Style = FFont->Style();
    auto It = T.Descs.find(Key);
    if (It == T.Descs.end()) {
      if (T.Descs.size() >= TTextState::MaxDescs) T.ForgetDescs();
      PangoFontDescription* D = pango_font_description_new();
      pango_font_description_set_family(D, FFont->Name().c_str());
      pango_font_description_set_weight(D, Style.Contains(fsBold) ? PANGO_WEIGHT_BOLD
                                                                  : PANGO_WEIGHT_NORMAL);
      pango_font_description_set_style(D, Style.Contains(fsItalic) ? PANGO_STYLE_ITALIC
                                                                   : PANGO_STYLE_NORMAL);
      int32_t H = FFont->Height();
      if (H == 0) {
        TOwned<TFont> Default = MakeOwned<TFont>();
        H = Default->Height();
      }
      double Em = H < 0 ? -H : H;
      if (H > 0) {
        // A positive height is the cell (ascent plus descent): ask the font for its ratio.
        pango_font_description_set_absolute_size(D, Em * PANGO_SCALE);
        PangoFontMetrics* M =
            pango_context_get_metrics(pango_layout_get_context(T.Layout), D, nullptr);
        const double Cell =
            double(pango_font_metrics_get_ascent(M) + pango_font_metrics_get_descent(M)) /
            PANGO_SCALE;
        pango_font_metrics_unref(M);
        if (Cell > 0) Em = Em * Em / Cell;
      }
      pango_font_description_set_absolute_size(D, std::max(1.0, Em) * PANGO_SCALE);
      It = T.Descs.emplace(Key, D).first;
    }
    T.Desc = It->second;
    pango_layout_set_font_description(T.Layout, T.Desc);
    T.FontUnderline = Style.Contains(fsUnderline);
    T.FontStrikeOut = Style.Contains(fsStrikeOut);
  }
  return T;
}

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

namespace {
// The on and off lengths of a pen style's pattern for a one-pixel pen; empty when solid.
std::span<const double> DashPattern(TPenStyle Style) {
  static const double Dash[] = {18, 6};
  static const double Dot[] = {3, 3};
  static const double DashDot[] = {9, 6, 3, 6};
  static const double DashDotDot[] = {9, 3, 3, 3, 3, 3};
  static const double Alternate[] = {1, 1};
  switch (Style) {
  case psDash:
    return Dash;
  case psDot:
    return Dot;
  case psDashDot:
    return DashDot;
  case psDashDotDot:
    return DashDotDot;
  case psAlternate:
    return Alternate;
  default:
    return {};
  }
}
} // namespace

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

bool TCanvas::PatternedPixelLine(const TVertex& From, const TVertex& To) {
  const std::span<const double> Pattern = DashPattern(FPen->Style());
  if (Pattern.empty() || EffectivePenWidth() != 1 || FPen->Mode() != pmCopy || RasterMode() ||
      FKind == skSvg || FKind == skPdf || (From.X != To.X && From.Y != To.Y))
    return false;
  // A dash of a one-pixel pen along a row or a column, laid from the line's start, covers
  // whole pixels: the dashes are boxes, painted at once instead of a stroke per dash.
  int32_t Period = 0;
  for (const double Length : Pattern)
    Period += static_cast<int32_t>(Length);
  const bool Horizontal = From.Y == To.Y;
  const double Along = Horizontal ? To.X - From.X : To.Y - From.Y;
  const auto Length = static_cast<int32_t>(std::abs(Along));
  const auto Start = static_cast<int32_t>(Horizontal ? From.X : From.Y);
  const auto Across = static_cast<int32_t>(std::floor(Horizontal ? From.Y : From.X));
  std::vector<TRect> Boxes;
  for (int32_t Period0 = 0; Period0 < Length; Period0 += Period)
    for (size_t I = 0, At = 0; I < Pattern.size(); At += size_t(Pattern[I] + Pattern[I + 1]), I += 2) {
      const int32_t A = Period0 + int32_t(At), B = std::min(Length, A + int32_t(Pattern[I]));
      if (A >= B) break;
      // Backwards, the pixel at distance t from the start lies before it.
      const int32_t Lo = Along < 0 ? Start - B : Start + A, Hi = Along < 0 ? Start - A : Start + B;
      Boxes.push_back(Horizontal ? TRect{Lo, Across, Hi, Across + 1} : TRect{Across, Lo, Across + 1, Hi});
    }
  FillBoxes(Boxes, FPen->Color());
  return true;
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

// Strokes the open path through Points (and Extra after them, when given) the way the
// integer canvas draws lines. Odd widths run through pixel centres; the first point is moved
// back and the last one in, by just enough that the end cap passes the corner of the end
// pixel: a line starts with its first pixel and stops before its end point, whatever its
// slope. Even widths run along pixel edges and cover the half-open span, like FillRect.
void TCanvas::OpenPathVertices(std::span<const TPoint> Points, const TPoint* Extra,
                               std::vector<TVertex>& Out) const {
  Out.clear();
  const size_t N = Points.size() + (Extra ? 1 : 0);
  auto At = [&](size_t I) {
    const TPoint P = I < Points.size() ? Points[I] : *Extra;
    return TPoint{Safe(P.X), Safe(P.Y)};
  };
  if (N < 2) return;
  const double Off = EffectivePenWidth() % 2 == 1 ? 0.5 : 0.0;
  auto Step = [](TPoint A, TPoint B, double& Ux, double& Uy) {
    const double Dx = double(B.X) - A.X, Dy = double(B.Y) - A.Y;
    const double Scale = (std::abs(Dx) + std::abs(Dy)) / (Dx * Dx + Dy * Dy);
    Ux = Dx * Scale;
    Uy = Dy * Scale;
  };
  // Find the first and last points that differ from their neighbours.
  const TPoint P0 = At(0);
  size_t Next = 1;
  while (Next < N && At(Next) == P0)
    ++Next;
  if (Next == N) return; // all points coincide: nothing to draw
  const TPoint PLast = At(N - 1);
  size_t Prev = N - 2;
  while (At(Prev) == PLast)
    --Prev;
  double Ux, Uy;
  Step(P0, At(Next), Ux, Uy);
  Out.push_back({P0.X + Off - Ux * Off, P0.Y + Off - Uy * Off});
  TPoint Last = P0;
  for (size_t I = Next; I + 1 < N; ++I) {
    const TPoint P = At(I);
    if (P == Last) continue;
    Out.push_back({P.X + Off, P.Y + Off});
    Last = P;
  }
  Step(At(Prev), PLast, Ux, Uy);
  Out.push_back({PLast.X + Off - Ux * Off, PLast.Y + Off - Uy * Off});
}

void TCanvas::StrokeOpen(std::span<const TPoint> Points, const TPoint* Extra) {
  if (!CanPaint() || FPen->Style() == psClear || FPen->Mode() == pmNop) return;
  std::vector<TVertex> V;
  OpenPathVertices(Points, Extra, V);
  if (V.empty()) return;
  if (V.size() == 2 && PatternedPixelLine(V[0], V[1])) return;
  cairo_new_path(FCairo);
  cairo_move_to(FCairo, V[0].X, V[0].Y);
  for (size_t I = 1; I < V.size(); ++I)
    cairo_line_to(FCairo, V[I].X, V[I].Y);
  PaintPath(false, true);
}

void TCanvas::LineTo(int32_t X, int32_t Y) {
  const TPoint From = FPenPos;
  const TPoint To{X, Y};
  FPenPos = To;
  StrokeOpen(std::span<const TPoint>(&From, 1), &To);
}

void TCanvas::Polyline(std::span<const TPoint> Points) {
  StrokeOpen(Points, nullptr);
}

// --- Stamped strokes ---

namespace {
// The blend Cairo gives a span of an opaque colour over an image, two channels at a time:
// Src * A + Dst * (255 - A), each product rounded, the sum saturated.
uint32_t Mul8x2(uint32_t X, uint32_t A) {
  const uint32_t T = (X & 0xFF00FF) * A + 0x800080;
  return ((T + ((T >> 8) & 0xFF00FF)) >> 8) & 0xFF00FF;
}

uint32_t Add8x2(uint32_t X, uint32_t Y) {
  uint32_t T = X + Y;
  T |= 0x1000100 - ((T >> 8) & 0xFF00FF);
  return T & 0xFF00FF;
}

uint32_t Lerp(uint32_t Src, uint32_t A, uint32_t Dst) {
  return Add8x2(Mul8x2(Src, A), Mul8x2(Dst, 255 - A)) |
         (Add8x2(Mul8x2(Src >> 8, A), Mul8x2(Dst >> 8, 255 - A)) << 8);
}
} // namespace

// Coverages of stroked shapes by shape: a dense line repeats a handful of short joins
// thousands of times, and a stroke moved by whole pixels covers its pixels alike.
struct TCanvas::TStamp {
  int32_t Left = 0, Top = 0, Width = 0, Height = 0; // from the path's second point
  std::vector<uint8_t> Cover;
};

struct TCanvas::TStamps {
  std::unordered_map<uint64_t, TStamp> ByShape;
  static constexpr size_t MaxShapes = 1024;
};

const TCanvas::TStamp* TCanvas::Stamp(std::span<const TVertex> Run) {
  // The joins of a dense line reach one pixel each way. Longer runs cross pixel rows that
  // Cairo covers in a way that depends on the rest of the path, and a wide pen on short
  // segments outlines shapes that are no part of the whole line's stroke.
  constexpr int32_t MaxReach = 1;
  if (Run.size() < 2 || Run.size() > 4 || (Run[0].X == Run[1].X && Run[0].Y == Run[1].Y) ||
      !WritesPixels())
    return nullptr;
  const TVertex& O = Run[1];
  uint64_t Key = uint64_t(EffectivePenWidth()) | uint64_t(cairo_get_antialias(FCairo)) << 8 |
                 uint64_t(Run.size()) << 12;
  int32_t L = 0, T = 0, R = 0, B = 0;
  for (size_t K = 0; K < Run.size(); ++K) {
    const double Dx = Run[K].X - O.X, Dy = Run[K].Y - O.Y;
    if (std::abs(Dx) > MaxReach || std::abs(Dy) > MaxReach || Dx != std::floor(Dx) ||
        Dy != std::floor(Dy))
      return nullptr;
    const auto X = static_cast<int32_t>(Dx), Y = static_cast<int32_t>(Dy);
    L = std::min(L, X), R = std::max(R, X), T = std::min(T, Y), B = std::max(B, Y);
    Key |= uint64_t((X + MaxReach) | (Y + MaxReach) << 6) << (16 + 12 * K);
  }
  if (!FStamps) FStamps = std::make_unique<TStamps>();
  auto It = FStamps->ByShape.find(Key);
  if (It == FStamps->ByShape.end()) {
    // A miter reaches the pen's width from its point; a pixel more for the edge's coverage.
    const int32_t Margin = EffectivePenWidth() + 1;
    TStamp S{L - Margin, T - Margin, R - L + 2 * Margin, B - T + 2 * Margin, {}};
    cairo_surface_t* Mask = cairo_image_surface_create(CAIRO_FORMAT_A8, S.Width, S.Height);
    cairo_t* M = cairo_create(Mask);
    cairo_set_antialias(M, cairo_get_antialias(FCairo));
    cairo_set_tolerance(M, cairo_get_tolerance(FCairo));
    cairo_set_line_width(M, EffectivePenWidth());
    SetLineEnds(M);
    cairo_move_to(M, Run[0].X - O.X - S.Left, Run[0].Y - O.Y - S.Top);
    for (size_t K = 1; K < Run.size(); ++K)
      cairo_line_to(M, Run[K].X - O.X - S.Left, Run[K].Y - O.Y - S.Top);
    cairo_stroke(M);
    cairo_destroy(M);
    cairo_surface_flush(Mask);
    const uint8_t* Data = cairo_image_surface_get_data(Mask);
    const int Stride = cairo_image_surface_get_stride(Mask);
    S.Cover.resize(size_t(S.Width) * S.Height);
    for (int32_t Y = 0; Y < S.Height; ++Y)
      std::memcpy(&S.Cover[size_t(Y) * S.Width], Data + ptrdiff_t(Y) * Stride, size_t(S.Width));
    cairo_surface_destroy(Mask);
    It = FStamps->ByShape.emplace(Key, std::move(S)).first;
  }
  return &It->second;
}

TRect TCanvas::BlendStamp(const TStamp& S, TPoint At) {
  const TRect Area =
      Intersect(DrawableArea(), TRect{At.X, At.Y, At.X + S.Width, At.Y + S.Height});
  if (Area.IsEmpty()) return Area;
  const uint32_t Pixel = OpaquePixel(FPen->Color());
  for (int32_t Y = Area.Top; Y < Area.Bottom; ++Y) {
    uint32_t* Row = PixelRow(Y);
    const uint8_t* Cover = S.Cover.data() + size_t(Y - At.Y) * S.Width;
    for (int32_t X = Area.Left; X < Area.Right; ++X)
      if (const uint32_t A = Cover[X - At.X]; A == 255)
        Row[X] = Pixel;
      else if (A > 0)
        Row[X] = Lerp(Pixel, A, Row[X]);
  }
  return Area;
}

// The widest pen that ColumnPolyline paints as boxes.
constexpr int32_t MaxColumnPen = 16;

void TCanvas::ColumnPolyline(std::span<const TPoint> Points) {
  // Odd pens run on pixel centres, so a box would end half way into a pixel, which the
  // stroke through it would blend a second time. The test whether a stroke would add
  // anything reads every box within the half width, in every column the stroke covers:
  // wide pens are left to the stroke. Files keep the line one path. Boxes and stamps are
  // the shapes of the canvas's own line ends, which a helper drawing on Handle() may have
  // changed.
  const int32_t Width = EffectivePenWidth();
  if (FKind == skSvg || FKind == skPdf || cairo_get_antialias(FCairo) == CAIRO_ANTIALIAS_NONE ||
      RasterMode() || cairo_get_line_cap(FCairo) != CAIRO_LINE_CAP_BUTT ||
      cairo_get_line_join(FCairo) != CAIRO_LINE_JOIN_MITER ||
      cairo_get_miter_limit(FCairo) != MiterLimit ||
      FPen->Style() != psSolid || FPen->Mode() != pmCopy || Width % 2 == 1 ||
      Width > MaxColumnPen) {
    Polyline(Points);
    return;
  }
  if (!CanPaint()) return;
  std::vector<TVertex> V;
  OpenPathVertices(Points, nullptr, V);
  if (V.empty()) return;
  const double Half = Width / 2.0;
  const auto Vertical = [&](size_t I) { return V[I].X == V[I + 1].X; }; // segment I..I+1

  // Even pens run along pixel edges, so the box of a vertical segment has whole pixels. A
  // chain of vertical segments on one X (a column of the reduced line) is one box.
  const auto H = static_cast<int32_t>(Width / 2);
  struct TChain {
    double X, Top, Bottom;
  };
  std::vector<TChain> Chains;
  for (size_t I = 0; I + 1 < V.size();) {
    if (!Vertical(I)) {
      ++I;
      continue;
    }
    TChain C{V[I].X, V[I].Y, V[I].Y};
    for (; I + 1 < V.size() && Vertical(I); ++I) {
      C.Top = std::min(C.Top, V[I + 1].Y);
      C.Bottom = std::max(C.Bottom, V[I + 1].Y);
    }
    Chains.push_back(C);
  }
  const auto ByX = [](const TChain& A, const TChain& B) { return A.X < B.X; };
  if (!std::is_sorted(Chains.begin(), Chains.end(), ByX))
    std::stable_sort(Chains.begin(), Chains.end(), ByX);
  std::vector<TRect> Boxes;
  Boxes.reserve(Chains.size() + Chains.size() / 2);
  for (const TChain& C : Chains) {
    const auto X = static_cast<int32_t>(C.X);
    Boxes.push_back({X - H, static_cast<int32_t>(C.Top), X + H, static_cast<int32_t>(C.Bottom)});
  }

  // Whether the boxes paint every pixel of columns From..To-1 between rows Top and Bottom:
  // in each column, the boxes of the chains within the half width, joined end to end.
  // The questions come about in the order of X: each search starts where the last ended.
  size_t Cursor = 0;
  const auto FirstFrom = [&](double X) {
    const auto Begin = Chains.begin();
    if (Cursor > 0 && Chains[Cursor - 1].X >= X) {
      Cursor = size_t(std::lower_bound(Begin, Begin + ptrdiff_t(Cursor), TChain{X, 0, 0}, ByX) - Begin);
    } else {
      for (int K = 0; K < 8 && Cursor < Chains.size() && Chains[Cursor].X < X; ++K)
        ++Cursor;
      if (Cursor < Chains.size() && Chains[Cursor].X < X)
        Cursor = size_t(std::lower_bound(Begin + ptrdiff_t(Cursor), Chains.end(), TChain{X, 0, 0}, ByX) -
                        Begin);
    }
    return Cursor;
  };
  std::vector<const TChain*> Near;
  const auto Painted = [&](int32_t From, int32_t To, double Top, double Bottom) {
    for (int32_t C = From; C < To; ++C) {
      Near.clear();
      for (size_t K = FirstFrom(C - Half + 1); K < Chains.size() && Chains[K].X <= C + Half; ++K)
        Near.push_back(&Chains[K]);
      double Reached = Top;
      for (bool Grew = true; Grew && Reached < Bottom;) {
        Grew = false;
        for (const TChain* N : Near)
          if (N->Top <= Reached && N->Bottom > Reached) {
            Reached = N->Bottom;
            Grew = true;
          }
      }
      if (Reached < Bottom) return false;
    }
    return true;
  };

  // The other segments, in unbroken runs, each led in and out by a pixel of the vertical
  // segment beside it: the joins there come out as the whole line's would, and the lead
  // lies inside that segment's box. A run whose stroke, joins included, lies wholly on
  // painted box pixels would add nothing: in a dense line that is most of them. A miter
  // reaches at most twice the half width from its point, and between a vertical segment
  // and another it ends on the vertical one's edge, so a run of one segment reaches no
  // further sideways than the half width.
  const auto Lead = [](const TVertex& From, const TVertex& Towards) {
    const double Dy = Towards.Y - From.Y;
    return TVertex{From.X, From.Y + std::clamp(Dy, -1.0, 1.0)};
  };
  const double Reach = 2 * Half;
  // A level segment between two vertical ones has whole-pixel edges, and so have the
  // square corners its miter joins add on the outer side of each turn (behind and beyond
  // the turn coming in, ahead and behind it going on): its stroke is boxes, which Cairo
  // would only cover fully. A level end of the whole line is left to the stroke, whose
  // butt end meets a turn closer than the half width in its own way.
  const auto FlatJoin = [&](const std::vector<TVertex>& R) {
    if (R.size() < 4 || R[0].Y == R[1].Y) return false;
    const auto X1 = static_cast<int32_t>(R[1].X), X2 = static_cast<int32_t>(R[2].X);
    const auto Y = static_cast<int32_t>(R[1].Y);
    const bool Right = X2 > X1;
    Boxes.push_back({std::min(X1, X2), Y - H, std::max(X1, X2), Y + H});
    const int32_t InX = Right ? X1 - H : X1, InY = R[1].Y > R[0].Y ? Y : Y - H;
    Boxes.push_back({InX, InY, InX + H, InY + H});
    const int32_t OutX = Right ? X2 : X2 - H, OutY = R[3].Y > R[2].Y ? Y - H : Y;
    Boxes.push_back({OutX, OutY, OutX + H, OutY + H});
    return true;
  };
  // The runs that need a stroke: a short one of one segment blends the coverage Cairo gave
  // its shape (stamped), unless it shares a pixel outside the boxes with another run, where
  // the stroke of both in one path covers that pixel once, and stamps would blend it twice.
  struct TStroke {
    size_t From, Count; // in Store
    TRect Reach;        // every pixel its stroke may touch
    const TStamp* Stamp;
    TPoint At;          // where the stamp's origin lies
  };
  std::vector<TVertex> Run, Store;
  std::vector<TStroke> Strokes;
  // Emptied between lines only: the runs of this one point into it.
  if (FStamps && FStamps->ByShape.size() >= TStamps::MaxShapes) FStamps->ByShape.clear();
  for (size_t I = 0; I + 1 < V.size();) {
    if (Vertical(I)) {
      ++I;
      continue;
    }
    Run.clear();
    Run.push_back(I > 0 ? Lead(V[I], V[I - 1]) : V[I]);
    Run.push_back(V[I]);
    size_t Segments = 0;
    while (I + 1 < V.size() && !Vertical(I)) {
      Run.push_back(V[I + 1]);
      ++I;
      ++Segments;
    }
    if (I + 1 < V.size()) Run.push_back(Lead(V[I], V[I + 1]));
    double L = Run[0].X, R = L, T = Run[0].Y, B = T;
    for (const TVertex& P : Run) {
      L = std::min(L, P.X), R = std::max(R, P.X);
      T = std::min(T, P.Y), B = std::max(B, P.Y);
    }
    const double Sideways = Segments == 1 ? Half : Reach;
    if (Painted(static_cast<int32_t>(std::floor(L - Sideways)),
                static_cast<int32_t>(std::ceil(R + Sideways)), T - Reach, B + Reach))
      continue;
    if (Segments == 1 && Run[1].Y == Run[2].Y && FlatJoin(Run)) continue;
    TStroke S{Store.size(), Run.size(),
              {static_cast<int32_t>(std::floor(L - Reach)) - 1,
               static_cast<int32_t>(std::floor(T - Reach)) - 1,
               static_cast<int32_t>(std::ceil(R + Reach)) + 1,
               static_cast<int32_t>(std::ceil(B + Reach)) + 1},
              Segments == 1 ? Stamp(Run) : nullptr,
              {static_cast<int32_t>(Run[1].X), static_cast<int32_t>(Run[1].Y)}};
    if (S.Stamp) {
      S.At = {S.At.X + S.Stamp->Left, S.At.Y + S.Stamp->Top};
      S.Reach = {S.At.X, S.At.Y, S.At.X + S.Stamp->Width, S.At.Y + S.Stamp->Height};
    }
    Store.insert(Store.end(), Run.begin(), Run.end());
    Strokes.push_back(S);
  }

  // Runs come about in the order of X: each is held against those to its right whose reach
  // begins before its own ends.
  std::vector<size_t> Order(Strokes.size());
  for (size_t K = 0; K < Order.size(); ++K)
    Order[K] = K;
  std::stable_sort(Order.begin(), Order.end(), [&](size_t A, size_t B) {
    return Strokes[A].Reach.Left < Strokes[B].Reach.Left;
  });
  const auto Covers = [](const TStroke& S, int32_t X, int32_t Y) {
    return !S.Stamp ||
           S.Stamp->Cover[size_t(Y - S.At.Y) * S.Stamp->Width + size_t(X - S.At.X)] > 0;
  };
  std::vector<bool> Stroked(Strokes.size(), false);
  for (size_t K = 0; K < Order.size(); ++K) {
    const TStroke& A = Strokes[Order[K]];
    if (!A.Stamp) Stroked[Order[K]] = true;
    for (size_t M = K + 1; M < Order.size(); ++M) {
      const TStroke& B = Strokes[Order[M]];
      if (B.Reach.Left >= A.Reach.Right) break;
      if (!A.Stamp && !B.Stamp) continue;
      const TRect Both = Intersect(A.Reach, B.Reach);
      bool Shared = false;
      for (int32_t Y = Both.Top; Y < Both.Bottom && !Shared; ++Y)
        for (int32_t X = Both.Left; X < Both.Right && !Shared; ++X)
          Shared = Covers(A, X, Y) && Covers(B, X, Y) && !Painted(X, X + 1, Y, Y + 1);
      if (Shared) Stroked[Order[K]] = Stroked[Order[M]] = true;
    }
  }

  cairo_new_path(FCairo);
  TRect Dirty;
  if (std::find(Stroked.begin(), Stroked.end(), false) != Stroked.end()) cairo_surface_flush(FSurface);
  for (size_t K = 0; K < Strokes.size(); ++K) {
    const TStroke& S = Strokes[K];
    if (!Stroked[K]) {
      Dirty = Union(Dirty, BlendStamp(*S.Stamp, S.At));
      continue;
    }
    cairo_move_to(FCairo, Store[S.From].X, Store[S.From].Y);
    for (size_t P = S.From + 1; P < S.From + S.Count; ++P)
      cairo_line_to(FCairo, Store[P].X, Store[P].Y);
  }
  if (!Dirty.IsEmpty())
    cairo_surface_mark_dirty_rectangle(FSurface, Dirty.Left, Dirty.Top, Dirty.Width(),
                                       Dirty.Height());
  PaintPath(false, true);
  FillBoxes(Boxes, FPen->Color());
}

void TCanvas::FillBoxes(std::span<const TRect> Boxes, TColor Color) {
  if (Boxes.empty() || !CanPaint()) return;
  if (!WritesPixels()) {
    cairo_new_path(FCairo);
    for (const TRect& B : Boxes)
      cairo_rectangle(FCairo, B.Left, B.Top, B.Width(), B.Height());
    PaintPathWith(true, Color, bsSolid, false, false);
    return;
  }
  // Whole pixels of an opaque colour come out of Cairo as the colour itself: writing them
  // spares its rasterizer, which sorts and sweeps even boxes that share no pixel.
  cairo_surface_flush(FSurface);
  const uint32_t Pixel = OpaquePixel(Color);
  const TRect Area = DrawableArea();
  TRect Dirty;
  for (const TRect& Box : Boxes) {
    const TRect B = Intersect(Box, Area);
    if (B.IsEmpty()) continue;
    for (int32_t Y = B.Top; Y < B.Bottom; ++Y)
      std::fill_n(PixelRow(Y) + B.Left, B.Width(), Pixel);
    Dirty = Union(Dirty, B);
  }
  if (!Dirty.IsEmpty())
    cairo_surface_mark_dirty_rectangle(FSurface, Dirty.Left, Dirty.Top, Dirty.Width(),
                                       Dirty.Height());
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

// --- Text ---

namespace {
// Puts Text (the part before a NUL, made valid UTF-8) on Layout with Options, and the font's
// underline and strike-out with the characters Options underlines.
void SetUpLayout(PangoLayout* Layout, std::string_view Text, const TCanvas::TTextLayout& Options,
                 bool Underline, bool StrikeOut) {
  if (g_utf8_validate(Text.data(), static_cast<gssize>(Text.size()), nullptr)) {
    pango_layout_set_text(Layout, Text.data(), static_cast<int>(Text.size()));
  } else {
    gchar* Valid = g_utf8_make_valid(Text.data(), static_cast<gssize>(Text.size()));
    pango_layout_set_text(Layout, Valid, -1);
    g_free(Valid);
  }
  pango_layout_set_single_paragraph_mode(Layout, Options.SingleLine);
  pango_layout_set_width(
      Layout, Options.WrapWidth >= 0 ? std::min(Options.WrapWidth, TCanvas::SafeCoord) * PANGO_SCALE : -1);
  pango_layout_set_wrap(Layout, PANGO_WRAP_WORD_CHAR);
  static const PangoEllipsizeMode Ellipsis[] = {PANGO_ELLIPSIZE_NONE, PANGO_ELLIPSIZE_START,
                                                PANGO_ELLIPSIZE_MIDDLE, PANGO_ELLIPSIZE_END};
  pango_layout_set_ellipsize(Layout, Ellipsis[std::clamp(Options.Ellipsize, 0, 3)]);
  pango_layout_set_height(Layout, Options.Ellipsize && Options.MaxHeight >= 0
                                      ? std::min(Options.MaxHeight, TCanvas::SafeCoord) * PANGO_SCALE
                                      : -1);
  static const PangoAlignment Align[] = {PANGO_ALIGN_LEFT, PANGO_ALIGN_CENTER, PANGO_ALIGN_RIGHT};
  pango_layout_set_alignment(Layout, Align[std::clamp(Options.Align, 0, 2)]);

  if (!Underline && !StrikeOut && Options.Underline.empty()) {
    pango_layout_set_attributes(Layout, nullptr);
    return;
  }
  PangoAttrList* List = pango_attr_list_new();
  if (Underline) pango_attr_list_insert(List, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
  if (StrikeOut) pango_attr_list_insert(List, pango_attr_strikethrough_new(TRUE));
  const char* Begin = pango_layout_get_text(Layout);
  const auto Length = static_cast<int32_t>(std::strlen(Begin));
  for (int32_t Offset : Options.Underline) {
    if (Offset < 0 || Offset >= Length) continue;
    PangoAttribute* A = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
    A->start_index = static_cast<guint>(Offset);
    A->end_index = static_cast<guint>(g_utf8_next_char(Begin + Offset) - Begin);
    pango_attr_list_insert(List, A);
  }
  pango_layout_set_attributes(Layout, List);
  pango_attr_list_unref(List);
}

// The logical size of the text on Layout in whole pixels, and where it starts.
TSize Measure(PangoLayout* Layout, bool Empty, int32_t& LogicalX) {
  LogicalX = 0;
  if (Empty) return {0, 0};
  PangoRectangle Logical;
  pango_layout_get_extents(Layout, nullptr, &Logical);
  LogicalX = static_cast<int32_t>(std::floor(double(Logical.x) / PANGO_SCALE));
  return {PangoCeil(Logical.width), PangoCeil(Logical.height)};
}
} // namespace

TSize TCanvas::LayoutText(std::string_view Source, const TTextLayout& Options, int32_t* LogicalX) {
  TTextState& T = Text();
  const std::string_view Cut = CutAtNul(Source);
  int32_t X = 0;
  const bool Plain = Options.SingleLine && Options.WrapWidth < 0 && Options.Ellipsize == 0 &&
                     Options.Align == 0 && Options.Underline.empty();
  if (!Plain) {
    SetUpLayout(T.Layout, Cut, Options, T.FontUnderline, T.FontStrikeOut);
    T.Current = T.Layout;
    const TSize Size = Measure(T.Layout, Cut.empty(), X);
    if (LogicalX) *LogicalX = X;
    return Size;
  }
  std::string Key = T.FontKey;
  Key += '\0';
  Key.append(Cut);
  auto It = T.Laid.find(Key);
  if (It == T.Laid.end()) {
    if (T.Laid.size() >= TTextState::MaxLaid) T.ForgetLaid();
    PangoLayout* Layout = pango_layout_new(pango_layout_get_context(T.Layout));
    pango_layout_set_font_description(Layout, T.Desc);
    SetUpLayout(Layout, Cut, Options, T.FontUnderline, T.FontStrikeOut);
    const TSize Size = Measure(Layout, Cut.empty(), X);
    It = T.Laid.emplace(std::move(Key), TTextState::TLaid{Layout, Size, X}).first;
  }
  T.Current = It->second.Layout;
  if (LogicalX) *LogicalX = It->second.LogicalX;
  return It->second.Size;
}

void TCanvas::PaintLayout(int32_t X, int32_t Y, const TRect* Background) {
  if (!CanPaint() || !FText) return;
  if (Background && !Background->IsEmpty()) {
    SetSourceColor(FBrush->Color());
    cairo_new_path(FCairo);
    cairo_rectangle(FCairo, Safe(Background->Left), Safe(Background->Top),
                    Safe(Background->Right) - Safe(Background->Left),
                    Safe(Background->Bottom) - Safe(Background->Top));
    cairo_fill(FCairo);
  }
  SetSourceColor(FFont->Color());
  cairo_move_to(FCairo, Safe(X), Safe(Y));
  pango_cairo_show_layout(FCairo, FText->Current);
  cairo_new_path(FCairo);
}

TSize TCanvas::TextExtent(std::string_view Source) {
  // Measuring leaves the text last laid out for PaintLayout as it was.
  PangoLayout* Current = Text().Current;
  const TSize Size = LayoutText(Source, TTextLayout{});
  FText->Current = Current;
  return Size;
}

void TCanvas::DrawText(int32_t X, int32_t Y, std::string_view Source, const TRect* ClipTo) {
  const TSize Size = LayoutText(Source, TTextLayout{});
  FPenPos = {SatAdd(X, Size.cx), Y};
  if (!CanPaint()) return;
  X = Safe(X);
  Y = Safe(Y);
  const int32_t Angle = FFont->Orientation();
  cairo_save(FCairo);
  cairo_new_path(FCairo);
  if (ClipTo) {
    const TRect C{Safe(ClipTo->Left), Safe(ClipTo->Top), Safe(ClipTo->Right), Safe(ClipTo->Bottom)};
    if (C.IsEmpty()) {
      cairo_restore(FCairo);
      return;
    }
    cairo_rectangle(FCairo, C.Left, C.Top, C.Width(), C.Height());
    cairo_clip(FCairo);
    if (FBrush->Style() != bsClear) {
      SetSourceColor(FBrush->Color());
      cairo_paint(FCairo);
    }
  }
  cairo_translate(FCairo, X, Y);
  TTextState& T = *FText;
  PangoLayout* Shown = T.Current;
  if (Angle != 0) {
    cairo_rotate(FCairo, -Angle * Pi / 180.0);
    if (!T.Turned) {
      T.Turned = NewTextLayout(FCairo);
      pango_layout_set_single_paragraph_mode(T.Turned, TRUE);
    }
    pango_layout_set_font_description(T.Turned, T.Desc);
    pango_layout_set_text(T.Turned, pango_layout_get_text(Shown), -1);
    pango_layout_set_attributes(T.Turned, pango_layout_get_attributes(Shown));
    pango_cairo_update_layout(FCairo, T.Turned);
    Shown = T.Turned;
  }
  if (!ClipTo && FBrush->Style() != bsClear && Size.cx > 0) {
    SetSourceColor(FBrush->Color());
    cairo_rectangle(FCairo, 0, 0, Size.cx, Size.cy);
    cairo_fill(FCairo);
  }
  SetSourceColor(FFont->Color());
  cairo_move_to(FCairo, 0, 0);
  pango_cairo_show_layout(FCairo, Shown);
  cairo_new_path(FCairo);
  cairo_restore(FCairo);
}

void TCanvas::TextOut(int32_t X, int32_t Y, std::string_view Text) {
  DrawText(X, Y, Text, nullptr);
}

void TCanvas::TextRect(const TRect& R, int32_t X, int32_t Y, std::string_view Text) {
  DrawText(X, Y, Text, &R);
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
  TOwned<TCanvas> Canvas = MakeFileCanvas(S, FileName, Width, Height);
  Canvas->FFileName = FileName;
  return Canvas;
}

} // namespace kx
