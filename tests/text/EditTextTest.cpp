// The editor's text model on its own: code-point counting, undo and redo,
// limits, cluster-wise deletion and word movement.

#include "velt/controls/text/EditText.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ExpectError.hpp"

namespace velt {
namespace {

EditText withText(const std::string& text) {
  EditText edit;
  edit.SetText(text, "test");
  return edit;
}

TEST(EditTextTest, PositionsCountCodePointsAndMalformedTextIsRefused) {
  EditText edit = withText("Grüße 😀x");
  EXPECT_EQ(edit.Length(), 8);
  edit.Select(2, 3);
  EXPECT_EQ(edit.SelText(), "üße");
  edit.Select(6, 99);  // clipped to the text
  EXPECT_EQ(edit.SelText(), "😀x");
  EXPECT_EQ(edit.SelLength(), 2);
  for (const std::string& bad : {std::string("a\xC3"), std::string("a\0b", 3)}) {
    const std::string message = test::errorOf(380, [&] { edit.SetText(bad, "Box.Text"); });
    EXPECT_NE(message.find("Box.Text"), std::string::npos) << message;
  }
  EXPECT_EQ(edit.Utf8(), "Grüße 😀x");  // a refused text changes nothing
  // Text from the desktop is taken with replacements instead.
  EXPECT_EQ(CodePointsReplacing(std::string("a\xFF\0b", 4)), U"a\uFFFDb");
}

TEST(EditTextTest, ARunOfTypingIsOneUndoStepAndRedoFollowsUntilTheNextEdit) {
  EditText edit = withText("");
  for (const char32_t c : std::u32string(U"abc"))
    edit.Type(std::u32string(1, c), 0);
  edit.MoveCaret(1, false);  // moving ends the run
  edit.Type(U"X", 0);
  edit.SelectAll();
  edit.Paste(U"ü", 0);
  EXPECT_EQ(edit.Utf8(), "ü");
  ASSERT_TRUE(edit.Undo());
  EXPECT_EQ(edit.Utf8(), "aXbc");
  ASSERT_TRUE(edit.Undo());
  EXPECT_EQ(edit.Utf8(), "abc");
  EXPECT_EQ(edit.Caret(), 1);  // the caret comes back with the text
  ASSERT_TRUE(edit.Undo());
  EXPECT_EQ(edit.Utf8(), "");
  EXPECT_FALSE(edit.Undo());
  ASSERT_TRUE(edit.Redo());
  ASSERT_TRUE(edit.Redo());
  EXPECT_EQ(edit.Utf8(), "aXbc");
  edit.Type(U"!", 0);
  EXPECT_FALSE(edit.Redo());
}

TEST(EditTextTest, MaxLengthStopsTypingAndPasteButNotTheOwnersReplacement) {
  EditText edit = withText("abc");
  edit.MoveCaret(3, false);
  EXPECT_FALSE(edit.Type(U"d", 3));
  edit.Select(1, 1);
  EXPECT_TRUE(edit.Paste(U"üöä", 4));  // "b" goes, two fit
  EXPECT_EQ(edit.Utf8(), "aüöc");
  edit.SelectAll();
  EXPECT_TRUE(edit.ReplaceSelection(U"longer than four"));
  EXPECT_EQ(edit.Length(), 16);
}

TEST(EditTextTest, DeletionTakesWholeClustersBetweenTheStops) {
  // "e" + combining acute, then "x": the stops skip the mark.
  EditText edit = withText("e\xCC\x81x");
  const std::vector<int32_t> stops = {0, 2, 3};
  edit.MoveCaret(2, false);
  ASSERT_TRUE(edit.DeleteBackward(stops));
  EXPECT_EQ(edit.Utf8(), "x");
  edit.SetText("e\xCC\x81x", "test");
  ASSERT_TRUE(edit.DeleteForward(stops));
  EXPECT_EQ(edit.Utf8(), "x");
  edit.SetText("e\xCC\x81x", "test");
  EXPECT_EQ(edit.NextStop(stops, 0), 2);
  EXPECT_EQ(edit.PreviousStop(stops, 3), 2);
  EXPECT_EQ(edit.StopAtOrBefore(stops, 1), 0);
}

TEST(EditTextTest, WordMovementAndTheWordAroundAPosition) {
  const EditText edit = withText("one two,  three");
  struct Case {
    int32_t from, right, left;
  };
  for (const Case c : {Case{0, 4, 0}, Case{2, 4, 0}, Case{4, 7, 0}, Case{7, 10, 4}, Case{10, 15, 7},
                       Case{15, 15, 10}}) {
    EXPECT_EQ(edit.WordRight(c.from), c.right) << c.from;
    EXPECT_EQ(edit.WordLeft(c.from), c.left) << c.from;
  }
  EXPECT_EQ(edit.WordAt(5), (std::pair<int32_t, int32_t>{4, 7}));
  EXPECT_EQ(edit.WordAt(7), (std::pair<int32_t, int32_t>{7, 8}));  // the sign after "two"
  EXPECT_EQ(edit.WordAt(15), (std::pair<int32_t, int32_t>{10, 15}));
}

}  // namespace
}  // namespace velt
