#pragma once
// What the three sources of TCanvas share: KXCanvas.cpp (surface, state, clipping, pixels,
// fills and the painting of paths), KXCanvasLines.cpp (lines and strokes) and
// KXCanvasText.cpp (text): rectangle arithmetic, line ends and pen patterns, and the caches
// a canvas keeps for its strokes and its texts.

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "kxcharts/toolkit/graphics/KXCanvas.h"

namespace kx {

inline constexpr double MiterLimit = 2.0;

// How every line of a canvas ends and turns. Right angles keep square corners; sharper ones
// are bevelled instead of growing spikes.
inline void SetLineEnds(cairo_t* Cr) {
  cairo_set_line_cap(Cr, CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(Cr, CAIRO_LINE_JOIN_MITER);
  cairo_set_miter_limit(Cr, MiterLimit);
}

inline TRect Intersect(const TRect& A, const TRect& B) {
  TRect R{std::max(A.Left, B.Left), std::max(A.Top, B.Top), std::min(A.Right, B.Right),
          std::min(A.Bottom, B.Bottom)};
  if (R.Right < R.Left) R.Right = R.Left;
  if (R.Bottom < R.Top) R.Bottom = R.Top;
  return R;
}

// A + B, held at the ends of the int32 range.
inline int32_t SatAdd(int32_t A, int32_t B) {
  const int64_t S = int64_t(A) + B;
  return S > INT32_MAX ? INT32_MAX : S < INT32_MIN ? INT32_MIN : static_cast<int32_t>(S);
}

// The on and off lengths of a pen style's pattern for a one-pixel pen; empty when solid.
inline std::span<const double> DashPattern(TPenStyle Style) {
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

} // namespace kx
