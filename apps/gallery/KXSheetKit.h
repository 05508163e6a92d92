#pragma once
// The plain look that the gallery's sheets share: cells in a grid, captions under them,
// section titles, and a canvas put back to the sheet's pen, brush and font.

#include <string>

#include "kxcharts/toolkit/graphics/KXCanvas.h"

namespace kx::gallery {

inline constexpr TColor SheetInk = static_cast<TColor>(0x403830);
inline constexpr TColor SheetFrame = static_cast<TColor>(0xC8C0B8);
inline constexpr TColor SheetCaption = static_cast<TColor>(0x505050);

// Cells of a section, left to right, then down.
struct TGrid {
  int32_t Left, Top, CellW, CellH, Columns;
  TRect Cell(int I) const {
    const int32_t X = Left + (I % Columns) * CellW, Y = Top + (I / Columns) * CellH;
    return {X, Y, X + CellW, Y + CellH};
  }
  // The drawing area of a cell: the cell less a margin and the caption line.
  TRect Body(int I) const {
    const TRect C = Cell(I);
    return {C.Left + 12, C.Top + 8, C.Right - 12, C.Bottom - 24};
  }
  int32_t Bottom(int Count) const { return Top + ((Count + Columns - 1) / Columns) * CellH; }
};

// Pen, font and a solid brush of the given colour, as every cell starts.
void ResetCanvas(TCanvas* C, TColor Brush);
// The caption line of cell I; leaves the canvas reset.
void CaptionUnder(TCanvas* C, const TGrid& G, int I, const std::string& Text, TColor Brush);
// A thin frame just outside R, so that the reader sees the rectangle an element was given.
void Outline(TCanvas* C, const TRect& R, TColor Brush);
// A bold title with a rule under it across the sheet; answers the Y below it.
int32_t SectionTitle(TCanvas* C, int32_t Y, const std::string& Title, int32_t SheetWidth,
                     TColor Brush);

} // namespace kx::gallery
