#pragma once
// Pens, brushes and fonts: the settings a canvas reads each time it draws. Each one is a
// persistent with Assign and an OnChange event; the enumerations keep the platform's member
// order, because stored defaults are written as those numbers.

#include <cstdint>
#include <string>

#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

enum TPenStyle : uint8_t {
  psSolid,
  psDash,
  psDot,
  psDashDot,
  psDashDotDot,
  psClear,
  psInsideFrame,
  psUserStyle,
  psAlternate
};
KX_ENUM_NAMES(TPenStyle, "psSolid", "psDash", "psDot", "psDashDot", "psDashDotDot", "psClear",
              "psInsideFrame", "psUserStyle", "psAlternate")

// How a pen or brush combines with the pixels below (the sixteen binary raster operations).
// On an image surface every mode but pmCopy works on the RGB bytes without antialiasing and
// leaves alpha alone; on a vector surface the modes that ignore the pixels below (pmBlack,
// pmWhite, pmNotCopy) paint their colour, pmNop paints nothing, and the rest paint as pmCopy.
enum TPenMode : uint8_t {
  pmBlack,
  pmWhite,
  pmNop,
  pmNot,
  pmCopy,
  pmNotCopy,
  pmMergePenNot,
  pmMaskPenNot,
  pmMergeNotPen,
  pmMaskNotPen,
  pmMerge,
  pmNotMerge,
  pmMask,
  pmNotMask,
  pmXor,
  pmNotXor
};
KX_ENUM_NAMES(TPenMode, "pmBlack", "pmWhite", "pmNop", "pmNot", "pmCopy", "pmNotCopy",
              "pmMergePenNot", "pmMaskPenNot", "pmMergeNotPen", "pmMaskNotPen", "pmMerge",
              "pmNotMerge", "pmMask", "pmNotMask", "pmXor", "pmNotXor")

// Hatched styles paint their lines in the brush colour and leave the gaps untouched.
enum TBrushStyle : uint8_t {
  bsSolid,
  bsClear,
  bsHorizontal,
  bsVertical,
  bsFDiagonal,
  bsBDiagonal,
  bsCross,
  bsDiagCross
};
KX_ENUM_NAMES(TBrushStyle, "bsSolid", "bsClear", "bsHorizontal", "bsVertical", "bsFDiagonal",
              "bsBDiagonal", "bsCross", "bsDiagCross")

enum TFontStyle : uint8_t { fsBold, fsItalic, fsUnderline, fsStrikeOut };
KX_ENUM_NAMES(TFontStyle, "fsBold", "fsItalic", "fsUnderline", "fsStrikeOut")
using TFontStyles = TSet<TFontStyle>;

// The RGB value of a colour: system colours (high byte 0xFF) through the toolkit's one fixed
// table, an unknown system index as black; every other value keeps its low 24 bits.
TColor ColorToRGB(TColor Color);

// The base of pens, brushes and fonts: OnChange, raised by every setter that changes
// something and once by an Assign that changes something.
class TGraphicsObject : public TPersistent {
  KX_CLASS(TGraphicsObject, TPersistent)

public:
  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }

  // Grows with every change; a canvas compares it to know whether its cached text layout
  // still fits the font, without taking the OnChange slot from the user.
  uint64_t Revision() const { return FRevision; }

  // Records the present attributes as the ones a stored form leaves out. By default those
  // are a fresh object's; an owner that starts its pen, brush or font otherwise (a clear
  // brush, a black font) calls this once it has, so that an attribute set back to the
  // fresh value is still written, and read back, rather than lost to the owner's start.
  virtual void UseCurrentAsDefaults() = 0;

protected:
  virtual void Changed();

private:
  TNotifyEvent FOnChange;
  uint64_t FRevision = 0;
};

class TPen : public TGraphicsObject {
  KX_CLASS(TPen, TGraphicsObject)

public:
  static constexpr int32_t MaxWidth = 10000;

  TColor Color() const { return FColor; }
  void SetColor(TColor Value);
  // Width in pixels, clamped to 0..MaxWidth. A width of 0 draws as 1, as the platform's
  // cosmetic pen does.
  int32_t Width() const { return FWidth; }
  void SetWidth(int32_t Value);
  TPenStyle Style() const { return FStyle; }
  void SetStyle(TPenStyle Value);
  TPenMode Mode() const { return FMode; }
  void SetMode(TPenMode Value);

  void Assign(const TPersistent* Source) override;
  void UseCurrentAsDefaults() override;

protected:
  // Color, Mode, Style, Width.
  void DefineProperties(TFiler& Filer) override;

private:
  struct TAttributes {
    TColor Color = clBlack;
    int32_t Width = 1;
    TPenStyle Style = psSolid;
    TPenMode Mode = pmCopy;
  };
  TColor FColor = clBlack;
  int32_t FWidth = 1;
  TPenStyle FStyle = psSolid;
  TPenMode FMode = pmCopy;
  TAttributes FDefaults;
};

class TBrush : public TGraphicsObject {
  KX_CLASS(TBrush, TGraphicsObject)

public:
  TColor Color() const { return FColor; }
  // Giving a clear brush a colour makes it solid, as the platform does: code that sets a
  // colour means to paint with it.
  void SetColor(TColor Value);
  TBrushStyle Style() const { return FStyle; }
  void SetStyle(TBrushStyle Value);

  void Assign(const TPersistent* Source) override;
  void UseCurrentAsDefaults() override;

protected:
  // Color, Style.
  void DefineProperties(TFiler& Filer) override;

private:
  TColor FColor = clWhite;
  TBrushStyle FStyle = bsSolid;
  TColor FDefaultColor = clWhite;
  TBrushStyle FDefaultStyle = bsSolid;
};

// A font at 96 pixels per inch. Height is the platform's: negative is the character (em)
// height in pixels, positive the cell height (ascent plus descent), 0 the default size.
// Size is in points: Size = -Height * 72 / 96, rounded half away from zero both ways.
// Orientation is the rotation of text in degrees, counter-clockwise, kept in 0..359.
class TFont : public TGraphicsObject {
  KX_CLASS(TFont, TGraphicsObject)

public:
  static constexpr int32_t PixelsPerInch = 96;
  static constexpr const char* DefaultName = "DejaVu Sans";
  static constexpr int32_t DefaultSize = 8;

  const std::string& Name() const { return FName; }
  // An empty name falls back to DefaultName.
  void SetName(const std::string& Value);
  int32_t Size() const;
  // Clamped to -2000..2000 points.
  void SetSize(int32_t Value);
  int32_t Height() const { return FHeight; }
  // Clamped to -2000..2000 pixels.
  void SetHeight(int32_t Value);
  TColor Color() const { return FColor; }
  void SetColor(TColor Value);
  TFontStyles Style() const { return FStyle; }
  void SetStyle(TFontStyles Value);
  int32_t Orientation() const { return FOrientation; }
  void SetOrientation(int32_t Value);

  void Assign(const TPersistent* Source) override;

  // True when every attribute equals that of Other.
  bool SameAs(const TFont& Other) const;
  void UseCurrentAsDefaults() override;

protected:
  // Color, Height, Name, Orientation, Style: the height rather than the size, so that a
  // font reads back to the very pixel height it was written with.
  void DefineProperties(TFiler& Filer) override;

private:
  std::string FName = DefaultName;
  int32_t FHeight = -11; // 8 points at 96 ppi
  TColor FColor = clWindowText;
  TFontStyles FStyle;
  int32_t FOrientation = 0;
  struct TAttributes {
    std::string Name = DefaultName;
    int32_t Height = -11;
    TColor Color = clWindowText;
    TFontStyles Style;
    int32_t Orientation = 0;
  };
  TAttributes FDefaults;
};

} // namespace kx
