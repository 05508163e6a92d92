#include "kxcharts/toolkit/objects/KXLists.h"

#include <algorithm>

namespace kx {

namespace {

[[noreturn]] void IndexError(long long Index) {
  throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
}

char LowerAscii(char C) {
  return (C >= 'A' && C <= 'Z') ? static_cast<char>(C - 'A' + 'a') : C;
}

int CompareText(std::string_view A, std::string_view B) {
  const size_t N = std::min(A.size(), B.size());
  for (size_t I = 0; I < N; ++I) {
    const auto CA = static_cast<unsigned char>(LowerAscii(A[I]));
    const auto CB = static_cast<unsigned char>(LowerAscii(B[I]));
    if (CA != CB) return CA < CB ? -1 : 1;
  }
  return A.size() == B.size() ? 0 : (A.size() < B.size() ? -1 : 1);
}

} // namespace

// --- TList ---

void TList::CheckIndex(int32_t Index) const {
  if (Index < 0 || Index >= Count()) IndexError(Index);
}

void* TList::Items(int32_t Index) const {
  CheckIndex(Index);
  return FList[static_cast<size_t>(Index)];
}

void TList::SetItem(int32_t Index, void* Item) {
  CheckIndex(Index);
  void* Old = FList[static_cast<size_t>(Index)];
  if (Old == Item) return;
  FList[static_cast<size_t>(Index)] = Item;
  if (Old) Notify(Old, lnDeleted);
  if (Item) Notify(Item, lnAdded);
}

void TList::SetCount(int32_t NewCount) {
  if (NewCount < 0) throw EListError("List count out of bounds (" + std::to_string(NewCount) + ")");
  if (NewCount > Count())
    FList.resize(static_cast<size_t>(NewCount), nullptr);
  else
    while (Count() > NewCount)
      Delete(Count() - 1);
}

void TList::SetCapacity(int32_t NewCapacity) {
  if (NewCapacity < Count())
    throw EListError("List capacity out of bounds (" + std::to_string(NewCapacity) + ")");
  if (static_cast<size_t>(NewCapacity) > FList.capacity())
    FList.reserve(static_cast<size_t>(NewCapacity));
  else
    FList.shrink_to_fit();
}

int32_t TList::Add(void* Item) {
  FList.push_back(Item);
  const int32_t Index = Count() - 1;
  if (Item) Notify(Item, lnAdded);
  return Index;
}

void TList::Insert(int32_t Index, void* Item) {
  if (Index < 0 || Index > Count()) IndexError(Index);
  FList.insert(FList.begin() + Index, Item);
  if (Item) Notify(Item, lnAdded);
}

void TList::Delete(int32_t Index) {
  CheckIndex(Index);
  void* Old = FList[static_cast<size_t>(Index)];
  FList.erase(FList.begin() + Index);
  if (Old) Notify(Old, lnDeleted);
}

int32_t TList::Remove(const void* Item) {
  const int32_t Index = IndexOf(Item);
  if (Index >= 0) Delete(Index);
  return Index;
}

void* TList::Extract(const void* Item) {
  const int32_t Index = IndexOf(Item);
  if (Index < 0) return nullptr;
  void* Result = FList[static_cast<size_t>(Index)];
  FList.erase(FList.begin() + Index);
  if (Result) Notify(Result, lnExtracted);
  return Result;
}

int32_t TList::IndexOf(const void* Item) const {
  auto It = std::find(FList.begin(), FList.end(), Item);
  return It == FList.end() ? -1 : static_cast<int32_t>(It - FList.begin());
}

void TList::Exchange(int32_t Index1, int32_t Index2) {
  CheckIndex(Index1);
  CheckIndex(Index2);
  std::swap(FList[static_cast<size_t>(Index1)], FList[static_cast<size_t>(Index2)]);
}

void TList::Move(int32_t CurIndex, int32_t NewIndex) {
  if (CurIndex == NewIndex) return;
  CheckIndex(CurIndex);
  CheckIndex(NewIndex);
  auto B = FList.begin();
  if (CurIndex < NewIndex)
    std::rotate(B + CurIndex, B + CurIndex + 1, B + NewIndex + 1);
  else
    std::rotate(B + NewIndex, B + CurIndex, B + CurIndex + 1);
}

void TList::Pack() {
  FList.erase(std::remove(FList.begin(), FList.end(), nullptr), FList.end());
}

void TList::Sort(const std::function<int(void*, void*)>& Compare) {
  std::sort(FList.begin(), FList.end(), [&](void* A, void* B) { return Compare(A, B) < 0; });
}

void TList::Clear() {
  SetCount(0);
  FList.shrink_to_fit();
}

void TList::Notify(void*, TListNotification) {}

void TList::BeforeDestruction() {
  Clear();
  inherited::BeforeDestruction();
}

// --- TComponentList ---

class TComponentListNexus : public TComponent {
  KX_CLASS(TComponentListNexus, TComponent)

public:
  using TComponent::TComponent;
  TComponentList* FList = nullptr;

protected:
  void Notification(TComponent* AComponent, TOperation Operation) override {
    if (Operation == opRemove && FList && AComponent) FList->HandleFreeNotify(AComponent);
    inherited::Notification(AComponent, Operation);
  }
};

TComponentList::TComponentList(bool AOwnsObjects)
    : FOwnsObjects(AOwnsObjects), FNexus(New<TComponentListNexus>(nullptr)) {
  FNexus->FList = this;
}

TComponentList::~TComponentList() {
  FNexus->FList = nullptr;
}

void TComponentList::Notify(void* Ptr, TListNotification Action) {
  auto* C = static_cast<TComponent*>(Ptr);
  if (Action == lnAdded) {
    FNexus->FreeNotification(C);
  } else if (IndexOf(C) < 0) {
    // The last occurrence left; a duplicate entry keeps the link alive.
    FNexus->RemoveFreeNotification(C);
  }
  inherited::Notify(Ptr, Action);
  if (Action == lnDeleted && FOwnsObjects && IndexOf(C) < 0) C->Free();
}

void TComponentList::HandleFreeNotify(TComponent* AComponent) {
  while (IndexOf(AComponent) >= 0)
    Extract(AComponent);
}

// --- TStrings ---

std::string TStrings::Text() const {
  std::string Result;
  for (int32_t I = 0; I < Count(); ++I) {
    Result += Get(I);
    Result += '\n';
  }
  return Result;
}

void TStrings::SetText(std::string_view Value) {
  TUpdateScope<TStrings> Scope(this);
  Clear();
  size_t Start = 0;
  while (Start < Value.size()) {
    size_t End = Value.find('\n', Start);
    if (End == std::string_view::npos) End = Value.size();
    std::string_view Line = Value.substr(Start, End - Start);
    if (!Line.empty() && Line.back() == '\r') Line.remove_suffix(1);
    Add(std::string(Line));
    Start = End + 1;
  }
}

int32_t TStrings::AddObject(const std::string& S, TObject* AObject) {
  const int32_t Index = Count();
  Insert(Index, S);
  PutObject(Index, AObject);
  return Index;
}

void TStrings::AddStrings(const TStrings* Strings) {
  TUpdateScope<TStrings> Scope(this);
  for (int32_t I = 0; I < Strings->Count(); ++I)
    AddObject(Strings->Get(I), Strings->GetObject(I));
}

void TStrings::InsertObject(int32_t Index, const std::string& S, TObject* AObject) {
  Insert(Index, S);
  PutObject(Index, AObject);
}

void TStrings::Exchange(int32_t Index1, int32_t Index2) {
  TUpdateScope<TStrings> Scope(this);
  const std::string S1 = Get(Index1);
  TObject* O1 = GetObject(Index1);
  Put(Index1, Get(Index2));
  PutObject(Index1, GetObject(Index2));
  Put(Index2, S1);
  PutObject(Index2, O1);
}

void TStrings::Move(int32_t CurIndex, int32_t NewIndex) {
  if (CurIndex == NewIndex) return;
  TUpdateScope<TStrings> Scope(this);
  const std::string S = Get(CurIndex);
  TObject* O = GetObject(CurIndex);
  if (NewIndex < 0 || NewIndex >= Count()) IndexError(NewIndex);
  Delete(CurIndex);
  InsertObject(NewIndex, S, O);
}

int32_t TStrings::IndexOf(std::string_view S) const {
  for (int32_t I = 0; I < Count(); ++I)
    if (CompareStrings(Get(I), S) == 0) return I;
  return -1;
}

int32_t TStrings::IndexOfObject(const TObject* AObject) const {
  for (int32_t I = 0; I < Count(); ++I)
    if (GetObject(I) == AObject) return I;
  return -1;
}

void TStrings::BeginUpdate() {
  if (FUpdateCount == 0) SetUpdateState(true);
  ++FUpdateCount;
}

void TStrings::EndUpdate() {
  if (FUpdateCount <= 0) throw Exception("EndUpdate without BeginUpdate on a " + ClassName());
  --FUpdateCount;
  if (FUpdateCount == 0) SetUpdateState(false);
}

bool TStrings::Equals(const TStrings* Strings) const {
  if (!Strings || Strings->Count() != Count()) return false;
  for (int32_t I = 0; I < Count(); ++I)
    if (Get(I) != Strings->Get(I) || GetObject(I) != Strings->GetObject(I)) return false;
  return true;
}

void TStrings::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (const auto* Src = dynamic_cast<const TStrings*>(Source)) {
    TUpdateScope<TStrings> Scope(this);
    Clear();
    AddStrings(Src);
    return;
  }
  inherited::Assign(Source);
}

TObject* TStrings::GetObject(int32_t) const {
  return nullptr;
}

void TStrings::Put(int32_t Index, const std::string& S) {
  TObject* O = GetObject(Index);
  Delete(Index);
  InsertObject(Index, S, O);
}

void TStrings::PutObject(int32_t, TObject*) {}

void TStrings::SetUpdateState(bool) {}

int TStrings::CompareStrings(std::string_view S1, std::string_view S2) const {
  return CompareText(S1, S2);
}

// --- TStringList ---

void TStringList::CheckIndex(int32_t Index) const {
  if (Index < 0 || Index >= Count()) IndexError(Index);
}

std::string TStringList::Get(int32_t Index) const {
  CheckIndex(Index);
  return FList[static_cast<size_t>(Index)].FString;
}

TObject* TStringList::GetObject(int32_t Index) const {
  CheckIndex(Index);
  return FList[static_cast<size_t>(Index)].FObject;
}

void TStringList::Put(int32_t Index, const std::string& S) {
  if (FSorted) throw EListError("Operation not allowed on sorted list");
  CheckIndex(Index);
  Changing();
  FList[static_cast<size_t>(Index)].FString = S;
  Changed();
}

void TStringList::PutObject(int32_t Index, TObject* AObject) {
  CheckIndex(Index);
  Changing();
  FList[static_cast<size_t>(Index)].FObject = AObject;
  Changed();
}

void TStringList::InsertItem(int32_t Index, const std::string& S, TObject* AObject) {
  Changing();
  FList.insert(FList.begin() + Index, TStringItem{S, AObject});
  Changed();
}

int32_t TStringList::AddObject(const std::string& S, TObject* AObject) {
  int32_t Index = Count();
  if (FSorted && Find(S, Index)) {
    if (FDuplicates == dupIgnore) return Index;
    if (FDuplicates == dupError) throw EListError("String list does not allow duplicates");
  }
  InsertItem(Index, S, AObject);
  return Index;
}

void TStringList::Insert(int32_t Index, const std::string& S) {
  if (FSorted) throw EListError("Operation not allowed on sorted list");
  if (Index < 0 || Index > Count()) IndexError(Index);
  InsertItem(Index, S, nullptr);
}

void TStringList::Clear() {
  if (FList.empty()) return;
  Changing();
  FList.clear();
  Changed();
}

void TStringList::Delete(int32_t Index) {
  CheckIndex(Index);
  Changing();
  FList.erase(FList.begin() + Index);
  Changed();
}

void TStringList::Exchange(int32_t Index1, int32_t Index2) {
  CheckIndex(Index1);
  CheckIndex(Index2);
  Changing();
  std::swap(FList[static_cast<size_t>(Index1)], FList[static_cast<size_t>(Index2)]);
  Changed();
}

bool TStringList::Find(std::string_view S, int32_t& Index) const {
  // Lower bound, so that among equal strings the first is found.
  int32_t Low = 0;
  int32_t High = Count();
  while (Low < High) {
    const int32_t Mid = Low + (High - Low) / 2;
    if (CompareStrings(FList[static_cast<size_t>(Mid)].FString, S) < 0)
      Low = Mid + 1;
    else
      High = Mid;
  }
  Index = Low;
  return Low < Count() && CompareStrings(FList[static_cast<size_t>(Low)].FString, S) == 0;
}

int32_t TStringList::IndexOf(std::string_view S) const {
  if (!FSorted) return TStrings::IndexOf(S);
  int32_t Index = 0;
  return Find(S, Index) ? Index : -1;
}

void TStringList::Sort() {
  Changing();
  std::stable_sort(FList.begin(), FList.end(), [this](const TStringItem& A, const TStringItem& B) {
    return CompareStrings(A.FString, B.FString) < 0;
  });
  Changed();
}

void TStringList::SetSorted(bool Value) {
  if (FSorted == Value) return;
  if (Value) Sort();
  FSorted = Value;
}

void TStringList::SetCaseSensitive(bool Value) {
  if (FCaseSensitive == Value) return;
  FCaseSensitive = Value;
  if (FSorted) Sort();
}

int TStringList::CompareStrings(std::string_view S1, std::string_view S2) const {
  if (!FCaseSensitive) return CompareText(S1, S2);
  const int R = S1.compare(S2);
  return R < 0 ? -1 : (R > 0 ? 1 : 0);
}

void TStringList::SetUpdateState(bool Updating) {
  if (Updating)
    Changing();
  else
    Changed();
}

void TStringList::Changed() {
  if (UpdateCount() == 0 && FOnChange) FOnChange(this);
}

void TStringList::Changing() {
  if (UpdateCount() == 0 && FOnChanging) FOnChanging(this);
}

} // namespace kx
