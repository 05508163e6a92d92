// The legend and layer sheets. Legends of a panel's charts at every side, in every box
// shape, with colour boxes, the charts' own glyphs and large glyphs, listing values,
// over a plot, and scrolled; layers with a picture in every image mode, transparent, and
// held to an axis scale while the axes zoom.
#include <string>
#include <vector>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/legends/KXChartLegends.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx::gallery {

namespace {

constexpr TColor Ink = SheetInk;
constexpr TColor Caption = SheetCaption;
constexpr TColor Plot = static_cast<TColor>(0xF4EEE8);
constexpr int32_t SheetWidth = 1200;

// The sheet's plain look, with its own brush colour.
void Reset(TCanvas* C) {
  ResetCanvas(C, clWhite);
}
void CaptionUnder(TCanvas* C, const TGrid& G, int I, const std::string& Text) {
  gallery::CaptionUnder(C, G, I, Text, clWhite);
}
void Outline(TCanvas* C, const TRect& R) {
  gallery::Outline(C, R, clWhite);
}
int32_t SectionTitle(TCanvas* C, int32_t Y, const std::string& Title) {
  return gallery::SectionTitle(C, Y, Title, SheetWidth, clWhite);
}

// --- Legends ---

// A panel with a chart per caption, coloured from the panel's palette, for a legend to
// list. The panel owns the charts and frees them.
class TLegendPanel {
public:
  explicit TLegendPanel(const std::vector<std::string>& Captions) {
    ColorListIndex = 0;
    FPanel.reset(New<TKXChartPanel>(nullptr));
    for (const std::string& S : Captions) {
      auto* Chart = New<TKXChart>(FPanel.get());
      Chart->SetCaption(S);
    }
    FPanel->UpdateChartColorScheme();
    Legend()->Font()->SetSize(9);
    Legend()->Font()->SetColor(Ink);
    // The cells are narrow; a quarter of their width would cut the longer captions.
    Legend()->SetMaxWidthPct(60);
  }
  TKXChartPanel* Panel() const { return FPanel.get(); }
  TKXChartLegend* Legend() const { return FPanel->Legend(); }
  TKXCustomChart* Chart(int32_t I) const { return FPanel->Charts()->Items(I); }

private:
  TOwned<TKXChartPanel> FPanel;
};

const std::vector<std::string> Fruit = {"Apples", "Bananas", "Cherries", "Dates"};

int32_t PaintAlignments(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Legends at each side of the rectangle they are given (the frame)");
  const TGrid G{20, Y, 290, 190, 4};
  const TKXLegendAlignment Sides[] = {laLeft, laRight, laBottom, laTop};
  int I = 0;
  for (TKXLegendAlignment Side : Sides) {
    TLegendPanel P(Fruit);
    P.Legend()->SetAlign(Side);
    const TRect R = G.Body(I);
    Outline(C, R);
    P.Legend()->Draw(C, R);
    CaptionUnder(C, G, I++, GetEnumName(Side));
  }
  return G.Bottom(I) + 6;
}

int32_t PaintBoxes(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Box shapes, with and without the shadow, and text alignments");
  const TGrid G{20, Y, 193, 150, 6};
  struct TCase {
    TKXLegendRectStyle Style;
    bool Shadow;
    TAlignment Align;
    std::string Text;
  };
  const TCase Cases[] = {
      {lrsRectangle, true, taLeftJustify, "rectangle, shadow"},
      {lrsRectangle, false, taLeftJustify, "rectangle"},
      {lrsRoundRect, true, taLeftJustify, "round, shadow"},
      {lrsRoundRect, false, taLeftJustify, "round"},
      {lrsNone, false, taRightJustify, "none, right aligned"},
      {lrsRectangle, true, taCenter, "centred texts"},
  };
  int I = 0;
  for (const TCase& K : Cases) {
    TLegendPanel P(Fruit);
    TKXChartLegend* L = P.Legend();
    L->SetRectStyle(K.Style);
    L->Shadow()->SetVisible(K.Shadow);
    L->SetAlignment(K.Align);
    L->SetAlign(laLeft);
    if (K.Style == lrsRoundRect) L->Brush()->SetColor(static_cast<TColor>(0xE0F0FF));
    const TRect R = G.Body(I);
    Outline(C, R);
    L->Draw(C, R);
    CaptionUnder(C, G, I++, K.Text);
  }
  return G.Bottom(I) + 6;
}

int32_t PaintGlyphs(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Glyphs: colour boxes, the charts' own, large ones; values listed");
  const TGrid G{20, Y, 232, 170, 5};
  struct TCase {
    TKXLegendOptions Options;
    bool Values;
    std::string Text;
  };
  const TCase Cases[] = {
      {{}, false, "colour boxes"},
      {{loChartGlyphs}, false, "chart glyphs"},
      {{loLargeGlyphs}, false, "large glyphs (BoxSize 20)"},
      {{loLargeGlyphs, loChartGlyphs}, false, "large chart glyphs"},
      {{}, true, "values, caption and number"},
  };
  int I = 0;
  for (const TCase& K : Cases) {
    TLegendPanel P(K.Values ? std::vector<std::string>{"Harvest"} : Fruit);
    TKXChartLegend* L = P.Legend();
    L->SetOptions(K.Options);
    L->SetAlign(laLeft);
    if (K.Options.Contains(loLargeGlyphs)) L->SetBoxSize(20);
    if (K.Values) {
      TKXCustomChart* Chart = P.Chart(0);
      Chart->Values()->Add(120, "Apples", static_cast<TColor>(0x3050C0));
      Chart->Values()->Add(80, "Pears", static_cast<TColor>(0x40A040));
      Chart->Values()->Add(45.5, "Plums", static_cast<TColor>(0xA04080));
      L->SetTextStyle(ltsCaptionValue);
    }
    const TRect R = G.Body(I);
    Outline(C, R);
    L->Draw(C, R);
    CaptionUnder(C, G, I++, K.Text);
  }
  return G.Bottom(I) + 6;
}

int32_t PaintOverlayAndScrolling(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Over a plot (Overlay), and eight values scrolled four at a time");
  const TGrid G{20, Y, 290, 190, 4};
  {
    // An overlay legend takes no room: it stands on the plot itself.
    TLegendPanel P(Fruit);
    TKXChartLegend* L = P.Legend();
    L->SetOverlay(true);
    L->SetAlign(laTop);
    L->Brush()->SetColor(static_cast<TColor>(0xF8F8F8));
    const TRect R = G.Body(0);
    C->Brush()->SetColor(Plot);
    C->FillRect(R);
    C->Pen()->SetColor(static_cast<TColor>(0x3050C0));
    C->Pen()->SetWidth(2);
    C->MoveTo(R.Left, R.Bottom - 10);
    for (int32_t X = R.Left; X <= R.Right; X += 16)
      C->LineTo(X, R.Bottom - 10 - (X - R.Left) * (X - R.Left) / 460);
    Reset(C);
    L->Draw(C, R);
    CaptionUnder(C, G, 0, "overlay at the top");
  }
  // Values scroll: five rows hold four values (one row is kept back), from FirstIndex.
  const int32_t Firsts[] = {0, 4, 6};
  const char* Months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug"};
  int I = 1;
  for (int32_t First : Firsts) {
    TLegendPanel P({"Rain"});
    TKXCustomChart* Chart = P.Chart(0);
    for (int M = 0; M < 8; ++M)
      Chart->Values()->Add(40 + 7 * ((M * 5) % 8), Months[M]);
    TKXChartLegend* L = P.Legend();
    L->SetTextStyle(ltsCaptionValue);
    L->SetMaxRows(5);
    L->SetFirstIndex(First);
    L->SetAlign(laLeft);
    const TRect R = G.Body(I);
    Outline(C, R);
    L->Draw(C, R);
    CaptionUnder(C, G, I++, "MaxRows 5, FirstIndex " + std::to_string(First));
  }
  return G.Bottom(I) + 6;
}

void PaintLegends(TCanvas* C, const TRect& Area) {
  Reset(C);
  C->Brush()->SetColor(clWhite);
  C->FillRect(Area);
  int32_t Y = 16;
  Y = PaintAlignments(C, Y);
  Y = PaintBoxes(C, Y);
  Y = PaintGlyphs(C, Y);
  PaintOverlayAndScrolling(C, Y);
}

// --- Layers ---

// A picture with a clear top left corner, so that placement and tiling can be read off.
TOwned<TBitmap> Badge(int32_t W, int32_t H) {
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->SetSize(W, H);
  TCanvas* C = B->Canvas();
  DirectionGradient(C, {0, 0, W, H}, {RGBToColor(0x87, 0xCE, 0xEB), RGBToColor(0x1E, 0x5A, 0x9A)},
                    gdTopToBottom, 1);
  C->Pen()->SetStyle(psClear);
  C->Brush()->SetColor(RGBToColor(0xFF, 0xC1, 0x07));
  C->Ellipse(W / 2, H / 6, W / 2 + H / 2, H / 6 + H / 2);
  C->Brush()->SetColor(clRed);
  C->FillRect({0, 0, W / 5, H / 5});
  // The bottom left pixel names the colour a transparent layer leaves out.
  C->Brush()->SetColor(clFuchsia);
  C->FillRect({0, H - H / 4, W / 3, H});
  return B;
}

TOwned<TKXChartAxis> Axis(TKXChartAxisLocation Location, double ZoomMin, double ZoomMax) {
  TOwned<TKXChartAxis> A(New<TKXChartAxis>(nullptr));
  A->SetLocation(Location);
  A->SetMinimum(0);
  A->SetMaximum(100);
  A->SetZoomMinimum(ZoomMin);
  A->SetZoomMaximum(ZoomMax);
  return A;
}

void Checker(TCanvas* C, const TRect& R) {
  for (int32_t Y = R.Top; Y < R.Bottom; Y += 10)
    for (int32_t X = R.Left; X < R.Right; X += 10) {
      C->Brush()->SetColor(((X - R.Left) / 10 + (Y - R.Top) / 10) % 2 ? clSilver : clWhite);
      C->FillRect({X, Y, std::min(X + 10, R.Right), std::min(Y + 10, R.Bottom)});
    }
  Reset(C);
}

int32_t PaintModes(TCanvas* C, int32_t Y, const TBitmap* Pic) {
  Y = SectionTitle(C, Y, "Layers: a picture of 60 x 40 in every image mode");
  const TGrid G{20, Y, 232, 150, 5};
  int I = 0;
  for (int M = imCenter; M <= imProportionalCenter; ++M) {
    auto L = MakeOwned<TKXChartLayer>();
    L->Brush()->SetColor(Plot);
    L->Image()->SetGraphic(Pic);
    L->SetImageMode(static_cast<TImageMode>(M));
    const TRect R = G.Body(I);
    Outline(C, R);
    L->Draw(C, R);
    CaptionUnder(C, G, I++, GetEnumName(static_cast<TImageMode>(M)));
  }
  {
    // A transparent layer: no fill, and the picture's magenta corner left out.
    auto L = MakeOwned<TKXChartLayer>();
    L->SetTransparent(true);
    L->Image()->SetGraphic(Pic);
    L->SetImageMode(imProportionalCenter);
    const TRect R = G.Body(I);
    Checker(C, R);
    L->Draw(C, R);
    CaptionUnder(C, G, I++, "transparent, over a checkerboard");
  }
  return G.Bottom(I) + 6;
}

int32_t PaintZoom(TCanvas* C, int32_t Y, const TBitmap* Pic) {
  Y = SectionTitle(C, Y, "Held to the axis scale: full scale, zoomed in twice, panned right");
  const TGrid G{20, Y, 290, 200, 4};
  struct TCase {
    TImageMode Mode;
    double H0, H1, V0, V1;
    bool Zoomable;
    std::string Text;
  };
  const TCase Cases[] = {
      {imCenter, 0, 100, 0, 100, true, "imCenter, full scale"},
      {imCenter, 25, 75, 25, 75, true, "imCenter, zoomed 2x"},
      {imCenter, 50, 100, 0, 100, true, "imCenter, right half"},
      {imCenter, 25, 75, 25, 75, false, "zoomed 2x, Zoomable false"},
      {imTile, 0, 100, 0, 100, true, "imTile, full scale"},
      {imTile, 25, 75, 25, 75, true, "imTile, zoomed 2x"},
      {imProportionalCenter, 0, 100, 0, 100, true, "proportional, full scale"},
      {imProportionalCenter, 10, 60, 40, 90, true, "proportional, zoomed 2x top left"},
  };
  int I = 0;
  for (const TCase& K : Cases) {
    auto L = MakeOwned<TKXChartLayer>();
    L->Brush()->SetColor(Plot);
    L->Image()->SetGraphic(Pic);
    L->SetImageMode(K.Mode);
    L->SetZoomable(K.Zoomable);
    auto H = Axis(calBottom, K.H0, K.H1), V = Axis(calLeft, K.V0, K.V1);
    const TRect R = G.Body(I);
    Outline(C, R);
    L->Draw(C, R, V.get(), H.get());
    CaptionUnder(C, G, I++, K.Text);
  }
  return G.Bottom(I) + 6;
}

void PaintLayers(TCanvas* C, const TRect& Area) {
  Reset(C);
  C->Brush()->SetColor(clWhite);
  C->FillRect(Area);
  const TOwned<TBitmap> Pic = Badge(60, 40);
  int32_t Y = 16;
  Y = PaintModes(C, Y, Pic.get());
  PaintZoom(C, Y, Pic.get());
}

} // namespace

void AddLegendSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"legends",
                    "Legends: every side, box shapes, glyphs, values, overlay, scrolling",
                    SheetWidth, 900, PaintLegends});
  Sheets.push_back({"layers", "Layers: image modes, transparency, pictures held to the axes",
                    SheetWidth, 820, PaintLayers});
}

} // namespace kx::gallery
