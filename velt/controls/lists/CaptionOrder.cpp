#include "velt/controls/lists/CaptionOrder.hpp"

#include "velt/platform/Collator.hpp"

namespace velt {

CaptionOrder::CaptionOrder() = default;
CaptionOrder::~CaptionOrder() = default;

int32_t CaptionOrder::PlaceFor(const KeyedCollection<ComboData>& items, Direction direction,
                               std::string_view caption) {
  forgetIfEdited();
  if (items.Count() == 0) return 1;
  if (knownFor(direction) == Known::Unknown) learnOrder(items);
  return knownFor(direction) == Known::InOrder ? search(items, direction, caption)
                                               : walk(items, direction, caption);
}

void CaptionOrder::Placed(Direction direction, int32_t count) {
  forgetIfEdited();
  if (count <= 1) {
    ascending_ = descending_ = Known::InOrder;
    return;
  }
  // An entry placed by the rule keeps an ordered sequence ordered in its own
  // direction; the other direction may or may not survive. Nothing inserted
  // mends a pair that is out of order.
  Known& other =
      knownFor(direction == Direction::Ascending ? Direction::Descending : Direction::Ascending);
  if (other == Known::InOrder) other = Known::Unknown;
}

void CaptionOrder::Appended(int32_t count) {
  forgetIfEdited();
  if (count <= 1) {
    ascending_ = descending_ = Known::InOrder;
    return;
  }
  for (Known* known : {&ascending_, &descending_})
    if (*known == Known::InOrder) *known = Known::Unknown;
}

void CaptionOrder::Removed(int32_t count) {
  forgetIfEdited();
  if (count <= 1) {
    ascending_ = descending_ = Known::InOrder;
    return;
  }
  // Removing keeps an ordered sequence ordered but may mend one that was not.
  for (Known* known : {&ascending_, &descending_})
    if (*known == Known::OutOfOrder) *known = Known::Unknown;
}

CaptionOrder::Known& CaptionOrder::knownFor(Direction direction) {
  return direction == Direction::Ascending ? ascending_ : descending_;
}

void CaptionOrder::forgetIfEdited() {
  const uint64_t edits = ComboData::captionEdits();
  if (edits == editsSeen_) return;
  editsSeen_ = edits;
  ascending_ = descending_ = Known::Unknown;
}

// One pass over neighbouring captions settles whichever direction is unknown.
void CaptionOrder::learnOrder(const KeyedCollection<ComboData>& items) {
  const bool learnAscending = ascending_ == Known::Unknown;
  const bool learnDescending = descending_ == Known::Unknown;
  bool ascending = true;
  bool descending = true;
  const int32_t count = items.Count();
  for (int32_t position = 1; position < count; ++position) {
    if (!(learnAscending && ascending) && !(learnDescending && descending)) break;
    const int32_t order = compare(items.Get(position).Caption(), items.Get(position + 1).Caption());
    if (order > 0) ascending = false;
    if (order < 0) descending = false;
  }
  if (learnAscending) ascending_ = ascending ? Known::InOrder : Known::OutOfOrder;
  if (learnDescending) descending_ = descending ? Known::InOrder : Known::OutOfOrder;
}

// Whether the new entry belongs in front of entry: ascending when entry sorts
// after it, descending when entry sorts first or ties (equal captions end up in
// reverse order of adding).
bool CaptionOrder::goesBefore(const ComboData& entry, Direction direction,
                              std::string_view caption) {
  const int32_t order = compare(entry.Caption(), caption);
  return direction == Direction::Ascending ? order > 0 : order <= 0;
}

int32_t CaptionOrder::walk(const KeyedCollection<ComboData>& items, Direction direction,
                           std::string_view caption) {
  const int32_t count = items.Count();
  if (direction == Direction::Ascending) {
    for (int32_t position = count; position >= 1; --position)
      if (!goesBefore(items.Get(position), direction, caption)) return position + 1;
    return 1;
  }
  for (int32_t position = 1; position <= count; ++position)
    if (goesBefore(items.Get(position), direction, caption)) return position;
  return count + 1;
}

// In ordered entries goesBefore is false up to some position and true from
// there on; that position is where both walks stop. The walk's own first step
// comes first, so captions that arrive in order cost one comparison each.
int32_t CaptionOrder::search(const KeyedCollection<ComboData>& items, Direction direction,
                             std::string_view caption) {
  const int32_t count = items.Count();
  if (direction == Direction::Ascending) {
    if (!goesBefore(items.Get(count), direction, caption)) return count + 1;
    return halve(items, direction, caption, 1, count);
  }
  if (goesBefore(items.Get(1), direction, caption)) return 1;
  return halve(items, direction, caption, 2, count + 1);
}

// The first position in low..high - 1 in front of which the caption goes, or
// high.
int32_t CaptionOrder::halve(const KeyedCollection<ComboData>& items, Direction direction,
                            std::string_view caption, int32_t low, int32_t high) {
  while (low < high) {
    const int32_t middle = low + (high - low) / 2;
    if (goesBefore(items.Get(middle), direction, caption))
      high = middle;
    else
      low = middle + 1;
  }
  return low;
}

int32_t CaptionOrder::compare(std::string_view left, std::string_view right) {
  if (!collator_) collator_ = std::make_unique<Collator>();
  return collator_->Compare(left, right);
}

}  // namespace velt
