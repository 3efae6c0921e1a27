#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "velt/controls/lists/CaptionOrder.hpp"
#include "velt/controls/lists/ComboData.hpp"
#include "velt/foundation/KeyedCollection.hpp"
#include "velt/platform/Event.hpp"

namespace velt {

// The direction a sorted ComboDatas::Add orders captions in.
enum eSortDirection : int32_t {
  sd_Ascending = 0,
  sd_Descending = 1,
};

// The entries of a list, in order, optionally under unique keys matched
// without regard to case. With Sorted set, Add inserts by caption (the user's
// locale, case folded); the order is made only then, never afterwards. Tells
// its owner of every change: ItemAdded after Add, ItemChanged after Remove and
// Clear. A call that fails (error 9 for a bad position, 5 for an unknown key,
// 457 for a key in use, 6 for a sorted Add among more than 32767 entries)
// changes nothing and raises nothing.
class ComboDatas {
 public:
  using Enumeration = KeyedCollection<ComboData>::Enumeration;

  // The most entries a sorted Add can place among: its walk counts in 16 bits.
  static constexpr int32_t kMaxSortedCount = 32767;

  ComboDatas();
  ComboDatas(const ComboDatas&) = delete;
  ComboDatas& operator=(const ComboDatas&) = delete;

  // Stored as given, any value; only later Adds use them.
  eSortDirection Sorting() const { return sorting_; }
  void Sorting(eSortDirection value) { sorting_ = value; }
  bool Sorted() const { return sorted_; }
  void Sorted(bool value) { sorted_ = value; }

  std::shared_ptr<ComboData> Add(const std::string& Key, const std::string& Caption = "",
                                 const std::string& Value = "", int16_t Icon = 0,
                                 const std::string& sComment = "");
  std::shared_ptr<ComboData> Item(int16_t position) const;
  std::shared_ptr<ComboData> Item(const std::string& key) const;
  int32_t Count() const { return items_.Count(); }
  void Remove(int16_t position);
  void Remove(const std::string& key);
  void Clear();

  Enumeration NewEnum() const { return items_.NewEnum(); }
  KeyedCollection<ComboData>::Iterator begin() const { return items_.begin(); }
  std::default_sentinel_t end() const { return {}; }

  Event<> ItemAdded;
  Event<> ItemChanged;

 private:
  std::optional<CaptionOrder::Direction> placingDirection() const;
  int32_t placeFor(const std::string& caption, std::optional<CaptionOrder::Direction> direction);

  KeyedCollection<ComboData> items_;
  CaptionOrder order_;
  bool sorted_ = false;
  eSortDirection sorting_ = sd_Ascending;
};

}  // namespace velt
