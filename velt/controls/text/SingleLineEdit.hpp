#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/controls/text/EditText.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/ShapedLine.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class ControlHost;
class Timer;

// The single-line edit field that text controls site as a part (the text
// box's Text1): a blinking caret on a host timer, selection by keys and
// mouse, horizontal scrolling that keeps the caret in view, the clipboard,
// undo and redo, input-method composition. Text is UTF-8 and every position
// counts code points; the caret stops only between clusters of the shaped line.
//
// It draws on its own surface in the colours and font its owner hands it and
// keeps no stored properties: the owner stores them. The owner filters what is
// typed through KeyPress (a handler may change the code or set it to 0) and
// what is pasted through PasteText; the editor acts on what the handlers leave.
// KeyPress codes are UTF-16 units: a character beyond U+FFFF comes as two
// KeyPress codes (high surrogate, then low), which the editor joins.
class SingleLineEdit : public UserControl, public std::enable_shared_from_this<SingleLineEdit> {
 public:
  static constexpr int16_t kID = 16;
  static constexpr const char* kCaretTimerName = "tmrCaret";
  static constexpr int32_t kCaretBlinkMs = 530;
  static constexpr const char* kDragTimerName = "tmrDrag";
  static constexpr int32_t kDragScrollMs = 50;
  static constexpr int32_t kPadding = 1;  // pixels kept free at either end of the line

  enum Alignments : int16_t { alLeft = 0, alRight = 1, alCenter = 2 };

  SingleLineEdit() = default;
  SingleLineEdit(const SingleLineEdit&) = delete;
  SingleLineEdit& operator=(const SingleLineEdit&) = delete;
  ~SingleLineEdit() override;

  std::string ClassName() const override { return "SingleLineEdit"; }
  int16_t ID() const override { return kID; }

  // Properties. Text (error 380 for malformed UTF-8 or a NUL) puts the caret
  // at 0 and clears the undo history. SelStart and SelLength are clipped to
  // the text; SelStart makes the selection an insertion point, as the classic
  // text box does, so SelLength is set after it. Negative values, an
  // Alignment outside 0..2 and a negative MaxLength are error 380.
  const std::string& Text() const { return text_.Utf8(); }
  void Text(const std::string& text);
  int32_t SelStart() const { return text_.SelStart(); }
  void SelStart(int32_t start);
  int32_t SelLength() const { return text_.SelLength(); }
  void SelLength(int32_t length);
  std::string SelText() const { return text_.SelText(); }
  // Replaces the selection (one undo step, no MaxLength), the caret after it.
  void SelText(const std::string& text);
  int32_t MaxLength() const { return maxLength_; }
  void MaxLength(int32_t length);
  // Its first character is shown for every character; "" shows the text.
  const std::string& PasswordChar() const { return passwordChar_; }
  void PasswordChar(const std::string& mask);
  bool Locked() const { return locked_; }
  void Locked(bool locked) { locked_ = locked; }
  int16_t Alignment() const { return alignment_; }
  void Alignment(int16_t alignment);
  bool RightToLeft() const { return rightToLeft_; }
  void RightToLeft(bool rightToLeft);
  OLE_COLOR ForeColor() const { return foreColor_; }
  void ForeColor(OLE_COLOR color);
  OLE_COLOR BackColor() const { return backColor_; }
  void BackColor(OLE_COLOR color);

  // Commands, as the keys give them. Copy and Cut put nothing on the
  // clipboard while a PasswordChar is set; Locked allows only Copy.
  void Copy();
  void Cut();
  void Paste();
  void Undo();
  void Redo();
  void SelectAll();
  // Selects the word (or blank run, or sign) at pixel x, as a double click does.
  void SelectWordAt(float x);

  // Events, in slot order. PasteText is raised with the clipboard's text
  // before the editor's own paste; the handler may change it.
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyDown;
  Event<int16_t& /*KeyAscii*/> KeyPress;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyUp;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<> Change;
  Event<> GotFocus;
  Event<std::string& /*Text*/> PasteText;

  // State, read-only, for the owner, tools and tests.
  const EditText& Content() const { return text_; }
  int32_t Caret() const { return text_.Caret(); }
  int32_t ScrollX() const { return scroll_; }  // pixels the line is scrolled left by
  bool CaretShown() const;                     // drawn now: focused, enabled, blink on
  int32_t CaretX() const;                      // the caret's x on the surface
  const std::string& Composition() const { return composition_; }

  // UserControl.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag&) override {}
  void WriteProperties(PropertyBag&) override {}
  void Resize() override;
  void Terminate() override;
  void OnMouseDown(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseMove(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseUp(int16_t button, int16_t shift, float x, float y) override;
  // A double click with the left button selects the word under the pointer.
  void OnDblClick(int16_t button, int16_t shift, float x, float y) override;
  void OnKeyDown(int16_t& keyCode, int16_t& shift) override;
  void OnKeyUp(int16_t& keyCode, int16_t& shift) override;
  void OnKeyPress(int16_t& keyAscii) override;
  void OnComposition(const std::string& text) override;
  void OnEnterFocus() override;
  void OnExitFocus() override;

 private:
  // The line as shown: text (or mask) with any composition at the caret,
  // its cursor stops in visual order and its width.
  struct Line {
    std::string shown;
    std::vector<CaretStop> stops;
    int32_t width = 0;
    int32_t caretShown = 0;  // the caret's position in `shown`
  };

  ControlHost& host() const;  // error 91 while not sited
  Canvas& surface() const;
  Line line() const;
  std::vector<int32_t> clusterStops() const;
  int32_t lineLeft(const Line& line) const;
  int32_t positionAt(float x) const;
  void keepCaretInView(const Line& shown);
  void refresh();
  void afterCaretMove();
  void afterEdit(bool changed);
  void restartBlink();
  void repaint();
  void paint(const Line& shown);
  void paintSelection(Canvas& canvas, const Line& line, int32_t left) const;

  void moveHorizontally(bool forward, bool byWord, bool extend);
  bool commandKey(int16_t keyCode, int16_t shift);
  void typeCode(int16_t code);
  void dragTick();
  void raiseChange();

  ControlHost* host_ = nullptr;
  EditText text_;
  int32_t maxLength_ = 0;
  std::string passwordChar_;
  bool locked_ = false;
  int16_t alignment_ = alLeft;
  bool rightToLeft_ = false;
  OLE_COLOR foreColor_ = 0;
  OLE_COLOR backColor_ = 0xFFFFFF;
  std::string composition_;
  char16_t highSurrogate_ = 0;
  int32_t scroll_ = 0;
  bool focused_ = false;
  bool blinkOn_ = true;
  bool dragging_ = false;
  float dragX_ = 0;
  std::shared_ptr<Timer> caretTimer_;
  std::shared_ptr<Timer> dragTimer_;
  std::vector<Connection> timerConnections_;
};

}  // namespace velt
