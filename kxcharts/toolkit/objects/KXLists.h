#pragma once
// Lists of the platform: TList of pointers with its notifications, TComponentList (a
// component freed while in the list leaves it), TThreadList behind a lock, and the string
// lists TStrings/TStringList.

#include <cstdint>
#include <functional>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "kxcharts/toolkit/objects/KXClasses.h"

namespace kx {

enum TListNotification : uint8_t { lnAdded, lnExtracted, lnDeleted };
KX_ENUM_NAMES(TListNotification, "lnAdded", "lnExtracted", "lnDeleted")

enum TDuplicates : uint8_t { dupIgnore, dupAccept, dupError };
KX_ENUM_NAMES(TDuplicates, "dupIgnore", "dupAccept", "dupError")

// Walks anything with Count() and Items(i) by index, reading Count afresh at each step, so
// that entries removed during the walk end it early instead of reading freed memory.
template <class TContainer, class TValue> class TIndexIterator {
public:
  using iterator_category = std::input_iterator_tag;
  using value_type = TValue;
  using difference_type = std::ptrdiff_t;
  using pointer = TValue*;
  using reference = TValue;
  TIndexIterator(const TContainer* Container, int32_t Index)
      : FContainer(Container), FIndex(Index) {}
  TValue operator*() const { return FContainer->Items(FIndex); }
  TIndexIterator& operator++() {
    ++FIndex;
    return *this;
  }
  TIndexIterator operator++(int) {
    TIndexIterator Old = *this;
    ++FIndex;
    return Old;
  }
  bool operator!=(const TIndexIterator&) const { return FIndex < FContainer->Count(); }
  bool operator==(const TIndexIterator& Other) const { return !(*this != Other); }

private:
  const TContainer* FContainer;
  int32_t FIndex;
};

// --- TList ---

// A list of untyped pointers. Every insertion of a non-null pointer is told lnAdded, every
// removal lnDeleted, and Extract lnExtracted. Index errors raise EListError
// "List index out of bounds (N)".
class TList : public TObject {
  KX_CLASS(TList, TObject)

private:
  std::vector<void*> FList;

public:
  TList() = default;

  // --- Properties ---
  int32_t Count() const { return static_cast<int32_t>(FList.size()); }
  // Grows with nullptr entries, shrinks by deleting from the end.
  void SetCount(int32_t NewCount);
  int32_t Capacity() const { return static_cast<int32_t>(FList.capacity()); }
  void SetCapacity(int32_t NewCapacity);
  void* Items(int32_t Index) const;
  // Replaces the entry: the old one is told lnDeleted, the new one lnAdded.
  void SetItem(int32_t Index, void* Item);

  // --- Operations ---
  int32_t Add(void* Item);
  void Insert(int32_t Index, void* Item);
  void Delete(int32_t Index);
  // Deletes the first occurrence; answers its former index or -1.
  int32_t Remove(const void* Item);
  // Takes the first occurrence out without lnDeleted; answers it, or nullptr.
  void* Extract(const void* Item);
  int32_t IndexOf(const void* Item) const;
  void* First() const { return Items(0); }
  void* Last() const { return Items(Count() - 1); }
  void Exchange(int32_t Index1, int32_t Index2);
  void Move(int32_t CurIndex, int32_t NewIndex);
  // Drops the nullptr entries.
  void Pack();
  // Sorts with a three-way compare (negative, 0, positive); not stable.
  void Sort(const std::function<int(void*, void*)>& Compare);
  void Clear();

  TIndexIterator<TList, void*> begin() const { return {this, 0}; }
  TIndexIterator<TList, void*> end() const { return {this, 0}; }

  void BeforeDestruction() override;

protected:
  // Hears every change of membership of a non-null pointer; the base does nothing.
  virtual void Notify(void* Ptr, TListNotification Action);
  void CheckIndex(int32_t Index) const;
};

// --- TComponentList ---

class TComponentListNexus;

// A list of components that drops a component when it is freed (lnExtracted) and, when it
// owns its objects, frees a component when it is deleted from the list (lnDeleted).
class TComponentList : public TList {
  KX_CLASS(TComponentList, TList)

private:
  bool FOwnsObjects;
  // The component that asks each listed component for its free notification.
  TOwned<TComponentListNexus> FNexus;

public:
  explicit TComponentList(bool AOwnsObjects = true);
  ~TComponentList() override;

  // --- Properties ---
  bool OwnsObjects() const { return FOwnsObjects; }
  void SetOwnsObjects(bool Value) { FOwnsObjects = Value; }
  TComponent* Items(int32_t Index) const { return static_cast<TComponent*>(TList::Items(Index)); }
  void SetItem(int32_t Index, TComponent* Item) { TList::SetItem(Index, Item); }

  // --- Operations ---
  int32_t Add(TComponent* Item) { return TList::Add(Item); }
  void Insert(int32_t Index, TComponent* Item) { TList::Insert(Index, Item); }
  int32_t Remove(const TComponent* Item) { return TList::Remove(Item); }
  TComponent* Extract(const TComponent* Item) {
    return static_cast<TComponent*>(TList::Extract(Item));
  }
  int32_t IndexOf(const TComponent* Item) const { return TList::IndexOf(Item); }
  TComponent* First() const { return Items(0); }
  TComponent* Last() const { return Items(Count() - 1); }

  TIndexIterator<TComponentList, TComponent*> begin() const { return {this, 0}; }
  TIndexIterator<TComponentList, TComponent*> end() const { return {this, 0}; }

protected:
  void Notify(void* Ptr, TListNotification Action) override;

private:
  friend class TComponentListNexus;
  void HandleFreeNotify(TComponent* AComponent);
};

// --- TThreadList ---

// A list behind a lock. Add ignores an entry that is there already unless Duplicates says
// otherwise. LockList() holds the lock for as long as its answer lives.
template <class T = void*> class TThreadList {
public:
  class TLocked {
  public:
    TLocked(std::mutex& Lock, std::vector<T>& List) : FGuard(Lock), FList(&List) {}
    std::vector<T>* operator->() const { return FList; }
    std::vector<T>& operator*() const { return *FList; }

  private:
    std::unique_lock<std::mutex> FGuard;
    std::vector<T>* FList;
  };

  TLocked LockList() { return TLocked(FLock, FList); }

  TDuplicates Duplicates() const { return FDuplicates; }
  void SetDuplicates(TDuplicates Value) { FDuplicates = Value; }

  void Add(T Item) {
    std::lock_guard<std::mutex> G(FLock);
    if (FDuplicates != dupAccept && Find(Item) != FList.end()) {
      if (FDuplicates == dupError) throw EListError("Duplicates not allowed");
      return;
    }
    FList.push_back(Item);
  }
  void Remove(T Item) {
    std::lock_guard<std::mutex> G(FLock);
    auto It = Find(Item);
    if (It != FList.end()) FList.erase(It);
  }
  bool Contains(T Item) {
    std::lock_guard<std::mutex> G(FLock);
    return Find(Item) != FList.end();
  }
  int32_t Count() {
    std::lock_guard<std::mutex> G(FLock);
    return static_cast<int32_t>(FList.size());
  }
  void Clear() {
    std::lock_guard<std::mutex> G(FLock);
    FList.clear();
  }

private:
  typename std::vector<T>::iterator Find(const T& Item) {
    for (auto It = FList.begin(); It != FList.end(); ++It)
      if (*It == Item) return It;
    return FList.end();
  }

  std::mutex FLock;
  std::vector<T> FList;
  TDuplicates FDuplicates = dupIgnore;
};

// --- TStrings ---

// The abstract list of strings, each with an attached object (not owned).
class TStrings : public TPersistent {
  KX_CLASS(TStrings, TPersistent)

private:
  int32_t FUpdateCount = 0;

public:
  // --- Properties ---
  virtual int32_t Count() const = 0;
  std::string Strings(int32_t Index) const { return Get(Index); }
  void SetStrings(int32_t Index, const std::string& S) { Put(Index, S); }
  TObject* Objects(int32_t Index) const { return GetObject(Index); }
  void SetObjects(int32_t Index, TObject* AObject) { PutObject(Index, AObject); }
  // The strings, each followed by a line break ("\n").
  std::string Text() const;
  // Replaces the strings by the lines of Value ("\n" or "\r\n" between them).
  void SetText(std::string_view Value);
  int32_t UpdateCount() const { return FUpdateCount; }

  // --- Operations ---
  int32_t Add(const std::string& S) { return AddObject(S, nullptr); }
  virtual int32_t AddObject(const std::string& S, TObject* AObject);
  void AddStrings(const TStrings* Strings);
  virtual void Clear() = 0;
  virtual void Delete(int32_t Index) = 0;
  virtual void Insert(int32_t Index, const std::string& S) = 0;
  void InsertObject(int32_t Index, const std::string& S, TObject* AObject);
  virtual void Exchange(int32_t Index1, int32_t Index2);
  void Move(int32_t CurIndex, int32_t NewIndex);
  // The first index of S (by CompareStrings), or -1.
  virtual int32_t IndexOf(std::string_view S) const;
  int32_t IndexOfObject(const TObject* AObject) const;
  // Brackets nest; SetUpdateState(true) runs at the first, SetUpdateState(false) at the
  // last. EndUpdate without BeginUpdate raises.
  void BeginUpdate();
  void EndUpdate();
  // The same strings and objects in the same order.
  bool Equals(const TStrings* Strings) const;

  std::string Items(int32_t Index) const { return Get(Index); }
  TIndexIterator<TStrings, std::string> begin() const { return {this, 0}; }
  TIndexIterator<TStrings, std::string> end() const { return {this, 0}; }

  // From other strings: the same strings and objects, in one bracket.
  void Assign(const TPersistent* Source) override;

protected:
  virtual std::string Get(int32_t Index) const = 0;
  virtual TObject* GetObject(int32_t Index) const;
  // The base deletes and re-inserts, keeping the object.
  virtual void Put(int32_t Index, const std::string& S);
  virtual void PutObject(int32_t Index, TObject* AObject);
  // Hears the start (true) and the end (false) of the outermost bracket.
  virtual void SetUpdateState(bool Updating);
  // Three-way comparison used by IndexOf; the base ignores ASCII case.
  virtual int CompareStrings(std::string_view S1, std::string_view S2) const;
};

// --- TStringList ---

class TStringList : public TStrings {
  KX_CLASS(TStringList, TStrings)

private:
  struct TStringItem {
    std::string FString;
    TObject* FObject = nullptr;
  };
  std::vector<TStringItem> FList;
  bool FSorted = false;
  bool FCaseSensitive = false;
  TDuplicates FDuplicates = dupIgnore;
  TNotifyEvent FOnChange;
  TNotifyEvent FOnChanging;

public:
  TStringList() = default;

  // --- Properties ---
  int32_t Count() const override { return static_cast<int32_t>(FList.size()); }
  bool Sorted() const { return FSorted; }
  // Sorting on; the strings are sorted at once.
  void SetSorted(bool Value);
  bool CaseSensitive() const { return FCaseSensitive; }
  void SetCaseSensitive(bool Value);
  // What Add does with a string a sorted list holds already.
  TDuplicates Duplicates() const { return FDuplicates; }
  void SetDuplicates(TDuplicates Value) { FDuplicates = Value; }

  // --- Events ---
  const TNotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(TNotifyEvent Value) { FOnChange = std::move(Value); }
  const TNotifyEvent& OnChanging() const { return FOnChanging; }
  void SetOnChanging(TNotifyEvent Value) { FOnChanging = std::move(Value); }

  // --- Operations ---
  // In a sorted list: at its place, or per Duplicates when it is there (dupError raises
  // EListError "String list does not allow duplicates").
  int32_t AddObject(const std::string& S, TObject* AObject) override;
  void Clear() override;
  void Delete(int32_t Index) override;
  // EListError "Operation not allowed on sorted list" when sorted.
  void Insert(int32_t Index, const std::string& S) override;
  void Exchange(int32_t Index1, int32_t Index2) override;
  int32_t IndexOf(std::string_view S) const override;
  // Binary search of a sorted list: true when found; Index is the place either way.
  bool Find(std::string_view S, int32_t& Index) const;
  void Sort();

protected:
  std::string Get(int32_t Index) const override;
  TObject* GetObject(int32_t Index) const override;
  void Put(int32_t Index, const std::string& S) override;
  void PutObject(int32_t Index, TObject* AObject) override;
  void SetUpdateState(bool Updating) override;
  int CompareStrings(std::string_view S1, std::string_view S2) const override;
  // OnChange, unless inside a bracket.
  virtual void Changed();
  // OnChanging, unless inside a bracket.
  virtual void Changing();

private:
  void CheckIndex(int32_t Index) const;
  void InsertItem(int32_t Index, const std::string& S, TObject* AObject);
};

} // namespace kx
