#include "velt/controls/lists/ListboxLayout.hpp"

#include <algorithm>
#include <cstdint>

#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ImageList.hpp"

namespace velt {

namespace {

constexpr int32_t kRowPadding = 4;
constexpr int32_t kImageRowDivisorPadding = 5;
constexpr int32_t kShortestShortened = 4;  // characters; shorter texts stay as they are
constexpr const char* kEllipsis = "...";
constexpr int32_t kCharactersCut = 4;  // the last character and the previous ellipsis

}  // namespace

int32_t ListboxRowHeight(int32_t textHeight, const ImageList* imageList) {
  if (imageList && imageList->ImageHeight() > textHeight)
    return imageList->ImageHeight() + kRowPadding;
  return textHeight + kRowPadding;
}

int32_t ListboxVisibleRows(int32_t scaleHeight, int32_t textHeight, const ImageList* imageList) {
  const int32_t divisor =
      imageList ? std::max<int32_t>(imageList->ImageHeight(), textHeight) + kImageRowDivisorPadding
                : textHeight + kRowPadding;
  if (divisor <= 0) return 0;
  return (scaleHeight - 1) / divisor;
}

// A first position below what 16 bits hold (a bar whose Min the application
// moved far down) starts there: the rows keep positions a row can carry.
ListboxRowSpan ListboxRowsFrom(int32_t first, int32_t visibleRows, int32_t count) {
  first = std::max<int32_t>(first, INT16_MIN);
  int64_t last = int64_t{first} + visibleRows;
  if (int64_t{first} + last > count) last = count;
  last = std::min<int64_t>(last, kListboxLastPosition);
  return ListboxRowSpan{first, static_cast<int32_t>(last)};
}

int32_t ListboxTabCount(std::string_view caption) {
  return static_cast<int32_t>(std::count(caption.begin(), caption.end(), '\t'));
}

std::string ListboxWithoutTabs(std::string_view caption) {
  std::string text;
  text.reserve(caption.size());
  for (char c : caption)
    if (c != '\t') text += c;
  return text;
}

// Each pass keeps all but the last four characters and appends the ellipsis:
// one character of the caption goes, the ellipsis of the previous pass with it.
std::string ListboxShortened(const Canvas& surface, std::string text, int32_t width) {
  if (surface.TextWidth(text) <= width) return text;
  for (int32_t n = Len(text); surface.TextWidth(text) >= width && n >= kShortestShortened;
       n = Len(text))
    text = Left(text, surface.ClusterCut(text, n - kCharactersCut)) + kEllipsis;
  return text;
}

}  // namespace velt
