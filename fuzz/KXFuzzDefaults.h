#pragma once
// Defaults that `./kx fuzz` cannot pass to a target, added to its arguments unless given:
// the entropic schedule spends most of its time on its own bookkeeping for these targets
// (17 times fewer runs), and a dictionary of the format's words gets the mutator past the
// JSON syntax quickly. For LLVMFuzzerInitialize.

#include <string>
#include <string_view>
#include <vector>

namespace kx::fuzz {

inline void AddDefaultArguments(int* Argc, char*** Argv, const std::string& Dictionary) {
  static std::vector<std::string> Extra;
  static std::vector<char*> Args;
  bool HasEntropic = false, HasDict = false;
  for (int I = 0; I < *Argc; ++I) {
    const std::string_view A((*Argv)[I]);
    HasEntropic |= A.rfind("-entropic=", 0) == 0;
    HasDict |= A.rfind("-dict=", 0) == 0;
  }
  if (!HasEntropic) Extra.push_back("-entropic=0");
  if (!HasDict) Extra.push_back("-dict=" + Dictionary);
  Args.assign(*Argv, *Argv + *Argc);
  for (std::string& E : Extra)
    Args.push_back(E.data());
  Args.push_back(nullptr);
  *Argc = static_cast<int>(Args.size()) - 1;
  *Argv = Args.data();
}

} // namespace kx::fuzz
