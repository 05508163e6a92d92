// TReader and the entry points that load a form: a JSON document back into a form.
#include "kxcharts/toolkit/objects/KXReader.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <istream>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "kxcharts/toolkit/objects/KXClasses.h"
#include "kxcharts/toolkit/objects/KXStreaming_p.h"
#include "kxcharts/toolkit/runtime/KXDateUtils.h"

namespace kx {

using namespace streaming;

namespace {

// Deep enough for any real form; a hostile document is stopped long before the stack is.
constexpr int MaxJsonDepth = 256;
constexpr int MaxComponentDepth = 64;

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

} // namespace

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

// Raises when the arrays and objects of Text nest deeper than MaxJsonDepth levels below the
// document's own object, counting the brackets outside strings. A pass of its own, linear in
// the text: the parser's depth callback costs a walk of the enclosing array at the end of
// every object in it, which made reading a form quadratic in the number of its values.
void CheckNesting(std::string_view Text) {
  int Depth = 0;
  bool InString = false;
  for (size_t I = 0; I < Text.size(); ++I) {
    const char C = Text[I];
    if (InString) {
      if (C == '\\')
        ++I;
      else if (C == '"')
        InString = false;
      continue;
    }
    if (C == '"') {
      InString = true;
    } else if (C == '[' || C == '{') {
      if (++Depth > MaxJsonDepth + 1)
        throw EFilerError("Malformed form document: nested deeper than " +
                          std::to_string(MaxJsonDepth) + " levels");
    } else if (C == ']' || C == '}') {
      --Depth;
    }
  }
}

// Parses with a depth limit, turning every parse failure into an EFilerError.
TJson ParseDocument(std::string_view Text) {
  CheckNesting(Text);
  try {
    return TJson::parse(Text.begin(), Text.end());
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
      // Most often the library's own classes, before anything registered them.
      if (!Class)
        S.Fail("Class " + ClassName->get<std::string>() +
               " not found: call kx::StartChartModules() before reading a form (it registers "
               "every chart class), and RegisterClass for classes of your own");
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
