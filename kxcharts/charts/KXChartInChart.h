#pragma once
// Shapes that hold whole charts: TKXChartInChart, and its values with their collection.
//
// A value is a shape of the shape chart (a rectangle in the parent's axis units, a style,
// brush, pen, font and label place) that may own or refer to a chart of any registered
// kind, its sub chart. The sub chart is drawn inside the shape, on two axes that the parent
// holds for all its sub charts and sets up anew for each: fitted to the sub chart's values
// unless OnUpdateAxis does it. A shape smaller than LabelThreshold pixels both ways draws its
// sub chart without value labels and axis labels; smaller than AxisThreshold both ways,
// without axes. The value's own label stands in a box beside the shape, by
// TextBoxAlignment.
//
// A sub chart made from a class or by SubChartType has no owner and lives and dies with its
// value. A chart handed in that has an owner stays with that owner; freed there, it leaves
// the value. A sub chart's changes repaint the parent, except while the parent draws it.
// A chart cannot hold itself or a chart that holds it (EKXChartException).

#include <cstdint>
#include <functional>
#include <string>

#include "kxcharts/axes/KXChartAxis.h"
#include "kxcharts/charts/KXShapeCharts.h"

namespace kx {

class TKXChartAxis;
class TKXChartInChartValues;
class TKXChartInChart;

// Raised for each shared axis before a sub chart is drawn; Handled true tells that the
// handler has set the axis's range itself.
using TKXChartAxisUpdateEvent =
    std::function<void(TObject* Sender, TKXChartAxis* Axis, bool& Handled)>;

// --- TKXChartInChartValue ---

class TKXChartInChartValue : public TKXShapeChartValue {
  KX_CLASS(TKXChartInChartValue, TKXShapeChartValue)

private:
  TKXCustomChart* FSubChart = nullptr;
  TKXChartType FSubChartType = ctCustom;
  T2DTextAlignment FTextBoxAlignment = tdBottomCenter;

public:
  using TKXShapeChartValue::TKXShapeChartValue;

  // --- Properties ---
  // Where the label's box stands beside the shape (tdMiddleCenter: over it).
  T2DTextAlignment TextBoxAlignment() const { return FTextBoxAlignment; }
  void SetTextBoxAlignment(T2DTextAlignment Value);
  // The kind of the sub chart, ctCustom for none. Setting another kind replaces the sub
  // chart by a new, empty chart of the first class registered for it (none when no class
  // is registered for the kind).
  TKXChartType SubChartType() const { return FSubChartType; }
  void SetSubChartType(TKXChartType Value);
  // The chart inside the shape. A chart that goes is freed when it has no owner, else it
  // only loses its OnChange; the new one's OnChange marks the value changed. The value's
  // own chart, or a chart that holds it, raises EKXChartException and changes nothing.
  TKXCustomChart* SubChart() const { return FSubChart; }
  void SetSubChart(TKXCustomChart* Value);
  // The collection, when it is a TKXChartInChartValues; else nil.
  TKXChartInChartValues* Collection() const;
  // The chart the value belongs to, or nil.
  TKXChartInChart* Chart() const;

  // --- Overrides ---
  // From another value of this kind: the box's place and a clone of its sub chart, then the
  // shape value's.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // The shape value's, then TextBoxAlignment and SubChartType.
  void DefineProperties(TFiler& Filer) override;
};

using TKXChartInChartValuesEnumerator = TCollectionEnumeratorOf<TKXChartInChartValue>;

// --- TKXChartInChartValues ---

class TKXChartInChartValues : public TKXShapeChartValues {
  KX_CLASS(TKXChartInChartValues, TKXShapeChartValues)

public:
  using TKXShapeChartValues::TKXShapeChartValues;

  // --- Properties ---
  TKXChartInChartValue* Items(int32_t Index) const {
    return static_cast<TKXChartInChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXChartInChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }

  // --- Operations ---
  // The shape values' forms, then the sub chart: a given chart, or a new chart of a class
  // with no owner. One change notice each.
  using TKXShapeChartValues::Add;
  TKXChartInChartValue* Add() {
    return static_cast<TKXChartInChartValue*>(TKXShapeChartValues::Add());
  }
  TKXChartInChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1),
                            int32_t ImageIndex = -1) {
    return static_cast<TKXChartInChartValue*>(
        TKXShapeChartValues::Add(X, Caption, Color, ImageIndex));
  }
  TKXChartInChartValue* Add(double X, double Y, const std::string& Caption = "",
                            TColor Color = TColor(-1), int32_t ImageIndex = -1) {
    return static_cast<TKXChartInChartValue*>(
        TKXShapeChartValues::Add(X, Y, Caption, Color, ImageIndex));
  }
  TKXChartInChartValue* Add(const TRectF& ARect, TKXShapeStyle Style,
                            const std::string& Caption = "", TColor Color = TColor(-1),
                            int32_t ImageIndex = -1) {
    return static_cast<TKXChartInChartValue*>(
        TKXShapeChartValues::Add(ARect, Style, Caption, Color, ImageIndex));
  }
  TKXChartInChartValue* Add(TKXChart* Chart, double X, const std::string& Caption = "",
                            TColor Color = TColor(-1), int32_t ImageIndex = -1);
  TKXChartInChartValue* Add(TKXCustomChartClass ChartClass, double X,
                            const std::string& Caption = "", TColor Color = TColor(-1),
                            int32_t ImageIndex = -1);
  TKXChartInChartValue* Add(TKXChart* Chart, double X, double Y, const std::string& Caption = "",
                            TColor Color = TColor(-1), int32_t ImageIndex = -1);
  TKXChartInChartValue* Add(TKXCustomChartClass ChartClass, double X, double Y,
                            const std::string& Caption = "", TColor Color = TColor(-1),
                            int32_t ImageIndex = -1);
  TKXChartInChartValue* Add(TKXChart* Chart, const TRectF& ARect, TKXShapeStyle Style,
                            const std::string& Caption = "", TColor Color = TColor(-1),
                            int32_t ImageIndex = -1);
  TKXChartInChartValue* Add(TKXCustomChartClass ChartClass, const TRectF& ARect,
                            TKXShapeStyle Style, const std::string& Caption = "",
                            TColor Color = TColor(-1), int32_t ImageIndex = -1);
  TKXChartInChartValue* Insert(int32_t Index) {
    return static_cast<TKXChartInChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXChartInChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXChartInChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXChartInChartValuesEnumerator GetEnumerator() const {
    return TKXChartInChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

private:
  // Value (just added) takes Chart, inside the bracket of its Add.
  static TKXChartInChartValue* WithChart(TKXShapeChartValue* Value, TKXCustomChart* Chart);
  static TKXCustomChart* MakeChart(TKXCustomChartClass ChartClass);
};

// --- TKXChartInChart ---

class TKXChartInChart : public TKXCustomShapeChart {
  KX_CLASS(TKXChartInChart, TKXCustomShapeChart)

private:
  TOwned<TKXChartAxis> FSubChartVerticalAxis;
  TOwned<TKXChartAxis> FSubChartHorizontalAxis;
  int32_t FLabelThreshold = 100;
  TKXChartAxisUpdateEvent FOnUpdateAxis;
  int32_t FAxisThreshold = 150;

public:
  explicit TKXChartInChart(TComponent* AOwner);
  ~TKXChartInChart() override;

  // --- Properties ---
  // Below this size in pixels, both ways, a sub chart is drawn without axes. Negative
  // numbers become 0 (axes at every size).
  int32_t AxisThreshold() const { return FAxisThreshold; }
  void SetAxisThreshold(int32_t Value);
  // Below this size in pixels, both ways, a sub chart is drawn without value labels and
  // axis labels and titles. Negative numbers become 0.
  int32_t LabelThreshold() const { return FLabelThreshold; }
  void SetLabelThreshold(int32_t Value);
  // The axes every sub chart is drawn on; setting assigns into them.
  TKXChartAxis* SubChartHorizontalAxis() const { return FSubChartHorizontalAxis.get(); }
  void SetSubChartHorizontalAxis(const TKXChartAxis* Value);
  TKXChartAxis* SubChartVerticalAxis() const { return FSubChartVerticalAxis.get(); }
  void SetSubChartVerticalAxis(const TKXChartAxis* Value);
  TKXChartInChartValues* Values() const {
    return static_cast<TKXChartInChartValues*>(TKXCustomChart::Values());
  }
  TKXDefaultShape* DefaultShape() const {
    return static_cast<TKXDefaultShape*>(TKXCustomShapeChart::DefaultShape());
  }

  // --- Events ---
  const TKXChartAxisUpdateEvent& OnUpdateAxis() const { return FOnUpdateAxis; }
  void SetOnUpdateAxis(TKXChartAxisUpdateEvent Value) { FOnUpdateAxis = std::move(Value); }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctChartInChart; }

  // --- Operations ---
  // Raises OnUpdateAxis for Axis before a sub chart is drawn; answers Handled.
  virtual bool UpdateAxis(TKXChartAxis* Axis);

  // --- Overrides ---
  // The shape (its shadow, OnCustomDrawValue, the shape), the sub chart in the room inside
  // the shape (in the whole shape when the handler drew it), then the label in its box.
  void DrawShape(TCanvas* Canvas, const TRect& Rect, TKXShapeChartValue* Value) override;
  // The sub chart's own picture; the shape's without one.
  using TKXCustomShapeChart::DrawGlyph;
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // From another chart in chart: both axes and both thresholds, then the point chart's.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;

protected:
  // Makes an axis of no panel at Location, its title turned on the sides, visible at the
  // left and the bottom, its changes the chart's.
  virtual TOwned<TKXChartAxis> CreateAxis(TKXChartAxisLocation Location);
  // A TKXDefaultShape placing labels at the top centre, in style 12.
  TOwned<TKXCustomChartPointInfo> CreatePointsInfo() override;
  // TKXChartInChartValues of TKXChartInChartValue, whose OnNotify runs ValueNotify.
  TOwned<TKXChartValues> CreateChartValues() override;
  // The shape chart's, the thresholds, the two axes.
  void InitializeChart() override;
  // Five shapes holding area and pie charts with their own samples; nothing while loading.
  void CreatePreviewValues() override;
  // A sub chart freed elsewhere leaves every value that held it.
  void Notification(TComponent* AComponent, TOperation Operation) override;
  // AxisThreshold, LabelThreshold, SubChartHorizontalAxis, SubChartVerticalAxis, ImageList,
  // DefaultShape.
  void DefineProperties(TFiler& Filer) override;

private:
  // The label's box: L moved by its own size towards the value's TextBoxAlignment.
  static TRect TextBox(const TRect& L, T2DTextAlignment Alignment);
  // Draws the value's sub chart in S on the shared axes, shedding axes and labels by the
  // thresholds, and puts everything it changed back.
  void DrawSubChart(TCanvas* Canvas, const TRect& S, TKXCustomChart* Sub);
};

} // namespace kx
