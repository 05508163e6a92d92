// The elements sheet: the graphic elements a panel paints besides its charts. Labels in
// every alignment and at several angles, shadows in every direction, the gradient in every
// direction, image areas in every placement, headers and footers, and the scale kinds of
// an axis as strips of ticks placed through AxisToPixel.
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "gallery/KXGallery.h"
#include "gallery/KXSheetKit.h"
#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/core/KXChartLabel.h"

namespace kx::gallery {

namespace {

constexpr TColor Ink = SheetInk;
constexpr TColor Thing = static_cast<TColor>(0xD8A05A);
constexpr TColor Caption = SheetCaption;
constexpr int32_t SheetWidth = 1200;

// The sheet's plain look, with its own brush colour.
void Reset(TCanvas* C) {
  ResetCanvas(C, Thing);
}
void CaptionUnder(TCanvas* C, const TGrid& G, int I, const std::string& Text) {
  gallery::CaptionUnder(C, G, I, Text, Thing);
}
void Outline(TCanvas* C, const TRect& R) {
  gallery::Outline(C, R, Thing);
}
int32_t SectionTitle(TCanvas* C, int32_t Y, const std::string& Title) {
  return gallery::SectionTitle(C, Y, Title, SheetWidth, Thing);
}

// A small landscape: sky, hills and a sun, with a magenta corner that a transparent
// picture leaves out (the bottom left pixel names the transparent colour).
TOwned<TBitmap> Landscape(int32_t W, int32_t H) {
  TOwned<TBitmap> B = MakeOwned<TBitmap>();
  B->SetSize(W, H);
  TCanvas* C = B->Canvas();
  DirectionGradient(C, {0, 0, W, H}, {RGBToColor(0x87, 0xCE, 0xEB), clWhite}, gdTopToBottom, 1);
  C->Pen()->SetStyle(psClear);
  C->Brush()->SetColor(RGBToColor(0x4C, 0xAF, 0x50));
  const TPoint Hill[] = {{0, H},         {0, H * 2 / 3},     {W / 3, H * 3 / 8},
                         {W / 2, H / 2}, {W * 3 / 4, H / 3}, {W, H * 2 / 3},
                         {W, H}};
  C->Polygon(Hill);
  C->Brush()->SetColor(RGBToColor(0xFF, 0xC1, 0x07));
  C->Ellipse(W * 2 / 3, H / 10, W * 2 / 3 + H / 4, H / 10 + H / 4);
  C->Brush()->SetColor(clFuchsia);
  C->FillRect({0, H - H / 4, W / 4, H});
  return B;
}

// --- Labels ---

int32_t PaintLabels(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Labels: alignment by angle (the frame is the rectangle given)");
  const TAlignment Alignments[] = {taLeftJustify, taCenter, taRightJustify};
  const int32_t Angles[] = {0, 45, 90, 180, 270, -30};
  const TGrid G{20, Y, 193, 130, 6};
  int I = 0;
  for (TAlignment A : Alignments)
    for (int32_t Angle : Angles) {
      const TRect R = G.Body(I);
      Outline(C, R);
      auto Label = MakeOwned<TKXChartLabel>();
      Label->SetText("Label text");
      Label->Font()->SetSize(11);
      Label->Font()->SetColor(Ink);
      Label->SetAngle(Angle);
      Label->SetAlignment(A);
      Label->Draw(C, R);
      CaptionUnder(C, G, I, GetEnumName(A) + ", " + std::to_string(Angle) + " degrees");
      ++I;
    }
  return G.Bottom(I) + 6;
}

// --- Shadows ---

int32_t PaintShadows(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Shadows: every direction, three shapes, a thick pen, half opacity");
  const TKXShadowDirection Directions[] = {sdBottomRight, sdBottomLeft, sdTopRight, sdTopLeft};
  const TKXShapeStyle Styles[] = {shpRectangle, shpEllipse, shpStar3D};
  const TGrid G{20, Y, 96, 120, 12};
  int I = 0;
  for (TKXShadowDirection D : Directions)
    for (TKXShapeStyle S : Styles) {
      const TRect R = G.Body(I);
      auto Shadow = MakeOwned<TKXChartShadow>();
      Shadow->SetDirection(D);
      Shadow->SetSize(6);
      if (S == shpEllipse) Shadow->Brush()->SetColor(clGray);
      const float Opacity = S == shpStar3D ? 0.5f : 1.0f;
      // The shadow pass: the shadow first, then the thing beside it.
      Shadow->Draw(C, R, S, Opacity);
      Reset(C);
      if (S == shpRectangle) C->Pen()->SetWidth(3);
      DrawShape(C, Shadow->NonShadowRect(R, true, C), nullptr, S, true, clBtnHighlight, clBtnShadow,
                3);
      CaptionUnder(C, G, I, GetEnumName(D).substr(2));
      ++I;
    }
  return G.Bottom(I) + 6;
}

// --- Gradients ---

int32_t PaintGradients(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Gradients: every direction; the last one coarse and half opaque");
  const TGrid G{20, Y, 116, 100, 10};
  int I = 0;
  for (int D = 0; D < TEnumCount<TGradientDirection>; ++D) {
    auto Gradient = MakeOwned<TKXChartGradient>();
    Gradient->SetDirection(static_cast<TGradientDirection>(D));
    if (D % 2) {
      Gradient->SetStartColor(RGBToColor(0x1F, 0x66, 0xCC));
      Gradient->SetEndColor(RGBToColor(0xE3, 0xEE, 0xFB));
    }
    Gradient->Draw(C, G.Body(I));
    CaptionUnder(C, G, I, GetEnumName(static_cast<TGradientDirection>(D)).substr(2));
    ++I;
  }
  for (int Extra = 0; Extra < 1; ++Extra) {
    auto Gradient = MakeOwned<TKXChartGradient>();
    Gradient->SetDirection(gdLeftToRight);
    Gradient->SetCoarseness(8);
    Gradient->SetOpacity(0.5f);
    Gradient->SetStartColor(clRed);
    Gradient->SetEndColor(clBlue);
    Gradient->Draw(C, G.Body(I));
    CaptionUnder(C, G, I, "Coarse, half opaque");
    ++I;
  }
  return G.Bottom(I) + 6;
}

// --- Image areas ---

int32_t PaintImageAreas(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Image areas: a small (60 x 40) and a large (240 x 120) picture");
  struct TCase {
    TImageOptions Options;
    bool Large;
    const char* Name;
  };
  const TCase Cases[] = {
      {{}, false, "[] small"},
      {{ioCenter}, false, "[ioCenter] small"},
      {{ioCenter, ioProportional}, false, "[ioCenter, ioProportional] small"},
      {{ioCenter, ioProportional}, true, "[ioCenter, ioProportional] large"},
      {{ioProportional}, true, "[ioProportional] large"},
      {{ioStretch}, false, "[ioStretch]"},
      {{ioTile}, false, "[ioTile]"},
      {{ioTile, ioProportional}, true, "[ioTile, ioProportional] large"},
      {{ioCenter, ioTransparent}, false, "[ioCenter, ioTransparent]"},
      {{ioTile, ioTransparent}, false, "[ioTile, ioTransparent]"},
  };
  const TGrid G{20, Y, 232, 150, 5};
  auto Small = Landscape(60, 40);
  auto Large = Landscape(240, 120);
  int I = 0;
  for (const TCase& K : Cases) {
    const TRect R = G.Body(I);
    Reset(C);
    C->Brush()->SetColor(RGBToColor(0xF0, 0xF0, 0xF0));
    C->FillRect(R);
    Outline(C, R);
    auto Area = MakeOwned<TKXChartImageArea>();
    Area->Image()->SetGraphic(K.Large ? Large.get() : Small.get());
    Area->SetImageOptions({});
    Area->SetImageOptions(K.Options);
    Area->Draw(C, R);
    CaptionUnder(C, G, I, K.Name);
    ++I;
  }
  return G.Bottom(I) + 6;
}

// --- Headers ---

int32_t PaintHeaders(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Headers and footers: alignment, a picture band, a larger font");
  const TGrid G{20, Y, 385, 170, 3};
  auto PanelFont = MakeOwned<TFont>();
  PanelFont->SetSize(11);
  auto Banner = Landscape(120, 30);
  const TAlignment Alignments[] = {taLeftJustify, taCenter, taRightJustify};
  for (int I = 0; I < 3; ++I) {
    const TRect R = G.Body(I);
    Reset(C);
    C->Brush()->SetColor(clWhite);
    C->FillRect(R);
    Outline(C, R);
    auto Header = MakeOwned<TKXChartHeader>(PanelFont.get(), true);
    auto Footer = MakeOwned<TKXChartHeader>(PanelFont.get(), false);
    Header->SetText("Chart header");
    Footer->SetText("Footer text");
    Header->SetAlignment(Alignments[I]);
    Footer->SetAlignment(Alignments[I]);
    if (I == 1) {
      Header->Image()->SetGraphic(Banner.get());
      Header->SetHeight(40);
      Header->Font()->SetStyle({fsBold});
      Footer->Brush()->SetColor(RGBToColor(0xFF, 0xF3, 0xCD));
    }
    if (I == 2) {
      Header->Font()->SetSize(16);
      Header->SetHeight(36);
    }
    Header->Draw(C, R);
    Footer->Draw(C, R);
    CaptionUnder(C, G, I, GetEnumName(Alignments[I]) + (I == 1 ? ", picture band" : ""));
  }
  return G.Bottom(3) + 6;
}

// --- Axis scales ---

int32_t PaintAxisScales(TCanvas* C, int32_t Y) {
  Y = SectionTitle(C, Y, "Axis scales: ticks placed through AxisToPixel (labelled ticks longer)");
  struct TStrip {
    const char* Name;
    TAxisOptions Options;
    TKXLogarithmicType Type;
    bool Cycles;
  };
  const TStrip Strips[] = {
      {"Linear", {}, ltLogarithmic, false},
      {"Logarithmic", {aoLogarithmic}, ltLogarithmic, false},
      {"Inverse logarithmic", {aoLogarithmic}, ltInverseLogarithmic, false},
      {"Composite first", {aoLogarithmic}, ltCompositeFirst, false},
      {"Composite second", {aoLogarithmic}, ltCompositeSecond, false},
      {"Log cycles, 1 to 1000", {aoLogarithmic}, ltLogarithmic, true},
      {"Linear, reversed, zoomed to 20..60", {aoReversed}, ltLogarithmic, false},
  };
  const int32_t Left = 240, Right = SheetWidth - 40, Row = 40;
  for (const TStrip& K : Strips) {
    auto Axis = MakeOwned<TKXChartAxis>();
    Axis->SetLocation(calBottom);
    Axis->SetMaximum(K.Cycles ? 1000 : 100);
    Axis->SetMinimum(K.Cycles ? 1 : 0);
    Axis->SetOptions(K.Options);
    Axis->SetLogarithmicType(K.Type);
    Axis->SetLogCycles(K.Cycles);
    if (K.Options.Contains(aoReversed)) Axis->Zoom(TRectF{20, 0, 60, 0});
    const TRect R{Left, Y, Right, Y + Row};
    const int32_t Base = Y + 12;
    Reset(C);
    C->Brush()->SetStyle(bsClear);
    C->Font()->SetColor(Ink);
    C->TextOut(20, Base - 6, K.Name);
    C->MoveTo(Axis->AxisToPixel(Axis->ZoomMinimum(), R), Base);
    C->LineTo(Axis->AxisToPixel(Axis->ZoomMaximum(), R) + 1, Base);
    std::vector<std::pair<double, bool>> Ticks; // value, labelled
    if (K.Cycles) {
      for (double Decade = 1; Decade < 1000; Decade *= 10)
        for (int M = 1; M < 10; ++M)
          Ticks.push_back({Decade * M, M == 1});
      Ticks.push_back({1000, true});
    } else {
      for (int V = 0; V <= 100; V += 5)
        Ticks.push_back({double(V), V % 25 == 0});
    }
    for (const auto& [Value, Labelled] : Ticks) {
      if (Value < Axis->ZoomMinimum() || Value > Axis->ZoomMaximum()) continue;
      const int32_t X = Axis->AxisToPixel(Value, R);
      C->MoveTo(X, Base);
      C->LineTo(X, Base + (Labelled ? 9 : 5));
      if (!Labelled) continue;
      char Text[16];
      std::snprintf(Text, sizeof Text, "%g", Value);
      C->TextOut(X - C->TextWidth(Text) / 2, Base + 11, Text);
    }
    Y += Row;
  }
  return Y + 6;
}

void PaintElements(TCanvas* C, const TRect& Area) {
  Reset(C);
  C->Brush()->SetColor(clWhite);
  C->FillRect(Area);
  int32_t Y = 16;
  Y = PaintLabels(C, Y);
  Y = PaintShadows(C, Y);
  Y = PaintGradients(C, Y);
  Y = PaintImageAreas(C, Y);
  Y = PaintHeaders(C, Y);
  PaintAxisScales(C, Y);
}

} // namespace

void AddElementsSheets(std::vector<TGallerySheet>& Sheets) {
  Sheets.push_back({"elements",
                    "Graphic elements: labels, shadows, gradients, image areas, headers",
                    SheetWidth, 1600, PaintElements});
}

} // namespace kx::gallery
