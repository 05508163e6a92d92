// Values added in bulk (AddValues) against the same values added one by one: the same
// numbers in the same places with the same colours, under every sort setting and Limit; and
// they stay unmade while only the summary and a reduced paint read them.
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KXChartsTestSupport.h"
#include "kxcharts/toolkit/objects/KXStreaming.h"
#include "support/KXTestSupport.h"

namespace kx {
namespace {

using test::TChartsForm;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();

struct TBulkCase {
  const char* Name;
  bool Sorted;
  TSortOrder Order;
  int32_t SortBy;
  int32_t Limit;
  std::vector<std::pair<double, double>> Before;
  std::vector<double> X, Y;
};

struct TTwin {
  TOwned<TChartsForm> Form{New<TChartsForm>(nullptr)};
  TKXLineChart* Chart = New<TKXLineChart>(Form.get());
  std::vector<std::string> Heard;

  TKX2DChartValues* Values() const { return Chart->Values(); }
  explicit TTwin(const TBulkCase& C) {
    TKX2DChartValues* V = Values();
    V->SetSorted(false);
    V->SetSortOrder(C.Order);
    V->SetSortByDimension(C.SortBy);
    V->SetSorted(C.Sorted);
    V->SetLimit(C.Limit);
    ColorListIndex = 0;
    for (const auto& [X, Y] : C.Before)
      V->Add(X, Y);
    ColorListIndex = 3;
  }
};

void PrintTo(const TBulkCase& C, std::ostream* Os) {
  *Os << C.Name;
}

// Numbers that are equal, NaN included.
bool Same(double A, double B) {
  return A == B || (std::isnan(A) && std::isnan(B));
}

class BulkValuesAgainstOneByOne : public testing::TestWithParam<TBulkCase> {};

TEST_P(BulkValuesAgainstOneByOne, HoldWhatAddingThemOneByOneHolds) {
  const TBulkCase& C = GetParam();
  TTwin One(C), Bulk(C);
  int Notices = 0;
  Bulk.Chart->SetOnValueChange([&](TObject*, TKXChartValue*) { ++Notices; });
  {
    TUpdateScope<TKXChartValues> Scope(One.Values());
    for (size_t K = 0; K < C.X.size(); ++K)
      One.Values()->Add(C.X[K], C.Y[K]);
  }
  const int32_t AfterOne = ColorListIndex;
  ColorListIndex = 3;
  Bulk.Values()->AddValues(C.X, C.Y);
  EXPECT_EQ(ColorListIndex, AfterOne) << "the palette walked another number of steps";
  EXPECT_EQ(Notices, 1);

  const TKX2DChartValues *A = One.Values(), *B = Bulk.Values();
  ASSERT_EQ(B->Count(), A->Count());
  std::set<int32_t> IDs;
  EXPECT_EQ(B->VisibleCount(), A->VisibleCount());
  EXPECT_EQ(B->MaxValue(1), A->MaxValue(1));
  EXPECT_EQ(B->MinValue(0), A->MinValue(0));
  for (int32_t I = 0; I < A->Count(); ++I) {
    EXPECT_TRUE(Same(B->Items(I)->X(), A->Items(I)->X())) << "X at " << I;
    EXPECT_TRUE(Same(B->Items(I)->Y(), A->Items(I)->Y())) << "Y at " << I;
    EXPECT_EQ(B->Items(I)->Color(), A->Items(I)->Color()) << "colour at " << I;
    EXPECT_EQ(B->Items(I)->Index(), I);
    IDs.insert(B->Items(I)->ID());
  }
  EXPECT_EQ(IDs.size(), size_t(B->Count()));
}

std::vector<double> Count(int N, double From = 0) {
  std::vector<double> R(static_cast<size_t>(N));
  for (int I = 0; I < N; ++I)
    R[size_t(I)] = From + I;
  return R;
}

INSTANTIATE_TEST_SUITE_P(
    , BulkValuesAgainstOneByOne,
    testing::Values(
        TBulkCase{"UnsortedAfterValues",
                  false,
                  soAscending,
                  0,
                  0,
                  {{0, 1}, {5, 2}},
                  {3, 1, NaN, 2},
                  {7, 8, 9, 10}},
        TBulkCase{"SortedRunAfterTheValues",
                  true,
                  soAscending,
                  0,
                  0,
                  {{0, 1}, {1, 2}},
                  Count(13, 2),
                  Count(13, 50)},
        TBulkCase{"SortedRunOutOfOrder",
                  true,
                  soAscending,
                  0,
                  0,
                  {},
                  {5, 1, 4, -Inf, 2, NaN, 3, 7, 1.5, 9, 8, 6, 0},
                  {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}},
        TBulkCase{
            "SortedDescending", true, soDescending, 0, 0, {{20, 0}}, {3, 9, 5, 1}, {1, 2, 3, 4}},
        TBulkCase{"SortedOnY", true, soAscending, 1, 0, {{0, -5}}, {1, 2, 3, 4}, {4, 2, 3, 1}},
        TBulkCase{"SortedRunAmongTheValues",
                  true,
                  soAscending,
                  0,
                  0,
                  {{0, 0}, {10, 1}},
                  {5, 6, 12},
                  {1, 2, 3}},
        TBulkCase{"LimitShorterThanTheRun",
                  false,
                  soAscending,
                  0,
                  5,
                  {{-1, 0}},
                  Count(12),
                  Count(12, 100)},
        TBulkCase{"LimitWithValuesThere",
                  true,
                  soAscending,
                  0,
                  6,
                  {{0, 0}, {1, 1}, {2, 2}, {3, 3}},
                  Count(4, 10),
                  Count(4)},
        TBulkCase{"LimitOnARunOutOfOrder",
                  true,
                  soAscending,
                  0,
                  4,
                  {},
                  {5, 1, 4, 2, 3, 0, 6},
                  {1, 2, 3, 4, 5, 6, 7}},
        TBulkCase{"LimitWithNaNInTheRun",
                  true,
                  soAscending,
                  0,
                  4,
                  {{-2, 0}, {NaN, 0}},
                  {1, NaN, 2, 3, NaN, 4, 5},
                  {1, 2, 3, 4, 5, 6, 7}},
        TBulkCase{"XThatStepsEvenly",
                  false,
                  soAscending,
                  0,
                  0,
                  {},
                  {0.1, 0.2, 0.30000000000000004, 0.4, 1e308, Inf},
                  Count(6)}),
    [](const testing::TestParamInfo<TBulkCase>& I) { return std::string(I.param.Name); });

// Whatever is done to a collection that holds values waiting to be made, it must end as the
// same collection filled one value at a time would.
TEST(BulkValues, EveryChangeAfterARunSeesTheValuesAsAdded) {
  struct TCase {
    const char* Name;
    std::function<void(TKX2DChartValues*)> Change;
  };
  const TCase Cases[] = {
      {"sorting them", [](TKX2DChartValues* V) { V->SetSorted(true); }},
      {"a lower Limit", [](TKX2DChartValues* V) { V->SetLimit(3); }},
      {"deleting in the middle", [](TKX2DChartValues* V) { V->Delete(3); }},
      {"deleting the first and the last",
       [](TKX2DChartValues* V) {
         V->Delete(0);
         V->Delete(V->Count() - 1);
       }},
      {"inserting", [](TKX2DChartValues* V) { V->Insert(2)->SetY(-1); }},
      {"moving", [](TKX2DChartValues* V) { V->Items(6)->SetIndex(1); }},
      {"clearing and adding", [](TKX2DChartValues* V) {
         V->Clear();
         V->Add(1, 2);
       }},
      {"hiding and selecting by ID",
       [](TKX2DChartValues* V) {
         V->FindItemID(4)->SetVisible(false);
         V->FindItemID(5)->SetSelected(true);
       }},
      {"reading through the enumerator",
       [](TKX2DChartValues* V) {
         for (TKX2DChartValue* P : *V)
           P->SetY(P->Y() * 2);
       }},
  };
  const std::vector<double> X{3, 1, 4, 1.5, 5, 9, 2, 6}, Y{1, 2, 3, 4, 5, 6, 7, 8};
  for (const TCase& C : Cases) {
    SCOPED_TRACE(C.Name);
    TTwin One(TBulkCase{}), Bulk(TBulkCase{});
    for (TTwin* T : {&One, &Bulk})
      T->Values()->SetSorted(false);
    ColorListIndex = 0;
    for (size_t K = 0; K < X.size(); ++K)
      One.Values()->Add(X[K], Y[K]);
    ColorListIndex = 0;
    Bulk.Values()->AddValues(X, Y);
    ASSERT_EQ(Bulk.Values()->DeferredCount(), int32_t(X.size()));
    // The palette is one for all: a value the change adds takes the same colour in both.
    for (TTwin* T : {&One, &Bulk}) {
      ColorListIndex = 5;
      C.Change(T->Values());
    }
    const TKX2DChartValues *A = One.Values(), *B = Bulk.Values();
    ASSERT_EQ(B->Count(), A->Count());
    EXPECT_EQ(B->VisibleCount(), A->VisibleCount());
    EXPECT_EQ(B->SelCount(), A->SelCount());
    EXPECT_EQ(B->MaxValue(1), A->MaxValue(1));
    for (int32_t I = 0; I < A->Count(); ++I) {
      SCOPED_TRACE(testing::Message() << "value " << I);
      EXPECT_EQ(B->Items(I)->X(), A->Items(I)->X());
      EXPECT_EQ(B->Items(I)->Y(), A->Items(I)->Y());
      EXPECT_EQ(B->Items(I)->Color(), A->Items(I)->Color());
      EXPECT_EQ(B->Items(I)->ID(), A->Items(I)->ID());
      EXPECT_EQ(B->Items(I)->Visible(), A->Items(I)->Visible());
    }
  }
}

TEST(BulkValues, AListenerHearsEveryValue) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Chart = New<TKXLineChart>(Form.get());
  int Added = 0;
  Chart->Values()->SetOnNotify([&](TKXChartValue* V, TCollectionNotification A) {
    if (A == cnAdded) {
      ++Added;
      EXPECT_EQ(V->Collection(), Chart->Values());
    }
  });
  Chart->Values()->AddValues(Count(7), Count(7));
  EXPECT_EQ(Added, 7);
  EXPECT_EQ(Chart->Values()->DeferredCount(), 0);
}

TEST(BulkValues, AnObserverHearsWhereTheRunBegan) {
  struct TObserver : IChartValuesObserver {
    std::vector<int32_t> Heard;
    void ValuesChanged(TKXChartValues*, int32_t Index) override { Heard.push_back(Index); }
  } Observer;
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  TKX2DChartValues* V = New<TKXLineChart>(Form.get())->Values();
  V->AddValues(Count(2), Count(2));
  V->AddObserver(&Observer);
  V->AddValues(Count(3, 5), Count(3));
  ASSERT_FALSE(Observer.Heard.empty());
  EXPECT_EQ(*std::min_element(Observer.Heard.begin(), Observer.Heard.end()), 2);
  V->RemoveObserver(&Observer);
}

TEST(BulkValues, YAloneTakesXOnFromTheLargestX) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  TKX2DChartValues* V = New<TKXLineChart>(Form.get())->Values();
  V->SetSorted(false); // the NaN stays where it was added
  const std::vector<double> Y{5, 6};
  V->AddValues(Y);
  EXPECT_EQ(V->Items(1)->X(), 1.0);
  V->Add(7.5, 0);
  V->Add(NaN, 0);
  V->AddValues(Y);
  EXPECT_EQ(V->Items(V->Count() - 2)->X(), 8.5);
  EXPECT_EQ(V->Items(V->Count() - 1)->X(), 9.5);
  EXPECT_EQ(V->Items(V->Count() - 1)->Y(), 6.0);
  // Add(Y) alone stays at the largest X, not one past it.
  EXPECT_EQ(V->Add(1.0)->X(), 9.5);

  TKX2DChartValues* NoX = New<TKXLineChart>(Form.get())->Values();
  NoX->SetSorted(false);
  NoX->Add(NaN, 1);
  NoX->AddValues(Y);
  EXPECT_EQ(NoX->Items(1)->X(), 0.0);
}

TEST(BulkValues, SpansOfTwoLengthsAreRefusedWithBoth) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  TKX2DChartValues* V = New<TKXLineChart>(Form.get())->Values();
  const std::string M = test::MessageOf<EListError>([&] { V->AddValues(Count(3), Count(2)); });
  EXPECT_NE(M.find("3 X and 2 Y"), std::string::npos) << M;
  EXPECT_EQ(V->Count(), 0);
  V->AddValues({}, {});
  EXPECT_EQ(V->Count(), 0);
}

TEST(BulkValues, AMadeValueIsAMemberLikeAnyOther) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Chart = New<TKXLineChart>(Form.get());
  TKX2DChartValues* V = Chart->Values();
  V->AddValues(Count(5), Count(5, 10));
  TKX2DChartValue* P = V->Items(2);
  EXPECT_EQ(P->Collection(), V);
  EXPECT_TRUE(P->Visible());
  P->SetY(100);
  EXPECT_EQ(V->MaxValue(1), 100.0);
  P->SetX(9); // the collection keeps itself sorted on X
  EXPECT_EQ(V->Items(4), P);
  EXPECT_EQ(V->Items(2)->X(), 3.0);
  P->SetSelected(true);
  EXPECT_EQ(V->SelCount(), 1);
}

TEST(BulkValues, AreWrittenWithTheFormAndReadBack) {
  StartChartsModule();
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Chart = New<TKXLineChart>(Form.get());
  Chart->SetName("Line");
  Chart->Values()->AddValues(Count(4, 1), std::vector<double>{2.5, 3.5, NaN, 5.5});
  const std::string Json = SaveFormToString(Form.get());
  TOwned<TChartsForm> Copy(New<TChartsForm>(nullptr));
  LoadFormFromString(Copy.get(), Json);
  auto* Read = static_cast<TKXLineChart*>(Copy->FindComponent("Line"));
  ASSERT_EQ(Read->Values()->Count(), 4);
  EXPECT_EQ(Read->Values()->Items(3)->X(), 4.0);
  EXPECT_EQ(Read->Values()->Items(3)->Y(), 5.5);
  EXPECT_TRUE(std::isnan(Read->Values()->Items(2)->Y()));
}

// A reduced paint reads the summary: a big run stays unmade but for the few values at the
// edges of the view, and the line is there.
TEST(BulkValues, AReducedPaintLeavesThemUnmade) {
  TOwned<TChartsForm> Form(New<TChartsForm>(nullptr));
  auto* Chart = New<TKXLineChart>(Form.get());
  Chart->SetOptions(Chart->Options() - coValueColors - coValueLabels);
  Chart->SetColor(clRed);
  Chart->Pen()->SetWidth(1);
  constexpr int N = 200000;
  std::vector<double> Y(N);
  for (int I = 0; I < N; ++I)
    Y[size_t(I)] = std::sin(I * 0.001) * 4 + 5;
  Chart->Values()->AddValues(Y);
  EXPECT_EQ(Chart->Values()->MaxValue(0), double(N - 1));
  test::FixAxes(Chart, N);
  Chart->VerticalAxis()->SetMaximum(10);
  TOwned<TBitmap> B = test::MakeBitmap(200, 100);
  Chart->Draw(B->Canvas(), {0, 0, 200, 100});
  EXPECT_GT(Chart->Values()->DeferredCount(), N - 10);
  EXPECT_GT(test::CountPixels(B.get(), [](TColor C) { return test::Near(C, clRed, 60); }), 200);
}

} // namespace
} // namespace kx
