#include <iostream>

#include "kxcharts/toolkit/objects/KXObject.h"
#include "kxcharts/toolkit/runtime/KXSet.h"

int main() {
  kx::TObject* O = kx::New<kx::TPersistent>();
  const bool Ok = O->ClassName() == "TPersistent";
  O->Free();
  std::cout << (Ok ? "kxcharts ok" : "kxcharts broken") << "\n";
  return Ok ? 0 : 1;
}
