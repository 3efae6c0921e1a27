#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velt {

class Canvas;
class ImageList;

// The arithmetic of the list box's rows, in pixels of its surface. Laying out,
// painting, hit-testing and the scroll range all take it from here.

// Each tab in a caption moves the row's text and icon this far right.
constexpr int32_t kListboxTabIndent = 9;
// The highest position a row can show: positions are 16-bit (a first
// position below -32768 is taken as -32768).
constexpr int32_t kListboxLastPosition = 32767;

// The height of a row for a font whose capital letter is textHeight pixels
// high; images taller than that make the rows taller.
int32_t ListboxRowHeight(int32_t textHeight, const ImageList* imageList);

// How many rows fit in a surface scaleHeight pixels high. The divisor is not
// the row height: with an image list it is one pixel more, taken from the
// taller of image and text.
int32_t ListboxVisibleRows(int32_t scaleHeight, int32_t textHeight, const ImageList* imageList);

// The positions a layout starting at `first` covers: first..Last, none when
// Last < first. The end is cut back to the entry count when first plus the
// uncut end passes it, so near the start of a long list one row more than
// fits is laid out, and near the end the rows run to the last entry.
struct ListboxRowSpan {
  int32_t First = 0;
  int32_t Last = -1;
};
ListboxRowSpan ListboxRowsFrom(int32_t first, int32_t visibleRows, int32_t count);

// The number of tab characters anywhere in the caption, and the caption
// without them.
int32_t ListboxTabCount(std::string_view caption);
std::string ListboxWithoutTabs(std::string_view caption);

// The caption as the row prints it in `width` pixels: unchanged when it is
// not wider than that; otherwise shortened one character a pass (a whole
// cluster where the character has marks or joins an emoji), ending in "...",
// until it is strictly narrower or shorter than four characters.
std::string ListboxShortened(const Canvas& surface, std::string text, int32_t width);

}  // namespace velt
