#pragma once
// The model of a layered directed graph: TKXGraphChartValue (a node: a shape value with a
// Level), TKXGraphChartValues (the nodes, kept in the order of their levels),
// TKXGraphChartLink (an edge to a target node) and TKXGraphChartLinks (a node's outgoing
// edges), with their enumerators.
//
// Links run downward. Raising a node's Level deletes its links to targets that are no
// longer deeper than it; nothing else is checked, and no search for cycles exists: a link
// made upward or to its own node stays until its owner's level changes. A link whose target
// is freed stays in its list without a target and draws nothing.
//
// A link's target is streamed as the target's index in the node collection ("ValueIndex")
// and resolved once the whole collection has been read (Loaded). Only a target in the same
// collection as the link's owner is written: an index into another chart's nodes would name
// the wrong node on reading.

#include <cstdint>
#include <string>
#include <vector>

#include "kxcharts/charts/KXShapeCharts.h"
#include "kxcharts/toolkit/chartkit/KXCommon.h"
#include "kxcharts/toolkit/graphics/KXGraphicObjects.h"

namespace kx {

class TKXGraphChart;
class TKXGraphChartValue;
class TKXGraphChartValues;

// In which direction the levels run, and so where a link leaves its node and enters its
// target.
enum TKXChartOrientation : uint8_t {
  orTopDown,   // levels from top to bottom; links leave the bottom, enter the top
  orBottomUp,  // from bottom to top; links leave the top, enter the bottom
  orLeftRight, // from left to right; links leave the right side, enter the left side
  orRightLeft  // from right to left; links leave the left side, enter the right side
};
KX_ENUM_NAMES(TKXChartOrientation, "orTopDown", "orBottomUp", "orLeftRight", "orRightLeft")

// Points in axis units through which a link is routed.
using TKXPoints = std::vector<TPointF>;

// --- TKXGraphChartLink ---

class TKXGraphChartLink : public TGCollectionItem {
  KX_CLASS(TKXGraphChartLink, TGCollectionItem)

private:
  TKXGraphChartValue* FValue = nullptr;
  std::string FCaption;
  TOwned<TPen> FPen;
  TKXPoints FLinePoints;
  TConnectionPoint FConnectionPoint = cpBottom;
  TConnectionPoint FValueConnectionPoint = cpTop;
  int32_t FValueIndex = -1;

public:
  explicit TKXGraphChartLink(TCollection* Collection);

  // --- Properties ---
  // The target node (not owned; a freed target leaves nil here).
  TKXGraphChartValue* Value() const { return FValue; }
  void SetValue(TKXGraphChartValue* AValue);
  // Text beside the arrow (shown when the chart shows value labels).
  const std::string& Caption() const { return FCaption; }
  void SetCaption(const std::string& Value);
  // The link's own pen: the owning node's Pen when made by Add, the chart's ArrowPen when
  // moved in from another node.
  TPen* Pen() const { return FPen.get(); }
  void SetPen(const TPen* Value);
  const TKXPoints& LinePoints() const { return FLinePoints; }
  void SetLinePoints(const TKXPoints& Value);
  // Where the link leaves its owner and where it enters its target.
  TConnectionPoint ConnectionPoint() const { return FConnectionPoint; }
  void SetConnectionPoint(TConnectionPoint Value);
  TConnectionPoint ValueConnectionPoint() const { return FValueConnectionPoint; }
  void SetValueConnectionPoint(TConnectionPoint Value);
  // The target's index as read from a stream; -1 for none.
  int32_t ValueIndex() const { return FValueIndex; }
  // The owning node, or nil.
  TKXGraphChartValue* Owner() const;

  // --- Operations ---
  // Both connection points from the direction of the levels.
  void ArrangeConnection(TKXChartOrientation Orientation);

  // --- Overrides ---
  // From another link: connection points, target, caption, pen and route, one change.
  void Assign(const TPersistent* Source) override;
  // Joins the collection (the chart gives its ArrowPen), then takes the owning node's pen.
  void AfterConstruction() override;
  // With the node collection at hand, ValueIndex names the target.
  void Loaded() override;
  void BeforeDestruction() override;

protected:
  // The target goes: no target.
  void Notification(TGCollectionItem* Item) override;
  // The caption, or the class name when it is empty.
  std::string GetDisplayName() const override;
  // Caption, Pen, ConnectionPoint, ValueConnectionPoint, ValueIndex.
  void DefineProperties(TFiler& Filer) override;

private:
  // The node collection the owner stands in, or nil.
  TKXGraphChartValues* Nodes() const;
};

using TKXGraphChartLinksEnumerator = TCollectionEnumeratorOf<TKXGraphChartLink>;

// --- TKXGraphChartLinks ---

class TKXGraphChartLinks : public TGCollection {
  KX_CLASS(TKXGraphChartLinks, TGCollection)

public:
  explicit TKXGraphChartLinks(TPersistent* AOwner);

  // --- Properties ---
  TKXGraphChartLink* Items(int32_t Index) const {
    return static_cast<TKXGraphChartLink*>(TCollection::Items(Index));
  }
  void SetItem(int32_t Index, const TKXGraphChartLink* Value) { TCollection::SetItem(Index, Value); }
  // The owning node, or nil when the owner is something else.
  TKXGraphChartValue* Owner() const;

  // --- Operations ---
  TKXGraphChartLink* Add() { return static_cast<TKXGraphChartLink*>(TCollection::Add()); }
  TKXGraphChartLink* Insert(int32_t Index) {
    return static_cast<TKXGraphChartLink*>(TCollection::Insert(Index));
  }
  TKXGraphChartLink* FindItemID(int32_t ID) const {
    return static_cast<TKXGraphChartLink*>(TCollection::FindItemID(ID));
  }
  TKXGraphChartLinksEnumerator GetEnumerator() const { return TKXGraphChartLinksEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }
  // ArrangeConnection of every link.
  virtual void ArrangeConnections(TKXChartOrientation Orientation);

protected:
  // Passed up to the owning node (and from there to the chart).
  void Notify(TCollectionItem* Item, TCollectionNotification Action) override;
  void Update(TCollectionItem* Item) override;
};

// --- TKXGraphChartValue ---

class TKXGraphChartValue : public TKXShapeChartValue {
  KX_CLASS(TKXGraphChartValue, TKXShapeChartValue)

private:
  TOwned<TKXGraphChartLinks> FLinks;

public:
  // Five numbers (X, Y, Width, Height, Level), also outside a collection.
  explicit TKXGraphChartValue(TCollection* Collection);

  // --- Properties ---
  // Counts from the root; a child stands deeper than its parent. Kept in dimension 4.
  int32_t Level() const { return GetIntValue(4); }
  void SetLevel(int32_t Value) { SetIntValue(4, Value); }
  TKXGraphChartLinks* Links() const { return FLinks.get(); }
  void SetLinks(const TKXGraphChartLinks* Value) { FLinks->Assign(Value); }
  // The collection, when it is a TKXGraphChartValues; else nil.
  TKXGraphChartValues* Collection() const;

  // --- Operations ---
  // A new node one level deeper with ACaption, and a link to it, connected for the chart's
  // orientation; nil (and nothing done) outside a collection.
  virtual TKXGraphChartValue* AddChild(const std::string& ACaption);
  // Deletes the links to targets not deeper than this node, then tells the collection.
  virtual void LevelChanged();
  // A link came or went, or changed: passed to the collection.
  virtual void LinksNotify(TKXGraphChartLink* Link, TCollectionNotification Action);
  virtual void LinksUpdate(TKXGraphChartLink* Link);

  // --- Overrides ---
  // From another node: its links (with the same targets); then the shape value's.
  void Assign(const TPersistent* Source) override;
  // The shape value's, then the links resolve their targets.
  void Loaded() override;
  void BeforeDestruction() override;

protected:
  // A change of Level runs LevelChanged.
  void ValueChanged(int32_t Dimension) override;
  // The shape value's, then Level (always) and Links.
  void DefineProperties(TFiler& Filer) override;
};

using TKXGraphChartValuesEnumerator = TCollectionEnumeratorOf<TKXGraphChartValue>;

// --- TKXGraphChartValues ---

class TKXGraphChartValues : public TKXShapeChartValues {
  KX_CLASS(TKXGraphChartValues, TKXShapeChartValues)

protected:
  const int32_t FLevelDim = 4;

public:
  // Five dimensions, sorted (when Sorted) by level.
  TKXGraphChartValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass);

  // --- Properties ---
  TKXGraphChartValue* Items(int32_t Index) const {
    return static_cast<TKXGraphChartValue*>(TKXChartValues::Items(Index));
  }
  void SetItem(int32_t Index, const TKXGraphChartValue* Value) {
    TKXChartValues::SetItem(Index, Value);
  }
  int32_t LevelDim() const { return FLevelDim; }
  // The chart, when it is a graph chart; else nil.
  TKXGraphChart* Graph() const;

  // --- Operations ---
  using TKXShapeChartValues::Add;
  TKXGraphChartValue* Add() { return static_cast<TKXGraphChartValue*>(TKXShapeChartValues::Add()); }
  TKXGraphChartValue* Add(double X, const std::string& Caption = "", TColor Color = TColor(-1),
                          int32_t ImageIndex = -1) {
    return static_cast<TKXGraphChartValue*>(TKXShapeChartValues::Add(X, Caption, Color, ImageIndex));
  }
  TKXGraphChartValue* Add(double X, double Y, const std::string& Caption = "",
                          TColor Color = TColor(-1), int32_t ImageIndex = -1) {
    return static_cast<TKXGraphChartValue*>(
        TKXShapeChartValues::Add(X, Y, Caption, Color, ImageIndex));
  }
  TKXGraphChartValue* Add(const TRectF& ARect, TKXShapeStyle Style, const std::string& Caption = "",
                          TColor Color = TColor(-1), int32_t ImageIndex = -1) {
    return static_cast<TKXGraphChartValue*>(
        TKXShapeChartValues::Add(ARect, Style, Caption, Color, ImageIndex));
  }
  TKXGraphChartValue* Insert(int32_t Index) {
    return static_cast<TKXGraphChartValue*>(TKXChartValues::Insert(Index));
  }
  TKXGraphChartValue* FindItemID(int32_t ID) const {
    return static_cast<TKXGraphChartValue*>(TKXChartValues::FindItemID(ID));
  }
  TKXGraphChartValuesEnumerator GetEnumerator() const { return TKXGraphChartValuesEnumerator(this); }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

  // Passed on to the graph chart, when there is one.
  virtual void LevelChanged(TKXGraphChartValue* Value);
  virtual void LinksNotify(TKXGraphChartLink* Link, TCollectionNotification Action);
  virtual void LinksUpdate(TKXGraphChartLink* Link);
};

} // namespace kx
