#include "velt/utilities/FoldedNameSet.hpp"

#include <cstring>

#include "velt/platform/CaseFolding.hpp"

namespace velt {

namespace {

constexpr size_t kFirstSize = 64;
// Larger tables than this (24 KB) are not kept for the next folder.
constexpr size_t kLargestKept = 1024;

constexpr uint64_t kHighBits = 0x8080808080808080ull;
constexpr uint64_t kHashFactor = 0x9E3779B97F4A7C15ull;

uint64_t load(const char* bytes) {
  uint64_t word;
  std::memcpy(&word, bytes, 8);
  return word;
}

// Lower-cases the letters of a word of ASCII bytes: adding 0x3F sets a
// byte's high bit from "A" up, adding 0x25 from "Z" + 1 up, and no byte
// carries into the next.
uint64_t foldAsciiWord(uint64_t word) {
  const uint64_t fromA = word + 0x3F3F3F3F3F3F3F3Full;
  const uint64_t beyondZ = word + 0x2525252525252525ull;
  return word | ((fromA & ~beyondZ & kHighBits) >> 2);
}

// Most names are plain ASCII: folded here without ICU, a word at a time.
// False, with the text partly folded, when a byte is beyond ASCII.
bool foldAsciiWords(char* text, size_t size) {
  for (size_t at = 0; at < size; at += 8) {
    const uint64_t word = load(text + at);
    if ((word & kHighBits) != 0) return false;
    const uint64_t folded = foldAsciiWord(word);
    std::memcpy(text + at, &folded, 8);
  }
  return true;
}

// A word at a time, then the high bits mixed down: the table is indexed by
// the low ones.
uint64_t hashWords(const char* text, size_t size) {
  uint64_t value = size * kHashFactor;
  for (size_t at = 0; at < size; at += 8)
    value = (value ^ load(text + at)) * kHashFactor;
  value ^= value >> 32;
  value *= 0xFF51AFD7ED558CCDull;
  return value ^ (value >> 29);
}

size_t wholeWords(size_t size) {
  return (size + 7) & ~size_t(7);
}

}  // namespace

void FoldedNameSet::Clear() {
  namesUsed_ = 0;
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
  // The folded name is written after the names kept, and kept only when it
  // is new. Each takes whole words, padded with zeros, so that it is folded
  // and hashed a word at a time.
  char* folded = place(name);
  size_t length = name.size();
  if (!foldAsciiWords(folded, length)) {
    FoldCase(name, folded_);
    folded = place(folded_);
    length = folded_.size();
  }
  const uint64_t hash = hashWords(folded, length);
  // At most half full, so probing stays short.
  if (2 * (count_ + 1) > slots_.size()) grow();
  for (size_t at = place(hash);; at = (at + 1) & (slots_.size() - 1)) {
    Slot& slot = slots_[at];
    if (slot.generation != generation_) {
      slot = {hash, namesUsed_, static_cast<uint32_t>(length), generation_};
      namesUsed_ += wholeWords(length);
      ++count_;
      return true;
    }
    if (slot.hash == hash && slot.length == length &&
        std::memcmp(names_.data() + slot.offset, folded, length) == 0)
      return false;
  }
}

char* FoldedNameSet::place(std::string_view text) {
  const size_t size = wholeWords(text.size());
  if (names_.size() < namesUsed_ + size) names_.resize(2 * (namesUsed_ + size));
  char* at = names_.data() + namesUsed_;
  if (size != 0) std::memset(at + size - 8, 0, 8);
  std::memcpy(at, text.data(), text.size());
  return at;
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
