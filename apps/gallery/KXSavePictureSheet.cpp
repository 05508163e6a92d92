// Saving a picture in one call: the same panel (the README's first chart) saved at three
// sizes into memory as PNG, read back and shown here. Each size is laid out afresh (the
// header, axes and legend keep their own sizes, the plot takes the rest), and the panel has
// its own size again after each save. The captions give the call and what the SVG and PDF
// of the same size weigh.
#include <string>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/charts/KXCharts.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/controls/KXForms.h"
#include "kxcharts/toolkit/controls/KXSavePicture.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx::gallery {

namespace {

constexpr int32_t Gap = 16, CaptionH = 58;
constexpr TSize Sizes[] = {{300, 200}, {460, 290}, {640, 400}};

int32_t SheetWidth() {
  int32_t W = Gap;
  for (const TSize& S : Sizes)
    W += S.cx + Gap;
  return W;
}

void PaintSaved(TCanvas* C, const TRect& Area) {
  ColorListIndex = 0;
  TOwned<TForm> Form(New<TForm>(nullptr));
  auto* Panel = New<TKXChartPanel>(Form.get());
  Panel->SetParent(Form.get());
  Panel->SetBounds(0, 0, 800, 480);
  Panel->Header()->SetText("Visitors in March");
  Panel->Footer()->SetText("day");
  auto* Visitors = New<TKXLineChart>(Form.get());
  Visitors->SetPanel(Panel);
  Visitors->Values()->SetDateTimeAxes({xyX});
  const double Counts[] = {312, 340, 298, 365, 410, 395, 452, 430, 488, 501};
  for (int Day = 0; Day < 10; ++Day)
    Visitors->Values()->Add(EncodeDate(2024, 3, 1 + Day), Counts[Day]);

  int32_t X = Area.Left + Gap;
  const int32_t Top = Area.Top + Gap;
  for (const TSize& S : Sizes) {
    TOwned<TBitmap> Shown = MakeOwned<TBitmap>();
    Shown->LoadFromBytes(SavePictureToBytes(Panel, pkPng, S.cx, S.cy));
    C->Draw(X, Top, Shown.get());
    Outline(C, {X, Top, X + S.cx, Top + S.cy}, clWhite);
    const size_t Svg = SavePictureToBytes(Panel, pkSvg, S.cx, S.cy).size();
    const size_t Pdf = SavePictureToBytes(Panel, pkPdf, S.cx, S.cy).size();
    const std::string Lines[] = {"SavePictureToBytes(Panel, pkPng, " + std::to_string(S.cx) + ", " +
                                     std::to_string(S.cy) + ")",
                                 "the same as SVG: " + std::to_string(Svg / 1024) +
                                     " KB, as PDF: " + std::to_string(Pdf / 1024) + " KB",
                                 "the panel is " + std::to_string(Panel->Width()) + " x " +
                                     std::to_string(Panel->Height()) + " again afterwards"};
    ResetCanvas(C, clWhite);
    C->Brush()->SetStyle(bsClear);
    int32_t Y = Top + S.cy + 6;
    for (const std::string& Line : Lines) {
      DrawTextLabel(C, Line, DT_LEFT | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX,
                    {X, Y, X + S.cx, Y + 16});
      Y += 16;
    }
    ResetCanvas(C, clWhite);
    X += S.cx + Gap;
  }
}

} // namespace

void AddSavePictureSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"save-picture",
                    "One call saves a panel as PNG, SVG or PDF at any size, to a file or to "
                    "memory: the same panel at three sizes",
                    SheetWidth(), Gap * 2 + Sizes[2].cy + CaptionH, PaintSaved});
}

} // namespace kx::gallery
