#include "kxcharts/toolkit/chartkit/KXCommonCharts.h"

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
    "M1,15 L1,9.62 L5,5.31 L9,8.54 L15,1 L15,15 Z",
    // ctArrow
    "M15,1 L15,9.14 L12.18,6.32 L3.5,15 L1,12.5 L9.68,3.82 L6.86,1 Z",
    // ctBar
    "M1,8 L4.5,8 L4.5,15 L1,15 Z M6.25,1 L9.75,1 L9.75,15 L6.25,15 Z M11.5,4.5 L15,4.5 L15,15 "
    "L11.5,15 Z",
    // ctSparseBar
    "M1.93,6.6 L3.8,6.6 L3.8,12.76 L1.93,12.76 Z M5.67,1 L7.53,1 L7.53,12.76 L5.67,12.76 Z "
    "M11.73,4.36 L13.6,4.36 L13.6,12.76 L11.73,12.76 Z M1,13.6 L15,13.6 L15,15 L1,15 Z",
    // ctLine
    "M2.77,15 L5.97,7.71 L9.4,13.36 L15,2.91 L13.34,1 L9.3,8.55 L5.7,2.62 L1,13.33 Z",
    // ctPie
    "M7.5,8.5 L7.5,2 A6.5,6.5 0 1,0 14,8.5 Z M9,7 L9,1 A6,6 0 0,1 15,7 Z",
    // ctPoint
    "M1,12.5 A2.5,2.5 0 1,1 6,12.5 A2.5,2.5 0 1,1 1,12.5 Z M5,3.5 A2.5,2.5 0 1,1 10,3.5 A2.5,2.5 0 "
    "1,1 5,3.5 Z M10,10 A2.5,2.5 0 1,1 15,10 A2.5,2.5 0 1,1 10,10 Z",
    // ctShape
    "M1,1 L7,1 L7,7 L1,7 Z M9,4 A3,3 0 1,1 15,4 A3,3 0 1,1 9,4 Z M8,15 L11.5,9 L15,15 Z M1,9.5 "
    "L6.5,9.5 L6.5,15 L1,15 Z",
    // ctGraph
    "M6.13,1 L9.87,1 L9.87,5 L6.13,5 Z M1,11 L5.67,11 L5.67,15 L1,15 Z M10.33,11 L15,11 L15,15 "
    "L10.33,15 Z M7.35,5 L8.65,5 L8.65,7.8 L13.32,7.8 L13.32,11 L12.01,11 L12.01,9.2 L3.99,9.2 "
    "L3.99,11 L2.68,11 L2.68,7.8 L7.35,7.8 Z",
    // ctEQ
    "M1,13.22 L3.88,13.22 L3.88,15 L1,15 Z M1,10.78 L3.88,10.78 L3.88,12.56 L1,12.56 Z M1,8.33 "
    "L3.88,8.33 L3.88,10.11 L1,10.11 Z M1,5.89 L3.88,5.89 L3.88,7.67 L1,7.67 Z M4.71,13.22 "
    "L7.59,13.22 L7.59,15 L4.71,15 Z M4.71,10.78 L7.59,10.78 L7.59,12.56 L4.71,12.56 Z M4.71,8.33 "
    "L7.59,8.33 L7.59,10.11 L4.71,10.11 Z M4.71,5.89 L7.59,5.89 L7.59,7.67 L4.71,7.67 Z M4.71,3.44 "
    "L7.59,3.44 L7.59,5.22 L4.71,5.22 Z M4.71,1 L7.59,1 L7.59,2.78 L4.71,2.78 Z M8.41,13.22 "
    "L11.29,13.22 L11.29,15 L8.41,15 Z M8.41,10.78 L11.29,10.78 L11.29,12.56 L8.41,12.56 Z "
    "M8.41,8.33 L11.29,8.33 L11.29,10.11 L8.41,10.11 Z M12.12,13.22 L15,13.22 L15,15 L12.12,15 Z "
    "M12.12,10.78 L15,10.78 L15,12.56 L12.12,12.56 Z M12.12,8.33 L15,8.33 L15,10.11 L12.12,10.11 Z "
    "M12.12,5.89 L15,5.89 L15,7.67 L12.12,7.67 Z M12.12,3.44 L15,3.44 L15,5.22 L12.12,5.22 Z",
    // ctGuide
    "M9,1 L10.4,1 L10.4,5.8 L15,5.8 L15,7.2 L10.4,7.2 L10.4,15 L9,15 L9,7.2 L1,7.2 L1,5.8 L9,5.8 Z",
    // ctChartInChart
    "M1,1 L15,1 L15,15 L1,15 Z M2.4,2.4 L2.4,13.6 L13.6,13.6 L13.6,2.4 Z M4.27,8.93 L6.13,8.93 "
    "L6.13,12.2 L4.27,12.2 Z M7.07,5.2 L8.93,5.2 L8.93,12.2 L7.07,12.2 Z M9.87,7.07 L11.73,7.07 "
    "L11.73,12.2 L9.87,12.2 Z",
    // ctPath
    "M8,1 L9.74,6.22 L15,6.35 L10.82,9.7 L12.33,15 L8,11.86 L3.67,15 L5.18,9.7 L1,6.35 L6.26,6.22 "
    "Z",
    // ctScatter
    "M1,9.724 C1,4.146 4.56,-0.317 8.119,1.356 C10.153,2.249 11.679,4.703 13.204,4.146 "
    "C15.747,3.588 15.747,10.84 12.187,13.629 C8.628,16.195 1,15.303 1,9.724 Z",
    // ctDonut
    "M1,8 A7,7 0 1,1 15,8 A7,7 0 1,1 1,8 Z M4.5,8 A3.5,3.5 0 1,1 11.5,8 A3.5,3.5 0 1,1 4.5,8 Z",
    // ctDonutEx
    "M1,8 A7,7 0 1,1 15,8 A7,7 0 1,1 1,8 Z M3,8 A5,5 0 1,1 13,8 A5,5 0 1,1 3,8 Z M4.2,8 A3.8,3.8 0 "
    "1,1 11.8,8 A3.8,3.8 0 1,1 4.2,8 Z M6.2,8 A1.8,1.8 0 1,1 9.8,8 A1.8,1.8 0 1,1 6.2,8 Z",
    // ctBubble
    "M1,10.5 A4.5,4.5 0 1,1 10,10.5 A4.5,4.5 0 1,1 1,10.5 Z M9,4 A3,3 0 1,1 15,4 A3,3 0 1,1 9,4 Z "
    "M11,13 A2,2 0 1,1 15,13 A2,2 0 1,1 11,13 Z",
    // ctHighLowAverage
    "M2.4,4.23 L3.89,4.23 L3.89,7.78 L5.29,7.78 L5.29,9.29 L3.89,9.29 L3.89,13.92 L2.4,13.92 "
    "L2.4,9.29 L1,9.29 L1,7.78 L2.4,7.78 Z M7.25,1 L8.75,1 L8.75,4.55 L10.15,4.55 L10.15,6.06 "
    "L8.75,6.06 L8.75,10.69 L7.25,10.69 L7.25,6.06 L5.85,6.06 L5.85,4.55 L7.25,4.55 Z M12.11,3.15 "
    "L13.6,3.15 L13.6,8.86 L15,8.86 L15,10.37 L13.6,10.37 L13.6,15 L12.11,15 L12.11,10.37 "
    "L10.71,10.37 L10.71,8.86 L12.11,8.86 Z",
    // ctCandleStick
    "M2.84,3 L4.21,3 L4.21,6 L6.05,6 L6.05,12 L4.21,12 L4.21,15 L2.84,15 L2.84,12 L1,12 L1,6 "
    "L2.84,6 Z M11.79,1 L13.16,1 L13.16,3 L15,3 L15,9 L13.16,9 L13.16,13 L11.79,13 L11.79,9 "
    "L9.95,9 L9.95,3 L11.79,3 Z",
};

} // namespace kx
