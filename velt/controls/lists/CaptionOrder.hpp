#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "velt/controls/lists/ComboData.hpp"
#include "velt/foundation/KeyedCollection.hpp"

namespace velt {

class Collator;

// Where a sorted ComboDatas::Add puts a new caption. The rule is a walk over
// the entries that stops at the first one that qualifies: from the last entry
// towards the first when ascending (the new entry goes after it), from the
// first towards the last when descending (it goes before it). When the entries
// are known to be in order for the direction, the walk's stopping point is
// found by halving instead, with the same result; the rule is O(n) per Add,
// the halving O(log n).
//
// What is known about the order is updated as the collection changes and
// forgotten whenever any caption is edited. Comparisons use the user's locale
// with case folded, through one collator opened at the first comparison.
class CaptionOrder {
 public:
  enum class Direction { Ascending, Descending };

  CaptionOrder();
  ~CaptionOrder();
  CaptionOrder(const CaptionOrder&) = delete;
  CaptionOrder& operator=(const CaptionOrder&) = delete;

  // The 1-based position the new caption goes to (Count + 1 is after the last).
  int32_t PlaceFor(const KeyedCollection<ComboData>& items, Direction direction,
                   std::string_view caption);

  // The collection changed; count is its new Count.
  void Placed(Direction direction, int32_t count);  // put where PlaceFor said
  void Appended(int32_t count);
  void Removed(int32_t count);

 private:
  enum class Known : uint8_t { Unknown, InOrder, OutOfOrder };

  Known& knownFor(Direction direction);
  void forgetIfEdited();
  void learnOrder(const KeyedCollection<ComboData>& items);
  bool goesBefore(const ComboData& entry, Direction direction, std::string_view caption);
  int32_t walk(const KeyedCollection<ComboData>& items, Direction direction,
               std::string_view caption);
  int32_t search(const KeyedCollection<ComboData>& items, Direction direction,
                 std::string_view caption);
  int32_t halve(const KeyedCollection<ComboData>& items, Direction direction,
                std::string_view caption, int32_t low, int32_t high);
  int32_t compare(std::string_view left, std::string_view right);

  std::unique_ptr<Collator> collator_;
  Known ascending_ = Known::InOrder;
  Known descending_ = Known::InOrder;
  uint64_t editsSeen_ = ComboData::captionEdits();
};

}  // namespace velt
