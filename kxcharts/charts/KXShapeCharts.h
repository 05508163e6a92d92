#pragma once
// Labelled shapes on the plot: TKXCustomShapeChart (the base of the shape chart, of the chart
// in chart and of the graph chart), TKXShapeChart, and the shape values with their
// collection.
//
// A shape value is a rectangle in axis units, from its corner (X, Y) to (X + Width,
// Y + Height), drawn as one of the shapes of TKXShapeStyle with a brush, a pen, a font and
// a label alignment of its own. A new value takes all of these from the chart's
// DefaultShape; later changes of DefaultShape leave existing values alone. The range of a
// shape chart is the hull of its shapes.
//
// Drawing one shape runs: its shadow (in a panel that casts one), OnCustomDrawValue, the
// shape, its label. A descendant changes one step through DrawShape.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "kxcharts/charts/KXChartPointInfo.h"
#include "kxcharts/charts/KXPointCharts.h"

namespace kx {

class TKXShapeChartValues;
class TKXCustomShapeChart;

// Text in ARect as the label of a shape: wrapped at ARect's width, cut with an ellipsis
// where it runs out of room, placed by Alignment (also vertically when it wraps), without a
// box behind it, so that the shape shows through.
void DrawShapeLabel(TCanvas* Canvas, std::string_view Text, T2DTextAlignment Alignment,
                    const TRect& ARect);

// --- TKXShapeChartValue ---

class TKXShapeChartValue : public TKXPointChartValue {
  KX_CLASS(TKXShapeChartValue, TKXPointChartValue)

private:
  TKXShapeStyle FStyle = shpRectangle;
  TOwned<TBrush> FBrush;
  TOwned<TPen> FPen;
  T2DTextAlignment FAlignment = tdMiddleCenter;
  TOwned<TFont> FFont;

public:
  // Four numbers (X, Y, Width, Height); in a point chart's collection the size, the shape,
  // the brush and the pen of its PointsInfo, in a shape chart also the font and the
  // alignment of its DefaultShape.
  explicit TKXShapeChartValue(TCollection* Collection);

  // --- Properties ---
  TKXShapeStyle Style() const { return FStyle; }
  void SetStyle(TKXShapeStyle Value);
  TBrush* Brush() const { return FBrush.get(); }
  void SetBrush(const TBrush* Value) { FBrush->Assign(Value); }
  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value) { FPen->Assign(Value); }
  TFont* Font() const { return FFont.get(); }
  void SetFont(const TFont* Value) { FFont->Assign(Value); }
  // Where the label stands in the shape.
  T2DTextAlignment Alignment() const { return FAlignment; }
  void SetAlignment(T2DTextAlignment Value);
  double Width() const { return GetValue(2); }
  void SetWidth(double Value) { TKXChartValue::SetValue(2, Value); }
  double Height() const { return GetValue(3); }
  void SetHeight(double Value) { TKXChartValue::SetValue(3, Value); }
  // The diagonal, sqrt(Width^2 + Height^2) (0 when that is not above 0). Setting it scales
  // Width and Height by the new radius over the old one, or by the new radius itself when
  // the old one is 0, which leaves a shape of no size as it is.
  double Radius() const;
  void SetRadius(double Value);
  // The collection, when it is a TKXShapeChartValues; else nil.
  TKXShapeChartValues* Collection() const;

  // --- Operations ---
  // A change of the brush, the pen or the font: Changed(false).
  virtual void Changed(TObject* Sender);
  using TKXPointChartValue::Changed;

  // --- Overrides ---
  // Also the brush's colour.
  void SetColor(TColor Value) override;
  using TKXPointChartValue::Selectable;
  // The shape's rectangle meets SelRect, whatever its Style.
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;
  // From another shape value: alignment, style, brush, pen and font, then the base's.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // The point value's, then Style, Brush, Pen, Alignment, Font, Width, Height, Radius.
  void DefineProperties(TFiler& Filer) override;
};

using TKXShapeChartValuesEnumerator = TCollectionEnumeratorOf<TKXShapeChartValue>;

// --- TKXShapeChartValues ---

class TKXShapeChartValues : public TKXPointChartValues {
  KX_CLASS(TKXShapeChartValues, TKXPointChartValues)

protected:
  const int32_t FHeightDim = 3;
  const int32_t FWidthDim = 2;

public:
  TKXShapeChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXShapeChartValue* Items(int32_t Index) const {
    return static_cast<TKXShapeChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXShapeChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  int32_t WidthDim() const { return FWidthDim; }
  int32_t HeightDim() const { return FHeightDim; }

  // --- Operations ---
  // Sizes from the defaults (the chart's DefaultShape).
  using TKXPointChartValues::Add;
  TKXShapeChartValue* Add() { return static_cast<TKXShapeChartValue*>(TKXPointChartValues::Add()); }
  TKXShapeChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1),
                          int32_t ImageIndex = -1) {
    return static_cast<TKXShapeChartValue*>(TKXPointChartValues::Add(X, Caption, Color, ImageIndex));
  }
  TKXShapeChartValue* Add(double X, double Y, const std::string& Caption = "",
                          TColor Color = TColor(-1), int32_t ImageIndex = -1) {
    return static_cast<TKXShapeChartValue*>(
        TKXPointChartValues::Add(X, Y, Caption, Color, ImageIndex));
  }
  // ARect's four numbers, in order, as X, Y, Width and Height (its right is the width, not
  // right minus left), with the style; one change notice.
  TKXShapeChartValue* Add(const TRectF& ARect, TKXShapeStyle Style, const std::string& Caption = "",
                          TColor Color = TColor(-1), int32_t ImageIndex = -1);
  TKXShapeChartValue* Insert(int32_t Index) {
    return static_cast<TKXShapeChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXShapeChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXShapeChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXShapeChartValuesEnumerator GetEnumerator() const { return TKXShapeChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

protected:
  // The base's, then the point values' margins taken back: the hull of the shapes.
  void CalculateMetaData() override;
  // A shape's extent is not its corner: no indexed answer.
  bool GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const override;
  // X and Y reach from the corner to the far side, whichever way the size points.
  double GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const override;
  double GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const override;
  // The base's, then the far side of X and Y taken as the maximum. A shape that reaches past
  // both ends of the range so far widens both.
  void SetMetaData(TValueMetaData Data, const TKXChartValue* Value, int32_t Dimension) override;
};

// --- TKXCustomShapeChart ---

class TKXCustomShapeChart : public TKXCustomPointChart {
  KX_CLASS(TKXCustomShapeChart, TKXCustomPointChart)

public:
  using TKXCustomPointChart::TKXCustomPointChart;

  // --- Properties ---
  // What a new value takes (PointsInfo, typed); setting assigns into it.
  TKXCustomDefaultShape* DefaultShape() const {
    return static_cast<TKXCustomDefaultShape*>(PointsInfo());
  }
  void SetDefaultShape(const TKXCustomDefaultShape* Value) { PointsInfo()->Assign(Value); }
  TKXShapeChartValues* Values() const {
    return static_cast<TKXShapeChartValues*>(TKXCustomChart::Values());
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctShape; }

  // --- Operations ---

  // The shape's pixel rectangle in Rect: its corners through the axes (Y with the stacking
  // offset), top and bottom in order; left and right as the size points. Empty where a
  // corner is not a finite number.
  TRect GetShapeRect(const TRect& Rect, const TKXShapeChartValue* Value) const;
  // Draws one value: its shadow, OnCustomDrawValue (with the chart's Rect; the handler
  // finds the shape from the value), the shape (grown by the value's Scale) and its label.
  virtual void DrawShape(TCanvas* Canvas, const TRect& Rect, TKXShapeChartValue* Value);
  // A value came (cnAdded: it takes everything of DefaultShape) or goes.
  virtual void ValueNotify(TKXChartValue* Value, TCollectionNotification Action);

  // --- Overrides ---
  // The chart's brush, pen and font; for a value, its own, its pen one wider when selected
  // (coSelectionPen), its brush in the selection colour, its colour (coValueColors) or the
  // chart's.
  using TKXCustomPointChart::SetCanvasResources;
  void SetCanvasResources(TCanvas* Canvas, const TKXChartValue* Value, bool AdjustFont,
                          bool AdjustPen) override;
  // The value's caption (ValueLabelStyle) wrapped in ARect, placed by the value's Alignment;
  // the vertical place holds for wrapped text too.
  using TKXCustomPointChart::DrawLabel;
  void DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // The value's shape in ARect.
  using TKXCustomPointChart::DrawGlyph;
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;

protected:
  // A TKXDefaultShape.
  TOwned<TKXCustomChartPointInfo> CreatePointsInfo() override;
  // TKXShapeChartValues of TKXShapeChartValue, whose OnNotify runs ValueNotify.
  TOwned<TKXChartValues> CreateChartValues() override;
  // The point chart's, then the labels on.
  void InitializeChart() override;
  // Five labelled shapes.
  void CreatePreviewValues() override;
  // Every visible value of FirstIndex..LastIndex through DrawShape; no lines.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
};

// --- TKXShapeChart ---

class TKXShapeChart : public TKXCustomShapeChart {
  KX_CLASS(TKXShapeChart, TKXCustomShapeChart)

public:
  using TKXCustomShapeChart::TKXCustomShapeChart;

  TKXDefaultShape* DefaultShape() const {
    return static_cast<TKXDefaultShape*>(TKXCustomShapeChart::DefaultShape());
  }

protected:
  // ImageList, DefaultShape.
  void DefineProperties(TFiler& Filer) override;
};

} // namespace kx
