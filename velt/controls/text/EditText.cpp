#include "velt/controls/text/EditText.hpp"

#include <unicode/uchar.h>

#include <algorithm>

#include "velt/platform/Error.hpp"
#include "velt/platform/Utf8.hpp"

namespace velt {

namespace {

enum class CharClass { Blank, Word, Sign };

CharClass classOf(char32_t c) {
  const auto ch = static_cast<UChar32>(c);
  if (u_isUWhiteSpace(ch)) return CharClass::Blank;
  if (u_isalnum(ch) || c == U'_' || (U_GET_GC_MASK(ch) & U_GC_M_MASK)) return CharClass::Word;
  return CharClass::Sign;
}

}  // namespace

std::u32string CodePointsOf(std::string_view text, const char* where) {
  std::u32string chars;
  chars.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const Utf8::Decoded decoded = Utf8::DecodeAt(text, at);
    if (!decoded.valid || decoded.codePoint == 0)
      throw Error(errInvalidPropertyValue,
                  std::string(where) + ": the text is not UTF-8 or holds a NUL character (byte " +
                      std::to_string(at) + ")");
    chars += decoded.codePoint;
    at += decoded.length;
  }
  return chars;
}

std::u32string CodePointsReplacing(std::string_view text) {
  std::u32string chars;
  chars.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const Utf8::Decoded decoded = Utf8::DecodeAt(text, at);
    if (decoded.codePoint != 0) chars += decoded.codePoint;
    at += decoded.length;
  }
  return chars;
}

std::string Utf8Of(std::u32string_view chars) {
  std::string text;
  text.reserve(chars.size());
  for (const char32_t c : chars)
    Utf8::Append(text, c);
  return text;
}

std::string EditText::SelText() const {
  return Substring(SelStart(), SelLength());
}

std::string EditText::Substring(int32_t start, int32_t length) const {
  const int32_t first = clip(start);
  const int32_t last = clip(first + std::max(length, 0));
  return Utf8Of(std::u32string_view(chars_).substr(first, last - first));
}

void EditText::SetText(std::string_view text, const char* where) {
  chars_ = CodePointsOf(text, where);
  caret_ = anchor_ = 0;
  undo_.clear();
  redo_.clear();
  last_ = LastEdit::None;
  textChanged();
}

void EditText::Select(int32_t start, int32_t length) {
  anchor_ = clip(start);
  caret_ = clip(anchor_ + std::max(length, 0));
  last_ = LastEdit::None;
}

void EditText::MoveCaret(int32_t position, bool extend) {
  caret_ = clip(position);
  if (!extend) anchor_ = caret_;
  last_ = LastEdit::None;
}

bool EditText::Type(std::u32string_view chars, int32_t maxLength) {
  const bool continues = last_ == LastEdit::Typing && caret_ == anchor_ && caret_ == typingEnd_;
  if (maxLength > 0) {
    const int32_t room = maxLength - (Length() - SelLength());
    chars = chars.substr(0, static_cast<size_t>(std::max(room, 0)));
  }
  if (chars.empty()) return false;
  if (!continues) saveUndo();
  replace(SelStart(), SelLength(), chars);
  last_ = LastEdit::Typing;
  typingEnd_ = caret_;
  return true;
}

bool EditText::Paste(std::u32string_view chars, int32_t maxLength) {
  if (maxLength > 0) {
    const int32_t room = maxLength - (Length() - SelLength());
    chars = chars.substr(0, static_cast<size_t>(std::max(room, 0)));
  }
  if (chars.empty() && SelLength() == 0) return false;
  return ReplaceSelection(chars);
}

bool EditText::ReplaceSelection(std::u32string_view chars) {
  if (chars.empty() && SelLength() == 0) return false;
  saveUndo();
  replace(SelStart(), SelLength(), chars);
  return true;
}

bool EditText::DeleteSelection() {
  return ReplaceSelection({});
}

bool EditText::DeleteBackward(std::span<const int32_t> stops) {
  if (SelLength() == 0) anchor_ = PreviousStop(stops, caret_);
  return DeleteSelection();
}

bool EditText::DeleteForward(std::span<const int32_t> stops) {
  if (SelLength() == 0) anchor_ = NextStop(stops, caret_);
  return DeleteSelection();
}

bool EditText::Undo() {
  if (undo_.empty()) return false;
  redo_.push_back({chars_, caret_, anchor_});
  restore(undo_.back());
  undo_.pop_back();
  return true;
}

bool EditText::Redo() {
  if (redo_.empty()) return false;
  undo_.push_back({chars_, caret_, anchor_});
  restore(redo_.back());
  redo_.pop_back();
  return true;
}

int32_t EditText::PreviousStop(std::span<const int32_t> stops, int32_t position) const {
  if (stops.empty()) return std::max(position - 1, 0);
  const auto it = std::lower_bound(stops.begin(), stops.end(), position);
  return it == stops.begin() ? 0 : clip(*(it - 1));
}

int32_t EditText::NextStop(std::span<const int32_t> stops, int32_t position) const {
  if (stops.empty()) return clip(position + 1);
  const auto it = std::upper_bound(stops.begin(), stops.end(), position);
  return it == stops.end() ? Length() : clip(*it);
}

int32_t EditText::StopAtOrBefore(std::span<const int32_t> stops, int32_t position) const {
  if (stops.empty()) return clip(position);
  const auto it = std::upper_bound(stops.begin(), stops.end(), position);
  return it == stops.begin() ? 0 : clip(*(it - 1));
}

int32_t EditText::WordLeft(int32_t position) const {
  int32_t at = clip(position);
  while (at > 0 && classOf(chars_[at - 1]) == CharClass::Blank)
    --at;
  if (at == 0) return 0;
  const CharClass run = classOf(chars_[at - 1]);
  while (at > 0 && classOf(chars_[at - 1]) == run)
    --at;
  return at;
}

int32_t EditText::WordRight(int32_t position) const {
  int32_t at = clip(position);
  const int32_t end = Length();
  if (at < end && classOf(chars_[at]) != CharClass::Blank) {
    const CharClass run = classOf(chars_[at]);
    while (at < end && classOf(chars_[at]) == run)
      ++at;
  }
  while (at < end && classOf(chars_[at]) == CharClass::Blank)
    ++at;
  return at;
}

std::pair<int32_t, int32_t> EditText::WordAt(int32_t position) const {
  const int32_t end = Length();
  if (end == 0) return {0, 0};
  // At the end of the text (or of a word) the word before the position counts.
  int32_t at = std::min(clip(position), end - 1);
  if (at > 0 && classOf(chars_[at]) == CharClass::Blank &&
      classOf(chars_[at - 1]) != CharClass::Blank)
    --at;
  const CharClass run = classOf(chars_[at]);
  int32_t first = at;
  int32_t last = at + 1;
  while (first > 0 && classOf(chars_[first - 1]) == run)
    --first;
  while (last < end && classOf(chars_[last]) == run)
    ++last;
  return {first, last};
}

void EditText::saveUndo() {
  undo_.push_back({chars_, caret_, anchor_});
  if (undo_.size() > kUndoSteps) undo_.erase(undo_.begin());
  redo_.clear();
  last_ = LastEdit::None;
}

void EditText::restore(const Snapshot& snapshot) {
  chars_ = snapshot.chars;
  caret_ = snapshot.caret;
  anchor_ = snapshot.anchor;
  last_ = LastEdit::None;
  textChanged();
}

void EditText::replace(int32_t start, int32_t length, std::u32string_view chars) {
  chars_.replace(static_cast<size_t>(start), static_cast<size_t>(length), chars);
  caret_ = anchor_ = start + static_cast<int32_t>(chars.size());
  textChanged();
}

void EditText::textChanged() {
  utf8_ = Utf8Of(chars_);
}

int32_t EditText::clip(int32_t position) const {
  return std::clamp(position, 0, Length());
}

}  // namespace velt
