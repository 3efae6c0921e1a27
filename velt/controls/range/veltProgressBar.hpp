#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/controls/range/MyOrientation.hpp"
#include "velt/foundation/ColorScheme.hpp"
#include "velt/foundation/FrameProperties.hpp"
#include "velt/platform/Types.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt {

class Canvas;
class ControlHost;
class Font;

// What the bar shows. Stored in property bags, so the numbers stay fixed.
enum MyType : int32_t {
  tNormal = 0,  // a row of blocks that grows with the value
  tSearch = 1,  // a comet of three fading blocks whose place follows the value
};

// A passive progress indicator: a shaded trough with 6-pixel gradient blocks on
// an 8-pixel pitch, growing from the left or from the bottom, and a caption
// with a halo in the back colour. The search style draws a comet instead; the
// application moves it by cycling Value, the bar itself never ticks. It takes
// no input and raises no events.
class veltProgressBar : public UserControl {
 public:
  static constexpr int16_t kID = 8;
  static constexpr int16_t kDefaultValue = 50;
  static constexpr int16_t kLowestValue = 0;
  static constexpr int16_t kHighestValue = 100;
  // The caption that stands for the value and a percent sign.
  static constexpr const char* kValueCaption = "%";
  static constexpr const char* kSearchingText = "Searching...";

  veltProgressBar() = default;
  veltProgressBar(const veltProgressBar&) = delete;
  veltProgressBar& operator=(const veltProgressBar&) = delete;
  ~veltProgressBar() override;

  std::string ClassName() const override { return "veltProgressBar"; }
  int16_t ID() const override { return kID; }

  // Properties, in the order they are stored. Enabled and Font are the host's
  // and raise error 91 while the bar is not sited.
  OLE_COLOR BackColor() const { return frame_.BackColor; }
  void BackColor(OLE_COLOR color);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::shared_ptr<velt::Font> Font() const;
  void Font(std::shared_ptr<velt::Font> font);  // by reference; nullptr is error 91
  MyOrientation Orientation() const { return orientation_; }
  void Orientation(MyOrientation orientation);  // not checked: an unknown value draws no fill
  MyType Style() const { return style_; }
  void Style(MyType style);  // not checked: an unknown value draws no fill
  // Reads back what was stored; the setter clamps to 0..100, a stored value
  // read from a property bag is taken as it is.
  int16_t Value() const { return value_; }
  void Value(int16_t value);
  const std::string& Caption() const { return caption_; }
  void Caption(const std::string& caption);
  OLE_COLOR ForeColor() const { return frame_.ForeColor; }
  void ForeColor(OLE_COLOR color);

  // How many blocks fit, as the last repaint of the normal style found (-1
  // when not even the length is positive).
  int16_t BlockSlots() const { return blockSlots_; }

  // UserControl.
  void Initialize(ControlHost& host) override;
  void InitProperties() override;
  void ReadProperties(PropertyBag& bag) override;
  void WriteProperties(PropertyBag& bag) override;
  void Resize() override;
  void Terminate() override;
  // A progress bar takes no input.
  void OnMouseDown(int16_t, int16_t, float, float) override {}
  void OnMouseMove(int16_t, int16_t, float, float) override {}
  void OnMouseUp(int16_t, int16_t, float, float) override {}
  void OnKeyDown(int16_t&, int16_t&) override {}
  void OnKeyUp(int16_t&, int16_t&) override {}
  void OnKeyPress(int16_t&) override {}
  void OnEnterFocus() override {}
  void OnExitFocus() override {}

 private:
  struct BlockColors;

  ControlHost& host() const;  // error 91 while not sited
  void propertyChanged(const std::string& name);

  void repaint();
  void drawFrame(Canvas& surface, const ColorScheme& scheme) const;
  void drawBlocks(Canvas& surface);
  void drawComet(Canvas& surface) const;
  void drawCometBlock(Canvas& surface, int32_t head, int32_t offset,
                      const BlockColors& colors) const;
  std::string captionText() const;
  void drawOutlinedText(Canvas& surface, const std::string& text) const;

  ControlHost* host_ = nullptr;
  FrameProperties frame_;  // BackColor and ForeColor; the caption is our own
  MyOrientation orientation_ = pbHorizontal;
  MyType style_ = tNormal;
  int16_t value_ = kDefaultValue;
  std::string caption_ = kValueCaption;
  int16_t blockSlots_ = 0;
};

}  // namespace velt
