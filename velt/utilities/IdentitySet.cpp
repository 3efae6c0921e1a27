#include "velt/utilities/IdentitySet.hpp"

#include <cstdint>

namespace velt {

namespace {

constexpr size_t kFirstSize = 256;

// Mixes all bits into the low ones (a 64-bit finaliser): inode numbers of
// one folder tend to be close together.
uint64_t mix(uint64_t value) {
  value ^= value >> 33;
  value *= 0xFF51AFD7ED558CCDull;
  value ^= value >> 33;
  value *= 0xC4CEB9FE1A85EC53ull;
  return value ^ (value >> 33);
}

}  // namespace

void IdentitySet::Clear() {
  slots_.clear();
  count_ = 0;
}

size_t IdentitySet::place(const FileIdentity& identity) const {
  return static_cast<size_t>(mix(identity.Inode ^ mix(identity.Device))) & (slots_.size() - 1);
}

bool IdentitySet::Insert(const FileIdentity& identity) {
  if (2 * (count_ + 1) > slots_.size()) grow();
  for (size_t at = place(identity);; at = (at + 1) & (slots_.size() - 1)) {
    Slot& slot = slots_[at];
    if (!slot.used) {
      slot = {identity, true};
      ++count_;
      return true;
    }
    if (slot.identity == identity) return false;
  }
}

void IdentitySet::grow() {
  std::vector<Slot> old(slots_.empty() ? kFirstSize : 2 * slots_.size());
  old.swap(slots_);
  for (const Slot& slot : old) {
    if (!slot.used) continue;
    size_t at = place(slot.identity);
    while (slots_[at].used)
      at = (at + 1) & (slots_.size() - 1);
    slots_[at] = slot;
  }
}

}  // namespace velt
