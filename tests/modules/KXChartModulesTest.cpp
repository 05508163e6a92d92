#include "kxcharts/KXChartModules.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "kxcharts/core/KXChartPanel.h"

namespace kx {
namespace {

// The classes named in the first column of the README's table of chart kinds.
std::set<std::string> ReadmeChartKinds() {
  const char* Source = std::getenv("KX_SOURCE_DIR");
  if (!Source) return {};
  std::ifstream In(std::filesystem::path(Source) / "README.md");
  std::stringstream Text;
  Text << In.rdbuf();
  const std::string Readme = Text.str();
  const size_t From = Readme.find("<!-- chart-kinds");
  if (From == std::string::npos) return {};
  const size_t To = Readme.find("\n## ", From);
  const std::string Table = Readme.substr(From, To - From);
  std::set<std::string> Names;
  const std::regex Row(R"(\n\| `(T\w+)` \|)");
  for (auto It = std::sregex_iterator(Table.begin(), Table.end(), Row);
       It != std::sregex_iterator(); ++It)
    Names.insert((*It)[1]);
  return Names;
}

TEST(ChartModules, StartingTwiceRegistersEachKindOnce) {
  StartChartModules();
  StartChartModules();
  ASSERT_NE(GetChartClass(ctLine), nullptr);
  EXPECT_EQ(std::string(GetChartClass(ctLine)->ClassName()), "TKXLineChart");
  EXPECT_NE(GetClass("TKXChartPanel"), nullptr);
  EXPECT_NE(GetClass("TKXChartFunction"), nullptr);
}

// The README's list of chart kinds is what a newcomer reads first: it names every kind the
// library registers and nothing it does not.
TEST(ChartModules, TheReadmeListsExactlyTheRegisteredChartKinds) {
  ASSERT_NE(std::getenv("KX_SOURCE_DIR"), nullptr);
  StartChartModules();
  const std::set<std::string> Listed = ReadmeChartKinds();
  ASSERT_FALSE(Listed.empty()) << "README.md has no table of chart kinds after '<!-- chart-kinds'";
  for (const std::string& Name : Listed) {
    const TClass Class = GetClass(Name);
    EXPECT_TRUE(Class && Class->InheritsFrom(TKXCustomChart::StaticClass()))
        << "README.md lists " << Name << " under Chart kinds, which the library does not "
        << "register: take its line out, or register the class in its module's start-up";
  }
  for (int Kind = 0; Kind < TEnumCount<TKXChartType>; ++Kind) {
    const TKXCustomChartClass Class = GetChartClass(static_cast<TKXChartType>(Kind));
    if (!Class) continue;
    EXPECT_EQ(Listed.count(std::string(Class->ClassName())), 1u)
        << "README.md does not list " << Class->ClassName() << " ("
        << GetEnumName(static_cast<TKXChartType>(Kind))
        << ") under Chart kinds: add a line for it to the table";
  }
}

} // namespace
} // namespace kx
