#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"

#include <array>
#include <cmath>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/graphics/KXPathData.h"

namespace kx {
namespace {

// --- Glyphs ---

TEST(ChartGlyphs, EveryKindHasItsOwnPathFillingTheSixteenBox) {
  std::set<std::string_view> Seen;
  for (int I = 0; I < TEnumCount<TKXChartType>; ++I) {
    const auto Kind = static_cast<TKXChartType>(I);
    SCOPED_TRACE(GetEnumName(Kind));
    EXPECT_TRUE(Seen.insert(DefaultChartGlyphPaths[I]).second) << "the same glyph twice";
    auto P = MakeOwned<TKXPathData>();
    ASSERT_NO_THROW(P->SetPathString(DefaultChartGlyphPaths[I]));
    // Square bounds, so that fitting a glyph to a square legend box keeps its shape.
    const TRectF B = P->GetBounds();
    EXPECT_NEAR(B.Left, 1, 0.01);
    EXPECT_NEAR(B.Top, 1, 0.01);
    EXPECT_NEAR(B.Right, 15, 0.01);
    EXPECT_NEAR(B.Bottom, 15, 0.01);

    // A glyph that fills (nearly) nothing or (nearly) everything has lost its holes or
    // its figures to the fill rule.
    int Covered = 0;
    for (int Y = 0; Y < 32; ++Y)
      for (int X = 0; X < 32; ++X)
        Covered += P->PointInPath(0.25 + X * 0.5, 0.25 + Y * 0.5);
    EXPECT_GT(Covered, 32 * 32 * 10 / 100);
    EXPECT_LT(Covered, 32 * 32 * 80 / 100);
  }
}

// --- Logarithmic types ---

TEST(LogTypes, CompositeTypesSplitIntoTwoDifferentPairsOfSimpleTypes) {
  for (auto Simple : {ltLogarithmic, ltInverseLogarithmic})
    EXPECT_EQ(LogTypeParts[Simple], (std::array{Simple, Simple}));
  for (auto Composite : {ltCompositeFirst, ltCompositeSecond}) {
    const auto Parts = LogTypeParts[Composite];
    EXPECT_NE(Parts[0], Parts[1]) << "a composite scale mixes both simple types";
    for (auto Part : Parts)
      EXPECT_TRUE(Part == ltLogarithmic || Part == ltInverseLogarithmic);
  }
  EXPECT_NE(LogTypeParts[ltCompositeFirst], LogTypeParts[ltCompositeSecond]);
}

// --- Colour schemes ---

// CIE L*a*b* of an sRGB colour, and its relative luminance.
struct TLab {
  double L, A, B, Luminance;
};

TLab ToLab(TColor C) {
  const auto Linear = [](uint8_t V) {
    const double S = V / 255.0;
    return S <= 0.04045 ? S / 12.92 : std::pow((S + 0.055) / 1.055, 2.4);
  };
  const double R = Linear(GetRValue(C)), G = Linear(GetGValue(C)), B = Linear(GetBValue(C));
  const double X = (0.4124 * R + 0.3576 * G + 0.1805 * B) / 0.95047;
  const double Y = 0.2126 * R + 0.7152 * G + 0.0722 * B;
  const double Z = (0.0193 * R + 0.1192 * G + 0.9505 * B) / 1.08883;
  const auto F = [](double T) { return T > 0.008856 ? std::cbrt(T) : 7.787 * T + 16.0 / 116; };
  return {116 * F(Y) - 16, 500 * (F(X) - F(Y)), 200 * (F(Y) - F(Z)), Y};
}

double MinDistance(const TColorList& List) {
  double Min = 1e9;
  for (size_t I = 0; I < List.size(); ++I)
    for (size_t J = I + 1; J < List.size(); ++J) {
      const TLab P = ToLab(List[I]), Q = ToLab(List[J]);
      Min = std::min(Min, std::hypot(P.L - Q.L, P.A - Q.A, P.B - Q.B));
    }
  return Min;
}

TEST(ColorSchemes, SchemesOneToElevenNameTheirPalettesInOrder) {
  const TColorList* Expected[] = {&DefaultColorList,  &PastelsColorList,   &BWColorList,
                                  &GraysColorList,    &SouthwestColorList, &RedsColorList,
                                  &GreensColorList,   &BluesColorList,     &VioletsColorList,
                                  &DystopiaColorList, &AntiqueColorList};
  EXPECT_EQ(GetSchemeColorList(schCustom), nullptr);
  for (int I = 1; I <= 11; ++I)
    EXPECT_EQ(GetSchemeColorList(TKXColorScheme(I)), Expected[I - 1]) << I;
  EXPECT_EQ(GetSchemeColorList(TKXColorScheme(12)), nullptr);
}

TEST(ColorSchemes, EveryPaletteHoldsTenPlainColoursTellableApart) {
  for (int I = 1; I <= 11; ++I) {
    const TColorList& List = *GetSchemeColorList(TKXColorScheme(I));
    SCOPED_TRACE(GetEnumName(TKXColorScheme(I)));
    for (TColor C : List)
      EXPECT_EQ(static_cast<uint32_t>(C) >> 24, 0u) << "no system colours, no alpha";
    EXPECT_GE(MinDistance(List), 6.0);
  }
}

TEST(ColorSchemes, TheDefaultPaletteIsVividAndReadableOnWhite) {
  EXPECT_GE(MinDistance(DefaultColorList), 25.0);
  for (TColor C : DefaultColorList) {
    // The contrast ratio of graphics against a white page, 3:1 at least.
    const double Contrast = 1.05 / (ToLab(C).Luminance + 0.05);
    EXPECT_GE(Contrast, 3.0) << std::hex << C;
  }
}

} // namespace
} // namespace kx
