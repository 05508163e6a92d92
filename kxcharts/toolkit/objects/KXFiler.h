#pragma once
// What a class declares about its stored properties: the stored-type table that says how
// each value type is written, and TFiler, the side of a reader or writer that
// DefineProperties talks to. The same declarations serve both directions.
//
// How a new class registers its stored properties, in three lines:
//   1. Declare `void DefineProperties(TFiler& Filer) override;` (protected) in the class.
//   2. Define it: `inherited::DefineProperties(Filer);` then one line per property, in order:
//      `Filer.Property("Limit", this, &TFoo::Limit, &TFoo::SetLimit, 0);` (0 is the default).
//   3. A component the reader makes by name: `RegisterClasses({ClassOf<TFoo>()});` at start-up.
//
// The type of the getter says how a property is stored: bool, integers, double, float,
// std::string, TColor (by name or hex), enumerations with KX_ENUM_NAMES (by member name),
// TSet (an array of member names), a pointer to a TComponent descendant (a reference, by
// name), a pointer to an owned TPersistent or sub-component (a nested object; getter
// only) or to a TCollection (an array of items; getter only). Dates use DateProperty. A property
// equal to its default, or whose stored-predicate answers false, is not written; without a default,
// numbers are not written when 0, strings when empty, references when nil, and the other kinds
// always. A descendant gives an inherited property a new default with Redefault() before its
// inherited call. DefineProperty() stores data of the class's own.
//
// This header needs only the object model's base (KXObject.h): components and collections
// are known here by name alone, so that the classes' own file can declare the component's
// stored properties without a loop between the two.

#include <any>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXEnum.h"
#include "kxcharts/toolkit/runtime/KXSet.h"
#include "kxcharts/toolkit/runtime/KXTypes.h"

namespace kx {

class TCollection;
class TComponent;
class TReader;
class TWriter;

// --- How a value type is stored ---

enum class TStoredKind : uint8_t {
  Integer,
  Float,
  Single,
  String,
  Boolean,
  Color,
  Enumeration,
  Set,
  Date,
  Reference
};

// The run-time description of a stored type, for the reader's checks and the writer's
// spelling.
struct TStoredType {
  TStoredKind Kind;
  long long Min = 0; // Integer range
  long long Max = 0;
  // Enumerations and sets of named members.
  std::string (*NameOf)(long long) = nullptr;
  std::optional<long long> (*ValueOf)(std::string_view) = nullptr;
  std::span<const std::string_view> (*Names)() = nullptr;
  int SetSize = 0;                   // members of a set over 0..SetSize-1
  const TMetaClass* Class = nullptr; // the class a reference must be of
};

// A value on its way between a getter or setter and the document.
struct TStoredValue {
  long long Int = 0; // integers, booleans, colours, enumerations, set bits
  double Float = 0;  // doubles, singles, dates
  std::string Text;
  TComponent* Component = nullptr;
};

// A non-owning callable for the reader's apply step, so that a setter runs inside the
// reader's error context without a heap-allocated std::function per property.
class TApplyValue {
public:
  template <class F>
  requires(!std::is_same_v<std::remove_cvref_t<F>, TApplyValue>)
      TApplyValue(const F& Fn) // NOLINT: meant to convert from a lambda
      : FCtx(&Fn),
        FCall([](const void* C, const TStoredValue& V) { (*static_cast<const F*>(C))(V); }) {}
  void operator()(const TStoredValue& V) const { FCall(FCtx, V); }

private:
  const void* FCtx;
  void (*FCall)(const void*, const TStoredValue&);
};

template <class V, class = void> struct TStoredTraits {
  static_assert(sizeof(V) == 0, "this type cannot be stored: see KXFiler.h for those that can");
};

template <> struct TStoredTraits<bool> {
  static TStoredType Type() { return {TStoredKind::Boolean}; }
  static void Put(TStoredValue& S, bool V) { S.Int = V; }
  static bool Take(const TStoredValue& S) { return S.Int != 0; }
};

template <class V>
struct TStoredTraits<V, std::enable_if_t<std::is_integral_v<V> && !std::is_same_v<V, bool>>> {
  static_assert(sizeof(V) <= sizeof(long long) &&
                    (std::is_signed_v<V> || sizeof(V) < sizeof(long long)),
                "integers are stored within the range of a signed 64-bit number");
  static TStoredType Type() {
    TStoredType T{TStoredKind::Integer};
    T.Min = static_cast<long long>(std::numeric_limits<V>::min());
    T.Max = static_cast<long long>(std::numeric_limits<V>::max());
    return T;
  }
  static void Put(TStoredValue& S, V Value) { S.Int = static_cast<long long>(Value); }
  static V Take(const TStoredValue& S) { return static_cast<V>(S.Int); }
};

template <> struct TStoredTraits<double> {
  static TStoredType Type() { return {TStoredKind::Float}; }
  static void Put(TStoredValue& S, double V) { S.Float = V; }
  static double Take(const TStoredValue& S) { return S.Float; }
};

template <> struct TStoredTraits<float> {
  static TStoredType Type() { return {TStoredKind::Single}; }
  static void Put(TStoredValue& S, float V) { S.Float = V; }
  static float Take(const TStoredValue& S) { return static_cast<float>(S.Float); }
};

template <> struct TStoredTraits<std::string> {
  static TStoredType Type() { return {TStoredKind::String}; }
  static void Put(TStoredValue& S, const std::string& V) { S.Text = V; }
  static std::string Take(const TStoredValue& S) { return S.Text; }
};

template <> struct TStoredTraits<TColor> {
  static TStoredType Type() { return {TStoredKind::Color}; }
  static void Put(TStoredValue& S, TColor V) { S.Int = static_cast<int32_t>(V); }
  static TColor Take(const TStoredValue& S) { return static_cast<TColor>(S.Int); }
};

template <class E>
struct TStoredTraits<E, std::enable_if_t<NamedEnum<E> && !std::is_same_v<E, TColor>>> {
  static TStoredType Type() {
    TStoredType T{TStoredKind::Enumeration};
    T.NameOf = [](long long V) { return GetEnumName(static_cast<E>(V)); };
    T.ValueOf = [](std::string_view N) -> std::optional<long long> {
      if (auto V = GetEnumValue<E>(N)) return static_cast<long long>(*V);
      return std::nullopt;
    };
    T.Names = [] { return GetEnumNames<E>(); };
    return T;
  }
  static void Put(TStoredValue& S, E V) { S.Int = static_cast<long long>(V); }
  static E Take(const TStoredValue& S) { return static_cast<E>(S.Int); }
};

template <class E, int N> struct TStoredTraits<TSet<E, N>> {
  static TStoredType Type() {
    TStoredType T{TStoredKind::Set};
    T.SetSize = N;
    if constexpr (NamedEnum<E>) {
      T.NameOf = [](long long V) { return GetEnumName(static_cast<E>(V)); };
      T.ValueOf = [](std::string_view Name) -> std::optional<long long> {
        if (auto V = GetEnumValue<E>(Name)) return static_cast<long long>(*V);
        return std::nullopt;
      };
      T.Names = [] { return GetEnumNames<E>(); };
    }
    return T;
  }
  static void Put(TStoredValue& S, TSet<E, N> V) { S.Int = V.Bits(); }
  static TSet<E, N> Take(const TStoredValue& S) {
    return TSet<E, N>::FromBits(static_cast<uint64_t>(S.Int));
  }
};

template <class P> struct TStoredTraits<P*, std::enable_if_t<std::is_base_of_v<TComponent, P>>> {
  static TStoredType Type() {
    TStoredType T{TStoredKind::Reference};
    T.Class = P::StaticClass();
    return T;
  }
  static void Put(TStoredValue& S, P* V) { S.Component = V; }
  static P* Take(const TStoredValue& S) { return static_cast<P*>(S.Component); }
};

// --- TFiler ---

// What TReader and TWriter share: the declaration side that DefineProperties talks to.
// The same DefineProperties serves both directions.
class TFiler {
public:
  TFiler(const TFiler&) = delete;
  TFiler& operator=(const TFiler&) = delete;
  virtual ~TFiler() = default;

  bool IsWriting() const { return FWriting; }
  bool IsReading() const { return !FWriting; }
  // The component being written or read, or the root.
  TComponent* Root() const { return FRoot; }

  // --- Declarations ---

  // A scalar or reference property with its implicit default (see the header comment).
  template <class TObj, class TGet, class TSet>
  void Property(std::string_view Name, TObj* Obj, TGet Get, TSet Set) {
    Scalar(Name, Obj, Get, Set, static_cast<const ValueOf<TObj, TGet>*>(nullptr), NoPredicate());
  }
  template <class TObj, class TGet, class TSet, class TDefault>
  void Property(std::string_view Name, TObj* Obj, TGet Get, TSet Set, const TDefault& Default) {
    const ValueOf<TObj, TGet> D = Default;
    Scalar(Name, Obj, Get, Set, &D, NoPredicate());
  }
  // Written only when Stored(Obj) answers true (and the value is not the default).
  template <class TObj, class TGet, class TSet, class TDefault, class TPred>
  void Property(std::string_view Name, TObj* Obj, TGet Get, TSet Set, const TDefault& Default,
                TPred Stored) {
    const ValueOf<TObj, TGet> D = Default;
    Scalar(Name, Obj, Get, Set, &D, Stored);
  }
  // An owned sub-object or collection, reached through its getter; reading fills it.
  template <class TObj, class TGet> void Property(std::string_view Name, TObj* Obj, TGet Get) {
    using P = std::remove_pointer_t<std::remove_cvref_t<std::invoke_result_t<TGet, TObj*>>>;
    static_assert(std::is_base_of_v<TPersistent, P>,
                  "a getter-only property is an owned TPersistent, TCollection or sub-component");
    Declare(Name);
    P* Sub = std::invoke(Get, Obj);
    if (!Sub) return;
    if constexpr (std::is_base_of_v<TCollection, P>)
      StoreCollection(Name, Sub);
    else
      StoreObject(Name, Sub);
  }
  // A TDateTime, stored as ISO 8601 text ("2024-03-05T14:30:00.000").
  template <class TObj, class TGet, class TSet>
  void DateProperty(std::string_view Name, TObj* Obj, TGet Get, TSet Set) {
    DateScalar(Name, Obj, Get, Set, nullptr);
  }
  template <class TObj, class TGet, class TSet>
  void DateProperty(std::string_view Name, TObj* Obj, TGet Get, TSet Set, TDateTime Default) {
    DateScalar(Name, Obj, Get, Set, &Default);
  }
  // Data of the class's own: WriteData writes one value through the writer when HasData;
  // ReadData reads it back through the reader when the document has it.
  void DefineProperty(std::string_view Name, const std::function<void(TReader&)>& ReadData,
                      const std::function<void(TWriter&)>& WriteData, bool HasData);
  // A new default for a property that an ancestor declares; call it before the inherited
  // DefineProperties. The type must be the property's own (a TSet for a set).
  template <class V> void Redefault(std::string_view Name, const V& Default) {
    AddRedefault(Name, std::any(Default));
  }

protected:
  explicit TFiler(bool Writing) : FWriting(Writing) {}

  // One object's declarations: names seen so far and new defaults asked for.
  struct TFrame {
    std::vector<std::string> Declared;
    std::vector<std::pair<std::string, std::any>> Redefaults;
  };
  // Runs Obj->DefineProperties(*this) in a frame of its own.
  void DefineAll(TPersistent* Obj);
  // Whether the last DefineAll that finished at this depth declared Name (the reader
  // refuses document entries that no declaration asked for).
  bool WasDeclared(std::string_view Name) const;
  // Raises Exception when the last DefineAll declared one of Entries, which the document
  // format uses for itself ("Class", "Name", "Components" in a component, "Items" in a
  // collection).
  void CheckReserved(const TPersistent* Obj, std::span<const std::string_view> Entries) const;

  // The two directions, for the scalar kinds and the owned kinds. ReadValue hands the
  // value to Apply (which calls the setter) when the document has the property.
  virtual void WriteValue(std::string_view Name, const TStoredType& Type,
                          const TStoredValue& Value);
  virtual void ReadValue(std::string_view Name, const TStoredType& Type, TApplyValue Apply);
  // A reference is set after every component exists; Assign receives it.
  virtual void ReadReference(std::string_view Name, const TStoredType& Type,
                             std::function<void(TComponent*)> Assign);
  virtual void StoreObject(std::string_view Name, TPersistent* Obj) = 0;
  virtual void StoreCollection(std::string_view Name, TCollection* Coll) = 0;
  virtual void StoreDefined(std::string_view Name, const std::function<void(TReader&)>& ReadData,
                            const std::function<void(TWriter&)>& WriteData, bool HasData) = 0;

  TComponent* FRoot = nullptr;

private:
  template <class TObj, class TGet>
  using ValueOf = std::remove_cvref_t<std::invoke_result_t<TGet, TObj*>>;
  struct NoPredicate {};

  // Notes a declaration of the current object; raises Exception for a name declared twice.
  void Declare(std::string_view Name);
  void AddRedefault(std::string_view Name, std::any Default);
  const std::any* FindRedefault(std::string_view Name) const;
  [[noreturn]] void WrongRedefault(std::string_view Name) const;

  template <class V> const V* EffectiveDefault(std::string_view Name, const V* Default) const {
    if (const std::any* A = FindRedefault(Name)) {
      if (const V* R = std::any_cast<V>(A)) return R;
      WrongRedefault(Name);
    }
    return Default;
  }

  template <class TObj, class TGet, class TSet, class V, class TPred>
  void Scalar(std::string_view Name, TObj* Obj, TGet Get, TSet Set, const V* Default,
              TPred Stored) {
    using Tr = TStoredTraits<V>;
    Declare(Name);
    Default = EffectiveDefault(Name, Default);
    if (FWriting) {
      if constexpr (!std::is_same_v<TPred, NoPredicate>)
        if (!std::invoke(Stored, Obj)) return;
      const V Value = std::invoke(Get, Obj);
      if (Default ? Value == *Default : IsImplicitDefault(Value)) return;
      TStoredValue S;
      Tr::Put(S, Value);
      WriteValue(Name, Tr::Type(), S);
    } else if constexpr (std::is_pointer_v<V>) {
      ReadReference(Name, Tr::Type(),
                    [Obj, Set](TComponent* C) { std::invoke(Set, Obj, static_cast<V>(C)); });
    } else {
      ReadValue(Name, Tr::Type(),
                [&](const TStoredValue& S) { std::invoke(Set, Obj, Tr::Take(S)); });
    }
  }

  template <class TObj, class TGet, class TSet>
  void DateScalar(std::string_view Name, TObj* Obj, TGet Get, TSet Set, const TDateTime* Default) {
    Declare(Name);
    Default = EffectiveDefault(Name, Default);
    const TStoredType Type{TStoredKind::Date};
    if (FWriting) {
      const TDateTime Value = std::invoke(Get, Obj);
      if (Default ? Value == *Default : Value == 0) return;
      TStoredValue S;
      S.Float = Value;
      WriteValue(Name, Type, S);
    } else {
      ReadValue(Name, Type, [&](const TStoredValue& S) { std::invoke(Set, Obj, S.Float); });
    }
  }

  // Without a default: numbers are 0, strings empty, references nil; other kinds always
  // differ.
  template <class V> static bool IsImplicitDefault(const V& Value) {
    if constexpr (std::is_floating_point_v<V>)
      return Value == 0;
    else if constexpr (std::is_same_v<V, std::string>)
      return Value.empty();
    else if constexpr (std::is_pointer_v<V>)
      return Value == nullptr;
    else
      return false;
  }

  bool FWriting;
  // Frames by depth, kept for reuse: a collection of a million items reuses one.
  std::vector<TFrame> FFrames;
  size_t FDepth = 0;
  TFrame& Frame() const;
};

} // namespace kx
