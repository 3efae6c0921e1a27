#pragma once

#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "velt/foundation/KeyedCollection.hpp"
#include "velt/platform/FileAttributes.hpp"
#include "velt/utilities/sf_InformationValue.hpp"

namespace velt {

// The results of a search, in order, optionally under unique keys matched
// without regard to case. Errors are the collection's: 457 for a key in use
// (nothing is added), 9 for a position outside 1..Count.
class sf_Information {
 public:
  using Enumeration = KeyedCollection<sf_InformationValue>::Enumeration;

  sf_Information();
  sf_Information(const sf_Information&) = delete;
  sf_Information& operator=(const sf_Information&) = delete;

  // A new result with these properties, appended under sKey unless it is
  // empty.
  std::shared_ptr<sf_InformationValue> Add(std::string Path, std::string Filename,
                                           std::string DateTime, FileAttributeSet Attrib,
                                           std::string Size, const std::string& sKey = "");
  std::shared_ptr<sf_InformationValue> Item(int16_t vntIndexKey) const;
  int32_t Count() const { return items_.Count(); }
  void Remove(int16_t vntIndexKey);

  Enumeration NewEnum() const { return items_.NewEnum(); }
  KeyedCollection<sf_InformationValue>::Iterator begin() const { return items_.begin(); }
  std::default_sentinel_t end() const { return {}; }

 private:
  friend class ResultMaker;

  // Appends a value made elsewhere, under key unless it is empty.
  void append(std::shared_ptr<sf_InformationValue> value, std::string_view key) {
    items_.Add(std::move(value), key);
  }

  KeyedCollection<sf_InformationValue> items_;
};

}  // namespace velt
