// Deferred items of a collection: counted, placed and given their IDs when added, made from
// what the descendant kept the first time anything asks for them.
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kxcharts/toolkit/objects/KXClasses.h"

namespace kx {
namespace {

class TNumberItem : public TCollectionItem {
  KX_CLASS(TNumberItem, TCollectionItem)
public:
  using TCollectionItem::TCollectionItem;
  int Number = -1;
};

// Keeps the numbers of its deferred items by key, and writes down what it hears.
class TNumbers : public TCollection {
  KX_CLASS(TNumbers, TCollection)
public:
  TNumbers() : TCollection(ClassOf<TNumberItem>()) {}
  std::vector<int> Kept;
  int Made = 0, Done = 0, Notices = 0;
  bool MakeBadly = false;

  void AddNumbers(const std::vector<int>& Numbers) {
    const size_t Key = AddDeferred(Numbers.size());
    Kept.resize(Key + Numbers.size());
    std::copy(Numbers.begin(), Numbers.end(), Kept.begin() + std::ptrdiff_t(Key));
  }
  int NumberAt(int32_t I) const { return static_cast<TNumberItem*>(Items(I))->Number; }
  using TCollection::DeferredKey;

protected:
  TCollectionItem* MakeDeferredItem(int32_t, size_t Key) override {
    ++Made;
    if (MakeBadly) return nullptr;
    auto* Item = static_cast<TNumberItem*>(ItemClass()->Create(nullptr));
    Item->Number = Kept.at(Key);
    return Item;
  }
  void DeferredItemsDone() override {
    ++Done;
    Kept.clear();
  }
  void Notify(TCollectionItem*, TCollectionNotification) override { ++Notices; }
};

TOwned<TNumbers> Make() {
  return TOwned<TNumbers>(New<TNumbers>());
}

TEST(DeferredItems, AreCountedAtOnceAndMadeOnceWhenFirstAskedFor) {
  auto C = Make();
  C->Add();
  C->AddNumbers({10, 11, 12});
  C->Add();
  EXPECT_EQ(C->Count(), 5);
  EXPECT_EQ(C->DeferredCount(), 3);
  EXPECT_EQ(C->Notices, 2); // the two made by Add; the deferred ones are the adder's to tell
  size_t Key = 99;
  EXPECT_FALSE(C->DeferredKey(0, Key));
  ASSERT_TRUE(C->DeferredKey(2, Key));
  EXPECT_EQ(Key, 1u);

  TCollectionItem* Middle = C->Items(2);
  EXPECT_EQ(C->Made, 1);
  EXPECT_EQ(C->Items(2), Middle);
  EXPECT_EQ(C->Made, 1);
  EXPECT_EQ(C->NumberAt(2), 11);
  EXPECT_EQ(Middle->Index(), 2);
  EXPECT_EQ(Middle->Collection(), C.get());
  // IDs follow the order of adding, whenever an item is made.
  EXPECT_EQ(Middle->ID(), 2);
  EXPECT_EQ(C->Items(4)->ID(), 4);
  EXPECT_EQ(C->Notices, 2);

  EXPECT_EQ(C->FindItemID(3), C->Items(3));
  EXPECT_EQ(C->Made, 2);
  C->MakeDeferredItems();
  EXPECT_EQ(C->DeferredCount(), 0);
  EXPECT_EQ(C->Done, 1);
  EXPECT_EQ(C->NumberAt(1), 10);
}

TEST(DeferredItems, DeletingAtEitherEndLeavesTheRestDeferredInTheirPlaces) {
  auto C = Make();
  std::vector<int> Numbers(300);
  for (int I = 0; I < 300; ++I)
    Numbers[size_t(I)] = I;
  C->AddNumbers(Numbers);
  // Enough deletes at the front for the collection to reclaim its front slots.
  for (int I = 0; I < 250; ++I)
    C->Delete(0);
  C->Delete(C->Count() - 1);
  EXPECT_EQ(C->Count(), 49);
  EXPECT_EQ(C->DeferredCount(), 49); // each deleted one was made to be freed
  EXPECT_EQ(C->NumberAt(0), 250);
  EXPECT_EQ(C->NumberAt(25), 275);
  EXPECT_EQ(C->Items(25)->Index(), 25);
  EXPECT_EQ(C->NumberAt(48), 298);
}

TEST(DeferredItems, AMoveOrAnInsertMakesThemAllAndKeepsTheirNumbers) {
  for (int Case = 0; Case < 3; ++Case) {
    auto C = Make();
    C->AddNumbers({0, 1, 2, 3});
    std::vector<int> Expected{0, 1, 2, 3};
    if (Case == 0) {
      C->Items(3)->SetIndex(0);
      Expected = {3, 0, 1, 2};
    } else if (Case == 1) {
      C->Delete(1);
      Expected = {0, 2, 3};
    } else {
      static_cast<TNumberItem*>(C->Insert(2))->Number = 9;
      Expected = {0, 1, 9, 2, 3};
    }
    EXPECT_EQ(C->DeferredCount(), 0) << Case;
    ASSERT_EQ(C->Count(), int32_t(Expected.size()));
    for (int32_t I = 0; I < C->Count(); ++I) {
      EXPECT_EQ(C->NumberAt(I), Expected[size_t(I)]) << Case;
      EXPECT_EQ(C->Items(I)->Index(), I);
    }
  }
}

TEST(DeferredItems, StayRightUnderARandomMixOfChanges) {
  auto C = Make();
  std::vector<int> Model;
  std::mt19937 Rng(7);
  int Next = 0;
  for (int Step = 0; Step < 3000; ++Step) {
    const int N = int(Model.size());
    const unsigned Op = Rng() % 10;
    const auto Pick = [&](int Size) { return int32_t(Rng() % unsigned(Size)); };
    if (Op <= 1 || N < 2) {
      std::vector<int> Run(Rng() % 40);
      for (int& V : Run)
        V = Next++;
      C->AddNumbers(Run);
      Model.insert(Model.end(), Run.begin(), Run.end());
    } else if (Op == 2) {
      static_cast<TNumberItem*>(C->Add())->Number = Next;
      Model.push_back(Next++);
    } else if (Op <= 5) {
      C->Delete(0);
      Model.erase(Model.begin());
    } else if (Op == 6) {
      C->Delete(N - 1);
      Model.pop_back();
    } else if (Op == 7 && Step % 5 == 0) {
      const int32_t I = Pick(N);
      C->Delete(I);
      Model.erase(Model.begin() + I);
    } else {
      const int32_t I = Pick(N);
      ASSERT_EQ(C->NumberAt(I), Model[size_t(I)]) << "step " << Step;
    }
    ASSERT_EQ(C->Count(), int32_t(Model.size()));
  }
  for (int32_t I = 0; I < C->Count(); ++I) {
    ASSERT_EQ(C->NumberAt(I), Model[size_t(I)]);
    ASSERT_EQ(C->Items(I)->Index(), I);
  }
}

TEST(DeferredItems, AreDroppedUnmadeWithTheCollection) {
  TNumbers* C = New<TNumbers>();
  C->Add();
  C->AddNumbers(std::vector<int>(1000, 5));
  C->Free(); // a leak or a crash here is what the test is for
  SUCCEED();
}

TEST(DeferredItems, AMakerThatAnswersNoItemIsRefusedAndMayTryAgain) {
  auto C = Make();
  C->AddNumbers({1, 2});
  C->MakeBadly = true;
  EXPECT_THROW(C->Items(0), EListError);
  EXPECT_EQ(C->DeferredCount(), 2);
  C->MakeBadly = false;
  EXPECT_EQ(C->NumberAt(0), 1);
}

class TNoMaker : public TCollection {
  KX_CLASS(TNoMaker, TCollection)
public:
  TNoMaker() : TCollection(ClassOf<TNumberItem>()) {}
  using TCollection::AddDeferred;
};

TEST(DeferredItems, ACollectionThatKeepsNothingForThemCannotMakeThem) {
  TOwned<TNoMaker> C(New<TNoMaker>());
  EXPECT_EQ(C->AddDeferred(2), 0u);
  EXPECT_THROW(C->Items(1), EListError);
  EXPECT_THROW(C->AddDeferred(size_t(1) << 31), EListError);
  EXPECT_EQ(C->Count(), 2);
}

} // namespace
} // namespace kx
