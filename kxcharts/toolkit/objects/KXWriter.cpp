// TWriter and the entry points that save a form: a form to its JSON document.
#include "kxcharts/toolkit/objects/KXWriter.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <ostream>
#include <system_error>
#include <utility>

#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/objects/KXStreaming_p.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx {

using namespace streaming;

namespace {

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

std::string ComponentSegment(const TComponent* C, size_t Index) {
  return C->Name().empty() ? "Components[" + std::to_string(Index) + "]" : C->Name();
}

// Why a reference to the unnamed C cannot be written, and what to do about it: which
// component it is (its class and where it stands among its owner's) and how to name it.
std::string UnnamedTarget(const TComponent* C, bool IsRoot) {
  std::string Which = "a " + std::string(C->ClassType()->ClassName()) + " without a name";
  if (IsRoot)
    Which = "the form, " + Which;
  else if (const TComponent* Owner = C->Owner())
    Which += " (component " + std::to_string(C->ComponentIndex()) + " of " +
             (Owner->Name().empty() ? "a " + std::string(Owner->ClassType()->ClassName())
                                    : Owner->Name()) +
             ")";
  return "it refers to " + Which + ": give it a name with SetName before saving";
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
      if (Target->Name().empty()) S.Fail(UnnamedTarget(Target, true));
      J = Target->Name();
      break;
    }
    std::string RefPath;
    for (const TComponent* C = Target; C != FRoot; C = C->Owner()) {
      if (!C) S.Fail("it refers to " + Target->Name() + ", which is not part of the form");
      if (C->Name().empty()) S.Fail(UnnamedTarget(C, false));
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

} // namespace kx
