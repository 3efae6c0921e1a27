#include "velt/foundation/KeyedCollection.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "velt/platform/CaseFolding.hpp"
#include "velt/platform/Error.hpp"

namespace velt {

namespace detail {

struct KeyedEntry {
  std::shared_ptr<void> item;
  // The key as the index holds it (folded when keys ignore case); empty when
  // the entry has no key.
  std::string indexKey;
  // 0-based position; right only while below KeyedStore::validPrefix.
  size_t index = 0;
};

struct KeyedStore {
  KeyedStore(KeyComparison keyComparison, std::string name)
      : comparison(keyComparison), ownerName(std::move(name)) {}
  KeyedStore(const KeyedStore&) = delete;
  KeyedStore& operator=(const KeyedStore&) = delete;
  ~KeyedStore() {
    for (KeyedEntry* entry : order)
      delete entry;
  }

  KeyComparison comparison;
  std::string ownerName;
  // Owned. Plain pointers, so that inserting in the middle moves them as one
  // block of memory (a vector of unique_ptr moves them one by one: several
  // times slower at thousands of entries).
  std::vector<KeyedEntry*> order;
  // Views into the entries' own indexKey, which never move.
  std::unordered_map<std::string_view, KeyedEntry*> byKey;
  // Every entry whose stored index is below this is at that index; an entry
  // whose stored index is stale always has one at or above it.
  size_t validPrefix = 0;
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
  std::unique_ptr<KeyedEntry> entry(store.order[index]);
  store.order.erase(store.order.begin() + static_cast<std::ptrdiff_t>(index));
  if (!entry->indexKey.empty()) store.byKey.erase(entry->indexKey);
  store.validPrefix = std::min(store.validPrefix, index);
  // The entry, and perhaps the last reference to its item, goes only now, when
  // the collection is whole again.
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

  auto entry = std::make_unique<KeyedEntry>();
  entry->item = std::move(item);
  if (!key.empty()) {
    entry->indexKey = indexKeyOf(store, key);
    if (store.byKey.contains(entry->indexKey))
      throw Error(errKeyAlreadyExists,
                  store.ownerName + ": the key " + quoted(key) + " is already in use");
  }
  const auto index = static_cast<size_t>(position - 1);
  entry->index = index;

  // Make room first: once the key is indexed, nothing below may throw.
  if (count == store.order.capacity()) store.order.reserve(std::max<size_t>(8, 2 * count));
  KeyedEntry* stored = entry.get();
  if (!stored->indexKey.empty()) store.byKey.emplace(stored->indexKey, stored);
  store.order.insert(store.order.begin() + static_cast<std::ptrdiff_t>(index), stored);
  entry.release();

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
  std::unordered_map<std::string_view, KeyedEntry*> keys;
  entries.swap(store.order);
  keys.swap(store.byKey);
  store.validPrefix = 0;
  // The items are released only now, when the collection is already empty.
  for (KeyedEntry* entry : entries)
    delete entry;
}

KeyedCollectionCore::Iterator KeyedCollectionCore::begin() const {
  return Iterator(store_, 0);
}

}  // namespace velt
