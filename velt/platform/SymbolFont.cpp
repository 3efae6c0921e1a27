#include "velt/platform/SymbolFont.hpp"

#include <algorithm>
#include <cstdlib>

namespace velt {

namespace {

enum class Direction { Left, Right, Up, Down };

Direction directionOf(char32_t codePoint) {
  switch (codePoint) {
    case U'3':
      return Direction::Left;
    case U'4':
      return Direction::Right;
    case U'5':
      return Direction::Up;
    default:
      return Direction::Down;
  }
}

// The triangle's base: the odd number of pixels nearest to 0.6 em, so the apex
// sits on one centre row or column.
int32_t baseLength(int32_t pixelSize) {
  return 2 * (3 * std::max(pixelSize, 1) / 10) + 1;
}

// Whether the pixel at depth `depth` (0 at the apex) and distance `offset` from
// the centre line lies inside an isosceles triangle of equal base and depth:
// the pixel's centre must be within the half-base at that depth.
bool inside(int32_t depth, int32_t offset) {
  return 4 * std::abs(offset) <= 2 * depth + 1;
}

uint8_t coverageAt(Direction direction, int32_t x, int32_t y, int32_t side) {
  const int32_t half = side / 2;
  switch (direction) {
    case Direction::Left:
      return inside(x, y - half) ? 255 : 0;
    case Direction::Right:
      return inside(side - 1 - x, y - half) ? 255 : 0;
    case Direction::Up:
      return inside(y, x - half) ? 255 : 0;
    case Direction::Down:
      return inside(side - 1 - y, x - half) ? 255 : 0;
  }
  return 0;
}

}  // namespace

bool SymbolFont::IsSymbolFont(std::string_view familyName) {
  constexpr std::string_view kLower = "webdings";
  if (familyName.size() != kLower.size()) return false;
  for (size_t i = 0; i < kLower.size(); ++i) {
    char c = familyName[i];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != kLower[i]) return false;
  }
  return true;
}

bool SymbolFont::HasGlyph(char32_t codePoint) {
  return codePoint >= U'3' && codePoint <= U'6';
}

Glyph SymbolFont::Render(char32_t codePoint, int32_t pixelSize, std::vector<uint8_t>& coverage) {
  const int32_t side = baseLength(pixelSize);
  const Direction direction = directionOf(codePoint);
  Glyph glyph;
  glyph.advance = std::max(pixelSize, 1);
  glyph.left = (glyph.advance - side) / 2;
  glyph.top = side;  // the bottom row rests on the baseline
  glyph.width = side;
  glyph.height = side;
  glyph.offset = static_cast<uint32_t>(coverage.size());
  for (int32_t y = 0; y < side; ++y)
    for (int32_t x = 0; x < side; ++x)
      coverage.push_back(coverageAt(direction, x, y, side));
  glyph.ready = true;
  return glyph;
}

}  // namespace velt
