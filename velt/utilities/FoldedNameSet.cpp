#include "velt/utilities/FoldedNameSet.hpp"

#include <functional>

#include "velt/platform/CaseFolding.hpp"

namespace velt {

namespace {

constexpr size_t kFirstSize = 64;
// Larger tables than this (24 KB) are not kept for the next folder.
constexpr size_t kLargestKept = 1024;

}  // namespace

void FoldedNameSet::Clear() {
  names_.clear();
  count_ = 0;
  // Most folders are small: a table left large by a big one would make
  // every lookup a cache miss.
  if (slots_.size() > kLargestKept) {
    slots_.assign(kFirstSize, Slot{});
    generation_ = 1;
    return;
  }
  if (++generation_ != 0) return;
  // After four billion folders every slot could look used: start afresh.
  for (Slot& slot : slots_)
    slot.generation = 0;
  generation_ = 1;
}

size_t FoldedNameSet::place(uint64_t hash) const {
  return static_cast<size_t>(hash) & (slots_.size() - 1);
}

bool FoldedNameSet::Insert(std::string_view name) {
  FoldCase(name, folded_);
  const uint64_t hash = std::hash<std::string_view>()(folded_);
  // At most half full, so probing stays short.
  if (2 * (count_ + 1) > slots_.size()) grow();
  for (size_t at = place(hash);; at = (at + 1) & (slots_.size() - 1)) {
    Slot& slot = slots_[at];
    if (slot.generation != generation_) {
      slot = {hash, names_.size(), static_cast<uint32_t>(folded_.size()), generation_};
      names_ += folded_;
      ++count_;
      return true;
    }
    if (slot.hash == hash && names_.compare(slot.offset, slot.length, folded_) == 0) return false;
  }
}

void FoldedNameSet::grow() {
  std::vector<Slot> old(slots_.empty() ? kFirstSize : 2 * slots_.size());
  old.swap(slots_);
  for (const Slot& slot : old) {
    if (slot.generation != generation_) continue;
    size_t at = place(slot.hash);
    while (slots_[at].generation == generation_)
      at = (at + 1) & (slots_.size() - 1);
    slots_[at] = slot;
  }
}

}  // namespace velt
