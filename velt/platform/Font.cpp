#include "velt/platform/Font.hpp"

#include "velt/platform/Error.hpp"

namespace velt {

Font::Font(std::string name, float size) : name_(std::move(name)) {
  Size(size);
}

std::shared_ptr<Font> Font::Ambient() {
  return std::make_shared<Font>();
}

std::shared_ptr<Font> Font::Clone() const {
  auto copy = std::make_shared<Font>(*this);
  copy->revision_ = 0;
  return copy;
}

void Font::Name(const std::string& name) {
  if (name == name_) return;
  name_ = name;
  changed();
}

void Font::Size(float points) {
  if (!(points > 0.0f) || points > 2048.0f)
    throw Error(errInvalidPropertyValue,
                "Font.Size " + std::to_string(points) + " is outside 0 (exclusive) to 2048 points");
  if (points == size_) return;
  size_ = points;
  changed();
}

void Font::Bold(bool bold) {
  Weight(bold ? 700 : 400);
}

void Font::Italic(bool italic) {
  if (italic == italic_) return;
  italic_ = italic;
  changed();
}

void Font::Underline(bool underline) {
  if (underline == underline_) return;
  underline_ = underline;
  changed();
}

void Font::Strikethrough(bool strikethrough) {
  if (strikethrough == strikethrough_) return;
  strikethrough_ = strikethrough;
  changed();
}

void Font::Weight(int16_t weight) {
  if (weight < 0 || weight > 1000)
    throw Error(errInvalidPropertyValue,
                "Font.Weight " + std::to_string(weight) + " is outside 0 to 1000");
  if (weight == weight_) return;
  weight_ = weight;
  changed();
}

void Font::Charset(int16_t charset) {
  if (charset == charset_) return;
  charset_ = charset;
  changed();
}

bool Font::SameLook(const Font& other) const {
  return name_ == other.name_ && size_ == other.size_ && weight_ == other.weight_ &&
         italic_ == other.italic_ && underline_ == other.underline_ &&
         strikethrough_ == other.strikethrough_;
}

}  // namespace velt
