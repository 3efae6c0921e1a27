#include "velt/controls/buttons/veltXButton.hpp"

#include "velt/foundation/ButtonFace.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Rounding.hpp"

namespace velt {

void veltXButton::paint(Canvas& surface, const ColorScheme& palette) {
  PaintButtonFace(surface, BackColor(), palette);
  const bool enabled = host().Enabled();
  if (!enabled) clearMouseIsDown();
  const double w = surface.ScaleWidth();
  const double h = surface.ScaleHeight();
  const std::string& caption = Caption();
  const auto x = static_cast<float>(Fix(w / 2 - surface.TextWidth(caption) / 2.0));
  // One pixel above the centred position.
  const auto y = static_cast<float>(Fix(h / 2 - surface.TextHeight(caption) / 2.0) - 1);
  PrintCaption(surface, x, y, caption, enabled ? palette.Text : palette.EdgeDark);
}

}  // namespace velt
