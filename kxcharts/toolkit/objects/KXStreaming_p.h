#pragma once
// What the writer and the reader share about the form document, and nothing else needs:
// its JSON type, its tag and version, the entries it keeps for itself, and the path that
// error messages name.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace kx::streaming {

// Ordered, so that properties are written and read in the order their class declares them.
using TJson = nlohmann::ordered_json;

inline constexpr const char* FormatTag = "kxcharts-form";
inline constexpr int FormatVersion = 1;

// Entries the format itself uses in a component and in a collection.
inline constexpr std::string_view ComponentEntries[] = {"Class", "Name", "Components"};
inline constexpr std::string_view CollectionEntries[] = {"Items"};

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

} // namespace kx::streaming
