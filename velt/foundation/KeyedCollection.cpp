#include "velt/foundation/KeyedCollection.hpp"

#include <algorithm>
#include <functional>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "velt/platform/CaseFolding.hpp"
#include "velt/platform/Error.hpp"

namespace velt {

namespace detail {

struct KeyedEntry {
  std::shared_ptr<void> item;
  union {
    // The key as the index holds it (folded when keys ignore case), in the
    // index's own node; nullptr when the entry has no key.
    const std::string* indexKey = nullptr;
    // While the entry is unused: the next unused one.
    KeyedEntry* nextSpare;
  };
  // 0-based position; right only while below KeyedStore::validPrefix.
  size_t index = 0;
};

// The entries of one collection, made in blocks of growing size and reused
// once removed: collections of results grow to hundreds of thousands of
// entries, and an allocation each would cost more than the rest of Add.
class EntryPool {
 public:
  // An unused entry (no item, no key); the pool keeps owning it.
  KeyedEntry* Take() {
    if (spare_ != nullptr) {
      KeyedEntry* entry = std::exchange(spare_, spare_->nextSpare);
      entry->indexKey = nullptr;
      return entry;
    }
    if (blocks_.empty() || used_ == blockSize_) addBlock();
    return &blocks_.back()[used_++];
  }
  // Takes an entry back; it must have no item left.
  void GiveBack(KeyedEntry* entry) noexcept {
    entry->nextSpare = spare_;
    spare_ = entry;
  }

 private:
  static constexpr size_t kFirstBlock = 8;
  static constexpr size_t kLargestBlock = 1024;

  void addBlock() {
    const size_t size = blocks_.empty() ? kFirstBlock : std::min(2 * blockSize_, kLargestBlock);
    if (blocks_.size() == blocks_.capacity())
      blocks_.reserve(std::max<size_t>(4, 2 * blocks_.size()));
    blocks_.push_back(std::make_unique<KeyedEntry[]>(size));
    blockSize_ = size;
    used_ = 0;
  }

  std::vector<std::unique_ptr<KeyedEntry[]>> blocks_;
  size_t blockSize_ = 0;
  size_t used_ = 0;
  KeyedEntry* spare_ = nullptr;
};

// Matches keys by their text, and finds a text given as a view without
// making a string of it.
struct KeyHash {
  using is_transparent = void;
  size_t operator()(std::string_view key) const noexcept {
    return std::hash<std::string_view>()(key);
  }
};

struct KeyedStore {
  KeyedStore(KeyComparison keyComparison, std::string name)
      : comparison(keyComparison), ownerName(std::move(name)) {}
  KeyedStore(const KeyedStore&) = delete;
  KeyedStore& operator=(const KeyedStore&) = delete;
  ~KeyedStore() { releaseItems(order); }

  // Lets go of the items in position order, as single removals would.
  static void releaseItems(const std::vector<KeyedEntry*>& entries) noexcept {
    for (KeyedEntry* entry : entries)
      entry->item.reset();
  }

  KeyComparison comparison;
  std::string ownerName;
  // Plain pointers into the pool, so that inserting in the middle moves them
  // as one block of memory (a vector of the entries themselves would move
  // them one by one: several times slower at thousands of entries).
  std::vector<KeyedEntry*> order;
  std::unordered_map<std::string, KeyedEntry*, KeyHash, std::equal_to<>> byKey;
  // Every entry whose stored index is below this is at that index; an entry
  // whose stored index is stale always has one at or above it.
  size_t validPrefix = 0;
  EntryPool pool;
};

}  // namespace detail

namespace {

using detail::KeyedEntry;
using detail::KeyedStore;

std::string quoted(std::string_view key) {
  return "\"" + std::string(key) + "\"";
}

std::string indexKeyOf(const KeyedStore& store, std::string_view key) {
  return store.comparison == KeyComparison::Exact ? std::string(key) : FoldCase(key);
}

KeyedEntry* findEntry(const KeyedStore& store, std::string_view key) {
  if (key.empty()) return nullptr;
  std::string folded;
  if (store.comparison == KeyComparison::IgnoreCase) {
    FoldCase(key, folded);
    key = folded;
  }
  const auto found = store.byKey.find(key);
  return found == store.byKey.end() ? nullptr : found->second;
}

KeyedEntry& entryWithKey(const KeyedStore& store, std::string_view key) {
  KeyedEntry* entry = findEntry(store, key);
  if (entry == nullptr)
    throw Error(errInvalidProcedureCall, store.ownerName + ": no entry has the key " + quoted(key));
  return *entry;
}

std::string rangeText(size_t count) {
  return count == 0 ? "the collection is empty"
                    : "positions run from 1 to " + std::to_string(count);
}

size_t indexAt(const KeyedStore& store, int32_t position) {
  if (position < 1 || static_cast<size_t>(position) > store.order.size())
    throw Error(errSubscriptOutOfRange, store.ownerName + ": there is no position " +
                                            std::to_string(position) + " (" +
                                            rangeText(store.order.size()) + ")");
  return static_cast<size_t>(position - 1);
}

size_t indexOf(KeyedStore& store, const KeyedEntry& entry) {
  if (entry.index >= store.validPrefix) {
    for (size_t i = store.validPrefix; i < store.order.size(); ++i)
      store.order[i]->index = i;
    store.validPrefix = store.order.size();
  }
  return entry.index;
}

void removeAt(KeyedStore& store, size_t index) {
  KeyedEntry* entry = store.order[index];
  store.order.erase(store.order.begin() + static_cast<std::ptrdiff_t>(index));
  if (entry->indexKey != nullptr) store.byKey.erase(store.byKey.find(*entry->indexKey));
  store.validPrefix = std::min(store.validPrefix, index);
  // The item, perhaps its last reference, goes only when the collection is
  // whole again.
  const std::shared_ptr<void> item = std::move(entry->item);
  store.pool.GiveBack(entry);
}

}  // namespace

const std::shared_ptr<void>& KeyedCollectionCore::Iterator::operator*() const {
  static const std::shared_ptr<void> kNothing;
  if (!store_ || index_ >= store_->order.size()) return kNothing;
  return store_->order[index_]->item;
}

bool KeyedCollectionCore::Iterator::operator==(std::default_sentinel_t) const {
  return !store_ || index_ >= store_->order.size();
}

KeyedCollectionCore::KeyedCollectionCore(KeyComparison comparison, std::string ownerName)
    : store_(std::make_shared<KeyedStore>(comparison, std::move(ownerName))) {}

KeyedCollectionCore::~KeyedCollectionCore() = default;

KeyComparison KeyedCollectionCore::Comparison() const noexcept {
  return store_->comparison;
}

int32_t KeyedCollectionCore::Count() const noexcept {
  return static_cast<int32_t>(store_->order.size());
}

const std::shared_ptr<void>& KeyedCollectionCore::At(int32_t position) const {
  return store_->order[indexAt(*store_, position)]->item;
}

const std::shared_ptr<void>& KeyedCollectionCore::At(std::string_view key) const {
  return entryWithKey(*store_, key).item;
}

std::shared_ptr<void> KeyedCollectionCore::Find(std::string_view key) const {
  const KeyedEntry* entry = findEntry(*store_, key);
  return entry != nullptr ? entry->item : nullptr;
}

bool KeyedCollectionCore::Contains(std::string_view key) const {
  return findEntry(*store_, key) != nullptr;
}

int32_t KeyedCollectionCore::PositionOf(std::string_view key) const {
  return static_cast<int32_t>(indexOf(*store_, entryWithKey(*store_, key)) + 1);
}

void KeyedCollectionCore::Insert(int32_t position, std::shared_ptr<void> item,
                                 std::string_view key) {
  KeyedStore& store = *store_;
  if (!item) throw Error(errObjectNotSet, store.ownerName + ": there is no item to add");
  const size_t count = store.order.size();
  if (position < 1 || static_cast<size_t>(position) > count + 1)
    throw Error(errSubscriptOutOfRange, store.ownerName + ": cannot insert at position " +
                                            std::to_string(position) + " (1 to " +
                                            std::to_string(count + 1) + " can be used)");
  if (count >= static_cast<size_t>(INT32_MAX))
    throw Error(errOverflow, store.ownerName + ": the collection is full");

  std::string indexKey;
  if (!key.empty()) {
    indexKey = indexKeyOf(store, key);
    if (store.byKey.contains(indexKey))
      throw Error(errKeyAlreadyExists,
                  store.ownerName + ": the key " + quoted(key) + " is already in use");
  }
  const auto index = static_cast<size_t>(position - 1);

  // Make room first: once the key is indexed, nothing below may throw.
  if (count == store.order.capacity()) store.order.reserve(std::max<size_t>(8, 2 * count));
  KeyedEntry* entry = store.pool.Take();
  if (!indexKey.empty()) {
    try {
      entry->indexKey = &store.byKey.emplace(std::move(indexKey), entry).first->first;
    } catch (...) {
      store.pool.GiveBack(entry);
      throw;
    }
  }
  entry->item = std::move(item);
  entry->index = index;
  store.order.insert(store.order.begin() + static_cast<std::ptrdiff_t>(index), entry);

  const bool appendedToValidOrder = index == count && store.validPrefix == count;
  store.validPrefix = appendedToValidOrder ? count + 1 : std::min(store.validPrefix, index);
}

void KeyedCollectionCore::Remove(int32_t position) {
  removeAt(*store_, indexAt(*store_, position));
}

void KeyedCollectionCore::Remove(std::string_view key) {
  KeyedStore& store = *store_;
  removeAt(store, indexOf(store, entryWithKey(store, key)));
}

void KeyedCollectionCore::Clear() noexcept {
  KeyedStore& store = *store_;
  std::vector<KeyedEntry*> entries;
  std::unordered_map<std::string, KeyedEntry*, detail::KeyHash, std::equal_to<>> keys;
  entries.swap(store.order);
  keys.swap(store.byKey);
  store.validPrefix = 0;
  // The items are released only now, when the collection is already empty.
  KeyedStore::releaseItems(entries);
  // Unless the items added anything meanwhile, the memory goes too.
  if (store.order.empty()) {
    store.pool = detail::EntryPool();
    return;
  }
  for (KeyedEntry* entry : entries)
    store.pool.GiveBack(entry);
}

KeyedCollectionCore::Iterator KeyedCollectionCore::begin() const {
  return Iterator(store_, 0);
}

}  // namespace velt
