#include "kxcharts/toolkit/objects/KXObject.h"

namespace kx {

void TPersistent::Assign(const TPersistent* Source) {
  if (Source == this) return;
  if (Source) {
    Source->AssignTo(this);
    return;
  }
  AssignError(nullptr);
}

void TPersistent::DefineProperties(TFiler&) {}

void TPersistent::AssignTo(TPersistent* Dest) const {
  // Dest is the object being assigned to; the error speaks from its side.
  Dest->AssignError(this);
}

void TPersistent::AssignError(const TPersistent* Source) const {
  const std::string SourceName = Source ? Source->ClassName() : std::string("nil");
  throw EConvertError("Cannot assign a " + SourceName + " to a " + ClassName());
}

} // namespace kx
