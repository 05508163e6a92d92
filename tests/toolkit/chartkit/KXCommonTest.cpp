#include "kxcharts/toolkit/chartkit/KXCommon.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kx {
namespace {

// A link to another item of any collection, dropped when that item goes.
class TLinkItem : public TGCollectionItem {
  KX_CLASS(TLinkItem, TGCollectionItem)
public:
  using TGCollectionItem::TGCollectionItem;
  TLinkItem* Target = nullptr;
  std::vector<std::string>* Journal = nullptr;
  int Tag = 0;
  void SetTarget(TLinkItem* Value) {
    if (Target) RemoveFreeNotification(Target);
    Target = Value;
    if (Value) FreeNotification(Value);
  }
  void Loaded() override {
    if (Journal) Journal->push_back("loaded " + std::to_string(Index()));
  }
  void Assign(const TPersistent* Source) override {
    if (Source == this) return;
    if (auto* S = dynamic_cast<const TLinkItem*>(Source)) {
      Tag = S->Tag;
      return;
    }
    inherited::Assign(Source);
  }

protected:
  void Notification(TGCollectionItem* Item) override {
    inherited::Notification(Item);
    if (Item == Target) Target = nullptr;
  }
};

TEST(GCollection, ALinkLosesItsTargetWhenTheTargetIsDeleted) {
  TOwned<TGCollection> Nodes(New<TGCollection>(nullptr, ClassOf<TLinkItem>()));
  TOwned<TGCollection> Links(New<TGCollection>(nullptr, ClassOf<TLinkItem>()));
  auto* Node = static_cast<TLinkItem*>(Nodes->Add());
  auto* L1 = static_cast<TLinkItem*>(Links->Add());
  auto* L2 = static_cast<TLinkItem*>(Links->Add());
  L1->SetTarget(Node);
  L2->SetTarget(Node);
  Nodes->Delete(0);
  EXPECT_EQ(L1->Target, nullptr);
  EXPECT_EQ(L2->Target, nullptr);

  // A link freed first leaves nothing in its target's list (ASan would see a stale one).
  auto* Node2 = static_cast<TLinkItem*>(Nodes->Add());
  L1->SetTarget(Node2);
  Links->Delete(0);
  Nodes->Clear();
  // Re-targeting drops the old link: the old target's deletion no longer reaches L2.
  auto* A = static_cast<TLinkItem*>(Nodes->Add());
  auto* B = static_cast<TLinkItem*>(Nodes->Add());
  L2->SetTarget(A);
  L2->SetTarget(B);
  A->Free();
  EXPECT_EQ(L2->Target, B);
}

TEST(GCollection, LoadedRunsOnEveryItemInIndexOrder) {
  std::vector<std::string> Journal;
  TOwned<TGCollection> C(New<TGCollection>(nullptr, ClassOf<TLinkItem>()));
  for (int I = 0; I < 3; ++I)
    static_cast<TLinkItem*>(C->Add())->Journal = &Journal;
  C->Loaded();
  EXPECT_EQ(Journal, (std::vector<std::string>{"loaded 0", "loaded 1", "loaded 2"}));
  std::vector<TGCollectionItem*> Walked(C->begin(), C->end());
  EXPECT_EQ(Walked.size(), 3u);
  EXPECT_THROW(New<TGCollection>(nullptr, ClassOf<TCollectionItem>()), Exception);
}

TEST(ClonePersistentClass, MakesTheSameClassWithTheSameContent) {
  TOwned<TLinkItem> Source(New<TLinkItem>(nullptr));
  Source->Tag = 7;
  TOwned<TLinkItem> Copy(ClonePersistentClass(Source.get()));
  EXPECT_EQ(Copy->ClassType(), ClassOf<TLinkItem>());
  EXPECT_EQ(Copy->Tag, 7);
  EXPECT_EQ(Copy->Collection(), nullptr);

  TOwned<TComponent> Comp(New<TComponent>(nullptr));
  // A plain component cannot take a link's content: the error passes, nothing leaks.
  EXPECT_THROW(ClonePersistentClass(Comp.get(), ClassOf<TLinkItem>()), EConvertError);
  EXPECT_THROW(ClonePersistentClass(Comp.get(), ClassOf<TObject>()), EConvertError);
  EXPECT_THROW(ClonePersistentClass(Source.get(), ClassOf<TCollection>()), Exception);
}

struct IListener {
  virtual ~IListener() = default;
};

TEST(KXAssignList, AssignCopiesTheEntriesAndRefusesStrangers) {
  IListener X, Y;
  TOwned<TKXAssignList<IListener*>> A(New<TKXAssignList<IListener*>>());
  TOwned<TKXAssignList<IListener*>> B(New<TKXAssignList<IListener*>>());
  A->Add(&X);
  A->Add(&Y);
  B->Add(&Y);
  B->Assign(A.get());
  EXPECT_EQ(B->Count(), 2);
  EXPECT_EQ(B->Items(0), &X);
  EXPECT_EQ(B->Remove(&X), 0);
  EXPECT_EQ(B->IndexOf(&X), -1);
  EXPECT_THROW(B->Items(1), EListError);
  TOwned<TKXAssignList<int>> Ints(New<TKXAssignList<int>>());
  EXPECT_THROW(B->Assign(Ints.get()), EConvertError);
}

} // namespace
} // namespace kx
