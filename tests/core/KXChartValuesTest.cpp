#include "kxcharts/core/KXChartValues.h"

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXCoreTestSupport.h"
#include "kxcharts/toolkit/objects/KXLists.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::NumbersOf;
using test::TTestChart;
using test::TXYValues;

using test::Inf;
using test::NaN;

// A collection with no chart, of one or two dimensions.
struct TLooseValues {
  explicit TLooseValues(bool TwoDimensions = false)
      : V(TwoDimensions
              ? static_cast<TKXChartValues*>(New<TXYValues>(nullptr, ClassOf<TKXChartValue>()))
              : New<TKXChartValues>(nullptr, ClassOf<TKXChartValue>())) {}
  TKXChartValues* operator->() const { return V.get(); }
  TKXChartValues* get() const { return V.get(); }
  TOwned<TKXChartValues> V;
};

// A chart alone on a form, with two-dimensional values and a change counter.
struct TChartFixture {
  TChartFixture() {
    Form.reset(New<test::TTestForm>(nullptr));
    Chart = New<TTestChart>(Form.get());
    Chart->SetOnValueChange([this](TObject*, TKXChartValue*) { ++ValueChanges; });
  }
  TKXChartValues* Values() const { return Chart->Values(); }
  TOwned<test::TTestForm> Form;
  TTestChart* Chart = nullptr;
  int ValueChanges = 0;
};

// --- Sorted inserts ---

TEST(ChartValues, SortedInsertsKeepTheCollectionInOrder) {
  const struct {
    const char* Name;
    TSortOrder Order;
    std::vector<double> Added, Expected;
  } Cases[] = {
      {"TwoValuesSwapWithoutSearch", soAscending, {5, 3}, {3, 5}},
      {"ThirdValueSearches", soAscending, {5, 3, 4}, {3, 4, 5}},
      {"NewSmallestGoesFirst", soAscending, {5, 3, 4, 1}, {1, 3, 4, 5}},
      {"TimeSeriesStaysAppended", soAscending, {1, 2, 3, 4}, {1, 2, 3, 4}},
      {"EqualNeighboursStay", soAscending, {1, 4, 4, 9, 4}, {1, 4, 4, 4, 9}},
      {"Descending", soDescending, {3, 9, 1, 5}, {9, 5, 3, 1}},
      {"DescendingTwo", soDescending, {1, 2}, {2, 1}},
      {"NaNGoesLast", soAscending, {3, NaN, 1, 2}, {1, 2, 3, NaN}},
      {"NaNGoesLastDescending", soDescending, {NaN, 3, 1, NaN, 2}, {3, 2, 1, NaN, NaN}},
      {"InfinitiesAreNumbers", soAscending, {Inf, 0, -Inf, NaN, 1}, {-Inf, 0, 1, Inf, NaN}}};
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Name);
    TLooseValues V;
    V->SetSorted(true);
    V->SetSortOrder(C.Order);
    for (double X : C.Added)
      V->Add(X);
    const std::vector<double> Got = NumbersOf(V.get(), 0);
    ASSERT_EQ(Got.size(), C.Expected.size());
    for (size_t I = 0; I < Got.size(); ++I) {
      if (std::isnan(C.Expected[I]))
        EXPECT_TRUE(std::isnan(Got[I])) << "index " << I;
      else
        EXPECT_EQ(Got[I], C.Expected[I]) << "index " << I;
    }
  }
}

TEST(ChartValues, ChangedNumberMovesTheValueIntoPlaceAndKeepsItsIdentity) {
  TLooseValues V;
  V->SetSorted(true);
  for (double X : {1.0, 4.0, 9.0, 16.0})
    V->Add(X);
  TKXChartValue* Four = V->Items(1);
  const int32_t ID = Four->ID();
  Four->SetValue(12.0);
  EXPECT_EQ(NumbersOf(V.get(), 0), (std::vector<double>{1, 9, 12, 16}));
  EXPECT_EQ(Four->Index(), 2);
  EXPECT_EQ(Four->ID(), ID);
  Four->SetValue(5.0);
  EXPECT_EQ(NumbersOf(V.get(), 0), (std::vector<double>{1, 5, 9, 16}));
}

TEST(ChartValues, AnAddOrAChangedNumberInASortedChartIsToldOnceAndInsideABracketNotAtAll) {
  TChartFixture F;
  F.Values()->BeginUpdate();
  for (int I = 0; I < 50; ++I)
    F.Values()->Add(I);
  EXPECT_EQ(F.ValueChanges, 0);
  F.Values()->EndUpdate();
  EXPECT_EQ(F.ValueChanges, 1);
  F.Values()->Clear();
  F.Values()->SetSorted(true);
  F.Values()->SetSortByDimension(0);
  F.ValueChanges = 0;
  for (double X : {1.0, 2.0, 3.0})
    F.Values()->Add({X, X});
  EXPECT_EQ(F.ValueChanges, 3);
  F.ValueChanges = 0;
  F.Values()->Items(0)->SetValue(0, 10.0); // moves to the end
  EXPECT_EQ(F.ValueChanges, 1);
  EXPECT_EQ(NumbersOf(F.Values(), 0), (std::vector<double>{2, 3, 10}));
  F.Values()->Items(1)->SetValue(0, 3.5); // stays
  EXPECT_EQ(F.ValueChanges, 2);
}

// --- Limit ---

TEST(ChartValues, LimitDropsTheOldestOnAddAndTheNewestWhenLowered) {
  TLooseValues V;
  V->SetLimit(3);
  for (double X : {1.0, 2.0, 3.0, 4.0})
    V->Add(X);
  EXPECT_EQ(NumbersOf(V.get(), 0), (std::vector<double>{2, 3, 4}));

  TLooseValues W;
  for (double X : {1.0, 2.0, 3.0, 4.0, 5.0})
    W->Add(X);
  W->SetLimit(3);
  EXPECT_EQ(NumbersOf(W.get(), 0), (std::vector<double>{1, 2, 3}));
  W->SetLimit(-4);
  EXPECT_EQ(W->Limit(), 0);
  W->Add(6.0);
  EXPECT_EQ(W->Count(), 4);
}

TEST(ChartValues, LimitKeepsCountsAndDropsTheFirstPositionOfASortedCollection) {
  TLooseValues V;
  V->SetSorted(true);
  V->SetLimit(3);
  for (double X : {5.0, 1.0, 3.0})
    V->Add(X);
  V->Items(0)->SetVisible(false);
  V->Add(4.0); // position 0 (the 1) goes first, then 4 lands in place
  EXPECT_EQ(NumbersOf(V.get(), 0), (std::vector<double>{3, 4, 5}));
  EXPECT_EQ(V->VisibleCount(), 3);
}

// A live window of numbers with a NaN now and then keeps showing its latest numbers.
TEST(ChartValues, ALimitedWindowKeepsItsLatestNumbersAmongNaN) {
  std::vector<double> EverySeventhNaN;
  for (int I = 0; I < 70; ++I)
    EverySeventhNaN.push_back(I % 7 == 6 ? NaN : I);
  const struct {
    const char* Name;
    bool Sorted;
    TSortOrder Order;
    int32_t Limit;
    std::vector<double> Added, Expected;
  } Cases[] = {
      {"EverySeventhNaNAscending", true, soAscending, 10, EverySeventhNaN,
       {59, 60, 61, 63, 64, 65, 66, 67, 68, NaN}},
      // Value 0 of a descending window is its largest number, which goes as before; the NaN
      // go first all the same.
      {"EverySeventhNaNDescending", true, soDescending, 10, EverySeventhNaN,
       {9, 8, 7, 5, 4, 3, 2, 1, 0, NaN}},
      {"ANaNAtAFullWindowPushesOutValueZero", true, soAscending, 3, {1, 2, 3, NaN}, {2, 3, NaN}},
      {"TheNextNumberPushesOutTheNaN", true, soAscending, 3, {1, 2, 3, NaN, 4}, {2, 3, 4}},
      {"ANaNPushesOutAnOlderNaN", true, soAscending, 3, {1, NaN, 2, NaN}, {1, 2, NaN}},
      {"OnlyNaN", true, soAscending, 2, {NaN, NaN, NaN}, {NaN, NaN}},
      {"UnsortedDropsItsOldest", false, soAscending, 3, {1, NaN, 2, 3}, {NaN, 2, 3}},
  };
  for (const auto& C : Cases) {
    SCOPED_TRACE(C.Name);
    TLooseValues V;
    V->SetSortOrder(C.Order);
    V->SetSorted(C.Sorted);
    V->SetLimit(C.Limit);
    for (double X : C.Added)
      V->Add(X);
    const std::vector<double> Got = NumbersOf(V.get(), 0);
    ASSERT_EQ(Got.size(), C.Expected.size());
    for (size_t I = 0; I < Got.size(); ++I)
      EXPECT_TRUE(Got[I] == C.Expected[I] || (std::isnan(Got[I]) && std::isnan(C.Expected[I])))
          << "at " << I << ": " << Got[I] << " for " << C.Expected[I];
  }
}

// --- Setters that clamp, display names ---

TEST(ChartValue, ScaleAndOpacityAreClamped) {
  TLooseValues V;
  TKXChartValue* X = V->Add(1.0);
  const struct {
    float In, Scale, Opacity;
  } Cases[] = {{-1, 0, 0}, {2, 2, 1}, {0.5f, 0.5f, 0.5f}, {static_cast<float>(NaN), 0, 0}};
  for (const auto& C : Cases) {
    X->SetScale(C.In);
    X->SetOpacity(C.In);
    EXPECT_EQ(X->Scale(), C.Scale) << C.In;
    EXPECT_EQ(X->Opacity(), C.Opacity) << C.In;
  }
}

TEST(ChartValue, DisplayNameShowsCaptionAndNumbersAndAddTakesOnlyTheDimensions) {
  TLooseValues V(true);
  TKXChartValue* A = V->Add({1, 2});
  EXPECT_EQ(A->DisplayName(), "(1.00, 2.00)");
  A->SetCaption("A");
  EXPECT_EQ(A->DisplayName(), "A (1.00, 2.00)");
  EXPECT_EQ(A->ValuesToString("0", false), "1, 2");
  // Add takes as many numbers as the collection has dimensions.
  TKXChartValue* Three = V->Add({1, 2, 3});
  EXPECT_EQ(Three->ValueCount(), 2);
  EXPECT_EQ(Three->GetValue(1), 2.0);
  EXPECT_EQ(Three->GetValue(2), 0.0); // outside: 0, no read past the end
  TKXChartValue* One = V->Add({7});
  EXPECT_EQ(One->GetValue(0), 7.0);
  EXPECT_EQ(One->GetValue(1), 0.0);
  EXPECT_EQ(One->Value(), 0.0);          // the default dimension of these values is 1
  EXPECT_EQ(V->Add()->GetValue(0), 3.0); // Add() numbers a value by the count before it
}

class TFourValues : public TKXChartValues {
  KX_CLASS(TFourValues, TKXChartValues)

public:
  TFourValues(TKXCustomChart* O, TKXChartValueClass C) : TKXChartValues(O, C) {
    FNumDimensions = 4;
  }
};

TEST(ChartValue, ManyDimensionsLiveOnTheHeapAndSurviveAssign) {
  TOwned<TFourValues> V(New<TFourValues>(nullptr, ClassOf<TKXChartValue>()));
  TKXChartValue* A = V->Add({1, 2, 3, 4});
  TLooseValues Small;
  TKXChartValue* B = Small->Add(9.0);
  B->Assign(A);
  EXPECT_EQ(B->ValueCount(), 4);
  EXPECT_EQ(B->ValuesToString("0", true), "(1, 2, 3, 4)");
  A->Assign(Small->Add(5.0));
  EXPECT_EQ(A->ValuesToString("0", true), "(5)");
}

TEST(ChartValue, SettingTheSameNumberOrNaNOverNaNIsNoChange) {
  TChartFixture F;
  TKXChartValue* X = F.Values()->Add({1, 2});
  F.ValueChanges = 0;
  X->SetValue(1, 2.0);
  X->SetValue(1, NaN);
  X->SetValue(1, NaN);
  EXPECT_EQ(F.ValueChanges, 1);
}

// --- Counts ---

TEST(ChartValues, HidingThenDeletingLowersTheVisibleCountOnce) {
  TLooseValues V;
  for (int I = 0; I < 3; ++I)
    V->Add(I);
  V->Items(1)->SetVisible(false);
  V->Items(2)->SetSelected(true);
  EXPECT_EQ(V->VisibleCount(), 2);
  EXPECT_EQ(V->SelCount(), 1);
  V->Delete(1);
  V->Delete(1);
  EXPECT_EQ(V->VisibleCount(), 1);
  EXPECT_EQ(V->SelCount(), 0);
  V->SelectAll();
  EXPECT_EQ(V->SelCount(), 1);
  V->SelectNone();
  EXPECT_EQ(V->SelCount(), 0);
}

TEST(ChartValues, AssignedOptionsKeepTheCountsRight) {
  TLooseValues V;
  TKXChartValue* Hidden = V->Add(1.0);
  Hidden->SetVisible(false);
  Hidden->SetSelected(true);
  TLooseValues W;
  W->Assign(V.get());
  EXPECT_EQ(W->VisibleCount(), 0);
  EXPECT_EQ(W->SelCount(), 1);
  W->Items(0)->Assign(W->Add(2.0));
  EXPECT_EQ(W->VisibleCount(), 2);
  EXPECT_EQ(W->SelCount(), 0);
}

// --- Metadata ---

TEST(ChartValues, MetadataIsWorkedOutAfterEveryKindOfChange) {
  TLooseValues V;
  EXPECT_EQ(V->MinValue(), 0.0);
  EXPECT_EQ(V->GetAxisMaximum(1), -1.0);
  for (double X : {3.0, -2.0, 5.0})
    V->Add(X);
  V->Items(0)->SetVisible(false); // hidden values count too
  EXPECT_EQ(V->MinValue(), -2.0);
  EXPECT_EQ(V->MaxValue(), 5.0);
  EXPECT_EQ(V->Sum(), 6.0);
  EXPECT_EQ(V->AbsSum(), 10.0);
  V->Items(2)->SetValue(7.0);
  EXPECT_EQ(V->MaxValue(), 7.0);
  V->Delete(1);
  EXPECT_EQ(V->MinValue(), 3.0);
  V->Add(-9.0);
  EXPECT_EQ(V->MinValue(), -9.0);
  EXPECT_EQ(V->GetAxisMinimum(0), -9.0);
  EXPECT_EQ(V->GetAxisMaximum(3), 2.0); // no such dimension: the values are counted
  EXPECT_EQ(V->MaxValue(4), 0.0);
}

TEST(ChartValues, MetadataSkipsNumbersThatAreNotFinite) {
  TLooseValues V;
  for (double X : {NaN, Inf, 2.0, -Inf, -1.0, NaN})
    V->Add(X);
  EXPECT_EQ(V->MinValue(), -1.0);
  EXPECT_EQ(V->MaxValue(), 2.0);
  EXPECT_EQ(V->Sum(), 1.0);
  EXPECT_EQ(V->AbsSum(), 3.0);
  TLooseValues OnlyNaN;
  OnlyNaN->Add(NaN);
  EXPECT_EQ(OnlyNaN->MaxValue(), 0.0);
}

// --- Searching ---

TEST(ChartValues, FindClosestAnswersTheFirstValuePastTheNumber) {
  TLooseValues V;
  EXPECT_EQ(V->FindClosest(1.0), -1);
  for (double X : {1.0, 4.0, 9.0, NaN})
    V->Add(X);
  EXPECT_EQ(V->IndexOf(NaN, 0), 3);
  V->Delete(3);
  EXPECT_EQ(V->FindClosest(5.0), -1); // unsorted
  EXPECT_EQ(V->IndexOf(5.0, 0), -1);
  EXPECT_EQ(V->IndexOf(4.0, 0), 1);
  V->SetSorted(true);
  const struct {
    double X;
    int32_t Index;
  } Cases[] = {{5, 2}, {4, 1}, {0, 0}, {1, 0}, {10, 2}, {9, 2}, {NaN, 2}, {-Inf, 0}};
  for (const auto& C : Cases) {
    EXPECT_EQ(V->FindClosest(C.X), C.Index) << C.X;
    EXPECT_EQ(V->IndexOf(C.X, 0), C.Index) << C.X;
  }
  V->SetSortOrder(soDescending);
  V->SetSorted(false);
  V->Sort();
  EXPECT_EQ(NumbersOf(V.get(), 0), (std::vector<double>{9, 4, 1}));
  EXPECT_EQ(V->FindClosest(5.0), 1);
}

// --- Sorting ---

TEST(ChartValues, SortOrdersManyValuesWithNaNAtTheEnd) {
  for (TSortOrder Order : {soAscending, soDescending}) {
    TLooseValues V;
    V->SetSortOrder(Order);
    std::mt19937 Rng(7);
    std::uniform_real_distribution<double> D(-1000, 1000);
    V->BeginUpdate();
    for (int I = 0; I < 2000; ++I)
      V->Add(I % 97 == 0 ? NaN : std::round(D(Rng)));
    V->EndUpdate();
    V->Sort();
    ASSERT_TRUE(V->Sorted());
    const std::vector<double> N = NumbersOf(V.get(), 0);
    size_t FirstNaN = N.size();
    for (size_t I = 0; I < N.size(); ++I)
      if (std::isnan(N[I])) {
        FirstNaN = I;
        break;
      }
    for (size_t I = FirstNaN; I < N.size(); ++I)
      ASSERT_TRUE(std::isnan(N[I])) << I;
    for (size_t I = 1; I < FirstNaN; ++I)
      ASSERT_TRUE(Order == soAscending ? N[I - 1] <= N[I] : N[I - 1] >= N[I]) << I;
    // The searches agree with what Sort left.
    const double Probe = N[FirstNaN / 2];
    EXPECT_EQ(V->Items(V->FindClosest(Probe))->GetValue(0), Probe);
  }
}

TEST(ChartValues, SortOfAnAlreadySortedCollectionDoesNothing) {
  TLooseValues V;
  for (double X : {3.0, 1.0, 2.0})
    V->Add(X);
  V->SetSorted(true);
  V->Sort();
  EXPECT_EQ(NumbersOf(V.get(), 0), (std::vector<double>{3, 1, 2}));
}

TEST(ChartValues, SortByDimensionIsClampedAndReSorts) {
  TLooseValues V(true);
  V->Add({1, 30});
  V->Add({2, 10});
  V->Add({3, 20});
  V->SetSortByDimension(-1);
  EXPECT_EQ(V->SortByDimension(), 0);
  V->SetSorted(true);
  V->SetSortByDimension(7);
  EXPECT_EQ(V->SortByDimension(), 1);
  EXPECT_TRUE(V->Sorted());
  EXPECT_EQ(NumbersOf(V.get(), 1), (std::vector<double>{10, 20, 30}));
}

// --- Copies ---

TEST(ChartValues, CloneAppendAndAssignToStrings) {
  TLooseValues V(true);
  V->SetSorted(true);
  V->SetLimit(10);
  V->Add({1, 2}, "one");
  V->Add({2, 5});
  TOwned<TKXChartValues> Copy = V->Clone();
  EXPECT_EQ(Copy->ClassType(), V->ClassType());
  EXPECT_TRUE(Copy->Sorted());
  EXPECT_EQ(Copy->Limit(), 10);
  EXPECT_EQ(Copy->Items(0)->Caption(), "one");
  EXPECT_TRUE(Copy->HasCaptions());
  Copy->Append(V.get());
  EXPECT_EQ(Copy->Count(), 4);
  auto Lines = MakeOwned<TStringList>();
  Lines->Assign(V.get());
  ASSERT_EQ(Lines->Count(), 2);
  EXPECT_EQ(Lines->Strings(0), "one (1.00, 2.00)");
  EXPECT_EQ(Lines->Objects(1), V->Items(1));
}

TEST(ChartValues, NotifyTellsAddExtractAndDeleteButNotSortedMoves) {
  TLooseValues V;
  V->SetSorted(true);
  std::vector<std::string> Heard;
  V->SetOnNotify(
      [&](TKXChartValue*, TCollectionNotification A) { Heard.push_back(GetEnumName(A)); });
  V->Add(2.0);
  V->Add(1.0);
  V->Items(0)->SetValue(3.0);
  V->Delete(0);
  EXPECT_EQ(Heard, (std::vector<std::string>{"cnAdded", "cnAdded", "cnExtracting", "cnDeleting"}));
}

TEST(ChartValues, RefusesAClassThatIsNoValue) {
  EXPECT_THROW(TOwned<TKXChartValues>(New<TKXChartValues>(nullptr, ClassOf<TCollectionItem>())),
               Exception);
}

} // namespace
} // namespace kx
