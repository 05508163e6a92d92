#pragma once
// Free outlines as values: TKXPathChart, and the path values with their collection.
//
// A path value carries an outline in path text (M, L and Z at least; see TKXPathData) and a
// rectangle in axis units, from its corner (X, Y) to (X + Width, Y + Height), into which the
// outline is fitted when drawn: stretched to fill it, or at equal scale with
// poPreserveAspectRatio. The outline keeps its own direction: its smallest Y lands at the
// top of the rectangle, whichever way the vertical axis runs.
//
// Each value keeps the path as given (Data) and a working copy in pixels (Current). The copy
// is rebuilt in a draw only when something moved: a number of the value, its Data, the draw
// rectangle, the axes, the control's size, or a legend picture drawn meanwhile. A repaint
// with nothing changed only fills and strokes the copies.
//
// A click selects by the path itself, tested in Data's own coordinates: right when those
// are the axis units, as with Add(Path, ...). A rectangle selects by the value's rectangle.

#include <cstdint>
#include <string>
#include <string_view>

#include "kxcharts/charts/KXXYChartValues.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/graphics/KXPathData.h"

namespace kx {

class TKXPathChartValues;

enum TPathOption : uint8_t {
  poPreserveAspectRatio // a path keeps its proportions inside its rectangle
};
KX_ENUM_NAMES(TPathOption, "poPreserveAspectRatio")
using TPathOptions = TSet<TPathOption>;

// --- TKXPathChartValue ---

class TKXPathChartValue : public TKX2DChartValue {
  KX_CLASS(TKXPathChartValue, TKX2DChartValue)

private:
  TOwned<TBrush> FBrush;
  TOwned<TPen> FPen;
  T2DTextAlignment FAlignment = tdMiddleCenter;
  TOwned<TFont> FFont;
  TOwned<TKXPathData> FCurrent;
  TOwned<TKXPathData> FData;
  bool FNeedPathUpdate = true;

public:
  // Four numbers (X, Y, Width, Height) also outside a collection of values.
  explicit TKXPathChartValue(TCollection* Collection);

  // --- Properties ---
  TBrush* Brush() const { return FBrush.get(); }
  void SetBrush(const TBrush* Value) { FBrush->Assign(Value); }
  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value) { FPen->Assign(Value); }
  TFont* Font() const { return FFont.get(); }
  void SetFont(const TFont* Value) { FFont->Assign(Value); }
  // Where the label stands in the value's rectangle.
  T2DTextAlignment Alignment() const { return FAlignment; }
  void SetAlignment(T2DTextAlignment Value);
  // The path as given, in its own coordinates. Bad path text raises EKXPathError naming
  // the position and leaves the path as it was.
  TKXPathData* Data() const { return FData.get(); }
  void SetData(const TKXPathData* Value) { FData->Assign(Value); }
  // The path as last drawn, in pixels.
  const TKXPathData* Current() const { return FCurrent.get(); }
  // Whether Current is out of date.
  bool NeedPathUpdate() const { return FNeedPathUpdate; }
  double Width() const { return GetValue(2); }
  void SetWidth(double Value) { TKXChartValue::SetValue(2, Value); }
  double Height() const { return GetValue(3); }
  void SetHeight(double Value) { TKXChartValue::SetValue(3, Value); }
  // (X, Y, X + Width, Y + Height); setting takes left, top, width and height, in one
  // change notice.
  TRectF ShapeRect() const;
  void SetShapeRect(const TRectF& Value);
  // The collection, when it is a TKXPathChartValues; else nil.
  TKXPathChartValues* Collection() const;

  // --- Operations ---
  // A change of the brush, the pen, the font or the path: Changed(false); the path's also
  // marks Current out of date.
  virtual void Changed(TObject* Sender);
  using TKX2DChartValue::Changed;
  // Rebuilds Current: Data fitted into ARect (pixels), stretched or at equal scale. A path
  // whose bounds have no width or no height stays in its own coordinates.
  virtual void UpdatePath(const TRectF& ARect, bool PreserveAspectRatio);

  // --- Overrides ---
  // Also the brush's colour.
  void SetColor(TColor Value) override;
  using TKX2DChartValue::Selectable;
  // A click (SelRect of no size) inside the path in Data's coordinates, or a rectangle that
  // meets ShapeRect; then the action rule of the base.
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;
  // From another path value: alignment, brush, pen, font and path, then TKXChartValue's.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // Marks Current out of date, then the base's.
  void ValueChanged(int32_t Dimension) override;
  // X, Y, Brush, Pen, Alignment, Font, Data (as its text), Width, Height.
  void DefineProperties(TFiler& Filer) override;
};

using TKXPathChartValuesEnumerator = TCollectionEnumeratorOf<TKXPathChartValue>;

// --- TKXPathChartValues ---

class TKXPathChartValues : public TKX2DChartValues {
  KX_CLASS(TKXPathChartValues, TKX2DChartValues)

protected:
  const int32_t FHeightDim = 3;
  const int32_t FWidthDim = 2;

public:
  TKXPathChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXPathChartValue* Items(int32_t Index) const {
    return static_cast<TKXPathChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXPathChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  int32_t WidthDim() const { return FWidthDim; }
  int32_t HeightDim() const { return FHeightDim; }

  // --- Operations ---
  using TKXChartValues::Add;
  // A value of no size and no path.
  TKXPathChartValue* Add() { return static_cast<TKXPathChartValue*>(TKX2DChartValues::Add()); }
  // The path placed on its own bounds: they become X, Y, Width and Height. Bad path text
  // raises EKXPathError naming the position, and nothing is added.
  TKXPathChartValue* Add(std::string_view Path, const std::string& Caption = "",
                         TColor Color = TColor(-1));
  // The path fitted into ARect, whose four numbers are left, top, right and bottom in axis
  // units. Bad path text raises as above, and nothing is added.
  TKXPathChartValue* Add(const TRectF& ARect, std::string_view Path,
                         const std::string& Caption = "", TColor Color = TColor(-1));
  TKXPathChartValue* Insert(int32_t Index) {
    return static_cast<TKXPathChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXPathChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXPathChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXPathChartValuesEnumerator GetEnumerator() const { return TKXPathChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

protected:
  // A path's extent is its rectangle: no indexed answer.
  bool GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const override;
  // X reaches to X + Width, Y to Y + Height, whichever way the size points.
  double GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const override;
  double GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const override;
  // The base's, then the extent of X and Y.
  void SetMetaData(TValueMetaData Data, const TKXChartValue* Value, int32_t Dimension) override;

private:
  TKXPathChartValue* AddPath(const double (&Numbers)[4], const TKXPathData& Path,
                             const std::string& Caption, TColor Color);
};

// --- TKXPathChart ---

class TKXPathChart : public TKXChart {
  KX_CLASS(TKXPathChart, TKXChart)

private:
  bool FUpdatePaths = false;
  TPathOptions FPathOptions;
  TRect FDrawnRect;
  // The zoomed ranges of both axes at the last draw: paths in pixels follow them.
  double FDrawnRanges[4] = {};

public:
  using TKXChart::TKXChart;

  // --- Properties ---
  // Every path is rebuilt in the next draw.
  bool UpdatePaths() const { return FUpdatePaths; }
  void SetUpdatePaths(bool Value) { FUpdatePaths = Value; }
  TPathOptions PathOptions() const { return FPathOptions; }
  void SetPathOptions(TPathOptions Value);
  TKXPathChartValues* Values() const {
    return static_cast<TKXPathChartValues*>(TKXCustomChart::Values());
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctPath; }

  // --- Operations ---
  // The value's rectangle in pixels in Rect (Y with the stacking offset), top above bottom.
  // Empty where a corner is not a finite number.
  TRectF GetShapeRect(const TRect& Rect, const TKXPathChartValue* Value) const;
  // Draws one value: rebuilds its Current when needed, fills and strokes it, and puts its
  // label in its rectangle.
  virtual void DrawPath(TCanvas* Canvas, const TRect& ARect, TKXPathChartValue* Value);

  // --- Overrides ---
  // The chart's brush, pen and font; for a value, its own, its pen one wider when selected
  // (coSelectionPen), its brush in the selection colour, its colour (coValueColors) or the
  // chart's.
  using TKXChart::SetCanvasResources;
  void SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                          bool AdjustPen) override;
  // The value's caption wrapped in ARect, placed by the value's Alignment.
  using TKXChart::DrawLabel;
  void DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // The value's path fitted into ARect; the next draw rebuilds every path.
  using TKXChart::DrawGlyph;
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // Every path is walked whatever the zoom.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;
  void Resize() override;

protected:
  // Value labels on.
  void InitializeChart() override;
  // TKXPathChartValues of TKXPathChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // A star, a hexagon and a cancel cross, each on its own bounds; also while loading.
  void CreatePreviewValues() override;
  // Each visible value through DrawPath; a new draw rectangle or new axis ranges rebuild
  // every path.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  // PathOptions.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
