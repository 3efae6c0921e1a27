#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velt {

// The text of a single-line editor with its caret, selection and undo
// history. Everything counts characters (code points), never bytes. The
// caret stands at `Caret`, the selection runs between `Anchor` and `Caret`.
//
// Moving and deleting take the line's cursor stops (ascending positions, 0 and
// Length included; ShapedLine::Boundaries gives them), so the caret never lands
// inside a cluster: a base with its marks, an emoji sequence. Without stops
// every position is one.
//
// Undo keeps whole states: each edit that is not a continuation of a run of
// typing saves the state before it (at most kUndoSteps of them). Redo holds
// what was undone until the next edit.
class EditText {
 public:
  static constexpr size_t kUndoSteps = 100;

  const std::u32string& Chars() const { return chars_; }
  const std::string& Utf8() const { return utf8_; }  // the same text, kept in step
  int32_t Length() const { return static_cast<int32_t>(chars_.size()); }
  int32_t Caret() const { return caret_; }
  int32_t Anchor() const { return anchor_; }
  int32_t SelStart() const { return std::min(caret_, anchor_); }
  int32_t SelLength() const { return std::abs(caret_ - anchor_); }
  std::string SelText() const;
  // Characters of the text as UTF-8, [start, start + length) clipped to the text.
  std::string Substring(int32_t start, int32_t length) const;

  // Replaces the whole text; the caret goes to 0 and the history is cleared.
  // Error 380 naming `where` when text is not UTF-8 or holds a NUL character.
  void SetText(std::string_view text, const char* where);
  // Selects [start, start + length), both clipped to the text; the caret goes
  // to the end of the selection.
  void Select(int32_t start, int32_t length);
  void SelectAll() { Select(0, Length()); }
  // Puts the caret at position (clipped); with extend the anchor stays.
  void MoveCaret(int32_t position, bool extend);

  // Edits; each returns whether the text changed. A maxLength of 0 means no
  // limit; otherwise typing and Paste take no more characters than fit.
  bool Type(std::u32string_view chars, int32_t maxLength);
  bool Paste(std::u32string_view chars, int32_t maxLength);
  // The selection becomes chars with no limit (the owner's menu paste).
  bool ReplaceSelection(std::u32string_view chars);
  bool DeleteSelection();
  // Backspace and Delete: the selection, else the cluster before / after the caret.
  bool DeleteBackward(std::span<const int32_t> stops);
  bool DeleteForward(std::span<const int32_t> stops);
  bool Undo();
  bool Redo();
  bool CanUndo() const { return !undo_.empty(); }
  bool CanRedo() const { return !redo_.empty(); }

  // Stops around a position: the nearest one before / after it (the ends of
  // the text at the ends), and the one at or before it.
  int32_t PreviousStop(std::span<const int32_t> stops, int32_t position) const;
  int32_t NextStop(std::span<const int32_t> stops, int32_t position) const;
  int32_t StopAtOrBefore(std::span<const int32_t> stops, int32_t position) const;
  // Word movement as desktop editors do it: right to the start of the next
  // word, left to the start of this or the previous word.
  int32_t WordLeft(int32_t position) const;
  int32_t WordRight(int32_t position) const;
  // The word (or run of blanks, or single sign) around position: [first, second).
  std::pair<int32_t, int32_t> WordAt(int32_t position) const;

 private:
  struct Snapshot {
    std::u32string chars;
    int32_t caret = 0;
    int32_t anchor = 0;
  };
  enum class LastEdit { None, Typing };

  void saveUndo();
  void restore(const Snapshot& snapshot);
  void replace(int32_t start, int32_t length, std::u32string_view chars);
  void textChanged();
  int32_t clip(int32_t position) const;

  std::u32string chars_;
  std::string utf8_;
  int32_t caret_ = 0;
  int32_t anchor_ = 0;
  std::vector<Snapshot> undo_;
  std::vector<Snapshot> redo_;
  LastEdit last_ = LastEdit::None;
  int32_t typingEnd_ = -1;
};

// UTF-8 as code points; error 380 naming `where` for text that is not UTF-8
// or holds a NUL character.
std::u32string CodePointsOf(std::string_view text, const char* where);
std::string Utf8Of(std::u32string_view chars);
// Text from outside (the desktop's clipboard, an input method) as code points:
// malformed bytes become U+FFFD and NUL characters are dropped.
std::u32string CodePointsReplacing(std::string_view text);

}  // namespace velt
