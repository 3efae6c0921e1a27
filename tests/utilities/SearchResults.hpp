#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "TempTree.hpp"
#include "velt/utilities/Search.hpp"

namespace velt::testing {

using Names = std::vector<std::string>;
using NameSet = std::set<std::string>;

// The Filename of each result in order, after its Path when asked.
inline Names Filenames(const std::shared_ptr<sf_Information>& results, bool withPath = false) {
  Names names;
  for (const auto& value : *results)
    names.push_back(withPath ? value->Path() + value->Filename() : value->Filename());
  return names;
}

inline NameSet AsSet(const Names& names) {
  return {names.begin(), names.end()};
}

// A tree and a Search object; the four searches return their collection.
class SearchFixture : public ::testing::Test {
 protected:
  void TearDown() override { Search::DoEventsHandler(nullptr); }

  std::shared_ptr<sf_Information> files(const std::string& folders, const std::string& patterns,
                                        FileAttributeSet mask = faNormal) {
    return checked([&](auto& found) { search.Search_File(folders, patterns, mask, found); });
  }
  std::shared_ptr<sf_Information> folders(const std::string& folders, const std::string& patterns) {
    return checked([&](auto& found) { search.Search_Directory(folders, patterns, found); });
  }
  std::shared_ptr<sf_Information> scanFiles(const std::string& path,
                                            const std::string& filter = "*.*") {
    return checked([&](auto& found) { search.ScanPathforFiles(path, filter, found); });
  }
  std::shared_ptr<sf_Information> scanPaths(const std::string& path) {
    return checked([&](auto& found) { search.ScanPathforPaths(path, found); });
  }

  TempTree tree;
  Search search;

 private:
  template <typename Call>
  static std::shared_ptr<sf_Information> checked(Call call) {
    std::shared_ptr<sf_Information> found;
    call(found);
    EXPECT_NE(found, nullptr);
    return found ? found : std::make_shared<sf_Information>();
  }
};

}  // namespace velt::testing
