#include "velt/controls/text/LabelLayout.hpp"

#include <algorithm>

#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Rounding.hpp"

namespace velt {

namespace {

constexpr std::string_view kEllipsis = "...";

int32_t wholePixels(double value) {
  constexpr double kLimit = 1 << 30;  // far beyond any control, and no overflow
  const double rounded = RoundHalfEven(value);
  if (!(rounded > -kLimit)) return static_cast<int32_t>(-kLimit);
  return static_cast<int32_t>(std::min(rounded, kLimit));
}

// Characters looked at past the 1000 of a wrapped line to find where the
// cluster the cut falls into ends.
constexpr int32_t kClusterLookAhead = 32;

// A blank byte is always a character of its own in UTF-8 (it is never part of
// a longer sequence), so searching bytes finds character positions. A blank
// counts only where a line may end after it: not when a mark follows it.
int32_t lastBlankAtOrBefore(const Canvas& surface, const std::string& text, int32_t position) {
  std::string head = Left(text, position);
  while (!head.empty()) {
    const size_t blank = head.rfind(' ');
    if (blank == std::string::npos) return 0;
    const int32_t after = Len(std::string_view(head).substr(0, blank + 1));
    if (surface.ClusterCut(text, after) == after) return after;
    head.resize(blank);
  }
  return 0;
}

// The first `characters` characters of text, fewer where the cut would fall
// inside a cluster.
std::string clusterLeft(const Canvas& surface, std::string_view text, int32_t characters) {
  const std::string window = Left(text, characters + kClusterLookAhead);
  return Left(window, surface.ClusterCut(window, characters));
}

std::string withoutMarkers(std::string text) {
  for (size_t at = text.find(kLineBreakMarker); at != std::string::npos;
       at = text.find(kLineBreakMarker, at))
    text.erase(at, kLineBreakMarker.size());
  return text;
}

}  // namespace

std::string MarkLineBreaks(std::string_view caption) {
  std::string marked;
  marked.reserve(caption.size());
  for (size_t i = 0; i < caption.size(); ++i) {
    if (caption.substr(i, kLineBreakMarker.size()) == kLineBreakMarker) {
      i += kLineBreakMarker.size() - 1;
    } else if (caption[i] == '\r') {
      marked += kLineBreakMarker;
    } else if (caption[i] != '\n') {
      marked += caption[i];
    }
  }
  return marked;
}

// Pass k of the classic loop (cut four characters, append three dots) leaves
// the first n - 3 - k characters followed by "...", and the loop stops at the
// first pass that is narrower than width or at "..." itself. A shorter text is
// never wider than a longer one that starts with it, so that pass is found by
// bisection rather than by one measurement per character. Each pass cuts at
// the cluster boundary at or before its length.
std::string FitText(const Canvas& surface, const std::string& text, int32_t width) {
  if (surface.TextWidth(text) <= width) return text;
  const int32_t n = Len(text);
  if (n < 4) return text;
  const auto pass = [&](int32_t k) {
    return Left(text, surface.ClusterCut(text, n - 3 - k)) + std::string(kEllipsis);
  };
  int32_t low = 1;
  int32_t high = n - 3;  // "...": the loop always stops there
  while (low < high) {
    const int32_t middle = low + (high - low) / 2;
    if (surface.TextWidth(pass(middle)) < width)
      high = middle;
    else
      low = middle + 1;
  }
  return pass(low);
}

WrappedLine NextLine(const Canvas& surface, std::string_view text, int32_t width) {
  const std::string head = clusterLeft(surface, text, kMaxLineCharacters);
  std::string candidate = head;
  int32_t position = Len(head);
  while (surface.TextWidth(candidate) >= width) {
    const int32_t blank = lastBlankAtOrBefore(surface, head, position);
    if (blank == 0) break;
    candidate = Left(head, blank);
    position = blank - 1;
  }
  if (const int32_t marker = InStr(candidate, kLineBreakMarker); marker > 0)
    candidate = Left(candidate, marker);
  WrappedLine next;
  next.consumed = Len(candidate);
  next.line = withoutMarkers(Trim(candidate));
  return next;
}

void DrawWrapped(Canvas& surface, std::string_view caption, double left, double top, double width,
                 double heightLimit) {
  std::string text = Trim(MarkLineBreaks(caption));
  const int32_t lineWidth = wholePixels(width);
  const double halfLine = surface.TextHeight("I") / 2.0;
  surface.CurrentY(static_cast<float>(top));
  do {
    if (surface.CurrentY() + halfLine > heightLimit + top) break;
    const WrappedLine next = NextLine(surface, text, lineWidth);
    surface.CurrentX(static_cast<float>(left));
    surface.Print(FitText(surface, next.line, lineWidth));
    text = Mid(text, next.consumed + 1);
  } while (!text.empty());
}

}  // namespace velt
