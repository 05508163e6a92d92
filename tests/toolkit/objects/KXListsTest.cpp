#include "kxcharts/toolkit/objects/KXLists.h"

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace kx {
namespace {

std::vector<std::string> Heard;

class TJournalList : public TComponentList {
  KX_CLASS(TJournalList, TComponentList)
public:
  explicit TJournalList(bool Owns = false) : TComponentList(Owns) {}

protected:
  void Notify(void* Ptr, TListNotification Action) override {
    // Before the inherited call: an owning list frees what it deletes there.
    Heard.push_back(GetEnumName(Action) + " " + static_cast<TComponent*>(Ptr)->Name());
    inherited::Notify(Ptr, Action);
  }
};

TComponent* Named(const std::string& Name) {
  auto* C = New<TComponent>(nullptr);
  C->SetName(Name);
  return C;
}

TEST(List, EveryChangeOfMembershipIsNotified) {
  TOwned<TJournalList> L(New<TJournalList>());
  TOwned<TComponent> A(Named("A")), B(Named("B")), C(Named("C"));
  Heard.clear();
  L->Add(A.get());
  L->Insert(0, B.get());
  L->TList::Add(nullptr); // nil entries are not told
  L->SetItem(2, C.get());
  L->Extract(B.get());
  L->Remove(A.get());
  L->Add(B.get());
  L->Clear();
  EXPECT_EQ(Heard,
            (std::vector<std::string>{"lnAdded A", "lnAdded B", "lnAdded C", "lnExtracted B",
                                      "lnDeleted A", "lnAdded B", "lnDeleted B", "lnDeleted C"}));
}

TEST(ComponentList, AComponentFreedWhileListedLeavesTheList) {
  TOwned<TJournalList> L(New<TJournalList>());
  auto* A = Named("A");
  TOwned<TComponent> B(Named("B"));
  L->Add(A);
  L->Add(B.get());
  L->Add(A); // twice
  Heard.clear();
  A->Free();
  EXPECT_EQ(Heard, (std::vector<std::string>{"lnExtracted A", "lnExtracted A"}));
  ASSERT_EQ(L->Count(), 1);
  EXPECT_EQ(L->Items(0), B.get());
}

TEST(ComponentList, ADuplicateKeepsWatchingAndAListFreedFirstLeavesNoLinkBehind) {
  TOwned<TJournalList> L(New<TJournalList>());
  auto* A = Named("A");
  L->Add(A);
  L->Add(A);
  L->Delete(0);
  A->Free(); // still listed once: it must leave
  EXPECT_EQ(L->Count(), 0);
  TOwned<TComponent> B(Named("B"));
  L->Add(B.get());
  L.reset();
  B.reset(); // would touch the freed list's watcher if a link were left
}

TEST(ComponentList, AnOwningListFreesWhatItDeletes) {
  TOwned<TJournalList> L(New<TJournalList>(true));
  auto* Owner = Named("Owner");
  auto* A = New<TComponent>(Owner);
  New<TComponent>(Owner);
  L->Add(A);
  L->Delete(0); // A is freed and leaves its owner
  EXPECT_EQ(Owner->ComponentCount(), 1);
  L->Add(Owner->Components(0));
  L->Add(Owner);
  L.reset(); // frees Owner, whose child is then no longer listed: freed once
}

TEST(ThreadList, AddHonoursDuplicatesAndLockingKeepsConcurrentAddsWhole) {
  TThreadList<int> L;
  L.Add(1);
  L.Add(1);
  EXPECT_EQ(L.Count(), 1);
  L.SetDuplicates(dupError);
  EXPECT_THROW(L.Add(1), EListError);
  L.SetDuplicates(dupAccept);
  L.Add(1);
  EXPECT_EQ(L.Count(), 2);
  L.Clear();
  std::vector<std::thread> Threads;
  for (int T = 0; T < 4; ++T)
    Threads.emplace_back([&L, T] {
      for (int I = 0; I < 500; ++I)
        L.Add(T * 1000 + I);
    });
  for (auto& T : Threads)
    T.join();
  EXPECT_EQ(L.Count(), 2000);
  EXPECT_EQ(L.LockList()->size(), 2000u);
}

TEST(StringList, FindsWithoutRegardToCaseUnlessAskedAndSplitsText) {
  TOwned<TStringList> S(New<TStringList>());
  TOwned<TComponent> Tag(Named("Tag"));
  S->Add("alpha");
  EXPECT_EQ(S->AddObject("Beta", Tag.get()), 1);
  EXPECT_EQ(S->IndexOf("BETA"), 1);
  EXPECT_EQ(S->IndexOfObject(Tag.get()), 1);
  S->SetCaseSensitive(true);
  EXPECT_EQ(S->IndexOf("BETA"), -1);
  S->SetText("one\r\ntwo\nthree");
  std::vector<std::string> All(S->begin(), S->end());
  EXPECT_EQ(All, (std::vector<std::string>{"one", "two", "three"}));
  EXPECT_EQ(S->Text(), "one\ntwo\nthree\n");
}

TEST(StringList, ASortedListKeepsOrderAndAppliesDuplicates) {
  TOwned<TStringList> S(New<TStringList>());
  S->Add("pear");
  S->Add("Apple");
  S->SetSorted(true);
  S->Add("fig");
  S->Add("FIG");
  EXPECT_EQ(S->Text(), "Apple\nfig\npear\n");
  EXPECT_THROW(S->Insert(0, "x"), EListError);
  S->SetDuplicates(dupError);
  EXPECT_THROW(S->Add("Pear"), EListError);
  S->SetDuplicates(dupAccept);
  S->Add("Pear");
  EXPECT_EQ(S->Count(), 4);
  int32_t At = -1;
  EXPECT_FALSE(S->Find("grape", At));
  EXPECT_EQ(At, 2);
}

TEST(StringList, BracketsTurnManyChangesIntoOneChangeEvent) {
  TOwned<TStringList> S(New<TStringList>());
  int Changes = 0, Changings = 0;
  S->SetOnChange([&](TObject*) { ++Changes; });
  S->SetOnChanging([&](TObject*) { ++Changings; });
  S->Add("a");
  EXPECT_EQ(Changes, 1);
  S->BeginUpdate();
  S->Add("b");
  S->Add("c");
  S->Delete(0);
  S->EndUpdate();
  EXPECT_EQ(Changes, 2);
  EXPECT_EQ(Changings, 2);
  EXPECT_THROW(S->EndUpdate(), Exception);

  TOwned<TStringList> Copy(New<TStringList>());
  Copy->Assign(S.get());
  EXPECT_TRUE(Copy->Equals(S.get()));
  EXPECT_THROW(Copy->Assign(nullptr), EConvertError);
}

} // namespace
} // namespace kx
