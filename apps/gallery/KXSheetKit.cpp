#include "gallery/KXSheetKit.h"

#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx::gallery {

void ResetCanvas(TCanvas* C, TColor Brush) {
  C->Pen()->SetColor(SheetInk);
  C->Pen()->SetWidth(1);
  C->Pen()->SetStyle(psSolid);
  C->Brush()->SetColor(Brush);
  C->Brush()->SetStyle(bsSolid);
  C->Font()->SetSize(8);
  C->Font()->SetColor(SheetCaption);
  C->Font()->SetStyle({});
  C->Font()->SetOrientation(0);
}

void CaptionUnder(TCanvas* C, const TGrid& G, int I, const std::string& Text, TColor Brush) {
  const TRect Cell = G.Cell(I);
  ResetCanvas(C, Brush);
  C->Brush()->SetStyle(bsClear);
  DrawTextLabel(C, Text, DT_CENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX,
                {Cell.Left + 2, Cell.Bottom - 20, Cell.Right - 2, Cell.Bottom - 4});
  ResetCanvas(C, Brush);
}

void Outline(TCanvas* C, const TRect& R, TColor Brush) {
  C->Brush()->SetColor(SheetFrame);
  C->FrameRect({R.Left - 1, R.Top - 1, R.Right + 1, R.Bottom + 1});
  ResetCanvas(C, Brush);
}

int32_t SectionTitle(TCanvas* C, int32_t Y, const std::string& Title, int32_t SheetWidth,
                     TColor Brush) {
  ResetCanvas(C, Brush);
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetSize(12);
  C->Font()->SetStyle({fsBold});
  C->Font()->SetColor(SheetInk);
  C->TextOut(20, Y, Title);
  const int32_t H = C->TextHeight(Title);
  C->Pen()->SetColor(clSilver);
  C->MoveTo(20, Y + H + 3);
  C->LineTo(SheetWidth - 20, Y + H + 3);
  ResetCanvas(C, Brush);
  return Y + H + 10;
}

} // namespace kx::gallery
