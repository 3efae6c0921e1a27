#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velt {

class Canvas;

// The label's text layout: the ellipsis for text that does not fit, word wrap
// one line at a time, and the wrapped caption printed line under line. All of
// it measures with the canvas's current font.

// Stands for a forced line break while a caption is laid out: every carriage
// return becomes one and every line feed is dropped. A private-use character,
// so no letter of a caption is taken for a break; the caption's own copies of
// it are dropped when it is marked.
inline constexpr std::string_view kLineBreakMarker = "\xEE\x80\x80";  // U+E000

// The most characters one wrapped line is taken from.
inline constexpr int32_t kMaxLineCharacters = 1000;

// The caption with carriage returns turned into the marker, line feeds and
// the caption's own markers gone.
std::string MarkLineBreaks(std::string_view caption);

// The text itself when it is at most width pixels wide; otherwise the text cut
// short and ended in "...", narrower than width (or "..." when nothing else
// fits). Text of fewer than four characters is never cut, and no cut falls
// inside a cluster (a base with its marks, an emoji sequence, a ligature).
std::string FitText(const Canvas& surface, const std::string& text, int32_t width);

// One line of word wrap: how many characters of the text it uses up (the
// blank after the last word and a line-break marker included) and the line to
// print (trimmed, markers removed). A word wider than width stays whole; a
// blank that a mark sits on is no place to break.
struct WrappedLine {
  int32_t consumed = 0;
  std::string line;
};
WrappedLine NextLine(const Canvas& surface, std::string_view text, int32_t width);

// Prints the caption wrapped into lines left-aligned at left, from top down,
// each line shortened with FitText to width. A line is printed only while its
// centre lies no lower than top + heightLimit.
void DrawWrapped(Canvas& surface, std::string_view caption, double left, double top, double width,
                 double heightLimit);

}  // namespace velt
