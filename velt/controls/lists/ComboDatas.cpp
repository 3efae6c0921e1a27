#include "velt/controls/lists/ComboDatas.hpp"

#include <string>

#include "velt/platform/Error.hpp"

namespace velt {

ComboDatas::ComboDatas() : items_(KeyComparison::IgnoreCase, "ComboDatas") {}

std::shared_ptr<ComboData> ComboDatas::Add(const std::string& Key, const std::string& Caption,
                                           const std::string& Value, int16_t Icon,
                                           const std::string& sComment) {
  auto entry = std::make_shared<ComboData>();
  entry->Key(Key);
  entry->caption_ = Caption;  // a new entry, not an edit
  entry->Value(Value);
  entry->Icon(Icon);
  entry->Comment(sComment);

  const std::optional<CaptionOrder::Direction> direction = placingDirection();
  const int32_t position = placeFor(Caption, direction);
  items_.Insert(position, entry, Key);
  if (direction)
    order_.Placed(*direction, items_.Count());
  else
    order_.Appended(items_.Count());
  // A handler may destroy this collection: nothing below touches it.
  ItemAdded.Raise();
  return entry;
}

// The direction in which Add places entries by caption; none when it appends.
std::optional<CaptionOrder::Direction> ComboDatas::placingDirection() const {
  if (!sorted_) return std::nullopt;
  switch (sorting_) {
    case sd_Ascending:
      return CaptionOrder::Direction::Ascending;
    case sd_Descending:
      return CaptionOrder::Direction::Descending;
  }
  return std::nullopt;  // any other value stored in Sorting
}

int32_t ComboDatas::placeFor(const std::string& caption,
                             std::optional<CaptionOrder::Direction> direction) {
  const int32_t count = items_.Count();
  if (!sorted_ || count == 0) return count + 1;
  // The walk counts in 16 bits even when it compares nothing.
  if (count > kMaxSortedCount)
    throw Error(errOverflow, "ComboDatas.Add: a sorted Add places among at most " +
                                 std::to_string(kMaxSortedCount) + " entries, this list has " +
                                 std::to_string(count));
  return direction ? order_.PlaceFor(items_, *direction, caption) : count + 1;
}

std::shared_ptr<ComboData> ComboDatas::Item(int16_t position) const {
  return items_.Item(position);
}

std::shared_ptr<ComboData> ComboDatas::Item(const std::string& key) const {
  return items_.Item(key);
}

void ComboDatas::Remove(int16_t position) {
  items_.Remove(position);
  order_.Removed(items_.Count());
  ItemChanged.Raise();
}

void ComboDatas::Remove(const std::string& key) {
  items_.Remove(key);
  order_.Removed(items_.Count());
  ItemChanged.Raise();
}

void ComboDatas::Clear() {
  items_.Clear();
  order_.Removed(0);
  ItemChanged.Raise();
}

}  // namespace velt
