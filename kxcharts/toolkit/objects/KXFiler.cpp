// TFiler: the frames that DefineProperties declares into, and the checks on them.
#include "kxcharts/toolkit/objects/KXFiler.h"

#include "kxcharts/toolkit/runtime/KXSysUtils.h"

namespace kx {

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

bool TFiler::WasDeclared(std::string_view Name) const {
  for (const std::string& D : FFrames[FDepth].Declared)
    if (D == Name) return true;
  return false;
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

} // namespace kx
