#pragma once
// Bubble charts: three numbers per value, X, Y and a Size that gives the bubble's extent,
// and the start-up of their module. TKXBubbleChart, its values and their collection, and
// the free function Radius.
//
// Sizes are mapped between a smallest and a largest bubble, both fractions of the smaller
// of the two axis ranges, so that a bubble does not depend on the scale of its numbers. A
// bubble is round in axis units (an ellipse on axes of unequal scales) and keeps its size
// as the axes zoom. The collection is sorted by size, largest first, so that small bubbles
// are drawn over big ones, and the range of X and Y holds the largest bubble whole.
//
// Readings of points the behaviour leaves open:
// - All sizes equal (and not 0): every bubble is as large as the largest.
// - A bubble's pixel rectangle is put in normal form before it is drawn, so that an axis
//   that runs upward (or a reversed one) draws, shadows and labels it like any other.
// - A negative size drawn (NegativeSizeVisible) fills in NegativeSizeColor.
// - Without a chart, a value is hit within sqrt(Size / pi) / 2 (SizeOption szArea) or
//   Size / 2 of its centre; a negative or missing size within 0.

#include <cstdint>
#include <functional>
#include <string>

#include "kxcharts/charts/KXXYChartValues.h"
#include "kxcharts/core/KXCustomChart.h"
#include "kxcharts/toolkit/chartkit/KXVclGraphics.h"
#include "kxcharts/toolkit/graphics/KXBitmap.h"
#include "kxcharts/toolkit/graphics/KXGraphics.h"

namespace kx {

class TKXBubbleChart;
class TKXBubbleChartValues;

// --- Enumerations and free functions ---

// How a value's size reads: as a diameter (twice the size, twice as wide) or as an area.
enum TSizeOption : uint8_t { szDiameter, szArea };
KX_ENUM_NAMES(TSizeOption, "szDiameter", "szArea")

// The radius of a circle of area Size: sqrt(Size / pi).
double Radius(double Size);

// --- TKXBubbleChartValue ---

class TKXBubbleChartValue : public TKX2DImageChartValue {
  KX_CLASS(TKXBubbleChartValue, TKX2DImageChartValue)

public:
  // Three numbers (X, Y, Size), also outside a collection of values.
  explicit TKXBubbleChartValue(TCollection* Collection);

  // --- Properties ---
  double Size() const { return GetValue(2); }
  void SetSize(double Value) { TKXChartValue::SetValue(2, Value); }
  // Radius(Size) in a collection that reads sizes as areas; else Size / 2.
  double Radius() const;
  // The collection, when it is a TKXBubbleChartValues; else nil.
  TKXBubbleChartValues* Collection() const;

  using TKX2DImageChartValue::Selectable;
  // The square around (X, Y) of the bubble's radius in axis units (see the header).
  bool Selectable(const TRectF& SelRect, TKXChartSelectionAction Action) const override;

protected:
  // The default number is the size, with or without a collection.
  double GetDefValue() const override;
  void SetDefValue(double Value) override;
  // The image value's, then Size.
  void DefineProperties(TFiler& Filer) override;
};

using TKXBubbleChartValuesEnumerator = TCollectionEnumeratorOf<TKXBubbleChartValue>;

// --- TKXBubbleChartValues ---

class TKXBubbleChartValues : public TKX2DImageChartValues {
  KX_CLASS(TKXBubbleChartValues, TKX2DImageChartValues)

private:
  TSizeOption FSizeOption = szArea;
  const int32_t FSizeDim = 2;

public:
  // Three dimensions, the size the default one.
  TKXBubbleChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXBubbleChartValue* Items(int32_t Index) const {
    return static_cast<TKXBubbleChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXBubbleChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  // The chart, when it is a bubble chart; else nil.
  TKXBubbleChart* Owner() const;
  TSizeOption SizeOption() const { return FSizeOption; }
  // A change is a change of the collection.
  void SetSizeOption(TSizeOption Value);
  int32_t SizeDim() const { return FSizeDim; }

  // --- Operations ---
  using TKX2DImageChartValues::Add;
  // Size 0.
  TKXBubbleChartValue* Add();
  TKXBubbleChartValue* Add(double X, double Y, const std::string& Caption = "",
                           TColor Color = TColor(-1), int32_t ImageIndex = -1);
  TKXBubbleChartValue* Add(double X, double Y, double Size, const std::string& Caption = "",
                           TColor Color = TColor(-1), int32_t ImageIndex = -1);
  TKXBubbleChartValue* Insert(int32_t Index) {
    return static_cast<TKXBubbleChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXBubbleChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXBubbleChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXBubbleChartValuesEnumerator GetEnumerator() const {
    return TKXBubbleChartValuesEnumerator(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
  // The size a value counts with: |v| when v is not negative or the chart shows negative
  // sizes, else 0.
  double EffectiveSize(const TKXChartValue* Value) const;

  // From other bubble values: SizeOption, then the base's.
  void Assign(const TPersistent* Source) override;

protected:
  // The base's, then X and Y widened by half of the largest bubble.
  void CalculateMetaData() override;
  // The ranges are not the plain numbers: no indexed answer.
  bool GetIndexedExtent(int32_t Dimension, double& Lo, double& Hi) const override;
  // The effective size in the size dimension.
  double GetValueDimMaximum(const TKXChartValue* Value, int32_t Dimension) const override;
  double GetValueDimMinimum(const TKXChartValue* Value, int32_t Dimension) const override;
  void SetMetaData(TValueMetaData Data, const TKXChartValue* Value, int32_t Dimension) override;
  // The base's, then SizeOption against szArea.
  void DefineProperties(TFiler& Filer) override;
};

// --- TKXBubbleChart ---

using TKXBubbleChartValueDrawEvent = std::function<void(
    TObject* Sender, TCanvas* Canvas, const TRect& ARect, TKXBubbleChartValue* Value,
    bool& DefaultDraw)>;

class TKXBubbleChart : public TKXChart {
  KX_CLASS(TKXBubbleChart, TKXChart)

protected:
  TColor FNegativeSizeColor = clWhite;
  bool FNegativeSizeVisible = false;
  T2DTextAlignment FAlignment = tdMiddleCenter;
  TKXBubbleChartValueDrawEvent FOnCustomDrawValue;
  TKXShapeStyle FStyle = shpEllipse;
  float FMinBubbleSize = 0.05f;
  float FMaxBubbleSize = 0.25f;
  TImageList* FImageList = nullptr;

public:
  explicit TKXBubbleChart(TComponent* AOwner) : TKXChart(AOwner) {}

  // --- Properties ---
  T2DTextAlignment Alignment() const { return FAlignment; }
  void SetAlignment(T2DTextAlignment Value);
  // Values.SizeOption, which the values store.
  TSizeOption SizeOption() const { return Values()->SizeOption(); }
  void SetSizeOption(TSizeOption Value) { Values()->SetSizeOption(Value); }
  TColor NegativeSizeColor() const { return FNegativeSizeColor; }
  void SetNegativeSizeColor(TColor Value);
  // Whether values of a size below 0 are drawn; their absolute size counts in the ranges.
  bool NegativeSizeVisible() const { return FNegativeSizeVisible; }
  void SetNegativeSizeVisible(bool Value);
  // Stored and followed (a freed list leaves the chart); the bubbles draw no images.
  TImageList* ImageList() const { return FImageList; }
  void SetImageList(TImageList* Value);
  // The smallest bubble as a fraction of the smaller axis range: 0.01 up to MaxBubbleSize.
  float MinBubbleSize() const { return FMinBubbleSize; }
  void SetMinBubbleSize(float Value);
  // The largest bubble: MinBubbleSize up to 10.
  float MaxBubbleSize() const { return FMaxBubbleSize; }
  void SetMaxBubbleSize(float Value);
  // The shape of a bubble.
  TKXShapeStyle Style() const { return FStyle; }
  void SetStyle(TKXShapeStyle Value);
  TKXBubbleChartValues* Values() const {
    return static_cast<TKXBubbleChartValues*>(TKXCustomChart::Values());
  }

  // --- Events ---
  // Raised before each bubble is drawn, after its shadow; DefaultDraw false leaves out the
  // bubble and its label.
  const TKXBubbleChartValueDrawEvent& OnCustomDrawValue() const { return FOnCustomDrawValue; }
  void SetOnCustomDrawValue(TKXBubbleChartValueDrawEvent Value) {
    FOnCustomDrawValue = std::move(Value);
  }

  // --- Class-level ---
  static TKXChartType GetChartType() { return ctBubble; }

  // --- Operations ---

  // The radius of Value's bubble in axis units on the charts's axes (0 without them).
  double BubbleRadius(const TKXBubbleChartValue* Value) const;
  // Draws one bubble in ARect (pixels): its shadow, OnCustomDrawValue, the shape (grown by
  // the value's Scale) and its label.
  virtual void DrawBubble(TCanvas* Canvas, const TRect& ARect, TKXBubbleChartValue* Value);

  // --- Overrides ---
  // The value's caption (ValueLabelStyle) placed by Alignment in ARect, grown where the
  // text is wider or higher than the bubble.
  using TKXChart::DrawLabel;
  void DrawLabel(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // The value's bubble in ARect.
  using TKXChart::DrawGlyph;
  void DrawGlyph(TCanvas* Canvas, const TKXChartValue* Value, const TRect& ARect) override;
  // From another bubble chart: its settings and image list, then the base's.
  void Assign(const TPersistent* Source) override;
  void BeforeDestruction() override;
  // Every value, whatever the zoom: the values are in size order, not along an axis.
  void DoUpdateAxisInfo(TKXChartAxis* Axis) override;

protected:
  // The starting settings; values sorted by size, largest first.
  void InitializeChart() override;
  // TKXBubbleChartValues of TKXBubbleChartValue.
  TOwned<TKXChartValues> CreateChartValues() override;
  // Ten bubbles; nothing while loading.
  void CreatePreviewValues() override;
  // Every value in collection order; nothing when the largest size is 0.
  void InternalDraw(TCanvas* Canvas, const TRect& ARect) override;
  void Notification(TComponent* AComponent, TOperation Operation) override;
  // Alignment, NegativeSizeColor, NegativeSizeVisible, ImageList, MinBubbleSize,
  // MaxBubbleSize, Style.
  void DefineProperties(TFiler& Filer) override;

private:
  // The smaller axis range and the largest and smallest effective size, which every bubble
  // of one paint shares.
  struct TBubbleScale {
    double MinB = 0, MaxB = 0, SMin = 0, SMax = 0;
    bool Area = true;
  };
  TBubbleScale Scale() const;
  static double RadiusOn(const TBubbleScale& S, double Size);
};

// Registers the chart classes of this module, once. StartChartModules runs it; call that
// rather than this.
void StartBubbleChartsModule();

} // namespace kx
