// TCanvas: text, laid out and painted by Pango, with the layouts and fonts a canvas keeps.
#include "kxcharts/toolkit/graphics/KXCanvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "kxcharts/toolkit/graphics/KXCanvas_p.h"
#include "kxcharts/toolkit/runtime/KXMath.h"

namespace kx {

namespace {

// Text as Pango accepts it: up to the first NUL, and no more than TCanvas::MaxTextLength
// characters (counted by their UTF-8 lead bytes, so that the cut falls between two).
std::string_view CutAtNul(std::string_view Text) {
  size_t Chars = 0, End = 0;
  for (; End < Text.size(); ++End) {
    const auto Byte = static_cast<unsigned char>(Text[End]);
    if (Byte == 0) break;
    if ((Byte & 0xC0) != 0x80 && ++Chars > size_t(TCanvas::MaxTextLength)) break;
  }
  return Text.substr(0, End);
}

int32_t PangoCeil(int Units) {
  return static_cast<int32_t>((static_cast<int64_t>(Units) + PANGO_SCALE - 1) / PANGO_SCALE);
}

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

// --- Fonts ---

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

// --- Laying out, measuring and painting ---

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

} // namespace kx
