#pragma once

#include <cstdint>
#include <string>

#include "velt/foundation/ControlFrame.hpp"

namespace velt {

// The small glyph button other controls are built from (the scroll bar's
// arrows, the drop-down's button): the push button reduced to its caption,
// which its host sets to one symbol-font character. No image list and no
// focused look; the glyph sits one pixel above the centre.
class veltXButton : public ControlFrame {
 public:
  static constexpr int16_t kID = 15;

  veltXButton() = default;

  std::string ClassName() const override { return "veltXButton"; }
  int16_t ID() const override { return kID; }

 protected:
  void paint(Canvas& surface, const ColorScheme& palette) override;
};

}  // namespace velt
