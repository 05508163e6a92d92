#pragma once
// TReader: a JSON form document back into a root component, and the entry points that load
// a form.
//
// Reading. The reader makes every component first (with csLoading and csReading included
// before AfterConstruction() runs), setting properties in declared order; then it sets
// the references; then it calls Loaded on each component in the order they were made;
// then it clears csLoading and csReading. Bad input raises EFilerError naming the
// property and its path (e.g. "Error reading Form1.Chart1.Values[3].Caption: ...").

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kxcharts/toolkit/objects/KXFiler.h"

namespace kx {

// --- TReader ---

// Reads a form document into a root component. Also the other end of DefineProperty:
// ReadData calls one of the Read functions.
class TReader : public TFiler {
public:
  TReader();
  ~TReader() override;

  // Reads Json into Root, which must be of the document's class. The components Root
  // owns are freed first: the document replaces them. On bad input nothing is changed:
  // the document is first read into a scratch instance of Root's class, and only when
  // that succeeds into Root. Should Root's own reading still fail (a setter that
  // raises), Root is left without components and the error passes on.
  void ReadRootComponent(TComponent* Root, std::string_view Json);

  long long ReadInteger();
  double ReadFloat();
  std::string ReadString();
  bool ReadBoolean();
  // The array WriteStrings wrote.
  std::vector<std::string> ReadStrings();

protected:
  void ReadValue(std::string_view Name, const TStoredType& Type, TApplyValue Apply) override;
  void ReadReference(std::string_view Name, const TStoredType& Type,
                     std::function<void(TComponent*)> Assign) override;
  void StoreObject(std::string_view Name, TPersistent* Obj) override;
  void StoreCollection(std::string_view Name, TCollection* Coll) override;
  void StoreDefined(std::string_view Name, const std::function<void(TReader&)>& ReadData,
                    const std::function<void(TWriter&)>& WriteData, bool HasData) override;

private:
  friend struct TReaderAccess;
  struct TState;
  std::unique_ptr<TState> FState;
};
// Each raises EFilerError on a document that cannot be read, and on a file that cannot be
// opened (ReadRootComponent says what the form holds then).
void LoadFormFromFile(TComponent* Form, const std::filesystem::path& FileName);
void LoadFormFromStream(TComponent* Form, std::istream& Stream);
void LoadFormFromString(TComponent* Form, std::string_view Json);

} // namespace kx
