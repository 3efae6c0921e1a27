#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/controls/text/DataFormats.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class ControlHost;
class Font;
class SingleLineEdit;
class veltPUMenu;

// A single-line text input with a shaded border, a per-keystroke input filter
// (DataFormat), optional select-all on focus and an owner-drawn context menu
// (Cut, Copy, Paste, Delete, Select all) with captions the host may translate.
// The editing is done by its part Text1, a SingleLineEdit at (2, 2); the box
// draws the border around it, forwards its key events and keeps its height at
// one text line plus 4 pixels. The context menu is the part veltPUMenu1.
//
// Properties marked "Text1" below live in the editor. Enabled and Font are the
// host's and raise error 91 while the box is not sited.
class veltTextBox : public UserControl, public std::enable_shared_from_this<veltTextBox> {
 public:
  static constexpr int16_t kID = 13;
  static constexpr OLE_COLOR kDefaultBackColor = 0xFFFFFF;
  static constexpr OLE_COLOR kDefaultForeColor = 0xC00000;
  static constexpr OLE_COLOR kDefaultSelectionColor = 33023;  // 0x0080FF
  static constexpr const char* kDefaultText = "Text1";
  static constexpr const char* kEditorName = "Text1";
  static constexpr const char* kMenuName = "veltPUMenu1";
  static constexpr int32_t kEditorInset = 2;  // pixels from the border to Text1

  // The context menu's rows by key.
  static constexpr const char* kCutKey = "a";
  static constexpr const char* kCopyKey = "b";
  static constexpr const char* kPasteKey = "c";
  static constexpr const char* kDeleteKey = "d";
  static constexpr const char* kSeparatorKey = "e";
  static constexpr const char* kSelectAllKey = "f";

  veltTextBox() = default;
  veltTextBox(const veltTextBox&) = delete;
  veltTextBox& operator=(const veltTextBox&) = delete;
  ~veltTextBox() override;

  std::string ClassName() const override { return "veltTextBox"; }
  int16_t ID() const override { return kID; }

  // Properties, in the order they are stored.
  OLE_COLOR BackColor() const { return backColor_; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return foreColor_; }
  void ForeColor(OLE_COLOR color);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // nullptr is error 91
  int16_t Alignment() const;                    // Text1: 0 left, 1 right, 2 centre
  void Alignment(int16_t alignment);
  const std::string& Text() const;  // Text1
  void Text(const std::string& text);
  bool AutoSelect() const { return autoSelect_; }
  void AutoSelect(bool autoSelect);
  int32_t SelLength() const;  // Text1, characters
  void SelLength(int32_t length);
  int32_t SelStart() const;  // Text1, characters
  void SelStart(int32_t start);
  const std::string& PasswordChar() const;  // Text1
  void PasswordChar(const std::string& mask);
  bool RightToLeft() const;  // Text1
  void RightToLeft(bool rightToLeft);
  bool Locked() const;  // Text1
  void Locked(bool locked);
  int32_t DataFormat() const { return dataFormat_; }
  // Any value is stored (one outside 0..16 refuses every key); text already
  // present is not filtered again.
  void DataFormat(int32_t format);
  OLE_COLOR SelectionColor() const { return selectionColor_; }
  void SelectionColor(OLE_COLOR color);
  const std::string& textCut() const { return captions_[0]; }
  void textCut(const std::string& caption);
  const std::string& textCopy() const { return captions_[1]; }
  void textCopy(const std::string& caption);
  const std::string& textPaste() const { return captions_[2]; }
  void textPaste(const std::string& caption);
  const std::string& textDelete() const { return captions_[3]; }
  void textDelete(const std::string& caption);
  const std::string& textSelectAll() const { return captions_[4]; }
  void textSelectAll(const std::string& caption);
  int32_t MaxLength() const;  // Text1; 0 = no limit
  void MaxLength(int32_t length);

  // Events, in slot order, forwarded from Text1. KeyPress carries the
  // filtered code (0 for a refused key); what the handler leaves goes back.
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyDown;
  Event<int16_t& /*KeyAscii*/> KeyPress;
  Event<int16_t& /*KeyCode*/, int16_t& /*Shift*/> KeyUp;

  // Parts and fields, for the host, tools and tests. Colors is the scheme
  // built from BackColor, ForeColor and white.
  std::shared_ptr<SingleLineEdit> Text1() const { return editor_; }
  std::shared_ptr<veltPUMenu> veltPUMenu1() const { return menu_; }
  const ColorScheme& Colors() const { return colors_; }
  int32_t SavedSelStart() const { return savedStart_; }
  int32_t SavedSelLength() const { return savedLength_; }
  bool MenuReturn() const { return menuReturn_; }

  // The context menu, as a right press in Text1 opens it.
  void OpenContextMenu();
  // A command of the context menu on the saved selection, by row key.
  void MenuCommand(const std::string& key);

  // UserControl.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;
  void Terminate() override;
  void OnMouseDown(int16_t, int16_t, float, float) override {}
  void OnMouseMove(int16_t, int16_t, float, float) override {}
  void OnMouseUp(int16_t, int16_t, float, float) override {}
  void OnKeyDown(int16_t&, int16_t&) override {}
  void OnKeyUp(int16_t&, int16_t&) override {}
  void OnKeyPress(int16_t&) override {}
  void OnEnterFocus() override;
  void OnExitFocus() override {}

 private:
  ControlHost& host() const;  // error 91 while not sited
  SingleLineEdit& editor() const;
  void markChanged(const char* name);
  void createParts();
  void connectEditor();
  void layout();
  void drawBorder();
  void applyEnabled();
  void menuLook();
  void writeCaptions();
  void caption(int index, const std::string& caption, const char* name);
  void editorGotFocus();
  void menuClosed();

  ControlHost* host_ = nullptr;
  ControlHost* editorHost_ = nullptr;
  std::shared_ptr<SingleLineEdit> editor_;
  std::shared_ptr<veltPUMenu> menu_;
  OLE_COLOR backColor_ = kDefaultBackColor;
  OLE_COLOR foreColor_ = kDefaultForeColor;
  OLE_COLOR selectionColor_ = kDefaultSelectionColor;
  std::array<std::string, 5> captions_;
  bool autoSelect_ = false;
  int32_t dataFormat_ = df_AllChars;
  ColorScheme colors_;
  int32_t savedStart_ = 0;
  int32_t savedLength_ = 0;
  bool menuReturn_ = false;
  bool laying_ = false;
  std::vector<Connection> connections_;
};

}  // namespace velt
