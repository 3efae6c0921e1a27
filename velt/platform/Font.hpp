#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace velt {

// A font description shared by reference: a control, its parts and the host hold
// the same object, so a change made through one is seen by all. Revision() grows
// with every change, which lets caches notice.
class Font {
 public:
  static constexpr const char* kDefaultName = "sans-serif";
  static constexpr float kDefaultSize = 8.25f;

  Font() = default;
  Font(std::string name, float size);

  // A new font with the library's ambient defaults (plain sans-serif, 8.25 points).
  static std::shared_ptr<Font> Ambient();
  std::shared_ptr<Font> Clone() const;

  const std::string& Name() const { return name_; }
  void Name(const std::string& name);
  float Size() const { return size_; }
  void Size(float points);  // error 380 for sizes not above 0 or above 2048
  bool Bold() const { return weight_ >= 550; }
  void Bold(bool bold);  // weight 700 or 400
  bool Italic() const { return italic_; }
  void Italic(bool italic);
  bool Underline() const { return underline_; }
  void Underline(bool underline);
  bool Strikethrough() const { return strikethrough_; }
  void Strikethrough(bool strikethrough);
  int16_t Weight() const { return weight_; }
  void Weight(int16_t weight);  // error 380 outside 0..1000
  int16_t Charset() const { return charset_; }
  void Charset(int16_t charset);

  uint64_t Revision() const { return revision_; }

  bool SameLook(const Font& other) const;

 private:
  void changed() { ++revision_; }

  std::string name_ = kDefaultName;
  float size_ = kDefaultSize;
  int16_t weight_ = 400;
  int16_t charset_ = 0;
  bool italic_ = false;
  bool underline_ = false;
  bool strikethrough_ = false;
  uint64_t revision_ = 0;
};

}  // namespace velt
