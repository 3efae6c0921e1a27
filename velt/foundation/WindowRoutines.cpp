#include "velt/foundation/WindowRoutines.hpp"

namespace velt {

void SetWindowAlpha(TopLevelWindow& window, uint8_t Alpha) {
  window.Layered(true);
  window.Alpha(Alpha);
}

void RemoveWindowAlpha(TopLevelWindow& window) {
  window.Layered(false);
  window.Redraw();
}

void AddDropShadow(TopLevelWindow& window) {
  window.DropShadow(true);
}

}  // namespace velt
