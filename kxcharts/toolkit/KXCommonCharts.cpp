#include "kxcharts/toolkit/KXCommonCharts.h"

namespace kx {

const TColorList* GetSchemeColorList(TKXColorScheme Scheme) noexcept {
  static constexpr const TColorList* Lists[] = {
      nullptr,         &DefaultColorList,   &PastelsColorList,  &BWColorList,
      &GraysColorList, &SouthwestColorList, &RedsColorList,     &GreensColorList,
      &BluesColorList, &VioletsColorList,   &DystopiaColorList, &AntiqueColorList};
  static_assert(std::size(Lists) == TEnumCount<TKXColorScheme>);
  const auto Index = static_cast<size_t>(Scheme);
  return Index < std::size(Lists) ? Lists[Index] : nullptr;
}

// Drawn on a grid of 16 by 16 and kept to simple outlines, so that each kind stays
// recognisable at legend size. Rings are concentric circles (the even-odd rule cuts the
// holes); frames are a square with a smaller square inside.
const std::array<std::string_view, TEnumCount<TKXChartType>> DefaultChartGlyphPaths = {
    // ctCustom
    "M1,1 L15,1 L15,15 L1,15 Z M3,3 L3,13 L13,13 L13,3 Z M8,5 L11,8 L8,11 L5,8 Z",
    // ctArea
    "M1,15 L1,10 L5,6 L9,9 L15,2 L15,15 Z",
    // ctArrow
    "M14,2 L14,9.5 L11.4,6.9 L3.4,14.9 L1.1,12.6 L9.1,4.6 L6.5,2 Z",
    // ctBar
    "M1,9 L4.5,9 L4.5,15 L1,15 Z M6.25,3 L9.75,3 L9.75,15 L6.25,15 Z M11.5,6 L15,6 L15,15 L11.5,15 "
    "Z",
    // ctSparseBar
    "M1.5,8 L3.5,8 L3.5,13.5 L1.5,13.5 Z M5.5,3 L7.5,3 L7.5,13.5 L5.5,13.5 Z M12,6 L14,6 L14,13.5 "
    "L12,13.5 Z M0.5,14.25 L15.5,14.25 L15.5,15.5 L0.5,15.5 Z",
    // ctLine
    "M1.88,13.16 L5.67,8.11 L9.65,11.59 L15.86,3.68 L14.14,2.32 L9.35,8.41 L5.33,4.89 L0.12,11.84 "
    "Z",
    // ctPie
    "M7.5,8.5 L7.5,2 A6.5,6.5 0 1,0 14,8.5 Z M9,7 L9,1 A6,6 0 0,1 15,7 Z",
    // ctPoint
    "M1,11.5 A2.5,2.5 0 1,1 6,11.5 A2.5,2.5 0 1,1 1,11.5 Z M5.5,5 A2.5,2.5 0 1,1 10.5,5 A2.5,2.5 0 "
    "1,1 5.5,5 Z M10,11 A2.5,2.5 0 1,1 15,11 A2.5,2.5 0 1,1 10,11 Z",
    // ctShape
    "M1,1 L7,1 L7,7 L1,7 Z M9,4 A3,3 0 1,1 15,4 A3,3 0 1,1 9,4 Z M8,15 L11.5,9 L15,15 Z M1,15 "
    "L1,9.5 L6.5,9.5 L6.5,15 Z",
    // ctGraph
    "M6,1 L10,1 L10,5 L6,5 Z M0.5,11 L5.5,11 L5.5,15 L0.5,15 Z M10.5,11 L15.5,11 L15.5,15 L10.5,15 "
    "Z M7.3,5 L8.7,5 L8.7,7.8 L13.7,7.8 L13.7,11 L12.3,11 L12.3,9.2 L3.7,9.2 L3.7,11 L2.3,11 "
    "L2.3,7.8 L7.3,7.8 Z",
    // ctEQ
    "M1,13.4 L3.8,13.4 L3.8,15 L1,15 Z M1,11.2 L3.8,11.2 L3.8,12.8 L1,12.8 Z M1,9 L3.8,9 L3.8,10.6 "
    "L1,10.6 Z M1,6.8 L3.8,6.8 L3.8,8.4 L1,8.4 Z M4.6,13.4 L7.4,13.4 L7.4,15 L4.6,15 Z M4.6,11.2 "
    "L7.4,11.2 L7.4,12.8 L4.6,12.8 Z M4.6,9 L7.4,9 L7.4,10.6 L4.6,10.6 Z M4.6,6.8 L7.4,6.8 "
    "L7.4,8.4 L4.6,8.4 Z M4.6,4.6 L7.4,4.6 L7.4,6.2 L4.6,6.2 Z M4.6,2.4 L7.4,2.4 L7.4,4 L4.6,4 Z "
    "M8.2,13.4 L11,13.4 L11,15 L8.2,15 Z M8.2,11.2 L11,11.2 L11,12.8 L8.2,12.8 Z M8.2,9 L11,9 "
    "L11,10.6 L8.2,10.6 Z M11.8,13.4 L14.6,13.4 L14.6,15 L11.8,15 Z M11.8,11.2 L14.6,11.2 "
    "L14.6,12.8 L11.8,12.8 Z M11.8,9 L14.6,9 L14.6,10.6 L11.8,10.6 Z M11.8,6.8 L14.6,6.8 L14.6,8.4 "
    "L11.8,8.4 Z M11.8,4.6 L14.6,4.6 L14.6,6.2 L11.8,6.2 Z",
    // ctGuide
    "M9,1 L10.4,1 L10.4,5.8 L15,5.8 L15,7.2 L10.4,7.2 L10.4,15 L9,15 L9,7.2 L1,7.2 L1,5.8 L9,5.8 Z",
    // ctChartInChart
    "M0.5,0.5 L15.5,0.5 L15.5,15.5 L0.5,15.5 Z M2,2 L2,14 L14,14 L14,2 Z M4,9 L6,9 L6,12.5 L4,12.5 "
    "Z M7,5 L9,5 L9,12.5 L7,12.5 Z M10,7 L12,7 L12,12.5 L10,12.5 Z",
    // ctPath
    "M8,1.4 L9.7,6.25 L14.85,6.38 L10.76,9.5 L12.23,14.42 L8,11.5 L3.77,14.42 L5.24,9.5 L1.15,6.38 "
    "L6.3,6.25 Z",
    // ctScatter
    "M2,9 C2,4 7,1.5 10.5,3.5 C14.5,5.5 15.5,11 11.5,13.5 C8.5,15.5 2,14 2,9 Z",
    // ctDonut
    "M1,8 A7,7 0 1,1 15,8 A7,7 0 1,1 1,8 Z M4.5,8 A3.5,3.5 0 1,1 11.5,8 A3.5,3.5 0 1,1 4.5,8 Z",
    // ctDonutEx
    "M0.5,8 A7.5,7.5 0 1,1 15.5,8 A7.5,7.5 0 1,1 0.5,8 Z M2.5,8 A5.5,5.5 0 1,1 13.5,8 A5.5,5.5 0 "
    "1,1 2.5,8 Z M4,8 A4,4 0 1,1 12,8 A4,4 0 1,1 4,8 Z M6,8 A2,2 0 1,1 10,8 A2,2 0 1,1 6,8 Z",
    // ctBubble
    "M0.5,10.5 A4.5,4.5 0 1,1 9.5,10.5 A4.5,4.5 0 1,1 0.5,10.5 Z M9.5,4.5 A3,3 0 1,1 15.5,4.5 A3,3 "
    "0 1,1 9.5,4.5 Z M11,12.5 A2,2 0 1,1 15,12.5 A2,2 0 1,1 11,12.5 Z",
    // ctHighLowAverage
    "M2,5 L3.6,5 L3.6,8.3 L5.1,8.3 L5.1,9.7 L3.6,9.7 L3.6,14 L2,14 L2,9.7 L0.5,9.7 L0.5,8.3 L2,8.3 "
    "Z M7.2,2 L8.8,2 L8.8,5.3 L10.3,5.3 L10.3,6.7 L8.8,6.7 L8.8,11 L7.2,11 L7.2,6.7 L5.7,6.7 "
    "L5.7,5.3 L7.2,5.3 Z M12.4,4 L14,4 L14,9.3 L15.5,9.3 L15.5,10.7 L14,10.7 L14,15 L12.4,15 "
    "L12.4,10.7 L10.9,10.7 L10.9,9.3 L12.4,9.3 Z",
    // ctCandleStick
    "M3.9,3 L5.1,3 L5.1,6 L6.7,6 L6.7,12 L5.1,12 L5.1,15 L3.9,15 L3.9,12 L2.3,12 L2.3,6 L3.9,6 Z "
    "M10.9,1 L12.1,1 L12.1,3 L13.7,3 L13.7,9 L12.1,9 L12.1,13 L10.9,13 L10.9,9 L9.3,9 L9.3,3 "
    "L10.9,3 Z",
};

} // namespace kx
