#pragma once
// TWriter: a form (a root component with the components it owns) to a JSON document,
// through the stored properties its classes declare (KXFiler.h), and the entry points that
// save a form.

#include <filesystem>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "kxcharts/toolkit/objects/KXFiler.h"

namespace kx {

// --- TWriter ---

// Writes a form to a JSON document. Also the other end of DefineProperty: WriteData calls
// one of the Write functions.
class TWriter : public TFiler {
public:
  TWriter();
  ~TWriter() override;

  // The document of Root and every component it owns (sub-components aside), as text.
  // Raises EFilerError for what cannot be written (a reference to a component outside
  // the form or without a name).
  std::string WriteRootComponent(TComponent* Root);

  void WriteInteger(long long Value);
  void WriteFloat(double Value);
  void WriteString(const std::string& Value);
  void WriteBoolean(bool Value);
  // A list of texts, as one array: each text whole, line breaks and all.
  void WriteStrings(std::span<const std::string> Values);

protected:
  void WriteValue(std::string_view Name, const TStoredType& Type,
                  const TStoredValue& Value) override;
  void StoreObject(std::string_view Name, TPersistent* Obj) override;
  void StoreCollection(std::string_view Name, TCollection* Coll) override;
  void StoreDefined(std::string_view Name, const std::function<void(TReader&)>& ReadData,
                    const std::function<void(TWriter&)>& WriteData, bool HasData) override;

private:
  struct TState;
  std::unique_ptr<TState> FState;
};
// Each raises EFilerError on a form that cannot be written, and on a file or stream that
// cannot be written to. Saving to a file writes a temporary file beside it first, so an
// error leaves the old file as it was.
void SaveFormToFile(TComponent* Form, const std::filesystem::path& FileName);
void SaveFormToStream(TComponent* Form, std::ostream& Stream);
std::string SaveFormToString(TComponent* Form);

} // namespace kx
