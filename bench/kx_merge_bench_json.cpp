// Joins the Google Benchmark JSON outputs of several programs into one file: the context
// of the first, and the benchmarks of all in program order.
// Usage: kx_merge_bench_json OUT IN...
#include <fstream>
#include <iostream>

#include <nlohmann/json.hpp>

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: kx_merge_bench_json OUT IN...\n";
    return 2;
  }
  nlohmann::ordered_json Merged;
  Merged["benchmarks"] = nlohmann::ordered_json::array();
  for (int I = 2; I < argc; ++I) {
    std::ifstream In(argv[I]);
    if (!In) {
      std::cerr << "kx_merge_bench_json: cannot read " << argv[I] << "\n";
      return 1;
    }
    nlohmann::ordered_json Part;
    try {
      Part = nlohmann::ordered_json::parse(In);
    } catch (const std::exception& E) {
      std::cerr << "kx_merge_bench_json: " << argv[I] << ": " << E.what() << "\n";
      return 1;
    }
    if (!Merged.contains("context") && Part.contains("context"))
      Merged["context"] = Part["context"];
    for (auto& B : Part.value("benchmarks", nlohmann::ordered_json::array()))
      Merged["benchmarks"].push_back(B);
  }
  std::ofstream Out(argv[1]);
  Out << Merged.dump(2) << "\n";
  return Out ? 0 : 1;
}
