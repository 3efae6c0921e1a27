#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "velt/platform/DirectoryEnumerator.hpp"
#include "velt/utilities/sf_Information.hpp"

namespace velt {

class DateTimeText;

// Makes the results of one search from what the enumeration found.
//
// A scan makes hundreds of thousands of results; one allocation each would
// cost more than finding them. So they are made in blocks of many and handed
// out as references into their block: a result keeps its block alive, and
// the block the date formatter. Their DateTime is written only when first
// read, by the formatter made with the maker, so it is the text of the
// locale and time zone at the time of the search. Results of one search
// share that formatter: read them from one thread at a time, as the user
// interface thread does.
class ResultMaker {
 public:
  ResultMaker();
  ~ResultMaker();
  ResultMaker(const ResultMaker&) = delete;
  ResultMaker& operator=(const ResultMaker&) = delete;

  // Adds to results a result for an entry Described by the enumeration,
  // found in the folder path (ending in "/"): Size is the entry's length
  // ("0" for a folder). Under key unless it is empty; a key in use is the
  // collection's error 457 and nothing is added.
  void Add(sf_Information& results, const std::shared_ptr<const std::string>& path,
           const DirectoryEntry& entry, std::string_view key = {});

 private:
  struct Block;

  std::shared_ptr<DateTimeText> dates_;
  std::shared_ptr<Block> block_;
  // Blocks grow up to a limit, so that a search finding little makes little.
  size_t nextCapacity_;
};

}  // namespace velt
