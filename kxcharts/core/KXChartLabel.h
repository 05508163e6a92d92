#pragma once
// The text elements: the labels (a text at an angle in a font that follows its owner's;
// axis titles and labels, the legend) and TKXChartHeader, the band of text and picture at
// the top or bottom of a panel.

#include <cstdint>
#include <string>

#include "kxcharts/core/KXChartGraphicArea.h"
#include "kxcharts/toolkit/chartkit/KXDeltaFont.h"
#include "kxcharts/toolkit/objects/KXClasses.h"

namespace kx {

// --- TKXCustomChartLabel ---

// A text drawn at an angle, aligned in its rectangle, in a font that follows the panel's.
class TKXCustomChartLabel : public TKXChartGraphic {
  KX_CLASS(TKXCustomChartLabel, TKXChartGraphic)

private:
  int32_t FAngle = 0;
  std::string FText;
  TOwned<TKXDeltaFont> FFont;
  TAlignment FAlignment = taCenter;

public:
  TKXCustomChartLabel() = default;

  // --- Properties ---

  TAlignment Alignment() const { return FAlignment; }
  void SetAlignment(TAlignment Value);
  std::string Text() const { return GetText(); }
  TKXDeltaFont* Font() const { return FFont.get(); }
  // Degrees counter-clockwise, kept as Value mod 360 (the sign stays); the font turns
  // with it.
  int32_t Angle() const { return FAngle; }
  void SetAngle(int32_t Value);

  // --- Operations ---

  // The text to draw; the label's own here, descendants may take it from elsewhere.
  virtual std::string GetText() const;
  virtual void SetText(const std::string& Value);
  // Assigns into the owned font and turns it by Angle. Raises no Changed of its own: the
  // font's change event does.
  virtual void SetFont(const TFont* Value);

  void Assign(const TPersistent* Source) override;

protected:
  // Nothing when the text is empty, the label invisible or fully transparent. Otherwise
  // the rotated text's box is aligned in ARect (left and right at its top, centre at its
  // centre) and the text written from its origin within that box.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // Assigns the font to the canvas.
  bool Drawing(TCanvas* Canvas, const TRect& ARect) override;
};

// The label with its appearance stored; its text comes from elsewhere (axis labels, the
// legend).
class TKXChartLabelMetaData : public TKXCustomChartLabel {
  KX_CLASS(TKXChartLabelMetaData, TKXCustomChartLabel)

public:
  TKXChartLabelMetaData() = default;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// The label with its text stored too (axis titles).
class TKXChartLabel : public TKXChartLabelMetaData {
  KX_CLASS(TKXChartLabel, TKXChartLabelMetaData)

public:
  TKXChartLabel() = default;

protected:
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXChartHeader ---

// The band of text (and picture) at the top of a panel (a header) or at its bottom (a
// footer).
class TKXChartHeader : public TKXChartImageArea {
  KX_CLASS(TKXChartHeader, TKXChartImageArea)

private:
  int32_t FAngle = 0;
  std::string FText;
  TAlignment FAlignment = taCenter;
  int32_t FHeight = 0;
  int32_t FWidth = 0;
  bool FIsHeader = false;
  TOwned<TKXDeltaFont> FFont;
  // The panel's font, only until AfterConstruction has taken it.
  const TFont* FOwnerFont = nullptr;

public:
  // A header without a panel (Clone, streaming); it draws as a footer.
  TKXChartHeader() = default;
  // A header (IsHeader) or a footer of a panel whose font is OwnerFont (may be nil).
  // OwnerFont need only live until New<> returns: the font takes a copy and records it as
  // the base of its differences (blue for a header, red for a footer), so that the panel
  // can pass later fonts on through Font()->ChangeBaseFont.
  TKXChartHeader(const TFont* OwnerFont, bool IsHeader)
      : FIsHeader(IsHeader), FOwnerFont(OwnerFont) {}

  // --- Properties ---

  TAlignment Alignment() const { return FAlignment; }
  void SetAlignment(TAlignment Value);
  int32_t Angle() const { return FAngle; }
  void SetAngle(int32_t Value);
  const std::string& Text() const { return FText; }
  void SetText(const std::string& Value);
  TKXDeltaFont* Font() const { return FFont.get(); }
  void SetFont(const TFont* Value);
  // The band's height in pixels: at least the font's Height.
  int32_t Height() const { return FHeight; }
  void SetHeight(int32_t Value);
  // Stored and copied; nothing paints by it.
  int32_t Width() const { return FWidth; }
  void SetWidth(int32_t Value);
  bool IsHeader() const { return FIsHeader; }

  // Copies everything but which band it is.
  void Assign(const TPersistent* Source) override;
  void AfterConstruction() override;

protected:
  // The band of Height pixels at the top (header) or bottom (footer) of ARect: the picture,
  // then the text aligned in it and clipped to it.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // Assigns the font to the canvas.
  bool Drawing(TCanvas* Canvas, const TRect& ARect) override;
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
