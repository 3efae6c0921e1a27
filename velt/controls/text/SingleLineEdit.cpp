#include "velt/controls/text/SingleLineEdit.hpp"

#include <algorithm>

#include "velt/foundation/Colors.hpp"
#include "velt/foundation/EventRaising.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/MousePointer.hpp"
#include "velt/platform/Timer.hpp"

namespace velt {

namespace {

constexpr int16_t kLeftButton = 1;
constexpr int16_t kShiftMask = 1;
constexpr int16_t kCtrlMask = 2;
constexpr int16_t kAltMask = 4;

constexpr int16_t kKeyBack = 8;
constexpr int16_t kKeyEnd = 35;
constexpr int16_t kKeyHome = 36;
constexpr int16_t kKeyLeft = 37;
constexpr int16_t kKeyRight = 39;
constexpr int16_t kKeyInsert = 45;
constexpr int16_t kKeyDelete = 46;
constexpr int16_t kKeyA = 65;
constexpr int16_t kKeyC = 67;
constexpr int16_t kKeyV = 86;
constexpr int16_t kKeyX = 88;
constexpr int16_t kKeyY = 89;
constexpr int16_t kKeyZ = 90;

// The selection's background: the desktop's highlight, lightened towards the
// field's background so the text keeps its own colour over it.
constexpr OLE_COLOR kHighlight = 0x8000000D;
constexpr int32_t kSelectionWeight = 110;  // share of the highlight, of 255

bool isHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Only the first line of pasted text: the field holds one line.
std::string firstLine(const std::string& text) {
  return text.substr(0, text.find_first_of("\r\n"));
}

void checkNotNegative(int32_t value, const char* where) {
  if (value < 0)
    throw Error(errInvalidPropertyValue,
                std::string(where) + ": " + std::to_string(value) + " is below 0");
}

}  // namespace

SingleLineEdit::~SingleLineEdit() = default;

// ---- Properties -------------------------------------------------------------

void SingleLineEdit::Text(const std::string& text) {
  text_.SetText(text, "SingleLineEdit.Text");
  composition_.clear();
  scroll_ = 0;
  afterEdit(true);
}

void SingleLineEdit::SelStart(int32_t start) {
  checkNotNegative(start, "SingleLineEdit.SelStart");
  text_.Select(start, 0);
  afterCaretMove();
}

void SingleLineEdit::SelLength(int32_t length) {
  checkNotNegative(length, "SingleLineEdit.SelLength");
  text_.Select(text_.SelStart(), length);
  afterCaretMove();
}

void SingleLineEdit::SelText(const std::string& text) {
  afterEdit(text_.ReplaceSelection(CodePointsOf(text, "SingleLineEdit.SelText")));
}

void SingleLineEdit::MaxLength(int32_t length) {
  checkNotNegative(length, "SingleLineEdit.MaxLength");
  maxLength_ = length;
}

void SingleLineEdit::PasswordChar(const std::string& mask) {
  const std::u32string chars = CodePointsOf(mask, "SingleLineEdit.PasswordChar");
  passwordChar_ = chars.empty() ? std::string() : Utf8Of(chars.substr(0, 1));
  afterCaretMove();
}

void SingleLineEdit::Alignment(int16_t alignment) {
  if (alignment < alLeft || alignment > alCenter)
    throw Error(errInvalidPropertyValue, "SingleLineEdit.Alignment: " + std::to_string(alignment) +
                                             " is not 0 (left), 1 (right) or 2 (centre)");
  alignment_ = alignment;
  repaint();
}

void SingleLineEdit::RightToLeft(bool rightToLeft) {
  rightToLeft_ = rightToLeft;
  scroll_ = 0;
  afterCaretMove();
}

void SingleLineEdit::ForeColor(OLE_COLOR color) {
  foreColor_ = color;
  repaint();
}

void SingleLineEdit::BackColor(OLE_COLOR color) {
  backColor_ = color;
  repaint();
}

// ---- Commands ---------------------------------------------------------------

void SingleLineEdit::Copy() {
  if (!passwordChar_.empty() || text_.SelLength() == 0) return;
  host().Clipboard().SetText(text_.SelText());
}

void SingleLineEdit::Cut() {
  if (locked_ || !passwordChar_.empty() || text_.SelLength() == 0) return;
  Copy();
  afterEdit(text_.DeleteSelection());
}

void SingleLineEdit::Paste() {
  if (locked_) return;
  std::string pasted = firstLine(host().Clipboard().GetText());
  RaiseEvent(host(), "PasteText", PasteText, pasted);
  afterEdit(text_.Paste(CodePointsReplacing(pasted), maxLength_));
}

void SingleLineEdit::Undo() {
  if (!locked_) afterEdit(text_.Undo());
}

void SingleLineEdit::Redo() {
  if (!locked_) afterEdit(text_.Redo());
}

void SingleLineEdit::SelectAll() {
  text_.SelectAll();
  afterCaretMove();
}

void SingleLineEdit::SelectWordAt(float x) {
  const auto [first, last] = text_.WordAt(positionAt(x));
  text_.Select(first, last - first);
  afterCaretMove();
}

// ---- Layout -----------------------------------------------------------------

ControlHost& SingleLineEdit::host() const {
  if (!host_) throw Error(errObjectNotSet, "SingleLineEdit: the editor is not sited");
  return *host_;
}

Canvas& SingleLineEdit::surface() const {
  Canvas& canvas = host().Surface();
  if (canvas.Font() != host().Font() && host().Font()) canvas.Font(host().Font());
  canvas.RightToLeft(rightToLeft_);
  return canvas;
}

SingleLineEdit::Line SingleLineEdit::line() const {
  Line result;
  const int32_t caret = text_.Caret();
  if (passwordChar_.empty()) {
    result.shown = text_.Utf8();
  } else {
    result.shown.reserve(passwordChar_.size() * text_.Chars().size());
    for (size_t i = 0; i < text_.Chars().size(); ++i)
      result.shown += passwordChar_;
  }
  result.caretShown = caret;
  if (!composition_.empty()) {
    // Composed text shows at the caret; positions before it are the text's own.
    const std::u32string shown = CodePointsOf(result.shown, "SingleLineEdit");
    const std::u32string composed = CodePointsOf(composition_, "SingleLineEdit");
    result.shown = Utf8Of(shown.substr(0, caret)) + composition_ + Utf8Of(shown.substr(caret));
    result.caretShown = caret + static_cast<int32_t>(composed.size());
  }
  // Line breaks pasted by the owner show as blanks: the field draws one line.
  std::replace_if(
      result.shown.begin(), result.shown.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  const Canvas& canvas = surface();
  result.stops = canvas.CaretStops(result.shown);
  result.width = canvas.TextWidth(result.shown);
  return result;
}

// Cluster boundaries of the text itself (not its mask): a password field's
// caret stops where the text's would.
std::vector<int32_t> SingleLineEdit::clusterStops() const {
  std::vector<int32_t> stops;
  for (const CaretStop& stop : surface().CaretStops(text_.Utf8()))
    stops.push_back(stop.position);
  std::sort(stops.begin(), stops.end());
  stops.erase(std::unique(stops.begin(), stops.end()), stops.end());
  return stops;
}

// Where the line starts on the surface. A line that fits is placed by the
// alignment (right-to-left swaps left and right); a longer one scrolls.
int32_t SingleLineEdit::lineLeft(const Line& line) const {
  const int32_t width = host().Surface().ScaleWidth();
  const int32_t room = width - 2 * kPadding;
  if (line.width + 1 > room) return kPadding - scroll_;
  int16_t alignment = alignment_;
  if (rightToLeft_ && alignment != alCenter) alignment = alignment == alLeft ? alRight : alLeft;
  switch (alignment) {
    case alRight:
      return width - kPadding - 1 - line.width;
    case alCenter:
      return (width - line.width) / 2;
    default:
      return kPadding;
  }
}

static int32_t stopX(const std::vector<CaretStop>& stops, int32_t position) {
  int32_t x = 0;
  int32_t best = -1;
  for (const CaretStop& stop : stops) {
    if (stop.position == position) return stop.x;
    if (stop.position < position && stop.position > best) {
      best = stop.position;
      x = stop.x;
    }
  }
  return x;
}

int32_t SingleLineEdit::positionAt(float x) const {
  const Line shown = line();
  const int32_t left = lineLeft(shown);
  const Canvas& canvas = surface();
  int32_t position = canvas.CaretAt(shown.shown, static_cast<int32_t>(x) - left);
  if (!composition_.empty() && position > text_.Caret())
    position = std::max(text_.Caret(), position - (shown.caretShown - text_.Caret()));
  const std::vector<int32_t> stops = clusterStops();
  return text_.StopAtOrBefore(stops, position);
}

int32_t SingleLineEdit::CaretX() const {
  const Line shown = line();
  return lineLeft(shown) + stopX(shown.stops, shown.caretShown);
}

bool SingleLineEdit::CaretShown() const {
  return host_ && focused_ && blinkOn_ && host_->Enabled();
}

void SingleLineEdit::keepCaretInView(const Line& shown) {
  const int32_t room = host_->Surface().ScaleWidth() - 2 * kPadding;
  const int32_t content = shown.width + 1;
  if (content <= room) {
    scroll_ = 0;
    return;
  }
  const int32_t caret = stopX(shown.stops, shown.caretShown);
  if (caret - scroll_ < 0) scroll_ = caret;
  if (caret - scroll_ > room - 1) scroll_ = caret - room + 1;
  scroll_ = std::clamp(scroll_, 0, content - room);
}

void SingleLineEdit::afterCaretMove() {
  restartBlink();
  refresh();
}

// The line is laid out once for both the scrolling and the painting.
void SingleLineEdit::refresh() {
  if (!host_) return;
  const Line shown = line();
  keepCaretInView(shown);
  paint(shown);
}

void SingleLineEdit::afterEdit(bool changed) {
  afterCaretMove();
  if (changed) raiseChange();
}

void SingleLineEdit::raiseChange() {
  if (host_) RaiseEvent(*host_, "Change", Change);
}

// ---- Painting ---------------------------------------------------------------

void SingleLineEdit::repaint() {
  if (host_) paint(line());
}

void SingleLineEdit::paint(const Line& shown) {
  Canvas& canvas = surface();
  canvas.BackColor(backColor_);
  const int32_t left = lineLeft(shown);
  if (focused_ && composition_.empty()) paintSelection(canvas, shown, left);
  canvas.ForeColor(foreColor_);
  canvas.CurrentX(static_cast<float>(left));
  canvas.CurrentY(0);
  canvas.Print(shown.shown);
  const int32_t height = canvas.ScaleHeight();
  if (!composition_.empty()) {
    const int32_t from = left + stopX(shown.stops, text_.Caret());
    const int32_t to = left + stopX(shown.stops, shown.caretShown);
    canvas.Line(std::min(from, to), height - 1, std::max(from, to), height - 1, foreColor_);
  }
  if (CaretShown()) {
    const int32_t x = left + stopX(shown.stops, shown.caretShown);
    canvas.Line(x, 0, x, height, foreColor_);
  }
}

// Each cluster whose first character is selected gets the highlight between
// its two edges; in visual order a cluster lies between neighbouring stops.
void SingleLineEdit::paintSelection(Canvas& canvas, const Line& line, int32_t left) const {
  const int32_t first = text_.SelStart();
  const int32_t last = first + text_.SelLength();
  if (first == last) return;
  const OLE_COLOR colour = BlendColor(TranslateSysColor(kHighlight), backColor_, kSelectionWeight);
  for (size_t i = 0; i + 1 < line.stops.size(); ++i) {
    const CaretStop& a = line.stops[i];
    const CaretStop& b = line.stops[i + 1];
    const int32_t start = std::min(a.position, b.position);
    if (start < first || start >= last || b.x <= a.x) continue;
    canvas.FillRect(left + a.x, 0, b.x - a.x, canvas.ScaleHeight(), colour);
  }
}

void SingleLineEdit::restartBlink() {
  blinkOn_ = true;
  if (!caretTimer_) return;
  caretTimer_->Enabled(false);
  caretTimer_->Enabled(focused_);
}

// ---- Life cycle -------------------------------------------------------------

void SingleLineEdit::Initialize(ControlHost& host) {
  host_ = &host;
  host.PointerShape(mpIBeam);
  caretTimer_ = host.CreateTimer(kCaretTimerName);
  caretTimer_->Interval(kCaretBlinkMs);
  dragTimer_ = host.CreateTimer(kDragTimerName);
  dragTimer_->Interval(kDragScrollMs);
  timerConnections_.push_back(caretTimer_->Tick.connect([this] {
    blinkOn_ = !blinkOn_;
    repaint();
  }));
  timerConnections_.push_back(dragTimer_->Tick.connect([this] { dragTick(); }));
}

void SingleLineEdit::InitProperties() {
  repaint();
}

void SingleLineEdit::Resize() {
  refresh();
}

void SingleLineEdit::Terminate() {
  timerConnections_.clear();
  if (caretTimer_) caretTimer_->Enabled(false);
  if (dragTimer_) dragTimer_->Enabled(false);
  host_ = nullptr;
}

// ---- Mouse ------------------------------------------------------------------

void SingleLineEdit::OnMouseDown(int16_t button, int16_t shift, float x, float y) {
  auto self = shared_from_this();
  RaiseEvent(host(), "MouseDown", MouseDown, button, shift, x, y);
  if (button != kLeftButton || !host_) return;
  composition_.clear();
  text_.MoveCaret(positionAt(x), (shift & kShiftMask) != 0);
  dragging_ = true;
  dragX_ = x;
  afterCaretMove();
}

void SingleLineEdit::OnMouseMove(int16_t button, int16_t /*shift*/, float x, float /*y*/) {
  if (!dragging_ || !(button & kLeftButton)) return;
  dragX_ = x;
  text_.MoveCaret(positionAt(x), true);
  const bool outside = x < 0 || x >= static_cast<float>(host().Surface().ScaleWidth());
  if (dragTimer_->Enabled() != outside) dragTimer_->Enabled(outside);
  afterCaretMove();
}

void SingleLineEdit::OnMouseUp(int16_t button, int16_t /*shift*/, float /*x*/, float /*y*/) {
  if (button != kLeftButton) return;
  dragging_ = false;
  if (dragTimer_) dragTimer_->Enabled(false);
}

void SingleLineEdit::OnDblClick(int16_t button, int16_t /*shift*/, float x, float /*y*/) {
  if (button != kLeftButton || !host_) return;
  dragging_ = false;  // the second press's drag would undo the word
  if (dragTimer_) dragTimer_->Enabled(false);
  SelectWordAt(x);
}

// While the pointer is held past an edge, the selection grows one cluster a
// tick towards it, scrolling the line.
void SingleLineEdit::dragTick() {
  if (!dragging_ || !host_) return;
  const bool towardsRight = dragX_ >= 0;
  const bool forward = towardsRight != rightToLeft_;
  const std::vector<int32_t> stops = clusterStops();
  const int32_t caret = text_.Caret();
  text_.MoveCaret(forward ? text_.NextStop(stops, caret) : text_.PreviousStop(stops, caret), true);
  afterCaretMove();
}

// ---- Keyboard ---------------------------------------------------------------

void SingleLineEdit::OnKeyDown(int16_t& keyCode, int16_t& shift) {
  auto self = shared_from_this();
  RaiseEvent(host(), "KeyDown", KeyDown, keyCode, shift);
  if (keyCode == 0 || !host_) return;
  commandKey(keyCode, shift);
}

void SingleLineEdit::OnKeyUp(int16_t& keyCode, int16_t& shift) {
  auto self = shared_from_this();
  RaiseEvent(host(), "KeyUp", KeyUp, keyCode, shift);
}

void SingleLineEdit::OnKeyPress(int16_t& keyAscii) {
  auto self = shared_from_this();
  RaiseEvent(host(), "KeyPress", KeyPress, keyAscii);
  if (keyAscii == 0 || !host_) return;
  typeCode(keyAscii);
}

void SingleLineEdit::OnComposition(const std::string& text) {
  if (locked_) return;
  composition_ = Utf8Of(CodePointsReplacing(text));
  afterCaretMove();
}

// The keys that move, select, delete or use the clipboard; false for others.
bool SingleLineEdit::commandKey(int16_t keyCode, int16_t shift) {
  const bool extend = (shift & kShiftMask) != 0;
  const bool ctrl = (shift & kCtrlMask) != 0;
  if (shift & kAltMask) return false;
  switch (keyCode) {
    case kKeyLeft:
    case kKeyRight:
      moveHorizontally((keyCode == kKeyRight) != rightToLeft_, ctrl, extend);
      return true;
    case kKeyHome:
    case kKeyEnd:
      text_.MoveCaret(keyCode == kKeyHome ? 0 : text_.Length(), extend);
      afterCaretMove();
      return true;
    case kKeyDelete:
      if (extend) {
        Cut();
      } else if (!locked_) {
        const std::vector<int32_t> stops = clusterStops();
        afterEdit(text_.DeleteForward(stops));
      }
      return true;
    case kKeyInsert:
      if (ctrl) Copy();
      if (extend) Paste();
      return ctrl || extend;
    default:
      break;
  }
  if (!ctrl || extend) return false;
  switch (keyCode) {
    case kKeyA:
      SelectAll();
      return true;
    case kKeyC:
      Copy();
      return true;
    case kKeyX:
      Cut();
      return true;
    case kKeyV:
      Paste();
      return true;
    case kKeyZ:
      Undo();
      return true;
    case kKeyY:
      Redo();
      return true;
    default:
      return false;
  }
}

// With a selection and no Shift, Left and Right only collapse it to the edge
// they point to.
void SingleLineEdit::moveHorizontally(bool forward, bool byWord, bool extend) {
  const std::vector<int32_t> stops = clusterStops();
  const int32_t caret = text_.Caret();
  int32_t target = 0;
  if (!extend && text_.SelLength() > 0 && !byWord) {
    target = forward ? text_.SelStart() + text_.SelLength() : text_.SelStart();
  } else if (byWord) {
    target = forward ? text_.WordRight(caret) : text_.WordLeft(caret);
    target = text_.StopAtOrBefore(stops, target);
  } else {
    target = forward ? text_.NextStop(stops, caret) : text_.PreviousStop(stops, caret);
  }
  text_.MoveCaret(target, extend);
  afterCaretMove();
}

// A KeyPress code as the owner left it: Backspace deletes, other control
// characters type nothing, surrogate halves are joined.
void SingleLineEdit::typeCode(int16_t code) {
  const auto unit = static_cast<char16_t>(code);
  if (unit == kKeyBack) {
    highSurrogate_ = 0;
    if (locked_) return;
    const std::vector<int32_t> stops = clusterStops();
    afterEdit(text_.DeleteBackward(stops));
    return;
  }
  if (unit < 0x20 || unit == 0x7F) return;
  if (isHighSurrogate(unit)) {
    highSurrogate_ = unit;
    return;
  }
  char32_t character = unit;
  if (isLowSurrogate(unit)) {
    if (!highSurrogate_) return;  // half a character types nothing
    character = 0x10000 + ((static_cast<char32_t>(highSurrogate_) - 0xD800) << 10) +
                (static_cast<char32_t>(unit) - 0xDC00);
  }
  highSurrogate_ = 0;
  if (locked_) return;
  composition_.clear();
  afterEdit(text_.Type(std::u32string(1, character), maxLength_));
}

// ---- Focus ------------------------------------------------------------------

void SingleLineEdit::OnEnterFocus() {
  auto self = shared_from_this();
  focused_ = true;
  RaiseEvent(host(), "GotFocus", GotFocus);
  if (!host_) return;
  afterCaretMove();
}

void SingleLineEdit::OnExitFocus() {
  focused_ = false;
  dragging_ = false;
  composition_.clear();
  if (caretTimer_) caretTimer_->Enabled(false);
  if (dragTimer_) dragTimer_->Enabled(false);
  repaint();
}

}  // namespace velt
