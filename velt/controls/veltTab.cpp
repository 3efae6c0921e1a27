#include "velt/controls/veltTab.hpp"

#include "velt/platform/Canvas.hpp"
#include "velt/platform/ControlHost.hpp"

namespace velt {

void veltTab::repaint() {
  if (host_) host_->Surface().Clear();
}

}  // namespace velt
