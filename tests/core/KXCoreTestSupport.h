#pragma once
// What the chart core tests share: a two-dimensional value collection, a small chart kind
// with sample values, a listener that writes down what it hears, a form to own them, and a
// form with a panel to put charts on.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/core/KXChartPanel.h"
#include "kxcharts/toolkit/objects/KXClasses.h"

namespace kx::test {

// Values with X in dimension 0 and Y in dimension 1, Y being the default.
class TXYValues : public TKXChartValues {
  KX_CLASS(TXYValues, TKXChartValues)

public:
  TXYValues(TKXCustomChart* AOwner, TKXChartValueClass ValueClass)
      : TKXChartValues(AOwner, ValueClass) {
    FNumDimensions = 2;
    FDefaultDimension = 1;
    FTimeDimension = 0;
  }
};

// A chart kind for tests: two-dimensional values, three sample values in preview.
class TTestChart : public TKXChart {
  KX_CLASS(TTestChart, TKXChart)

public:
  using TKXChart::TKXChart;
  static TKXChartType GetChartType() { return ctLine; }
  int32_t PreviewCalls = 0;

protected:
  TOwned<TKXChartValues> CreateChartValues() override {
    return MakeOwned<TXYValues>(this, ClassOf<TKXChartValue>());
  }
  void CreatePreviewValues() override {
    ++PreviewCalls;
    TUpdateScope<TKXChartValues> Scope(Values());
    Values()->Add({0, 1});
    Values()->Add({1, 3});
    Values()->Add({2, 2});
  }
};

// The owner of panels and charts, as a form would be.
class TTestForm : public TComponent {
  KX_CLASS(TTestForm, TComponent)

public:
  using TComponent::TComponent;
};

// Writes every notice down as one line ("ValueChanged Chart1 nil").
class TRecordingListener : public IChartPanelListener {
public:
  explicit TRecordingListener(std::vector<std::string>* Log = nullptr, std::string Prefix = "")
      : FLog(Log ? Log : &FOwnLog), FPrefix(std::move(Prefix)) {}

  std::vector<std::string>& Log() { return *FLog; }
  int Count(const std::string& Line) const;

  void PanelChange() override { Note("PanelChange"); }
  void ChartAdded(TKXCustomChart* Chart) override { Note("ChartAdded " + NameOf(Chart)); }
  void ChartDeleted(TKXCustomChart* Chart) override { Note("ChartDeleted " + NameOf(Chart)); }
  void ChartChanged(TKXCustomChart* Chart) override { Note("ChartChanged " + NameOf(Chart)); }
  void ValueChanged(TKXCustomChart* Chart, TKXChartValue* Value) override {
    Note("ValueChanged " + NameOf(Chart) + (Value ? " value" : " nil"));
  }
  void SelectionChanged(TObject* Sender) override {
    Note(std::string("SelectionChanged ") + (Sender ? Sender->ClassName() : "nil"));
  }
  void VisibleChanged(TObject* Sender) override {
    Note(std::string("VisibleChanged ") + (Sender ? Sender->ClassName() : "nil"));
  }

  static std::string NameOf(const TKXCustomChart* Chart) {
    return Chart ? (Chart->Name().empty() ? "?" : Chart->Name()) : "nil";
  }

private:
  void Note(const std::string& S) { FLog->push_back(FPrefix + S); }
  std::vector<std::string> FOwnLog;
  std::vector<std::string>* FLog;
  std::string FPrefix;
};

inline int TRecordingListener::Count(const std::string& Line) const {
  int N = 0;
  for (const std::string& S : *FLog)
    if (S == FPrefix + Line) ++N;
  return N;
}

// The numbers of one dimension, in index order.
inline std::vector<double> NumbersOf(const TKXChartValues* V, int32_t Dim) {
  std::vector<double> R;
  for (int32_t I = 0; I < V->Count(); ++I)
    R.push_back(V->Items(I)->GetValue(Dim));
  return R;
}

// A form with one panel, Panel1; charts are added by the tests.
class PanelFixture : public testing::Test {
protected:
  void SetUp() override {
    ColorListIndex = 0;
    Form.reset(New<TTestForm>(nullptr));
    Panel = New<TKXChartPanel>(Form.get());
    Panel->SetName("Panel1");
  }
  // A chart named Name on the panel, with the numbers Ys at X = 0, 1, ...
  TTestChart* AddChart(const std::string& Name, std::initializer_list<double> Ys = {}) {
    auto* C = New<TTestChart>(Form.get());
    C->SetName(Name);
    C->SetPanel(Panel);
    double X = 0;
    for (double Y : Ys)
      C->Values()->Add({X++, Y});
    return C;
  }
  TOwned<TTestForm> Form;
  TKXChartPanel* Panel = nullptr;
};

} // namespace kx::test
