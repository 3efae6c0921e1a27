// The label's text layout on a bare canvas with the pinned font: the ellipsis,
// word wrap of one line, and the wrapped caption under its height limit.

#include "velt/controls/text/LabelLayout.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/HeadlessForm.hpp"
#include "support/Pixels.hpp"
#include "velt/foundation/Utf8Text.hpp"
#include "velt/platform/Canvas.hpp"

namespace velt {
namespace {

const std::string kMarker(kLineBreakMarker);

class LabelLayoutTest : public ::testing::Test {
 protected:
  LabelLayoutTest() : canvas(200, 120) { canvas.Font(test::PinnedFont()); }

  int32_t width(const std::string& text) const { return canvas.TextWidth(text); }
  int32_t lineHeight() const { return canvas.TextHeight("I"); }

  // What printing the lines one under the other from (left, top) gives.
  Canvas printed(const std::vector<std::string>& lines, float left, float top) const {
    Canvas expected(canvas.ScaleWidth(), canvas.ScaleHeight());
    expected.Font(canvas.Font());
    expected.CurrentY(top);
    for (const std::string& line : lines) {
      expected.CurrentX(left);
      expected.Print(line);
    }
    return expected;
  }
  ::testing::AssertionResult looksLike(const std::vector<std::string>& lines, float left,
                                       float top) const {
    const test::InkBox wrong = test::DifferenceBox(canvas, printed(lines, left, top));
    if (wrong.Empty()) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixels differ in (" << wrong.left << "," << wrong.top
                                         << ")-(" << wrong.right << "," << wrong.bottom << ")";
  }

  Canvas canvas;
};

// ---- FitText ----------------------------------------------------------------

// Text is kept up to its exact width and text under four characters is never
// cut; otherwise the cut text is the longest head of the text (cut between
// characters) that, followed by "...", is strictly narrower than the width.
TEST_F(LabelLayoutTest, EllipsisKeepsTheLongestHeadThatStaysStrictlyInside) {
  EXPECT_EQ(FitText(canvas, "Printer", width("Printer")), "Printer");
  EXPECT_EQ(FitText(canvas, "WWW", 5), "WWW");
  EXPECT_EQ(FitText(canvas, "Wonderful", 3), "...") << "nothing but the dots fits";
  for (const std::string text :
       {"The quick brown fox jumps over the lazy dog", "äöüßäöüßäöüß€€€€ Grüße aus Köln"}) {
    for (int32_t limit : {20, 37, 60, 95, width(text) - 1}) {
      const std::string fitted = FitText(canvas, text, limit);
      ASSERT_EQ(fitted.substr(fitted.size() - 3), "...") << limit;
      const int32_t kept = Len(fitted) - 3;
      EXPECT_EQ(Left(text, kept), fitted.substr(0, fitted.size() - 3)) << limit;
      EXPECT_LT(width(fitted), limit) << limit;
      if (kept + 1 <= Len(text) - 4) {  // the first pass already keeps n - 4
        EXPECT_GE(width(Left(text, kept + 1) + "..."), limit) << "one more would fit at " << limit;
      }
    }
  }
}

// ---- NextLine ---------------------------------------------------------------

// The candidate, its trailing blank included, must be narrower than the width;
// the blank after the last word is used up; a word wider than the line stays
// whole; a marker ends the line; a line takes at most 1000 characters.
TEST_F(LabelLayoutTest, LineBreaksAfterTheLastBlankThatFits) {
  const std::string text = "alpha beta gamma delta";
  const struct {
    std::string text;
    int32_t width, consumed;
    std::string line;
  } cases[] = {{text, width("alpha beta ") + 1, 11, "alpha beta"},
               {text, width("alpha beta "), 6, "alpha"},
               {"Antidisestablishmentarianism is long", 20, 29, "Antidisestablishmentarianism"},
               {"one" + kMarker + "two three", 500, 4, "one"},
               {std::string(1500, 'i'), 1 << 30, kMaxLineCharacters, std::string(1000, 'i')}};
  for (const auto& c : cases) {
    const WrappedLine next = NextLine(canvas, c.text, c.width);
    EXPECT_EQ(next.consumed, c.consumed) << c.text.substr(0, 40) << " in " << c.width;
    EXPECT_EQ(next.line, c.line);
  }
}

// ---- DrawWrapped ------------------------------------------------------------

TEST_F(LabelLayoutTest, ForcedBreaksStartNewLinesAndLongWordsEndInDots) {
  DrawWrapped(canvas, " First\r\nSecond\r\n\r\nAntidisestablishmentarianism ", 5, 2, 60, 112);
  const std::string fitted = FitText(canvas, "Antidisestablishmentarianism", 60);
  EXPECT_TRUE(looksLike({"First", "Second", "", fitted}, 5, 2));
}

// A line is printed while its centre, top + k * line + line / 2, is at most
// top + heightLimit.
TEST_F(LabelLayoutTest, LinesStopAtTheLastWhoseCentreFits) {
  const double line = lineHeight();
  const std::string caption = "one\rtwo\rthree";
  DrawWrapped(canvas, caption, 0, 4, 190, line + line / 2);
  EXPECT_TRUE(looksLike({"one", "two"}, 0, 4));
  canvas.Clear();
  DrawWrapped(canvas, caption, 0, 4, 190, line + line / 2 - 0.5);
  EXPECT_TRUE(looksLike({"one"}, 0, 4));
}

}  // namespace
}  // namespace velt
