#pragma once

#include <cstdint>
#include <string>

namespace velt {

// One list entry. Plain data with no link to the collection that holds it:
// every property stores and returns its value unchanged.
class ComboData {
 public:
  ComboData() = default;
  ComboData(const ComboData&) = default;
  ComboData(ComboData&&) = default;
  // Assigning an entry replaces its caption: it counts as a caption edit, so
  // a sorted collection holding it no longer takes its order for granted.
  ComboData& operator=(const ComboData& other);
  ComboData& operator=(ComboData&& other) noexcept;
  ~ComboData() = default;

  // The text shown for the entry, and what a sorted ComboDatas orders by.
  const std::string& Caption() const { return caption_; }
  void Caption(const std::string& value);
  const std::string& Value() const { return value_; }
  void Value(const std::string& value) { value_ = value; }
  // The entry's icon in the displaying control's image list.
  int16_t Icon() const { return icon_; }
  void Icon(int16_t value) { icon_ = value; }
  // Free for the application; it does not follow the entry's position.
  int16_t Index() const { return index_; }
  void Index(int16_t value) { index_ = value; }
  const std::string& Comment() const { return comment_; }
  void Comment(const std::string& value) { comment_ = value; }
  // A copy of the key the entry was added under.
  const std::string& Key() const { return key_; }
  void Key(const std::string& value) { key_ = value; }

 private:
  friend class ComboDatas;
  friend class CaptionOrder;

  // How often any entry's caption has been set since the program started. A
  // collection that has seen its entries in order knows they still are while
  // this stays the same. ComboDatas sets the caption of a new entry without
  // counting.
  static uint64_t captionEdits() noexcept;

  std::string caption_;
  std::string value_;
  int16_t icon_ = 0;
  int16_t index_ = 0;
  std::string comment_;
  std::string key_;
};

}  // namespace velt
