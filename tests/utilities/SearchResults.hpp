#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "velt/utilities/sf_Information.hpp"

namespace velt::testing {

inline std::vector<std::string> Filenames(const std::shared_ptr<sf_Information>& results) {
  std::vector<std::string> names;
  if (results)
    for (const auto& value : *results)
      names.push_back(value->Filename());
  return names;
}

// Path + Filename of each result, in order.
inline std::vector<std::string> FullNames(const std::shared_ptr<sf_Information>& results) {
  std::vector<std::string> names;
  if (results)
    for (const auto& value : *results)
      names.push_back(value->Path() + value->Filename());
  return names;
}

inline std::set<std::string> AsSet(const std::vector<std::string>& names) {
  return {names.begin(), names.end()};
}

}  // namespace velt::testing
