#include "kxcharts/toolkit/objects/KXStreaming.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <istream>
#include <iterator>
#include <ostream>
#include <sstream>

#include <nlohmann/json.hpp>

namespace kx {

using TJson = nlohmann::ordered_json;

namespace {

constexpr const char* FormatTag = "kxcharts-form";
constexpr int FormatVersion = 1;
// Deep enough for any real form; a hostile document is stopped long before the stack is.
constexpr int MaxJsonDepth = 256;
constexpr int MaxComponentDepth = 64;

// Entries the format itself uses in a component and in a collection.
constexpr std::string_view ComponentEntries[] = {"Class", "Name", "Components"};
constexpr std::string_view CollectionEntries[] = {"Items"};

const char* JsonKind(const TJson& J) {
  switch (J.type()) {
  case TJson::value_t::null:
    return "null";
  case TJson::value_t::object:
    return "an object";
  case TJson::value_t::array:
    return "an array";
  case TJson::value_t::string:
    return "a string";
  case TJson::value_t::boolean:
    return "a boolean";
  case TJson::value_t::number_float:
    return "a number with a fraction";
  case TJson::value_t::number_integer:
  case TJson::value_t::number_unsigned:
    return "an integer";
  default:
    return "something else";
  }
}

bool IsValidUtf8(std::string_view S) {
  size_t I = 0;
  while (I < S.size()) {
    const auto C = static_cast<unsigned char>(S[I]);
    int More = 0;
    uint32_t Cp = 0;
    if (C < 0x80) {
      ++I;
      continue;
    } else if ((C & 0xE0) == 0xC0) {
      More = 1;
      Cp = C & 0x1F;
    } else if ((C & 0xF0) == 0xE0) {
      More = 2;
      Cp = C & 0x0F;
    } else if ((C & 0xF8) == 0xF0) {
      More = 3;
      Cp = C & 0x07;
    } else {
      return false;
    }
    if (I + static_cast<size_t>(More) >= S.size()) return false;
    for (int K = 1; K <= More; ++K) {
      const auto N = static_cast<unsigned char>(S[I + static_cast<size_t>(K)]);
      if ((N & 0xC0) != 0x80) return false;
      Cp = (Cp << 6) | (N & 0x3F);
    }
    static constexpr uint32_t MinOf[] = {0, 0x80, 0x800, 0x10000};
    if (Cp < MinOf[More] || Cp > 0x10FFFF || (Cp >= 0xD800 && Cp <= 0xDFFF)) return false;
    I += static_cast<size_t>(More) + 1;
  }
  return true;
}

// Non-finite numbers have no JSON spelling of their own.
TJson FloatToJson(double V) {
  if (std::isnan(V)) return "NaN";
  if (std::isinf(V)) return V > 0 ? "Infinity" : "-Infinity";
  return V;
}

// The shortest text that reads back as the same single, held as the double it spells,
// so that 0.1f is written 0.1 and not 0.10000000149011612.
double SingleForJson(float V) {
  char Buf[64];
  auto R = std::to_chars(Buf, Buf + sizeof(Buf), V);
  *R.ptr = '\0';
  return std::strtod(Buf, nullptr);
}

std::string ColorToText(TColor C) {
  const auto& Info = TEnumInfo<TColor>::Values;
  for (size_t I = 0; I < std::size(Info); ++I)
    if (Info[I] == C) return std::string(TEnumInfo<TColor>::Names[I]);
  const auto U = static_cast<uint32_t>(C);
  char Buf[16];
  if ((U >> 24) == 0)
    std::snprintf(Buf, sizeof(Buf), "#%02X%02X%02X", GetRValue(C), GetGValue(C), GetBValue(C));
  else
    std::snprintf(Buf, sizeof(Buf), "0x%08X", U);
  return Buf;
}

std::optional<uint32_t> ParseHex(std::string_view S) {
  if (S.empty() || S.size() > 8) return std::nullopt;
  uint32_t V = 0;
  auto R = std::from_chars(S.data(), S.data() + S.size(), V, 16);
  if (R.ec != std::errc() || R.ptr != S.data() + S.size()) return std::nullopt;
  return V;
}

std::optional<TColor> TextToColor(std::string_view S) {
  if (auto C = GetEnumValue<TColor>(S)) return *C;
  if (S.size() == 7 && S[0] == '#') {
    if (auto V = ParseHex(S.substr(1)))
      return RGBToColor(static_cast<uint8_t>(*V >> 16), static_cast<uint8_t>(*V >> 8),
                        static_cast<uint8_t>(*V));
    return std::nullopt;
  }
  if (S.size() > 2 && S[0] == '0' && (S[1] == 'x' || S[1] == 'X'))
    if (auto V = ParseHex(S.substr(2))) return static_cast<TColor>(static_cast<int32_t>(*V));
  return std::nullopt;
}

// --- Dates ---

// Days from 1970-01-01 to a civil date of the proleptic Gregorian calendar.
long long DaysFromCivil(long long Y, unsigned M, unsigned D) {
  Y -= M <= 2;
  const long long Era = (Y >= 0 ? Y : Y - 399) / 400;
  const auto Yoe = static_cast<unsigned>(Y - Era * 400);
  const unsigned Doy = (153 * (M > 2 ? M - 3 : M + 9) + 2) / 5 + D - 1;
  const unsigned Doe = Yoe * 365 + Yoe / 4 - Yoe / 100 + Doy;
  return Era * 146097 + static_cast<long long>(Doe) - 719468;
}

void CivilFromDays(long long Z, long long& Y, unsigned& M, unsigned& D) {
  Z += 719468;
  const long long Era = (Z >= 0 ? Z : Z - 146096) / 146097;
  const auto Doe = static_cast<unsigned>(Z - Era * 146097);
  const unsigned Yoe = (Doe - Doe / 1460 + Doe / 36524 - Doe / 146096) / 365;
  const unsigned Doy = Doe - (365 * Yoe + Yoe / 4 - Yoe / 100);
  const unsigned Mp = (5 * Doy + 2) / 153;
  D = Doy - (153 * Mp + 2) / 5 + 1;
  M = Mp < 10 ? Mp + 3 : Mp - 9;
  Y = static_cast<long long>(Yoe) + Era * 400 + (M <= 2);
}

// TDateTime day 0 is 1899-12-30.
constexpr long long DateEpochOffset = 25569;
constexpr long long MsPerDay = 86400000;

unsigned DaysInMonth(long long Y, unsigned M) {
  static constexpr unsigned Days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool Leap = (Y % 4 == 0 && Y % 100 != 0) || Y % 400 == 0;
  return M == 2 && Leap ? 29 : Days[M - 1];
}

} // namespace

std::string DateTimeToISO(TDateTime Value) {
  if (!std::isfinite(Value) || std::fabs(Value) > 3.0e6) return std::string();
  // A negative TDateTime counts whole days back from day 0, and its fraction is the time
  // of that day, not a step further back.
  long long Day = Value >= 0 ? static_cast<long long>(std::floor(Value))
                             : static_cast<long long>(std::ceil(Value));
  const double Frac = std::fabs(Value - static_cast<double>(Day));
  long long Ms = std::llround(Frac * MsPerDay);
  if (Ms >= MsPerDay) {
    Ms -= MsPerDay;
    ++Day;
  }
  long long Y;
  unsigned M, D;
  CivilFromDays(Day - DateEpochOffset, Y, M, D);
  if (Y < 1 || Y > 9999) return std::string();
  char Buf[64];
  std::snprintf(Buf, sizeof(Buf), "%04lld-%02u-%02uT%02lld:%02lld:%02lld.%03lld", Y, M, D,
                Ms / 3600000, Ms / 60000 % 60, Ms / 1000 % 60, Ms % 1000);
  return Buf;
}

std::optional<TDateTime> ISOToDateTime(std::string_view T) {
  auto Num = [&](size_t Pos, size_t Len, unsigned& Out) {
    if (Pos + Len > T.size()) return false;
    auto R = std::from_chars(T.data() + Pos, T.data() + Pos + Len, Out);
    return R.ec == std::errc() && R.ptr == T.data() + Pos + Len;
  };
  unsigned Y, M, D, H = 0, N = 0, S = 0, Ms = 0;
  if (T.size() < 10 || T[4] != '-' || T[7] != '-' || !Num(0, 4, Y) || !Num(5, 2, M) ||
      !Num(8, 2, D))
    return std::nullopt;
  if (Y < 1 || M < 1 || M > 12 || D < 1 || D > DaysInMonth(Y, M)) return std::nullopt;
  if (T.size() > 10) {
    if (T.size() < 19 || T[10] != 'T' || T[13] != ':' || T[16] != ':' || !Num(11, 2, H) ||
        !Num(14, 2, N) || !Num(17, 2, S) || H > 23 || N > 59 || S > 59)
      return std::nullopt;
    if (T.size() > 19) {
      const size_t Digits = T.size() - 20;
      if (T[19] != '.' || Digits < 1 || Digits > 3 || !Num(20, Digits, Ms)) return std::nullopt;
      for (size_t K = Digits; K < 3; ++K)
        Ms *= 10;
    }
  }
  const long long Day = DaysFromCivil(Y, M, D) + DateEpochOffset;
  const double Time =
      static_cast<double>(((H * 60 + N) * 60 + S) * 1000LL + Ms) / static_cast<double>(MsPerDay);
  return Day >= 0 ? static_cast<double>(Day) + Time : static_cast<double>(Day) - Time;
}

// --- TFiler ---

TFiler::TFrame& TFiler::Frame() const {
  if (FDepth == 0)
    throw Exception("Stored properties can only be declared inside DefineProperties");
  return const_cast<TFrame&>(FFrames[FDepth - 1]);
}

void TFiler::DefineAll(TPersistent* Obj) {
  if (FFrames.size() <= FDepth) FFrames.emplace_back();
  TFrame& F = FFrames[FDepth];
  F.Declared.clear();
  F.Redefaults.clear();
  ++FDepth;
  try {
    Obj->DefineProperties(*this);
  } catch (...) {
    --FDepth;
    throw;
  }
  --FDepth;
}

void TFiler::Declare(std::string_view Name) {
  TFrame& F = Frame();
  for (const std::string& D : F.Declared)
    if (D == Name) throw Exception("Property " + std::string(Name) + " is declared twice");
  F.Declared.emplace_back(Name);
}

void TFiler::CheckReserved(const TPersistent* Obj,
                           std::span<const std::string_view> Entries) const {
  for (std::string_view E : Entries)
    if (WasDeclared(E))
      throw Exception("A " + Obj->ClassName() + " cannot store a property named \"" +
                      std::string(E) + "\": the form format uses that entry");
}

void TFiler::AddRedefault(std::string_view Name, std::any Default) {
  TFrame& F = Frame();
  for (const std::string& D : F.Declared)
    if (D == Name)
      throw Exception("The new default of " + std::string(Name) +
                      " must be given before the inherited DefineProperties");
  F.Redefaults.emplace_back(std::string(Name), std::move(Default));
}

const std::any* TFiler::FindRedefault(std::string_view Name) const {
  const TFrame& F = Frame();
  for (const auto& [N, A] : F.Redefaults)
    if (N == Name) return &A;
  return nullptr;
}

void TFiler::WrongRedefault(std::string_view Name) const {
  throw Exception("The new default of " + std::string(Name) + " is not of the property's own type");
}

void TFiler::DefineProperty(std::string_view Name, const std::function<void(TReader&)>& ReadData,
                            const std::function<void(TWriter&)>& WriteData, bool HasData) {
  Declare(Name);
  StoreDefined(Name, ReadData, WriteData, HasData);
}

void TFiler::WriteValue(std::string_view, const TStoredType&, const TStoredValue&) {}
void TFiler::ReadValue(std::string_view, const TStoredType&, TApplyValue) {}
void TFiler::ReadReference(std::string_view, const TStoredType&, std::function<void(TComponent*)>) {
}

void TComponent::DefineProperties(TFiler& Filer) {
  inherited::DefineProperties(Filer);
  Filer.Property("Tag", this, &TComponent::Tag, &TComponent::SetTag, 0);
}

// --- Error paths ---

namespace {

// "Form1.Chart1.Values[3].Caption": where the reader or writer is, for messages.
class TPath {
public:
  void Push(std::string_view Segment) {
    FMarks.push_back(FText.size());
    FText += Segment;
  }
  void PushProperty(std::string_view Name) {
    FMarks.push_back(FText.size());
    if (!FText.empty()) FText += '.';
    FText += Name;
  }
  void PushIndex(size_t Index) { Push("[" + std::to_string(Index) + "]"); }
  void Pop() {
    FText.resize(FMarks.back());
    FMarks.pop_back();
  }
  const std::string& Text() const { return FText; }

private:
  std::string FText;
  std::vector<size_t> FMarks;
};

struct TPathScope {
  TPath& P;
  ~TPathScope() { P.Pop(); }
};

std::string ComponentSegment(const TComponent* C, size_t Index) {
  return C->Name().empty() ? "Components[" + std::to_string(Index) + "]" : C->Name();
}

} // namespace

// --- TWriter ---

struct TWriter::TState {
  TPath Path;
  std::vector<TJson*> Objects;
  TJson* Defined = nullptr;
  bool DefinedWritten = false;

  [[noreturn]] void Fail(const std::string& Detail) const {
    throw EFilerError("Error writing " + Path.Text() + ": " + Detail);
  }
};

TWriter::TWriter() : TFiler(true), FState(std::make_unique<TState>()) {}
TWriter::~TWriter() = default;

namespace {

// Keeps csWriting on a component for as long as it is being written.
struct TWritingScope {
  TComponentState& State;
  bool Had;
  explicit TWritingScope(TComponentState& S) : State(S), Had(S.Contains(csWriting)) {
    State.Include(csWriting);
  }
  ~TWritingScope() {
    if (!Had) State.Exclude(csWriting);
  }
};

} // namespace

std::string TWriter::WriteRootComponent(TComponent* Root) {
  if (!Root) throw EFilerError("No form to write");
  FRoot = Root;
  TState& S = *FState;

  // Written depth first: the owner's properties, then its components.
  std::function<TJson(TComponent*)> WriteComponent = [&](TComponent* C) {
    TWritingScope Writing(C->FComponentState);
    TJson Obj = TJson::object();
    Obj["Class"] = std::string(C->ClassType()->ClassName());
    if (!C->Name().empty()) Obj["Name"] = C->Name();
    S.Objects.push_back(&Obj);
    try {
      DefineAll(C);
      CheckReserved(C, ComponentEntries);
    } catch (...) {
      S.Objects.pop_back();
      throw;
    }
    S.Objects.pop_back();
    TJson Children = TJson::array();
    for (int32_t I = 0; I < C->ComponentCount(); ++I) {
      TComponent* Child = C->Components(I);
      if (Child->IsSubComponent()) continue;
      S.Path.PushProperty(ComponentSegment(Child, static_cast<size_t>(I)));
      TPathScope Scope{S.Path};
      Children.push_back(WriteComponent(Child));
    }
    if (!Children.empty()) Obj["Components"] = std::move(Children);
    return Obj;
  };

  S.Path.Push(Root->Name().empty() ? std::string(Root->ClassType()->ClassName()) : Root->Name());
  TPathScope Scope{S.Path};
  TJson Doc = TJson::object();
  Doc["Format"] = FormatTag;
  Doc["Version"] = FormatVersion;
  Doc["Form"] = WriteComponent(Root);
  return Doc.dump(2) + "\n";
}

void TWriter::WriteValue(std::string_view Name, const TStoredType& Type,
                         const TStoredValue& Value) {
  TState& S = *FState;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  TJson J;
  switch (Type.Kind) {
  case TStoredKind::Integer:
    J = Value.Int;
    break;
  case TStoredKind::Float:
    J = FloatToJson(Value.Float);
    break;
  case TStoredKind::Single:
    J = std::isfinite(Value.Float) ? TJson(SingleForJson(static_cast<float>(Value.Float)))
                                   : FloatToJson(Value.Float);
    break;
  case TStoredKind::String:
    if (!IsValidUtf8(Value.Text)) S.Fail("the text is not valid UTF-8");
    J = Value.Text;
    break;
  case TStoredKind::Boolean:
    J = Value.Int != 0;
    break;
  case TStoredKind::Color:
    J = ColorToText(static_cast<TColor>(Value.Int));
    break;
  case TStoredKind::Enumeration:
    J = Type.NameOf(Value.Int);
    break;
  case TStoredKind::Set:
    J = TJson::array();
    for (int Bit = 0; Bit < Type.SetSize; ++Bit)
      if (Value.Int & (1LL << Bit)) {
        if (Type.NameOf)
          J.push_back(Type.NameOf(Bit));
        else
          J.push_back(Bit);
      }
    break;
  case TStoredKind::Date: {
    std::string Text = DateTimeToISO(Value.Float);
    J = Text.empty() ? FloatToJson(Value.Float) : TJson(std::move(Text));
    break;
  }
  case TStoredKind::Reference: {
    const TComponent* Target = Value.Component;
    if (Target == FRoot) {
      if (Target->Name().empty()) S.Fail("the form it refers to has no name");
      J = Target->Name();
      break;
    }
    std::string RefPath;
    for (const TComponent* C = Target; C != FRoot; C = C->Owner()) {
      if (!C) S.Fail("it refers to " + Target->Name() + ", which is not part of the form");
      if (C->Name().empty()) S.Fail("it refers to a component without a name");
      RefPath = RefPath.empty() ? C->Name() : C->Name() + "." + RefPath;
    }
    J = RefPath;
    break;
  }
  }
  (*S.Objects.back())[std::string(Name)] = std::move(J);
}

void TWriter::StoreObject(std::string_view Name, TPersistent* Obj) {
  TState& S = *FState;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  TJson Sub = TJson::object();
  S.Objects.push_back(&Sub);
  try {
    DefineAll(Obj);
  } catch (...) {
    S.Objects.pop_back();
    throw;
  }
  S.Objects.pop_back();
  if (!Sub.empty()) (*S.Objects.back())[std::string(Name)] = std::move(Sub);
}

void TWriter::StoreCollection(std::string_view Name, TCollection* Coll) {
  TState& S = *FState;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  TJson Own = TJson::object();
  TJson Items = TJson::array();
  S.Objects.push_back(&Own);
  try {
    DefineAll(Coll);
    CheckReserved(Coll, CollectionEntries);
    for (int32_t I = 0; I < Coll->Count(); ++I) {
      S.Path.PushIndex(static_cast<size_t>(I));
      TPathScope ItemScope{S.Path};
      TJson Item = TJson::object();
      S.Objects.back() = &Item;
      DefineAll(Coll->Items(I));
      Items.push_back(std::move(Item));
    }
  } catch (...) {
    S.Objects.pop_back();
    throw;
  }
  S.Objects.pop_back();
  // Items alone are an array; a collection with stored properties of its own is an
  // object that holds them and its "Items".
  TJson& Parent = *S.Objects.back();
  if (Own.empty()) {
    if (!Items.empty()) Parent[std::string(Name)] = std::move(Items);
  } else {
    if (!Items.empty()) Own["Items"] = std::move(Items);
    Parent[std::string(Name)] = std::move(Own);
  }
}

void TWriter::StoreDefined(std::string_view Name, const std::function<void(TReader&)>&,
                           const std::function<void(TWriter&)>& WriteData, bool HasData) {
  if (!HasData || !WriteData) return;
  TState& S = *FState;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  TJson Value;
  S.Defined = &Value;
  S.DefinedWritten = false;
  try {
    WriteData(*this);
  } catch (...) {
    S.Defined = nullptr;
    throw;
  }
  S.Defined = nullptr;
  if (!S.DefinedWritten) S.Fail("the class wrote no value for it");
  (*S.Objects.back())[std::string(Name)] = std::move(Value);
}

namespace {
template <class V> void PutDefined(TJson* Slot, bool& Written, V&& Value) {
  if (!Slot) throw Exception("Write functions are for the WriteData of a DefineProperty");
  if (Written) throw Exception("A DefineProperty writes one value");
  *Slot = std::forward<V>(Value);
  Written = true;
}
} // namespace

void TWriter::WriteInteger(long long Value) {
  PutDefined(FState->Defined, FState->DefinedWritten, Value);
}
void TWriter::WriteFloat(double Value) {
  PutDefined(FState->Defined, FState->DefinedWritten, FloatToJson(Value));
}
void TWriter::WriteString(const std::string& Value) {
  if (!IsValidUtf8(Value)) FState->Fail("the text is not valid UTF-8");
  PutDefined(FState->Defined, FState->DefinedWritten, Value);
}
void TWriter::WriteBoolean(bool Value) {
  PutDefined(FState->Defined, FState->DefinedWritten, Value);
}
void TWriter::WriteStrings(std::span<const std::string> Values) {
  TJson Array = TJson::array();
  for (const std::string& V : Values) {
    if (!IsValidUtf8(V)) FState->Fail("the text is not valid UTF-8");
    Array.push_back(V);
  }
  PutDefined(FState->Defined, FState->DefinedWritten, std::move(Array));
}

// --- TReader ---

struct TReader::TState {
  struct TPending {
    std::string Where;
    std::string Target;
    const TMetaClass* Class;
    std::function<void(TComponent*)> Assign;
  };
  TPath Path;
  std::vector<const TJson*> Objects;
  std::vector<TPending> References;
  std::vector<TComponent*> Made;
  const TJson* Defined = nullptr;
  int ComponentDepth = 0;

  [[noreturn]] void Fail(const std::string& Detail) const {
    throw EFilerError("Error reading " + Path.Text() + ": " + Detail);
  }
  // Runs Step with Path in force: an error of the object model gets the path added.
  template <class F> void Guard(F&& Step) const {
    try {
      Step();
    } catch (const EFilerError&) {
      throw;
    } catch (const Exception& E) {
      Fail(E.Message());
    }
  }
  long long ToInteger(const TJson& J, long long Min, long long Max) const {
    auto OutOfRange = [&](const std::string& Number) {
      Fail(Number + " is out of range (" + std::to_string(Min) + " to " + std::to_string(Max) +
           ")");
    };
    long long V = 0;
    if (J.is_number_unsigned()) {
      const auto U = J.get<uint64_t>();
      if (U > static_cast<uint64_t>(Max)) OutOfRange(std::to_string(U));
      V = static_cast<long long>(U);
    } else if (J.is_number_integer()) {
      V = J.get<int64_t>();
    } else if (J.is_number_float()) {
      Fail("expected an integer, found " + J.dump());
    } else {
      Fail(std::string("expected an integer, found ") + JsonKind(J));
    }
    if (V < Min || V > Max) OutOfRange(std::to_string(V));
    return V;
  }
  double ToFloat(const TJson& J) const {
    if (J.is_number()) return J.get<double>();
    if (!J.is_string()) Fail(std::string("expected a number, found ") + JsonKind(J));
    const auto& S = J.get_ref<const std::string&>();
    if (S == "NaN") return std::numeric_limits<double>::quiet_NaN();
    if (S == "Infinity") return std::numeric_limits<double>::infinity();
    if (S == "-Infinity") return -std::numeric_limits<double>::infinity();
    Fail("expected a number, found the text \"" + S + "\"");
  }
  const TJson* Find(std::string_view Name) const {
    const TJson& Obj = *Objects.back();
    auto It = Obj.find(Name);
    return It == Obj.end() ? nullptr : &*It;
  }
};

TReader::TReader() : TFiler(false), FState(std::make_unique<TState>()) {}
TReader::~TReader() = default;

namespace {

std::string NameList(const TStoredType& Type) {
  std::string R;
  for (std::string_view N : Type.Names()) {
    if (!R.empty()) R += ", ";
    R += N;
  }
  return R;
}

} // namespace

void TReader::ReadValue(std::string_view Name, const TStoredType& Type, TApplyValue Apply) {
  TState& S = *FState;
  const TJson* J = S.Find(Name);
  if (!J) return;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  TStoredValue V;
  switch (Type.Kind) {
  case TStoredKind::Integer:
    V.Int = S.ToInteger(*J, Type.Min, Type.Max);
    break;
  case TStoredKind::Float:
    V.Float = S.ToFloat(*J);
    break;
  case TStoredKind::Single:
    V.Float = S.ToFloat(*J);
    if (std::isfinite(V.Float) && std::fabs(V.Float) > std::numeric_limits<float>::max())
      S.Fail(J->dump() + " is out of range for a single");
    break;
  case TStoredKind::String:
    if (!J->is_string()) S.Fail(std::string("expected a string, found ") + JsonKind(*J));
    V.Text = J->get<std::string>();
    break;
  case TStoredKind::Boolean:
    if (!J->is_boolean()) S.Fail(std::string("expected true or false, found ") + JsonKind(*J));
    V.Int = J->get<bool>();
    break;
  case TStoredKind::Color:
    if (J->is_string()) {
      auto C = TextToColor(J->get_ref<const std::string&>());
      if (!C)
        S.Fail("\"" + J->get<std::string>() + "\" is not a colour name, #RRGGBB or 0xHHHHHHHH");
      V.Int = static_cast<int32_t>(*C);
    } else if (J->is_number_integer()) {
      V.Int = static_cast<int32_t>(static_cast<uint32_t>(
          S.ToInteger(*J, std::numeric_limits<int32_t>::min(), 0xFFFFFFFFLL)));
    } else {
      S.Fail(std::string("expected a colour, found ") + JsonKind(*J));
    }
    break;
  case TStoredKind::Enumeration: {
    if (!J->is_string()) S.Fail(std::string("expected a member name, found ") + JsonKind(*J));
    auto E = Type.ValueOf(J->get_ref<const std::string&>());
    if (!E) S.Fail("\"" + J->get<std::string>() + "\" is not one of " + NameList(Type));
    V.Int = *E;
    break;
  }
  case TStoredKind::Set: {
    if (!J->is_array()) S.Fail(std::string("expected an array of members, found ") + JsonKind(*J));
    for (const TJson& M : *J) {
      long long Bit = 0;
      if (Type.ValueOf) {
        if (!M.is_string()) S.Fail(std::string("expected a member name, found ") + JsonKind(M));
        auto E = Type.ValueOf(M.get_ref<const std::string&>());
        if (!E || *E < 0 || *E >= Type.SetSize)
          S.Fail("\"" + M.get<std::string>() + "\" is not one of " + NameList(Type));
        Bit = *E;
      } else {
        Bit = S.ToInteger(M, 0, Type.SetSize - 1);
      }
      V.Int |= 1LL << Bit;
    }
    break;
  }
  case TStoredKind::Date:
    if (J->is_string() && J->get_ref<const std::string&>().find('-', 1) != std::string::npos) {
      auto D = ISOToDateTime(J->get_ref<const std::string&>());
      if (!D) S.Fail("\"" + J->get<std::string>() + "\" is not a date (yyyy-mm-ddThh:nn:ss.zzz)");
      V.Float = *D;
    } else {
      V.Float = S.ToFloat(*J);
    }
    break;
  case TStoredKind::Reference:
    break;
  }
  S.Guard([&] { Apply(V); });
}

void TReader::ReadReference(std::string_view Name, const TStoredType& Type,
                            std::function<void(TComponent*)> Assign) {
  TState& S = *FState;
  const TJson* J = S.Find(Name);
  if (!J) return;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  if (!J->is_string() && !J->is_null())
    S.Fail(std::string("expected a component name, found ") + JsonKind(*J));
  S.References.push_back({S.Path.Text(), J->is_null() ? std::string() : J->get<std::string>(),
                          Type.Class, std::move(Assign)});
}

void TReader::StoreObject(std::string_view Name, TPersistent* Obj) {
  TState& S = *FState;
  const TJson* J = S.Find(Name);
  if (!J) return;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  if (!J->is_object()) S.Fail(std::string("expected an object, found ") + JsonKind(*J));
  S.Objects.push_back(J);
  try {
    DefineAll(Obj);
    for (auto It = J->begin(); It != J->end(); ++It)
      if (!WasDeclared(It.key())) S.Fail("unknown property \"" + It.key() + "\"");
  } catch (...) {
    S.Objects.pop_back();
    throw;
  }
  S.Objects.pop_back();
}

void TReader::StoreCollection(std::string_view Name, TCollection* Coll) {
  TState& S = *FState;
  const TJson* J = S.Find(Name);
  if (!J) return;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  const TJson* Items = nullptr;
  if (J->is_array()) {
    Items = J;
  } else if (J->is_object()) {
    // The collection's own properties first: a limit or a sort order then applies to the
    // items as they come in, as it did when they were written.
    S.Objects.push_back(J);
    try {
      DefineAll(Coll);
      CheckReserved(Coll, CollectionEntries);
      for (auto It = J->begin(); It != J->end(); ++It)
        if (It.key() != "Items" && !WasDeclared(It.key()))
          S.Fail("unknown property \"" + It.key() + "\"");
    } catch (...) {
      S.Objects.pop_back();
      throw;
    }
    S.Objects.pop_back();
    auto It = J->find("Items");
    if (It != J->end()) {
      if (!It->is_array())
        S.Fail(std::string("expected an array of items, found ") + JsonKind(*It));
      Items = &*It;
    }
  } else {
    S.Fail(std::string("expected an array of items, found ") + JsonKind(*J));
  }
  TUpdateScope<TCollection> Update(Coll);
  S.Guard([&] { Coll->Clear(); });
  if (!Items) return;
  size_t Index = 0;
  for (const TJson& ItemJson : *Items) {
    S.Path.PushIndex(Index++);
    TPathScope ItemScope{S.Path};
    if (!ItemJson.is_object())
      S.Fail(std::string("expected an object, found ") + JsonKind(ItemJson));
    TCollectionItem* Item = nullptr;
    S.Guard([&] { Item = Coll->Add(); });
    S.Objects.push_back(&ItemJson);
    try {
      DefineAll(Item);
      for (auto It = ItemJson.begin(); It != ItemJson.end(); ++It)
        if (!WasDeclared(It.key())) S.Fail("unknown property \"" + It.key() + "\"");
    } catch (...) {
      S.Objects.pop_back();
      throw;
    }
    S.Objects.pop_back();
  }
}

void TReader::StoreDefined(std::string_view Name, const std::function<void(TReader&)>& ReadData,
                           const std::function<void(TWriter&)>&, bool) {
  TState& S = *FState;
  const TJson* J = S.Find(Name);
  if (!J || !ReadData) return;
  S.Path.PushProperty(Name);
  TPathScope Scope{S.Path};
  S.Defined = J;
  try {
    S.Guard([&] { ReadData(*this); });
  } catch (...) {
    S.Defined = nullptr;
    throw;
  }
  S.Defined = nullptr;
}

namespace {
const TJson& DefinedValue(const TJson* Defined) {
  if (!Defined) throw Exception("Read functions are for the ReadData of a DefineProperty");
  return *Defined;
}
} // namespace

long long TReader::ReadInteger() {
  return FState->ToInteger(DefinedValue(FState->Defined), std::numeric_limits<long long>::min(),
                           std::numeric_limits<long long>::max());
}

double TReader::ReadFloat() {
  return FState->ToFloat(DefinedValue(FState->Defined));
}

std::string TReader::ReadString() {
  const TJson& J = DefinedValue(FState->Defined);
  if (!J.is_string()) FState->Fail(std::string("expected a string, found ") + JsonKind(J));
  return J.get<std::string>();
}

bool TReader::ReadBoolean() {
  const TJson& J = DefinedValue(FState->Defined);
  if (!J.is_boolean()) FState->Fail(std::string("expected true or false, found ") + JsonKind(J));
  return J.get<bool>();
}

std::vector<std::string> TReader::ReadStrings() {
  const TJson& J = DefinedValue(FState->Defined);
  if (!J.is_array()) FState->Fail(std::string("expected an array of texts, found ") + JsonKind(J));
  std::vector<std::string> Result;
  Result.reserve(J.size());
  for (const TJson& Item : J) {
    if (!Item.is_string())
      FState->Fail(std::string("expected a text in the array, found ") + JsonKind(Item));
    Result.push_back(Item.get<std::string>());
  }
  return Result;
}

// --- TReader: the form ---

namespace {

// Parses with a depth limit, turning every parse failure into an EFilerError.
TJson ParseDocument(std::string_view Text) {
  try {
    return TJson::parse(Text.begin(), Text.end(), [](int Depth, TJson::parse_event_t, TJson&) {
      if (Depth > MaxJsonDepth)
        throw EFilerError("Malformed form document: nested deeper than " +
                          std::to_string(MaxJsonDepth) + " levels");
      return true;
    });
  } catch (const TJson::exception& E) {
    throw EFilerError(std::string("Malformed form document: ") + E.what());
  }
}

const TJson& CheckDocument(const TJson& Doc) {
  if (!Doc.is_object()) throw EFilerError("Malformed form document: expected an object");
  for (auto It = Doc.begin(); It != Doc.end(); ++It)
    if (It.key() != "Format" && It.key() != "Version" && It.key() != "Form")
      throw EFilerError("Malformed form document: unknown entry \"" + It.key() + "\"");
  auto Format = Doc.find("Format");
  if (Format == Doc.end() || !Format->is_string() || *Format != FormatTag)
    throw EFilerError("Not a form document: \"Format\" must be \"" + std::string(FormatTag) + "\"");
  auto Version = Doc.find("Version");
  if (Version == Doc.end() || !Version->is_number_integer() || *Version != FormatVersion)
    throw EFilerError("Unsupported form document version " +
                      (Version == Doc.end() ? std::string("(none)") : Version->dump()));
  auto Form = Doc.find("Form");
  if (Form == Doc.end() || !Form->is_object())
    throw EFilerError("Malformed form document: \"Form\" must be an object");
  return *Form;
}

} // namespace

struct TReaderAccess {
  // Reads the component C from J (its name, properties and components), appending every
  // component made to S.Made.
  static void ReadComponent(TReader& R, TReader::TState& S, TComponent* C, const TJson& J) {
    if (auto N = J.find("Name"); N != J.end()) {
      if (!N->is_string())
        S.Fail(std::string("expected a name for the component, found ") + JsonKind(*N));
      S.Guard([&] { C->SetName(N->get<std::string>()); });
    }
    S.Objects.push_back(&J);
    try {
      R.DefineAll(C);
      R.CheckReserved(C, ComponentEntries);
      for (auto It = J.begin(); It != J.end(); ++It)
        if (It.key() != "Class" && It.key() != "Name" && It.key() != "Components" &&
            !R.WasDeclared(It.key()))
          S.Fail("unknown property \"" + It.key() + "\"");
    } catch (...) {
      S.Objects.pop_back();
      throw;
    }
    S.Objects.pop_back();

    auto Children = J.find("Components");
    if (Children == J.end()) return;
    if (!Children->is_array())
      S.Fail(std::string("expected an array of components, found ") + JsonKind(*Children));
    if (++S.ComponentDepth > MaxComponentDepth)
      S.Fail("components nested deeper than " + std::to_string(MaxComponentDepth) + " levels");
    size_t Index = 0;
    for (const TJson& ChildJson : *Children) {
      const size_t I = Index++;
      std::string Segment = "Components[" + std::to_string(I) + "]";
      if (ChildJson.is_object())
        if (auto N = ChildJson.find("Name");
            N != ChildJson.end() && N->is_string() && !N->get_ref<const std::string&>().empty())
          Segment = N->get<std::string>();
      S.Path.PushProperty(Segment);
      TPathScope Scope{S.Path};
      if (!ChildJson.is_object())
        S.Fail(std::string("expected a component, found ") + JsonKind(ChildJson));
      auto ClassName = ChildJson.find("Class");
      if (ClassName == ChildJson.end() || !ClassName->is_string())
        S.Fail("a component needs its \"Class\"");
      TClass Class = GetClass(ClassName->get_ref<const std::string&>());
      if (!Class) S.Fail("Class " + ClassName->get<std::string>() + " not found");
      const auto* Meta = dynamic_cast<const TComponentMeta*>(Class);
      if (!Meta) S.Fail(ClassName->get<std::string>() + " is not a component class");
      TComponent* Child = nullptr;
      S.Guard([&] { Child = Meta->CreateWithState(C, TComponentState{csLoading, csReading}); });
      S.Made.push_back(Child);
      ReadComponent(R, S, Child, ChildJson);
    }
    --S.ComponentDepth;
  }

  static TComponent* FindByPath(TComponent* Root, std::string_view Path) {
    TComponent* C = Root;
    size_t Start = 0;
    while (C) {
      const size_t Dot = Path.find('.', Start);
      const std::string_view Segment =
          Path.substr(Start, Dot == std::string_view::npos ? std::string_view::npos : Dot - Start);
      C = C->FindComponent(Segment);
      if (Dot == std::string_view::npos) break;
      Start = Dot + 1;
    }
    if (!C && !Root->Name().empty() && SameText(Path, Root->Name())) return Root;
    return C;
  }

  static void ResolveReferences(TReader::TState& S, TComponent* Root) {
    for (auto& Ref : S.References) {
      TComponent* Target = nullptr;
      if (!Ref.Target.empty()) {
        Target = FindByPath(Root, Ref.Target);
        if (!Target)
          throw EFilerError("Error reading " + Ref.Where + ": no component named " + Ref.Target);
        if (!Target->InheritsFrom(Ref.Class))
          throw EFilerError("Error reading " + Ref.Where + ": " + Ref.Target + " is a " +
                            Target->ClassName() + ", not a " + std::string(Ref.Class->ClassName()));
      }
      try {
        Ref.Assign(Target);
      } catch (const EFilerError&) {
        throw;
      } catch (const Exception& E) {
        throw EFilerError("Error reading " + Ref.Where + ": " + E.Message());
      }
    }
  }

  // The components a document holds; the sub-components Root made itself stay.
  static void FreeStoredComponents(TComponent* Root) {
    for (int32_t I = Root->ComponentCount() - 1; I >= 0; --I) {
      if (I >= Root->ComponentCount()) continue;
      TComponent* C = Root->Components(I);
      if (!C->IsSubComponent()) C->Free();
    }
  }

  static void Load(TReader& R, TReader::TState& S, TComponent* Root, const TJson& Form) {
    auto DocName = Form.find("Name");
    S.Path.Push(DocName != Form.end() && DocName->is_string() &&
                        !DocName->get_ref<const std::string&>().empty()
                    ? DocName->get<std::string>()
                    : Root->ClassName());
    TPathScope Scope{S.Path};
    auto ClassName = Form.find("Class");
    if (ClassName == Form.end() || !ClassName->is_string()) S.Fail("the form needs its \"Class\"");
    if (*ClassName != Root->ClassName())
      S.Fail("the document holds a " + ClassName->get<std::string>() + ", not a " +
             Root->ClassName());
    FreeStoredComponents(Root);
    const TComponentState Reading{csLoading, csReading};
    Root->FComponentState += Reading;
    S.Made.assign(1, Root);
    try {
      ReadComponent(R, S, Root, Form);
      ResolveReferences(S, Root);
      for (TComponent* C : S.Made)
        S.Guard([&] { C->Loaded(); });
      for (TComponent* C : S.Made)
        C->FComponentState -= Reading;
    } catch (...) {
      // Nothing half-built stays: every component read so far goes with the form's.
      FreeStoredComponents(Root);
      Root->FComponentState -= Reading;
      throw;
    }
  }
};

bool TFiler::WasDeclared(std::string_view Name) const {
  for (const std::string& D : FFrames[FDepth].Declared)
    if (D == Name) return true;
  return false;
}

void TReader::ReadRootComponent(TComponent* Root, std::string_view Json) {
  if (!Root) throw EFilerError("No form to read into");
  const TJson Doc = ParseDocument(Json);
  const TJson& Form = CheckDocument(Doc);
  // A rehearsal on a scratch instance finds the errors of the document, so that Root
  // is not touched by a document that cannot be read.
  if (const auto* Meta = dynamic_cast<const TComponentMeta*>(Root->ClassType());
      Meta && !Meta->IsAbstract()) {
    TOwned<TComponent> Scratch(
        Meta->CreateWithState(nullptr, TComponentState{csLoading, csReading}));
    TReader Rehearsal;
    Rehearsal.FRoot = Scratch.get();
    TReaderAccess::Load(Rehearsal, *Rehearsal.FState, Scratch.get(), Form);
  }
  FRoot = Root;
  *FState = TState();
  TReaderAccess::Load(*this, *FState, Root, Form);
}

// --- Entry points ---

std::string SaveFormToString(TComponent* Form) {
  TWriter Writer;
  return Writer.WriteRootComponent(Form);
}

void SaveFormToStream(TComponent* Form, std::ostream& Stream) {
  const std::string Text = SaveFormToString(Form);
  Stream.write(Text.data(), static_cast<std::streamsize>(Text.size()));
  if (!Stream) throw EFilerError("Cannot write the form to the stream");
}

void SaveFormToFile(TComponent* Form, const std::filesystem::path& FileName) {
  const std::string Text = SaveFormToString(Form);
  std::filesystem::path Temp = FileName;
  Temp += ".tmp";
  {
    std::ofstream Out(Temp, std::ios::binary | std::ios::trunc);
    if (!Out) throw EFilerError("Cannot create " + Temp.string());
    Out.write(Text.data(), static_cast<std::streamsize>(Text.size()));
    Out.close();
    if (!Out) {
      std::error_code Ignored;
      std::filesystem::remove(Temp, Ignored);
      throw EFilerError("Cannot write " + Temp.string());
    }
  }
  std::error_code Ec;
  std::filesystem::rename(Temp, FileName, Ec);
  if (Ec) {
    std::error_code Ignored;
    std::filesystem::remove(Temp, Ignored);
    throw EFilerError("Cannot replace " + FileName.string() + ": " + Ec.message());
  }
}

void LoadFormFromString(TComponent* Form, std::string_view Json) {
  TReader Reader;
  Reader.ReadRootComponent(Form, Json);
}

void LoadFormFromStream(TComponent* Form, std::istream& Stream) {
  std::string Text((std::istreambuf_iterator<char>(Stream)), std::istreambuf_iterator<char>());
  if (Stream.bad()) throw EFilerError("Cannot read the form from the stream");
  LoadFormFromString(Form, Text);
}

void LoadFormFromFile(TComponent* Form, const std::filesystem::path& FileName) {
  std::ifstream In(FileName, std::ios::binary);
  if (!In) throw EFilerError("Cannot open " + FileName.string());
  LoadFormFromStream(Form, In);
}

} // namespace kx
