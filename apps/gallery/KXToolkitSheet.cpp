// The toolkit sheet: every shape style, arrow form, gradient direction, pie and donut slice,
// text placement and curve of the drawing helpers, each with its caption.
#include <string>

#include "gallery/KXGallery.h"
#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"
#include "kxcharts/toolkit/graphics/KXPathData.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"

namespace kx::gallery {

namespace {

constexpr TColor Ink = static_cast<TColor>(0x403830);    // dark slate
constexpr TColor Fill = static_cast<TColor>(0xD8A05A);   // steel blue
constexpr TColor Accent = static_cast<TColor>(0x3C8CE6); // amber
constexpr TColor Soft = static_cast<TColor>(0xF4ECE4);   // pale blue grey
constexpr TColor Caption = static_cast<TColor>(0x505050);

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

void Reset(TCanvas* C) {
  C->Pen()->SetColor(Ink);
  C->Pen()->SetWidth(1);
  C->Pen()->SetStyle(psSolid);
  C->Brush()->SetColor(Fill);
  C->Brush()->SetStyle(bsSolid);
  C->Font()->SetSize(8);
  C->Font()->SetColor(Caption);
  C->Font()->SetStyle({});
  C->Font()->SetOrientation(0);
}

void CaptionUnder(TCanvas* C, const TGrid& G, int I, const std::string& Text) {
  const TRect Cell = G.Cell(I);
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetColor(Caption);
  DrawTextLabel(C, Text, DT_CENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX,
                {Cell.Left + 2, Cell.Bottom - 20, Cell.Right - 2, Cell.Bottom - 4});
  Reset(C);
}

int32_t SectionTitle(TCanvas* C, int32_t Y, const std::string& Title) {
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetSize(12);
  C->Font()->SetStyle({fsBold});
  C->Font()->SetColor(Ink);
  C->TextOut(20, Y, Title);
  const int32_t H = C->TextHeight(Title);
  C->Pen()->SetColor(clSilver);
  C->MoveTo(20, Y + H + 3);
  C->LineTo(1180, Y + H + 3);
  Reset(C);
  return Y + H + 10;
}

TOwned<TBitmap> SampleImage() {
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->SetSize(32, 24);
  TCanvas* C = B->Canvas();
  DirectionGradient(C, {0, 0, 32, 24}, {RGBToColor(0x87, 0xCE, 0xEB), clWhite}, gdTopToBottom, 1);
  C->Brush()->SetColor(RGBToColor(0x4C, 0xAF, 0x50));
  C->Pen()->SetStyle(psClear);
  const TPoint Hill[] = {{0, 24}, {0, 16}, {10, 9}, {18, 15}, {24, 11}, {32, 17}, {32, 24}};
  C->Polygon(Hill);
  C->Brush()->SetColor(RGBToColor(0xFF, 0xC1, 0x07));
  C->Ellipse(22, 2, 29, 9);
  return B;
}

int32_t PaintShapes(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Shape styles (DrawShape; 12 to 23 are the lit 3D bodies)");
  const TGrid G{20, Y, 97, 92, 12};
  TOwned<TBitmap> Image = SampleImage();
  for (int S = 0; S < 24; ++S) {
    const auto Style = static_cast<TKXShapeStyle>(S);
    const TRect B = G.Body(S);
    const TRect Box{B.Left + 8, B.Top, B.Right - 8, B.Bottom};
    const TRect Inner =
        DrawShape(C, Box, Image.get(), Style, true, clBtnHighlight, clBtnShadow, 3, 1.0f);
    // The inner rectangle that DrawShape answers, where a label or a sub chart goes.
    if (S != shpImage && S != shpImage3D) {
      C->Brush()->SetStyle(bsClear);
      C->Pen()->SetColor(Accent);
      C->Pen()->SetStyle(psDot);
      C->Rectangle(Inner);
      Reset(C);
    }
    CaptionUnder(C, G, S, std::to_string(S) + " " + GetEnumName(Style).substr(3));
  }
  return G.Bottom(24) + 10;
}

int32_t PaintArrows(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Arrows (DrawArrow; options as set members)");
  const TGrid G{20, Y, 145, 100, 8};
  struct TCase {
    TArrowOptions Options;
    int32_t Head, Shaft;
    const char* Caption;
  };
  const TCase Cases[] = {
      {{arEndHead}, 10, 1, "open head (mask 2)"},
      {{arEndHead, arFilledHead}, 10, 1, "filled head (mask 6)"},
      {{arStartHead, arEndHead, arFilledHead}, 10, 1, "both heads"},
      {{arStartDot, arEndHead}, 10, 1, "start dot, open head"},
      {{arEndHead, arFilledHead, arText}, 8, 1, "with text (mask 22)"},
      {{arEndHead, arFilledHead}, 24, 12, "bar arrow (T, T / 2)"},
  };
  int I = 0;
  for (const TCase& K : Cases) {
    const TRect B = G.Body(I);
    C->Brush()->SetColor(Ink);
    DrawArrow(C, B.Left + 8, B.Bottom - 10, B.Right - 8, B.Top + 16, K.Head, "Sales", K.Options,
              K.Shaft, 1.0f);
    CaptionUnder(C, G, I++, K.Caption);
  }
  // The polyline form, as graph links route around nodes.
  const TRect B = G.Body(I);
  const TPoint Route[] = {{B.Left + 6, B.Bottom - 6},
                          {B.Left + 6, B.Top + 20},
                          {B.Right - 30, B.Top + 20},
                          {B.Right - 30, B.Bottom - 16},
                          {B.Right - 6, B.Bottom - 16}};
  C->Brush()->SetColor(Ink);
  DrawArrow(C, Route, 10, "routed", {arEndHead, arFilledHead, arStartDot, arText}, 1, -1, 1.0f);
  CaptionUnder(C, G, I++, "polyline form");
  const TRect T = G.Body(I);
  C->Brush()->SetColor(Accent);
  C->Pen()->SetColor(Accent);
  DrawArrow(C, T.Left + 8, T.Top + 10, T.Right - 8, T.Bottom - 4, 14, "", {arEndHead, arFilledHead},
            3, 0.5f);
  CaptionUnder(C, G, I++, "opacity 0.5, shaft 3");
  return G.Bottom(I) + 10;
}

int32_t PaintGradients(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Gradients (DirectionGradient, LineGradient)");
  const TGrid G{20, Y, 116, 92, 10};
  const TColor Pair[] = {clYellow, clWhite};
  for (int D = 0; D < TEnumCount<TGradientDirection>; ++D) {
    const auto Dir = static_cast<TGradientDirection>(D);
    const TRect B = G.Body(D);
    DirectionGradient(C, B, Pair, Dir, 1, 1.0f);
    C->Brush()->SetStyle(bsClear);
    C->Rectangle(B);
    Reset(C);
    CaptionUnder(C, G, D, std::to_string(D) + " " + GetEnumName(Dir).substr(2));
  }
  int I = TEnumCount<TGradientDirection>;
  const TColor Three[] = {RGBToColor(0x1F, 0x4E, 0x79), RGBToColor(0x7E, 0xC8, 0xE3), clWhite};
  DirectionGradient(C, G.Body(I), Three, gdLeftToRight, 8, 1.0f);
  CaptionUnder(C, G, I++, "3 colours, bands of 8");
  const TColor Bar[] = {clBtnFace, Fill};
  LineGradient(C, G.Body(I), Bar, 1, 1, grHorizontal, 1.0f);
  CaptionUnder(C, G, I++, "line, horizontal");
  LineGradient(C, G.Body(I), Bar, 1, 1, grVertical, 1.0f);
  CaptionUnder(C, G, I++, "line, vertical");
  DirectionGradient(C, G.Body(I), Three, gdRadial, 1, 0.5f);
  CaptionUnder(C, G, I++, "radial, opacity 0.5");
  return G.Bottom(I) + 10;
}

int32_t PaintSlices(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Pie and donut slices (DrawPieSlice, DrawDonutSlice)");
  const TGrid G{20, Y, 145, 120, 8};
  const TColor Colors[] = {RGBToColor(0x44, 0x72, 0xC4), RGBToColor(0xED, 0x7D, 0x31),
                           RGBToColor(0xA5, 0xA5, 0xA5), RGBToColor(0xFF, 0xC0, 0x00),
                           RGBToColor(0x5B, 0x9B, 0xD5)};
  auto Square = [&](int I) {
    const TRect B = G.Body(I);
    const int32_t S = std::min(B.Width(), B.Height());
    const int32_t L = B.Left + (B.Width() - S) / 2;
    return TRect{L, B.Top, L + S, B.Top + S};
  };
  C->Pen()->SetColor(clWhite);
  double Start = 0;
  const double Sweeps[] = {110, 70, 40, 90, 50};
  for (int K = 0; K < 5; ++K) {
    C->Brush()->SetColor(Colors[K]);
    DrawPieSlice(C, Square(0), Start, Start + Sweeps[K], 1.0, 0, 1.0f);
    Start += Sweeps[K];
  }
  CaptionUnder(C, G, 0, "pie of five slices");
  C->Brush()->SetColor(Colors[1]);
  DrawPieSlice(C, Square(1), 30, 150, 0.9, 0, 1.0f);
  C->Brush()->SetColor(Colors[0]);
  DrawPieSlice(C, Square(1), 30, 150, 0.9, 180, 1.0f);
  CaptionUnder(C, G, 1, "30..150, offset 0 and 180");
  Start = 0;
  for (int K = 0; K < 5; ++K) {
    C->Brush()->SetColor(Colors[K]);
    DrawDonutSlice(C, Square(2), Start, Start + Sweeps[K], 90, 0.55, 1.0, 1.0f);
    Start += Sweeps[K];
  }
  CaptionUnder(C, G, 2, "donut, offset 90");
  C->Brush()->SetColor(Colors[3]);
  DrawDonutSlice(C, Square(3), 0, 360, 0, 0.7, 1.0, 1.0f);
  C->Brush()->SetColor(Colors[4]);
  DrawDonutSlice(C, Square(3), 0, 360, 0, 0.35, 0.65, 1.0f);
  CaptionUnder(C, G, 3, "two full rings");
  const TRect Wide = G.Body(4);
  C->Brush()->SetColor(Colors[0]);
  DrawPieSlice(C, Wide, 0, 250, 1.0, 0, 1.0f);
  C->Brush()->SetColor(Colors[1]);
  DrawPieSlice(C, {Wide.Left + 8, Wide.Top - 6, Wide.Right + 8, Wide.Bottom - 6}, 250, 360, 1.0, 0,
               1.0f);
  CaptionUnder(C, G, 4, "elliptic, one slice exploded");
  C->Brush()->SetColor(Colors[2]);
  DrawDonutSlice(C, Square(5), 200, 20, 0, 1.0, 0.4, 1.0f);
  CaptionUnder(C, G, 5, "angles and radii reversed");
  C->Brush()->SetColor(Colors[0]);
  DrawPieSlice(C, Square(6), 0, 300, 1.0, 0, 0.5f);
  C->Brush()->SetColor(Colors[1]);
  DrawPieSlice(C, Square(6), 200, 360, 1.0, 0, 0.5f);
  CaptionUnder(C, G, 6, "opacity 0.5");
  C->Brush()->SetStyle(bsDiagCross);
  C->Brush()->SetColor(Colors[0]);
  C->Pen()->SetColor(Ink);
  DrawDonutSlice(C, Square(7), 45, 315, 0, 0.3, 0.95, 1.0f);
  CaptionUnder(C, G, 7, "hatched brush");
  return G.Bottom(8) + 10;
}

int32_t PaintText(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Text (DrawTextLabel flags, rotated text)");
  const TGrid G{20, Y, 145, 100, 8};
  const uint32_t Placements[] = {0, 1, 2, 4, 5, 6, 8, 10};
  const char* Names[] = {"top left 0",      "top centre 1",   "top right 2",   "middle left 4",
                         "middle centre 5", "middle right 6", "bottom left 8", "bottom right 10"};
  for (int I = 0; I < 8; ++I) {
    const TRect B = G.Body(I);
    C->Brush()->SetColor(Soft);
    C->Pen()->SetColor(clSilver);
    C->Rectangle(B);
    C->Brush()->SetStyle(bsClear);
    C->Font()->SetColor(Ink);
    DrawTextLabel(C, "Research &&\nDevelopment", DT_WORDBREAK | DT_END_ELLIPSIS | Placements[I], B);
    CaptionUnder(C, G, I, Names[I]);
  }
  int I = 8;
  const TRect Wrap = G.Body(I);
  C->Brush()->SetColor(Soft);
  C->Pen()->SetColor(clSilver);
  C->Rectangle(Wrap);
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetColor(Ink);
  DrawTextLabel(C,
                "A long label that wraps inside its shape and ends with an ellipsis when "
                "it runs out of room, as this one does here",
                DT_WORDBREAK | DT_END_ELLIPSIS | DT_CENTER | DT_VCENTER, Wrap);
  CaptionUnder(C, G, I++, "wrapped, 0x8015");
  const TRect Point = G.Body(I);
  const TPoint P{(Point.Left + Point.Right) / 2, (Point.Top + Point.Bottom) / 2};
  C->Brush()->SetColor(Accent);
  C->Ellipse(P.X - 3, P.Y - 3, P.X + 4, P.Y + 4);
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetColor(Ink);
  DrawTextLabel(C, "1,234.5", 0x101, {P.X, P.Y - 18, P.X, P.Y - 18});
  CaptionUnder(C, G, I++, "0x101 on a point");
  for (int Angle : {0, 45, 90, 180, 270, 330}) {
    const TRect B = G.Body(I);
    C->Font()->SetSize(9);
    TPoint Offset;
    const TSize S = GetRotatedTextExtent(C, Angle, "Revenue", Offset);
    const TPoint Box{B.Left + (B.Width() - S.cx) / 2, B.Top + (B.Height() - S.cy) / 2};
    C->Brush()->SetColor(Soft);
    C->Pen()->SetColor(clSilver);
    C->Rectangle(Box.X, Box.Y, Box.X + S.cx, Box.Y + S.cy);
    C->Brush()->SetStyle(bsClear);
    C->Font()->SetColor(Ink);
    RotateFont(C->Font(), Angle);
    C->TextOut(Box.X + Offset.X, Box.Y + Offset.Y, "Revenue");
    Reset(C);
    CaptionUnder(C, G, I++, std::to_string(Angle) + " degrees in its box");
  }
  return G.Bottom(I) + 10;
}

int32_t PaintCurves(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Curves (DrawBezierPolygon, BezierPolygonPoints) and the canvas");
  const TGrid G{20, Y, 232, 120, 5};
  auto Zigzag = [&](int I) {
    const TRect B = G.Body(I);
    const int32_t W = B.Width();
    return std::vector<TPoint>{{B.Left, B.Bottom - 10},
                               {B.Left + W / 5, B.Top + 10},
                               {B.Left + 2 * W / 5, B.Bottom - 30},
                               {B.Left + 3 * W / 5, B.Top + 30},
                               {B.Left + 4 * W / 5, B.Bottom - 5},
                               {B.Right, B.Top + 5}};
  };
  auto Marks = [&](const std::vector<TPoint>& P) {
    C->Brush()->SetColor(Accent);
    C->Pen()->SetStyle(psClear);
    for (const TPoint& Q : P)
      C->Ellipse(Q.X - 3, Q.Y - 3, Q.X + 4, Q.Y + 4);
    Reset(C);
  };
  std::vector<TPoint> P = Zigzag(0);
  C->Pen()->SetColor(clSilver);
  C->Polyline(P);
  Reset(C);
  C->Pen()->SetWidth(2);
  DrawBezierPolygon(C, P, false, false, false, 1, 1.0f);
  Marks(P);
  CaptionUnder(C, G, 0, "smooth: through every point");
  P = Zigzag(1);
  C->Pen()->SetColor(clSilver);
  C->Polyline(P);
  Reset(C);
  C->Pen()->SetWidth(2);
  DrawBezierPolygon(C, P, true, false, false, 1, 1.0f);
  Marks(P);
  CaptionUnder(C, G, 1, "Bezier: inner points pull");
  const TRect B = G.Body(2);
  const std::vector<TPoint> Blob{{B.Left + 20, B.Top + 10},
                                 {B.Right - 40, B.Top + 4},
                                 {B.Right - 10, B.Top + 50},
                                 {B.Left + 120, B.Bottom - 4},
                                 {B.Left + 4, B.Bottom - 20}};
  C->Brush()->SetColor(Fill);
  DrawBezierPolygon(C, Blob, false, true, true, 1, 0.8f);
  Marks(Blob);
  CaptionUnder(C, G, 2, "closed and filled");
  P = Zigzag(3);
  const std::vector<TPoint> Dense = BezierPolygonPoints(P, false, false, 1);
  C->Pen()->SetColor(Fill);
  C->Polyline(Dense);
  C->Brush()->SetColor(Ink);
  C->Pen()->SetStyle(psClear);
  for (const TPoint& Q : Dense)
    C->FillRect({Q.X, Q.Y, Q.X + 1, Q.Y + 1});
  Reset(C);
  CaptionUnder(C, G, 3, std::to_string(Dense.size()) + " polyline points");
  // Pen styles and the pixel rules of the canvas.
  const TRect S = G.Body(4);
  const TPenStyle Styles[] = {psSolid, psDash, psDot, psDashDot, psDashDotDot};
  for (int K = 0; K < 5; ++K) {
    C->Pen()->SetStyle(Styles[K]);
    C->MoveTo(S.Left, S.Top + 6 + K * 10);
    C->LineTo(S.Right, S.Top + 6 + K * 10);
  }
  Reset(C);
  const TBrushStyle Hatches[] = {bsHorizontal, bsVertical, bsFDiagonal,
                                 bsBDiagonal,  bsCross,    bsDiagCross};
  for (int K = 0; K < 6; ++K) {
    C->Brush()->SetStyle(Hatches[K]);
    C->Brush()->SetColor(Ink);
    const int32_t X = S.Left + K * (S.Width() / 6);
    C->Rectangle(X, S.Top + 56, X + S.Width() / 6 - 4, S.Bottom);
  }
  Reset(C);
  CaptionUnder(C, G, 4, "pen styles, hatched brushes");
  return G.Bottom(5) + 10;
}

int32_t PaintSchemes(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Colour schemes (TKXColorScheme 1 to 11)");
  const TGrid G{20, Y, 290, 50, 4};
  for (int S = schDefault; S <= schAntique; ++S) {
    const auto Scheme = static_cast<TKXColorScheme>(S);
    const TColorList* List = GetSchemeColorList(Scheme);
    const TRect B = G.Body(S - 1);
    const int32_t W = B.Width() / 10;
    C->Pen()->SetColor(clSilver);
    for (int K = 0; K < 10; ++K) {
      C->Brush()->SetColor((*List)[K]);
      C->Rectangle(B.Left + K * W, B.Top, B.Left + (K + 1) * W - 2, B.Bottom);
    }
    Reset(C);
    CaptionUnder(C, G, S - 1, std::to_string(S) + " " + GetEnumName(Scheme).substr(3));
  }
  return G.Bottom(11) + 10;
}

int32_t PaintGlyphs(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Legend glyphs (DefaultChartGlyphPaths, drawn by TKXPathData)");
  const TGrid G{20, Y, 58, 64, 20};
  TOwned<TKXPathData> Path = MakeOwned<TKXPathData>();
  for (int T = 0; T < TEnumCount<TKXChartType>; ++T) {
    const auto Type = static_cast<TKXChartType>(T);
    const TRect B = G.Body(T);
    const TRect Box{B.Left + (B.Width() - 32) / 2, B.Top, B.Left + (B.Width() - 32) / 2 + 32,
                    B.Top + 32};
    Path->SetPathString(DefaultChartGlyphPaths[T]);
    Path->Scale(2, 2);
    Path->Translate(Box.Left, Box.Top);
    C->Brush()->SetColor(DefaultColorList[T % 10]);
    Path->FillPath(C);
    C->Pen()->SetColor(Ink);
    Path->DrawPath(C);
    CaptionUnder(C, G, T, GetEnumName(Type).substr(2));
  }
  return G.Bottom(TEnumCount<TKXChartType>) + 10;
}

void PaintToolkit(TCanvas* C, const TRect& Area) {
  Reset(C);
  C->Brush()->SetStyle(bsClear);
  C->Font()->SetSize(16);
  C->Font()->SetStyle({fsBold});
  C->Font()->SetColor(Ink);
  C->TextOut(20, 14, "Toolkit drawing helpers");
  Reset(C);
  int32_t Y = 52;
  Y = PaintShapes(C, Y);
  Y = PaintArrows(C, Y);
  Y = PaintGradients(C, Y);
  Y = PaintSlices(C, Y);
  Y = PaintText(C, Y);
  Y = PaintCurves(C, Y);
  Y = PaintSchemes(C, Y);
  Y = PaintGlyphs(C, Y);
  (void)Area;
}

} // namespace

void AddToolkitSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back(
      {"toolkit",
       "Toolkit: shape styles, arrows, gradients, slices, text, curves, colour schemes and glyphs",
       1200, 1490, PaintToolkit});
}

} // namespace kx::gallery
