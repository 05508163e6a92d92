#pragma once
// What the chart modules share below the chart core: the chart kinds and logarithmic
// scale types, the colour schemes and their palettes, the legend glyph of every kind, the
// table of the composite logarithmic scales, and the exception of chart functions.
//
// Which enumerations live here, and why: an enumeration sits here when a table of this
// module is indexed by it, because the toolkit cannot include the chart core.
//   TKXChartType         indexes DefaultChartGlyphPaths; the chart core's class registry,
//                        GetChartType and the chart-in-chart sub chart use it.
//   TKXLogarithmicType   indexes LogTypeParts; the axes use it.
//   TKXColorScheme       selects one of the palettes below; panels and charts store it.
// Every other enumeration belongs to the module of the class that holds it.

#include <array>
#include <cstdint>
#include <string_view>

#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXSysUtils.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

// --- Chart kinds and scale types ---

enum TKXChartType : uint8_t {
  ctCustom,
  ctArea,
  ctArrow,
  ctBar,
  ctSparseBar,
  ctLine,
  ctPie,
  ctPoint,
  ctShape,
  ctGraph,
  ctEQ,
  ctGuide,
  ctChartInChart,
  ctPath,
  ctScatter,
  ctDonut,
  ctDonutEx,
  ctBubble,
  ctHighLowAverage,
  ctCandleStick,
};
KX_ENUM_NAMES(TKXChartType, "ctCustom", "ctArea", "ctArrow", "ctBar", "ctSparseBar", "ctLine",
              "ctPie", "ctPoint", "ctShape", "ctGraph", "ctEQ", "ctGuide", "ctChartInChart",
              "ctPath", "ctScatter", "ctDonut", "ctDonutEx", "ctBubble", "ctHighLowAverage",
              "ctCandleStick")

// How a logarithmic axis spreads its range: the simple types stretch towards one end;
// the composite ones split the range at its middle and use a simple type in each half.
enum TKXLogarithmicType : uint8_t {
  ltLogarithmic,
  ltInverseLogarithmic,
  ltCompositeFirst,
  ltCompositeSecond,
};
KX_ENUM_NAMES(TKXLogarithmicType, "ltLogarithmic", "ltInverseLogarithmic", "ltCompositeFirst",
              "ltCompositeSecond")

// The simple type of the low half (entry 0) and of the high half (entry 1) of each type.
// ltCompositeFirst gathers detail about the middle of the range (each half stretched
// towards the middle); ltCompositeSecond gathers it at both ends. A simple type is its
// own two halves, so the table can be read for any type.
inline constexpr std::array<std::array<TKXLogarithmicType, 2>, 4> LogTypeParts = {{
    {ltLogarithmic, ltLogarithmic},
    {ltInverseLogarithmic, ltInverseLogarithmic},
    {ltInverseLogarithmic, ltLogarithmic},
    {ltLogarithmic, ltInverseLogarithmic},
}};

// --- Colour schemes ---

// Ten colours, which consecutive charts and values take in turn.
using TColorList = std::array<TColor, 10>;

// 0 keeps a palette of the user's own; 1 to 11 name the palettes below in this order.
enum TKXColorScheme : uint8_t {
  schCustom,
  schDefault,
  schPastels,
  schBW,
  schGrays,
  schSouthwest,
  schReds,
  schGreens,
  schBlues,
  schViolets,
  schDystopia,
  schAntique,
};
KX_ENUM_NAMES(TKXColorScheme, "schCustom", "schDefault", "schPastels", "schBW", "schGrays",
              "schSouthwest", "schReds", "schGreens", "schBlues", "schViolets", "schDystopia",
              "schAntique")

// Strong, clearly separated hues, each dark enough to read on white.
inline constexpr TColorList DefaultColorList = {
    RGBToColor(0x2E, 0x6F, 0xBA), RGBToColor(0xE0, 0x6C, 0x1F), RGBToColor(0x3A, 0x93, 0x44),
    RGBToColor(0xC8, 0x32, 0x3C), RGBToColor(0x7B, 0x4F, 0xB0), RGBToColor(0x8C, 0x5A, 0x3C),
    RGBToColor(0xC9, 0x4F, 0xA0), RGBToColor(0x60, 0x66, 0x6E), RGBToColor(0x8E, 0x8A, 0x12),
    RGBToColor(0x16, 0x8F, 0xA0)};

// Soft tints for large areas behind dark text.
inline constexpr TColorList PastelsColorList = {
    RGBToColor(0x9E, 0xC5, 0xE8), RGBToColor(0xF7, 0xB9, 0x8B), RGBToColor(0xA8, 0xDB, 0xA8),
    RGBToColor(0xF4, 0xA6, 0xA6), RGBToColor(0xC9, 0xB3, 0xE6), RGBToColor(0xF6, 0xE1, 0x9C),
    RGBToColor(0x9F, 0xD9, 0xD6), RGBToColor(0xE6, 0xB8, 0xD4), RGBToColor(0xC8, 0xD8, 0x9A),
    RGBToColor(0xD9, 0xC2, 0xA7)};

// Black, white and greys, dark and light in turn so that neighbours always contrast.
inline constexpr TColorList BWColorList = {
    RGBToColor(0x00, 0x00, 0x00), RGBToColor(0xFF, 0xFF, 0xFF), RGBToColor(0x55, 0x55, 0x55),
    RGBToColor(0xCC, 0xCC, 0xCC), RGBToColor(0x22, 0x22, 0x22), RGBToColor(0xE8, 0xE8, 0xE8),
    RGBToColor(0x77, 0x77, 0x77), RGBToColor(0xAA, 0xAA, 0xAA), RGBToColor(0x3C, 0x3C, 0x3C),
    RGBToColor(0x92, 0x92, 0x92)};

// An even ramp from near black to light grey.
inline constexpr TColorList GraysColorList = {
    RGBToColor(0x1E, 0x1E, 0x1E), RGBToColor(0x33, 0x33, 0x33), RGBToColor(0x48, 0x48, 0x48),
    RGBToColor(0x5E, 0x5E, 0x5E), RGBToColor(0x74, 0x74, 0x74), RGBToColor(0x8A, 0x8A, 0x8A),
    RGBToColor(0xA0, 0xA0, 0xA0), RGBToColor(0xB6, 0xB6, 0xB6), RGBToColor(0xCB, 0xCB, 0xCB),
    RGBToColor(0xDE, 0xDE, 0xDE)};

// Desert earth and sky: terracotta, turquoise, sand, sage, clay.
inline constexpr TColorList SouthwestColorList = {
    RGBToColor(0xC0, 0x60, 0x3A), RGBToColor(0x3F, 0xA7, 0xA3), RGBToColor(0xD9, 0xB2, 0x6F),
    RGBToColor(0x8A, 0x9A, 0x5B), RGBToColor(0x9E, 0x3B, 0x2E), RGBToColor(0xE0, 0x8E, 0x45),
    RGBToColor(0x6F, 0xA8, 0xC9), RGBToColor(0x9C, 0x4F, 0x7A), RGBToColor(0x6B, 0x4A, 0x35),
    RGBToColor(0xC7, 0xA6, 0x98)};

// Ramps of one hue each, from deep to pale.
inline constexpr TColorList RedsColorList = {
    RGBToColor(0x4A, 0x0B, 0x0B), RGBToColor(0x6E, 0x10, 0x10), RGBToColor(0x93, 0x16, 0x16),
    RGBToColor(0xB7, 0x1C, 0x1C), RGBToColor(0xD3, 0x2F, 0x2F), RGBToColor(0xE2, 0x50, 0x50),
    RGBToColor(0xEC, 0x72, 0x72), RGBToColor(0xF2, 0x95, 0x95), RGBToColor(0xF7, 0xB8, 0xB8),
    RGBToColor(0xFB, 0xD9, 0xD9)};

inline constexpr TColorList GreensColorList = {
    RGBToColor(0x0B, 0x3D, 0x1A), RGBToColor(0x11, 0x5C, 0x27), RGBToColor(0x17, 0x7A, 0x34),
    RGBToColor(0x1E, 0x99, 0x41), RGBToColor(0x2E, 0xB3, 0x52), RGBToColor(0x52, 0xC2, 0x6F),
    RGBToColor(0x77, 0xCF, 0x8D), RGBToColor(0x9C, 0xDB, 0xAA), RGBToColor(0xC0, 0xE8, 0xC8),
    RGBToColor(0xE0, 0xF4, 0xE4)};

inline constexpr TColorList BluesColorList = {
    RGBToColor(0x0A, 0x2A, 0x5C), RGBToColor(0x10, 0x3E, 0x85), RGBToColor(0x16, 0x52, 0xAD),
    RGBToColor(0x1F, 0x66, 0xCC), RGBToColor(0x3A, 0x7F, 0xDB), RGBToColor(0x5C, 0x97, 0xE3),
    RGBToColor(0x7F, 0xAF, 0xEA), RGBToColor(0xA3, 0xC7, 0xF1), RGBToColor(0xC6, 0xDE, 0xF7),
    RGBToColor(0xE3, 0xEE, 0xFB)};

inline constexpr TColorList VioletsColorList = {
    RGBToColor(0x2E, 0x0F, 0x4A), RGBToColor(0x44, 0x17, 0x6B), RGBToColor(0x5A, 0x1F, 0x8C),
    RGBToColor(0x70, 0x28, 0xAD), RGBToColor(0x86, 0x40, 0xC4), RGBToColor(0x9C, 0x5F, 0xCF),
    RGBToColor(0xB2, 0x7F, 0xDA), RGBToColor(0xC8, 0xA0, 0xE5), RGBToColor(0xDD, 0xC2, 0xEF),
    RGBToColor(0xEE, 0xE1, 0xF7)};

// Smog and warning lights: toxic green, rust, hazard yellow, steel, neon magenta.
inline constexpr TColorList DystopiaColorList = {
    RGBToColor(0x7F, 0xB8, 0x00), RGBToColor(0x8B, 0x3A, 0x1A), RGBToColor(0x5B, 0x5F, 0x63),
    RGBToColor(0xE0, 0xB4, 0x00), RGBToColor(0x8E, 0x1B, 0x1B), RGBToColor(0x3D, 0x5A, 0x73),
    RGBToColor(0xC2, 0x18, 0x5B), RGBToColor(0x4B, 0x2D, 0x5C), RGBToColor(0x2F, 0x7F, 0x73),
    RGBToColor(0xA8, 0xA2, 0x9A)};

// Faded, warm tones of old prints: walnut, brass, sage, brick, slate, mauve.
inline constexpr TColorList AntiqueColorList = {
    RGBToColor(0x8C, 0x6A, 0x4A), RGBToColor(0xC9, 0xA4, 0x5C), RGBToColor(0x6F, 0x7F, 0x5C),
    RGBToColor(0x9C, 0x5B, 0x4E), RGBToColor(0x5F, 0x6F, 0x7F), RGBToColor(0xD8, 0xC8, 0xA0),
    RGBToColor(0x7A, 0x5C, 0x7A), RGBToColor(0x3F, 0x54, 0x47), RGBToColor(0xB5, 0x7B, 0x56),
    RGBToColor(0x8A, 0x85, 0x77)};

// The palette of a scheme; nullptr for schCustom and for a number that names no scheme,
// whose palette the owner keeps.
[[nodiscard]] const TColorList* GetSchemeColorList(TKXColorScheme Scheme) noexcept;

// --- Legend glyphs ---

// A small icon of each chart kind, as path text in a box of 16 by 16 (Y downward), filled
// by the even-odd rule of TKXPathData. The figures of one glyph do not overlap.
extern const std::array<std::string_view, TEnumCount<TKXChartType>> DefaultChartGlyphPaths;

// --- Errors ---

// Raised by chart functions; carries one of the texts below.
class EKXChartException : public Exception {
public:
  using Exception::Exception;
};

inline constexpr char SSourceTargetChartEqual[] =
    "The source chart and the target chart of a function must be different charts";

} // namespace kx
