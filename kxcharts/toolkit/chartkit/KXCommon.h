#pragma once
// The in-house collection classes and small containers the chart modules build on:
// TGCollectionItem (an item that can ask other items for a notice when they are freed),
// TGCollection (an owned collection with a Loaded step), ClonePersistentClass,
// TKXAssignList<T> and TKXHashTable<K, V>.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "kxcharts/toolkit/objects/KXClasses.h"

namespace kx {

// --- TGCollectionItem ---

class TGCollectionItem : public TCollectionItem {
  KX_CLASS(TGCollectionItem, TCollectionItem)

private:
  // Symmetric like the components' lists; made on the first FreeNotification only, so an
  // item that never asks costs one pointer.
  std::unique_ptr<std::vector<TGCollectionItem*>> FFreeNotifies;

public:
  explicit TGCollectionItem(TCollection* Collection) : TCollectionItem(Collection) {}
  // A safety net for an item never freed through Free(): unlinks silently.
  ~TGCollectionItem() override;

  // Asks Item to call Notification(this) when it is freed, and the reverse.
  void FreeNotification(TGCollectionItem* Item);
  // Cancels FreeNotification both ways.
  void RemoveFreeNotification(TGCollectionItem* Item);
  // Runs after its collection has been read completely (TGCollection::Loaded); items
  // that store references by index resolve them here. The base does nothing.
  virtual void Loaded();

  void BeforeDestruction() override;

protected:
  // Hears that Item, linked by FreeNotification, is being freed; the link is gone
  // already. The base does nothing.
  virtual void Notification(TGCollectionItem* Item);

private:
  void Unlink(TGCollectionItem* Other);
};

// --- TGCollection ---

// An owned collection of TGCollectionItem descendants.
class TGCollection : public TOwnedCollection {
  KX_CLASS(TGCollection, TOwnedCollection)

public:
  // Raises Exception when ItemClass is not a TGCollectionItem class.
  TGCollection(TPersistent* AOwner, TCollectionItemClass ItemClass);

  TGCollectionItem* Items(int32_t Index) const {
    return static_cast<TGCollectionItem*>(TCollection::Items(Index));
  }
  TGCollectionItem* Add() { return static_cast<TGCollectionItem*>(TCollection::Add()); }
  TGCollectionItem* Insert(int32_t Index) {
    return static_cast<TGCollectionItem*>(TCollection::Insert(Index));
  }
  TGCollectionItem* FindItemID(int32_t ID) const {
    return static_cast<TGCollectionItem*>(TCollection::FindItemID(ID));
  }
  TCollectionEnumeratorOf<TGCollectionItem> GetEnumerator() const {
    return TCollectionEnumeratorOf<TGCollectionItem>(this);
  }
  auto begin() const { return GetEnumerator().begin(); }
  auto end() const { return GetEnumerator().end(); }

  // The collection's step after reading: Loaded of each item in index order.
  virtual void Loaded();
};

// --- ClonePersistentClass ---

// A new object of AClass with Source assigned to it; the caller owns it. AClass may be of
// any family whose constructor needs no argument or takes a nullable one (plain
// persistents, components without owner, items without collection). Raises
// EConvertError when AClass is not a persistent class, and passes on the error of an
// Assign that refuses (the new object is freed).
TPersistent* ClonePersistentClass(const TPersistent* Source, TClass AClass);

// The same for the source's own class, typed.
template <class T> T* ClonePersistentClass(const T* Source) {
  return static_cast<T*>(
      ClonePersistentClass(static_cast<const TPersistent*>(Source), Source->ClassType()));
}

// --- TKXAssignList ---

// A plain list of T (pointers or interface pointers, not owned) that Assign copies entry
// for entry. Index errors raise EListError.
template <class T> class TKXAssignList : public TPersistent {
public:
  TKXAssignList() = default;

  // --- Properties ---
  int32_t Count() const { return static_cast<int32_t>(FList.size()); }
  T Items(int32_t Index) const { return FList[Checked(Index)]; }
  void SetItem(int32_t Index, T Item) { FList[Checked(Index)] = Item; }

  // --- Operations ---
  int32_t Add(T Item) {
    FList.push_back(Item);
    return Count() - 1;
  }
  void Insert(int32_t Index, T Item) {
    if (Index != Count()) Checked(Index);
    FList.insert(FList.begin() + Index, Item);
  }
  void Delete(int32_t Index) { FList.erase(FList.begin() + Checked(Index)); }
  // Deletes the first occurrence; answers its former index or -1.
  int32_t Remove(const T& Item) {
    const int32_t Index = IndexOf(Item);
    if (Index >= 0) Delete(Index);
    return Index;
  }
  int32_t IndexOf(const T& Item) const {
    auto It = std::find(FList.begin(), FList.end(), Item);
    return It == FList.end() ? -1 : static_cast<int32_t>(It - FList.begin());
  }
  bool Contains(const T& Item) const { return IndexOf(Item) >= 0; }
  T First() const { return Items(0); }
  T Last() const { return Items(Count() - 1); }
  void Exchange(int32_t Index1, int32_t Index2) {
    std::swap(FList[Checked(Index1)], FList[Checked(Index2)]);
  }
  void Clear() { FList.clear(); }

  auto begin() const { return FList.begin(); }
  auto end() const { return FList.end(); }

  void Assign(const TPersistent* Source) override {
    if (Source == this) return;
    if (const auto* Src = dynamic_cast<const TKXAssignList<T>*>(Source)) {
      FList = Src->FList;
      return;
    }
    TPersistent::Assign(Source);
  }

private:
  size_t Checked(int32_t Index) const {
    if (Index < 0 || Index >= Count())
      throw EListError("List index out of bounds (" + std::to_string(Index) + ")");
    return static_cast<size_t>(Index);
  }

  std::vector<T> FList;
};

// --- TKXHashTable ---

// A hash map from K to V (integer keys by default), with the platform dictionary's names.
template <class K = int32_t, class V = int32_t> class TKXHashTable {
public:
  explicit TKXHashTable(int32_t Capacity = 0) {
    if (Capacity > 0) FMap.reserve(static_cast<size_t>(Capacity));
  }

  int32_t Count() const { return static_cast<int32_t>(FMap.size()); }
  // Raises EListError "Duplicates not allowed" for a key that is there.
  void Add(const K& Key, const V& Value) {
    if (!FMap.emplace(Key, Value).second) throw EListError("Duplicates not allowed");
  }
  void AddOrSetValue(const K& Key, const V& Value) { FMap.insert_or_assign(Key, Value); }
  bool TryGetValue(const K& Key, V& Value) const {
    auto It = FMap.find(Key);
    if (It == FMap.end()) return false;
    Value = It->second;
    return true;
  }
  // Raises EListError "Item not found" for a missing key.
  const V& Items(const K& Key) const {
    auto It = FMap.find(Key);
    if (It == FMap.end()) throw EListError("Item not found");
    return It->second;
  }
  bool ContainsKey(const K& Key) const { return FMap.find(Key) != FMap.end(); }
  void Remove(const K& Key) { FMap.erase(Key); }
  void Clear() { FMap.clear(); }

  auto begin() const { return FMap.begin(); }
  auto end() const { return FMap.end(); }

private:
  std::unordered_map<K, V> FMap;
};

} // namespace kx
