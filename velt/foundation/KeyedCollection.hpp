#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace velt {

namespace detail {
struct KeyedStore;
}  // namespace detail

// How the keys of a collection are matched.
enum class KeyComparison {
  Exact,       // byte for byte
  IgnoreCase,  // after Unicode case folding ("Key", "KEY" and "key" are one key)
};

// The ordered, optionally keyed container under the library's item
// collections: 1-based positions, unique non-empty keys, removal by position
// or key, enumeration in order. Items are shared references stored untyped;
// KeyedCollection<T> below gives them their type.
//
// Errors are the classic collection's: a key already in use is error 457, an
// unknown key error 5, a position outside 1..Count error 9. A call that fails
// leaves the collection as it was.
//
// Keys are found through a hash index. Positions are kept in the entries and
// renumbered lazily, only when a key's position is asked after an insertion or
// removal in front of it.
class KeyedCollectionCore {
 public:
  // Enumerates the entries by position. It keeps the entries alive (not the
  // owning object), so it stays valid while the collection changes or goes
  // away: it then yields whatever is at its next position, and stops at the
  // end.
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::shared_ptr<void>;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    const std::shared_ptr<void>& operator*() const;
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    void operator++(int) { ++index_; }
    bool operator==(std::default_sentinel_t) const;

   private:
    friend class KeyedCollectionCore;
    Iterator(std::shared_ptr<const detail::KeyedStore> store, size_t index)
        : store_(std::move(store)), index_(index) {}

    std::shared_ptr<const detail::KeyedStore> store_;
    size_t index_ = 0;
  };

  // ownerName names the collection in error messages ("MenuItems").
  KeyedCollectionCore(KeyComparison comparison, std::string ownerName);
  ~KeyedCollectionCore();
  KeyedCollectionCore(const KeyedCollectionCore&) = delete;
  KeyedCollectionCore& operator=(const KeyedCollectionCore&) = delete;

  KeyComparison Comparison() const noexcept;
  int32_t Count() const noexcept;

  // The entry at a position (error 9) or under a key (error 5).
  const std::shared_ptr<void>& At(int32_t position) const;
  const std::shared_ptr<void>& At(std::string_view key) const;
  // The entry under a key, or nullptr; never an error.
  std::shared_ptr<void> Find(std::string_view key) const;
  bool Contains(std::string_view key) const;
  // The current position of the entry under a key (error 5).
  int32_t PositionOf(std::string_view key) const;

  // Puts item at position (1..Count+1; Count+1 appends), under key unless key
  // is empty. Error 9 for another position, 457 for a key in use, 91 for no
  // item.
  void Insert(int32_t position, std::shared_ptr<void> item, std::string_view key);
  void Remove(int32_t position);
  void Remove(std::string_view key);
  void Clear() noexcept;

  Iterator begin() const;
  std::default_sentinel_t end() const noexcept { return {}; }

 private:
  std::shared_ptr<detail::KeyedStore> store_;
};

// KeyedCollectionCore with typed items. Keep this thin: everything that does
// not need T lives in the core.
template <typename T>
class KeyedCollection {
 public:
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = std::shared_ptr<T>;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    explicit Iterator(KeyedCollectionCore::Iterator base) : base_(std::move(base)) {}
    std::shared_ptr<T> operator*() const { return std::static_pointer_cast<T>(*base_); }
    Iterator& operator++() {
      ++base_;
      return *this;
    }
    void operator++(int) { ++base_; }
    bool operator==(std::default_sentinel_t end) const { return base_ == end; }

   private:
    KeyedCollectionCore::Iterator base_;
  };

  // What NewEnum hands out: a range over the entries that stays valid while
  // it is held, whatever happens to the collection.
  class Enumeration {
   public:
    explicit Enumeration(Iterator first) : first_(std::move(first)) {}
    Iterator begin() const { return first_; }
    std::default_sentinel_t end() const { return {}; }

   private:
    Iterator first_;
  };

  KeyedCollection(KeyComparison comparison, std::string ownerName)
      : core_(comparison, std::move(ownerName)) {}

  int32_t Count() const noexcept { return core_.Count(); }
  std::shared_ptr<T> Item(int32_t position) const { return cast(core_.At(position)); }
  std::shared_ptr<T> Item(std::string_view key) const { return cast(core_.At(key)); }
  std::shared_ptr<T> Find(std::string_view key) const { return cast(core_.Find(key)); }
  // The entry itself, without taking a reference: for loops inside the owner.
  T& Get(int32_t position) const { return *static_cast<T*>(core_.At(position).get()); }
  bool Contains(std::string_view key) const { return core_.Contains(key); }
  int32_t PositionOf(std::string_view key) const { return core_.PositionOf(key); }

  void Add(std::shared_ptr<T> item, std::string_view key) {
    core_.Insert(core_.Count() + 1, std::move(item), key);
  }
  void Insert(int32_t position, std::shared_ptr<T> item, std::string_view key) {
    core_.Insert(position, std::move(item), key);
  }
  void Remove(int32_t position) { core_.Remove(position); }
  void Remove(std::string_view key) { core_.Remove(key); }
  void Clear() noexcept { core_.Clear(); }

  Iterator begin() const { return Iterator(core_.begin()); }
  std::default_sentinel_t end() const noexcept { return {}; }
  Enumeration NewEnum() const { return Enumeration(begin()); }

 private:
  static std::shared_ptr<T> cast(const std::shared_ptr<void>& item) {
    return std::static_pointer_cast<T>(item);
  }

  KeyedCollectionCore core_;
};

}  // namespace velt
