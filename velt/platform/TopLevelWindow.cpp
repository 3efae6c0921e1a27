#include "velt/platform/TopLevelWindow.hpp"

namespace velt {

TopLevelWindow::~TopLevelWindow() = default;

}  // namespace velt
