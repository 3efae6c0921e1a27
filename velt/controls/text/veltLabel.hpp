#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/foundation/HoverTracker.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class Font;
class ImageList;
class Picture;

// An owner-drawn caption: optional icon from an image list, word wrap with
// forced line breaks, automatic sizing and an ellipsis for text that does not
// fit. With a Hyperlink it takes the selection colour while the pointer rests
// on it and opens the link through the shell when clicked, unless the
// HyperlinkClick handler cancels.
//
// It takes the frame's pieces (stored frame properties, hover tracking) but not
// its states or keyboard handling: the label has its own event set and its
// look changes only with the hover state.
class veltLabel : public UserControl, public std::enable_shared_from_this<veltLabel> {
 public:
  static constexpr int16_t kID = 5;
  static constexpr OLE_COLOR kDefaultSelectionColor = 33023;  // 0x0080FF, an orange

  // The label's own state numbers, set only by the hover timer. Only lsHover
  // changes the look, and only with a hyperlink.
  enum LabelState : int32_t {
    lsCreated = 0,  // never hovered yet
    lsHover = 1,    // pointer resting on the label, no button held
    lsPressed = 2,  // pointer on the label with the left button held
    lsLeft = 4,     // the pointer has moved away
  };

  veltLabel() = default;
  veltLabel(const veltLabel&) = delete;
  veltLabel& operator=(const veltLabel&) = delete;
  ~veltLabel() override;

  std::string ClassName() const override { return "veltLabel"; }
  int16_t ID() const override { return kID; }

  // Properties, in the order they are stored. Enabled, Font, MousePointer and
  // MouseIcon are the host's and raise error 91 while the label is not sited;
  // the others may be set before. Setting TextWrap or AutoSize, to any value, clears the other.
  OLE_COLOR BackColor() const { return properties_.BackColor; }
  void BackColor(OLE_COLOR color);
  OLE_COLOR ForeColor() const { return properties_.ForeColor; }
  void ForeColor(OLE_COLOR color);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::ImageList> ImageList() const { return imageList_; }
  void ImageList(std::shared_ptr<velt::ImageList> imageList);  // by reference; nullptr = none
  int16_t ImageIndex() const { return imageIndex_; }
  void ImageIndex(int16_t index);  // 1-based; 0 = no icon
  const std::string& Caption() const { return properties_.Caption; }
  void Caption(const std::string& caption);
  const std::string& Hyperlink() const { return hyperlink_; }
  void Hyperlink(const std::string& hyperlink);  // "" = no hyperlink behaviour
  OLE_COLOR SelectionColor() const { return selectionColor_; }
  void SelectionColor(OLE_COLOR color);
  bool TextWrap() const { return textWrap_; }
  void TextWrap(bool wrap);
  bool AutoSize() const { return autoSize_; }
  void AutoSize(bool autoSize);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91
  // 0..15 or 99 (error 380 otherwise); 0 lets the label show its own pointer,
  // the hand while a hyperlink is hovered.
  int16_t MousePointer() const;
  void MousePointer(int16_t pointer);
  std::shared_ptr<Picture> MouseIcon() const;
  void MouseIcon(std::shared_ptr<Picture> icon);  // nullptr = none

  // Events, in the order of the event interface.
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseDown;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseMove;
  Event<int16_t /*Button*/, int16_t /*Shift*/, float /*X*/, float /*Y*/> MouseUp;
  Event<> Click;
  // A handler may change the hyperlink (the label then opens, and keeps, the
  // changed text) or set Cancel to keep the shell from opening it.
  Event<std::string& /*sHyperlink*/, bool& /*Cancel*/> HyperlinkClick;

  // The label's fields, read-only, for tools and tests.
  LabelState State() const { return state_; }
  bool MouseIsDown() const { return mouseIsDown_; }
  const ColorScheme& Palette() const { return palette_; }
  PointL LastCursor() const { return hover_.LastCursor(); }
  PointL NowCursor() const { return hover_.NowCursor(); }
  bool HoverTimerRunning() const { return hover_.Running(); }

  // UserControl.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;
  void Terminate() override;
  void OnMouseDown(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseMove(int16_t button, int16_t shift, float x, float y) override;
  void OnMouseUp(int16_t button, int16_t shift, float x, float y) override;
  void OnKeyDown(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyUp(int16_t& /*keyCode*/, int16_t& /*shift*/) override {}
  void OnKeyPress(int16_t& /*keyAscii*/) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}

 private:
  bool sited() const { return host_ != nullptr; }
  ControlHost& host() const;  // error 91 while not sited
  void markChanged(const std::string& name);
  void propertyChanged(const std::string& name);

  // State and painting.
  void paletteChanged();
  void applyPalette();
  void applyResizeRule();
  Canvas& surface();
  void repaint();
  OLE_COLOR textColor(bool enabled) const;
  bool hasIcon() const { return imageList_ && imageIndex_ != 0; }
  void paintText(Canvas& surface);
  void paintTextBesideIcon(Canvas& surface);
  void drawIcon(Canvas& surface, bool enabled) const;
  void hoverFinding(HoverTracker::Finding finding);
  void showPointer();

  // Input.
  void followHyperlink();
  void raiseMouse(const char* name, const Event<int16_t, int16_t, float, float>& event,
                  int16_t button, int16_t shift, float x, float y);

  ControlHost* host_ = nullptr;
  FrameProperties properties_;
  std::shared_ptr<velt::ImageList> imageList_;
  int16_t imageIndex_ = 0;
  std::string hyperlink_;
  OLE_COLOR selectionColor_ = kDefaultSelectionColor;
  bool textWrap_ = false;
  bool autoSize_ = false;

  ColorScheme palette_ = SchemeNormal(FrameProperties::kDefaultBackColor,
                                      FrameProperties::kDefaultForeColor, kDefaultSelectionColor);
  HoverTracker hover_;
  LabelState state_ = lsCreated;
  bool mouseIsDown_ = false;
};

}  // namespace velt
