#pragma once
// The plain value types every layer shares: colours, integer and float rectangles and
// points, dates.

#include <cstdint>

#include "kxcharts/toolkit/runtime/KXEnum.h"

namespace kx {

// Days since 1899-12-30; the fraction is the time of day.
using TDateTime = double;

// Red in the low byte. A high byte of 0xFF marks a system colour, resolved through one
// fixed table when drawn.
enum TColor : int32_t {
  clBlack = 0x000000,
  clMaroon = 0x000080,
  clGreen = 0x008000,
  clOlive = 0x008080,
  clNavy = 0x800000,
  clPurple = 0x800080,
  clTeal = 0x808000,
  clGray = 0x808080,
  clSilver = 0xC0C0C0,
  clRed = 0x0000FF,
  clLime = 0x00FF00,
  clYellow = 0x00FFFF,
  clBlue = 0xFF0000,
  clFuchsia = 0xFF00FF,
  clAqua = 0xFFFF00,
  clWhite = 0xFFFFFF,
  clMoneyGreen = 0xC0DCC0,
  clSkyBlue = 0xF0CAA6,
  clCream = 0xF0FBFF,
  clMedGray = 0xA4A0A0,
  clNone = 0x1FFFFFFF,
  clDefault = 0x20000000,
  clScrollBar = int32_t(0xFF000000),
  clBackground = int32_t(0xFF000001),
  clActiveCaption = int32_t(0xFF000002),
  clInactiveCaption = int32_t(0xFF000003),
  clMenu = int32_t(0xFF000004),
  clWindow = int32_t(0xFF000005),
  clWindowFrame = int32_t(0xFF000006),
  clMenuText = int32_t(0xFF000007),
  clWindowText = int32_t(0xFF000008),
  clCaptionText = int32_t(0xFF000009),
  clActiveBorder = int32_t(0xFF00000A),
  clInactiveBorder = int32_t(0xFF00000B),
  clAppWorkSpace = int32_t(0xFF00000C),
  clHighlight = int32_t(0xFF00000D),
  clHighlightText = int32_t(0xFF00000E),
  clBtnFace = int32_t(0xFF00000F),
  clBtnShadow = int32_t(0xFF000010),
  clGrayText = int32_t(0xFF000011),
  clBtnText = int32_t(0xFF000012),
  clInactiveCaptionText = int32_t(0xFF000013),
  clBtnHighlight = int32_t(0xFF000014),
  cl3DDkShadow = int32_t(0xFF000015),
  cl3DLight = int32_t(0xFF000016),
  clInfoText = int32_t(0xFF000017),
  clInfoBk = int32_t(0xFF000018),
  clHotLight = int32_t(0xFF00001A),
  clGradientActiveCaption = int32_t(0xFF00001B),
  clGradientInactiveCaption = int32_t(0xFF00001C),
  clMenuHighlight = int32_t(0xFF00001D),
  clMenuBar = int32_t(0xFF00001E),
};

// The colour names that streaming writes instead of numbers.
template <> struct TEnumInfo<TColor> {
  static constexpr std::string_view Names[] = {"clBlack",
                                               "clMaroon",
                                               "clGreen",
                                               "clOlive",
                                               "clNavy",
                                               "clPurple",
                                               "clTeal",
                                               "clGray",
                                               "clSilver",
                                               "clRed",
                                               "clLime",
                                               "clYellow",
                                               "clBlue",
                                               "clFuchsia",
                                               "clAqua",
                                               "clWhite",
                                               "clMoneyGreen",
                                               "clSkyBlue",
                                               "clCream",
                                               "clMedGray",
                                               "clNone",
                                               "clDefault",
                                               "clScrollBar",
                                               "clBackground",
                                               "clActiveCaption",
                                               "clInactiveCaption",
                                               "clMenu",
                                               "clWindow",
                                               "clWindowFrame",
                                               "clMenuText",
                                               "clWindowText",
                                               "clCaptionText",
                                               "clActiveBorder",
                                               "clInactiveBorder",
                                               "clAppWorkSpace",
                                               "clHighlight",
                                               "clHighlightText",
                                               "clBtnFace",
                                               "clBtnShadow",
                                               "clGrayText",
                                               "clBtnText",
                                               "clInactiveCaptionText",
                                               "clBtnHighlight",
                                               "cl3DDkShadow",
                                               "cl3DLight",
                                               "clInfoText",
                                               "clInfoBk",
                                               "clHotLight",
                                               "clGradientActiveCaption",
                                               "clGradientInactiveCaption",
                                               "clMenuHighlight",
                                               "clMenuBar"};
  static constexpr TColor Values[] = {clBlack,
                                      clMaroon,
                                      clGreen,
                                      clOlive,
                                      clNavy,
                                      clPurple,
                                      clTeal,
                                      clGray,
                                      clSilver,
                                      clRed,
                                      clLime,
                                      clYellow,
                                      clBlue,
                                      clFuchsia,
                                      clAqua,
                                      clWhite,
                                      clMoneyGreen,
                                      clSkyBlue,
                                      clCream,
                                      clMedGray,
                                      clNone,
                                      clDefault,
                                      clScrollBar,
                                      clBackground,
                                      clActiveCaption,
                                      clInactiveCaption,
                                      clMenu,
                                      clWindow,
                                      clWindowFrame,
                                      clMenuText,
                                      clWindowText,
                                      clCaptionText,
                                      clActiveBorder,
                                      clInactiveBorder,
                                      clAppWorkSpace,
                                      clHighlight,
                                      clHighlightText,
                                      clBtnFace,
                                      clBtnShadow,
                                      clGrayText,
                                      clBtnText,
                                      clInactiveCaptionText,
                                      clBtnHighlight,
                                      cl3DDkShadow,
                                      cl3DLight,
                                      clInfoText,
                                      clInfoBk,
                                      clHotLight,
                                      clGradientActiveCaption,
                                      clGradientInactiveCaption,
                                      clMenuHighlight,
                                      clMenuBar};
};

constexpr TColor RGBToColor(uint8_t R, uint8_t G, uint8_t B) {
  return static_cast<TColor>(R | (G << 8) | (B << 16));
}
constexpr uint8_t GetRValue(TColor C) {
  return static_cast<uint32_t>(C) & 0xFF;
}
constexpr uint8_t GetGValue(TColor C) {
  return (static_cast<uint32_t>(C) >> 8) & 0xFF;
}
constexpr uint8_t GetBValue(TColor C) {
  return (static_cast<uint32_t>(C) >> 16) & 0xFF;
}

// A width and a height in whole pixels (text extents, bitmap sizes).
struct TSize {
  int32_t cx = 0;
  int32_t cy = 0;
  friend constexpr bool operator==(const TSize&, const TSize&) = default;
};

struct TPoint {
  int32_t X = 0;
  int32_t Y = 0;
  friend constexpr bool operator==(const TPoint&, const TPoint&) = default;
};

// Half-open like the canvas fills: columns Left..Right-1, rows Top..Bottom-1.
struct TRect {
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Right = 0;
  int32_t Bottom = 0;
  // Held at the ends of the int32 range, as every pixel sum is: the rectangle of the whole
  // plane (INT32_MIN to INT32_MAX) is INT32_MAX wide, not -1.
  constexpr int32_t Width() const { return Saturated(int64_t(Right) - Left); }
  constexpr int32_t Height() const { return Saturated(int64_t(Bottom) - Top); }
  constexpr bool IsEmpty() const { return Right <= Left || Bottom <= Top; }
  constexpr TPoint TopLeft() const { return {Left, Top}; }
  constexpr TPoint BottomRight() const { return {Right, Bottom}; }
  friend constexpr bool operator==(const TRect&, const TRect&) = default;

private:
  static constexpr int32_t Saturated(int64_t V) {
    return V > INT32_MAX ? INT32_MAX : V < INT32_MIN ? INT32_MIN : static_cast<int32_t>(V);
  }
};

struct TPointF {
  float X = 0;
  float Y = 0;
  friend constexpr bool operator==(const TPointF&, const TPointF&) = default;
};

struct TRectF {
  float Left = 0;
  float Top = 0;
  float Right = 0;
  float Bottom = 0;
  constexpr float Width() const { return Right - Left; }
  constexpr float Height() const { return Bottom - Top; }
  friend constexpr bool operator==(const TRectF&, const TRectF&) = default;
};

constexpr TRect Rect(int32_t L, int32_t T, int32_t R, int32_t B) {
  return {L, T, R, B};
}
constexpr TPoint Point(int32_t X, int32_t Y) {
  return {X, Y};
}
constexpr bool PtInRect(const TRect& R, const TPoint& P) {
  return P.X >= R.Left && P.X < R.Right && P.Y >= R.Top && P.Y < R.Bottom;
}

} // namespace kx
