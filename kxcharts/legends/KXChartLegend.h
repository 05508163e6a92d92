#pragma once
// TKXChartLegend: the legend of a chart panel, a box at one side of the plot area that
// lists either the panel's charts or the values of its active chart, each line with a
// glyph and a text. It gathers its lines lazily (again only after NeedsUpdate rises),
// measures them, tells the panel the rectangle it takes, and draws itself. Without a
// panel it lists only what the application gives it (Fixed lines, OnGetLegendStrings).
//
// The box, at laLeft, from the outside in: the margins (distance from the given
// rectangle), the outline, the margins again (inset of the content), then per line the
// glyph, a gap of 10 pixels and the text, at most MaxWidthPct per cent of the given
// rectangle's width wide. At laBottom and laTop the lines flow into columns.

#include <cstdint>
#include <functional>
#include <string>

#include "kxcharts/core/KXChartLabel.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/graphics/KXCanvas.h"
#include "kxcharts/toolkit/controls/KXControls.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"
#include "kxcharts/toolkit/objects/KXLists.h"
#include "kxcharts/toolkit/objects/KXObjectRect.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TKXCustomChartPanel;

// --- Enumerations and events ---

// Raised before a legend gathers its lines: lines added to Strings stand first.
using TGetStringsEvent = std::function<void(TObject* Sender, TStrings* Strings)>;

// The shape of the legend box.
enum TKXLegendRectStyle : uint8_t { lrsNone, lrsRectangle, lrsRoundRect };
KX_ENUM_NAMES(TKXLegendRectStyle, "lrsNone", "lrsRectangle", "lrsRoundRect")

// The side of the plot area the legend stands at.
enum TKXLegendAlignment : uint8_t { laLeft, laRight, laBottom, laTop };
KX_ENUM_NAMES(TKXLegendAlignment, "laLeft", "laRight", "laBottom", "laTop")

enum TKXLegendOption : uint8_t {
  loLargeGlyphs, // square glyphs; rows at least BoxSize high
  loChartGlyphs  // the chart draws the glyph instead of a colour box
};
KX_ENUM_NAMES(TKXLegendOption, "loLargeGlyphs", "loChartGlyphs")
using TKXLegendOptions = TSet<TKXLegendOption>;

// --- TKXChartLegend ---

class TKXChartLegend : public TKXChartLabelMetaData {
  KX_CLASS(TKXChartLegend, TKXChartLabelMetaData)

private:
  TOwned<TBrush> FBrush;
  TOwned<TPen> FPen;
  int32_t FMaxColumns = 10;
  int32_t FMaxRows = 10;
  int32_t FBoxSize = 10;
  int32_t FFirstIndex = 0;
  TKXLegendStyle FLegendStyle = lsAuto;
  TKXLegendTextStyle FTextStyle = ltsValue;
  TOwned<TKXObjectRect> FMargins;
  TKXLegendAlignment FAlign = laRight;
  TKXCustomChartPanel* FOwner = nullptr;
  bool FFixed = false;
  bool FNeedsUpdate = true;
  // Each line's object is the chart or value it stands for, or nil (not owned).
  TOwned<TStringList> FLines;
  bool FOverlay = false;
  TOwned<TKXChartShadow> FShadow;
  TKXLegendRectStyle FRectStyle = lrsRectangle;
  int32_t FMaxWidthPct = 25;
  bool FResizeBounds = true;
  TGetStringsEvent FOnGetLegendStrings;
  TKXLegendOptions FOptions;
  TVerticalAlignment FTextVerticalAlign = taVerticalCenter;

public:
  // A legend of no panel (a stand-alone box, Clone, streaming).
  TKXChartLegend() = default;
  // The legend of AOwner (may be nil): it takes the panel's font as it is then, and
  // follows the panel's later fonts in what it did not change itself.
  explicit TKXChartLegend(TKXCustomChartPanel* AOwner) : FOwner(AOwner) {}

  // --- Properties ---
  // (Setters store and call Changed only when the value differs.)

  TKXCustomChartPanel* Owner() const { return FOwner; }
  // The fill of the box (white at the start).
  TBrush* Brush() const { return FBrush.get(); }
  void SetBrush(const TBrush* Value) { FBrush->Assign(Value); }
  // The outline of the box and of the colour glyphs.
  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value) { FPen->Assign(Value); }
  // The most columns lines flow into; at least 1.
  int32_t MaxColumns() const { return FMaxColumns; }
  void SetMaxColumns(int32_t Value);
  // The most lines gathered for charts (values: one fewer) and the most rows drawn; at
  // least 1. A change gathers the lines again.
  int32_t MaxRows() const { return FMaxRows; }
  void SetMaxRows(int32_t Value);
  // The glyph's width in pixels; at least 4.
  int32_t BoxSize() const { return FBoxSize; }
  void SetBoxSize(int32_t Value);
  // The first chart or value listed, for scrolling; at least 0. A change gathers again.
  int32_t FirstIndex() const { return FFirstIndex; }
  void SetFirstIndex(int32_t Value);
  // What is listed; a change gathers again.
  TKXLegendStyle LegendStyle() const { return FLegendStyle; }
  void SetLegendStyle(TKXLegendStyle Value);
  // How a value reads; a change gathers again.
  TKXLegendTextStyle TextStyle() const { return FTextStyle; }
  void SetTextStyle(TKXLegendTextStyle Value);
  // Both outside and inside the box; a negative side is set to 0.
  TKXObjectRect* Margins() const { return FMargins.get(); }
  void SetMargins(const TKXObjectRect* Value) { FMargins->Assign(Value); }
  TKXLegendAlignment Align() const { return FAlign; }
  void SetAlign(TKXLegendAlignment Value);
  // True: Lines are the application's and are never gathered. Back to false, they are
  // gathered again at the next read.
  bool Fixed() const { return FFixed; }
  void SetFixed(bool Value);
  // The lines, gathered first when they must be (see GetLegendStrings).
  TStrings* Lines();
  // Assigns the strings and their objects; a legend of a panel at design time becomes
  // Fixed. Nil empties the lines.
  void SetLines(const TStrings* Value);
  // Whether the lines must be gathered again at the next read. The panel raises it when
  // what the legend lists may have changed.
  bool NeedsUpdate() const { return FNeedsUpdate; }
  void SetNeedsUpdate(bool Value) { FNeedsUpdate = Value; }
  // Painted over the charts rather than taking room from them.
  bool Overlay() const { return FOverlay; }
  void SetOverlay(bool Value);
  // The drop shadow of the box (visible at the start, 3 pixels).
  TKXChartShadow* Shadow() const { return FShadow.get(); }
  void SetShadow(const TKXChartShadow* Value) { FShadow->Assign(Value); }
  // Also gives the shadow the box's shape.
  TKXLegendRectStyle RectStyle() const { return FRectStyle; }
  void SetRectStyle(TKXLegendRectStyle Value);
  // The widest a line counts, in per cent of the given rectangle's width; 1 to 100.
  int32_t MaxWidthPct() const { return FMaxWidthPct; }
  void SetMaxWidthPct(int32_t Value);
  // Whether BoundsRect follows the content (true) or answers the whole given rectangle.
  bool ResizeBounds() const { return FResizeBounds; }
  void SetResizeBounds(bool Value);
  TKXLegendOptions Options() const { return FOptions; }
  void SetOptions(TKXLegendOptions Value);
  // Where a text stands within the height of its line.
  TVerticalAlignment TextVerticalAlign() const { return FTextVerticalAlign; }
  void SetTextVerticalAlign(TVerticalAlignment Value);

  // --- Events ---

  // Raised first when the lines are gathered; what it adds stands before the panel's
  // lines and counts towards MaxRows.
  const TGetStringsEvent& OnGetLegendStrings() const { return FOnGetLegendStrings; }
  void SetOnGetLegendStrings(TGetStringsEvent Value) { FOnGetLegendStrings = std::move(Value); }

  // --- Operations ---

  // The rectangle the legend takes from ARect, with the widest line's width (capped) in
  // LongestWidth: at the side named by Align, as large as the content and its margins, or
  // ARect itself without ResizeBounds. Sets the legend's font on Canvas to measure.
  TRect BoundsRect(TCanvas* Canvas, const TRect& ARect, int32_t& LongestWidth);
  // Value Index of Chart in TextStyle; "" without a chart.
  std::string FormatValue(const TKXCustomChart* Chart, int32_t Index) const;
  // Whether the lines stand for charts (rather than for the values of the active chart).
  bool IsShowingCharts() const;

  // Draws the glyph of line Index with its top left at (X, Y) and answers the line's
  // height: a box in the colour of the line's chart or value, or, with loChartGlyphs, the
  // chart's own glyph; nothing for a line without object, a plain box in the canvas's
  // brush colour for an object of another kind. A descendant may draw other glyphs.
  virtual int32_t DrawGlyph(TCanvas* Canvas, int32_t Index, int32_t X, int32_t Y);
  // Draws line Index at (X, Y): its glyph, then its text aligned by Alignment within Width
  // and by TextVerticalAlign within the line's height. The brush style is put back
  // afterwards, also when an exception passes.
  virtual void DrawLabel(TCanvas* Canvas, int32_t Index, int32_t X, int32_t Y, int32_t Width);
  // Gathers the lines: OnGetLegendStrings, the panel's OnGetLegendStrings, then from
  // FirstIndex on the visible charts that show in the legend (up to MaxRows lines) or the
  // visible values of the active chart (up to MaxRows - 1 lines). NeedsUpdate falls only
  // when all of that succeeded.
  virtual void GetLegendStrings();

  // The label's SetFont; the panel's font stays the base of the differences.
  void SetFont(const TFont* Value) override;
  // From another legend: brush, pen, the limits, styles, alignments, options, the lines,
  // Fixed, NeedsUpdate, margins, shadow, Overlay, MaxWidthPct and ResizeBounds; then the
  // label's properties.
  void Assign(const TPersistent* Source) override;
  // Takes the panel's font once the legend is made.
  void AfterConstruction() override;

protected:
  // The widest line in Canvas's measure, or the cap (MaxWidthPct per cent of ARect's
  // width) as soon as a line reaches it.
  int32_t LongestLine(TCanvas* Canvas, const TRect& ARect);
  // The size of the box with its inner margins and shadow, for the lines as they stand in
  // a column (laLeft, laRight) or flowing into as many columns as ARect's width holds; at
  // most MaxRows rows high, each column as wide as the row walk steps.
  TSize Size(TCanvas* Canvas, const TRect& ARect, int32_t& LongestWidth);

  // The shadow and the box on BoundsRect less the margins, then the lines walked row by
  // row, clipped to the box's inside on the panel's own canvas.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Initialize() override;
  void InitializeEvents() override;
  // Negative margins are set to 0 before anyone hears of them.
  void SenderChanged(TObject* Sender) override;
  // Alignment, Font, Angle, Opacity, Visible, Align, TextVerticalAlign, BoxSize, Fixed,
  // FirstIndex, Margins (sides that differ from 3, 4, 3, 4), MaxColumns, MaxRows, Lines
  // (only when Fixed), Brush, Pen, Shadow, Overlay, Options, LegendStyle, RectStyle,
  // TextStyle, MaxWidthPct.
  void DefineProperties(TFiler& Filer) override;

private:
  void MatchShadowToRectStyle();
  // How far the row walk moves from one column to the next: the widest line, the glyph
  // (square and at least TextHeight high with loLargeGlyphs), both side margins and the gap.
  int64_t ColumnStep(int64_t LongestWidth, int64_t TextHeight) const;
};


// --- Legend texts ---

// The text of a legend line for a chart or one of its values.
std::string GetLegendText(const TKXCustomChart* Chart, const TKXChartValue* Value,
                          TKXLegendStyle LegendStyle, TKXLegendTextStyle TextStyle);
// Whether a legend of that style lists charts: lsCharts and lsChartsLastValue always;
// lsAuto when the panel has more than one chart for the legend.
bool IsLegendShowingCharts(const TKXCustomChartPanel* Panel, TKXLegendStyle LegendStyle);

} // namespace kx
